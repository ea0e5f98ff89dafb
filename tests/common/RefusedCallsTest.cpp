// SPDX-License-Identifier: Apache-2.0
//
// What happens when the system refuses a call that it never refuses to a test: the linker sends
// these calls to the functions below.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstring>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "FaultyIo.h"
#include "FolderTest.h"
#include "TargetFile.h"
#include "TempFile.h"

int RealStat(const char*, struct stat*) asm("__real_stat");
int RealLstat(const char*, struct stat*) asm("__real_lstat");
int RealFstat(int, struct stat*) asm("__real_fstat");
int RealChmod(const char*, mode_t) asm("__real_chmod");
int RealFchmod(int, mode_t) asm("__real_fchmod");
int RealFtruncate(int, off_t) asm("__real_ftruncate");
int RealFallocate(int, off_t, off_t) asm("__real_posix_fallocate");
int RealGetentropy(void*, std::size_t) asm("__real_getentropy");
int RealLink(const char*, const char*) asm("__real_link");
int RealRemoveList(int, const char*) asm("__real_fremovexattr");

int WrapStat(const char*, struct stat*) asm("__wrap_stat");
int WrapLstat(const char*, struct stat*) asm("__wrap_lstat");
int WrapFstat(int, struct stat*) asm("__wrap_fstat");
int WrapChmod(const char*, mode_t) asm("__wrap_chmod");
int WrapFchmod(int, mode_t) asm("__wrap_fchmod");
int WrapFtruncate(int, off_t) asm("__wrap_ftruncate");
int WrapFallocate(int, off_t, off_t) asm("__wrap_posix_fallocate");
int WrapGetentropy(void*, std::size_t) asm("__wrap_getentropy");
ssize_t WrapGetList(const char*, const char*, void*, std::size_t) asm("__wrap_getxattr");
int WrapSetList(int, const char*, const void*, std::size_t, int) asm("__wrap_fsetxattr");
int WrapLink(const char*, const char*) asm("__wrap_link");
int WrapRemoveList(int, const char*) asm("__wrap_fremovexattr");

namespace {

using Bytes = std::vector<std::uint8_t>;

struct S_System {
  // The calls that are refused, and with which error.
  std::map<std::string, int> refused;
  // Names that end like this exist, whatever is there.
  std::string strTaken;
  // As many calls as this find another file under the name than the one before.
  int nExchanges = 0;
  // The access-control list of every file, and how many calls see it before it is gone.
  Bytes list;
  int nLooksAtList = 0;
};
S_System g_system;

bool Refuses(const char* pszCall) {
  const auto found = g_system.refused.find(pszCall);
  if (found == g_system.refused.end()) return false;
  errno = found->second;
  return true;
}

}  // namespace

int WrapStat(const char* pszPath, struct stat* pStatus) {
  if (Refuses("stat")) return -1;
  const int nResult = RealStat(pszPath, pStatus);
  if (g_system.nExchanges > 0 && g_system.nExchanges-- > 0) ++pStatus->st_ino;
  return nResult;
}
int WrapLstat(const char* pszPath, struct stat* pStatus) {
  if (Refuses("lstat")) return -1;
  const std::string strPath = pszPath;
  if (!g_system.strTaken.empty() && strPath.ends_with(g_system.strTaken)) return 0;
  return RealLstat(pszPath, pStatus);
}
int WrapFstat(int nDescriptor, struct stat* pStatus) {
  return Refuses("fstat") ? -1 : RealFstat(nDescriptor, pStatus);
}
int WrapChmod(const char* pszPath, mode_t nMode) {
  return Refuses("chmod") ? -1 : RealChmod(pszPath, nMode);
}
int WrapFchmod(int nDescriptor, mode_t nMode) {
  return Refuses("fchmod") ? -1 : RealFchmod(nDescriptor, nMode);
}
int WrapFtruncate(int nDescriptor, off_t nSize) {
  return Refuses("ftruncate") ? -1 : RealFtruncate(nDescriptor, nSize);
}
int WrapFallocate(int nDescriptor, off_t nFrom, off_t nSize) {
  return Refuses("posix_fallocate") ? errno : RealFallocate(nDescriptor, nFrom, nSize);
}
int WrapGetentropy(void* pTarget, std::size_t cbWanted) {
  return Refuses("getentropy") ? -1 : RealGetentropy(pTarget, cbWanted);
}
ssize_t WrapGetList(const char* /*pszPath*/, const char* /*pszName*/, void* pTarget,
                    std::size_t cbRoom) {
  if (g_system.nLooksAtList == 0) {
    errno = ENODATA;
    return -1;
  }
  --g_system.nLooksAtList;
  // The first call asks for the size only, and has no room.
  if (cbRoom > 0) {
    std::memcpy(pTarget, g_system.list.data(), std::min(cbRoom, g_system.list.size()));
  }
  return static_cast<ssize_t>(g_system.list.size());
}
int WrapSetList(int /*nDescriptor*/, const char* /*pszName*/, const void* /*pList*/,
                std::size_t /*cbList*/, int /*nFlags*/) {
  return Refuses("fsetxattr") ? -1 : 0;
}
int WrapLink(const char* pszOld, const char* pszNew) {
  return Refuses("link") ? -1 : RealLink(pszOld, pszNew);
}
int WrapRemoveList(int nDescriptor, const char* pszName) {
  return Refuses("fremovexattr") ? -1 : RealRemoveList(nDescriptor, pszName);
}

