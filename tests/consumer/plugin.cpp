// SPDX-License-Identifier: Apache-2.0
#include "WavFileFormat.h"

// The length of a sound file in samples; -1 when the library does not read it.
extern "C" __attribute__((visibility("default"))) long SampleCount(const char* pszPath) {
  C_WavFileFormat format;
  const C_WavFilePtr file(format.CreateWavFile(pszPath, true, false, nullptr, nullptr));
  return file ? static_cast<long>(file->GetWavInfo()->GetSampleSize()) : -1;
}
