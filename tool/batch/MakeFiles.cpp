// SPDX-License-Identifier: Apache-2.0
#include "batch/MakeFiles.h"

#include <sys/stat.h>

#include <algorithm>
#include <string>

#include "base/Failure.h"
#include "batch/FileList.h"
#include "batch/ListedJobs.h"
#include "batch/RunOnFiles.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

bool IsFolder(const std::string& strPath) {
  struct stat status {};
  return stat(strPath.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void CheckOneTarget(const std::string& strFile, const C_FileList& list) {
  if (strFile.empty()) throw C_UsageFailure("-o FILE or -d DIR has to say what to write");
  if (IsFolder(strFile)) throw C_UsageFailure(strFile, "is a folder", "-d writes into it");
  if (list.Files().size() + list.Failures() > 1) {
    throw C_UsageFailure("several files need -d DIR in place of -o");
  }
}

void CheckManyTargets(const C_FileList& list, const PFN_TargetOf& fnTargetOf) {
  const auto& files = list.Files();
  if (std::ranges::find(files, kStandardStream, &S_ListedFile::strPath) != files.end()) {
    throw C_UsageFailure("standard input has no name, so it needs -o in place of -d");
  }
  RefuseClashes(files, fnTargetOf);
}

PFN_TargetOf TargetsOf(const S_MakeRule& make, const C_FileList& list) {
  if (!make.targets.IsMany()) {
    CheckOneTarget(make.targets.strFile, list);
    return [strFile = make.targets.strFile](const S_ListedFile&) { return strFile; };
  }
  PFN_TargetOf fnTargetOf = TargetsBelow(make.targets.strFolder, make.strExtension, list.Files());
  CheckManyTargets(list, fnTargetOf);
  return fnTargetOf;
}

S_RunOptions RunOptionsOf(const S_MakeRule& make) {
  S_RunOptions run;
  run.nThreads = make.files.nThreads;
  run.eTalk = make.files.Talk();
  run.bSummary = make.targets.IsMany() || run.eTalk == tagTalk::TALK_ALL;
  run.strDone = make.strDone;
  return run;
}

}  // namespace

int MakeFiles(const S_MakeRule& make, const PFN_MakeFile& fnMake, C_Console& console) {
  C_FileList list = make.files.List(console, make.targets.strFolder);
  list.DropRepeated();
  const PFN_TargetOf fnTargetOf = TargetsOf(make, list);
  C_ListedJobs jobs(list.TakeFiles(), fnTargetOf);
  const S_RunOptions run = RunOptionsOf(make);
  const C_FileReport report(console, run.eTalk);
  const S_TargetRule rule = make.targets.Rule();
  const S_BatchState state = RunOnFiles(
      jobs, run,
      [&](const S_FileJob& job, C_FileWatch& watch) { return fnMake(job, rule, report, watch); },
      console);
  return state.qwFailed == 0 && list.Failures() == 0 ? 0 : 1;
}

}  // namespace tool
