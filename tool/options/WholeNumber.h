// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>

namespace tool {

// A check for options and operands: a number of digits alone, in these bounds. Its message names
// them, unless there is no upper one.
CLI::Validator WholeNumber(std::uint64_t qwLeast, std::uint64_t qwMost);

}  // namespace tool
