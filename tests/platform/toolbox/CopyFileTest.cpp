// SPDX-License-Identifier: Apache-2.0
#include <copyfile.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string>
#include <vector>

#include "FaultyNew.h"
#include "InChild.h"
#include "TempFolder.h"

namespace {

constexpr uid_t kNobody = 65534;

class CopyFile : public ::testing::Test {
 protected:
  // The result of a copy, and errno after it.
  std::pair<int, int> Copy(const std::string& strFrom, const std::string& strTo) {
    errno = 0;
    const int nResult =
        copyfile(m_folder.Path(strFrom).c_str(), m_folder.Path(strTo).c_str(), nullptr, 15);
    return {nResult, errno};
  }
  struct stat Info(const std::string& strName) {
    struct stat info {};
    EXPECT_EQ(stat(m_folder.Path(strName).c_str(), &info), 0);
    return info;
  }
  void SetTimes(const std::string& strName, time_t nAccess, time_t nChange) {
    const std::array<timespec, 2> times = {{{nAccess, 123456789}, {nChange, 987654321}}};
    ASSERT_EQ(utimensat(AT_FDCWD, m_folder.Path(strName).c_str(), times.data(), 0), 0);
  }

  C_TempFolder m_folder;
  const std::pair<int, int> kCopied = {0, 0};
};

TEST_F(CopyFile, AllFlags_AreFifteen) {
  EXPECT_EQ(COPYFILE_ALL, 15U);
  EXPECT_EQ(COPYFILE_ACL | COPYFILE_STAT | COPYFILE_XATTR | COPYFILE_DATA, 15U);
}

TEST_F(CopyFile, DataOfEverySize_ArrivesUnchanged) {
  for (const std::size_t cbSize : {0U, 1U, 65535U, 65536U, 65537U, 1000000U}) {
    std::vector<std::uint8_t> bytes(cbSize);
    for (std::size_t i = 0; i < cbSize; ++i) bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
    const std::string strTarget = "to" + std::to_string(cbSize);
    m_folder.Write("from", bytes);
    EXPECT_EQ(Copy("from", strTarget), kCopied);
    EXPECT_EQ(m_folder.Read(strTarget), bytes) << cbSize;
  }
}

TEST_F(CopyFile, Permissions_AreTheSources) {
  for (const mode_t mode : {0644U, 0600U, 0444U, 0755U, 0777U, 0400U}) {
    const std::string strFrom = "from" + std::to_string(mode);
    m_folder.Write(strFrom, {1});
    ASSERT_EQ(chmod(m_folder.Path(strFrom).c_str(), mode), 0);
    EXPECT_EQ(Copy(strFrom, strFrom + "-copy"), kCopied);
    EXPECT_EQ(Info(strFrom + "-copy").st_mode & 07777U, mode);
  }
}

TEST_F(CopyFile, RightsOfAnotherUser_AreNotGivenAway) {
  m_folder.Write("from", {1});
  ASSERT_EQ(chmod(m_folder.Path("from").c_str(), 06755), 0);
  EXPECT_EQ(Copy("from", "to"), kCopied);
  EXPECT_EQ(Info("to").st_mode & 07777U, 0755U);
}

TEST_F(CopyFile, Times_AreTheSources) {
  m_folder.Write("from", {1, 2, 3});
  SetTimes("from", 1000000000, 1100000000);
  EXPECT_EQ(Copy("from", "to"), kCopied);
  const struct stat info = Info("to");
  EXPECT_EQ(info.st_mtim.tv_sec, 1100000000);
  EXPECT_EQ(info.st_mtim.tv_nsec, 987654321);
  EXPECT_EQ(info.st_atim.tv_sec, 1000000000);
}

TEST_F(CopyFile, Attributes_AreTheSourcesWhereTheFileSystemHasThem) {
  m_folder.Write("from", {1});
  m_folder.Write("probe", {1});
  const bool bHasAttributes =
      setxattr(m_folder.Path("probe").c_str(), "user.voxplay", "x", 1, 0) == 0;
  if (bHasAttributes) {
    ASSERT_EQ(setxattr(m_folder.Path("from").c_str(), "user.first", "one", 3, 0), 0);
    ASSERT_EQ(setxattr(m_folder.Path("from").c_str(), "user.second", "", 0, 0), 0);
  }
  EXPECT_EQ(Copy("from", "to"), kCopied);
  std::array<char, 8> value{};
  const auto nFirst = getxattr(m_folder.Path("to").c_str(), "user.first", value.data(), 8);
  EXPECT_EQ(nFirst, bHasAttributes ? 3 : -1);
  EXPECT_EQ(std::string(value.data()), bHasAttributes ? "one" : "");
  const auto nSecond = getxattr(m_folder.Path("to").c_str(), "user.second", value.data(), 8);
  EXPECT_EQ(nSecond, bHasAttributes ? 0 : -1);
}

TEST_F(CopyFile, WithoutMemoryForTheAttributes_ItFailsAndLeavesNothing) {
  m_folder.Write("from", {1});
  const std::string strFrom = m_folder.Path("from");
  const std::string strTo = m_folder.Path("to");
  // Where the file system has no attributes, no memory is needed.
  const bool bHasAttributes = setxattr(strFrom.c_str(), "user.first", "one", 3, 0) == 0;
  for (int nCall = 1; nCall <= 2; ++nCall) {
    C_FaultyNew faults(nCall, /*bFromThenOn=*/false);
    const int nResult = copyfile(strFrom.c_str(), strTo.c_str(), nullptr, COPYFILE_ALL);
    const int nError = errno;
    faults.Stop();
    EXPECT_EQ(nResult, bHasAttributes ? -1 : 0);
    EXPECT_TRUE(!bHasAttributes || nError == ENOMEM);
    EXPECT_EQ(std::filesystem::remove(strTo), !bHasAttributes);
  }
}

TEST_F(CopyFile, MissingSource_CreatesNothing) {
  EXPECT_EQ(Copy("missing", "to"), std::pair(-1, ENOENT));
  EXPECT_TRUE(m_folder.IsEmpty());
}

TEST_F(CopyFile, FoldersPipesAndDevices_AreNotCopied) {
  std::filesystem::create_directory(m_folder.Path("folder"));
  ASSERT_EQ(mkfifo(m_folder.Path("pipe").c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/zero", m_folder.Path("endless"));
  for (const char* pszFrom : {"folder", "pipe", "endless"}) {
    EXPECT_EQ(Copy(pszFrom, "to"), std::pair(-1, ENOTSUP)) << pszFrom;
    EXPECT_FALSE(m_folder.Has("to")) << pszFrom;
  }
}

TEST_F(CopyFile, LinkToAFile_IsCopiedAsTheFile) {
  m_folder.Write("from", {4, 5, 6});
  std::filesystem::create_symlink("from", m_folder.Path("link"));
  EXPECT_EQ(Copy("link", "to"), kCopied);
  EXPECT_EQ(m_folder.Read("to"), (std::vector<std::uint8_t>{4, 5, 6}));
  EXPECT_FALSE(std::filesystem::is_symlink(m_folder.Path("to")));
}

TEST_F(CopyFile, TargetThatExists_IsLeftAlone) {
  m_folder.Write("from", {1});
  m_folder.Write("to", {9, 9});
  EXPECT_EQ(Copy("from", "to"), std::pair(-1, EEXIST));
  EXPECT_EQ(Copy("from", "from"), std::pair(-1, EEXIST));
  EXPECT_EQ(m_folder.Read("to"), (std::vector<std::uint8_t>{9, 9}));
  EXPECT_EQ(m_folder.Read("from"), (std::vector<std::uint8_t>{1}));
}

TEST_F(CopyFile, LinkInThePlaceOfTheTarget_IsNotFollowed) {
  m_folder.Write("from", {1});
  std::filesystem::create_symlink("victim", m_folder.Path("to"));
  EXPECT_EQ(Copy("from", "to"), std::pair(-1, EEXIST));
  EXPECT_FALSE(m_folder.Has("victim"));
}

TEST_F(CopyFile, FolderThatIsNotThere_Fails) {
  m_folder.Write("from", {1});
  EXPECT_EQ(Copy("from", "no/folder"), std::pair(-1, ENOENT));
}

TEST_F(CopyFile, OtherFlags_AreRefused) {
  m_folder.Write("from", {1});
  for (const copyfile_flags_t dwFlags : {0U, 8U, 14U, 16U + 15U, 0xFFFFFFFFU}) {
    EXPECT_EQ(
        copyfile(m_folder.Path("from").c_str(), m_folder.Path("to").c_str(), nullptr, dwFlags), -1);
    EXPECT_EQ(errno, ENOTSUP);
  }
  EXPECT_FALSE(m_folder.Has("to"));
}

TEST_F(CopyFile, DiskThatFillsUp_LeavesNothing) {
  m_folder.Write("from", std::vector<std::uint8_t>(200000, 1));
  const std::string strFrom = m_folder.Path("from");
  const std::string strTo = m_folder.Path("to");
  EXPECT_TRUE(InChildAs(0, [&] {
    const rlimit limit = {100000, 100000};
    std::signal(SIGXFSZ, SIG_IGN);
    return setrlimit(RLIMIT_FSIZE, &limit) == 0 &&
           copyfile(strFrom.c_str(), strTo.c_str(), nullptr, COPYFILE_ALL) == -1 && errno == EFBIG;
  }));
  EXPECT_FALSE(m_folder.Has("to"));
}

TEST_F(CopyFile, SourceThatMayNotBeRead_Fails) {
  m_folder.Write("from", {1});
  ASSERT_EQ(chmod(m_folder.Path("from").c_str(), 0), 0);
  ASSERT_EQ(chmod(m_folder.Path().c_str(), 0777), 0);
  const std::string strFrom = m_folder.Path("from");
  const std::string strTo = m_folder.Path("to");
  EXPECT_TRUE(InChildAs(kNobody, [&] {
    return copyfile(strFrom.c_str(), strTo.c_str(), nullptr, COPYFILE_ALL) == -1 && errno == EACCES;
  }));
  EXPECT_FALSE(m_folder.Has("to"));
}

TEST_F(CopyFile, Copy_LeavesNoDescriptorOpen) {
  const auto Open = [] {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
  };
  m_folder.Write("from", {1});
  const auto nBefore = Open();
  Copy("from", "to");
  Copy("from", "to");
  Copy("missing", "other");
  EXPECT_EQ(Open(), nBefore);
}

}  // namespace
