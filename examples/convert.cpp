// SPDX-License-Identifier: Apache-2.0
//
// Turns any sound file that the library reads into a WAV file, or into a Kestrel file at a bit
// rate:
//
//   cmake --build --preset dev --target convert
//   build/dev/bin/convert speech.kst speech.wav
//   build/dev/bin/convert speech.wav speech.kst 16000
//
// Kestrel is made for speech at 16 kHz. Sound at another rate is not resampled: it is encoded as it
// is, and plays at its own speed because the file names its rate.
#include <cstdio>
#include <cstdlib>

#include "WavFileFormat.h"
#include "file/SpHeader.h"

namespace {

bool ConvertToWav(const char* pszSource, const char* pszTarget) {
  C_WavFileFormat format;
  I_WavFile* pIFile = format.CreateWavFile(pszSource, true, true, nullptr, nullptr);
  if (pIFile == nullptr) return false;
  const bool bDone = pIFile->Convert(AUDIO_FILE_WAVE, pszTarget, true, false, nullptr, false, 0);
  pIFile->Release();
  return bDone;
}

bool ConvertToKestrel(const char* pszSource, const char* pszTarget, unsigned int dwBitRate) {
  C_WavFileFormat format;
  I_WavFile* pIFile = format.CreateWavFile(pszSource, true, true, nullptr, nullptr);
  if (pIFile == nullptr) return false;
  pIFile->GetAudioCodecParam()->SetBitRate(dwBitRate);
  const unsigned int dwSampleRate = pIFile->GetWavInfo()->GetSampleRate();
  const bool bDone = pIFile->Convert(AUDIO_FILE_KESTREL, pszTarget, true, false, nullptr, true, 0);
  pIFile->Release();
  C_SpHeader header;  // what comes out of the encoder is the bare stream
  header.SetID(AUDIO_FILE_KESTREL);
  header.SetFreq(dwSampleRate);
  return bDone && PrependSpHeader(header, pszTarget);
}

bool Run(int argc, char** argv) {
  if (argc == 3) return ConvertToWav(argv[1], argv[2]);
  if (argc != 4) return false;
  const auto dwBitRate = static_cast<unsigned int>(std::strtoul(argv[3], nullptr, 10));
  return ConvertToKestrel(argv[1], argv[2], dwBitRate);
}

}  // namespace

int main(int argc, char** argv) {
  if (Run(argc, argv)) return EXIT_SUCCESS;
  static_cast<void>(std::fputs("usage: convert IN OUT.wav | convert IN OUT.kst BITRATE\n", stderr));
  return EXIT_FAILURE;
}
