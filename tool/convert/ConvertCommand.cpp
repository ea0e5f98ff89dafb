// SPDX-License-Identifier: Apache-2.0
#include "convert/ConvertCommand.h"

#include <sys/stat.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>

#include "base/Failure.h"
#include "batch/ListedJobs.h"
#include "batch/RunOnFiles.h"
#include "convert/Conversion.h"
#include "convert/ConvertArguments.h"
#include "convert/ManifestRun.h"
#include "sound/SoundInput.h"
#include "sound/StandardOutput.h"

namespace tool {
namespace {

constexpr const char* kDescription =
    "Turns sounds of any kind into Kestrel, Heron, WAV, VEMD or VEF. Reads all formats of voxplay, "
    "and FLAC, Ogg, Opus, MP3, AIFF and others. Samples stay exact where nothing has to be "
    "changed; "
    "channels and rates that a codec cannot have are converted.\n\n"
    "Events, cue points, labels, loops and everything else beside the samples is kept where the "
    "target can hold it. One line says what it cannot.\n\n"
    "A target appears when it is whole, and never replaces a file unless -f is given. Files below "
    "a "
    "folder, and relative names in a list, keep their folders below that of -d.\n\n"
    "With --manifest, a file keeps what is done. The same command, or one without files, goes on "
    "where an earlier one has ended, however it did, and any number of them may run at a time. "
    "Files that have changed are converted again.";

bool IsFolder(const std::string& strPath) {
  struct stat status {};
  return stat(strPath.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

bool IsMany(const S_ConvertArguments& arguments) { return !arguments.target.strFolder.empty(); }

void CheckOneTarget(const S_ConvertArguments& arguments, const C_FileList& list) {
  const std::string& strFile = arguments.target.strFile;
  if (strFile.empty()) throw C_UsageFailure("voxtool: -o FILE or -d DIR has to say what to write");
  if (strFile == kStandardStream) RefuseTerminal();
  if (IsFolder(strFile)) throw C_UsageFailure(strFile, "is a folder", "-d writes into it");
  if (list.Files().size() + list.Failures() > 1) {
    throw C_UsageFailure("voxtool: several files need -d DIR in place of -o");
  }
}

void CheckManyTargets(const C_FileList& list, const PFN_TargetOf& fnTargetOf) {
  const auto& files = list.Files();
  if (std::ranges::find(files, kStandardStream, &S_ListedFile::strPath) != files.end()) {
    throw C_UsageFailure("voxtool: standard input has no name, so it needs -o in place of -d");
  }
  RefuseClashes(files, fnTargetOf);
}

PFN_TargetOf TargetsOf(const S_ConvertArguments& arguments) {
  if (!IsMany(arguments)) {
    return [strFile = arguments.target.strFile](const S_ListedFile&) { return strFile; };
  }
  const std::string strExtension(ExtensionOfFormat(FormatNameOf(arguments)));
  return [strFolder = arguments.target.strFolder, strExtension](const S_ListedFile& file) {
    return TargetBelow(strFolder, file, strExtension);
  };
}

S_RunOptions RunOptionsOf(const S_ConvertArguments& arguments) {
  S_RunOptions run;
  run.nThreads = arguments.batch.nThreads;
  run.eTalk = arguments.batch.Talk();
  run.bSummary = IsMany(arguments) || run.eTalk == tagTalk::TALK_ALL;
  run.strDone = "converted";
  return run;
}

int RunConvert(const S_ConvertArguments& arguments, C_Console& console) {
  if (!arguments.strManifest.empty()) return ConvertByManifest(arguments, console);
  const S_ConvertOptions options = ConvertOptionsOf(arguments);
  C_FileList list = arguments.batch.List(console, arguments.target.strFolder);
  const PFN_TargetOf fnTargetOf = TargetsOf(arguments);
  IsMany(arguments) ? CheckManyTargets(list, fnTargetOf) : CheckOneTarget(arguments, list);
  C_ListedJobs jobs(list.TakeFiles(), fnTargetOf);
  const S_RunOptions run = RunOptionsOf(arguments);
  const C_FileReport report(console, run.eTalk);
  const S_TargetRule rule = arguments.target.Rule();
  const S_BatchState state = RunOnFiles(
      jobs, run,
      [&](const S_FileJob& job, C_FileWatch& watch) {
        return ConvertFile(job, options, rule, report, watch);
      },
      console);
  return state.qwFailed == 0 && list.Failures() == 0 ? 0 : 1;
}

}  // namespace

void AddConvertCommand(C_CommandLine& commandLine) {
  const auto arguments = std::make_shared<S_ConvertArguments>();
  S_Command command;
  command.strName = "convert";
  command.strSummary = "convert sounds to Kestrel, Heron, WAV, VEMD or VEF";
  command.strDescription = kDescription;
  command.examples = {
      {"voxtool convert speech.flac -o speech.kst",
       "makes a Kestrel file of 16 kHz and one channel"},
      {"voxtool convert -r archive -d new --to heron4",
       "converts all sounds in a folder and below it, with all processors"},
      {"find . -name '*.kst' -print0 | voxtool convert --files-from - -0 -d wav --to wav",
       "converts the files that another program finds"},
      {"voxtool convert message.vef --read stream -o - --to wav | aplay",
       "sends a sound to another program"},
      {"voxtool convert --manifest archive.db -r archive -d new --to kestrel",
       "converts a large archive so that it can be interrupted and continued"},
  };
  command.fnRun = [arguments](C_Console& console) { return RunConvert(*arguments, console); };
  AddConvertArguments(commandLine.Add(std::move(command)), *arguments);
}

}  // namespace tool
