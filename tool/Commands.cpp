// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include "compare/CompareCommand.h"
#include "plot/PlotCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) {
  AddPlotCommand(commandLine);
  AddCompareCommand(commandLine);
}

}  // namespace tool
