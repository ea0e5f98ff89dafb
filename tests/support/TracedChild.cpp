// SPDX-License-Identifier: Apache-2.0
#include "TracedChild.h"

#include <elf.h>
#include <gtest/gtest.h>
#include <sys/ptrace.h>
#include <sys/uio.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

namespace {

constexpr int kSystemCall = SIGTRAP | 0x80;  // what PTRACE_O_TRACESYSGOOD makes of a stop

}  // namespace

C_TracedChild::C_TracedChild(const std::function<int()>& fnRun) : m_nChild(fork()) {
  if (m_nChild == 0) {
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    raise(SIGSTOP);
    _exit(fnRun());
  }
  EXPECT_EQ(waitpid(m_nChild, &m_nStatus, 0), m_nChild);
  EXPECT_EQ(ptrace(PTRACE_SETOPTIONS, m_nChild, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL),
            0);
}

C_TracedChild::~C_TracedChild() {
  if (!m_bEnded) Kill();
}

C_TracedChild::Stop C_TracedChild::Next() {
  EXPECT_EQ(ptrace(PTRACE_SYSCALL, m_nChild, nullptr, nullptr), 0);
  EXPECT_EQ(waitpid(m_nChild, &m_nStatus, 0), m_nChild);
  if (!WIFSTOPPED(m_nStatus)) {
    m_bEnded = true;
    return Stop::Ended;
  }
  EXPECT_EQ(WSTOPSIG(m_nStatus), kSystemCall) << "the child has got a signal";
  m_bEntry = !m_bEntry;
  return m_bEntry ? Stop::Entry : Stop::Return;
}

void C_TracedChild::Fail(int nError) {
  Set(Register::Number, -1);
  EXPECT_EQ(Next(), Stop::Return);
  Set(Register::Result, -nError);
}

void C_TracedChild::Kill() {
  kill(m_nChild, SIGKILL);
  EXPECT_EQ(waitpid(m_nChild, &m_nStatus, 0), m_nChild);
  m_bEnded = true;
}

int C_TracedChild::Result() const { return WIFEXITED(m_nStatus) ? WEXITSTATUS(m_nStatus) : -1; }

#if defined(__x86_64__)

std::uint64_t C_TracedChild::Number() const {
  user_regs_struct registers{};
  EXPECT_EQ(ptrace(PTRACE_GETREGS, m_nChild, nullptr, &registers), 0);
  return registers.orig_rax;
}

void C_TracedChild::Set(Register eRegister, std::int64_t qnValue) const {
  user_regs_struct registers{};
  EXPECT_EQ(ptrace(PTRACE_GETREGS, m_nChild, nullptr, &registers), 0);
  auto& qwRegister = eRegister == Register::Number ? registers.orig_rax : registers.rax;
  qwRegister = static_cast<unsigned long long>(qnValue);
  EXPECT_EQ(ptrace(PTRACE_SETREGS, m_nChild, nullptr, &registers), 0);
}

#elif defined(__aarch64__)

std::uint64_t C_TracedChild::Number() const {
  user_regs_struct registers{};
  iovec all{&registers, sizeof(registers)};
  EXPECT_EQ(ptrace(PTRACE_GETREGSET, m_nChild, NT_PRSTATUS, &all), 0);
  return registers.regs[8];
}

void C_TracedChild::Set(Register eRegister, std::int64_t qnValue) const {
  if (eRegister == Register::Number) {
    auto nNumber = static_cast<int>(qnValue);
    iovec number{&nNumber, sizeof(nNumber)};
    EXPECT_EQ(ptrace(PTRACE_SETREGSET, m_nChild, NT_ARM_SYSTEM_CALL, &number), 0);
    return;
  }
  user_regs_struct registers{};
  iovec all{&registers, sizeof(registers)};
  EXPECT_EQ(ptrace(PTRACE_GETREGSET, m_nChild, NT_PRSTATUS, &all), 0);
  registers.regs[0] = static_cast<unsigned long long>(qnValue);
  EXPECT_EQ(ptrace(PTRACE_SETREGSET, m_nChild, NT_PRSTATUS, &all), 0);
}

#endif
