// SPDX-License-Identifier: Apache-2.0
//
// Guards for Python's lock. When the program ends, Python does not give the lock to threads that
// are still working: it ends such a thread inside the call that asks for the lock. In a destructor
// that would stop the whole program, so with these guards the thread waits for the end of the
// process.
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
