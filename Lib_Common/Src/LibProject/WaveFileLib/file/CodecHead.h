// SPDX-License-Identifier: Apache-2.0
//
// The raw head that a stream file may begin with, in front of the encoded bytes:
//
//   offset size field (little-endian)
//   0      2    file type code (tagAudioFileType)
//   2      2    sample rate, its low 16 bits
//   4      2    codec version (CodecVersionTable.h)
//
// Sound files proper (types 0x8001, 0x1101 and 0x1001) have no head.
#pragma once

#include <cstdio>

#include "interface/AudioFileType.h"

// False when the stream takes no more, and for a type that has no version. Such a type leaves its
// first two fields written.
bool WriteCodecHead(std::FILE* pFile, tagAudioFileType eType, unsigned int dwSampleRate);
