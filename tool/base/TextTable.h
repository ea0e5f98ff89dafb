// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// What terminals show in bold; the text as it is where there may be no colours.
std::string Bold(const std::string& strText, bool bColours);

// Rows of texts with their columns below each other.
class C_TextTable {
 public:
  using Row = std::vector<std::string>;

  // One character per column, 'l' or 'r': the side on which its texts are flush.
  explicit C_TextTable(std::string strSides, const Row& heading = {});

  void Add(const Row& row);
  [[nodiscard]] bool IsEmpty() const noexcept { return m_rows.empty(); }
  // Each line begins with the indentation. Columns in which no row has anything are left out, and
  // no line ends with spaces. The heading is bold where there may be colours.
  [[nodiscard]] std::string Text(std::size_t nIndent, bool bColours = false) const;
  // The same line by line, for tables that may be long.
  void Write(std::size_t nIndent, bool bColours,
             const std::function<void(std::string_view)>& fnWrite) const;

 private:
  [[nodiscard]] std::string Line(std::string_view row) const;

  std::string m_strSides;
  std::string m_strHeading;
  std::vector<std::size_t> m_widths;  // of the rows
  // Each in one piece, its texts separated by zeros, which they do not have: there may be many.
  std::vector<std::string> m_rows;
};

}  // namespace tool
