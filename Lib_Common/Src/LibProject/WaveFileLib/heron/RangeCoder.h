// SPDX-License-Identifier: Apache-2.0
//
// The range coder. A symbol of a table with total 2^15 takes 15 - log2(its frequency) bits; a raw
// bit takes one. Encoder and decoder hold the same 32-bit range:
//
//   symbol:   unit = range >> 15;  low += unit * cumulative;  range = unit * frequency
//   raw bits: range >>= bits;      low += range * value
//   after each: while range < 2^24, the top byte of low (with its carry) goes out, range <<= 8
//
// At the end the encoder writes the value of its interval that ends in the most zeros and leaves
// out up to kMaxMissing zero bytes; the decoder reads zeros there.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace heron {

inline constexpr int kFrequencyBits = 15;
inline constexpr std::uint32_t kFrequencyTotal = 1u << kFrequencyBits;
inline constexpr int kMaxRawBits = 16;

// The sums of the frequencies before each symbol, and kFrequencyTotal at the end.
template <std::size_t kSymbols>
using S_Cumulative = std::array<std::uint16_t, kSymbols + 1>;

template <std::size_t kSymbols>
constexpr S_Cumulative<kSymbols> Accumulate(
    const std::array<std::uint16_t, kSymbols>& frequencies) noexcept {
  S_Cumulative<kSymbols> cumulative{};
  for (std::size_t n = 0; n < kSymbols; ++n)
    cumulative[n + 1] = static_cast<std::uint16_t>(cumulative[n] + frequencies[n]);
  return cumulative;
}

class C_RangeEncoder {
 public:
  // Appends to bytes, which must outlive the object.
  explicit C_RangeEncoder(std::vector<std::uint8_t>& bytes) noexcept : m_bytes(bytes) {}

  // nFrequency at least 1, nCumulative + nFrequency at most kFrequencyTotal.
  void WriteSymbol(std::uint32_t nCumulative, std::uint32_t nFrequency);
  // nBits 1..kMaxRawBits.
  void WriteRaw(std::uint32_t nValue, int nBits);
  // Nothing may be written behind it.
  void Finish();

 private:
  void Normalise();
  void ShiftOut();

  std::vector<std::uint8_t>& m_bytes;
  std::uint64_t m_qwLow = 0;  // below 2^33; bit 32 is a carry into the bytes that are held back
  std::uint32_t m_dwRange = 0xFFFFFFFF;
  // The last byte that a carry can still change, and the bytes of 0xFF behind it. None at first.
  std::uint64_t m_qwHeld = 0;
  std::uint8_t m_byFirstHeld = 0;
};

class C_RangeDecoder {
 public:
  static constexpr std::size_t kMaxMissing = 3;

  explicit C_RangeDecoder(std::span<const std::uint8_t> bytes) noexcept;

  // The symbol of the table, 0..kSymbols-1.
  template <std::size_t kSymbols>
  std::size_t ReadSymbol(const S_Cumulative<kSymbols>& cumulative) noexcept {
    const std::uint32_t dwUnit = m_dwRange >> kFrequencyBits;
    const std::uint32_t nAt = LimitToTable(m_dwCode / dwUnit);
    // Small symbols are the likely ones.
    std::size_t nSymbol = 0;
    while (cumulative[nSymbol + 1] <= nAt) ++nSymbol;
    m_dwCode -= dwUnit * cumulative[nSymbol];
    m_dwRange = dwUnit * static_cast<std::uint32_t>(cumulative[nSymbol + 1] - cumulative[nSymbol]);
    Normalise();
    return nSymbol;
  }
  // nBits 1..kMaxRawBits.
  std::uint32_t ReadRaw(int nBits) noexcept {
    m_dwRange >>= nBits;
    const std::uint32_t nMost = (1u << nBits) - 1;
    const std::uint32_t nValue = std::min(m_dwCode / m_dwRange, nMost);
    m_dwCode -= m_dwRange * nValue;
    Normalise();
    return nValue;
  }
  // ReadRaw(1), quicker.
  bool ReadBit() noexcept {
    m_dwRange >>= 1;
    const bool bSet = m_dwCode >= m_dwRange;
    if (bSet) m_dwCode -= m_dwRange;
    Normalise();
    return bSet;
  }
  // More was read than the encoder can have left out.
  [[nodiscard]] bool IsPastTheEnd() const noexcept {
    return m_nRead > m_bytes.size() + kMaxMissing;
  }

 private:
  // The interval is a little wider than its symbols; damaged bytes may point behind the last one.
  static constexpr std::uint32_t LimitToTable(std::uint32_t nAt) noexcept {
    return nAt < kFrequencyTotal ? nAt : kFrequencyTotal - 1;
  }
  void Normalise() noexcept {
    while (m_dwRange < (1u << 24)) {
      m_dwCode = m_dwCode << 8 | NextByte();
      m_dwRange <<= 8;
    }
  }
  std::uint8_t NextByte() noexcept {
    const std::size_t nAt = m_nRead++;
    return nAt < m_bytes.size() ? m_bytes[nAt] : std::uint8_t{0};
  }

  std::span<const std::uint8_t> m_bytes;
  std::size_t m_nRead = 0;
  std::uint32_t m_dwCode = 0;
  std::uint32_t m_dwRange = 0xFFFFFFFF;
};

}  // namespace heron
