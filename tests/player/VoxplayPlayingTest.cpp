// SPDX-License-Identifier: Apache-2.0
//
// The player from play to release, and its position while it plays.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "VoxplayFixture.h"

namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::StartsWith;

int OtherOnState(int /*nState*/, unsigned int /*dwUserData*/) { return 0; }

// --- States

TEST_F(Voxplay, Play_StartsTheGraphAndTellsTheCallback) {
  OpenWithCallback();
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_THAT(m_toolbox.Log(), ElementsAre("AUGraphStart(graph1)"));
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U)));
}

TEST_F(Voxplay, Play_WhilePlaying_IsTrueAndDoesNothing) {
  OpenWithCallback();
  m_pPlayer->Play();
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 1);
  EXPECT_EQ(g_notified.size(), 1U);
}

TEST_F(Voxplay, Play_IsRefused_WhenMemoryOrThreadsAreMissing) {
  OpenWithCallback();
  m_toolbox.Fail("AUGraphStart", kAudio_MemFullError);
  EXPECT_FALSE(m_pPlayer->Play());
  EXPECT_TRUE(g_notified.empty());
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U)));
}

TEST_F(Voxplay, PauseAndPlay_ResumeWithoutSchedulingAgain) {
  OpenWithCallback();
  m_pPlayer->Play();
  EXPECT_TRUE(m_pPlayer->Pause());
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_THAT(m_toolbox.Log(),
              ElementsAre("AUGraphStart(graph1)", "AUGraphStop(graph1)", "AUGraphStart(graph1)"));
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U), std::pair(1, 77U), std::pair(2, 77U)));
}

TEST_F(Voxplay, Stop_TellsTheCallbackAndThenReadsTheLastPacket) {
  m_toolbox.qwPacketCount = 16016;
  OpenWithCallback();
  m_pPlayer->Play();
  m_toolbox.ClearLog();
  g_notified.clear();
  EXPECT_TRUE(m_pPlayer->SetNotify(
      [](int nState, unsigned int dwUserData) {
        g_notified.emplace_back(nState, dwUserData);
        EXPECT_EQ(C_FakeToolbox::Get().Count("AUGraphStop"), 1);
        EXPECT_EQ(C_FakeToolbox::Get().Count("AudioFileReadPacketData"), 0);
        return 0;
      },
      5));
  EXPECT_TRUE(m_pPlayer->Stop());
  EXPECT_THAT(m_toolbox.Log(), ElementsAre("AUGraphIsRunning(graph1)", "AUGraphStop(graph1)",
                                           "AudioFileReadPacketData(file, 0, packet 16015, 1)"));
  EXPECT_THAT(g_notified, ElementsAre(std::pair(0, 5U)));
}

TEST_F(Voxplay, Stop_IgnoresThatTheLastPacketCannotBeRead) {
  OpenWithCallback();
  m_toolbox.Fail("AudioFileReadPacketData", -39);
  EXPECT_TRUE(m_pPlayer->Stop());
}

TEST_F(Voxplay, StopAndPlay_StartWithoutSchedulingAgain) {
  OpenWithCallback();
  m_pPlayer->Play();
  m_pPlayer->Stop();
  m_pPlayer->Play();
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 2);
  EXPECT_EQ(m_toolbox.Count("AudioUnitSetProperty"), 0);
}

TEST_F(Voxplay, SetNotify_WithNull_IsRefusedAndTheOldCallbackStays) {
  OpenWithCallback();
  EXPECT_FALSE(m_pPlayer->SetNotify(nullptr, 1));
  EXPECT_THAT(m_toolbox.Log(), IsEmpty());
  m_pPlayer->Play();
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U)));
}

TEST_F(Voxplay, SetNotify_OfAGraphThatDoesNotRun_CountsAsStopped) {
  OpenWithCallback();
  m_pPlayer->Play();
  EXPECT_TRUE(m_pPlayer->SetNotify(OtherOnState, 1));
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 2);
}

TEST_F(Voxplay, SetNotify_OfARunningGraph_LeavesTheState) {
  OpenWithCallback();
  m_pPlayer->Play();
  m_toolbox.bRunning = 1;
  EXPECT_TRUE(m_pPlayer->SetNotify(OtherOnState, 1));
  EXPECT_TRUE(m_pPlayer->Play());
  EXPECT_EQ(m_toolbox.Count("AUGraphStart"), 1);
}

