// SPDX-License-Identifier: Apache-2.0
//
// The example program, run as a user runs it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "ChildProcess.h"
#include "FolderTest.h"
#include "TestSound.h"
#include "TestVoice.h"
#include "WavBytes.h"
#include "file/KestrelFile.h"
#include "file/SpHeader.h"
#include "file/WavFile.h"

namespace {

using testing::ElementsAre;

class ConvertExample : public C_FolderTest {
 protected:
  // Writes a WAV file with 16123 samples: a little over a second at 16 kHz.
  void WriteWav(const std::string& strName, unsigned int dwSampleRate) {
    const auto sound = MonoSound(TestVoice(16123), dwSampleRate);
    ASSERT_TRUE(
        sound->Convert(AUDIO_FILE_WAVE, Path(strName).c_str(), true, false, nullptr, false, 0));
  }
  int Convert(const std::string& strSource, const std::string& strTarget,
              const C_Program::Texts& bitRate = {}) {
    C_Program::Texts arguments = {Path(strSource), Path(strTarget)};
    arguments.insert(arguments.end(), bitRate.begin(), bitRate.end());
    m_run = m_program.Run(arguments);
    return m_run.nExit;
  }

  const C_Program m_program{VOXPLAY_CONVERT};
  S_Run m_run;
};

TEST_F(ConvertExample, ToKestrelAndBack_KeepsTheSampleRateOfTheSound) {
  for (const unsigned int dwSampleRate : {8000u, 16000u, 44100u}) {
    // The program does not write over files.
    const std::string strRate = std::to_string(dwSampleRate);
    const std::string strKestrel = strRate + ".kst";
    const std::string strBack = strRate + "-back.wav";
    WriteWav("a.wav", dwSampleRate);
    ASSERT_EQ(Convert("a.wav", strKestrel, {"24000"}), 0);
    C_SpHeader header;
    ASSERT_TRUE(ReadSpHeader(&header, Path(strKestrel).c_str()));
    EXPECT_EQ(header.GetID(), 14);
    EXPECT_EQ(header.GetFreq(), dwSampleRate);
    EXPECT_EQ(Content(strKestrel).size(), 48u + 6 + 51 * 60);
    ASSERT_EQ(Convert(strKestrel, strBack), 0);
    C_WavFile back;
    ASSERT_TRUE(back.LoadByName(Path(strBack).c_str(), true, nullptr, nullptr));
    EXPECT_EQ(back.GetWavInfo()->GetSampleRate(), dwSampleRate);
    EXPECT_GT(Likeness(TestVoice(16123), SamplesOf(back.GetWavData()), 0), 0.98);
  }
}

TEST_F(ConvertExample, RefusedBitRate_FailsAndCreatesNothing) {
  WriteWav("a.wav", 16000);
  for (const char* const pszBitRate : {"15000", "0", "16000x", "", "-16000", "99999999999"}) {
    EXPECT_EQ(Convert("a.wav", "a.kst", {pszBitRate}), 1) << pszBitRate;
    EXPECT_EQ(m_run.strErr, std::string("convert: ") + pszBitRate +
                                " is none of Kestrel's bit rates: 7200, 9600, 12000, 14400, 16000, "
                                "20000, 24000, 32000\n");
  }
  EXPECT_EQ(Convert("a.wav", "b.wav", {"16000"}), 1);
  EXPECT_EQ(m_run.strErr, "convert: a WAV file has no bit rate to choose\n");
  EXPECT_THAT(Entries(), ElementsAre("a.wav"));
}

TEST_F(ConvertExample, KestrelWithoutABitRate_IsAtTheDefault) {
  WriteWav("a.wav", 16000);
  ASSERT_EQ(Convert("a.wav", "a.kst"), 0);
  EXPECT_EQ(Content("a.kst").size(), 48u + 6 + 51 * 40);
  const auto bytes = Content("a.kst");
  EXPECT_EQ(bytes[52] | bytes[53] << 8, 16000);
}

TEST_F(ConvertExample, TargetOfAnotherExtension_IsRefused) {
  WriteWav("a.wav", 16000);
  for (const char* const pszTarget : {"b.mp3", "b", "b.hrn", "b.KST"}) {
    EXPECT_EQ(Convert("a.wav", pszTarget), 1) << pszTarget;
    EXPECT_EQ(m_run.strErr, "convert: " + Path(pszTarget) + " ends neither in .wav nor in .kst\n");
  }
  EXPECT_THAT(Entries(), ElementsAre("a.wav"));
}

TEST_F(ConvertExample, ExistingTarget_StaysAsItIs) {
  WriteWav("a.wav", 16000);
  Write("b.wav", {'m', 'i', 'n', 'e'});
  ASSERT_EQ(symlink("nowhere", Path("c.kst").c_str()), 0);
  EXPECT_EQ(Convert("a.wav", "b.wav"), 1);
  EXPECT_EQ(m_run.strErr, "convert: " + Path("b.wav") + " exists already\n");
  EXPECT_EQ(Content("b.wav"), (std::vector<std::uint8_t>{'m', 'i', 'n', 'e'}));
  EXPECT_EQ(Convert("a.wav", "c.kst"), 1);
  EXPECT_EQ(Convert("a.wav", "a.wav"), 1);
  EXPECT_THAT(Entries(), ElementsAre("a.wav", "b.wav", "c.kst"));
}

TEST_F(ConvertExample, SourceThatIsNoSound_FailsAndCreatesNothing) {
  Write("a.wav", {'n', 'o'});
  EXPECT_EQ(Convert("a.wav", "b.wav"), 1);
  EXPECT_EQ(m_run.strErr,
            "convert: " + Path("a.wav") + " is no sound file that the library reads\n");
  EXPECT_EQ(Convert("missing", "b.kst", {"16000"}), 1);
  EXPECT_EQ(m_run.strErr, "convert: " + Path("missing") + " cannot be opened\n");
  EXPECT_THAT(Entries(), ElementsAre("a.wav"));
}

TEST_F(ConvertExample, SoundWithoutSamples_FailsAndCreatesNothing) {
  Write("a.wav", MonoWav(0).Take());
  EXPECT_EQ(Convert("a.wav", "b.wav"), 1);
  EXPECT_EQ(m_run.strErr, "convert: " + Path("a.wav") + " holds no samples\n");
  EXPECT_EQ(Convert("a.wav", "b.kst"), 1);
  EXPECT_THAT(Entries(), ElementsAre("a.wav"));
}

TEST_F(ConvertExample, WidthThatCannotBeConverted_FailsAndCreatesNothing) {
  for (const auto wBits : std::initializer_list<std::uint16_t>{12, 20, 24}) {
    Write("a.wav", C_RiffBytes("WAVE")
                       .Chunk("fmt ", FmtBytes(1, 1, 16000, wBits))
                       .Chunk("data", RampBytes(6000))
                       .Take());
    EXPECT_EQ(Convert("a.wav", "b.kst"), 1);
    EXPECT_EQ(m_run.strErr, "convert: " + Path("a.wav") + " has samples of " +
                                std::to_string(wBits) + " bits, which cannot be converted\n");
    EXPECT_THAT(Entries(), ElementsAre("a.wav"));
  }
}

TEST_F(ConvertExample, TwentyFourBits_AreCopied) {
  Write("a.wav", C_RiffBytes("WAVE")
                     .Chunk("fmt ", FmtBytes(1, 1, 16000, 24))
                     .Chunk("data", RampBytes(6000))
                     .Take());
  ASSERT_EQ(Convert("a.wav", "b.wav"), 0) << m_run.strErr;
  EXPECT_EQ(Content("b.wav"), Content("a.wav"));
}

TEST_F(ConvertExample, TargetThatCannotBeWritten_FailsAndLeavesNothing) {
  WriteWav("a.wav", 16000);
  EXPECT_EQ(Convert("a.wav", "nowhere/b.wav"), 1);
  EXPECT_EQ(m_run.strErr, "convert: " + Path("nowhere/b.wav") + " could not be written\n");
  EXPECT_EQ(Convert("a.wav", "nowhere/b.kst"), 1);
  EXPECT_THAT(Entries(), ElementsAre("a.wav"));
}

TEST_F(ConvertExample, WrongNumberOfArguments_PrintsTheUsage) {
  const S_Run run = m_program.Run({"a.wav"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strErr, "usage: convert IN OUT.wav | convert IN OUT.kst [BITRATE]\n");
}

}  // namespace
