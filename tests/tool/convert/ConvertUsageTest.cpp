// SPDX-License-Identifier: Apache-2.0
//
// What voxtool convert refuses, overwrites and prints.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>

#include "ToolTest.h"

namespace tool {
namespace {

class ConvertUsageTest : public test::C_ToolTest {
 protected:
  ConvertUsageTest() { MakeWav("in.wav", PublicSamples(1600)); }
};

TEST_F(ConvertUsageTest, NegativeNumberAfterAnOption_IsItsValue) {
  MakeWav("in.wav", std::vector<float>(1600, 0.25F), 0);
  Convert({"--normalize", "-6.0206", "@/in.wav", "-o", "@/a.wav"});
  EXPECT_NEAR(test::SamplesIn<float>(Path("a.wav"))[0], 0.5, 1e-5);
  Convert({"--normalize", "@/in.wav", "-o", "@/b.wav"});
  EXPECT_NEAR(test::SamplesIn<float>(Path("b.wav"))[0], 0.891251, 1e-5);
  Convert({"@/in.wav", "--detect-silence", "-10:50", "-o", "@/c.wav"});
  EXPECT_EQ(test::ReadSound(Path("c.wav")).notes.view().silence().size(), 1U);
  Convert({"@/in.wav", "--detect-silence", "-o", "@/d.wav"});
  EXPECT_EQ(test::ReadSound(Path("d.wav")).notes.view().silence().size(), 0U);
  Fail(2, {"--normalize", "-6", "--", "-6", "-o", "@/e.wav"});
}

TEST_F(ConvertUsageTest, BytesForATerminal_AreRefused) {
  const S_Run run = Shell().Run(
      Placed({"-c", "script -qec \"$V convert @/in.wav -o - --to wav\" /dev/null < /dev/null"}),
      {"V=" VOXPLAY_VOXTOOL, "PATH=/usr/bin:/bin"});
  EXPECT_EQ(run.nExit, 2);
  EXPECT_EQ(
      run.strOut,
      "voxtool convert: standard output: is a terminal: a file or another program has to take "
      "the bytes\r\nTry \"voxtool convert --help\".\r\n");
}

TEST_F(ConvertUsageTest, WhatCannotBeMeant_EndsWithTwo) {
  EXPECT_EQ(Fail(2, {}), "voxtool convert: no file is named\nTry \"voxtool convert --help\".\n")
      << "no files";
  EXPECT_EQ(Fail(2, {"@/in.wav"}), Misuse("--to has to say which format to write"));
  EXPECT_EQ(Fail(2, {"@/in.wav", "--to", "wav"}),
            Misuse("-o FILE or -d DIR has to say what to write"));
  EXPECT_EQ(
      Fail(2, {"@/in.wav", "-o", "@/out.mp3"}),
      Misuse("@/out.mp3: its extension is no format that can be written: --to says which one to "
             "write"));
  EXPECT_EQ(Fail(2, {"@/in.wav", "@/in2.wav", "-o", "@/out.kst"}),
            Misuse("several files need -d DIR in place of -o"));
  EXPECT_EQ(Fail(2, {"@/in.wav", "-o", "@", "--to", "wav"}),
            Misuse("@: is a folder: -d writes into it"));
  EXPECT_EQ(Fail(2, {"-", "-d", "@", "--to", "wav"}),
            Misuse("standard input has no name, so it needs -o in place of -d"));
  EXPECT_EQ(Fail(2, {"@/in.wav", "-o", "-"}), Misuse("--to has to say which format to write"));
  for (const Texts& extra : {Texts{"--to", "mp4"},
                             {"--bits", "12"},
                             {"--gain", "loud"},
                             {"--gain", "nan"},
                             {"--gain", "inf"},
                             {"--gain", "201"},
                             {"--normalize=nan"},
                             {"--detect-silence=nan:100"},
                             {"--detect-silence=-50:nan"},
                             {"--mono", "--channel", "1"},
                             {"--gain", "1", "--normalize"},
                             {"--channel", "0"},
                             {"--normalize=1"},
                             {"--normalize=x"},
                             {"--detect-silence=-50"},
                             {"--detect-silence=5:100"},
                             {"--rate", "0"},
                             {"-j", "0"},
                             {"-d", "@"},
                             {"-0"},
                             {"-q", "-v"},
                             {"--nonsense"},
                             {"-f", "--skip-existing"}}) {
    Texts arguments = {"@/in.wav", "-o", "@/out.wav"};
    arguments.insert(arguments.end(), extra.begin(), extra.end());
    EXPECT_NE(Fail(2, arguments), "") << testing::PrintToString(extra);
  }
  EXPECT_EQ(Entries(), Texts{"in.wav"});
}

TEST_F(ConvertUsageTest, Help_HasExamplesAndEndsWithZero) {
  const S_Run run = Run({"convert", "--help"});
  EXPECT_EQ(run.nExit, 0);
  EXPECT_EQ(run.strErr, "");
  EXPECT_NE(run.strOut.find("voxtool convert speech.flac -o speech.kst"), std::string::npos);
}

TEST_F(ConvertUsageTest, ValuesOfAnotherForm_AreToldTheRightOne) {
  EXPECT_EQ(Fail(2, {"@/in.wav", "-o", "@/out.wav", "--detect-silence=-40"}),
            Misuse("--detect-silence: -40 is not -DB:MS, such as -50:200"));
  EXPECT_EQ(Fail(2, {"@/in.wav", "-o", "@/out.wav", "--normalize=3"}),
            Misuse("--normalize: 3 is not -DB, such as -3"));
  EXPECT_EQ(Fail(2, {"@/in.wav", "-o", "@/out.wav", "--normalize", "3"}),
            Misuse("--normalize: 3 is taken for a file; a level is given by --normalize=-DB"));
}

TEST_F(ConvertUsageTest, StandardInputThatIsNoSound_IsCalledSo) {
  WriteText("text", "hello");
  const S_Run run = RunLine("cat @/text | $V convert - -o @/out.wav");
  EXPECT_EQ(run.nExit, 1);
  EXPECT_TRUE(run.strErr.starts_with("standard input: ")) << run.strErr;
  EXPECT_EQ(run.strErr.find("input: input"), std::string::npos) << run.strErr;
}

TEST_F(ConvertUsageTest, FileThatBeginsLikeOneOfOthers_FailsAsTheySay) {
  WriteText("a.flac", "fLaC and nothing more");
  const std::string strSaid = Fail(1, {"@/a.flac", "-o", "@/out.wav"});
  EXPECT_TRUE(
      strSaid.starts_with("@/a.flac: begins like FLAC and cannot be read: libsndfile says: "))
      << strSaid;
  EXPECT_EQ(std::ranges::count(strSaid, '\n'), 1) << strSaid;
}

TEST_F(ConvertUsageTest, FileThatIsNoSound_FailsWithItsName) {
  Write("text.wav", {'h', 'e', 'l', 'l', 'o'});
  const std::string strSaid = Fail(1, {"@/text.wav", "-o", "@/out.wav"});
  EXPECT_TRUE(strSaid.starts_with("@/text.wav: ")) << strSaid;
  EXPECT_EQ(std::ranges::count(strSaid, '\n'), 1) << strSaid;
  EXPECT_TRUE(Fail(1, {"@/none.wav", "-o", "@/out.wav"}).starts_with("@/none.wav: "));
  EXPECT_FALSE(std::filesystem::exists(Path("out.wav")));
}

TEST_F(ConvertUsageTest, SoundThatNoTargetCanHold_FailsWithItsName) {
  auto bytes = Content("in.wav");
  std::fill_n(bytes.begin() + 24, 4, std::uint8_t{0});
  Write("still.wav", bytes);
  for (const char* pszTo : {"wav", "kestrel", "heron4", "vef"}) {
    EXPECT_EQ(Fail(1, {"@/still.wav", "-o", "@/out", "--to", pszTo, "--detect-silence"}),
              "@/still.wav: cannot be converted: it has no sample rate\n");
  }
  MakeWav("empty.wav", std::vector<std::int16_t>());
  EXPECT_EQ(Fail(1, {"@/empty.wav", "-o", "@/out", "--to", "heron4"}),
            "@/empty.wav: cannot be converted: it has no samples\n");
  EXPECT_EQ(Convert({"@/empty.wav", "-o", "@/empty2.wav", "--rate", "8000"}), "");
  bytes = Content("in.wav");
  bytes[22] = 65;
  bytes[32] = 130;
  Write("wide.wav", bytes);
  EXPECT_EQ(Fail(1, {"@/wide.wav", "-o", "@/out", "--to", "vemd"}),
            "@/wide.wav: cannot be converted: there are 1 to 64 channels\n");
  EXPECT_EQ(Convert({"@/wide.wav", "-o", "@/out", "--to", "vemd", "--channel", "65"}), "");
  EXPECT_EQ(test::ReadSound(Path("out")).samples.size(), 1600U / 65);
}

TEST_F(ConvertUsageTest, ExistingTarget_IsReplacedOnlyWhenItIsAskedFor) {
  Write("out.kst", {1, 2, 3});
  EXPECT_EQ(Fail(1, {"@/in.wav", "-o", "@/out.kst"}), "@/out.kst: exists: -f replaces it\n");
  EXPECT_EQ(Content("out.kst").size(), 3U);
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/out.kst", "--skip-existing"}), "");
  EXPECT_EQ(Content("out.kst").size(), 3U);
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/out.kst", "-f"}), "");
  EXPECT_GT(Content("out.kst").size(), 48U);
}

TEST_F(ConvertUsageTest, SourceAsItsOwnTarget_IsReplacedAsAWhole) {
  EXPECT_EQ(Fail(1, {"@/in.wav", "-o", "@/in.wav"}), "@/in.wav: exists: -f replaces it\n");
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/in.wav", "-f", "--channel", "1", "--bits", "24"}), "");
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("in.wav")), PublicSamples(1600));
  EXPECT_EQ(test::ReadSound(Path("in.wav")).info.bits_per_sample, 24U);
  const auto before = Content("in.wav");
  EXPECT_EQ(Fail(1, {"@/in.wav", "-o", "@/in.wav", "-f", "--channel", "2"}),
            "@/in.wav: there is no channel 2: it has 1\n");
  EXPECT_EQ(Content("in.wav"), before);
  EXPECT_EQ(Entries(), Texts{"in.wav"});
}

TEST_F(ConvertUsageTest, TargetThatCannotBeMade_FailsWithItsName) {
  Write("file", {1});
  EXPECT_EQ(Fail(1, {"@/in.wav", "-d", "@/file/more", "--to", "wav", "-qq"}),
            "@/file/more: cannot be made: Not a directory\n");
  EXPECT_EQ(Fail(1, {"@/in.wav", "-o", "@/none/out.wav"}),
            "@/none/out.wav: cannot be written: the new file cannot be made beside it: there is no "
            "such folder\n");
  ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
  EXPECT_EQ(Fail(1, {"@/in.wav", "-o", "@/pipe", "--to", "wav"}),
            "@/pipe: cannot be written: it is no regular file\n");
  std::filesystem::remove(Path("pipe"));
  EXPECT_FALSE(std::filesystem::exists(Path("none")));
  const std::string strSaid = Fail(1, {"@/in.wav", "-f", "-o", "/dev/full", "--to", "wav"});
  EXPECT_TRUE(strSaid.starts_with("/dev/full: ")) << strSaid;
}

}  // namespace
}  // namespace tool
