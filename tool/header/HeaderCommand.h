// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

// "voxtool header": shows, adds and strips the SP header.
void AddHeaderCommand(C_CommandLine& commandLine);

}  // namespace tool
