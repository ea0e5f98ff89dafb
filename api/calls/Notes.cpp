// SPDX-License-Identifier: Apache-2.0
//
// The functions of voxplay.h for notes.
#include <new>
#include <string>
#include <utility>
#include <vector>

#include "calls/Guard.h"
#include "calls/NoteRecords.h"
#include "calls/NotesObject.h"
#include "calls/SizedRecord.h"

namespace {

using api::CopyOut;
using api::NotesOf;
using api::S_Notes;

// Notes have no message of their own.
template <typename Work>
voxplay_status Do(Work&& work) noexcept {
  return api::Guarded(nullptr, std::string(), std::forward<Work>(work));
}

voxplay_status StatusOf(bool bDone) noexcept { return bDone ? VOXPLAY_OK : VOXPLAY_BAD_ARGUMENT; }

// Copies the item with this index of one of the lists.
template <typename List, typename Record, typename First>
voxplay_status Get(const voxplay_notes* pNotes, List S_Notes::*pList, std::size_t nIndex,
                   First Record::*pFirst, Record* pTarget, std::size_t cbTarget) noexcept {
  return Do([=] {
    if (pNotes == nullptr) return VOXPLAY_BAD_ARGUMENT;
    const List& list = NotesOf(*pNotes).*pList;
    if (nIndex >= list.size()) return VOXPLAY_BAD_ARGUMENT;
    return StatusOf(CopyOut(api::RecordOf(list[nIndex]), pFirst, pTarget, cbTarget));
  });
}

// Gives the caller's record to fnTake, as a note.
template <typename Record, typename Take>
voxplay_status WithNote(voxplay_notes* pNotes, const Record* pRecord, std::size_t cbRecord,
                        Take fnTake) noexcept {
  return Do([&] {
    if (pNotes == nullptr) return VOXPLAY_BAD_ARGUMENT;
    auto note = api::NoteOf(pRecord, cbRecord);
    if (!note) return VOXPLAY_BAD_ARGUMENT;
    fnTake(*pNotes, std::move(*note));
    return VOXPLAY_OK;
  });
}

// Adds it to one of the lists that are in the order of adding.
template <typename Record, typename Note>
voxplay_status Add(voxplay_notes* pNotes, std::vector<Note> S_Notes::*pList, const Record* pRecord,
                   std::size_t cbRecord) noexcept {
  return WithNote(pNotes, pRecord, cbRecord, [pList](voxplay_notes& object, Note&& note) {
    (object.notes.*pList).push_back(std::move(note));
  });
}

std::vector<api::S_NoteRange> S_Notes::*RangesOf(voxplay_note_kind eKind) noexcept {
  if (eKind == VOXPLAY_NOTE_SILENCE) return &S_Notes::silence;
  return eKind == VOXPLAY_NOTE_REGION ? &S_Notes::regions : nullptr;
}

}  // namespace

voxplay_notes* voxplay_notes_new(void) { return new (std::nothrow) voxplay_notes; }

voxplay_notes* voxplay_notes_copy(const voxplay_notes* notes) {
  voxplay_notes* pCopy = nullptr;
  Do([&] {
    if (notes != nullptr) pCopy = new voxplay_notes{NotesOf(*notes)};
  });
  return pCopy;
}

void voxplay_notes_free(voxplay_notes* notes) { delete notes; }

size_t voxplay_notes_count(const voxplay_notes* notes, voxplay_note_kind kind) {
  return notes == nullptr ? 0 : api::CountNotes(notes->notes, kind);
}

voxplay_status voxplay_notes_event(const voxplay_notes* notes, size_t index, voxplay_event* event,
                                   size_t size) {
  return Get(notes, &S_Notes::events, index, &voxplay_event::frame, event, size);
}

voxplay_status voxplay_notes_range(const voxplay_notes* notes, voxplay_note_kind kind, size_t index,
                                   voxplay_range* range, size_t size) {
  const auto pList = RangesOf(kind);
  if (pList == nullptr) return VOXPLAY_BAD_ARGUMENT;
  return Get(notes, pList, index, &voxplay_range::first, range, size);
}

