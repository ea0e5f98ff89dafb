// SPDX-License-Identifier: Apache-2.0
//
// For commands that make a file of each of many files.
#pragma once

#include <functional>
#include <string>

#include "base/Console.h"
#include "batch/BatchOptions.h"
#include "batch/FileJobs.h"
#include "batch/FileReport.h"
#include "batch/FileWatch.h"
#include "batch/Targets.h"

namespace tool {

struct S_MakeRule {
  const S_BatchOptions& files;
  // -o is for a single file; below the folder of -d, each has its own.
  const S_TargetOptions& targets;
  std::string strExtension;  // of targets below a folder
  std::string strDone;       // what the summary calls files: "converted"
};

// Makes the target of one file, in a thread among others. What it throws is a failure of the file.
using PFN_MakeFile = std::function<S_FileResult(const S_FileJob& job, const S_TargetRule& rule,
                                                const C_FileReport& report, C_FileWatch& watch)>;

// Returns the exit code of the command: 1 when a file has failed. Throws C_UsageFailure when the
// options do not say what to write, or when the files cannot have these targets, and what
// RunOnFiles throws.
int MakeFiles(const S_MakeRule& make, const PFN_MakeFile& fnMake, C_Console& console);

}  // namespace tool
