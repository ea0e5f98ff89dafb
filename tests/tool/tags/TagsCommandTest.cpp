// SPDX-License-Identifier: Apache-2.0
//
// Adding and removing marks.
#include "AllNotes.h"
#include "VoxtoolTest.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class TagsCommand : public C_VoxtoolTest {
 protected:
  // The rows of a file, one text each: "event 1 24000".
  [[nodiscard]] std::vector<std::string> Rows(const std::string& strName) const {
    std::vector<std::string> rows;
    const auto list = Json({"tags", "list", "--json", "@" + strName});
    for (const auto& row : list[0]["marks"]) {
      std::string strText = row["kind"].get<std::string>() + ' ' + row["number"].dump();
      if (row.contains("start")) strText += ' ' + row["start"].dump();
      if (row.contains("length")) strText += '+' + row["length"].dump();
      if (row.contains("name")) strText += ' ' + row["name"].get<std::string>();
      if (row.contains("text")) strText += ' ' + row["text"].get<std::string>();
      rows.push_back(strText);
    }
    return rows;
  }
  // Expects a failure that changes nothing.
  [[nodiscard]] std::string WhyNot(const Texts& arguments) const {
    const auto before = Content("a.wav");
    const auto names = Entries();
    const S_Run run = Run(arguments);
    EXPECT_EQ(run.nExit, 1);
    EXPECT_EQ(Content("a.wav"), before);
    EXPECT_EQ(Entries(), names);
    return run.strErr;
  }
};

TEST_F(TagsCommand, MarksOfEveryKind_AreAdded) {
  WriteWav("a.wav");
  Output({"tags", "add", "event", "@a.wav", "--at", "0.5", "--main", "3", "--sub", "1"});
  Output({"tags", "add", "cue", "@a.wav", "--at", "0:00.250", "--name", "Chorus", "--text",
          "a note", "--to", "0.3"});
  Output({"tags", "add", "silence", "@a.wav", "--at", "100s", "--length", "50s"});
  Output({"tags", "add", "region", "@a.wav", "--at", "200s", "--to", "300s"});
  Output({"tags", "add", "loop", "@a.wav", "--at", "0", "--length", "1", "--type", "backward",
          "--count", "3"});
  EXPECT_THAT(Rows("a.wav"), ElementsAre("event 1 8000", "cue 1 4000", "label 1 4000 Chorus",
                                         "note 2 4000 a note", "text 1 4000+800 ",
                                         "silence 1 100+50", "region 1 200+100", "loop 1 0+16000"));
  voxplay::Reader reader(Path("a.wav"));
  EXPECT_EQ(reader.notes().events()[0].sub_command, 1U);
  EXPECT_EQ(reader.notes().loops()[0].type, 2U);
  EXPECT_EQ(reader.notes().loops()[0].last, 15999U);
  EXPECT_EQ(reader.notes().loops()[0].play_count, 3U);
}

TEST_F(TagsCommand, List_IsSortedByPlace) {
  WriteWav("a.wav");
  Output({"tags", "add", "event", "@a.wav", "--at", "0.5"});
  Output({"tags", "add", "cue", "@a.wav", "--at", "0.25", "--name", "two\nlines"});
  EXPECT_EQ(Output({"tags", "list", "@a.wav"}),
            Path("a.wav") +
                ": 3 marks\n"
                "  kind   no.      time  frame  id  content\n"
                "  cue      1  0:00.250  4,000   1\n"
                "  label    1  0:00.250  4,000   1  \"two\\nlines\"\n"
                "  event    1  0:00.500  8,000      main 0, sub 0\n");
}

TEST_F(TagsCommand, SoundsWithoutMarks_AreListedAsSuch) {
  WriteWav("a.wav");
  WriteSound("a.kst", FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL), PublicSamples(640));
  EXPECT_EQ(Output({"tags", "list", "-qq", "@a.wav", "@a.kst"}),
            Path("a.wav") + ": no marks\n\n" + Path("a.kst") + ": no marks\n");
}

TEST_F(TagsCommand, WhatAFileCannotHold_ChangesNothingUnlessToldTo) {
  WriteWav("a.wav");
  const Texts command = {"tags", "add", "event", "@a.wav", "--at", "0.5", "--data", "7"};
  EXPECT_EQ(WhyNot(command),
            Path("a.wav") +
                ": nothing is changed: event 1 at frame 8000: its data is not kept: a WAV file "
                "holds none; --anyway writes the rest\n");
  Texts forced = command;
  forced.emplace_back("-f");
  EXPECT_EQ(WhyNot(forced), WhyNot(command));
  forced.back() = "--anyway";
  const S_Run run = Run(forced);
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(
      run.strErr,
      Path("a.wav") + ": event 1 at frame 8000: its data is not kept: a WAV file holds none\n");
  EXPECT_THAT(Rows("a.wav"), ElementsAre("event 1 8000"));
}

