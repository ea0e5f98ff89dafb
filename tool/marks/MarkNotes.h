// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>

#include "marks/RowSource.h"
#include "voxplay.hpp"

namespace tool {

// What is wrong with a row: "row 3: start: "x" is not a whole number up to 4294967295".
class C_BadRow : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Adds what rows (MarkRows.h) stand for to notes, of a sound of this rate. Rows that people have
// written may say less, and must not contradict themselves:
//
//   - without start, time counts: a number of seconds, or a text as C_Time takes it. Both must be
//     the same place; position and sample_offset of a cue point may not make it another one
//   - hex counts as long as name or text are what its bytes look like
//   - without length, duration counts, which is written like time
//   - a cue point without id gets one that is free
//   - a name of a cue point becomes its label, a text its note, and a length that of its text
//   - a label, a note or a text without id gets a cue point of its own, at its start
//
// Cue points get other ids where the notes have these already, and what belongs to them follows.
// Numbers may be texts of digits. Returns how many rows
// there were. Throws C_BadRow, also for places beyond the end where that is given; the notes are
// then half done.
std::size_t AddRows(const PFN_Rows& fnRows, std::uint32_t dwRate, voxplay::Notes& notes,
                    std::uint64_t qwEnd = UINT64_MAX);

}  // namespace tool
