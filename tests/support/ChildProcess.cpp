// SPDX-License-Identifier: Apache-2.0
#include "ChildProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): posix_openpt
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <thread>
#include <utility>

#include "TempFolder.h"

namespace {

using Clock = std::chrono::steady_clock;
constexpr double kLimitSeconds = 120.0;
constexpr auto kPoll = std::chrono::milliseconds(2);

// Only the settings of the sanitizers pass through. The home is removed when the tests end: the
// library of the sound server leaves a folder there. Some tests take the temporary folder away.
std::vector<std::string> EnvironmentOf(const std::vector<std::string>& extra) {
  static const C_TempFolder home(C_TempFolder::kInMemory);
  std::vector<std::string> all = {"PATH=/usr/bin:/bin", "HOME=" + home.Path(), "LC_ALL=C"};
  for (const char* pszName : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"}) {
    if (const char* pszValue = std::getenv(pszName); pszValue != nullptr) {
      all.push_back(std::string(pszName) + "=" + pszValue);
    }
  }
  bool bServer = false;
  for (const std::string& strSetting : extra) bServer |= strSetting.starts_with("PULSE_SERVER=");
  if (!bServer) all.emplace_back("PULSE_SERVER=unix:/nonexistent/native");
  all.insert(all.end(), extra.begin(), extra.end());
  return all;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (std::string& strText : texts) pointers.push_back(strText.data());
  pointers.push_back(nullptr);
  return pointers;
}

}  // namespace

C_RunningProgram::C_RunningProgram(pid_t nChild, int nOut, int nErr, Clock::time_point start)
    : m_nChild(nChild), m_ends{nOut, nErr}, m_start(start) {}

C_RunningProgram::~C_RunningProgram() {
  for (const int nEnd : m_ends) {
    if (nEnd >= 0) close(nEnd);
  }
  if (m_nChild <= 0) return;
  Send(SIGKILL);
  waitpid(m_nChild, nullptr, 0);
}

void C_RunningProgram::Send(int nSignal) const { EXPECT_EQ(kill(m_nChild, nSignal), 0); }

bool C_RunningProgram::WaitForOutput(const std::string& strText) {
  const auto bFound = [&] { return m_run.strOut.find(strText) != std::string::npos; };
  Collect([&] { return bFound() || m_ends[0] < 0; });
  return bFound();
}

void C_RunningProgram::CloseOutput() { close(std::exchange(m_ends[0], -1)); }

S_Run C_RunningProgram::Wait() {
  Collect([this] { return m_ends[0] < 0 && m_ends[1] < 0; });
  const int nStatus = Reap();
  m_run.dSeconds = Seconds();
  if (WIFEXITED(nStatus)) m_run.nExit = WEXITSTATUS(nStatus);
  if (WIFSIGNALED(nStatus)) m_run.nSignal = WTERMSIG(nStatus);
  return m_run;
}

void C_RunningProgram::Collect(const std::function<bool()>& bEnough) {
  while (!bEnough()) {
    std::array<pollfd, 2> ends = {{{m_ends[0], POLLIN, 0}, {m_ends[1], POLLIN, 0}}};
    if (poll(ends.data(), ends.size(), 100) <= 0 && Seconds() > kLimitSeconds) {
      ADD_FAILURE() << "still running after two minutes";
      Send(SIGKILL);
    }
    if (ends[0].revents != 0) ReadEnd(0, m_run.strOut);
    if (ends[1].revents != 0) ReadEnd(1, m_run.strErr);
  }
}

// Appends what can be read.
void C_RunningProgram::ReadEnd(std::size_t nEnd, std::string& strText) {
  std::array<char, 65536> piece;
  const ssize_t nGot = read(m_ends[nEnd], piece.data(), piece.size());
  if (nEnd == 0 && m_run.dFirstOutput == 0.0) m_run.dFirstOutput = Seconds();
  if (nGot > 0) {
    strText.append(piece.data(), static_cast<std::size_t>(nGot));
  } else {
    close(std::exchange(m_ends[nEnd], -1));
  }
}

// A program may close its own output long before it ends.
int C_RunningProgram::Reap() {
  int nStatus = 0;
  while (waitpid(m_nChild, &nStatus, WNOHANG) == 0) {
    if (Seconds() > kLimitSeconds) {
      ADD_FAILURE() << "still running after two minutes";
      Send(SIGKILL);
    }
    std::this_thread::sleep_for(kPoll);
  }
  m_nChild = -1;
  return nStatus;
}

double C_RunningProgram::Seconds() const {
  return std::chrono::duration<double>(Clock::now() - m_start).count();
}

C_Program::C_Program(const std::string& strPath)
    : m_nProgram(open(strPath.c_str(), O_RDONLY | O_CLOEXEC)) {
  EXPECT_GE(m_nProgram, 0) << strPath;
}

C_Program::~C_Program() { close(m_nProgram); }

S_Run C_Program::Run(const Texts& arguments, const Texts& environment) const {
  return Start(arguments, environment).Wait();
}

S_Run C_Program::RunOnTerminal(const Texts& arguments, const Texts& environment) const {
  return StartOnTerminal(arguments, environment, {}).Wait();
}

C_RunningProgram C_Program::StartOnScreen(const Texts& arguments, const Texts& environment) const {
  return StartOnTerminal(arguments, environment, [] { dup2(STDERR_FILENO, STDOUT_FILENO); });
}

C_RunningProgram C_Program::StartOnTerminal(const Texts& arguments, const Texts& environment,
                                            const std::function<void()>& prepare) const {
  const int nMaster = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_TRUE(nMaster >= 0 && grantpt(nMaster) == 0 && unlockpt(nMaster) == 0);
  std::array<char, 128> name{};
  EXPECT_EQ(ptsname_r(nMaster, name.data(), name.size()), 0);
  const int nTerminal = open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  return StartWith(arguments, environment, nMaster, nTerminal, prepare);
}

C_RunningProgram C_Program::Start(const Texts& arguments, const Texts& environment,
                                  const std::function<void()>& prepare) const {
  std::array<int, 2> error{};
  EXPECT_EQ(pipe2(error.data(), O_CLOEXEC), 0);
  return StartWith(arguments, environment, error[0], error[1], prepare);
}

C_RunningProgram C_Program::StartWith(const Texts& arguments, const Texts& environment,
                                      int nErrorRead, int nErrorWrite,
                                      const std::function<void()>& prepare) const {
  std::array<int, 2> out{};
  EXPECT_EQ(pipe2(out.data(), O_CLOEXEC), 0);
  Texts all = {"VoxplaySampleCode"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Texts settings = EnvironmentOf(environment);
  const std::vector<char*> argv = Pointers(all);
  const std::vector<char*> envp = Pointers(settings);
  const std::string strProgram = "/proc/self/fd/" + std::to_string(m_nProgram);
  const pid_t nParent = getpid();
  const auto start = Clock::now();
  const pid_t nChild = fork();
  if (nChild == 0) {
    // Some of the runs never end by themselves. They must not outlive a test that is broken off.
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != nParent) _exit(127);
    dup2(out[1], STDOUT_FILENO);
    dup2(nErrorWrite, STDERR_FILENO);
    if (prepare) prepare();
    execve(strProgram.c_str(), argv.data(), envp.data());
    _exit(127);
  }
  close(out[1]);
  close(nErrorWrite);
  return {nChild, out[0], nErrorRead, start};
}
