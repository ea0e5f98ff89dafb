// SPDX-License-Identifier: Apache-2.0
#include "output/Watchdog.h"

#include <utility>

namespace toolbox {
namespace {

// Silence is counted in ticks and not read off a clock: a process that was stopped and continued
// finds one tick gone, however long it stood still.
constexpr int kTicks = 20;

}  // namespace

C_Watchdog::C_Watchdog(std::chrono::milliseconds limit, ShowsLife showsLife,
                       std::function<void()> onSilence)
    : m_tick(limit / kTicks),
      m_showsLife(std::move(showsLife)),
      m_onSilence(std::move(onSilence)),
      m_thread(&C_Watchdog::Run, this) {}

C_Watchdog::~C_Watchdog() {
  {
    const std::lock_guard lock(m_lock);
    m_bEnd = true;
  }
  m_changed.notify_all();
  m_thread.join();
}

void C_Watchdog::Run() {
  for (int nSilentTicks = 0; nSilentTicks < kTicks;) {
    if (WaitForEnd()) return;
    nSilentTicks = m_showsLife() ? 0 : nSilentTicks + 1;
  }
  m_onSilence();
}

// False when a tick passed instead.
bool C_Watchdog::WaitForEnd() {
  std::unique_lock lock(m_lock);
  return m_changed.wait_for(lock, m_tick, [this] { return m_bEnd; });
}

}  // namespace toolbox
