// SPDX-License-Identifier: Apache-2.0
//
// The format of a sound says how long its PCM is, and callers may set it to anything. Whatever
// copies the PCM asks here first.
#pragma once

#include "interface/I_WavData.h"

namespace vcm {

// False when the format claims more bytes than the sound's buffer holds. A sound whose buffer is
// not ours is believed, because only our own buffers tell how long they are.
[[nodiscard]] bool HoldsItsBytes(I_WavData& wavData);

// Whether the PCM consists of signed 16-bit samples, all of which it holds. False for a sound of a
// class that is not ours.
[[nodiscard]] bool Holds16Bits(I_WavData& wavData);

}  // namespace vcm
