// SPDX-License-Identifier: Apache-2.0
#include "heron/Trellis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Codes.h"
#include "Signals.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using S_Coefficients = std::vector<std::int32_t>;
using S_Levels = std::vector<std::int32_t>;

constexpr std::size_t kUnitLength = 20;
constexpr std::size_t kLength = 160;

// The expectations of a part of eight units with nothing before it, or after a loud part.
C_PartsBefore Before(bool bSteady, int nIndex, bool bLoud = false) {
  C_PartsBefore before(kUnitLength);
  if (bLoud) before.End(nIndex, kPartSizes - 1, S_Levels(kLength, 9));
  if (bSteady) before.BeginSteady(nIndex, kPartSizes - 1);
  if (!bSteady) before.BeginNear(nIndex, kLength);
  return before;
}

// The distortion and the bits that a choice of levels leads to.
struct S_Outcome {
  double dDistortion = 0;  // squared half steps
  double dBits = 0;
  double dLargestError = 0;  // half steps, of coefficients that did not become zero
};

// Runs the state machine through the part. fnLevel(k, quantiser, coefficient in half steps) chooses
// each level.
template <typename T_Below, typename Level>
S_Outcome FollowBy(const S_Coefficients& coefficients, int nIndex, const C_PartsBefore& before,
                   Level fnLevel) {
  S_Outcome outcome;
  T_Below below;
  std::size_t nState = kFirstState;
  for (std::size_t k = 0; k < coefficients.size(); ++k) {
    const std::size_t nQuantiser = QuantiserOf(nState);
    const double dScaled =
        static_cast<double>(C_ToHalfSteps(nIndex)(std::abs(coefficients[k]))) / 256.0;
    const std::int32_t nLevel = fnLevel(k, static_cast<int>(nQuantiser), dScaled);
    const S_MagnitudeClass magnitudeClass = ClassOf(before.Expectation(k) + below.Expectation());
    const std::int32_t nMagnitude = HalfSteps(nQuantiser, nLevel);
    const double dError = std::abs(dScaled - nMagnitude);
    outcome.dDistortion += dError * dError;
    outcome.dBits += LevelCost(test::CostsOf(ModelOf<T_Below>(), nQuantiser, magnitudeClass.nTable),
                               magnitudeClass.nShift, nLevel) /
                     256.0;
    if (nLevel != 0) outcome.dLargestError = std::max(outcome.dLargestError, dError);
    below = below.Then(nMagnitude);
    nState = NextState(nState, static_cast<std::uint64_t>(nLevel));
  }
  return outcome;
}

template <typename Level>
S_Outcome Follow(bool bSteady, const S_Coefficients& coefficients, int nIndex,
                 const C_PartsBefore& before, Level fnLevel) {
  return bSteady ? FollowBy<C_SteadyBelow>(coefficients, nIndex, before, fnLevel)
                 : FollowBy<C_NearBelow>(coefficients, nIndex, before, fnLevel);
}

// The combined cost of distortion and bits. One bit counts as 0.48 squared half steps, as in the
// search.
double Cost(const S_Outcome& outcome) {
  return outcome.dDistortion + 123 * 256.0 / 65536 * outcome.dBits;
}

S_Levels Searched(bool bSteady, const S_Coefficients& coefficients, int nIndex,
                  const C_PartsBefore& before) {
  S_Levels levels(coefficients.size(), 77);
  C_Trellis(kLength).Search(bSteady, coefficients, nIndex, before, levels);
  return levels;
}

S_Outcome OfSearch(bool bSteady, const S_Coefficients& coefficients, int nIndex) {
  const C_PartsBefore before = Before(bSteady, nIndex);
  const S_Levels levels = Searched(bSteady, coefficients, nIndex, before);
  return Follow(bSteady, coefficients, nIndex, before,
                [&](std::size_t k, int, double) { return levels[k]; });
}

S_Outcome OfNearest(bool bSteady, const S_Coefficients& coefficients, int nIndex) {
  return Follow(bSteady, coefficients, nIndex, Before(bSteady, nIndex),
                [](std::size_t, int nQuantiser, double dScaled) {
                  const auto nLevel =
                      static_cast<std::int32_t>(std::lround((dScaled + nQuantiser) / 2));
                  return nLevel == 1 && dScaled < 0.5 ? 0 : nLevel;
                });
}

