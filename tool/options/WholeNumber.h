// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "options/CommandOptions.h"

namespace tool {

// A check for options and operands: a number of digits alone, in these bounds. Its message names
// them, unless there is no upper one.
PFN_CheckValue WholeNumber(std::uint64_t qwLeast, std::uint64_t qwMost);

}  // namespace tool
