// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>

#include "options/CommandLine.h"

namespace tool {

// The manual page of a command, with the commands in it, or of the program; for man(1), section 1.
std::string ManualPage(const C_CommandLine& commandLine, const CLI::App& table);

// What the page is called: "voxtool-tags".
std::string ManualPageName(const CLI::App& table);

}  // namespace tool
