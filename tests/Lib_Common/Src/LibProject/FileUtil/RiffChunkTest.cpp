// SPDX-License-Identifier: Apache-2.0
//
// Chunks, their payloads and lists of chunks.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <type_traits>

#include "LargestAllocation.h"
#include "RiffFile.h"
#include "RiffFixture.h"
#include "StdioFile.h"
#include "VTable.h"

namespace {

class RiffChunk : public C_RiffFixture {
 protected:
  // Opens a file with one chunk "aaaa" that claims dwClaimed bytes and holds this payload.
  C_RiffChunk* OpenOne(std::uint32_t dwClaimed, const C_Bytes& payload) {
    EXPECT_TRUE(Open(m_file, C_RiffBytes("WAVE").Chunk("aaaa", dwClaimed, payload).Take()));
    return m_file.GetChunkAt(0);
  }

  C_RiffFile m_file;
};

}  // namespace

TEST_F(RiffChunk, GetData_CopiesTheRangeAskedFor) {
  C_RiffChunk* pChunk = OpenOne(6, {1, 2, 3, 4, 5, 6});
  C_Bytes part(3);
  EXPECT_TRUE(pChunk->GetData(part.data(), 3, 2));
  EXPECT_EQ(part, (C_Bytes{3, 4, 5}));
  EXPECT_TRUE(pChunk->GetData(part.data(), 1, 5));
  EXPECT_EQ(part, (C_Bytes{6, 4, 5}));
  EXPECT_TRUE(pChunk->GetData(part.data(), 0, 6));
  EXPECT_TRUE(pChunk->GetData(nullptr, 0, 0));
}

TEST_F(RiffChunk, GetData_OutsideThePayload_IsFalse) {
  C_RiffChunk* pChunk = OpenOne(4, {1, 2, 3, 4});
  C_Bytes target(8, 0xEE);
  EXPECT_FALSE(pChunk->GetData(target.data(), 5, 0));
  EXPECT_FALSE(pChunk->GetData(target.data(), 4, 1));
  EXPECT_FALSE(pChunk->GetData(target.data(), 1, 4));
  EXPECT_FALSE(pChunk->GetData(target.data(), 0, 5));
  EXPECT_FALSE(pChunk->GetData(target.data(), 2, 0xFFFFFFFFu));
  EXPECT_FALSE(pChunk->GetData(target.data(), 0xFFFFFFFFu, 2));
  EXPECT_EQ(target, C_Bytes(8, 0xEE));
  EXPECT_TRUE(pChunk->GetData(target.data(), 4, 0));
}

TEST_F(RiffChunk, GetData_OfAPayloadThatIsCompletedAfterOpening_IsTrue) {
  C_RiffChunk* pChunk = OpenOne(4, {1, 2});
  std::ofstream(m_folder.Path("in"), std::ios::binary | std::ios::app) << "\3\4";
  EXPECT_EQ(PayloadOf(pChunk), (C_Bytes{1, 2, 3, 4}));
}

TEST_F(RiffChunk, GetData_OfAnEmptyChunk_IsFalse) {
  C_RiffChunk* pChunk = OpenOne(0, {});
  C_Bytes target(1);
  EXPECT_FALSE(pChunk->GetData(target.data(), 0, 0));
  EXPECT_FALSE(pChunk->GetData(target.data(), 1, 0));
}

TEST_F(RiffChunk, GetData_ReadsThePayloadOnce) {
  C_RiffChunk* pChunk = OpenOne(4, {1, 2, 3, 4});
  EXPECT_EQ(PayloadOf(pChunk), (C_Bytes{1, 2, 3, 4}));
  std::filesystem::resize_file(m_folder.Path("in"), 0);
  EXPECT_EQ(PayloadOf(pChunk), (C_Bytes{1, 2, 3, 4}));
}

