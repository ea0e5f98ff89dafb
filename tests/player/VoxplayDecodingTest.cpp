// SPDX-License-Identifier: Apache-2.0
//
// The player with files that must be decoded first.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdint>
#include <filesystem>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "FileBytes.h"
#include "VoxplayFixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Lines = std::vector<std::string>;

TEST_F(Voxplay, Open_OfAKnownCodecFile_ConvertsItAndPlaysTheResult) {
  EXPECT_EQ(Open("x.kst"), 0);
  EXPECT_THAT(m_library.Log(),
              ElementsAre("CreateWavFile(" + m_folder.Path("x.kst") + ", true, true, null, null)",
                          "file::Convert(32769, <temporary>.wav, true, false, null, false, 0)",
                          "file::Release", "~C_WavFileFormat"));
  ASSERT_EQ(m_temp.NewFiles().size(), 1U);
  const std::string strWav = std::string(P_tmpdir) + "/" + m_temp.NewFiles().front();
  EXPECT_EQ(ShortName(strWav.c_str()), "<temporary>.wav");
  EXPECT_EQ(m_toolbox.Count("AudioFileOpenURL(" + strWav + ", 1, 0)"), 1);
}

TEST_F(Voxplay, DecodedFile_StaysInTheTemporaryDirectory) {
  EXPECT_EQ(Open("x.kst"), 0);
  Release();
  EXPECT_EQ(m_temp.NewFiles().size(), 1U);
}

TEST_F(Voxplay, EveryPlayer_HasADecodedFileOfItsOwn) {
  EXPECT_EQ(Open("x.kst"), 0);
  Release();
  ASSERT_EQ(CreateVoxplay(&m_pPlayer), 0);
  EXPECT_EQ(Open("x.kst"), 0);
  EXPECT_EQ(m_temp.NewFiles().size(), 2U);
}

