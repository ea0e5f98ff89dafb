// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

void AddCompletionCommand(C_CommandLine& commandLine);

}  // namespace tool
