// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataCueInfo.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

#include "InfoChunk.h"
#include "VTable.h"
#include "sound/WavInfo.h"

namespace {

C_Bytes Record(std::uint32_t dwID, std::uint32_t dwPosition) {
  return Words({dwID, dwPosition, kDataID, 3, 4, 5});
}

class C_OpenCueInfo : public C_WavDataCueInfo {
 public:
  using C_WavDataCueInfo::C_WavDataCueInfo;
  using C_WavDataCueInfo::m_cuePoints;
};

class WavDataCueInfo : public ::testing::Test {
 protected:
  bool Add(unsigned int dwID, unsigned int dwPosition) {
    return m_info.AddCuePoint(dwID, dwPosition, kDataID, 0, 0, dwPosition);
  }
  [[nodiscard]] std::vector<unsigned int> IDs() {
    std::vector<unsigned int> ids;
    for (int i = 0; i < m_info.GetCuePointCount(); ++i) {
      ids.push_back(m_info.GetCuePointByIndex(i)->GetCuePointID());
    }
    return ids;
  }
  [[nodiscard]] int IndexOf(unsigned int dwID) {
    int nIndex = -7;
    I_WavDataCuePoint* pFound = m_info.FindCuePointByID(dwID, &nIndex);
    EXPECT_EQ(pFound != nullptr, nIndex >= 0);
    if (pFound != nullptr) {
      EXPECT_EQ(pFound, m_info.GetCuePointByIndex(nIndex));
    }
    return nIndex;
  }

  C_WavInfo m_wavInfo;
  C_OpenCueInfo m_info{&m_wavInfo};
};

constexpr int kNotTouched = -7;

}  // namespace

TEST_F(WavDataCueInfo, NewInfo_IsEmptyAndNotValid) {
  EXPECT_FALSE(m_info.IsValid());
  EXPECT_EQ(m_info.GetCuePointCount(), 0);
  EXPECT_EQ(m_info.GetChunkLength(), 4u);
  EXPECT_EQ(Saved(m_info), Words({0}));
}

TEST_F(WavDataCueInfo, TwoPoints_SaveAs52Bytes) {
  EXPECT_TRUE(m_info.AddCuePoint(1, 2, kDataID, 3, 4, 5));
  EXPECT_TRUE(m_info.AddCuePoint(0xFFFFFFFFu, 7, 8, 9, 10, 11));
  EXPECT_TRUE(m_info.IsValid());
  EXPECT_EQ(m_info.GetChunkLength(), 52u);
  const C_Bytes saved = Saved(m_info);
  EXPECT_EQ(saved, Words({2, 1, 2, kDataID, 3, 4, 5, 0xFFFFFFFFu, 7, 8, 9, 10, 11}));
  EXPECT_EQ(std::memcmp(saved.data() + 12, "data", 4), 0);
}

TEST_F(WavDataCueInfo, CuePoint_GivesEachFieldAndTheRecord) {
  m_info.AddCuePoint(0x01020304u, 2, kDataID, 3, 4, 5);
  I_WavDataCuePoint* pPoint = m_info.GetCuePointByIndex(0);
  EXPECT_EQ(pPoint->GetCuePointID(), 0x01020304u);
  EXPECT_EQ(pPoint->GetPosition(), 2u);
  EXPECT_EQ(pPoint->GetDataChunkID(), kDataID);
  EXPECT_EQ(pPoint->GetChunkStart(), 3u);
  EXPECT_EQ(pPoint->GetBlockStart(), 4u);
  EXPECT_EQ(pPoint->GetSampleOffset(), 5u);
  const C_Bytes record = Words({0x01020304u, 2, kDataID, 3, 4, 5});
  ASSERT_EQ(record.size(), 24u);
  const auto* pCuePoint = static_cast<C_WavDataCueInfo::C_CuePoint*>(pPoint);
  EXPECT_EQ(std::memcmp(pCuePoint->GetCuePointBuffer(), record.data(), record.size()), 0);
}

