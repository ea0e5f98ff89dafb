// SPDX-License-Identifier: Apache-2.0
//
// voxtool convert on one file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include "OtherPrograms.h"
#include "ToolTest.h"

namespace tool {
namespace {

// "16,000".
std::string CountText(std::uint64_t qwCount) {
  std::string strText = std::to_string(qwCount);
  for (std::size_t n = strText.size(); n > 3; n -= 3) strText.insert(n - 3, ",");
  return strText;
}

class ConvertTest : public test::C_ToolTest {
 protected:
  // All values of 32 bits whose low bits, which the width does not have, are 0.
  static std::vector<std::int32_t> AnySamples(std::uint32_t dwBits, std::size_t nSamples) {
    std::mt19937 random(dwBits);
    std::vector<std::int32_t> samples(nSamples);
    for (std::int32_t& nSample : samples) {
      const auto dwSample = static_cast<std::uint32_t>(random());
      nSample = static_cast<std::int32_t>(dwSample >> (32 - dwBits) << (32 - dwBits));
    }
    samples[0] = std::numeric_limits<std::int32_t>::min();
    return samples;
  }
  static voxplay::Info InfoOf(const std::string& strPath, std::uint32_t dwFlags = 0) {
    return voxplay::Reader(strPath, dwFlags).info();
  }
};

TEST_F(ConvertTest, IntegersOfEveryWidth_StayExact) {
  for (const std::uint32_t dwBits : {8U, 16U, 24U, 32U}) {
    const auto samples = AnySamples(dwBits, 3 * 20001);
    MakeWav("in.wav", samples, dwBits, 44100, 3);
    EXPECT_EQ(Convert({"@/in.wav", "-f", "-o", "@/out.wav"}), "");
    EXPECT_EQ(test::SamplesIn<std::int32_t>(Path("out.wav")), samples) << dwBits;
    EXPECT_EQ(InfoOf(Path("out.wav")).bits_per_sample, dwBits);
    EXPECT_EQ(InfoOf(Path("out.wav")).sample_rate, 44100U);
    EXPECT_EQ(Content("out.wav"), Content("in.wav")) << dwBits;
  }
}

TEST_F(ConvertTest, FloatingPoint_StaysExact) {
  const std::vector<float> samples = {0.0F, 1.5F, -3.0F, 1e-30F, -0.1F, 3.4e38F};
  MakeWav("in.wav", samples, 0);
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/out.wav"}), "");
  EXPECT_EQ(test::SamplesIn<float>(Path("out.wav")), samples);
}

TEST_F(ConvertTest, FloatingPointOf64Bits_IsToldToBecomeNarrower) {
  const C_TempFolder folder;
  RunIn(folder, "sox -n -e floating-point -b 64 " + Path("in.wav") + " synth 1 sine 440 vol 0.5");
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/out.wav"}),
            "@/in.wav: its floating point of 64 bits has become that of 32 bits\n");
  EXPECT_EQ(InfoOf(Path("out.wav")).codec, std::uint32_t{VOXPLAY_CODEC_FLOAT});
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/out.kst"}), "");
}

TEST_F(ConvertTest, NarrowerWidth_LosesTheLowBitsOnly) {
  const auto samples = AnySamples(24, 1000);
  MakeWav("in.wav", samples, 24);
  Convert({"@/in.wav", "-o", "@/out.wav", "--bits", "16"});
  const auto narrow = test::SamplesIn<std::int32_t>(Path("out.wav"));
  ASSERT_EQ(narrow.size(), samples.size());
  for (std::size_t n = 0; n < samples.size(); ++n) {
    EXPECT_EQ(narrow[n], samples[n] - (samples[n] & 0xFFFF)) << n;
  }
  Convert({"@/in.wav", "-o", "@/wide.wav", "--bits", "32"});
  EXPECT_EQ(test::SamplesIn<std::int32_t>(Path("wide.wav")), samples);
}

TEST_F(ConvertTest, CodedSound_IsDecodedAsTheLibraryDecodesIt) {
  for (const char* pszTo : {"kestrel", "heron2", "heron3", "heron4", "heron5", "heron6"}) {
    MakeWav("in.wav", PublicSamples(16000));
    Convert({"@/in.wav", "-f", "-o", "@/coded", "--to", pszTo});
    Convert({"@/coded", "-f", "-o", "@/out.wav"});
    EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("out.wav")),
              test::SamplesIn<std::int16_t>(Path("coded")))
        << pszTo;
    EXPECT_EQ(InfoOf(Path("out.wav")).bits_per_sample, 16U);
  }
}

