// SPDX-License-Identifier: Apache-2.0
#include "base/Interrupt.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>

namespace {

using tool::C_HeldInterrupts;
using tool::CatchInterrupts;
using tool::Interrupted;

// What a signal does stays with the process, so another one gets it.
TEST(Interrupt, WhatComesWhileAProgramBecomesAnother_IsCaughtByThatOne) {
  const auto fnBecome = [] {
    const C_HeldInterrupts held;
    for (const int nSignal : {SIGINT, SIGTERM, SIGHUP}) std::signal(nSignal, SIG_DFL);
    std::raise(SIGTERM);
    const bool bHeld = !Interrupted();
    CatchInterrupts();
    std::exit(bHeld && Interrupted() ? 0 : 1);
  };
  EXPECT_EXIT(fnBecome(), testing::ExitedWithCode(0), "");
}

TEST(Interrupt, WhenTheOtherProgramCannotBeRun_TheSignalArrives) {
  const auto fnStay = [] {
    CatchInterrupts();
    bool bEarly = false;
    {
      const C_HeldInterrupts held;
      std::raise(SIGINT);
      bEarly = Interrupted();
    }
    std::exit(!bEarly && Interrupted() ? 0 : 1);
  };
  EXPECT_EXIT(fnStay(), testing::ExitedWithCode(0), "");
}

}  // namespace
