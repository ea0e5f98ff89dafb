// SPDX-License-Identifier: Apache-2.0
#include "batch/FileList.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "FolderTest.h"
#include "VoxtoolSounds.h"
#include "base/Failure.h"

namespace tool {
namespace {

class FileListTest : public C_FolderTest {
 protected:
  using Texts = std::vector<std::string>;

  void MakeFile(const std::string& strName, const std::string& strText = "") const {
    std::filesystem::create_directories(std::filesystem::path(Path(strName)).parent_path());
    Write(strName, {strText.begin(), strText.end()});
  }
  static Texts Kept(const C_FileList& list) {
    Texts kept;
    for (const S_ListedFile& file : list.Files()) kept.emplace_back(file.Kept());
    return kept;
  }
  Texts Listed(const std::string& strText, bool bZeros) {
    MakeFile("list", strText);
    C_FileList list(false, m_console);
    list.AddListed(Path("list"), bZeros);
    Texts paths;
    for (const S_ListedFile& file : list.Files()) paths.push_back(file.strPath);
    return paths;
  }

  C_Console m_console;
};

TEST_F(FileListTest, Operands_KeepTheirOrderAndTheirNames) {
  C_FileList list(false, m_console);
  for (const char* pszName : {"b/z.wav", "a.wav", "-", "missing/c.kst"}) list.AddOperand(pszName);
  EXPECT_EQ(Kept(list), (Texts{"z.wav", "a.wav", "-", "c.kst"}));
  EXPECT_EQ(list.Failures(), 0U);
}

TEST_F(FileListTest, FolderWithoutRecursion_IsComplainedOf) {
  C_FileList list(false, m_console);
  testing::internal::CaptureStderr();
  list.AddOperand(Folder());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            Folder() + ": is a folder: -r takes the sounds in it\n");
  EXPECT_EQ(list.Failures(), 1U);
  EXPECT_TRUE(list.Files().empty());
}

TEST_F(FileListTest, Folder_GivesTheSoundsBelowItInOrder) {
  for (const char* pszName : {"b.wav", "a/y.kst", "a/x.FLAC", "a/b/c.hrn", "text.txt",
                              ".hidden.wav", ".d/e.wav", "c.wav.1f2e"}) {
    MakeFile(pszName);
  }
  for (const std::string& strFolder : {Folder(), Folder() + "/"}) {
    C_FileList list(true, m_console);
    list.AddOperand(strFolder);
    EXPECT_EQ(Kept(list), (Texts{"a/b/c.hrn", "a/x.FLAC", "a/y.kst", "b.wav"}));
    // The text, what is hidden, and the remainder.
    EXPECT_EQ(list.CountLeftOut(), 4U);
  }
}

TEST_F(FileListTest, FilesThatAreLeftOut_CanBeNamed) {
  for (const char* pszName : {".hidden.wav", "a.wav", "text.txt"}) MakeFile(pszName);
  std::filesystem::create_directory_symlink("/", Path("root"));
  C_FileList list(true, m_console);
  list.NameLeftOut();
  testing::internal::CaptureStderr();
  list.AddOperand(Folder());
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            Path(".hidden.wav") + ": is left out: its name begins with a dot\n" + Path("root") +
                ": is left out: it is a link to a folder\n" + Path("text.txt") +
                ": is left out: it has no extension of sounds\n");
  EXPECT_EQ(list.CountLeftOut(), 3U);
}

TEST_F(FileListTest, SameFileTwice_CanBeDropped) {
  C_FileList list(false, m_console);
  for (const char* pszName : {"b.wav", "a/b.wav", "./b.wav", "a/../b.wav", "c.wav"}) {
    list.AddOperand(pszName);
  }
  list.DropRepeated();
  ASSERT_EQ(list.Files().size(), 3U);
  EXPECT_EQ(list.Files()[0].strPath, "b.wav");
  EXPECT_EQ(list.Files()[1].strPath, "a/b.wav");
  EXPECT_EQ(list.Files()[2].strPath, "c.wav");
}

TEST_F(FileListTest, CarriageReturns_EndNamesOfFilesThatAreThere) {
  MakeFile("a.wav");
  MakeFile("b.wav\r");
  const std::string strText = Path("a.wav") + "\r\n\r\n" + Path("b.wav") + "\r\nnone.wav\r\n";
  EXPECT_EQ(Listed(strText, false), (Texts{Path("a.wav"), Path("b.wav\r"), "none.wav\r"}));
  EXPECT_EQ(Listed(Path("a.wav") + '\r', true), Texts{Path("a.wav\r")});
}

TEST_F(FileListTest, SoundsWithOtherNames_AreKnownByTheirFirstBytes) {
  test::WriteSound(Path("message.001"), FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL),
                   PublicSamples(640));
  test::WriteSound(Path("plain"), FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16),
                   PublicSamples(640));
  std::filesystem::copy_file(Path("plain"), Path("left.wav.12ab"));
  MakeFile("zeros", std::string(4000, '\0'));
  C_FileList list(true, m_console);
  list.AddOperand(Folder());
  EXPECT_EQ(Kept(list), (Texts{"message.001", "plain"}));
}

TEST_F(FileListTest, LinkToAFolder_IsNotFollowed) {
  MakeFile("a/x.wav");
  std::filesystem::create_directory_symlink(Path("a"), Path("a/again"));
  std::filesystem::create_symlink(Path("a/x.wav"), Path("link.wav"));
  C_FileList list(true, m_console);
  list.AddOperand(Folder());
  EXPECT_EQ(Kept(list), (Texts{"a/x.wav", "link.wav"}));
}

TEST_F(FileListTest, LinesOfAList_AreNames) {
  EXPECT_EQ(Listed("a.wav\n\nb c.wav\n-x.wav", false), (Texts{"a.wav", "b c.wav", "-x.wav"}));
  EXPECT_EQ(Listed("", false), Texts{});
}

TEST_F(FileListTest, ZerosInAList_EndNamesThatMayHaveLineEnds) {
  const std::string strText("a\nb.wav\0c.wav\0", 14);
  EXPECT_EQ(Listed(strText, true), (Texts{"a\nb.wav", "c.wav"}));
}

TEST_F(FileListTest, RelativeNamesInAList_KeepTheirFolders) {
  MakeFile("list", "a/b.wav\n/x/y.wav\n../up.wav\nc.wav\n");
  C_FileList list(false, m_console);
  list.AddListed(Path("list"), false);
  EXPECT_EQ(Kept(list), (Texts{"a/b.wav", "y.wav", "up.wav", "c.wav"}));
}

TEST_F(FileListTest, EndlessName_IsRefused) {
  EXPECT_THROW(Listed(std::string(70000, 'x'), false), C_Failure);
  EXPECT_THROW(Listed(std::string(40000, 'x') + '\n' + std::string(40000, 'y'), true), C_Failure);
}

TEST_F(FileListTest, MissingList_IsAFailure) {
  C_FileList list(false, m_console);
  EXPECT_THROW(list.AddListed(Path("none"), false), C_Failure);
}

}  // namespace
}  // namespace tool
