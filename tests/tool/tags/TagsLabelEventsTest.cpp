// SPDX-License-Identifier: Apache-2.0
//
// Labels of other programs that read as events: "take_1" as event 0/1.
#include "AllNotes.h"
#include "VoxtoolTest.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;

class TagsLabelEvents : public C_VoxtoolTest {
 protected:
  // The events and labels of a file: "event 0/1 at 1000", "label take_1 at 1000".
  [[nodiscard]] std::vector<std::string> Rows(const std::string& strName) const {
    std::vector<std::string> rows;
    const auto list = Json({"tags", "list", "--json", "@" + strName});
    for (const auto& row : list[0]["marks"]) {
      const bool bEvent = row["kind"] == "event";
      if (!bEvent && row["kind"] != "label") continue;
      const std::string strWhat = bEvent
                                      ? row["main_command"].dump() + '/' + row["sub_command"].dump()
                                      : row["name"].get<std::string>();
      rows.push_back(row["kind"].get<std::string>() + ' ' + strWhat + " at " + row["start"].dump());
    }
    return rows;
  }
  // What another program writes: cue points at 1000 and 2000.
  void WriteTakes(const std::string& strName) const {
    voxplay::Notes notes;
    AddCue(notes, 1, 1000);
    AddCue(notes, 2, 2000);
    AddLabel(notes, 1, "labl", "take_1");
    AddLabel(notes, 2, "labl", "take_2");
    notes.add(voxplay::Event{1000, 0, 1, 0, ""});
    notes.add(voxplay::Event{2000, 0, 2, 0, ""});
    WriteWav(strName, notes);
  }
  // Expects a failure that changes nothing.
  [[nodiscard]] std::string WhyNot(const Texts& arguments) const {
    const auto before = Content("a.wav");
    const S_Run run = Run(arguments);
    EXPECT_EQ(run.nExit, 1);
    EXPECT_EQ(Content("a.wav"), before);
    return Said(run.strErr);
  }
};

TEST_F(TagsLabelEvents, RemovedCuePoint_TakesItsEventAlong) {
  WriteTakes("a.wav");
  ASSERT_THAT(Rows("a.wav"), ElementsAre("event 0/1 at 1000", "event 0/2 at 2000",
                                         "label take_1 at 1000", "label take_2 at 2000"));
  Output({"tags", "remove", "@a.wav", "cue", "1"});
  EXPECT_THAT(Rows("a.wav"), ElementsAre("event 0/2 at 2000", "label take_2 at 2000"));
  EXPECT_EQ(voxplay::Reader(Path("a.wav")).notes().cues().size(), 1U);
  Output({"tags", "remove", "@a.wav", "label", "1"});
  EXPECT_THAT(Rows("a.wav"), ElementsAre());
  EXPECT_THAT(Text("a.wav"), testing::Not(HasSubstr("u_0_")));
}

TEST_F(TagsLabelEvents, OneOfTwoAlike_Stays) {
  WriteTakes("a.wav");
  Output({"tags", "add", "event", "@a.wav", "--at", "1000s", "--sub", "1"});
  EXPECT_EQ(Rows("a.wav").size(), 5U);
  Output({"tags", "remove", "@a.wav", "cue", "1"});
  EXPECT_THAT(Rows("a.wav"),
              ElementsAre("event 0/1 at 1000", "event 0/2 at 2000", "label take_2 at 2000"));
}

TEST_F(TagsLabelEvents, EventOfALabel_IsNotRemovedWithoutIt) {
  WriteTakes("a.wav");
  const std::string strWhy =
      "@/a.wav: nothing is changed: event 2 is read from a label, \"take_2\": remove that\n";
  EXPECT_EQ(WhyNot({"tags", "remove", "@a.wav", "event", "2"}), strWhy);
  EXPECT_EQ(WhyNot({"tags", "remove", "--anyway", "@a.wav", "event", "2"}), strWhy);
  EXPECT_THAT(WhyNot({"tags", "remove", "--anyway", "@a.wav", "event", "--all"}),
              HasSubstr("event 1 is read from a label, \"take_1\": remove that"));
  Output({"tags", "add", "event", "@a.wav", "--at", "1000s", "--sub", "1"});
  Output({"tags", "remove", "@a.wav", "event", "1"});
  EXPECT_EQ(Rows("a.wav").size(), 4U);
  Output({"tags", "remove", "@a.wav", "--all"});
  EXPECT_THAT(Rows("a.wav"), ElementsAre());
}

TEST_F(TagsLabelEvents, EverydayNames_AreAddedAndWhatTheySayIsTold) {
  WriteWav("a.wav");
  const S_Run run = Run({"tags", "add", "cue", "@a.wav", "--at", "0.5", "--name", "the_end"});
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(Said(run.strErr), "@/a.wav: a label at 0:00.500 reads as event 0/0, too\n");
  EXPECT_THAT(Rows("a.wav"), ElementsAre("event 0/0 at 8000", "label the_end at 8000"));
  Output({"tags", "add", "cue", "@a.wav", "--at", "0.6", "--name", "end"});
  WriteText("marks", "0.1\t0.1\ttake_1\n0.2\t0.2\tplain\n0.3\t0.3\ttake_3\n");
  const S_Run import = Run({"tags", "import", "@a.wav", "--labels", "@marks"});
  EXPECT_EQ(import.nExit, 0);
  EXPECT_EQ(Said(import.strErr),
            "@/a.wav: a label at 0:00.100 reads as event 0/1, too (and 1 more)\n");
  EXPECT_EQ(Rows("a.wav").size(), 8U);
}

