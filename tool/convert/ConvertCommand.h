// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

// "convert": turns sounds of any kind into those that voxplay.h writes.
void AddConvertCommand(C_CommandLine& commandLine);

}  // namespace tool
