// SPDX-License-Identifier: Apache-2.0
#include "marks/MarkTable.h"

#include <algorithm>
#include <limits>
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
  return found == row.end() ? "" : "\"" + Printable(found->get<std::string>()) + "\"";
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

}  // namespace

std::string MarkTable(const C_Json& rows, std::uint32_t dwRate, std::size_t nIndent, bool bColours,
                      std::size_t nMost) {
  std::vector<const C_Json*> sorted;
  for (const C_Json& row : rows) sorted.push_back(&row);
  std::ranges::stable_sort(sorted, {}, [](const C_Json* pRow) { return Start(*pRow); });
  C_TextTable table("lrrrrrl", {"kind", "no.", "time", "frame", "length", "id", "content"});
  const std::size_t nHidden = sorted.size() - std::min(nMost, sorted.size());
  sorted.resize(sorted.size() - nHidden);
  for (const C_Json* const pRow : sorted) table.Add(Line(*pRow, dwRate));
  const std::string strEnd =
      nHidden == 0 ? "" : std::string(nIndent, ' ') + "and " + CountText(nHidden) + " more\n";
  return table.Text(nIndent, bColours) + strEnd;
}

}  // namespace tool
