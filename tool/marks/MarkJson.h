// SPDX-License-Identifier: Apache-2.0
//
// Rows of marks (MarkRows.h) as JSON, written and read piece by piece.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "marks/MarkRows.h"
#include "marks/RowSource.h"

namespace tool {

// Writes an object as JsonElement would. file has what is said of the file; the rows become its
// member "marks". fnWrite takes the text, a piece at a time.
void WriteMarksJson(const C_Json& file, const C_MarkRows& rows,
                    const std::function<void(std::string_view)>& fnWrite);

// The rows of a text that is an array of rows, or an object with such an array as its member
// "marks", or an array with one such object, which is what "tags export" writes of a file. The text
// must outlive the function. Throws C_BadRow for any other text, for members that rows do not have,
// and for marks of another schema or that count frames of another rate.
PFN_Rows RowsOfJson(std::string_view text, std::uint32_t dwRate);

}  // namespace tool
