// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "SampleValues.h"
#include "annotation/SampleRangeMerge.h"
#include "sound/WavData.h"

namespace {

using C_Ranges = std::vector<std::pair<unsigned int, unsigned int>>;
using C_SegmentArray = C_CLArray<C_SilenceSegment*, I_SilenceSegment*, true>;
using C_RegionArray = C_CLArray<C_UncompressRegion*, I_UncompressRegion*, true>;

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

C_Ranges MergedByTheBook(C_Ranges items) {
  for (int i = 0; i < static_cast<int>(items.size()); ++i) {
    auto& a = items[static_cast<std::size_t>(i)];
    for (int j = 0; j < static_cast<int>(items.size()); ++j) {
      if (j == i) continue;
      auto& b = items[static_cast<std::size_t>(j)];
      if (a.first <= b.first && b.first <= a.second) {
        if (b.second > a.second) a.second = b.second;
        items.erase(items.begin() + j);
        break;
      }
      if (b.first <= a.first && a.first <= b.second) {
        if (a.second > b.second) b.second = a.second;
        if (i < j) {
          a = b;
          items.erase(items.begin() + j);
        } else {
          items.erase(items.begin() + i);
          --i;
        }
        break;
      }
    }
  }
  return items;
}

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

// ---- merging ----

C_Ranges Added(const C_Ranges& ranges) {
  C_WavData sound;
  for (const auto& [dwStart, dwEnd] : ranges) sound.AddSilenceSegment(dwStart, dwEnd);
  return RangesOf(sound.GetSilenceSegmentList());
}

C_Ranges AddedRegions(const C_Ranges& ranges) {
  C_WavData sound;
  for (const auto& [dwStart, dwEnd] : ranges) sound.AddUncompressRegion(dwStart, dwEnd);
  return RangesOf(sound.GetUncompressRegionList());
}

void SetSegments(C_WavData& sound, const C_Ranges& ranges) {
  C_SegmentArray list;
  for (const auto& [dwStart, dwEnd] : ranges) list.Add(new C_SilenceSegment(dwStart, dwEnd));
  sound.SetSilenceSegmentList(&list);
}

C_Ranges MergedOnce(const C_Ranges& ranges) {
  C_WavData sound;
  SetSegments(sound, ranges);
  sound.MergeSilenceSegments();
  return RangesOf(sound.GetSilenceSegmentList());
}

TEST(WavDataSilence, SegmentsThatShareASample_BecomeOne) {
  for (const auto& merge : {Added, AddedRegions}) {
    EXPECT_EQ(merge({{0, 10}, {5, 20}}), (C_Ranges{{0, 20}}));
    EXPECT_EQ(merge({{0, 10}, {10, 20}}), (C_Ranges{{0, 20}}));
    EXPECT_EQ(merge({{5, 20}, {0, 10}}), (C_Ranges{{0, 20}}));
    EXPECT_EQ(merge({{0, 30}, {5, 10}}), (C_Ranges{{0, 30}}));
    EXPECT_EQ(merge({{5, 10}, {0, 30}}), (C_Ranges{{0, 30}}));
    EXPECT_EQ(merge({{0, 10}, {5, 20}, {15, 30}}), (C_Ranges{{0, 30}}));
  }
}

TEST(WavDataSilence, SegmentsThatOnlyTouch_StayTwo) {
  EXPECT_EQ(Added({{0, 10}, {11, 20}}), (C_Ranges{{0, 10}, {11, 20}}));
  EXPECT_EQ(AddedRegions({{0, 10}, {11, 20}}), (C_Ranges{{0, 10}, {11, 20}}));
}

TEST(WavDataSilence, Lists_KeepTheOrderOfInsertion) {
  EXPECT_EQ(Added({{50, 60}, {0, 10}}), (C_Ranges{{50, 60}, {0, 10}}));
  EXPECT_EQ(Added({{50, 60}, {20, 30}, {0, 10}, {55, 70}}),
            (C_Ranges{{50, 70}, {20, 30}, {0, 10}}));
  EXPECT_EQ(AddedRegions({{50, 60}, {0, 10}}), (C_Ranges{{50, 60}, {0, 10}}));
}

TEST(WavDataSilence, Merge_IsOnePassWithOneMergeForEachItem) {
  EXPECT_EQ(Added({{25, 30}, {5, 15}, {35, 60}, {5, 35}}), (C_Ranges{{5, 35}, {35, 60}}));
  EXPECT_EQ(AddedRegions({{25, 30}, {5, 15}, {35, 60}, {5, 35}}), (C_Ranges{{5, 35}, {35, 60}}));
  EXPECT_EQ(MergedOnce({{0, 8}, {0, 8}, {0, 8}, {0, 8}}), (C_Ranges{{0, 8}, {0, 8}}));
}

TEST(WavDataSilence, SegmentsThatEndBeforeTheyStart_AreKept) {
  EXPECT_EQ(Added({{10, 9}}), (C_Ranges{{10, 9}}));
  EXPECT_EQ(Added({{10, 9}, {10, 9}}), (C_Ranges{{10, 9}, {10, 9}}));
  EXPECT_EQ(Added({{0, 0xFFFFFFFFu}, {10, 9}}), (C_Ranges{{0, 0xFFFFFFFFu}}));
  EXPECT_EQ(Added({{10, 9}, {5, 15}}), (C_Ranges{{5, 15}}));
}

TEST(WavDataSilence, Merge_AgreesWithTheRuleForRandomLists) {
  C_Random random(3);
  for (int nRound = 0; nRound < 20000; ++nRound) {
    C_Ranges ranges(random() % 12);
    const unsigned int dwSpan = 4 + random() % 60;
    for (auto& [dwStart, dwEnd] : ranges) {
      dwStart = random() % dwSpan;
      dwEnd = dwStart + random() % 8 - (random() % 6 == 0 ? 5 : 0);
    }
    ASSERT_EQ(MergedOnce(ranges), MergedByTheBook(ranges)) << testing::PrintToString(ranges);
  }
}

// Many groups of overlapping ranges whose members are far apart in the list, so that a removal in
// one group moves the turn of another group.
TEST(WavDataSilence, Merge_AgreesWithTheRuleForLongLists) {
  C_Random random(8);
  for (int nRound = 0; nRound < 200; ++nRound) {
    C_Ranges ranges(100 + random() % 200);
    const unsigned int dwSpan = 1U << (4 + random() % 14);
    const unsigned int dwLongest = 1 + random() % 60;
    for (auto& [dwStart, dwEnd] : ranges) {
      dwStart = random() % dwSpan;
      dwEnd = dwStart + random() % dwLongest - (random() % 16 == 0 ? 1 : 0);
    }
    const C_Ranges merged = MergedOnce(ranges);
    ASSERT_EQ(merged, MergedByTheBook(ranges)) << testing::PrintToString(ranges);
    ASSERT_EQ(MergedOnce(merged), MergedByTheBook(merged));
  }
}

TEST(WavDataSilence, Merge_AgreesWithTheRuleAtTheEndsOfTheRange) {
  C_Random random(4);
  for (int nRound = 0; nRound < 5000; ++nRound) {
    C_Ranges ranges(1 + random() % 6);
    for (auto& [dwStart, dwEnd] : ranges) {
      dwStart = random() % 8 - 4;  // around 0 and 2^32
      dwEnd = random() % 8 - 4;
    }
    ASSERT_EQ(MergedOnce(ranges), MergedByTheBook(ranges)) << testing::PrintToString(ranges);
  }
}

TEST(WavDataSilence, MergeOfVeryManySegments_EndsInTime) {
  // The segments do not touch and are in no order: each would be compared with every other one.
  std::vector<unsigned int> order(400000);
  std::iota(order.begin(), order.end(), 0U);
  std::shuffle(order.begin(), order.end(), std::mt19937(5));
  C_Ranges ranges;
  for (const unsigned int i : order) ranges.emplace_back(i * 10 + 1, i * 10 + 9);
  EXPECT_EQ(MergedOnce(ranges), ranges);
  // All segments are the same: each pass removes half of them.
  const C_Ranges same(400000, {0, 8});
  EXPECT_EQ(MergedOnce(same).size(), 200000u);
  // One long segment covers all the others.
  ranges.emplace_back(0, 0xFFFFFFFFu);
  EXPECT_EQ(MergedOnce(ranges), (C_Ranges{{0, 0xFFFFFFFFu}}));
}

// Ranges are added, changed and removed in any order. The list is what a merge of the whole list
// after each addition makes of it.
TEST(WavDataSilence, AddedOneByOne_AgreesWithTheRuleWhateverHappensBetween) {
  C_Random random(9);
  for (int nRound = 0; nRound < 500; ++nRound) {
    C_WavData sound;
    C_Ranges expected;
    const unsigned int dwSpan = 1U << (4 + random() % 10);
    for (int nStep = 0; nStep < 60; ++nStep) {
      I_WavData::SilenceList& list = *sound.GetSilenceSegmentList();
      const unsigned int dwStart = random() % dwSpan;
      const unsigned int dwEnd = dwStart + random() % 8 - (random() % 16 == 0 ? 1 : 0);
      const auto nItem = expected.empty() ? 0 : random() % expected.size();
      const unsigned int dwAction = expected.empty() ? 9 : random() % 24;
      if (dwAction == 0) {
        list.GetItemByIndex(static_cast<int>(nItem))->SetEndSamplePos(dwEnd);
        expected[nItem].second = dwEnd;
      } else if (dwAction == 1) {
        list.GetItemByIndex(static_cast<int>(nItem))->SetStartSamplePos(dwStart);
        expected[nItem].first = dwStart;
      } else if (dwAction == 2) {
        list.RemoveItemByIndex(static_cast<int>(nItem));
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(nItem));
      } else if (dwAction == 3) {
        sound.MergeSilenceSegments();
        expected = MergedByTheBook(expected);
      } else if (dwAction == 4 && random() % 8 == 0) {
        list.RemoveAll();
        expected.clear();
      } else {
        sound.AddSilenceSegment(dwStart, dwEnd);
        expected.emplace_back(dwStart, dwEnd);
        expected = MergedByTheBook(expected);
      }
      ASSERT_EQ(RangesOf(&list), expected) << nRound << ", " << nStep;
    }
  }
}

