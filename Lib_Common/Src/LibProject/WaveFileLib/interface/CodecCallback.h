// SPDX-License-Identifier: Apache-2.0
//
// How codecs report while they work. Callbacks run on the calling thread; the data passed to them
// is valid only during the call. A callback may give the sound other memory for its samples or its
// encoded form: what is encoded or decoded stays that of the beginning. It must not change samples
// where they are, and must not destroy the sound.
#pragma once

// Receives each piece of decoded PCM: 16-bit samples in the machine's own byte order, as audio
// devices take them, and the count of their bytes.
using PFN_DecodedData = void (*)(void* pData, unsigned int dwLength);

// What an encoder reports. Only the Kestrel encoder reports kStart. kProgress says how much is
// done: in samples for Kestrel, in groups of 32 frames for Heron.
struct S_CodecProgress {
  static constexpr unsigned int kStart = 3;     // dwValue: total sample count
  static constexpr unsigned int kProgress = 4;  // dwValue: samples or groups encoded so far

  unsigned int dwKind = 0;
  char szText[256] = {};  // reserved, all zero
  unsigned int dwValue = 0;
};
using PFN_CodecProgress = void (*)(const S_CodecProgress* pProgress);
