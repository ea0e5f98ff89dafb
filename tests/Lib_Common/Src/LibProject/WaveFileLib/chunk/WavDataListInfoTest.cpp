// SPDX-License-Identifier: Apache-2.0
#include "chunk/WavDataListInfo.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "InfoChunk.h"
#include "VTable.h"

namespace {

C_Bytes Label(std::uint32_t dwID, const std::string& strStored) {
  return ChunkBytes("labl", Join({Words({dwID}), Ascii(strStored)}));
}

C_Bytes Ltxt(std::uint32_t dwID, std::uint32_t dwLength) {
  return ChunkBytes("ltxt", Join({Words({dwID, dwLength}), Ascii("rgn "), C_Bytes(8)}));
}

C_Bytes List(std::initializer_list<C_Bytes> subChunks) {
  return Join({Ascii("adtl"), Join(subChunks)});
}

class WavDataListInfo : public ::testing::Test {
 protected:
  [[nodiscard]] std::string LabelAt(int nIndex) {
    unsigned int dwID = 0;
    const std::string strText = m_info.GetLabelByIndex(nIndex, &dwID);
    return std::to_string(dwID) + ":" + strText;
  }
  [[nodiscard]] std::string LtxtAt(int nIndex) {
    unsigned int dwID = 0;
    unsigned int dwLength = 0;
    const char* pachPurpose = m_info.GetLtxtByIndex(nIndex, &dwID, &dwLength);
    return std::to_string(dwID) + ":" + std::to_string(dwLength) + ":" +
           std::string(pachPurpose, 4);
  }

  C_WavDataListInfo m_info;
};

}  // namespace

TEST_F(WavDataListInfo, NewInfo_IsEmpty) {
  EXPECT_EQ(m_info.GetLabelCount(), 0);
  EXPECT_EQ(m_info.GetLtxtCount(), 0);
  EXPECT_EQ(m_info.GetChunkLength(), 4u);
  EXPECT_EQ(Saved(m_info), Ascii("adtl"));
}

TEST_F(WavDataListInfo, Label_IsSavedWithItsTerminatorEven) {
  struct S_Case {
    const char* pszText;
    std::uint32_t dwSize;
  };
  const S_Case cases[] = {{"", 6},       {"a", 6},       {"ab", 8},          {"abc", 8},
                          {"u_3_7", 10}, {"VX_PCM", 12}, {"VX_Silence", 16}, {"(65538,7)", 14}};
  for (const S_Case& one : cases) {
    m_info.RemoveAllLabels();
    EXPECT_TRUE(m_info.AddLabel(0x01020304u, one.pszText));
    EXPECT_EQ(m_info.GetChunkLength(), 4 + 8 + one.dwSize) << one.pszText;
    C_Bytes text = Ascii(one.pszText);
    text.resize(one.dwSize - 4);
    EXPECT_EQ(Saved(m_info),
              Join({Ascii("adtl"), Ascii("labl"), Words({one.dwSize, 0x01020304u}), text}));
  }
}

TEST_F(WavDataListInfo, LabelPadding_IsCountedInTheSize) {
  m_info.AddLabel(1, "VX_PCM");
  EXPECT_EQ(Saved(m_info),
            List({ChunkBytes("labl", 12, Join({Words({1}), Ascii("VX_PCM"), {0, 0}}))}));
  EXPECT_EQ(m_info.GetChunkLength(), 4u + 20u);
}

TEST_F(WavDataListInfo, LabelledText_IsSavedIn20Bytes) {
  EXPECT_TRUE(m_info.AddLtxt(1, 500, "rgn "));
  EXPECT_EQ(Saved(m_info), List({Ltxt(1, 500)}));
  EXPECT_EQ(m_info.GetChunkLength(), 4u + 28u);
}

TEST_F(WavDataListInfo, SaveInfo_WritesTextsBeforeLabels) {
  m_info.AddLabel(1, "ab");
  m_info.AddLtxt(2, 20, "rgn ");
  m_info.AddLabel(3, "c");
  m_info.AddLtxt(1, 10, "rgn ");
  EXPECT_EQ(m_info.GetChunkLength(), 4u + 12 + 4 + 12 + 2 + 2 * 28);
  EXPECT_EQ(Saved(m_info), List({Ltxt(2, 20), Ltxt(1, 10), Label(1, std::string("ab\0\0", 4)),
                                 Label(3, std::string("c\0", 2))}));
}

