// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/Console.h"
#include "batch/FileJobs.h"
#include "batch/FileWatch.h"
#include "batch/Targets.h"
#include "plot/PlotOptions.h"

namespace tool {

// Draws the sound of a file into its target. Throws what PictureOf and C_ReplacedFile throw.
S_FileResult DrawFile(const S_FileJob& job, const S_PlotOptions& options, const S_TargetRule& rule,
                      C_FileWatch& watch, C_Console& console);

}  // namespace tool
