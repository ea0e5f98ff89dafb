// SPDX-License-Identifier: Apache-2.0
#include "kestrel/BitStream.h"

#include <algorithm>

namespace kestrel {

C_BitWriter::C_BitWriter(std::span<std::uint16_t> words) noexcept : m_words(words) {
  std::fill(m_words.begin(), m_words.end(), std::uint16_t{0});
}

void C_BitWriter::Put(std::uint32_t dwValue, int nBits) noexcept {
  while (nBits > 0) PutBit(dwValue >> --nBits & 1u);
}

void C_BitWriter::PadWithOnes() noexcept {
  const int nBitsInFrame = static_cast<int>(m_words.size()) * kBitsPerWord;
  while (m_nBitsPut < nBitsInFrame) PutBit(1);
}

void C_BitWriter::PutBit(std::uint32_t dwBit) noexcept {
  const auto nAt = static_cast<std::size_t>(m_nBitsPut++);
  if (nAt / kBitsPerWord >= m_words.size()) return;
  auto& wWord = m_words[nAt / kBitsPerWord];
  wWord = static_cast<std::uint16_t>(wWord | dwBit << (kBitsPerWord - 1 - nAt % kBitsPerWord));
}

int C_BitReader::Bits(int nBits) noexcept {
  int nValue = 0;
  while (nBits-- > 0) nValue = nValue << 1 | Bit();
  return nValue;
}

}  // namespace kestrel