TEST_F(RiffChunk, GetDataAfterAFailedRead_GivesZerosAndIsTrue) {
  C_RiffChunk* pChunk = OpenOne(6, {1, 2, 3});
  C_Bytes target(6, 0xEE);
  EXPECT_FALSE(pChunk->GetData(target.data(), 6, 0));
  EXPECT_EQ(target, C_Bytes(6, 0xEE));
  EXPECT_TRUE(pChunk->GetData(target.data(), 2, 1));
  EXPECT_EQ(target, (C_Bytes{0, 0, 0xEE, 0xEE, 0xEE, 0xEE}));
  EXPECT_FALSE(pChunk->GetData(target.data(), 6, 1));
  m_file.SafeCloseFile();
  EXPECT_TRUE(pChunk->GetData(target.data(), 6, 0));
  EXPECT_EQ(target, C_Bytes(6));
}

TEST_F(RiffChunk, HugeClaimedPayload_TakesNoMemory) {
  C_RiffChunk* pChunk = OpenOne(0xFFFFFFF0u, {1, 2, 3});
  C_Bytes target(16);
  ResetLargestAllocation();
  EXPECT_FALSE(pChunk->GetData(target.data(), 16, 0));
  EXPECT_TRUE(pChunk->GetData(target.data(), 16, 0xFFFFFFE0u));
  EXPECT_FALSE(pChunk->GetData(target.data(), 16, 0xFFFFFFE1u));
  EXPECT_LT(LargestAllocation(), 100000u);
}

TEST_F(RiffChunk, ReadAll_ReadsPastTheChunksOwnMemory) {
  C_RiffChunk* pChunk = OpenOne(3, {1, 2, 3});
  const auto payload = pChunk->ReadAll(2);
  ASSERT_NE(payload, nullptr);
  EXPECT_EQ(C_Bytes(payload.get(), payload.get() + 5), (C_Bytes{1, 2, 3, 0, 0}));
  EXPECT_EQ(OpenOne(4, {1, 2, 3})->ReadAll(0), nullptr) << "cut";
  EXPECT_EQ(OpenOne(0, {})->ReadAll(0), nullptr) << "empty";
  EXPECT_EQ(C_RiffChunk("aaaa", 3).ReadAll(0), nullptr) << "not on disk";
  pChunk = OpenOne(3, {1, 2, 3});
  m_file.SafeCloseFile();
  EXPECT_EQ(pChunk->ReadAll(0), nullptr) << "closed";
}

TEST_F(RiffChunk, UnreadPayload_DiesWithTheFile) {
  C_RiffChunk* pChunk = OpenOne(4, {1, 2, 3, 4});
  m_file.SafeCloseFile();
  C_Bytes target(4);
  EXPECT_FALSE(pChunk->GetData(target.data(), 4, 0));
  EXPECT_FALSE(pChunk->GetData(target.data(), 4, 0));
  EXPECT_FALSE(pChunk->LoadSubChunks());
}

TEST_F(RiffChunk, ReadPayload_OutlivesTheOpenFile) {
  C_RiffChunk* pChunk = OpenOne(4, {1, 2, 3, 4});
  EXPECT_EQ(PayloadOf(pChunk), (C_Bytes{1, 2, 3, 4}));
  m_file.SafeCloseFile();
  EXPECT_EQ(PayloadOf(pChunk), (C_Bytes{1, 2, 3, 4}));
}

TEST_F(RiffChunk, ChunkInMemory_HasNoPayloadBeforeSetData) {
  C_RiffChunk chunk("abcd", 3);
  C_Bytes target(3);
  EXPECT_EQ(chunk.GetDataLength(), 3u);
  EXPECT_FALSE(chunk.GetData(target.data(), 3, 0));
  EXPECT_FALSE(chunk.LoadSubChunks());
  C_Bytes source = {7, 8, 9, 10};
  chunk.SetData(source.data());
  source[0] = 99;
  EXPECT_EQ(PayloadOf(&chunk), (C_Bytes{7, 8, 9}));
  EXPECT_FALSE(chunk.GetData(target.data(), 3, 1));
}

TEST_F(RiffChunk, SetData_OnAnEmptyChunk_DoesNothing) {
  C_RiffChunk chunk("abcd", 0);
  chunk.SetData(nullptr);
  C_Bytes target(1);
  EXPECT_FALSE(chunk.GetData(target.data(), 0, 0));
}

