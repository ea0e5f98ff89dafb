// SPDX-License-Identifier: Apache-2.0
#include "Commands.h"

namespace tool {

void AddCommands(C_CommandLine& /*commandLine*/) {}

}  // namespace tool
