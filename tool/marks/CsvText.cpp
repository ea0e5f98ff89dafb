// SPDX-License-Identifier: Apache-2.0
#include "marks/CsvText.h"

#include <algorithm>
#include <utility>

#include "marks/MarkNotes.h"

namespace tool {
namespace {

constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";

std::string Field(const std::string& strText) {
  if (strText.find_first_of(",\"\r\n") == std::string::npos) return strText;
  std::string strQuoted = "\"";
  for (const char ch : strText) strQuoted += ch == '"' ? std::string("\"\"") : std::string(1, ch);
  return strQuoted + '"';
}

char Separator(std::string_view text) {
  const std::string_view first = text.substr(0, text.find('\n'));
  for (const char chSeparator : {',', ';', '\t'}) {
    if (first.find(chSeparator) != std::string_view::npos) return chSeparator;
  }
  return ',';
}

class C_CsvReader {
 public:
  explicit C_CsvReader(std::string_view text) : m_text(text), m_chSeparator(Separator(text)) {}

  std::vector<C_CsvRow> Read() {
    while (m_nAt < m_text.size()) ReadRow();
    return std::move(m_rows);
  }

 private:
  void ReadRow() {
    C_CsvRow row;
    do {
      row.push_back(ReadField());
    } while (Takes(m_chSeparator));
    static_cast<void>(Takes('\r'));
    static_cast<void>(Takes('\n'));
    if (row.size() > 1 || !row.front().empty()) m_rows.push_back(std::move(row));
  }
  bool Takes(char chWanted) {
    const bool bThere = m_nAt < m_text.size() && m_text[m_nAt] == chWanted;
    m_nAt += bThere ? 1 : 0;
    return bThere;
  }
  std::string ReadField() {
    std::string strField;
    if (Takes('"')) strField = ReadQuoted();
    // What follows a quote belongs to the field, and so does a quote in the middle.
    while (m_nAt < m_text.size() && !IsEnd(m_text[m_nAt])) strField += m_text[m_nAt++];
    return strField;
  }
  [[nodiscard]] bool IsEnd(char ch) const {
    return ch == m_chSeparator || ch == '\n' || ch == '\r';
  }
  std::string ReadQuoted() {
    std::string strField;
    while (true) {
      const std::size_t nQuote = m_text.find('"', m_nAt);
      if (nQuote == std::string_view::npos) throw C_BadRow(WhereQuoteIsOpen());
      strField += m_text.substr(m_nAt, nQuote - m_nAt);
      m_nAt = nQuote + 1;
      if (!Takes('"')) return strField;
      strField += '"';
    }
  }
  [[nodiscard]] std::string WhereQuoteIsOpen() const {
    return "row " + std::to_string(m_rows.size()) + ": a quote does not end";
  }

  std::string_view m_text;
  char m_chSeparator;
  std::size_t m_nAt = 0;
  std::vector<C_CsvRow> m_rows;
};

}  // namespace

std::string CsvLine(const C_CsvRow& row) {
  std::string strLine;
  for (std::size_t n = 0; n < row.size(); ++n) strLine += (n == 0 ? "" : ",") + Field(row[n]);
  if (row.size() == 1 && strLine.empty()) strLine = "\"\"";
  return strLine + "\r\n";
}

std::vector<C_CsvRow> ParseCsv(std::string_view text) {
  if (text.starts_with(kUtf8Mark)) text.remove_prefix(kUtf8Mark.size());
  return C_CsvReader(text).Read();
}

}  // namespace tool