namespace {

const Bytes kOld = {'o', 'l', 'd'};
const Bytes kNew = {'n', 'e', 'w', '!'};

class RefusedCalls : public C_FolderTest {
 protected:
  ~RefusedCalls() override { g_system = S_System(); }

  // An old file with this mode, to be written over.
  void MakeOld(mode_t nMode) {
    m_strPath = Write("a", kOld);
    ASSERT_EQ(RealChmod(m_strPath.c_str(), nMode), 0);
    m_nNode = Status().st_ino;
  }
  [[nodiscard]] bool WriteNew() const {
    vcm::C_TargetFile target(m_strPath.c_str());
    return target.Stream() != nullptr && target.Commit(vcm::WriteExact(target.Stream(), kNew));
  }
  [[nodiscard]] struct stat Status() const {
    struct stat status {};
    EXPECT_EQ(RealStat(m_strPath.c_str(), &status), 0);
    return status;
  }
  void ExpectOldFileAlone() const {
    EXPECT_EQ(Content("a"), kOld);
    EXPECT_EQ(Status().st_ino, m_nNode);
    EXPECT_THAT(Entries(), testing::ElementsAre("a"));
  }
  void ExpectNewFileAlone(bool bInPlace) const {
    EXPECT_EQ(Content("a"), kNew);
    EXPECT_EQ(Status().st_ino == m_nNode, bInPlace);
    EXPECT_THAT(Entries(), testing::ElementsAre("a"));
  }

