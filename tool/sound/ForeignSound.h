// SPDX-License-Identifier: Apache-2.0
//
// Files that are not ours, through libsndfile: FLAC, Ogg, Opus, MP3, AIFF, and kinds of WAV that
// voxplay.h does not read.
#pragma once

#include <string>

#include "sound/FileBytes.h"
#include "sound/SoundInput.h"

namespace tool {

// Null when libsndfile does not know the file either; *pstrWhy is then what it says. Throws
// C_Failure.
C_SoundInputPtr OpenForeignSound(C_FileBytes file, const std::string& strName,
                                 std::string* pstrWhy);

// The codes of A-law or mu-law alone, without a header: one byte a sample. Throws C_Failure.
C_SoundInputPtr OpenLawCodes(C_FileBytes codes, const std::string& strName, bool bALaw,
                             std::uint32_t dwChannels);

}  // namespace tool
