// SPDX-License-Identifier: Apache-2.0
//
// "tags list" and "tags export", which show the same to people and to programs.
#include <memory>
#include <span>

#include "base/ReplacedFile.h"
#include "tags/MarkExport.h"
#include "tags/Subcommands.h"

namespace tool {
namespace {

struct S_Options {
  std::vector<std::string> files;
  std::string strOutput;
  bool bJson = false;
  bool bCsv = false;
  bool bLabels = false;
  bool bForce = false;
};

tagMarkForm FormOf(const S_Options& options, tagMarkForm eUsual) {
  if (options.bJson) return tagMarkForm::JSON;
  if (options.bCsv) return tagMarkForm::CSV;
  return options.bLabels ? tagMarkForm::LABELS : eUsual;
}

int List(const S_Options& options, C_Console& console) {
  const S_MarkExport list =
      ExportMarks(options.files, FormOf(options, tagMarkForm::TABLE), console);
  console.Print(list.strText);
  return list.nExit;
}

// A file with only some of what was asked for does not appear.
int Export(const S_Options& options, C_Console& console) {
  const S_MarkExport marks = ExportMarks(options.files, FormOf(options, tagMarkForm::CSV), console);
  if (options.strOutput.empty() || options.strOutput == "-") {
    console.Print(marks.strText);
  } else if (marks.nExit == 0) {
    C_ReplacedFile file(options.strOutput, options.bForce);
    file.Write(std::as_bytes(std::span(marks.strText)));
    file.TakePlace();
  }
  return marks.nExit;
}

void AddOptions(CLI::App& command, S_Options& options) {
  command.add_option("FILE", options.files, "the files; \"-\" is standard input")
      ->type_name("FILE")
      ->required();
  auto* const pJson =
      command.add_flag("--json", options.bJson, "an array with an object for each file");
  auto* const pCsv = command.add_flag("--csv", options.bCsv, "comma-separated values");
  auto* const pLabels =
      command.add_flag("--labels", options.bLabels, "a label track, as sound editors have it");
  pJson->excludes(pCsv)->excludes(pLabels);
  pCsv->excludes(pLabels);
}

}  // namespace

void AddListCommand(C_CommandLine& commandLine, CLI::App& tags) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(
      tags,
      {"list",
       "show the marks of files",
       "Shows all marks in the order of their places. The numbers are those that \"tags remove\" "
       "takes. Marks that belong to a cue point which does not exist have no place and come last.",
       {{"voxtool tags list talk.wav", "show all marks of a file"},
        {"voxtool tags list --json talk.wav | jq '.[0].marks[].start'", "list their frames"}},
       [options](C_Console& console) { return List(*options, console); }});
  AddOptions(command, *options);
}

void AddExportCommand(C_CommandLine& commandLine, CLI::App& tags) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(
      tags,
      {"export",
       "write the marks of files for other programs",
       "Writes all marks as comma-separated values, or in the form that is asked for. \"tags "
       "import\" "
       "reads each of these forms back. Values and JSON hold all that marks have. A label track "
       "holds "
       "places and texts: ids, and what is rare, do not come back from it. Texts that are no UTF-8 "
       "are written as what they are in Windows-1252, with their bytes beside them (\"hex\").",
       {{"voxtool tags export talk.wav -o talk.csv", "write a table"},
        {"voxtool tags export talk.wav --labels -o talk.txt", "write a label track"},
        {"voxtool tags export *.wav --json", "print the marks of many files"}},
       [options](C_Console& console) { return Export(*options, console); }});
  AddOptions(command, *options);
  command.add_option("-o,--output", options->strOutput, "the file; standard output without it")
      ->type_name("FILE");
  command.add_flag("-f,--force", options->bForce, "replace an existing output");
}

}  // namespace tool
