// SPDX-License-Identifier: Apache-2.0
//
// A file that cannot be read is not a file that ends early.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "FaultyIo.h"
#include "RiffFixture.h"
#include "WavBytes.h"

namespace {

using RiffReadError = C_RiffFixture;

// So long that neither it nor what follows it is read together with anything else.
constexpr std::size_t kLong = 9001;

C_RiffBytes FileWithPads(std::size_t cbJunk = kLong, std::size_t cbData = kLong) {
  return C_RiffBytes("WAVE")
      .Chunk("fmt ", FmtBytes(1, 1, 8000, 16))
      .Chunk("junk", RampBytes(cbJunk))
      .Zeros(3)
      .Chunk("data", RampBytes(cbData));
}

TEST_F(RiffReadError, WhileChunksAreListed_MakesOpenFailOrMatterNot) {
  const std::string strPath = m_folder.Write("in", FileWithPads().Take());
  for (const bool bCutShort : {false, true}) {
    for (int nCall = 1;; ++nCall) {
      C_RiffFile file;
      C_FaultyIo faults({.nCall = nCall, .bCutShort = bCutShort});
      const bool bOpen = file.Open(strPath.c_str(), "WAVE");
      faults.Stop();
      if (!faults.WasHit()) {
        EXPECT_TRUE(bOpen);
        // To open the file, to measure it, and to read it at both ends.
        EXPECT_GT(nCall, 4);
        break;
      }
      EXPECT_EQ(file.GetChunkCount(), bOpen ? 3 : 0) << nCall;
      EXPECT_FALSE(file.HasReadError());
    }
  }
}

TEST_F(RiffReadError, WhileAPayloadIsRead_IsRemembered) {
  for (int nCall = 1;; ++nCall) {
    C_RiffFile file;
    ASSERT_TRUE(Open(file, FileWithPads().Take()));
    C_Bytes payload(64);
    C_FaultyIo faults({.nCall = nCall});
    const bool bRead = file.FindChunk("data", 0)->GetData(payload.data(), 64, 0);
    faults.Stop();
    EXPECT_NE(bRead, faults.WasHit());
    EXPECT_EQ(file.HasReadError(), faults.WasHit());
    if (!faults.WasHit()) break;
  }
}

// Zeros in place of a payload that was there, and nobody told: that must never be written.
TEST_F(RiffReadError, WhileAPayloadIsRead_LetsNoSaveSucceed) {
  const C_Bytes bytes = FileWithPads().Take();
  const std::string strPath = m_folder.Write("in", bytes);
  C_RiffFile file;
  ASSERT_TRUE(file.Open(strPath.c_str(), "WAVE"));
  C_Bytes payload(64);
  C_FaultyIo faults({.nCall = 1});
  EXPECT_FALSE(file.FindChunk("data", 0)->GetData(payload.data(), 64, 0));
  faults.Stop();
  EXPECT_FALSE(file.Save(strPath.c_str(), "WAVE"));
  EXPECT_FALSE(file.Save(m_folder.Path("other").c_str(), "WAVE"));
  EXPECT_EQ(m_folder.Read("in"), bytes);
}

TEST_F(RiffReadError, OfOnePayload_IsNotForgottenWhenTheNextCanBeRead) {
  C_RiffFile file;
  ASSERT_TRUE(Open(file, FileWithPads().Take()));
  C_Bytes payload(64);
  C_FaultyIo faults({.nCall = 1});
  EXPECT_FALSE(file.FindChunk("data", 0)->GetData(payload.data(), 64, 0));
  faults.Stop();
  EXPECT_EQ(PayloadOf(file.FindChunk("junk", 0)), RampBytes(kLong));
  EXPECT_EQ(file.FindChunk("fmt ", 0)->CreateHeldPart(), nullptr);
  EXPECT_FALSE(file.IsCutShort());
  EXPECT_TRUE(file.HasReadError());
}

TEST_F(RiffReadError, WhileAHeldPartIsRead_IsRemembered) {
  for (int nCall = 1;; ++nCall) {
    C_RiffFile file;
    ASSERT_TRUE(Open(file, C_RiffBytes("WAVE").Chunk("cue ", 2 * kLong, RampBytes(kLong)).Take()));
    C_FaultyIo faults({.nCall = nCall});
    const auto part = file.FindChunk("cue ", 0)->CreateHeldPart();
    faults.Stop();
    EXPECT_EQ(part == nullptr, faults.WasHit());
    EXPECT_EQ(file.HasReadError(), faults.WasHit());
    if (!faults.WasHit()) break;
  }
}

TEST_F(RiffReadError, WhileSubChunksAreListed_IsReported) {
  int nFailed = 0;
  for (int nCall = 1;; ++nCall) {
    C_RiffFile file;
    const C_Bytes one = ChunkBytes("aaaa", RampBytes(kLong));
    const C_Bytes list = Join({one, one, one, ChunkBytes("bbbb", {2})});
    ASSERT_TRUE(Open(file, C_RiffBytes("WAVE").Chunk("LIST", list).Take()));
    C_FaultyIo faults({.nCall = nCall});
    const bool bListed = file.FindChunk("LIST", 0)->LoadSubChunks();
    faults.Stop();
    EXPECT_TRUE(bListed || faults.WasHit());
    EXPECT_TRUE(!bListed || file.FindChunk("LIST", 0)->GetSubChunks().GetCount() == 4);
    nFailed += bListed ? 0 : 1;
    if (!faults.WasHit()) break;
  }
  EXPECT_GT(nFailed, 2);
}

TEST_F(RiffReadError, WhenTheFileIsMeasured_MakesOpenFail) {
  const std::string strPath = m_folder.Write("in", FileWithPads().Take());
  C_RiffFile file;
  // The second call, after the file was opened.
  C_FaultyIo faults({.nCall = 2});
  EXPECT_FALSE(file.Open(strPath.c_str(), "WAVE"));
  faults.Stop();
  EXPECT_EQ(file.GetFileLength(), std::nullopt);
  EXPECT_TRUE(file.Open(strPath.c_str(), "WAVE"));
  EXPECT_FALSE(file.IsCutShort());
}

TEST_F(RiffReadError, EndOfFile_IsNoError) {
  const C_Bytes whole = FileWithPads(5, 64).Take();
  for (std::size_t cb = 12; cb <= whole.size(); ++cb) {
    C_RiffFile file;
    ASSERT_TRUE(Open(file, C_Bytes(whole.begin(), whole.begin() + static_cast<long>(cb)))) << cb;
    EXPECT_EQ(file.IsCutShort(), cb < whole.size()) << cb;
    for (int i = 0; i < file.GetChunkCount(); ++i) {
      C_Bytes payload(64);
      C_RiffChunk& chunk = *file.GetChunkAt(i);
      const auto part = chunk.CreateHeldPart();
      EXPECT_EQ(chunk.GetData(payload.data(), 1, 0), part == nullptr) << cb;
      if (part == nullptr) continue;
      EXPECT_EQ(part->GetDataLength(), cb - chunk.GetDataPos());
      if (part->GetDataLength() > 0) {
        EXPECT_EQ(PayloadOf(part.get()),
                  C_Bytes(whole.begin() + static_cast<long>(chunk.GetDataPos()),
                          whole.begin() + static_cast<long>(cb)));
      }
    }
    EXPECT_FALSE(file.HasReadError()) << cb;
  }
}

C_Bytes FileCutInItsData() {
  return C_RiffBytes("WAVE").Chunk("fmt ", {1}).Chunk("data", 1000, {1, 2}).Take();
}

TEST_F(RiffReadError, OfAFileThatIsCut_MakesOpenFailOrMatterNot) {
  const std::string strPath = m_folder.Write("in", FileCutInItsData());
  for (int nCall = 1;; ++nCall) {
    C_RiffFile file;
    C_FaultyIo faults({.nCall = nCall});
    const bool bOpen = file.Open(strPath.c_str(), "WAVE");
    faults.Stop();
    if (!faults.WasHit()) break;
    EXPECT_EQ(Listing(file), bOpen ? (Lines{"fmt @20+1", "data@29+1000"}) : Lines{}) << nCall;
  }
}

TEST_F(RiffReadError, OfALastSubChunkThatIsCut_IsReported) {
  const C_Bytes list = Join({ChunkBytes("aaaa", {1}), ChunkBytes("bbbb", 1000, {2, 3})});
  int nFailed = 0;
  for (int nCall = 1;; ++nCall) {
    C_RiffFile file;
    ASSERT_TRUE(Open(file, C_RiffBytes("WAVE").Chunk("LIST", list).Take()));
    C_RiffChunk& chunk = *file.FindChunk("LIST", 0);
    C_FaultyIo faults({.nCall = nCall});
    const bool bListed = chunk.LoadSubChunks();
    faults.Stop();
    if (!faults.WasHit()) break;
    EXPECT_EQ(file.HasReadError(), !bListed);
    EXPECT_TRUE(!bListed || chunk.GetSubChunks().GetCount() == 2);
    nFailed += bListed ? 0 : 1;
  }
  EXPECT_GT(nFailed, 0);
}

// Some file systems know no positions that far beyond the end, and say that they are invalid.
TEST_F(RiffReadError, PayloadBeyondTheEndThatCannotBeSkipped_IsLeftOut) {
  const std::string strPath = m_folder.Write("in", FileCutInItsData());
  int nLeftOut = 0;
  for (int nCall = 1;; ++nCall) {
    C_RiffFile file;
    C_FaultyIo faults({.nCall = nCall, .nError = EINVAL});
    const bool bOpen = file.Open(strPath.c_str(), "WAVE");
    faults.Stop();
    if (!faults.WasHit()) break;
    if (!bOpen || file.GetChunkCount() == 2) continue;
    EXPECT_EQ(Listing(file), Lines{"fmt @20+1"});
    EXPECT_FALSE(file.HasReadError());
    ++nLeftOut;
  }
  EXPECT_EQ(nLeftOut, 1);
}

TEST_F(RiffReadError, PartOfAFileThatWasClosed_IsGone) {
  C_RiffFile file;
  ASSERT_TRUE(Open(file, C_RiffBytes("WAVE").Chunk("cue ", 28, RampBytes(20)).Take()));
  C_RiffChunk* pChunk = file.GetChunkAt(0);
  EXPECT_NE(pChunk->CreateHeldPart(), nullptr);
  file.SafeCloseFile();
  EXPECT_EQ(pChunk->CreateHeldPart(), nullptr);
}

TEST_F(RiffReadError, ClosedFile_IsNeitherCutNorFaulty) {
  C_RiffFile file;
  EXPECT_FALSE(file.IsCutShort());
  EXPECT_FALSE(file.HasReadError());
  EXPECT_EQ(file.AddChunk("aaaa", 4)->CreateHeldPart(), nullptr);
}

}  // namespace
