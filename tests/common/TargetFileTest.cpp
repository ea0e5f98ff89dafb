// SPDX-License-Identifier: Apache-2.0
#include "TargetFile.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "FileSizeLimit.h"
#include "FolderTest.h"
#include "InChild.h"
#include "TargetName.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::ElementsAre;

const Bytes kOld = {'o', 'l', 'd'};
const Bytes kNew = {'n', 'e', 'w', '!'};
constexpr uid_t kNobody = 65534;

class TargetFile : public C_FolderTest {
 protected:
  [[nodiscard]] struct stat StatusOf(const std::string& strName) const {
    struct stat status {};
    EXPECT_EQ(stat(Path(strName).c_str(), &status), 0);
    return status;
  }
  static bool WriteNew(const std::string& strPath) {
    vcm::C_TargetFile target(strPath.c_str());
    return target.Stream() != nullptr && target.Commit(vcm::WriteExact(target.Stream(), kNew));
  }
};

TEST_F(TargetFile, NewName_IsWrittenInPlace) {
  vcm::C_TargetFile target(Path("a").c_str());
  ASSERT_NE(target.Stream(), nullptr);
  EXPECT_THAT(Entries(), ElementsAre("a"));
  EXPECT_TRUE(vcm::WriteExact(target.Stream(), kNew));
  EXPECT_TRUE(target.Commit(true));
  EXPECT_EQ(Content("a"), kNew);
}

TEST_F(TargetFile, NewNameWhoseWriteFails_StaysPartial) {
  vcm::C_TargetFile target(Path("a").c_str());
  EXPECT_TRUE(vcm::WriteExact(target.Stream(), kNew));
  EXPECT_FALSE(target.Commit(false));
  EXPECT_EQ(Content("a"), kNew);
}