TEST_F(WavDataCueInfo, AddCuePoint_WithAKnownIdentifier_OverwritesInPlace) {
  Add(1, 10);
  Add(2, 20);
  I_WavDataCuePoint* pFirst = m_info.GetCuePointByIndex(0);
  EXPECT_TRUE(m_info.AddCuePoint(1, 11, 12, 13, 14, 15));
  EXPECT_EQ(IDs(), (std::vector{1u, 2u}));
  EXPECT_EQ(m_info.GetCuePointByIndex(0), pFirst);
  EXPECT_EQ(Saved(m_info), Words({2, 1, 11, 12, 13, 14, 15, 2, 20, kDataID, 0, 0, 20}));
}

TEST_F(WavDataCueInfo, FindCuePointByID_GivesTheFirstMatchAndItsIndex) {
  EXPECT_TRUE(Load(m_info, Join({Words({3}), Record(5, 1), Record(6, 2), Record(5, 3)})));
  EXPECT_EQ(IndexOf(6), 1);
  EXPECT_EQ(IndexOf(5), 0);
  EXPECT_EQ(m_info.FindCuePointByID(5, nullptr)->GetPosition(), 1u);
  EXPECT_EQ(IndexOf(7), kNotTouched);
  EXPECT_EQ(m_info.FindCuePointByID(7, nullptr), nullptr);
}

TEST_F(WavDataCueInfo, AddCuePoint_AmongDuplicates_OverwritesTheFirst) {
  EXPECT_TRUE(Load(m_info, Join({Words({2}), Record(5, 1), Record(5, 3)})));
  EXPECT_TRUE(Add(5, 9));
  EXPECT_EQ(m_info.GetCuePointByIndex(0)->GetPosition(), 9u);
  EXPECT_EQ(m_info.GetCuePointByIndex(1)->GetPosition(), 3u);
}

TEST_F(WavDataCueInfo, RemoveCuePoint_ByIndexAndIdentifier) {
  for (unsigned int i = 0; i < 4; ++i) Add(i, i);
  EXPECT_TRUE(m_info.RemoveCuePointByIndex(1));
  EXPECT_EQ(IDs(), (std::vector{0u, 2u, 3u}));
  EXPECT_TRUE(m_info.RemoveCuePointByID(0));
  EXPECT_FALSE(m_info.RemoveCuePointByID(0));
  EXPECT_EQ(IndexOf(3), 1);
  EXPECT_FALSE(m_info.RemoveCuePointByIndex(2));
  EXPECT_FALSE(m_info.RemoveCuePointByIndex(-1));
  EXPECT_EQ(IDs(), (std::vector{2u, 3u}));
}

TEST_F(WavDataCueInfo, GetCuePointByIndex_OutsideTheList_Throws) {
  Add(1, 1);
  EXPECT_THROW(m_info.GetCuePointByIndex(1), std::out_of_range);
  EXPECT_THROW(m_info.GetCuePointByIndex(-1), std::out_of_range);
}

TEST_F(WavDataCueInfo, Reset_RemovesEveryPoint) {
  Add(1, 1);
  EXPECT_EQ(IndexOf(1), 0);
  m_info.Reset();
  EXPECT_FALSE(m_info.IsValid());
  EXPECT_EQ(IndexOf(1), kNotTouched);
  Add(2, 2);
  Add(1, 3);
  EXPECT_EQ(IndexOf(1), 1);
}

TEST_F(WavDataCueInfo, FindingBetweenChanges_IsAlwaysAWalkFromTheFront) {
  std::mt19937 random(11);
  const auto Pick = [&](unsigned int dwBelow) {
    return static_cast<unsigned int>(random() % dwBelow);
  };
  std::vector<unsigned int> model;
  for (int nStep = 0; nStep < 5000; ++nStep) {
    const unsigned int dwID = Pick(12);
    const auto found = std::find(model.begin(), model.end(), dwID);
    const auto nFound =
        found == model.end() ? kNotTouched : static_cast<int>(found - model.begin());
    switch (Pick(5)) {
      case 0:
        EXPECT_TRUE(Add(dwID, 0));
        if (found == model.end()) model.push_back(dwID);
        break;
      case 1:
        EXPECT_EQ(m_info.RemoveCuePointByID(dwID), found != model.end());
        if (found != model.end()) model.erase(found);
        break;
      case 2: {
        const auto nIndex = static_cast<int>(Pick(10));
        const bool bInside = nIndex < std::ssize(model);
        EXPECT_EQ(m_info.RemoveCuePointByIndex(nIndex), bInside);
        if (bInside) model.erase(model.begin() + nIndex);
        break;
      }
      case 3:
        if (Pick(20) == 0) {
          EXPECT_TRUE(Load(m_info, Join({Words({3}), Record(1, 1), Record(2, 2), Record(1, 3)})));
          model = {1, 2, 1};
        }
        break;
      default:
        EXPECT_EQ(IndexOf(dwID), nFound);
    }
    ASSERT_EQ(IDs(), model) << nStep;
  }
}

