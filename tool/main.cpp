// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"
#include "base/Interrupt.h"

int main(int nArguments, char** ppszArguments) {
  tool::CatchInterrupts();
  tool::C_Console console;
  tool::C_CommandLine commandLine;
  tool::AddCommands(commandLine);
  return commandLine.Run(nArguments, ppszArguments, console);
}
