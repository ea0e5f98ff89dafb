// SPDX-License-Identifier: Apache-2.0
//
// Notes as rows and back, in all the forms in which rows are written.
#include "marks/MarkRows.h"

#include <gtest/gtest.h>

#include "ReadRows.h"

namespace tool::test {
namespace {

TEST(MarkRows, AllKinds_ComeBackThroughJson) {
  const voxplay::Notes notes = NotesOfAllKinds();
  EXPECT_EQ(Rows(NotesOf(ThroughText(Rows(notes)))), Rows(notes));
}

TEST(MarkRows, AllKinds_ComeBackThroughValues) {
  const voxplay::Notes notes = NotesOfAllKinds();
  EXPECT_EQ(Rows(NotesFrom(RowsOfCsv(CsvOf(notes)))), Rows(notes));
}

// At rates whose frames are no whole microseconds, too.
TEST(MarkRows, AllKinds_ComeBackThroughLabelTracks) {
  for (const std::uint32_t dwRate : {8000U, 11025U, 44100U, 192000U, 3000000U}) {
    const voxplay::Notes notes = NotesOfAllKinds();
    const std::string strTrack = LabelTextOf(notes, dwRate);
    const voxplay::Notes back = NotesFrom(RowsOfLabelText(strTrack, dwRate), dwRate);
    // Labels stand beside their cue points there, so their order is another one.
    EXPECT_EQ(LabelTextOf(back, dwRate), strTrack) << dwRate;
    for (const char* const pszKind : {"event", "cue", "silence", "region", "loop"}) {
      const auto eList = *ListOfKind(pszKind);
      EXPECT_EQ(voxplay_notes_count(back.view().get(), eList),
                voxplay_notes_count(notes.view().get(), eList));
    }
    EXPECT_EQ(back.view().labels().size(), notes.view().labels().size());
    EXPECT_EQ(back.view().region_texts().size(), notes.view().region_texts().size());
  }
}

TEST(MarkRows, RareMembers_ComeBack) {
  voxplay::Notes notes;
  voxplay::Cue cue{7, 100, {'s', 'l', 'n', 't'}, 1, 2, 3};  // in the block at 2
  notes.add(cue);
  voxplay::RegionText text{};
  text.cue_id = 7;
  text.purpose[0] = '\x01';
  text.country = 49;
  text.language = 7;
  text.dialect = 1;
  text.code_page = 1252;
  text.text = "x";
  notes.add(text);
  voxplay::Loop loop{9, 77, 500, 400, 12, 13};
  notes.add(loop);
  const C_Json rows = Rows(notes);
  EXPECT_EQ(rows[0]["chunk"], "slnt");
  EXPECT_EQ(rows[0]["sample_offset"], 3);
  EXPECT_EQ(rows[1]["purpose"], "01000000");
  EXPECT_EQ(rows[2]["last"], 400);
  EXPECT_EQ(Rows(NotesOf(ThroughText(rows))), rows);
  EXPECT_EQ(Rows(NotesFrom(RowsOfCsv(CsvOf(notes)))), rows);
}

TEST(MarkRows, BytesThatAreNoUtf8_StandBesideTheirText) {
  voxplay::Notes notes;
  AddCue(notes, 1, 0);
  AddLabel(notes, 1, "labl", "caf\xE9");
  const C_Json rows = Rows(notes);
  EXPECT_EQ(rows[1]["name"], "caf\xC3\xA9");
  EXPECT_EQ(rows[1]["hex"], "636166e9");
  const voxplay::Notes back = NotesOf(rows);
  EXPECT_STREQ(back.view().labels()[0].text, "caf\xE9");
}

TEST(MarkRows, Labels_HaveThePlaceOfTheirCuePoint) {
  const C_Json rows = Rows(NotesWithTexts());
  ASSERT_EQ(rows[14]["kind"], "label");
  EXPECT_EQ(rows[14]["start"], 1000);
  EXPECT_EQ(rows[14]["time"], 0.0625);
  voxplay::Notes orphan;
  AddLabel(orphan, 5, "labl", "x");
  EXPECT_FALSE(Rows(orphan)[0].contains("start"));
  EXPECT_EQ(Rows(NotesOf(Rows(orphan))), Rows(orphan));
}

TEST(MarkRows, RowsOfPeople_MaySayLess) {
  const voxplay::Notes notes = NotesOf(C_Json::parse(R"([
      {"kind": "cue", "time": "0:01.5", "duration": 0.25, "name": "Intro", "text": "a note"},
      {"kind": "label", "time": 2, "name": "Alone"},
      {"kind": "event", "start": "77", "main_command": "3"}])"));
  EXPECT_EQ(notes.view().cues()[0].position, 24000U);
  EXPECT_EQ(notes.view().cues()[0].sample_offset, 24000U);
  EXPECT_EQ(notes.view().region_texts()[0].count, 4000U);
  EXPECT_EQ(notes.view().cues()[1].position, 32000U);
  ASSERT_EQ(notes.view().labels().size(), 3U);
  EXPECT_STREQ(notes.view().labels()[0].text, "Intro");
  EXPECT_STREQ(notes.view().labels()[2].text, "Alone");
  EXPECT_EQ(notes.view().labels()[2].cue_id, notes.view().cues()[1].id);
  EXPECT_EQ(notes.view().events()[0].frame, 77U);
  EXPECT_EQ(notes.view().events()[0].main_command, 3U);
}

TEST(MarkRows, IDsThatAreTaken_AreExchangedWithAllThatBelongsToThem) {
  voxplay::Notes notes;
  AddCue(notes, 1, 100);
  AddLabel(notes, 1, "labl", "old");
  voxplay::Notes more;
  AddCue(more, 1, 200);
  AddLabel(more, 1, "labl", "new");
  AddCue(more, 2, 300);
  const C_Json rows = Rows(more);
  AddRows(RowsIn(rows), kRate, notes);
  EXPECT_EQ(notes.view().cues()[1].id, 3U);
  EXPECT_EQ(notes.view().cues()[2].id, 2U);
  EXPECT_EQ(notes.view().labels()[1].cue_id, 3U);
}

TEST(MarkRows, BadRows_AreNamedAndExplained) {
  EXPECT_EQ(WhyNot(5), "row 1: it is not an object");
  EXPECT_EQ(WhyNot({{"kind", "song"}}),
            "row 1: kind: \"song\" is none of event, cue, label, note, text, silence, region and "
            "loop");
  EXPECT_EQ(WhyNot({{"kind", "event"}}), "row 1: it has neither start nor time");
  EXPECT_EQ(WhyNot({{"kind", "cue"}, {"start", -1}}),
            "row 1: start: -1 is not a whole number up to 4294967295");
  EXPECT_EQ(WhyNot({{"kind", "cue"}, {"start", "1.5"}}),
            "row 1: start: \"1.5\" is not a whole number up to 4294967295");
  EXPECT_EQ(WhyNot({{"kind", "event"}, {"start", 1}, {"main_command", 65536}}),
            "row 1: main_command: 65536 is not a whole number up to 65535");
  EXPECT_EQ(WhyNot({{"kind", "cue"}, {"time", "1:99"}}),
            "row 1: time: \"1:99\" is not a time: seconds (2.5), m:ss.mmm (1:02.500) or samples "
            "(32000s)");
  EXPECT_EQ(WhyNot({{"kind", "loop"}, {"start", 1}}), "row 1: a loop needs a length");
  EXPECT_EQ(WhyNot({{"kind", "loop"}, {"start", 4294967295U}, {"length", 2}}),
            "row 1: the loop ends beyond frame 4294967295");
  EXPECT_EQ(WhyNot({{"kind", "label"}, {"id", 1}, {"name", 5}}), "row 1: name: 5 is not a text");
  EXPECT_EQ(WhyNot({{"kind", "label"}, {"id", 1}, {"name", std::string("a\0b", 3)}}),
            "row 1: name: texts of marks hold no zeros");
  EXPECT_EQ(WhyNot({{"kind", "label"}, {"id", 1}, {"hex", "6"}}),
            "row 1: hex: it does not consist of pairs of hexadecimal digits");
  EXPECT_EQ(WhyNot({{"kind", "cue"}, {"start", 1}, {"chunk", "dat"}}),
            "row 1: chunk: it has neither four characters nor eight digits");
}

// As other programs write them: with the frame in the one member, in the other, in both, and
// counted from a block.
TEST(MarkRows, CuePoints_AreWhereOtherProgramsSeeThem) {
  const struct {
    std::uint32_t dwPosition, dwBlock, dwOffset, dwStart;
  } cues[] = {{1000, 0, 1000, 1000}, {0, 0, 2000, 2000},      {1000, 0, 0, 1000},
              {1000, 0, 2000, 2000}, {1000, 1600, 200, 1000}, {0, 1600, 200, 200}};
  for (const auto& cue : cues) {
    voxplay::Notes notes;
    notes.add(voxplay::Cue{1, cue.dwPosition, {'d', 'a', 't', 'a'}, 0, cue.dwBlock, cue.dwOffset});
    AddLabel(notes, 1, "labl", "x");
    const C_Json rows = Rows(notes);
    EXPECT_EQ(rows[0]["start"], cue.dwStart);
    EXPECT_EQ(rows[1]["start"], cue.dwStart);
    const double dSeconds = cue.dwStart / 16000.0;
    EXPECT_EQ(std::stod(LabelTextOf(notes, kRate)), dSeconds);
    const voxplay::Notes back = NotesFrom(RowsOfCsv(CsvOf(notes)));
    EXPECT_EQ(back.view().cues()[0].position, cue.dwPosition);
    EXPECT_EQ(back.view().cues()[0].sample_offset, cue.dwOffset);
  }
}

}  // namespace
}  // namespace tool::test
