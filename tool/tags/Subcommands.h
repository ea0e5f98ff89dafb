// SPDX-License-Identifier: Apache-2.0
//
// The commands that "voxtool tags" holds.
#pragma once

#include "options/CommandLine.h"

namespace tool {

void AddListCommand(C_CommandLine& commandLine, CLI::App& tags);
void AddExportCommand(C_CommandLine& commandLine, CLI::App& tags);
// "tags add event", "tags add cue" and so on.
void AddAddCommands(C_CommandLine& commandLine, CLI::App& tags);
void AddRemoveCommand(C_CommandLine& commandLine, CLI::App& tags);
void AddImportCommand(C_CommandLine& commandLine, CLI::App& tags);

}  // namespace tool
