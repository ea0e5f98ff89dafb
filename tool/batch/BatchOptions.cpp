// SPDX-License-Identifier: Apache-2.0
#include "batch/BatchOptions.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "options/WholeNumber.h"

namespace tool {
namespace {

constexpr unsigned kMostThreads = 1024;
constexpr std::string_view kStandardInput = "-";

}  // namespace

tagTalk S_BatchOptions::Talk() const noexcept {
  if (nQuiet > 1) return tagTalk::TALK_ERRORS;
  if (nQuiet > 0) return tagTalk::TALK_RESULTS;
  return bVerbose ? tagTalk::TALK_ALL : tagTalk::TALK_USUAL;
}

C_FileList S_BatchOptions::List(C_Console& console, const std::string& strTargets,
                                PFN_TakeFile fnTake) const {
  const auto nInputs =
      std::ranges::count(operands, kStandardInput) + (strList == kStandardInput ? 1 : 0);
  if (nInputs > 1) throw C_UsageFailure("standard input: it can be named only once");
  C_FileList list(bFolders, console, std::move(fnTake));
  list.LeaveFolderOut(strTargets);
  if (bVerbose) list.NameLeftOut();
  for (const std::string& strOperand : operands) list.AddOperand(strOperand);
  if (!strList.empty()) list.AddListed(strList, bZeros);
  if (list.CountLeftOut() != 0 && Talk() >= tagTalk::TALK_RESULTS) {
    console.Complain(CountedText(list.CountLeftOut(), "other file") + " left out");
  }
  return list;
}

void AddFileOptions(CLI::App& command, S_BatchOptions& options, const std::string& strOperand,
                    tagNames eNames) {
  AddOption(command, strOperand, options.operands,
            "files, folders with -r, or - for standard input")
      .TypeName("FILE");
  AddFlag(command, "-r,--recursive", options.bFolders, "take the sounds in folders and below them");
  const C_Option list = AddOption(command, "--files-from", options.strList,
                                  "read more names from a file, or - for input")
                            .TypeName("FILE");
  AddFlag(command, "-0,--null", options.bZeros, "names in that file end with a zero").Needs(list);
  if (eNames == tagNames::NAMES_CHECKED_LATER) return;
  CheckAtEnd(command,
             [&options]() -> std::string { return options.AreNamed() ? "" : kNoFileNamed; });
}

void AddThreadsOption(CLI::App& command, S_BatchOptions& options) {
  AddOption(command, "-j,--jobs", options.nThreads,
            "files at a time; one per processor if not given")
      .TypeName("N")
      .Check(WholeNumber(1, kMostThreads));
}

C_Option AddQuietOption(CLI::App& command, S_BatchOptions& options, const std::string& strMeaning) {
  return AddFlag(command, "-q,--quiet", options.nQuiet, strMeaning);
}

void AddVerboseOption(CLI::App& command, S_BatchOptions& options, const std::string& strMeaning,
                      const C_Option& quiet) {
  AddFlag(command, "-v,--verbose", options.bVerbose, strMeaning).Excludes(quiet);
}

S_TargetRule S_TargetOptions::Rule() const noexcept {
  S_TargetRule rule;
  if (bReplace) rule.eExisting = tagExisting::EXISTING_REPLACED;
  if (bSkip) rule.eExisting = tagExisting::EXISTING_SKIPPED;
  rule.bMakeFolders = !strFolder.empty();
  return rule;
}

void AddTargetOptions(CLI::App& command, S_TargetOptions& options) {
  const C_Option file = AddOption(command, "-o,--output", options.strFile,
                                  "the file to write, or - for standard output")
                            .TypeName("FILE");
  AddOption(command, "-d,--dir", options.strFolder, "the folder for the files to write")
      .TypeName("DIR")
      .Excludes(file);
  const C_Option replace =
      AddFlag(command, "-f,--force", options.bReplace, "replace files that exist");
  AddFlag(command, "--skip-existing", options.bSkip, "leave out what has a target already")
      .Excludes(replace);
}

}  // namespace tool
