// SPDX-License-Identifier: Apache-2.0
//
// Every call of the file functions fails in turn, and every disk is full at some byte. Whatever
// happens, an operation says so, loses nothing and leaves nothing behind.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>
#include <tuple>

#include "FaultyIo.h"
#include "SweptOperations.h"

namespace {

constexpr int kMaxCalls = 20000;

std::ptrdiff_t OpenDescriptors() {
  const std::filesystem::directory_iterator folder("/proc/self/fd");
  return std::distance(begin(folder), end(folder));
}

void ExpectNoFileLeft(const C_FaultyIo& faults, const C_SweptOperation& operation, bool bDone) {
  for (const std::string& strPath : faults.Written()) {
    EXPECT_TRUE(!std::filesystem::exists(strPath) || operation.MayStay(strPath, bDone))
        << strPath << " is left";
  }
}

// The next attempt, without any faults, does everything.
void ExpectSecondAttemptWorks(C_SweptOperation& operation) {
  EXPECT_TRUE(operation.Run());
  EXPECT_TRUE(operation.IsWhole());
}

// False when the operation makes fewer calls than fault.nCall.
bool RunWithFault(C_SweptOperation& operation, const S_IoFault& fault) {
  operation.Prepare();
  const std::ptrdiff_t nDescriptors = OpenDescriptors();
  C_FaultyIo faults(fault);
  const bool bRet = operation.Run();
  faults.Stop();
  EXPECT_EQ(OpenDescriptors(), nDescriptors);
  ExpectNoFileLeft(faults, operation, bRet);
  if (bRet) {
    EXPECT_TRUE(operation.IsWhole()) << faults.Victim();
  } else {
    EXPECT_TRUE(faults.WasHit());
    EXPECT_TRUE(operation.IsEverythingKept());
    ExpectSecondAttemptWorks(operation);
  }
  return faults.WasHit();
}

using Parameters = std::tuple<std::string, S_IoFault>;

class IoFailureTest : public testing::TestWithParam<Parameters> {
 protected:
  C_TempFolder m_folder{C_TempFolder::kInMemory};
};

TEST_P(IoFailureTest, EachCallFailing_IsReportedAndLosesNothing) {
  auto [strName, fault] = GetParam();
  const auto operation = MakeSweptOperation(strName, m_folder);
  fault.nCall = 1;
  while (fault.nCall < kMaxCalls && RunWithFault(*operation, fault)) {
    ASSERT_FALSE(HasFailure()) << "at call " << fault.nCall;
    ++fault.nCall;
  }
  EXPECT_GT(fault.nCall, 3) << "the calls of this operation are not seen";
  EXPECT_LT(fault.nCall, kMaxCalls);
}

std::string NameOf(const testing::TestParamInfo<Parameters>& info) {
  const auto& [strName, fault] = info.param;
  if (fault.bCutShort) return strName + "_TransferCutShort";
  return strName + (fault.bFromThenOn ? "_FromThenOn" : "_Once");
}

const auto kFaults = testing::Values(S_IoFault{.bFromThenOn = false},
                                     S_IoFault{.bFromThenOn = true}, S_IoFault{.bCutShort = true});
INSTANTIATE_TEST_SUITE_P(All, IoFailureTest,
                         testing::Combine(testing::ValuesIn(SweptOperationNames()), kFaults),
                         NameOf);

// Limits the size of the files that the process writes. That stands for a full disk, and leaves the
// pipe to ctest alone.
class C_FullDisk {
 public:
  explicit C_FullDisk(rlim_t cbRoom) : m_pfnBefore(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &m_before);
    const rlimit limit = {cbRoom, m_before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~C_FullDisk() {
    setrlimit(RLIMIT_FSIZE, &m_before);
    static_cast<void>(std::signal(SIGXFSZ, m_pfnBefore));
  }
  C_FullDisk(const C_FullDisk&) = delete;
  C_FullDisk& operator=(const C_FullDisk&) = delete;

 private:
  rlimit m_before{};
  void (*m_pfnBefore)(int);
};

class FullDiskTest : public testing::TestWithParam<std::string> {
 protected:
  C_TempFolder m_folder{C_TempFolder::kInMemory};
};

TEST_P(FullDiskTest, DiskFullAtEachByte_IsReportedAndLosesNothing) {
  const auto operation = MakeSweptOperation(GetParam(), m_folder);
  bool bRet = false;
  for (rlim_t cbRoom = 0; !bRet && cbRoom < 8192; ++cbRoom) {
    operation->Prepare();
    C_FaultyIo record({});
    {
      const C_FullDisk disk(cbRoom);
      bRet = operation->Run();
    }
    record.Stop();
    ExpectNoFileLeft(record, *operation, bRet);
    if (bRet) {
      EXPECT_TRUE(operation->IsWhole());
    } else {
      EXPECT_TRUE(operation->IsEverythingKept());
    }
    ASSERT_FALSE(HasFailure()) << "with room for " << cbRoom << " bytes";
  }
  EXPECT_TRUE(bRet);
}

INSTANTIATE_TEST_SUITE_P(All, FullDiskTest, testing::ValuesIn(SweptOperationNames()),
                         [](const auto& parameters) { return parameters.param; });

}  // namespace
