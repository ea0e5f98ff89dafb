// SPDX-License-Identifier: Apache-2.0
#include "manifest/ManifestCommand.h"

#include "manifest/Subcommands.h"

namespace tool {

void AddManifestCommand(C_CommandLine& commandLine) {
  CLI::App& command = commandLine.Add(
      {"manifest",
       "see what is done of an archive, and share it among machines",
       "\"voxtool convert --manifest\" keeps in a file what is to be done with an archive and what "
       "has been done. These commands show it. They also divide it into pieces, so that machines "
       "that share nothing but a folder can each work on one, and take the results back.\n\n"
       "A manifest is an SQLite database with a row for each file: its source, target, state and "
       "reason, and its frames and the checksum of its decoded sound.",
       {{"voxtool manifest status archive.db", "show how many files are done"},
        {"voxtool manifest failed archive.db", "list what has failed, and why"},
        {"voxtool manifest damaged archive.db", "list what is converted, but damaged or cut"},
        {"voxtool manifest split 16 archive.db -o piece-%d.db", "divide it among 16 machines"},
        {"voxtool manifest merge archive.db piece-*.db", "take back what they have done"}},
       {}});
  AddStatusCommand(commandLine, command);
  AddFailedCommand(commandLine, command);
  AddDamagedCommand(commandLine, command);
  AddSplitCommand(commandLine, command);
  AddMergeCommand(commandLine, command);
}

}  // namespace tool
