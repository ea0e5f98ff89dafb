// SPDX-License-Identifier: Apache-2.0
//
// `voxtool plot`, run as a user runs it.
#include <cairo.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FolderTest.h"
#include "ToolSounds.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

// The pixels of a PNG file, 0xRRGGBB.
class C_Pixels {
 public:
  explicit C_Pixels(const std::string& strPath)
      : m_surface(cairo_image_surface_create_from_png(strPath.c_str()), cairo_surface_destroy) {}

  [[nodiscard]] int Width() const { return cairo_image_surface_get_width(m_surface.get()); }
  [[nodiscard]] int Height() const { return cairo_image_surface_get_height(m_surface.get()); }
  [[nodiscard]] std::uint32_t At(int nX, int nY) const {
    const unsigned char* const pRow = cairo_image_surface_get_data(m_surface.get()) +
                                      nY * cairo_image_surface_get_stride(m_surface.get());
    return reinterpret_cast<const std::uint32_t*>(pRow)[nX] & 0xFFFFFFU;
  }
  // How bright it is, 0 to 765.
  [[nodiscard]] int Brightness(int nX, int nY) const {
    const std::uint32_t dw = At(nX, nY);
    return static_cast<int>((dw >> 16U) + (dw >> 8U & 0xFFU) + (dw & 0xFFU));
  }
  [[nodiscard]] int DarkestRow(int nX) const {
    int nDarkest = 0;
    for (int nY = 1; nY < Height(); ++nY) {
      if (Brightness(nX, nY) < Brightness(nX, nDarkest)) nDarkest = nY;
    }
    return nDarkest;
  }
  [[nodiscard]] int Count(std::uint32_t dwColour) const {
    int nCount = 0;
    for (int nY = 0; nY < Height(); ++nY) {
      for (int nX = 0; nX < Width(); ++nX) nCount += At(nX, nY) == dwColour ? 1 : 0;
    }
    return nCount;
  }

 private:
  std::unique_ptr<cairo_surface_t, void (*)(cairo_surface_t*)> m_surface;
};

constexpr std::uint32_t kPanel = 0xF7F8FA;
constexpr std::uint32_t kClipped = 0xCC2222;
constexpr std::uint32_t kEvent = 0xC44E00;
constexpr std::uint32_t kCue = 0x742C9E;

class Plot : public C_FolderTest {
 protected:
  int Run(C_Program::Texts arguments) {
    arguments.insert(arguments.begin(), "plot");
    m_run = m_program.Run(arguments);
    return m_run.nExit;
  }
  // Draws a.wav, as "out.png" in the folder.
  C_Pixels Draw(const C_Program::Texts& options) {
    C_Program::Texts arguments = {Path("a.wav"), "-f", "-o", Path("out.png")};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(Run(arguments), 0) << m_run.strErr;
    return C_Pixels(Path("out.png"));
  }
  std::string Svg(const C_Program::Texts& options = {}) {
    C_Program::Texts arguments = {Path("a.wav"), "-o", "-", "--format", "svg"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(Run(arguments), 0) << m_run.strErr;
    return m_run.strOut;
  }

  const C_Program m_program{VOXTOOL};
  S_Run m_run;
};

TEST_F(Plot, SineOfHalfOfFullScale_ReachesHalfOfTheWaveform) {
  WriteWav(Path("a.wav"), SineSamples(16000, 1000, 16000, 16384));
  const C_Pixels pixels = Draw({"--no-axes", "--waveform", "--size", "200x400"});
  ASSERT_EQ(pixels.Width(), 200);
  ASSERT_EQ(pixels.Height(), 400);
  for (const int nX : {10, 100, 190}) {
    EXPECT_EQ(pixels.At(nX, 98), kPanel);
    EXPECT_NE(pixels.At(nX, 101), kPanel);
    EXPECT_NE(pixels.At(nX, 298), kPanel);
    EXPECT_EQ(pixels.At(nX, 301), kPanel);
  }
}

TEST_F(Plot, SineOfOneKilohertz_IsLoudestInTheRowOfOneKilohertz) {
  WriteWav(Path("a.wav"), SineSamples(16000, 1000, 16000, 16384));
  // 80 Hz a row: the 13th from the bottom.
  const C_Pixels pixels = Draw({"--no-axes", "--spectrogram", "--size", "120x100"});
  for (const int nX : {10, 60, 110}) EXPECT_EQ(pixels.DarkestRow(nX), 99 - 12);
}

TEST_F(Plot, Event_IsALineInItsColumn) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{4000, 1, 2, 0, "x"});
  WriteWav(Path("a.wav"), std::vector<std::int16_t>(16000), 16000, 1, notes);
  const C_Pixels pixels = Draw({"--no-axes", "--size", "200x100"});
  for (const int nY : {0, 20, 50, 99}) {
    EXPECT_EQ(pixels.At(50, nY), kEvent);
    EXPECT_NE(pixels.At(49, nY), kEvent);
    EXPECT_NE(pixels.At(51, nY), kEvent);
  }
}

