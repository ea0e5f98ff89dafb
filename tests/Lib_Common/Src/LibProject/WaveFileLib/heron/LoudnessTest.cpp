// SPDX-License-Identifier: Apache-2.0
#include "heron/Loudness.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "Signals.h"
#include "heron/Configuration.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

TEST(HeronLoudness, Loudness_IsTheLogarithmOfTheMeanSquare) {
  EXPECT_EQ(Loudness(1000 * 320, 320), 2551);
  EXPECT_EQ(Loudness(std::uint64_t{1} << 40, 1024), 30 * 256);
  EXPECT_EQ(Loudness(1000, 1), 2551);
}

TEST(HeronLoudness, SoftParts_CountAsTheHissOfARoom) {
  const int nFloor = Log2Q8(400);
  EXPECT_EQ(Loudness(0, 320), nFloor);
  EXPECT_EQ(Loudness(399 * 320, 320), nFloor);
  EXPECT_EQ(Loudness(400 * 320, 320), nFloor);
  EXPECT_EQ(Loudness(401 * 320 - 1, 320), nFloor);
  EXPECT_GT(Loudness(404 * 320, 320), nFloor);
}

TEST(HeronLoudness, TheLoudestPart_HasAtMost30Octaves) {
  EXPECT_EQ(Loudness(std::uint64_t{1920} << 30, 1920), 30 * 256);
  EXPECT_EQ(Loudness(~std::uint64_t{0}, 1), 64 * 256 - 1);
}

TEST(HeronLoudness, MoreEnergy_IsNeverSofter) {
  int nBefore = 0;
  for (std::uint64_t qwSquares = 0; qwSquares < 200000; qwSquares += 7) {
    ASSERT_GE(Loudness(qwSquares, 20), nBefore) << qwSquares;
    nBefore = Loudness(qwSquares, 20);
  }
}

TEST(HeronLoudness, OfCoefficients_IsThatOfTheirMeanSquare) {
  EXPECT_EQ(LoudnessOf(std::vector<std::int32_t>(320, -1000 * 256)), Log2Q8(1000000));
  EXPECT_EQ(LoudnessOf(std::vector<std::int32_t>(20)), Log2Q8(400));
  // The energy of a sound may be in one coefficient, which is below 2^21.
  EXPECT_EQ(LoudnessOf(std::vector<std::int32_t>(1, -(1 << 29))), 42 * 256);
  std::vector<std::int32_t> loudest(1920);
  loudest[7] = 1 << 29;
  EXPECT_EQ(LoudnessOf(loudest), Log2Q8((std::uint64_t{1} << 42) / 1920));
}

TEST(HeronSlope, Depths_HaveTheirShares) {
  EXPECT_EQ(SlopeOf(2), 12);  // 3/8
  EXPECT_EQ(SlopeOf(3), 16);  // 1/2
  for (int nBitDepth = 4; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
    EXPECT_EQ(SlopeOf(nBitDepth), 17) << nBitDepth;  // 17/32
  }
}

TEST(HeronWantedStep, AShareOfAHalf_RaisesTheStepByHalfTheLevel) {
  // 6 dB more level, twice the root mean square, are 3 dB in the step: two indices.
  const int nSoft = Loudness(std::uint64_t{1000} * 1000, 1);
  const int nLoud = Loudness(std::uint64_t{2000} * 2000, 1);
  EXPECT_EQ(nLoud - nSoft, 512);
  EXPECT_EQ(WantedStep(nLoud, 16, 0) - WantedStep(nSoft, 16, 0), 2 * 256);
}

TEST(HeronWantedStep, TheOffset_IsAdded) {
  EXPECT_EQ(WantedStep(0, 17, 0), 0);
  EXPECT_EQ(WantedStep(0, 17, -1234), -1234);
  EXPECT_EQ(WantedStep(1600, 12, 100), 100 + 1200);
  EXPECT_EQ(WantedStep(1601, 12, 100), 100 + 1200);  // rounded down
  EXPECT_EQ(WantedStep(7680, 17, -8160), 0);
}

TEST(HeronWantedStep, TheOffsets_ReachEveryIndexForEveryLoudness) {
  // The encoder's finest and coarsest offsets are 12 octaves down and 18 up.
  const int nSoftest = Loudness(0, 1);
  const int nLoudest = 30 * 256;
  for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
    const int nSlope = SlopeOf(nBitDepth);
    EXPECT_LE(WantedStep(nLoudest, nSlope, -12 * 1024), 0) << nBitDepth;
    EXPECT_GE(WantedStep(nSoftest, nSlope, 18 * 1024), (kSteps - 1) * 256) << nBitDepth;
  }
}

TEST(HeronWantedStep, MoreLoudness_NeverWantsAFinerStep) {
  for (const int nSlope : {12, 16, 17}) {
    for (int nLoudness = 1; nLoudness < 31 * 256; ++nLoudness) {
      const int nRise = WantedStep(nLoudness, nSlope, 0) - WantedStep(nLoudness - 1, nSlope, 0);
      ASSERT_GE(nRise, 0) << nLoudness;
      ASSERT_LE(nRise, 2) << nLoudness;
    }
  }
}

}  // namespace
}  // namespace heron
