// SPDX-License-Identifier: Apache-2.0
//
// What `voxtool plot` continues as.
#include "Commands.h"
#include "base/Interrupt.h"
#include "plot/DrawFiles.h"

int main(int nArguments, char** ppszArguments) {
  tool::CatchInterrupts();
  tool::C_Console console;
  tool::C_CommandLine commandLine;
  tool::AddCommands(commandLine, &tool::DrawFiles);
  return commandLine.Run(nArguments, ppszArguments, console);
}
