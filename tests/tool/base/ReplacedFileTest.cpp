// SPDX-License-Identifier: Apache-2.0
#include "base/ReplacedFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <string>

#include "FolderTest.h"
#include "InChild.h"
#include "base/Failure.h"
#include "base/Interrupt.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using tool::C_ReplacedFile;

using Bytes = std::vector<std::uint8_t>;

class ReplacedFile : public C_FolderTest {
 protected:
  static void Write(C_ReplacedFile& file, const std::string& strText) {
    file.Write(std::as_bytes(std::span(strText)));
  }
  using C_FolderTest::Write;
  [[nodiscard]] unsigned int ModeOf(const std::string& strName) const {
    struct stat status {};
    EXPECT_EQ(stat(Path(strName).c_str(), &status), 0);
    return status.st_mode & 07777U;
  }
  // The message of the failure to make the file.
  [[nodiscard]] std::string WhyNot(const std::string& strPath, bool bMayReplace) const {
    try {
      const C_ReplacedFile file(strPath, bMayReplace);
      return "";
    } catch (const tool::C_Failure& failure) {
      return failure.what();
    }
  }
};

TEST_F(ReplacedFile, NewFile_AppearsWhenItIsFinished) {
  {
    C_ReplacedFile file(Path("new"), false);
    Write(file, "content");
    EXPECT_FALSE(std::filesystem::exists(Path("new")));
    file.TakePlace();
  }
  EXPECT_EQ(Content("new"), (Bytes{'c', 'o', 'n', 't', 'e', 'n', 't'}));
  EXPECT_THAT(Entries(), ElementsAre("new"));
}

TEST_F(ReplacedFile, FileThatIsNotFinished_LeavesNothing) {
  Write("old", {'o'});
  {
    C_ReplacedFile file(Path("old"), true);
    Write(file, "other");
  }
  EXPECT_EQ(Content("old"), Bytes{'o'});
  EXPECT_THAT(Entries(), ElementsAre("old"));
}

// In another process, because what was asked for cannot be taken back.
TEST_F(ReplacedFile, FileThatIsInterrupted_LeavesNothing) {
  Write("old", {'o'});
  EXPECT_TRUE(InChildAs(0, [this] {
    tool::CatchInterrupts();
    try {
      C_ReplacedFile file(Path("old"), true);
      Write(file, "before");
      const bool bIsBeside = Entries().size() == 2;
      raise(SIGINT);
      if (bIsBeside) Write(file, "after");
    } catch (const tool::C_Interrupted&) {
      return true;
    }
    return false;
  }));
  EXPECT_EQ(Content("old"), Bytes{'o'});
  EXPECT_THAT(Entries(), ElementsAre("old"));
}

TEST_F(ReplacedFile, ReplacedFile_KeepsItsMode) {
  Write("old", {'o'});
  ASSERT_EQ(chmod(Path("old").c_str(), 0640), 0);
  C_ReplacedFile file(Path("old"), true);
  Write(file, "n");
  file.TakePlace();
  EXPECT_EQ(ModeOf("old"), 0640U);
  EXPECT_EQ(Content("old"), Bytes{'n'});
}

// An access list as the system keeps it: the owner, one more user, the group, the mask, others.
Bytes AccessList(std::uint8_t byRightsOfNobody) {
  Bytes list = {2, 0, 0, 0};
  const auto add = [&list](std::uint8_t byTag, std::uint8_t byRights, std::uint32_t dwUser) {
    list.insert(list.end(), {byTag, 0, byRights, 0});
    for (int i = 0; i < 4; ++i) list.push_back(static_cast<std::uint8_t>(dwUser >> (8 * i)));
  };
  constexpr std::uint32_t dwNone = 0xFFFFFFFF;
  add(1, 6, dwNone);
  add(2, byRightsOfNobody, 65534);
  add(4, 4, dwNone);
  add(16, 6, dwNone);
  add(32, 0, dwNone);
  return list;
}

// The list of a file; empty without one.
Bytes ListOf(const std::string& strPath) {
  Bytes list(256);
  const ssize_t cbList =
      getxattr(strPath.c_str(), "system.posix_acl_access", list.data(), list.size());
  list.resize(cbList > 0 ? static_cast<std::size_t>(cbList) : 0);
  return list;
}

TEST_F(ReplacedFile, FileWithoutAList_GetsNoneFromItsFolder) {
  const std::string strOld = Write("old", {'o'});
  ASSERT_EQ(chmod(strOld.c_str(), 0640), 0);
  const Bytes list = AccessList(6);
  if (setxattr(Folder().c_str(), "system.posix_acl_default", list.data(), list.size(), 0) != 0) {
    ASSERT_EQ(errno, ENOTSUP);  // a file system without such lists
    return;
  }
  EXPECT_NE(ListOf(Write("made here", {'m'})), Bytes{});
  C_ReplacedFile file(strOld, true);
  Write(file, "n");
  file.TakePlace();
  EXPECT_EQ(ListOf(strOld), Bytes{});
  EXPECT_EQ(ModeOf("old"), 0640U);
}

