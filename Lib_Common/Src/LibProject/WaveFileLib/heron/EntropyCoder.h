// SPDX-License-Identifier: Apache-2.0
//
// The two sequences that the numbers of a stream are written to. They share one run of bytes:
// symbols fill it from the front, raw bits from the end.
//
// Symbols go through a range coder: a symbol of a table with total 2^15 takes 15 - log2(its
// frequency) bits. Encoder and decoder keep the same 64-bit range, which begins as 2^64 - 1:
//
//   unit = range >> 15;  low += unit * sum of the frequencies below;  range = unit * frequency
//   then, if range < 2^32: the top four bytes of low are written, highest first; low and range are
//   shifted up by 32 bits
//
// low and the bytes already written form one long number, so low can carry into those bytes. At the
// end the encoder writes the fewest bytes that lie in the interval whatever follows them.
//
// Raw bits, which are 0 as often as 1, are packed lowest first. Their bytes are in reverse order:
// the first bits are in the last byte.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace heron {

inline constexpr int kFrequencyBits = 15;
inline constexpr std::uint32_t kFrequencyTotal = 1u << kFrequencyBits;
inline constexpr int kMaxRawBits = 24;

// For each symbol, the sum of the frequencies up to and including it; the last one is
// kFrequencyTotal.
template <std::size_t nSymbols>
using S_Cumulative = std::array<std::uint16_t, nSymbols>;

template <std::size_t nSymbols>
constexpr S_Cumulative<nSymbols> Accumulate(
    const std::array<std::uint16_t, nSymbols>& frequencies) noexcept {
  S_Cumulative<nSymbols> cumulative{};
  std::uint32_t nSum = 0;
  for (std::size_t n = 0; n < nSymbols; ++n) {
    cumulative[n] = static_cast<std::uint16_t>(nSum += frequencies[n]);
  }
  return cumulative;
}

// True when every symbol can be coded and the symbols fill the interval. Both directions rely on
// this.
template <std::size_t nSymbols>
constexpr bool IsWhole(const S_Cumulative<nSymbols>& cumulative) noexcept {
  std::uint32_t nBelow = 0;
  for (const std::uint16_t nUpTo : cumulative) {
    if (nUpTo <= nBelow) return false;
    nBelow = nUpTo;
  }
  return nBelow == kFrequencyTotal;
}

// A copy goes on from where the original was.
class C_EntropyEncoder {
 public:
  // nSymbol must be a symbol of the table with a frequency of at least 1.
  template <std::size_t nSymbols>
  void WriteSymbol(const S_Cumulative<nSymbols>& cumulative, std::size_t nSymbol) {
    const std::uint32_t nBelow = nSymbol == 0 ? 0u : cumulative[nSymbol - 1];
    WriteInterval(nBelow, cumulative[nSymbol] - nBelow);
  }
  // nValue < 2^nBits, nBits 0..kMaxRawBits.
  void WriteRaw(std::uint32_t nValue, int nBits) {
    m_qwRawBits |= std::uint64_t{nValue} << m_nRawBits;
    m_nRawBits += nBits;
    if (m_nRawBits >= 32) PutRaw();
  }
  // Ends both sequences and returns the run. Nothing may be written after this.
  std::vector<std::uint8_t> Finish();
  // The bits that were written so far, roughly.
  [[nodiscard]] std::uint64_t Bits() const noexcept {
    return (m_bytes.size() + m_raw.size()) * 8 + static_cast<std::uint64_t>(m_nRawBits) +
           static_cast<std::uint64_t>(std::countl_zero(m_qwRange));
  }

 private:
  void WriteInterval(std::uint32_t nBelow, std::uint32_t nFrequency) {
    const std::uint64_t qwUnit = m_qwRange >> kFrequencyBits;
    const std::uint64_t qwUp = qwUnit * nBelow;
    m_qwRange = qwUnit * nFrequency;
    m_qwLow += qwUp;
    if (m_qwLow < qwUp) Carry();
    if (m_qwRange >> 32 != 0) return;
    PutTop(4);
    m_qwLow <<= 32;
    m_qwRange <<= 32;
  }
  void Carry() noexcept;
  void PutRaw();
  void PutTop(int nBytes);