TEST_F(Voxplay, Release_ClosesInThisOrderAndTellsNobody) {
  OpenWithCallback();
  m_pPlayer->Play();
  m_toolbox.ClearLog();
  g_notified.clear();
  Release();
  EXPECT_THAT(m_toolbox.Log(), ElementsAre("AUGraphStop(graph1)",
                                           "AudioFileReadPacketData(file, 0, packet 31999, 1)",
                                           "AUGraphStop(graph1)", "AUGraphUninitialize(graph1)",
                                           "AudioFileClose(file)", "AUGraphClose(graph1)"));
  EXPECT_THAT(g_notified, IsEmpty());
}

TEST_F(Voxplay, FailingPlatformCalls_PassToTheCaller) {
  OpenWithCallback();
  for (const OSStatus nStatus : {1, -1}) {
    m_toolbox.Fail("AUGraphStart", nStatus);
    EXPECT_EQ(Thrown([&] { m_pPlayer->Play(); }), "AUGraphStart");
    m_toolbox.Fail("AUGraphStop", nStatus);
    EXPECT_EQ(Thrown([&] { m_pPlayer->Pause(); }), "AUGraphStop");
    m_toolbox.Fail("AUGraphStop", nStatus);
    EXPECT_EQ(Thrown([&] { m_pPlayer->Stop(); }), "AUGraphStop");
    m_toolbox.Fail("AUGraphIsRunning", nStatus);
    EXPECT_EQ(Thrown([&] { m_pPlayer->SetNotify(OtherOnState, 1); }), "AUGraphIsRunning");
  }
  EXPECT_THAT(g_notified, IsEmpty());
  m_pPlayer->Play();
  EXPECT_THAT(g_notified, ElementsAre(std::pair(2, 77U))) << "the old callback";
}

TEST_F(Voxplay, EveryFailingStepOfRelease_ThrowsItsOwnName) {
  OpenWithCallback();
  for (const auto& [pszCall, nOccurrence] :
       std::vector<std::pair<const char*, int>>{{"AUGraphStop", 1},
                                                {"AUGraphStop", 2},
                                                {"AUGraphUninitialize", 1},
                                                {"AudioFileClose", 1},
                                                {"AUGraphClose", 1}}) {
    m_toolbox.ClearLog();
    m_toolbox.Fail(pszCall, -1, nOccurrence);
    EXPECT_EQ(Thrown([&] { m_pPlayer->Release(); }), pszCall);
    EXPECT_THAT(m_toolbox.Log().back(), StartsWith(pszCall));
  }
}

// --- Position

TEST_F(Voxplay, StartIsCaptured_OnlyFromAValidTimeOfZeroOrMore) {
  EXPECT_EQ(Open("x.wav"), 0);
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000) << "flags 0: not valid";
  m_toolbox.startStamp.mFlags = kAudioTimeStampSampleTimeValid;
  m_toolbox.startStamp.mSampleTime = -1.0;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000) << "not started yet";
  m_toolbox.startStamp.mFlags = kAudioTimeStampHostTimeValid;
  m_toolbox.startStamp.mSampleTime = 22050.0;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000) << "a host time is no sample time";
  m_toolbox.startStamp.mSampleTime = std::nan("");
  m_toolbox.startStamp.mFlags = kAudioTimeStampSampleTimeValid;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000);
  m_toolbox.startStamp.mSampleTime = 22050.0;
  m_toolbox.Fail("AudioUnitGetProperty", -1);
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000) << "could not be read";
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 500);
}

TEST_F(Voxplay, Start_IsCapturedOnce) {
  EXPECT_EQ(Open("x.wav"), 0);
  m_toolbox.startStamp.mFlags = kAudioTimeStampSampleTimeValid;
  m_toolbox.startStamp.mSampleTime = 0.0;
  m_toolbox.ClearLog();
  m_toolbox.Notify(4, 0.0);
  m_toolbox.startStamp.mSampleTime = 22050.0;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_EQ(PositionMs(), 1000);
  EXPECT_THAT(m_toolbox.Log(),
              ElementsAre("AudioUnitGetProperty(fileUnit, 3301, scope 0, element 0, 64)"));
}

TEST_F(Voxplay, OnlyFinishedCycles_MoveThePosition) {
  EXPECT_EQ(Open("x.wav"), 0);
  EXPECT_EQ(m_toolbox.Notify(4, 44100.0), noErr);
  EXPECT_EQ(PositionMs(), 0);
  EXPECT_EQ(m_toolbox.Notify(8, 44100.0), noErr);
  EXPECT_EQ(PositionMs(), 1000);
  m_toolbox.Notify(16, 88200.0);
  EXPECT_EQ(PositionMs(), 1000);
  m_toolbox.Notify(8 | 16, 88200.0);
  EXPECT_EQ(PositionMs(), 2000);
}

