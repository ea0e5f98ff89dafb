// SPDX-License-Identifier: Apache-2.0
//
// The 16-byte PCM form of the RIFF "fmt " payload.
//
//   offset size field
//   0      2    format tag (1 = PCM)
//   2      2    channels
//   4      4    samples per second
//   8      4    average bytes per second
//   12     2    block align (bytes per sample frame)
//   14     2    bits per sample (the significant bits)
#pragma once

struct S_PcmFormatRecord {
  static constexpr unsigned int kBytes = 16;

  unsigned short wFormatTag = 1;
  unsigned short wChannels = 0;
  unsigned int dwSamplesPerSec = 0;
  unsigned int dwAvgBytesPerSec = 0;
  unsigned short wBlockAlign = 0;
  unsigned short wBitsPerSample = 0;
};
static_assert(sizeof(S_PcmFormatRecord) == S_PcmFormatRecord::kBytes);
