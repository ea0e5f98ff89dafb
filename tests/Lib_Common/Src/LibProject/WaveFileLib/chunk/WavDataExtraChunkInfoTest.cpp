// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataExtraChunkInfo.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "InfoChunk.h"
#include "LargestAllocation.h"
#include "VTable.h"

namespace {

C_Bytes DataOf(I_WavDataExtraChunk* pChunk) {
  unsigned char* pbyData = nullptr;
  const unsigned int dwLength = pChunk->GetChunkData(&pbyData);
  EXPECT_EQ(pbyData == nullptr, dwLength == 0);
  return pbyData == nullptr ? C_Bytes() : C_Bytes(pbyData, pbyData + dwLength);
}

std::string NameOf(I_WavDataExtraChunk* pChunk) { return {pChunk->GetChunkName(), 4}; }

class WavDataExtraChunkInfo : public ::testing::Test {
 protected:
  bool Add(const char* pszName, const C_Bytes& data) {
    return m_info.AddChunk(pszName, data.data(), static_cast<unsigned int>(data.size()));
  }

  C_WavDataExtraChunkInfo m_info;
};

}  // namespace

TEST_F(WavDataExtraChunkInfo, AddChunk_CopiesTheData) {
  C_Bytes data = {1, 2, 3};
  EXPECT_TRUE(Add("junk", data));
  data = {9, 9, 9};
  ASSERT_EQ(m_info.GetSize(), 1);
  EXPECT_EQ(NameOf(m_info.GetItemByIndex(0)), "junk");
  EXPECT_EQ(DataOf(m_info.GetItemByIndex(0)), (C_Bytes{1, 2, 3}));
  EXPECT_EQ(m_info.GetItemByIndex(0)->GetChunkData(nullptr), 3u);
}

TEST_F(WavDataExtraChunkInfo, AddChunk_OfALengthWithoutData_Fails) {
  EXPECT_FALSE(m_info.AddChunk("junk", nullptr, 1));
  EXPECT_EQ(m_info.GetSize(), 0);
}

TEST_F(WavDataExtraChunkInfo, Name_IsTerminated) {
  Add("junkyard", {1});
  EXPECT_STREQ(m_info.GetItemByIndex(0)->GetChunkName(), "junk");
}

TEST_F(WavDataExtraChunkInfo, EmptyChunk_KeepsNoBuffer) {
  EXPECT_TRUE(m_info.AddChunk("junk", nullptr, 0));
  unsigned char* pbyData = reinterpret_cast<unsigned char*>(&m_info);
  EXPECT_EQ(m_info.GetItemByIndex(0)->GetChunkData(&pbyData), 0u);
  EXPECT_EQ(pbyData, nullptr);
}

TEST_F(WavDataExtraChunkInfo, Names_AreFourCharacters) {
  Add("junkyard", {1});
  EXPECT_EQ(NameOf(m_info.GetItemByIndex(0)), "junk");
  EXPECT_NE(m_info.GetChunkByName("junk"), nullptr);
  EXPECT_NE(m_info.GetChunkByName("junkfood"), nullptr);
  EXPECT_EQ(m_info.GetChunkByName("junK"), nullptr);
  Add("a\0bc", {2});
  EXPECT_EQ(m_info.GetChunkByName("a\0bd"), nullptr);
  EXPECT_EQ(DataOf(m_info.GetChunkByName("a\0bc")), (C_Bytes{2}));
}

TEST_F(WavDataExtraChunkInfo, ByName_TheFirstMatchCounts) {
  Add("aaaa", {1});
  Add("bbbb", {2});
  Add("aaaa", {3});
  EXPECT_EQ(DataOf(m_info.GetChunkByName("aaaa")), (C_Bytes{1}));
  EXPECT_TRUE(m_info.DelChunkByName("aaaa"));
  EXPECT_EQ(m_info.GetSize(), 2);
  EXPECT_EQ(DataOf(m_info.GetChunkByName("aaaa")), (C_Bytes{3}));
  EXPECT_TRUE(m_info.DelChunkByName("aaaa"));
  EXPECT_FALSE(m_info.DelChunkByName("aaaa"));
  EXPECT_EQ(m_info.GetChunkByName("aaaa"), nullptr);
  EXPECT_EQ(NameOf(m_info.GetItemByIndex(0)), "bbbb");
}

TEST_F(WavDataExtraChunkInfo, AddRiffChunk_CopiesTheWholePayload) {
  const auto chunk = MakeChunk({1, 2, 3, 4, 5});
  EXPECT_TRUE(m_info.AddRiffChunk("fact", chunk.get()));
  chunk->SetData(C_Bytes(5).data());
  EXPECT_EQ(DataOf(m_info.GetChunkByName("fact")), (C_Bytes{1, 2, 3, 4, 5}));
}

