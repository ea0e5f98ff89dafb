// SPDX-License-Identifier: Apache-2.0
//
// Single keys from the terminal that the program runs on. The terminal shows no keys that are
// pressed and gives them at once, without Enter, only from the first Wait on, while the object
// lives and the program is in the foreground; then it is as before, also after signals that end or
// stop the program.
#pragma once

#include <chrono>
#include <deque>
#include <string>

#include "base/Descriptor.h"

namespace tool {

enum class tagKey {
  NONE,
  PAUSE,
  BACK,
  FORWARD,
  FAR_BACK,
  FAR_FORWARD,
  NEXT,
  PREVIOUS,
  QUIT,
  HELP,
  SUSPEND,  // the user wants the program to stop for now
};

// Takes the keys off the front of what a terminal has sent. What may be the beginning of a key
// stays.
std::deque<tagKey> TakeKeys(std::string& strSent);

// There is one at a time.
class C_KeyTerminal {
 public:
  // Without a terminal, or when none is wanted, there are no keys.
  explicit C_KeyTerminal(bool bWanted);
  ~C_KeyTerminal();
  C_KeyTerminal(const C_KeyTerminal&) = delete;
  C_KeyTerminal& operator=(const C_KeyTerminal&) = delete;

  // Waits at most this long for the next key.
  tagKey Wait(std::chrono::milliseconds limit);
  // Stops the process as Ctrl-Z does, and returns when it is continued.
  void Suspend();
  // The terminal is as before from now on, and keys are no longer read.
  void End();

 private:
  [[nodiscard]] bool InForeground() const;
  void Enter();
  void Leave();
  void Collect(std::chrono::milliseconds limit);

  C_Descriptor m_terminal;
  bool m_bUsable;
  bool m_bEntered = false;
  std::string m_strSent;
  std::deque<tagKey> m_keys;
};

}  // namespace tool
