// SPDX-License-Identifier: Apache-2.0
#include "options/OptionTable.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>

namespace tool {
namespace {

constexpr const char* kAnyText = "TEXT";
// Longer lists of choices stand in the meaning of the option.
constexpr std::size_t kShownChoices = 24;

std::string Joined(const std::vector<std::string>& words, const char* pszBetween) {
  std::string strText;
  for (const std::string& strWord : words) {
    if (!strText.empty()) strText += pszBetween;
    strText += strWord;
  }
  return strText;
}

// Lists of values stand in the name of the type: "TEXT:{a,b}".
std::vector<std::string> ChoicesIn(const std::string& strType) {
  const std::size_t nBegin = strType.find(":{");
  if (nBegin == std::string::npos) return {};
  const std::size_t nEnd = strType.find('}', nBegin);
  if (nEnd == std::string::npos) return {};
  return CLI::detail::split(strType.substr(nBegin + 2, nEnd - nBegin - 2), ',');
}

// The names of some operands say what they are.
tagValueKind KindOf(const std::string& strType, const std::string& strOperand) {
  if (strType == "FILE" || strOperand == "FILE") return tagValueKind::FILE;
  if (strType == "DIR" || strOperand == "DIR") return tagValueKind::FOLDER;
  if (strType == "COMMAND") return tagValueKind::COMMAND;
  return tagValueKind::TEXT;
}

void AddChoices(S_Argument& argument) {
  if (argument.eKind != tagValueKind::COMMAND) argument.eKind = tagValueKind::CHOICE;
  const std::string strShown = Joined(argument.choices, "|");
  if (argument.strValue == kAnyText && strShown.size() <= kShownChoices) {
    argument.strValue = strShown;
  } else {
    argument.strMeaning += ": " + Joined(argument.choices, ", ");
  }
}

S_Argument ArgumentOf(const CLI::Option& option) {
  S_Argument argument;
  for (const std::string& strName : option.get_snames()) argument.names.push_back("-" + strName);
  for (const std::string& strName : option.get_lnames()) argument.names.push_back("--" + strName);
  argument.bRequired = option.get_required();
  argument.bMany = option.get_items_expected_max() > 1;
  argument.strMeaning = option.get_description();
  if (option.get_items_expected_max() == 0) return argument;
  const std::string strType = option.get_type_name();
  const std::string strOperand = option.nonpositional() ? "" : option.get_name(true);
  argument.strValue = strType.substr(0, strType.find(':'));
  argument.eKind = KindOf(argument.strValue, strOperand);
  if (!strOperand.empty()) argument.strValue = strOperand;
  argument.bMayLackValue = option.get_items_expected_min() == 0;
  argument.choices = ChoicesIn(strType);
  if (!argument.choices.empty()) AddChoices(argument);
  const std::string strDefault = option.get_default_str();
  if (!strDefault.empty()) argument.strMeaning += " (default: " + strDefault + ")";
  return argument;
}

// What all commands have.
bool IsGeneral(const S_Argument& option) {
  return option.names.back() == "--help" || option.names.back() == "--version";
}

std::vector<S_Argument> ArgumentsOf(const CLI::App& table, bool bOptions) {
  std::vector<S_Argument> arguments;
  for (const CLI::Option* pOption : table.get_options()) {
    const bool bHidden = pOption->get_group().empty();
    if (!bHidden && pOption->nonpositional() == bOptions) arguments.push_back(ArgumentOf(*pOption));
  }
  return arguments;
}

}  // namespace

std::vector<S_Argument> OptionsOf(const CLI::App& table) {
  auto options = ArgumentsOf(table, true);
  // They come first in the table, and last for people.
  std::stable_partition(options.begin(), options.end(), std::not_fn(&IsGeneral));
  return options;
}

std::vector<S_Argument> OwnOptionsOf(const CLI::App& table) {
  auto options = ArgumentsOf(table, true);
  std::erase_if(options, &IsGeneral);
  return options;
}

std::vector<S_Argument> OperandsOf(const CLI::App& table) { return ArgumentsOf(table, false); }

std::vector<const CLI::App*> CommandsIn(const CLI::App& table) {
  return table.get_subcommands([](const CLI::App*) { return true; });
}

const CLI::App* ParentOf(const CLI::App& table) { return table.get_parent(); }

std::string NameOf(const CLI::App& table) { return table.get_name(); }

std::string SummaryOf(const CLI::App& table) { return table.get_description(); }

std::string FullName(const CLI::App& table) {
  const CLI::App* const pParent = table.get_parent();
  return (pParent != nullptr ? FullName(*pParent) + " " : "") + table.get_name();
}

std::string NameInProgram(const CLI::App& table) {
  const std::string strName = FullName(table);
  const std::size_t nSpace = strName.find(' ');
  return nSpace == std::string::npos ? "" : strName.substr(nSpace + 1);
}

std::vector<std::string> UnknownWords(const CLI::App& table) { return table.remaining(); }

std::string OptionText(const S_Argument& option) {
  std::string strNames = Joined(option.names, ", ");
  if (option.strValue.empty()) return strNames;
  return strNames + (option.bMayLackValue ? " [" + option.strValue + "]" : " " + option.strValue);
}

std::string OperandText(const S_Argument& operand) {
  const std::string strText = operand.strValue + (operand.bMany ? "..." : "");
  return operand.bRequired ? strText : "[" + strText + "]";
}

std::string UsageText(const CLI::App& table) {
  std::string strText = "[OPTION]...";
  for (const S_Argument& operand : OperandsOf(table)) strText += " " + OperandText(operand);
  if (!CommandsIn(table).empty()) {
    strText += table.get_require_subcommand_min() > 0 ? " COMMAND ..." : " [COMMAND ...]";
  }
  return strText;
}

}  // namespace tool
