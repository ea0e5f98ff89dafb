// SPDX-License-Identifier: Apache-2.0
#include "RunModes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

#include "FakePlayer.h"

namespace {

using ::testing::ElementsAre;
using ::testing::internal::CaptureStdout;
using ::testing::internal::GetCapturedStdout;
using Calls = std::vector<std::string>;

class RunModes : public ::testing::Test {
 protected:
  RunModes() { g_player = {}; }
  ~RunModes() override {
    m_loader.Release();
    EXPECT_EQ(g_player.nAlive, 0);
  }
  // Runs the play mode, returns its result and keeps its output.
  int Play(unsigned long ulRealTime) {
    CaptureStdout();
    const int nResult = RunPlay(m_loader, "a file.kst", ulRealTime);
    m_strOutput = GetCapturedStdout();
    return nResult;
  }
  int Length() {
    CaptureStdout();
    const int nResult = RunGetLength(m_loader, "a file.kst");
    m_strOutput = GetCapturedStdout();
    return nResult;
  }

  VoxplayLoader m_loader;
  std::string m_strOutput;
};

TEST_F(RunModes, NewHolder_HoldsNothing) {
  const VoxplayLoader loader;
  EXPECT_EQ(loader.m_pIVoxplay, nullptr);
  EXPECT_EQ(loader.m_pfnCreate, nullptr);
}

TEST_F(RunModes, NormalMode_OpensPlaysPollsAndStops) {
  g_player.positionsMs = {0, 11, 1999, 2000};
  EXPECT_EQ(Play(0), 0);
  EXPECT_EQ(m_strOutput, "Playing...Finished\n");
  EXPECT_EQ(m_loader.m_nResult, 2000);
  EXPECT_EQ(m_loader.m_pfnCreate, &CreateVoxplay);
  EXPECT_THAT(g_player.calls,
              ElementsAre("Open a file.kst", "Play", "GetDurationMs", "GetPositionMs",
                          "GetPositionMs", "GetPositionMs", "GetPositionMs", "Stop"));
}

TEST_F(RunModes, NormalMode_WithoutDuration_EndsAtTheFirstPoll) {
  g_player.nDurationMs = 0;
  g_player.positionsMs = {0};
  EXPECT_EQ(Play(0), 0);
  EXPECT_EQ(m_strOutput, "Playing...Finished\n");
  EXPECT_THAT(g_player.calls,
              ElementsAre("Open a file.kst", "Play", "GetDurationMs", "GetPositionMs", "Stop"));
}

TEST_F(RunModes, OnlyOpenResultThree_IsNotSupported) {
  const std::vector<std::pair<int, int>> results = {{1, -2}, {2, -2}, {3, -1}, {4, -2}, {-1, -2}};
  for (const auto& [nOpen, nExpected] : results) {
    g_player.nOpen = nOpen;
    EXPECT_EQ(Play(0), nExpected) << nOpen;
    EXPECT_EQ(m_strOutput, "") << nOpen;
    EXPECT_EQ(Length(), nExpected) << nOpen;
    EXPECT_EQ(m_strOutput, "") << nOpen;
    EXPECT_EQ(m_loader.m_pIVoxplay, nullptr);
  }
}

TEST_F(RunModes, FailedOpen_ReleasesThePlayerExactlyOnce) {
  g_player.nOpen = 2;
  Play(0);
  m_loader.Release();
  EXPECT_THAT(g_player.calls, ElementsAre("Open a file.kst", "Release"));
}

TEST_F(RunModes, FailedOpenOfALengthQuery_ReleasesThePlayerExactlyOnce) {
  g_player.nOpen = 3;
  Length();
  m_loader.Release();
  EXPECT_THAT(g_player.calls, ElementsAre("Open a file.kst", "Release"));
}

TEST_F(RunModes, RefusedPlay_IsMinusFourAndReleasesThePlayerExactlyOnce) {
  g_player.bPlay = false;
  EXPECT_EQ(Play(0), -4);
  EXPECT_EQ(m_strOutput, "");
  m_loader.Release();
  EXPECT_THAT(g_player.calls, ElementsAre("Open a file.kst", "Play", "Release"));
}

TEST_F(RunModes, ReleaseThatThrows_IsNotTriedAgain) {
  g_player.nOpen = 2;
  g_player.bReleaseThrows = true;
  EXPECT_THROW(Play(0), std::runtime_error);
  GetCapturedStdout();
  EXPECT_EQ(m_loader.m_pIVoxplay, nullptr);
  m_loader.Release();
  EXPECT_THAT(g_player.calls, ElementsAre("Open a file.kst", "Release"));
}

TEST_F(RunModes, PlayThatThrows_LeavesThePlayerToTheHolder) {
  g_player.bPlayThrows = true;
  EXPECT_THROW(Play(0), std::runtime_error);
  GetCapturedStdout();
  ASSERT_NE(m_loader.m_pIVoxplay, nullptr);
  EXPECT_EQ(g_player.nAlive, 1);
}

TEST_F(RunModes, RealTimeMode_IgnoresWhatThePlayerReports) {
  for (const int nReported : {0, 1, -7}) {
    g_player = {};
    g_player.nPlayRealTime = nReported;
    EXPECT_EQ(Play(1), 0);
    EXPECT_EQ(m_strOutput, "Playing...Finished\n");
    EXPECT_THAT(g_player.calls, ElementsAre("PlayRealTime a file.kst"));
    m_loader.Release();
    m_loader.m_pIVoxplay = nullptr;
  }
}

TEST_F(RunModes, EveryNonZeroFlag_IsRealTimeMode) {
  for (const unsigned long ulFlag : {1UL, 3UL, 7UL, 4294967296UL, ~0UL}) {
    g_player = {};
    EXPECT_EQ(Play(ulFlag), 0);
    EXPECT_THAT(g_player.calls, ElementsAre("PlayRealTime a file.kst")) << ulFlag;
    m_loader.Release();
    m_loader.m_pIVoxplay = nullptr;
  }
}

TEST_F(RunModes, FailedCreation_IsResultZeroWithoutOutput) {
  g_player.nCreate = 1;
  EXPECT_EQ(Play(0), 0);
  EXPECT_EQ(m_strOutput, "");
  EXPECT_EQ(Play(1), 0);
  EXPECT_EQ(m_strOutput, "");
  EXPECT_EQ(Length(), 0);
  EXPECT_EQ(m_strOutput, "");
  EXPECT_EQ(g_player.calls, Calls{});
}

TEST_F(RunModes, Length_IsThePlayersAndThePlayerStaysAlive) {
  g_player.nDuration = 17;
  EXPECT_EQ(Length(), 17);
  EXPECT_EQ(m_strOutput, "");
  EXPECT_EQ(m_loader.m_nResult, 17);
  EXPECT_EQ(g_player.nAlive, 1);
  EXPECT_THAT(g_player.calls, ElementsAre("Open a file.kst", "GetDuration"));
}

TEST_F(RunModes, Release_ClearsTheFactoryAndLeavesThePlayerPointer) {
  Length();
  I_Voxplay* const pIVoxplay = m_loader.m_pIVoxplay;
  m_loader.Release();
  EXPECT_EQ(g_player.nAlive, 0);
  EXPECT_EQ(m_loader.m_pfnCreate, nullptr);
  EXPECT_EQ(m_loader.m_pIVoxplay, pIVoxplay);
  m_loader.m_pIVoxplay = nullptr;
}

TEST_F(RunModes, ReleaseOfAnEmptyHolder_DoesNothing) {
  VoxplayLoader loader;
  loader.m_pfnCreate = CreateVoxplay;
  loader.Release();
  EXPECT_EQ(loader.m_pfnCreate, nullptr);
}

TEST_F(RunModes, PollProgress_IsDoneWhenThePositionHasReachedTheDuration) {
  Length();
  m_loader.m_nResult = 100;
  g_player.positionsMs = {0, 99, 100, 101, -1};
  EXPECT_FALSE(PollProgress(m_loader));
  EXPECT_FALSE(PollProgress(m_loader));
  EXPECT_TRUE(PollProgress(m_loader));
  EXPECT_TRUE(PollProgress(m_loader));
  EXPECT_FALSE(PollProgress(m_loader));
  m_loader.m_nResult = -2;
  EXPECT_TRUE(PollProgress(m_loader));
}

TEST_F(RunModes, PollProgress_NotesWholeTenthsOfASecondAndPrintsNothing) {
  Length();
  m_loader.m_nResult = 10000;
  g_player.positionsMs = {300, 301, 399, 400, 450};
  const std::vector<int> noted = {300, 300, 300, 400, 400};
  CaptureStdout();
  for (const int nNoted : noted) {
    EXPECT_FALSE(PollProgress(m_loader));
    EXPECT_EQ(GetLastReportedMs(), nNoted);
  }
  EXPECT_EQ(GetCapturedStdout(), "");
}

}  // namespace
