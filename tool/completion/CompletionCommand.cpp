// SPDX-License-Identifier: Apache-2.0
#include "completion/CompletionCommand.h"

#include <map>
#include <memory>

#include "options/Completion.h"

namespace tool {
namespace {

using PFN_Completion = std::string (*)(const CLI::App& table);

const std::map<std::string, PFN_Completion>& Shells() {
  static const std::map<std::string, PFN_Completion> shells = {
      {"bash", &BashCompletion}, {"fish", &FishCompletion}, {"zsh", &ZshCompletion}};
  return shells;
}

}  // namespace

void AddCompletionCommand(C_CommandLine& commandLine) {
  const auto pstrShell = std::make_shared<std::string>();
  CLI::App& table = commandLine.Add({
      "completion",
      "complete commands and options in shells",
      "Prints a script for the shell. The packages of voxtool install these scripts where the "
      "shells look for them, so this is for other installations.",
      {{"voxtool completion bash >~/.local/share/bash-completion/completions/voxtool",
        "complete in bash from now on"},
       {"voxtool completion fish >~/.config/fish/completions/voxtool.fish",
        "complete in fish from now on"}},
      [&commandLine, pstrShell](C_Console& console) {
        console.Print(Shells().at(*pstrShell)(commandLine.Table()));
        return 0;
      },
  });
  std::vector<std::string> names;
  for (const auto& [strName, pfnCompletion] : Shells()) names.push_back(strName);
  AddOption(table, "SHELL", *pstrShell, "the shell").Required().OneOf(names);
}

}  // namespace tool
