// SPDX-License-Identifier: Apache-2.0
//
// Makes operator new fail on purpose. A program that links voxplay_faulty_new has the operators
// replaced by versions that count living allocations, and that throw when they are told to.
#pragma once

#include <cstddef>

// Only one of these may live at a time, and it counts the allocations of one thread at a time.
class C_FaultyNew {
 public:
  // The nCall-th allocation from here fails, counted from 1. With bFromThenOn, every later one
  // fails as well.
  C_FaultyNew(int nCall, bool bFromThenOn);
  ~C_FaultyNew();
  C_FaultyNew(const C_FaultyNew&) = delete;
  C_FaultyNew& operator=(const C_FaultyNew&) = delete;

  // Makes allocations work again.
  void Stop();
  [[nodiscard]] bool WasHit() const;

  // Allocations of the whole program that have not been freed.
  static std::ptrdiff_t Living();
};
