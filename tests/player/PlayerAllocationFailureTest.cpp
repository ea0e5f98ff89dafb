// SPDX-License-Identifier: Apache-2.0
//
// The whole program where memory is missing: each allocation in turn, and all from some allocation
// on. It ends by itself, with a result that the user knows.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <tuple>
#include <vector>

#include "ChildProcess.h"
#include "PrivateTemp.h"
#include "Speech.h"
#include "TempFolder.h"

namespace {

struct S_Ending {
  std::string strOut;
  int nExit;
};

struct S_Mode {
  std::string strName;
  const char* pszPlayType;
  std::vector<S_Ending> endings;
};

// Where the player itself cannot be made, there is no message.
std::vector<S_Mode> Modes() {
  const std::string strDuration = "file duration: 0.100000 secs\n";
  return {
      {"Normal",
       "0",
       {{"", 0},
        {"Decode input file failed !!\n", 255},
        {strDuration + "Play input file failed !!\n", 255},
        {strDuration + "Playing...Finished\n", 0}}},
      {"RealTime", "1", {{"", 0}, {"Playing...Finished\n", 0}}},
      {"Length", "2", {{"Length:0\n", 0}, {"Length:-2\n", 0}, {strDuration + "Length:0\n", 0}}}};
}

class PlayerAllocationFailure : public testing::TestWithParam<std::tuple<S_Mode, bool>> {
 protected:
  // False when the program makes fewer than nCall allocations.
  bool RunWithFault(const S_Mode& mode, int nCall, bool bFromThenOn) {
    const std::string strHit = m_folder.Path("hit-" + std::to_string(nCall));
    // Where memory is missing, the list of what real-time mode keeps on purpose has gaps, and the
    // leak check would report those things.
    const bool bLeakCheck = mode.strName != "RealTime";
    const S_Run run =
        m_player.Run({m_strFile, mode.pszPlayType},
                     {"VOXPLAY_FAULT=" + std::to_string(nCall) + (bFromThenOn ? "+" : ""),
                      "VOXPLAY_HIT=" + strHit,
                      std::string("LSAN_OPTIONS=detect_leaks=") + (bLeakCheck ? "1" : "0")});
    const bool bKnown =
        std::any_of(mode.endings.begin(), mode.endings.end(), [&run](const S_Ending& ending) {
          return ending.strOut == run.strOut && ending.nExit == run.nExit;
        });
    EXPECT_TRUE(bKnown) << run.strOut << " exit " << run.nExit << " signal " << run.nSignal;
    EXPECT_EQ(run.strErr, "");
    return std::filesystem::exists(strHit);
  }

  C_Program m_player{VOXPLAY_PLAYER};
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  const std::string m_strFile = m_folder.Write("x.kst", SpeechOf(5).file);
};

TEST_P(PlayerAllocationFailure, EachOne_EndsWithAKnownResult) {
  constexpr int kMostAllocations = 5000;
  const auto& [mode, bFromThenOn] = GetParam();
  int nCall = 1;
  while (nCall < kMostAllocations && RunWithFault(mode, nCall, bFromThenOn)) {
    ASSERT_FALSE(HasFailure()) << "at allocation " << nCall;
    ++nCall;
  }
  EXPECT_GT(nCall, 50) << "few allocations are seen";
  EXPECT_LT(nCall, kMostAllocations);
}

INSTANTIATE_TEST_SUITE_P(All, PlayerAllocationFailure,
                         testing::Combine(testing::ValuesIn(Modes()), testing::Bool()),
                         [](const auto& parameters) {
                           return std::get<0>(parameters.param).strName +
                                  (std::get<1>(parameters.param) ? "_FromThenOn" : "_Once");
                         });

}  // namespace
