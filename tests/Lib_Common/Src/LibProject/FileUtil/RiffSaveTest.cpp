// SPDX-License-Identifier: Apache-2.0
//
// Writing RIFF files.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "LargestAllocation.h"
#include "RiffFile.h"
#include "RiffFixture.h"
#include "StdioFile.h"
#include "WavBytes.h"

namespace {

class RiffSave : public C_RiffFixture {
 protected:
  C_RiffChunk* Add(const char* pszID, const C_Bytes& payload) {
    C_RiffChunk* pChunk = m_file.AddChunk(pszID, static_cast<unsigned int>(payload.size()));
    pChunk->SetData(payload.data());
    return pChunk;
  }

  C_RiffFile m_file;
};

}  // namespace

TEST_F(RiffSave, Save_WritesHeaderAndChunksInOrder) {
  Add("aaaa", {1, 2, 3, 4});
  Add("bbbb", {5, 6});
  EXPECT_EQ(m_file.GetChunkCount(), 2);
  EXPECT_EQ(Saved(m_file, "VEMD"), (C_Bytes{'R', 'I', 'F', 'F', 26, 0, 0, 0, 'V', 'E', 'M', 'D',
                                            'a', 'a', 'a', 'a', 4,  0, 0, 0, 1,   2,   3,   4,
                                            'b', 'b', 'b', 'b', 2,  0, 0, 0, 5,   6}));
}

TEST_F(RiffSave, Save_WritesNoPadBytes) {
  Add("aaaa", {1, 2, 3});
  Add("bbbb", {4});
  EXPECT_EQ(Saved(m_file), C_RiffBytes("WAVE").Chunk("aaaa", {1, 2, 3}).Chunk("bbbb", {4}).Take());
}

TEST_F(RiffSave, Save_OfAnEmptyList_WritesTheHeader) {
  EXPECT_EQ(Saved(m_file), C_RiffBytes("WAVE").Take());
}

TEST_F(RiffSave, ChunkWithoutPayload_IsWrittenAsItsHeader) {
  m_file.AddChunk("abcd", 10);
  EXPECT_EQ(Saved(m_file), C_RiffBytes("WAVE").Chunk("abcd", 10, {}).RiffSize(4 + 18).Take());
}

TEST_F(RiffSave, ChunkFromDiskThatWasNeverRead_IsWrittenAsItsHeader) {
  EXPECT_TRUE(Open(m_file, C_RiffBytes("WAVE").Chunk("aaaa", {1, 2}).Chunk("bbbb", {3}).Take()));
  EXPECT_EQ(PayloadOf(m_file.GetChunkAt(1)), (C_Bytes{3}));
  EXPECT_EQ(
      Saved(m_file),
      C_RiffBytes("WAVE").Chunk("aaaa", 2, {}).Chunk("bbbb", {3}).RiffSize(4 + 10 + 9).Take());
}

TEST_F(RiffSave, ChunkWhoseReadFailed_IsWrittenAsZeros) {
  // 4097: the last piece that is written is a single byte.
  for (const unsigned int dwSize : {3u, 4096u, 4097u, 10000u}) {
    C_RiffFile file;
    EXPECT_TRUE(Open(file, C_RiffBytes("WAVE").Chunk("aaaa", dwSize, {1, 2}).Take()));
    C_Bytes target(1);
    EXPECT_FALSE(file.GetChunkAt(0)->GetData(target.data(), 1, 0));
    ResetLargestAllocation();
    EXPECT_TRUE(file.Save(m_folder.Path("out").c_str(), "WAVE"));
    EXPECT_LT(LargestAllocation(), 10000u);
    EXPECT_EQ(m_folder.Read("out"), C_RiffBytes("WAVE").Chunk("aaaa", C_Bytes(dwSize)).Take());
  }
}

TEST_F(RiffSave, SubChunks_AreWrittenBackToBackWithoutATypeWord) {
  C_RiffChunk* pOuter = m_file.AddChunk("LIST", 8 + 3 + 8 + 1);
  pOuter->GetSubChunks().AddChunk("in 1", 3)->SetData(C_Bytes{1, 2, 3}.data());
  pOuter->GetSubChunks().AddChunk("in 2", 1)->SetData(C_Bytes{4}.data());
  EXPECT_EQ(pOuter->GetDataLength(), pOuter->GetSubChunks().GetChunksLength());
  Add("last", {9});
  EXPECT_EQ(Saved(m_file),
            C_RiffBytes("WAVE")
                .Chunk("LIST", Join({ChunkBytes("in 1", {1, 2, 3}), ChunkBytes("in 2", {4})}))
                .Chunk("last", {9})
                .Take());
}