TEST_F(Plot, CuePointOutsideTheTimesDrawn_IsNotDrawn) {
  voxplay::Notes notes;
  voxplay::Cue cue{};
  cue.id = 1;
  cue.sample_offset = 12000;
  notes.add(cue);
  WriteWav(Path("a.wav"), std::vector<std::int16_t>(16000), 16000, 1, notes);
  EXPECT_EQ(Draw({"--no-axes", "--waveform", "--to", "0.5"}).Count(kCue), 0);
  EXPECT_EQ(Draw({"--no-axes", "--waveform", "--size", "100x50", "--from", "8000s"}).At(50, 3),
            kCue);
}

TEST_F(Plot, Clipping_IsMarkedWhereItIs) {
  auto samples = SineSamples(16000, 100, 16000, 30000);
  WriteWav(Path("a.wav"), samples);
  const C_Program::Texts options = {"--no-axes", "--waveform", "--size", "160x100"};
  EXPECT_EQ(Draw(options).Count(kClipped), 0);
  std::fill(samples.begin() + 8000, samples.begin() + 8003, std::int16_t{32767});
  WriteWav(Path("a.wav"), samples);
  const C_Pixels pixels = Draw(options);
  EXPECT_EQ(pixels.At(80, 0), kClipped);
  EXPECT_EQ(pixels.At(80, 99), kClipped);
  EXPECT_NE(pixels.At(79, 0), kClipped);
  EXPECT_THAT(Svg(), HasSubstr(">clipped</text>"));
}

TEST_F(Plot, SoundWithoutClipping_HasNoneInItsLegend) {
  WriteWav(Path("a.wav"), SineSamples(16000, 100, 16000, 30000));
  EXPECT_THAT(Svg(), Not(HasSubstr(">clipped</text>")));
}

TEST_F(Plot, PartOfASound_IsDrawnAsIfItWereAll) {
  auto samples = SineSamples(16000, 1000, 16000, 8000);
  std::fill(samples.begin(), samples.begin() + 8000, std::int16_t{0});
  WriteWav(Path("a.wav"), samples);
  const C_Program::Texts options = {"--no-axes", "--waveform", "--size", "100x100"};
  const auto with = [&](C_Program::Texts more) {
    more.insert(more.end(), options.begin(), options.end());
    return more;
  };
  EXPECT_EQ(Draw(with({"--to", "0.5"})).At(50, 40), kPanel);
  EXPECT_NE(Draw(with({"--from", "0:00.5"})).At(1, 40), kPanel);
}

TEST_F(Plot, Size_IsThatOfThePicture) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 1000));
  for (const char* const pszSize : {"300x200", "256x256", "4000x900"}) {
    const C_Pixels pixels = Draw({"--size", pszSize});
    EXPECT_EQ(std::to_string(pixels.Width()) + "x" + std::to_string(pixels.Height()), pszSize);
  }
  EXPECT_EQ(Draw({}).Width(), 1200);
  EXPECT_EQ(Draw({}).Height(), 600);
}