TEST_F(WavDataExtraChunkInfo, AddRiffChunk_OfAnEmptyChunk_KeepsItWithoutBuffer) {
  C_RiffChunk chunk("junk", 0);
  EXPECT_TRUE(m_info.AddRiffChunk("junk", &chunk));
  EXPECT_EQ(DataOf(m_info.GetChunkByName("junk")), C_Bytes());
}

TEST_F(WavDataExtraChunkInfo, AddRiffChunk_CutByTheFile_FailsAndTakesNoMemory) {
  C_CutChunk cut(0xFFFFFFF0u, {1, 2, 3});
  ResetLargestAllocation();
  EXPECT_FALSE(m_info.AddRiffChunk("junk", cut.Get()));
  EXPECT_LT(LargestAllocation(), 100000u);
  EXPECT_EQ(m_info.GetSize(), 0);
}

TEST_F(WavDataExtraChunkInfo, AddRiffChunk_WithoutPayload_Fails) {
  C_RiffChunk chunk("junk", 5);
  EXPECT_FALSE(m_info.AddRiffChunk("junk", &chunk));
  EXPECT_EQ(m_info.GetSize(), 0);
}

TEST_F(WavDataExtraChunkInfo, Info_IsAnOwningList) {
  Add("aaaa", {1});
  Add("bbbb", {2});
  m_info.RemoveItemByIndex(0);
  EXPECT_EQ(NameOf(m_info.GetItemByIndex(0)), "bbbb");
  EXPECT_THROW(m_info.GetItemByIndex(1), std::out_of_range);
  m_info.RemoveAll();
  EXPECT_EQ(m_info.GetSize(), 0);
}

TEST_F(WavDataExtraChunkInfo, NullEntry_StopsTheProgram) {
  Add("aaaa", {1});
  m_info.Add(nullptr);
  EXPECT_NE(m_info.GetChunkByName("aaaa"), nullptr);
  EXPECT_DEATH(
      m_info.GetChunkByName("bbbb"),
      "^GetChunkByName: WaveFileLib/WavDataInfo:[0-9]+: assertion failed: NULL != pChunk\n$");
  EXPECT_DEATH(
      m_info.DelChunkByName("bbbb"),
      "^DelChunkByName: WaveFileLib/WavDataInfo:[0-9]+: assertion failed: NULL != pChunk\n$");
}

TEST_F(WavDataExtraChunkInfo, Operations_StandInTheirSlots) {
  auto* pInfo = new C_WavDataExtraChunkInfo;
  I_WavDataExtraChunkInfo* pIInfo = pInfo;
  EXPECT_TRUE((CallSlot<bool, const char*, const void*, unsigned int>(pIInfo, 4, "aaaa", "x", 1)));
  const auto chunk = MakeChunk({7, 8});
  EXPECT_TRUE((CallSlot<bool, const char*, I_RiffChunk*>(pIInfo, 6, "bbbb", chunk.get())));
  EXPECT_EQ(CallSlot<int>(pIInfo, 0), 2);
  auto* pChunk = CallSlot<I_WavDataExtraChunk*>(pIInfo, 1, 1);
  EXPECT_EQ(CallSlot<I_WavDataExtraChunk*>(pIInfo, 7, "bbbb"), pChunk);
  EXPECT_EQ(*CallSlot<const char*>(pChunk, 0), 'b');
  unsigned char* pbyData = nullptr;
  EXPECT_EQ(CallSlot<unsigned int>(pChunk, 1, &pbyData), 2u);
  EXPECT_EQ(pbyData[1], 8);
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 5, "aaaa"));
  CallSlot<void>(pIInfo, 2, 0);
  EXPECT_EQ(pInfo->GetSize(), 0);
  pInfo->AddChunk("cccc", "y", 1);
  CallSlot<void>(pIInfo, 3);
  EXPECT_EQ(pInfo->GetSize(), 0);
  CallSlot<void>(pIInfo, 9);
}

TEST_F(WavDataExtraChunkInfo, ReadThatFails_IsReportedAndAddsNothing) {
  const auto load = [this](I_RiffChunk& chunk) {
    const bool bAdded = m_info.AddRiffChunk("abcd", &chunk);
    EXPECT_EQ(m_info.GetSize(), bAdded ? 1 : 0);
    return bAdded;
  };
  EXPECT_EQ(CountReportedFailures({1, 2, 3}, load), 2);
  EXPECT_EQ(DataOf(m_info.GetItemByIndex(0)), (C_Bytes{1, 2, 3}));
}
