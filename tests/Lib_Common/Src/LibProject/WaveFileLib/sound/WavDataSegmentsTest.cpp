// SPDX-License-Identifier: Apache-2.0
//
// Silence segments and regions: how they are merged, set and muted.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include "SampleRangesByTheBook.h"
#include "SampleValues.h"
#include "Sanitized.h"
#include "annotation/SampleRangeMerge.h"
#include "sound/WavData.h"

namespace {

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
  constexpr std::size_t kSegments = kSanitized ? 50000 : 400000;
  std::vector<unsigned int> order(kSegments);
  std::iota(order.begin(), order.end(), 0U);
  std::shuffle(order.begin(), order.end(), std::mt19937(5));
  C_Ranges ranges;
  for (const unsigned int i : order) ranges.emplace_back(i * 10 + 1, i * 10 + 9);
  EXPECT_EQ(MergedOnce(ranges), ranges);
  // All segments are the same: each pass removes half of them.
  const C_Ranges same(kSegments, {0, 8});
  EXPECT_EQ(MergedOnce(same).size(), kSegments / 2);
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
      } else if (dwAction == 5) {
        auto& array = dynamic_cast<C_SegmentArray&>(list);
        delete array.GetAt(static_cast<int>(nItem));
        array.SetAt(static_cast<int>(nItem), new C_SilenceSegment(dwStart, dwEnd));
        expected[nItem] = {dwStart, dwEnd};
      } else if (dwAction == 6) {
        auto& array = dynamic_cast<C_SegmentArray&>(list);
        array.RemoveAt(static_cast<int>(nItem), 1);
        array.Add(new C_SilenceSegment(dwStart, dwEnd));
        expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(nItem));
        expected.emplace_back(dwStart, dwEnd);
      } else {
        sound.AddSilenceSegment(dwStart, dwEnd);
        expected.emplace_back(dwStart, dwEnd);
        expected = MergedByTheBook(expected);
      }
      ASSERT_EQ(RangesOf(&list), expected) << nRound << ", " << nStep;
    }
  }
}

// Long lists of ranges that meet now and then, some of them several at once, so that some are left
// unmerged, and some that end before they start. Now and then more are left than usual.
TEST(WavDataSilence, AddedOneByOne_AgreesWithTheRuleForLongLists) {
  C_Random random(10);
  for (int nRound = 0; nRound < (kSanitized ? 8 : 60); ++nRound) {
    C_WavData sound;
    C_Ranges expected;
    const unsigned int dwSpan = 1000U << (random() % 4);
    const unsigned int dwLongest = 4U << (random() % 4);
    for (int nStep = 0; nStep < 400; ++nStep) {
      const unsigned int dwStart = random() % dwSpan;
      const unsigned int dwLength = random() % 50 == 0 ? dwSpan / 4 : random() % dwLongest;
      const unsigned int dwEnd = random() % 40 == 0 ? dwStart - 3 : dwStart + dwLength;
      sound.AddSilenceSegment(dwStart, dwEnd);
      expected.emplace_back(dwStart, dwEnd);
      expected = MergedByTheBook(expected);
      ASSERT_EQ(RangesOf(sound.GetSilenceSegmentList()), expected) << nRound << ", " << nStep;
    }
  }
}

// An item that was taken out of its list through the list's own class may outlive the sound.
TEST(WavDataSilence, ItemTakenOutOfItsList_OutlivesTheSound) {
  auto sound = std::make_unique<C_WavData>();
  sound->AddSilenceSegment(0, 10);
  sound->AddSilenceSegment(20, 30);
  auto& list = dynamic_cast<C_SegmentArray&>(*sound->GetSilenceSegmentList());
  const std::unique_ptr<C_SilenceSegment> item(list.GetAt(1));
  list.SetAt(1, nullptr);
  sound.reset();
  item->SetSilenceRange(3, 4);
  EXPECT_EQ(item->GetStartSamplePos(), 3u);
  EXPECT_EQ(item->GetEndSamplePos(), 4u);
}

// Null items may come in place of others; merging passes over them.
TEST(WavDataSilence, AddedAfterANullItem_IsMergedWithTheOthers) {
  C_WavData sound;
  sound.AddSilenceSegment(0, 10);
  sound.AddSilenceSegment(20, 30);
  auto& list = dynamic_cast<C_SegmentArray&>(*sound.GetSilenceSegmentList());
  list.RemoveAt(0, 1);
  list.Add(nullptr);
  sound.AddSilenceSegment(25, 35);
  ASSERT_EQ(list.GetSize(), 2);
  EXPECT_EQ(list.GetAt(0)->GetEndSamplePos(), 35u);
  EXPECT_EQ(list.GetAt(1), nullptr);
  sound.AddSilenceSegment(35, 40);
  ASSERT_EQ(list.GetSize(), 2);
  EXPECT_EQ(list.GetAt(0)->GetEndSamplePos(), 40u);
}

// Looking at every range for every addition would take minutes.
TEST(WavDataSilence, VeryManyAddedOneByOne_EndInTime) {
  constexpr unsigned int kSegments = kSanitized ? 50000 : 200000;
  C_WavData sound;
  for (unsigned int i = 0; i < kSegments; ++i) {
    const unsigned int dwStart = (i % 2 == 0 ? i : 2 * kSegments - i) * 10;
    sound.AddSilenceSegment(dwStart, dwStart + 8);
    sound.AddUncompressRegion(dwStart, dwStart + 8);
  }
  EXPECT_EQ(sound.GetSilenceSegmentList()->GetSize(), int{kSegments});
  EXPECT_EQ(sound.GetUncompressRegionList()->GetSize(), int{kSegments});
  // Each of these meets one.
  for (unsigned int i = 0; i < kSegments / 2; ++i) sound.AddSilenceSegment(i * 20 + 5, i * 20 + 9);
  EXPECT_EQ(sound.GetSilenceSegmentList()->GetSize(), int{kSegments});
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
