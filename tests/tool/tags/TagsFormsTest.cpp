// SPDX-License-Identifier: Apache-2.0
//
// Marks in the forms of other programs, and back.
#include "AllNotes.h"
#include "OtherPrograms.h"
#include "VoxtoolTest.h"

namespace {

using testing::HasSubstr;

class TagsForms : public C_VoxtoolTest {
 protected:
  // What a Python program prints, in which "@" stands for the folder.
  std::string Python(std::string strProgram) const {
    strProgram = InFolder(std::move(strProgram));
    const C_TempFolder folder;
    folder.Write("program.py", {strProgram.begin(), strProgram.end()});
    const auto bytes = RunIn(folder, "python3 @/program.py");
    return {bytes.begin(), bytes.end()};
  }
  [[nodiscard]] nlohmann::ordered_json Marks(const std::string& strName) const {
    return Json({"tags", "list", "--json", "@" + strName})[0]["marks"];
  }
};

TEST_F(TagsForms, ExportAndImport_GiveTheSameMarks) {
  WriteWav("a.wav", NotesOfAllKinds());
  for (const char* const pszForm : {"--json", "--csv"}) {
    WriteWav("b.wav");
    Output({"tags", "export", "@a.wav", pszForm, "-f", "-o", "@marks"});
    Output({"tags", "import", "@b.wav", pszForm, "@marks"});
    EXPECT_EQ(Content("b.wav"), Content("a.wav")) << pszForm;
    Output({"tags", "import", "@b.wav", pszForm, "@marks", "--replace"});
    EXPECT_EQ(Content("b.wav"), Content("a.wav")) << pszForm;
  }
}

TEST_F(TagsForms, LabelTrack_GivesTheSameLabelTrack) {
  WriteWav("a.wav", NotesOfAllKinds());
  WriteWav("b.wav");
  Output({"tags", "export", "@a.wav", "--labels", "-o", "@marks"});
  Output({"tags", "import", "@b.wav", "--labels", "@marks"});
  EXPECT_EQ(Output({"tags", "export", "@b.wav", "--labels"}), Text("marks"));
}

TEST_F(TagsForms, EveryContainer_KeepsItsMarksThroughEveryForm) {
  for (const S_PublicKind& kind : PublicKinds()) {
    if (kind.format.container > VOXPLAY_CONTAINER_VEF) continue;
    voxplay::Notes notes = NotesWithTexts();
    notes.add(voxplay::Event{500, 3, 5, 0, ""});
    WriteSound("a", kind.format, PublicSamples(16000, kind.format.channels), notes);
    WriteSound("b", kind.format, PublicSamples(16000, kind.format.channels));
    for (const char* const pszForm : {"--json", "--csv"}) {
      Output({"tags", "export", "@a", pszForm, "-f", "-o", "@marks"});
      Output({"tags", "import", "@b", pszForm, "@marks", "--replace"});
      EXPECT_EQ(Marks("b"), Marks("a")) << kind.strName << pszForm;
    }
  }
}

TEST_F(TagsForms, Values_AreWhatPythonReads) {
  WriteWav("a.wav", NotesOfAllKinds());
  Output({"tags", "export", "@a.wav", "-o", "@marks.csv"});
  const auto rows =
      nlohmann::ordered_json::parse(Python("import csv, json\n"
                                           "print(json.dumps(list(csv.DictReader(open('@/"
                                           "marks.csv', encoding='utf-8', newline='')))))"));
  const auto marks = Marks("a.wav");
  ASSERT_EQ(rows.size(), marks.size());
  for (std::size_t n = 0; n < rows.size(); ++n) {
    for (const auto& [strKey, value] : marks[n].items()) {
      const std::string strText = value.is_string() ? value.get<std::string>() : value.dump();
      EXPECT_EQ(rows[n][strKey], strText) << n << strKey;
    }
  }
}

TEST_F(TagsForms, Json_IsWhatPythonReads) {
  WriteWav("a.wav", NotesOfAllKinds());
  Output({"tags", "export", "@a.wav", "--json", "-o", "@marks.json"});
  const auto file = nlohmann::ordered_json::parse(
      Python("import json\nprint(json.dumps(json.load(open('@/marks.json', encoding='utf-8'))))"));
  EXPECT_EQ(file[0]["marks"], Marks("a.wav"));
}

TEST_F(TagsForms, TablesOfPython_AreRead) {
  WriteWav("a.wav");
  Python(
      "import csv\n"
      "with open('@/marks.csv', 'w', encoding='utf-8', newline='') as f:\n"
      "  w = csv.writer(f)\n"
      "  w.writerow(['kind', 'time', 'duration', 'name'])\n"
      "  w.writerow(['cue', '0:00.5', '0.25', 'a, \"b\"\\nc'])\n");
  Output({"tags", "import", "@a.wav", "--csv", "@marks.csv"});
  const auto marks = Marks("a.wav");
  EXPECT_EQ(marks[0]["start"], 8000);
  EXPECT_EQ(marks[1]["name"], "a, \"b\"\nc");
  EXPECT_EQ(marks[2]["length"], 4000);
}

TEST_F(TagsForms, Import_AddsToWhatIsThere) {
  WriteWav("a.wav", NotesWithTexts());
  Output({"tags", "export", "@a.wav", "-o", "@marks"});
  Output({"tags", "import", "@a.wav", "--csv", "@marks"});
  const voxplay::Reader reader(Path("a.wav"));
  EXPECT_EQ(reader.notes().cues().size(), 28U);
  EXPECT_EQ(reader.notes().cues()[14].id, 15U);
  EXPECT_EQ(reader.notes().labels()[14].cue_id, 15U);
}

// There was no chunk for a sampler, and none is made.
TEST_F(TagsForms, Replace_AddsNothingElse) {
  WriteWav("a.wav");
  const auto before = Content("a.wav");
  WriteText("marks", "1\t1\tx\n");
  Output({"tags", "import", "@a.wav", "--labels", "@marks"});
  const auto marked = Content("a.wav");
  Output({"tags", "import", "@a.wav", "--labels", "@marks", "--replace"});
  EXPECT_EQ(Content("a.wav"), marked);
  Output({"tags", "remove", "@a.wav", "--all"});
  EXPECT_EQ(Content("a.wav"), before);
}

TEST_F(TagsForms, Replace_KeepsTheSampler) {
  voxplay::Notes notes;
  voxplay::Sampler sampler{};
  sampler.midi_unity_note = 60;
  notes.set_sampler(sampler);
  WriteWav("a.wav", notes);
  WriteText("marks", "1\t1\tx\n");
  Output({"tags", "import", "@a.wav", "--labels", "@marks", "--replace"});
  EXPECT_EQ(voxplay::Reader(Path("a.wav")).notes().sampler().midi_unity_note, 60U);
}

// Frames of one sound are other places in a sound of another rate.
TEST_F(TagsForms, TableOfAnotherRate_IsRefusedWithItsLine) {
  WriteWav("a.wav", NotesWithTexts());
  MakeWav("b.wav", PublicSamples(44100), 16, 44100);
  Output({"tags", "export", "@a.wav", "-o", "@marks"});
  const S_Run run = Run({"tags", "import", "@b.wav", "--csv", "@marks"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_THAT(Said(run.strErr), testing::StartsWith("@/marks: cannot be imported: line 2: start is "
                                                    "1000, but time is \"0.0625\", which is 2756"));
}

TEST_F(TagsForms, SeveralFiles_AreOneTable) {
  WriteWav("a.wav", NotesWithTexts());
  WriteWav("b.wav", NotesWithTexts());
  const std::string strTable = Output({"tags", "export", "@a.wav", "@b.wav"});
  EXPECT_EQ(strTable.substr(0, 10), "file,kind,");
  WriteText("marks", strTable);
  const S_Run run = Run({"tags", "import", "@a.wav", "--csv", "@marks"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strErr,
            Path("marks") + ": cannot be imported: it has the marks of several files\n");
  EXPECT_EQ(Json({"tags", "export", "--json", "@a.wav", "@b.wav"}).size(), 2U);
}

TEST_F(TagsForms, BadImports_ChangeNothing) {
  WriteWav("a.wav", NotesWithTexts());
  const auto before = Content("a.wav");
  const struct {
    const char* pszForm;
    const char* pszText;
    const char* pszWhy;
  } imports[] = {
      {"--json", "[{", "it is not JSON"},
      {"--json", "[[[[", "it is not JSON"},
      {"--json", "7", "the marks are not an array"},
      {"--json", "{}", "it has no member \"marks\""},
      {"--json", R"({"marks": [], "sample_rate": 8000})",
       "the marks count frames of 8000 Hz, and the sound has 16000 Hz"},
      {"--json", R"([{"kind": "cue", "start": 1}, {"kind": "cue"}])",
       "row 2: it has neither start nor time"},
      {"--csv", "kind,start\ncue,x\n", "line 2: start: \"x\" is not a whole number"},
      {"--csv", "a,b\n", "the first line does not name a column \"kind\""},
      {"--labels", "x\n", "line 1: \"x\" is not a time"},
      {"--csv", "kind,start\ncue,16000\nevent,16001\n",
       "line 3: 0:01.000 is beyond the end of the sound at 0:01.000; --anyway adds it "
       "nevertheless"},
      {"--csv", "kind,start,length\nsilence,15999,2\n", "line 2: 0:01.000 is beyond the end"},
      {"--csv", "kind,time,duration\ncue,0.5,1\n", "line 2: 0:01.500 is beyond the end"},
      {"--csv", "kind,start,length\nloop,1,16000\n", "line 2: 0:01.000 is beyond the end"},
      {"--json", R"([{"kind": "cue", "start": 32000}])", "row 1: 0:02.000 is beyond the end"},
      {"--labels", "0.5\t2\tx\n", "line 1: 0:02.000 is beyond the end"},
      {"--labels", "",
       "there are no marks in it, and --replace would leave none; \"voxtool tags remove --all\" "
       "does that"},
      {"--csv", "kind,start\n", "there are no marks in it"},
      {"--csv", "kind,start,nmae\ncue,1,x\n",
       "the column \"nmae\" is unknown; did you mean \"name\"?"},
      {"--csv", "kind;start;remark\ncue;1;x\n", "the column \"remark\" is unknown\n"},
      {"--json", R"([{"kind": "cue", "start": 1}, {"kind": "cue", "start": 1, "nmae": "x"}])",
       "row 2: \"nmae\" is unknown; did you mean \"name\"?"},
      {"--json", R"([{"schema": 2, "marks": [{"kind": "cue", "start": 1}]}])",
       "its schema is 2, and this program knows 1"},
      {"--json", R"({"marks": [{"kind": "cue", "start": 1}], "schema": "1"})",
       "its schema is \"1\", and this program knows 1"},
      {"--json", "[]", "there are no marks in it"},
  };
  for (const auto& import : imports) {
    WriteText("marks", import.pszText);
    const S_Run run = Run({"tags", "import", "@a.wav", import.pszForm, "@marks", "--replace"});
    EXPECT_EQ(run.nExit, 1);
    EXPECT_THAT(run.strErr, HasSubstr(Path("marks") + ": cannot be imported: " + import.pszWhy));
    EXPECT_EQ(Content("a.wav"), before);
  }
}

TEST_F(TagsForms, ImportsThatAreMeantAnyway_AreDone) {
  WriteWav("a.wav", NotesWithTexts());
  WriteText("marks", "0.5\t2\tx\n");
  Output({"tags", "import", "@a.wav", "--labels", "@marks", "--replace", "--anyway"});
  EXPECT_EQ(Marks("a.wav")[2]["length"], 24000);
  WriteText("marks", "");
  Output({"tags", "import", "@a.wav", "--labels", "@marks"});
  EXPECT_EQ(Marks("a.wav").size(), 3U);
  Output({"tags", "import", "@a.wav", "--labels", "@marks", "--replace", "--anyway"});
  EXPECT_EQ(Marks("a.wav").size(), 0U);
}

TEST_F(TagsForms, DeepJson_IsOnlyRefused) {
  WriteWav("a.wav");
  WriteText("marks", std::string(300000, '[') + std::string(300000, ']'));
  const S_Run run = Run({"tags", "import", "@a.wav", "--json", "@marks"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_THAT(run.strErr, HasSubstr("row 1: it is not an object"));
}

TEST_F(TagsForms, ExistingExport_IsReplacedOnlyWhenAsked) {
  WriteWav("a.wav");
  WriteText("marks", "mine");
  EXPECT_EQ(Run({"tags", "export", "@a.wav", "-o", "@marks"}).nExit, 1);
  EXPECT_EQ(Text("marks"), "mine");
  Output({"tags", "export", "@a.wav", "-f", "-o", "@marks"});
  EXPECT_NE(Text("marks"), "mine");
}

}  // namespace
