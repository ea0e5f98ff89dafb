// SPDX-License-Identifier: Apache-2.0
//
// What one coefficient adds to the sums of Coefficients.h.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>

#include "heron/MagnitudeCode.h"
#include "heron/StepSize.h"
#include "heron/TrellisCosts.h"

namespace heron {

// Quotients whose logarithms are added count 16ths. They are limited to what a float holds exactly.
inline constexpr int kLogQ = 4;
inline constexpr int kLogDown = C_ToHalfSteps::kInverseQ - kLogQ;
inline constexpr std::uint32_t kMostLogged = (1U << 24) - 1;

// nMagnitude is at most kMaxCoefficient.
constexpr std::uint32_t LogTerm(std::uint32_t nMagnitude, std::uint32_t nInverse) noexcept {
  const std::uint64_t qwScaled = std::uint64_t{nMagnitude} * nInverse >> kLogDown;
  const auto nTerm =
      static_cast<std::uint32_t>(std::min<std::uint64_t>(qwScaled + (1U << kLogQ), kMostLogged));
  // A float is a logarithm that is straight within each octave.
  constexpr std::uint32_t kOne = std::bit_cast<std::uint32_t>(float{1U << kLogQ});
  return (std::bit_cast<std::uint32_t>(static_cast<float>(nTerm)) - kOne) >> (23 - 8);
}

// Levels that are estimated are limited, so that sums of their prices fit 32 bits.
inline constexpr int kScaledDown = C_ToHalfSteps::kInverseQ - kScaledQ;
inline constexpr std::uint32_t kMostRounded = 1U << 30;
inline constexpr std::uint32_t kRoundUp = 224;

constexpr std::int32_t RoundedLevel(std::uint32_t nMagnitude, std::uint32_t nInverse) noexcept {
  const std::uint64_t qwScaled = std::uint64_t{nMagnitude} * nInverse >> kScaledDown;
  const auto nLimited = static_cast<std::uint32_t>(std::min<std::uint64_t>(qwScaled, kMostRounded));
  return static_cast<std::int32_t>((nLimited + kRoundUp) >> (kScaledQ + 1));
}

// So are expectations, to what a float holds exactly.
inline constexpr std::uint32_t kMostExpected = (1U << 24) - 1;

inline std::uint32_t LevelPrice(std::int32_t nLevel, std::uint32_t nExpectation,
                                const S_MagnitudePrices& prices) noexcept {
  const auto nValue = static_cast<std::uint32_t>(nLevel);
  if (nExpectation >> kHighestOctave == 0 && nValue < kEscapeSymbol) [[likely]] {
    return prices[kTableOf[nExpectation]][0][nValue] + (nValue > 0 ? kBitPrice : 0);
  }
  const auto [nTable, nShift] = ClassOf(std::min(nExpectation, kMostExpected));
  const std::uint32_t nSymbol = std::min(nValue >> nShift, kEscapeSymbol);
  const auto nBits = static_cast<std::uint32_t>(nShift + (nLevel > 0 ? 1 : 0));
  return prices[nTable][0][nSymbol] + nBits * kBitPrice;
}

}  // namespace heron
