// SPDX-License-Identifier: Apache-2.0
//
// Opening RIFF files and listing their chunks.
#include "RiffFile.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "RiffFixture.h"
#include "StdioFile.h"
#include "VTable.h"

namespace {

class RiffFile : public C_RiffFixture {
 protected:
  Lines ListingOf(const C_Bytes& bytes) {
    C_RiffFile file;
    EXPECT_TRUE(Open(file, bytes));
    return Listing(file);
  }
};

C_RiffBytes TwoChunks() {
  return C_RiffBytes("WAVE").Chunk("aaaa", {1, 2, 3, 4}).Chunk("bbbb", {5, 6});
}

}  // namespace

TEST_F(RiffFile, NewFile_IsClosedAndEmpty) {
  C_RiffFile file;
  EXPECT_EQ(file.GetChunkCount(), 0);
  file.SafeCloseFile();
}

TEST_F(RiffFile, Open_ListsTheChunksInFileOrder) {
  C_RiffFile file;
  EXPECT_TRUE(Open(file, TwoChunks().Take()));
  EXPECT_EQ(Listing(file), (Lines{"aaaa@20+4", "bbbb@32+2"}));
  EXPECT_EQ(PayloadOf(file.GetChunkAt(1)), (C_Bytes{5, 6}));
  EXPECT_EQ(PayloadOf(file.GetChunkAt(0)), (C_Bytes{1, 2, 3, 4}));
}

TEST_F(RiffFile, Open_OfAnotherForm_FailsAndLeavesNothing) {
  C_RiffFile file;
  EXPECT_TRUE(Open(file, TwoChunks().Take()));
  const auto nDescriptors = OpenDescriptors();
  EXPECT_FALSE(Open(file, C_RiffBytes("VEFF").Chunk("vafm", {1}).Take()));
  EXPECT_EQ(file.GetChunkCount(), 0);
  EXPECT_EQ(OpenDescriptors(), nDescriptors - 1);
  EXPECT_TRUE(Open(file, C_RiffBytes("VEFF").Chunk("vafm", {1}).Take(), "VEFF"));
}

TEST_F(RiffFile, Open_ComparesFourCharactersOfTheForm) {
  C_RiffFile file;
  EXPECT_FALSE(Open(file, C_RiffBytes("WAVe").Take()));
  EXPECT_FALSE(Open(file, C_RiffBytes("WAV ").Take()));
  EXPECT_TRUE(Open(file, C_RiffBytes("WAVE").Take(), "WAVEFORM"));
}

TEST_F(RiffFile, Open_NeedsTheWordRiff) {
  C_Bytes bytes = TwoChunks().Take();
  bytes[3] = 'X';
  C_RiffFile file;
  EXPECT_FALSE(Open(file, bytes));
}

TEST_F(RiffFile, Open_NeedsTheWholeHeader) {
  const C_Bytes bytes = TwoChunks().Take();
  for (std::ptrdiff_t cb = 0; cb < 12; ++cb) {
    C_RiffFile file;
    EXPECT_FALSE(Open(file, C_Bytes(bytes.begin(), bytes.begin() + cb))) << cb;
  }
  C_RiffFile file;
  EXPECT_TRUE(Open(file, C_Bytes(bytes.begin(), bytes.begin() + 12)));
  EXPECT_EQ(file.GetChunkCount(), 0);
}

TEST_F(RiffFile, Open_OfMissingFilesAndDirectories_Fails) {
  C_RiffFile file;
  EXPECT_FALSE(file.Open(m_folder.Path("missing").c_str(), "WAVE"));
  EXPECT_FALSE(file.Open(m_folder.Path().c_str(), "WAVE"));
}

TEST_F(RiffFile, Open_ForgetsTheChunksOfBefore) {
  C_RiffFile file;
  const auto nDescriptors = OpenDescriptors();
  EXPECT_TRUE(Open(file, TwoChunks().Take()));
  EXPECT_TRUE(Open(file, C_RiffBytes("WAVE").Chunk("cccc", {1}).Take()));
  EXPECT_EQ(Listing(file), (Lines{"cccc@20+1"}));
  EXPECT_EQ(OpenDescriptors(), nDescriptors + 1);
  EXPECT_FALSE(file.Open(m_folder.Path("missing").c_str(), "WAVE"));
  EXPECT_EQ(file.GetChunkCount(), 0);
  EXPECT_EQ(OpenDescriptors(), nDescriptors);
}