TEST_F(TargetFile, ExistingFile_IsIntactUntilTheEnd) {
  Write("a", kOld);
  vcm::C_TargetFile target(Path("a").c_str());
  EXPECT_TRUE(vcm::WriteExact(target.Stream(), kNew));
  EXPECT_EQ(std::fflush(target.Stream()), 0);
  EXPECT_EQ(Content("a"), kOld);
  EXPECT_EQ(Entries().size(), 2u);
  EXPECT_TRUE(target.Commit(true));
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(TargetFile, ExistingFileWhoseWriteFails_IsIntactAndAlone) {
  Write("a", kOld);
  {
    vcm::C_TargetFile target(Path("a").c_str());
    EXPECT_TRUE(vcm::WriteExact(target.Stream(), kNew));
    EXPECT_FALSE(target.Commit(false));
  }
  EXPECT_EQ(Content("a"), kOld);
  { const vcm::C_TargetFile forgotten(Path("a").c_str()); }
  EXPECT_EQ(Content("a"), kOld);
  {
    const C_FileSizeLimit limit(3);
    EXPECT_FALSE(WriteNew(Path("a")));
  }
  EXPECT_EQ(Content("a"), kOld);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(TargetFile, NameBeside_IsPrivateAndHasNoExtensionOfASound) {
  Write("a.kst", kOld);
  ASSERT_EQ(chmod(Path("a.kst").c_str(), 0666), 0);
  const vcm::C_TargetFile target(Path("a.kst").c_str());
  const std::vector<std::string> names = Entries();
  ASSERT_EQ(names.size(), 2u);
  EXPECT_THAT(names[1], testing::MatchesRegex("a\\.kst\\.[0-9a-f]+"));
  EXPECT_EQ(StatusOf(names[1]).st_mode & 07777u, 0600u);
}

TEST_F(TargetFile, NamesBeside_AreNotForeseeable) {
  Write("a", kOld);
  std::set<std::string> names;
  for (int i = 0; i < 20; ++i) {
    std::srand(1);
    const vcm::C_TargetFile target(Path("a").c_str());
    names.insert(Entries().back());
  }
  EXPECT_GT(names.size(), 18u);
}

TEST_F(TargetFile, ModeOwnerAndGroup_AreThoseOfTheOldFile) {
  for (const mode_t nMode : {0600u, 0644u, 0664u, 0755u, 04755u, 0200u}) {
    Write("a", kOld);
    ASSERT_EQ(chown(Path("a").c_str(), kNobody, 12), 0);
    ASSERT_EQ(chmod(Path("a").c_str(), nMode), 0);
    EXPECT_TRUE(WriteNew(Path("a")));
    EXPECT_EQ(StatusOf("a").st_mode & 07777u, nMode);
    EXPECT_EQ(StatusOf("a").st_uid, kNobody);
    EXPECT_EQ(StatusOf("a").st_gid, 12u);
  }
}

TEST_F(TargetFile, Links_StayLinksAndWhatTheyPointToIsReplaced) {
  std::filesystem::create_directory(Path("folder"));
  Write("folder/a", kOld);
  ASSERT_EQ(symlink("folder/a", Path("relative").c_str()), 0);
  ASSERT_EQ(symlink(Path("relative").c_str(), Path("absolute").c_str()), 0);
  for (const char* pszLink : {"relative", "absolute"}) {
    Write("folder/a", kOld);
    const ino_t nBefore = StatusOf("folder/a").st_ino;
    EXPECT_TRUE(WriteNew(Path(pszLink)));
    EXPECT_EQ(Content("folder/a"), kNew);
    EXPECT_NE(StatusOf("folder/a").st_ino, nBefore);
    EXPECT_TRUE(std::filesystem::is_symlink(Path(pszLink)));
  }
  EXPECT_THAT(Entries(), ElementsAre("absolute", "folder", "relative"));
}

TEST_F(TargetFile, LinkToNothing_MakesTheFileThatItNames) {
  ASSERT_EQ(symlink("a", Path("link").c_str()), 0);
  EXPECT_TRUE(WriteNew(Path("link")));
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link")));
}

TEST_F(TargetFile, StreamThatIsOpen_IsWrittenInPlace) {
  Write("a", kOld);
  const int nDescriptor = open(Path("a").c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_GE(nDescriptor, 0);
  const ino_t nBefore = StatusOf("a").st_ino;
  EXPECT_TRUE(WriteNew("/dev/fd/" + std::to_string(nDescriptor)));
  EXPECT_TRUE(WriteNew("/proc/self/fd/" + std::to_string(nDescriptor)));
  close(nDescriptor);
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_EQ(StatusOf("a").st_ino, nBefore);
}

TEST_F(TargetFile, WhatIsNoRegularFile_IsWrittenInPlace) {
  EXPECT_TRUE(WriteNew("/dev/null"));
  EXPECT_FALSE(WriteNew("/dev/full"));
  EXPECT_FALSE(WriteNew(Folder()));
  EXPECT_EQ(vcm::C_TargetFile(nullptr).Stream(), nullptr);
  EXPECT_FALSE(WriteNew(Path("no/such/folder")));
}

TEST_F(TargetFile, FileThatMayNotBeWritten_IsRefused) {
  Write("a", kOld);
  ASSERT_EQ(chmod(Folder().c_str(), 0777), 0);
  ASSERT_EQ(chmod(Path("a").c_str(), 0444), 0);
  EXPECT_FALSE(InChildAs(kNobody, [this] { return WriteNew(Path("a")); }));
  EXPECT_EQ(Content("a"), kOld);
}

TEST_F(TargetFile, FolderThatTakesNoSecondFile_LetsTheFileBeWrittenInPlace) {
  Write("a", kOld);
  ASSERT_EQ(chmod(Folder().c_str(), 0755), 0);
  ASSERT_EQ(chmod(Path("a").c_str(), 0666), 0);
  const ino_t nBefore = StatusOf("a").st_ino;
  EXPECT_TRUE(InChildAs(kNobody, [this] { return WriteNew(Path("a")); }));
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_EQ(StatusOf("a").st_ino, nBefore);
}

TEST_F(TargetFile, PlaceWithoutRoom_KeepsTheOldContents) {
  Write("a", kOld);
  ASSERT_EQ(chmod(Folder().c_str(), 01777), 0);
  ASSERT_EQ(chmod(Path("a").c_str(), 0666), 0);
  const auto write = [this](std::size_t cbLimit) {
    return InChildAs(kNobody, [&] {
      vcm::C_TargetFile target(Path("a").c_str());
      const bool bWritten = target.Stream() != nullptr &&
                            vcm::WriteExact(target.Stream(), Bytes(1000, 'n')) &&
                            std::fflush(target.Stream()) == 0;
      // The new file beside the old one has its room already.
      const C_FileSizeLimit full(cbLimit);
      return bWritten && target.Commit(true);
    });
  };
  EXPECT_FALSE(write(999));
  EXPECT_EQ(Content("a"), kOld);
  EXPECT_THAT(Entries(), ElementsAre("a"));
  EXPECT_TRUE(write(1000));
  EXPECT_EQ(Content("a"), Bytes(1000, 'n'));
}

// In a folder like /tmp, a file of somebody else may be written, but not renamed over.
TEST_F(TargetFile, FolderThatOthersShare_LetsTheFileBeWrittenInPlace) {
  Write("a", kOld);
  ASSERT_EQ(chmod(Folder().c_str(), 01777), 0);
  ASSERT_EQ(chmod(Path("a").c_str(), 0666), 0);
  EXPECT_TRUE(InChildAs(kNobody, [this] { return WriteNew(Path("a")); }));
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_EQ(StatusOf("a").st_uid, 0u);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(TargetFile, AccessControlList_IsKept) {
  constexpr const char* kList = "system.posix_acl_access";
  const auto entry = [](std::uint16_t wTag, std::uint16_t wRights, std::uint32_t dwID) {
    return Bytes{static_cast<std::uint8_t>(wTag),       0,
                 static_cast<std::uint8_t>(wRights),    0,
                 static_cast<std::uint8_t>(dwID),       static_cast<std::uint8_t>(dwID >> 8),
                 static_cast<std::uint8_t>(dwID >> 16), static_cast<std::uint8_t>(dwID >> 24)};
  };
  constexpr std::uint32_t dwNone = 0xFFFFFFFF;
  Bytes list = {2, 0, 0, 0};
  for (const Bytes& part : {entry(1, 6, dwNone), entry(2, 4, kNobody), entry(4, 0, dwNone),
                            entry(16, 4, dwNone), entry(32, 0, dwNone)}) {
    list.insert(list.end(), part.begin(), part.end());
  }
  Write("a", kOld);
  if (setxattr(Path("a").c_str(), kList, list.data(), list.size(), 0) != 0) {
    ASSERT_EQ(errno, ENOTSUP);  // a file system without such lists
    return;
  }
  EXPECT_TRUE(WriteNew(Path("a")));
  Bytes kept(list.size() + 1);
  EXPECT_EQ(getxattr(Path("a").c_str(), kList, kept.data(), kept.size()),
            static_cast<ssize_t>(list.size()));
  kept.pop_back();
  EXPECT_EQ(kept, list);
}

TEST_F(TargetFile, WrittenInPlace_ShorterAndLongerThanBefore) {
  ASSERT_EQ(chmod(Folder().c_str(), 01777), 0);
  for (const std::size_t cbOld : {std::size_t{0}, std::size_t{4}, std::size_t{10000}}) {
    Write("a", Bytes(cbOld, 'x'));
    ASSERT_EQ(chmod(Path("a").c_str(), 0666), 0);
    EXPECT_TRUE(InChildAs(kNobody, [this] { return WriteNew(Path("a")); }));
    EXPECT_EQ(Content("a"), kNew) << cbOld;
  }
}

TEST_F(TargetFile, LoopOfLinks_IsRefused) {
  ASSERT_EQ(symlink("b", Path("a").c_str()), 0);
  ASSERT_EQ(symlink("a", Path("b").c_str()), 0);
  EXPECT_FALSE(WriteNew(Path("a")));
  EXPECT_THAT(Entries(), ElementsAre("a", "b"));
}

TEST_F(TargetFile, LongestName_IsReplacedToo) {
  const std::string strName(255, 'x');
  Write(strName, kOld);
  const ino_t nBefore = StatusOf(strName).st_ino;
  EXPECT_TRUE(WriteNew(Path(strName)));
  EXPECT_EQ(Content(strName), kNew);
  EXPECT_NE(StatusOf(strName).st_ino, nBefore);
  EXPECT_THAT(Entries(), ElementsAre(strName));
}

TEST_F(TargetFile, ReplacementWithANewName_HasTheModeThatTheMaskLeaves) {
  const mode_t nBefore = umask(022);
  vcm::C_Replacement replacement(Path("a"), 0666, vcm::UnforeseeableNumber);
  umask(nBefore);
  ASSERT_NE(replacement.Stream(), nullptr);
  EXPECT_TRUE(vcm::WriteExact(replacement.Stream(), kNew));
  EXPECT_TRUE(replacement.TakeNewName(Path("a")));
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_EQ(StatusOf("a").st_mode & 07777, 0644u);
  EXPECT_EQ(StatusOf("a").st_nlink, 1u);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(TargetFile, ReplacementWithANewName_KeepsWhatHasGotIt) {
  {
    vcm::C_Replacement replacement(Path("a"));
    EXPECT_TRUE(vcm::WriteExact(replacement.Stream(), kNew));
    Write("a", kOld);
    EXPECT_FALSE(replacement.TakeNewName(Path("a")));
    EXPECT_EQ(replacement.Error(), EEXIST);
  }
  EXPECT_EQ(Content("a"), kOld);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(TargetFile, ReplacementWhoseNewNameIsTaken_CanStillTakeThePlace) {
  vcm::C_Replacement replacement(Path("a"));
  EXPECT_TRUE(vcm::WriteExact(replacement.Stream(), kNew));
  Write("a", kOld);
  ASSERT_EQ(chmod(Path("a").c_str(), 0640), 0);
  EXPECT_FALSE(replacement.TakeNewName(Path("a")));
  ASSERT_NE(replacement.Stream(), nullptr);
  EXPECT_TRUE(replacement.TakeOwnerAndMode(StatusOf("a"), Path("a")));
  EXPECT_TRUE(replacement.TakePlaceOf(Path("a")));
  EXPECT_EQ(replacement.Error(), 0);
  EXPECT_EQ(Content("a"), kNew);
  EXPECT_EQ(StatusOf("a").st_mode & 07777, 0640u);
  EXPECT_THAT(Entries(), ElementsAre("a"));
}

TEST_F(TargetFile, EmptyName_IsRefused) {
  EXPECT_EQ(vcm::LookAtTarget("").eKind, vcm::E_TargetKind::Unknown);
  EXPECT_FALSE(WriteNew(""));
}

TEST_F(TargetFile, NewPath_IsWhereLinksLead) {
  std::filesystem::create_directory(Path("folder"));
  ASSERT_EQ(symlink("folder/b", Path("a").c_str()), 0);
  ASSERT_EQ(symlink("c", Path("folder/b").c_str()), 0);
  ASSERT_EQ(symlink("loop", Path("loop").c_str()), 0);
  EXPECT_EQ(vcm::NewPathOf(Path("a").c_str()), Path("folder/c"));
  EXPECT_EQ(vcm::NewPathOf(Path("none").c_str()), Path("none"));
  EXPECT_EQ(vcm::NewPathOf(Path("loop").c_str()), "");
}

}  // namespace
