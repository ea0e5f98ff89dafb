// SPDX-License-Identifier: Apache-2.0
#include "convert/ConvertCommand.h"

#include <memory>
#include <string>
#include <utility>

#include "batch/MakeFiles.h"
#include "convert/Conversion.h"
#include "convert/ConvertArguments.h"
#include "convert/ManifestRun.h"
#include "sound/SoundInput.h"
#include "sound/StandardOutput.h"

namespace tool {
namespace {

constexpr const char* kDescription =
    "Turns sounds of any kind into Kestrel, Heron, WAV, VEMD or VEF. Reads all formats of voxplay, "
    "and FLAC, Ogg, Opus, MP3, AIFF and others. Samples stay exact where nothing has to be "
    "changed; channels and rates that a codec cannot have are converted. A-law and mu-law in WAV "
    "files are decoded as other programs decode them.\n\n"
    "Events, cue points, labels, loops and everything else beside the samples is kept where the "
    "target can hold it. One line says what it cannot.\n\n"
    "A target appears when it is whole, and never replaces a file unless -f is given. Files below "
    "a folder, and relative names in a list, keep their folders below that of -d. Where two would "
    "have the same name, both keep that of their source: x.wav.kst and x.flac.kst; and where that "
    "is the same as well, the folders that they come from: day1/x.kst and day2/x.kst. So names "
    "depend on what is converted together: when x.flac has come since, --skip-existing does not "
    "know that x.kst was made of x.wav, and makes x.wav.kst. With --manifest it does.\n\n"
    "With -r, files count that have an extension of sounds, or begin like one of ours; one line "
    "says how many others are left out.\n\n"
    "With --manifest, a file keeps what is done. The same command, or one without files, goes on "
    "where an earlier one has ended, however it did, and any number of them may run at a time. "
    "Files that have changed are converted again.";

int RunConvert(const S_ConvertArguments& arguments, C_Console& console) {
  if (!arguments.strManifest.empty()) return ConvertByManifest(arguments, console);
  const S_ConvertOptions options = ConvertOptionsOf(arguments);
  if (arguments.target.strFile == kStandardStream) RefuseTerminal();
  S_MakeRule make{arguments.batch, arguments.target, "", "converted"};
  if (arguments.target.IsMany()) make.strExtension = ExtensionOfFormat(FormatNameOf(arguments));
  return MakeFiles(
      make,
      [&](const S_FileJob& job, const S_TargetRule& rule, const C_FileReport& report,
          C_FileWatch& watch) { return ConvertFile(job, options, rule, report, watch); },
      console);
}

}  // namespace

void AddConvertCommand(C_CommandLine& commandLine) {
  const auto arguments = std::make_shared<S_ConvertArguments>();
  S_Command command;
  command.strName = "convert";
  command.strSummary = "convert sounds to Kestrel, Heron, WAV, VEMD or VEF";
  command.strDescription = kDescription;
  command.examples = {
      {"voxtool convert speech.flac -o speech.kst",
       "makes a Kestrel file of 16 kHz and one channel"},
      {"voxtool convert -r archive -d new --to heron4",
       "converts all sounds in a folder and below it, with all processors"},
      {"find . -name '*.kst' -print0 | voxtool convert --files-from - -0 -d wav --to wav",
       "converts the files that another program finds"},
      {"voxtool convert message.vef --read stream -o - --to wav | aplay",
       "sends a sound to another program"},
      {"voxtool convert --manifest archive.db -r archive -d new --to kestrel",
       "converts a large archive so that it can be interrupted and continued"},
  };
  command.fnRun = [arguments](C_Console& console) { return RunConvert(*arguments, console); };
  AddConvertArguments(commandLine.Add(std::move(command)), *arguments);
}

}  // namespace tool
