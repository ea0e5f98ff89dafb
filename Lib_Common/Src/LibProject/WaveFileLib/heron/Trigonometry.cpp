// SPDX-License-Identifier: Apache-2.0
#include "heron/Trigonometry.h"

#include "heron/FixedPoint.h"

namespace heron {
namespace {

constexpr int kQ = 30;
constexpr std::int64_t kOne = std::int64_t{1} << kQ;
constexpr std::int64_t kEighthOfATurn = 843314857;  // pi / 4 in Q30

constexpr std::int64_t Mul(std::int64_t nA, std::int64_t nB) noexcept {
  return RoundShift(nA * nB, kQ);
}

// Taylor series for 0..pi/4, Q30; the first term left out is below 2^-31.
S_CirclePoint FirstOctant(std::int64_t nAngle) noexcept {
  const std::int64_t nSquare = Mul(nAngle, nAngle);
  std::int64_t nCosine = kOne;
  std::int64_t nSine = kOne;
  for (std::int64_t n = 10; n >= 2; n -= 2) {
    nCosine = kOne - Mul(nSquare, nCosine) / (n * (n - 1));
    nSine = kOne - Mul(nSquare, nSine) / (n * (n + 1));
  }
  return {static_cast<std::int32_t>(nCosine), static_cast<std::int32_t>(Mul(nAngle, nSine))};
}

}  // namespace

S_CirclePoint CirclePoint(std::int64_t nPart, std::int64_t nWhole) noexcept {
  const std::int64_t nEighths = nPart % nWhole * 8;
  const auto nOctant = static_cast<int>(nEighths / nWhole);
  const std::int64_t nRest = nEighths % nWhole;
  // Odd octants are measured back from the next multiple of a quarter turn.
  const bool bFromTheEnd = nOctant % 2 != 0;
  const std::int64_t nInOctant = bFromTheEnd ? nWhole - nRest : nRest;
  const auto [c, s] = FirstOctant(static_cast<std::int64_t>(
      static_cast<std::uint64_t>(nInOctant) * static_cast<std::uint64_t>(kEighthOfATurn) /
      static_cast<std::uint64_t>(nWhole)));
  switch (nOctant) {
    case 0:
      return {c, s};
    case 1:
      return {s, c};
    case 2:
      return {-s, c};
    case 3:
      return {-c, s};
    case 4:
      return {-c, -s};
    case 5:
      return {-s, -c};
    case 6:
      return {s, -c};
    default:
      return {c, -s};
  }
}

}  // namespace heron
