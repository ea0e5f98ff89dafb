// SPDX-License-Identifier: Apache-2.0
//
// Builds Kestrel streams frame by frame, with whatever false claim a test needs. Also decodes and
// encodes with the bare frame coder, as the reference for the codec.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "ByteReader.h"
#include "TestVoice.h"
#include "kestrel/FrameCoder.h"

namespace kestrel::test {

constexpr std::size_t kFrameSamples = 320;

// The words of the frames that the coder makes of these samples. An incomplete last frame is filled
// up with silence.
inline std::vector<std::uint16_t> EncodeWords(unsigned int dwBitRate,
                                              std::span<const short> samples) {
  int nWords = 0;
  int nSamples = 0;
  KestrelEncoderInit(dwBitRate, &nWords, &nSamples);
  std::vector<std::uint16_t> words;
  for (std::size_t i = 0; i < samples.size(); i += kFrameSamples) {
    std::array<short, kFrameSamples> frame{};
    const auto part = samples.subspan(i, std::min(kFrameSamples, samples.size() - i));
    std::copy(part.begin(), part.end(), frame.begin());
    std::array<std::uint16_t, 40> frameWords{};
    KestrelEncodeFrame(frame.data(), frameWords.data());
    words.insert(words.end(), frameWords.begin(), frameWords.begin() + nWords);
  }
  return words;
}

// The samples of these frames, which must be whole.
inline std::vector<short> DecodeWords(unsigned int dwBitRate,
                                      std::span<const std::uint16_t> words) {
  int nWords = 0;
  int nSamples = 0;
  KestrelDecoderInit(dwBitRate, &nWords, &nSamples);
  std::vector<short> samples;
  for (std::size_t i = 0; i < words.size(); i += static_cast<std::size_t>(nWords)) {
    std::array<short, kFrameSamples> frame{};
    KestrelDecodeFrame(&words[i], frame.data());
    samples.insert(samples.end(), frame.begin(), frame.end());
  }
  return samples;
}

}  // namespace kestrel::test

class C_KestrelBytes {
 public:
  using Bytes = std::vector<std::uint8_t>;

  explicit C_KestrelBytes(unsigned int dwBitRate) : m_dwBitRate(dwBitRate) {}

  // nFrames frames of a voice.
  C_KestrelBytes& Voice(std::size_t nFrames) {
    return Words(
        kestrel::test::EncodeWords(m_dwBitRate, TestVoice(nFrames * kestrel::test::kFrameSamples)));
  }
  C_KestrelBytes& Words(const std::vector<std::uint16_t>& words) {
    m_words.insert(m_words.end(), words.begin(), words.end());
    return *this;
  }
  // Makes the length field claim this number instead of the true one.
  C_KestrelBytes& Claim(std::uint32_t dwClaim) { return m_claim = {dwClaim}, *this; }

  [[nodiscard]] const std::vector<std::uint16_t>& GetWords() const { return m_words; }
  [[nodiscard]] Bytes Take() const {
    vcm::C_ByteWriter writer;
    writer.U32(m_claim.empty() ? static_cast<std::uint32_t>(2 + m_words.size() * 2)
                               : m_claim.front());
    writer.U16(static_cast<std::uint16_t>(m_dwBitRate));
    for (const std::uint16_t wWord : m_words) writer.U16(wWord);
    return writer.Take();
  }
  // The first cbSize bytes.
  [[nodiscard]] Bytes Take(std::size_t cbSize) const {
    Bytes bytes = Take();
    bytes.resize(cbSize);
    return bytes;
  }

 private:
  unsigned int m_dwBitRate;
  std::vector<std::uint16_t> m_words;
  std::vector<std::uint32_t> m_claim;
};
