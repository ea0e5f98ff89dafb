// SPDX-License-Identifier: Apache-2.0
//
// The commands that "voxtool manifest" holds.
#pragma once

#include "options/CommandLine.h"

namespace tool {

void AddStatusCommand(C_CommandLine& commandLine, CLI::App& manifest);
void AddFailedCommand(C_CommandLine& commandLine, CLI::App& manifest);
void AddDamagedCommand(C_CommandLine& commandLine, CLI::App& manifest);
void AddSplitCommand(C_CommandLine& commandLine, CLI::App& manifest);
void AddMergeCommand(C_CommandLine& commandLine, CLI::App& manifest);

}  // namespace tool