TEST_F(WavDataListInfo, AddLabel_WithAKnownIdentifier_Appends) {
  m_info.AddLabel(1, "first");
  m_info.AddLabel(1, "second");
  EXPECT_EQ(m_info.GetLabelCount(), 2);
  EXPECT_EQ(LabelAt(0), "1:first");
  EXPECT_EQ(LabelAt(1), "1:second");
}

TEST_F(WavDataListInfo, AddLabel_CutsTheTextAt64Characters) {
  m_info.AddLabel(1, std::string(63, 'x').c_str());
  m_info.AddLabel(2, std::string(64, 'y').c_str());
  m_info.AddLabel(3, std::string(100, 'z').c_str());
  EXPECT_EQ(LabelAt(0), "1:" + std::string(63, 'x'));
  EXPECT_EQ(LabelAt(1), "2:" + std::string(64, 'y'));
  EXPECT_EQ(LabelAt(2), "3:" + std::string(64, 'z'));
  EXPECT_EQ(m_info.GetChunkLength(), 4u + 3 * 12 + 64 + 66 + 66);
}

TEST_F(WavDataListInfo, NullTexts_AreEmpty) {
  EXPECT_TRUE(m_info.AddLabel(1, nullptr));
  EXPECT_EQ(LabelAt(0), "1:");
  EXPECT_TRUE(m_info.AddLtxt(1, 2, nullptr));
  EXPECT_EQ(LtxtAt(0), "1:2:" + std::string(4, '\0'));
}

TEST_F(WavDataListInfo, Purpose_IsFourCharacters) {
  m_info.AddLtxt(1, 2, "ab");
  m_info.AddLtxt(1, 2, "abcdef");
  EXPECT_EQ(LtxtAt(0), "1:2:" + std::string("ab\0\0", 4));
  EXPECT_EQ(LtxtAt(1), "1:2:abcd");
}

TEST_F(WavDataListInfo, Purpose_IsTerminatedWhateverFollowsItInTheFile) {
  const C_Bytes ltxt = ChunkBytes("ltxt", Join({Words({1, 2}), Ascii("rgn "), C_Bytes(8, 'X')}));
  EXPECT_TRUE(Load(m_info, List({ltxt})));
  EXPECT_STREQ(m_info.GetLtxtByIndex(0, nullptr, nullptr), "rgn ");
  m_info.AddLtxt(1, 2, "abcdef");
  EXPECT_STREQ(m_info.GetLtxtByIndex(1, nullptr, nullptr), "abcd");
}

TEST_F(WavDataListInfo, Texts_AreCopied) {
  std::string strText = "text";
  m_info.AddLabel(1, strText.c_str());
  m_info.AddLtxt(1, 2, strText.c_str());
  strText = "gone";
  EXPECT_EQ(LabelAt(0), "1:text");
  EXPECT_EQ(LtxtAt(0), "1:2:text");
}

TEST_F(WavDataListInfo, Accessors_OutsideTheLists_Throw) {
  m_info.AddLabel(1, "a");
  m_info.AddLtxt(1, 2, "rgn ");
  unsigned int dwUnused = 0;
  EXPECT_THROW(m_info.GetLabelByIndex(1, &dwUnused), std::out_of_range);
  EXPECT_THROW(m_info.GetLabelByIndex(-1, &dwUnused), std::out_of_range);
  EXPECT_THROW(m_info.GetLtxtByIndex(1, &dwUnused, &dwUnused), std::out_of_range);
  EXPECT_STREQ(m_info.GetLabelByIndex(0, nullptr), "a");
  EXPECT_EQ(*m_info.GetLtxtByIndex(0, nullptr, nullptr), 'r');
}

TEST_F(WavDataListInfo, Removing_EmptiesOneListOnly) {
  m_info.AddLabel(1, "a");
  m_info.AddLtxt(1, 2, "rgn ");
  m_info.RemoveAllLabels();
  EXPECT_EQ(m_info.GetLabelCount(), 0);
  EXPECT_EQ(m_info.GetLtxtCount(), 1);
  m_info.AddLabel(1, "a");
  m_info.RemoveAllLtxts();
  EXPECT_EQ(m_info.GetLabelCount(), 1);
  EXPECT_EQ(m_info.GetLtxtCount(), 0);
}

