// SPDX-License-Identifier: Apache-2.0
#include "batch/RunOnFiles.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "base/Failure.h"
#include "batch/ListedJobs.h"

namespace tool {
namespace {

std::vector<S_ListedFile> Files(std::size_t nFiles) {
  std::vector<S_ListedFile> files;
  for (std::size_t i = 0; i < nFiles; ++i) files.push_back({std::to_string(i), 0});
  return files;
}

// Keeps what it hears.
class C_HeardJobs final : public I_FileJobs {
 public:
  explicit C_HeardJobs(std::size_t nFiles) : m_jobs(Files(nFiles)) {}

  std::optional<S_FileJob> Next() override { return m_jobs.Next(); }
  void Done(const S_FileJob& job, const S_FileResult& result) override {
    const std::lock_guard lock(m_lock);
    if (job.strSource == strRefused) throw C_Failure("the list cannot be written");
    EXPECT_TRUE(heard.insert(job.strSource).second) << job.strSource;
    if (result.eState == tagFileState::FILE_FAILED) reasons.insert(result.strReason);
  }
  [[nodiscard]] std::uint64_t Count() const noexcept override { return m_jobs.Count(); }

  std::set<std::string> heard;
  std::set<std::string> reasons;
  std::string strRefused;

 private:
  C_ListedJobs m_jobs;
  std::mutex m_lock;
};

class RunOnFilesTest : public testing::Test {
 protected:
  std::string Run(I_FileJobs& jobs, const PFN_OnFile& fnOnFile, unsigned nThreads) {
    S_RunOptions options;
    options.nThreads = nThreads;
    testing::internal::CaptureStderr();
    m_state = RunOnFiles(jobs, options, fnOnFile, m_console);
    return testing::internal::GetCapturedStderr();
  }

  C_Console m_console;
  S_BatchState m_state;
};

TEST_F(RunOnFilesTest, EachFile_IsWorkedOnOnce) {
  for (const unsigned nThreads : {1U, 2U, 7U}) {
    C_HeardJobs jobs(500);
    std::atomic<int> nWorked = 0;
    Run(
        jobs, [&](const S_FileJob&, C_FileWatch&) { return ++nWorked, S_FileResult{}; }, nThreads);
    EXPECT_EQ(nWorked, 500);
    EXPECT_EQ(jobs.heard.size(), 500U);
    EXPECT_EQ(m_state.qwDone, 500U);
  }
}

TEST_F(RunOnFilesTest, SeveralThreads_WorkAtTheSameTime) {
  C_HeardJobs jobs(2);
  std::atomic<int> nThere = 0;
  // Each waits for the other one.
  Run(
      jobs,
      [&](const S_FileJob&, C_FileWatch&) {
        ++nThere;
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (nThere < 2 && std::chrono::steady_clock::now() < end) std::this_thread::yield();
        return S_FileResult{};
      },
      2);
  EXPECT_EQ(nThere, 2);
}

TEST_F(RunOnFilesTest, FileThatFails_IsToldAndTheOthersGoOn) {
  C_HeardJobs jobs(10);
  const std::string strSaid = Run(
      jobs,
      [](const S_FileJob& job, C_FileWatch&) -> S_FileResult {
        if (job.strSource == "3") throw C_Failure("3", "cannot be read", "it is damaged");
        if (job.strSource == "4") throw std::bad_alloc();
        return {};
      },
      1);
  EXPECT_EQ(strSaid, "3: cannot be read: it is damaged\n4: there is not enough memory\n" +
                         SummaryText(m_state, "done") + "\n");
  EXPECT_EQ(m_state.qwDone, 8U);
  EXPECT_EQ(m_state.qwFailed, 2U);
  EXPECT_EQ(jobs.heard.size(), 10U);
  EXPECT_TRUE(jobs.reasons.contains("3: cannot be read: it is damaged"));
}

TEST_F(RunOnFilesTest, ResultThatCannotBeKept_EndsTheWork) {
  C_HeardJobs jobs(1000);
  jobs.strRefused = "5";
  S_RunOptions options;
  options.nThreads = 1;
  EXPECT_THROW(
      RunOnFiles(
          jobs, options, [](const S_FileJob&, C_FileWatch&) { return S_FileResult{}; }, m_console),
      C_Failure);
  EXPECT_EQ(jobs.heard.size(), 5U);
}

TEST_F(RunOnFilesTest, NoFiles_AreDoneAtOnce) {
  C_HeardJobs jobs(0);
  Run(
      jobs, [](const S_FileJob&, C_FileWatch&) { return S_FileResult{}; }, 0);
  EXPECT_EQ(m_state.Ended(), 0U);
}

TEST_F(RunOnFilesTest, Quiet_SaysNothingButErrors) {
  C_HeardJobs jobs(3);
  S_RunOptions options;
  options.eTalk = tagTalk::TALK_ERRORS;
  testing::internal::CaptureStderr();
  RunOnFiles(
      jobs, options, [](const S_FileJob&, C_FileWatch&) { return S_FileResult{}; }, m_console);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

}  // namespace
}  // namespace tool
