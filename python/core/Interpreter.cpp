// SPDX-License-Identifier: Apache-2.0
#include "Interpreter.h"

#include <unistd.h>

#include <utility>

namespace python {
namespace {

// What this thread has let go of.
thread_local PyThreadState* t_pState = nullptr;

bool IsEnding() {
#if PY_VERSION_HEX >= 0x030D0000
  return Py_IsFinalizing() != 0;
#else
  return _Py_IsFinalizing() != 0;
#endif
}

[[noreturn]] void WaitForTheEnd() {
  while (true) pause();
}

// Python may begin to end while this waits for the lock.
void TakeLock(PyThreadState* pState) noexcept {
  if (IsEnding()) WaitForTheEnd();
  try {
    PyEval_RestoreThread(pState);
  } catch (...) {
    WaitForTheEnd();
  }
}

}  // namespace

C_Unlocked::C_Unlocked() : m_pOuter(std::exchange(t_pState, PyEval_SaveThread())) {}

C_Unlocked::~C_Unlocked() { TakeLock(std::exchange(t_pState, m_pOuter)); }

C_LockedAgain::C_LockedAgain() { TakeLock(t_pState); }

C_LockedAgain::~C_LockedAgain() { t_pState = PyEval_SaveThread(); }

}  // namespace python
