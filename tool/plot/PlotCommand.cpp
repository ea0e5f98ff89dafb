// SPDX-License-Identifier: Apache-2.0
#include "plot/PlotCommand.h"

#include <charconv>
#include <filesystem>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

#include "base/Failure.h"
#include "base/Interrupt.h"
#include "base/ReplacedFile.h"
#include "base/TimeText.h"
#include "plot/Picture.h"
#include "plot/PlotTargets.h"

namespace tool {
namespace {

constexpr const char* kDescription =
    "Draws sounds: the waveform above, the spectrogram below, all channels one below the other, "
    "with events, cue points, silence, uncompressed regions and loops, and red marks where three "
    "or "
    "more samples in a row are at full scale.\n"
    "\n"
    "The waveform shows the highest and lowest sample of each column, and within them the root "
    "mean "
    "square. The spectrogram goes from 0 Hz to half of the sample rate and from -100 to 0 dBFS; a "
    "sine of full scale has 0 dBFS. Marks that stand too close have no name, or only a short line; "
    "how many there are is said above.\n"
    "\n"
    "A picture appears under its name when it is complete. The same sound gives the same bytes. "
    "Ends "
    "with 1 when a sound could not be drawn; the others are drawn all the same.";

struct S_PlotArguments {
  S_PlotPlaces places;
  S_PlotOptions options;
  std::string strSize;
  std::string strFrom;
  std::string strTo;
  std::string strTheme = "light";
  bool bWaveform = false;
  bool bSpectrogram = false;
  bool bNoAxes = false;
  bool bForce = false;
  bool bQuiet = false;
};

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
  throw C_UsageFailure("--size", strSize,
                       "is no size: give one from 16x16 to 8192x8192, such as 1200x600");
}

std::optional<C_Time> TimeOf(const char* pszOption, const std::string& strTime) {
  if (strTime.empty()) return {};
  const auto time = C_Time::Parse(strTime);
  if (time) return time;
  throw C_UsageFailure(pszOption, "\"" + strTime + "\" is no time",
                       std::string("write ") + C_Time::kForms);
}

// One panel alone, or both.
void SetOptions(S_PlotArguments& arguments) {
  S_PlotOptions& options = arguments.options;
  SetSize(arguments.strSize, options);
  options.from = TimeOf("--from", arguments.strFrom);
  options.to = TimeOf("--to", arguments.strTo);
  options.bWaveform = arguments.bWaveform || !arguments.bSpectrogram;
  options.bSpectrogram = arguments.bSpectrogram || !arguments.bWaveform;
  options.bAxes = !arguments.bNoAxes;
  options.bDark = arguments.strTheme == "dark";
  options.bSvg = WantsSvg(arguments.places);
}

void RefuseSameFile(const std::string& strSource, const std::string& strTarget) {
  std::error_code error;
  if (!std::filesystem::equivalent(strSource, strTarget, error) || error) return;
  throw C_Failure(strTarget, "is not written", "it is the sound itself");
}

class C_Plotting {
 public:
  C_Plotting(const S_PlotArguments& arguments, C_Console& console)
      : m_arguments(arguments), m_console(console) {}

  int Run() {
    const auto targets = PlotTargets(m_arguments.places, m_arguments.options.bSvg);
    MakeFolder();
    for (std::size_t n = 0; n < targets.size(); ++n) {
      ThrowIfInterrupted();
      Try(m_arguments.places.sources[n], targets[n]);
    }
    return m_bFailed ? 1 : 0;
  }

 private:
  void MakeFolder() const {
    const std::string& strFolder = m_arguments.places.strFolder;
    if (strFolder.empty()) return;
    std::error_code error;
    std::filesystem::create_directories(strFolder, error);
    if (error) throw C_Failure(strFolder, "cannot be made", error.message());
  }

  void Try(const std::string& strSource, const std::string& strTarget) {
    try {
      DrawTo(strSource, strTarget);
    } catch (const C_UsageFailure&) {
      throw;
    } catch (const std::bad_alloc&) {
      Fail(NameOf(strSource) + ": cannot be drawn: there is not enough memory");
    } catch (const std::runtime_error& failure) {
      Fail(failure.what());
    }
    m_console.ShowProgress("");
  }
  void Fail(const std::string& strLine) {
    m_bFailed = true;
    m_console.Complain(strLine);
  }

