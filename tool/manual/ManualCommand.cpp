// SPDX-License-Identifier: Apache-2.0
#include "manual/ManualCommand.h"

#include <cerrno>
#include <fstream>
#include <memory>

#include "base/Failure.h"
#include "options/ManualPage.h"
#include "options/OptionTable.h"
#include "options/Suggestion.h"

namespace tool {
namespace {

struct S_ManualOptions {
  std::string strCommand;
  std::string strFolder;
  bool bAll = false;
};

const CLI::App& PageOf(const C_CommandLine& commandLine, const std::string& strCommand) {
  if (strCommand.empty()) return commandLine.Table();
  std::vector<std::string> names;
  for (const CLI::App* pCommand : CommandsIn(commandLine.Table())) {
    if (pCommand->get_name() == strCommand) return *pCommand;
    names.push_back(pCommand->get_name());
  }
  const auto nearest = Nearest(strCommand, names);
  throw C_UsageFailure("voxtool manual: " + strCommand + ": no such command" +
                       (nearest ? "; did you mean \"" + *nearest + "\"?" : ""));
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
    console.Print(ManualPage(commandLine, PageOf(commandLine, options.strCommand)));
    return 0;
  }
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
      "Prints the page as man(1) takes it. Without a command, the page is that of voxtool itself.",
      {{"voxtool manual play | man -l -", "read the page of \"voxtool play\""},
       {"voxtool manual --all -d pages", "write all pages into a folder"}},
      [&commandLine, pOptions](C_Console& console) {
        return RunManual(commandLine, *pOptions, console);
      },
  });
  auto* const pCommand = table.add_option("COMMAND", pOptions->strCommand, "whose page it is");
  auto* const pAll = table.add_flag("--all", pOptions->bAll, "write the pages of all commands");
  auto* const pFolder = table.add_option("-d,--dir", pOptions->strFolder, "where to write them");
  pFolder->type_name("DIR")->needs(pAll);
  pAll->needs(pFolder)->excludes(pCommand);
}

}  // namespace tool
