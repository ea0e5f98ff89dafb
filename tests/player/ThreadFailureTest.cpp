// SPDX-License-Identifier: Apache-2.0
//
// The real program where threads cannot be made: each of them in turn, and none from some thread
// on. It ends by itself, with a result that the user knows.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <future>
#include <string>
#include <utility>
#include <vector>

#include "ChildProcess.h"
#include "FileBytes.h"
#include "PrivateTemp.h"
#include "SoundServer.h"
#include "Speech.h"
#include "TempFolder.h"

namespace {

constexpr int kMostThreads = 40;
const char* const kFinished = "Playing...Finished\n";
const char* const kRefused = "Play input file failed !!\n";

class ThreadFailure : public ::testing::Test {
 protected:
  // The run whose nCall-th thread cannot be made. False when there are fewer threads.
  bool RunWithFault(const char* pszMode, int nCall, bool bFromThenOn,
                    const C_Program::Texts& environment, S_Run& run) {
    const std::string strName =
        std::string(pszMode) + (bFromThenOn ? "-on-" : "-once-") + std::to_string(nCall);
    const std::string strHit = m_folder.Path("hit-" + strName);
    C_Program::Texts settings = {
        "LD_PRELOAD=" + m_strModule,
        "VOXPLAY_FAULT=" + std::to_string(nCall) + (bFromThenOn ? "+" : ""),
        "VOXPLAY_HIT=" + strHit};
    settings.insert(settings.end(), environment.begin(), environment.end());
    run = m_player.Run({m_strFile, pszMode}, settings);
    return std::filesystem::exists(strHit);
  }
  // All runs in which a thread cannot be made, some at a time.
  std::vector<S_Run> RunWithEachFault(const char* pszMode, bool bFromThenOn,
                                      const C_Program::Texts& environment) {
    constexpr int kAtOnce = 4;
    std::vector<S_Run> runs;
    for (int nCall = 1; nCall < kMostThreads; nCall += kAtOnce) {
      std::vector<std::future<std::pair<bool, S_Run>>> running;
      for (int i = nCall; i < nCall + kAtOnce; ++i) {
        running.push_back(std::async(std::launch::async, [=, this, &environment] {
          S_Run run;
          const bool bHit = RunWithFault(pszMode, i, bFromThenOn, environment, run);
          return std::pair(bHit, run);
        }));
      }
      bool bAllHit = true;
      for (auto& result : running) {
        const auto [bHit, run] = result.get();
        if (bHit) runs.push_back(run);
        bAllHit = bAllHit && bHit;
      }
      if (!bAllHit) return runs;
    }
    ADD_FAILURE() << "there is no end of threads";
    return runs;
  }
  // When the thread of its ALSA backend cannot be made, the library that plays ends the process:
  // its alsa_init asserts that pthread_create has succeeded, and Debian builds it with assertions.
  // The toolbox tries to make a thread just before it calls the library, so only a failure that
  // hits exactly the next thread gets there. On a server this backend is not used.
  static void EraseTheAbortOfAlsa(std::vector<S_Run>& runs, bool bOnServer) {
    const auto nErased = std::erase_if(runs, [](const S_Run& run) {
      return run.nSignal == SIGABRT && run.strErr.find("alsa_init: Assertion") != std::string::npos;
    });
    EXPECT_LE(nErased, bOnServer ? 0U : 1U);
  }
  void ExpectRealTimeModeFinishes(const C_Program::Texts& environment) {
    for (const bool bFromThenOn : {false, true}) {
      auto runs = RunWithEachFault("1", bFromThenOn, environment);
      EraseTheAbortOfAlsa(runs, !environment.empty());
      EXPECT_GE(runs.size(), 3U) << "decoder, device and silence";
      for (const S_Run& run : runs) {
        EXPECT_EQ(run.strOut, kFinished);
        EXPECT_EQ(run.strErr, "");
        EXPECT_EQ(run.nExit, 0);
        EXPECT_EQ(run.nSignal, 0);
      }
    }
  }
  // Returns how often playing was refused.
  int ExpectNormalModeFinishesOrIsRefused(bool bFromThenOn, const C_Program::Texts& environment) {
    int nRefused = 0;
    auto runs = RunWithEachFault("0", bFromThenOn, environment);
    EraseTheAbortOfAlsa(runs, !environment.empty());
    EXPECT_GE(runs.size(), 2U) << "device and silence";
    for (const S_Run& run : runs) {
      const bool bRefused = run.strOut == "file duration: 0.200000 secs\n" + std::string(kRefused);
      if (bRefused) ++nRefused;
      EXPECT_TRUE(bRefused || run.strOut.ends_with(kFinished)) << run.strOut;
      EXPECT_EQ(run.strErr, "");
      EXPECT_EQ(run.nExit, bRefused ? 255 : 0);
      EXPECT_EQ(run.nSignal, 0);
    }
    return nRefused;
  }