TEST_F(TagsCommand, DataOfAnEvent_IsHeldByVef) {
  WriteSound("a.vef", FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_PCM, 16), PublicSamples(16000));
  Output({"tags", "add", "event", "@a.vef", "--at", "0.5", "--data", "7"});
  EXPECT_EQ(voxplay::Reader(Path("a.vef")).notes().events()[0].data, 7U);
}

TEST_F(TagsCommand, PlacesBeyondTheEnd_AreRefusedUnlessToldTo) {
  WriteWav("a.wav");
  EXPECT_EQ(
      WhyNot({"tags", "add", "cue", "@a.wav", "--at", "1.001"}),
      Path("a.wav") +
          ": nothing is changed: 0:01.001 is beyond the end of the sound at 0:01.000; --anyway "
          "adds it nevertheless\n");
  EXPECT_THAT(WhyNot({"tags", "add", "region", "@a.wav", "--at", "0.5", "--length", "1"}),
              HasSubstr("0:01.500 is beyond the end"));
  Output({"tags", "add", "cue", "@a.wav", "--at", "1"});
  Output({"tags", "add", "cue", "--anyway", "@a.wav", "--at", "2"});
  EXPECT_THAT(Rows("a.wav"), ElementsAre("cue 1 16000", "cue 2 32000"));
}

TEST_F(TagsCommand, NewCuePoints_GetFreeIDs) {
  voxplay::Notes notes;
  AddCue(notes, 1, 10);
  AddCue(notes, 3, 30);
  WriteWav("a.wav", notes);
  Output({"tags", "add", "cue", "@a.wav", "--at", "0.1", "--name", "x"});
  const voxplay::Reader reader(Path("a.wav"));
  EXPECT_EQ(reader.notes().cues()[2].id, 2U);
  EXPECT_EQ(reader.notes().labels()[0].cue_id, 2U);
}

TEST_F(TagsCommand, Remove_TakesMarksByNumber) {
  WriteWav("a.wav", NotesOfAllKinds());
  Output({"tags", "remove", "@a.wav", "event", "2"});
  Output({"tags", "remove", "@a.wav", "label", "1", "3"});
  Output({"tags", "remove", "@a.wav", "silence", "--all"});
  const voxplay::Reader reader(Path("a.wav"));
  EXPECT_EQ(reader.notes().events().size(), 1U);
  EXPECT_EQ(reader.notes().events()[0].main_command, 3U);
  EXPECT_EQ(reader.notes().labels().size(), 12U);
  EXPECT_STREQ(reader.notes().labels()[0].text, "a, \"quoted\" one");
  EXPECT_EQ(reader.notes().silence().size(), 0U);
  EXPECT_EQ(reader.notes().regions().size(), 1U);
}

TEST_F(TagsCommand, CuePoint_GoesWithAllThatBelongsToIt) {
  WriteWav("a.wav", NotesWithTexts());
  Output({"tags", "remove", "@a.wav", "cue", "3", "4"});
  const voxplay::Reader reader(Path("a.wav"));
  EXPECT_EQ(reader.notes().cues().size(), 12U);
  EXPECT_EQ(reader.notes().labels().size(), 11U);
  ASSERT_EQ(reader.notes().region_texts().size(), 1U);
  EXPECT_EQ(reader.notes().region_texts()[0].cue_id, 5U);
}

TEST_F(TagsCommand, LabelsAndNotes_AreToldApart) {
  WriteWav("a.wav", NotesWithTexts());
  EXPECT_EQ(WhyNot({"tags", "remove", "@a.wav", "label", "14"}),
            Path("a.wav") + ": nothing is changed: there is no label 14\n");
  Output({"tags", "remove", "@a.wav", "note", "14"});
  Output({"tags", "remove", "@a.wav", "label", "--all"});
  EXPECT_EQ(voxplay::Reader(Path("a.wav")).notes().labels().size(), 0U);
}