TEST_F(Plot, SameSound_GivesTheSameBytes) {
  WriteWav(Path("a.wav"), NoiseSamples(16000, 20000));
  std::filesystem::create_directory(Path("b"));
  std::filesystem::copy(Path("a.wav"), Path("b/a.wav"));
  for (const char* const pszFormat : {"png", "svg"}) {
    ASSERT_EQ(Run({Path("a.wav"), "-o", Path("1"), "--format", pszFormat, "-f"}), 0);
    ASSERT_EQ(Run({Path("b/a.wav"), "-o", Path("2"), "--format", pszFormat, "-f"}), 0);
    EXPECT_FALSE(Content("1").empty());
    EXPECT_TRUE(Content("1") == Content("2")) << pszFormat;
  }
}

TEST_F(Plot, PictureAfterAnother_IsTheSameAsAlone) {
  WriteWav(Path("a.wav"), NoiseSamples(16000, 20000));
  WriteWav(Path("b.wav"), NoiseSamples(8000, 20000));
  ASSERT_EQ(Run({Path("a.wav"), Path("b.wav"), "-d", Path("d"), "--format", "svg"}), 0);
  ASSERT_EQ(Run({Path("b.wav"), "-o", Path("b.svg")}), 0);
  EXPECT_TRUE(Content("d/b.svg") == Content("b.svg"));
}

TEST_F(Plot, Svg_IsWellFormedAndHoldsTheTexts) {
  voxplay::Notes notes;
  notes.add(voxplay::Event{4000, 1, 2, 0, "<first & second>"});
  WriteWav(Path("a.wav"), NoiseSamples(16000, 20000), 16000, 2, notes, VOXPLAY_CONTAINER_VEF);
  const std::string strDocument = Svg();
  for (const char* const pszText :
       {">a.wav</text>", ">kHz</text>", ">dBFS</text>", ">left</text>", ">right</text>",
        ">0:00.40</text>", "16 kHz", "stereo", "0:00.500", "time in m:ss"}) {
    EXPECT_THAT(strDocument, HasSubstr(pszText));
  }
  Write("a.svg", {strDocument.begin(), strDocument.end()});
  const std::string strCheck =
      "python3 -c 'import sys, xml.dom.minidom as m; d = m.parse(sys.argv[1]); "
      "sys.exit(len(d.getElementsByTagName(\"image\")) != 3)' " +
      Path("a.svg");
  EXPECT_EQ(std::system(strCheck.c_str()), 0);  // NOLINT(cert-env33-c)
}

TEST_F(Plot, CuePointNames_AreInTheDocument) {
  voxplay::Notes notes;
  voxplay::Cue cue{};
  cue.id = 5;
  cue.sample_offset = 3000;
  notes.add(cue);
  notes.add(voxplay::Label{5, {'l', 'a', 'b', 'l'}, "a < b & c"});
  notes.add_silence({0, 2000});
  WriteWav(Path("a.wav"), NoiseSamples(16000, 20000), 16000, 1, notes);
  const std::string strDocument = Svg();
  EXPECT_THAT(strDocument, HasSubstr(">a &lt; b &amp; c</text>"));
  EXPECT_THAT(strDocument, HasSubstr(">1 cue point</text>"));
  EXPECT_THAT(strDocument, HasSubstr(">silence</text>"));
}

TEST_F(Plot, ManyEvents_AreCountedWithThoseThatHaveNames) {
  voxplay::Notes notes;
  for (std::uint64_t qwFrame = 0; qwFrame < 16000; qwFrame += 16) {
    notes.add(voxplay::Event{qwFrame, 10, 20, 0, ""});
  }
  WriteWav(Path("a.wav"), NoiseSamples(16000, 20000), 16000, 1, notes);
  EXPECT_THAT(Svg(), testing::ContainsRegex(">1000 events, [0-9]+ named</text>"));
}

TEST_F(Plot, Channel_IsDrawnAlone) {
  std::vector<std::int16_t> samples(16000);
  for (std::size_t n = 0; n < samples.size(); n += 2) samples[n] = n % 4 == 0 ? 20000 : -20000;
  WriteWav(Path("a.wav"), samples, 16000, 2);
  EXPECT_NE(Draw({"--no-axes", "--waveform", "--size", "100x100", "--channel", "1"}).At(50, 30),
            kPanel);
  EXPECT_EQ(Draw({"--no-axes", "--waveform", "--size", "100x100", "--channel", "2"}).At(50, 30),
            kPanel);
  EXPECT_EQ(Run({Path("a.wav"), "-o", Path("c.png"), "--channel", "3"}), 1);
  EXPECT_EQ(m_run.strErr, Path("a.wav") + ": channel 3 is not drawn: the sound has 2\n");
}