  C_Program m_player{VOXPLAY_PLAYER};
  // Read before the folder that may hold it is hidden.
  const C_Bytes m_module = FileBytes(VOXPLAY_FAULTY_THREADS);
  C_PrivateTemp m_temp;
  C_TempFolder m_folder;
  const std::string m_strModule = m_folder.Write("faulty-threads.so", m_module);
  const std::string m_strFile = m_folder.Write("x.kst", SpeechOf(10).file);
};

TEST_F(ThreadFailure, RealTimeModeWithoutAService_Finishes) { ExpectRealTimeModeFinishes({}); }

TEST_F(ThreadFailure, RealTimeModeOnAServer_Finishes) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  ExpectRealTimeModeFinishes({server.Environment()});
}

// One thread that is missing takes the device away; the sound goes on in silence. When the thread
// for silence is missing too, playing is refused.
TEST_F(ThreadFailure, NormalModeWithoutAService_FinishesOrIsRefused) {
  EXPECT_EQ(ExpectNormalModeFinishesOrIsRefused(/*bFromThenOn=*/false, {}), 1);
  EXPECT_GE(ExpectNormalModeFinishesOrIsRefused(/*bFromThenOn=*/true, {}), 2);
}

TEST_F(ThreadFailure, NormalModeOnAServer_FinishesOrIsRefused) {
  C_SoundServer server(16000, "s16le", 1);
  ASSERT_TRUE(server.Start());
  EXPECT_EQ(ExpectNormalModeFinishesOrIsRefused(/*bFromThenOn=*/false, {server.Environment()}), 1);
  EXPECT_GE(ExpectNormalModeFinishesOrIsRefused(/*bFromThenOn=*/true, {server.Environment()}), 2);
}

// Another user than root has a limit on all of his threads. Nobody else runs as this one.
constexpr uid_t kUser = 54321;

// Runs in the child.
void BecomeUser(rlim_t nThreads) {
  const rlimit limit = {nThreads, nThreads};
  if (setrlimit(RLIMIT_NPROC, &limit) != 0 || setuid(kUser) != 0) _exit(1);
}

TEST_F(ThreadFailure, AUserWhoMayHaveFewThreads_IsServedByBothModes) {
  ASSERT_EQ(chmod("/tmp", 01777), 0);  // the fixture's own
  ASSERT_EQ(chmod(m_folder.Path().c_str(), 0755), 0);
  constexpr rlim_t kEnough = 8;
  // The leak check needs a thread of its own.
  const C_Program::Texts settings = {"LSAN_OPTIONS=detect_leaks=0"};
  for (rlim_t nThreads = 1; nThreads <= kEnough; ++nThreads) {
    for (const char* pszMode : {"0", "1"}) {
      const S_Run run =
          m_player.Start({m_strFile, pszMode}, settings, [nThreads] { BecomeUser(nThreads); })
              .Wait();
      const bool bRefused = run.nExit == 255 && run.strOut.ends_with(kRefused);
      const bool bFinished = run.nExit == 0 && run.strOut.ends_with(kFinished);
      EXPECT_TRUE(bFinished || (bRefused && *pszMode == '0')) << nThreads << run.strOut;
      if (nThreads == 1) {
        EXPECT_EQ(bRefused, *pszMode == '0');
      }
      if (nThreads == kEnough) {
        EXPECT_TRUE(bFinished);
      }
      EXPECT_EQ(run.strErr, "");
    }
  }
}

}  // namespace