TEST_F(RiffFile, Destructor_ClosesTheFile) {
  const auto nDescriptors = OpenDescriptors();
  {
    C_RiffFile file;
    EXPECT_TRUE(Open(file, TwoChunks().Take()));
    EXPECT_EQ(OpenDescriptors(), nDescriptors + 1);
  }
  EXPECT_EQ(OpenDescriptors(), nDescriptors);
}

TEST_F(RiffFile, SafeCloseFile_TwiceIsHarmless) {
  C_RiffFile file;
  EXPECT_TRUE(Open(file, TwoChunks().Take()));
  file.SafeCloseFile();
  file.SafeCloseFile();
  EXPECT_EQ(file.GetChunkCount(), 2);
}

TEST_F(RiffFile, RiffSizeBelowFour_ListsToTheEndOfFile) {
  const Lines both = {"aaaa@20+4", "bbbb@32+2"};
  for (const std::uint32_t dwSize : {0u, 1u, 2u, 3u}) {
    EXPECT_EQ(ListingOf(TwoChunks().RiffSize(dwSize).Take()), both) << dwSize;
  }
  EXPECT_EQ(ListingOf(TwoChunks().RiffSize(4).Take()), Lines{});
}

TEST_F(RiffFile, FewerThanEightBytesLeft_AreIgnored) {
  EXPECT_EQ(ListingOf(TwoChunks().RiffSize(11).Take()), Lines{});
  EXPECT_EQ(ListingOf(TwoChunks().RiffSize(12).Take()), (Lines{"aaaa@20+4"}));
  EXPECT_EQ(ListingOf(TwoChunks().RiffSize(16 + 7).Take()), (Lines{"aaaa@20+4"}));
  EXPECT_EQ(ListingOf(TwoChunks().Raw({'c', 'c', 'c', 'c', 1, 0, 0}).Take()).size(), 2u);
}

TEST_F(RiffFile, OddChunk_ReadsWithAndWithoutPad) {
  const auto Odd = C_RiffBytes("WAVE").Chunk("aaaa", {1, 2, 3});
  EXPECT_EQ(ListingOf(C_RiffBytes(Odd).Zeros(1).Chunk("bbbb", {4}).Take()),
            (Lines{"aaaa@20+3", "bbbb@32+1"}));
  EXPECT_EQ(ListingOf(C_RiffBytes(Odd).Chunk("bbbb", {4}).Take()),
            (Lines{"aaaa@20+3", "bbbb@31+1"}));
}

TEST_F(RiffFile, ZeroFiller_IsSkippedBeforeEveryHeader) {
  EXPECT_EQ(
      ListingOf(C_RiffBytes("WAVE").Zeros(5).Chunk("aaaa", {}).Zeros(20).Chunk("bbbb", {1}).Take()),
      (Lines{"aaaa@25+0", "bbbb@53+1"}));
}

TEST_F(RiffFile, ZeroFiller_CountsAgainstTheRiffSize) {
  // The 5 zeros and the first chunk take 17 of these 24 bytes, so 7 are left.
  const auto file = C_RiffBytes("WAVE").Zeros(5).Chunk("aaaa", {1, 2, 3, 4}).Chunk("bbbb", {});
  EXPECT_EQ(ListingOf(C_RiffBytes(file).RiffSize(4 + 24).Take()), (Lines{"aaaa@25+4"}));
  EXPECT_EQ(ListingOf(C_RiffBytes(file).RiffSize(4 + 25).Take()).size(), 2u);
}

TEST_F(RiffFile, ZeroRunAcrossTheRiffEnd_ListsTheChunkAfterIt) {
  const auto First = C_RiffBytes("WAVE").Chunk("aaaa", {1, 2, 3, 4});
  EXPECT_EQ(ListingOf(C_RiffBytes(First).Zeros(9).Chunk("tail", {7}).RiffSize(4 + 12 + 9).Take()),
            (Lines{"aaaa@20+4", "tail@41+1"}));
}

TEST_F(RiffFile, ZeroRunLongerThanWhatIsLeft_ListsOn) {
  const auto First = C_RiffBytes("WAVE").Chunk("aaaa", {1, 2, 3, 4});
  EXPECT_EQ(ListingOf(C_RiffBytes(First)
                          .Zeros(11)
                          .Chunk("tail", {7})
                          .Chunk("more", {})
                          .RiffSize(4 + 12 + 9)
                          .Take()),
            (Lines{"aaaa@20+4", "tail@43+1", "more@52+0"}));
}

TEST_F(RiffFile, SevenZerosAtTheRiffEnd_EndTheListing) {
  const auto First = C_RiffBytes("WAVE").Chunk("aaaa", {1, 2, 3, 4});
  EXPECT_EQ(ListingOf(C_RiffBytes(First).Zeros(7).Chunk("tail", {7}).RiffSize(4 + 12 + 7).Take()),
            (Lines{"aaaa@20+4"}));
}

