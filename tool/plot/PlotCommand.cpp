// SPDX-License-Identifier: Apache-2.0
#include "plot/PlotCommand.h"

#include <memory>
#include <utility>

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
    "Where they would have the same name, they keep that of the sound: x.wav.png and x.kst.png; "
    "and where that is the same as well, the folders that they come from: day1/x.png and "
    "day2/x.png.";

}  // namespace

void AddPlotCommand(C_CommandLine& commandLine, PFN_Draw fnDraw) {
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
  command.fnRun = [arguments, fnDraw = std::move(fnDraw)](C_Console& console) {
    return fnDraw(*arguments, console);
  };
  AddPlotArguments(commandLine.Add(std::move(command)), *arguments);
}

}  // namespace tool
