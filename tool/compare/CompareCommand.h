// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

// `compare`: says how two sounds differ.
void AddCompareCommand(C_CommandLine& commandLine);

}  // namespace tool
