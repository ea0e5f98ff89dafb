// SPDX-License-Identifier: Apache-2.0
//
// What the search for levels counts as costs: squared half steps, Q16, and bits at a price. All of
// it fits 32 bits: a level is less than four half steps away, which is 2^20, and the dearest level
// takes less than 64 bits, which is 2^21. So 64 coefficients add less than 2^28 after the least
// cost is taken off all paths.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "heron/MagnitudeCode.h"
#include "heron/Quantiser.h"
#include "heron/StepSize.h"

namespace heron {

// Above the costs of all paths that can be reached.
inline constexpr std::uint32_t kUnreachable = 1u << 30;
// The least cost is taken off all paths after so many coefficients.
inline constexpr std::size_t kCostPeriod = 64;

// Half a half step, Q8. Anything smaller becomes zero, even where another level would lead to
// states in which the zeros after it were cheaper. That way silence stays silent.
inline constexpr std::uint32_t kLeastForALevel = 1u << (kScaledQ - 1);

// The price of 1/256 bit in squared half steps, Q16. A bit costs 0.48 squared half steps, which is
// an eighth of a squared step. In measurements, the signal-to-noise ratio stays within 0.05 dB for
// prices from 0.4 to 0.56.
inline constexpr std::uint32_t kBitWeight = 123;
inline constexpr std::uint32_t kBitPrice = 256 * kBitWeight;

// The prices of the symbols, signs not included; by model, table, quantiser and symbol.
using S_MagnitudePrices =
    std::array<std::array<std::array<std::uint32_t, kMagnitudeSymbols>, kQuantisers>,
               kMagnitudeTables>;
extern const std::array<S_MagnitudePrices, kModels> kMagnitudePrices;

// The two levels around a coefficient, and their squared errors.
struct S_LevelPair {
  std::uint32_t nEven;
  std::uint32_t nOdd;
  std::uint32_t nEvenError;
  std::uint32_t nOddError;
  bool bZeroToo;  // zero, which is cheap, is considered as well, although 1 lies between
};
// nScaled: the coefficient in half steps, Q8.
template <std::size_t nQuantiser>
constexpr S_LevelPair LevelsAround(std::uint32_t nScaled) noexcept {
  constexpr std::uint32_t kStep = 2u << kScaledQ;
  // Quantiser 1 lies a half step below, but for its zero.
  const std::uint64_t qwPlace = std::uint64_t{nScaled} + (nQuantiser << kScaledQ);
  const auto nLower = static_cast<std::uint32_t>(qwPlace / kStep);
  const auto nRest = static_cast<std::uint32_t>(qwPlace % kStep);
  const std::uint32_t nBelow = nQuantiser == 1 && nLower == 0 ? nScaled : nRest;
  const std::uint32_t nLowerError = nBelow * nBelow;
  const std::uint32_t nUpperError = (kStep - nRest) * (kStep - nRest);
  if (nLower % 2 == 0) return {nLower, nLower + 1, nLowerError, nUpperError, false};
  return {nLower + 1, nLower, nUpperError, nLowerError, nLower == 1};
}

}  // namespace heron
