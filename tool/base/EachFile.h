// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "base/Console.h"

namespace tool {

// Does the work on one of several files. Returns the line to complain with when it fails, and the
// others are to go on. What ends the work on all of them is thrown on: what cannot be meant,
// interrupts, disks that take nothing more, and that nobody reads standard output any more.
std::optional<std::string> FailureOf(const std::string& strPath,
                                     const std::function<void()>& fnWork);

// Does the work with one file after the other, and goes on after a failure, about which it
// complains. Returns the exit code of the command: 1 when something failed.
int ForEachFile(const std::vector<std::string>& files, C_Console& console,
                const std::function<void(const std::string& strPath)>& fnWork);

}  // namespace tool
