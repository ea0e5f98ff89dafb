// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

// "voxtool info": what files are and what they hold.
void AddInfoCommand(C_CommandLine& commandLine);

}  // namespace tool
