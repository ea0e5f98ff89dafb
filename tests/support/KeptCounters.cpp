// SPDX-License-Identifier: Apache-2.0
//
// Linked to every test program where lines and branches are counted.
#include "KeptCounters.h"

#include <pthread.h>

#include <csignal>

void DumpCounters() asm("__gcov_dump");
void ResetCounters() asm("__gcov_reset");

namespace {

void KeepAndAbort(int nSignal) {
  KeepCounters();
  static_cast<void>(std::signal(nSignal, SIG_DFL));
  static_cast<void>(std::raise(nSignal));
}

// Failed assertions end their process with this signal. What a process has counted before it makes
// another stays with the first.
const bool g_bPrepared = std::signal(SIGABRT, KeepAndAbort) != SIG_ERR &&
                         pthread_atfork(nullptr, nullptr, ResetCounters) == 0;

}  // namespace

void KeepCounters() { DumpCounters(); }