TEST_F(TagsCommand, AllMarks_GoButNoOtherChunk) {
  voxplay::Notes notes = NotesOfAllKinds();
  notes.add(voxplay::Chunk{{'b', 'e', 'x', 't'}, "text", 4});
  voxplay::Sampler sampler{};
  sampler.midi_unity_note = 60;
  notes.set_sampler(sampler);
  WriteWav("a.wav", notes);
  Output({"tags", "remove", "@a.wav", "--all"});
  const voxplay::Reader reader(Path("a.wav"));
  EXPECT_THAT(Rows("a.wav"), ElementsAre());
  EXPECT_EQ(reader.notes().chunks().size(), 1U);
  EXPECT_EQ(reader.notes().sampler().midi_unity_note, 60U);
}

TEST_F(TagsCommand, MarksThatAreNotThere_AreNotRemoved) {
  WriteWav("a.wav");
  for (const char* const pszNumber : {"0", "1", "18446744073709551615"}) {
    EXPECT_THAT(WhyNot({"tags", "remove", "@a.wav", "event", pszNumber}),
                HasSubstr("there is no event"));
  }
}

TEST_F(TagsCommand, WhatIsWrong_IsToldWithWhereTheHelpIs) {
  WriteWav("a.wav");
  const std::pair<Texts, const char*> kCases[] = {
      {{"tags"}, "voxtool tags: COMMAND is required"},
      {{"tags", "add", "event", "@a.wav", "--at", "0", "--sub", "-1"},
       "voxtool tags add event: --sub: -1 is no whole number from 0 to 65535"},
      {{"tags", "add", "event", "@a.wav", "--at", "0", "--main", "70000"},
       "voxtool tags add event: --main: 70000 is no whole number from 0 to 65535"},
      {{"tags", "add", "region", "@a.wav", "--at", "0"},
       "voxtool tags add region: --length is needed, or --to"},
      {{"tags", "remove", "@a.wav", "cue", "1", "extra"},
       "voxtool tags remove: NUMBER: extra is no whole number"},
      {{"tags", "remove", "@a.wav", "cue", "--", "-1"},
       "voxtool tags remove: NUMBER: -1 is no whole number"},
      {{"tags", "remove", "@a.wav", "event", "1", "--all"},
       "voxtool tags remove: NUMBER excludes --all"},
      {{"tags", "remove", "@a.wav", "event"},
       "voxtool tags remove: event: name the numbers of the marks, or --all"},
      {{"tags", "list", "--labels", "@a.wav", "@a.wav"},
       "voxtool tags list: --labels: a label track is of one file"}};
  for (const auto& [arguments, pszWhy] : kCases) {
    const std::string strWhy = pszWhy;
    const S_Run run = Run(arguments);
    EXPECT_EQ(run.nExit, 2);
    EXPECT_EQ(run.strErr,
              strWhy + "\nTry \"" + strWhy.substr(0, strWhy.find(':')) + " --help\".\n");
  }
}

TEST_F(TagsCommand, WhatCannotBeMeant_IsAUsageError) {
  WriteWav("a.wav");
  const auto before = Content("a.wav");
  const std::vector<Texts> commands = {
      {"tags"},
      {"tags", "add"},
      {"tags", "add", "event", "@a.wav"},
      {"tags", "add", "event", "@a.wav", "--at", "soon"},
      {"tags", "add", "event", "@a.wav", "--at", "-1"},
      {"tags", "add", "event", "@a.wav", "--at", "0", "--main", "65536"},
      {"tags", "add", "event", "@a.wav", "--at", "0", "--main", "-1"},
      {"tags", "add", "event", "@a.wav", "--at", "0", "--data", "4294967296"},
      {"tags", "add", "region", "@a.wav", "--at", "0"},
      {"tags", "add", "region", "@a.wav", "--at", "0", "--length", "1", "--to", "1"},
      {"tags", "add", "region", "@a.wav", "--at", "0.5", "--to", "0.4"},
      {"tags", "add", "loop", "@a.wav", "--at", "0", "--to", "1", "--type", "sideways"},
      {"tags", "remove", "@a.wav"},
      {"tags", "remove", "@a.wav", "event"},
      {"tags", "remove", "@a.wav", "song", "1"},
      {"tags", "remove", "@a.wav", "event", "1", "--all"},
      {"tags", "import", "@a.wav"},
      {"tags", "import", "@a.wav", "--csv", "x", "--json", "y"},
      {"tags", "export", "@a.wav", "@a.wav", "--labels"}};
  for (const Texts& command : commands) {
    const S_Run run = Run(command);
    EXPECT_EQ(run.nExit, 2) << testing::PrintToString(command);
    EXPECT_NE(run.strErr, "");
  }
  EXPECT_EQ(Content("a.wav"), before);
}

}  // namespace