S_Coefficients RandomCoefficients(std::uint64_t qwSeed, double dMostSteps, int nIndex,
                                  std::size_t nLength = kLength) {
  test::C_Random random(qwSeed);
  const auto nMost = static_cast<std::int64_t>(dMostSteps * std::exp2(nIndex / 4.0 - 2) * 256);
  S_Coefficients coefficients(nLength);
  for (std::int32_t& nValue : coefficients) {
    nValue =
        static_cast<std::int32_t>(random.Between(-nMost, nMost) * random.Between(0, 100) / 100);
  }
  return coefficients;
}

// ---- against all choices

// Tries all choices that the search may make: the two levels around each coefficient and zero, but
// only zero for less than half a half step.
template <typename T_Below>
class C_AllChoices {
 public:
  C_AllChoices(const S_Coefficients& coefficients, int nIndex, const C_PartsBefore& before)
      : m_coefficients(coefficients), m_before(before), m_toHalfSteps(nIndex) {
    Try(0, kFirstState, {}, 0);
  }
  [[nodiscard]] std::uint64_t Least() const { return m_qwLeast; }

 private:
  void Try(std::size_t k, std::size_t nState, const T_Below& below, std::uint64_t qwCost) {
    if (k == m_coefficients.size()) {
      m_qwLeast = std::min(m_qwLeast, qwCost);
      return;
    }
    const std::int64_t nScaled = m_toHalfSteps(std::abs(m_coefficients[k]));
    const std::size_t nQuantiser = QuantiserOf(nState);
    const auto [nTable, nShift] = ClassOf(m_before.Expectation(k) + below.Expectation());
    const auto& costs = test::CostsOf(ModelOf<T_Below>(), nQuantiser, nTable);
    const auto nMost = static_cast<std::int32_t>(nScaled / 256 / 2 + 2);
    for (std::int32_t nLevel = 0; nLevel <= nMost; ++nLevel) {
      const std::int32_t nMagnitude = HalfSteps(nQuantiser, nLevel);
      const std::int64_t nError = nScaled - std::int64_t{nMagnitude} * 256;
      const bool bAround = std::abs(nError) <= 512;
      const bool bZero = nLevel == 0 && nScaled < HalfSteps(nQuantiser, 2) * 256;
      if (!bZero && (!bAround || nScaled < 128)) continue;
      const auto qwHere = static_cast<std::uint64_t>(nError * nError) +
                          123 * static_cast<std::uint64_t>(LevelCost(costs, nShift, nLevel));
      Try(k + 1, NextState(nState, static_cast<std::uint64_t>(nLevel)), below.Then(nMagnitude),
          qwCost + qwHere);
    }
  }

  const S_Coefficients& m_coefficients;
  const C_PartsBefore& m_before;
  C_ToHalfSteps m_toHalfSteps;
  std::uint64_t m_qwLeast = std::numeric_limits<std::uint64_t>::max();
};

std::uint64_t LeastOfAll(bool bSteady, const S_Coefficients& coefficients, int nIndex,
                         const C_PartsBefore& before) {
  return bSteady ? C_AllChoices<C_SteadyBelow>(coefficients, nIndex, before).Least()
                 : C_AllChoices<C_NearBelow>(coefficients, nIndex, before).Least();
}

TEST(HeronTrellis, OfShortParts_IsNearTheBestOfAllChoices) {
  for (const bool bSteady : {false, true}) {
    int nBest = 0;
    int nAll = 0;
    double dSearched = 0;
    double dLeast = 0;
    for (const int nIndex : {0, 12, 30, 71}) {
      for (const double dMostSteps : {0.7, 2.0, 20.0}) {
        for (std::uint64_t qwSeed = 1; qwSeed <= 20; ++qwSeed) {
          const bool bLoud = qwSeed % 2 == 0;
          const C_PartsBefore before = Before(bSteady, nIndex, bLoud);
          const auto coefficients = RandomCoefficients(qwSeed, dMostSteps, nIndex, 9);
          S_Levels levels(coefficients.size());
          const auto qwCost =
              C_Trellis(kLength).Search(bSteady, coefficients, nIndex, before, levels);
          const auto qwLeast = LeastOfAll(bSteady, coefficients, nIndex, before);
          // The expectations depend on the path, so a path that is given up early may have been
          // the best.
          ASSERT_GE(qwCost, qwLeast) << nIndex << ' ' << dMostSteps << ' ' << qwSeed;
          nBest += qwCost == qwLeast ? 1 : 0;
          ++nAll;
          dSearched += static_cast<double>(qwCost);
          dLeast += static_cast<double>(qwLeast);
        }
      }
    }
    EXPECT_GT(nBest, nAll * 9 / 10);
    EXPECT_LT(dSearched, dLeast * 1.005);
  }
}

