// SPDX-License-Identifier: Apache-2.0
#include "plot/MarkNames.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "plot/Marks.h"
#include "voxplay.hpp"

namespace {

using tool::C_Columns;
using tool::C_Lettering;
using tool::PlaceNames;
using tool::S_MarkNames;
using tool::S_Marks;

constexpr double kSize = 12.0;

S_Marks MarksAt(const std::vector<int>& columns, const std::string& strName) {
  S_Marks marks;
  for (const int nColumn : columns) marks.marks.push_back({nColumn, 0, tool::MARK_EVENT, strName});
  marks.counts[tool::MARK_EVENT] = columns.size();
  return marks;
}

// Whether no two names overlap, and no line from a name to its mark goes through another name.
bool IsClear(const S_Marks& marks, const S_MarkNames& placed, const C_Lettering& lettering) {
  for (const auto& a : placed.names) {
    const double dEnd = a.dX + lettering.Width(a.strText, kSize);
    for (const auto& b : placed.names) {
      if (&a == &b) continue;
      const double dLine = marks.marks[b.nMark].nColumn + 0.5;
      if (b.nRow <= a.nRow && dLine > a.dX && dLine < dEnd) return false;
      if (b.nRow == a.nRow && b.dX > a.dX && b.dX < dEnd) return false;
    }
  }
  return true;
}

TEST(MarkNames, NamesFarApart_AreAllInOneRow) {
  const C_Lettering lettering;
  const auto placed = PlaceNames(MarksAt({10, 200, 400}, "event"), lettering, 600, kSize, 3);
  ASSERT_EQ(placed.names.size(), 3u);
  EXPECT_EQ(placed.nRows, 1);
  EXPECT_EQ(placed.names[2].nRow, 0);
  EXPECT_GT(placed.names[2].dX, 400.5);
}

TEST(MarkNames, NamesTooClose_AreStaggered) {
  const C_Lettering lettering;
  const auto placed = PlaceNames(MarksAt({10, 20, 30, 40}, "event"), lettering, 600, kSize, 3);
  ASSERT_EQ(placed.names.size(), 3u);
  EXPECT_EQ(placed.names[0].nRow, 0);
  EXPECT_EQ(placed.names[1].nRow, 1);
  EXPECT_EQ(placed.names[2].nRow, 2);
  EXPECT_EQ(placed.counts[tool::MARK_EVENT], 3u);
}

TEST(MarkNames, ManyMarksAnywhere_NeverTouch) {
  const C_Lettering lettering;
  std::uint32_t dwState = 1;
  for (int nRound = 0; nRound < 50; ++nRound) {
    std::vector<int> columns;
    for (int nColumn = 0; nColumn < 600; ++nColumn) {
      dwState = dwState * 1664525U + 1013904223U;
      if (dwState >> 24U < 12U) columns.push_back(nColumn);
    }
    const auto marks = MarksAt(columns, nRound % 2 == 0 ? "a longer name" : "x");
    const auto placed = PlaceNames(marks, lettering, 600, kSize, 1 + nRound % 4);
    EXPECT_TRUE(IsClear(marks, placed, lettering)) << nRound;
    EXPECT_GE(placed.names.size(), 4u) << nRound;
  }
}

TEST(MarkNames, NameAtTheEnd_StandsLeftOfItsLine) {
  const C_Lettering lettering;
  const auto placed = PlaceNames(MarksAt({595}, "event"), lettering, 600, kSize, 1);
  ASSERT_EQ(placed.names.size(), 1u);
  EXPECT_LT(placed.names[0].dX + lettering.Width("event", kSize), 595.5);
}

TEST(Marks, EventsAndCuePoints_HaveTheirColumnsAndNames) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{500, 1, 2, 0, "begin"});
  notes.add(voxplay::Event{505, 3, 4, 0, ""});
  notes.add(voxplay::Event{1001, 1, 1, 0, "after the end"});
  voxplay::Cue cue{};
  cue.id = 7;
  cue.sample_offset = 250;
  notes.add(cue);
  notes.add(voxplay::Label{7, {'l', 'a', 'b', 'l'}, "verse"});
  cue.id = 8;
  cue.sample_offset = 800;
  notes.add(cue);
  const S_Marks marks = MarksOf(notes, VOXPLAY_CONTAINER_WAV, 0, C_Columns(1000, 100));
  ASSERT_EQ(marks.marks.size(), 3u);
  EXPECT_EQ(marks.counts[tool::MARK_EVENT], 2u);
  EXPECT_EQ(marks.counts[tool::MARK_CUE], 2u);
  EXPECT_EQ(marks.marks[0].nColumn, 25);
  EXPECT_EQ(marks.marks[0].strName, "verse");
  EXPECT_EQ(marks.marks[1].nColumn, 50);
  EXPECT_EQ(marks.marks[1].strName, "begin");
  EXPECT_EQ(marks.marks[2].strName, "#8");
}

