// SPDX-License-Identifier: Apache-2.0
#include "options/Completion.h"

#include <algorithm>

#include "options/OptionTable.h"

namespace tool {

void VisitCommands(const CLI::App& table, const std::function<void(const CLI::App&)>& fnVisit) {
  fnVisit(table);
  for (const CLI::App* pCommand : CommandsIn(table)) VisitCommands(*pCommand, fnVisit);
}

bool NamesCommands(const CLI::App& command) {
  const auto operands = OperandsOf(command);
  return std::ranges::find(operands, tagValueKind::COMMAND, &S_Argument::eKind) != operands.end();
}

void VisitNamedCommands(const CLI::App& table, const PFN_VisitNamed& fnVisit) {
  VisitCommands(table, [&](const CLI::App& naming) {
    if (!NamesCommands(naming)) return;
    VisitCommands(table, [&](const CLI::App& named) {
      if (ParentOf(named) != nullptr) fnVisit(naming, named);
    });
  });
}

std::string NameAfter(const CLI::App& naming, const CLI::App& named) {
  const std::string strNamed = NameInProgram(named);
  return NameInProgram(naming) + (strNamed.empty() ? "" : " " + strNamed);
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
