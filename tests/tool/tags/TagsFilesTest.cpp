// SPDX-License-Identifier: Apache-2.0
//
// What becomes of files whose marks change: nothing but the marks.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <utility>

#include "AllNotes.h"
#include "CompressedBytes.h"
#include "OtherPrograms.h"
#include "VoxtoolTest.h"
#include "WavBytes.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;

class TagsFiles : public C_VoxtoolTest {
 protected:
  // Samples in their whole width.
  [[nodiscard]] std::vector<float> Samples(const std::string& strName,
                                           std::uint32_t dwFlags = 0) const {
    voxplay::Reader reader(Path(strName), dwFlags);
    return ReadRest<float>(reader);
  }
  // The contents of all chunks but those with marks, each after its name.
  [[nodiscard]] std::vector<Bytes> OtherChunks(const std::string& strName) const {
    const Bytes file = Content(strName);
    const voxplay::Reader reader(Path(strName));
    std::vector<Bytes> chunks;
    for (const voxplay::ChunkPlace& place : reader.chunk_places()) {
      const std::string strID(place.id, sizeof place.id);
      if (strID == "cue " || strID == "smpl" || strID == "LIST") continue;
      const auto first = file.begin() + static_cast<std::ptrdiff_t>(place.offset);
      chunks.emplace_back(strID.begin(), strID.end());
      chunks.emplace_back(first, first + static_cast<std::ptrdiff_t>(place.held));
    }
    return chunks;
  }
  // Adds an event and a cue point.
  void Mark(const std::string& strName) const {
    Output({"tags", "add", "event", "--anyway", "@" + strName, "--at", "10s", "--main", "7"});
    Output({"tags", "add", "cue", "--anyway", "@" + strName, "--at", "20s", "--name", "odd"});
  }
  void ExpectMarks(const std::string& strName) const {
    const voxplay::Reader reader(Path(strName));
    ASSERT_EQ(reader.notes().events().size(), 1U) << strName;
    EXPECT_EQ(reader.notes().events()[0].main_command, 7U);
    ASSERT_EQ(reader.notes().labels().size(), 1U);
    EXPECT_STREQ(reader.notes().labels()[0].text, "odd");
  }
};

TEST_F(TagsFiles, SamplesAndStreamsOfEveryKind_StayBitForBit) {
  for (const S_PublicKind& kind : PublicKinds()) {
    if (kind.format.container > VOXPLAY_CONTAINER_VEF) continue;
    WriteSound("a", kind.format, PublicSamples(4000, kind.format.channels));
    const auto chunks = OtherChunks("a");
    const auto samples = Samples("a", kind.dwReadFlags);
    Mark("a");
    EXPECT_EQ(OtherChunks("a"), chunks) << kind.strName;
    EXPECT_EQ(Samples("a", kind.dwReadFlags), samples) << kind.strName;
    ExpectMarks("a");
  }
}

TEST_F(TagsFiles, CompressedWavFiles_AreMarkedWithoutCoding) {
  for (const auto& shape : OneOfEachKind()) {
    Write("a.wav",
          CompressedWav(shape, RampBytes(std::size_t{10} * shape.wBlockAlign), "WAVE").Take());
    const auto chunks = OtherChunks("a.wav");
    Mark("a.wav");
    EXPECT_EQ(OtherChunks("a.wav"), chunks);
    ExpectMarks("a.wav");
  }
}

// Formats that voxplay reads and does not write.
TEST_F(TagsFiles, RareFormats_StayWhatTheyAre) {
  for (const char* const pszCodec : {"pcm_f64le", "pcm_s24le", "pcm_mulaw", "adpcm_ms"}) {
    WriteWav("a.wav");
    const C_TempFolder folder;
    RunIn(folder, "ffmpeg -y -v error -i " + Path("a.wav") + " -ac 6 -c:a " +
                      (std::string(pszCodec) == "adpcm_ms" ? "adpcm_ms -ac 2" : pszCodec) + " " +
                      Path("b.wav"));
    const auto chunks = OtherChunks("b.wav");
    const auto before = RunIn(folder, "ffmpeg -v error -i " + Path("b.wav") + " -f md5 -");
    Mark("b.wav");
    EXPECT_EQ(OtherChunks("b.wav"), chunks) << pszCodec;
    EXPECT_EQ(RunIn(folder, "ffmpeg -v error -i " + Path("b.wav") + " -f md5 -"), before);
    ExpectMarks("b.wav");
  }
}

