// SPDX-License-Identifier: Apache-2.0
//
// All marks of a sound as one table, whose rows are JSON objects. Each row has
//
//   kind     "event", "cue", "label", "note", "text", "silence", "region" or "loop"
//   number   its place among those of its kind, from 1; labels and notes are counted together
//   id       of the cue point that it is or belongs to; of a loop, its own
//   start    frame; of a cue point as FrameOf has it (CueFrame.h), and of what belongs to one, its
//   time     the same in seconds, where the sound has a rate
//   length   frames, of ranges
//   name     what an event is described with, and the text of a label
//   text     of a note and of a text
//   hex      the bytes of name or text, where these are no UTF-8; the members hold them as what
//            they are in Windows-1252
//
// and what only its kind has: main_command, sub_command and data; chunk, chunk_start and
// block_start of a cue point, and its position and sample_offset where they are not its start;
// purpose, country, language, dialect and code_page; type, fraction, last and play_count. Members
// that say nothing are left out, but not kind and number.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>

#include "base/JsonText.h"
#include "voxplay.hpp"

namespace tool {

// The rows of notes, sorted by kind as above. Each is made when it is asked for, so that many of
// them take no memory.
class C_MarkRows {
 public:
  // The notes must outlive the object. The rate is that of the sound.
  C_MarkRows(const voxplay::NotesView& notes, std::uint32_t dwRate);

  [[nodiscard]] std::size_t Count() const noexcept { return m_nCount; }
  // nRow is below Count().
  [[nodiscard]] C_Json Row(std::size_t nRow) const;
  // The same for all rows, one after the other.
  template <typename Work>
  void ForEach(Work&& work) const {
    for (std::size_t nRow = 0; nRow < m_nCount; ++nRow) work(Row(nRow));
  }
  [[nodiscard]] std::uint32_t Rate() const noexcept { return m_dwRate; }

 private:
  [[nodiscard]] C_Json RowOf(voxplay_note_kind eList, std::size_t nIndex) const;
  void Place(C_Json& row, std::uint64_t qwStart, std::uint64_t qwLength = 0) const;
  void PlaceAtCue(C_Json& row, std::uint32_t dwID, std::uint64_t qwLength = 0) const;
  void Fill(C_Json& row, const voxplay::Event& event) const;
  void Fill(C_Json& row, const voxplay::Cue& cue) const;
  void Fill(C_Json& row, const voxplay::Label& label) const;
  void Fill(C_Json& row, const voxplay::RegionText& text) const;
  void Fill(C_Json& row, const voxplay::Range& range) const;
  void Fill(C_Json& row, const voxplay::Loop& loop) const;

  voxplay::NotesView m_notes;
  std::uint32_t m_dwRate;
  std::size_t m_nCount = 0;
  std::unordered_map<std::uint32_t, std::uint32_t> m_starts;  // of the first cue point of each id
};

// All of them, as an array.
C_Json RowsOf(const voxplay::NotesView& notes, std::uint32_t dwRate);

// The list of the notes that a kind of row stands for; empty for a text that is no kind.
std::optional<voxplay_note_kind> ListOfKind(const std::string& strKind);
// Whether "label" or "note" is at this place of their list; true for the other kinds.
bool IsOfKind(const voxplay::NotesView& notes, const std::string& strKind, std::size_t nIndex);

}  // namespace tool
