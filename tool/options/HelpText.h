// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "options/CommandLine.h"

namespace tool {

// What --help prints about a command, or about the program, in lines of at most this many columns
// where words allow it.
std::string HelpText(const C_CommandLine& commandLine, const CLI::App& table, std::size_t nColumns);

}  // namespace tool
