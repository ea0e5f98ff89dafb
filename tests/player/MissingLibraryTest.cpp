// SPDX-License-Identifier: Apache-2.0
//
// The real program where a library that it loads when it needs it is not what it should be. The
// test puts an empty library of the same name in its place.
#include <gtest/gtest.h>

#include <string>

#include "ChildProcess.h"
#include "PrivateTemp.h"
#include "Speech.h"
#include "TempFolder.h"

namespace {

class MissingLibraryTest : public ::testing::Test {
 protected:
  [[nodiscard]] S_Run Play(const char* pszMode, const char* pszLibraryFolder) const {
    return m_player.Run({m_strFile, pszMode}, {std::string("LD_LIBRARY_PATH=") + pszLibraryFolder});
  }

  C_Program m_player{VOXPLAY_PLAYER};
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  const std::string m_strFile = m_folder.Write("speech.kst", SpeechOf(10).file);
};

TEST_F(MissingLibraryTest, NoLibraryThatPlays_SoundIsPlayedInSilence) {
  const S_Run normal = Play("0", VOXPLAY_EMPTY_CUBEB);
  EXPECT_EQ(normal.strOut, "file duration: 0.200000 secs\nPlaying...Finished\n");
  EXPECT_EQ(normal.strErr, "");
  EXPECT_EQ(normal.nExit, 0);
  const S_Run realTime = Play("1", VOXPLAY_EMPTY_CUBEB);
  EXPECT_EQ(realTime.strOut, "Playing...Finished\n");
  EXPECT_EQ(realTime.nExit, 0);
}

TEST_F(MissingLibraryTest, NoLibraryThatConverts_FileAtAnotherRateIsRefused) {
  const S_Run normal = Play("0", VOXPLAY_EMPTY_SOXR);
  EXPECT_EQ(normal.strOut, "Decode input file failed !!\n");
  EXPECT_EQ(normal.strErr, "");
  EXPECT_EQ(normal.nSignal, 0);
  EXPECT_EQ(Play("2", VOXPLAY_EMPTY_SOXR).strOut, "Length:-2\n");
}

}  // namespace
