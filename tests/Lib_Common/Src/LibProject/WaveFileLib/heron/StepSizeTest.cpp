// SPDX-License-Identifier: Apache-2.0
#include "heron/StepSize.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Signals.h"

namespace heron {
namespace {

double HalfStep(int nIndex) { return std::exp2(nIndex / 4.0 - 3); }

TEST(HeronStepSize, HalfSteps_AreAnEighthTo2Power14AndThreeQuarters) {
  EXPECT_EQ(HalfStepQ24(0), std::int64_t{1} << 21);
  EXPECT_EQ(HalfStepQ24(12), std::int64_t{1} << 24);
  EXPECT_EQ(HalfStepQ24(68), std::int64_t{1} << 38);
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    const double dExpected = HalfStep(nIndex) * std::exp2(24);
    // Quarters of an octave have 16 bits behind the point.
    EXPECT_NEAR(static_cast<double>(HalfStepQ24(nIndex)), dExpected, dExpected / 65536) << nIndex;
  }
}

TEST(HeronStepSize, Dequantise_IsTheProductInQ8) {
  EXPECT_EQ(Dequantise(1, HalfStepQ24(0)), 32);
  EXPECT_EQ(Dequantise(-1, HalfStepQ24(0)), -32);
  EXPECT_EQ(Dequantise(3, HalfStepQ24(12)), 768);
  EXPECT_EQ(Dequantise(0, HalfStepQ24(71)), 0);
  test::C_Random random(1);
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    for (int n = 0; n < 200; ++n) {
      const auto nHalfSteps = static_cast<std::int32_t>(
          random.Between(-LargestMultiple(nIndex), LargestMultiple(nIndex)));
      const double dExpected = nHalfSteps * HalfStep(nIndex) * 256;
      ASSERT_NEAR(Dequantise(nHalfSteps, HalfStepQ24(nIndex)), dExpected,
                  0.501 + std::abs(dExpected) / 65536)
          << nIndex << ' ' << nHalfSteps;
    }
  }
}

TEST(HeronStepSize, TheLargestMultiple_IsTheLastWithinTheLargestCoefficient) {
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    const std::int64_t nHalfStep = HalfStepQ24(nIndex);
    const std::int64_t nMost = LargestMultiple(nIndex);
    EXPECT_LE(nMost * nHalfStep, kMaxCoefficient << 16) << nIndex;
    EXPECT_GT((nMost + 1) * nHalfStep, kMaxCoefficient << 16) << nIndex;
    EXPECT_LE(Dequantise(LargestMultiple(nIndex), nHalfStep), kMaxCoefficient) << nIndex;
    EXPECT_GE(Dequantise(-LargestMultiple(nIndex), nHalfStep), -kMaxCoefficient) << nIndex;
  }
  EXPECT_EQ(LargestMultiple(0), 1 << 24);
  EXPECT_EQ(LargestMultiple(68), 128);
}

TEST(HeronStepSize, ScaleToHalfSteps_IsTheQuotientRoundedDown) {
  EXPECT_EQ(ScaleToHalfSteps(0, 0), 0);
  EXPECT_EQ(ScaleToHalfSteps(32, 0), 256);
  EXPECT_EQ(ScaleToHalfSteps(1000, 12), 1000);
  test::C_Random random(2);
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    for (int n = 0; n < 200; ++n) {
      // Up to 2^20: in eighths and Q8 that is all that a number of 31 bits holds.
      const auto nCoefficient =
          static_cast<std::int32_t>(random.Below(1 << 28) >> random.Below(28));
      const double dExpected = nCoefficient / HalfStep(nIndex);
      ASSERT_NEAR(ScaleToHalfSteps(nCoefficient, nIndex), dExpected, 1 + dExpected / 65536)
          << nIndex << ' ' << nCoefficient;
    }
  }
}

TEST(HeronStepSize, MultiplesOfTheHalfStep_ScaleBackToThemselves) {
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    const std::int32_t nMost = std::min(LargestMultiple(nIndex) / 2, 10000);
    for (std::int32_t n = 0; n <= nMost; n += 1 + n / 16) {
      const std::int32_t nScaled = ScaleToHalfSteps(Dequantise(n, HalfStepQ24(nIndex)), nIndex);
      // Half a unit of a coefficient is up to 4 units of Q8 in half steps of an eighth.
      ASSERT_NEAR(nScaled, n << kScaledQ, 6 + (n << kScaledQ) / 32768.0) << nIndex << ' ' << n;
    }
  }
}

TEST(HeronRescale, EveryPairOfIndices_CountsInTheOtherHalfStep) {
  for (int nFrom = 0; nFrom < kSteps; ++nFrom) {
    for (int nTo = 0; nTo < kSteps; ++nTo) {
      const C_Rescale rescale(nFrom, nTo);
      const double dFactor = std::exp2((nFrom - nTo) / 4.0);
      for (const std::int32_t nHalfSteps : {0, 1, 7, 8, 1000, 123456, 1 << 24, 1 << 29}) {
        const double dExpected = std::min(nHalfSteps * dFactor, std::exp2(28));
        ASSERT_NEAR(rescale(nHalfSteps), dExpected, 1 + dExpected / 65536)
            << nFrom << ' ' << nTo << ' ' << nHalfSteps;
        ASSERT_LE(rescale(nHalfSteps), 1 << 28);
      }
    }
  }
}

TEST(HeronRescale, EqualIndices_ChangeNothingUpToTheLimit) {
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    const C_Rescale rescale(nIndex, nIndex);
    EXPECT_EQ(rescale(12345), 12345) << nIndex;
    EXPECT_EQ(rescale((1 << 28) - 1), (1 << 28) - 1) << nIndex;
    EXPECT_EQ(rescale(1 << 28), 1 << 28) << nIndex;
    EXPECT_EQ(rescale(1 << 29), 1 << 28) << nIndex;
  }
}

TEST(HeronRescale, FurthestIndices_RoundDownToNothingOrMeetTheLimit) {
  EXPECT_EQ(C_Rescale(0, 71)(1 << 17), 0);  // 2^-17.75 of it
  EXPECT_EQ(C_Rescale(0, 71)(1 << 18), 1);
  EXPECT_EQ(C_Rescale(71, 0)(1), 220436);  // 2^17.75, 110218 in Q16
  EXPECT_EQ(C_Rescale(71, 0)(1218), 1 << 28);
}

}  // namespace
}  // namespace heron
