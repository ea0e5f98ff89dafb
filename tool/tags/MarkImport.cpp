// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <memory>
#include <string_view>

#include "base/Descriptor.h"
#include "base/Failure.h"
#include "marks/LabelText.h"
#include "marks/MarkCsv.h"
#include "marks/MarkJson.h"
#include "marks/MarkNotes.h"
#include "sound/SoundInput.h"
#include "tags/MarkEdit.h"
#include "tags/Subcommands.h"

namespace tool {
namespace {

// Larger files hold something else than marks.
constexpr std::size_t kMostBytes = std::size_t{256} << 20U;
constexpr std::size_t kPieceBytes = 65536;

struct S_Options {
  S_EditOptions edit;
  std::string strJson;
  std::string strCsv;
  std::string strLabels;
  bool bReplace = false;
};

std::string ReadText(const std::string& strPath) {
  const std::string strName = NameOf(strPath);
  const C_Descriptor file(strPath == kStandardStream ? 0
                                                     : open(strPath.c_str(), O_RDONLY | O_CLOEXEC));
  if (file.Get() < 0) throw C_Failure(strName, "cannot be opened", SystemReason(errno));
  std::string strText;
  std::array<std::byte, kPieceBytes> piece{};
  while (const std::size_t cbRead = ReadSome(file.Get(), piece, strName)) {
    strText.append(reinterpret_cast<const char*>(piece.data()), cbRead);
    if (strText.size() > kMostBytes) throw C_Failure(strName, "cannot be read", "it is too large");
  }
  return strText;
}

PFN_Rows RowsOf(const S_Options& options, std::string_view text, std::uint32_t dwRate) {
  if (!options.strJson.empty()) return RowsOfJson(text, dwRate);
  return options.strCsv.empty() ? RowsOfLabelText(text, dwRate) : RowsOfCsv(text);
}

const std::string& SourceOf(const S_Options& options) {
  if (!options.strJson.empty()) return options.strJson;
  return options.strCsv.empty() ? options.strLabels : options.strCsv;
}

// A program before this one has failed more often than all marks are to go.
[[noreturn]] void RefuseNothing() {
  throw C_BadRow(
      "there are no marks in it, and --replace would leave none; \"voxtool tags remove --all\" "
      "does that");
}

int Run(const S_Options& options, C_Console& console) {
  if (SourceOf(options).empty()) {
    throw C_UsageFailure("name what to import with --csv, --json or --labels");
  }
  const bool bAnyway = options.edit.target.bAnyway;
  S_EditOptions edit = options.edit;
  edit.bNamesEvents = options.bReplace;
  return EditMarks(edit, console, [&](const C_MarkedFile& file, voxplay::Notes& notes) {
    try {
      const std::string strText = ReadText(SourceOf(options));
      const std::uint32_t dwRate = file.Info().sample_rate;
      if (options.bReplace) ClearMarks(notes);
      const std::size_t nRows = AddRows(RowsOf(options, strText, dwRate), dwRate, notes,
                                        bAnyway ? UINT64_MAX : file.Info().frames);
      if (nRows == 0 && options.bReplace && !bAnyway) RefuseNothing();
    } catch (const C_BadRow& bad) {
      throw C_Failure(NameOf(SourceOf(options)), "cannot be imported", bad.what());
    }
  });
}

}  // namespace

void AddImportCommand(C_CommandLine& commandLine, CLI::App& tags) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(
      tags,
      {"import",
       "add marks from a table, from JSON or from a label track",
       "Reads what \"tags export\" writes, and tables that people have written: of the "
       "columns, only \"kind\" is needed, and \"start\" (frame) or \"time\". A cue point may "
       "have a \"name\", and a \"length\" or a \"duration\". Where the file has the ids of "
       "new cue points already, the new ones get others.\n\n"
       "When you edit a table: \"start\" and \"time\" say the same, so change one of them and "
       "empty the other; a row that contradicts itself is refused with its line. Labels, notes "
       "and texts move with the cue point of their \"id\". A text that you edit counts, and "
       "its \"hex\" is then passed over.",
       {{"voxtool tags import talk.wav --csv talk.csv", "add the marks of a table"},
        {"voxtool tags import talk.wav --labels talk.txt --replace",
         "let a label track replace all marks"}},
       [options](C_Console& console) { return Run(*options, console); }});
  AddEditOptions(command, options->edit);
  const C_Option csv = AddOption(command, "--csv", options->strCsv, "comma-separated values");
  const C_Option json = AddOption(command, "--json", options->strJson, "JSON");
  const C_Option labels = AddOption(command, "--labels", options->strLabels, "a label track");
  for (const C_Option& source : {csv, json, labels}) source.TypeName("FILE");
  csv.Excludes(json).Excludes(labels);
  json.Excludes(labels);
  AddFlag(command, "--replace", options->bReplace, "remove all marks of the file first");
}

}  // namespace tool
