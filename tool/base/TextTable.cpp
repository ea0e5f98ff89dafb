// SPDX-License-Identifier: Apache-2.0
#include "base/TextTable.h"

#include <algorithm>

#include "base/TerminalText.h"

namespace tool {
namespace {

constexpr std::size_t kGap = 2;

std::string Cell(const std::string& strText, std::size_t nWidth, char chSide) {
  const std::size_t nWritten = std::min(nWidth, ColumnsOf(strText));
  const std::string strFill(nWidth - nWritten, ' ');
  return chSide == 'r' ? strFill + strText : strText + strFill;
}

}  // namespace

std::string Bold(const std::string& strText, bool bColours) {
  return bColours ? "\x1b[1m" + strText + "\x1b[0m" : strText;
}

std::vector<std::size_t> C_TextTable::Widths() const {
  std::vector<std::size_t> widths(m_strSides.size());
  for (std::size_t n = 0; n < widths.size(); ++n) {
    for (const Row& row : m_rows) widths[n] = std::max(widths[n], ColumnsOf(row.at(n)));
    const bool bHeaded = widths[n] != 0 && n < m_heading.size();
    if (bHeaded) widths[n] = std::max(widths[n], ColumnsOf(m_heading[n]));
  }
  return widths;
}

std::string C_TextTable::Line(const Row& row, const std::vector<std::size_t>& widths) const {
  std::string strLine;
  for (std::size_t n = 0; n < widths.size(); ++n) {
    if (widths[n] != 0) strLine += Cell(row[n], widths[n], m_strSides[n]) + std::string(kGap, ' ');
  }
  strLine.erase(strLine.find_last_not_of(' ') + 1);
  return strLine;
}

std::string C_TextTable::Text(std::size_t nIndent, bool bColours) const {
  const std::vector<std::size_t> widths = Widths();
  const std::string strIndent(nIndent, ' ');
  std::string strText;
  if (!m_heading.empty()) strText = strIndent + Bold(Line(m_heading, widths), bColours) + '\n';
  for (const Row& row : m_rows) strText += strIndent + Line(row, widths) + '\n';
  return strText;
}

}  // namespace tool