TEST_F(RiffSave, SizeOfAContainer_IsWrittenAsStored) {
  C_RiffChunk* pOuter = m_file.AddChunk("LIST", 100);
  pOuter->GetSubChunks().AddChunk("in 1", 3)->SetData(C_Bytes{1, 2, 3}.data());
  EXPECT_EQ(Saved(m_file), C_RiffBytes("WAVE")
                               .Chunk("LIST", 100, ChunkBytes("in 1", {1, 2, 3}))
                               .RiffSize(4 + 108)
                               .Take());
}

TEST_F(RiffSave, Payload_GoesBeforeSubChunks) {
  C_RiffChunk* pOuter = Add("LIST", {7, 8});
  pOuter->GetSubChunks().AddChunk("in 1", 0);
  EXPECT_EQ(Saved(m_file), C_RiffBytes("WAVE").Chunk("LIST", {7, 8}).Take());
}

TEST_F(RiffSave, Save_NotesWhereThePayloadsWent) {
  C_RiffChunk* pFirst = Add("aaaa", {1, 2, 3});
  C_RiffChunk* pOuter = m_file.AddChunk("LIST", 9);
  C_RiffChunk* pInner = pOuter->GetSubChunks().AddChunk("in 1", 1);
  pInner->SetData(C_Bytes{4}.data());
  Saved(m_file);
  EXPECT_EQ(pFirst->GetDataPos(), 20u);
  EXPECT_EQ(pOuter->GetDataPos(), 31u);
  EXPECT_EQ(pInner->GetDataPos(), 39u);
}

TEST_F(RiffSave, SavedFile_OpensAgain) {
  Add("aaaa", {1, 2, 3});
  Add("bbbb", {4, 5});
  Saved(m_file);
  C_RiffFile again;
  EXPECT_TRUE(again.Open(m_folder.Path("out").c_str(), "WAVE"));
  EXPECT_EQ(Listing(again), (Lines{"aaaa@20+3", "bbbb@31+2"}));
  EXPECT_EQ(PayloadOf(again.GetChunkAt(1)), (C_Bytes{4, 5}));
}

TEST_F(RiffSave, Save_ClosesTheFileOnce) {
  const auto nDescriptors = OpenDescriptors();
  EXPECT_TRUE(Open(m_file, C_RiffBytes("WAVE").Chunk("aaaa", {1}).Take()));
  Saved(m_file);
  EXPECT_EQ(OpenDescriptors(), nDescriptors);
  m_file.SafeCloseFile();
  Saved(m_file);
  EXPECT_EQ(OpenDescriptors(), nDescriptors);
}

TEST_F(RiffSave, Save_ToAPlaceThatCannotBeOpened_Fails) {
  Add("aaaa", {1});
  EXPECT_FALSE(m_file.Save(m_folder.Path("missing/out").c_str(), "WAVE"));
  EXPECT_FALSE(m_file.Save(m_folder.Path().c_str(), "WAVE"));
}

TEST_F(RiffSave, Save_ToAFullDisk_FailsWhateverTheLength) {
  const auto nDescriptors = OpenDescriptors();
  Add("aaaa", {1});
  EXPECT_FALSE(m_file.Save("/dev/full", "WAVE"));
  Add("bbbb", C_Bytes(100000, 7));
  EXPECT_FALSE(m_file.Save("/dev/full", "WAVE"));
  EXPECT_EQ(OpenDescriptors(), nDescriptors);
  EXPECT_EQ(Saved(m_file).size(), 12u + 9 + 8 + 100000);
}

TEST_F(RiffSave, Save_ToAPipe_WritesTheWholeFile) {
  const std::string strPipe = m_folder.Path("pipe");
  ASSERT_EQ(mkfifo(strPipe.c_str(), 0600), 0);
  const int nReader = open(strPipe.c_str(), O_RDONLY | O_NONBLOCK);
  ASSERT_GE(nReader, 0);
  C_RiffChunk* pChunk = Add("aaaa", {1, 2, 3});
  EXPECT_TRUE(m_file.Save(strPipe.c_str(), "WAVE"));
  EXPECT_EQ(pChunk->GetDataPos(), 0xFFFFFFFFu);
  C_Bytes bytes(100);
  const auto nRead = read(nReader, bytes.data(), bytes.size());
  close(nReader);
  ASSERT_GE(nRead, 0);
  bytes.resize(static_cast<std::size_t>(nRead));
  EXPECT_EQ(bytes, C_RiffBytes("WAVE").Chunk("aaaa", {1, 2, 3}).Take());
}

TEST_F(RiffSave, ListTooLongFor32Bits_IsRefusedBeforeTheTargetIsTouched) {
  m_folder.Write("out", {1, 2, 3});
  m_file.AddChunk("data", 0xFFFFFFF4u);
  EXPECT_FALSE(m_file.Save(m_folder.Path("out").c_str(), "WAVE"));
  EXPECT_EQ(m_folder.Read("out"), (C_Bytes{1, 2, 3}));
  EXPECT_FALSE(m_file.Save(m_folder.Path("new").c_str(), "WAVE"));
  EXPECT_FALSE(m_folder.Has("new"));
}