TEST_F(RiffChunk, SetData_ReplacesWhatTheDiskHolds) {
  C_RiffChunk* pChunk = OpenOne(3, {1, 2, 3});
  pChunk->SetData(C_Bytes{4, 5, 6}.data());
  EXPECT_EQ(PayloadOf(pChunk), (C_Bytes{4, 5, 6}));
  EXPECT_EQ(Saved(m_file), C_RiffBytes("WAVE").Chunk("aaaa", {4, 5, 6}).Take());
}

TEST_F(RiffChunk, SetData_AfterAFailedRead_IsWhatCounts) {
  C_RiffChunk* pChunk = OpenOne(4, {1});
  C_Bytes target(4);
  EXPECT_FALSE(pChunk->GetData(target.data(), 4, 0));
  pChunk->SetData(C_Bytes{4, 5, 6, 7}.data());
  EXPECT_EQ(PayloadOf(pChunk), (C_Bytes{4, 5, 6, 7}));
}

TEST_F(RiffChunk, LoadSubChunks_ListsThePayload) {
  const C_Bytes inner = Join({ChunkBytes("in 1", {1, 2, 3}), {0}, ChunkBytes("in 2", {4})});
  EXPECT_TRUE(Open(m_file, C_RiffBytes("WAVE").Chunk("aaaa", inner).Chunk("bbbb", {9}).Take()));
  C_RiffChunk* pChunk = m_file.GetChunkAt(0);
  EXPECT_TRUE(pChunk->LoadSubChunks());
  C_RiffChunkList& subs = pChunk->GetSubChunks();
  ASSERT_EQ(subs.GetCount(), 2);
  EXPECT_EQ(IDOf(subs.GetAt(0)), "in 1");
  EXPECT_EQ(PayloadOf(subs.GetAt(0)), (C_Bytes{1, 2, 3}));
  EXPECT_EQ(IDOf(subs.GetAt(1)), "in 2");
  EXPECT_EQ(subs.GetAt(1)->GetDataPos(), 12u + 8 + 12 + 8);
  EXPECT_EQ(PayloadOf(m_file.GetChunkAt(1)), (C_Bytes{9}));
}

TEST_F(RiffChunk, LoadSubChunks_TakesTheTypeWordOfAListForAnIdentifier) {
  const C_Bytes payload = Join({Ascii("adtl"), ChunkBytes("labl", {1, 0, 0, 0, 0, 0})});
  EXPECT_TRUE(Open(m_file, C_RiffBytes("WAVE").Chunk("LIST", payload).Take()));
  EXPECT_TRUE(m_file.GetChunkAt(0)->LoadSubChunks());
  C_RiffChunkList& subs = m_file.GetChunkAt(0)->GetSubChunks();
  ASSERT_EQ(subs.GetCount(), 1);
  EXPECT_EQ(IDOf(subs.GetAt(0)), "adtl");
  EXPECT_EQ(subs.GetAt(0)->GetDataLength(), 0x6C62616Cu);
}

TEST_F(RiffChunk, LoadSubChunks_OfAnEmptyChunk_FindsNothing) {
  C_RiffChunk* pChunk = OpenOne(0, {});
  EXPECT_TRUE(pChunk->LoadSubChunks());
  EXPECT_EQ(pChunk->GetSubChunks().GetCount(), 0);
}

TEST_F(RiffChunk, SubChunks_DieWithTheFileToo) {
  C_RiffChunk* pChunk = OpenOne(11, ChunkBytes("in 1", {1, 2, 3}));
  EXPECT_TRUE(pChunk->LoadSubChunks());
  m_file.SafeCloseFile();
  C_Bytes target(3);
  EXPECT_FALSE(pChunk->GetSubChunks().GetAt(0)->GetData(target.data(), 3, 0));
}

TEST_F(RiffChunk, Operations_StandInTheirSlots) {
  auto* pChunk = new C_RiffChunk("abcd", 2);
  I_RiffChunk* pIChunk = pChunk;
  EXPECT_EQ(CallSlot<unsigned int>(pIChunk, 0), 2u);
  const C_Bytes source = {5, 6};
  CallSlot<void, const void*>(pIChunk, 2, source.data());
  C_Bytes target(2);
  EXPECT_TRUE((CallSlot<bool, void*, unsigned int, unsigned int>(pIChunk, 1, target.data(), 2, 0)));
  EXPECT_EQ(target, source);
  CallSlot<void>(pIChunk, 4);
}

