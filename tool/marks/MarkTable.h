// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "base/JsonText.h"

namespace tool {

// Rows of marks (MarkRows.h) as a table for people, in the order of their places.
// Where there are more than nMost, the last line says how many are not shown.
std::string MarkTable(const C_Json& rows, std::uint32_t dwRate, std::size_t nIndent, bool bColours,
                      std::size_t nMost = SIZE_MAX);

}  // namespace tool