TEST_F(Plot, EmptySound_IsAPictureThatSaysSo) {
  WriteWav(Path("a.wav"), {});
  EXPECT_THAT(Svg(), HasSubstr(">no samples</text>"));
  EXPECT_EQ(Draw({}).Width(), 1200);
}

TEST_F(Plot, FewSamples_AreDots) {
  for (const std::size_t nFrames : {1U, 2U, 100U}) {
    WriteWav(Path("a.wav"), SineSamples(nFrames, 1600, 16000, 20000));
    const std::string strDocument = Svg();
    std::size_t nDots = 0;
    for (std::size_t n = 0; (n = strDocument.find("<circle", n)) != std::string::npos; ++n) ++nDots;
    EXPECT_EQ(nDots, nFrames);
  }
}

TEST_F(Plot, StandardStreams_AreReadAndWritten) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 1000));
  const std::string strCommand =
      std::string("cat ") + Path("a.wav") + " | " + VOXTOOL + " plot - -o - > " + Path("a.png");
  EXPECT_EQ(std::system(strCommand.c_str()), 0);  // NOLINT(cert-env33-c)
  EXPECT_EQ(C_Pixels(Path("a.png")).Width(), 1200);
}

TEST_F(Plot, PictureThatExists_StaysWithoutForce) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 1000));
  Write("a.png", {'o', 'l', 'd'});
  EXPECT_EQ(Run({Path("a.wav"), "-o", Path("a.png")}), 1);
  EXPECT_EQ(m_run.strErr, Path("a.png") + ": exists: -f replaces it\n");
  EXPECT_EQ(Content("a.png").size(), 3u);
  EXPECT_EQ(Run({Path("a.wav"), "-o", Path("a.png"), "-f"}), 0);
  EXPECT_GT(Content("a.png").size(), 1000u);
}

TEST_F(Plot, SoundAsItsOwnPicture_IsRefused) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 1000));
  const auto before = Content("a.wav");
  EXPECT_EQ(Run({Path("a.wav"), "-o", Path("a.wav"), "--format", "png", "-f"}), 1);
  EXPECT_EQ(m_run.strErr, Path("a.wav") + ": is not written: it is the sound itself\n");
  EXPECT_EQ(Content("a.wav"), before);
}

TEST_F(Plot, OneBadSoundAmongOthers_IsToldAndTheOthersAreDrawn) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 1000));
  Write("b.wav", {'n', 'o'});
  WriteWav(Path("c.wav"), NoiseSamples(1000, 1000));
  EXPECT_EQ(Run({Path("a.wav"), Path("b.wav"), Path("none.wav"), Path("c.wav"), "-d", Path("d")}),
            1);
  EXPECT_EQ(std::count(m_run.strErr.begin(), m_run.strErr.end(), '\n'), 3) << m_run.strErr;
  EXPECT_THAT(m_run.strErr, HasSubstr(Path("b.wav") + ": "));
  EXPECT_THAT(m_run.strErr, HasSubstr("\n4 files: 2 drawn, 2 failed; 0.12 s of sound in "));
  EXPECT_FALSE(Content("d/a.png").empty());
  EXPECT_FALSE(Content("d/c.png").empty());
  EXPECT_FALSE(std::filesystem::exists(Path("d/b.png")));
}

TEST_F(Plot, Folder_KeepsItsTree) {
  std::filesystem::create_directories(Path("in/deep"));
  WriteWav(Path("in/a.wav"), NoiseSamples(1000, 1000));
  WriteWav(Path("in/deep/b.wav"), NoiseSamples(2000, 1000));
  for (const char* const pszJobs : {"1", "2"}) {
    EXPECT_EQ(Run({"-r", Path("in"), "-d", Path("out") + pszJobs, "-j", pszJobs}), 0);
    EXPECT_THAT(m_run.strErr, testing::StartsWith("2 files: 2 drawn; 0.19 s of sound in "));
  }
  EXPECT_EQ(C_Pixels(Path("out1/a.png")).Width(), 1200);
  EXPECT_EQ(Content("out1/a.png"), Content("out2/a.png"));
  EXPECT_EQ(Content("out1/deep/b.png"), Content("out2/deep/b.png"));
  EXPECT_EQ(Run({Path("in"), "-d", Path("out")}), 1);
  EXPECT_EQ(Run({"-r", Path("in"), "-d", Path("out1"), "--skip-existing", "-q"}), 0);
  EXPECT_THAT(m_run.strErr, testing::StartsWith("2 files: 0 drawn, 2 skipped; "));
}

