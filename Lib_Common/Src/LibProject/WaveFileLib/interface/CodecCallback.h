// SPDX-License-Identifier: Apache-2.0
//
// How codecs report while they work. Callbacks run on the calling thread; what they are handed is
// valid during the call only.
#pragma once

// Receives each decoded piece of PCM: its bytes and their count.
using PFN_DecodedData = void (*)(void* pData, unsigned int dwLength);

// What an encoder reports.
struct S_CodecProgress {
  static constexpr unsigned int kStart = 3;     // dwValue: total sample count
  static constexpr unsigned int kProgress = 4;  // dwValue: samples encoded so far

  unsigned int dwKind = 0;
  char szText[256] = {};  // reserved, all zero
  unsigned int dwValue = 0;
};
using PFN_CodecProgress = void (*)(const S_CodecProgress* pProgress);
