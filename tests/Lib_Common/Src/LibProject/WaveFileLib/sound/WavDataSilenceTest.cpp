// SPDX-License-Identifier: Apache-2.0
//
// How silence is found.
#include <gtest/gtest.h>

#include "SampleRangesByTheBook.h"
#include "SampleValues.h"
#include "sound/WavData.h"

namespace {

C_Values Quiet(std::size_t nCount, int nValue = 0) { return C_Values(nCount, nValue); }

C_Values operator+(C_Values a, const C_Values& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

C_Ranges Detected(const C_Values& values, unsigned int dwThreshold, unsigned int dwMinLength,
                  const S_Format& format = {}) {
  C_WavData sound;
  SetSound(sound, values, format);
  return RangesOf(sound.DetectSilence(dwThreshold, dwMinLength, true));
}

bool IsQuiet(int nValue, unsigned int dwThreshold, const S_Format& format) {
  return !Detected(C_Values(3, nValue), dwThreshold, 0, format).empty();
}

// ---- the threshold ----

TEST(WavDataSilence, ThresholdAboveTheScale_IsRefused) {
  C_WavData sound;
  SetSound(sound, Quiet(20));
  sound.AddSilenceSegment(3, 4);
  EXPECT_EQ(sound.DetectSilence(2048, 1, true), nullptr);
  EXPECT_EQ(sound.DetectSilence(0xFFFFFFFFu, 1, true), nullptr);
  EXPECT_EQ(RangesOf(sound.GetSilenceSegmentList()), (C_Ranges{{3, 4}}));
  EXPECT_NE(sound.DetectSilence(2047, 1, true), nullptr);
}

TEST(WavDataSilence, Threshold_IsScaledToTheWidth) {
  struct S_Case {
    S_Format format;
    unsigned int dwThreshold;
    int nUpper;
  };
  const S_Case cases[] = {
      {{1, 16, 16, true, 8000}, 100, 1600},  {{1, 12, 16, true, 8000}, 100, 100},
      {{1, 13, 16, true, 8000}, 100, 200},   {{1, 10, 16, true, 8000}, 100, 25},
      {{1, 8, 8, false, 8000}, 100, 6},      {{1, 8, 8, true, 8000}, 100, 6},
      {{1, 24, 32, true, 8000}, 1, 4096},    {{1, 32, 32, true, 8000}, 2047, 2146435072},
      {{1, 16, 16, false, 8000}, 100, 1600}, {{1, 16, 16, true, 8000}, 0, 0},
  };
  for (const S_Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.format.wBits << " bits, " << c.dwThreshold);
    EXPECT_TRUE(IsQuiet(c.nUpper, c.dwThreshold, c.format));
    EXPECT_FALSE(IsQuiet(c.nUpper + 1, c.dwThreshold, c.format));
    EXPECT_TRUE(IsQuiet(-c.nUpper - 1, c.dwThreshold, c.format));
    EXPECT_FALSE(IsQuiet(-c.nUpper - 2, c.dwThreshold, c.format));
  }
}

TEST(WavDataSilence, LowerBound_IsTheComplement) {
  EXPECT_TRUE(IsQuiet(-1601, 100, {}));
  EXPECT_FALSE(IsQuiet(1601, 100, {}));
  EXPECT_TRUE(IsQuiet(-1, 0, {}));
  EXPECT_FALSE(IsQuiet(1, 0, {}));
}

// ---- the mean ----

TEST(WavDataSilence, OppositeChannels_AreQuiet) {
  EXPECT_EQ(Detected({3000, -3000, 3000, -3000, 3000, -3000}, 0, 1, {2, 16, 16, true, 8000}),
            (C_Ranges{{0, 2}}));
}

TEST(WavDataSilence, Mean_TruncatesTowardZero) {
  const S_Format stereo{2, 16, 16, true, 8000};
  EXPECT_EQ(Detected({1, 0, 1, 0}, 0, 0, stereo), (C_Ranges{{0, 1}}));
  EXPECT_EQ(Detected({-3, 0, -3, 0}, 0, 0, stereo), (C_Ranges{{0, 1}}));  // -1.5 truncates to -1
  EXPECT_EQ(Detected({-4, 0, -4, 0}, 0, 0, stereo), C_Ranges{});
  EXPECT_EQ(Detected({2, 0, 2, 0}, 0, 0, stereo), C_Ranges{});
}

TEST(WavDataSilence, Mean_IsOverTheChannelsAskedFor) {
  C_WavData sound;
  SetSound(sound, {0, 3000, 6000, 0, 3000, 6000}, {3, 16, 16, true, 8000});
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 1, 0, 1, 0, 0, true)), (C_Ranges{{0, 1}}));
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 1, 0, 1, 0, 1, true)), C_Ranges{});
  // (3000 + 6000) / 2 = 4500, not 9000 / 3 = 3000.
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(281, 1, 0, 1, 1, 2, true)), C_Ranges{});
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(282, 1, 0, 1, 1, 2, true)), (C_Ranges{{0, 1}}));
}

