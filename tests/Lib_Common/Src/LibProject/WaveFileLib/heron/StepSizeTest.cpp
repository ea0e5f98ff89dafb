// SPDX-License-Identifier: Apache-2.0
#include "heron/StepSize.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Signals.h"

namespace heron {
namespace {

TEST(HeronStepSize, HalfSteps_AreAnEighthTo2Power14AndThreeQuarters) {
  EXPECT_EQ(HalfStep(0), 32);
  EXPECT_EQ(HalfStep(1), 38);
  EXPECT_EQ(HalfStep(2), 45);
  EXPECT_EQ(HalfStep(3), 54);
  EXPECT_EQ(HalfStep(12), 256);
  EXPECT_EQ(HalfStep(71), 7053952);
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    EXPECT_NEAR(HalfStep(nIndex), 32 * std::exp2(nIndex / 4.0), 0.5 + HalfStep(nIndex) / 65536.0);
  }
}

TEST(HeronStepSize, TheLargestMultiple_IsTheLastWithinTheLargestCoefficient) {
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    const std::int64_t nMost = LargestMultiple(nIndex);
    EXPECT_LE(nMost * HalfStep(nIndex), kMaxCoefficient) << nIndex;
    EXPECT_GT((nMost + 1) * HalfStep(nIndex), kMaxCoefficient) << nIndex;
  }
  EXPECT_EQ(LargestMultiple(0), 1 << 24);
  EXPECT_EQ(LargestMultiple(68), 128);
}

TEST(HeronStepSize, ToHalfSteps_IsTheQuotient) {
  EXPECT_EQ(C_ToHalfSteps(0)(0), 0);
  EXPECT_EQ(C_ToHalfSteps(0)(32), 256);
  EXPECT_EQ(C_ToHalfSteps(12)(1000), 1000);
  EXPECT_EQ(C_ToHalfSteps(0)(kMaxCoefficient), std::int64_t{1} << 32);
  test::C_Random random(2);
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    for (int n = 0; n < 200; ++n) {
      const auto nCoefficient =
          static_cast<std::int32_t>(random.Below(1 << 29) >> random.Below(29));
      const double dExpected = nCoefficient * 256.0 / HalfStep(nIndex);
      // The inverse has 14 bits at the coarsest step.
      ASSERT_NEAR(static_cast<double>(C_ToHalfSteps(nIndex)(nCoefficient)), dExpected,
                  1 + dExpected / 8192)
          << nIndex << ' ' << nCoefficient;
    }
  }
}

TEST(HeronRescale, EveryPairOfIndicesUpToEightOctaves_CountsInTheOtherHalfStep) {
  for (int nFrom = 0; nFrom < kSteps; ++nFrom) {
    for (int nTo = std::max(0, nFrom - 32); nTo < kSteps; ++nTo) {
      const double dFactor = std::exp2((nFrom - nTo) / 4.0);
      for (const std::uint32_t nHalfSteps : {0u, 1u, 7u, 8u, 1000u, 123456u, C_Rescale::kMost}) {
        const double dExpected = nHalfSteps * dFactor;
        ASSERT_NEAR(C_Rescale(nFrom, nTo)(nHalfSteps), dExpected, 1 + dExpected / 256)
            << nFrom << ' ' << nTo << ' ' << nHalfSteps;
      }
    }
  }
}

TEST(HeronRescale, EqualIndices_ChangeNothing) {
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    EXPECT_EQ(C_Rescale(nIndex, nIndex)(12345), 12345u) << nIndex;
    EXPECT_EQ(C_Rescale(nIndex, nIndex)(C_Rescale::kMost), C_Rescale::kMost) << nIndex;
  }
}

TEST(HeronRescale, FurthestIndices_RoundDownToNothingOrMeetTheLimit) {
  EXPECT_EQ(C_Rescale(0, 71)(1 << 17), 0u);  // 2^-17.75 of it
  EXPECT_EQ(C_Rescale(0, 71)(1 << 18), 1u);
  EXPECT_EQ(C_Rescale(71, 0)(1), 430u);  // 2^8.75 in whole numbers
  EXPECT_EQ(C_Rescale(71, 0)(C_Rescale::kMost), 430u << 22);
  // A ratio of 2^9 or more is halved until it is below 2^9.
  EXPECT_EQ(C_Rescale(35, 0)(1), 430u);
  EXPECT_EQ(C_Rescale(36, 0)(1), 256u);
  EXPECT_EQ(C_Rescale(37, 0)(1), 304u);
  EXPECT_EQ(C_Rescale(40, 0)(1), 256u);
}

}  // namespace
}  // namespace heron
