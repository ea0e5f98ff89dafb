// SPDX-License-Identifier: Apache-2.0
//
// "voxtool manifest failed" and "voxtool manifest damaged".
#include <functional>
#include <memory>
#include <string>

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

// Rows of source, target and reason, and of whatever else the record of a row takes.
struct S_List {
  const char* pszSelect;
  std::function<void(const C_Statement& row, C_Json& record)> fnFillIn;
};

C_Json RecordOf(const C_Statement& row, const S_List& list) {
  C_Json record = {{"source", row.Text(0)}, {"target", row.Text(1)}, {"reason", row.Text(2)}};
  if (list.fnFillIn) list.fnFillIn(row, record);
  return record;
}

// One after another, because there may be many.
void PrintJson(C_Statement& rows, const S_List& list, C_Console& console) {
  bool bFirst = true;
  while (rows.Next()) {
    ThrowIfInterrupted();
    std::string strLine = JsonLine(RecordOf(rows, list));
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

int Run(const S_Options& options, const S_List& list, C_Console& console) {
  C_Manifest manifest(options.strManifest, tagManifestUse::MANIFEST_EXISTING);
  C_Statement rows(manifest.Database(), list.pszSelect);
  options.bJson ? PrintJson(rows, list, console) : PrintText(rows, console);
  return 0;
}

void AddList(C_CommandLine& commandLine, CLI::App& manifest, S_Command command, S_List list) {
  const auto options = std::make_shared<S_Options>();
  command.fnRun = [options, list = std::move(list)](C_Console& console) {
    return Run(*options, list, console);
  };
  CLI::App& table = commandLine.Add(manifest, std::move(command));
  AddOption(table, "DB", options->strManifest, "the manifest").TypeName("FILE").Required();
  AddFlag(table, "--json", options->bJson, "print an array with an object for each file");
}

}  // namespace

void AddFailedCommand(C_CommandLine& commandLine, CLI::App& manifest) {
  AddList(commandLine, manifest,
          {"failed",
           "list the files that have failed, and why",
           "Prints a line for each file of a manifest that could not be converted, in the order of "
           "their names. \"voxtool convert --manifest DB --retry-failed\" tries them again; files "
           "that have changed since are tried again anyway.",
           {{"voxtool manifest failed archive.db", "list what has failed"},
            {"voxtool manifest failed --json archive.db | jq -r '.[].source'",
             "list only the names of the files"}},
           {}},
          {"SELECT source, target, reason FROM main.files WHERE state = 3 ORDER BY source", {}});
}

void AddDamagedCommand(C_CommandLine& commandLine, CLI::App& manifest) {
  AddList(commandLine, manifest,
          {"damaged",
           "list the files that are done, but damaged or cut",
           "Prints a line for each file of a manifest that was converted although some of its "
           "frames are damaged, or its end is missing, in the order of their names. What was there "
           "of them is in their targets.",
           {{"voxtool manifest damaged archive.db", "list what has lost something"},
            {"voxtool manifest damaged --json archive.db | jq -r '.[] | select(.cut) | .source'",
             "list only the names of files that are cut"}},
           {}},
          {"SELECT source, target, reason, frames, damaged, cut FROM main.files "
           "WHERE state = 2 AND (damaged <> 0 OR cut <> 0) ORDER BY source",
           [](const C_Statement& row, C_Json& record) {
             record["frames"] = row.Integer(3);
             record["damaged_frames"] = row.Integer(4);
             record["cut"] = row.Integer(5) != 0;
           }});
}

}  // namespace tool