TEST_F(TagsFiles, OtherChunks_StayWhereTheyAre) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("bext", RampBytes(7)).Zeros(1);
  riff.Chunk("JUNK", C_Bytes(28)).Chunk("fmt ", FmtBytes(1, 1, 16000, 16));
  riff.Chunk("cue ", CueBytes({{1, 5, 5}})).Chunk("data", RampBytes(101)).Zeros(1);
  riff.Chunk("LIST", Join({Ascii("INFO"), ChunkBytes("INAM", Ascii("name"))}));
  Write("a.wav", riff.Take());
  const auto chunks = OtherChunks("a.wav");
  Mark("a.wav");
  EXPECT_EQ(OtherChunks("a.wav"), chunks);
  const voxplay::Reader reader(Path("a.wav"));
  std::string strOrder;
  for (const auto& place : reader.chunk_places()) strOrder += std::string(place.id, 4) + ' ';
  EXPECT_EQ(strOrder, "bext JUNK fmt  cue  LIST data LIST ");
  EXPECT_EQ(reader.notes().cues().size(), 2U);
}

TEST_F(TagsFiles, BytesAfterTheRiffFile_StayThere) {
  Bytes bytes = MonoWav(100).Take();
  const Bytes tail = Ascii("TAG of another program");
  bytes.insert(bytes.end(), tail.begin(), tail.end());
  Write("a.wav", bytes);
  Mark("a.wav");
  const Bytes marked = Content("a.wav");
  EXPECT_EQ(Bytes(marked.end() - static_cast<std::ptrdiff_t>(tail.size()), marked.end()), tail);
  ExpectMarks("a.wav");
}

// Some programs do not fill up an odd chunk, and say so with the size of the whole.
TEST_F(TagsFiles, TailAfterAnUnfilledChunk_StaysWhole) {
  const Bytes tail = Ascii("TAG of another program");
  for (const bool bFilled : {false, true}) {
    C_RiffBytes riff("WAVE");
    riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 8)).Chunk("data", RampBytes(101));
    if (bFilled) riff.Zeros(1);
    Bytes bytes = riff.Take();
    bytes.insert(bytes.end(), tail.begin(), tail.end());
    Write("a.wav", bytes);
    Mark("a.wav");
    const Bytes marked = Content("a.wav");
    const std::size_t cbRiff = 8 + marked[4] + 256U * marked[5];
    EXPECT_EQ(Bytes(marked.begin() + static_cast<std::ptrdiff_t>(cbRiff), marked.end()), tail);
    ExpectMarks("a.wav");
  }
}

TEST_F(TagsFiles, FileWithoutARate_TakesPlacesInSamplesAlone) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 0, 16)).Chunk("data", RampBytes(2000));
  Write("a.wav", riff.Take());
  const Bytes before = Content("a.wav");
  for (const Texts& further :
       std::vector<Texts>{{"--at", "0.01"}, {"--at", "1s", "--to", "0:01"}}) {
    Texts command = {"tags", "add", "cue", "@a.wav"};
    command.insert(command.end(), further.begin(), further.end());
    const S_Run run = Run(command);
    EXPECT_EQ(run.nExit, 1);
    EXPECT_EQ(Said(run.strErr), "@/a.wav: nothing is changed: it has no sample rate, so that " +
                                    further.back() + " is no place in it; give samples (32000s)\n");
  }
  EXPECT_EQ(Said(Run({"tags", "add", "cue", "@a.wav", "--at", "1001s"}).strErr),
            "@/a.wav: nothing is changed: sample 1,001 is beyond the end of the sound at sample "
            "1,000; --anyway adds it nevertheless\n");
  EXPECT_EQ(Said(Run({"tags", "list", "--labels", "@a.wav"}).strErr),
            "@/a.wav: its marks are no label track: it has no sample rate, and label tracks count "
            "seconds\n");
  EXPECT_EQ(Content("a.wav"), before);
  Output({"tags", "add", "cue", "@a.wav", "--at", "77s"});
  EXPECT_EQ(Json({"tags", "list", "--json", "@a.wav"})[0]["marks"][0]["start"], 77);
  Output({"tags", "export", "@a.wav", "-o", "@marks.csv"});
  const Bytes marked = Content("a.wav");
  Output({"tags", "import", "@a.wav", "--csv", "@marks.csv", "--replace"});
  EXPECT_EQ(Content("a.wav"), marked);
}

