// SPDX-License-Identifier: Apache-2.0
//
// Texts from files and their names, as a terminal may show them. Bytes are UTF-8.
#pragma once

#include <cstddef>
#include <string>

namespace tool {

// The text with a "?" for everything that would not be shown but obeyed, and for bytes that are no
// character.
std::string Printable(const std::string& strText);

// Of a printable text: the columns that it takes.
std::size_t ColumnsOf(const std::string& strText);

// The text, or as much of its end as fits, after "...".
std::string FittedEnd(const std::string& strText, std::size_t nColumns);

}  // namespace tool