// Looking at every range for every addition would take minutes.
TEST(WavDataSilence, VeryManyAddedOneByOne_EndInTime) {
  C_WavData sound;
  for (unsigned int i = 0; i < 200000; ++i) {
    const unsigned int dwStart = (i % 2 == 0 ? i : 400000 - i) * 10;
    sound.AddSilenceSegment(dwStart, dwStart + 8);
    sound.AddUncompressRegion(dwStart, dwStart + 8);
  }
  EXPECT_EQ(sound.GetSilenceSegmentList()->GetSize(), 200000);
  EXPECT_EQ(sound.GetUncompressRegionList()->GetSize(), 200000);
}

TEST(WavDataSilence, NullItems_ArePassedOverByMerging) {
  C_WavData sound;
  sound.AddSilenceSegment(0, 10);
  auto* pList = static_cast<C_SegmentArray*>(sound.GetSilenceSegmentList());
  pList->Add(nullptr);
  sound.AddSilenceSegment(5, 20);
  ASSERT_EQ(pList->GetSize(), 2);
  EXPECT_EQ(pList->GetAt(0)->GetEndSamplePos(), 20u);
  EXPECT_EQ(pList->GetAt(1), nullptr);
}

// ---- setting lists ----

TEST(WavDataSilence, SetLists_CopyWithoutMerging) {
  C_WavData sound;
  sound.AddSilenceSegment(700, 800);
  SetSegments(sound, {{0, 10}, {5, 20}, {9, 8}});
  EXPECT_EQ(RangesOf(sound.GetSilenceSegmentList()), (C_Ranges{{0, 10}, {5, 20}, {9, 8}}));

  C_RegionArray regions;
  regions.Add(new C_UncompressRegion(3, 5));
  regions.Add(new C_UncompressRegion(4, 6));
  sound.AddUncompressRegion(700, 800);
  sound.SetUncompressRegionList(&regions);
  EXPECT_EQ(RangesOf(sound.GetUncompressRegionList()), (C_Ranges{{3, 5}, {4, 6}}));
  EXPECT_NE(sound.GetUncompressRegionList()->GetItemByIndex(0), regions.GetItemByIndex(0));
  EXPECT_EQ(regions.GetSize(), 2);
}

