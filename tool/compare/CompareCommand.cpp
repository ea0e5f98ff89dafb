// SPDX-License-Identifier: Apache-2.0
#include "compare/CompareCommand.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <string>

#include "base/Failure.h"
#include "base/NumberText.h"
#include "compare/LagFinder.h"
#include "compare/Report.h"
#include "sound/HeldSound.h"
#include "sound/SoundFaults.h"

namespace tool {
namespace {

constexpr double kMostLagSeconds = 10.0;
constexpr double kUsualLagSeconds = 1.0;
constexpr int kDiffer = 1;

constexpr const char* kDescription =
    "Says how the second sound differs from the first: lag, samples that differ, the first of "
    "them, the greatest difference, signal-to-noise ratios and levels, of each channel and of all "
    "together.\n\n"
    "The lag is found by correlation, and only taken for one when it makes the sounds clearly "
    "more alike. Frames are compared without it, and those that only one of the sounds has do not "
    "count in the ratios. Sounds of which one lacks frames are never equal, also when these are "
    "silent: the result says how many there are.\n\n"
    "Ends with 0 when the sounds are equal, and with 1 when they differ, or when a sound cannot "
    "be read or compared.";

struct S_CompareArguments {
  std::string strFirst;
  std::string strSecond;
  std::optional<double> dMostLag;  // seconds
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

std::string CheckLag(const std::string& strSeconds) {
  const auto dSeconds = NumberIn(strSeconds);
  if (dSeconds && *dSeconds >= 0.0 && *dSeconds <= kMostLagSeconds) return "";
  return strSeconds + " is no lag: give 0 to 10 seconds";
}

// In frames.
std::size_t MostLag(const std::optional<double>& seconds, std::uint32_t dwRate) {
  const double dFrames = std::round(seconds.value_or(kUsualLagSeconds) * dwRate);
  if (seconds && dFrames > static_cast<double>(kMostLag)) {
    throw C_UsageFailure("--max-lag is too much for " + std::to_string(dwRate) +
                         " Hz: give at most " +
                         NumberText(std::floor(100.0 * kMostLag / dwRate) / 100, 2) + " seconds");
  }
  return static_cast<std::size_t>(std::min(dFrames, static_cast<double>(kMostLag)));
}

void TellWidth(const std::string& strPath, const S_SoundInfo& info, C_Console& console) {
  if (!info.bDouble || !info.ours) return;
  console.Complain(NameOf(strPath) +
                   ": its floating point of 64 bits is compared as that of 32 bits");
}

// What is missing or damaged is no difference that anybody has made.
void TellFaults(const std::string& strName, const I_SoundInput& sound, std::uint64_t qwFrames,
                C_Console& console) {
  const std::string strFaults = FaultLine(strName, sound, qwFrames, "compared");
  if (!strFaults.empty()) console.Complain(strFaults);
}

int RunCompare(const S_CompareArguments& arguments, C_Console& console) {
  if (arguments.strFirst == kStandardStream && arguments.strSecond == kStandardStream) {
    throw C_UsageFailure("both sounds are standard input: one of them can be");
  }
  const C_SoundInputPtr first = WithoutMissingFrames(OpenSound(arguments.strFirst));
  const C_SoundInputPtr second = WithoutMissingFrames(OpenSound(arguments.strSecond));
  RefuseUnlike(arguments, first->Info(), second->Info());
  TellWidth(arguments.strFirst, first->Info(), console);
  TellWidth(arguments.strSecond, second->Info(), console);
  C_SampleSource firstSamples(*first);
  C_SampleSource secondSamples(*second);
  const std::uint32_t dwRate = first->Info().dwRate;
  const std::int64_t nLag =
      FindLag(firstSamples, secondSamples, MostLag(arguments.dMostLag, dwRate));
  const S_Compared compared = {NameOf(arguments.strFirst), NameOf(arguments.strSecond),
                               first->Info(), second->Info(),
                               Compare(firstSamples, secondSamples, nLag, dwRate)};
  TellFaults(compared.strFirst, *first, compared.result.first.qwFrames, console);
  TellFaults(compared.strSecond, *second, compared.result.second.qwFrames, console);
  console.Print(arguments.bJson ? ReportJson(compared) : ReportText(compared));
  return compared.result.IsEqual() ? 0 : kDiffer;
}

void AddOptions(CLI::App& app, S_CompareArguments& arguments) {
  AddOption(app, "FIRST", arguments.strFirst, "the sound as it should be; - is standard input")
      .Required()
      .TypeName("FILE");
  AddOption(app, "SECOND", arguments.strSecond, "the sound to be compared with it")
      .Required()
      .TypeName("FILE");
  const auto TakeLag = [&arguments](const std::string& strSeconds) {
    arguments.dMostLag = NumberIn(strSeconds);
  };
  AddOption(app, "--max-lag", TakeLag,
            "look for a lag of up to so many seconds, 0 to 10; 1 if not said, 0 for none")
      .Check(CheckLag)
      .TypeName("SECONDS");
  AddFlag(app, "--json", arguments.bJson, "print a JSON object");
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