TEST(Marks, EventWithoutADescription_IsNamedByItsCommands) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{0, 3, 4, 0, nullptr});
  EXPECT_EQ(MarksOf(notes, VOXPLAY_CONTAINER_WAV, 0, C_Columns(10, 10)).marks[0].strName, "3/4");
}

// The label is where the event is.
voxplay::Notes EventAndLabel(const voxplay::Event& event, const char* pszLabel) {
  voxplay::Notes notes;
  notes.add(event);
  voxplay::Cue cue{};
  cue.id = 1;
  cue.position = cue.sample_offset = static_cast<std::uint32_t>(event.frame);
  notes.add(cue);
  notes.add(voxplay::Label{1, {'l', 'a', 'b', 'l'}, pszLabel});
  return notes;
}

TEST(Marks, LabelThatReadsAsAnEvent_NamesIt) {
  const voxplay::Notes notes = EventAndLabel({50, 0, 1, 0, nullptr}, "take_1");
  const S_Marks marks = MarksOf(notes, VOXPLAY_CONTAINER_WAV, 0, C_Columns(100, 100));
  ASSERT_EQ(marks.marks.size(), 1u);
  EXPECT_EQ(marks.marks[0].eKind, tool::MARK_EVENT);
  EXPECT_EQ(marks.marks[0].strName, "take_1");
}

TEST(Marks, LabelThatSaysNothingOfAnEvent_DoesNotNameIt) {
  const voxplay::Notes notes = EventAndLabel({50, 3, 9, 0, nullptr}, "verse");
  EXPECT_EQ(MarksOf(notes, VOXPLAY_CONTAINER_WAV, 0, C_Columns(100, 100)).marks[0].strName, "3/9");
}

TEST(Marks, MarksAtTheVeryEnd_AreInTheLastColumn) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{100, 3, 9, 0, nullptr});
  voxplay::Cue cue{};
  cue.id = 1;
  cue.position = cue.sample_offset = 100;
  notes.add(cue);
  const S_Marks marks = MarksOf(notes, VOXPLAY_CONTAINER_WAV, 0, C_Columns(100, 50));
  EXPECT_EQ(marks.counts[tool::MARK_EVENT], 1u);
  EXPECT_EQ(marks.counts[tool::MARK_CUE], 1u);
  ASSERT_EQ(marks.marks.size(), 1u);
  EXPECT_EQ(marks.marks[0].nColumn, 49);
}

TEST(Marks, Ranges_AreCutToThePicture) {
  voxplay::Notes notes;
  notes.add_silence({90, 20});
  notes.add_silence({100, 20});
  notes.add_silence({150, UINT64_MAX});
  notes.add_region({0, 100});
  voxplay::Loop loop{};
  loop.first = 199;
  loop.last = 199;
  notes.add(loop);
  const S_Marks marks = MarksOf(notes, VOXPLAY_CONTAINER_WAV, 100, C_Columns(100, 50));
  const auto& silence = marks.ranges[tool::RANGE_SILENCE];
  ASSERT_EQ(silence.size(), 2u);
  EXPECT_EQ(silence[0].nFirst, 0);
  EXPECT_EQ(silence[0].nEnd, 10);
  EXPECT_EQ(silence[1].nFirst, 25);
  EXPECT_EQ(silence[1].nEnd, 50);
  EXPECT_TRUE(marks.ranges[tool::RANGE_REGION].empty());
  ASSERT_EQ(marks.ranges[tool::RANGE_LOOP].size(), 1u);
  EXPECT_EQ(marks.ranges[tool::RANGE_LOOP][0].nFirst, 49);
}

TEST(Marks, RegionText_LastsFromItsCuePoint) {
  voxplay::Notes notes;
  voxplay::Cue cue{};
  cue.id = 3;
  cue.sample_offset = 40;
  notes.add(cue);
  voxplay::RegionText text{};
  text.cue_id = 3;
  text.count = 20;
  text.text = "";
  notes.add(text);
  const S_Marks marks = MarksOf(notes, VOXPLAY_CONTAINER_WAV, 0, C_Columns(100, 100));
  ASSERT_EQ(marks.ranges[tool::RANGE_TEXT].size(), 1u);
  EXPECT_EQ(marks.ranges[tool::RANGE_TEXT][0].nFirst, 40);
  EXPECT_EQ(marks.ranges[tool::RANGE_TEXT][0].nEnd, 60);
}

TEST(Marks, MoreMarksThanColumns_AreCountedButDrawnOnce) {
  voxplay::Notes notes;
  for (std::uint64_t qwFrame = 0; qwFrame < 5000; ++qwFrame) {
    notes.add(voxplay::Event{qwFrame, 0, 0, 0, "x"});
  }
  const S_Marks marks = MarksOf(notes, VOXPLAY_CONTAINER_WAV, 0, C_Columns(5000, 100));
  EXPECT_EQ(marks.marks.size(), 100u);
  EXPECT_EQ(marks.counts[tool::MARK_EVENT], 5000u);
}

}  // namespace
