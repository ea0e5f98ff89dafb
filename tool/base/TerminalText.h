// SPDX-License-Identifier: Apache-2.0
//
// How much room texts take on a terminal. They are UTF-8, and printable (Utf8.h).
#pragma once

#include <cstddef>
#include <string>

namespace tool {

// The columns that it takes.
std::size_t ColumnsOf(const std::string& strText);

// The text, or as much of its end as fits, after "...".
std::string FittedEnd(const std::string& strText, std::size_t nColumns);

}  // namespace tool
