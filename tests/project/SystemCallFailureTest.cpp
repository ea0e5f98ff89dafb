// SPDX-License-Identifier: Apache-2.0
//
// Every system call that works on files fails in turn, once and from then on. What an operation
// reports as done is done; otherwise the user's files are as they were.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <string>

#include "PrivateTemp.h"
#include "SweptOperations.h"
#include "TracedChild.h"

namespace {

constexpr int kMaxCalls = 5000;
// How the child tells that the operation is done, and that the rest is the test's own.
constexpr std::uint64_t kDone = SYS_getppid;

// A call to remove a file is not among them: a temporary file that cannot be removed stays.
constexpr auto kFileCalls = std::to_array<std::uint64_t>({
    SYS_openat,     SYS_read,      SYS_pread64,    SYS_write,     SYS_lseek,
    SYS_fsync,      SYS_close,     SYS_fchmod,     SYS_fchown,    SYS_fcntl,
    SYS_ftruncate,  SYS_fallocate, SYS_getxattr,   SYS_fsetxattr, SYS_fremovexattr,
    SYS_newfstatat, SYS_fstat,     SYS_readlinkat, SYS_fchmodat,  SYS_linkat,
#ifdef SYS_chmod
    SYS_chmod,
#endif
#ifdef SYS_link
    SYS_link,
#endif
#ifdef SYS_readlink
    SYS_readlink,
#endif
#ifdef SYS_rename
    SYS_rename,
#endif
#ifdef SYS_renameat
    SYS_renameat,
#endif
});

enum Outcome : int { kWhole, kKept, kLost };

int RunInChild(C_SweptOperation& operation) {
  const bool bRet = operation.Run();
  syscall(kDone);
  if (bRet) return operation.IsWhole() ? kWhole : kLost;
  return operation.IsEverythingKept() ? kKept : kLost;
}

// Makes the nCall-th file call fail, counted from 1. False when the operation makes fewer calls.
bool RunWithFault(C_SweptOperation& operation, int nCall, bool bFromThenOn, int* pnOutcome) {
  operation.Prepare();
  C_TracedChild child([&operation] { return RunInChild(operation); });
  int nCalls = 0;
  bool bDone = false;
  for (auto eStop = child.Next(); eStop != C_TracedChild::Stop::Ended; eStop = child.Next()) {
    if (eStop != C_TracedChild::Stop::Entry || bDone) continue;
    const std::uint64_t qwNumber = child.Number();
    bDone = qwNumber == kDone;
    if (std::ranges::find(kFileCalls, qwNumber) == kFileCalls.end()) continue;
    ++nCalls;
    if (nCalls == nCall || (bFromThenOn && nCalls > nCall)) child.Fail(EIO);
  }
  *pnOutcome = child.Result();
  return nCalls >= nCall;
}

class SystemCallFailureTest : public testing::TestWithParam<C_Sweep> {
 protected:
  C_PrivateTemp m_temp;
  C_TempFolder m_folder{C_TempFolder::kInMemory};
};

TEST_P(SystemCallFailureTest, EachFileCallFailing_IsReportedAndLosesNothing) {
  const auto& [strName, bFromThenOn] = GetParam();
  const auto operation = MakeSweptOperation(strName, m_folder);
  int nFailed = 0;
  int nOutcome = kLost;
  int nCall = 1;
  for (; nCall < kMaxCalls && RunWithFault(*operation, nCall, bFromThenOn, &nOutcome); ++nCall) {
    ASSERT_THAT(nOutcome, testing::AnyOf(kWhole, kKept)) << "at call " << nCall;
    nFailed += nOutcome == kKept ? 1 : 0;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
      const std::string strPath = entry.path().string();
      EXPECT_TRUE(operation->MayStay(strPath, nOutcome == kWhole)) << strPath;
    }
    ASSERT_FALSE(HasFailure()) << "at call " << nCall;
  }
  EXPECT_LT(nCall, kMaxCalls);
  EXPECT_EQ(nOutcome, kWhole);
  EXPECT_GT(nCall, 5) << "the calls of this operation are not seen";
  EXPECT_TRUE(nFailed > 0 || !bFromThenOn);
  EXPECT_THAT(m_temp.NewFiles(), testing::IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(All, SystemCallFailureTest,
                         testing::Combine(testing::ValuesIn(SweptOperationNames()),
                                          testing::Bool()),
                         NameOfSweep);

}  // namespace
