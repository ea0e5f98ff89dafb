// SPDX-License-Identifier: Apache-2.0
//
// "tags add event" and the like: each makes one row, as a table would have it.
#include <array>
#include <memory>
#include <utility>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "marks/BeyondEnd.h"
#include "marks/MarkNotes.h"
#include "options/WholeNumber.h"
#include "tags/MarkEdit.h"
#include "tags/Subcommands.h"

namespace tool {
namespace {

struct S_Options {
  S_EditOptions edit;
  std::string strAt;
  std::string strLength;
  std::string strTo;
  bool bNeedsLength = false;
  C_Json row = C_Json::object();  // what further options say
};

constexpr std::array kLoopTypes = {"forward", "both", "backward"};

std::uint64_t FrameAt(const S_Options& options, const std::string& strTime, std::uint32_t dwRate) {
  const C_Time time = C_Time::Parse(strTime).value();
  if (dwRate != 0 || !time.NeedsRate()) return time.FrameAt(dwRate);
  throw C_Failure(
      options.edit.strFile, "nothing is changed",
      "it has no sample rate, so that " + strTime + " is no place in it; give samples (32000s)");
}

std::uint64_t LengthOf(const S_Options& options, std::uint64_t qwStart, std::uint32_t dwRate) {
  if (!options.strLength.empty()) return FrameAt(options, options.strLength, dwRate);
  if (options.strTo.empty() && options.bNeedsLength) {
    throw C_UsageFailure("--length is needed, or --to");
  }
  if (options.strTo.empty()) return 0;
  const std::uint64_t qwEnd = FrameAt(options, options.strTo, dwRate);
  if (qwEnd >= qwStart) return qwEnd - qwStart;
  throw C_UsageFailure("--to is before --at");
}

void CheckPlace(const S_Options& options, std::uint64_t qwStart, std::uint64_t qwLength,
                const voxplay::Info& info) {
  if (options.edit.target.bAnyway) return;
  const auto strWhyNot = BeyondEnd(qwStart, qwLength, {info.frames, info.sample_rate});
  if (strWhyNot) throw C_Failure(options.edit.strFile, "nothing is changed", *strWhyNot);
}

int Run(const S_Options& options, const std::string& strKind, C_Console& console) {
  return EditMarks(options.edit, console, [&](const C_MarkedFile& file, voxplay::Notes& notes) {
    const voxplay::Info& info = file.Info();
    const std::uint64_t qwStart = FrameAt(options, options.strAt, info.sample_rate);
    const std::uint64_t qwLength = LengthOf(options, qwStart, info.sample_rate);
    CheckPlace(options, qwStart, qwLength, info);
    C_Json row = options.row;
    row["kind"] = strKind;
    row["start"] = qwStart;
    row["length"] = qwLength;
    AddRows(RowsIn(C_Json::array({row})), info.sample_rate, notes);
  });
}

void AddPlace(CLI::App& command, S_Options& options) {
  AddEditOptions(command, options.edit);
  AddTimeOption(command, "--at", options.strAt, "where it is, or begins").Required();
}

void AddLength(CLI::App& command, S_Options& options) {
  const C_Option length = AddTimeOption(command, "--length", options.strLength, "how long it is");
  AddTimeOption(command, "--to", options.strTo, "where it ends").Excludes(length);
}

void AddNeededLength(CLI::App& command, S_Options& options) {
  AddLength(command, options);
  options.bNeedsLength = true;
}

// Options whose values become members of the row.
void AddNumber(CLI::App& command, const std::string& strName, const char* pszMember,
               std::uint64_t qwMost, S_Options& options, const std::string& strMeaning) {
  const auto Take = [&options, pszMember](const std::string& strValue) {
    options.row[pszMember] = std::stoull(strValue);
  };
  AddOption(command, strName, Take, strMeaning).TypeName("N").Check(WholeNumber(0, qwMost));
}

void AddText(CLI::App& command, const std::string& strName, const char* pszMember,
             S_Options& options, const std::string& strMeaning) {
  const auto Take = [&options, pszMember](const std::string& strValue) {
    options.row[pszMember] = strValue;
  };
  AddOption(command, strName, Take, strMeaning);
}

void AddKind(C_CommandLine& commandLine, CLI::App& parent, S_Command command,
             const std::function<void(CLI::App&, S_Options&)>& fnAddOptions) {
  const auto options = std::make_shared<S_Options>();
  const std::string strKind = command.strName;
  command.fnRun = [options, strKind](C_Console& console) {
    return Run(*options, strKind, console);
  };
  CLI::App& added = commandLine.Add(parent, std::move(command));
  AddPlace(added, *options);
  fnAddOptions(added, *options);
}

void AddEvent(CLI::App& command, S_Options& options) {
  AddNumber(command, "--main", "main_command", UINT16_MAX, options, "its main command");
  AddNumber(command, "--sub", "sub_command", UINT16_MAX, options, "its sub command");
  AddNumber(command, "--data", "data", UINT32_MAX, options, "its data, which VEF files hold");
}

void AddCue(CLI::App& command, S_Options& options) {
  AddLength(command, options);
  AddText(command, "--name", "name", options, "its label");
  AddText(command, "--text", "text", options, "a note on it");
}

void AddLoop(CLI::App& command, S_Options& options) {
  AddNeededLength(command, options);
  AddNumber(command, "--count", "play_count", UINT32_MAX, options,
            "how often it is played; 0 for ever");
  const auto Choose = [&options](const std::string& strType) {
    const auto found = std::ranges::find(kLoopTypes, strType);
    options.row["type"] = static_cast<std::uint64_t>(found - kLoopTypes.begin());
  };
  AddOption(command, "--type", Choose, "the way in which it is played")
      .OneOf(std::vector<std::string>(kLoopTypes.begin(), kLoopTypes.end()));
}

void AddRange(CLI::App& command, S_Options& options) { AddNeededLength(command, options); }

}  // namespace

void AddAddCommands(C_CommandLine& commandLine, CLI::App& tags) {
  CLI::App& parent = commandLine.Add(
      tags, {"add",
             "add an event, a cue point, silence, a region or a loop",
             "Adds one mark to a WAV, VEMD or VEF file.",
             {{"voxtool tags add event talk.wav --at 1.5 --main 3 --sub 1", "add an event"},
              {"voxtool tags add cue talk.wav --at 0:12.250 --name Chorus", "name a place"}},
             {}});
  AddKind(
      commandLine, parent,
      {"event",
       "add an event",
       "Adds an event. VEF files hold its data; WAV and VEMD files do not.",
       {{"voxtool tags add event talk.wav --at 1.5 --main 3 --sub 1", "add event 3/1 at 1.5 s"}},
       {}},
      &AddEvent);
  AddKind(commandLine, parent,
          {"cue",
           "add a cue point",
           "Adds a cue point, with a label, a note and a length where these are given.",
           {{"voxtool tags add cue talk.wav --at 0:12.250 --name Chorus", "name a place"},
            {"voxtool tags add cue talk.wav --at 3 --to 5.5 --name \"Take 2\"", "name a range"}},
           {}},
          &AddCue);
  AddKind(commandLine, parent,
          {"silence",
           "add a range of silence",
           "Says of a range that it is silent. WAV and VEMD files hold that.",
           {{"voxtool tags add silence talk.wav --at 3 --length 0.5", "say that half a second is"}},
           {}},
          &AddRange);
  AddKind(commandLine, parent,
          {"region",
           "add a range that is kept uncompressed",
           "Says of a range that coders are to keep it uncompressed. WAV and VEMD files hold that.",
           {{"voxtool tags add region talk.wav --at 3 --to 4", "say so of a second"}},
           {}},
          &AddRange);
  AddKind(commandLine, parent,
          {"loop",
           "add a loop",
           "Adds a loop for samplers.",
           {{"voxtool tags add loop pad.wav --at 8000s --to 24000s", "repeat a part for ever"}},
           {}},
          &AddLoop);
}

}  // namespace tool
