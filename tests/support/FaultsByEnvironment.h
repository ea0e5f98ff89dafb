// SPDX-License-Identifier: Apache-2.0
//
// Counts calls of one kind in a whole program, from all of its threads, and says which of them
// fail. The environment of the program says it:
//
//   VOXPLAY_FAULT=3    the third call fails; "3+": the third and all later ones
//   VOXPLAY_HIT=PATH   this file is created when a call fails
//
// It works before main, makes no allocation and starts no thread.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <cstring>

inline bool IsNextCallFaulty() {
  static std::atomic<long> nCalls{0};
  const char* pszFault = std::getenv("VOXPLAY_FAULT");
  if (pszFault == nullptr) return false;
  const long nFaulty = std::strtol(pszFault, nullptr, 10);
  const long nCall = ++nCalls;
  const bool bFails = std::strchr(pszFault, '+') != nullptr ? nCall >= nFaulty : nCall == nFaulty;
  if (!bFails) return false;
  if (const char* pszHit = std::getenv("VOXPLAY_HIT")) {
    close(open(pszHit, O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
  }
  return true;
}
