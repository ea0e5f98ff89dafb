// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/Console.h"
#include "plot/PlotArguments.h"

namespace tool {

// Draws the sounds of a plot command. Returns its exit code; throws C_UsageFailure, and what
// MakeFiles throws.
int DrawFiles(const S_PlotArguments& arguments, C_Console& console);

}  // namespace tool