TEST_F(Plot, SoundsThatDifferInTheirExtensions_KeepThem) {
  std::filesystem::create_directories(Path("in/deep"));
  WriteWav(Path("in/deep/x.wav"), NoiseSamples(1000, 1000));
  WriteWav(Path("in/deep/x.vef"), NoiseSamples(1000, 1000), 16000, 1, {}, VOXPLAY_CONTAINER_VEF);
  WriteWav(Path("in/y.wav"), NoiseSamples(1000, 1000));
  EXPECT_EQ(Run({"-r", Path("in"), "-d", Path("out")}), 0) << m_run.strErr;
  EXPECT_FALSE(Content("out/deep/x.wav.png").empty());
  EXPECT_FALSE(Content("out/deep/x.vef.png").empty());
  EXPECT_FALSE(std::filesystem::exists(Path("out/deep/x.png")));
  EXPECT_FALSE(Content("out/y.png").empty());
}

TEST_F(Plot, NamesFromAList_AreDrawn) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 1000));
  WriteWav(Path("b.wav"), NoiseSamples(1000, 1000));
  const std::string strNames = Path("a.wav") + '\0' + Path("b.wav") + '\0';
  Write("list", {strNames.begin(), strNames.end()});
  EXPECT_EQ(Run({"--files-from", Path("list"), "-0", "-d", Path("d"), "-qq"}), 0);
  EXPECT_EQ(m_run.strErr, "");
  EXPECT_FALSE(Content("d/a.png").empty());
  EXPECT_FALSE(Content("d/b.png").empty());
}

TEST_F(Plot, TimesThatOneSoundDoesNotHave_AreAFailureOfThatSound) {
  WriteWav(Path("a.wav"), NoiseSamples(8000, 1000), 16000);
  WriteWav(Path("b.wav"), NoiseSamples(16000, 1000), 16000);
  WriteWav(Path("c.wav"), NoiseSamples(16000, 1000), 8000);
  // In samples the end is before the beginning, but for the lowest rate.
  EXPECT_EQ(Run({Path("a.wav"), Path("b.wav"), Path("c.wav"), "-d", Path("d"), "--from", "0.6",
                 "--to", "9000s", "-j", "1", "-qq"}),
            1);
  EXPECT_EQ(m_run.strErr, Path("a.wav") + ": nothing is drawn: --to is not after --from\n" +
                              Path("b.wav") + ": nothing is drawn: --to is not after --from\n");
  EXPECT_FALSE(Content("d/c.png").empty());
}

TEST_F(Plot, WhatCannotBeMeant_IsAUsageError) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 1000));
  const std::string strIn = Path("a.wav");
  const std::vector<C_Program::Texts> wrong = {
      {strIn},
      {"-o", Path("x.png")},
      {strIn, "-o", Path("x.png"), "-d", Path("d")},
      {strIn, Path("b.wav"), "-o", Path("x.png")},
      {strIn, "-o", Path("x.jpg")},
      {strIn, "-o", Path("x")},
      {strIn, "-o", Path("x.png"), "--size", "10x10"},
      {strIn, "-o", Path("x.png"), "--size", "9000x100"},
      {strIn, "-o", Path("x.png"), "--size", "100"},
      {strIn, "-o", Path("x.png"), "--size", "100x100x"},
      {strIn, "-o", Path("x.png"), "--size", "-100x100"},
      {strIn, "-o", Path("x.png"), "--from", "soon"},
      {strIn, "-o", Path("x.png"), "--from", "0.02", "--to", "0.01"},
      {strIn, "-o", Path("x.png"), "--channel", "0"},
      {strIn, "-o", Path("x.png"), "--theme", "pink"},
      {"-", "-d", Path("d")},
  };
  for (const auto& arguments : wrong) {
    EXPECT_EQ(Run(arguments), 2) << testing::PrintToString(arguments);
    EXPECT_FALSE(m_run.strErr.empty());
  }
  EXPECT_THAT(Entries(), ElementsAre("a.wav"));
}

