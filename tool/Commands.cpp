// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include "compare/CompareCommand.h"
#include "plot/PlotCommand.h"
#include "check/CheckCommand.h"
#include "header/HeaderCommand.h"
#include "info/InfoCommand.h"
#include "tags/TagsCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) {
  AddPlotCommand(commandLine);
  AddCompareCommand(commandLine);
  AddInfoCommand(commandLine);
  AddCheckCommand(commandLine);
  AddHeaderCommand(commandLine);
  AddTagsCommand(commandLine);
}

}  // namespace tool
