// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sound/SoundInput.h"

namespace tool {

// A sound without the frames at its end that the file claims and does not hold. voxplay.h reads
// those of PCM as silence. Other sounds stay as they are.
C_SoundInputPtr WithoutMissingFrames(C_SoundInputPtr sound);

// The first frames of a sound, which are all that belongs to it.
C_SoundInputPtr FirstFrames(C_SoundInputPtr sound, std::uint64_t qwFrames);

}  // namespace tool