TEST_F(ConvertTest, SoundWithoutChanges_IsCodedAsTheLibraryCodesIt) {
  MakeWav("in.wav", PublicSamples(8000));
  Convert({"@/in.wav", "-o", "@/out.kst", "--bitrate", "24000"});
  auto format = FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL);
  format.bit_rate = 24000;
  EXPECT_EQ(Content("out.kst"), WrittenBytes(format, PublicSamples(8000)));
}

TEST_F(ConvertTest, StereoAt44100_BecomesKestrelOfTheSameLengthAndLevel) {
  const auto sine = test::Sine(5 * 44100 + 17, 440.0, 44100.0, 0.25);
  std::vector<float> stereo;
  for (const float fSample : sine) stereo.insert(stereo.end(), {fSample, fSample});
  MakeWav("in.wav", stereo, 16, 44100, 2);
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/out.kst", "--bitrate", "32000"}), "");
  const test::S_Sound sound = test::ReadSound(Path("out.kst"));
  EXPECT_EQ(sound.info.sample_rate, 16000U);
  EXPECT_EQ(sound.info.channels, 1U);
  // 80006 frames, in whole frames of 20 ms.
  EXPECT_GE(sound.samples.size(), 80006U);
  EXPECT_LT(sound.samples.size(), 80006U + 2 * 320U);
  const std::span middle = std::span(sound.samples).subspan(16000, 48000);
  EXPECT_NEAR(test::LevelAt(middle, 440.0, 16000.0), 0.25, 0.01);
}

TEST_F(ConvertTest, RatesTooFarApart_AreAFailureOfTheFile) {
  MakeWav("in.wav", PublicSamples(100), 16, 15);
  EXPECT_EQ(Fail(1, {"@/in.wav", "-o", "@/out.kst"}),
            "@/in.wav: cannot be converted: 15 Hz are too far from 16000 Hz\n");
  MakeWav("in.wav", PublicSamples(100), 16, 16);
  Convert({"@/in.wav", "-o", "@/out.kst"});
}

TEST_F(ConvertTest, ChannelsAndGain_AreAppliedToTheSamples) {
  const std::vector<std::int16_t> samples = {1000, 3000, -2000, -4000};
  MakeWav("in.wav", samples, 16, 16000, 2);
  Convert({"@/in.wav", "-o", "@/mono.wav", "--mono"});
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("mono.wav")),
            (std::vector<std::int16_t>{2000, -3000}));
  Convert({"@/in.wav", "-o", "@/second.wav", "--channel", "2"});
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("second.wav")),
            (std::vector<std::int16_t>{3000, -4000}));
  Convert({"@/in.wav", "-o", "@/loud.wav", "--gain", "-20"});
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("loud.wav")),
            (std::vector<std::int16_t>{100, 300, -200, -400}));
  EXPECT_EQ(Fail(1, {"@/in.wav", "-o", "@/none.wav", "--channel", "3"}),
            "@/in.wav: there is no channel 3: it has 2\n");
  EXPECT_FALSE(std::filesystem::exists(Path("none.wav")));
}

TEST_F(ConvertTest, SamplesBeyondFullScale_AreCountedAndLimited) {
  MakeWav("in.wav", std::vector<std::int16_t>{20000, -20000, 100});
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/out.wav", "--gain", "6"}),
            "@/in.wav: 2 samples are louder than full scale, and limited to it\n");
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("out.wav")),
            (std::vector<std::int16_t>{32767, -32768, 200}));
}

TEST_F(ConvertTest, Normalize_BringsTheLoudestSampleToTheLevel) {
  MakeWav("in.wav", test::Sine(16000, 100.0, 16000.0, 0.125), 0);
  Convert({"@/in.wav", "-o", "@/usual.wav", "--normalize"});
  const auto usual = test::SamplesIn<float>(Path("usual.wav"));
  EXPECT_NEAR(std::ranges::max(usual), std::pow(10.0, -1.0 / 20.0), 1e-4);
  Convert({"@/in.wav", "-o", "@/full.wav", "--normalize=0", "--rate", "8000"});
  const auto full = test::SamplesIn<float>(Path("full.wav"));
  EXPECT_EQ(full.size(), 8000U);
  EXPECT_NEAR(std::max(std::ranges::max(full), -std::ranges::min(full)), 1.0, 1e-5);
  MakeWav("silent.wav", std::vector<std::int16_t>(100));
  Convert({"@/silent.wav", "-o", "@/silent2.wav", "--normalize"});
  EXPECT_EQ(Content("silent2.wav"), Content("silent.wav"));
}

