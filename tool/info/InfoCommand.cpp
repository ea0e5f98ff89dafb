// SPDX-License-Identifier: Apache-2.0
#include "info/InfoCommand.h"

#include <memory>
#include <string>

#include "base/Failure.h"
#include "batch/BatchOptions.h"
#include "batch/PrintFiles.h"
#include "info/FormatTests.h"
#include "info/InfoJson.h"
#include "info/InfoText.h"
#include "info/SoundReport.h"

namespace tool {
namespace {

struct S_Options {
  S_BatchOptions batch;
  bool bJson = false;
  bool bJsonLines = false;
  bool bDamage = false;
};

// What is said of one file.
class C_FileInfo {
 public:
  C_FileInfo(const S_Options& options, const std::string& strPath, bool bColours,
             C_FileOutput& output)
      : m_options(options), m_strPath(strPath), m_bColours(bColours), m_output(output) {}

  S_FileResult Tell(C_FileWatch& watch) {
    try {
      const S_SoundReport report = ReportOf(m_strPath, m_options.bDamage, watch);
      Show(report);
      return ResultOf(report);
    } catch (const voxplay::Error& error) {
      if (error.status() != VOXPLAY_UNKNOWN) Fail(error.what());
      if (!m_options.batch.bVerbose && m_options.batch.nQuiet == 0 && !IsForPrograms()) TellTests();
      Fail(NameOf(m_strPath) + ": unknown: none of the known formats");
    } catch (const C_UsageFailure&) {
      throw;
    } catch (const C_Failure& failure) {
      Fail(failure.what());
    }
  }

 private:
  void Show(const S_SoundReport& report) {
    if (!IsForPrograms()) return m_output.Print(InfoText(report, m_bColours));
    ShowJson(InfoJson(report));
  }
  [[nodiscard]] bool IsForPrograms() const { return m_options.bJson || m_options.bJsonLines; }
  void ShowJson(const C_Json& json) {
    m_output.Print(m_options.bJson ? JsonElement(json) : JsonLine(json));
  }

  static S_FileResult ResultOf(const S_SoundReport& report) {
    S_FileResult result;
    result.dwRate = report.info.dwRate;
    if (report.info.qwFrames != kFramesUnknown) result.qwFrames = report.info.qwFrames;
    result.qwDamaged = report.qwDamaged.value_or(0);
    return result;
  }
  // To people. Programs find it beside the failure.
  void TellTests() {
    for (const std::string& strLine : FormatTests(m_strPath)) {
      m_output.Complain(NameOf(m_strPath) + ": " + strLine);
    }
  }
  [[noreturn]] void Fail(const std::string& strWhy) {
    if (IsForPrograms()) ShowJson(InfoJsonOfFailure(m_strPath, strWhy));
    if (m_options.batch.bVerbose) TellTests();
    throw C_Failure(strWhy);
  }

  const S_Options& m_options;
  const std::string& m_strPath;
  bool m_bColours;
  C_FileOutput& m_output;
};

int Run(const S_Options& options, C_Console& console) {
  S_PrintRule rule = options.bJson ? JsonArrayRule() : S_PrintRule();
  if (!options.bJson && !options.bJsonLines) rule.strBetween = "\n";
  const bool bColours = console.HasColours();
  const PFN_PrintFile fnInfo = [&options, bColours](const std::string& strPath,
                                                    C_FileOutput& output, C_FileWatch& watch) {
    return C_FileInfo(options, strPath, bColours, output).Tell(watch);
  };
  return PrintFiles(options.batch, rule, fnInfo, console);
}

S_Command Command(const std::shared_ptr<S_Options>& options) {
  return {
      "info",
      "tell what files are and what they hold",
      "Tells the format, the length, the fields of headers, the events and other marks, and the "
      "chunks of each file. Sounds are not decoded for that, so it is quick, however long they "
      "are; with --damage they are, and damaged frames are counted.\n\n"
      "For programs, --json prints one array with an object for each file, and --json-lines one "
      "object a line. Members without a value are left out; the member \"schema\" changes when "
      "another one changes its meaning. Beside a name of a file that is no UTF-8, another member, "
      "\"file_bytes\", has its bytes in hexadecimal.",
      {{"voxtool info speech.kst", "show what speech.kst is"},
       {"voxtool info --damage *.hrn", "decode the files, too, and count damaged frames"},
       {"voxtool info -r --json-lines archive", "describe all sounds in a folder to a program"},
       {"voxtool info --json talk.wav | jq '.[0].events[].start'", "list the frames of events"}},
      [options](C_Console& console) { return Run(*options, console); }};
}

}  // namespace

void AddInfoCommand(C_CommandLine& commandLine) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(Command(options));
  AddFileOptions(command, options->batch, "FILE");
  const C_Option json = AddFlag(command, "--json", options->bJson, "print an array of objects");
  AddFlag(command, "--json-lines", options->bJsonLines, "print an object a line").Excludes(json);
  AddFlag(command, "--damage", options->bDamage, "decode the sounds and count damaged frames");
  AddThreadsOption(command, options->batch);
  AddVerboseOption(command, options->batch,
                   "say of all files that cannot be read which tests they failed",
                   AddQuietOption(command, options->batch));
}

}  // namespace tool
