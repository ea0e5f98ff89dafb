// SPDX-License-Identifier: Apache-2.0
//
// Rows of marks (MarkRows.h) as comma-separated values. The first line names the members.
#pragma once

#include <string>
#include <string_view>

#include "base/JsonText.h"

namespace tool {

// The columns that every table has come first: kind, number, id, start, time, length, name, text,
// main_command, sub_command and data. Further ones follow where a row has them. A table of several
// files has their names in a column "file" before these.
std::string CsvOf(const C_Json& rows);

// The other way round; all values are texts. Throws C_BadRow.
C_Json RowsOfCsv(std::string_view text);

}  // namespace tool
