// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include <algorithm>
#include <functional>
#include <vector>

#include "check/CheckCommand.h"
#include "compare/CompareCommand.h"
#include "completion/CompletionCommand.h"
#include "convert/ConvertCommand.h"
#include "header/HeaderCommand.h"
#include "info/InfoCommand.h"
#include "manifest/ManifestCommand.h"
#include "manual/ManualCommand.h"
#include "play/PlayCommand.h"
#include "tags/TagsCommand.h"

namespace tool {
namespace {

struct S_Entry {
  std::string strName;
  std::function<void(C_CommandLine&)> fnAdd;
  // Whether the command writes about the others.
  bool bOfOthers = false;
};

std::vector<S_Entry> Entries(const PFN_Draw& fnDraw) {
  return {{"info", AddInfoCommand},
          {"play", AddPlayCommand},
          {"convert", AddConvertCommand},
          {"manifest", AddManifestCommand},
          {"tags", AddTagsCommand},
          {"header", AddHeaderCommand},
          {"check", AddCheckCommand},
          {"plot", [fnDraw](C_CommandLine& commandLine) { AddPlotCommand(commandLine, fnDraw); }},
          {"compare", AddCompareCommand},
          {"completion", AddCompletionCommand, true},
          {"manual", AddManualCommand, true}};
}

}  // namespace

void AddCommands(C_CommandLine& commandLine, const PFN_Draw& fnDraw) {
  for (const S_Entry& entry : Entries(fnDraw)) entry.fnAdd(commandLine);
}

void AddCommandsFor(const std::string& strWord, C_CommandLine& commandLine,
                    const PFN_Draw& fnDraw) {
  const std::vector<S_Entry> entries = Entries(fnDraw);
  const auto found = std::ranges::find(entries, strWord, &S_Entry::strName);
  if (found == entries.end() || found->bOfOthers) return AddCommands(commandLine, fnDraw);
  found->fnAdd(commandLine);
}

}  // namespace tool
