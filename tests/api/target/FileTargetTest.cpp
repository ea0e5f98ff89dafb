// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "FailureOf.h"
#include "FileSizeLimit.h"
#include "FolderTest.h"
#include "InChild.h"

#include "target/ByteTarget.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using api::test::FailureOf;
using testing::ElementsAre;
using testing::HasSubstr;

const Bytes kOld = {'o', 'l', 'd'};
const Bytes kNew = {'n', 'e', 'w', '!'};
constexpr uid_t kNobody = 65534;

class FileTarget : public C_FolderTest {
 protected:
  [[nodiscard]] api::C_ByteTargetPtr Open(const std::string& strName) const {
    return api::OpenFileTarget(Path(strName).c_str());
  }
  void WriteWhole(const std::string& strName, const Bytes& bytes = kNew) const {
    const auto target = Open(strName);
    target->Write(bytes);
    target->Finish();
  }
  [[nodiscard]] mode_t ModeOf(const std::string& strName) const {
    struct stat status {};
    EXPECT_EQ(stat(Path(strName).c_str(), &status), 0);
    return status.st_mode & 07777;
  }
};

TEST_F(FileTarget, NewName_AppearsWholeAtTheEnd) {
  const auto target = Open("a");
  target->Write(kNew);
  EXPECT_FALSE(std::filesystem::exists(Path("a")));
  EXPECT_EQ(Entries().size(), 1u);
  target->Finish();
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(FileTarget, NewName_HasTheModeThatTheMaskLeaves) {
  const mode_t nBefore = umask(027);
  WriteWhole("a");
  umask(0);
  WriteWhole("b");
  umask(nBefore);
  EXPECT_EQ(ModeOf("a"), 0640u);
  EXPECT_EQ(ModeOf("b"), 0666u);
}

TEST_F(FileTarget, FileThatGetsTheNameMeanwhile_IsReplacedLikeAnyOther) {
  const auto target = Open("a");
  target->Write(kNew);
  Write("a", kOld);
  ASSERT_EQ(chmod(Path("a").c_str(), 0604), 0);
  target->Finish();
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_EQ(ModeOf("a"), 0604u);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(FileTarget, TwoWritersOfANewName_BothFinish) {
  const auto first = Open("a");
  const auto second = Open("a");
  first->Write(kNew);
  second->Write(kOld);
  second->Finish();
  EXPECT_EQ(Content("a"), kOld);
  first->Finish();
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(FileTarget, SomethingElseThatGetsTheNameMeanwhile_IsKept) {
  const auto target = Open("a");
  target->Write(kNew);
  std::filesystem::create_directory(Path("a"));
  const auto failure = FailureOf([&] { target->Finish(); });
  EXPECT_EQ(failure.eStatus, VOXPLAY_CANNOT_WRITE);
  EXPECT_THAT(failure.strText, HasSubstr("another file has got this name in the meantime"));
  EXPECT_TRUE(std::filesystem::is_directory(Path("a")));
}

TEST_F(FileTarget, ExistingFile_IsIntactUntilTheEnd) {
  Write("a", kOld);
  ASSERT_EQ(chmod(Path("a").c_str(), 0604), 0);
  const auto target = Open("a");
  target->Write(kNew);
  EXPECT_EQ(Content("a"), kOld);
  target->Finish();
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_EQ(ModeOf("a"), 0604u);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(FileTarget, AbandonedFile_LeavesNothing) {
  Write("a", kOld);
  for (const char* pszName : {"a", "b"}) Open(pszName)->Write(Bytes(100000, 'x'));
  EXPECT_EQ(Content("a"), kOld);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(FileTarget, WriteAt_WritesOverAndGoesOnAtTheEnd) {
  const auto target = Open("a");
  target->Write(Bytes(100000, 'x'));
  target->WriteAt(1, kNew);
  target->Write(kOld);
  EXPECT_EQ(target->Length(), 100003u);
  EXPECT_TRUE(target->CanGoBack());
  target->Finish();
  Bytes expected(100000, 'x');
  std::copy(kNew.begin(), kNew.end(), expected.begin() + 1);
  expected.insert(expected.end(), kOld.begin(), kOld.end());
  EXPECT_EQ(Content("a"), expected);
}

TEST_F(FileTarget, Links_StayLinks) {
  std::filesystem::create_directory(Path("folder"));
  Write("folder/a", kOld);
  ASSERT_EQ(symlink("folder/a", Path("link").c_str()), 0);
  ASSERT_EQ(symlink("folder/none", Path("to-nothing").c_str()), 0);
  WriteWhole("link");
  WriteWhole("to-nothing");
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_TRUE(std::filesystem::is_symlink(Path("to-nothing")));
  EXPECT_EQ(Content("folder/a"), kNew);
  EXPECT_EQ(Content("folder/none"), kNew);
  EXPECT_THAT(Entries(), ElementsAre("folder", "link", "to-nothing"));
}

TEST_F(FileTarget, WhatCannotBeAFile_IsRefusedWithASentence) {
  ASSERT_EQ(symlink("b", Path("loop").c_str()), 0);
  ASSERT_EQ(symlink("loop", Path("b").c_str()), 0);
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  const auto refusal = [](const std::string& strPath) {
    const auto failure = FailureOf([&] { api::OpenFileTarget(strPath.c_str()); });
    EXPECT_EQ(failure.eStatus, VOXPLAY_CANNOT_OPEN);
    return failure.strText;
  };
  EXPECT_EQ(refusal(Path("pipe")), "file: cannot be written: it is not a regular file");
  EXPECT_EQ(refusal("/dev/null"), "file: cannot be written: it is not a regular file");
  EXPECT_EQ(refusal("/dev/stdout"), "file: cannot be written: it is not a regular file");
  EXPECT_EQ(refusal(Folder()), "file: cannot be written: it is not a regular file");
  EXPECT_EQ(refusal(Path("loop")), "file: cannot be written: its links lead in a circle");
  EXPECT_EQ(refusal(""), "file: cannot be written: its name is empty");
  EXPECT_THAT(refusal(Path("none/a")), HasSubstr("there is no such folder"));
  EXPECT_THAT(refusal(Path(std::string(300, 'a'))), HasSubstr("the name is too long"));
  EXPECT_THAT(Entries(), ElementsAre("b", "loop", "pipe"));
}

TEST_F(FileTarget, LongestName_CanBeWritten) {
  const std::string strName(255, 'n');
  WriteWhole(strName);
  WriteWhole(strName, kOld);
  EXPECT_EQ(Content(strName), kOld);
  EXPECT_THAT(Entries(), ElementsAre(strName));
}

TEST_F(FileTarget, FolderThatTakesNoSecondFile_IsRefused) {
  Write("a", kOld);
  ASSERT_EQ(chmod(Path("a").c_str(), 0666), 0);
  ASSERT_EQ(chmod(Folder().c_str(), 0755), 0);
  const auto isRefused = [this](const char* pszName) {
    return InChildAs(kNobody, [&] {
      const auto failure = FailureOf([&] { WriteWhole(pszName); });
      return failure.eStatus == VOXPLAY_CANNOT_OPEN &&
             failure.strText.find("it is not permitted") != std::string::npos;
    });
  };
  EXPECT_TRUE(isRefused("a"));
  EXPECT_TRUE(isRefused("b"));
  EXPECT_EQ(Content("a"), kOld);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(FileTarget, FileThatMayNotBeWritten_IsRefused) {
  Write("a", kOld);
  ASSERT_EQ(chmod(Path("a").c_str(), 0644), 0);
  ASSERT_EQ(chmod(Folder().c_str(), 0777), 0);
  EXPECT_TRUE(InChildAs(kNobody, [this] {
    return FailureOf([this] { WriteWhole("a"); }).eStatus == VOXPLAY_CANNOT_OPEN;
  }));
  EXPECT_EQ(Content("a"), kOld);
}

TEST_F(FileTarget, FullDisk_FailsAndKeepsTheOldFile) {
  Write("a", kOld);
  for (const char* pszName : {"a", "b"}) {
    const C_FileSizeLimit limit(1000);
    const auto large = FailureOf([&] { WriteWhole(pszName, Bytes(200000, 'x')); });
    EXPECT_EQ(large.eStatus, VOXPLAY_CANNOT_WRITE);
    EXPECT_THAT(large.strText, HasSubstr("the file would become too large"));
    // So few that they are written when the file is finished.
    const auto small = FailureOf([&] { WriteWhole(pszName, Bytes(1001, 'x')); });
    EXPECT_EQ(small.eStatus, VOXPLAY_CANNOT_WRITE);
  }
  EXPECT_EQ(Content("a"), kOld);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

}  // namespace
