// SPDX-License-Identifier: Apache-2.0
//
// The process is killed before and after each of its system calls. Whenever that is, the user's
// file is either the old one or the new one, and whole.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "FileType.h"
#include "PrivateTemp.h"
#include "SweptOperations.h"
#include "TracedChild.h"

namespace {

constexpr int kMaxStops = 20000;

// Performs the operation in a process of its own, and kills it at its nStop-th stop. The first stop
// is 1. True when the process ended before that, having succeeded.
bool SucceedsBefore(C_SweptOperation& operation, int nStop) {
  C_TracedChild child([&operation] { return operation.Run() ? 0 : 1; });
  for (int i = 0; i < nStop; ++i) {
    if (child.Next() == C_TracedChild::Stop::Ended) return child.Result() == 0;
  }
  return false;
}

class KillTest : public testing::TestWithParam<std::string> {
 protected:
  // Removes what a killed process left beside the user's files. The player must not take it for a
  // sound, and there can be only one.
  void RemoveLeftFile(const C_SweptOperation& operation) {
    int nLeft = 0;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
      const std::string strPath = entry.path().string();
      if (strPath == operation.Source() || strPath == operation.Target()) continue;
      unsigned char byNeedsDecoding = 0;
      EXPECT_FALSE(CheckFileType(strPath.c_str(), &byNeedsDecoding)) << strPath;
      std::filesystem::remove(entry.path());
      ++nLeft;
    }
    EXPECT_LE(nLeft, 1);
    m_nLeft += nLeft;
  }

  C_PrivateTemp m_temp;
  C_TempFolder m_folder{C_TempFolder::kInMemory};
  int m_nLeft = 0;
};

TEST_P(KillTest, KilledAtEachSystemCall_LeavesTheOldFileOrTheNewOne) {
  const auto operation = MakeSweptOperation(GetParam(), m_folder);
  int nOld = 0;
  int nNew = 0;
  int nStop = 1;
  for (operation->Prepare(); nStop < kMaxStops && !SucceedsBefore(*operation, nStop); ++nStop) {
    RemoveLeftFile(*operation);
    const bool bOld = operation->IsEverythingKept();
    EXPECT_TRUE(bOld || operation->IsWhole());
    ASSERT_FALSE(HasFailure()) << "at stop " << nStop;
    ++(bOld ? nOld : nNew);
    operation->Prepare();
  }
  EXPECT_LT(nStop, kMaxStops);
  EXPECT_TRUE(operation->IsWhole());
  EXPECT_GT(nOld, 20);
  EXPECT_GT(nNew, 0);
  EXPECT_GT(m_nLeft, 0);
}

// Those that write over a file.
std::vector<std::string> Writers() {
  std::vector<std::string> names = SweptOperationNames();
  std::erase_if(names, [](const std::string& strName) {
    return strName.find("Onto") == std::string::npos && strName != "PrependHeader";
  });
  return names;
}

INSTANTIATE_TEST_SUITE_P(All, KillTest, testing::ValuesIn(Writers()),
                         [](const auto& parameters) { return parameters.param; });

}  // namespace
