// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "options/CommandLine.h"
#include "plot/PlotCommand.h"

namespace tool {

// Adds all commands of the program; fnDraw is what plot does.
void AddCommands(C_CommandLine& commandLine, const PFN_Draw& fnDraw);

// Adds what a command line needs whose first word is strWord: the command of that name alone when
// it is enough, otherwise all. Making the whole table is a third of what starting the program
// takes.
void AddCommandsFor(const std::string& strWord, C_CommandLine& commandLine, const PFN_Draw& fnDraw);

}  // namespace tool
