// SPDX-License-Identifier: Apache-2.0
//
// Rows of marks (MarkRows.h) that are read from a text. They are never in memory all at once.
#pragma once

#include <functional>
#include <string>

#include "base/JsonText.h"

namespace tool {

// Is told a row, and where it stands: "row 3" or "line 4".
using PFN_Row = std::function<void(const C_Json& row, const std::string& strPlace)>;

// Goes through all rows, from the first on each time. Throws C_BadRow (MarkNotes.h), and what fnRow
// throws.
using PFN_Rows = std::function<void(const PFN_Row& fnRow)>;

// The rows of an array, which must outlive the function.
PFN_Rows RowsIn(const C_Json& array);

}  // namespace tool
