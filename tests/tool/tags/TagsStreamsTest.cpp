// SPDX-License-Identifier: Apache-2.0
//
// Marked files that go to standard output.
#include "AllNotes.h"
#include "VoxtoolTest.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class TagsStreams : public C_VoxtoolTest {
 protected:
  // What a command sends is what it writes into a file, and its own file stays.
  void ExpectSent(Texts command) const {
    const auto before = Content("a.wav");
    command.insert(command.end(), {"-o", "@b.wav"});
    Output(command);
    command.back() = "-";
    const std::string strSent = Output(command);
    EXPECT_EQ(strSent, Text("b.wav"));
    EXPECT_NE(strSent, std::string(before.begin(), before.end()));
    EXPECT_EQ(Content("a.wav"), before);
    std::filesystem::remove(Path("b.wav"));
  }
};

TEST_F(TagsStreams, MarkedFile_IsSent) {
  WriteWav("a.wav", NotesOfAllKinds());
  WriteText("marks", "0.5\t0.5\tx\n");
  ExpectSent({"tags", "add", "event", "@a.wav", "--at", "0.5"});
  ExpectSent({"tags", "remove", "@a.wav", "--all"});
  ExpectSent({"tags", "import", "@a.wav", "--labels", "@marks"});
  EXPECT_THAT(Entries(), ElementsAre("a.wav", "marks"));
}

TEST_F(TagsStreams, Failure_SendsNothing) {
  WriteWav("a.wav");
  const S_Run run = Run({"tags", "add", "event", "@a.wav", "--at", "5", "-o", "-"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strOut, "");
  EXPECT_EQ(RunLine("$V tags add event @a.wav --at 0.5 -o - > /dev/full").strErr,
            "standard output: cannot be written: No space left on device\n");
}

// More than a pipe holds.
TEST_F(TagsStreams, ReaderThatLeaves_EndsItQuietly) {
  MakeWav("a.wav", PublicSamples(160000));
  const S_Run run = RunLine("($V tags add event @a.wav --at 0 -o -; echo $? > @exit) | head -c 4");
  EXPECT_EQ(run.strOut, "RIFF");
  EXPECT_EQ(run.strErr, "");
  EXPECT_EQ(Text("exit"), "141\n");
}

TEST_F(TagsStreams, Terminal_GetsNoSound) {
  WriteWav("a.wav");
  const C_Program tool = Program();
  const auto arguments = Placed({"tags", "add", "event", "@a.wav", "--at", "0.5", "-o", "-"});
  const S_Run run = tool.StartOnScreen(arguments).Wait();
  EXPECT_EQ(run.nExit, 2);
  EXPECT_THAT(run.strErr, HasSubstr("standard output: is a terminal, and sounds are no text"));
  EXPECT_THAT(run.strErr, testing::Not(HasSubstr("RIFF")));
}

}  // namespace