TEST_F(ConvertTest, Silence_IsMarkedBesideTheOldNotes) {
  std::vector<std::int16_t> samples = PublicSamples(16000);
  for (const std::int16_t nLoud : {std::int16_t{1000}}) std::ranges::fill(samples, nLoud);
  std::fill(samples.begin() + 1000, samples.begin() + 5000, std::int16_t{10});
  std::fill(samples.begin() + 8000, samples.begin() + 12000, std::int16_t{-10});
  std::fill(samples.begin() + 14000, samples.begin() + 15000, std::int16_t{0});
  voxplay::Notes notes;
  notes.add_silence({8000, 100});
  MakeWav("in.wav", samples, 16, 16000, 1, notes);
  Convert({"@/in.wav", "-o", "@/out.wav", "--detect-silence=-60:250"});
  const auto found = test::ReadSound(Path("out.wav"));
  const auto silence = found.notes.view().silence();
  ASSERT_EQ(silence.size(), 2U);
  EXPECT_EQ(silence[0].first, 1000U);
  EXPECT_EQ(silence[0].count, 4000U);
  EXPECT_EQ(silence[1].first, 8000U) << "what was marked before";
  EXPECT_EQ(silence[1].count, 100U);
  Convert({"@/in.wav", "-o", "@/more.wav", "--detect-silence=-60:20", "--no-notes"});
  EXPECT_EQ(test::ReadSound(Path("more.wav")).notes.view().silence().size(), 3U);
}

TEST_F(ConvertTest, Notes_AreKeptAndScaledWithTheRate) {
  MakeWav("in.wav", PublicSamples(8000), 16, 32000, 1, test::SomeNotes());
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/out.wav", "--rate", "16000"}), "");
  const test::S_Sound sound = test::ReadSound(Path("out.wav"));
  const voxplay::NotesView notes = sound.notes.view();
  ASSERT_EQ(notes.events().size(), 2U);
  EXPECT_EQ(notes.events()[0].frame, 500U);
  EXPECT_EQ(notes.silence()[0].first, 50U);
  EXPECT_EQ(notes.silence()[0].count, 30U);
  EXPECT_EQ(notes.regions()[0].first, 1500U);
  EXPECT_EQ(notes.cues()[0].position, 200U);
  EXPECT_STREQ(notes.labels()[0].text, "verse");
  EXPECT_EQ(notes.loops()[0].last, 399U);
  ASSERT_EQ(notes.chunks().size(), 1U);
  EXPECT_EQ(notes.chunks()[0].size, 4U);
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/none.wav", "--no-notes"}), "");
  EXPECT_TRUE(test::ReadSound(Path("none.wav")).notes.view().events().empty());
}

TEST_F(ConvertTest, EventsThroughVef_ComeBackWithTheirDataAndPlaces) {
  for (const char* pszCodec : {"pcm", "kestrel", "heron4"}) {
    MakeWav("in.wav", PublicSamples(16000), 16, 16000, 1, test::SomeNotes());
    const std::string strSaid =
        Convert({"@/in.wav", "-f", "-o", "@/middle.vef", "--codec", pszCodec});
    EXPECT_EQ(strSaid,
              "@/in.wav: 1 silence segment and 1 region are not kept: a VEF file holds none\n");
    Convert({"@/middle.vef", "-f", "-o", "@/out.wav"});
    const test::S_Sound sound = test::ReadSound(Path("out.wav"));
    ASSERT_EQ(sound.notes.view().events().size(), 2U) << pszCodec;
    EXPECT_EQ(sound.notes.view().events()[1].frame, 2000U);
    EXPECT_EQ(sound.notes.view().events()[1].main_command, 1);
    EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("out.wav")), PublicSamples(16000)) << pszCodec;
  }
}

TEST_F(ConvertTest, StreamOfAVefFile_IsReadWhereItIsAskedFor) {
  MakeWav("in.wav", PublicSamples(16000));
  Convert({"@/in.wav", "-o", "@/both.vef", "--codec", "heron3"});
  Convert({"@/both.vef", "-o", "@/stream.wav", "--read", "stream"});
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("stream.wav")),
            test::SamplesIn<std::int16_t>(Path("both.vef"), VOXPLAY_READ_STREAM));
  EXPECT_NE(Content("stream.wav"), Content("in.wav"));
  Convert({"@/both.vef", "-o", "@/pcm.wav", "--read", "pcm"});
  EXPECT_EQ(Content("pcm.wav"), Content("in.wav"));
  Convert({"@/in.wav", "-o", "@/plain.vef"});
  EXPECT_NE(Fail(1, {"@/plain.vef", "-o", "@/none.wav", "--read", "stream"}), "");
}

