// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include "convert/ConvertCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) { AddConvertCommand(commandLine); }
#include "check/CheckCommand.h"
#include "compare/CompareCommand.h"
#include "header/HeaderCommand.h"
#include "info/InfoCommand.h"
#include "plot/PlotCommand.h"
#include "tags/TagsCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) {
  AddInfoCommand(commandLine);
  AddCheckCommand(commandLine);
  AddHeaderCommand(commandLine);
  AddTagsCommand(commandLine);
  AddPlotCommand(commandLine);
  AddCompareCommand(commandLine);
#include "completion/CompletionCommand.h"
#include "manual/ManualCommand.h"
#include "play/PlayCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) {
  AddCompletionCommand(commandLine);
  AddPlayCommand(commandLine);
  AddManualCommand(commandLine);
}

}  // namespace tool
