// SPDX-License-Identifier: Apache-2.0
//
// Python's lock. Our own guards, because a thread that still works when the program ends gets the
// lock no more: Python then ends the thread from within, which no destructor survives. These let it
// wait for the end of the process instead.
#pragma once

#include <Python.h>

namespace python {

// Lets go of the lock.
class C_Unlocked {
 public:
  C_Unlocked();
  C_Unlocked(const C_Unlocked&) = delete;
  C_Unlocked& operator=(const C_Unlocked&) = delete;
  ~C_Unlocked();

 private:
  PyThreadState* m_pOuter;
};

// Takes it again for a while, in a function that the library calls below a C_Unlocked.
class C_LockedAgain {
 public:
  C_LockedAgain();
  C_LockedAgain(const C_LockedAgain&) = delete;
  C_LockedAgain& operator=(const C_LockedAgain&) = delete;
  ~C_LockedAgain();
};

}  // namespace python
