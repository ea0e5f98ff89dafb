// SPDX-License-Identifier: Apache-2.0
#include "TempFile.h"

#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): setenv
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <regex>
#include <set>

#include "TempFolder.h"

namespace {

bool Exists(const std::string& strPath) {
  struct stat info {};
  return lstat(strPath.c_str(), &info) == 0;
}

}  // namespace

TEST(TempFile, TempName_HasTheFormOfTheCLibrary) {
  const std::regex form("/tmp/file[A-Za-z0-9]{6}");
  EXPECT_TRUE(std::regex_match(vcm::TempName(""), form));
  EXPECT_TRUE(std::regex_match(vcm::TempName(".wav"), std::regex("/tmp/file[A-Za-z0-9]{6}\\.wav")));
}

TEST(TempFile, TempName_WithAnotherPrefix_BeginsWithIt) {
  EXPECT_TRUE(
      std::regex_match(vcm::TempName("", "temp_enc"), std::regex("/tmp/temp_enc[A-Za-z0-9]{6}")));
  const vcm::C_TempFile file("", "temp_evt");
  EXPECT_TRUE(std::regex_match(file.Path(), std::regex("/tmp/temp_evt[A-Za-z0-9]{6}")));
  EXPECT_TRUE(Exists(file.Path()));
}

TEST(TempFile, TempName_CreatesNothingAndDoesNotRepeat) {
  std::set<std::string> names;
  for (int i = 0; i < 50; ++i) {
    const std::string strName = vcm::TempName(".x");
    EXPECT_FALSE(Exists(strName));
    EXPECT_TRUE(names.insert(strName).second);
  }
}

TEST(TempFile, TempName_IgnoresTheEnvironment) {
  const C_TempFolder folder;
  ASSERT_EQ(setenv("TMPDIR", folder.Path().c_str(), 1), 0);
  EXPECT_EQ(vcm::TempName("").rfind("/tmp/file", 0), 0u);
  const vcm::C_TempFile file;
  EXPECT_EQ(file.Path().rfind("/tmp/file", 0), 0u);
  unsetenv("TMPDIR");
  EXPECT_TRUE(folder.IsEmpty());
}

TEST(TempFile, CreateExclusive_MakesAPrivateFile) {
  const C_TempFolder folder;
  const mode_t nBefore = umask(0);
  const auto file = vcm::CreateExclusive(folder.Path("file"));
  umask(nBefore);
  ASSERT_TRUE(file);
  struct stat info {};
  ASSERT_EQ(stat(folder.Path("file").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 07777, static_cast<mode_t>(S_IRUSR | S_IWUSR));
}

TEST(TempFile, CreateExclusive_RefusesWhatExists) {
  const C_TempFolder folder;
  folder.Write("file", {1, 2, 3});
  EXPECT_FALSE(vcm::CreateExclusive(folder.Path("file")));
  EXPECT_EQ(folder.Read("file").size(), 3u);
  EXPECT_FALSE(vcm::CreateExclusive(folder.Path("missing/file")));
}

TEST(TempFile, CreateExclusive_DoesNotFollowALink) {
  const C_TempFolder folder;
  ASSERT_EQ(symlink(folder.Path("target").c_str(), folder.Path("link").c_str()), 0);
  EXPECT_FALSE(vcm::CreateExclusive(folder.Path("link")));
  EXPECT_FALSE(folder.Has("target"));
}

TEST(TempFile, RemovedAtEnd_RemovesOnceAndOnlyWhatIsNotKept) {
  const std::string strPath = vcm::TempName(".kst");
  ASSERT_TRUE(vcm::CreateExclusive(strPath));
  {
    vcm::C_RemovedAtEnd first(strPath);
    EXPECT_EQ(first.Path(), strPath);
    {
      vcm::C_RemovedAtEnd second(std::move(first));
      EXPECT_EQ(second.Keep(), strPath);
      EXPECT_EQ(second.Path(), "");
    }
    EXPECT_EQ(access(strPath.c_str(), F_OK), 0) << "kept";
  }
  EXPECT_EQ(access(strPath.c_str(), F_OK), 0) << "handed on and kept there";
  { const vcm::C_RemovedAtEnd last(strPath); }
  EXPECT_NE(access(strPath.c_str(), F_OK), 0);
  { const vcm::C_RemovedAtEnd nothing; }
}

TEST(TempFile, TempFile_LivesAsLongAsTheObject) {
  std::string strPath;
  {
    const vcm::C_TempFile file(".kst");
    strPath = file.Path();
    ASSERT_NE(file.Stream(), nullptr);
    EXPECT_TRUE(strPath.ends_with(".kst"));
    EXPECT_TRUE(Exists(strPath));
    EXPECT_NE(std::fputs("abc", file.Stream()), EOF);
    std::rewind(file.Stream());
    EXPECT_EQ(std::fgetc(file.Stream()), 'a');
  }
  EXPECT_FALSE(Exists(strPath));
}

TEST(TempFile, TempFile_IsRemovedAlsoWhenItsStreamWasTaken) {
  std::string strPath;
  {
    vcm::C_TempFile file;
    strPath = file.Path();
    EXPECT_TRUE(file.TakeStream());
    EXPECT_EQ(file.Stream(), nullptr);
    EXPECT_TRUE(Exists(strPath));
  }
  EXPECT_FALSE(Exists(strPath));
}
