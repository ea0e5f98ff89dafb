// SPDX-License-Identifier: Apache-2.0
#include "base/TextTable.h"

#include <algorithm>
#include <utility>

#include "base/TerminalText.h"

namespace tool {
namespace {

constexpr std::size_t kGap = 2;

std::string Joined(const C_TextTable::Row& row) {
  std::string strJoined;
  for (const std::string& strText : row) {
    strJoined += strText;
    strJoined += '\0';
  }
  strJoined.shrink_to_fit();
  return strJoined;
}

std::string TakeFirst(std::string_view& row) {
  const std::size_t nEnd = row.find('\0');
  std::string strText(row.substr(0, nEnd));
  row.remove_prefix(nEnd + 1);
  return strText;
}

void AppendCell(std::string& strLine, const std::string& strText, std::size_t nWidth, char chSide) {
  const std::size_t nFill = nWidth - std::min(nWidth, ColumnsOf(strText));
  if (chSide == 'r') strLine.append(nFill, ' ');
  strLine += strText;
  strLine.append(chSide == 'r' ? kGap : nFill + kGap, ' ');
}

}  // namespace

std::string Bold(const std::string& strText, bool bColours) {
  return bColours ? "\x1b[1m" + strText + "\x1b[0m" : strText;
}

C_TextTable::C_TextTable(std::string strSides, const Row& heading)
    : m_strSides(std::move(strSides)), m_widths(m_strSides.size()) {
  m_strHeading = Joined(heading);
}

void C_TextTable::Add(const Row& row) {
  for (std::size_t n = 0; n < m_widths.size(); ++n) {
    m_widths[n] = std::max(m_widths[n], ColumnsOf(row.at(n)));
  }
  m_rows.push_back(Joined(row));
}

std::string C_TextTable::Line(std::string_view row) const {
  std::string_view heading = m_strHeading;
  std::string strLine;
  for (std::size_t n = 0; n < m_widths.size(); ++n) {
    const std::string strText = TakeFirst(row);
    const std::size_t nHeading = heading.empty() ? 0 : ColumnsOf(TakeFirst(heading));
    if (m_widths[n] == 0) continue;
    AppendCell(strLine, strText, std::max(m_widths[n], nHeading), m_strSides[n]);
  }
  strLine.erase(strLine.find_last_not_of(' ') + 1);
  return strLine;
}

void C_TextTable::Write(std::size_t nIndent, bool bColours,
                        const std::function<void(std::string_view)>& fnWrite) const {
  const std::string strIndent(nIndent, ' ');
  if (!m_strHeading.empty()) fnWrite(strIndent + Bold(Line(m_strHeading), bColours) + '\n');
  for (const std::string& strRow : m_rows) fnWrite(strIndent + Line(strRow) + '\n');
}

std::string C_TextTable::Text(std::size_t nIndent, bool bColours) const {
  std::string strText;
  Write(nIndent, bColours, [&](std::string_view line) { strText += line; });
  return strText;
}

}  // namespace tool
