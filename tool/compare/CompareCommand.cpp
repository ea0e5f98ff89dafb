// SPDX-License-Identifier: Apache-2.0
#include "compare/CompareCommand.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "base/Failure.h"
#include "compare/LagFinder.h"
#include "compare/Report.h"

namespace tool {
namespace {

constexpr double kMostLagSeconds = 10.0;
constexpr int kDiffer = 1;

constexpr const char* kDescription =
    "Says how the second sound differs from the first: lag, samples that differ, the first of "
    "them, "
    "the greatest difference, signal-to-noise ratios and levels, of each channel and of all "
    "together.\n"
    "\n"
    "The lag is found by correlation, and only taken for one when it makes the sounds clearly more "
    "alike. Frames are compared without it. Frames that only one of the sounds has are compared "
    "with silence. They do not count in the ratios.\n"
    "\n"
    "Ends with 0 when all samples are equal, and with 1 when they differ, or when a sound cannot "
    "be "
    "read or compared.";

struct S_CompareArguments {
  std::string strFirst;
  std::string strSecond;
  double dMostLag = 1.0;
  bool bJson = false;
};

void RefuseUnlike(const S_CompareArguments& arguments, const S_SoundInfo& first,
                  const S_SoundInfo& second) {
  const std::string strSecond = NameOf(arguments.strSecond);
  if (first.dwRate != second.dwRate) {
    throw C_Failure(strSecond, "cannot be compared",
                    "it has " + std::to_string(second.dwRate) + " Hz, and " +
                        NameOf(arguments.strFirst) + " has " + std::to_string(first.dwRate) +
                        " Hz; make them equal with voxtool convert --rate");
  }
  if (first.dwChannels != second.dwChannels) {
    throw C_Failure(strSecond, "cannot be compared",
                    "it has " + std::to_string(second.dwChannels) + " channels, and " +
                        NameOf(arguments.strFirst) + " has " + std::to_string(first.dwChannels) +
                        "; make them equal with voxtool convert --mono or --channel");
  }
}

void TellWidth(const std::string& strPath, const S_SoundInfo& info, C_Console& console) {
  if (!info.bDouble || !info.ours) return;
  console.Complain(NameOf(strPath) +
                   ": its floating point of 64 bits is compared as that of 32 bits");
}

int RunCompare(const S_CompareArguments& arguments, C_Console& console) {
  if (arguments.strFirst == kStandardStream && arguments.strSecond == kStandardStream) {
    throw C_UsageFailure("compare", "both sounds are standard input", "one of them can be");
  }
  const C_SoundInputPtr first = OpenSound(arguments.strFirst);
  const C_SoundInputPtr second = OpenSound(arguments.strSecond);
  RefuseUnlike(arguments, first->Info(), second->Info());
  TellWidth(arguments.strFirst, first->Info(), console);
  TellWidth(arguments.strSecond, second->Info(), console);
  C_SampleSource firstSamples(*first);
  C_SampleSource secondSamples(*second);
  const std::uint32_t dwRate = first->Info().dwRate;
  const double dMostLag = std::min(std::round(arguments.dMostLag * dwRate), double{kMostLag});
  const std::int64_t nLag =
      FindLag(firstSamples, secondSamples, static_cast<std::size_t>(dMostLag));
  const S_Compared compared = {NameOf(arguments.strFirst), NameOf(arguments.strSecond),
                               first->Info(), second->Info(),
                               Compare(firstSamples, secondSamples, nLag, dwRate)};
  console.Print(arguments.bJson ? ReportJson(compared) : ReportText(compared));
  return compared.result.IsEqual() ? 0 : kDiffer;
}

void AddOptions(CLI::App& app, S_CompareArguments& arguments) {
  app.add_option("FIRST", arguments.strFirst, "the sound as it should be; - is standard input")
      ->required()
      ->type_name("FILE");
  app.add_option("SECOND", arguments.strSecond, "the sound to be compared with it")
      ->required()
      ->type_name("FILE");
  app.add_option("--max-lag", arguments.dMostLag,
                 "look for a lag of up to so many seconds, 0 to 10; 1 if not said, 0 for none")
      ->check(CLI::Range(0.0, kMostLagSeconds))
      ->type_name("SECONDS");
  app.add_flag("--json", arguments.bJson, "print a JSON object");
}

}  // namespace

void AddCompareCommand(C_CommandLine& commandLine) {
  auto arguments = std::make_shared<S_CompareArguments>();
  S_Command command;
  command.strName = "compare";
  command.strSummary = "say how two sounds differ";
  command.strDescription = kDescription;
  command.examples = {
      {"voxtool compare speech.wav decoded.wav", "how close a decoded sound is to the original"},
      {"voxtool compare a.wav b.flac --max-lag 0", "whether two files have the same samples"},
      {"voxtool compare a.wav b.wav --json", "the same for programs"}};
  command.fnRun = [arguments](C_Console& console) { return RunCompare(*arguments, console); };
  AddOptions(commandLine.Add(std::move(command)), *arguments);
}

}  // namespace tool
