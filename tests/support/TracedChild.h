// SPDX-License-Identifier: Apache-2.0
//
// A child process that stops at the entry to each of its system calls and at the return from it. A
// test can kill it at any of these stops, or make the system call fail.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <functional>

class C_TracedChild {
 public:
  enum class Stop { Entry, Return, Ended };

  // Starts the child. It will exit with the result of fnRun.
  explicit C_TracedChild(const std::function<int()>& fnRun);
  // Kills the child, unless it has ended.
  ~C_TracedChild();
  C_TracedChild(const C_TracedChild&) = delete;
  C_TracedChild& operator=(const C_TracedChild&) = delete;

  // Lets the child run on to its next stop.
  Stop Next();
  // At an entry: the number of the system call.
  [[nodiscard]] std::uint64_t Number() const;
  // At an entry: the call is not made, and returns as if it had failed with nError. The child is at
  // the return then.
  void Fail(int nError);
  void Kill();
  // After the end: what fnRun returned; -1 when a signal ended the child.
  [[nodiscard]] int Result() const;

 private:
  // The register that holds the number of a system call, or its result.
  enum class Register { Number, Result };
  void Set(Register eRegister, std::int64_t qnValue) const;

  pid_t m_nChild = -1;
  int m_nStatus = 0;
  bool m_bEntry = false;
  bool m_bEnded = false;
};
