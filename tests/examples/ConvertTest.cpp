// SPDX-License-Identifier: Apache-2.0
//
// The example program, run as its user runs it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "ChildProcess.h"
#include "FolderTest.h"
#include "TestSound.h"
#include "TestVoice.h"
#include "file/KestrelFile.h"
#include "file/SpHeader.h"
#include "file/WavFile.h"

namespace {

using testing::ElementsAre;

class ConvertExample : public C_FolderTest {
 protected:
  // A WAV file of one second and a bit.
  void WriteWav(const std::string& strName, unsigned int dwSampleRate) {
    const auto sound = MonoSound(TestVoice(16123), dwSampleRate);
    ASSERT_TRUE(
        sound->Convert(AUDIO_FILE_WAVE, Path(strName).c_str(), true, false, nullptr, false, 0));
  }
  int Convert(const std::string& strSource, const std::string& strTarget,
              const C_Program::Texts& bitRate = {}) {
    C_Program::Texts arguments = {Path(strSource), Path(strTarget)};
    arguments.insert(arguments.end(), bitRate.begin(), bitRate.end());
    return m_program.Run(arguments).nExit;
  }

  const C_Program m_program{VOXPLAY_CONVERT};
};

TEST_F(ConvertExample, ToKestrelAndBack_KeepsTheSampleRateOfTheSound) {
  for (const unsigned int dwSampleRate : {8000u, 16000u, 44100u}) {
    WriteWav("a.wav", dwSampleRate);
    ASSERT_EQ(Convert("a.wav", "a.kst", {"24000"}), 0);
    C_SpHeader header;
    ASSERT_TRUE(ReadSpHeader(&header, Path("a.kst").c_str()));
    EXPECT_EQ(header.GetID(), 14);
    EXPECT_EQ(header.GetFreq(), dwSampleRate);
    EXPECT_EQ(Content("a.kst").size(), 48u + 6 + 51 * 60);
    ASSERT_EQ(Convert("a.kst", "b.wav"), 0);
    C_WavFile back;
    ASSERT_TRUE(back.LoadByName(Path("b.wav").c_str(), true, nullptr, nullptr));
    EXPECT_EQ(back.GetWavInfo()->GetSampleRate(), dwSampleRate);
    EXPECT_GT(Likeness(TestVoice(16123), SamplesOf(back.GetWavData()), 0), 0.98);
  }
}

TEST_F(ConvertExample, RefusedBitRate_FailsAndCreatesNothing) {
  WriteWav("a.wav", 16000);
  EXPECT_EQ(Convert("a.wav", "a.kst", {"15000"}), 1);
  EXPECT_THAT(Entries(), ElementsAre("a.wav"));
}

TEST_F(ConvertExample, SourceThatIsNoSound_FailsAndCreatesNothing) {
  Write("a.wav", {'n', 'o'});
  EXPECT_EQ(Convert("a.wav", "b.wav"), 1);
  EXPECT_EQ(Convert("missing", "b.kst", {"16000"}), 1);
  EXPECT_THAT(Entries(), ElementsAre("a.wav"));
}

TEST_F(ConvertExample, WrongNumberOfArguments_PrintsTheUsage) {
  const S_Run run = m_program.Run({"a.wav"});
  EXPECT_EQ(run.nExit, 1);
  EXPECT_EQ(run.strErr, "usage: convert IN OUT.wav | convert IN OUT.kst BITRATE\n");
}

}  // namespace
