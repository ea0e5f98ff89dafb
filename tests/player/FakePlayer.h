// SPDX-License-Identifier: Apache-2.0
//
// A player that records what it is asked and answers what a test wants, and the function that makes
// it. They take the place of the real ones.
#pragma once

#include <string>
#include <vector>

#include "I_Voxplay.h"

struct S_FakePlayer {
  int nCreate = 0;
  int nOpen = I_Voxplay::kOpened;
  int nPlayRealTime = 0;
  bool bPlay = true;
  bool bPlayThrows = false;
  bool bReleaseThrows = false;
  int nDuration = 2;
  int nDurationMs = 2000;
  std::vector<int> positionsMs = {2000};  // one per poll; then the last one forever

  std::vector<std::string> calls;
  int nAlive = 0;
};
extern S_FakePlayer g_player;
