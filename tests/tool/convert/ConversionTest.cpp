// SPDX-License-Identifier: Apache-2.0
#include "convert/Conversion.h"

#include <gtest/gtest.h>

#include <string>

#include "FolderTest.h"
#include "VoxtoolSounds.h"
#include "convert/TargetFormat.h"

namespace tool {
namespace {

class ConversionTest : public C_FolderTest {
 protected:
  ConversionTest() {
    m_options.format = FormatOf({"wav", "", "", "", 0, 0});
    m_options.bSum = true;
  }
  S_FileResult Convert(const std::string& strFrom, const std::string& strTo) {
    const C_FileReport report(m_console, tagTalk::TALK_ERRORS);
    return ConvertFile({Path(strFrom), Path(strTo)}, m_options,
                       {tagExisting::EXISTING_SKIPPED, false}, report, m_watch);
  }

  C_Console m_console;
  C_FileWatch m_watch;
  S_ConvertOptions m_options;
};

TEST_F(ConversionTest, Result_TellsTheSoundThatWasRead) {
  test::WriteSound(Path("in.wav"),
                   ::FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16, 8000, 2),
                   PublicSamples(5000, 2));
  const S_FileResult first = Convert("in.wav", "first.wav");
  EXPECT_EQ(first.eState, tagFileState::FILE_DONE);
  EXPECT_EQ(first.qwFrames, 5000U);
  EXPECT_EQ(first.Seconds(), 0.625);
  EXPECT_EQ(first.qwDamaged, 0U);
  ASSERT_TRUE(first.qwSum.has_value());
  EXPECT_EQ(m_watch.Part(), 1.0);
  m_options.format.sample_rate = 16000;
  m_options.dPeak = 0.5;
  EXPECT_EQ(Convert("in.wav", "other.wav").qwSum, first.qwSum) << "whatever is made of it";
  m_options.format.sample_rate = 0;
  m_options.dPeak.reset();
  EXPECT_EQ(Convert("first.wav", "again.wav").qwSum, first.qwSum);
  EXPECT_NE(Convert("other.wav", "different.wav").qwSum, first.qwSum);
}

TEST_F(ConversionTest, TargetThatIsThere_IsSkipped) {
  Write("out.wav", {1});
  EXPECT_EQ(Convert("missing.wav", "out.wav").eState, tagFileState::FILE_SKIPPED);
  EXPECT_EQ(Content("out.wav").size(), 1U);
}

}  // namespace
}  // namespace tool
