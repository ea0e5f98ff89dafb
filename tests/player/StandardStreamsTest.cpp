// SPDX-License-Identifier: Apache-2.0
//
// The real program when its standard streams are closed, or when nobody reads what it prints.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <future>
#include <string>
#include <thread>
#include <vector>

#include "ChildProcess.h"
#include "PrivateTemp.h"
#include "Speech.h"
#include "TempFolder.h"

namespace {

using namespace std::chrono_literals;
using Descriptors = std::vector<int>;

class StandardStreams : public ::testing::Test {
 protected:
  [[nodiscard]] C_RunningProgram StartWithout(const Descriptors& closed,
                                              const char* pszMode) const {
    return m_player.Start({m_strFile, pszMode}, {}, [&closed] {
      for (const int nDescriptor : closed) close(nDescriptor);
    });
  }

  C_Program m_player{VOXPLAY_PLAYER};
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  S_Speech m_speech = SpeechOf(25);
  std::string m_strFile = m_folder.Write("x.kst", m_speech.file);
};

// Runs in the child: makes standard output a pipe that nobody reads.
void BreakOutput() {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) _exit(1);
  close(ends[0]);
  dup2(ends[1], STDOUT_FILENO);
}

// What a descriptor of a process leads to; empty when it is not open.
std::string Target(pid_t nProcess, int nDescriptor) {
  std::error_code error;
  return std::filesystem::read_symlink(
      "/proc/" + std::to_string(nProcess) + "/fd/" + std::to_string(nDescriptor), error);
}

bool AllLeadToTheNullDevice(pid_t nProcess, const Descriptors& descriptors) {
  return std::all_of(descriptors.begin(), descriptors.end(), [nProcess](int nDescriptor) {
    return Target(nProcess, nDescriptor) == "/dev/null";
  });
}

// Standard output is closed, so the test cannot wait for "Playing..." to appear. It polls until the
// null device has taken the place of every closed stream.
TEST_F(StandardStreams, ThatAreClosed_AreNotReplacedByWhatThePlayerOpens) {
  for (const char* pszMode : {"0", "1"}) {
    for (const Descriptors& closed : {Descriptors{1}, Descriptors{0, 1}, Descriptors{0, 1, 2}}) {
      C_RunningProgram run = StartWithout(closed, pszMode);
      const auto limit = std::chrono::steady_clock::now() + 20s;
      while (!AllLeadToTheNullDevice(run.Pid(), closed) &&
             std::chrono::steady_clock::now() < limit) {
        std::this_thread::sleep_for(1ms);
      }
      EXPECT_TRUE(AllLeadToTheNullDevice(run.Pid(), closed)) << pszMode << " " << closed.size();
    }
  }
}

TEST_F(StandardStreams, ThatAreClosed_ChangeNothingElse) {
  const std::vector<double> leastSeconds = {0.5, 1.5, 0.0};
  std::vector<std::future<S_Run>> runs;
  for (const char* pszMode : {"0", "1", "2"}) {
    for (const Descriptors& closed : {Descriptors{0}, Descriptors{1}, Descriptors{0, 1, 2}}) {
      runs.push_back(std::async(std::launch::async, [this, closed, pszMode] {
        return StartWithout(closed, pszMode).Wait();
      }));
    }
  }
  for (std::size_t n = 0; n < runs.size(); ++n) {
    const S_Run run = runs[n].get();
    EXPECT_EQ(run.nExit, 0) << n;
    EXPECT_EQ(run.strErr, "") << n;
    EXPECT_EQ(run.strOut.empty(), n % 3 != 0) << n;
    EXPECT_GE(run.dSeconds, leastSeconds.at(n / 3)) << n;
  }
  EXPECT_EQ(m_folder.Read("x.kst"), m_speech.file);
}

// As in every pipeline, the first text that can no longer be read ends the program.
TEST_F(StandardStreams, OutputThatNobodyReads_EndsThePlayerQuietly) {
  for (const char* pszMode : {"0", "1", "2"}) {
    const S_Run run = m_player.Start({m_strFile, pszMode}, {}, BreakOutput).Wait();
    EXPECT_EQ(run.nSignal, SIGPIPE) << pszMode;
    EXPECT_EQ(run.strErr, "") << pszMode;
  }
  EXPECT_EQ(m_folder.Read("x.kst"), m_speech.file);
}

TEST_F(StandardStreams, AReaderThatLeavesWhileItPlays_LetsItPlayToTheEnd) {
  for (const char* pszMode : {"0", "1"}) {
    C_RunningProgram run = StartWithout({}, pszMode);
    EXPECT_TRUE(run.WaitForOutput("Playing..."));
    run.CloseOutput();
    const S_Run end = run.Wait();
    EXPECT_EQ(end.nSignal, SIGPIPE) << "when it says that it has finished";
    EXPECT_EQ(end.strErr, "");
    EXPECT_GE(end.dSeconds, 0.5);
  }
}

TEST_F(StandardStreams, OutputThatNobodyReads_IsLeftAloneWhereBrokenPipesAreIgnored) {
  std::vector<std::future<S_Run>> runs;
  for (const char* pszMode : {"0", "1"}) {
    runs.push_back(std::async(std::launch::async, [this, pszMode] {
      return m_player
          .Start({m_strFile, pszMode}, {},
                 [] {
                   BreakOutput();
                   std::signal(SIGPIPE, SIG_IGN);
                 })
          .Wait();
    }));
  }
  for (auto& running : runs) {
    const S_Run run = running.get();
    EXPECT_EQ(run.nExit, 0);
    EXPECT_EQ(run.strErr, "");
    EXPECT_GE(run.dSeconds, 0.5);
  }
}

}  // namespace
