// SPDX-License-Identifier: Apache-2.0
#include "plot/PlotArguments.h"

#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

#include "base/Failure.h"
#include "base/TimeText.h"
#include "batch/SoundNames.h"
#include "options/WholeNumber.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

// The number at the beginning of a text, which is taken away; 0 when there is none.
int TakeNumber(std::string_view& text) {
  int nNumber = 0;
  const auto [pEnd, eError] = std::from_chars(text.data(), text.data() + text.size(), nNumber);
  if (eError != std::errc{}) return 0;
  text.remove_prefix(static_cast<std::size_t>(pEnd - text.data()));
  return nNumber;
}

void SetSize(const std::string& strSize, S_PlotOptions& options) {
  if (strSize.empty()) return;
  std::string_view text = strSize;
  options.nWidth = TakeNumber(text);
  const bool bDivided = text.starts_with('x');
  if (bDivided) text.remove_prefix(1);
  options.nHeight = TakeNumber(text);
  const auto fits = [](int nSize) { return nSize >= kLeastSize && nSize <= kGreatestSize; };
  if (bDivided && text.empty() && fits(options.nWidth) && fits(options.nHeight)) return;
  throw C_UsageFailure("--size: " + strSize +
                       " is no size: give one from 16x16 to 8192x8192, such as 1200x600");
}

std::optional<C_Time> TimeOf(const char* pszOption, const std::string& strTime) {
  if (strTime.empty()) return {};
  const auto time = C_Time::Parse(strTime);
  if (time) return time;
  throw C_UsageFailure(std::string(pszOption) + ": " + strTime + " is no time: " + C_Time::kForms);
}

// By --format, or by the name of the picture.
bool WantsSvg(const S_PlotArguments& arguments) {
  if (!arguments.strFormat.empty()) return arguments.strFormat == "svg";
  const std::string& strFile = arguments.target.strFile;
  if (strFile.empty() || strFile == kStandardStream) return false;
  const std::string strExtension = LowerExtensionOf(strFile);
  if (strExtension == ".svg" || strExtension == ".png") return strExtension == ".svg";
  throw C_UsageFailure(strFile, "its name tells no format",
                       "let it end in .png or .svg, or say --format");
}

}  // namespace

void AddPlotArguments(CLI::App& command, S_PlotArguments& arguments) {
  AddFileOptions(command, arguments.batch, "FILE");
  AddTargetOptions(command, arguments.target);
  AddOption(command, "--format", arguments.strFormat, "png (usual) or svg").OneOf({"png", "svg"});
  AddOption(command, "--size", arguments.strSize,
            "in pixels; if not said 1200x600, and 300 higher for each channel after the second")
      .TypeName("WxH");
  AddFlag(command, "--waveform", arguments.bWaveform, "the waveform alone");
  AddFlag(command, "--spectrogram", arguments.bSpectrogram, "the spectrogram alone");
  AddOption(command, "--from", arguments.strFrom, "begin here: 5.2, 1:30 or 8000s (samples)")
      .TypeName("TIME");
  AddOption(command, "--to", arguments.strTo, "end here").TypeName("TIME");
  AddOption(command, "--channel", arguments.options.dwChannel, "this one alone, counted from 1")
      .Check(WholeNumber(1, UINT32_MAX))
      .TypeName("N");
  AddOption(command, "--theme", arguments.strTheme, "light (usual) or dark")
      .OneOf({"light", "dark"});
  AddFlag(command, "--no-axes", arguments.bNoAxes, "panels without anything around them");
  AddThreadsOption(command, arguments.batch);
  AddVerboseOption(command, arguments.batch, "name each picture that is drawn",
                   AddQuietOption(command, arguments.batch));
}

// One panel alone, or both.
S_PlotOptions PlotOptionsOf(const S_PlotArguments& arguments) {
  S_PlotOptions options = arguments.options;
  SetSize(arguments.strSize, options);
  options.from = TimeOf("--from", arguments.strFrom);
  options.to = TimeOf("--to", arguments.strTo);
  if (options.to && *options.to <= options.from.value_or(*C_Time::OfSeconds(0.0))) {
    throw C_UsageFailure("--to is not after --from");
  }
  options.bWaveform = arguments.bWaveform || !arguments.bSpectrogram;
  options.bSpectrogram = arguments.bSpectrogram || !arguments.bWaveform;
  options.bAxes = !arguments.bNoAxes;
  options.bDark = arguments.strTheme == "dark";
  options.bSvg = WantsSvg(arguments);
  return options;
}

}  // namespace tool
