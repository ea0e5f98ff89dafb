// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <vector>

namespace tool {

// What each test of our formats looked for in a file, and what it found. None for standard input,
// which was read already, and for what cannot be opened.
std::vector<std::string> FormatTests(const std::string& strPath);

}  // namespace tool
