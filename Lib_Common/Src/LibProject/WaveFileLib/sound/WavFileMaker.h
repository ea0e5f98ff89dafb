// SPDX-License-Identifier: Apache-2.0
//
// A sound can write itself as a file, while files hold sounds. This one function opens that circle:
// the sound declares what it needs, the layer above that knows the file classes defines it.
#pragma once

#include <memory>

#include "interface/I_WavFile.h"

// A file object that writes files of kind eType; null when the kind cannot be written. Codec files
// learn the kind of the encoded bytes that the sound already holds (eEncodedType), so that they can
// store those unchanged.
std::unique_ptr<I_WavFile> MakeWavFile(tagAudioFileType eType, tagAudioFileType eEncodedType);
