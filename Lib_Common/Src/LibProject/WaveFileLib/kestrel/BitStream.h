// SPDX-License-Identifier: Apache-2.0
//
// The bits of one frame in 16-bit words: bit 0 of the frame is the most significant bit of word 0,
// bit 16 that of word 1. Fields follow one another without gaps, each most significant bit first.
//
// Neither direction ever leaves the frame. Bits written past its end are dropped, and bits read
// past its end are 0. Both directions still count these bits, so that a caller sees by how much the
// frame was too small.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "kestrel/Configuration.h"

namespace kestrel {

class C_BitWriter {
 public:
  // Clears the words, which the caller keeps.
  explicit C_BitWriter(std::span<std::uint16_t> words) noexcept;

  // The low nBits (0..32) of dwValue.
  void Put(std::uint32_t dwValue, int nBits) noexcept;
  // Sets every bit that has not been written.
  void PadWithOnes() noexcept;
  // Bits put so far, dropped ones included.
  [[nodiscard]] int BitsPut() const noexcept { return m_nBitsPut; }

 private:
  void PutBit(std::uint32_t dwBit) noexcept;

  std::span<std::uint16_t> m_words;
  int m_nBitsPut = 0;
};

class C_BitReader {
 public:
  // The first nBitsTaken bits have been read already.
  explicit C_BitReader(std::span<const std::uint16_t> words, int nBitsTaken = 0) noexcept
      : m_words(words), m_nBitsTaken(nBitsTaken) {}

  // The next bit, 0 or 1.
  int Bit() noexcept {
    const auto nAt = static_cast<std::size_t>(m_nBitsTaken++);
    if (nAt / kBitsPerWord >= m_words.size()) return 0;
    return m_words[nAt / kBitsPerWord] >> (kBitsPerWord - 1 - nAt % kBitsPerWord) & 1;
  }
  // The next nBits (0..31) as a number.
  int Bits(int nBits) noexcept;
  // Bits of the frame that have not been taken; negative when more were taken than it has.
  [[nodiscard]] int BitsLeft() const noexcept {
    return static_cast<int>(m_words.size()) * kBitsPerWord - m_nBitsTaken;
  }

 private:
  std::span<const std::uint16_t> m_words;
  int m_nBitsTaken;
};

}  // namespace kestrel
