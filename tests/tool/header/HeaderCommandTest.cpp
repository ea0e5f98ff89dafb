// SPDX-License-Identifier: Apache-2.0
#include <sys/stat.h>

#include "VoxtoolTest.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;

class HeaderCommand : public C_VoxtoolTest {
 protected:
  // A Kestrel file with an SP header of this rate.
  Bytes WriteKestrel(const std::string& strName, std::uint32_t dwRate = 16000) const {
    WriteSound(strName, FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL, 0, dwRate),
               PublicSamples(6400));
    return Content(strName);
  }
  Bytes WriteHeron(const std::string& strName) const {
    WriteSound(strName, FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 5, 22050),
               PublicSamples(6400));
    return Content(strName);
  }
  static Bytes WithoutHeader(const Bytes& file) { return {file.begin() + 48, file.end()}; }
  // Expects a failure that changes nothing.
  [[nodiscard]] std::string WhyNot(const Texts& arguments) const {
    const auto before = Entries();
    const S_Run run = Run(arguments);
    EXPECT_EQ(run.nExit, 1);
    EXPECT_EQ(run.strOut, "");
    EXPECT_EQ(Entries(), before);
    return run.strErr;
  }
};

TEST_F(HeaderCommand, Show_PrintsTheFields) {
  WriteKestrel("a.kst", 8000);
  EXPECT_THAT(Output({"header", "show", "@a.kst"}), HasSubstr("    identifier     14\n"));
  const auto json = Json({"header", "show", "--json", "@a.kst"});
  EXPECT_EQ(json[0]["sp"]["sample_rate"], 8000);
  EXPECT_EQ(json[0]["sp"]["version"], 254);
}

TEST_F(HeaderCommand, ChangedFile_IsSentToStandardOutput) {
  const Bytes whole = WriteKestrel("a.kst");
  const std::string strStripped = Output({"header", "strip", "@a.kst", "-o", "-"});
  EXPECT_EQ(Bytes(strStripped.begin(), strStripped.end()), WithoutHeader(whole));
  EXPECT_EQ(Content("a.kst"), whole);
  WriteText("a.bin", strStripped);
  const std::string strWhole = Output({"header", "add", "@a.bin", "-o", "-"});
  EXPECT_EQ(Bytes(strWhole.begin(), strWhole.end()), whole);
  EXPECT_THAT(Entries(), ElementsAre("a.bin", "a.kst"));
}

TEST_F(HeaderCommand, FileWithoutHeader_IsAFailureToShow) {
  WriteWav("a.wav");
  EXPECT_EQ(WhyNot({"header", "show", "@a.wav"}),
            Path("a.wav") + ": there is no header: it is WAV, PCM, 16 bits\n");
}

TEST_F(HeaderCommand, StripAndAdd_GiveTheSameFileAgain) {
  const Bytes whole = WriteKestrel("a.kst");
  ASSERT_EQ(chmod(Path("a.kst").c_str(), 0640), 0);
  EXPECT_EQ(Output({"header", "strip", "@a.kst"}), "");
  EXPECT_EQ(Content("a.kst"), WithoutHeader(whole));
  EXPECT_EQ(Output({"header", "add", "@a.kst"}), "");
  EXPECT_EQ(Content("a.kst"), whole);
  struct stat status {};
  ASSERT_EQ(stat(Path("a.kst").c_str(), &status), 0);
  EXPECT_EQ(status.st_mode & 0777U, 0640U);
  EXPECT_THAT(Entries(), ElementsAre("a.kst"));
}

TEST_F(HeaderCommand, Rate_GoesIntoTheHeader) {
  const Bytes whole = WriteKestrel("a.kst", 8000);
  Write("bare", WithoutHeader(whole));
  EXPECT_EQ(Output({"header", "add", "--rate", "8000", "@bare", "-o", "@b.kst"}), "");
  EXPECT_EQ(Content("b.kst"), whole);
  EXPECT_EQ(Content("bare"), WithoutHeader(whole));
}

TEST_F(HeaderCommand, HeronStream_GetsItsHeaderBack) {
  const Bytes whole = WriteHeron("a.hrn");
  Write("bare", WithoutHeader(whole));
  EXPECT_EQ(Output({"header", "add", "--codec", "heron5", "--rate", "22050", "@bare"}), "");
  EXPECT_EQ(Content("bare"), whole);
}

TEST_F(HeaderCommand, StreamThatNobodyWouldKnow_KeepsItsHeader) {
  const Bytes whole = WriteHeron("a.hrn");
  EXPECT_EQ(WhyNot({"header", "strip", "@a.hrn"}),
            Path("a.hrn") +
                ": nothing is changed: without the header no program would know the stream again; "
                "--anyway "
                "strips it nevertheless\n");
  EXPECT_EQ(Run({"header", "strip", "-f", "@a.hrn"}).nExit, 1);
  EXPECT_EQ(Content("a.hrn"), whole);
  EXPECT_EQ(Output({"header", "strip", "--anyway", "@a.hrn"}), "");
  EXPECT_EQ(Content("a.hrn"), WithoutHeader(whole));
}