  // The old file may be partial; the new one is not, and nobody else can read it. Removes it.
  void ExpectNewFileBeside() const {
    const auto names = Entries();
    ASSERT_EQ(names.size(), 2u);
    EXPECT_THAT(names[1], testing::MatchesRegex("a\\.[0-9a-f]+"));
    EXPECT_EQ(Content(names[1]), kNew);
    struct stat status {};
    EXPECT_EQ(RealStat(Path(names[1]).c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777, 0600u);
    std::filesystem::remove(Path(names[1]));
  }

  std::string m_strPath;
  ino_t m_nNode = 0;
};

// --- Names

TEST_F(RefusedCalls, TempNameWhenEveryNameIsTaken_IsEmpty) {
  g_system.strTaken = ".wav";
  EXPECT_EQ(vcm::TempName(".wav"), "");
  EXPECT_NE(vcm::TempName(".kst"), "");
  const vcm::C_TempFile file(".wav");
  EXPECT_EQ(file.Stream(), nullptr);
  EXPECT_EQ(file.Path(), "");
}

TEST_F(RefusedCalls, ReplacementWithoutEntropy_IsNumberedFromTheClock) {
  MakeOld(0600);
  g_system.refused["getentropy"] = ENOSYS;
  EXPECT_TRUE(WriteNew());
  ExpectNewFileAlone(false);
}

TEST_F(RefusedCalls, TempNameWithoutEntropy_HasTheSameForm) {
  g_system.refused["getentropy"] = ENOSYS;
  EXPECT_THAT(vcm::TempName(""), testing::MatchesRegex("/tmp/file[A-Za-z0-9]+"));
  EXPECT_EQ(vcm::TempName("").size(), 15u);
}

TEST_F(RefusedCalls, ReplacementWhoseNamesAreAllTaken_IsNotMade) {
  MakeOld(0600);
  Write("a.7", {1});
  const vcm::C_Replacement replacement(m_strPath, [] { return 7U; });
  EXPECT_EQ(replacement.Stream(), nullptr);
  EXPECT_EQ(replacement.Error(), EEXIST);
  EXPECT_EQ(replacement.Path(), "");
  EXPECT_EQ(Content("a.7"), (Bytes{1}));
}

TEST_F(RefusedCalls, NewNameWhereNothingGetsASecondOne_IsGivenByRenaming) {
  g_system.refused["link"] = EPERM;
  {
    vcm::C_Replacement replacement(Path("b"));
    EXPECT_TRUE(vcm::WriteExact(replacement.Stream(), kNew));
    EXPECT_TRUE(replacement.TakeNewName(Path("b")));
    EXPECT_EQ(replacement.Error(), 0);
  }
  EXPECT_EQ(Content("b"), kNew);
  EXPECT_FALSE(vcm::C_Replacement(Path("b")).TakeNewName(Path("b")));
  EXPECT_EQ(Content("b"), kNew);
  EXPECT_THAT(Entries(), testing::ElementsAre("b"));
}

// --- A file that changes while it is looked at

TEST_F(RefusedCalls, FileThatIsExchangedMeanwhile_IsLookedAtAgain) {
  MakeOld(0600);
  g_system.nExchanges = 99;
  EXPECT_TRUE(WriteNew());
  ExpectNewFileAlone(false);
}

TEST_F(RefusedCalls, FileThatIsAlwaysExchanged_IsRefused) {
  MakeOld(0600);
  g_system.nExchanges = 100;
  EXPECT_FALSE(WriteNew());
  ExpectOldFileAlone();
}

TEST_F(RefusedCalls, FileThatDisappearsMeanwhile_IsRefused) {
  MakeOld(0600);
  g_system.refused["lstat"] = ENOENT;
  EXPECT_FALSE(WriteNew());
  ExpectOldFileAlone();
}

TEST_F(RefusedCalls, FileThatCannotBeLookedAt_IsRefused) {
  MakeOld(0600);
  g_system.refused["stat"] = EACCES;
  EXPECT_FALSE(WriteNew());
  ExpectOldFileAlone();
}

// --- Modes

TEST_F(RefusedCalls, ModeThatIsRightAlready_NeedNotBeSet) {
  MakeOld(0600);
  g_system.refused["fchmod"] = EPERM;
  EXPECT_TRUE(WriteNew());
  ExpectNewFileAlone(false);
}

TEST_F(RefusedCalls, ModeThatIsRightAlready_DoesNotExcuseALaterFailure) {
  g_system.refused["fchmod"] = EPERM;
  bool bHit = true;
  for (int nCall = 1; bHit; ++nCall) {
    MakeOld(0600);
    C_FaultyIo faults({.nCall = nCall});
    const bool bRet = WriteNew();
    faults.Stop();
    bHit = faults.WasHit();
    if (bRet) {
      ExpectNewFileAlone(false);
    } else {
      ExpectOldFileAlone();
    }
  }
}

TEST_F(RefusedCalls, ModeThatMayNotBeSet_LetsTheFileBeWrittenInPlace) {
  for (const int nError : {EACCES, EPERM, EROFS, ENAMETOOLONG, EBUSY, EXDEV, ENOTSUP, EILSEQ}) {
    MakeOld(0644);
    g_system.refused["fchmod"] = nError;
    EXPECT_TRUE(WriteNew()) << nError;
    ExpectNewFileAlone(true);
    EXPECT_EQ(Status().st_mode & 07777, 0644u);
  }
}

TEST_F(RefusedCalls, ModeThatCannotBeSet_FailsAndKeepsTheOldFile) {
  for (const int nError : {EIO, ENOSPC, EINVAL}) {
    MakeOld(0644);
    g_system.refused["fchmod"] = nError;
    EXPECT_FALSE(WriteNew()) << nError;
    ExpectOldFileAlone();
  }
}

TEST_F(RefusedCalls, ModeThatCanNeitherBeSetNorSeen_CountsAsAnother) {
  MakeOld(0600);
  g_system.refused["fchmod"] = EIO;
  g_system.refused["fstat"] = EIO;
  EXPECT_FALSE(WriteNew());
  ExpectOldFileAlone();
}

// --- Access-control lists

TEST_F(RefusedCalls, ListThatStaysOnTheNewFile_CostsTheGroupItsRights) {
  MakeOld(0664);
  for (const int nHarmless : {ENODATA, ENOTSUP}) {
    g_system.refused["fremovexattr"] = nHarmless;
    EXPECT_TRUE(WriteNew());
    EXPECT_EQ(Status().st_mode & 07777, 0664u);
  }
  g_system.refused["fremovexattr"] = EIO;
  EXPECT_TRUE(WriteNew());
  EXPECT_EQ(Status().st_mode & 07777, 0644u) << "the group may do what others may";
}

TEST_F(RefusedCalls, ListThatCannotBeCopied_CostsTheGroupItsRights) {
  g_system.list = Bytes(44);
  for (const int nLooks : {1, 2}) {
    MakeOld(0675);
    // Gone when it is read, or refused to the new file.
    g_system.nLooksAtList = nLooks;
    g_system.refused["fsetxattr"] = ENOSPC;
    EXPECT_TRUE(WriteNew());
    EXPECT_EQ(Status().st_mode & 07777, 0655u);
  }
  MakeOld(0675);
  g_system.nLooksAtList = 2;
  g_system.refused.clear();
  EXPECT_TRUE(WriteNew());
  EXPECT_EQ(Status().st_mode & 07777, 0675u) << "with its list";
}

// --- Writing in place, where no second file can take the place of the first

class InPlace : public RefusedCalls {
 protected:
  void SetUp() override {
    MakeOld(0644);
    g_system.refused["fchmod"] = EPERM;
  }
};

TEST_F(InPlace, WithoutRoom_KeepsTheOldFile) {
  g_system.refused["posix_fallocate"] = ENOSPC;
  EXPECT_FALSE(WriteNew());
  ExpectOldFileAlone();
}

TEST_F(InPlace, WhereNoModeCanBeSet_IsWritten) {
  g_system.refused["chmod"] = EPERM;
  EXPECT_TRUE(WriteNew());
  ExpectNewFileAlone(true);
}

TEST_F(InPlace, WhenTheOldEndCannotBeCut_IsFalseAndLeavesTheNewFileBeside) {
  g_system.refused["ftruncate"] = EIO;
  EXPECT_FALSE(WriteNew());
  ExpectNewFileBeside();
}

TEST_F(InPlace, EmptyFile_EmptiesTheOldOne) {
  vcm::C_TargetFile target(m_strPath.c_str());
  EXPECT_TRUE(target.Commit(true));
  EXPECT_EQ(Content("a"), Bytes());
  EXPECT_EQ(Status().st_ino, m_nNode);
}

TEST_F(InPlace, EachCallFailing_IsReported) {
  int nFailed = 0;
  int nBeside = 0;
  bool bHit = true;
  for (int nCall = 1; bHit; ++nCall) {
    Write("a", kOld);
    C_FaultyIo faults({.nCall = nCall});
    const bool bRet = WriteNew();
    faults.Stop();
    bHit = faults.WasHit();
    if (bRet) {
      ExpectNewFileAlone(true);
      continue;
    }
    EXPECT_TRUE(bHit);
    ++nFailed;
    if (Entries().size() == 1) {
      ExpectOldFileAlone();
    } else {
      ++nBeside;
      ExpectNewFileBeside();
    }
    ASSERT_FALSE(HasFailure()) << nCall;
  }
  EXPECT_GE(nFailed, 12);
  EXPECT_GE(nBeside, 5);
}

}  // namespace
