// SPDX-License-Identifier: Apache-2.0
#include "marks/MarkCsv.h"

#include <algorithm>
#include <array>

#include "marks/CsvText.h"
#include "marks/MarkNotes.h"

namespace tool {
namespace {

constexpr std::array kUsual = {"kind", "number", "id",           "start",       "time", "length",
                               "name", "text",   "main_command", "sub_command", "data"};
constexpr const char* kFile = "file";

bool Has(const C_CsvRow& columns, const std::string& strName) {
  return std::ranges::find(columns, strName) != columns.end();
}

C_CsvRow Columns(const C_Json& rows) {
  C_CsvRow columns(kUsual.begin(), kUsual.end());
  for (const C_Json& row : rows) {
    for (const auto& [strKey, value] : row.items()) {
      if (Has(columns, strKey)) continue;
      columns.insert(strKey == kFile ? columns.begin() : columns.end(), strKey);
    }
  }
  return columns;
}

std::string ValueText(const C_Json& row, const std::string& strKey) {
  const auto found = row.find(strKey);
  if (found == row.end()) return "";
  return found->is_string() ? found->get<std::string>() : found->dump();
}

C_Json RowOf(const C_CsvRow& columns, const C_CsvRow& fields) {
  C_Json row = C_Json::object();
  for (std::size_t n = 0; n < fields.size(); ++n) row[columns[n]] = fields[n];
  return row;
}

}  // namespace

std::string CsvOf(const C_Json& rows) {
  const C_CsvRow columns = Columns(rows);
  std::string strText = CsvLine(columns);
  for (const C_Json& row : rows) {
    C_CsvRow fields;
    for (const std::string& strKey : columns) fields.push_back(ValueText(row, strKey));
    strText += CsvLine(fields);
  }
  return strText;
}

C_Json RowsOfCsv(std::string_view text) {
  const std::vector<C_CsvRow> lines = ParseCsv(text);
  C_Json rows = C_Json::array();
  if (lines.empty() || !Has(lines.front(), "kind")) {
    throw C_BadRow("the first line does not name a column \"kind\"");
  }
  for (std::size_t n = 1; n < lines.size(); ++n) {
    if (lines[n].size() > lines.front().size()) {
      throw C_BadRow("row " + std::to_string(n) + ": it has more fields than there are columns");
    }
    rows.push_back(RowOf(lines.front(), lines[n]));
  }
  return rows;
}

}  // namespace tool
