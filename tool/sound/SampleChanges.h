// SPDX-License-Identifier: Apache-2.0
//
// What may happen to the samples of a sound on their way from a file to another one.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "sound/SampleSink.h"
#include "sound/SoundInput.h"

namespace tool {

struct S_SampleChanges {
  std::optional<std::uint32_t> dwChannel;  // only this one, counted from 0
  bool bMono = false;                      // the mean of all channels
  std::uint32_t dwRate = 0;                // 0 keeps it
  double dGain = 1.0;                      // a factor
};

// What the sound has afterwards.
[[nodiscard]] std::uint32_t ChangedChannels(const S_SoundInfo& info,
                                            const S_SampleChanges& changes);
[[nodiscard]] std::uint32_t ChangedRate(const S_SoundInfo& info, const S_SampleChanges& changes);
// kFramesUnknown when the input does not tell.
[[nodiscard]] std::uint64_t ChangedFrames(const S_SoundInfo& info, const S_SampleChanges& changes);

// Reads the rest of the input, changes it and hands it to the sink. Samples of which nothing but
// the choice of channels is to be changed stay exactly as they are, and have the type that holds
// them: int16_t, int32_t for integers of more than 16 bits, float for floating point. All others
// are float. Returns the number of frames that were read.
std::uint64_t ChangeSamples(I_SoundInput& input, const S_SampleChanges& changes, I_SampleSink& sink,
                            const PFN_FramesRead& fnRead = {});

}  // namespace tool
