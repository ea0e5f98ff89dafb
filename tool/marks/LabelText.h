// SPDX-License-Identifier: Apache-2.0
//
// Marks as label tracks of sound editors have them, one line for each: its start in seconds, a tab,
// its end, a tab, and a text. A point ends where it starts. Lines that begin with a backslash say
// more of the line before, and are passed over.
//
//   cue point      a point with its label; a range where it has a text without further content
//   event          a point      "[event 3/5]", "[event 3/5/7] description": commands and data
//   silence        a range      "[silence]"
//   region         a range      "[region]"
//   loop           a range      "[loop 0/2]": type and count
//   note           a point      "[note] text", after the line of its cue point
//   another text   a range      "[text] text", in the same way
//
// Texts stand as QuotedText.h describes. What does not come back: ids, labels without a cue point,
// and the members of rows that have no place here.
#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "marks/RowSource.h"
#include "voxplay.hpp"

namespace tool {

// fnWrite takes one line after the other. The rate is not 0.
void WriteLabelText(const voxplay::NotesView& notes, std::uint32_t dwRate,
                    const std::function<void(std::string_view)>& fnWrite);
// As rows (MarkRows.h) whose cue points count from 1. The text must outlive the function.
PFN_Rows RowsOfLabelText(std::string_view text, std::uint32_t dwRate);

}  // namespace tool
