// SPDX-License-Identifier: Apache-2.0
//
// The expectations against a slow model that is written from their description.
#include "heron/Neighbourhood.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "Instructions.h"
#include "Signals.h"
#include "heron/Configuration.h"
#include "heron/MagnitudeCode.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using S_Magnitudes = std::vector<std::int32_t>;
using test::C_Random;

constexpr std::int32_t kMostMagnitude = 1 << 24;

// a / b, rounded down also below 0; b is positive.
std::int64_t Quotient(std::int64_t a, std::int64_t b) { return a / b - (a % b < 0 ? 1 : 0); }

class C_Model {
 public:
  explicit C_Model(std::size_t nUnitLength) : m_bands(nUnitLength) {}

  void Forget() { m_before.clear(); }

  [[nodiscard]] std::int64_t Near(int nIndex, std::size_t nLength, std::size_t k) const {
    if (m_before.empty()) return 8;
    const auto at = [&](std::ptrdiff_t n) { return BeforeAt(n, nLength); };
    const auto n = static_cast<std::ptrdiff_t>(k);
    const std::int64_t nSum = 8 * at(n) + 5 * (at(n - 1) + at(n + 1)) + 2 * (at(n - 2) + at(n + 2));
    return 8 + Rescaled(std::min(nSum, std::int64_t{1} << 22), m_nIndex - nIndex);
  }

  [[nodiscard]] std::int64_t Steady(int nIndex, std::size_t nSize, std::size_t k) const {
    const std::int64_t nBand = m_bands[k >> nSize];
    return std::min(8 + nBand * 40 / HalfStep(nIndex), std::int64_t{1} << 31);
  }

  void End(int nIndex, std::size_t nSize, const S_Magnitudes& magnitudes) {
    m_nIndex = nIndex;
    m_before = magnitudes;
    // The averages halve in 16 units of 5 ms.
    const auto nUnits = static_cast<std::int64_t>(1) << nSize;
    const std::int64_t nShare =
        std::lround(256 * (1 - std::exp2(-static_cast<double>(nUnits) / 16)));
    for (std::size_t nBand = 0; nBand < m_bands.size(); ++nBand) {
      std::int64_t nSum = 0;
      for (std::size_t n = 0; n < std::size_t{1} << nSize; ++n) {
        nSum += magnitudes[(nBand << nSize) + n];
      }
      const std::int64_t nMean = nSum * HalfStep(nIndex) / nUnits;
      m_bands[nBand] +=
          m_bKnown ? Quotient((nMean - m_bands[nBand]) * nShare, 256) : nMean - m_bands[nBand];
    }
    m_bKnown = true;
  }

 private:
  // The magnitude of the part before at the frequency of coefficient n of a part of this length.
  [[nodiscard]] std::int64_t BeforeAt(std::ptrdiff_t n, std::size_t nLength) const {
    if (n < 0 || n >= static_cast<std::ptrdiff_t>(nLength)) return 0;
    const auto k = static_cast<std::size_t>(n);
    if (m_before.size() <= nLength) return m_before[k * m_before.size() / nLength];
    const std::size_t nRatio = m_before.size() / nLength;
    std::int64_t nSum = 0;
    for (std::size_t i = 0; i < nRatio; ++i) nSum += m_before[k * nRatio + i];
    return nSum / static_cast<std::int64_t>(nRatio);
  }
  // Times 2^(nDifference / 4), but less than 2^9; the mantissa of the factor is cut to 8 bits.
  static std::int64_t Rescaled(std::int64_t nSum, int nDifference) {
    const std::int64_t nOctaves = Quotient(nDifference, 4);
    const auto nQuarters = static_cast<double>(nDifference - 4 * nOctaves);
    const auto nMantissa = static_cast<std::int64_t>(256 * std::exp2(nQuarters / 4));
    return static_cast<std::int64_t>(
        std::ldexp(static_cast<double>(nSum * nMantissa),
                   static_cast<int>(std::min<std::int64_t>(nOctaves, 8)) - 8));
  }

  int m_nIndex = 0;
  S_Magnitudes m_before;
  std::vector<std::int64_t> m_bands;
  bool m_bKnown = false;
};