  std::vector<std::uint8_t> m_bytes;  // of the symbols
  std::uint64_t m_qwLow = 0;
  std::uint64_t m_qwRange = ~std::uint64_t{0};
  std::vector<std::uint8_t> m_raw;
  std::uint64_t m_qwRawBits = 0;  // fewer than 32 bits that are not in m_raw yet
  int m_nRawBits = 0;
};

class C_EntropyDecoder {
 public:
  // Bytes that the range coder has read but not used.
  static constexpr std::size_t kAhead = 8;

  explicit C_EntropyDecoder(std::span<const std::uint8_t> bytes) noexcept;

  // Reads a symbol of the table, 0..nSymbols-1.
  template <std::size_t nSymbols>
  std::size_t ReadSymbol(const S_Cumulative<nSymbols>& cumulative) noexcept {
    const std::uint64_t qwUnit = m_qwRange >> kFrequencyBits;
    // Search from the first symbol on, because small symbols are the most likely. The range is a
    // little wider than its symbols, so damaged bytes may point past the last one, which then
    // counts.
    std::size_t nSymbol = 0;
    std::uint64_t qwBelow = 0;
    std::uint64_t qwUpTo = qwUnit * cumulative[0];
    while (qwUpTo <= m_qwCode && nSymbol < nSymbols - 1) {
      qwBelow = qwUpTo;
      qwUpTo = qwUnit * cumulative[++nSymbol];
    }
    m_qwCode -= qwBelow;
    m_qwRange = qwUpTo - qwBelow;
    if (m_qwRange >> 32 == 0) {
      m_qwRange <<= 32;
      m_qwCode = m_qwCode << 32 | Take4(m_nFront);
      m_nFront += 4;
    }
    return nSymbol;
  }
  // nBits 0..kMaxRawBits.
  std::uint32_t ReadRaw(int nBits) noexcept {
    if (m_nRawBits < nBits) {
      m_nBack += 4;
      m_qwRawBits |= std::uint64_t{Take4(m_nBytes - m_nBack)} << m_nRawBits;
      m_nRawBits += 32;
    }
    const auto nValue = static_cast<std::uint32_t>(m_qwRawBits & ((1u << nBits) - 1));
    m_qwRawBits >>= nBits;
    m_nRawBits -= nBits;
    return nValue;
  }
  // Bytes that were not read: 0 to 8 when everything was read. Negative when more bytes were read
  // than there are; values read from then on mean nothing.
  [[nodiscard]] std::ptrdiff_t Unread() const noexcept {
    const std::size_t nRead =
        m_nFront - kAhead + m_nBack - static_cast<std::size_t>(m_nRawBits / 8);
    return static_cast<std::ptrdiff_t>(m_nBytes - nRead);
  }

 private:
  // Four bytes from nAt on, highest first. Bytes outside the data count as 0, also when nAt has
  // wrapped below 0.
  [[nodiscard]] std::uint32_t Take4(std::size_t nAt) const noexcept {
    if (nAt >= m_nBytes || m_nBytes - nAt < 4) return TakeAtAnEnd(m_pBytes, m_nBytes, nAt);
    return std::uint32_t{m_pBytes[nAt]} << 24 | std::uint32_t{m_pBytes[nAt + 1]} << 16 |
           std::uint32_t{m_pBytes[nAt + 2]} << 8 | m_pBytes[nAt + 3];
  }
  // Static, because the object's state could not stay in registers if its address were passed on.
  static std::uint32_t TakeAtAnEnd(const std::uint8_t* pBytes, std::size_t nBytes,
                                   std::size_t nAt) noexcept;

  const std::uint8_t* m_pBytes;
  std::size_t m_nBytes;
  // Bytes read from the front and from the end, including reads outside the data.
  std::size_t m_nFront = 0;
  std::size_t m_nBack = 0;
  std::uint64_t m_qwCode = 0;
  std::uint64_t m_qwRange = ~std::uint64_t{0};
  std::uint64_t m_qwRawBits = 0;
  int m_nRawBits = 0;
};

}  // namespace heron
