// SPDX-License-Identifier: Apache-2.0
#include "heron/Trellis.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "Codes.h"
#include "Instructions.h"
#include "Signals.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using S_Coefficients = std::vector<std::int32_t>;
using S_Levels = std::vector<std::int32_t>;

constexpr std::size_t kUnitLength = 20;
constexpr std::size_t kLength = 160;
// No coefficient of a sound is larger: full scale in all samples that a part of 1920 sees.
const auto kLargest = static_cast<std::int32_t>(32768 * std::sqrt(2 * 1920.0) * 256);

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
  const auto nMost = static_cast<std::int64_t>(
      std::min<double>(dMostSteps * std::exp2(nIndex / 4.0 - 2) * 256, kLargest));
  S_Coefficients coefficients(nLength);
  for (std::int32_t& nValue : coefficients) {
    nValue =
        static_cast<std::int32_t>(random.Between(-nMost, nMost) * random.Between(0, 100) / 100);
  }
  return coefficients;
}

// The same cost in the units of the search: squared half steps, Q16.
template <typename T_Below>
std::uint64_t ExactCostBy(const S_Coefficients& coefficients, int nIndex,
                          const C_PartsBefore& before, const S_Levels& levels) {
  std::uint64_t qwCost = 0;
  T_Below below;
  std::size_t nState = kFirstState;
  for (std::size_t k = 0; k < coefficients.size(); ++k) {
    const std::size_t nQuantiser = QuantiserOf(nState);
    const auto [nTable, nShift] = ClassOf(before.Expectation(k) + below.Expectation());
    const std::int32_t nMagnitude = HalfSteps(nQuantiser, levels[k]);
    const std::int64_t nError =
        C_ToHalfSteps(nIndex)(std::abs(coefficients[k])) - std::int64_t{nMagnitude} * 256;
    const auto& costs = test::CostsOf(ModelOf<T_Below>(), nQuantiser, nTable);
    qwCost += static_cast<std::uint64_t>(nError * nError) +
              123 * static_cast<std::uint64_t>(LevelCost(costs, nShift, levels[k]));
    below = below.Then(nMagnitude);
    nState = NextState(nState, static_cast<std::uint64_t>(levels[k]));
  }
  return qwCost;
}
std::uint64_t ExactCost(bool bSteady, const S_Coefficients& coefficients, int nIndex,
                        const C_PartsBefore& before, const S_Levels& levels) {
  return bSteady ? ExactCostBy<C_SteadyBelow>(coefficients, nIndex, before, levels)
                 : ExactCostBy<C_NearBelow>(coefficients, nIndex, before, levels);
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
          const S_Levels levels = Searched(bSteady, coefficients, nIndex, before);
          const auto qwCost = ExactCost(bSteady, coefficients, nIndex, before, levels);
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
      const S_Levels levels = Searched(bSteady, coefficients, 20, before);
      ASSERT_EQ(ExactCost(bSteady, coefficients, 20, before, levels),
                LeastOfAll(bSteady, coefficients, 20, before))
          << qwSeed;
    }
  }
}

// ---- against a slow search

// The search as it is described, with costs of 64 bits that are never cut.
template <typename T_Below>
class C_SlowSearch {
 public:
  C_SlowSearch(int nIndex, const C_PartsBefore& before) : m_before(before), m_toHalfSteps(nIndex) {
    m_paths[kFirstState].bReached = true;
  }

  S_Levels LevelsOf(const S_Coefficients& coefficients) {
    for (std::size_t k = 0; k < coefficients.size(); ++k) {
      S_Paths next;
      for (std::size_t nState = 0; nState < kStates; ++nState) {
        if (m_paths[nState].bReached) {
          Extend(nState, k, m_toHalfSteps(std::abs(coefficients[k])), next);
        }
      }
      m_paths = next;
    }
    const S_Path* pBest = nullptr;
    for (const S_Path& path : m_paths) {
      if (path.bReached && (pBest == nullptr || path.qwCost < pBest->qwCost)) pBest = &path;
    }
    return pBest->levels;
  }

 private:
  struct S_Path {
    bool bReached = false;
    std::uint64_t qwCost = 0;
    T_Below below;
    S_Levels levels;
  };
  using S_Paths = std::array<S_Path, kStates>;

  void Extend(std::size_t nState, std::size_t k, std::int64_t nScaled, S_Paths& next) const {
    const std::int64_t nLower = (nScaled + (QuantiserOf(nState) == 1 ? 256 : 0)) / 512;
    Consider(nState, k, nScaled, nScaled < 128 ? 0 : nLower, next);
    if (nScaled < 128) return;
    Consider(nState, k, nScaled, nLower + 1, next);
    if (nLower == 1) Consider(nState, k, nScaled, 0, next);
  }

