// SPDX-License-Identifier: Apache-2.0
//
// Tables as comma-separated values, by RFC 4180.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

using C_CsvRow = std::vector<std::string>;

// A line of the table, with its line end. Fields with commas, quotes or line ends are quoted, and
// empty lines do not arise.
std::string CsvLine(const C_CsvRow& row);

// Reads rows back exactly, whatever the fields hold. Lines may also end with a line feed alone,
// fields may be separated by semicolons or tabs where the first line has no commas, and the mark
// that some programs put before UTF-8 is passed over. Empty lines are left out.
class C_CsvReader {
 public:
  // The text must outlive the object.
  explicit C_CsvReader(std::string_view text);

  // The next row; false at the end. Throws C_BadRow for a quote that does not end.
  bool Read(C_CsvRow& row);
  // The line on which that row begins, from 1.
  [[nodiscard]] std::size_t Line() const noexcept { return m_nLine; }

 private:
  bool Takes(char chWanted);
  [[nodiscard]] bool IsEnd(char ch) const;
  void ReadRow(C_CsvRow& row);
  std::string ReadField();
  std::string ReadQuoted();

  std::string_view m_text;
  char m_chSeparator;
  std::size_t m_nAt = 0;
  std::size_t m_nLine = 1;
  std::size_t m_nCounted = 0;  // up to where lines are counted
};

}  // namespace tool
