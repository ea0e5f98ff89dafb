// SPDX-License-Identifier: Apache-2.0
#include "check/CheckCommand.h"

#include <memory>

#include "batch/BatchOptions.h"
#include "batch/PrintFiles.h"
#include "check/FileCheck.h"

namespace tool {
namespace {

struct S_Options {
  S_BatchOptions batch;
  bool bJson = false;
  bool bJsonLines = false;
};

bool IsForPrograms(const S_Options& options) { return options.bJson || options.bJsonLines; }

// Files that cannot be read are failures, and what is found in the others is what was asked for.
void Tell(const S_FileCheck& check, const S_Options& options, C_FileOutput& output) {
  if (check.eVerdict == tagVerdict::GOOD && options.batch.nQuiet > 0) return;
  if (options.bJson) output.Print(JsonElement(CheckJson(check)));
  if (options.bJsonLines) output.Print(JsonLine(CheckJson(check)));
  if (check.eVerdict == tagVerdict::UNREADABLE) {
    output.Complain(CheckText(check));
  } else if (!IsForPrograms(options)) {
    output.Print(CheckText(check) + '\n');
  }
}

S_FileResult ResultOf(const S_FileCheck& check) {
  S_FileResult result;
  if (check.eVerdict != tagVerdict::GOOD) result.eState = tagFileState::FILE_FAILED;
  result.dwRate = check.dwRate;
  result.qwFrames = check.qwFrames;
  return result;
}

int Run(const S_Options& options, C_Console& console) {
  S_PrintRule rule = options.bJson ? JsonArrayRule() : S_PrintRule();
  rule.strDone = "good";
  rule.strFailed = "not good";
  const PFN_PrintFile fnCheck = [&options](const std::string& strPath, C_FileOutput& output,
                                           C_FileWatch& watch) {
    const S_FileCheck check = CheckFile(strPath, watch);
    Tell(check, options, output);
    return ResultOf(check);
  };
  return PrintFiles(options.batch, rule, fnCheck, console);
}

S_Command Command(const std::shared_ptr<S_Options>& options) {
  return {
      "check",
      "decode files to their end and say whether they are whole",
      "Decodes every frame of each file, counts damaged frames, and compares what the file claims "
      "to hold with what is there. Of VEF files, the PCM and the stream beside it are both "
      "checked. A line for each file says what was found: good, damaged, cut (there is less than "
      "the file claims) or unknown.\n\n"
      "A frame is one sample of every channel. The exit code is 1 when a file is not good. PCM has "
      "no checks of its own, so what is wrong in it cannot be seen. Nor can it be seen whether the "
      "end is missing in files of AVR, IRCAM, MAT, PAF, PVF, SDS, WVE and XI, and in MPEG streams "
      "that do not tell their length.",
      {{"voxtool check archive/*.kst", "check some files"},
       {"voxtool check -r -q archive", "name those that are not good in a folder and below it"},
       {"voxtool check --json speech.kst | jq '.[0].damaged_frames'",
        "count the damaged frames of a file"}},
      [options](C_Console& console) { return Run(*options, console); }};
}

}  // namespace

void AddCheckCommand(C_CommandLine& commandLine) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(Command(options));
  AddFileOptions(command, options->batch, "FILE");
  const C_Option json = AddFlag(command, "--json", options->bJson, "print an array of objects");
  AddFlag(command, "--json-lines", options->bJsonLines, "print an object a line").Excludes(json);
  AddThreadsOption(command, options->batch);
  AddQuietOption(command, options->batch,
                 "leave good files and progress out; -qq: the summary, too");
}

}  // namespace tool