TEST_F(WavDataListInfo, LoadInfo_ReplacesLabelsAndTexts) {
  m_info.AddLabel(9, "old");
  m_info.AddLtxt(9, 9, "rgn ");
  EXPECT_TRUE(Load(m_info, List({Label(1, std::string("ab\0\0", 4)), Ltxt(1, 500),
                                 Label(2, std::string("c\0", 2))})));
  ASSERT_EQ(m_info.GetLabelCount(), 2);
  ASSERT_EQ(m_info.GetLtxtCount(), 1);
  EXPECT_EQ(LabelAt(0), "1:ab");
  EXPECT_EQ(LabelAt(1), "2:c");
  EXPECT_EQ(LtxtAt(0), "1:500:rgn ");
  EXPECT_TRUE(Load(m_info, List({})));
  EXPECT_EQ(m_info.GetLabelCount(), 0);
  EXPECT_EQ(m_info.GetLtxtCount(), 0);
}

TEST_F(WavDataListInfo, LoadedTexts_SaveTheirFourWordsAgain) {
  const C_Bytes ltxt = ChunkBytes("ltxt", Join({Words({1, 2}), Ascii("rgn "), U16(0x0102),
                                                U16(0x0304), U16(0x0506), U16(0xFFFE)}));
  EXPECT_TRUE(Load(m_info, List({ltxt})));
  EXPECT_EQ(Saved(m_info), List({ltxt}));
}

TEST_F(WavDataListInfo, ListOfAnotherType_IsLeftAlone) {
  m_info.AddLabel(9, "old");
  m_info.AddLtxt(9, 9, "rgn ");
  EXPECT_TRUE(Load(m_info, Join({Ascii("INFO"), ChunkBytes("INAM", Ascii("name"))})));
  EXPECT_TRUE(Load(m_info, Ascii("adtL")));
  EXPECT_EQ(LabelAt(0), "9:old");
  EXPECT_EQ(m_info.GetLtxtCount(), 1);
}

TEST_F(WavDataListInfo, PayloadTooShortForTheType_ChangesNothing) {
  m_info.AddLabel(9, "old");
  EXPECT_TRUE(Load(m_info, {}));
  EXPECT_TRUE(Load(m_info, Ascii("a")));
  EXPECT_TRUE(Load(m_info, Ascii("adt")));
  EXPECT_EQ(LabelAt(0), "9:old");
}

TEST_F(WavDataListInfo, HeaderAtTheVeryEnd_IsIgnored) {
  const C_Bytes label = Label(1, std::string("a\0", 2));
  EXPECT_TRUE(Load(m_info, List({label, ChunkBytes("labl", {})})));
  EXPECT_EQ(m_info.GetLabelCount(), 1);
  EXPECT_TRUE(Load(m_info, List({label, ChunkBytes("labl", 0xFFFFFFFFu, {})})));
  EXPECT_TRUE(Load(m_info, List({label, Ascii("labl"), {1, 0}})));
  EXPECT_EQ(m_info.GetLabelCount(), 1);
}

TEST_F(WavDataListInfo, OddSubChunk_IsFollowedByAPadByte) {
  EXPECT_TRUE(Load(
      m_info, List({Label(1, std::string("abcd\0", 5)), {0}, Label(2, std::string("c\0", 2))})));
  ASSERT_EQ(m_info.GetLabelCount(), 2);
  EXPECT_EQ(LabelAt(0), "1:abcd");
  EXPECT_EQ(LabelAt(1), "2:c");
}

TEST_F(WavDataListInfo, OddSubChunkAtTheEnd_MayLackItsPadByte) {
  EXPECT_TRUE(Load(m_info, List({Label(1, std::string("abcd\0", 5))})));
  EXPECT_EQ(LabelAt(0), "1:abcd");
}

TEST_F(WavDataListInfo, TextAfterALabelledText_IsSkipped) {
  const C_Bytes longer =
      ChunkBytes("ltxt", Join({Words({1, 500}), Ascii("rgn "), C_Bytes(8), Ascii("some words")}));
  EXPECT_TRUE(Load(m_info, List({longer, Label(2, std::string("c\0", 2))})));
  EXPECT_EQ(LtxtAt(0), "1:500:rgn ");
  EXPECT_EQ(LabelAt(0), "2:c");
  EXPECT_EQ(m_info.GetChunkLength(), 4u + 28 + 14);
}

