// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

// "voxtool check": whether files are whole and undamaged.
void AddCheckCommand(C_CommandLine& commandLine);

}  // namespace tool
