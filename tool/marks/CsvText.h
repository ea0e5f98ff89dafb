// SPDX-License-Identifier: Apache-2.0
//
// Tables as comma-separated values, by RFC 4180.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tool {

using C_CsvRow = std::vector<std::string>;

// A line of the table, with its line end. Fields with commas, quotes or line ends are quoted, and
// empty lines do not arise.
std::string CsvLine(const C_CsvRow& row);

// Read back exactly, whatever the fields hold. Lines may also end with a line feed alone, fields
// may be separated by semicolons or tabs where the first line has no commas, and the mark that some
// programs put before UTF-8 is passed over. Empty lines are left out. Throws C_BadRow for a quote
// that does not end.
std::vector<C_CsvRow> ParseCsv(std::string_view text);

}  // namespace tool
