// SPDX-License-Identifier: Apache-2.0
#include "check/CheckCommand.h"

#include <memory>

#include "base/Interrupt.h"
#include "check/FileCheck.h"

namespace tool {
namespace {

struct S_Options {
  std::vector<std::string> files;
  bool bJson = false;
  bool bQuiet = false;
};

// Files that cannot be read are failures, and what is found in the others is what was asked for.
void Tell(const S_FileCheck& check, const S_Options& options, C_Console& console) {
  if (check.eVerdict == tagVerdict::UNREADABLE) {
    console.Flush();
    console.Complain(CheckText(check));
  } else if (!options.bJson) {
    console.Print(CheckText(check) + '\n');
  }
}

int Run(const S_Options& options, C_Console& console) {
  C_Json array = C_Json::array();
  int nExit = 0;
  for (const std::string& strPath : options.files) {
    ThrowIfInterrupted();
    const S_FileCheck check = CheckFile(strPath);
    const bool bGood = check.eVerdict == tagVerdict::GOOD;
    if (!bGood) nExit = 1;
    if (bGood && options.bQuiet) continue;
    Tell(check, options, console);
    array.push_back(CheckJson(check));
  }
  if (options.bJson) console.Print(JsonText(array));
  return nExit;
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
      "no checks of its own, so what is wrong in it cannot be seen.",
      {{"voxtool check archive/*.kst", "check some files"},
       {"voxtool check -q archive/*.kst", "name only those that are not good"},
       {"voxtool check --json speech.kst | jq '.[0].damaged_frames'",
        "count the damaged frames of a file"}},
      [options](C_Console& console) { return Run(*options, console); }};
}

}  // namespace

void AddCheckCommand(C_CommandLine& commandLine) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(Command(options));
  command.add_option("FILE", options->files, "the files; \"-\" is standard input")
      ->type_name("FILE")
      ->required();
  command.add_flag("--json", options->bJson, "print an array with an object for each file");
  command.add_flag("-q,--quiet", options->bQuiet, "leave good files out");
}

}  // namespace tool