TEST_F(Plot, TimeAfterTheEnd_IsToldWithTheLength) {
  WriteWav(Path("a.wav"), NoiseSamples(16000, 1000));
  EXPECT_EQ(Run({Path("a.wav"), "-o", Path("x.png"), "--from", "2"}), 1);
  EXPECT_EQ(m_run.strErr,
            Path("a.wav") + ": nothing is drawn from 0:02.000 on: the sound ends at 0:01.000\n");
}

TEST_F(Plot, SoundWithoutARate_IsDrawnAllTheSame) {
  // An SP header of Kestrel whose rate is 0, and the least of a stream.
  const auto samples = NoiseSamples(16000, 1000);
  voxplay::Writer writer(Path("a.kst"), FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL));
  writer.write(std::span(samples));
  writer.finish();
  auto bytes = Content("a.kst");
  ASSERT_EQ(bytes[26], 16000 % 256);
  std::fill(bytes.begin() + 26, bytes.begin() + 30, std::uint8_t{0});
  Write("a.kst", bytes);
  ASSERT_EQ(Run({Path("a.kst"), "-o", "-", "--format", "svg"}), 0) << m_run.strErr;
  EXPECT_THAT(m_run.strOut, HasSubstr("no rate, drawn as 16 kHz"));
}

TEST_F(Plot, ManyChannels_MakeThePictureHigherUntilTheyFit) {
  WriteWav(Path("a.wav"), std::vector<std::int16_t>(6400), 16000, 64);
  EXPECT_EQ(Draw({}).Height(), 8192);
  WriteWav(Path("a.wav"), std::vector<std::int16_t>(600), 16000, 6);
  EXPECT_EQ(Draw({}).Height(), 1800);
}

TEST_F(Plot, MoreChannelsThanFit_AreRefused) {
  WriteWav(Path("a.wav"), std::vector<std::int16_t>(6400), 16000, 64);
  EXPECT_EQ(Run({Path("a.wav"), "-o", Path("x.png"), "--size", "400x300"}), 1);
  EXPECT_THAT(m_run.strErr, HasSubstr("--channel"));
  EXPECT_EQ(Run({Path("a.wav"), "-o", Path("x.png"), "--size", "400x300", "--channel", "64"}), 0);
}

// The inputs of a pack of the fuzzers: the length of each in 4 bytes, and its bytes.
std::vector<std::vector<std::uint8_t>> InputsOf(const std::string& strPack) {
  const auto bytes = FileBytes(std::string(VOXPLAY_CORPORA) + "/" + strPack + ".pack");
  std::vector<std::vector<std::uint8_t>> inputs;
  for (std::size_t n = 0; n + 4 <= bytes.size();) {
    std::size_t nLength = 0;
    for (std::size_t i = 0; i < 4; ++i) nLength |= std::size_t{bytes[n + i]} << (8 * i);
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(n + 4);
    inputs.emplace_back(first, first + static_cast<std::ptrdiff_t>(nLength));
    n += 4 + nLength;
  }
  return inputs;
}

TEST_F(Plot, HostileFiles_GiveEachAPictureOrOneLine) {
  // Every fifth one, because the disk is waited for after each picture.
  constexpr std::size_t kStep = 5;
  std::filesystem::create_directory(Path("in"));
  C_Program::Texts arguments = {"-d", Path("out"), "--size", "300x200", "-qq"};
  for (const char* const pszPack : {"api_reader", "wav_load", "vef", "smpl_cue", "adtl",
                                    "heron_stream", "sp_header_files", "codec_heads", "factory"}) {
    const auto inputs = InputsOf(pszPack);
    for (std::size_t n = 0; n < inputs.size(); n += kStep) {
      arguments.push_back(Write("in/" + std::to_string(arguments.size()), inputs[n]));
    }
  }
  const std::size_t nSounds = arguments.size() - 5;
  ASSERT_GT(nSounds, 500u);
  EXPECT_EQ(Run(arguments), 1) << m_run.nSignal;
  std::size_t nPictures = 0;
  for (const auto& entry : std::filesystem::directory_iterator(Path("out"))) {
    EXPECT_GT(entry.file_size(), 500u);
    ++nPictures;
  }
  const auto nLines = std::count(m_run.strErr.begin(), m_run.strErr.end(), '\n');
  EXPECT_GT(nPictures, 100u);
  EXPECT_EQ(nPictures + static_cast<std::size_t>(nLines), nSounds);
}

