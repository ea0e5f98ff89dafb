// SPDX-License-Identifier: Apache-2.0
#include "ChildProcess.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): posix_openpt
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>

namespace {

using Clock = std::chrono::steady_clock;
constexpr double kLimitSeconds = 120.0;

double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// The settings of the sanitizers pass through, nothing else does.
std::vector<std::string> EnvironmentOf(const std::vector<std::string>& extra) {
  std::vector<std::string> all = {"PATH=/usr/bin:/bin", "HOME=/nonexistent", "LC_ALL=C"};
  for (const char* pszName : {"ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS"})
    if (const char* pszValue = std::getenv(pszName); pszValue != nullptr)
      all.push_back(std::string(pszName) + "=" + pszValue);
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

// Appends what there is to read. False at the end.
bool ReadInto(std::string& strText, int nRead) {
  std::array<char, 65536> piece;
  const ssize_t nGot = read(nRead, piece.data(), piece.size());
  if (nGot > 0) strText.append(piece.data(), static_cast<std::size_t>(nGot));
  return nGot > 0;
}

// Reads both until both have ended.
void Collect(S_Run& run, int nOut, int nErr, Clock::time_point start, pid_t nChild) {
  std::array<pollfd, 2> ends = {{{nOut, POLLIN, 0}, {nErr, POLLIN, 0}}};
  while (ends[0].fd >= 0 || ends[1].fd >= 0) {
    if (poll(ends.data(), ends.size(), 100) <= 0 && SecondsSince(start) > kLimitSeconds) {
      ADD_FAILURE() << "still running after two minutes";
      kill(nChild, SIGKILL);
    }
    if (ends[0].fd >= 0 && ends[0].revents != 0) {
      if (!ReadInto(run.strOut, nOut)) ends[0].fd = -1;
      if (run.dFirstOutput == 0.0) run.dFirstOutput = SecondsSince(start);
    }
    if (ends[1].fd >= 0 && ends[1].revents != 0 && !ReadInto(run.strErr, nErr)) ends[1].fd = -1;
  }
}

}  // namespace

C_Program::C_Program(const std::string& strPath)
    : m_nProgram(open(strPath.c_str(), O_RDONLY | O_CLOEXEC)) {
  EXPECT_GE(m_nProgram, 0) << strPath;
}

C_Program::~C_Program() { close(m_nProgram); }

S_Run C_Program::Run(const Texts& arguments, const Texts& environment) const {
  std::array<int, 2> error{};
  EXPECT_EQ(pipe2(error.data(), O_CLOEXEC), 0);
  return RunWith(arguments, environment, error[0], error[1]);
}

S_Run C_Program::RunOnTerminal(const Texts& arguments) const {
  const int nMaster = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_TRUE(nMaster >= 0 && grantpt(nMaster) == 0 && unlockpt(nMaster) == 0);
  std::array<char, 128> name{};
  EXPECT_EQ(ptsname_r(nMaster, name.data(), name.size()), 0);
  return RunWith(arguments, {}, nMaster, open(name.data(), O_RDWR | O_NOCTTY | O_CLOEXEC));
}

S_Run C_Program::RunWith(const Texts& arguments, const Texts& environment, int nErrorRead,
                         int nErrorWrite) const {
  std::array<int, 2> out{};
  EXPECT_EQ(pipe2(out.data(), O_CLOEXEC), 0);
  Texts all = {"VoxplaySampleCode"};
  all.insert(all.end(), arguments.begin(), arguments.end());
  Texts settings = EnvironmentOf(environment);
  const std::vector<char*> argv = Pointers(all);
  const std::vector<char*> envp = Pointers(settings);
  const std::string strProgram = "/proc/self/fd/" + std::to_string(m_nProgram);
  const auto start = Clock::now();
  const pid_t nChild = fork();
  if (nChild == 0) {
    dup2(out[1], STDOUT_FILENO);
    dup2(nErrorWrite, STDERR_FILENO);
    execve(strProgram.c_str(), argv.data(), envp.data());
    _exit(127);
  }
  close(out[1]);
  close(nErrorWrite);
  S_Run run;
  Collect(run, out[0], nErrorRead, start, nChild);
  int nStatus = 0;
  EXPECT_EQ(waitpid(nChild, &nStatus, 0), nChild);
  run.dSeconds = SecondsSince(start);
  close(out[0]);
  close(nErrorRead);
  if (WIFEXITED(nStatus)) run.nExit = WEXITSTATUS(nStatus);
  if (WIFSIGNALED(nStatus)) run.nSignal = WTERMSIG(nStatus);
  return run;
}
