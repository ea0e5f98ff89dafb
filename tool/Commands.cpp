// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include <utility>

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

void AddCommands(C_CommandLine& commandLine, PFN_Draw fnDraw) {
  AddInfoCommand(commandLine);
  AddPlayCommand(commandLine);
  AddConvertCommand(commandLine);
  AddManifestCommand(commandLine);
  AddTagsCommand(commandLine);
  AddHeaderCommand(commandLine);
  AddCheckCommand(commandLine);
  AddPlotCommand(commandLine, std::move(fnDraw));
  AddCompareCommand(commandLine);
  AddCompletionCommand(commandLine);
  AddManualCommand(commandLine);
}

}  // namespace tool
