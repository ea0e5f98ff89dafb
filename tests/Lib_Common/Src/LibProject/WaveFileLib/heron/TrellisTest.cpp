// SPDX-License-Identifier: Apache-2.0
#include "heron/Trellis.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Codes.h"
#include "Signals.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using S_Coefficients = std::vector<std::int32_t>;
using S_Levels = std::vector<std::int32_t>;

constexpr std::size_t kLength = 160;

C_PreviousFrame SilenceBefore(int nIndex) {
  C_PreviousFrame before(kLength);
  before.Begin(nIndex);
  return before;
}

// The distortion and the bits that a choice of levels leads to.
struct S_Outcome {
  double dDistortion = 0;  // squared half steps
  double dBits = 0;
  double dLargestError = 0;  // half steps, of coefficients that did not become zero
};

// Runs the state machine through the frame. fnLevel(k, quantiser, coefficient in half steps)
// chooses each level.
template <typename Level>
S_Outcome Follow(const S_Coefficients& coefficients, int nIndex, Level fnLevel) {
  const C_PreviousFrame before = SilenceBefore(nIndex);
  S_Outcome outcome;
  S_Below below;
  std::size_t nState = kFirstState;
  for (std::size_t k = 0; k < kLength; ++k) {
    const auto nQuantiser = QuantiserOf(nState);
    const double dScaled =
        static_cast<double>(C_ToHalfSteps(nIndex)(std::abs(coefficients[k]))) / 256.0;
    const std::int32_t nLevel = fnLevel(k, static_cast<int>(nQuantiser), dScaled);
    const S_MagnitudeClass magnitudeClass = ClassOf(before.Expectation(k) + FromBelow(below));
    const std::int32_t nMagnitude = HalfSteps(nQuantiser, nLevel);
    const double dError = std::abs(dScaled - nMagnitude);
    outcome.dDistortion += dError * dError;
    outcome.dBits +=
        LevelCost(test::CostsOf(static_cast<std::size_t>(nQuantiser), magnitudeClass.nTable),
                  magnitudeClass.nShift, nLevel) /
        256.0;
    if (nLevel != 0) outcome.dLargestError = std::max(outcome.dLargestError, dError);
    below = below.Then(nMagnitude);
    nState = NextState(nState, static_cast<std::uint16_t>(nLevel));
  }
  return outcome;
}

S_Outcome OfSearch(const S_Coefficients& coefficients, int nIndex) {
  S_Levels levels(kLength);
  C_Trellis(static_cast<int>(kLength)).Search(coefficients, nIndex, SilenceBefore(nIndex), levels);
  return Follow(coefficients, nIndex, [&](std::size_t k, int, double) { return levels[k]; });
}

S_Outcome OfNearest(const S_Coefficients& coefficients, int nIndex) {
  return Follow(coefficients, nIndex, [](std::size_t, int nQuantiser, double dScaled) {
    const auto nLevel = static_cast<std::int32_t>(std::lround((dScaled + nQuantiser) / 2));
    return nLevel == 1 && dScaled < 0.5 ? 0 : nLevel;
  });
}

S_Coefficients RandomCoefficients(std::uint64_t qwSeed, double dMostSteps, int nIndex) {
  test::C_Random random(qwSeed);
  const auto nMost = static_cast<std::int64_t>(dMostSteps * std::exp2(nIndex / 4.0 - 2) * 256);
  S_Coefficients coefficients(kLength);
  for (std::int32_t& nValue : coefficients) {
    nValue =
        static_cast<std::int32_t>(random.Between(-nMost, nMost) * random.Between(0, 100) / 100);
  }
  return coefficients;
}

// The combined cost of distortion and bits. One bit counts as 0.48 squared half steps, about as in
// the search.
double Cost(const S_Outcome& outcome) { return outcome.dDistortion + 0.48 * outcome.dBits; }

TEST(HeronTrellis, ItsChoice_CostsLessThanTheNearestLevels) {
  for (const double dMostSteps : {1.0, 1.5, 3.0, 10.0, 100.0}) {
    double dSearched = 0;
    double dNearest = 0;
    for (std::uint64_t qwSeed = 1; qwSeed <= 40; ++qwSeed) {
      const auto coefficients = RandomCoefficients(qwSeed, dMostSteps, 30);
      const double dHere = Cost(OfSearch(coefficients, 30));
      const double dThere = Cost(OfNearest(coefficients, 30));
      EXPECT_LE(dHere, dThere * 1.01) << dMostSteps << ' ' << qwSeed;
      dSearched += dHere;
      dNearest += dThere;
    }
    EXPECT_LT(dSearched, dNearest) << dMostSteps;
  }
}

TEST(HeronTrellis, LargeCoefficients_AreDistortedLessThanByAPlainQuantiser) {
  // A plain quantiser with a step of 2 half steps leaves a distortion of 1/3; the trellis stays
  // below that without paying for it in bits.
  S_Outcome all;
  for (std::uint64_t qwSeed = 1; qwSeed <= 40; ++qwSeed) {
    all.dDistortion += OfSearch(RandomCoefficients(qwSeed, 1000, 12), 12).dDistortion;
  }
  EXPECT_LT(all.dDistortion / (40 * kLength), 0.30);
}

TEST(HeronTrellis, NoCoefficientThatIsKept_IsOffByMoreThanAStep) {
  for (const int nIndex : {0, 7, 30, 50, 71}) {
    for (const double dMostSteps : {1.0, 10.0, 100.0}) {
      for (std::uint64_t qwSeed = 1; qwSeed <= 10; ++qwSeed) {
        const auto coefficients = RandomCoefficients(qwSeed, dMostSteps, nIndex);
        EXPECT_LE(OfSearch(coefficients, nIndex).dLargestError, 2) << nIndex << ' ' << dMostSteps;
      }
    }
  }
}

TEST(HeronTrellis, ZeroCoefficients_GetZeroLevels) {
  S_Levels levels(kLength, 5);
  C_Trellis(static_cast<int>(kLength))
      .Search(S_Coefficients(kLength), 20, SilenceBefore(20), levels);
  EXPECT_EQ(levels, S_Levels(kLength));
}

TEST(HeronTrellis, TheSignOfACoefficient_MakesNoDifference) {
  S_Coefficients coefficients = RandomCoefficients(1, 10, 20);
  S_Levels levels(kLength);
  S_Levels mirrored(kLength);
  C_Trellis trellis(static_cast<int>(kLength));
  trellis.Search(coefficients, 20, SilenceBefore(20), levels);
  for (std::int32_t& nValue : coefficients) nValue = -nValue;
  trellis.Search(coefficients, 20, SilenceBefore(20), mirrored);
  EXPECT_EQ(levels, mirrored);
}

TEST(HeronTrellis, AnObjectUsedAgain_ChoosesAsANewOne) {
  C_Trellis used(static_cast<int>(kLength));
  S_Levels first(kLength);
  S_Levels again(kLength);
  used.Search(RandomCoefficients(1, 500, 20), 20, SilenceBefore(20), first);
  const auto coefficients = RandomCoefficients(2, 5, 20);
  used.Search(coefficients, 20, SilenceBefore(20), again);
  C_Trellis(static_cast<int>(kLength)).Search(coefficients, 20, SilenceBefore(20), first);
  EXPECT_EQ(first, again);
}

}  // namespace
}  // namespace heron
