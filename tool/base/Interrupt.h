// SPDX-License-Identifier: Apache-2.0
//
// How the program ends when the user asks it to (Ctrl-C, or a kill): work stops at the next place
// that looks, so that what is being written is taken back, and the program ends with 130. Who asks
// a second time ends it at once.
#pragma once

namespace tool {

inline constexpr int kInterruptedExit = 130;

// Once, before threads are made.
void CatchInterrupts();
[[nodiscard]] bool Interrupted() noexcept;
// Throws C_Interrupted when the user has asked.
void ThrowIfInterrupted();

}  // namespace tool
