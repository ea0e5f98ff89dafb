// SPDX-License-Identifier: Apache-2.0
//
// WAV files that only another library decodes: GSM 6.10, registered IMA ADPCM, RIFX.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "OtherPrograms.h"
#include "ToolTest.h"
#include "WavBytes.h"

namespace tool {
namespace {

using testing::HasSubstr;

class ForeignWav : public test::C_ToolTest {
 protected:
  // A second of a tone of 8 kHz, or less, made by another program.
  void Make(const std::string& strName, const std::string& strOptions,
            std::size_t nFrames = 8000) const {
    const C_TempFolder folder;
    RunIn(folder, "sox -r 8000 -n -c 1 -b 16 @/tone.wav synth 2 sine 300 vol 0.5 trim 0 " +
                      std::to_string(nFrames) + "s");
    RunIn(folder, "sox -D @/tone.wav " + strOptions + " " + Path(strName));
  }
  // Adds chunks at the end, and corrects the size of all.
  void Append(const std::string& strName, const C_Bytes& chunks) const {
    C_Bytes bytes = Join({Content(strName), chunks});
    const C_Bytes size = U32(static_cast<std::uint32_t>(bytes.size() - 8));
    std::copy(size.begin(), size.end(), bytes.begin() + 4);
    Write(strName, bytes);
  }
  void Cut(const std::string& strName) const {
    std::filesystem::resize_file(Path(strName), std::filesystem::file_size(Path(strName)) * 6 / 10);
  }
  std::vector<std::int16_t> Converted(const std::string& strName) const {
    EXPECT_EQ(Convert({"@" + strName, "-f", "-o", "@out.wav"}), "");
    return test::SamplesIn<std::int16_t>(Path("out.wav"));
  }
  [[nodiscard]] std::string Verdict(const std::string& strName) const {
    const std::string strLine = Run({"check", "@" + strName}).strOut;
    return strLine.substr(std::min(Path(strName).size() + 2, strLine.size()));
  }
};

TEST_F(ForeignWav, Gsm_HasTheFramesThatWereCoded) {
  // An odd number of blocks of 320 frames has a pad byte, which its program counts.
  for (const std::size_t nFrames : {8000U, 7840U, 8320U, 320U}) {
    Make("gsm.wav", "-e gsm-full-rate", nFrames);
    const auto samples = Converted("gsm.wav");
    EXPECT_EQ(samples.size(), nFrames);
    const auto loudest = std::max_element(samples.begin(), samples.end());
    EXPECT_LT(*loudest, 20000) << nFrames;
  }
}

TEST_F(ForeignWav, Gsm_EqualsWhatAnotherProgramDecodes) {
  Make("gsm.wav", "-e gsm-full-rate");
  const C_TempFolder folder;
  RunIn(folder, "ffmpeg -loglevel quiet -y -i " + Path("gsm.wav") + " " + Path("theirs.wav"));
  EXPECT_EQ(Converted("gsm.wav"), test::SamplesIn<std::int16_t>(Path("theirs.wav")));
  // Its decoder cannot go back, but the peak is looked for first, and all is read again.
  EXPECT_EQ(Convert({"@gsm.wav", "-o", "@loud.wav", "--normalize"}), "");
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("loud.wav")).size(), 8000U);
  EXPECT_EQ(Run({"compare", "@gsm.wav", "@out.wav"}).nExit, 0);
  EXPECT_EQ(Run({"plot", "@gsm.wav", "-o", "@gsm.png", "--from", "0.5"}).nExit, 0);
}

TEST_F(ForeignWav, FilesThatTheEndCuts_AreCut) {
  const std::vector<std::pair<std::string, std::string>> kinds = {{"gsm.wav", "-e gsm-full-rate"},
                                                                  {"ima.wav", "-e ima-adpcm"},
                                                                  {"rifx.wav", "-B"},
                                                                  {"a.sph", ""},
                                                                  {"a.voc", ""}};
  for (const auto& [strName, strOptions] : kinds) {
    Make(strName, strOptions);
    EXPECT_EQ(Verdict(strName), "good\n") << strName;
    Cut(strName);
    EXPECT_EQ(Verdict(strName), "cut: its end is missing\n") << strName;
    EXPECT_THAT(Convert({"@" + strName, "-f", "-o", "@out.wav"}), HasSubstr(": the file is cut: "))
        << strName;
  }
}

TEST_F(ForeignWav, FilesFromAPipe_AreWhole) {
  Make("tone.wav", "");
  EXPECT_EQ(RunLine("ffmpeg -loglevel error -i @tone.wav -c:a adpcm_ima_wav -f wav - | cat > "
                    "@ima.wav")
                .nExit,
            0);
  EXPECT_EQ(Verdict("ima.wav"), "good\n");
  EXPECT_EQ(RunLine("ffmpeg -loglevel error -i @tone.wav -f voc @blocks.voc").nExit, 0);
  EXPECT_EQ(Verdict("blocks.voc"), "good\n");
  Cut("blocks.voc");
  EXPECT_EQ(Verdict("blocks.voc"), "cut: its end is missing\n");
}