TEST(WavDataSilence, SetLists_LeaveOutNullItems) {
  C_WavData sound;
  C_SegmentArray list;
  list.Add(nullptr);
  list.Add(new C_SilenceSegment(1, 2));
  list.Add(nullptr);
  sound.SetSilenceSegmentList(&list);
  EXPECT_EQ(RangesOf(sound.GetSilenceSegmentList()), (C_Ranges{{1, 2}}));
  C_RegionArray regions;
  regions.Add(nullptr);
  sound.SetUncompressRegionList(&regions);
  EXPECT_EQ(sound.GetUncompressRegionList()->GetSize(), 0);
}

TEST(WavDataSilence, SetLists_OfNothing_Empty) {
  C_WavData sound;
  sound.AddSilenceSegment(1, 2);
  sound.AddUncompressRegion(1, 2);
  sound.SetSilenceSegmentList(nullptr);
  sound.SetUncompressRegionList(nullptr);
  EXPECT_EQ(sound.GetSilenceSegmentList()->GetSize(), 0);
  EXPECT_EQ(sound.GetUncompressRegionList()->GetSize(), 0);
}

TEST(WavDataSilence, SetLists_OfItself_Empties) {
  C_WavData sound;
  sound.AddSilenceSegment(1, 2);
  sound.SetSilenceSegmentList(sound.GetSilenceSegmentList());
  EXPECT_EQ(sound.GetSilenceSegmentList()->GetSize(), 0);
}

