// SPDX-License-Identifier: Apache-2.0
//
// The base of tests of "voxtool convert".
#pragma once

#include <string>
#include <utility>

#include "VoxtoolTest.h"

namespace tool::test {

class C_ToolTest : public C_VoxtoolTest {
 protected:
  // Converts, expects that to succeed, and returns what was said on standard error.
  std::string Convert(Texts arguments) const { return Fail(0, std::move(arguments)); }
  // What is said of a command line that cannot be meant.
  static std::string Misuse(const std::string& strWhy) {
    return "voxtool convert: " + strWhy + "\nTry \"voxtool convert --help\".\n";
  }
  // The same for what has to end with another code.
  std::string Fail(int nExit, Texts arguments) const {
    arguments.insert(arguments.begin(), "convert");
    const S_Run run = Run(std::move(arguments));
    EXPECT_EQ(run.nExit, nExit) << run.strErr;
    return Said(run.strErr);
  }
};

}  // namespace tool::test
