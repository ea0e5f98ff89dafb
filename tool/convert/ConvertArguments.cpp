// SPDX-License-Identifier: Apache-2.0
#include "convert/ConvertArguments.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <optional>
#include <string_view>
#include <system_error>

#include "base/Failure.h"
#include "batch/SoundNames.h"
#include "sound/PeakMeter.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

constexpr std::uint32_t kMostChannels = 1024;
constexpr std::uint32_t kMostRate = 0xFFFFFFFF;
constexpr double kMostDecibels = 200.0;
constexpr double kMillisecondsPerSecond = 1000.0;

std::optional<double> NumberIn(std::string_view text) {
  double dValue = 0.0;
  const auto [pEnd, eError] = std::from_chars(text.data(), text.data() + text.size(), dValue);
  const bool bWhole = eError == std::errc() && pEnd == text.data() + text.size();
  return bWhole && std::isfinite(dValue) ? std::optional(dValue) : std::nullopt;
}

// CLI::Range takes what is no number for one in its range.
std::string ProblemOfGain(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  const auto dGain = NumberIn(text);
  if (dGain && std::abs(*dGain) <= kMostDecibels) return "";
  return "Value " + std::string(text) + " not in range [-200 - 200]";
}

void AddFormatArguments(CLI::App& command, S_FormatWords& words) {
  command.add_option("--to", words.strTo, "the format to write, unless its extension says it")
      ->type_name("FORMAT")
      ->check(CLI::IsMember(FormatNames()));
  command.add_option("--codec", words.strCodec, "what a VEF file holds: pcm if not given")
      ->type_name("CODEC")
      ->check(CLI::IsMember(CodecNames()));
  command.add_option("--bits", words.strBits, "the width of samples, in place of the source's")
      ->type_name("BITS")
      ->check(CLI::IsMember({"8", "16", "24", "32", "float"}));
  command
      .add_option("--bitrate", words.dwBitRate, "bits per second of Kestrel, 16000 if not given")
      ->type_name("RATE")
      ->check(CLI::IsMember({7200U, 9600U, 12000U, 14400U, 16000U, 20000U, 24000U, 32000U}));
  command.add_option("--header", words.strHeader, "what stands before Kestrel or Heron")
      ->type_name("HEADER")
      ->check(CLI::IsMember({"sp", "codec", "none"}));
  command.add_option("--rate", words.dwRate, "frames per second, in place of the source's")
      ->type_name("HZ")
      ->check(CLI::Range(1U, kMostRate).description(""));
}

void AddSoundArguments(CLI::App& command, S_ConvertArguments& arguments) {
  CLI::Option* const pMono =
      command.add_flag("--mono", arguments.bMono, "the mean of all channels");
  command.add_option("--channel", arguments.dwChannel, "only this channel, counted from 1")
      ->type_name("N")
      ->check(CLI::Range(1U, kMostChannels).description(""))
      ->excludes(pMono);
  CLI::Option* const pGain =
      command.add_option("--gain", arguments.dGain, "louder, or with a minus sign softer")
          ->type_name("DB")
          ->check([](const std::string& strValue) { return ProblemOfGain(strValue); });
  command
      .add_flag("--normalize{-1}", arguments.strNormalize,
                "bring the loudest sample to -1 dB, or to -DB")
      ->excludes(pGain);
  command.add_flag("--detect-silence{-50:200}", arguments.strSilence,
                   "mark 200 ms of -50 dB and less, or -DB:MS");
  command.add_option("--read", arguments.strRead, "what of VEF files that have both")
      ->type_name("WHAT")
      ->check(CLI::IsMember({"stream", "pcm"}));
  command.add_flag("--no-notes", arguments.bNoNotes,
                   "leave out events, cue points and other notes");
}

void AddManifestArguments(CLI::App& command, S_ConvertArguments& arguments) {
  CLI::Option* const pManifest =
      command
          .add_option("--manifest", arguments.strManifest,
                      "keep in this file what is done; without IN, go on with what it has")
          ->type_name("FILE");
  command
      .add_flag("--plan-only", arguments.bPlanOnly,
                "add IN, or what --retry-failed means, to the manifest; convert nothing yet")
      ->needs(pManifest);
  command
      .add_flag("--retry-failed", arguments.bRetryFailed,
                "try again what has failed before, with --manifest")
      ->needs(pManifest);
  command
      .add_flag("--reclaim", arguments.bReclaim,
                "take over what other machines have begun, when they no longer work on it")
      ->needs(pManifest);
}

void NoteGiven(const CLI::App& command, std::set<std::string>& given) {
  for (const CLI::Option* const pOption : command.get_options()) {
    if (pOption->count() == 0) continue;
    for (const std::string& strName : pOption->get_lnames()) given.insert(strName);
  }
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
  command.parse_complete_callback([&command, &arguments] {
    NoteGiven(command, arguments.given);
    const bool bGoesOn = !arguments.strManifest.empty() && arguments.target.strFolder.empty() &&
                         (!arguments.bPlanOnly || arguments.bRetryFailed);
    if (!bGoesOn && !arguments.batch.AreNamed()) throw CLI::ValidationError("no file is named");
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
