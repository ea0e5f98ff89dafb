// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "SampleValues.h"
#include "sound/WavData.h"

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

C_Values AfterGain(const C_Values& values, double dStart, double dEnd,
                   const S_Format& format = {}) {
  C_WavData sound;
  SetSound(sound, values, format);
  EXPECT_TRUE(sound.ApplyGain(dStart, dEnd));
  return ValuesOf(sound);
}

TEST(WavDataGain, GainRamp_IsAStaircaseOf1024Samples) {
  const C_Values values = AfterGain(C_Values(3000, 10000), 1.0, 0.0);
  for (std::size_t i = 0; i < 3000; ++i) {
    const int nExpected = i < 1024 ? 10000 : i < 2048 ? 9996 : 9993;
    ASSERT_EQ(values[i], nExpected) << i;
  }
}

TEST(WavDataGain, Step_IsForOneSampleLessThanTheCount) {
  // 1025 samples make 1024 steps of 1/1024 each: the second block's gain is 0.9990234375.
  EXPECT_EQ(AfterGain(C_Values(1025, 10000), 1.0, 0.0)[1023], 10000);
  EXPECT_EQ(AfterGain(C_Values(1025, 10000), 1.0, 0.0)[1024], 9990);
  // 32-bit samples show the difference from a step of 1/1025.
  const C_Values wide = AfterGain(C_Values(1025, 1 << 30), 1.0, 0.0, {1, 32, 32, true, 8000});
  EXPECT_EQ(wide[1024], (1 << 30) - (1 << 20));
}

TEST(WavDataGain, UpwardRamp_GrowsBlockByBlock) {
  const C_Values values = AfterGain(C_Values(2049, 16384), 0.0, 2.0);
  EXPECT_EQ(values[0], 0);
  EXPECT_EQ(values[1023], 0);
  EXPECT_EQ(values[1024], 16);  // 16384 * 2 / 2048
  EXPECT_EQ(values[2047], 16);
  EXPECT_EQ(values[2048], 32);
}

TEST(WavDataGain, Values_TruncateTowardZero) {
  EXPECT_EQ(AfterGain({-3, 3, -1, 1, -5}, 0.5, 0.5), (C_Values{-1, 1, 0, 0, -2}));
  EXPECT_EQ(AfterGain({-3, 3}, -0.5, -0.5), (C_Values{1, -1}));
}

TEST(WavDataGain, Values_ClipToTheWidth) {
  EXPECT_EQ(AfterGain({30000, -30000, 16383, -16384}, 2.0, 2.0),
            (C_Values{32767, -32768, 32766, -32768}));
  EXPECT_EQ(AfterGain({2000, -2000}, 2.0, 2.0, {1, 12, 16, true, 8000}), (C_Values{2047, -2048}));
  EXPECT_EQ(AfterGain({100, -100, 3}, 2.0, 2.0, {1, 8, 8, false, 8000}), (C_Values{127, -128, 6}));
  EXPECT_EQ(AfterGain({INT32_MAX, INT32_MIN}, 3.0, 3.0, {1, 32, 32, true, 8000}),
            (C_Values{INT32_MAX, INT32_MIN}));
  EXPECT_EQ(AfterGain({INT32_MIN, 5}, -1.0, -1.0, {1, 32, 32, true, 8000}),
            (C_Values{INT32_MAX, -5}));
}

TEST(WavDataGain, GainsThatAreNoNumber_AreDefined) {
  EXPECT_EQ(AfterGain({5, -5, 0}, kInfinity, kInfinity), (C_Values{32767, -32768, 0}));
  EXPECT_EQ(AfterGain({5, -5, 0}, -kInfinity, -kInfinity), (C_Values{-32768, 32767, 0}));
  EXPECT_EQ(AfterGain({5, -5}, std::nan(""), 1.0), (C_Values{0, 0}));
  EXPECT_EQ(AfterGain({5, -5}, 1e300, -1e300), (C_Values{32767, -32768}));
}