  void DrawTo(const std::string& strSource, const std::string& strTarget) {
    if (strTarget == kStandardStream) {
      m_console.Print(PictureOfFile(strSource));
      return;
    }
    RefuseSameFile(strSource, strTarget);
    C_ReplacedFile target(strTarget, m_arguments.bForce);
    const std::string strPicture = PictureOfFile(strSource);
    target.Write(std::as_bytes(std::span(strPicture)));
    ThrowIfInterrupted();
    target.TakePlace();
  }
  std::string PictureOfFile(const std::string& strSource) {
    const C_SoundInputPtr input = OpenSound(strSource);
    const std::string strName = NameOf(strSource);
    return PictureOf(
        *input, strName, m_arguments.options,
        [&](std::uint64_t qwDone, std::uint64_t qwAll) { ShowProgress(strName, qwDone, qwAll); });
  }

  void ShowProgress(const std::string& strName, std::uint64_t qwDone, std::uint64_t qwAll) {
    if (m_arguments.bQuiet || !m_console.ShowsErrors()) return;
    const double dPart = static_cast<double>(qwDone) / static_cast<double>(qwAll);
    std::string strLine = std::to_string(static_cast<int>(dPart * 100)) + " %  " + strName;
    if (strLine.size() >= m_console.Columns()) strLine.resize(m_console.Columns() - 1);
    m_console.ShowProgress(strLine);
  }

  const S_PlotArguments& m_arguments;
  C_Console& m_console;
  bool m_bFailed = false;
};

void AddOptions(CLI::App& app, S_PlotArguments& arguments) {
  app.add_option("FILE", arguments.places.sources, "sounds; - is standard input")
      ->required()
      ->type_name("FILE");
  app.add_option("-o,--output", arguments.places.strOut,
                 "the picture, .png or .svg; - is standard output")
      ->type_name("FILE");
  app.add_option("-d,--directory", arguments.places.strFolder,
                 "the folder for pictures, named like the sounds")
      ->type_name("DIR");
  app.add_option("--format", arguments.places.strFormat, "png (usual) or svg")
      ->check(CLI::IsMember({"png", "svg"}));
  app.add_option("--size", arguments.strSize, "in pixels; 1200x600 if not said")->type_name("WxH");
  app.add_flag("--waveform", arguments.bWaveform, "the waveform alone");
  app.add_flag("--spectrogram", arguments.bSpectrogram, "the spectrogram alone");
  app.add_option("--from", arguments.strFrom, "begin here: 5.2, 1:30 or 8000s (samples)")
      ->type_name("TIME");
  app.add_option("--to", arguments.strTo, "end here")->type_name("TIME");
  app.add_option("--channel", arguments.options.dwChannel, "this one alone, counted from 1")
      ->check(CLI::PositiveNumber)
      ->type_name("N");
  app.add_option("--theme", arguments.strTheme, "light (usual) or dark")
      ->check(CLI::IsMember({"light", "dark"}));
  app.add_flag("--no-axes", arguments.bNoAxes, "panels without anything around them");
  app.add_flag("-f,--force", arguments.bForce, "write over pictures that exist");
  app.add_flag("-q,--quiet", arguments.bQuiet, "show no progress");
}

}  // namespace

void AddPlotCommand(C_CommandLine& commandLine) {
  auto arguments = std::make_shared<S_PlotArguments>();
  S_Command command;
  command.strName = "plot";
  command.strSummary = "draw waveforms and spectrograms as PNG or SVG";
  command.strDescription = kDescription;
  command.examples = {
      {"voxtool plot speech.kst -o speech.png", "waveform and spectrogram of a sound"},
      {"voxtool plot *.wav -d pictures --format svg", "an SVG picture for each of many sounds"},
      {"voxtool plot song.flac -o part.png --from 1:30 --to 1:40 --theme dark",
       "ten seconds on a dark background"},
      {"voxtool plot speech.kst -o icon.png --no-axes --size 256x256", "a small picture"}};
  command.fnRun = [arguments](C_Console& console) {
    SetOptions(*arguments);
    return C_Plotting(*arguments, console).Run();
  };
  AddOptions(commandLine.Add(std::move(command)), *arguments);
}

}  // namespace tool
