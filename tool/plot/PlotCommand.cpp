// SPDX-License-Identifier: Apache-2.0
#include "plot/PlotCommand.h"

#include <memory>
#include <utility>

#include "base/Failure.h"
#include "batch/MakeFiles.h"
#include "plot/FilePicture.h"
#include "plot/PlotArguments.h"
#include "sound/SoundInput.h"

namespace tool {
namespace {

constexpr const char* kDescription =
    "Draws sounds: the waveform above, the spectrogram below, all channels one below the other, "
    "with events, cue points, silence, uncompressed regions and loops, and red marks where three "
    "or more samples in a row are at full scale.\n\n"
    "The waveform shows the highest and lowest sample of each column, and within them the root "
    "mean square. The spectrogram goes from 0 Hz to half of the sample rate and from -100 to 0 "
    "dBFS; a sine of full scale has 0 dBFS. Marks that stand too close have no name, or only a "
    "short line; how many there are is said above.\n\n"
    "A picture appears under its name when it is complete. The same sound gives the same bytes. "
    "Ends with 1 when a sound could not be drawn; the others are drawn all the same. Pictures of "
    "sounds below a folder, and of relative names in a list, keep their folders below that of -d. "
    "Where they would have the same name, they keep that of the sound: x.wav.png and x.kst.png.";

// The bytes of a PNG file mean other things to a terminal.
void RefuseTerminal(const S_PlotArguments& arguments, const S_PlotOptions& options,
                    const C_Console& console) {
  if (arguments.target.strFile != kStandardStream || options.bSvg || !console.ShowsOutput()) return;
  throw C_UsageFailure("standard output", "is a terminal, which shows no pictures",
                       "send it to a file or another program");
}

int RunPlot(const S_PlotArguments& arguments, C_Console& console) {
  const S_PlotOptions options = PlotOptionsOf(arguments);
  RefuseTerminal(arguments, options, console);
  return MakeFiles(
      {arguments.batch, arguments.target, options.bSvg ? ".svg" : ".png", "drawn"},
      [&](const S_FileJob& job, const S_TargetRule& rule, const C_FileReport& report,
          C_FileWatch& watch) {
        S_FileResult result = DrawFile(job, options, rule, report, watch, console);
        if (result.eState == tagFileState::FILE_DONE) report.Detail(job.strTarget + ": drawn");
        return result;
      },
      console);
}

}  // namespace

void AddPlotCommand(C_CommandLine& commandLine) {
  const auto arguments = std::make_shared<S_PlotArguments>();
  S_Command command;
  command.strName = "plot";
  command.strSummary = "draw waveforms and spectrograms as PNG or SVG";
  command.strDescription = kDescription;
  command.examples = {
      {"voxtool plot speech.kst -o speech.png",
       "draws the waveform and the spectrogram of a sound"},
      {"voxtool plot -r archive -d pictures --format svg",
       "draws all sounds in a folder and below it, with all processors"},
      {"voxtool plot song.flac -o part.png --from 1:30 --to 1:40 --theme dark",
       "draws ten seconds on a dark background"},
      {"voxtool plot speech.kst -o icon.png --no-axes --size 256x256", "makes a small picture"}};
  command.fnRun = [arguments](C_Console& console) { return RunPlot(*arguments, console); };
  AddPlotArguments(commandLine.Add(std::move(command)), *arguments);
}

}  // namespace tool
