// SPDX-License-Identifier: Apache-2.0
//
// Decodes Kestrel frames to samples at every rate, with the decoder's state carried from frame to
// frame.
//
//   scripts/fuzz.sh 60 kestrel_frame
//
// Input: one byte that chooses the rate, then frame words, 16-bit little-endian. A last frame that
// is cut off is padded with zeros. What is decoded is encoded again, so that the encoder meets
// signals that no microphone produces.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"

namespace {

constexpr std::uint32_t kRates = 35;
constexpr std::size_t kMostFrames = 4;

std::uint32_t RateOf(std::uint8_t byChoice) { return 4800 + 800 * (byChoice % kRates); }

std::vector<std::uint16_t> WordsOf(std::span<const std::uint8_t> bytes,
                                   std::size_t nWordsPerFrame) {
  const std::size_t cbFrame = 2 * nWordsPerFrame;
  std::vector<std::uint16_t> words((bytes.size() + cbFrame - 1) / cbFrame * nWordsPerFrame);
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    words[i / 2] = static_cast<std::uint16_t>(words[i / 2] | bytes[i] << 8 * (i % 2));
  }
  return words;
}

// Checks what holds for every frame: nothing lies above the coded regions, and the transform
// supports the shift.
void Check(std::span<const std::uint16_t> words, int nRegions) {
  kestrel::S_NoiseGenerator noise;
  const auto frame = kestrel::UnpackFrame(words, nRegions, noise);
  const std::span coefficients(frame.spectrum.coefficients);
  for (const auto nValue : coefficients.subspan(static_cast<std::size_t>(nRegions) * 20)) {
    if (nValue != 0) std::abort();
  }
  if (frame.spectrum.nShift < kestrel::kLowestShift) std::abort();
  if (frame.spectrum.nShift > kestrel::kHighestShift) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  if (cbData == 0) return 0;
  kestrel::C_Decoder decoder;
  kestrel::C_Encoder encoder;
  const auto& configuration = decoder.Init(RateOf(pData[0]));
  encoder.Init(configuration.dwBitRate);
  const auto nWords = static_cast<std::size_t>(configuration.nWordsPerFrame);
  // The state after a few frames is like that after many.
  const auto words = WordsOf({pData + 1, std::min(cbData - 1, kMostFrames * 2 * nWords)}, nWords);
  for (std::size_t nFirst = 0; nFirst < words.size(); nFirst += nWords) {
    const auto frame = std::span(words).subspan(nFirst, nWords);
    kestrel::S_Frame samples;
    decoder.Decode(frame, samples);
    Check(frame, configuration.nRegions);
    std::vector<std::uint16_t> encoded(nWords);
    encoder.Encode(samples, encoded);
  }
  return 0;
}
