// SPDX-License-Identifier: Apache-2.0
//
// The code of one coefficient. Its expectation (Neighbourhood.h) and its quantiser (Quantiser.h)
// choose one of the tables. The level k is then coded as
//
//   symbol  min(k >> shift, 15) by the table
//   escape  for symbol 15: e = (k >> shift) - 14 as raw bits: one 0 for each bit of e after its
//           first, a 1, then those bits
//   raw     the low `shift` bits of k
//   sign    unless k is 0, one more raw bit, 1 for negative
//
// Expectations double every four tables. The last four tables serve kHighestOctave and all octaves
// above it: kHighestOctave codes the lowest bit of k as it is, and each octave above it codes one
// bit more.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "heron/EntropyCoder.h"
#include "heron/FixedPoint.h"
#include "heron/Tables.h"

namespace heron {

struct S_MagnitudeClass {
  std::size_t nTable;  // 0..kMagnitudeTables-1
  int nShift;          // 0..23
};

inline constexpr int kLowestOctave = 3;  // 8 = 2^3, the least expectation
inline constexpr int kHighestOctave =
    kLowestOctave + kMagnitudeTables / 4 - 1;  // the first with a shift

// The table of each expectation below 2^(kHighestOctave + 1), found by its octave and by the two
// bits after its first bit.
inline constexpr auto kTableOf = [] {
  std::array<std::uint8_t, 2 << kHighestOctave> tables{};
  for (std::uint32_t n = 1U << kLowestOctave; n < tables.size(); ++n) {
    const int nOctave = 31 - std::countl_zero(n);
    tables[n] = static_cast<std::uint8_t>(4 * (nOctave - kLowestOctave) +
                                          static_cast<int>(n >> (nOctave - 2)) - 4);
  }
  return tables;
}();

// nExpectation 8..2^32-1.
constexpr S_MagnitudeClass ClassOf(std::uint32_t nExpectation) noexcept {
  if (nExpectation < kTableOf.size()) {
    return {kTableOf[nExpectation], static_cast<int>(nExpectation >> kHighestOctave)};
  }
  // Setting the lowest bit does not change the octave and spares the machine a special case for 0.
  const int nOctave = 31 ^ std::countl_zero(nExpectation | 1);
  const int nAbove = nOctave - kHighestOctave;
  return {kTableOf[nExpectation >> nAbove], nAbove + 1};
}

// Levels are at most 2^24.
inline constexpr int kLevelBits = 24;

inline constexpr std::uint32_t kEscapeSymbol = kMagnitudeSymbols - 1;

using S_MagnitudeCumulative = S_Cumulative<kMagnitudeSymbols>;
// The bits that a symbol of this frequency takes, in units of 1/256 bit.
constexpr std::uint16_t SymbolCost(std::uint16_t wFrequency) noexcept {
  return static_cast<std::uint16_t>(kFrequencyBits * 256 - Log2Q8(wFrequency));
}
// The same of all symbols of a table.
using S_MagnitudeCosts = std::array<std::uint16_t, kMagnitudeSymbols>;

// By table and quantiser.
template <typename Row>
using S_MagnitudeRows = std::array<std::array<Row, kQuantisers>, kMagnitudeTables>;
// By model.
extern const std::array<S_MagnitudeRows<S_MagnitudeCumulative>, kModels> kMagnitudeCumulative;
extern const std::array<S_MagnitudeRows<S_MagnitudeCosts>, kModels> kMagnitudeCosts;

// nExcess (at least 1) as raw bits: the escape of a level that is nExcess - 1 above what the
// symbols reach. Reading returns 2^32 for an escape longer than that of any level.
inline void WriteEscape(C_EntropyEncoder& encoder, std::uint32_t nExcess) {
  const int nRest = 31 - std::countl_zero(nExcess);
  for (int n = 0; n < nRest; ++n) encoder.WriteRaw(0, 1);
  encoder.WriteRaw(1, 1);
  encoder.WriteRaw(nExcess & ((1u << nRest) - 1), nRest);
}
std::uint64_t ReadEscape(C_EntropyDecoder& decoder) noexcept;
// The bits of an escape.
constexpr int EscapeBits(std::uint32_t nExcess) noexcept {
  return 2 * (31 - std::countl_zero(nExcess)) + 1;
}

inline void WriteLevel(C_EntropyEncoder& encoder,
                       const S_MagnitudeRows<S_MagnitudeCumulative>& rows, std::size_t nQuantiser,
                       const S_MagnitudeClass& magnitudeClass, std::int32_t nLevel,
                       bool bNegative) {
  const auto nValue = static_cast<std::uint32_t>(nLevel);
  const std::uint32_t nTop = nValue >> magnitudeClass.nShift;
  const std::size_t nSymbol = std::min(nTop, kEscapeSymbol);
  encoder.WriteSymbol(rows[magnitudeClass.nTable][nQuantiser], nSymbol);
  if (nSymbol == kEscapeSymbol) WriteEscape(encoder, nTop - kEscapeSymbol + 1);
  // The sign follows the low bits.
  const std::uint32_t nLow = nValue & ((1u << magnitudeClass.nShift) - 1);
  const std::uint32_t nSign = (bNegative ? 1u : 0u) << magnitudeClass.nShift;
  if (nLevel != 0) {
    encoder.WriteRaw(nLow | nSign, magnitudeClass.nShift + 1);
  } else if (magnitudeClass.nShift != 0) {
    encoder.WriteRaw(0, magnitudeClass.nShift);
  }
}

// Reads a level without its sign; the result is below 2^56. No encoder writes a level above
// 2^kLevelBits; an escape that is too long gives 2^32 or more.
inline std::uint64_t ReadLevel(C_EntropyDecoder& decoder,
                               const S_MagnitudeRows<S_MagnitudeCumulative>& rows,
                               std::size_t nQuantiser,
                               const S_MagnitudeClass& magnitudeClass) noexcept {
  std::uint64_t qwLevel =
      decoder.ReadSymbol<kMagnitudeSymbols>(rows[magnitudeClass.nTable][nQuantiser]);
  if (qwLevel == kEscapeSymbol) {
    // Uses a copy, because an object whose address is passed on cannot stay in registers.
    C_EntropyDecoder copy = decoder;
    qwLevel += ReadEscape(copy) - 1;
    decoder = copy;
  }
  if (magnitudeClass.nShift == 0) return qwLevel;
  return qwLevel << magnitudeClass.nShift | decoder.ReadRaw(magnitudeClass.nShift);
}

// The bits that a level takes, including its sign, in units of 1/256 bit.
inline std::int32_t LevelCost(const S_MagnitudeCosts& costs, int nShift,
                              std::int32_t nLevel) noexcept {
  constexpr int kBitCost = 256;
  const auto nTop = static_cast<std::uint32_t>(nLevel >> nShift);
  const std::int32_t nRawCost = (nShift + (nLevel != 0 ? 1 : 0)) * kBitCost;
  if (nTop < kEscapeSymbol) return nRawCost + costs[nTop];
  return nRawCost + costs[kEscapeSymbol] + EscapeBits(nTop - kEscapeSymbol + 1) * kBitCost;
}

}  // namespace heron
