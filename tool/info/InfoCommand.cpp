// SPDX-License-Identifier: Apache-2.0
#include "info/InfoCommand.h"

#include <memory>
#include <utility>

#include "base/EachFile.h"
#include "base/Failure.h"
#include "info/FileReport.h"
#include "info/FormatTests.h"
#include "info/InfoJson.h"
#include "info/InfoText.h"

namespace tool {
namespace {

struct S_Options {
  std::vector<std::string> files;
  bool bJson = false;
  bool bJsonLines = false;
  bool bDamage = false;
  bool bVerbose = false;
};

class C_InfoRun {
 public:
  C_InfoRun(const S_Options& options, C_Console& console)
      : m_options(options), m_console(console) {}

  int Run() {
    const int nExit = ForEachFile(m_options.files, m_console, [this](const std::string& strPath) {
      try {
        Show(ReportOf(strPath, m_options.bDamage));
      } catch (const voxplay::Error& error) {
        if (error.status() != VOXPLAY_UNKNOWN) Fail(strPath, error.what());
        Fail(strPath, NameOf(strPath) + ": unknown: none of the known formats" +
                          (m_options.bVerbose ? "" : "; -v shows what was tested"));
      } catch (const C_UsageFailure&) {
        throw;
      } catch (const C_Failure& failure) {
        Fail(strPath, failure.what());
      }
    });
    if (m_options.bJson) m_console.Print(JsonText(m_array));
    return nExit;
  }

 private:
  [[nodiscard]] bool IsForPrograms() const { return m_options.bJson || m_options.bJsonLines; }

  void Show(const S_FileReport& report) {
    if (IsForPrograms()) return ShowJson(InfoJson(report));
    m_console.Print((m_bFirst ? "" : "\n") + InfoText(report, m_console.HasColours()));
    m_bFirst = false;
  }
  void ShowJson(C_Json json) {
    if (m_options.bJsonLines) return m_console.Print(JsonLine(json));
    m_array.push_back(std::move(json));
  }
  // After the failure has been told to programs, and what the tests found to people.
  [[noreturn]] void Fail(const std::string& strPath, const std::string& strWhy) {
    if (IsForPrograms()) ShowJson(InfoJsonOfFailure(strPath, strWhy));
    m_console.Flush();
    for (const std::string& strLine : TestsToShow(strPath)) {
      m_console.Complain(NameOf(strPath) + ": " + strLine);
    }
    throw C_Failure(strWhy);
  }
  [[nodiscard]] std::vector<std::string> TestsToShow(const std::string& strPath) const {
    return m_options.bVerbose ? FormatTests(strPath) : std::vector<std::string>();
  }

  const S_Options& m_options;
  C_Console& m_console;
  C_Json m_array = C_Json::array();
  bool m_bFirst = true;
};

S_Command Command(const std::shared_ptr<S_Options>& options) {
  return {
      "info",
      "tell what files are and what they hold",
      "Tells the format, the length, the fields of headers, the events and other marks, and the "
      "chunks of each file. Sounds are not decoded for that, so it is quick, however long they "
      "are; with --damage they are, and damaged frames are counted.\n\n"
      "For programs, --json prints one array with an object for each file, and --json-lines one "
      "object a line. Members without a value are left out; the member \"schema\" changes when "
      "another one changes its meaning.",
      {{"voxtool info speech.kst", "show what speech.kst is"},
       {"voxtool info --damage *.hrn", "decode the files, too, and count damaged frames"},
       {"voxtool info --json talk.wav | jq '.[0].events[].start'", "list the frames of events"}},
      [options](C_Console& console) { return C_InfoRun(*options, console).Run(); }};
}

}  // namespace

void AddInfoCommand(C_CommandLine& commandLine) {
  const auto options = std::make_shared<S_Options>();
  CLI::App& command = commandLine.Add(Command(options));
  command.add_option("FILE", options->files, "the files; \"-\" is standard input")
      ->type_name("FILE")
      ->required();
  auto* const pJson = command.add_flag("--json", options->bJson, "print an array of objects");
  command.add_flag("--json-lines", options->bJsonLines, "print an object a line")->excludes(pJson);
  command.add_flag("--damage", options->bDamage, "decode the sounds and count damaged frames");
  command.add_flag("-v,--verbose", options->bVerbose,
                   "say of an unknown file which tests it failed, a line for each");
}

}  // namespace tool
