// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "base/Console.h"

namespace tool {

// Does the work with one file after the other, and goes on after a failure, about which it
// complains. Returns the exit code of the command: 1 when something failed. What cannot be meant,
// interrupts and a lack of memory are thrown on.
int ForEachFile(const std::vector<std::string>& files, C_Console& console,
                const std::function<void(const std::string& strPath)>& fnWork);

}  // namespace tool