TEST(WavDataGain, OneSample_TakesTheFirstGain) {
  EXPECT_EQ(AfterGain({1000}, 0.5, 7.0), (C_Values{500}));
  EXPECT_EQ(AfterGain({1000}, 0.5, -kInfinity), (C_Values{500}));
}

TEST(WavDataGain, Range_BoundsTheChange) {
  C_WavData sound;
  SetSound(sound, {10, 20, 30, 40});
  EXPECT_TRUE(sound.ApplyGainRange(2.0, 2.0, 1, 2, 0, 0));
  EXPECT_EQ(ValuesOf(sound), (C_Values{10, 40, 60, 40}));
  EXPECT_TRUE(sound.ApplyGainRange(2.0, 2.0, 3, 3, 0, 0));
  EXPECT_EQ(ValuesOf(sound), (C_Values{10, 40, 60, 80}));
}

TEST(WavDataGain, RangeOutsideTheSound_IsRefused) {
  C_WavData sound;
  SetSound(sound, {10, 20, 30, 40});
  EXPECT_FALSE(sound.ApplyGainRange(2.0, 2.0, 0, 4, 0, 0));
  EXPECT_FALSE(sound.ApplyGainRange(2.0, 2.0, 0, 0xFFFFFFFFu, 0, 0));
  EXPECT_FALSE(sound.ApplyGainRange(2.0, 2.0, 0, 3, 0, 1));
  EXPECT_FALSE(sound.ApplyGainRange(2.0, 2.0, 0, 3, 0, 65535));
  EXPECT_EQ(ValuesOf(sound), (C_Values{10, 20, 30, 40}));
}

TEST(WavDataGain, EmptyRange_ChangesNothing) {
  C_WavData sound;
  SetSound(sound, {10, 20, 30, 40});
  EXPECT_TRUE(sound.ApplyGainRange(2.0, 2.0, 2, 1, 0, 0));
  EXPECT_TRUE(sound.ApplyGainRange(2.0, 2.0, 0xFFFFFFFFu, 0, 0, 0));
  EXPECT_TRUE(sound.ApplyGainRange(2.0, 2.0, 0, 3, 1, 0));
  EXPECT_EQ(ValuesOf(sound), (C_Values{10, 20, 30, 40}));
}

TEST(WavDataGain, AttachedSamples_ChangeInPlace) {
  std::vector<unsigned char> attached = PcmBytes({10, 20}, {});
  C_WavData sound;
  sound.SetWavInfoData(8000, 4, 1, 16, 16, true);
  sound.AttachBuffer(attached.data(), 4);
  EXPECT_TRUE(sound.ApplyGain(3.0, 3.0));
  EXPECT_EQ(attached, PcmBytes({30, 60}, {}));
}

TEST(WavDataGain, Stereo_GoesThroughTheFrameWideIterator) {
  // The left sample sees the right one in its upper half: 100 + 1 * 65536 clips. The right sample
  // is at the end and sees nothing more.
  const S_Format stereo{2, 16, 16, true, 8000};
  EXPECT_EQ(AfterGain({100, 1}, 1.0, 1.0, stereo), (C_Values{32767, 1}));
  EXPECT_EQ(AfterGain({100, 0}, 2.0, 2.0, stereo), (C_Values{200, 0}));
  EXPECT_EQ(AfterGain({-1, 5}, 2.0, 2.0, stereo), (C_Values{-2, 10}));
}

TEST(WavDataGain, EditsBesideABuffersOwnIterator_LeaveItAlive) {
  C_WavData sound;
  SetSound(sound, {10, 20});
  I_WavDataBufferIterator* pIterator = sound.GetIWaveDataBuffer()->CreateIterator(1, 0);
  sound.ApplyGain(2.0, 2.0);
  sound.RemoveDCOffset();
  EXPECT_EQ(pIterator->GetDataValue(), 10);
}

