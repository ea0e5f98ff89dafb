// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include "completion/CompletionCommand.h"
#include "manual/ManualCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) {
  AddCompletionCommand(commandLine);
  AddManualCommand(commandLine);
}

}  // namespace tool