// Magnitudes of one of several kinds: none, few, of all sizes, the largest possible.
S_Magnitudes RandomMagnitudes(C_Random& random, std::size_t nLength, int nIndex) {
  const std::uint32_t nKind = random.Below(5);
  const std::int32_t nLargest = std::min(LargestMultiple(nIndex), kMostMagnitude);
  S_Magnitudes magnitudes(nLength);
  for (std::int32_t& nMagnitude : magnitudes) {
    if (nKind == 1) nMagnitude = random.Below(8) == 0 ? 1 : 0;
    if (nKind == 2) nMagnitude = static_cast<std::int32_t>(random.Below(20));
    if (nKind == 3) {
      const auto nLimit = static_cast<std::uint32_t>(nLargest) + 1;
      nMagnitude = static_cast<std::int32_t>(random.Below(nLimit) >> random.Below(25));
    }
    if (nKind == 4) nMagnitude = nLargest;
  }
  return magnitudes;
}

void ExpectAll(const C_PartsBefore& before, std::size_t nLength, const char* pszWhich,
               const std::function<std::int64_t(std::size_t)>& fnExpected) {
  for (std::size_t k = 0; k < nLength; ++k) {
    ASSERT_EQ(std::int64_t{before.Expectation(k)}, fnExpected(k)) << pszWhich << ' ' << k;
  }
}

// Expects that both agree on what they say about a part of this size at all of some indices.
void ExpectAgreement(C_PartsBefore& before, const C_Model& model, std::size_t nUnitLength,
                     std::size_t nSize, const std::vector<int>& indices) {
  const std::size_t nLength = nUnitLength << nSize;
  for (const int nIndex : indices) {
    before.BeginNear(nIndex, nLength);
    ASSERT_NO_FATAL_FAILURE(ExpectAll(
        before, nLength, "near", [&](std::size_t k) { return model.Near(nIndex, nLength, k); }));
    before.BeginSteady(nIndex, nSize);
    ASSERT_NO_FATAL_FAILURE(ExpectAll(
        before, nLength, "steady", [&](std::size_t k) { return model.Steady(nIndex, nSize, k); }));
  }
}

// ---- the parts before

class HeronPartsBeforeInstructions : public testing::TestWithParam<vcm::tagInstructions> {
 protected:
  HeronPartsBeforeInstructions() { vcm::LimitInstructions(GetParam()); }

 private:
  test::C_InstructionsKept m_kept;
};
INSTANTIATE_TEST_SUITE_P(Kinds, HeronPartsBeforeInstructions,
                         testing::ValuesIn(test::kAllInstructions));

TEST_P(HeronPartsBeforeInstructions, AfterRandomParts_ExpectWhatTheModelExpects) {
  C_Random random(1);
  for (const std::size_t nUnitLength : {20u, 22u, 54u, 238u, 240u}) {
    C_PartsBefore before(nUnitLength);
    C_Model model(nUnitLength);
    int nIndex = 30;
    for (int nPart = 0; nPart < 150; ++nPart) {
      SCOPED_TRACE(testing::Message() << nUnitLength << ' ' << nPart);
      const std::size_t nSize = random.Below(kPartSizes);
      // Steps stay alike for some parts and then jump.
      nIndex = random.Below(3) == 0 ? static_cast<int>(random.Below(kSteps)) : nIndex;
      if (random.Below(6) == 0) {
        before.Forget();
        model.Forget();
      }
      ASSERT_NO_FATAL_FAILURE(ExpectAgreement(before, model, nUnitLength, nSize,
                                              {nIndex, static_cast<int>(random.Below(kSteps))}));
      const S_Magnitudes magnitudes = RandomMagnitudes(random, nUnitLength << nSize, nIndex);
      before.End(nIndex, nSize, magnitudes);
      model.End(nIndex, nSize, magnitudes);
    }
  }
}

TEST(HeronPartsBefore, AfterTheLargestMagnitudes_StayWithin32BitsAtEveryIndex) {
  for (std::size_t nBeforeSize = 0; nBeforeSize < kPartSizes; ++nBeforeSize) {
    for (int nFrom = 0; nFrom < kSteps; ++nFrom) {
      C_PartsBefore before(20);
      const std::int32_t nLargest = std::min(LargestMultiple(nFrom), kMostMagnitude);
      before.End(nFrom, nBeforeSize, S_Magnitudes(std::size_t{20} << nBeforeSize, nLargest));
      before.End(nFrom, nBeforeSize, S_Magnitudes(std::size_t{20} << nBeforeSize, nLargest));
      for (int nTo = 0; nTo < kSteps; ++nTo) {
        for (std::size_t nSize = 0; nSize < kPartSizes; ++nSize) {
          const std::size_t nLength = std::size_t{20} << nSize;
          before.BeginNear(nTo, nLength);
          for (std::size_t k = 0; k < nLength; ++k) {
            ASSERT_GE(before.Expectation(k), 8u);
            ASSERT_LE(before.Expectation(k), 1u << 31);
          }
          before.BeginSteady(nTo, nSize);
          for (std::size_t k = 0; k < nLength; ++k) {
            ASSERT_GE(before.Expectation(k), 8u);
            ASSERT_LE(before.Expectation(k), 1u << 31);
          }
        }
      }
    }
  }
}

