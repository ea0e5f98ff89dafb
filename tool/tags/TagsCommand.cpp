// SPDX-License-Identifier: Apache-2.0
#include "tags/TagsCommand.h"

#include "tags/Subcommands.h"

namespace tool {

void AddTagsCommand(C_CommandLine& commandLine) {
  CLI::App& command = commandLine.Add(
      {"tags",
       "show and change events, cue points, labels, silence, regions and loops",
       "Marks of sounds form one table. Each has a kind: an event has two commands and data; a "
       "cue point is a place with an id, to which labels, notes and texts belong, and a text may "
       "give it a length; silence and regions are ranges, and so are loops.\n\n"
       "Marks of WAV, VEMD and VEF files can be changed when voxtool decodes them itself: not "
       "those of WAV files with GSM, IMA ADPCM or MP3, nor of RIFX files. Samples, streams and "
       "all other chunks stay as they are, byte for byte, and a file is replaced in one step. If "
       "it has several names (hard links), the others keep the old one. Headers before streams "
       "hold no marks.\n\n"
       "In WAV and VEMD files, some labels of other programs read as events: \"take_1\" as event "
       "0/1. Such an event is listed, and it comes and goes with its label.\n\n"
       "Times are seconds (2.5), m:ss.mmm (1:02.500) or samples (32000s).",
       {{"voxtool tags list talk.wav", "show all marks"},
        {"voxtool tags add event talk.wav --at 1.5 --main 3", "add an event"},
        {"voxtool tags export talk.wav --labels -o talk.txt", "write a label track"},
        {"voxtool tags import talk.wav --labels talk.txt --replace", "and take it back"}},
       {}});
  AddListCommand(commandLine, command);
  AddExportCommand(commandLine, command);
  AddAddCommands(commandLine, command);
  AddRemoveCommand(commandLine, command);
  AddImportCommand(commandLine, command);
}

}  // namespace tool