TEST_F(Plot, CutFile_IsToldAndSaysSoInThePicture) {
  WriteWav(Path("a.wav"), NoiseSamples(16000, 20000));
  auto bytes = Content("a.wav");
  bytes.resize(44 + 2 * 1000);
  Write("a.wav", bytes);
  EXPECT_THAT(Svg(), HasSubstr("0:00.063 \u00B7 cut</text>"));
  const std::string strCut =
      Path("a.wav") + ": the file is cut: 1,000 of 16,000 frames are there, and drawn\n";
  EXPECT_EQ(m_run.strErr, strCut);
  Svg({"--to", "0.01", "--waveform"});
  EXPECT_EQ(m_run.strErr, strCut);
  EXPECT_EQ(Run({Path("a.wav"), "-d", Path("d")}), 0);
  EXPECT_THAT(m_run.strErr, HasSubstr("1 file: 1 drawn (1 cut); "));
}

TEST_F(Plot, CutStream_IsToldWithTheFramesThatAreThere) {
  auto bytes = WrittenBytes(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_HERON, 4, 8000),
                            PublicSamples(100000));
  bytes.resize(bytes.size() / 2);
  Write("a.hrn", bytes);
  EXPECT_EQ(Run({Path("a.hrn"), "-o", "-", "--format", "svg"}), 0);
  EXPECT_THAT(m_run.strErr,
              testing::MatchesRegex(
                  ".*/a.hrn: the file is cut: [0-9,]+ of 100,000 frames are there, and drawn\n"));
  EXPECT_THAT(m_run.strOut, HasSubstr(" \u00B7 cut</text>"));
}

TEST_F(Plot, DamagedFile_IsToldByItsName) {
  auto bytes = WrittenBytes(FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL),
                            NoiseSamples(32000, 20000));
  // Two frames that no encoder writes.
  std::fill_n(bytes.begin() + 48 + 10 * 40, 2 * 40, std::uint8_t{0xFF});
  Write("a.kst", bytes);
  EXPECT_EQ(Run({Path("a.kst"), "-o", "-", "--format", "svg"}), 0);
  EXPECT_THAT(m_run.strErr,
              testing::MatchesRegex(".*/a.kst: [0-9,]+ of 32,000 frames are damaged\n"));
  EXPECT_THAT(m_run.strOut, testing::ContainsRegex("[0-9,]+ damaged frames</text>"));
}

TEST_F(Plot, LongSound_IsNeverInMemory) {
  WriteLongWav(Path("a.wav"));
  C_RunningProgram run = m_program.Start({"plot", Path("a.wav"), "-o", Path("a.png")}, {},
                                         [] { LimitOwnMemory(40'000'000); });
  const S_Run ended = run.Wait();
  EXPECT_EQ(ended.nExit, 0) << ended.strErr;
  EXPECT_EQ(C_Pixels(Path("a.png")).Width(), 1200);
}

TEST_F(Plot, FullDisk_IsAFailure) {
  WriteWav(Path("a.wav"), NoiseSamples(1000, 1000));
  const std::string strCommand =
      std::string(VOXTOOL) + " plot " + Path("a.wav") + " -o - > /dev/full 2> " + Path("err");
  const int nStatus = std::system(strCommand.c_str());  // NOLINT(cert-env33-c)
  EXPECT_EQ(WEXITSTATUS(nStatus), 1);
  const auto error = Content("err");
  EXPECT_EQ(std::string(error.begin(), error.end()),
            "standard output: cannot be written: No space left on device\n");
}

}  // namespace
