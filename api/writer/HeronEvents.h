// SPDX-License-Identifier: Apache-2.0
//
// The events of a sound as a Heron stream has them (codec/HeronEventStream.h).
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "notes/Notes.h"

namespace api {

// The bytes after the coded audio of nSamples samples; none without events. The events are in order
// of their frames.
std::vector<std::uint8_t> CodeHeronEvents(std::span<const S_NoteEvent> events,
                                          std::uint32_t dwSamples, int nSampleRate);

// One sentence for each event, because a stream has all of none. bWritten: it has their bytes.
std::vector<std::string> LostOfHeronEvents(std::span<const S_NoteEvent> events,
                                           std::uint32_t dwSamples, int nSampleRate, bool bWritten);

}  // namespace api
