// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

#include "base/Console.h"
#include "options/CommandLine.h"
#include "plot/PlotArguments.h"

namespace tool {

// Draws what the arguments say, and returns the exit code of the command.
using PFN_Draw = std::function<int(const S_PlotArguments& arguments, C_Console& console)>;

// `plot`: draws sounds.
void AddPlotCommand(C_CommandLine& commandLine, PFN_Draw fnDraw);

}  // namespace tool
