// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

// `plot`: draws sounds.
void AddPlotCommand(C_CommandLine& commandLine);

}  // namespace tool
