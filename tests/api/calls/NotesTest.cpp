// SPDX-License-Identifier: Apache-2.0
//
// The functions of voxplay.h for notes, as programs call them.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "calls/NotesObject.h"
#include "voxplay.h"

namespace {

struct S_NotesFreer {
  void operator()(voxplay_notes* pNotes) const { voxplay_notes_free(pNotes); }
};
using C_NotesPtr = std::unique_ptr<voxplay_notes, S_NotesFreer>;

class NotesTest : public testing::Test {
 protected:
  voxplay_notes* N() { return m_notes.get(); }
  voxplay_status AddEvent(std::uint64_t qwFrame, std::uint16_t wMain,
                          const char* pszDescription = nullptr) {
    const voxplay_event event{qwFrame, wMain, 2, 3, pszDescription};
    return voxplay_notes_add_event(N(), &event, sizeof(event));
  }
  voxplay_event Event(std::size_t nIndex) {
    voxplay_event event{};
    EXPECT_EQ(voxplay_notes_event(N(), nIndex, &event, sizeof(event)), VOXPLAY_OK);
    return event;
  }

  C_NotesPtr m_notes{voxplay_notes_new()};
};

TEST_F(NotesTest, NewNotes_AreEmpty) {
  for (int i = 0; i <= VOXPLAY_NOTE_CHUNK; ++i) {
    EXPECT_EQ(voxplay_notes_count(N(), static_cast<voxplay_note_kind>(i)), 0U);
  }
  voxplay_sampler sampler;
  std::memset(&sampler, 0xFF, sizeof(sampler));
  EXPECT_EQ(voxplay_notes_sampler(N(), &sampler, sizeof(sampler)), VOXPLAY_OK);
  EXPECT_EQ(sampler.midi_unity_note, 0U);
  EXPECT_EQ(sampler.data, nullptr);
  EXPECT_EQ(sampler.data_size, 0U);
}

TEST_F(NotesTest, Null_IsABadArgumentAndNothingElse) {
  voxplay_event event{};
  voxplay_range range{};
  voxplay_sampler sampler{};
  EXPECT_EQ(voxplay_notes_count(nullptr, VOXPLAY_NOTE_EVENT), 0U);
  EXPECT_EQ(voxplay_notes_copy(nullptr), nullptr);
  voxplay_notes_free(nullptr);
  EXPECT_EQ(voxplay_notes_event(nullptr, 0, &event, sizeof(event)), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_add_event(nullptr, &event, sizeof(event)), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_add_event(N(), nullptr, sizeof(event)), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_add_range(nullptr, VOXPLAY_NOTE_REGION, &range, sizeof(range)),
            VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_sampler(nullptr, &sampler, sizeof(sampler)), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_sampler(N(), nullptr, sizeof(sampler)), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_remove(nullptr, VOXPLAY_NOTE_EVENT, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_clear(nullptr, VOXPLAY_NOTE_EVENT), VOXPLAY_BAD_ARGUMENT);
}

TEST_F(NotesTest, Events_AreInOrderOfTheirFrames) {
  EXPECT_EQ(AddEvent(200, 1, "bell"), VOXPLAY_OK);
  EXPECT_EQ(AddEvent(100, 2), VOXPLAY_OK);
  EXPECT_EQ(AddEvent(200, 3), VOXPLAY_OK);
  EXPECT_EQ(AddEvent(100, 4), VOXPLAY_OK);
  ASSERT_EQ(voxplay_notes_count(N(), VOXPLAY_NOTE_EVENT), 4U);
  EXPECT_EQ(Event(0).main_command, 2);
  EXPECT_EQ(Event(1).main_command, 4);
  EXPECT_EQ(Event(2).main_command, 1);
  EXPECT_EQ(Event(3).main_command, 3);
  EXPECT_EQ(Event(2).frame, 200U);
  EXPECT_EQ(Event(2).sub_command, 2);
  EXPECT_EQ(Event(2).data, 3U);
  EXPECT_STREQ(Event(2).description, "bell");
  EXPECT_STREQ(Event(0).description, "");
  voxplay_event none{};
  EXPECT_EQ(voxplay_notes_event(N(), 4, &none, sizeof(none)), VOXPLAY_BAD_ARGUMENT);
}

TEST_F(NotesTest, RemovedEvent_IsTheOneAtThatPlaceInTheOrder) {
  AddEvent(200, 1);
  AddEvent(100, 2);
  EXPECT_EQ(voxplay_notes_remove(N(), VOXPLAY_NOTE_EVENT, 0), VOXPLAY_OK);
  ASSERT_EQ(voxplay_notes_count(N(), VOXPLAY_NOTE_EVENT), 1U);
  EXPECT_EQ(Event(0).main_command, 1);
  EXPECT_EQ(voxplay_notes_remove(N(), VOXPLAY_NOTE_EVENT, 1), VOXPLAY_BAD_ARGUMENT);
}

TEST_F(NotesTest, EventOfAnEarlierVersion_HasZerosForTheRest) {
  const voxplay_event event{7, 1, 2, 3, "bell"};
  EXPECT_EQ(voxplay_notes_add_event(N(), &event, 7), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_add_event(N(), &event, 0), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_add_event(N(), &event, 10), VOXPLAY_OK);
  EXPECT_EQ(Event(0).main_command, 1);
  EXPECT_EQ(Event(0).sub_command, 0);
  EXPECT_STREQ(Event(0).description, "");
  // A pointer of which only a part is there is none.
  EXPECT_EQ(voxplay_notes_add_event(N(), &event, sizeof(event) - 1), VOXPLAY_OK);
  EXPECT_STREQ(Event(1).description, "");
}

TEST_F(NotesTest, Ranges_AreInOrderOfTheirFirstFrames) {
  for (const voxplay_note_kind eKind : {VOXPLAY_NOTE_SILENCE, VOXPLAY_NOTE_REGION}) {
    const voxplay_range late{500, 5};
    const voxplay_range early{100, 1};
    EXPECT_EQ(voxplay_notes_add_range(N(), eKind, &late, sizeof(late)), VOXPLAY_OK);
    EXPECT_EQ(voxplay_notes_add_range(N(), eKind, &early, sizeof(early)), VOXPLAY_OK);
    voxplay_range range{};
    ASSERT_EQ(voxplay_notes_range(N(), eKind, 1, &range, sizeof(range)), VOXPLAY_OK);
    EXPECT_EQ(range.first, 500U);
    EXPECT_EQ(range.count, 5U);
  }
  voxplay_range range{};
  EXPECT_EQ(voxplay_notes_range(N(), VOXPLAY_NOTE_CUE, 0, &range, sizeof(range)),
            VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_add_range(N(), VOXPLAY_NOTE_EVENT, &range, sizeof(range)),
            VOXPLAY_BAD_ARGUMENT);
}

TEST_F(NotesTest, CuePointsLabelsAndTexts_AreCopied) {
  const voxplay_cue cue{7, 300, {'d', 'a', 't', 'a'}, 1, 2, 299};
  std::string strText = "Verse";
  const voxplay_label label{7, {'n', 'o', 't', 'e'}, strText.c_str()};
  const voxplay_region_text text{7, 50, {'r', 'g', 'n', ' '}, 49, 9, 1, 1252, strText.c_str()};
  EXPECT_EQ(voxplay_notes_add_cue(N(), &cue, sizeof(cue)), VOXPLAY_OK);
  EXPECT_EQ(voxplay_notes_add_label(N(), &label, sizeof(label)), VOXPLAY_OK);
  EXPECT_EQ(voxplay_notes_add_region_text(N(), &text, sizeof(text)), VOXPLAY_OK);
  strText = "other";
  voxplay_cue readCue{};
  ASSERT_EQ(voxplay_notes_cue(N(), 0, &readCue, sizeof(readCue)), VOXPLAY_OK);
  EXPECT_EQ(std::memcmp(&readCue, &cue, sizeof(cue)), 0);
  voxplay_label readLabel{};
  ASSERT_EQ(voxplay_notes_label(N(), 0, &readLabel, sizeof(readLabel)), VOXPLAY_OK);
  EXPECT_EQ(readLabel.cue_id, 7U);
  EXPECT_EQ(std::string_view(readLabel.type, 4), "note");
  EXPECT_STREQ(readLabel.text, "Verse");
  voxplay_region_text readText{};
  ASSERT_EQ(voxplay_notes_region_text(N(), 0, &readText, sizeof(readText)), VOXPLAY_OK);
  EXPECT_EQ(readText.count, 50U);
  EXPECT_EQ(std::string_view(readText.purpose, 4), "rgn ");
  EXPECT_EQ(readText.country, 49);
  EXPECT_EQ(readText.language, 9);
  EXPECT_EQ(readText.dialect, 1);
  EXPECT_EQ(readText.code_page, 1252);
  EXPECT_STREQ(readText.text, "Verse");
}

TEST_F(NotesTest, LabelsWithoutATextOrOfAnotherType_AreBadArguments) {
  const voxplay_label without{7, {'l', 'a', 'b', 'l'}, nullptr};
  const voxplay_label other{7, {'l', 't', 'x', 't'}, "Verse"};
  const voxplay_region_text text{7, 50, {'r', 'g', 'n', ' '}, 0, 0, 0, 0, nullptr};
  EXPECT_EQ(voxplay_notes_add_label(N(), &without, sizeof(without)), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_add_label(N(), &other, sizeof(other)), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_add_region_text(N(), &text, sizeof(text)), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_count(N(), VOXPLAY_NOTE_LABEL), 0U);
}

TEST_F(NotesTest, LoopsAndSampler_AreClearedTogether) {
  const voxplay_loop loop{1, 2, 10, 20, 3, 4};
  voxplay_sampler sampler{1, 2, 62500, 60, 5, 25, 6, "abc", 3};
  EXPECT_EQ(voxplay_notes_add_loop(N(), &loop, sizeof(loop)), VOXPLAY_OK);
  EXPECT_EQ(voxplay_notes_set_sampler(N(), &sampler, sizeof(sampler)), VOXPLAY_OK);
  voxplay_loop readLoop{};
  ASSERT_EQ(voxplay_notes_loop(N(), 0, &readLoop, sizeof(readLoop)), VOXPLAY_OK);
  EXPECT_EQ(std::memcmp(&readLoop, &loop, sizeof(loop)), 0);
  voxplay_sampler read{};
  ASSERT_EQ(voxplay_notes_sampler(N(), &read, sizeof(read)), VOXPLAY_OK);
  EXPECT_EQ(read.sample_period, 62500U);
  EXPECT_EQ(read.smpte_offset, 6U);
  EXPECT_EQ(std::string_view(static_cast<const char*>(read.data), read.data_size), "abc");
  EXPECT_EQ(voxplay_notes_clear(N(), VOXPLAY_NOTE_LOOP), VOXPLAY_OK);
  ASSERT_EQ(voxplay_notes_sampler(N(), &read, sizeof(read)), VOXPLAY_OK);
  EXPECT_EQ(read.sample_period, 0U);
  EXPECT_EQ(read.data_size, 0U);
  sampler.data = nullptr;
  EXPECT_EQ(voxplay_notes_set_sampler(N(), &sampler, sizeof(sampler)), VOXPLAY_BAD_ARGUMENT);
}

TEST_F(NotesTest, Chunks_KeepTheirBytes) {
  const voxplay_chunk chunk{{'b', 'e', 'x', 't'}, "a\0b", 3};
  const voxplay_chunk empty{{'p', 'r', 'i', 'v'}, nullptr, 0};
  EXPECT_EQ(voxplay_notes_add_chunk(N(), &chunk, sizeof(chunk)), VOXPLAY_OK);
  EXPECT_EQ(voxplay_notes_add_chunk(N(), &empty, sizeof(empty)), VOXPLAY_OK);
  voxplay_chunk read{};
  ASSERT_EQ(voxplay_notes_chunk(N(), 0, &read, sizeof(read)), VOXPLAY_OK);
  EXPECT_EQ(std::string_view(read.id, 4), "bext");
  EXPECT_EQ(std::string_view(static_cast<const char*>(read.data), read.size),
            std::string_view("a\0b", 3));
  ASSERT_EQ(voxplay_notes_chunk(N(), 1, &read, sizeof(read)), VOXPLAY_OK);
  EXPECT_EQ(read.size, 0U);
  const voxplay_chunk without{{'b', 'e', 'x', 't'}, nullptr, 3};
  const voxplay_chunk nameless{{0, 'e', 'x', 't'}, "abc", 3};
  EXPECT_EQ(voxplay_notes_add_chunk(N(), &without, sizeof(without)), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_notes_add_chunk(N(), &nameless, sizeof(nameless)), VOXPLAY_BAD_ARGUMENT);
}

TEST_F(NotesTest, ChunkOf4GiB_IsABadArgument) {
  if constexpr (sizeof(std::size_t) > 4) {
    voxplay_chunk chunk{{'b', 'e', 'x', 't'}, "a", 0};
    chunk.size = static_cast<std::size_t>(0x100000000ULL);
    EXPECT_EQ(voxplay_notes_add_chunk(N(), &chunk, sizeof(chunk)), VOXPLAY_BAD_ARGUMENT);
  }
}

TEST_F(NotesTest, Copy_IsOrderedAndIndependent) {
  AddEvent(200, 1);
  AddEvent(100, 2);
  const C_NotesPtr copy(voxplay_notes_copy(N()));
  ASSERT_NE(copy, nullptr);
  EXPECT_EQ(voxplay_notes_clear(N(), VOXPLAY_NOTE_EVENT), VOXPLAY_OK);
  voxplay_event event{};
  ASSERT_EQ(voxplay_notes_event(copy.get(), 0, &event, sizeof(event)), VOXPLAY_OK);
  EXPECT_EQ(event.main_command, 2);
  EXPECT_EQ(api::NotesOf(*copy).events.size(), 2U);
}

}  // namespace
