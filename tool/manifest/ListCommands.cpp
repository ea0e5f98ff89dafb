// SPDX-License-Identifier: Apache-2.0
#include <memory>

#include "base/Interrupt.h"
#include "base/JsonText.h"
#include "base/Utf8.h"
#include "manifest/Manifest.h"
#include "manifest/Subcommands.h"

namespace tool {
namespace {

struct S_Options {
  std::string strManifest;
  bool bJson = false;
};

// One after another, because there may be many.
void PrintJson(C_Statement& rows, C_Console& console) {
  bool bFirst = true;
  while (rows.Next()) {
    ThrowIfInterrupted();
    std::string strLine =
        JsonLine({{"source", rows.Text(0)}, {"target", rows.Text(1)}, {"reason", rows.Text(2)}});
    while (strLine.ends_with('\n')) strLine.pop_back();
    console.Print(bFirst ? "[\n  " : ",\n  ");
    console.Print(strLine);
    bFirst = false;
  }
  console.Print(bFirst ? "[]\n" : "\n]\n");
}

void PrintText(C_Statement& rows, C_Console& console) {
  while (rows.Next()) {
    ThrowIfInterrupted();
    console.Print(Printable(rows.Text(2)) + '\n');
  }
}

int Run(const S_Options& options, C_Console& console) {
  C_Manifest manifest(options.strManifest, tagManifestUse::MANIFEST_EXISTING);
  C_Statement rows(manifest.Database(),
                   "SELECT source, target, reason FROM main.files WHERE state = 3 ORDER BY source");
  options.bJson ? PrintJson(rows, console) : PrintText(rows, console);
  return 0;
}

}  // namespace

void AddFailedCommand(C_CommandLine& commandLine, CLI::App& manifest) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(
      manifest,
      {"failed",
       "list the files that have failed, and why",
       "Prints a line for each file of a manifest that could not be converted, in the order of "
       "their names. \"voxtool convert --manifest DB --retry-failed\" tries them again; files that "
       "have changed since are tried again anyway.",
       {{"voxtool manifest failed archive.db", "list what has failed"},
        {"voxtool manifest failed --json archive.db | jq -r '.[].source'",
         "list only the names of the files"}},
       [options](C_Console& console) { return Run(*options, console); }});
  command.add_option("DB", options->strManifest, "the manifest")->type_name("FILE")->required();
  command.add_flag("--json", options->bJson, "print an array with an object for each file");
}

}  // namespace tool
