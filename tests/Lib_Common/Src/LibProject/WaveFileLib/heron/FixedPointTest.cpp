// SPDX-License-Identifier: Apache-2.0
#include "heron/FixedPoint.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Signals.h"
#include "heron/Configuration.h"

namespace heron {
namespace {

TEST(HeronFixedPoint, RoundShift_RoundsToTheNearestAndHalvesUpwards) {
  EXPECT_EQ(RoundShift(0, 1), 0);
  EXPECT_EQ(RoundShift(1, 1), 1);
  EXPECT_EQ(RoundShift(-1, 1), 0);
  EXPECT_EQ(RoundShift(-3, 1), -1);
  EXPECT_EQ(RoundShift(127, 8), 0);
  EXPECT_EQ(RoundShift(128, 8), 1);
  EXPECT_EQ(RoundShift(-128, 8), 0);
  EXPECT_EQ(RoundShift(-129, 8), -1);
  EXPECT_EQ(RoundShift(std::int64_t{1} << 61, 62), 1);
  EXPECT_EQ(RoundShift(-(std::int64_t{1} << 62), 62), -1);
}

TEST(HeronFixedPoint, Log2OfPowersOfTwo_IsExactAndOneBelowIsOneLess) {
  EXPECT_EQ(Log2Q8(1), 0);
  for (int n = 1; n < 64; ++n) {
    const std::uint64_t qwPower = std::uint64_t{1} << n;
    EXPECT_EQ(Log2Q8(qwPower), 256 * n);
    if (n <= 8) continue;
    // The values one below and one above are less than 1/256 of an octave away.
    EXPECT_EQ(Log2Q8(qwPower - 1), 256 * n - 1) << n;
    EXPECT_EQ(Log2Q8(qwPower + 1), 256 * n) << n;
  }
  EXPECT_EQ(Log2Q8(~std::uint64_t{0}), 64 * 256 - 1);
  EXPECT_EQ(Log2Q8(3), 405);      // 405.75
  EXPECT_EQ(Log2Q8(1000), 2551);  // 2551.24
}

TEST(HeronFixedPoint, Log2_IsTheLogarithmRoundedDown) {
  test::C_Random random(1);
  for (int n = 0; n < 100000; ++n) {
    const std::uint64_t qwValue = std::max<std::uint64_t>(1, random.Bits() >> random.Below(64));
    const auto dLog = static_cast<double>(256 * std::log2(static_cast<long double>(qwValue)));
    // Squaring loses a little precision: a logarithm just above a whole number may come out below
    // it.
    ASSERT_GE(Log2Q8(qwValue), std::floor(dLog - 1e-5)) << qwValue;
    ASSERT_LE(Log2Q8(qwValue), std::floor(dLog + 1e-9)) << qwValue;
  }
}

TEST(HeronFixedPoint, Log2_NeverFalls) {
  int nBefore = 0;
  for (std::uint64_t qwValue = 1; qwValue < 100000; ++qwValue) {
    ASSERT_GE(Log2Q8(qwValue), nBefore) << qwValue;
    nBefore = Log2Q8(qwValue);
  }
}

TEST(HeronFixedPoint, QuartersOfAnOctave_AreRounded) {
  for (int n = 0; n < 4; ++n) {
    EXPECT_EQ(kQuarterOctave[n], std::lround(65536 * std::exp2(n / 4.0))) << n;
  }
}

// ---- the divisions of a sound

TEST(HeronConfiguration, FramesAre20Milliseconds_RoundedDownToAnEvenNumber) {
  EXPECT_EQ(FrameLength(4000), 80);
  EXPECT_EQ(FrameLength(4001), 80);
  EXPECT_EQ(FrameLength(8000), 160);
  EXPECT_EQ(FrameLength(8117), 162);
  EXPECT_EQ(FrameLength(11025), 220);
  EXPECT_EQ(FrameLength(16000), 320);
  EXPECT_EQ(FrameLength(22050), 440);
  EXPECT_EQ(FrameLength(44100), 882);
  EXPECT_EQ(FrameLength(47999), 958);
  EXPECT_EQ(FrameLength(48000), 960);
}

TEST(HeronConfiguration, UnitsAre5Milliseconds_RoundedDownToAnEvenNumber) {
  EXPECT_EQ(UnitLength(4000), 20u);
  EXPECT_EQ(UnitLength(4399), 20u);
  EXPECT_EQ(UnitLength(4400), 22u);
  EXPECT_EQ(UnitLength(8000), 40u);
  EXPECT_EQ(UnitLength(11025), 54u);
  EXPECT_EQ(UnitLength(44100), 220u);
  EXPECT_EQ(UnitLength(47999), 238u);
  EXPECT_EQ(UnitLength(48000), 240u);
}

TEST(HeronConfiguration, SectionsAndBlocks_AreWholeUnits) {
  EXPECT_EQ(kSectionUnits, 8u);
  EXPECT_EQ(SectionLength(8000), 320u);
  EXPECT_EQ(BlockLength(8000), 32000u);
  EXPECT_EQ(SectionLength(11025), 432u);
  EXPECT_EQ(BlockLength(48000), 192000u);
  EXPECT_EQ(kMaxPartLength, 1920u);
}

TEST(HeronConfiguration, RatesFrom4000To48000_AreSupported) {
  EXPECT_FALSE(IsSupportedSampleRate(-8000));
  EXPECT_FALSE(IsSupportedSampleRate(0));
  EXPECT_FALSE(IsSupportedSampleRate(3999));
  EXPECT_TRUE(IsSupportedSampleRate(4000));
  EXPECT_TRUE(IsSupportedSampleRate(48000));
  EXPECT_FALSE(IsSupportedSampleRate(48001));
}

}  // namespace
}  // namespace heron