TEST_F(Voxplay, Position_IsTruncated) {
  EXPECT_EQ(Open("x.wav"), 0);
  const std::vector<std::pair<double, std::pair<int, int>>> positions = {
      {44100.0, {1, 1000}}, {66150.0, {1, 1500}}, {44099.0, {0, 999}},  {44.9, {0, 0}},
      {44.1, {0, 0}},       {45.0, {0, 1}},       {88199.9, {1, 1999}}, {88200.0, {2, 2000}}};
  for (const auto& [dTime, expected] : positions) {
    m_toolbox.Notify(8, dTime);
    EXPECT_EQ(std::pair(Position(), PositionMs()), expected) << dTime;
  }
}

TEST_F(Voxplay, PositionBeforeTheStartOrWithoutATime_IsZero) {
  EXPECT_EQ(Open("x.wav"), 0);
  m_toolbox.startStamp.mFlags = kAudioTimeStampSampleTimeValid;
  m_toolbox.startStamp.mSampleTime = 50000.0;
  for (const double dTime :
       {100.0, 49999.0, -1.0, -1e300, std::nan(""), -std::numeric_limits<double>::infinity()}) {
    m_toolbox.Notify(8, dTime);
    EXPECT_EQ(Position(), 0) << dTime;
    EXPECT_EQ(PositionMs(), 0) << dTime;
  }
}

TEST_F(Voxplay, PositionBeyondEveryInteger_IsTheLargest) {
  EXPECT_EQ(Open("x.wav"), 0);
  for (const double dTime : {1e18, 1e300, std::numeric_limits<double>::infinity()}) {
    m_toolbox.Notify(8, dTime);
    EXPECT_EQ(Position(), 2147483647) << dTime;
    EXPECT_EQ(PositionMs(), 2147483647) << dTime;
  }
}

TEST_F(Voxplay, Duration_IsTruncated) {
  const std::vector<std::pair<UInt64, std::pair<int, int>>> durations = {
      {88200, {5, 5512}}, {16016, {1, 1000}}, {32000, {2, 2000}}, {0, {0, 0}}, {15999, {0, 999}}};
  for (const auto& [qwPackets, expected] : durations) {
    m_toolbox.qwPacketCount = qwPackets;
    EXPECT_EQ(Open("x.wav"), 0);
    int nSeconds = -1;
    int nMilliseconds = -1;
    EXPECT_TRUE(m_pPlayer->GetDuration(&nSeconds));
    EXPECT_TRUE(m_pPlayer->GetDurationMs(&nMilliseconds));
    EXPECT_EQ(std::pair(nSeconds, nMilliseconds), expected) << qwPackets;
    m_toolbox.Reset();
  }
}

TEST_F(Voxplay, DurationBeyondEveryInteger_IsTheLargest) {
  m_toolbox.qwPacketCount = ~UInt64{0};
  EXPECT_EQ(Open("x.wav"), 0);
  int nValue = 0;
  m_pPlayer->GetDuration(&nValue);
  EXPECT_EQ(nValue, 2147483647);
  m_pPlayer->GetDurationMs(&nValue);
  EXPECT_EQ(nValue, 2147483647);
}

TEST_F(Voxplay, Progress_IsPositionByDuration) {
  EXPECT_EQ(Open("x.wav"), 0);
  float fProgress = -1;
  m_toolbox.Notify(8, 44100.0);
  EXPECT_TRUE(m_pPlayer->GetProgress(&fProgress));
  EXPECT_EQ(fProgress, 0.5F);
}

TEST_F(Voxplay, ProgressOfAnEmptySound_IsNoCrash) {
  m_toolbox.qwPacketCount = 0;
  EXPECT_EQ(Open("x.wav"), 0);
  EXPECT_EQ(m_strOutput, "file duration: 0.000000 secs\n");
  float fProgress = 0;
  EXPECT_TRUE(m_pPlayer->GetProgress(&fProgress));
  EXPECT_TRUE(std::isnan(fProgress));
  m_toolbox.Notify(8, 44100.0);
  EXPECT_TRUE(m_pPlayer->GetProgress(&fProgress));
  EXPECT_TRUE(std::isinf(fProgress));
}

}  // namespace
