// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include "completion/CompletionCommand.h"
#include "manual/ManualCommand.h"
#include "play/PlayCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) {
  AddCompletionCommand(commandLine);
  AddPlayCommand(commandLine);
  AddManualCommand(commandLine);
}

}  // namespace tool
