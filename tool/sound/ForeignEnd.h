// SPDX-License-Identifier: Apache-2.0
//
// What files that are not ours tell of their own length. libsndfile takes what is there for all.
#pragma once

#include "sound/FileBytes.h"

namespace tool {

// Whether the end of a file is missing, by what it says of its own size: AIFF, RIFF, W64 and CAF,
// which are made of chunks, AU, SPHERE, VOC, and Ogg, whose last page is marked. False for all
// others. Moves the position.
bool LacksItsEnd(C_FileBytes& bytes);

// Whether an MPEG stream has a header that tells its length, as "Xing", "Info" or "VBRI". Without
// one, libsndfile guesses. Moves the position.
bool TellsMpegLength(C_FileBytes& bytes);

}  // namespace tool
