// SPDX-License-Identifier: Apache-2.0
//
// The range coder. A symbol of a table with total 2^15 takes 15 - log2(its frequency) bits; a raw
// bit takes one. Encoder and decoder hold the same 64-bit range, at first 2^64 - 1:
//
//   symbol:   unit = range >> 15;  low += unit * cumulative;  range = unit * frequency
//   raw bits: range >>= bits;      low += range * value
//   after each: if range < 2^32, the top four bytes of low go out, highest first; low and range are
//               shifted up by 32 bits
//
// low counts as one long number with the bytes that went out: it carries into them. At the end the
// encoder writes the eight bytes of the value in its interval that ends in the most zeros, less the
// zero bytes at the end; the decoder reads zeros there.
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
  explicit C_RangeEncoder(std::vector<std::uint8_t>& bytes) noexcept
      : m_bytes(bytes), m_nFirst(bytes.size()) {}

  // nFrequency at least 1, nCumulative + nFrequency at most kFrequencyTotal.
  void WriteSymbol(std::uint32_t nCumulative, std::uint32_t nFrequency);
  // nBits 1..kMaxRawBits.
  void WriteRaw(std::uint32_t nValue, int nBits);
  // Nothing may be written behind it.
  void Finish();

 private:
  void Advance(std::uint64_t qwBy);
  void Carry() noexcept;
  void PutTop(int nBytes);

  std::vector<std::uint8_t>& m_bytes;
  std::size_t m_nFirst;  // the first byte of this sequence
  std::uint64_t m_qwLow = 0;
  std::uint64_t m_qwRange = ~std::uint64_t{0};
};

class C_RangeDecoder {
 public:
  explicit C_RangeDecoder(std::span<const std::uint8_t> bytes) noexcept;

  // The symbol of the table, 0..kSymbols-1.
  template <std::size_t kSymbols>
  std::size_t ReadSymbol(const S_Cumulative<kSymbols>& cumulative) noexcept {
    const std::uint64_t qwUnit = m_qwRange >> kFrequencyBits;
    // The range is a little wider than its symbols; damaged bytes may point behind the last one.
    const std::uint64_t qwAt = std::min<std::uint64_t>(m_qwCode / qwUnit, kFrequencyTotal - 1);
    // Small symbols are the likely ones.
    std::size_t nSymbol = 0;
    while (cumulative[nSymbol + 1] <= qwAt) ++nSymbol;
    m_qwCode -= qwUnit * cumulative[nSymbol];
    m_qwRange = qwUnit * static_cast<unsigned>(cumulative[nSymbol + 1] - cumulative[nSymbol]);
    Normalise();
    return nSymbol;
  }
  // nBits 1..kMaxRawBits.
  std::uint32_t ReadRaw(int nBits) noexcept {
    m_qwRange >>= nBits;
    const std::uint64_t qwMost = (std::uint64_t{1} << nBits) - 1;
    const std::uint64_t qwValue = std::min(m_qwCode / m_qwRange, qwMost);
    m_qwCode -= m_qwRange * qwValue;
    Normalise();
    return static_cast<std::uint32_t>(qwValue);
  }
  // ReadRaw(1), quicker.
  bool ReadBit() noexcept {
    m_qwRange >>= 1;
    const bool bSet = m_qwCode >= m_qwRange;
    if (bSet) m_qwCode -= m_qwRange;
    Normalise();
    return bSet;
  }
  // More was read than the encoder can have left out.
  [[nodiscard]] bool IsPastTheEnd() const noexcept { return m_nMissing > kMaxMissing; }

 private:
  static constexpr std::size_t kMaxMissing = 8;

  void Normalise() noexcept {
    if (m_qwRange >> 32 != 0) return;
    m_qwRange <<= 32;
    m_qwCode = m_qwCode << 32 | Next4Bytes();
  }
  std::uint32_t Next4Bytes() noexcept;

  std::span<const std::uint8_t> m_rest;
  std::size_t m_nMissing = 0;  // bytes that were read behind the end
  std::uint64_t m_qwCode = 0;
  std::uint64_t m_qwRange = ~std::uint64_t{0};
};

}  // namespace heron