TEST_F(RiffFile, ZeroRunToTheEndOfFile_EndsTheListing) {
  const Lines both = {"aaaa@20+4", "bbbb@32+2"};
  EXPECT_EQ(ListingOf(TwoChunks().Zeros(10).Take()), both);
  EXPECT_EQ(ListingOf(TwoChunks().Zeros(10).RiffSize(0xFFFFFFFFu).Take()), both);
  EXPECT_EQ(ListingOf(C_RiffBytes("WAVE").Zeros(9).RiffSize(0).Take()), Lines{});
}

TEST_F(RiffFile, LongZeroRun_IsPassedInLinearTime) {
  const std::string strPath = m_folder.Write("in", TwoChunks().RiffSize(0).Take());
  std::filesystem::resize_file(strPath, std::uintmax_t{64} << 20);
  C_RiffFile file;
  EXPECT_TRUE(file.Open(strPath.c_str(), "WAVE"));
  EXPECT_EQ(file.GetChunkCount(), 2);
}

TEST_F(RiffFile, ChunkPastTheRiffSize_IsKeptAndEndsTheListing) {
  EXPECT_EQ(ListingOf(C_RiffBytes("WAVE").Chunk("aaaa", 100, {1, 2}).Chunk("bbbb", {}).Take()),
            (Lines{"aaaa@20+100"}));
  EXPECT_EQ(ListingOf(TwoChunks().RiffSize(4 + 11).Take()), (Lines{"aaaa@20+4"}));
}

TEST_F(RiffFile, RiffSizeBeyondTheFile_ListsTheChunksThatExist) {
  EXPECT_EQ(ListingOf(TwoChunks().RiffSize(1000).Take()).size(), 2u);
  EXPECT_EQ(ListingOf(TwoChunks().RiffSize(0xFFFFFFFFu).Take()).size(), 2u);
}

TEST_F(RiffFile, HugeChunk_IsListedOnce) {
  for (const std::uint32_t dwSize :
       {0x7FFFFFFFu, 0x80000000u, 0xFFFFFFF7u, 0xFFFFFFF8u, 0xFFFFFFFCu, 0xFFFFFFFFu}) {
    for (const std::uint32_t dwRiffSize : {0u, 16u, 1000u, 0xFFFFFFFFu}) {
      EXPECT_EQ(ListingOf(C_RiffBytes("WAVE")
                              .Chunk("aaaa", dwSize, {})
                              .Chunk("bbbb", {})
                              .RiffSize(dwRiffSize)
                              .Take()),
                (Lines{"aaaa@20+" + std::to_string(dwSize)}));
    }
  }
}

TEST_F(RiffFile, IdentifierThatStartsWithZeros_IsEatenAsFiller) {
  const auto bytes =
      C_RiffBytes("WAVE").Raw({0, 0, 'a', 'b', 4, 0, 0, 0, 2, 0, 0, 0, 9, 9, 9, 9}).Take();
  C_RiffFile file;
  EXPECT_TRUE(Open(file, bytes));
  ASSERT_EQ(file.GetChunkCount(), 1);
  EXPECT_EQ(IDOf(file.GetChunkAt(0)), std::string("ab\4\0", 4));
  EXPECT_EQ(file.GetChunkAt(0)->GetDataLength(), 0x00020000u);
}

TEST_F(RiffFile, PayloadsPastFourGiB_AreNotListed) {
  // A sparse file: the payload of the second chunk begins at the last position below 4 GiB.
  const std::string strPath =
      m_folder.Write("in", C_RiffBytes("WAVE").Chunk("huge", 0xFFFFFFE3u, {}).RiffSize(3).Take());
  const auto out = vcm::OpenFile(strPath.c_str(), "r+b");
  ASSERT_TRUE(out && vcm::SeekTo(out.get(), 0xFFFFFFF7u));
  ASSERT_TRUE(vcm::WriteExact(out.get(), ChunkBytes("last", {1, 2, 3, 4})));
  ASSERT_TRUE(vcm::WriteExact(out.get(), ChunkBytes("gone", {5, 6, 7, 8})));
  ASSERT_EQ(std::fflush(out.get()), 0);
  C_RiffFile file;
  EXPECT_TRUE(file.Open(strPath.c_str(), "WAVE"));
  EXPECT_EQ(Listing(file), (Lines{"huge@20+4294967267", "last@4294967295+4"}));
  EXPECT_EQ(PayloadOf(file.GetChunkAt(1)), (C_Bytes{1, 2, 3, 4}));
}