TEST(RiffChunkList, List_OwnsItsChunks) {
  EXPECT_TRUE((std::is_base_of_v<C_CLArray<C_RiffChunk*, C_RiffChunk*, true>, C_RiffChunkList>));
  C_RiffChunkList list;
  list.AddChunk("aaaa", 1);
  list.AddChunk("bbbb", 2);
  EXPECT_EQ(CallSlot<int>(&list, 0), 2);
  EXPECT_EQ(IDOf(CallSlot<C_RiffChunk*>(&list, 1, 1)), "bbbb");
  CallSlot<void>(&list, 2, 0);
  EXPECT_EQ(list.GetCount(), 1);
  CallSlot<void>(&list, 3);
  EXPECT_EQ(list.GetCount(), 0);
}

TEST(RiffChunkList, AddChunk_AppendsAChunkInMemory) {
  C_RiffChunkList list;
  list.AddChunk("aaaa", 1);
  C_RiffChunk* pChunk = list.AddChunk("bbbbbb", 7);
  EXPECT_EQ(list.GetAt(1), pChunk);
  EXPECT_EQ(IDOf(pChunk), "bbbb");
  EXPECT_EQ(pChunk->GetDataLength(), 7u);
}

TEST(RiffChunkList, GetChunksLength_AddsHeadersAndSizesOfItsOwnChunksOnly) {
  C_RiffChunkList list;
  EXPECT_EQ(list.GetChunksLength(), 0u);
  list.AddChunk("aaaa", 3);
  list.AddChunk("bbbb", 10)->GetSubChunks().AddChunk("cccc", 1000);
  EXPECT_EQ(list.GetChunksLength(), 8u + 3 + 8 + 10);
}

TEST(RiffChunkList, GetChunksLength_WrapsWhereTheTrueOneDoesNot) {
  C_RiffChunkList list;
  list.AddChunk("aaaa", 0xFFFFFFFFu);
  EXPECT_EQ(list.GetChunksLength(), 7u);
  EXPECT_EQ(list.GetTrueChunksLength(), 0x100000007u);
}

TEST(RiffChunkList, NullEntry_StopsTheProgram) {
  C_RiffChunkList list;
  list.Add(nullptr);
  EXPECT_DEATH(static_cast<void>(list.GetChunksLength()),
               "^GetChunksLength: FileUtil/RiffFile:[0-9]+: assertion failed: pChunk != NULL\n$");
  EXPECT_DEATH(list.WriteChunks(stdout),
               "^WriteChunks: FileUtil/RiffFile:[0-9]+: assertion failed: pChunk != NULL\n$");
  EXPECT_DEATH(static_cast<void>(list.FindChunk("aaaa", 0)),
               "^FindChunk: FileUtil/RiffFile:[0-9]+: assertion failed: NULL != pChunk\n$");
  EXPECT_EQ(list.FindChunk("aaaa", 1), nullptr);
}

TEST(RiffChunkList, FindChunk_StopsAtTheMatchBeforeANull) {
  C_RiffChunkList list;
  C_RiffChunk* pChunk = list.AddChunk("aaaa", 1);
  list.Add(nullptr);
  EXPECT_EQ(list.FindChunk("aaaa", 0), pChunk);
}

TEST(RiffChunkList, LoadChunks_ReadsFromTheStreamsPosition) {
  const C_TempFolder folder;
  const auto bytes = Join({{1, 2, 3}, ChunkBytes("aaaa", {4, 5}), ChunkBytes("bbbb", {6})});
  const auto file = vcm::OpenFile(folder.Write("in", bytes).c_str(), "rb");
  ASSERT_TRUE(vcm::SeekTo(file.get(), 3));
  C_RiffChunkList list;
  EXPECT_TRUE(list.LoadChunks(file.get(), 10));
  ASSERT_EQ(list.GetCount(), 1);
  EXPECT_EQ(list.GetAt(0)->GetDataPos(), 11u);
  EXPECT_EQ(PayloadOf(list.GetAt(0)), (C_Bytes{4, 5}));
}

