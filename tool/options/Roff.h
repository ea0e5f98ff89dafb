// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace tool {

// Writes a manual page in the macros of man(7). Texts are plain: what roff would take for its own
// is written so that it does not.
class C_Roff {
 public:
  void Title(std::string_view name, std::string_view date, std::string_view version);
  void Section(std::string_view title);
  void Subsection(std::string_view title);
  // The one line of the section NAME.
  void Name(std::string_view name, std::string_view summary);
  // Another page, after which a comma follows unless it is the last.
  void Reference(std::string_view name, bool bLast);
  // The name of a command in bold, and what follows it on the same line.
  void Command(std::string_view bold, std::string_view rest);
  // Paragraphs with empty lines between them, broken into short lines.
  void Paragraphs(std::string_view text);
  // What is explained, in bold, and after it its value.
  void Term(std::string_view bold, std::string_view value);
  // An empty line between two lines of a section.
  void Break();
  // A command line, as it is typed.
  void Example(std::string_view line);

  [[nodiscard]] const std::string& Page() const noexcept { return m_strPage; }

 private:
  void Line(std::string_view macro, std::string_view rest = {});

  std::string m_strPage;
};

}  // namespace tool
