// SPDX-License-Identifier: Apache-2.0
#include "marks/CsvText.h"

#include <algorithm>
#include <utility>

#include "marks/MarkNotes.h"

namespace tool {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

void AppendField(std::string& strLine, const std::string& strText) {
  if (strText.find_first_of(",\"\r\n") == std::string::npos) {
    strLine += strText;
    return;
  }
  strLine += '"';
  for (const char ch : strText) {
    if (ch == '"') strLine += '"';
    strLine += ch;
  }
  strLine += '"';
}

char Separator(std::string_view text) {
  const std::string_view first = text.substr(0, text.find('\n'));
  for (const char chSeparator : {',', ';', '\t'}) {
    if (first.find(chSeparator) != std::string_view::npos) return chSeparator;
  }
  return ',';
}

}  // namespace

std::string CsvLine(const C_CsvRow& row) {
  std::string strLine;
  for (std::size_t n = 0; n < row.size(); ++n) {
    if (n > 0) strLine += ',';
    AppendField(strLine, row[n]);
  }
  if (row.size() == 1 && strLine.empty()) strLine = "\"\"";
  return strLine + "\r\n";
}

C_CsvReader::C_CsvReader(std::string_view text) : m_text(text), m_chSeparator(Separator(text)) {
  if (text.starts_with(kUtf8Mark)) m_text.remove_prefix(kUtf8Mark.size());
}

bool C_CsvReader::Read(C_CsvRow& row) {
  while (m_nAt < m_text.size()) {
    const std::string_view passed = m_text.substr(m_nCounted, m_nAt - m_nCounted);
    m_nLine += static_cast<std::size_t>(std::ranges::count(passed, '\n'));
    m_nCounted = m_nAt;
    ReadRow(row);
    if (row.size() > 1 || !row.front().empty()) return true;
  }
  return false;
}

void C_CsvReader::ReadRow(C_CsvRow& row) {
  row.clear();
  do {
    row.push_back(ReadField());
  } while (Takes(m_chSeparator));
  static_cast<void>(Takes('\r'));
  static_cast<void>(Takes('\n'));
}

bool C_CsvReader::Takes(char chWanted) {
  const bool bThere = m_nAt < m_text.size() && m_text[m_nAt] == chWanted;
  m_nAt += bThere ? 1 : 0;
  return bThere;
}

bool C_CsvReader::IsEnd(char ch) const { return ch == m_chSeparator || ch == '\n' || ch == '\r'; }

std::string C_CsvReader::ReadField() {
  std::string strField;
  if (Takes('"')) strField = ReadQuoted();
  // What follows a quote belongs to the field, and so does a quote in the middle.
  while (m_nAt < m_text.size() && !IsEnd(m_text[m_nAt])) strField += m_text[m_nAt++];
  return strField;
}

std::string C_CsvReader::ReadQuoted() {
  std::string strField;
  while (true) {
    const std::size_t nQuote = m_text.find('"', m_nAt);
    if (nQuote == std::string_view::npos) {
      throw C_BadRow("line " + std::to_string(m_nLine) + ": a quote does not end");
    }
    strField += m_text.substr(m_nAt, nQuote - m_nAt);
    m_nAt = nQuote + 1;
    if (!Takes('"')) return strField;
    strField += '"';
  }
}

}  // namespace tool