// ---- muting ----

TEST(WavDataSilence, Mute_CoversBothEndsOfEverySegment) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4, 5, 6});
  SetSegments(sound, {{1, 2}, {4, 4}});
  sound.MakeSilenceSegmentsMute();
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 0, 0, 4, 0, 6}));
}

TEST(WavDataSilence, Mute_CoversEveryChannelAndNoOtherFrame) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4, 5, 6}, {2, 16, 16, true, 8000});
  SetSegments(sound, {{1, 1}});
  sound.MakeSilenceSegmentsMute();
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 0, 0, 5, 6}));
}

TEST(WavDataSilence, Mute_OfUnsignedData_IsTheMiddle) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3}, {1, 8, 8, false, 8000});
  SetSegments(sound, {{0, 1}});
  sound.MakeSilenceSegmentsMute();
  EXPECT_EQ(BytesOf(sound), (std::vector<unsigned char>{0x80, 0x80, 0x83}));
}

TEST(WavDataSilence, Mute_OfHostileSegments_StaysInsideTheSoundAndEndsInTime) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4});
  C_Ranges ranges(200000, {1, 0xFFFFFFFFu});
  ranges.emplace_back(0xFFFFFFF0u, 0xFFFFFFFFu);
  ranges.emplace_back(3, 2);
  SetSegments(sound, ranges);
  sound.MakeSilenceSegmentsMute();
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 0, 0, 0}));
  SetSegments(sound, {{0, 0xFFFFFFFFu}});
  sound.MakeSilenceSegmentsMute();
  EXPECT_EQ(ValuesOf(sound), (C_Values{0, 0, 0, 0}));
}

TEST(WavDataSilence, Mute_OfASegmentThatEndsBeforeItStarts_ChangesNothing) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4});
  SetSegments(sound, {{2, 1}, {3, 0}});
  sound.MakeSilenceSegmentsMute();
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3, 4}));
}

TEST(WavDataSilence, Mute_AgreesWithASlowModelForRandomSegments) {
  C_Random random(6);
  for (int nRound = 0; nRound < 500; ++nRound) {
    C_Values values(2 * 20, 7);
    C_WavData sound;
    SetSound(sound, values, {2, 16, 16, true, 8000});
    C_Ranges ranges(random() % 5);
    for (auto& [dwStart, dwEnd] : ranges) {
      dwStart = random() % 24;
      dwEnd = dwStart + random() % 6 - 1;
      for (unsigned int s = dwStart; s <= dwEnd && s < 20 && dwEnd != 0xFFFFFFFFu; ++s) {
        values[2 * s] = values[2 * s + 1] = 0;
      }
      if (dwEnd == 0xFFFFFFFFu) std::fill(values.begin(), values.end(), 0);
    }
    SetSegments(sound, ranges);
    sound.MakeSilenceSegmentsMute();
    ASSERT_EQ(ValuesOf(sound), values) << testing::PrintToString(ranges);
  }
}

TEST(WavDataSilenceDeathTest, MuteOfANullSegment_StopsTheProgram) {
  C_WavData sound;
  SetSound(sound, {1, 2});
  static_cast<C_SegmentArray*>(sound.GetSilenceSegmentList())->Add(nullptr);
  EXPECT_DEATH(sound.MakeSilenceSegmentsMute(),
               "MakeSilenceSegmentsMute: WaveFileLib/WavData:1280: assertion failed: "
               "pSilenceSegment != NULL");
}

TEST(SampleRanges, Union_IsAscendingAndApart) {
  const auto covered = vcm::UnionOfSampleRanges(
      {{10, 20}, {5, 9}, {30, 29}, {40, 50}, {45, 47}, {0xFFFFFFFEu, 0xFFFFFFFFu}, {60, 60}});
  C_Ranges ranges;
  for (const vcm::S_SampleRange& range : covered) ranges.emplace_back(range.dwStart, range.dwEnd);
  EXPECT_EQ(ranges, (C_Ranges{{5, 20}, {40, 50}, {60, 60}, {0xFFFFFFFEu, 0xFFFFFFFFu}}));
  EXPECT_TRUE(vcm::UnionOfSampleRanges({}).empty());
}

}  // namespace
