// SPDX-License-Identifier: Apache-2.0
//
// Cue points and labels for the notes of a sound: those of other makers as they are, and after them
// the library's own for events, silence and regions.
#pragma once

#include <string>
#include <vector>

#include "notes/MarkChunks.h"
#include "notes/Notes.h"
#include "notes/RiffNotes.h"

namespace api {

struct S_WrittenMarks {
  std::vector<S_NoteCue> cues;
  C_LabelListWriter list;
  std::vector<std::string> lost;
};

// Where a label of another maker, "take_1", says the same as an event at its cue point, no label is
// added for the event: there would be two events when the file is read. Labels of the library's own
// stand before such labels where the order of events at the same frame asks for it.
S_WrittenMarks WriteMarks(const S_Notes& notes, E_RiffForm eForm);

}  // namespace api
