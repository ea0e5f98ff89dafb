// SPDX-License-Identifier: Apache-2.0
#include "marks/MarkCsv.h"

#include <algorithm>
#include <set>

#include "marks/MarkNotes.h"
#include "marks/RowMembers.h"

namespace tool {
namespace {

constexpr const char* kFile = "file";

bool Has(const C_CsvRow& columns, const std::string& strName) {
  return std::ranges::find(columns, strName) != columns.end();
}

std::string ValueText(const C_Json& row, const std::string& strKey) {
  const auto found = row.find(strKey);
  if (found == row.end()) return "";
  return found->is_string() ? found->get<std::string>() : found->dump();
}

C_Json RowOf(const C_CsvRow& columns, C_CsvRow& fields) {
  C_Json row = C_Json::object();
  for (std::size_t n = 0; n < fields.size(); ++n) {
    // Most columns of most rows are empty.
    if (!fields[n].empty()) row[columns[n]] = std::move(fields[n]);
  }
  return row;
}

class C_TableReader {
 public:
  explicit C_TableReader(std::string_view text) : m_reader(text) {
    if (!m_reader.Read(m_columns) || !Has(m_columns, "kind")) {
      throw C_BadRow("the first line does not name a column \"kind\"");
    }
    for (const std::string& strColumn : m_columns) CheckColumn(strColumn);
  }

  void ForEach(const PFN_Row& fnRow) {
    C_CsvRow fields;
    while (m_reader.Read(fields)) {
      const std::string strPlace = "line " + std::to_string(m_reader.Line());
      if (fields.size() > m_columns.size()) {
        throw C_BadRow(strPlace + ": it has more fields than there are columns");
      }
      const C_Json row = RowOf(m_columns, fields);
      m_files.insert(row.value(kFile, std::string()));
      if (m_files.size() > 1) throw C_BadRow("it has the marks of several files");
      fnRow(row, strPlace);
    }
  }

 private:
  // Spreadsheets leave columns without a name.
  static void CheckColumn(const std::string& strColumn) {
    const auto strWhy = strColumn.empty() ? std::nullopt : UnknownMember(strColumn);
    if (strWhy) throw C_BadRow("the column " + *strWhy);
  }

  C_CsvReader m_reader;
  C_CsvRow m_columns;
  std::set<std::string> m_files;
};

}  // namespace

C_MarkCsv::C_MarkCsv(const C_MarkRows& rows)
    : m_columns(kUsualMembers.begin(), kUsualMembers.end()) {
  std::set<std::string> present;
  rows.ForEach([&](const C_Json& row) {
    for (const auto& [strKey, value] : row.items()) present.insert(strKey);
  });
  std::ranges::copy_if(kRareMembers, std::back_inserter(m_columns),
                       [&](const char* pszName) { return present.contains(pszName); });
}

C_MarkCsv::C_MarkCsv() : m_columns{kFile} {
  m_columns.insert(m_columns.end(), kUsualMembers.begin(), kUsualMembers.end());
  m_columns.insert(m_columns.end(), kRareMembers.begin(), kRareMembers.end());
}

std::string C_MarkCsv::Line(const C_Json& row, const std::string& strFile) const {
  C_CsvRow fields;
  fields.reserve(m_columns.size());
  for (const std::string& strKey : m_columns) {
    fields.push_back(strKey == kFile ? strFile : ValueText(row, strKey));
  }
  return CsvLine(fields);
}

PFN_Rows RowsOfCsv(std::string_view text) {
  return [text](const PFN_Row& fnRow) { C_TableReader(text).ForEach(fnRow); };
}

}  // namespace tool
