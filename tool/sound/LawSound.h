// SPDX-License-Identifier: Apache-2.0
//
// For the codes of A-law and mu-law in WAV files, voxplay.h has values of its own, which are not
// those of G.711. Here such files sound as they do everywhere else.
#pragma once

#include <functional>

#include "sound/FileBytes.h"
#include "sound/SoundInput.h"

namespace tool {

// The bytes of the file of a sound, opened again.
using PFN_OpenBytes = std::function<C_FileBytes()>;

// A sound of voxplay.h with the samples that libsndfile decodes, if it is a WAV file of A-law or
// mu-law. All else is told by voxplay.h, and other sounds stay as they are. Throws C_Failure.
C_SoundInputPtr WithStandardLaws(C_SoundInputPtr sound, const std::string& strName,
                                 const PFN_OpenBytes& fnOpen);

}  // namespace tool