TEST_F(WavDataListInfo, OtherSubChunks_AreSkippedAndLost) {
  EXPECT_TRUE(Load(m_info, List({ChunkBytes("note", {1, 0, 0, 0, 'x', 0}),
                                 Ltxt(1, 2),
                                 ChunkBytes("file", {1, 2, 3}),
                                 {0},
                                 Label(2, std::string("c\0", 2))})));
  EXPECT_EQ(Saved(m_info), List({Ltxt(1, 2), Label(2, std::string("c\0", 2))}));
}

TEST_F(WavDataListInfo, LongLabel_IsCutTo64Characters) {
  EXPECT_TRUE(Load(m_info, List({Label(1, std::string(100, 'x')), Label(2, "ab")})));
  EXPECT_EQ(LabelAt(0), "1:" + std::string(64, 'x'));
  EXPECT_EQ(LabelAt(1), "2:ab");
}

TEST_F(WavDataListInfo, Label_EndsAtItsFirstZero) {
  EXPECT_TRUE(Load(m_info, List({Label(1, std::string("ab\0cd\0", 6)), Label(2, std::string())})));
  EXPECT_EQ(LabelAt(0), "1:ab");
  EXPECT_EQ(LabelAt(1), "2:");
}

TEST_F(WavDataListInfo, SubChunkTooShortForItsFields_Fails) {
  for (std::uint32_t dwSize = 0; dwSize < 4; ++dwSize) {
    EXPECT_FALSE(Load(m_info, List({ChunkBytes("labl", dwSize, C_Bytes(64))}))) << dwSize;
  }
  EXPECT_TRUE(Load(m_info, List({ChunkBytes("labl", C_Bytes(4))})));
  for (std::uint32_t dwSize = 0; dwSize < 20; ++dwSize) {
    EXPECT_FALSE(Load(m_info, List({ChunkBytes("ltxt", dwSize, C_Bytes(64))}))) << dwSize;
  }
  EXPECT_TRUE(Load(m_info, List({ChunkBytes("ltxt", C_Bytes(20))})));
}

TEST_F(WavDataListInfo, SubChunkBeyondThePayload_Fails) {
  for (const char* pszID : {"labl", "ltxt", "note"}) {
    for (const std::uint32_t dwSize :
         {41u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF7u, 0xFFFFFFFEu, 0xFFFFFFFFu}) {
      EXPECT_FALSE(Load(m_info, List({Label(1, "ab"), ChunkBytes(pszID, dwSize, C_Bytes(40))})))
          << pszID << dwSize;
      EXPECT_EQ(LabelAt(0), "1:ab");
    }
    EXPECT_TRUE(Load(m_info, List({ChunkBytes(pszID, 40, C_Bytes(40))})));
  }
}

TEST_F(WavDataListInfo, PayloadCutByTheFile_Fails) {
  m_info.AddLabel(9, "old");
  C_CutChunk cut(100, List({Label(1, std::string("ab\0\0", 4))}));
  EXPECT_FALSE(m_info.LoadInfo(cut.Get()));
  EXPECT_EQ(LabelAt(0), "9:old");
}

TEST_F(WavDataListInfo, PayloadOfAnyLength_IsReadWithoutLeavingIt) {
  const C_Bytes whole = List({Label(1, std::string("abcd\0", 5)),
                              {0},
                              Ltxt(1, 500),
                              ChunkBytes("note", {1, 2, 3}),
                              {0},
                              Label(2, std::string("c\0", 2))});
  for (std::ptrdiff_t cb = 0; cb <= std::ssize(whole); ++cb) {
    C_WavDataListInfo info;
    Load(info, C_Bytes(whole.begin(), whole.begin() + cb));
    EXPECT_LE(info.GetLabelCount(), (cb >= 21) + (cb >= std::ssize(whole)));
    EXPECT_LE(info.GetLtxtCount(), cb >= 50);
  }
}

