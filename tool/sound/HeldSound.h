// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "sound/SoundInput.h"

namespace tool {

// A sound without the frames at its end that the file claims and does not hold. voxplay.h reads
// those of PCM as silence. Other sounds stay as they are.
C_SoundInputPtr WithoutMissingFrames(C_SoundInputPtr sound);

}  // namespace tool