TEST_F(WavDataCueInfo, HundredsOfThousandsOfPoints_AreAddedAndFoundInLinearTime) {
  constexpr unsigned int kPoints = 300000;
  for (unsigned int i = 0; i < kPoints; ++i) ASSERT_TRUE(Add(i * 107897u, i));
  for (unsigned int i = 0; i < kPoints; ++i) ASSERT_TRUE(Add(i * 107897u, i + 1));
  EXPECT_EQ(m_info.GetCuePointCount(), static_cast<int>(kPoints));
  for (unsigned int i = 0; i < kPoints; ++i) {
    ASSERT_EQ(m_info.FindCuePointByID(i * 107897u, nullptr)->GetPosition(), i + 1);
  }
  const C_Bytes saved = Saved(m_info);
  EXPECT_TRUE(Load(m_info, saved));
  EXPECT_EQ(Saved(m_info), saved);
}

TEST_F(WavDataCueInfo, LoadInfo_ReplacesThePoints) {
  Add(9, 9);
  EXPECT_TRUE(Load(m_info, Join({Words({2}), Record(1, 10), Record(2, 20)})));
  EXPECT_EQ(IDs(), (std::vector{1u, 2u}));
  EXPECT_EQ(m_info.GetCuePointByIndex(1)->GetPosition(), 20u);
  EXPECT_TRUE(Load(m_info, Words({0})));
  EXPECT_FALSE(m_info.IsValid());
}

TEST_F(WavDataCueInfo, LoadInfo_ReadsNoMoreRecordsThanTheCountSays) {
  EXPECT_TRUE(Load(m_info, Join({Words({1}), Record(1, 10), Record(2, 20)})));
  EXPECT_EQ(IDs(), (std::vector{1u}));
}