// A slow model of the stepped gain, on mono sound.
C_Values GainByTheBook(C_Values values, double dStart, double dEnd, std::size_t nFirst,
                       std::size_t nLast, int nBits) {
  const double dCount = static_cast<double>(nLast - nFirst + 1);
  const double dStep = (dEnd - dStart) / (dCount - 1.0);
  const double dLimit = std::ldexp(1.0, nBits - 1);
  double dGain = dStart;
  for (std::size_t nAt = nFirst; nAt <= nLast;) {
    for (std::size_t nInBlock = 0; nInBlock < 1024 && nAt <= nLast; ++nInBlock, ++nAt) {
      const double dValue = std::trunc(values[nAt] * dGain);
      values[nAt] = static_cast<int>(std::min(std::max(dValue, -dLimit), dLimit - 1));
    }
    dGain += dStep;
  }
  return values;
}

TEST(WavDataGain, RandomRamps_AgreeWithASlowModel) {
  C_Random random(21);
  for (int nRound = 0; nRound < 60; ++nRound) {
    const unsigned short wStore = static_cast<unsigned short>(8 << random() % 3);
    const auto wBits = static_cast<unsigned short>(2 + random() % (wStore - 1U));
    const S_Format format{1, wBits, wStore, random() % 2 == 0, 8000};
    C_Values values(2 + random() % 5000);
    for (int& nValue : values) nValue = static_cast<int>(random()) >> (32 - wBits);
    const auto nLast = 1 + random() % (values.size() - 1);
    const auto nFirst = random() % nLast;
    const double dStart = static_cast<double>(random() % 4000) / 1000.0 - 2.0;
    const double dEnd = static_cast<double>(random() % 4000) / 1000.0 - 2.0;
    C_WavData sound;
    SetSound(sound, values, format);
    ASSERT_TRUE(sound.ApplyGainRange(dStart, dEnd, static_cast<unsigned int>(nFirst),
                                     static_cast<unsigned int>(nLast), 0, 0));
    ASSERT_EQ(ValuesOf(sound), GainByTheBook(values, dStart, dEnd, nFirst, nLast, wBits)) << nRound;
  }
}

// ---- normalising ----

TEST(WavDataGain, Normalize_DoesNotSeeTheLastSample) {
  C_WavData sound;
  SetSound(sound, {100, 200, 30000});
  EXPECT_TRUE(sound.Normalize());
  EXPECT_EQ(ValuesOf(sound), (C_Values{16384, 32767, 32767}));
}

TEST(WavDataGain, Normalize_BringsNegativePeaksToFullScale) {
  C_WavData sound;
  SetSound(sound, {100, -200, 0});
  EXPECT_TRUE(sound.Normalize());
  EXPECT_EQ(ValuesOf(sound), (C_Values{16384, -32768, 0}));
  SetSound(sound, {8, -16, 0}, {1, 8, 8, false, 8000});
  EXPECT_TRUE(sound.Normalize());
  EXPECT_EQ(ValuesOf(sound), (C_Values{64, -128, 0}));
}

TEST(WavDataGain, Normalize_OfTheLargest32BitPeak_KeepsIt) {
  C_WavData sound;
  SetSound(sound, {INT32_MIN, 1 << 30, 0}, {1, 32, 32, true, 8000});
  EXPECT_TRUE(sound.Normalize());
  EXPECT_EQ(ValuesOf(sound), (C_Values{INT32_MIN, 1 << 30, 0}));
  // A peak of 2^30 is doubled: full scale is 2^31, not its negative.
  SetSound(sound, {1 << 30, 1 << 29, 0}, {1, 32, 32, true, 8000});
  EXPECT_TRUE(sound.Normalize());
  EXPECT_EQ(ValuesOf(sound), (C_Values{INT32_MAX, 1 << 30, 0}));
}