TEST(RiffChunkList, LoadChunks_LeavesTheStreamWhereTheListEnds) {
  const C_TempFolder folder;
  const auto positionAfter = [&](const C_Bytes& bytes, unsigned int dwLength) {
    const auto file = vcm::OpenFile(folder.Write("in", bytes).c_str(), "rb");
    C_RiffChunkList list;
    EXPECT_TRUE(list.LoadChunks(file.get(), dwLength));
    EXPECT_EQ(list.GetCount(), 1);
    return vcm::Tell(file.get());
  };
  const C_Bytes chunk = ChunkBytes("aaaa", {4, 5, 6, 7});
  EXPECT_EQ(positionAfter(Join({chunk, chunk}), 12), 12u);
  EXPECT_EQ(positionAfter(Join({chunk, C_Bytes(13, 0)}), 100), 25u);
  EXPECT_EQ(positionAfter(Join({chunk, {'b', 'b', 'b'}}), 100), 15u);
}

TEST(RiffChunkList, LoadChunks_OfAStreamInMemory_ListsAndReads) {
  C_Bytes bytes = Join({{1, 2}, ChunkBytes("aaaa", {4, 5}), {0, 0}, ChunkBytes("bbbb", {6})});
  std::FILE* pMemory = fmemopen(bytes.data(), bytes.size(), "rb");
  ASSERT_NE(pMemory, nullptr);
  ASSERT_TRUE(vcm::SeekTo(pMemory, 2));
  C_RiffChunkList list;
  EXPECT_TRUE(list.LoadChunks(pMemory, 100));
  ASSERT_EQ(list.GetCount(), 2);
  EXPECT_EQ(PayloadOf(list.GetAt(0)), (C_Bytes{4, 5}));
  EXPECT_EQ(PayloadOf(list.GetAt(1)), (C_Bytes{6}));
  std::fclose(pMemory);
}

TEST(RiffChunkList, Skip_MovesOnAlsoPastTheEnd) {
  const C_TempFolder folder;
  const auto file = vcm::OpenFile(folder.Write("in", {1, 2, 3}).c_str(), "rb");
  EXPECT_TRUE(C_RiffChunkList::Skip(file.get(), 2));
  EXPECT_EQ(std::fgetc(file.get()), 3);
  EXPECT_TRUE(C_RiffChunkList::Skip(file.get(), 0xFFFFFFFFu));
  EXPECT_EQ(vcm::Tell(file.get()), 0x100000002u);
}

TEST(RiffChunkList, Skip_OnAPipe_Fails) {
  std::FILE* pPipe = popen("echo text", "r");
  ASSERT_NE(pPipe, nullptr);
  EXPECT_FALSE(C_RiffChunkList::Skip(pPipe, 1));
  C_RiffChunkList list;
  EXPECT_TRUE(list.LoadChunks(pPipe, 100));
  EXPECT_EQ(list.GetCount(), 0);
  pclose(pPipe);
}

TEST(RiffChunkList, LoadChunks_OfAPipe_IsTrueUntilThereIsAHeader) {
  const auto load = [](const char* pszCommand, unsigned int dwLength, int nNext) {
    std::FILE* pPipe = popen(pszCommand, "r");
    C_RiffChunkList list;
    const bool bRet = list.LoadChunks(pPipe, dwLength);
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(std::fgetc(pPipe), nNext) << pszCommand;
    pclose(pPipe);
    return bRet;
  };
  EXPECT_TRUE(load("printf abcdefgh", 7, 'a')) << "too short for a header, so nothing is read";
  EXPECT_TRUE(load("head -c 20 /dev/zero", 100, EOF));
  EXPECT_TRUE(load("printf abcdefg", 100, EOF));
  EXPECT_FALSE(load("printf abcdefghi", 100, 'i'));
  EXPECT_FALSE(load("head -c 3 /dev/zero; printf abcdefghi", 100, 'i'));
}
