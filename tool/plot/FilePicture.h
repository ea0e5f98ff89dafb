// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "base/Console.h"
#include "batch/FileJobs.h"
#include "batch/FileReport.h"
#include "batch/FileWatch.h"
#include "batch/Targets.h"
#include "plot/PlotOptions.h"

namespace tool {

// Draws the sound of a file into its target, and says what is wrong with the sound. Throws what
// PictureOf and C_ReplacedFile throw.
S_FileResult DrawFile(const S_FileJob& job, const S_PlotOptions& options, const S_TargetRule& rule,
                      const C_FileReport& report, C_FileWatch& watch, C_Console& console);

}  // namespace tool
