// SPDX-License-Identifier: Apache-2.0
#include "base/Console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

#include "base/Failure.h"
#include "base/QuietErrors.h"
#include "base/TerminalText.h"
#include "base/Utf8.h"

namespace tool {
namespace {

constexpr std::size_t kUsualColumns = 80;

bool TerminalHasColours() {
  const char* const pszNoColour = std::getenv("NO_COLOR");  // NOLINT(concurrency-mt-unsafe)
  if (pszNoColour != nullptr && *pszNoColour != '\0') return false;
  const char* const pszTerminal = std::getenv("TERM");  // NOLINT(concurrency-mt-unsafe)
  return pszTerminal != nullptr && std::string_view(pszTerminal) != "dumb";
}

[[noreturn]] void FailToPrint() {
  if (errno == EPIPE) throw C_OutputClosed();
  throw C_Failure("standard output", "cannot be written", SystemReason(errno));
}

std::size_t WidthOf(int nTerminal) {
  winsize size{};
  const bool bKnown = ioctl(nTerminal, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
  return bKnown ? size.ws_col : kUsualColumns;
}

}  // namespace

C_Console::C_Console()
    : m_bOutIsTerminal(isatty(STDOUT_FILENO) == 1),
      m_bErrIsTerminal(isatty(STDERR_FILENO) == 1),
      m_bColours(m_bOutIsTerminal && TerminalHasColours()) {}

C_Console::~C_Console() { TakeProgressAway(); }

void C_Console::Print(std::string_view text) {
  const std::lock_guard lock(m_lock);
  if (m_bOutIsTerminal) TakeProgressAway();
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) FailToPrint();
}

void C_Console::Flush() {
  const std::lock_guard lock(m_lock);
  if (std::fflush(stdout) != 0) FailToPrint();
}

void C_Console::Complain(std::string_view line) {
  const std::lock_guard lock(m_lock);
  TakeProgressAway();
  WriteToErrors(Printable(line) + '\n');
}

void C_Console::ShowProgress(std::string_view line) {
  if (!m_bErrIsTerminal) return;
  const std::lock_guard lock(m_lock);
  if (line == m_strProgress) return;
  // In one piece, so that it does not flicker.
  WriteToErrors(Erasure() + std::string(line));
  m_strProgress = line;
}

std::size_t C_Console::Columns() const noexcept { return WidthOf(STDERR_FILENO); }
std::size_t C_Console::OutputColumns() const noexcept { return WidthOf(STDOUT_FILENO); }

// What takes the progress away. Terminals that have become narrower since have broken its line, and
// the cursor is in the last part of it.
std::string C_Console::Erasure() const {
  if (m_strProgress.empty()) return "";
  const std::size_t nRowsAbove = (ColumnsOf(m_strProgress) - 1) / Columns();
  const std::string strUp = "\x1b[" + std::to_string(nRowsAbove) + "A";
  // To the first column, and everything after it away.
  return (nRowsAbove > 0 ? strUp : "") + "\r\x1b[J";
}

void C_Console::TakeProgressAway() {
  WriteToErrors(Erasure());
  m_strProgress.clear();
}

}  // namespace tool
