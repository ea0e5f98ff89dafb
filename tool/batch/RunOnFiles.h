// SPDX-License-Identifier: Apache-2.0
//
// Works on many files, with several threads, and tells how it goes.
#pragma once

#include <functional>
#include <string>

#include "base/Console.h"
#include "batch/BatchState.h"
#include "batch/FileJobs.h"
#include "batch/FileReport.h"
#include "batch/FileWatch.h"

namespace tool {

struct S_RunOptions {
  unsigned nThreads = 0;  // 0 is one for each processor
  tagTalk eTalk = tagTalk::TALK_USUAL;
  bool bProgress = true;  // unless eTalk says less
  bool bSummary = true;   // the same
  // What the summary calls files: "converted", "failed".
  std::string strDone = "done";
  std::string strFailed = "failed";
};

// Works on one file, in a thread among others, with objects of its own. What it throws is a failure
// of the file, as far as FailureOf says so, and is complained about. FILE_FAILED is one that it has
// told of itself. It need not call the watch, but a long file then looks like one that stands
// still.
using PFN_OnFile = std::function<S_FileResult(const S_FileJob& job, C_FileWatch& watch)>;

// Complains of files that fail, and goes on. Throws C_Interrupted when the user has interrupted it,
// after all threads have ended.
S_BatchState RunOnFiles(I_FileJobs& jobs, const S_RunOptions& options, const PFN_OnFile& fnOnFile,
                        C_Console& console);

// How many processors this process may use.
[[nodiscard]] unsigned Processors();

}  // namespace tool
