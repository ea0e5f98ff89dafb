// SPDX-License-Identifier: Apache-2.0
#include "output/Watchdog.h"

#include <utility>

namespace toolbox {
namespace {

// Silence is counted in ticks, not read from a clock. A process that was stopped and continued
// loses only one tick, however long it was stopped.
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

// Waits for one tick. True when the watch is to end, false when the tick has passed.
bool C_Watchdog::WaitForEnd() {
  std::unique_lock lock(m_lock);
  return m_changed.wait_for(lock, m_tick, [this] { return m_bEnd; });
}

}  // namespace toolbox
