// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <string_view>

#include "voxplay.hpp"

inline void AddLabel(voxplay::Notes& notes, std::uint32_t dwID, std::string_view type,
                     const char* pszText) {
  voxplay::Label label{};
  label.cue_id = dwID;
  std::ranges::copy(type, label.type);
  label.text = pszText;
  notes.add(label);
}

inline void AddCue(voxplay::Notes& notes, std::uint32_t dwID, std::uint32_t dwFrame) {
  voxplay::Cue cue{};
  cue.id = dwID;
  cue.position = dwFrame;
  cue.sample_offset = dwFrame;
  std::ranges::copy(std::string_view("data"), cue.chunk);
  notes.add(cue);
}

inline void AddText(voxplay::Notes& notes, std::uint32_t dwID, std::uint32_t dwCount,
                    const char* pszText) {
  voxplay::RegionText text{};
  text.cue_id = dwID;
  text.count = dwCount;
  std::ranges::copy(std::string_view("rgn "), text.purpose);
  text.text = pszText;
  notes.add(text);
}

// Cue points from 1 on whose labels have every kind of text: commas, quotes, line ends, tabs,
// characters beyond ASCII, nothing, and what means something in label tracks.
inline voxplay::Notes NotesWithTexts() {
  voxplay::Notes notes;
  const char* const texts[] = {"plain",
                               "a, \"quoted\" one",
                               "two\nlines\r\nand more",
                               "tab\tin it",
                               "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xB5",
                               "",
                               "[event 1/2]",
                               "\"between quotes\"",
                               "\"\\n\"",
                               " blanks ",
                               "\\backslash",
                               "caf\xE9 in Windows-1252",
                               "=1+1"};
  std::uint32_t dwID = 0;
  for (const char* const pszText : texts) {
    ++dwID;
    AddCue(notes, dwID, dwID * 1000);
    AddLabel(notes, dwID, "labl", pszText);
  }
  AddCue(notes, ++dwID, 14500);  // without a label
  AddLabel(notes, 3, "note", "a note\non the third");
  AddText(notes, 4, 700, "");
  AddText(notes, 5, 800, "with \"words\"");
  return notes;
}

// The same with marks of every kind.
inline voxplay::Notes NotesOfAllKinds() {
  voxplay::Notes notes = NotesWithTexts();
  notes.add(voxplay::Event{500, 3, 5, 0, ""});
  notes.add(voxplay::Event{900, 65535, 0, 0, ""});
  notes.add_silence({2000, 400});
  notes.add_region({5000, 1});
  voxplay::Loop loop{};
  loop.type = 1;
  loop.first = 100;
  loop.last = 199;
  loop.play_count = 4;
  notes.add(loop);
  return notes;
}
