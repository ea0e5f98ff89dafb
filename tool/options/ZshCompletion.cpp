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

std::string FunctionName(const CLI::App& command) {
  std::string strName = "_" + FullName(command);
  std::ranges::replace(strName, ' ', '_');
  std::ranges::replace(strName, '-', '_');
  return strName;
}

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
    std::string strSummary = pInner->get_description();
    std::erase_if(strSummary, [](char ch) { return ch == '"' || ch == '\\' || ch == '$'; });
    strList += " " + pInner->get_name() + "\\:\"" + strSummary + "\"";
  }
  return Quoted("1:command:((" + strList + "))") + " \\\n    '*::argument:->inner'";
}

std::string InnerCalls(const CLI::App& command) {
  std::string strText = "  [[ $state == inner ]] || return 0\n  case $line[1] in\n";
  for (const CLI::App* pInner : CommandsIn(command)) {
    strText += "    " + pInner->get_name() + ") " + FunctionName(*pInner) + " ;;\n";
  }
  return strText + "  esac\n";
}

std::string Function(const CLI::App& command) {
  std::string strText = FunctionName(command) + "() {\n" +
                        "  local context state state_descr line\n  typeset -A opt_args\n" +
                        "  _arguments -C -s -S";
  for (const S_Argument& option : OptionsOf(command)) {
    for (const std::string& strName : option.names) {
      strText += " \\\n    " + OptionSpec(option, strName);
    }
  }
  std::size_t nPosition = 0;
  for (const S_Argument& operand : OperandsOf(command)) {
    strText += " \\\n    " + OperandSpec(operand, ++nPosition);
  }
  const bool bHolds = !CommandsIn(command).empty();
  if (bHolds) strText += " \\\n    " + InnerCommandSpec(command);
  return strText + "\n" + (bHolds ? InnerCalls(command) : "") + "}\n";
}

}  // namespace

std::string ZshCompletion(const CLI::App& table) {
  std::string strText = kHead;
  VisitCommands(table, [&](const CLI::App& command) { strText += Function(command); });
  return strText + "_voxtool \"$@\"\n";
}

}  // namespace tool