TEST(HeronPartsBefore, InTheBeginning_ExpectTheLeast) {
  C_PartsBefore before(20);
  for (std::size_t nSize = 0; nSize < kPartSizes; ++nSize) {
    const std::size_t nLength = std::size_t{20} << nSize;
    before.BeginNear(0, nLength);
    ASSERT_NO_FATAL_FAILURE(ExpectAll(before, nLength, "near", [](std::size_t) { return 8; }));
    before.BeginSteady(0, nSize);
    ASSERT_NO_FATAL_FAILURE(ExpectAll(before, nLength, "steady", [](std::size_t) { return 8; }));
  }
}

TEST(HeronPartsBefore, ForgottenParts_LeaveOnlyTheirBands) {
  C_PartsBefore before(20);
  before.End(12, 0, S_Magnitudes(20, 10));
  before.Forget();
  before.BeginNear(12, 20);
  EXPECT_EQ(before.Expectation(5), 8u);
  before.BeginSteady(12, 0);
  EXPECT_EQ(before.Expectation(5), 8u + 40 * 10);
  // The next part ends the silence.
  before.End(12, 0, S_Magnitudes(20, 1));
  before.BeginNear(12, 20);
  EXPECT_EQ(before.Expectation(5), 8u + 22);
}

TEST(HeronPartsBefore, OneMagnitude_IsSeenFiveTimes) {
  C_PartsBefore before(20);
  S_Magnitudes magnitudes(20);
  magnitudes[10] = 100;
  before.End(30, 0, magnitudes);
  before.BeginNear(30, 20);
  const std::vector<std::uint32_t> expected = {8, 208, 508, 808, 508, 208, 8};
  for (std::size_t n = 0; n < expected.size(); ++n) {
    EXPECT_EQ(before.Expectation(7 + n), expected[n]) << n;
  }
}

TEST(HeronPartsBefore, OneMagnitudeOfALongPart_CountsAnEighthInAShortOne) {
  C_PartsBefore before(20);
  S_Magnitudes magnitudes(160);
  magnitudes[83] = 100;  // of coefficient 10 of a unit
  before.End(30, 3, magnitudes);
  before.BeginNear(30, 20);
  EXPECT_EQ(before.Expectation(9), 8u + 5 * 12);
  EXPECT_EQ(before.Expectation(10), 8u + 8 * 12);
  EXPECT_EQ(before.Expectation(13), 8u);
}

TEST(HeronPartsBefore, OneMagnitudeOfAShortPart_IsSharedInALongOne) {
  C_PartsBefore before(20);
  S_Magnitudes magnitudes(20);
  magnitudes[10] = 100;
  before.End(30, 0, magnitudes);
  before.BeginNear(30, 160);
  EXPECT_EQ(before.Expectation(77), 8u);
  EXPECT_EQ(before.Expectation(79), 8u + 700);
  EXPECT_EQ(before.Expectation(83), 8u + 2200);
  EXPECT_EQ(before.Expectation(88), 8u + 700);
  EXPECT_EQ(before.Expectation(90), 8u);
}

TEST(HeronPartsBefore, AShorterPartAfterALongOne_SeesNothingOfItAboveItsEnd) {
  // Long, short, then long again: what the first left in the buffers must not be seen.
  C_PartsBefore before(20);
  before.End(30, 3, S_Magnitudes(160, 1000));
  before.End(30, 0, S_Magnitudes(20));
  before.BeginNear(30, 20);
  ASSERT_NO_FATAL_FAILURE(ExpectAll(before, 20, "short", [](std::size_t) { return 8; }));
  before.BeginNear(30, 160);
  ASSERT_NO_FATAL_FAILURE(ExpectAll(before, 160, "long", [](std::size_t) { return 8; }));
}

