// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

namespace toolbox {

// Watches something that shows signs of life of its own accord, from construction on, on a thread
// of its own.
class C_Watchdog {
 public:
  // Answers whether there was life since it was last asked.
  using ShowsLife = std::function<bool()>;

  // Calls `onSilence` once, when there was no life for `limit`, and watches no longer. Time in
  // which this process itself did not run does not count.
  C_Watchdog(std::chrono::milliseconds limit, ShowsLife showsLife, std::function<void()> onSilence);
  // Returns when neither function will be called any more. Not to be called from either.
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
