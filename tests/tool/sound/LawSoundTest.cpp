// SPDX-License-Identifier: Apache-2.0
//
// WAV files of A-law and mu-law, which sound as they do in other programs.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "OtherPrograms.h"
#include "ToolTest.h"
#include "WavBytes.h"

namespace tool {
namespace {

constexpr std::uint16_t kALaw = 6;
constexpr std::uint16_t kMuLaw = 7;

C_Bytes AllCodes() { return RampBytes(256); }

C_Bytes LawFmt(std::uint16_t wTag, std::uint16_t wChannels = 1) {
  return Join({FmtBytes(wTag, wChannels, 8000, 8), U16(0)});
}
// The tag is the beginning of an identifier of 16 bytes.
C_Bytes ExtensibleFmt(std::uint16_t wTag) {
  return Join({FmtBytes(0xFFFE, 1, 8000, 8), U16(22), U16(8), U32(4), U16(wTag),
               C_Bytes{0, 0, 0, 0, 0x10, 0, 0x80, 0, 0, 0xAA, 0, 0x38, 0x9B, 0x71}});
}
C_RiffBytes Wav(const C_Bytes& fmt, const C_Bytes& codes) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", fmt).Chunk("data", codes);
  return riff;
}

class LawSound : public test::C_ToolTest {
 protected:
  // What another program decodes.
  [[nodiscard]] std::vector<std::int16_t> Decoded(std::uint16_t wTag, const C_Bytes& codes) const {
    const C_TempFolder folder;
    folder.Write("codes", codes);
    RunIn(folder, std::string("sox -t raw -r 8000 -c 1 -e ") +
                      (wTag == kALaw ? "a-law" : "mu-law") + " -b 8 @/codes -t s16 @/samples");
    const auto bytes = folder.Read("samples");
    std::vector<std::int16_t> samples(bytes.size() / 2);
    std::memcpy(samples.data(), bytes.data(), bytes.size());
    return samples;
  }
  std::vector<std::int16_t> Converted(const std::string& strName) const {
    EXPECT_EQ(Convert({"@" + strName, "-f", "-o", "@out.wav"}), "");
    return test::SamplesIn<std::int16_t>(Path("out.wav"));
  }
};

TEST_F(LawSound, EveryCode_IsDecodedAsOtherProgramsDecodeIt) {
  for (const std::uint16_t wTag : {kALaw, kMuLaw}) {
    const auto samples = Decoded(wTag, AllCodes());
    ASSERT_EQ(samples.size(), 256U);
    Write("in.wav", Wav(LawFmt(wTag), AllCodes()).Take());
    EXPECT_EQ(Converted("in.wav"), samples) << wTag;
    Write("x.wav", Wav(ExtensibleFmt(wTag), AllCodes()).Take());
    EXPECT_EQ(Converted("x.wav"), samples) << wTag;
    EXPECT_EQ(RunLine("cat @in.wav | $V convert - --to wav -o - > @piped.wav").nExit, 0);
    EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("piped.wav")), samples) << wTag;
  }
}

TEST_F(LawSound, FilesOfAnotherProgram_EqualWhatItMakesOfThem) {
  const C_TempFolder folder;
  for (const std::string strLaw : {"a-law", "mu-law"}) {
    RunIn(folder, "sox -n -r 8000 -c 2 -e " + strLaw + " @/in.wav synth 1 sine 440 pinknoise");
    RunIn(folder, "sox @/in.wav -e signed -b 16 @/theirs.wav");
    const S_Run run = Run({"compare", folder.Path("in.wav"), folder.Path("theirs.wav")});
    EXPECT_EQ(run.nExit, 0) << run.strOut << run.strErr;
  }
}

TEST_F(LawSound, Marks_AreKept) {
  auto wav = Wav(LawFmt(kALaw), AllCodes());
  wav.Chunk("cue ", CueBytes({{1, 40, 40}})).Chunk("LIST", AdtlBytes({LablBytes(1, "verse")}));
  wav.Chunk("priv", {1, 2, 3, 4});
  Write("in.wav", wav.Take());
  EXPECT_EQ(Converted("in.wav"), Decoded(kALaw, AllCodes()));
  const auto sound = test::ReadSound(Path("out.wav"));
  ASSERT_EQ(sound.notes.view().labels().size(), 1U);
  EXPECT_STREQ(sound.notes.view().labels()[0].text, "verse");
  EXPECT_EQ(sound.notes.view().cues()[0].position, 40U);
  EXPECT_EQ(sound.notes.view().chunks().size(), 1U);
}

TEST_F(LawSound, FileThatTheEndCuts_IsCutAndHasWhatIsThere) {
  C_Bytes bytes = Wav(LawFmt(kMuLaw), AllCodes()).Take();
  bytes.resize(bytes.size() - 100);
  Write("in.wav", bytes);
  EXPECT_EQ(Run({"check", "@in.wav"}).strOut,
            Path("in.wav") + ": cut: chunk \"data\" holds 156 of 256 bytes\n");
  EXPECT_NE(Convert({"@in.wav", "-o", "@out.wav"}).find("the file is cut"), std::string::npos);
  auto samples = Decoded(kMuLaw, AllCodes());
  samples.resize(156);
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("out.wav")), samples);
}

TEST_F(LawSound, HalfAFrameAtTheEnd_IsLeftOut) {
  Write("in.wav", Wav(LawFmt(kALaw, 2), RampBytes(257)).Take());
  EXPECT_EQ(Converted("in.wav"), Decoded(kALaw, AllCodes()));
}

TEST_F(LawSound, SeveralPasses_ReadTheSame) {
  Write("in.wav", Wav(LawFmt(kALaw), Join({C_Bytes(4000, 0xD5), AllCodes()})).Take());
  EXPECT_EQ(Convert({"@in.wav", "--normalize", "-o", "@loud.wav"}), "");
  EXPECT_EQ(test::SamplesIn<std::int16_t>(Path("loud.wav")).size(), 4256U);
}

}  // namespace
}  // namespace tool
