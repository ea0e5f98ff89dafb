// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"
#include "base/Interrupt.h"
#include "base/OwnProgram.h"

int main(int nArguments, char** ppszArguments) {
  tool::CatchInterrupts();
  tool::C_Console console;
  tool::C_CommandLine commandLine;
  // Most commands draw nothing, and loading what draws takes longer than all the rest. So another
  // program of the same commands does that.
  tool::AddCommandsFor(nArguments > 1 ? ppszArguments[1] : "", commandLine,
                       [ppszArguments](const tool::S_PlotArguments&, tool::C_Console&) -> int {
                         tool::ContinueAs("voxtool-plot", ppszArguments);
                       });
  return commandLine.Run(nArguments, ppszArguments, console);
}
