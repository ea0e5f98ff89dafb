// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <span>
#include <string>
#include <vector>

namespace tool {

// "--normalize -3" as "--normalize=-3", and so on: a negative number after an option is its value,
// also where the option may go without one. "-0" is an option.
std::vector<std::string> WithNegativeValues(std::span<const char* const> arguments);

}  // namespace tool