TEST_F(WavDataListInfo, HundredThousandLabels_LoadAndSaveInLinearTime) {
  constexpr unsigned int kLabels = 100000;
  for (unsigned int i = 0; i < kLabels; ++i) {
    m_info.AddLabel(i % 10, "VX_PCM");
    m_info.AddLtxt(i, i, "rgn ");
  }
  const C_Bytes saved = Saved(m_info);
  C_WavDataListInfo again;
  EXPECT_TRUE(Load(again, saved));
  EXPECT_EQ(again.GetLabelCount(), static_cast<int>(kLabels));
  EXPECT_EQ(Saved(again), saved);
}

TEST_F(WavDataListInfo, Renumber_ChangesOrRemovesWhatCarriesAnIdentifier) {
  for (const unsigned int dwID : {1U, 2U, 3U, 1U}) {
    m_info.AddLabel(dwID, "text");
    m_info.AddLtxt(dwID, 10 * dwID, "rgn ");
  }
  m_info.Renumber([](unsigned int dwID) {
    return dwID == 2 ? std::nullopt : std::optional<unsigned int>(dwID + 100);
  });
  ASSERT_EQ(m_info.GetLabelCount(), 3);
  ASSERT_EQ(m_info.GetLtxtCount(), 3);
  EXPECT_EQ(LabelAt(0) + LabelAt(1) + LabelAt(2), "101:text103:text101:text");
  EXPECT_EQ(LtxtAt(0) + LtxtAt(1) + LtxtAt(2), "101:10:rgn 103:30:rgn 101:10:rgn ");
}

TEST_F(WavDataListInfo, RemoveLabels_LeavesTheTexts) {
  m_info.AddLabel(1, "a");
  m_info.AddLabel(2, "b");
  m_info.AddLtxt(1, 5, "rgn ");
  m_info.RemoveLabels([](const char* pszText) { return *pszText == 'a'; });
  ASSERT_EQ(m_info.GetLabelCount(), 1);
  EXPECT_EQ(LabelAt(0), "2:b");
  EXPECT_EQ(m_info.GetLtxtCount(), 1);
}

TEST_F(WavDataListInfo, SaveInfo_IntoAChunkOfAnotherLength_Fails) {
  C_RiffChunk shorter("LIST", 3);
  C_RiffChunk longer("LIST", 5);
  EXPECT_FALSE(m_info.SaveInfo(&shorter));
  EXPECT_FALSE(m_info.SaveInfo(&longer));
}

TEST_F(WavDataListInfo, Operations_StandInTheirSlots) {
  auto* pInfo = new C_WavDataListInfo;
  I_WavDataListInfo* pIInfo = pInfo;
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 4, 1u, "ab"));
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 8, 2u, 500u, "rgn "));
  EXPECT_EQ(CallSlot<int>(pIInfo, 1), 1);
  EXPECT_EQ(CallSlot<int>(pIInfo, 5), 1);
  EXPECT_EQ(CallSlot<unsigned int>(pIInfo, 0), 4u + 16 + 28);
  unsigned int dwID = 0;
  unsigned int dwLength = 0;
  EXPECT_STREQ(CallSlot<const char*>(pIInfo, 3, 0, &dwID), "ab");
  EXPECT_EQ(dwID, 1u);
  EXPECT_EQ(*CallSlot<const char*>(pIInfo, 7, 0, &dwID, &dwLength), 'r');
  EXPECT_EQ(dwID, 2u);
  EXPECT_EQ(dwLength, 500u);
  C_RiffChunk target("LIST", 48);
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 10, &target));
  CallSlot<void>(pIInfo, 2);
  EXPECT_EQ(pInfo->GetLabelCount(), 0);
  CallSlot<void>(pIInfo, 6);
  EXPECT_EQ(pInfo->GetLtxtCount(), 0);
  EXPECT_TRUE(CallSlot<bool>(pIInfo, 9, &target));
  EXPECT_EQ(pInfo->GetLabelCount() + pInfo->GetLtxtCount(), 2);
  CallSlot<void>(pIInfo, 12);
}

TEST_F(WavDataListInfo, ReadThatFails_IsReported) {
  const C_Bytes payload = List({Label(1, "ab"), Ltxt(2, 30), ChunkBytes("note", {1, 2})});
  const auto load = [this](I_RiffChunk& chunk) { return m_info.LoadInfo(&chunk); };
  EXPECT_EQ(CountReportedFailures(payload, load), 7);
}
