// SPDX-License-Identifier: Apache-2.0
#include "manual/ManualCommand.h"

#include <cerrno>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include "base/Failure.h"
#include "batch/Targets.h"
#include "options/ManualPage.h"
#include "options/OptionTable.h"
#include "options/Suggestion.h"

namespace tool {
namespace {

struct S_ManualOptions {
  std::vector<std::string> command;
  std::string strFolder;
  bool bAll = false;
};

// strBefore is what was named before: "tags ".
const CLI::App& CommandOf(const CLI::App& table, const std::string& strName,
                          const std::string& strBefore) {
  std::vector<std::string> names;
  for (const CLI::App* pCommand : CommandsIn(table)) {
    names.push_back(NameOf(*pCommand));
    if (names.back() == strName) return *pCommand;
  }
  const auto nearest = Nearest(strName, names);
  throw C_UsageFailure(strBefore + strName + ": no such command" +
                       (nearest ? "; did you mean \"" + *nearest + "\"?" : ""));
}

// Of "tags add": the page of a command in a command.
const CLI::App& PageOf(const CLI::App& program, const std::vector<std::string>& command) {
  const CLI::App* pTable = &program;
  std::string strBefore;
  for (const std::string& strName : command) {
    pTable = &CommandOf(*pTable, strName, strBefore);
    strBefore += strName + ' ';
  }
  return *pTable;
}

// As options name the values that they can have, which shells complete.
std::string NamesAsType(const CLI::App& program) {
  std::string strNames;
  for (const CLI::App* pCommand : CommandsIn(program)) {
    strNames += (strNames.empty() ? "" : ",") + NameOf(*pCommand);
  }
  return "COMMAND:{" + strNames + "}";
}

void WritePage(const C_CommandLine& commandLine, const CLI::App& table,
               const std::string& strFolder) {
  const std::string strPath = strFolder + "/" + ManualPageName(table) + ".1";
  std::ofstream file(strPath, std::ios::binary);
  file << ManualPage(commandLine, table);
  file.close();
  if (!file) throw C_Failure(strPath, "cannot be written", SystemReason(errno));
}

int RunManual(const C_CommandLine& commandLine, const S_ManualOptions& options,
              C_Console& console) {
  if (!options.bAll) {
    console.Print(ManualPage(commandLine, PageOf(commandLine.Table(), options.command)));
    return 0;
  }
  MakeFolder(options.strFolder);
  WritePage(commandLine, commandLine.Table(), options.strFolder);
  for (const CLI::App* pCommand : CommandsIn(commandLine.Table())) {
    WritePage(commandLine, *pCommand, options.strFolder);
  }
  return 0;
}

}  // namespace

void AddManualCommand(C_CommandLine& commandLine) {
  const auto pOptions = std::make_shared<S_ManualOptions>();
  CLI::App& table = commandLine.Add({
      "manual",
      "print the manual page of a command",
      "Prints the page as man(1) takes it. Without a command, the page is that of voxtool itself. "
      "The page of a command describes the commands in it as well, which also have pages of their "
      "own here.",
      {{"voxtool manual play | man -l -", "read the page of \"voxtool play\""},
       {"voxtool manual tags add | man -l -", "read about \"voxtool tags add\" alone"},
       {"voxtool manual --all -d pages", "write all pages into a folder"}},
      [&commandLine, pOptions](C_Console& console) {
        return RunManual(commandLine, *pOptions, console);
      },
  });
  const C_Option command = AddOption(table, "COMMAND", pOptions->command, "whose page it is");
  command.TypeName(NamesAsType(commandLine.Table()));
  const C_Option all = AddFlag(table, "--all", pOptions->bAll, "write the pages of all commands");
  const C_Option folder = AddOption(table, "-d,--dir", pOptions->strFolder, "where to write them");
  folder.TypeName("DIR").Needs(all);
  all.Needs(folder).Excludes(command);
}

}  // namespace tool
