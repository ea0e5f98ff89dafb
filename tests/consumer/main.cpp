// SPDX-License-Identifier: Apache-2.0
//
// Decodes a file twice: with the library that this program is linked with, and with the one in a
// plug-in. Fails unless both decode the same number of samples.
#include <dlfcn.h>

#include <cstdio>

#include "WavFileFormat.h"
#include "file/SpHeader.h"

int main(int argc, char** argv) {
  if (argc != 3) return 2;
  C_SpHeader header;
  if (!ReadSpHeader(&header, argv[1])) return 1;
  C_WavFileFormat format;
  const C_WavFilePtr file(format.CreateWavFile(argv[1], true, false, nullptr, nullptr));
  if (!file) return 1;
  const auto nSamples = static_cast<long>(file->GetWavInfo()->GetSampleSize());
  void* const pPlugin = dlopen(argv[2], RTLD_NOW);
  if (pPlugin == nullptr) return 1;
  const auto pfnSampleCount =
      reinterpret_cast<long (*)(const char*)>(dlsym(pPlugin, "SampleCount"));
  if (pfnSampleCount == nullptr) return 1;
  std::printf("%ld samples at %u Hz\n", nSamples, header.GetFreq());
  return nSamples > 0 && pfnSampleCount(argv[1]) == nSamples ? 0 : 1;
}
