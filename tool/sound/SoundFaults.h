// SPDX-License-Identifier: Apache-2.0
//
// What is wrong with a sound, though it could be read: lines for people.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "sound/SoundInput.h"

namespace tool {

// Whether the end is missing, after so many frames were read to the end: also when fewer have come
// than the file says.
bool IsCutAfter(const I_SoundInput& sound, std::uint64_t qwFrames);

// "speech.kst: 3 of 500 frames are damaged".
std::string DamagedLine(const std::string& strName, std::uint64_t qwDamaged,
                        std::uint64_t qwFrames);
// "speech.kst: the file is cut: 500 frames are there, and converted", after so many were read to
// the end; where silence stands for the missing ones, that the end is missing.
std::string CutLine(const std::string& strName, const I_SoundInput& sound, std::uint64_t qwFrames,
                    std::string_view done);

}  // namespace tool
