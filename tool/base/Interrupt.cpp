// SPDX-License-Identifier: Apache-2.0
#include "base/Interrupt.h"

#include <csignal>

#include "base/Failure.h"

namespace tool {
namespace {

volatile std::sig_atomic_t g_nInterrupted = 0;

extern "C" void NoteInterrupt(int /*nSignal*/) { g_nInterrupted = 1; }

void Catch(int nSignal) {
  struct sigaction action = {};
  action.sa_handler = &NoteInterrupt;
  // The second one takes the system's way. Calls that wait return, so that the first is seen.
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(nSignal, &action, nullptr);
}

}  // namespace

void CatchInterrupts() {
  Catch(SIGINT);
  Catch(SIGTERM);
  Catch(SIGHUP);
}

bool Interrupted() noexcept { return g_nInterrupted != 0; }

void ThrowIfInterrupted() {
  if (Interrupted()) throw C_Interrupted();
}

}  // namespace tool
