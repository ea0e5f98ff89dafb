// SPDX-License-Identifier: Apache-2.0
//
// A file in whose place no other one may be put is written over, once the new contents are whole on
// the disk. What is written is on the disk, too, before they are removed.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "FileBytes.h"
#include "TargetFile.h"
#include "TempFolder.h"
#include "TracedChild.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr uid_t kNobody = 65534;
constexpr int kMaxStops = 2000;
const Bytes kNew(2000, 'n');

// What a system call does that must come in order; empty for all others.
std::string NameOf(std::uint64_t qwNumber) {
  if (qwNumber == SYS_ftruncate) return "cut";
  if (qwNumber == SYS_fsync) return "to the disk";
  if (qwNumber == SYS_unlinkat) return "remove";
#ifdef SYS_unlink
  if (qwNumber == SYS_unlink) return "remove";
#endif
  return "";
}

// The parameter is the length of the old file: the new one is shorter or longer.
class CopyInPlace : public testing::TestWithParam<std::size_t> {
 protected:
  // A folder that all share, with a file of root's in it, which all may write.
  void SetUp() override {
    ASSERT_EQ(chmod(m_folder.Path().c_str(), 01777), 0);
    m_folder.Write("a", m_old);
    ASSERT_EQ(chmod(m_folder.Path("a").c_str(), 0666), 0);
  }
  [[nodiscard]] int WriteAsNobody() const {
    if (setuid(kNobody) != 0) return 2;
    vcm::C_TargetFile target(m_folder.Path("a").c_str());
    const bool bWritten = target.Stream() != nullptr && vcm::WriteExact(target.Stream(), kNew);
    return target.Commit(bWritten) ? 0 : 1;
  }
  // True when the process ended before this stop, having succeeded.
  [[nodiscard]] bool SucceedsBefore(int nStop) const {
    C_TracedChild child([this] { return WriteAsNobody(); });
    for (int i = 0; i < nStop; ++i) {
      if (child.Next() == C_TracedChild::Stop::Ended) return child.Result() == 0;
    }
    return false;
  }
  // Whether the file is whole, or the new one beside it. Removes the latter.
  [[nodiscard]] bool HasAWholeFile() const {
    const Bytes now = m_folder.Read("a");
    bool bWhole = now == m_old || now == kNew;
    for (const auto& entry : std::filesystem::directory_iterator(m_folder.Path())) {
      if (entry.path().filename() == "a") continue;
      bWhole = bWhole || FileBytes(entry.path().string()) == kNew;
      std::filesystem::remove(entry.path());
    }
    return bWhole;
  }

  const Bytes m_old = Bytes(GetParam(), 'o');
  C_TempFolder m_folder{C_TempFolder::kInMemory};
};

INSTANTIATE_TEST_SUITE_P(All, CopyInPlace, testing::Values(1000, 3000));

// The second file and its name, then the old file with its new contents.
TEST_P(CopyInPlace, Everything_IsOnTheDiskBeforeTheSecondFileIsRemoved) {
  std::vector<std::string> calls;
  C_TracedChild child([this] { return WriteAsNobody(); });
  for (auto eStop = child.Next(); eStop != C_TracedChild::Stop::Ended; eStop = child.Next()) {
    if (eStop != C_TracedChild::Stop::Entry) continue;
    const std::string strCall = NameOf(child.Number());
    if (!strCall.empty()) calls.push_back(strCall);
  }
  EXPECT_EQ(child.Result(), 0);
  EXPECT_THAT(calls,
              testing::ElementsAre("to the disk", "to the disk", "cut", "to the disk", "remove"));
  EXPECT_EQ(m_folder.Read("a"), kNew);
}

TEST_P(CopyInPlace, KilledAtEachSystemCall_LeavesAWholeFile) {
  int nStop = 1;
  for (; nStop < kMaxStops && !SucceedsBefore(nStop); ++nStop) {
    ASSERT_TRUE(HasAWholeFile()) << "at stop " << nStop;
    SetUp();
  }
  EXPECT_GT(nStop, 40);
  EXPECT_LT(nStop, kMaxStops);
  EXPECT_EQ(m_folder.Read("a"), kNew);
}

}  // namespace
