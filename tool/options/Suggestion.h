// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "options/CommandOptions.h"

namespace tool {

// The candidate that somebody who typed the word probably meant; none when all are too different.
std::optional<std::string> Nearest(const std::string& strWord,
                                   const std::vector<std::string>& candidates);

// What is wrong about the first argument that the command does not know, and what may have been
// meant; none when it knows all of them.
std::optional<std::string> UnknownWord(const CLI::App& table);

}  // namespace tool
