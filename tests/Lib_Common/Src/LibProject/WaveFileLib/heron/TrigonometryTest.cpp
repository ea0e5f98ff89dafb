// SPDX-License-Identifier: Apache-2.0
#include "heron/Trigonometry.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "Signals.h"

namespace heron {
namespace {

constexpr std::int32_t kOne = 1 << 30;

// The larger of the errors of the two coordinates, in units.
double ErrorOf(std::int64_t nPart, std::int64_t nWhole) {
  const long double dAngle = 2 * std::numbers::pi_v<long double> * static_cast<long double>(nPart) /
                             static_cast<long double>(nWhole);
  const S_CirclePoint point = CirclePoint(nPart, nWhole);
  const long double dCosine = point.nCosine - std::cos(dAngle) * kOne;
  const long double dSine = point.nSine - std::sin(dAngle) * kOne;
  return static_cast<double>(std::max(std::abs(dCosine), std::abs(dSine)));
}

TEST(HeronTrigonometry, QuartersOfATurn_AreExact) {
  const std::int32_t expected[4][2] = {{kOne, 0}, {0, kOne}, {-kOne, 0}, {0, -kOne}};
  for (int n = 0; n < 4; ++n) {
    EXPECT_EQ(CirclePoint(n, 4).nCosine, expected[n][0]) << n;
    EXPECT_EQ(CirclePoint(n, 4).nSine, expected[n][1]) << n;
    EXPECT_EQ(CirclePoint(std::int64_t{n} << 30, std::int64_t{1} << 32).nCosine, expected[n][0]);
    EXPECT_EQ(CirclePoint(std::int64_t{n} << 30, std::int64_t{1} << 32).nSine, expected[n][1]);
  }
}

TEST(HeronTrigonometry, AWholeTurn_IsNone) {
  for (const std::int64_t nWhole : {std::int64_t{1}, std::int64_t{80}, std::int64_t{1} << 32}) {
    EXPECT_EQ(CirclePoint(nWhole, nWhole).nCosine, kOne) << nWhole;
    EXPECT_EQ(CirclePoint(nWhole, nWhole).nSine, 0) << nWhole;
  }
}

TEST(HeronTrigonometry, BothSidesOfEveryOctant_AreWithinEightUnits) {
  constexpr std::int64_t kEighth = std::int64_t{1} << 29;
  for (int nOctant = 0; nOctant < 8; ++nOctant) {
    for (std::int64_t nOff = -2; nOff <= 2; ++nOff) {
      const std::int64_t nPart = nOctant * kEighth + nOff;
      if (nPart < 0) continue;
      EXPECT_LE(ErrorOf(nPart, 8 * kEighth), 8) << nOctant << ' ' << nOff;
    }
    EXPECT_LE(ErrorOf(nOctant * kEighth + kEighth / 2, 8 * kEighth), 8) << nOctant;
  }
}

TEST(HeronTrigonometry, EveryPartOfTheWholesInUse_IsWithinEightUnits) {
  for (const int nWhole : {1, 3, 7, 40, 80, 441, 479, 480, 1280, 3840, 7664, 15360}) {
    for (int nPart = 0; nPart < nWhole; ++nPart) {
      ASSERT_LE(ErrorOf(nPart, nWhole), 8) << nPart << '/' << nWhole;
    }
  }
}

TEST(HeronTrigonometry, PartsOfLargeWholes_AreWithinEightUnits) {
  test::C_Random random(1);
  for (int n = 0; n < 20000; ++n) {
    const std::int64_t nWhole = random.Between(1, std::int64_t{1} << 32);
    const std::int64_t nPart = random.Between(0, nWhole);
    ASSERT_LE(ErrorOf(nPart, nWhole), 8) << nPart << '/' << nWhole;
  }
}

TEST(HeronTrigonometry, PartAboveAWhole_IsAllThatCounts) {
  EXPECT_EQ(CirclePoint(std::int64_t{1} << 32, 3).nCosine, CirclePoint(1, 3).nCosine);
  EXPECT_EQ(CirclePoint(std::int64_t{1} << 32, 3).nSine, CirclePoint(1, 3).nSine);
}

}  // namespace
}  // namespace heron
