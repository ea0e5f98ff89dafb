// SPDX-License-Identifier: Apache-2.0
//
// The code of one coefficient. Its expectation (Neighbourhood.h) and its quantiser (Quantiser.h)
// choose one of the tables; the level k is then
//
//   symbol  min(k >> shift, 15) by the table
//   escape  for symbol 15: e = (k >> shift) - 14 as raw bits: one 0 for each bit of e behind its
//           first, a 1, then those bits
//   raw     the low `shift` bits of k
//   sign    unless k is 0, one raw bit, 1 for negative
//
// Expectations double every four classes. The upper classes share four tables: each octave further
// up codes one bit more of k as it is, up to 15.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "heron/RangeCoder.h"
#include "heron/Tables.h"

namespace heron {

struct S_MagnitudeClass {
  std::size_t nTable;  // 0..kMagnitudeTables-1
  int nShift;          // 0..15
};

// nExpectation at least 8.
constexpr S_MagnitudeClass ClassOf(std::int32_t nExpectation) noexcept {
  constexpr int kLowestOctave = 3;  // 8 = 2^3, the least expectation
  constexpr int kOwnOctaves = 6;
  constexpr int kMostShift = 15;
  const int nOctave = 31 - std::countl_zero(static_cast<std::uint32_t>(nExpectation));
  const int nQuarter = nExpectation >> (nOctave - 2) & 3;
  const int nShift = nOctave - kLowestOctave - kOwnOctaves + 1;
  if (nShift <= 0) return {static_cast<std::size_t>(4 * (nOctave - kLowestOctave) + nQuarter), 0};
  return {static_cast<std::size_t>(4 * kOwnOctaves + nQuarter), std::min(nShift, kMostShift)};
}

// Levels are below 2^24.
inline constexpr int kLevelBits = 24;

inline constexpr std::uint32_t kEscapeSymbol = kMagnitudeSymbols - 1;

using S_MagnitudeCumulative = S_Cumulative<kMagnitudeSymbols>;
// Bits that each symbol takes, in 1/256.
using S_MagnitudeCosts = std::array<std::uint16_t, kMagnitudeSymbols>;

// By quantiser and table.
extern const std::array<std::array<S_MagnitudeCumulative, kMagnitudeTables>, kQuantisers>
    kMagnitudeCumulative;
extern const std::array<std::array<S_MagnitudeCosts, kMagnitudeTables>, kQuantisers>
    kMagnitudeCosts;

void WriteLevel(C_RangeEncoder& encoder, int nQuantiser, const S_MagnitudeClass& magnitudeClass,
                std::int32_t nLevel, bool bNegative);

// nLevel + 1 as raw bits: the escape of a level that is nLevel above what the symbols reach. The
// second is 0 for what is too long.
void WriteEscape(C_RangeEncoder& encoder, std::uint32_t nExcess);
std::uint32_t ReadEscape(C_RangeDecoder& decoder) noexcept;

struct S_Level {
  std::int32_t nLevel;  // -1 for what is too long
  bool bNegative;
};

inline S_Level ReadLevel(C_RangeDecoder& decoder, int nQuantiser,
                         const S_MagnitudeClass& magnitudeClass) noexcept {
  std::uint64_t qwLevel = decoder.ReadSymbol<kMagnitudeSymbols>(
      kMagnitudeCumulative[static_cast<std::size_t>(nQuantiser)][magnitudeClass.nTable]);
  if (qwLevel == kEscapeSymbol) {
    const std::uint32_t nExcess = ReadEscape(decoder);
    if (nExcess == 0) return {-1, false};
    qwLevel += nExcess - 1;
  }
  if (magnitudeClass.nShift > 0)
    qwLevel = qwLevel << magnitudeClass.nShift | decoder.ReadRaw(magnitudeClass.nShift);
  if (qwLevel >> kLevelBits != 0) return {-1, false};
  return {static_cast<std::int32_t>(qwLevel), qwLevel != 0 && decoder.ReadBit()};
}

// Bits that a level takes, its sign included, in 1/256.
inline std::int32_t LevelCost(const S_MagnitudeCosts& costs, int nShift,
                              std::int32_t nLevel) noexcept {
  constexpr int kBitCost = 256;
  const auto nTop = static_cast<std::uint32_t>(nLevel >> nShift);
  const std::int32_t nRawCost = (nShift + (nLevel != 0 ? 1 : 0)) * kBitCost;
  if (nTop < kEscapeSymbol) return nRawCost + costs[nTop];
  const int nEscapeBits = 2 * (31 - std::countl_zero(nTop - kEscapeSymbol + 1)) + 1;
  return nRawCost + costs[kEscapeSymbol] + nEscapeBits * kBitCost;
}

}  // namespace heron
