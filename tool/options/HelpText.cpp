// SPDX-License-Identifier: Apache-2.0
#include "options/HelpText.h"

#include <algorithm>
#include <vector>

#include "options/OptionTable.h"
#include "options/WrappedText.h"

namespace tool {
namespace {

// Wider lines are hard to read.
constexpr std::size_t kMostColumns = 100;
constexpr std::size_t kFewestColumns = 20;
// Below this, meanings stand under what they explain, not beside it.
constexpr std::size_t kColumnsForTwo = 60;
constexpr std::size_t kMostNameColumns = 26;
constexpr std::size_t kIndent = 2;
constexpr std::size_t kDeepIndent = 6;

struct S_Entry {
  std::string strName;
  std::string strMeaning;
};
using C_Entries = std::vector<S_Entry>;

std::size_t NameColumns(const C_Entries& entries) {
  std::size_t nLongest = 0;
  for (const S_Entry& entry : entries) {
    if (entry.strName.size() <= kMostNameColumns) {
      nLongest = std::max(nLongest, entry.strName.size());
    }
  }
  return nLongest;
}

std::string Under(const S_Entry& entry, std::size_t nColumns, std::size_t nIndent) {
  return WrappedText(entry.strName, nColumns, kIndent) +
         WrappedText(entry.strMeaning, nColumns, nIndent);
}

std::string Beside(const S_Entry& entry, std::size_t nColumns, std::size_t nNames) {
  const std::size_t nIndent = kIndent + nNames + 2;
  if (entry.strName.size() > nNames) return Under(entry, nColumns, nIndent);
  std::string strText = WrappedText(entry.strMeaning, nColumns, nIndent);
  return strText.replace(kIndent, entry.strName.size(), entry.strName);
}

std::string Section(const char* pszTitle, const C_Entries& entries, std::size_t nColumns) {
  if (entries.empty()) return "";
  std::string strText = std::string("\n") + pszTitle + ":\n";
  const std::size_t nNames = NameColumns(entries);
  for (const S_Entry& entry : entries) {
    strText += nColumns < kColumnsForTwo ? Under(entry, nColumns, kDeepIndent)
                                         : Beside(entry, nColumns, nNames);
  }
  return strText;
}

C_Entries CommandEntries(const C_CommandLine& commandLine, const CLI::App& table) {
  C_Entries entries;
  for (const CLI::App* pCommand : CommandsIn(table)) {
    entries.push_back({NameOf(*pCommand), commandLine.Command(*pCommand).strSummary});
  }
  return entries;
}

C_Entries OperandEntries(const CLI::App& table) {
  C_Entries entries;
  for (const S_Argument& operand : OperandsOf(table)) {
    entries.push_back({operand.strValue, operand.strMeaning});
  }
  return entries;
}

C_Entries OptionEntries(const CLI::App& table) {
  C_Entries entries;
  for (const S_Argument& option : OptionsOf(table)) {
    // Long names of options with and without short ones stand below each other.
    const bool bLongOnly = option.names.front().starts_with("--");
    entries.push_back({(bLongOnly ? "    " : "") + OptionText(option), option.strMeaning});
  }
  return entries;
}

// Command lines stay whole, so that they can be copied.
std::string Examples(const S_Command& command, std::size_t nColumns) {
  std::string strText = command.examples.empty() ? "" : "\nExamples:\n";
  for (const S_Example& example : command.examples) {
    strText += std::string(kIndent, ' ') + example.strLine + "\n";
    strText += WrappedText(example.strMeaning, nColumns, kDeepIndent);
  }
  return strText;
}

}  // namespace

std::string HelpText(const C_CommandLine& commandLine, const CLI::App& table,
                     std::size_t nColumns) {
  const std::size_t nWidth = std::clamp(nColumns, kFewestColumns, kMostColumns);
  const S_Command& command = commandLine.Command(table);
  const std::string strName = FullName(table);
  return WrappedText("Usage: " + strName + " " + UsageText(table), nWidth, 0) + "\n" +
         WrappedText(strName + ": " + command.strSummary + ".", nWidth, 0) + "\n" +
         WrappedText(command.strDescription, nWidth, 0) +
         Section("Commands", CommandEntries(commandLine, table), nWidth) +
         Section("Operands", OperandEntries(table), nWidth) +
         Section("Options", OptionEntries(table), nWidth) + Examples(command, nWidth);
}

}  // namespace tool