  void Consider(std::size_t nState, std::size_t k, std::int64_t nScaled, std::int64_t nWide,
                S_Paths& next) const {
    const S_Path& path = m_paths[nState];
    const std::size_t nQuantiser = QuantiserOf(nState);
    const auto nLevel = static_cast<std::int32_t>(nWide);
    const std::int32_t nMagnitude = HalfSteps(nQuantiser, nLevel);
    const auto [nTable, nShift] = ClassOf(m_before.Expectation(k) + path.below.Expectation());
    const std::int64_t nError = nScaled - std::int64_t{nMagnitude} * 256;
    const auto nBits =
        LevelCost(test::CostsOf(ModelOf<T_Below>(), nQuantiser, nTable), nShift, nLevel);
    const std::uint64_t qwCost = path.qwCost + static_cast<std::uint64_t>(nError * nError) +
                                 123 * static_cast<std::uint64_t>(nBits);
    S_Path& to = next[NextState(nState, static_cast<std::uint64_t>(nLevel))];
    if (to.bReached && to.qwCost <= qwCost) return;
    to = {true, qwCost, path.below.Then(nMagnitude), path.levels};
    to.levels.push_back(nLevel);
  }

  const C_PartsBefore& m_before;
  C_ToHalfSteps m_toHalfSteps;
  S_Paths m_paths;
};

S_Levels SlowSearch(bool bSteady, const S_Coefficients& coefficients, int nIndex,
                    const C_PartsBefore& before) {
  return bSteady ? C_SlowSearch<C_SteadyBelow>(nIndex, before).LevelsOf(coefficients)
                 : C_SlowSearch<C_NearBelow>(nIndex, before).LevelsOf(coefficients);
}

class HeronTrellisInstructions : public testing::TestWithParam<vcm::tagInstructions> {
 protected:
  HeronTrellisInstructions() { vcm::LimitInstructions(GetParam()); }

 private:
  test::C_InstructionsKept m_kept;
};
INSTANTIATE_TEST_SUITE_P(Kinds, HeronTrellisInstructions,
                         testing::ValuesIn(test::kAllInstructions));

TEST_P(HeronTrellisInstructions, OfEveryKind_FindWhatTheSlowSearchFinds) {
  for (const bool bSteady : {false, true}) {
    for (const int nIndex : {0, 3, 30, 71}) {
      for (const double dMostSteps : {0.3, 1.0, 3.0, 40.0, 1e4, 1e9}) {
        for (std::uint64_t qwSeed = 1; qwSeed <= 6; ++qwSeed) {
          const C_PartsBefore before = Before(bSteady, nIndex, qwSeed % 2 == 0);
          const std::size_t nLength = qwSeed < 3 ? kLength : 50 + 7 * qwSeed;
          const auto coefficients = RandomCoefficients(qwSeed, dMostSteps, nIndex, nLength);
          ASSERT_EQ(Searched(bSteady, coefficients, nIndex, before),
                    SlowSearch(bSteady, coefficients, nIndex, before))
              << bSteady << ' ' << nIndex << ' ' << dMostSteps << ' ' << qwSeed;
        }
      }
    }
  }
}

TEST_P(HeronTrellisInstructions, OfTheDearestLevels_FindWhatTheSlowSearchFinds) {
  // Silence, then the largest coefficients of sounds: the escapes are as long as can be. Many of
  // them in a row bring the costs as high as they come.
  for (const bool bSteady : {false, true}) {
    for (const int nIndex : {0, 1, 20}) {
      for (const std::size_t nPeriod : {1u, 2u, 5u, 17u, 63u, 64u, 65u}) {
        S_Coefficients coefficients(kLength);
        for (std::size_t k = 0; k < kLength; ++k) {
          if (k % (2 * nPeriod) >= nPeriod) coefficients[k] = k % 3 == 0 ? -kLargest : kLargest;
          // Just below and at the least coefficient that gets a level.
          if (k % 7 == 0) {
            coefficients[k] = HalfStep(nIndex) * (127 + static_cast<int>(k % 2)) / 256;
          }
        }
        const C_PartsBefore before = Before(bSteady, nIndex);
        ASSERT_EQ(Searched(bSteady, coefficients, nIndex, before),
                  SlowSearch(bSteady, coefficients, nIndex, before))
            << bSteady << ' ' << nIndex << ' ' << nPeriod;
      }
    }
  }
}

TEST_P(HeronTrellisInstructions, OfWholeHalfSteps_BreakTiesInTheSameWay) {
  test::C_Random random(9);
  for (const bool bSteady : {false, true}) {
    for (int nRound = 0; nRound < 60; ++nRound) {
      S_Coefficients coefficients(kLength);
      for (std::int32_t& nValue : coefficients) {
        nValue = static_cast<std::int32_t>(random.Below(9)) * HalfStep(12) / 2;
      }
      const C_PartsBefore before = Before(bSteady, 12, nRound % 2 == 0);
      ASSERT_EQ(Searched(bSteady, coefficients, 12, before),
                SlowSearch(bSteady, coefficients, 12, before))
          << bSteady << ' ' << nRound;
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
      EXPECT_LE(OfSearch(bSteady, S_Coefficients(20, kLargest), nIndex).dLargestError, 2)
          << bSteady << ' ' << nIndex;
    }
  }
}

TEST(HeronTrellis, LargestCoefficients_StayWithinTheLargestMultiple) {
  // A reader refuses larger magnitudes.
  for (const bool bSteady : {false, true}) {
    for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
      for (const bool bLoud : {false, true}) {
        const S_Coefficients coefficients(20, kLargest);
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

TEST(HeronTrellis, APartOfNoCoefficients_GetsNoLevels) {
  for (const bool bSteady : {false, true}) {
    EXPECT_TRUE(Searched(bSteady, {}, 20, Before(bSteady, 20)).empty());
  }
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
