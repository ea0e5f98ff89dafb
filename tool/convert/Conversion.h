// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "batch/FileJobs.h"
#include "batch/FileReport.h"
#include "batch/FileWatch.h"
#include "batch/Targets.h"
#include "convert/ConvertOptions.h"

namespace tool {

// Converts one file. The target appears whole, or not at all. Throws C_Failure, C_Interrupted or
// voxplay::Error.
S_FileResult ConvertFile(const S_FileJob& job, const S_ConvertOptions& options, S_TargetRule rule,
                         const C_FileReport& report, C_FileWatch& watch);

}  // namespace tool