TEST(WavDataSilence, SumOfChannels_WrapsIn32Bits) {
  // Twice 2^30 wraps to -2^31. Half of that, -2^30, is within the bound of threshold 2047 but not
  // within that of 1023. Twice -2^31 wraps to 0.
  const S_Format stereo{2, 32, 32, true, 8000};
  const int nMin = -2147483647 - 1;
  EXPECT_EQ(Detected({nMin, nMin, nMin, nMin}, 0, 0, stereo), (C_Ranges{{0, 1}}));
  EXPECT_EQ(Detected({1 << 30, 1 << 30, 1 << 30, 1 << 30}, 2047, 0, stereo), (C_Ranges{{0, 1}}));
  EXPECT_EQ(Detected({1 << 30, 1 << 30, 1 << 30, 1 << 30}, 1023, 0, stereo), C_Ranges{});
}

TEST(WavDataSilence, ChannelsTheWrongWayRound_AreRefused) {
  C_WavData sound;
  SetSound(sound, {0, 0, 0, 0}, {2, 16, 16, true, 8000});
  EXPECT_EQ(sound.DetectSilenceRange(0, 0, 0, 1, 1, 0, true), nullptr);
}

TEST(WavDataSilenceDeathTest, ChannelThatDoesNotExist_StopsTheProgram) {
  C_WavData sound;
  SetSound(sound, {0, 0});
  EXPECT_DEATH(sound.DetectSilenceRange(0, 0, 0, 1, 0, 1, true), "wChannelNo < wChannels");
}

// ---- runs ----

TEST(WavDataSilence, RunClosedByALoudSample_NeedsTheMinimumLength) {
  EXPECT_EQ(Detected(Quiet(10) + C_Values{9999}, 100, 10), (C_Ranges{{0, 9}}));
  EXPECT_EQ(Detected(Quiet(10) + C_Values{9999}, 100, 11), C_Ranges{});
  EXPECT_EQ(Detected(C_Values{9999} + Quiet(10) + C_Values{9999}, 100, 10), (C_Ranges{{1, 10}}));
}

TEST(WavDataSilence, RunUpToTheEnd_NeedsOneSampleMore) {
  EXPECT_EQ(Detected(Quiet(10), 100, 10), C_Ranges{});
  EXPECT_EQ(Detected(Quiet(11), 100, 10), (C_Ranges{{0, 10}}));
  EXPECT_EQ(Detected(C_Values{9999} + Quiet(10), 100, 10), C_Ranges{});
  EXPECT_EQ(Detected(C_Values{9999} + Quiet(11), 100, 10), (C_Ranges{{1, 11}}));
}

TEST(WavDataSilence, RunOfMinimumLengthZero_IsFoundAtOnce) {
  EXPECT_EQ(Detected({0, 9999, 0, 0, 9999, 0}, 0, 0), (C_Ranges{{0, 0}, {2, 3}, {5, 5}}));
}

TEST(WavDataSilence, SeveralRuns_ComeInOrder) {
  EXPECT_EQ(Detected(Quiet(5) + C_Values{9999} + Quiet(3) + C_Values{9999} + Quiet(7), 0, 4),
            (C_Ranges{{0, 4}, {10, 16}}));
}

TEST(WavDataSilence, Range_BoundsTheSearch) {
  C_WavData sound;
  SetSound(sound, Quiet(100));
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 0, 10, 20, 0, 0, true)), (C_Ranges{{10, 20}}));
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 10, 30, 40, 0, 0, true)),
            (C_Ranges{{10, 20}, {30, 40}}));
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 11, 50, 60, 0, 0, true)),
            (C_Ranges{{10, 20}, {30, 40}}));
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 0, 60, 59, 0, 0, true)),
            (C_Ranges{{10, 20}, {30, 40}}));
}

TEST(WavDataSilence, RangeBeyondTheSound_EndsWithTheSound) {
  C_WavData sound;
  SetSound(sound, Quiet(5));
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 0, 2, 0xFFFFFFFFu, 0, 0, true)),
            (C_Ranges{{2, 4}}));
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 0, 0xFFFFFFFFu, 0xFFFFFFFFu, 0, 0, false)),
            (C_Ranges{{2, 4}}));
}

TEST(WavDataSilence, FormatThatClaimsMoreThanIsHeld_EndsWithTheSamples) {
  C_WavData sound;
  SetSound(sound, Quiet(5));
  sound.SetWavInfoData(8000, 0x1FFFFFFEu, 1, 16, 16, true);
  EXPECT_EQ(RangesOf(sound.DetectSilence(0, 0, true)), (C_Ranges{{0, 4}}));
}