TEST(HeronTrellis, OfOneOrTwoCoefficients_IsTheBestOfAllChoices) {
  for (const bool bSteady : {false, true}) {
    for (std::uint64_t qwSeed = 1; qwSeed <= 500; ++qwSeed) {
      const C_PartsBefore before = Before(bSteady, 20, qwSeed % 2 == 0);
      const auto coefficients = RandomCoefficients(qwSeed, 4, 20, 1 + qwSeed % 2);
      S_Levels levels(coefficients.size());
      ASSERT_EQ(C_Trellis(kLength).Search(bSteady, coefficients, 20, before, levels),
                LeastOfAll(bSteady, coefficients, 20, before))
          << qwSeed;
    }
  }
}

TEST(HeronTrellis, ItsCost_IsThatOfItsLevels) {
  for (const bool bSteady : {false, true}) {
    for (const int nIndex : {0, 25, 71}) {
      for (const double dMostSteps : {1.0, 10.0, 70.0}) {
        const C_PartsBefore before = Before(bSteady, nIndex, true);
        const auto coefficients = RandomCoefficients(3, dMostSteps, nIndex);
        S_Levels levels(kLength);
        const auto qwCost =
            C_Trellis(kLength).Search(bSteady, coefficients, nIndex, before, levels);
        const S_Outcome outcome = Follow(bSteady, coefficients, nIndex, before,
                                         [&](std::size_t k, int, double) { return levels[k]; });
        EXPECT_NEAR(static_cast<double>(qwCost) / 65536, Cost(outcome), 1e-6 * Cost(outcome));
      }
    }
  }
}

// ---- against plainer choices

TEST(HeronTrellis, ItsChoice_CostsLessThanTheNearestLevels) {
  for (const bool bSteady : {false, true}) {
    for (const double dMostSteps : {1.0, 1.5, 3.0, 10.0, 100.0}) {
      double dSearched = 0;
      double dNearest = 0;
      for (std::uint64_t qwSeed = 1; qwSeed <= 40; ++qwSeed) {
        const auto coefficients = RandomCoefficients(qwSeed, dMostSteps, 30);
        const double dHere = Cost(OfSearch(bSteady, coefficients, 30));
        const double dThere = Cost(OfNearest(bSteady, coefficients, 30));
        EXPECT_LE(dHere, dThere * 1.01) << bSteady << ' ' << dMostSteps << ' ' << qwSeed;
        dSearched += dHere;
        dNearest += dThere;
      }
      EXPECT_LT(dSearched, dNearest) << bSteady << ' ' << dMostSteps;
    }
  }
}

TEST(HeronTrellis, LargeCoefficients_AreDistortedLessThanByAPlainQuantiser) {
  // A plain quantiser with a step of 2 half steps leaves a distortion of 1/3; the trellis stays
  // below that without paying for it in bits.
  for (const bool bSteady : {false, true}) {
    S_Outcome all;
    for (std::uint64_t qwSeed = 1; qwSeed <= 40; ++qwSeed) {
      all.dDistortion += OfSearch(bSteady, RandomCoefficients(qwSeed, 1000, 12), 12).dDistortion;
    }
    EXPECT_LT(all.dDistortion / (40 * kLength), 0.30) << bSteady;
  }
}