TEST_F(HeaderCommand, RateThatWouldBeLost_KeepsTheHeader) {
  WriteKestrel("a.kst", 8000);
  EXPECT_THAT(WhyNot({"header", "strip", "@a.kst"}),
              HasSubstr("its sample rate of 8000 Hz would be lost"));
}

TEST_F(HeaderCommand, FileThatIsSomethingElse_GetsNoHeader) {
  WriteKestrel("a.kst");
  WriteWav("a.wav");
  Write("text", {'w', 'o', 'r', 'd', 's'});
  EXPECT_EQ(
      WhyNot({"header", "add", "@a.kst"}),
      Path("a.kst") +
          ": nothing is changed: it is no stream without a header, but Kestrel, 16000 bit/s, SP "
          "header\n");
  EXPECT_THAT(WhyNot({"header", "add", "@a.wav"}), HasSubstr("but WAV, PCM, 16 bits"));
  EXPECT_THAT(WhyNot({"header", "add", "@text"}), HasSubstr("none of the known formats"));
  EXPECT_THAT(WhyNot({"header", "add", "--codec", "heron4", "@text"}),
              HasSubstr("it is no stream of this codec at "));
  EXPECT_THAT(WhyNot({"header", "strip", "@a.wav"}), HasSubstr("there is no SP header"));
}

TEST_F(HeaderCommand, BareStream_HasNoHeaderToStrip) {
  Write("bare", WithoutHeader(WriteKestrel("a.kst")));
  EXPECT_EQ(
      Said(WhyNot({"header", "strip", "@bare"})),
      "@/bare: nothing is changed: there is no SP header: it is Kestrel, 16000 bit/s, no header\n");
}

TEST_F(HeaderCommand, StandardInput_IsReadForAnOutput) {
  const Bytes whole = WriteKestrel("a.kst");
  for (const char* const pszHow :
       {"header strip - <@a.kst", "header strip - -o @bare <@text", "header add - <@bare"}) {
    WriteText("text", "words");
    Write("bare", WithoutHeader(whole));
    const S_Run run = RunLine(std::string("$V ") + pszHow);
    EXPECT_NE(run.nExit, 0);
    EXPECT_THAT(run.strErr, HasSubstr("standard input: ")) << pszHow;
    EXPECT_THAT(run.strErr, testing::Not(HasSubstr("/dev/fd")));
  }
  EXPECT_EQ(RunLine("cat @a.kst | $V header strip - -f -o @bare").strErr, "");
  EXPECT_EQ(Content("bare"), WithoutHeader(whole));
  EXPECT_EQ(RunLine("$V header add - -o @b.kst <@bare").strErr, "");
  EXPECT_EQ(Content("b.kst"), whole);
  EXPECT_EQ(RunLine("cat @bare | $V header add - -o - | cmp - @a.kst").nExit, 0);
}

TEST_F(HeaderCommand, ExistingOutput_IsReplacedOnlyWhenAsked) {
  const Bytes whole = WriteKestrel("a.kst");
  Write("out", {'m', 'i', 'n', 'e'});
  EXPECT_EQ(WhyNot({"header", "strip", "@a.kst", "-o", "@out"}),
            Path("out") + ": exists: -f replaces it\n");
  EXPECT_EQ(Output({"header", "strip", "-f", "@a.kst", "-o", "@out"}), "");
  EXPECT_EQ(Content("out"), WithoutHeader(whole));
}

TEST_F(HeaderCommand, SeveralFiles_AreAllDone) {
  const Bytes whole = WriteKestrel("a.kst");
  WriteKestrel("b.kst");
  const S_Run run = Run({"header", "strip", "@a.kst", "@missing", "@b.kst"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(Content("a.kst"), WithoutHeader(whole));
  EXPECT_EQ(Content("b.kst"), WithoutHeader(whole));
  EXPECT_EQ(Run({"header", "strip", "@a.kst", "@b.kst", "-o", "@c"}).nExit, 2);
}

TEST_F(HeaderCommand, WhatCannotBeMeant_IsAUsageError) {
  Write("bare", {1, 2});
  EXPECT_EQ(Run({"header"}).nExit, 2);
  EXPECT_EQ(Run({"header", "add", "--codec", "heron2", "@bare"}).nExit, 2);
  EXPECT_EQ(Run({"header", "add", "--rate", "0", "@bare"}).nExit, 2);
  EXPECT_EQ(Run({"header", "add", "--codec", "heron4", "--rate", "96000", "@bare"}).nExit, 2);
}

}  // namespace
