// SPDX-License-Identifier: Apache-2.0
//
// Runs a program as a user would and tells what it printed, how it ended and how long it took.
//
//   const C_Program player(VOXPLAY_PLAYER);
//   const S_Run run = player.Run({"speech.kst", "2"});
//   EXPECT_EQ(run.strOut, "Length:5\n");
//
// The program finds no sound server unless the test names one, and no home folder.
#pragma once

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

class C_Program {
 public:
  using Texts = std::vector<std::string>;

  // Opens the program at once, so that it can be run when its path is hidden later.
  explicit C_Program(const std::string& strPath);
  ~C_Program();
  C_Program(const C_Program&) = delete;
  C_Program& operator=(const C_Program&) = delete;

  // Runs it with these arguments, and these settings ("NAME=value") added to its environment.
  // Whatever still runs after two minutes is ended.
  [[nodiscard]] S_Run Run(const Texts& arguments, const Texts& environment = {}) const;
  // The same with a terminal as standard error.
  [[nodiscard]] S_Run RunOnTerminal(const Texts& arguments) const;

 private:
  [[nodiscard]] S_Run RunWith(const Texts& arguments, const Texts& environment, int nErrorRead,
                              int nErrorWrite) const;

  int m_nProgram;
};
