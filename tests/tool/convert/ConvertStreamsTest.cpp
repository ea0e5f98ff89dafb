// SPDX-License-Identifier: Apache-2.0
//
// voxtool convert between pipes, with little memory, and on full disks.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "OtherPrograms.h"
#include "Sanitized.h"
#include "ToolTest.h"

namespace tool {
namespace {

class ConvertStreamsTest : public test::C_ToolTest {
 protected:
  // Runs a shell command with $V for the program and @ for the folder.
  [[nodiscard]] int Pipe(const std::string& strCommand) const {
    const S_Run run =
        Shell().Run(Placed({"-c", strCommand}), {"V=" VOXPLAY_VOXTOOL, "PATH=/usr/bin:/bin"});
    EXPECT_EQ(run.strErr, "") << strCommand;
    return run.nExit;
  }
};

TEST_F(ConvertStreamsTest, SoundFromAPipeToAPipe_IsThatOfTheFiles) {
  MakeWav("in.wav", PublicSamples(20000), 16, 16000, 1, test::SomeNotes());
  for (const char* pszTo : {"wav", "vemd", "vef", "kestrel", "heron4", "heron2"}) {
    Convert({"@/in.wav", "-q", "-f", "-o", "@/file", "--to", pszTo, "--no-notes"});
    EXPECT_EQ(Pipe("cat @/in.wav | $V convert - --no-notes -o - --to " + std::string(pszTo) +
                   " | cat > @/pipe"),
              0);
    EXPECT_EQ(Content("pipe"), Content("file")) << pszTo;
  }
}

TEST_F(ConvertStreamsTest, PipesWithNames_AreReadLikeFiles) {
  MakeWav("in.wav", PublicSamples(20000), 16, 16000, 1, test::SomeNotes());
  Convert({"@/in.wav", "-q", "-o", "@/file.vef", "--codec", "kestrel"});
  EXPECT_EQ(Pipe("mkfifo @/pipe; (cat @/file.vef > @/pipe) & $V convert @/pipe -o @/out.wav"), 0);
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("out.wav")), PublicSamples(20000));
  for (const char* const pszCommand : {"info", "info --damage --json", "check"}) {
    EXPECT_EQ(Pipe("(cat @/file.vef > @/pipe) & $V " + std::string(pszCommand) + " @/pipe > @/out"),
              0)
        << pszCommand;
  }
}

TEST_F(ConvertStreamsTest, NotesThroughAPipe_AreKept) {
  MakeWav("in.wav", PublicSamples(20000), 16, 16000, 1, test::SomeNotes());
  for (const char* pszMore : {"", "--detect-silence", "--normalize", "--rate 8000"}) {
    EXPECT_EQ(Pipe("$V convert - -o - --to wav " + std::string(pszMore) +
                   " < @/in.wav | cat > @/out.wav"),
              0);
    EXPECT_EQ(test::ReadSound(Path("out.wav")).notes.view().events().size(), 2U) << pszMore;
  }
}

TEST_F(ConvertStreamsTest, OtherPrograms_ReadWhatIsSent) {
  MakeWav("in.wav", PublicSamples(16000, 2), 16, 44100, 2);
  EXPECT_EQ(Pipe("$V convert @/in.wav -o - --to wav | sox -t wav - -t raw @/raw"), 0);
  EXPECT_EQ(Content("raw").size(), 64000U);
  EXPECT_EQ(
      Pipe("sox @/in.wav -t flac - | $V convert - -o - --to wav | sox -t wav - -t raw @/raw2"), 0);
  EXPECT_EQ(Content("raw2"), Content("raw"));
}

// A file to a WAV stream needs no temporary file, so it comes out as it is decoded. Here, there is
// no folder for one.
TEST_F(ConvertStreamsTest, Wav_IsSentAsItIsDecoded) {
  MakeWav("in.wav", PublicSamples(160000));
  Convert({"@/in.wav", "-q", "-o", "@/out.wav"});
  EXPECT_EQ(Pipe("TMPDIR=@/none $V convert @/in.wav -q -o - --to wav > @/sent"), 0);
  EXPECT_EQ(Content("sent"), Content("out.wav"));
}

