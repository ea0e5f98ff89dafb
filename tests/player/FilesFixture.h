// SPDX-License-Identifier: Apache-2.0
//
// The real program on files of all sorts, without a sound server. Many runs go on at the same time.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <functional>
#include <future>
#include <string>
#include <utility>
#include <vector>

#include "ChildProcess.h"
#include "PrivateTemp.h"
#include "Speech.h"
#include "TempFolder.h"

inline const char* const kRealTimeOutput = "Playing...Finished\n";
inline const char* const kCannotDecode = "Decode input file failed !!\n";

inline C_Bytes SilentFrames(std::size_t nFrames) { return C_Bytes(nFrames * 2); }

class C_FilesTest : public ::testing::Test {
 protected:
  using Prepare = std::function<void()>;

  // Runs the program beside the test. The program must end by itself and say nothing on standard
  // error.
  [[nodiscard]] std::future<S_Run> Beside(const std::string& strPath, const char* pszMode,
                                          const Prepare& prepare = {}) const {
    return std::async(std::launch::async, [this, strPath, pszMode, prepare] {
      S_Run run = m_player.Start({strPath, pszMode}, {}, prepare).Wait();
      EXPECT_EQ(run.strErr, "") << strPath << " " << pszMode;
      EXPECT_EQ(run.nSignal, 0) << strPath << " " << pszMode;
      return run;
    });
  }
  [[nodiscard]] S_Run Run(const std::string& strPath, const char* pszMode,
                          const Prepare& prepare = {}) const {
    return Beside(strPath, pszMode, prepare).get();
  }
  // Expects a file that cannot be decoded: play types 0 and 2 report the failure, and real-time
  // mode plays a second of silence.
  void ExpectUndecoded(const std::string& strPath, const Prepare& prepare = {}) const {
    auto normal = Beside(strPath, "0", prepare);
    auto length = Beside(strPath, "2", prepare);
    ExpectRealTime(strPath, 1.0, prepare);
    const S_Run played = normal.get();
    EXPECT_EQ(played.strOut, kCannotDecode) << strPath;
    EXPECT_EQ(played.nExit, 255) << strPath;
    const S_Run told = length.get();
    EXPECT_EQ(told.strOut, "Length:-2\n") << strPath;
    EXPECT_EQ(told.nExit, 0) << strPath;
  }
  void ExpectRealTime(const std::string& strPath, double dSeconds,
                      const Prepare& prepare = {}) const {
    const S_Run run = Run(strPath, "1", prepare);
    EXPECT_EQ(run.strOut, kRealTimeOutput) << strPath;
    EXPECT_EQ(run.nExit, 0) << strPath;
    EXPECT_GE(run.dSeconds, dSeconds) << strPath;
  }

  C_Program m_player{VOXPLAY_PLAYER};
  C_PrivateTemp m_temp;
};