TEST_F(ReplacedFile, FileWithAList_KeepsIt) {
  const std::string strOld = Write("old", {'o'});
  const Bytes list = AccessList(4);
  const Bytes ofFolder = AccessList(6);
  if (setxattr(strOld.c_str(), "system.posix_acl_access", list.data(), list.size(), 0) != 0) {
    ASSERT_EQ(errno, ENOTSUP);  // a file system without such lists
    return;
  }
  ASSERT_EQ(
      setxattr(Folder().c_str(), "system.posix_acl_default", ofFolder.data(), ofFolder.size(), 0),
      0);
  const unsigned int dwMode = ModeOf("old");
  C_ReplacedFile file(strOld, true);
  Write(file, "n");
  file.TakePlace();
  EXPECT_EQ(ListOf(strOld), list);
  EXPECT_EQ(ModeOf("old"), dwMode);
}

TEST_F(ReplacedFile, ReplacedFile_KeepsTheAttributesOfItsUser) {
  const std::string strOld = Write("old", {'o'});
  // Not all file systems hold any.
  const bool bHeld = setxattr(strOld.c_str(), "user.rating", "five", 4, 0) == 0 &&
                     setxattr(strOld.c_str(), "user.empty", "", 0, 0) == 0;
  C_ReplacedFile file(strOld, true);
  Write(file, "n");
  file.TakePlace();
  std::array<char, 16> value{};
  EXPECT_EQ(getxattr(strOld.c_str(), "user.rating", value.data(), value.size()), bHeld ? 4 : -1);
  EXPECT_STREQ(value.data(), bHeld ? "five" : "");
  EXPECT_EQ(getxattr(strOld.c_str(), "user.empty", value.data(), value.size()), bHeld ? 0 : -1);
  EXPECT_EQ(Content("old"), Bytes{'n'});
}

TEST_F(ReplacedFile, OtherNameOfTheFile_KeepsTheOldOne) {
  const std::string strOld = Write("old", {'o'});
  ASSERT_EQ(link(strOld.c_str(), Path("other").c_str()), 0);
  C_ReplacedFile file(strOld, true);
  Write(file, "n");
  file.TakePlace();
  EXPECT_EQ(Content("old"), Bytes{'n'});
  EXPECT_EQ(Content("other"), Bytes{'o'});
}

TEST_F(ReplacedFile, NewFile_HasTheModeOfTheProcess) {
  const mode_t dwMask = umask(027);
  C_ReplacedFile file(Path("new"), true);
  file.TakePlace();
  umask(dwMask);
  EXPECT_EQ(ModeOf("new"), 0640U);
}

TEST_F(ReplacedFile, Link_StaysALink) {
  Write("old", {'o'});
  ASSERT_EQ(symlink("old", Path("link").c_str()), 0);
  C_ReplacedFile file(Path("link"), true);
  Write(file, "n");
  file.TakePlace();
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
  EXPECT_EQ(Content("old"), Bytes{'n'});
}

TEST_F(ReplacedFile, ExistingFile_IsNotReplacedUnasked) {
  Write("old", {'o'});
  EXPECT_EQ(WhyNot(Path("old"), false), Path("old") + ": exists: -f replaces it");
}

TEST_F(ReplacedFile, FileThatComesMeanwhile_Stays) {
  C_ReplacedFile file(Path("new"), false);
  Write(file, "n");
  Write("new", {'m'});
  EXPECT_THROW(file.TakePlace(), tool::C_Failure);
  EXPECT_EQ(Content("new"), Bytes{'m'});
}

TEST_F(ReplacedFile, WhatIsNoFile_IsRefused) {
  EXPECT_EQ(WhyNot(Folder(), true), Folder() + ": cannot be written: it is not a regular file");
  EXPECT_EQ(WhyNot("/dev/null", true), "/dev/null: cannot be written: it is not a regular file");
  EXPECT_THAT(WhyNot(Path("no/where"), true), HasSubstr("No such file or directory"));
  ASSERT_EQ(symlink("nowhere", Path("dangling").c_str()), 0);
  EXPECT_THAT(WhyNot(Path("dangling"), true), HasSubstr("cannot be written"));
}

TEST_F(ReplacedFile, LongestName_CanBeReplaced) {
  const std::string strName(255, 'n');
  Write(strName, {'o'});
  C_ReplacedFile file(Path(strName), true);
  Write(file, "n");
  file.TakePlace();
  EXPECT_EQ(Content(strName), Bytes{'n'});
}

}  // namespace
