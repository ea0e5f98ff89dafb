// SPDX-License-Identifier: Apache-2.0
#include "options/Completion.h"

#include "options/OptionTable.h"

namespace tool {

void VisitCommands(const CLI::App& table, const std::function<void(const CLI::App&)>& fnVisit) {
  fnVisit(table);
  for (const CLI::App* pCommand : CommandsIn(table)) VisitCommands(*pCommand, fnVisit);
}

std::string Quoted(const std::string& strText) {
  std::string strQuoted = "'";
  for (const char ch : strText) strQuoted += ch == '\'' ? std::string("'\\''") : std::string(1, ch);
  return strQuoted + "'";
}

std::string JoinedWords(const std::vector<std::string>& words) {
  std::string strText;
  for (const std::string& strWord : words) strText += (strText.empty() ? "" : " ") + strWord;
  return strText;
}

}  // namespace tool
