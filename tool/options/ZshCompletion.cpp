// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "options/Completion.h"
#include "options/OptionTable.h"

namespace tool {
namespace {

constexpr const char* kHead = R"(#compdef voxtool
# Completes voxtool in zsh. Made from its table of options.
)";

// Inside the specifications of _arguments, these characters have a meaning.
std::string Escaped(const std::string& strText) {
  std::string strEscaped;
  for (const char ch : strText) {
    if (ch == ':' || ch == '[' || ch == ']' || ch == '\\') strEscaped += '\\';
    strEscaped += ch;
  }
  return strEscaped;
}

std::string FunctionName(std::string strName) {
  strName = "_" + strName;
  std::ranges::replace(strName, ' ', '_');
  std::ranges::replace(strName, '-', '_');
  return strName;
}

std::string FunctionName(const CLI::App& command) { return FunctionName(FullName(command)); }

// ":FILE:_files": what the value is called and what completes it.
std::string ValueSpec(const S_Argument& argument) {
  const std::string strName = ":" + Escaped(argument.strValue) + ":";
  switch (argument.eKind) {
    case tagValueKind::NONE:
      return "";
    case tagValueKind::TEXT:
      return strName + " ";
    case tagValueKind::FILE:
      return strName + "_files";
    case tagValueKind::FOLDER:
      return strName + "_files -/";
    case tagValueKind::CHOICE:
    case tagValueKind::COMMAND:
      return strName + "(" + JoinedWords(argument.choices) + ")";
  }
  return "";
}

std::string OptionSpec(const S_Argument& option, const std::string& strName) {
  const bool bLong = strName.starts_with("--");
  const char* const pszValue = option.eKind == tagValueKind::NONE ? "" : bLong ? "=" : "+";
  const std::string strExcluded = option.bMany ? "*" : "(" + JoinedWords(option.names) + ")";
  return Quoted(strExcluded + strName + pszValue + "[" + Escaped(option.strMeaning) + "]" +
                (option.bMayLackValue ? ":" : "") + ValueSpec(option));
}

std::string OperandSpec(const S_Argument& operand, std::size_t nPosition) {
  const std::string strWhere = operand.bMany ? "*" : std::to_string(nPosition);
  const char* const pszOptional = operand.bRequired || operand.bMany ? "" : ":";
  return Quoted(strWhere + pszOptional + ValueSpec(operand));
}

std::string InnerCommandSpec(const CLI::App& command) {
  std::string strList;
  for (const CLI::App* pInner : CommandsIn(command)) {
    std::string strSummary = SummaryOf(*pInner);
    std::erase_if(strSummary, [](char ch) { return ch == '"' || ch == '\\' || ch == '$'; });
    strList += " " + NameOf(*pInner) + "\\:\"" + strSummary + "\"";
  }
  return Quoted("1:command:((" + strList + "))") + " \\\n    '*::argument:->inner'";
}

// strFunction is the one that calls.
std::string InnerCalls(const CLI::App& command, const std::string& strFunction) {
  std::string strText = "  [[ $state == inner ]] || return 0\n  case $line[1] in\n";
  for (const CLI::App* pInner : CommandsIn(command)) {
    strText +=
        "    " + NameOf(*pInner) + ") " + strFunction + FunctionName(NameOf(*pInner)) + " ;;\n";
  }
  return strText + "  esac\n";
}

std::string FunctionHead(const std::string& strFunction) {
  return strFunction + "() {\n" +
         "  local context state state_descr line\n  typeset -A opt_args\n" +
         "  _arguments -C -s -S";
}

// Of a command whose name is an operand of another.
std::string NamedFunction(const CLI::App& naming, const CLI::App& named) {
  const std::string strFunction = FunctionName("voxtool " + NameAfter(naming, named));
  if (CommandsIn(named).empty()) return strFunction + "() { _message 'no more'; }\n";
  return FunctionHead(strFunction) + " \\\n    " + InnerCommandSpec(named) + "\n" +
         InnerCalls(named, strFunction) + "}\n";
}

std::string Function(const CLI::App& command) {
  std::string strText = FunctionHead(FunctionName(command));
  for (const S_Argument& option : OptionsOf(command)) {
    for (const std::string& strName : option.names) {
      strText += " \\\n    " + OptionSpec(option, strName);
    }
  }
  std::size_t nPosition = 0;
  for (const S_Argument& operand : OperandsOf(command)) {
    if (operand.eKind == tagValueKind::COMMAND) continue;
    strText += " \\\n    " + OperandSpec(operand, ++nPosition);
  }
  const CLI::App& names = NamesCommands(command) ? *ParentOf(command) : command;
  const bool bHolds = !CommandsIn(names).empty();
  if (bHolds) strText += " \\\n    " + InnerCommandSpec(names);
  return strText + "\n" + (bHolds ? InnerCalls(names, FunctionName(command)) : "") + "}\n";
}

}  // namespace

std::string ZshCompletion(const CLI::App& table) {
  std::string strText = kHead;
  VisitCommands(table, [&](const CLI::App& command) { strText += Function(command); });
  VisitNamedCommands(table, [&](const CLI::App& naming, const CLI::App& named) {
    strText += NamedFunction(naming, named);
  });
  return strText + "_voxtool \"$@\"\n";
}

}  // namespace tool
