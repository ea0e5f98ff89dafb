// SPDX-License-Identifier: Apache-2.0
#include "FileType.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "TempFolder.h"

namespace {

constexpr unsigned char kUntouched = 7;

class FileType : public ::testing::Test {
 protected:
  // What CheckFileType says about an existing file with this name, and the byte that it leaves.
  std::pair<bool, unsigned char> Check(const std::string& strName) {
    m_folder.Write(strName, {1, 2, 3});
    return CheckPath(m_folder.Path(strName));
  }
  static std::pair<bool, unsigned char> CheckPath(const std::string& strPath) {
    unsigned char byNeedsDecoding = kUntouched;
    const bool bSupported = CheckFileType(strPath.c_str(), &byNeedsDecoding);
    return {bSupported, byNeedsDecoding};
  }

  C_TempFolder m_folder;
  const std::pair<bool, unsigned char> kPlayed = {true, 0};
  const std::pair<bool, unsigned char> kDecoded = {true, 1};
  const std::pair<bool, unsigned char> kRefused = {false, kUntouched};
};

TEST_F(FileType, FiveKinds_ArePlayedAsTheyAre) {
  for (const char* pszExt :
       {"mp3", "wma", "wav", "mid", "vea", "MP3", "WMA", "WAV", "MID", "VEA"}) {
    EXPECT_EQ(Check(std::string("sound.") + pszExt), kPlayed) << pszExt;
  }
}

TEST_F(FileType, TwentyOneKinds_AreDecodedFirst) {
  const std::vector<const char*> extensions = {"plv", "kst", "rok", "hrn", "trn", "wrn", "fnc",
                                               "rbn", "crn", "ibs", "egr", "dnl", "nv4", "nv5",
                                               "mv4", "mv5", "nvp", "nva", "adp", "pcm", "ref"};
  ASSERT_EQ(extensions.size(), 21U);
  for (const char* pszExt : extensions) {
    EXPECT_EQ(Check(std::string("sound.") + pszExt), kDecoded) << pszExt;
  }
}

TEST_F(FileType, Case_DoesNotMatter) {
  EXPECT_EQ(Check("song.mp3"), kPlayed);
  EXPECT_EQ(Check("Song.Mp3"), kPlayed);
  EXPECT_EQ(Check("SONG.MP3"), kPlayed);
  EXPECT_EQ(Check("speech.kst"), kDecoded);
  EXPECT_EQ(Check("speech.KST"), kDecoded);
  EXPECT_EQ(Check("speech.kSt"), kDecoded);
  EXPECT_EQ(Check("speech.nV4"), kDecoded);
}

TEST_F(FileType, OtherExtensions_AreRefusedAndTheByteStays) {
  for (const char* pszName :
       {"x.vef", "x.raw", "x.wave", "x.aiff", "x.ogg", "x.flac", "x.opus", "x.txt", "x.kst2",
        "x.kst ", "x. kst", "x.k", "x.ks", "x.wa", "x.wavx", "x.mp33", "x.mp4", "x.hrn\n"}) {
    EXPECT_EQ(Check(pszName), kRefused) << pszName;
  }
}

TEST_F(FileType, MissingExtension_IsRefused) {
  EXPECT_EQ(Check("speech."), kRefused);
  EXPECT_EQ(Check("kst"), kRefused);
  EXPECT_EQ(Check("wav"), kRefused);
}

TEST_F(FileType, SeveralDots_CountAsTheLastOnly) {
  EXPECT_EQ(Check("a.kst.wav"), kPlayed);
  EXPECT_EQ(Check("a.wav.kst"), kDecoded);
  EXPECT_EQ(Check("x.tar.gz.MP3"), kPlayed);
  EXPECT_EQ(Check(".kst"), kDecoded);
  EXPECT_EQ(Check("a..kst"), kDecoded);
  EXPECT_EQ(Check("a.kst."), kRefused);
}

TEST_F(FileType, MissingFile_IsRefusedAndTheByteStays) {
  EXPECT_EQ(CheckPath(m_folder.Path("missing.wav")), kRefused);
  EXPECT_EQ(CheckPath(m_folder.Path("no-folder/x.wav")), kRefused);
  EXPECT_EQ(CheckPath(""), kRefused);
}

TEST_F(FileType, NullName_IsRefused) {
  unsigned char byNeedsDecoding = kUntouched;
  EXPECT_FALSE(CheckFileType(nullptr, &byNeedsDecoding));
  EXPECT_EQ(byNeedsDecoding, kUntouched);
}

TEST_F(FileType, FolderWithAKnownExtension_Passes) {
  std::filesystem::create_directory(m_folder.Path("x.wav"));
  EXPECT_EQ(CheckPath(m_folder.Path("x.wav")), kPlayed);
}

TEST_F(FileType, DotOnlyInTheFolderName_IsRefused) {
  std::filesystem::create_directory(m_folder.Path("dir.wav"));
  EXPECT_EQ(Check("dir.wav/file"), kRefused);
}

TEST_F(FileType, SymbolicLink_IsFollowed) {
  m_folder.Write("there", {1});
  ASSERT_EQ(symlink(m_folder.Path("there").c_str(), m_folder.Path("link.kst").c_str()), 0);
  EXPECT_EQ(CheckPath(m_folder.Path("link.kst")), kDecoded);
  ASSERT_EQ(symlink("nowhere", m_folder.Path("broken.kst").c_str()), 0);
  EXPECT_EQ(CheckPath(m_folder.Path("broken.kst")), kRefused);
}

// Opening a pipe for reading would wait for a writer.
TEST_F(FileType, Content_IsNotRead) {
  ASSERT_EQ(mkfifo(m_folder.Path("pipe.wav").c_str(), 0600), 0);
  EXPECT_EQ(CheckPath(m_folder.Path("pipe.wav")), kPlayed);
}

TEST_F(FileType, LongestNameThatFits_Passes) {
  std::string strPath = m_folder.Write("x.wav", {1});
  const std::string strStep = "./";
  std::string strLong = m_folder.Path() + "/";
  while (strLong.size() + strStep.size() + 5 <= 1023) strLong += strStep;
  if (strLong.size() + 5 < 1023) strLong.insert(strLong.find('/', 1), 1, '/');
  strLong += "x.wav";
  ASSERT_EQ(strLong.size(), 1023U);
  EXPECT_EQ(CheckPath(strLong), kPlayed);
  strLong.insert(strLong.find('/', 1), 1, '/');
  ASSERT_EQ(strLong.size(), 1024U);
  struct stat info {};
  ASSERT_EQ(stat(strLong.c_str(), &info), 0);
  EXPECT_EQ(CheckPath(strLong), kRefused);
}

TEST_F(FileType, HugeNames_AreRefused) {
  EXPECT_EQ(CheckPath(std::string(2000, 'a')), kRefused);
  EXPECT_EQ(CheckPath(std::string(100000, 'a') + ".wav"), kRefused);
  EXPECT_EQ(CheckPath("." + std::string(5000, 'k')), kRefused);
}

TEST(GetFileExt, Extension_IsTheTextAfterTheLastDot) {
  char szExt[1024] = {};
  EXPECT_STREQ(GetFileExt("a.b.kst", szExt), "kst");
  EXPECT_EQ(GetFileExt("a.b.kst", szExt), szExt);
  EXPECT_STREQ(GetFileExt("speech.", szExt), "");
  EXPECT_STREQ(GetFileExt(".kst", szExt), "kst");
  EXPECT_STREQ(GetFileExt("song.Mp3", szExt), "Mp3");
}

TEST(GetFileExt, WithoutABuffer_PointsIntoTheName) {
  const char* pszName = "a.b.kst";
  EXPECT_EQ(GetFileExt(pszName, nullptr), pszName + 4);
  const char* pszEmpty = "speech.";
  EXPECT_EQ(GetFileExt(pszEmpty, nullptr), pszEmpty + 7);
}

TEST(GetFileExt, DotInAFolderName_GivesTheRestOfThePath) {
  char szExt[1024] = {};
  EXPECT_STREQ(GetFileExt("dir.x/file", szExt), "x/file");
  EXPECT_STREQ(GetFileExt("dir.x/file", nullptr), "x/file");
}

TEST(GetFileExt, NoDotOrNoName_IsNull) {
  char szExt[1024] = "kept";
  EXPECT_EQ(GetFileExt("noext", szExt), nullptr);
  EXPECT_EQ(GetFileExt("noext", nullptr), nullptr);
  EXPECT_EQ(GetFileExt("", szExt), nullptr);
  EXPECT_EQ(GetFileExt("", nullptr), nullptr);
  EXPECT_EQ(GetFileExt(nullptr, szExt), nullptr);
  EXPECT_EQ(GetFileExt(nullptr, nullptr), nullptr);
  EXPECT_STREQ(szExt, "kept");
}

TEST(GetFileExt, NameBeyondTheBuffer_IsRefused) {
  std::vector<char> ext(1024, 'z');
  const std::string strFits = "." + std::string(1022, 'k');
  EXPECT_EQ(GetFileExt(strFits.c_str(), ext.data()), std::string(1022, 'k'));
  const std::string strTooLong = "." + std::string(1023, 'k');
  EXPECT_EQ(GetFileExt(strTooLong.c_str(), ext.data()), nullptr);
  const std::string strLongName = std::string(5000, 'n') + ".kst";
  EXPECT_EQ(GetFileExt(strLongName.c_str(), ext.data()), nullptr);
  EXPECT_EQ(GetFileExt(strLongName.c_str(), nullptr), strLongName.c_str() + 5001);
}

}  // namespace
