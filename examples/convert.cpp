// SPDX-License-Identifier: Apache-2.0
//
// Turns any sound file that the library reads into a WAV file, or into a Kestrel file. From a fresh
// clone:
//
//   scripts/install-deps.sh library
//   cmake --preset library
//   cmake --build --preset library --target convert
//   build/library/bin/convert samples/Test.kst hello.wav
//   build/library/bin/convert hello.wav hello.kst 16000
//
// The target's extension says what is written: ".wav" or ".kst". A target that exists already stays
// as it is.
//
// Kestrel is made for speech at 16 kHz. Sound at another rate is not resampled: it is encoded as it
// is, and the file names its rate.
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "WavFileFormat.h"
#include "codec/KestrelCodec.h"
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

int Fail(const std::string& strWhy) {
  static_cast<void>(std::fprintf(stderr, "convert: %s\n", strWhy.c_str()));
  return EXIT_FAILURE;
}

int Usage() {
  static_cast<void>(
      std::fputs("usage: convert IN OUT.wav | convert IN OUT.kst [BITRATE]\n", stderr));
  return EXIT_FAILURE;
}

// Returns 0 when the text is not a bit rate that Kestrel encodes at.
unsigned int BitRateOf(std::string_view text) {
  unsigned int dwBitRate = 0;
  const char* const pEnd = text.data() + text.size();
  const auto [pStop, error] = std::from_chars(text.data(), pEnd, dwBitRate);
  const bool bNumber = error == std::errc() && pStop == pEnd;
  return bNumber && C_KestrelCodec().IsSupportedBitRate(dwBitRate) ? dwBitRate : 0;
}

// Why the source cannot be converted; empty when it can.
std::string WhyNot(const char* pszSource, bool bKestrel) {
  std::FILE* const pFile = std::fopen(pszSource, "rb");
  if (pFile == nullptr) return std::string(pszSource) + " cannot be opened";
  static_cast<void>(std::fclose(pFile));
  C_WavFileFormat format;
  const C_WavFilePtr file(format.CreateWavFile(pszSource, true, true, nullptr, nullptr));
  if (!file) return std::string(pszSource) + " is no sound file that the library reads";
  I_WavInfo& info = *file->GetWavInfo();
  if (info.GetSampleSize() == 0) return std::string(pszSource) + " holds no samples";
  // 12 bits are written as 16, and Kestrel encodes 16 bits.
  const bool bConverted = bKestrel || info.GetBitsPerSample() == 12;
  if (bConverted &&
      !IsSupportBitsPerSample(info.GetBitsPerSample(), info.GetStoreBitsPerSample())) {
    return std::string(pszSource) + " has samples of " + std::to_string(info.GetBitsPerSample()) +
           " bits, which cannot be converted";
  }
  return {};
}

// Creates the target, so that no existing file is overwritten. Why that cannot be done; empty
// when it is done.
std::string Claim(const char* pszTarget) {
  std::FILE* const pFile = std::fopen(pszTarget, "wbx");
  if (pFile == nullptr) {
    return std::string(pszTarget) + (errno == EEXIST ? " exists already" : " could not be written");
  }
  static_cast<void>(std::fclose(pFile));
  return {};
}

int Run(const char* pszSource, const char* pszTarget, const char* pszBitRate) {
  const std::string strExtension = std::filesystem::path(pszTarget).extension().string();
  const bool bKestrel = strExtension == ".kst";
  if (!bKestrel && strExtension != ".wav") {
    return Fail(std::string(pszTarget) + " ends neither in .wav nor in .kst");
  }
  if (pszBitRate != nullptr && !bKestrel) return Fail("a WAV file has no bit rate to choose");
  unsigned int dwBitRate = C_KestrelCodec::kDefaultBitRate;
  if (pszBitRate != nullptr) dwBitRate = BitRateOf(pszBitRate);
  if (dwBitRate == 0) {
    return Fail(std::string(pszBitRate) +
                " is none of Kestrel's bit rates: 7200, 9600, 12000, 14400, 16000, 20000, 24000, "
                "32000");
  }
  if (const std::string strWhy = WhyNot(pszSource, bKestrel); !strWhy.empty()) return Fail(strWhy);
  if (const std::string strWhy = Claim(pszTarget); !strWhy.empty()) return Fail(strWhy);
  const bool bDone = bKestrel ? ConvertToKestrel(pszSource, pszTarget, dwBitRate)
                              : ConvertToWav(pszSource, pszTarget);
  if (bDone) return EXIT_SUCCESS;
  static_cast<void>(std::remove(pszTarget));
  return Fail(std::string(pszTarget) + " could not be written");
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3 && argc != 4) return Usage();
  return Run(argv[1], argv[2], argc == 4 ? argv[3] : nullptr);
}
