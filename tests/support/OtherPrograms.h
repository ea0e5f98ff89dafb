// SPDX-License-Identifier: Apache-2.0
//
// Runs other people's programs on the files of a test, through the shell.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "TempFolder.h"

// Runs a command line with every "@" replaced by the folder, and expects it to succeed. Returns its
// standard output.
inline std::vector<std::uint8_t> RunIn(const C_TempFolder& folder, std::string strCommand) {
  for (std::size_t n = 0; (n = strCommand.find('@', n)) != std::string::npos;) {
    strCommand.replace(n, 1, folder.Path());
  }
  strCommand += " > " + folder.Path("stdout") + " 2> " + folder.Path("stderr") + " < /dev/null";
  EXPECT_EQ(std::system(strCommand.c_str()), 0)  // NOLINT(cert-env33-c)
      << strCommand << "\n"
      << testing::PrintToString(folder.Read("stderr"));
  return folder.Read("stdout");
}