// More than a pipe holds.
TEST_F(ConvertStreamsTest, ReaderThatLeaves_EndsItQuietly) {
  MakeWav("in.wav", PublicSamples(160000));
  EXPECT_EQ(Pipe("($V convert @/in.wav -o - --to wav; echo $? > @/exit) | head -c 44 > @/head"), 0);
  EXPECT_EQ(Content("head").size(), 44U);
  EXPECT_EQ(Content("exit"), (std::vector<std::uint8_t>{'1', '4', '1', '\n'}));
}

TEST_F(ConvertStreamsTest, TargetThatAppearsMeanwhile_IsKept) {
  // More than a pipe holds, so that the program has begun when the other file appears.
  MakeWav("in.wav", PublicSamples(160000));
  EXPECT_EQ(
      Shell()
          .Run(Placed({"-c", "(cat @/in.wav; echo other > @/out.kst) | $V convert - -o @/out.kst"}),
               {"V=" VOXPLAY_VOXTOOL, "PATH=/usr/bin:/bin"})
          .strErr,
      Path("out.kst") + ": exists: -f replaces it\n");
  EXPECT_EQ(Content("out.kst").size(), 6U);
  EXPECT_EQ(Entries(), (Texts{"in.wav", "out.kst"}));
}

TEST_F(ConvertStreamsTest, FullDisk_IsAFailure) {
  MakeWav("in.wav", PublicSamples(160000));
  for (const char* pszTo : {"wav", "heron4", "vef"}) {
    const Texts arguments = Placed({"convert", "@/in.wav", "-o", "-", "--to", pszTo});
    const S_Run run = Program()
                          .Start(arguments, {},
                                 [] {
                                   const int nFull = open("/dev/full", O_WRONLY | O_CLOEXEC);
                                   dup2(nFull, STDOUT_FILENO);
                                 })
                          .Wait();
    EXPECT_EQ(run.nExit, 1) << pszTo;
    EXPECT_EQ(run.strErr, "standard output: cannot be written: No space left on device\n") << pszTo;
  }
}

TEST_F(ConvertStreamsTest, FileThatCannotGrow_LeavesNothing) {
  MakeWav("in.wav", PublicSamples(160000));
  const S_Run run = Program()
                        .Start(Placed({"convert", "@/in.wav", "-o", "@/out.wav"}), {},
                               [] {
                                 signal(SIGXFSZ, SIG_IGN);
                                 const rlimit limit = {100000, 100000};
                                 setrlimit(RLIMIT_FSIZE, &limit);
                               })
                        .Wait();
  EXPECT_EQ(run.nExit, 1);
  EXPECT_TRUE(Said(run.strErr).starts_with("@/out.wav: ")) << run.strErr;
  EXPECT_EQ(Entries(), Texts{"in.wav"});
}

TEST_F(ConvertStreamsTest, HalfAnHour_NeedsNoMoreMemoryThanASecond) {
  if (kSanitized) return;  // the sanitizers reserve memory of their own
  const C_TempFolder folder(C_TempFolder::kInMemory);
  const std::string strLong = folder.Path("long.wav");
  voxplay::Writer writer(strLong, FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16, 22050));
  const auto second = PublicSamples(22050);
  for (int n = 0; n < 1800; ++n) writer.write(std::span(second));
  writer.finish();
  ASSERT_GT(std::filesystem::file_size(strLong), 79'000'000U);
  for (const Texts& more : {Texts{"--bits", "24"},
                            {"--to", "kestrel", "--detect-silence"},
                            {"--rate", "16000", "--normalize"},
                            {"--to", "heron2"}}) {
    Texts arguments = {"convert", strLong, "-f", "-q", "-j", "1", "-o", folder.Path("out.wav")};
    arguments.insert(arguments.end(), more.begin(), more.end());
    const S_Run run = Program()
                          .Start(arguments, {},
                                 [] {
                                   constexpr rlim_t kMost = 64 * 1024 * 1024;
                                   const rlimit limit = {kMost, kMost};
                                   setrlimit(RLIMIT_AS, &limit);
                                 })
                          .Wait();
    EXPECT_EQ(run.nExit, 0) << run.strErr;
  }
}

}  // namespace
}  // namespace tool
