// SPDX-License-Identifier: Apache-2.0
#include "notes/NoteEdits.h"

#include <gtest/gtest.h>

#include <vector>

namespace api {
namespace {

S_Notes OneOfEach() {
  S_Notes notes;
  notes.events.resize(1);
  notes.silence.resize(1);
  notes.regions.resize(1);
  notes.cues.resize(1);
  notes.labels.resize(1);
  notes.texts.resize(1);
  notes.loops.resize(1);
  notes.chunks.resize(1);
  notes.sampler.bPresent = true;
  return notes;
}

constexpr voxplay_note_kind kKinds[] = {
    VOXPLAY_NOTE_EVENT, VOXPLAY_NOTE_SILENCE,     VOXPLAY_NOTE_REGION, VOXPLAY_NOTE_CUE,
    VOXPLAY_NOTE_LABEL, VOXPLAY_NOTE_REGION_TEXT, VOXPLAY_NOTE_LOOP,   VOXPLAY_NOTE_CHUNK};

TEST(NoteEdits, AddedOutOfOrder_AreInOrderAfterwards) {
  S_Notes notes;
  EXPECT_FALSE(AddEvent(notes, {20, 1, 0, 0, ""}));
  EXPECT_FALSE(AddEvent(notes, {20, 2, 0, 0, ""}));
  EXPECT_TRUE(AddEvent(notes, {10, 3, 0, 0, ""}));
  EXPECT_FALSE(AddEvent(notes, {20, 4, 0, 0, ""}));
  EXPECT_FALSE(AddRange(notes.silence, {5, 1}));
  EXPECT_TRUE(AddRange(notes.silence, {4, 2}));
  EXPECT_FALSE(AddRange(notes.silence, {5, 3}));
  EXPECT_FALSE(AddRange(notes.regions, {9, 9}));
  PutInOrder(notes);
  EXPECT_EQ(notes.events,
            (std::vector<S_NoteEvent>{
                {10, 3, 0, 0, ""}, {20, 1, 0, 0, ""}, {20, 2, 0, 0, ""}, {20, 4, 0, 0, ""}}));
  EXPECT_EQ(notes.silence, (std::vector<S_NoteRange>{{4, 2}, {5, 1}, {5, 3}}));
}

TEST(NoteEdits, RemoveOfEachKind_TakesOneOutOfItsListOnly) {
  for (const voxplay_note_kind eKind : kKinds) {
    S_Notes notes = OneOfEach();
    EXPECT_FALSE(RemoveNote(notes, eKind, 1));
    EXPECT_TRUE(RemoveNote(notes, eKind, 0));
    EXPECT_FALSE(RemoveNote(notes, eKind, 0));
    for (const voxplay_note_kind eOther : kKinds) {
      EXPECT_EQ(CountNotes(notes, eOther), eOther == eKind ? 0U : 1U) << eKind << " " << eOther;
    }
    EXPECT_TRUE(notes.sampler.bPresent);
  }
}

TEST(NoteEdits, ClearOfEachKind_EmptiesItsListOnly) {
  for (const voxplay_note_kind eKind : kKinds) {
    S_Notes notes = OneOfEach();
    EXPECT_TRUE(ClearNotes(notes, eKind));
    for (const voxplay_note_kind eOther : kKinds) {
      EXPECT_EQ(CountNotes(notes, eOther), eOther == eKind ? 0U : 1U) << eKind << " " << eOther;
    }
    EXPECT_EQ(notes.sampler.bPresent, eKind != VOXPLAY_NOTE_LOOP);
  }
}

}  // namespace
}  // namespace api
