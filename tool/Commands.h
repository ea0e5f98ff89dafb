// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

// Adds all commands of the program.
void AddCommands(C_CommandLine& commandLine);

}  // namespace tool
