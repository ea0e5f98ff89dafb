// SPDX-License-Identifier: Apache-2.0
//
// How the program ends when the user asks it to (Ctrl-C, or a kill): work stops at the next place
// that looks, so that what is being written is taken back, and the program ends with 130. Who asks
// a second time ends it at once.
#pragma once

#include <csignal>

namespace tool {

inline constexpr int kInterruptedExit = 130;

// Once, before threads are made.
void CatchInterrupts();

// Holds the user's signals back while this program becomes another one, because the system forgets
// handlers on the way. The other program gets them once it catches them.
class C_HeldInterrupts {
 public:
  C_HeldInterrupts();
  C_HeldInterrupts(const C_HeldInterrupts&) = delete;
  C_HeldInterrupts& operator=(const C_HeldInterrupts&) = delete;
  ~C_HeldInterrupts();

 private:
  sigset_t m_before{};
};
[[nodiscard]] bool Interrupted() noexcept;
// Throws C_Interrupted when the user has asked.
void ThrowIfInterrupted();

}  // namespace tool
