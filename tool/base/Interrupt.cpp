// SPDX-License-Identifier: Apache-2.0
#include "base/Interrupt.h"

#include <array>
#include <atomic>
#include <csignal>

#include "base/Failure.h"

namespace tool {
namespace {

// Threads read it as well, so the type that signals are otherwise noted in will not do.
std::atomic<bool> g_bInterrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void NoteInterrupt(int /*nSignal*/) { g_bInterrupted = true; }

// A signal that is ignored when the program starts stays ignored. That is how nohup lets it run on
// after its terminal is closed.
void Catch(int nSignal) {
  struct sigaction before = {};
  if (sigaction(nSignal, nullptr, &before) == 0 && before.sa_handler == SIG_IGN) return;
  struct sigaction action = {};
  action.sa_handler = &NoteInterrupt;
  // The second one takes the system's way. Calls that wait return, so that the first is seen.
  action.sa_flags = static_cast<int>(SA_RESETHAND);
  sigaction(nSignal, &action, nullptr);
}

constexpr std::array kSignals = {SIGINT, SIGTERM, SIGHUP};

sigset_t Interrupts() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int nSignal : kSignals) sigaddset(&signals, nSignal);
  return signals;
}

}  // namespace

void CatchInterrupts() {
  for (const int nSignal : kSignals) Catch(nSignal);
  // Who reads no further must not end the program while it has half a file beside its target.
  std::signal(SIGPIPE, SIG_IGN);
  // What came while another program became this one.
  const sigset_t signals = Interrupts();
  sigprocmask(SIG_UNBLOCK, &signals, nullptr);
}

C_HeldInterrupts::C_HeldInterrupts() {
  const sigset_t signals = Interrupts();
  sigprocmask(SIG_BLOCK, &signals, &m_before);
}

C_HeldInterrupts::~C_HeldInterrupts() { sigprocmask(SIG_SETMASK, &m_before, nullptr); }

bool Interrupted() noexcept { return g_bInterrupted; }

void ThrowIfInterrupted() {
  if (Interrupted()) throw C_Interrupted();
}

}  // namespace tool
