// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace tool {

// What terminals show in bold; the text as it is where there may be no colours.
std::string Bold(const std::string& strText, bool bColours);

// Rows of texts with their columns below each other.
class C_TextTable {
 public:
  using Row = std::vector<std::string>;

  // One character per column, 'l' or 'r': the side on which its texts are flush.
  explicit C_TextTable(std::string strSides, Row heading = {})
      : m_strSides(std::move(strSides)), m_heading(std::move(heading)) {}

  void Add(Row row) { m_rows.push_back(std::move(row)); }
  [[nodiscard]] bool IsEmpty() const noexcept { return m_rows.empty(); }
  // Each line begins with the indentation. Columns in which no row has anything are left out, and
  // no line ends with spaces. The heading is bold where there may be colours.
  [[nodiscard]] std::string Text(std::size_t nIndent, bool bColours = false) const;

 private:
  [[nodiscard]] std::vector<std::size_t> Widths() const;
  [[nodiscard]] std::string Line(const Row& row, const std::vector<std::size_t>& widths) const;

  std::string m_strSides;
  Row m_heading;
  std::vector<Row> m_rows;
};

}  // namespace tool
