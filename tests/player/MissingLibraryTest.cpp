// SPDX-License-Identifier: Apache-2.0
//
// The real program where a library that it loads when it needs it is not what it should be. The
// test puts an empty library of the same name in its place.
#include <gtest/gtest.h>

#include <string>

#include "ChildProcess.h"
#include "FileBytes.h"
#include "PrivateTemp.h"
#include "Speech.h"
#include "TempFolder.h"

namespace {

class MissingLibraryTest : public ::testing::Test {
 protected:
  // Plays with an empty library of that name.
  [[nodiscard]] S_Run Play(const char* pszMode, const char* pszLibrary) const {
    const C_TempFolder folder;
    EXPECT_FALSE(m_emptyLibrary.empty());
    folder.Write(pszLibrary, m_emptyLibrary);
    return m_player.Run({m_strFile, pszMode}, {"LD_LIBRARY_PATH=" + folder.Path()});
  }

  C_Program m_player{VOXPLAY_PLAYER};
  // Read before the folder that may hold it is hidden.
  const C_Bytes m_emptyLibrary = FileBytes(VOXPLAY_EMPTY_LIBRARY);
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  const std::string m_strFile = m_folder.Write("speech.kst", SpeechOf(10).file);
};

TEST_F(MissingLibraryTest, NoLibraryThatPlays_SoundIsPlayedInSilence) {
  const S_Run normal = Play("0", "libcubeb.so.0");
  EXPECT_EQ(normal.strOut, "file duration: 0.200000 secs\nPlaying...Finished\n");
  EXPECT_EQ(normal.strErr, "");
  EXPECT_EQ(normal.nExit, 0);
  const S_Run realTime = Play("1", "libcubeb.so.0");
  EXPECT_EQ(realTime.strOut, "Playing...Finished\n");
  EXPECT_EQ(realTime.nExit, 0);
}

TEST_F(MissingLibraryTest, NoLibraryThatConverts_FileAtAnotherRateIsRefused) {
  const S_Run normal = Play("0", "libsoxr.so.0");
  EXPECT_EQ(normal.strOut, "Decode input file failed !!\n");
  EXPECT_EQ(normal.strErr, "");
  EXPECT_EQ(normal.nSignal, 0);
  EXPECT_EQ(Play("2", "libsoxr.so.0").strOut, "Length:-2\n");
}

}  // namespace
