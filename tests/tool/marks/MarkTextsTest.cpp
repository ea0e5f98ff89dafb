// SPDX-License-Identifier: Apache-2.0
//
// Rows in texts that people and other programs have written.
#include <gtest/gtest.h>

#include "ReadRows.h"

namespace tool::test {
namespace {

TEST(MarkTexts, LabelTracksOfOtherPrograms_AreRead) {
  const auto rows = RowsOfLabelText(
      "1.500000\t1.500000\tplain \"text\"\r\n\\\t100.0\t2000.0\n2.0\t3.25\t\n\n4\t4\n", kRate);
  const voxplay::Notes notes = NotesFrom(rows);
  EXPECT_EQ(notes.view().cues().size(), 3U);
  EXPECT_STREQ(notes.view().labels()[0].text, "plain \"text\"");
  EXPECT_EQ(notes.view().labels().size(), 1U);
  EXPECT_EQ(notes.view().region_texts()[0].count, 20000U);
  EXPECT_EQ(notes.view().cues()[2].position, 64000U);
}

TEST(MarkTexts, BadLabelTracks_AreRefusedWithTheirLine) {
  const auto Why = [](const char* pszText) { return WhyNotFrom(RowsOfLabelText(pszText, kRate)); };
  EXPECT_EQ(Why("1\t2\tx\nabc\n"), "line 2: \"abc\" is not a time");
  EXPECT_EQ(Why("2\t1\tx\n"), "line 1: it ends before it starts");
  EXPECT_EQ(Why("1\n"), "line 1: \"\" is not a time");
  EXPECT_EQ(Why("1\t2\n3\t4\t[loop 0/0]\n0s\t0s\t[loop]\n"), "line 3: a loop needs a length");
}

TEST(MarkTexts, EditedPlace_MovesACuePointOfOtherPrograms) {
  const voxplay::Notes notes =
      NotesFrom(RowsOfCsv("kind,id,start,time,position\ncue,1,3000,,0\ncue,2,4000,0.25,\n"));
  EXPECT_EQ(notes.view().cues()[0].position, 0U);
  EXPECT_EQ(notes.view().cues()[0].sample_offset, 3000U);
  EXPECT_EQ(notes.view().cues()[1].position, 4000U);
}

// Nobody can tell which of two columns was edited.
TEST(MarkTexts, RowsThatContradictThemselves_AreRefusedWithTheirLine) {
  const auto Why = [](const std::string& text) { return WhyNotFrom(RowsOfCsv(text)); };
  EXPECT_EQ(Why("kind,start,time,name\ncue,8000,0.5,\"two\nlines\"\nevent,8000,0.75,x\n"),
            "line 4: start is 8000, but time is \"0.75\", which is 12000; leave the one empty that "
            "is not meant");
  EXPECT_EQ(Why("kind,start,length,duration\nregion,0,100,0:01\n"),
            "line 2: length is 100, but duration is \"0:01\", which is 16000; leave the one empty "
            "that is not meant");
  EXPECT_EQ(
      Why("kind,start,sample_offset\ncue,100,200\n"),
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

TEST(MarkTexts, EditedText_IsNotThatOfItsBytesAnyMore) {
  const auto Label = [](const char* pszRow) {
    const std::string strTable = std::string("kind,id,name,hex\nlabel,1,") + pszRow;
    return std::string(NotesFrom(RowsOfCsv(strTable)).view().labels()[0].text);
  };
  EXPECT_EQ(Label("caf\xC3\xA9,636166e9"), "caf\xE9");
  EXPECT_EQ(Label("cafe,636166e9"), "cafe");
  EXPECT_EQ(Label(",636166e9"), "caf\xE9");
}

TEST(MarkTexts, SoundsWithoutARate_HaveNoTimes) {
  const C_Json rows = RowsOf(NotesOfAllKinds(), 0);
  EXPECT_FALSE(rows[0].contains("time"));
  EXPECT_EQ(RowsOf(NotesFrom(RowsIn(rows), 0), 0), rows);
  EXPECT_EQ(WhyNotFrom(RowsOfCsv("kind,time\ncue,1.5\n"), 0),
            "line 2: time: \"1.5\" has no place in a sound without a sample rate; give samples "
            "(32000s)");
  EXPECT_EQ(NotesFrom(RowsOfCsv("kind,time\ncue,77s\n"), 0).view().cues()[0].position, 77U);
  EXPECT_EQ(WhyNotFrom(RowsOfLabelText("1\t1\tx\n", 0), 0),
            "line 1: a time has no place in a sound without a sample rate");
}

TEST(MarkTexts, Json_IsReadInAllItsForms) {
  const auto Why = [](std::string_view text) { return WhyNotFrom(RowsOfJson(text, kRate)); };
  for (const std::string strForm :
       {"[@]", "{\"marks\": [@]}", "[{\"marks\": [@]}]",
        "[{\"sample_rate\": 16000, \"marks\": [@], \"x\": [[{\"kind\": 1}]]}]"}) {
    const auto With = [&strForm](const std::string& strRows) {
      std::string strText = strForm;
      return strText.replace(strText.find('@'), 1, strRows);
    };
    const std::string strRows = With(R"({"kind": "cue", "start": 5, "number": [1, {"start": 6}]},
                                        {"kind": "event", "start": 7})");
    const voxplay::Notes notes = NotesFrom(RowsOfJson(strRows, kRate));
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

TEST(MarkTexts, WrittenJson_IsThatOfTheWholeArray) {
  for (const voxplay::Notes& notes : {NotesOfAllKinds(), voxplay::Notes()}) {
    const C_Json file = {{"file", "a\nb"}, {"sample_rate", kRate}};
    std::string strText;
    WriteMarksJson(file, C_MarkRows(notes, kRate),
                   [&](std::string_view piece) { strText += piece; });
    C_Json whole = file;
    whole["marks"] = Rows(notes);
    EXPECT_EQ(strText, JsonElement(whole));
  }
}

}  // namespace
}  // namespace tool::test
