// SPDX-License-Identifier: Apache-2.0
//
// Standard output and standard error, as the commands use them: data goes to the one; what went
// wrong, and the progress, to the other. Any thread may call any operation.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>

namespace tool {

class C_Console {
 public:
  // The streams of the process.
  C_Console();
  ~C_Console();
  C_Console(const C_Console&) = delete;
  C_Console& operator=(const C_Console&) = delete;

  // Data, as it is. Throws C_Failure when it cannot be written.
  void Print(std::string_view text);
  // Writes out what is printed. Throws as Print does.
  void Flush();
  // A line on standard error. The line end is added, and control characters are shown (Utf8.h).
  void Complain(std::string_view line);
  // Shows a line at the bottom of a terminal in place of the one before; "" takes it away. Shows
  // nothing when standard error is no terminal.
  void ShowProgress(std::string_view line);

  // Whether they are terminals.
  [[nodiscard]] bool ShowsOutput() const noexcept { return m_bOutIsTerminal; }
  [[nodiscard]] bool ShowsErrors() const noexcept { return m_bErrIsTerminal; }
  // Whether what is printed may have colours: standard output is a terminal that is not "dumb", and
  // NO_COLOR is not set.
  [[nodiscard]] bool HasColours() const noexcept { return m_bColours; }
  // Columns of the terminal that standard error is, now; 80 where that is unknown.
  [[nodiscard]] std::size_t Columns() const noexcept;
  // The same of standard output.
  [[nodiscard]] std::size_t OutputColumns() const noexcept;

 private:
  [[nodiscard]] std::string Erasure() const;
  void TakeProgressAway();

  std::mutex m_lock;
  std::string m_strProgress;
  bool m_bOutIsTerminal;
  bool m_bErrIsTerminal;
  bool m_bColours;
};

}  // namespace tool
