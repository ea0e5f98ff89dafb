// SPDX-License-Identifier: Apache-2.0
#include "convert/ConvertArguments.h"

#include <cmath>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "base/Failure.h"
#include "base/NumberText.h"
#include "batch/SoundNames.h"
#include "options/WholeNumber.h"
#include "sound/PeakMeter.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

constexpr std::uint32_t kMostChannels = 1024;
constexpr std::uint32_t kMostRate = 0xFFFFFFFF;
constexpr double kMostDecibels = 200.0;
constexpr double kMillisecondsPerSecond = 1000.0;

std::string ProblemOfGain(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto dGain = NumberIn(text);
  if (dGain && std::abs(*dGain) <= kMostDecibels) return "";
  return "Value " + std::string(text) + " not in range [-200 - 200]";
}

void AddFormatArguments(CLI::App& command, S_FormatWords& words) {
  AddOption(command, "--to", words.strTo, "the format to write, unless its extension says it")
      .TypeName("FORMAT")
      .OneOf(FormatNames());
  AddOption(command, "--codec", words.strCodec, "what a VEF file holds: pcm if not given")
      .TypeName("CODEC")
      .OneOf(CodecNames());
  AddOption(command, "--bits", words.strBits, "the width of samples, in place of the source's")
      .TypeName("BITS")
      .OneOf({"8", "16", "24", "32", "float"});
  AddOption(command, "--bitrate", words.dwBitRate, "bits per second of Kestrel, 16000 if not given")
      .TypeName("RATE")
      .OneOf({"7200", "9600", "12000", "14400", "16000", "20000", "24000", "32000"});
  AddOption(command, "--header", words.strHeader, "what stands before Kestrel or Heron")
      .TypeName("HEADER")
      .OneOf({"sp", "codec", "none"});
  AddOption(command, "--rate", words.dwRate, "frames per second, in place of the source's")
      .TypeName("HZ")
      .Check(WholeNumber(1, kMostRate));
}

void AddSoundArguments(CLI::App& command, S_ConvertArguments& arguments) {
  const C_Option mono = AddFlag(command, "--mono", arguments.bMono, "the mean of all channels");
  AddOption(command, "--channel", arguments.dwChannel, "only this channel, counted from 1")
      .TypeName("N")
      .Check(WholeNumber(1, kMostChannels))
      .Excludes(mono);
  const C_Option gain =
      AddOption(command, "--gain", arguments.dGain, "louder, or with a minus sign softer")
          .TypeName("DB")
          .Check([](const std::string& strValue) { return ProblemOfGain(strValue); });
  AddFlag(command, "--normalize{-1}", arguments.strNormalize,
          "bring the loudest sample to -1 dB, or to -DB")
      .Excludes(gain);
  AddFlag(command, "--detect-silence{-50:200}", arguments.strSilence,
          "mark 200 ms of -50 dB and less, or -DB:MS");
  AddOption(command, "--read", arguments.strRead, "what of VEF files that have both")
      .TypeName("WHAT")
      .OneOf({"stream", "pcm"});
  AddFlag(command, "--no-notes", arguments.bNoNotes,
          "leave out events, cue points and other notes");
}

void AddManifestArguments(CLI::App& command, S_ConvertArguments& arguments) {
  const C_Option manifest =
      AddOption(command, "--manifest", arguments.strManifest,
                "keep in this file what is done; without IN, go on with what it has")
          .TypeName("FILE");
  AddFlag(command, "--plan-only", arguments.bPlanOnly,
          "add IN, or what --retry-failed means, to the manifest; convert nothing yet")
      .Needs(manifest);
  AddFlag(command, "--retry-failed", arguments.bRetryFailed,
          "try again what has failed before, with --manifest")
      .Needs(manifest);
  AddFlag(command, "--reclaim", arguments.bReclaim,
          "take over what other machines have begun, when they no longer work on it")
      .Needs(manifest);
}

[[noreturn]] void RefuseValue(const std::string& strOption, const std::string& strValue,
                              const std::string& strForm) {
  throw C_UsageFailure(strOption + ": " + strValue + " is not " + strForm);
}