TEST(WavDataGain, Normalize_OfSilence_SucceedsAndChangesNothing) {
  C_WavData sound;
  SetSound(sound, {0, 0, 0, 77});
  EXPECT_TRUE(sound.Normalize());
  EXPECT_EQ(ValuesOf(sound), (C_Values{0, 0, 0, 77}));
  SetSound(sound, {500});
  EXPECT_TRUE(sound.Normalize());
  EXPECT_EQ(ValuesOf(sound), (C_Values{500}));
}

TEST(WavDataGain, NormalizeRange_OutsideTheSound_IsRefused) {
  C_WavData sound;
  SetSound(sound, {100, 200, 30000});
  EXPECT_FALSE(sound.NormalizeRange(0, 3, 0, 0));
  EXPECT_FALSE(sound.NormalizeRange(0, 2, 0, 1));
  EXPECT_EQ(ValuesOf(sound), (C_Values{100, 200, 30000}));
  EXPECT_TRUE(sound.NormalizeRange(0, 1, 0, 0));
  EXPECT_EQ(ValuesOf(sound), (C_Values{32767, 32767, 30000}));
}

// ---- the DC offset ----

int OffsetOf(const C_Values& values, const S_Format& format = {}) {
  C_WavData sound;
  SetSound(sound, values, format);
  return sound.GetDCOffset();
}

TEST(WavDataGain, DCOffset_IsTheTruncatedMean) {
  EXPECT_EQ(OffsetOf({-3, -4}), -3);
  EXPECT_EQ(OffsetOf({3, 4}), 3);
  EXPECT_EQ(OffsetOf({100, -100, 30}), 10);
  EXPECT_EQ(OffsetOf({-1, 0, 0}), 0);
  EXPECT_EQ(OffsetOf({10, 20, 30}, {1, 8, 8, false, 8000}), 20);
}

TEST(WavDataGain, DCOffset_SumWrapsIn32Bits) {
  EXPECT_EQ(OffsetOf(C_Values(70000, 32767)), -28589);
}

TEST(WavDataGain, DCOffset_LooksAtTheFirstChannelThroughTheIterator) {
  const S_Format stereo{2, 16, 16, true, 8000};
  EXPECT_EQ(OffsetOf({10, 0, 20, 0}, stereo), 15);
  EXPECT_EQ(OffsetOf({10, 1, 20, 0}, stereo), 15 + 32768);
}

TEST(WavDataGain, RemoveDCOffset_SubtractsAndClips) {
  C_WavData sound;
  SetSound(sound, {110, 90, 100});
  sound.RemoveDCOffset();
  EXPECT_EQ(ValuesOf(sound), (C_Values{10, -10, 0}));
  SetSound(sound, {-32768, -32768, 32767});
  sound.RemoveDCOffset();  // the offset is -10923
  EXPECT_EQ(ValuesOf(sound), (C_Values{-21845, -21845, 32767}));
  SetSound(sound, {INT32_MIN, INT32_MAX, 1000}, {1, 32, 32, true, 8000});
  sound.RemoveDCOffset();  // the offset is 333
  EXPECT_EQ(ValuesOf(sound), (C_Values{INT32_MIN, INT32_MAX - 333, 667}));
}

TEST(WavDataGain, RemoveDCOffset_SubtractsTheSameFromEveryChannel) {
  C_WavData sound;
  SetSound(sound, {10, 0, 10, 0}, {2, 16, 16, true, 8000});
  sound.RemoveDCOffset();
  // Left comes first: its upper half shows the right sample, 0. Then right sees the left sample of
  // the next frame.
  EXPECT_EQ(sound.GetIWaveDataBuffer()->GetSampleValueInt(0, 0), 0);
  EXPECT_EQ(sound.GetIWaveDataBuffer()->GetSampleValueInt(1, 0), 0);
  EXPECT_EQ(sound.GetIWaveDataBuffer()->GetSampleValueInt(0, 1), -10);
  EXPECT_EQ(sound.GetIWaveDataBuffer()->GetSampleValueInt(1, 1), -10);
}

}  // namespace
