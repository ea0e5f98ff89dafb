// SPDX-License-Identifier: Apache-2.0
//
// BitStream.h for speed: both directions move many bits at once and leave it to the caller to stay
// inside.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "Lanes.h"
#include "kestrel/Configuration.h"

namespace kestrel {

// Collects the words of one frame, then copies as many as the frame has.
class C_WordWriter {
 public:
  // The low nBits (1..32) of dwValue; its other bits are 0. All that is put together is at most
  // kMostBits bits.
  VCM_LANES_INLINE void Put(std::uint32_t dwValue, int nBits) {
    m_qwBits = m_qwBits << nBits | dwValue;
    m_nBits += nBits;
    if (m_nBits >= 32) {
      m_nBits -= 32;
      Append(static_cast<std::uint32_t>(m_qwBits >> m_nBits));
    }
  }
  [[nodiscard]] VCM_LANES_INLINE int BitsPut() const {
    return static_cast<int>(m_nWords) * kBitsPerWord + m_nBits;
  }
  // Fills what is left with ones.
  VCM_LANES_INLINE void Finish(std::span<std::uint16_t> words) {
    Append(static_cast<std::uint32_t>(m_qwBits << (32 - m_nBits)) | 0xFFFFFFFFu >> m_nBits);
    const std::size_t nPut = std::min(m_nWords, words.size());
    std::memcpy(words.data(), m_words, nPut * sizeof(std::uint16_t));
    std::fill(words.begin() + static_cast<std::ptrdiff_t>(nPut), words.end(),
              std::uint16_t{0xFFFF});
  }

  // An envelope of 5 bits and 13 words of at most 16, a control value, and 14 regions of at most 10
  // vectors with at most 18 bits, or 5 with 20, or 4 with 21.
  static constexpr int kMostBits = 5 + 13 * 16 + 4 + kMaxRegions * 180;

 private:
  VCM_LANES_INLINE void Append(std::uint32_t dwBits) {
    m_words[m_nWords] = static_cast<std::uint16_t>(dwBits >> kBitsPerWord);
    m_words[m_nWords + 1] = static_cast<std::uint16_t>(dwBits);
    m_nWords += 2;
  }

  std::uint64_t m_qwBits = 0;
  int m_nBits = 0;  // that wait in m_qwBits, 0..31
  std::size_t m_nWords = 0;
  std::uint16_t m_words[kMostBits / kBitsPerWord + 3];
};

// Reads one frame of at most kMaxWordsPerFrame words. There are zeros after it.
class C_WordReader {
 public:
  VCM_LANES_INLINE explicit C_WordReader(std::span<const std::uint16_t> words)
      : m_nEnd(static_cast<int>(words.size()) * kBitsPerWord) {
    for (std::size_t n = 0; n < words.size(); ++n) {
      m_bytes[2 * n] = static_cast<std::uint8_t>(words[n] >> 8);
      m_bytes[2 * n + 1] = static_cast<std::uint8_t>(words[n] & 0xFF);
    }
    std::memset(m_bytes + 2 * words.size(), 0, kZeros);
  }
  // The next bits, the first one highest; 57 of them at least.
  [[nodiscard]] VCM_LANES_INLINE std::uint64_t Next() const {
    std::uint64_t qwBits;
    std::memcpy(&qwBits, m_bytes + (m_nAt >> 3), sizeof qwBits);
    if constexpr (std::endian::native == std::endian::little) qwBits = __builtin_bswap64(qwBits);
    return qwBits << (m_nAt & 7);
  }
  VCM_LANES_INLINE void Skip(int nBits) { m_nAt += nBits; }
  [[nodiscard]] VCM_LANES_INLINE int BitsTaken() const { return m_nAt; }
  // Negative when more bits were taken than the frame has.
  [[nodiscard]] VCM_LANES_INLINE int BitsLeft() const { return m_nEnd - m_nAt; }

 private:
  // The envelope and the control value may go past the end of a short frame.
  static constexpr std::size_t kZeros = (5 + 13 * 16 + 4) / 8 + 16;

  int m_nAt = 0;
  int m_nEnd;
  alignas(32) std::uint8_t m_bytes[std::size_t{2} * kMaxWordsPerFrame + kZeros];
};

}  // namespace kestrel
