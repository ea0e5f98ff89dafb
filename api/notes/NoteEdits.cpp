// SPDX-License-Identifier: Apache-2.0
#include "notes/NoteEdits.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace api {
namespace {

constexpr auto kByFrame = [](const S_NoteEvent& a, const S_NoteEvent& b) {
  return a.qwFrame < b.qwFrame;
};
constexpr auto kByFirst = [](const S_NoteRange& a, const S_NoteRange& b) {
  return a.qwFirst < b.qwFirst;
};

// Most of a list is in order already.
template <typename Note, typename Less>
void Sort(std::vector<Note>& notes, Less less) {
  const auto tail = std::is_sorted_until(notes.begin(), notes.end(), less);
  if (tail == notes.end()) return;
  std::stable_sort(tail, notes.end(), less);
  std::inplace_merge(notes.begin(), tail, notes.end(), less);
}

// Calls fnWork with the list of a kind. False for a kind that is none.
template <typename Notes, typename Work>
bool WithList(Notes& notes, voxplay_note_kind eKind, Work fnWork) {
  switch (eKind) {
    case VOXPLAY_NOTE_EVENT:
      fnWork(notes.events);
      return true;
    case VOXPLAY_NOTE_SILENCE:
      fnWork(notes.silence);
      return true;
    case VOXPLAY_NOTE_REGION:
      fnWork(notes.regions);
      return true;
    case VOXPLAY_NOTE_CUE:
      fnWork(notes.cues);
      return true;
    case VOXPLAY_NOTE_LABEL:
      fnWork(notes.labels);
      return true;
    case VOXPLAY_NOTE_REGION_TEXT:
      fnWork(notes.texts);
      return true;
    case VOXPLAY_NOTE_LOOP:
      fnWork(notes.loops);
      return true;
    case VOXPLAY_NOTE_CHUNK:
      fnWork(notes.chunks);
      return true;
  }
  return false;
}

}  // namespace

std::size_t CountNotes(const S_Notes& notes, voxplay_note_kind eKind) {
  std::size_t nCount = 0;
  WithList(notes, eKind, [&](const auto& list) { nCount = list.size(); });
  return nCount;
}

bool AddEvent(S_Notes& notes, S_NoteEvent event) {
  const bool bBefore = !notes.events.empty() && event.qwFrame < notes.events.back().qwFrame;
  notes.events.push_back(std::move(event));
  return bBefore;
}

bool AddRange(std::vector<S_NoteRange>& ranges, const S_NoteRange& range) {
  const bool bBefore = !ranges.empty() && range.qwFirst < ranges.back().qwFirst;
  ranges.push_back(range);
  return bBefore;
}

void PutInOrder(S_Notes& notes) {
  Sort(notes.events, kByFrame);
  Sort(notes.silence, kByFirst);
  Sort(notes.regions, kByFirst);
}

bool RemoveNote(S_Notes& notes, voxplay_note_kind eKind, std::size_t nIndex) {
  if (nIndex >= CountNotes(notes, eKind)) return false;
  return WithList(notes, eKind, [nIndex](auto& list) {
    list.erase(list.begin() + static_cast<std::ptrdiff_t>(nIndex));
  });
}

bool ClearNotes(S_Notes& notes, voxplay_note_kind eKind) {
  if (eKind == VOXPLAY_NOTE_LOOP) notes.sampler = {};
  return WithList(notes, eKind, [](auto& list) { list.clear(); });
}

}  // namespace api