// Levels of full scale.
std::optional<double> LevelIn(std::string_view text) {
  const auto dLevel = NumberIn(text);
  return dLevel && *dLevel <= 0.0 && *dLevel >= -kMostDecibels ? dLevel : std::nullopt;
}

// "--normalize 3": a level that was taken for a file.
void RefuseNumberAsFile(const S_ConvertArguments& arguments) {
  for (const std::string& strOperand : arguments.batch.operands) {
    std::error_code none;
    if (!NumberIn(strOperand) || std::filesystem::exists(strOperand, none)) continue;
    throw C_UsageFailure("--normalize: " + strOperand +
                         " is taken for a file; a level is given by --normalize=-DB");
  }
}

std::optional<double> PeakOf(const std::string& strNormalize) {
  if (strNormalize.empty()) return std::nullopt;
  const auto dDecibels = LevelIn(strNormalize);
  if (!dDecibels) RefuseValue("--normalize", strNormalize, "-DB, such as -3");
  return GainFactor(*dDecibels);
}

std::optional<S_SilenceRule> SilenceOf(const std::string& strSilence) {
  if (strSilence.empty()) return std::nullopt;
  const std::string_view text = strSilence;
  const std::size_t nColon = std::min(text.find(':'), text.size());
  const auto dDecibels = LevelIn(text.substr(0, nColon));
  const auto dMilliseconds = NumberIn(text.substr(std::min(nColon + 1, text.size())));
  constexpr double kMostMilliseconds = 1e9;
  if (!dDecibels || !dMilliseconds || *dMilliseconds < 0.0 || *dMilliseconds > kMostMilliseconds) {
    RefuseValue("--detect-silence", strSilence, "-DB:MS, such as -50:200");
  }
  return S_SilenceRule{*dDecibels, *dMilliseconds / kMillisecondsPerSecond};
}

}  // namespace

void AddConvertArguments(CLI::App& command, S_ConvertArguments& arguments) {
  AddTargetOptions(command, arguments.target);
  AddFormatArguments(command, arguments.format);
  AddSoundArguments(command, arguments);
  AddFileOptions(command, arguments.batch, "IN", tagNames::NAMES_CHECKED_LATER);
  CheckAtEnd(command, [&command, &arguments]() -> std::string {
    arguments.given = GivenOptions(command);
    const bool bGoesOn = !arguments.strManifest.empty() && arguments.target.strFolder.empty() &&
                         (!arguments.bPlanOnly || arguments.bRetryFailed);
    return bGoesOn || arguments.batch.AreNamed() ? "" : kNoFileNamed;
  });
  AddThreadsOption(command, arguments.batch);
  AddVerboseOption(command, arguments.batch, "say what is done with each file",
                   AddQuietOption(command, arguments.batch));
  AddManifestArguments(command, arguments);
}

std::string FormatNameOf(const S_ConvertArguments& arguments) {
  if (!arguments.format.strTo.empty()) return arguments.format.strTo;
  const std::string& strFile = arguments.target.strFile;
  if (strFile.empty() || strFile == kStandardStream) {
    throw C_UsageFailure("--to has to say which format to write");
  }
  std::string strName = FormatOfExtension(ExtensionOf(strFile));
  if (!strName.empty()) return strName;
  throw C_UsageFailure(strFile, "its extension is no format that can be written",
                       "--to says which one to write");
}

S_ConvertOptions ConvertOptionsOf(const S_ConvertArguments& arguments) {
  S_ConvertOptions options;
  S_FormatWords words = arguments.format;
  words.strTo = FormatNameOf(arguments);
  options.format = FormatOf(words);
  if (arguments.dwChannel != 0) options.dwChannel = arguments.dwChannel - 1;
  options.bMono = arguments.bMono;
  options.dGain = GainFactor(arguments.dGain);
  options.dPeak = PeakOf(arguments.strNormalize);
  if (options.dPeak) RefuseNumberAsFile(arguments);
  options.silence = SilenceOf(arguments.strSilence);
  options.bNotes = !arguments.bNoNotes;
  if (arguments.strRead == "stream") options.dwReadFlags = VOXPLAY_READ_STREAM;
  return options;
}

}  // namespace tool
