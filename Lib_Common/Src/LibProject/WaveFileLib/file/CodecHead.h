// SPDX-License-Identifier: Apache-2.0
//
// The codec head: the raw bytes that a stream file may begin with, before the encoded bytes.
//
//   offset size field (little-endian)
//   0      2    file type code (tagAudioFileType)
//   2      2    sample rate in Hz, its low 16 bits
//   4      2    codec version (CodecVersionTable.h)
//
// Sound files proper (types 0x8001, 0x1101 and 0x1001) have no codec head.
#pragma once

#include <cstdio>

#include "interface/AudioFileType.h"

namespace codechead {

// Writes the head of a stream of type eType at the position of pFile; dwSampleRate is in Hz. For a
// type without a head, writes nothing and returns true. False when a write fails, and for a type
// that has no version; the first two fields are still written in that case.
bool Write(std::FILE* pFile, tagAudioFileType eType, unsigned int dwSampleRate);

}  // namespace codechead
