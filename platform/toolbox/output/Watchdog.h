// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace toolbox {

// Watches something that shows signs of life by itself. It starts with its construction and runs on
// its own thread.
class C_Watchdog {
 public:
  // Says whether there was a sign of life since the last call.
  using ShowsLife = std::function<bool()>;

  // Calls `onSilence` once, after `limit` without a sign of life, and then stops watching. Time
  // during which this process itself did not run does not count.
  C_Watchdog(std::chrono::milliseconds limit, ShowsLife showsLife, std::function<void()> onSilence);
  // Returns once neither function will be called any longer. Must not be called from either of
  // them.
  ~C_Watchdog();
  C_Watchdog(const C_Watchdog&) = delete;
  C_Watchdog& operator=(const C_Watchdog&) = delete;

 private:
  void Run();
  bool WaitForEnd();

  const std::chrono::milliseconds m_tick;
  const ShowsLife m_showsLife;
  const std::function<void()> m_onSilence;
  std::mutex m_lock;
  std::condition_variable m_changed;
  bool m_bEnd = false;
  std::thread m_thread;
};

}  // namespace toolbox
