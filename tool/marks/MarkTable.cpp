// SPDX-License-Identifier: Apache-2.0
#include "marks/MarkTable.h"

#include <algorithm>
#include <limits>
#include <utility>
#include <vector>

#include "base/TextTable.h"
#include "base/TimeText.h"
#include "base/Utf8.h"

namespace tool {
namespace {

std::uint64_t Number(const C_Json& row, const char* pszKey) {
  return row.value(pszKey, std::uint64_t{0});
}

// What has no place comes last.
std::uint64_t Start(const C_Json& row) {
  return row.value("start", std::numeric_limits<std::uint64_t>::max());
}

std::string Quoted(const C_Json& row, const char* pszKey) {
  const auto found = row.find(pszKey);
  if (found == row.end()) return "";
  std::string strQuoted(1, '"');
  strQuoted += Printable(found->get<std::string>());
  return strQuoted += '"';
}

void Append(std::string& strText, const std::string& strPart) {
  if (strPart.empty()) return;
  if (!strText.empty()) strText += "  ";
  strText += strPart;
}

std::string EventText(const C_Json& row) {
  std::string strText = "main " + std::to_string(Number(row, "main_command")) + ", sub " +
                        std::to_string(Number(row, "sub_command"));
  if (row.contains("data")) strText += ", data " + std::to_string(Number(row, "data"));
  return strText;
}

std::string LoopText(const C_Json& row) {
  const std::uint64_t qwType = Number(row, "type");
  std::string strText = qwType == 1 ? "forth and back" : qwType == 2 ? "backward" : "forward";
  if (qwType > 2) strText = "type " + std::to_string(qwType);
  const std::uint64_t qwCount = Number(row, "play_count");
  return strText + (qwCount == 0 ? ", for ever" : ", " + CountedText(qwCount, "time"));
}

std::string Content(const C_Json& row) {
  std::string strText;
  if (row.at("kind") == "event") Append(strText, EventText(row));
  if (row.at("kind") == "loop") Append(strText, LoopText(row));
  Append(strText, Quoted(row, "name"));
  // Most texts only say how long something is.
  const bool bOnlyLength = row.at("kind") == "text" && Quoted(row, "text") == "\"\"";
  if (!bOnlyLength) Append(strText, Quoted(row, "text"));
  return strText;
}

C_TextTable::Row Line(const C_Json& row, std::uint32_t dwRate) {
  const bool bPlaced = row.contains("start");
  const std::uint64_t qwLength = Number(row, "length");
  return {row.at("kind").get<std::string>(),
          std::to_string(Number(row, "number")),
          bPlaced ? ClockText(Start(row), dwRate) : "",
          bPlaced ? CountText(Start(row)) : "",
          qwLength != 0 ? ClockText(qwLength, dwRate) : "",
          row.contains("id") ? std::to_string(Number(row, "id")) : "",
          Content(row)};
}

// The first nMost rows in the order of their places. fnRow gives the row at an index.
template <typename GetRow>
C_TextTable TableOf(std::size_t nRows, GetRow&& fnRow, std::uint32_t dwRate, std::size_t nMost) {
  std::vector<std::pair<std::uint64_t, std::size_t>> places;
  places.reserve(nRows);
  for (std::size_t n = 0; n < nRows; ++n) places.emplace_back(Start(fnRow(n)), n);
  std::ranges::sort(places);
  places.resize(std::min(nMost, nRows));
  C_TextTable table("lrrrrrl", {"kind", "no.", "time", "frame", "length", "id", "content"});
  for (const auto& place : places) table.Add(Line(fnRow(place.second), dwRate));
  return table;
}

}  // namespace

void WriteMarkTable(const C_MarkRows& rows, std::size_t nIndent, bool bColours,
                    const std::function<void(std::string_view)>& fnWrite) {
  const auto GetRow = [&](std::size_t nRow) { return rows.Row(nRow); };
  TableOf(rows.Count(), GetRow, rows.Rate(), rows.Count()).Write(nIndent, bColours, fnWrite);
}

std::string MarkTable(const C_Json& rows, std::uint32_t dwRate, std::size_t nIndent, bool bColours,
                      std::size_t nMost) {
  const auto GetRow = [&](std::size_t nRow) -> const C_Json& { return rows[nRow]; };
  std::string strTable = TableOf(rows.size(), GetRow, dwRate, nMost).Text(nIndent, bColours);
  if (rows.size() > nMost) {
    strTable += std::string(nIndent, ' ') + "and " + CountText(rows.size() - nMost) + " more\n";
  }
  return strTable;
}

}  // namespace tool