TEST_F(RiffFile, ManyEmptyChunks_AreListedInLinearTime) {
  constexpr int kChunks = 200000;
  C_Bytes body;
  for (int i = 0; i < kChunks; ++i) {
    const C_Bytes chunk = ChunkBytes("junk", {});
    body.insert(body.end(), chunk.begin(), chunk.end());
  }
  C_RiffFile file;
  EXPECT_TRUE(Open(file, C_RiffBytes("WAVE").Raw(body).Take()));
  EXPECT_EQ(file.GetChunkCount(), kChunks);
}

TEST_F(RiffFile, FileCutAnywhere_ListsWhatItsHeadersSay) {
  const C_Bytes bytes = TwoChunks().Chunk("cccc", {7, 8, 9}).Take();
  for (std::ptrdiff_t cb = 12; cb <= std::ssize(bytes); ++cb) {
    C_RiffFile file;
    ASSERT_TRUE(Open(file, C_Bytes(bytes.begin(), bytes.begin() + cb)));
    EXPECT_EQ(file.GetChunkCount(), (cb >= 20) + (cb >= 32) + (cb >= 42)) << cb;
    for (int i = 0; i < file.GetChunkCount(); ++i) {
      C_RiffChunk* pChunk = file.GetChunkAt(i);
      C_Bytes payload(pChunk->GetDataLength());
      EXPECT_EQ(pChunk->GetData(payload.data(), pChunk->GetDataLength(), 0),
                pChunk->GetDataPos() + pChunk->GetDataLength() <= cb);
    }
  }
}

TEST_F(RiffFile, AnySizeFields_NeverTakeTheListingOutOfTheFile) {
  const std::uint32_t sizes[] = {0, 3, 8, 9, 0x7FFF, 0x80000000u, 0xFFFFFFF7u, 0xFFFFFFFFu};
  for (const std::uint32_t dwRiff : sizes) {
    for (const std::uint32_t dwFirst : sizes) {
      for (const std::uint32_t dwSecond : sizes) {
        C_RiffFile file;
        EXPECT_TRUE(Open(file, C_RiffBytes("WAVE")
                                   .Chunk("aaaa", dwFirst, {1, 2, 3, 4, 5, 6, 7, 8})
                                   .Chunk("bbbb", dwSecond, {1, 2, 3})
                                   .RiffSize(dwRiff)
                                   .Take()));
        EXPECT_LE(file.GetChunkCount(), 3);
        for (int i = 0; i < file.GetChunkCount(); ++i) {
          EXPECT_LE(file.GetChunkAt(i)->GetDataPos(), 12u + 16u + 11u);
        }
      }
    }
  }
}

TEST_F(RiffFile, GetChunkAt_OutsideTheList_Throws) {
  C_RiffFile file;
  EXPECT_TRUE(Open(file, TwoChunks().Take()));
  EXPECT_THROW(static_cast<void>(file.GetChunkAt(2)), std::out_of_range);
  EXPECT_THROW(static_cast<void>(file.GetChunkAt(-1)), std::out_of_range);
}

TEST_F(RiffFile, RemoveChunks_EmptiesTheList) {
  C_RiffFile file;
  EXPECT_TRUE(Open(file, TwoChunks().Take()));
  file.RemoveChunks();
  EXPECT_EQ(file.GetChunkCount(), 0);
}

TEST_F(RiffFile, FindChunk_FindsFromAStart) {
  C_RiffFile file;
  EXPECT_TRUE(Open(file, TwoChunks().Chunk("aaaa", {9}).Take()));
  EXPECT_EQ(file.FindChunk("aaaa", 0), file.GetChunkAt(0));
  EXPECT_EQ(file.FindChunk("aaaa", 1), file.GetChunkAt(2));
  EXPECT_EQ(file.FindChunk("bbbb", 0), file.GetChunkAt(1));
  EXPECT_EQ(file.FindChunk("aaaa", 3), nullptr);
  EXPECT_EQ(file.FindChunk("aaaa", 4), nullptr);
  EXPECT_EQ(file.FindChunk("aaaA", 0), nullptr);
  EXPECT_EQ(file.FindChunk("bbbbXX", -5), file.GetChunkAt(1));
}

TEST_F(RiffFile, Destructors_StandInTheFirstSlots) {
  auto* pFile = new C_RiffFile;
  ASSERT_TRUE(Open(*pFile, TwoChunks().Take()));
  const auto nDescriptors = OpenDescriptors();
  CallSlot<void>(pFile, 1);
  EXPECT_EQ(OpenDescriptors(), nDescriptors - 1);
}
