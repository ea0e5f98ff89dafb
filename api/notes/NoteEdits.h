// SPDX-License-Identifier: Apache-2.0
//
// Changes of notes, by the kinds and in the orders that voxplay.h states.
#pragma once

#include <cstddef>

#include "notes/Notes.h"
#include "voxplay.h"

namespace api {

// How many there are; 0 for a kind that is none.
std::size_t CountNotes(const S_Notes& notes, voxplay_note_kind eKind);

// Adds one at the end of its list, and leaves it there: adding many in any order then takes little
// time. True when PutInOrder has to be called before the list is used.
[[nodiscard]] bool AddEvent(S_Notes& notes, S_NoteEvent event);
[[nodiscard]] bool AddRange(std::vector<S_NoteRange>& ranges, const S_NoteRange& range);
// Sorts events by their frames and ranges by their first frames. Those of the same frame stay in
// the order in which they were added.
void PutInOrder(S_Notes& notes);

// Takes one out. False when there is no such note.
bool RemoveNote(S_Notes& notes, voxplay_note_kind eKind, std::size_t nIndex);
// Takes all of a kind out; for VOXPLAY_NOTE_LOOP the sampler record as well. False for a kind that
// is none.
bool ClearNotes(S_Notes& notes, voxplay_note_kind eKind);

}  // namespace api
