// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"
#include "plot/PlotCommand.h"

namespace tool {

// Adds all commands of the program; fnDraw is what plot does.
void AddCommands(C_CommandLine& commandLine, PFN_Draw fnDraw);

}  // namespace tool