TEST_F(ConvertTest, NotesThatTheTargetCannotHold_AreToldInOneLine) {
  MakeWav("in.wav", PublicSamples(8000), 16, 16000, 1, test::SomeNotes());
  EXPECT_EQ(
      Convert({"@/in.wav", "-o", "@/out.kst"}),
      "@/in.wav: 2 events, 1 silence segment, 1 region, 1 cue point, 1 label, 1 region text, 1 "
      "sampler record, 1 loop and 1 chunk are not kept: an SP header holds none\n");
  EXPECT_EQ(Convert({"@/in.wav", "-f", "-o", "@/out.kst", "-qq"}), "");
  const std::string strAll = Convert({"@/in.wav", "-f", "-o", "@/out.kst", "-v"});
  EXPECT_NE(
      strAll.find("@/in.wav: not kept: event 2 at frame 2000: an SP header holds no events\n"),
      std::string::npos)
      << strAll;
  EXPECT_NE(strAll.find("Kestrel, 16000 bit/s, SP header, 16000 Hz\n"), std::string::npos)
      << strAll;
}

TEST_F(ConvertTest, Headers_AreThoseThatWereAskedFor) {
  MakeWav("in.wav", PublicSamples(3200));
  Convert({"@/in.wav", "-o", "@/a.kst", "--header", "codec"});
  EXPECT_EQ(InfoOf(Path("a.kst")).container, std::uint32_t{VOXPLAY_CONTAINER_HEAD});
  Convert({"@/in.wav", "-o", "@/b.kst", "--header", "none"});
  EXPECT_EQ(InfoOf(Path("b.kst")).container, std::uint32_t{VOXPLAY_CONTAINER_BARE});
  EXPECT_EQ(Content("a.kst").size(), Content("b.kst").size() + 6);
  Convert({"@/b.kst", "-o", "@/c.wav"});
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("c.wav")),
            test::SamplesIn<std::int16_t>(Path("a.kst")));
}

TEST_F(ConvertTest, FormatsOfOthers_AreReadThroughTheirLibrary) {
  const C_TempFolder folder;
  RunIn(folder, "sox -n -r 22050 -c 2 -b 24 @/s.flac synth 1 sine 440 sine 880");
  RunIn(folder, "sox @/s.flac -t s32 @/raw");
  const std::string strOut = folder.Path("s.wav");
  const S_Run run = Run({"convert", folder.Path("s.flac"), "-o", strOut});
  EXPECT_EQ(run.nExit, 0) << run.strErr;
  const auto bytes = folder.Read("raw");
  const auto samples = test::SamplesIn<std::int32_t>(strOut);
  ASSERT_EQ(bytes.size(), samples.size() * 4);
  EXPECT_EQ(std::memcmp(bytes.data(), samples.data(), bytes.size()), 0);
  EXPECT_EQ(InfoOf(strOut).bits_per_sample, 24U);
}

TEST_F(ConvertTest, RateConversion_AgreesWithThatOfAnotherProgram) {
  const C_TempFolder folder;
  RunIn(folder, "sox -n -r 44100 -c 1 -b 16 @/in.wav synth 2 sine 300-5000 gain -6");
  const S_Run run =
      Run({"convert", folder.Path("in.wav"), "-o", folder.Path("ours.wav"), "--rate", "16000"});
  EXPECT_EQ(run.nExit, 0) << run.strErr;
  RunIn(folder, "sox -D @/in.wav @/theirs.wav rate -h 16000");
  const auto ours = test::SamplesIn<float>(folder.Path("ours.wav"));
  const auto theirs = test::SamplesIn<float>(folder.Path("theirs.wav"));
  ASSERT_EQ(ours.size(), theirs.size());
  double dWorst = 0.0;
  for (std::size_t n = 400; n + 400 < ours.size(); ++n) {
    dWorst = std::max(dWorst, std::abs(static_cast<double>(ours[n] - theirs[n])));
  }
  EXPECT_LT(dWorst, 0.0005);
}

