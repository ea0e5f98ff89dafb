// SPDX-License-Identifier: Apache-2.0
//
// Runs a program as a user would and reports what it printed, how it ended and how long it took.
//
//   const C_Program player(VOXPLAY_PLAYER);
//   const S_Run run = player.Run({"speech.kst", "2"});
//   EXPECT_EQ(run.strOut, "Length:5\n");
//
// To act on it while it runs:
//
//   C_RunningProgram run = player.Start({"speech.kst", "1"});
//   ASSERT_TRUE(run.WaitForOutput("Playing..."));
//   run.Send(SIGINT);
//   EXPECT_EQ(run.Wait().nSignal, SIGINT);
//
// The program finds no sound server unless the test names one, and no home folder.
#pragma once

#include <sys/types.h>

#include <array>
#include <chrono>
#include <functional>
#include <string>
#include <vector>

struct S_Run {
  std::string strOut;
  std::string strErr;
  int nExit = -1;   // -1 when a signal ended it
  int nSignal = 0;  // 0 when it ended by itself
  double dSeconds = 0.0;
  double dFirstOutput = 0.0;  // seconds until the first byte on standard output
};

// A program that was started. If it still runs after two minutes, it is killed.
class C_RunningProgram {
 public:
  // Takes over the descriptors.
  C_RunningProgram(pid_t nChild, int nOut, int nErr, std::chrono::steady_clock::time_point start);
  // Kills the program if it was not waited for.
  ~C_RunningProgram();
  C_RunningProgram(const C_RunningProgram&) = delete;
  C_RunningProgram& operator=(const C_RunningProgram&) = delete;

  [[nodiscard]] pid_t Pid() const { return m_nChild; }
  void Send(int nSignal) const;
  // True as soon as its standard output contains the text; false when that output ends without it.
  [[nodiscard]] bool WaitForOutput(const std::string& strText);
  // Closes our end of its standard output, so that nobody reads it any longer.
  void CloseOutput();
  // Waits for the program to end. May be called only once.
  [[nodiscard]] S_Run Wait();

 private:
  void Collect(const std::function<bool()>& bEnough);
  void ReadEnd(std::size_t nEnd, std::string& strText);
  int Reap();
  [[nodiscard]] double Seconds() const;

  pid_t m_nChild;
  std::array<int, 2> m_ends;  // standard output and error; -1 where they have ended
  const std::chrono::steady_clock::time_point m_start;
  S_Run m_run;
};

class C_Program {
 public:
  using Texts = std::vector<std::string>;

  // Opens the program at once, so that it can be run even if its path is hidden later.
  explicit C_Program(const std::string& strPath);
  ~C_Program();
  C_Program(const C_Program&) = delete;
  C_Program& operator=(const C_Program&) = delete;

  // Runs it with these arguments, and with these settings ("NAME=value") added to its environment.
  // If it still runs after two minutes, it is killed.
  [[nodiscard]] S_Run Run(const Texts& arguments, const Texts& environment = {}) const;
  // The same with a terminal as standard error.
  [[nodiscard]] S_Run RunOnTerminal(const Texts& arguments, const Texts& environment = {}) const;
  // Starts it with the same terminal as standard output and error. What it shows is the text of
  // standard error.
  [[nodiscard]] C_RunningProgram StartOnScreen(const Texts& arguments,
                                               const Texts& environment = {}) const;
  // Starts it. `prepare` runs in the child just before the program, where it may do what is safe
  // between fork and exec: close descriptors, set signals.
  [[nodiscard]] C_RunningProgram Start(const Texts& arguments, const Texts& environment = {},
                                       const std::function<void()>& prepare = {}) const;

 private:
  [[nodiscard]] C_RunningProgram StartOnTerminal(const Texts& arguments, const Texts& environment,
                                                 const std::function<void()>& prepare) const;
  [[nodiscard]] C_RunningProgram StartWith(const Texts& arguments, const Texts& environment,
                                           int nErrorRead, int nErrorWrite,
                                           const std::function<void()>& prepare) const;

  int m_nProgram;
};