voxplay_status voxplay_notes_cue(const voxplay_notes* notes, size_t index, voxplay_cue* cue,
                                 size_t size) {
  return Get(notes, &S_Notes::cues, index, &voxplay_cue::id, cue, size);
}

voxplay_status voxplay_notes_label(const voxplay_notes* notes, size_t index, voxplay_label* label,
                                   size_t size) {
  return Get(notes, &S_Notes::labels, index, &voxplay_label::cue_id, label, size);
}

voxplay_status voxplay_notes_region_text(const voxplay_notes* notes, size_t index,
                                         voxplay_region_text* text, size_t size) {
  return Get(notes, &S_Notes::texts, index, &voxplay_region_text::cue_id, text, size);
}

voxplay_status voxplay_notes_loop(const voxplay_notes* notes, size_t index, voxplay_loop* loop,
                                  size_t size) {
  return Get(notes, &S_Notes::loops, index, &voxplay_loop::id, loop, size);
}

voxplay_status voxplay_notes_chunk(const voxplay_notes* notes, size_t index, voxplay_chunk* chunk,
                                   size_t size) {
  return Get(notes, &S_Notes::chunks, index, &voxplay_chunk::id, chunk, size);
}

voxplay_status voxplay_notes_sampler(const voxplay_notes* notes, voxplay_sampler* sampler,
                                     size_t size) {
  if (notes == nullptr) return VOXPLAY_BAD_ARGUMENT;
  return StatusOf(
      CopyOut(api::RecordOf(notes->notes.sampler), &voxplay_sampler::manufacturer, sampler, size));
}

voxplay_status voxplay_notes_add_event(voxplay_notes* notes, const voxplay_event* event,
                                       size_t size) {
  return WithNote(notes, event, size, [](voxplay_notes& object, api::S_NoteEvent&& note) {
    if (api::AddEvent(object.notes, std::move(note))) object.bInOrder = false;
  });
}

voxplay_status voxplay_notes_add_range(voxplay_notes* notes, voxplay_note_kind kind,
                                       const voxplay_range* range, size_t size) {
  const auto pList = RangesOf(kind);
  if (pList == nullptr) return VOXPLAY_BAD_ARGUMENT;
  return WithNote(notes, range, size, [pList](voxplay_notes& object, api::S_NoteRange&& note) {
    if (api::AddRange(object.notes.*pList, note)) object.bInOrder = false;
  });
}

voxplay_status voxplay_notes_add_cue(voxplay_notes* notes, const voxplay_cue* cue, size_t size) {
  return Add(notes, &S_Notes::cues, cue, size);
}

voxplay_status voxplay_notes_add_label(voxplay_notes* notes, const voxplay_label* label,
                                       size_t size) {
  return Add(notes, &S_Notes::labels, label, size);
}

voxplay_status voxplay_notes_add_region_text(voxplay_notes* notes, const voxplay_region_text* text,
                                             size_t size) {
  return Add(notes, &S_Notes::texts, text, size);
}

voxplay_status voxplay_notes_add_loop(voxplay_notes* notes, const voxplay_loop* loop, size_t size) {
  return Add(notes, &S_Notes::loops, loop, size);
}

voxplay_status voxplay_notes_add_chunk(voxplay_notes* notes, const voxplay_chunk* chunk,
                                       size_t size) {
  return Add(notes, &S_Notes::chunks, chunk, size);
}

voxplay_status voxplay_notes_set_sampler(voxplay_notes* notes, const voxplay_sampler* sampler,
                                         size_t size) {
  return WithNote(notes, sampler, size, [](voxplay_notes& object, api::S_NoteSampler&& note) {
    object.notes.sampler = std::move(note);
  });
}

voxplay_status voxplay_notes_remove(voxplay_notes* notes, voxplay_note_kind kind, size_t index) {
  return Do([=] {
    if (notes == nullptr) return VOXPLAY_BAD_ARGUMENT;
    static_cast<void>(NotesOf(*notes));
    return StatusOf(api::RemoveNote(notes->notes, kind, index));
  });
}

voxplay_status voxplay_notes_clear(voxplay_notes* notes, voxplay_note_kind kind) {
  return StatusOf(notes != nullptr && api::ClearNotes(notes->notes, kind));
}