TEST_F(Voxplay, BareStreamWhoseDecodingThrows_LeavesNothing) {
  m_library.creates = {false, false, true};
  m_library.onConvert = [](const char* /*pszPath*/) { throw std::bad_alloc(); };
  EXPECT_EQ(Open("x.kst"), 1);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, DecodedFile_IsReadableByItsOwnerOnly) {
  EXPECT_EQ(Open("x.kst"), 0);
  struct stat info {};
  ASSERT_EQ(stat((std::string(P_tmpdir) + "/" + m_temp.NewFiles().at(0)).c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777U, 0600U);
}

TEST_F(Voxplay, SecondDecode_ReplacesTheFirst) {
  EXPECT_EQ(Open("x.kst"), 0);
  const Lines first = m_temp.NewFiles();
  EXPECT_EQ(Open("y.adp"), 0);
  EXPECT_EQ(m_temp.NewFiles(), first);
}

// If somebody puts a link in the place of the decoded file between two runs, nothing is written
// through that link.
TEST_F(Voxplay, LinkInThePlaceOfTheDecodedFile_IsReplacedAndNotFollowed) {
  EXPECT_EQ(Open("x.kst"), 0);
  const std::string strWav = std::string(P_tmpdir) + "/" + m_temp.NewFiles().at(0);
  m_folder.Write("victim", {1, 2, 3});
  std::filesystem::remove(strWav);
  std::filesystem::create_symlink(m_folder.Path("victim"), strWav);
  EXPECT_EQ(Open("x.kst"), 0);
  EXPECT_FALSE(std::filesystem::is_symlink(strWav));
  EXPECT_EQ(m_folder.Read("victim"), (std::vector<std::uint8_t>{1, 2, 3}));
}

TEST_F(Voxplay, FolderInThePlaceOfTheDecodedFile_IsADecodingFailure) {
  EXPECT_EQ(Open("x.kst"), 0);
  const std::string strWav = std::string(P_tmpdir) + "/" + m_temp.NewFiles().at(0);
  std::filesystem::remove(strWav);
  std::filesystem::create_directory(strWav);
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_TRUE(std::filesystem::is_directory(strWav));
}

TEST_F(Voxplay, FailedConversion_IsTwoAndLeavesNothing) {
  m_library.converts = {false};
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_EQ(m_strOutput, "");
  EXPECT_EQ(m_library.Log().at(2), "file::Release");
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
}

TEST_F(Voxplay, BareStream_IsWrittenTwice) {
  m_library.creates = {false, false, true};
  EXPECT_EQ(Open("x.kst"), 0);
  EXPECT_THAT(m_library.Log(),
              ElementsAre("CreateWavFile(" + m_folder.Path("x.kst") + ", true, true, null, null)",
                          "CreateWavFile(<temporary>.kst, true, true, null, null)",
                          "LoadByName(<temporary>.kst, true, null, null)",
                          "kestrel::Convert(32769, <temporary>.wav, true, false, null, false, 0)",
                          "CreateWavFile(<temporary>.kst, true, true, null, null)",
                          "file::Convert(32769, <temporary>.wav, true, false, null, false, 0)",
                          "file::Release", "~C_WavFileFormat"));
  ASSERT_EQ(m_temp.NewFiles().size(), 1U) << "the copy is gone";
  EXPECT_TRUE(m_temp.NewFiles().at(0).ends_with(".wav"));
}

TEST_F(Voxplay, BareStream_IsLoadedFromACopyWithAHeader) {
  m_library.creates = {false, false, true};
  std::vector<std::vector<std::uint8_t>> copies;
  m_library.onConvert = [&](const char* /*pszPath*/) {
    for (const auto& strName : m_temp.NewFiles()) {
      if (!strName.ends_with(".kst")) continue;
      copies.push_back(FileBytes(std::string(P_tmpdir) + "/" + strName));
    }
  };
  EXPECT_EQ(Open("x.kst"), 0);
  ASSERT_EQ(copies.size(), 2U);
  ASSERT_EQ(copies[0].size(), 49U) << "48 bytes of header and the one of the file";
  const auto Byte = [&](std::size_t i) { return copies[0][i]; };
  EXPECT_EQ(std::string(copies[0].begin() + 4, copies[0].begin() + 18), "VOXELTRONIC SP");
  EXPECT_EQ(Byte(20), 254);
  EXPECT_EQ(Byte(21), 2);
  EXPECT_EQ(Byte(22) | Byte(23) << 8, 14);
  EXPECT_EQ(Byte(26) | Byte(27) << 8 | Byte(28) << 16, 16000);
  EXPECT_EQ(Byte(48), 1);
}

// The copy can be read, and shows that the file is one of those that the library knows.
TEST_F(Voxplay, FileThatOnlyCouldNotBeRead_IsTwoAndNotTakenForABareStream) {
  m_library.creates = {false, true};
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_THAT(m_library.Log(),
              ElementsAre("CreateWavFile(" + m_folder.Path("x.kst") + ", true, true, null, null)",
                          "CreateWavFile(<temporary>.kst, true, true, null, null)", "file::Release",
                          "~C_WavFileFormat"));
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, BareStreamThatCannotBeLoaded_IsTwoAndTheCopyIsGone) {
  m_library.creates = {false};
  m_library.loads = {false};
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, BareStreamThatCannotBeWritten_IsTwoAndTheCopyIsGone) {
  m_library.creates = {false, false, true};
  m_library.converts = {false};
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_EQ(m_library.Log().size(), 5U) << "not reopened";
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, BareStreamThatCannotBeReopened_IsOneAndTheCopyIsGone) {
  m_library.creates = {false, false, false};
  EXPECT_EQ(Open("x.kst"), 1);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, BareStreamWhoseSecondWriteFails_IsTwoAndTheCopyIsGone) {
  m_library.creates = {false, false, true};
  m_library.converts = {true, false};
  EXPECT_EQ(Open("x.kst"), 2);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, FolderNamedLikeACodecFile_IsTwoAndNothingIsCreated) {
  std::filesystem::create_directory(m_folder.Path("x.kst"));
  m_library.creates = {false};
  EXPECT_EQ(m_pPlayer->Open(m_folder.Path("x.kst").c_str()), 2);
  EXPECT_EQ(m_library.Log().size(), 2U) << "asked for once, and the end of the format";
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

TEST_F(Voxplay, EveryExceptionOutOfTheDecoder_IsOne) {
  m_library.onCreate = [](const char*, PFN_DecodedData) { throw std::bad_alloc(); };
  EXPECT_EQ(Open("x.kst"), 1);
  m_library.onCreate = [](const char*, PFN_DecodedData) { throw std::out_of_range("index"); };
  EXPECT_EQ(Open("x.kst"), 1);
  m_library.onCreate = [](const char*, PFN_DecodedData) { throw 42; };  // NOLINT: not an exception
  EXPECT_EQ(Open("x.kst"), 1);
  EXPECT_THAT(m_temp.NewFiles(), IsEmpty());
}

}  // namespace
