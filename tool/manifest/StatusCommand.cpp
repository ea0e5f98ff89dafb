// SPDX-License-Identifier: Apache-2.0
#include <memory>

#include "base/EachFile.h"
#include "base/JsonText.h"
#include "base/TextTable.h"
#include "base/TimeText.h"
#include "base/Utf8.h"
#include "batch/DurationText.h"
#include "manifest/Manifest.h"
#include "manifest/Subcommands.h"

namespace tool {
namespace {

struct S_Options {
  std::vector<std::string> files;
  bool bJson = false;
};

// A file may be both.
std::string DamageText(const S_ManifestCounts& counts) {
  std::string strText;
  if (counts.qwDamaged != 0) strText = CountText(counts.qwDamaged) + " with damaged frames";
  if (counts.qwCut != 0) {
    strText += (strText.empty() ? "" : ", ") + CountText(counts.qwCut) + " cut";
  }
  return strText;
}

std::string StatusText(const std::string& strName, const S_ManifestCounts& counts) {
  C_TextTable table("lrl");
  const auto Add = [&](const char* pszState, std::uint64_t qwCount,
                       const std::string& strMore = {}) {
    if (qwCount != 0) table.Add({pszState, CountText(qwCount), strMore});
  };
  Add("planned", counts.qwPlanned);
  Add("claimed", counts.qwClaimed);
  Add("done", counts.qwDone, DamageText(counts));
  Add("skipped", counts.qwSkipped, "their targets existed");
  Add("failed", counts.qwFailed);
  return Printable(strName) + ": " + CountedText(counts.All(), "file") + ", " +
         DurationText(counts.dSeconds) + " of sound done\n" + table.Text(2);
}

C_Json StatusJson(const std::string& strName, const S_ManifestCounts& counts) {
  return {{"schema", kJsonSchema},       {"file", strName},
          {"files", counts.All()},       {"planned", counts.qwPlanned},
          {"claimed", counts.qwClaimed}, {"done", counts.qwDone},
          {"skipped", counts.qwSkipped}, {"failed", counts.qwFailed},
          {"damaged", counts.qwDamaged}, {"cut", counts.qwCut},
          {"seconds", counts.dSeconds},  {"bytes_left", counts.qwBytes}};
}

int Run(const S_Options& options, C_Console& console) {
  C_Json array = C_Json::array();
  const int nExit = ForEachFile(options.files, console, [&](const std::string& strPath) {
    const S_ManifestCounts counts = C_Manifest(strPath, tagManifestUse::MANIFEST_EXISTING).Counts();
    if (!options.bJson) return console.Print(StatusText(strPath, counts));
    array.push_back(StatusJson(strPath, counts));
  });
  if (options.bJson) console.Print(JsonText(array));
  return nExit;
}

}  // namespace

void AddStatusCommand(C_CommandLine& commandLine, CLI::App& manifest) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(
      manifest,
      {"status",
       "show how much is done",
       "Counts the files of manifests by their states: planned; claimed, which means that a "
       "process works on them, or has died; done; skipped, because the target was there; and "
       "failed. Of what is done, it tells how many files have damaged frames or are cut. A "
       "manifest that is being worked on can be asked as well.",
       {{"voxtool manifest status archive.db", "show how many files are done"},
        {"watch voxtool manifest status archive.db", "keep showing it"},
        {"voxtool manifest status --json archive.db | jq '.[0].failed'",
         "print how many have failed"}},
       [options](C_Console& console) { return Run(*options, console); }});
  AddOption(command, "DB", options->files, "the manifests").TypeName("FILE").Required();
  AddFlag(command, "--json", options->bJson, "print an array with an object for each manifest");
}

}  // namespace tool