TEST_F(ConvertTest, SoundThatTheEndCuts_IsToldButConverted) {
  test::WriteSound(Path("in.hrn"), FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4, 8000),
                   PublicSamples(100000));
  std::filesystem::resize_file(Path("in.hrn"), std::filesystem::file_size(Path("in.hrn")) / 2);
  const std::string strSaid = Convert({"@/in.hrn", "-o", "@/out.wav"});
  const auto samples = test::SamplesIn<std::int16_t>(Path("out.wav"));
  EXPECT_LT(samples.size(), 70000U);
  EXPECT_GT(samples.size(), 30000U);
  EXPECT_EQ(strSaid, "@/in.hrn: the file is cut: " + CountText(samples.size()) +
                         " of 100,000 frames are there, and converted\n");
  EXPECT_NE(
      Convert({"@/in.hrn", "-d", "@/new", "--to", "wav"}).find("\n1 file: 1 converted (1 cut); "),
      std::string::npos);
}

TEST_F(ConvertTest, WavThatTheEndCuts_HasTheFramesThatAreThere) {
  MakeWav("in.wav", PublicSamples(16000));
  std::filesystem::resize_file(Path("in.wav"), 10000);
  EXPECT_EQ(Convert({"@/in.wav", "-o", "@/out.wav"}),
            "@/in.wav: the file is cut: 4,978 of 16,000 frames are there, and converted\n");
  const auto samples = test::SamplesIn<std::int16_t>(Path("out.wav"));
  EXPECT_EQ(samples, PublicSamples(4978));
  Convert({"@/in.wav", "-o", "@/out.kst"});
  EXPECT_EQ(voxplay::Reader(Path("out.kst")).info().frames, 5120U);
  // A normalized sound is read twice.
  Convert({"@/in.wav", "--normalize", "-o", "@/loud.wav"});
  EXPECT_EQ(voxplay::Reader(Path("loud.wav")).info().frames, 4978U);
  const std::string strPlain = "@/plain.wav";
  EXPECT_EQ(RunLine("$V convert @/in.wav -o - --to wav > " + strPlain).nExit, 0);
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("plain.wav")), PublicSamples(4978));
}

TEST_F(ConvertTest, OtherPlainSamplesThatTheEndCuts_HaveTheFramesThatAreThere) {
  MakeWav("wide.wav", test::Sine(4000, 300, 8000), 24, 8000, 2);
  std::filesystem::resize_file(Path("wide.wav"),
                               std::filesystem::file_size(Path("wide.wav")) - 603);
  Convert({"@/wide.wav", "-o", "@/a.wav"});
  EXPECT_EQ(voxplay::Reader(Path("a.wav")).info().frames, 2000U - 101U);
  test::WriteSound(Path("in.vemd"), FormatOf(VOXPLAY_CONTAINER_VEMD, VOXPLAY_CODEC_PCM, 16, 8000),
                   PublicSamples(4000));
  std::filesystem::resize_file(Path("in.vemd"), std::filesystem::file_size(Path("in.vemd")) - 400);
  Convert({"@/in.vemd", "-o", "@/b.wav"});
  EXPECT_EQ(voxplay::Reader(Path("b.wav")).info().frames, 3800U);
}

TEST_F(ConvertTest, HeaderAlone_IsAFailure) {
  MakeWav("in.wav", PublicSamples(16000));
  std::filesystem::resize_file(Path("in.wav"), 44);
  for (const char* const pszTarget : {"@/out.wav", "@/out.kst"}) {
    EXPECT_EQ(Fail(1, {"@/in.wav", "-o", pszTarget}),
              "@/in.wav: cannot be converted: the file is cut: none of its 16,000 frames is "
              "there\n");
  }
  EXPECT_EQ(Entries(), Texts{"in.wav"});
}

TEST_F(ConvertTest, DamagedFrames_AreToldButConverted) {
  MakeWav("in.wav", PublicSamples(32000));
  Convert({"@/in.wav", "-o", "@/good.kst"});
  auto bytes = Content("good.kst");
  // Two frames of 20 words that no encoder writes.
  std::fill_n(bytes.begin() + 48 + 10 * 40, 2 * 40, std::uint8_t{0xFF});
  Write("bad.kst", bytes);
  voxplay::Reader reader(Path("bad.kst"));
  static_cast<void>(ReadRest(reader));
  const std::uint64_t qwDamaged = reader.info().damaged_frames;
  ASSERT_GT(qwDamaged, 0U);
  EXPECT_EQ(Convert({"@/bad.kst", "-o", "@/out.wav"}),
            "@/bad.kst: " + CountText(qwDamaged) + " of 32,000 frames are damaged\n");
  EXPECT_TRUE(std::filesystem::exists(Path("out.wav")));
}

}  // namespace
}  // namespace tool