TEST_F(TagsFiles, SizesThatWereNotKnown_BecomeKnown) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 0xFFFFFFFF, RampBytes(100));
  Write("a.wav", riff.RiffSize(0xFFFFFFFF).Take());
  const auto samples = Samples("a.wav");
  Mark("a.wav");
  EXPECT_EQ(Samples("a.wav"), samples);
  ExpectMarks("a.wav");
}

TEST_F(TagsFiles, Rf64File_StaysOne) {
  const C_TempFolder folder;
  WriteWav("a.wav");
  RunIn(folder, "ffmpeg -v error -i " + Path("a.wav") + " -rf64 always " + Path("b.wav"));
  const auto samples = Samples("b.wav");
  Mark("b.wav");
  EXPECT_EQ(Text("b.wav").substr(0, 4), "RF64");
  EXPECT_EQ(Samples("b.wav"), samples);
  ExpectMarks("b.wav");
  EXPECT_EQ(RunIn(folder, "ffmpeg -v error -i " + Path("b.wav") + " -f md5 -"),
            RunIn(folder, "ffmpeg -v error -i " + Path("a.wav") + " -f md5 -"));
}

TEST_F(TagsFiles, OtherPrograms_SeeTheCuePoints) {
  WriteWav("a.wav");
  Output({"tags", "add", "cue", "@a.wav", "--at", "0.5", "--name", "Middle"});
  const C_TempFolder folder;
  const auto out = RunIn(folder, "ffprobe -v error -show_chapters " + Path("a.wav"));
  EXPECT_THAT(std::string(out.begin(), out.end()), HasSubstr("start=8000\n"));
  EXPECT_THAT(std::string(out.begin(), out.end()), HasSubstr("title=Middle\n"));
}

