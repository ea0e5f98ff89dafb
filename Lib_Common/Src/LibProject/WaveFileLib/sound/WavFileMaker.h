// SPDX-License-Identifier: Apache-2.0
//
// A sound can write itself as a file, and files hold sounds. This function breaks that cycle: the
// sound declares what it needs, and the layer above, which knows the file classes, defines it.
#pragma once

#include <memory>

#include "interface/I_WavFile.h"

namespace vcm {

// Makes a file object that writes files of kind eType; null when the kind cannot be written. Codec
// files are told the kind of the encoded form that the sound holds (eEncodedType), so that they can
// store it unchanged.
std::unique_ptr<I_WavFile> MakeWavFile(tagAudioFileType eType, tagAudioFileType eEncodedType);

}  // namespace vcm