TEST_F(WavDataCueInfo, CountBeyondThePayload_KeepsTheWholeRecords) {
  for (const std::uint32_t dwCount : {3u, 0x0AAAAAABu, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_TRUE(Load(m_info, Join({Words({dwCount}), Record(1, 10), Record(2, 20)})));
    EXPECT_EQ(IDs(), (std::vector{1u, 2u})) << dwCount;
    EXPECT_TRUE(Load(m_info, Join({Words({dwCount}), Record(1, 10), C_Bytes(23)})));
    EXPECT_EQ(IDs(), (std::vector{1u})) << dwCount;
    EXPECT_TRUE(Load(m_info, Words({dwCount})));
    EXPECT_EQ(IDs(), (std::vector<unsigned int>{}));
  }
}

TEST_F(WavDataCueInfo, PayloadTooShortForTheCount_ChangesNothing) {
  Add(9, 9);
  for (const std::size_t cb : {0u, 1u, 3u}) EXPECT_TRUE(Load(m_info, C_Bytes(cb, 1)));
  EXPECT_EQ(IDs(), (std::vector{9u}));
}

TEST_F(WavDataCueInfo, PayloadCutByTheFile_Fails) {
  Add(9, 9);
  C_CutChunk cut(4 + 48, Join({Words({2}), Record(1, 10)}));
  EXPECT_FALSE(m_info.LoadInfo(cut.Get()));
  EXPECT_EQ(IDs(), (std::vector{9u}));
}

TEST_F(WavDataCueInfo, SaveInfo_IntoAChunkOfAnotherLength_Fails) {
  Add(1, 1);
  C_RiffChunk shorter("cue ", m_info.GetChunkLength() - 1);
  C_RiffChunk longer("cue ", m_info.GetChunkLength() + 1);
  EXPECT_FALSE(m_info.SaveInfo(&shorter));
  EXPECT_FALSE(m_info.SaveInfo(&longer));
}

TEST_F(WavDataCueInfo, NullEntry_StopsTheProgram) {
  Add(1, 1);
  m_info.m_cuePoints.Add(nullptr);
  constexpr const char* kFind =
      "^FindCuePointByID: WaveFileLib/WavDataInfo:[0-9]+: assertion failed: pCuePoint != NULL\n$";
  EXPECT_NE(m_info.FindCuePointByID(1, nullptr), nullptr);
  EXPECT_DEATH(m_info.FindCuePointByID(2, nullptr), kFind);
  EXPECT_DEATH(Add(2, 2), kFind);
  EXPECT_DEATH(Saved(m_info),
               "^SaveInfo: WaveFileLib/WavDataInfo:[0-9]+: assertion failed: pCuePoint != NULL\n$");
}

TEST_F(WavDataCueInfo, Renumber_ChangesOrRemovesPointsAndFindsThemAgain) {
  ASSERT_TRUE(
      Load(m_info, Join({Words({4}), Record(1, 10), Record(2, 20), Record(3, 30), Record(1, 40)})));
  EXPECT_EQ(IndexOf(3), 2);
  m_info.Renumber([](unsigned int dwID) {
    return dwID == 2 ? std::nullopt : std::optional<unsigned int>(dwID + 0x01020300);
  });
  EXPECT_EQ(IDs(), (std::vector<unsigned int>{0x01020301, 0x01020303, 0x01020301}));
  EXPECT_EQ(Saved(m_info), Join({Words({3}), Record(0x01020301, 10), Record(0x01020303, 30),
                                 Record(0x01020301, 40)}));
  EXPECT_EQ(m_info.FindCuePointByID(3, nullptr), nullptr);
  EXPECT_EQ(m_info.FindCuePointByID(2, nullptr), nullptr);
  EXPECT_EQ(IndexOf(0x01020303), 1);
  EXPECT_EQ(IndexOf(0x01020301), 0);
}

TEST_F(WavDataCueInfo, Operations_StandInTheirSlots) {
  auto* pInfo = new C_WavDataCueInfo(&m_wavInfo);
  I_WavDataCueInfo* pIInfo = pInfo;
  EXPECT_FALSE(CallSlot<bool>(pIInfo, 0));
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 5, 1u, 2u, 3u, 4u, 5u, 6u));
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 5, 7u, 8u, 9u, 10u, 11u, 12u));
  EXPECT_EQ(CallSlot<int>(pIInfo, 2), 2);
  auto* pPoint = CallSlot<I_WavDataCuePoint*>(pIInfo, 3, 1);
  for (unsigned int i = 0; i < 6; ++i) EXPECT_EQ(CallSlot<unsigned int>(pPoint, i), 7 + i);
  int nIndex = 0;
  EXPECT_EQ(CallSlot<I_WavDataCuePoint*>(pIInfo, 4, 7u, &nIndex), pPoint);
  EXPECT_EQ(nIndex, 1);
  EXPECT_EQ(CallSlot<unsigned int>(pIInfo, 8), 52u);
  const auto chunk = MakeChunk(Join({Words({2}), Record(1, 10), Record(2, 20)}));
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 9, chunk.get()));
  C_RiffChunk target("cue ", 52);
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 10, &target));
  EXPECT_EQ(PayloadOf(target), PayloadOf(*chunk));
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 6, 0));
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 7, 2u));
  EXPECT_EQ(pInfo->GetCuePointCount(), 0);
  pInfo->AddCuePoint(1, 2, 3, 4, 5, 6);
  CallSlot<void>(pIInfo, 1);
  EXPECT_FALSE(pInfo->IsValid());
  CallSlot<void>(pIInfo, 12);
}

TEST_F(WavDataCueInfo, ReadThatFails_IsReported) {
  const C_Bytes payload = Join({Words({2}), Record(1, 10), Record(2, 20)});
  const auto load = [this](I_RiffChunk& chunk) { return m_info.LoadInfo(&chunk); };
  EXPECT_EQ(CountReportedFailures(payload, load), 3);
}
