// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "options/CommandLine.h"

namespace tool {

// "manifest": what "convert --manifest" keeps, as people and other machines want it.
void AddManifestCommand(C_CommandLine& commandLine);

}  // namespace tool
