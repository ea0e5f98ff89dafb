// SPDX-License-Identifier: Apache-2.0
//
// Notes as rows and back, in all the forms in which rows are written.
#include "marks/MarkRows.h"

#include <gtest/gtest.h>

#include "AllNotes.h"
#include "marks/LabelText.h"
#include "marks/MarkCsv.h"
#include "marks/MarkJson.h"
#include "marks/MarkNotes.h"

namespace {

using tool::C_Json;

constexpr std::uint32_t kRate = 16000;

C_Json Rows(const voxplay::Notes& notes) { return tool::RowsOf(notes, kRate); }

voxplay::Notes NotesOf(const C_Json& rows) {
  voxplay::Notes notes;
  tool::AddRows(tool::RowsIn(rows), kRate, notes);
  return notes;
}

// The values of a table, and a label track.
std::string CsvOf(const voxplay::Notes& notes) {
  const tool::C_MarkRows rows(notes, kRate);
  const tool::C_MarkCsv table(rows);
  std::string strText = table.Heading();
  rows.ForEach([&](const C_Json& row) { strText += table.Line(row); });
  return strText;
}
std::string LabelTextOf(const voxplay::Notes& notes, std::uint32_t dwRate) {
  std::string strText;
  tool::WriteLabelText(notes, dwRate, [&](std::string_view line) { strText += line; });
  return strText;
}

voxplay::Notes NotesFrom(const tool::PFN_Rows& fnRows, std::uint32_t dwRate = kRate) {
  voxplay::Notes notes;
  tool::AddRows(fnRows, dwRate, notes);
  return notes;
}
std::string WhyNotFrom(const tool::PFN_Rows& fnRows, std::uint32_t dwRate = kRate) {
  try {
    NotesFrom(fnRows, dwRate);
    return "";
  } catch (const tool::C_BadRow& bad) {
    return bad.what();
  }
}

// What is wrong with a row, as the message says it.
std::string WhyNot(const C_Json& row) {
  try {
    NotesOf(C_Json::array({row}));
    return "";
  } catch (const tool::C_BadRow& bad) {
    return bad.what();
  }
}

// As with a file between.
C_Json ThroughText(const C_Json& rows) { return C_Json::parse(tool::JsonText(rows)); }

TEST(MarkRows, AllKinds_ComeBackThroughJson) {
  const voxplay::Notes notes = NotesOfAllKinds();
  EXPECT_EQ(Rows(NotesOf(ThroughText(Rows(notes)))), Rows(notes));
}

TEST(MarkRows, AllKinds_ComeBackThroughValues) {
  const voxplay::Notes notes = NotesOfAllKinds();
  EXPECT_EQ(Rows(NotesFrom(tool::RowsOfCsv(CsvOf(notes)))), Rows(notes));
}

// At rates whose frames are no whole microseconds, too.
TEST(MarkRows, AllKinds_ComeBackThroughLabelTracks) {
  for (const std::uint32_t dwRate : {8000U, 11025U, 44100U, 192000U, 3000000U}) {
    const voxplay::Notes notes = NotesOfAllKinds();
    const std::string strTrack = LabelTextOf(notes, dwRate);
    const voxplay::Notes back = NotesFrom(tool::RowsOfLabelText(strTrack, dwRate), dwRate);
    // Labels stand beside their cue points there, so their order is another one.
    EXPECT_EQ(LabelTextOf(back, dwRate), strTrack) << dwRate;
    for (const char* const pszKind : {"event", "cue", "silence", "region", "loop"}) {
      const auto eList = *tool::ListOfKind(pszKind);
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
  EXPECT_EQ(Rows(NotesFrom(tool::RowsOfCsv(CsvOf(notes)))), rows);
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
  tool::AddRows(tool::RowsIn(rows), kRate, notes);
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

TEST(MarkRows, LabelTracksOfOtherPrograms_AreRead) {
  const auto rows = tool::RowsOfLabelText(
      "1.500000\t1.500000\tplain \"text\"\r\n\\\t100.0\t2000.0\n2.0\t3.25\t\n\n4\t4\n", kRate);
  const voxplay::Notes notes = NotesFrom(rows);
  EXPECT_EQ(notes.view().cues().size(), 3U);
  EXPECT_STREQ(notes.view().labels()[0].text, "plain \"text\"");
  EXPECT_EQ(notes.view().labels().size(), 1U);
  EXPECT_EQ(notes.view().region_texts()[0].count, 20000U);
  EXPECT_EQ(notes.view().cues()[2].position, 64000U);
}

TEST(MarkRows, BadLabelTracks_AreRefusedWithTheirLine) {
  const auto Why = [](const char* pszText) {
    return WhyNotFrom(tool::RowsOfLabelText(pszText, kRate));
  };
  EXPECT_EQ(Why("1\t2\tx\nabc\n"), "line 2: \"abc\" is not a time");
  EXPECT_EQ(Why("2\t1\tx\n"), "line 1: it ends before it starts");
  EXPECT_EQ(Why("1\n"), "line 1: \"\" is not a time");
  EXPECT_EQ(Why("1\t2\n3\t4\t[loop 0/0]\n0s\t0s\t[loop]\n"), "line 3: a loop needs a length");
}

// As other programs write them: with the frame in the one member, in the other, in both, and
// counted from a block.
TEST(MarkRows, CuePoints_AreWhereOtherProgramsSeeThem) {
  const struct {
    std::uint32_t dwPosition, dwBlock, dwOffset, dwStart;
  } cues[] = {{1000, 0, 1000, 1000}, {0, 0, 2000, 2000},       {1000, 0, 0, 1000},
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
    const voxplay::Notes back = NotesFrom(tool::RowsOfCsv(CsvOf(notes)));
    EXPECT_EQ(back.view().cues()[0].position, cue.dwPosition);
    EXPECT_EQ(back.view().cues()[0].sample_offset, cue.dwOffset);
  }
}

TEST(MarkRows, EditedPlace_MovesACuePointOfOtherPrograms) {
  const voxplay::Notes notes = NotesFrom(
      tool::RowsOfCsv("kind,id,start,time,position\ncue,1,3000,,0\ncue,2,4000,0.25,\n"));
  EXPECT_EQ(notes.view().cues()[0].position, 0U);
  EXPECT_EQ(notes.view().cues()[0].sample_offset, 3000U);
  EXPECT_EQ(notes.view().cues()[1].position, 4000U);
}

// Nobody can tell which of two columns was edited.
TEST(MarkRows, RowsThatContradictThemselves_AreRefusedWithTheirLine) {
  const auto Why = [](const std::string& text) { return WhyNotFrom(tool::RowsOfCsv(text)); };
  EXPECT_EQ(Why("kind,start,time,name\ncue,8000,0.5,\"two\nlines\"\nevent,8000,0.75,x\n"),
            "line 4: start is 8000, but time is \"0.75\", which is 12000; leave the one empty that "
            "is not meant");
  EXPECT_EQ(Why("kind,start,length,duration\nregion,0,100,0:01\n"),
            "line 2: length is 100, but duration is \"0:01\", which is 16000; leave the one empty "
            "that is not meant");
  EXPECT_EQ(Why("kind,start,sample_offset\ncue,100,200\n"),
            "line 2: start is 100, but position and sample_offset make it 200; leave these empty if "
            "start is meant");
  EXPECT_EQ(Why("kind;start;time\ncue;8000;0,5\n"), "");
  for (const char* const pszTime : {"0.0000625", "6.25e-05", "6.25E-05", "\"6,25E-05\""}) {
    EXPECT_EQ(Why(std::string("kind,start,time\ncue,1,") + pszTime), "");
  }
  EXPECT_NE(Why("kind,time\ncue,e5\n"), "");
  EXPECT_NE(Why("kind,time\ncue,1e\n"), "");
  EXPECT_EQ(Why("kind,start,time\n\ncue,,1\nsong,1,\n").substr(0, 12), "line 4: kind");
}

TEST(MarkRows, EditedText_IsNotThatOfItsBytesAnyMore) {
  const auto Label = [](const char* pszRow) {
    const std::string strTable = std::string("kind,id,name,hex\nlabel,1,") + pszRow;
    return std::string(NotesFrom(tool::RowsOfCsv(strTable)).view().labels()[0].text);
  };
  EXPECT_EQ(Label("caf\xC3\xA9,636166e9"), "caf\xE9");
  EXPECT_EQ(Label("cafe,636166e9"), "cafe");
  EXPECT_EQ(Label(",636166e9"), "caf\xE9");
}

TEST(MarkRows, SoundsWithoutARate_HaveNoTimes) {
  const C_Json rows = tool::RowsOf(NotesOfAllKinds(), 0);
  EXPECT_FALSE(rows[0].contains("time"));
  EXPECT_EQ(tool::RowsOf(NotesFrom(tool::RowsIn(rows), 0), 0), rows);
  EXPECT_EQ(WhyNotFrom(tool::RowsOfCsv("kind,time\ncue,1.5\n"), 0),
            "line 2: time: \"1.5\" has no place in a sound without a sample rate; give samples "
            "(32000s)");
  EXPECT_EQ(NotesFrom(tool::RowsOfCsv("kind,time\ncue,77s\n"), 0).view().cues()[0].position, 77U);
  EXPECT_EQ(WhyNotFrom(tool::RowsOfLabelText("1\t1\tx\n", 0), 0),
            "line 1: a time has no place in a sound without a sample rate");
}

TEST(MarkRows, Json_IsReadInAllItsForms) {
  const auto Why = [](std::string_view text) { return WhyNotFrom(tool::RowsOfJson(text, kRate)); };
  for (const std::string strForm :
       {"[@]", "{\"marks\": [@]}", "[{\"marks\": [@]}]",
        "[{\"sample_rate\": 16000, \"marks\": [@], \"x\": [[{\"kind\": 1}]]}]"}) {
    const auto With = [&strForm](const std::string& strRows) {
      std::string strText = strForm;
      return strText.replace(strText.find('@'), 1, strRows);
    };
    const std::string strRows = With(R"({"kind": "cue", "start": 5, "x": [1, {"start": 6}]},
                                        {"kind": "event", "start": 7})");
    const voxplay::Notes notes = NotesFrom(tool::RowsOfJson(strRows, kRate));
    ASSERT_EQ(notes.view().cues().size(), 1U) << strForm;
    EXPECT_EQ(notes.view().cues()[0].position, 5U);
    EXPECT_EQ(notes.view().events()[0].frame, 7U);
    EXPECT_EQ(Why(With("")), "");
    EXPECT_EQ(Why(With(R"({"kind": "cue", "start": 5}, 7)")), "row 2: it is not an object");
    EXPECT_EQ(Why(With("[[]]")), "row 1: it is not an object");
  }
  EXPECT_EQ(Why("[]"), "");
  EXPECT_EQ(Why("7"), "the marks are not an array");
  EXPECT_EQ(Why(R"({"marks": 7})"), "the marks are not an array");
  EXPECT_EQ(Why("{}"), "it has no member \"marks\"");
  EXPECT_EQ(Why("[1, "), "it is not JSON");
  EXPECT_EQ(Why(R"([{"marks": []}, {"marks": []}])"), "it has the marks of several files");
  EXPECT_EQ(Why(R"([{"marks": [], "sample_rate": [8000]}])"),
            "the marks count frames of [...] Hz, and the sound has 16000 Hz");
}

TEST(MarkRows, WrittenJson_IsThatOfTheWholeArray) {
  for (const voxplay::Notes& notes : {NotesOfAllKinds(), voxplay::Notes()}) {
    const C_Json file = {{"file", "a\nb"}, {"sample_rate", kRate}};
    std::string strText;
    tool::WriteMarksJson(file, tool::C_MarkRows(notes, kRate),
                         [&](std::string_view piece) { strText += piece; });
    C_Json whole = file;
    whole["marks"] = Rows(notes);
    EXPECT_EQ(strText, tool::JsonElement(whole));
  }
}

}  // namespace