TEST(HeronPartsBefore, BandsOfAllSizes_HalveIn80Milliseconds) {
  for (std::size_t nSize = 0; nSize < kPartSizes; ++nSize) {
    const std::size_t nLength = std::size_t{20} << nSize;
    C_PartsBefore before(20);
    before.End(12, nSize, S_Magnitudes(nLength, 100000));
    for (std::size_t nUnit = 0; nUnit < 16; nUnit += std::size_t{1} << nSize) {
      before.End(12, nSize, S_Magnitudes(nLength));
    }
    before.BeginSteady(12, nSize);
    EXPECT_NEAR(before.Expectation(0) / 40.0, 50000, 1000) << nSize;
  }
}

// ---- what is below

TEST(HeronNearBelow, TheLastThree_CountByTheirWeights) {
  C_Random random(2);
  C_NearBelow below;
  EXPECT_EQ(below.Expectation(), 0u);
  std::vector<std::int64_t> all = {0, 0, 0};
  for (int n = 0; n < 10000; ++n) {
    const auto nMagnitude = static_cast<std::int32_t>(random.Below((1 << 24) + 1));
    all.push_back(nMagnitude >> random.Below(25));
    below = below.Then(static_cast<std::int32_t>(all.back()));
    const auto end = all.end();
    ASSERT_EQ(below.Expectation(), 30 * end[-1] + 12 * end[-2] + 5 * end[-3]);
  }
}

TEST(HeronNearBelow, TheLargest_StayBelowTheirBound) {
  C_NearBelow below;
  for (int n = 0; n < 5; ++n) below = below.Then(kMostMagnitude);
  EXPECT_EQ(below.Expectation(), 47u << 24);
  EXPECT_LT(below.Expectation(), 1u << 30);
}

TEST(HeronSteadyBelow, TheAverage_FollowsItsDefinition) {
  C_Random random(3);
  for (const std::uint32_t nMost : {1u, 3u, 100u, 1u << 24}) {
    C_SteadyBelow below;
    EXPECT_EQ(below.Expectation(), 0u);
    double dAverage = 0;
    for (int n = 0; n < 10000; ++n) {
      const auto nMagnitude = static_cast<std::int32_t>(random.Below(nMost + 1));
      below = below.Then(nMagnitude);
      dAverage = dAverage * 13 / 16 + 24.0 * nMagnitude * 3 / 16;
      // Each step rounds by less than one, and 13/16 of that stays.
      ASSERT_NEAR(below.Expectation(), dAverage, 16 / 3.0) << nMost << ' ' << n;
    }
  }
}

TEST(HeronSteadyBelow, TheLargest_StayBelowTheirBound) {
  C_SteadyBelow below;
  for (int n = 0; n < 1000; ++n) {
    below = below.Then(kMostMagnitude);
    ASSERT_LT(below.Expectation(), 1u << 29);
  }
  EXPECT_NEAR(below.Expectation(), 24.0 * (1 << 24), 16);
}

TEST(HeronSteadyBelow, AfterTheLargest_ZerosBringItDown) {
  C_SteadyBelow below = C_SteadyBelow().Then(kMostMagnitude);
  for (int n = 0; n < 200; ++n) below = below.Then(0);
  EXPECT_LT(below.Expectation(), 6u);
}

TEST(HeronExpectation, TheLargestSums_StillHaveAClass) {
  C_NearBelow near;
  C_SteadyBelow steady;
  for (int n = 0; n < 1000; ++n) {
    near = near.Then(kMostMagnitude);
    steady = steady.Then(kMostMagnitude);
  }
  for (int nFrom = 0; nFrom < kSteps; ++nFrom) {
    C_PartsBefore before(20);
    before.End(nFrom, 0, S_Magnitudes(20, std::min(LargestMultiple(nFrom), kMostMagnitude)));
    const auto expectClass = [&](std::uint32_t nBelow) {
      const std::uint64_t qwSum = std::uint64_t{before.Expectation(10)} + nBelow;
      EXPECT_LT(qwSum, std::uint64_t{1} << 32) << nFrom;
      const S_MagnitudeClass magnitudeClass = ClassOf(before.Expectation(10) + nBelow);
      EXPECT_LT(magnitudeClass.nTable, kMagnitudeTables) << nFrom;
      EXPECT_LE(magnitudeClass.nShift, 23) << nFrom;
    };
    before.BeginNear(0, 20);
    expectClass(near.Expectation());
    before.BeginSteady(0, 0);
    expectClass(steady.Expectation());
  }
}

TEST(HeronExpectation, Models_AreNearThenSteady) {
  EXPECT_EQ(ModelOf<C_NearBelow>(), 0u);
  EXPECT_EQ(ModelOf<C_SteadyBelow>(), 1u);
}

}  // namespace
}  // namespace heron
