// SPDX-License-Identifier: Apache-2.0
//
// Encodes any samples at any of the eight rates and decodes them again: the number of frames must
// be right, and the same samples must produce the same stream again.
//
//   scripts/fuzz.sh 60 kestrel_encode_decode
//
// Input: a byte that picks the rate, then 16-bit samples.
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "Require.h"
#include "codec/KestrelCodec.h"
#include "sound/WavData.h"

namespace {

constexpr std::array<unsigned int, 8> kRates = {7200,  9600,  12000, 14400,
                                                16000, 20000, 24000, 32000};

// Two frames, and a part of a third.
constexpr std::size_t kMostSamples = 650;

std::vector<std::uint8_t> Encode(std::span<const std::uint8_t> pcm, unsigned int dwBitRate) {
  const C_WavDataPtr sound(new C_WavData);
  const auto cbPcm = static_cast<unsigned int>(pcm.size());
  Require(sound->SetBuffer(pcm.data(), cbPcm));
  sound->SetWavInfoData(16000, cbPcm, 1, 16, 16, true);
  C_KestrelCodec codec;
  codec.LoadCodec(dwBitRate);
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  Require(codec.Encode(sound.get(), dwBitRate, &pbyStream, &dwLength, nullptr));
  std::vector<std::uint8_t> stream(pbyStream, pbyStream + dwLength);
  delete[] pbyStream;
  return stream;
}

std::size_t FramesFor(std::size_t dwSamples) {
  return dwSamples < 320 ? 2 : (dwSamples + 319) / 320;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  if (cbData < 3) return 0;
  const unsigned int dwBitRate = kRates[pData[0] % kRates.size()];
  const std::size_t dwSamples = std::min((cbData - 1) / 2, kMostSamples);
  const std::span pcm(pData + 1, dwSamples * 2);
  const auto stream = Encode(pcm, dwBitRate);
  Require(stream.size() == 6 + FramesFor(dwSamples) * dwBitRate / 400);
  const C_WavDataPtr decoded(new C_WavData);
  C_KestrelCodec codec;
  codec.LoadCodec(dwBitRate);
  Require(codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), decoded.get(),
                       nullptr));
  Require(decoded->GetBufferLength() == FramesFor(dwSamples) * 640);
  // Encoding twice takes twice the time, so not every input is.
  if (pData[cbData - 1] % 8 == 0) Require(Encode(pcm, dwBitRate) == stream);
  return 0;
}
