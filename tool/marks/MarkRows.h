// SPDX-License-Identifier: Apache-2.0
//
// All marks of a sound as one table, whose rows are JSON objects. Each row has
//
//   kind     "event", "cue", "label", "note", "text", "silence", "region" or "loop"
//   number   its place among those of its kind, from 1; labels and notes are counted together
//   id       of the cue point that it is or belongs to; of a loop, its own
//   start    frame; of what belongs to a cue point, that of the cue point
//   time     the same in seconds
//   length   frames, of ranges
//   name     what an event is described with, and the text of a label
//   text     of a note and of a text
//   hex      the bytes of name or text, where these are no UTF-8; the members hold them as what
//            they are in Windows-1252
//
// and what only its kind has: main_command, sub_command and data; position, chunk, chunk_start,
// block_start and sample_offset; purpose, country, language, dialect and code_page; type, fraction,
// last and play_count. Members that say nothing are left out, but not kind and number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "base/JsonText.h"
#include "voxplay.hpp"

namespace tool {

// An array, sorted by kind as above. The rate is that of the sound.
C_Json RowsOf(const voxplay::NotesView& notes, std::uint32_t dwRate);

// The list of the notes that a kind of row stands for; empty for a text that is no kind.
std::optional<voxplay_note_kind> ListOfKind(const std::string& strKind);
// Whether "label" or "note" is at this place of their list; true for the other kinds.
bool IsOfKind(const voxplay::NotesView& notes, const std::string& strKind, std::size_t nIndex);

}  // namespace tool
