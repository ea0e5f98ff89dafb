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
// The lines on a terminal.
const std::string kNoDevice = "no output device; playing silently in real time\r\n";
const std::string kUnread = "sound file cannot be read; playing silently to its end\r\n";

struct S_Endings {
  int nUnread = 0;
  int nWhole = 0;
};

class ReadFailure : public ::testing::Test {
 protected:
  // The environment of a program whose nCall-th read fails.
  [[nodiscard]] C_Program::Texts Fault(int nCall, bool bFromThenOn) const {
    std::filesystem::remove(m_strHit);
    return {"LD_PRELOAD=" + m_strModule, "VOXPLAY_HIT=" + m_strHit,
            "VOXPLAY_FAULT=" + std::to_string(nCall) + (bFromThenOn ? "+" : "")};
  }
  [[nodiscard]] bool WasHit() const { return std::filesystem::exists(m_strHit); }

  // Every run of the program in which a read fails. They end with one of the two texts.
  S_Endings RunWithEachFault(const char* pszMode, bool bFromThenOn, const std::string& strUnread,
                             const std::string& strWhole) {
    S_Endings endings;
    for (int nCall = 1; nCall < kMostReads; ++nCall) {
      const S_Run run = m_player.Run({m_strFile, pszMode}, Fault(nCall, bFromThenOn));
      EXPECT_THAT(run.strOut, testing::AnyOf(strUnread, strWhole));
      EXPECT_EQ(run.strErr, "");
      EXPECT_EQ(run.nSignal, 0);
      if (HasFailure()) ADD_FAILURE() << "at read " << nCall;
      if (HasFailure() || !WasHit()) return endings;
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
  const std::string m_strHit = m_folder.Path("hit");
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

// The file library also reads when it closes the file. By then everything was heard.
TEST_F(ReadFailure, WhileNormalModePlays_ATerminalIsTold) {
  for (const bool bFromThenOn : {false, true}) {
    int nTold = 0;
    for (int nCall = 1; nCall < kMostReads; ++nCall) {
      const S_Run run = m_player.RunOnTerminal({m_strFile, "0"}, Fault(nCall, bFromThenOn));
      if (!WasHit()) break;
      const bool bPlayed = run.strOut == kDuration + "Playing...Finished\n";
      const bool bTold = run.strErr == kNoDevice + kUnread;
      EXPECT_TRUE(bTold || run.strErr == (bPlayed ? kNoDevice : "")) << "at read " << nCall;
      EXPECT_TRUE(bPlayed || !bTold);
      nTold += bTold ? 1 : 0;
    }
    EXPECT_GE(nTold, 1);
  }
}

TEST_F(ReadFailure, InTheMiddleOfASound_IsToldInALineOfItsOwn) {
  const std::string strFile = m_folder.Write("long.wav", WavOf(16000, 1, C_Bytes(32000, 1)));
  const std::string strPlayed =
      "file duration: 1.000000 secs\r\n" + kNoDevice + "Playing...\r\n" + kUnread + "Finished\r\n";
  bool bTold = false;
  // Reads that fail earlier keep the file from being opened, or from being heard at all.
  for (int nCall = 1; !bTold && nCall < kMostReads; ++nCall) {
    const S_Run run = m_player.StartOnScreen({strFile, "0"}, Fault(nCall, true)).Wait();
    ASSERT_TRUE(WasHit());
    bTold = run.strErr == strPlayed;
  }
  EXPECT_TRUE(bTold);
}

}  // namespace
