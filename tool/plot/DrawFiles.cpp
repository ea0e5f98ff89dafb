// SPDX-License-Identifier: Apache-2.0
#include "plot/DrawFiles.h"

#include "base/Failure.h"
#include "batch/MakeFiles.h"
#include "plot/FilePicture.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

// The bytes of a PNG file mean other things to a terminal.
void RefuseTerminal(const S_PlotArguments& arguments, const S_PlotOptions& options,
                    const C_Console& console) {
  if (arguments.target.strFile != kStandardStream || options.bSvg || !console.ShowsOutput()) return;
  throw C_UsageFailure("standard output", "is a terminal, which shows no pictures",
                       "send it to a file or another program");
}

}  // namespace

int DrawFiles(const S_PlotArguments& arguments, C_Console& console) {
  const S_PlotOptions options = PlotOptionsOf(arguments);
  RefuseTerminal(arguments, options, console);
  return MakeFiles(
      {arguments.batch, arguments.target, options.bSvg ? ".svg" : ".png", "drawn"},
      [&](const S_FileJob& job, const S_TargetRule& rule, const C_FileReport& report,
          C_FileWatch& watch) {
        S_FileResult result = DrawFile(job, options, rule, report, watch, console);
        if (result.eState == tagFileState::FILE_DONE) report.Detail(job.strTarget + ": drawn");
        return result;
      },
      console);
}

}  // namespace tool