TEST_F(ForeignWav, EverythingBesideTheSamples_IsKept) {
  const C_Bytes rgn = Join({U32(2), U32(500), Ascii("rgn "), C_Bytes(8), Ascii("hi"), {0, 0}});
  const C_Bytes chunks =
      Join({ChunkBytes("cue ", CueBytes({{1, 6000, 6000}, {2, 1000, 1000}})),
            ChunkBytes("LIST", AdtlBytes({LablBytes(1, "u_3_1"), LablBytes(2, "verse"),
                                          ChunkBytes("ltxt", rgn)})),
            ChunkBytes("priv", Ascii("abcd")), ChunkBytes("smpl", SmplBytes(1000, 5000)),
            ChunkBytes("bext", C_Bytes(602)),
            ChunkBytes("LIST", Join({Ascii("INFO"), ChunkBytes("INAM", Ascii("title\0"))}))});
  for (const std::string strOptions : {"-e gsm-full-rate", "-e ima-adpcm"}) {
    Make("in.wav", strOptions);
    Append("in.wav", chunks);
    EXPECT_EQ(Verdict("in.wav"), "good\n");
    Converted("in.wav");
    const auto notes = test::ReadSound(Path("out.wav")).notes;
    ASSERT_EQ(notes.view().events().size(), 1U);
    EXPECT_EQ(notes.view().events()[0].frame, 6000U);
    EXPECT_EQ(notes.view().events()[0].main_command, 3U);
    ASSERT_EQ(notes.view().labels().size(), 1U);
    EXPECT_STREQ(notes.view().labels()[0].text, "verse");
    ASSERT_EQ(notes.view().region_texts().size(), 1U);
    EXPECT_EQ(notes.view().region_texts()[0].count, 500U);
    EXPECT_EQ(notes.view().sampler().manufacturer, 0x01000020U);
    ASSERT_EQ(notes.view().loops().size(), 1U);
    EXPECT_EQ(notes.view().loops()[0].last, 5000U);
    // The titles, "priv" and "bext".
    EXPECT_EQ(notes.view().chunks().size(), 3U);
  }
}

// A label of another program that reads as an event is listed once where it would come back.
TEST_F(ForeignWav, MarksForAnotherFile_HaveEachEventOnce) {
  Make("in.wav", "-e gsm-full-rate");
  Append("in.wav", Join({ChunkBytes("cue ", CueBytes({{1, 600, 600}})),
                         ChunkBytes("LIST", AdtlBytes({LablBytes(1, "take_1")}))}));
  Make("plain.wav", "");
  EXPECT_EQ(
      RunLine("$V tags export @in.wav -o @marks.csv && $V tags import @plain.wav --csv @marks.csv")
          .nExit,
      0);
  const auto notes = test::ReadSound(Path("plain.wav")).notes;
  EXPECT_EQ(notes.view().events().size(), 1U);
  EXPECT_EQ(notes.view().labels().size(), 1U);
}

TEST_F(ForeignWav, RifxFile_IsNamed) {
  Make("rifx.wav", "-B");
  EXPECT_THAT(Run({"info", "@rifx.wav"}).strOut,
              HasSubstr("  Format  WAV (RIFX), Signed 16 bit PCM\n"));
  EXPECT_THAT(Run({"tags", "add", "cue", "@rifx.wav", "--at", "0.1"}).strErr,
              HasSubstr("marks of its format (WAV (RIFX), Signed 16 bit PCM) cannot be changed"));
}

// What a program writes that cannot go back to correct its sizes.
TEST_F(ForeignWav, WavWithTheLargestSizes_IsWhole) {
  for (const std::uint32_t dwSize : {0x7FFFF000U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF0U}) {
    C_RiffBytes riff("WAVE");
    riff.Chunk("fmt ", FmtBytes(1, 1, 8000, 16)).Chunk("data", dwSize, RampBytes(16000));
    Write("p.wav", riff.RiffSize(dwSize < 0xFFFFFF00 ? dwSize + 36 : dwSize).Take());
    EXPECT_EQ(Verdict("p.wav"), "good\n") << dwSize;
    EXPECT_EQ(Converted("p.wav").size(), 8000U) << dwSize;
    EXPECT_EQ(RunLine("$V tags add cue @p.wav --at 0.5 --name half").nExit, 0);
    EXPECT_EQ(Verdict("p.wav"), "good\n") << dwSize;
    EXPECT_EQ(test::ReadSound(Path("p.wav")).info.frames, 8000U);
    EXPECT_STREQ(test::ReadSound(Path("p.wav")).notes.view().labels()[0].text, "half");
  }
}

TEST_F(ForeignWav, OggThatIsCutToNoFrame_IsNotConverted) {
  Make("a.ogg", "", 400);
  std::filesystem::resize_file(Path("a.ogg"), std::filesystem::file_size(Path("a.ogg")) * 98 / 100);
  EXPECT_EQ(Fail(1, {"@a.ogg", "-o", "@out.wav"}),
            "@/a.ogg: cannot be converted: the file is cut: none of its frames is there\n");
  EXPECT_FALSE(std::filesystem::exists(Path("out.wav")));
}

}  // namespace
}  // namespace tool
