// SPDX-License-Identifier: Apache-2.0
//
// Runs a piece of a test in a process of its own, as another user. Root is never refused anything,
// so whatever needs a refused permission has to run as somebody else.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "KeptCounters.h"

// What bStep returned in the child. Failures of expectations inside the step are not seen here.
inline bool InChildAs(uid_t nUser, const std::function<bool()>& bStep) {
  constexpr int kCannotBecome = 77;
  const pid_t nChild = fork();
  if (nChild == 0) {
    if (setegid(nUser) != 0 || seteuid(nUser) != 0) _exit(kCannotBecome);
    const bool bRet = bStep();
    if (KeepCounters != nullptr && seteuid(0) == 0) KeepCounters();
    _exit(bRet ? 1 : 0);
  }
  int nStatus = 0;
  EXPECT_EQ(waitpid(nChild, &nStatus, 0), nChild);
  EXPECT_TRUE(WIFEXITED(nStatus)) << "the child was ended by signal " << WTERMSIG(nStatus);
  EXPECT_NE(WEXITSTATUS(nStatus), kCannotBecome) << "these tests run as root";
  return WEXITSTATUS(nStatus) == 1;
}
