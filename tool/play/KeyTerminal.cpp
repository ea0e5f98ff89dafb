// SPDX-License-Identifier: Apache-2.0
#include "play/KeyTerminal.h"

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <thread>
#include <utility>

namespace tool {
namespace {

// Signals that end the process without unwinding it.
constexpr std::array kFatal = {SIGQUIT, SIGABRT, SIGSEGV, SIGBUS, SIGILL, SIGFPE};

volatile std::sig_atomic_t g_nSuspend = 0;
volatile std::sig_atomic_t g_nContinued = 0;
// What a dying process puts back; -1 when there is nothing to put back.
volatile std::sig_atomic_t g_nTerminal = -1;
termios g_before{};

extern "C" void NoteSuspend(int /*nSignal*/) { g_nSuspend = 1; }
extern "C" void NoteContinued(int /*nSignal*/) { g_nContinued = 1; }

// The system's own way follows: the signal waits until this returns.
extern "C" void PutBackAndDie(int nSignal) {
  if (g_nTerminal >= 0) tcsetattr(g_nTerminal, TCSANOW, &g_before);
  raise(nSignal);
}

void SetHandler(int nSignal, void (*pfnHandler)(int), int nFlags) {
  struct sigaction before = {};
  sigaction(nSignal, nullptr, &before);
  // A signal that is ignored when the program starts stays ignored.
  if (before.sa_handler == SIG_IGN) return;
  struct sigaction action = {};
  action.sa_handler = pfnHandler;
  action.sa_flags = nFlags;
  sigaction(nSignal, &action, nullptr);
}

int OpenTerminal() {
  if (isatty(STDIN_FILENO) == 1) return STDIN_FILENO;
  return open("/dev/tty", O_RDWR | O_CLOEXEC | O_NOCTTY);
}

}  // namespace

C_KeyTerminal::C_KeyTerminal(bool bWanted)
    : m_terminal(bWanted ? OpenTerminal() : -1), m_bUsable(m_terminal.Get() >= 0) {
  if (!m_bUsable) return;
  SetHandler(SIGTSTP, &NoteSuspend, 0);
  SetHandler(SIGCONT, &NoteContinued, SA_RESTART);
  for (const int nSignal : kFatal) {
    SetHandler(nSignal, &PutBackAndDie, static_cast<int>(SA_RESETHAND));
  }
}

C_KeyTerminal::~C_KeyTerminal() { End(); }

void C_KeyTerminal::End() {
  if (!m_bUsable) return;
  m_bUsable = false;
  Leave();
  SetHandler(SIGTSTP, SIG_DFL, 0);
  SetHandler(SIGCONT, SIG_DFL, 0);
  for (const int nSignal : kFatal) SetHandler(nSignal, SIG_DFL, 0);
}

// The system stops a background program that asks its terminal for something.
bool C_KeyTerminal::InForeground() const { return tcgetpgrp(m_terminal.Get()) == getpgrp(); }

// Who stopped the program without asking it, as SIGSTOP does, has left the modes of its terminal to
// the shell: they are set again, and what was before stays what is put back.
void C_KeyTerminal::Enter() {
  if (!InForeground()) return;
  if (std::exchange(g_nContinued, 0) != 0) m_bEntered = false;
  if (m_bEntered || (g_nTerminal < 0 && tcgetattr(m_terminal.Get(), &g_before) != 0)) return;
  termios mode = g_before;
  mode.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
  mode.c_cc[VMIN] = 0;
  mode.c_cc[VTIME] = 0;
  g_nTerminal = m_terminal.Get();
  m_bEntered = tcsetattr(m_terminal.Get(), TCSANOW, &mode) == 0;
}

void C_KeyTerminal::Leave() {
  if (m_bEntered && InForeground()) tcsetattr(m_terminal.Get(), TCSANOW, &g_before);
  g_nTerminal = -1;
  m_bEntered = false;
}

void C_KeyTerminal::Suspend() {
  if (m_bUsable) Leave();
  SetHandler(SIGTSTP, SIG_DFL, 0);
  raise(SIGTSTP);
  SetHandler(SIGTSTP, &NoteSuspend, 0);
  if (m_bUsable) Enter();
}

tagKey C_KeyTerminal::Wait(std::chrono::milliseconds limit) {
  if (m_keys.empty()) Collect(limit);
  if (g_nSuspend != 0) {
    g_nSuspend = 0;
    return tagKey::SUSPEND;
  }
  if (m_keys.empty()) return tagKey::NONE;
  const tagKey eKey = m_keys.front();
  m_keys.pop_front();
  return eKey;
}

void C_KeyTerminal::Collect(std::chrono::milliseconds limit) {
  // The shell may have put the program to the foreground.
  if (m_bUsable) Enter();
  if (!m_bUsable || !m_bEntered || !InForeground()) {
    std::this_thread::sleep_for(limit);
    return;
  }
  pollfd waiting{m_terminal.Get(), POLLIN, 0};
  if (poll(&waiting, 1, static_cast<int>(limit.count())) <= 0) return;
  std::array<char, 64> bytes{};
  const ssize_t cbRead = read(m_terminal.Get(), bytes.data(), bytes.size());
  // The terminal has gone.
  if (cbRead <= 0) return End();
  m_strSent.append(bytes.data(), static_cast<std::size_t>(cbRead));
  m_keys = TakeKeys(m_strSent);
}

}  // namespace tool