TEST_F(TagsLabelEvents, InVef_LabelsAreLabels) {
  WriteSound("a.vef", FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_PCM, 16), PublicSamples(16000));
  Output({"tags", "add", "cue", "@a.vef", "--at", "0.5", "--name", "take_1"});
  EXPECT_THAT(Rows("a.vef"), ElementsAre("label take_1 at 8000"));
  Output({"tags", "add", "event", "@a.vef", "--at", "0.5", "--sub", "1"});
  Output({"tags", "remove", "@a.vef", "event", "1"});
  EXPECT_THAT(Rows("a.vef"), ElementsAre("label take_1 at 8000"));
}

TEST_F(TagsLabelEvents, Export_LeavesThemOutAndImportBringsThemBack) {
  WriteTakes("a.wav");
  Output({"tags", "add", "event", "@a.wav", "--at", "1000s", "--main", "9"});
  const Bytes before = Content("a.wav");
  for (const char* const pszForm : {"--csv", "--json", "--labels"}) {
    Output({"tags", "export", "@a.wav", pszForm, "-f", "-o", "@marks"});
    EXPECT_THAT(Text("marks"), HasSubstr("9"));
    EXPECT_THAT(Text("marks"), testing::Not(HasSubstr("event 0/1")));
    EXPECT_EQ(Output({"tags", "import", "@a.wav", pszForm, "@marks", "--replace"}), "") << pszForm;
    EXPECT_EQ(Content("a.wav"), before) << pszForm;
  }
  EXPECT_THAT(Output({"tags", "list", "--labels", "@a.wav"}), HasSubstr("[event 0/1]"));
}

TEST_F(TagsLabelEvents, RenamedLabel_LeavesNoEventBehind) {
  WriteTakes("a.wav");
  for (const char* const pszForm : {"--csv", "--json", "--labels"}) {
    WriteTakes("a.wav");
    EXPECT_EQ(RunLine("$V tags export @a.wav " + std::string(pszForm) +
                      " | sed s/take_1/intro/ | $V tags import @a.wav " + pszForm + " - --replace")
                  .strErr,
              "");
    EXPECT_THAT(Rows("a.wav"),
                ElementsAre("event 0/2 at 2000", "label intro at 1000", "label take_2 at 2000"));
  }
}

TEST_F(TagsLabelEvents, EventsThatATableNames_StayWithoutTheirLabel) {
  WriteTakes("a.wav");
  WriteText("marks", "kind,start,sub_command,name\nevent,1000,1,\ncue,2000,,take_2\n");
  Output({"tags", "import", "@a.wav", "--csv", "@marks", "--replace"});
  EXPECT_THAT(Rows("a.wav"),
              ElementsAre("event 0/1 at 1000", "event 0/2 at 2000", "label take_2 at 2000"));
  // An older table names those of labels as well.
  WriteText("marks", "kind,start,sub_command,name\nevent,2000,2,\ncue,2000,,take_2\n");
  Output({"tags", "import", "@a.wav", "--csv", "@marks", "--replace"});
  EXPECT_THAT(Rows("a.wav"), ElementsAre("event 0/2 at 2000", "label take_2 at 2000"));
}

TEST_F(TagsLabelEvents, SeveralOfAFrame_AreReadInTheOrderOfTheirLabels) {
  WriteTakes("a.wav");
  WriteText("marks",
            "kind,start,sub_command,name\nevent,1000,7,\ncue,1000,,take_9\ncue,1000,,take_0\n"
            "event,1000,0,\n");
  const S_Run run = Run({"tags", "import", "@a.wav", "--csv", "@marks"});
  EXPECT_EQ(run.nExit, 0) << run.strErr;
  EXPECT_EQ(Said(run.strErr), "@/a.wav: a label at 0:00.063 reads as event 0/9, too\n");
  EXPECT_THAT(Rows("a.wav"),
              ElementsAre("event 0/1 at 1000", "event 0/9 at 1000", "event 0/0 at 1000",
                          "event 0/7 at 1000", "event 0/2 at 2000", "label take_1 at 1000",
                          "label take_2 at 2000", "label take_9 at 1000", "label take_0 at 1000"));
}

// What is done to other marks changes neither label nor event.
TEST_F(TagsLabelEvents, LabelAlmostOfOurForm_KeepsItsEvent) {
  voxplay::Notes notes;
  AddCue(notes, 1, 1000);
  AddLabel(notes, 1, "labl", "word");
  WriteWav("a.wav", notes);
  Bytes bytes = Content("a.wav");
  const Bytes word = {'w', 'o', 'r', 'd'};
  const Bytes speaking = {'e', '_', '7', ' '};
  const auto found = std::search(bytes.begin(), bytes.end(), word.begin(), word.end());
  ASSERT_NE(found, bytes.end());
  std::ranges::copy(speaking, found);
  Write("a.wav", bytes);
  EXPECT_THAT(Rows("a.wav"), ElementsAre("event 0/7 at 1000", "label e_7  at 1000"));
  Output({"tags", "add", "silence", "@a.wav", "--at", "0", "--length", "10s"});
  EXPECT_THAT(Rows("a.wav"), ElementsAre("event 0/7 at 1000", "label e_7  at 1000"));
}

}  // namespace
