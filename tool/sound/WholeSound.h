// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "sound/SoundInput.h"

namespace tool {

// Reads a sound from where it is to its end, so that its damage is known, and returns the number of
// frames. Throws what reading throws, and C_Interrupted.
std::uint64_t ReadToEnd(I_SoundInput& sound, const PFN_FramesRead& fnRead = {});

// How many frames a sound says that it has; 0 when it does not say.
std::uint64_t ClaimedFrames(const S_SoundInfo& info);

}  // namespace tool
