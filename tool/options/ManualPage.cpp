// SPDX-License-Identifier: Apache-2.0
#include "options/ManualPage.h"

#include <algorithm>

#include "options/OptionTable.h"
#include "options/Roff.h"
#include "voxplay.hpp"

namespace tool {
namespace {

// Of the version; the same pages are made on every day.
constexpr const char* kReleaseDay = "2026-11-23";

void AddUsage(C_Roff& page, const CLI::App& table) {
  const auto commands = CommandsIn(table);
  const bool bProgram = ParentOf(table) == nullptr;
  if (commands.empty() || bProgram) return page.Command(FullName(table), UsageText(table));
  for (const CLI::App* pCommand : commands) {
    if (pCommand != commands.front()) page.Break();
    AddUsage(page, *pCommand);
  }
}

void AddArguments(C_Roff& page, const CLI::App& table, const std::vector<S_Argument>& options) {
  for (const S_Argument& operand : OperandsOf(table)) {
    page.Term("", operand.strValue);
    page.Paragraphs(operand.strMeaning);
  }
  for (const S_Argument& option : options) {
    S_Argument bare = option;
    bare.strValue.clear();
    page.Term(OptionText(bare),
              option.bMayLackValue ? "[" + option.strValue + "]" : option.strValue);
    page.Paragraphs(option.strMeaning);
  }
}

void AddCommandList(C_Roff& page, const C_CommandLine& commandLine, const CLI::App& table) {
  page.Section("COMMANDS");
  for (const CLI::App* pCommand : CommandsIn(table)) {
    page.Term(NameOf(*pCommand), "");
    page.Paragraphs(commandLine.Command(*pCommand).strSummary);
  }
}

// The commands inside a command, each with those inside it.
void AddInnerCommands(C_Roff& page, const C_CommandLine& commandLine, const CLI::App& table) {
  for (const CLI::App* pCommand : CommandsIn(table)) {
    page.Subsection(FullName(*pCommand) + " " + UsageText(*pCommand));
    const S_Command& command = commandLine.Command(*pCommand);
    page.Paragraphs(command.strDescription.empty() ? command.strSummary : command.strDescription);
    AddArguments(page, *pCommand, OwnOptionsOf(*pCommand));
    AddInnerCommands(page, commandLine, *pCommand);
  }
}

void AddExitStatus(C_Roff& page) {
  page.Section("EXIT STATUS");
  constexpr std::pair<const char*, const char*> kMeanings[] = {
      {"0", "Everything was done."},
      {"1", "Something failed; a line on standard error says for each file what and why."},
      {"2", "The command line cannot be meant; nothing was done."},
      {"130", "The user has interrupted it."},
  };
  for (const auto& [pszCode, pszMeaning] : kMeanings) {
    page.Term(pszCode, "");
    page.Paragraphs(pszMeaning);
  }
}

void AddEnvironment(C_Roff& page) {
  page.Section("ENVIRONMENT");
  page.Term("NO_COLOR", "");
  page.Paragraphs("If it is set and not empty, nothing is printed in colours.");
  page.Term("TMPDIR", "");
  page.Paragraphs("The folder for temporary files; /tmp without it.");
}

void CollectExamples(const C_CommandLine& commandLine, const CLI::App& table,
                     std::vector<S_Example>& examples) {
  const auto& own = commandLine.Command(table).examples;
  examples.insert(examples.end(), own.begin(), own.end());
  if (ParentOf(table) == nullptr) return;
  for (const CLI::App* pCommand : CommandsIn(table)) {
    CollectExamples(commandLine, *pCommand, examples);
  }
}

void AddExamples(C_Roff& page, const C_CommandLine& commandLine, const CLI::App& table) {
  std::vector<S_Example> examples;
  CollectExamples(commandLine, table, examples);
  if (examples.empty()) return;
  page.Section("EXAMPLES");
  for (const S_Example& example : examples) {
    if (&example != &examples.front()) page.Break();
    page.Paragraphs(example.strMeaning + ":");
    page.Example(example.strLine);
  }
}

void AddSeeAlso(C_Roff& page, const CLI::App& table) {
  page.Section("SEE ALSO");
  if (ParentOf(table) != nullptr) {
    page.Reference(ManualPageName(*ParentOf(table)), true);
    return;
  }
  for (const CLI::App* pCommand : CommandsIn(table)) {
    page.Reference(ManualPageName(*pCommand), false);
  }
  page.Reference("VoxplaySampleCode", true);
}

}  // namespace

std::string ManualPageName(const CLI::App& table) {
  std::string strName = FullName(table);
  std::ranges::replace(strName, ' ', '-');
  return strName;
}

std::string ManualPage(const C_CommandLine& commandLine, const CLI::App& table) {
  C_Roff page;
  const bool bProgram = ParentOf(table) == nullptr;
  const S_Command& command = commandLine.Command(table);
  page.Title(ManualPageName(table), kReleaseDay, std::string("Voxplay ") + voxplay_version());
  page.Section("NAME");
  page.Name(ManualPageName(table), command.strSummary);
  page.Section("SYNOPSIS");
  AddUsage(page, table);
  page.Section("DESCRIPTION");
  page.Paragraphs(command.strDescription);
  if (bProgram) AddCommandList(page, commandLine, table);
  page.Section("OPTIONS");
  AddArguments(page, table, OptionsOf(table));
  if (!bProgram && !CommandsIn(table).empty()) {
    page.Section("COMMANDS");
    AddInnerCommands(page, commandLine, table);
  }
  AddExitStatus(page);
  AddEnvironment(page);
  AddExamples(page, commandLine, table);
  AddSeeAlso(page, table);
  return page.Page();
}

}  // namespace tool
