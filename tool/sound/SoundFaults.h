// SPDX-License-Identifier: Apache-2.0
//
// What is wrong with a sound, though it could be read: a line for people.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "sound/SoundInput.h"

namespace tool {

// Whether the end is missing, after so many frames were read to the end: also when fewer have come
// than the file says.
bool IsCutAfter(const I_SoundInput& sound, std::uint64_t qwFrames);

// "speech.kst: 3 of 500 frames are damaged; the file is cut: 500 of 900 frames are there, and
// converted", after so many were read to the end. "" for a sound that is whole and good.
std::string FaultLine(const std::string& strName, const I_SoundInput& sound, std::uint64_t qwFrames,
                      std::string_view done);

}  // namespace tool