TEST_F(RiffSave, ManyChunksTooLongTogether_AreRefusedToo) {
  for (int i = 0; i < 3; ++i) m_file.AddChunk("data", 0x60000000u);
  EXPECT_FALSE(m_file.Save(m_folder.Path("new").c_str(), "WAVE"));
  EXPECT_FALSE(m_folder.Has("new"));
}

TEST_F(RiffSave, LongestListThatFits_IsWritten) {
  m_file.AddChunk("data", 0xFFFFFFF3u);
  EXPECT_EQ(Saved(m_file),
            C_RiffBytes("WAVE").Chunk("data", 0xFFFFFFF3u, {}).RiffSize(0xFFFFFFFFu).Take());
}

TEST_F(RiffSave, ZerosThatTheDiskHasNoRoomFor_AreReported) {
  EXPECT_TRUE(Open(m_file, C_RiffBytes("WAVE").Chunk("aaaa", 10000, {1, 2}).Take()));
  C_Bytes target(1);
  EXPECT_FALSE(m_file.GetChunkAt(0)->GetData(target.data(), 1, 0));
  EXPECT_FALSE(m_file.Save("/dev/full", "WAVE"));
}

TEST_F(RiffSave, ChunkBeyond4GiB_IsNotWritten) {
  const auto file = vcm::OpenFile(m_folder.Write("far", {}).c_str(), "r+b");
  C_RiffChunk chunk("aaaa", 1);
  chunk.SetData(C_Bytes{7}.data());
  // The payload would begin eight bytes later.
  ASSERT_TRUE(vcm::SeekTo(file.get(), 0xFFFFFFF8u));
  EXPECT_FALSE(chunk.Write(file.get()));
  ASSERT_TRUE(vcm::SeekTo(file.get(), 0xFFFFFFF7u));
  EXPECT_TRUE(chunk.Write(file.get()));
  EXPECT_EQ(chunk.GetDataPos(), 0xFFFFFFFFu);
}

// --- Payloads that are not copied

TEST_F(RiffSave, LentPayload_IsThatOfTheCallerUntilTheFileIsSaved) {
  C_RiffFile file;
  C_Bytes bytes = {1, 2, 3};
  C_RiffChunk* pChunk = file.AddChunk("aaaa", 3);
  pChunk->LendData(bytes.data());
  file.AddChunk("none", 0)->LendData(nullptr);
  bytes[1] = 9;
  EXPECT_EQ(PayloadOf(pChunk), (C_Bytes{1, 9, 3}));
  EXPECT_EQ(Saved(file), C_RiffBytes("WAVE").Chunk("aaaa", {1, 9, 3}).Chunk("none", {}).Take());
  pChunk->SetData(C_Bytes{4, 5, 6}.data());
  EXPECT_EQ(bytes, (C_Bytes{1, 9, 3})) << "the caller's bytes are never written";
  EXPECT_EQ(PayloadOf(pChunk), (C_Bytes{4, 5, 6}));
}

TEST_F(RiffSave, PayloadInAFile_IsCopiedFromIt) {
  for (const std::size_t cbPayload : {1U, 65535U, 65536U, 200000U}) {
    const C_Bytes payload = RampBytes(cbPayload);
    C_RiffFile file;
    C_RiffChunk* pChunk = file.AddChunk("aaaa", static_cast<unsigned int>(cbPayload));
    pChunk->TakeFile(vcm::OpenFile(m_folder.Write("payload", payload).c_str(), "rb"));
    file.AddChunk("bbbb", 1)->SetData("x");
    const C_Bytes expected = C_RiffBytes("WAVE").Chunk("aaaa", payload).Chunk("bbbb", {'x'}).Take();
    EXPECT_EQ(Saved(file), expected) << cbPayload;
    EXPECT_EQ(Saved(file), expected) << "once more";
    EXPECT_EQ(PayloadOf(pChunk), payload);
  }
}

TEST_F(RiffSave, FileThatHoldsLessThanThePayload_CannotBeSaved) {
  C_RiffFile file;
  C_RiffChunk* pChunk = file.AddChunk("aaaa", 4);
  pChunk->TakeFile(vcm::OpenFile(m_folder.Write("payload", {1, 2, 3}).c_str(), "rb"));
  EXPECT_FALSE(file.Save(m_folder.Path("out").c_str(), "WAVE"));
  C_Bytes target(4);
  EXPECT_FALSE(pChunk->GetData(target.data(), 4, 0));
}
