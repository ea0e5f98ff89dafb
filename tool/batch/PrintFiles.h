// SPDX-License-Identifier: Apache-2.0
//
// For commands that read many files and print something of each.
#pragma once

#include <functional>
#include <string>

#include "base/Console.h"
#include "batch/BatchOptions.h"
#include "batch/FileJobs.h"
#include "batch/FileOutput.h"
#include "batch/FileWatch.h"

namespace tool {

struct S_PrintRule {
  // What stands around that which is printed of files, and between two of them.
  std::string strBefore;
  std::string strBetween;
  std::string strAfter;
  // In place of all that, when nothing is printed.
  std::string strNothing;
  // How the summary calls files: "checked", "failed".
  std::string strDone = "read";
  std::string strFailed = "failed";
};

// The rule for an array of JSON, of which JsonElement makes the parts.
[[nodiscard]] S_PrintRule JsonArrayRule();

// Reads one file, in a thread among others, and says what is to be said. What it throws is
// complained about, as a failure of the file. So is FILE_FAILED, but it has complained itself.
using PFN_PrintFile = std::function<S_FileResult(const std::string& strPath, C_FileOutput& output,
                                                 C_FileWatch& watch)>;

// Reads the files that the options name, with as many threads as they say, and prints what is said
// of them in their order. What waits for its turn does not grow with their number. A line on
// standard error sums up all but a single file. Returns the exit code of the command: 1 when a file
// has failed. Throws what C_Console and RunOnFiles throw.
int PrintFiles(const S_BatchOptions& options, const S_PrintRule& rule, const PFN_PrintFile& fnPrint,
               C_Console& console);

}  // namespace tool
