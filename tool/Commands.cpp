// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

#include "convert/ConvertCommand.h"

namespace tool {

void AddCommands(C_CommandLine& commandLine) { AddConvertCommand(commandLine); }

}  // namespace tool
