// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

void AddManualCommand(C_CommandLine& commandLine);

}  // namespace tool