TEST(WavDataSilence, Result_IsTheSoundsOwnList) {
  C_WavData sound;
  SetSound(sound, Quiet(5));
  EXPECT_EQ(sound.DetectSilence(0, 0, true), sound.GetSilenceSegmentList());
  EXPECT_EQ(sound.DetectSilenceRange(0, 0, 0, 4, 0, 0, true), sound.GetSilenceSegmentList());
  EXPECT_EQ(sound.AddSilenceSegment(7, 8), sound.GetSilenceSegmentList());
  EXPECT_EQ(sound.AddUncompressRegion(7, 8), sound.GetUncompressRegionList());
}

// ---- replacing ----

TEST(WavDataSilence, Replace_RemovesSegmentsThatStartOrEndInTheRange) {
  C_WavData sound;
  SetSound(sound, Quiet(200, 9999));
  for (const auto& [dwStart, dwEnd] :
       C_Ranges{{0, 9}, {15, 25}, {30, 40}, {50, 60}, {61, 70}, {5000, 6000}}) {
    sound.AddSilenceSegment(dwStart, dwEnd);
  }
  // The removed segments end inside the range, lie wholly inside it, or start on its last sample.
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 0, 20, 50, 0, 0, true)),
            (C_Ranges{{0, 9}, {61, 70}, {5000, 6000}}));
}

TEST(WavDataSilence, Replace_LeavesAnEnclosingSegment) {
  C_WavData sound;
  SetSound(sound, Quiet(200, 9999));
  sound.AddSilenceSegment(10, 90);
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 0, 20, 50, 0, 0, true)), (C_Ranges{{10, 90}}));
  EXPECT_EQ(RangesOf(sound.DetectSilenceRange(0, 0, 90, 91, 0, 0, true)), C_Ranges{});
}

TEST(WavDataSilence, WithoutReplace_NewSegmentsMergeWithTheOld) {
  C_WavData sound;
  SetSound(sound, Quiet(10) + Quiet(10, 9999));
  sound.AddSilenceSegment(5, 15);
  EXPECT_EQ(RangesOf(sound.DetectSilence(0, 1, false)), (C_Ranges{{0, 15}}));
}

TEST(WavDataSilence, ReplaceAmongVeryManySegments_EndsInTime) {
  C_WavData sound;
  SetSound(sound, Quiet(4, 9999));
  C_SegmentArray many;
  for (unsigned int i = 0; i < 400000; ++i) {
    const unsigned int dwStart = i % 2 == 0 ? i * 4 : 0x80000000u + i * 4;
    many.Add(new C_SilenceSegment(dwStart, dwStart + 1));
  }
  sound.SetSilenceSegmentList(&many);
  const auto* pList = sound.DetectSilenceRange(0, 0, 0, 0x7FFFFFFFu, 0, 0, true);
  ASSERT_EQ(pList->GetSize(), 200000);
  EXPECT_EQ(pList->GetItemByIndex(0)->GetStartSamplePos(), 0x80000004u);
  EXPECT_EQ(pList->GetItemByIndex(199999)->GetStartSamplePos(), 0x80000000u + 399999u * 4);
}

// ---- against a slow model ----

C_Ranges FoundByTheBook(const C_Values& values, unsigned int dwChannels, int nThreshold,
                        unsigned int dwMinLength) {
  C_Ranges found;
  const auto dwCount = static_cast<unsigned int>(values.size()) / dwChannels;
  long long llRunStart = -1;
  for (unsigned int s = 0; s < dwCount; ++s) {
    long long llSum = 0;
    for (unsigned int c = 0; c < dwChannels; ++c) llSum += values[s * dwChannels + c];
    const long long llMean = llSum / static_cast<int>(dwChannels);
    const bool bQuiet = llMean >= -(nThreshold + 1) && llMean <= nThreshold;
    if (bQuiet && llRunStart < 0) llRunStart = s;
    if (!bQuiet && llRunStart >= 0) {
      if (s - llRunStart >= dwMinLength) found.emplace_back(llRunStart, s - 1);
      llRunStart = -1;
    }
  }
  if (llRunStart >= 0 && dwCount - 1 - llRunStart >= dwMinLength) {
    found.emplace_back(llRunStart, dwCount - 1);
  }
  return found;
}

TEST(WavDataSilence, RandomSounds_AgreeWithASlowModel) {
  C_Random random(11);
  for (int nRound = 0; nRound < 500; ++nRound) {
    const unsigned int dwChannels = 1 + random() % 3;
    C_Values values(dwChannels * (1 + random() % 60));
    for (int& nValue : values) {
      nValue = random() % 4 == 0 ? static_cast<int>(random() % 65536) - 32768
                                 : static_cast<int>(random() % 200) - 100;
    }
    const unsigned int dwThreshold = random() % 8;
    const unsigned int dwMinLength = random() % 6;
    ASSERT_EQ(Detected(values, dwThreshold, dwMinLength,
                       {static_cast<unsigned short>(dwChannels), 16, 16, true, 8000}),
              FoundByTheBook(values, dwChannels, static_cast<int>(dwThreshold) * 16, dwMinLength))
        << nRound;
  }
}

}  // namespace
