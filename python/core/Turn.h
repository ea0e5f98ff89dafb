// SPDX-License-Identifier: Apache-2.0
//
// Lets one thread at a time use an object, because Python's other threads keep running while the
// library works. The others wait for their turn. If the library calls a function that uses the same
// object again, that function would wait for itself, so it gets an exception instead.
#pragma once

#include <atomic>
#include <mutex>
#include <stdexcept>
#include <thread>

#include "Interpreter.h"

namespace python {

class C_Turn {
 public:
  // Runs fnWork without Python's lock, when nobody else uses the object. fnWork touches no object
  // of Python unless it takes that lock again.
  template <typename Work>
  auto Take(Work&& fnWork) {
    if (m_owner == std::this_thread::get_id()) {
      throw std::runtime_error("a function that was called by this object uses it");
    }
    const C_Unlocked unlocked;
    const C_Held held(*this);
    return fnWork();
  }

 private:
  class C_Held {
   public:
    explicit C_Held(C_Turn& turn) : m_turn(turn), m_lock(turn.m_mutex) {
      m_turn.m_owner = std::this_thread::get_id();
    }
    C_Held(const C_Held&) = delete;
    C_Held& operator=(const C_Held&) = delete;
    ~C_Held() { m_turn.m_owner = std::thread::id(); }

   private:
    C_Turn& m_turn;
    std::lock_guard<std::mutex> m_lock;
  };

  std::mutex m_mutex;
  std::atomic<std::thread::id> m_owner;
};

}  // namespace python
