// SPDX-License-Identifier: Apache-2.0
//
// The real program on sound files that cannot be read somewhere: each read in turn, and all from
// some read on. It ends by itself, with a result that the user knows, and never shows a wrong
// length.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <utility>

#include "ChildProcess.h"
#include "FileBytes.h"
#include "PrivateTemp.h"
#include "Speech.h"
#include "TempFolder.h"

namespace {

constexpr int kMostReads = 500;
const std::string kDuration = "file duration: 0.060000 secs\n";

struct S_Endings {
  int nUnread = 0;
  int nWhole = 0;
};

class ReadFailure : public ::testing::Test {
 protected:
  // Every run of the program in which a read fails. They end with one of the two texts.
  S_Endings RunWithEachFault(const char* pszMode, bool bFromThenOn, const std::string& strUnread,
                             const std::string& strWhole) {
    S_Endings endings;
    for (int nCall = 1; nCall < kMostReads; ++nCall) {
      const std::string strHit = m_folder.Path("hit");
      std::filesystem::remove(strHit);
      const S_Run run =
          m_player.Run({m_strFile, pszMode},
                       {"LD_PRELOAD=" + m_strModule, "VOXPLAY_HIT=" + strHit,
                        "VOXPLAY_FAULT=" + std::to_string(nCall) + (bFromThenOn ? "+" : "")});
      EXPECT_THAT(run.strOut, testing::AnyOf(strUnread, strWhole));
      EXPECT_EQ(run.strErr, "");
      EXPECT_EQ(run.nSignal, 0);
      if (HasFailure()) ADD_FAILURE() << "at read " << nCall;
      if (HasFailure() || !std::filesystem::exists(strHit)) return endings;
      ++(run.strOut == strWhole ? endings.nWhole : endings.nUnread);
    }
    ADD_FAILURE() << "there is no end of reads";
    return endings;
  }

  C_Program m_player{VOXPLAY_PLAYER};
  // Read before the folder that may hold it is hidden.
  const C_Bytes m_module = FileBytes(VOXPLAY_FAULTY_READS);
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  const std::string m_strModule = m_folder.Write("faulty-reads.so", m_module);
  const std::string m_strFile = m_folder.Write("x.wav", WavOf(16000, 1, C_Bytes(1920, 1)));
};

TEST_F(ReadFailure, ALengthQuery_GivesTheRightLengthOrFails) {
  for (const bool bFromThenOn : {false, true}) {
    const S_Endings endings =
        RunWithEachFault("2", bFromThenOn, "Length:-2\n", kDuration + "Length:0\n");
    EXPECT_GE(endings.nUnread, 5);
  }
}

// An error while the sound plays leaves it silent from there on.
TEST_F(ReadFailure, NormalMode_FailsOrPlaysForTheWholeTime) {
  for (const bool bFromThenOn : {false, true}) {
    const S_Endings endings = RunWithEachFault("0", bFromThenOn, "Decode input file failed !!\n",
                                               kDuration + "Playing...Finished\n");
    EXPECT_GE(endings.nUnread, 5);
    EXPECT_GE(endings.nWhole, 1);
  }
}

}  // namespace
