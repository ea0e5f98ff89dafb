// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "base/JsonText.h"
#include "marks/MarkRows.h"

namespace tool {

// Marks as a table for people, in the order of their places. It is written line by line.
void WriteMarkTable(const C_MarkRows& rows, std::size_t nIndent, bool bColours,
                    const std::function<void(std::string_view)>& fnWrite);

// The same of rows in an array (MarkRows.h). Where there are more than nMost, the last line says
// how many are not shown.
std::string MarkTable(const C_Json& rows, std::uint32_t dwRate, std::size_t nIndent, bool bColours,
                      std::size_t nMost = SIZE_MAX);

}  // namespace tool