TEST_F(TagsFiles, ModeAndLink_StayAsTheyAre) {
  WriteWav("a.wav");
  ASSERT_EQ(chmod(Path("a.wav").c_str(), 0640), 0);
  ASSERT_EQ(symlink("a.wav", Path("link.wav").c_str()), 0);
  Mark("link.wav");
  struct stat status {};
  ASSERT_EQ(stat(Path("a.wav").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
  EXPECT_TRUE(std::filesystem::is_symlink(Path("link.wav")));
  EXPECT_THAT(Entries(), ElementsAre("a.wav", "link.wav"));
}

TEST_F(TagsFiles, Output_LeavesTheFileAsItIs) {
  WriteWav("a.wav");
  const Bytes before = Content("a.wav");
  Output({"tags", "add", "event", "@a.wav", "--at", "10s", "--main", "7", "-o", "@b.wav"});
  EXPECT_EQ(Content("a.wav"), before);
  EXPECT_EQ(voxplay::Reader(Path("b.wav")).notes().events().size(), 1U);
  EXPECT_EQ(Run({"tags", "add", "event", "@a.wav", "--at", "1s", "-o", "@b.wav"}).nExit, 1);
}

TEST_F(TagsFiles, FilesThatHoldNoMarks_AreRefusedWithAWayOut) {
  for (const auto eContainer :
       {VOXPLAY_CONTAINER_SP, VOXPLAY_CONTAINER_HEAD, VOXPLAY_CONTAINER_BARE}) {
    WriteSound("a", FormatOf(eContainer, VOXPLAY_CODEC_KESTREL), PublicSamples(640));
    const Bytes before = Content("a");
    const S_Run run = Run({"tags", "add", "event", "@a", "--at", "0"});
    EXPECT_EQ(run.nExit, 1);
    EXPECT_THAT(run.strErr, HasSubstr("\"voxtool convert\""));
    EXPECT_EQ(Content("a"), before);
  }
}

TEST_F(TagsFiles, CutFile_IsNotWrittenAgain) {
  Bytes bytes = MonoWav(1000).Take();
  bytes.resize(544);
  Write("a.wav", bytes);
  const S_Run run = Run({"tags", "add", "event", "@a.wav", "--at", "0"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_THAT(run.strErr, HasSubstr("the file is cut short"));
  EXPECT_EQ(Content("a.wav"), bytes);
}

TEST_F(TagsFiles, FullDisk_LeavesTheFileAsItIs) {
  WriteWav("a.wav");
  const Bytes before = Content("a.wav");
  const C_Program tool = Program();
  const S_Run run = tool.Start({"tags", "add", "event", Path("a.wav"), "--at", "0"}, {},
                               [] {
                                 const rlimit limit{10000, 10000};
                                 setrlimit(RLIMIT_FSIZE, &limit);
                                 signal(SIGXFSZ, SIG_IGN);
                               })
                        .Wait();
  EXPECT_EQ(run.nExit, 1);
  EXPECT_THAT(run.strErr, HasSubstr("a.wav: cannot be written: File too large"));
  EXPECT_EQ(Content("a.wav"), before);
  EXPECT_THAT(Entries(), ElementsAre("a.wav"));
}

// The table is a pipe, so that the program waits for the rest of it. ReplacedFileTest has what
// becomes of a file that is being written.
TEST_F(TagsFiles, Interrupt_LeavesTheFileAsItIs) {
  WriteWav("a.wav");
  const Bytes before = Content("a.wav");
  ASSERT_EQ(mkfifo(Path("marks").c_str(), 0600), 0);
  const C_Program tool = Program();
  C_RunningProgram running =
      tool.Start({"tags", "import", Path("a.wav"), "--csv", Path("marks"), "-o", Path("b.wav")});
  const int nMarks = open(Path("marks").c_str(), O_WRONLY | O_CLOEXEC);
  ASSERT_GE(nMarks, 0);
  ASSERT_EQ(write(nMarks, "kind,", 5), 5);
  running.Send(SIGINT);
  const S_Run run = running.Wait();
  close(nMarks);
  EXPECT_EQ(run.nExit, 130);
  EXPECT_EQ(run.strErr, "");
  EXPECT_THAT(Entries(), ElementsAre("a.wav", "marks"));
  EXPECT_EQ(Content("a.wav"), before);
}

TEST_F(TagsFiles, EditsAtTheSameTime_AreAllDone) {
  WriteWav("a.wav");
  const S_Run run =
      RunLine("for n in 1 2 3 4 5 6 7 8; do $V tags add cue @a.wav --at ${n}00s & done; wait");
  EXPECT_EQ(run.strErr, "");
  EXPECT_EQ(voxplay::Reader(Path("a.wav")).notes().cues().size(), 8U);
}

TEST_F(TagsFiles, WhatCannotBeOpened_IsNamedWithTheReason) {
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  for (const auto& [strFile, strWhy] : std::vector<std::pair<std::string, std::string>>{
           {"/dev/null", "not a regular file"},
           {Path("pipe"), "not a regular file"},
           {Path("none.wav"), "there is no such file"}}) {
    const S_Run run = RunLine("$V tags add cue " + strFile + " --at 0");
    EXPECT_EQ(run.nExit, 1);
    EXPECT_EQ(run.strErr, strFile + ": cannot be opened: " + strWhy + "\n");
  }
}

// As above, the table is a pipe.
TEST_F(TagsFiles, FileThatOthersChangeMeanwhile_StaysAsTheyMadeIt) {
  for (const bool bReplaced : {false, true}) {
    WriteWav("a.wav");
    ASSERT_EQ(mkfifo(Path("marks").c_str(), 0600), 0);
    const C_Program tool = Program();
    C_RunningProgram running =
        tool.Start({"tags", "import", Path("a.wav"), "--csv", Path("marks")});
    const int nMarks = open(Path("marks").c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_GE(nMarks, 0);
    WriteWav("b.wav", NotesOfAllKinds());
    if (bReplaced) {
      std::filesystem::rename(Path("b.wav"), Path("a.wav"));
    } else {
      std::filesystem::copy(Path("b.wav"), Path("a.wav"),
                            std::filesystem::copy_options::overwrite_existing);
    }
    const Bytes theirs = Content("a.wav");
    ASSERT_EQ(write(nMarks, "kind,start\ncue,1\n", 17), 17);
    close(nMarks);
    const S_Run run = running.Wait();
    EXPECT_EQ(run.nExit, 1);
    if (bReplaced) {
      EXPECT_EQ(Said(run.strErr), "@/a.wav: nothing is changed: it has changed meanwhile\n");
    }
    EXPECT_EQ(Content("a.wav"), theirs);
    std::filesystem::remove(Path("marks"));
  }
}

TEST_F(TagsFiles, EditsOneAfterTheOther_LeaveNoTraces) {
  WriteWav("a.wav", NotesOfAllKinds());
  const Bytes before = Content("a.wav");
  Output({"tags", "add", "event", "@a.wav", "--at", "0.9", "--main", "9"});
  Output({"tags", "remove", "@a.wav", "event", "3"});
  EXPECT_EQ(Content("a.wav"), before);
}

}  // namespace