TEST(HeronTrellis, NoCoefficientThatIsKept_IsOffByMoreThanAStep) {
  for (const bool bSteady : {false, true}) {
    for (const int nIndex : {0, 7, 30, 50, 71}) {
      for (const double dMostSteps : {1.0, 10.0, 70.0}) {
        for (std::uint64_t qwSeed = 1; qwSeed <= 10; ++qwSeed) {
          const auto coefficients = RandomCoefficients(qwSeed, dMostSteps, nIndex);
          EXPECT_LE(OfSearch(bSteady, coefficients, nIndex).dLargestError, 2)
              << bSteady << ' ' << nIndex << ' ' << dMostSteps;
        }
      }
    }
  }
}

// ---- edges

TEST(HeronTrellis, LargestCoefficients_AreNotOffByMoreThanAStep) {
  for (const bool bSteady : {false, true}) {
    for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
      const S_Coefficients coefficients(20, static_cast<std::int32_t>(kMaxCoefficient));
      EXPECT_LE(OfSearch(bSteady, coefficients, nIndex).dLargestError, 2)
          << bSteady << ' ' << nIndex;
    }
  }
}

TEST(HeronTrellis, LargestCoefficientsOfSounds_StayWithinTheLargestMultiple) {
  // Full scale in all samples that a part of 1920 sees. A reader refuses larger magnitudes.
  const auto nLargest = static_cast<std::int32_t>(32768 * std::sqrt(2 * 1920.0) * 256);
  for (const bool bSteady : {false, true}) {
    for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
      for (const bool bLoud : {false, true}) {
        const S_Coefficients coefficients(20, nLargest);
        const C_PartsBefore before = Before(bSteady, nIndex, bLoud);
        const S_Levels levels = Searched(bSteady, coefficients, nIndex, before);
        std::size_t nState = kFirstState;
        for (const std::int32_t nLevel : levels) {
          ASSERT_LE(HalfSteps(QuantiserOf(nState), nLevel), LargestMultiple(nIndex)) << nIndex;
          nState = NextState(nState, static_cast<std::uint64_t>(nLevel));
        }
      }
    }
  }
}

TEST(HeronTrellis, LessThanHalfAHalfStep_BecomesZero) {
  for (const bool bSteady : {false, true}) {
    // 127/256 of a half step; the parts before make larger levels likely.
    const S_Coefficients coefficients(kLength, HalfStep(20) * 127 / 256);
    const S_Levels levels = Searched(bSteady, coefficients, 20, Before(bSteady, 20, true));
    EXPECT_EQ(levels, S_Levels(kLength)) << bSteady;
  }
}

TEST(HeronTrellis, ZeroCoefficients_GetZeroLevels) {
  for (const bool bSteady : {false, true}) {
    const S_Levels levels = Searched(bSteady, S_Coefficients(kLength), 20, Before(bSteady, 20));
    EXPECT_EQ(levels, S_Levels(kLength)) << bSteady;
  }
}

TEST(HeronTrellis, APartOfNoCoefficients_CostsNothing) {
  EXPECT_EQ(C_Trellis(kLength).Search(false, {}, 20, Before(false, 20), {}), 0u);
}

TEST(HeronTrellis, TheSignOfACoefficient_MakesNoDifference) {
  for (const bool bSteady : {false, true}) {
    S_Coefficients coefficients = RandomCoefficients(1, 10, 20);
    const C_PartsBefore before = Before(bSteady, 20);
    const S_Levels levels = Searched(bSteady, coefficients, 20, before);
    for (std::int32_t& nValue : coefficients) nValue = -nValue;
    EXPECT_EQ(levels, Searched(bSteady, coefficients, 20, before)) << bSteady;
  }
}

TEST(HeronTrellis, AnObjectUsedAgain_ChoosesAsANewOne) {
  C_Trellis used(kLength);
  S_Levels levels(kLength);
  used.Search(true, RandomCoefficients(1, 500, 20), 20, Before(true, 20), levels);
  for (const bool bSteady : {false, true}) {
    const auto coefficients = RandomCoefficients(2, 5, 20);
    const C_PartsBefore before = Before(bSteady, 20);
    used.Search(bSteady, coefficients, 20, before, levels);
    EXPECT_EQ(levels, Searched(bSteady, coefficients, 20, before)) << bSteady;
  }
}

}  // namespace
}  // namespace heron
