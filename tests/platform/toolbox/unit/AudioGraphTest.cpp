// SPDX-License-Identifier: Apache-2.0
//
// The processing graph over a device that the test drives.
#include <algorithm>
#include <tuple>

#include "FakeDevice.h"
#include "PlayerGraph.h"
#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

constexpr AudioComponentDescription kOutput = {
    kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput, kAudioUnitManufacturer_Apple, 0, 0};
constexpr AudioComponentDescription kPlayer = {kAudioUnitType_Generator,
                                               kAudioUnitSubType_AudioFilePlayer,
                                               kAudioUnitManufacturer_Apple, 0, 0};

struct S_Notice {
  AudioUnitRenderActionFlags dwFlags;
  double dSampleTime;
  AudioTimeStampFlags dwStampFlags;
  UInt32 dwFrames;
  bool operator==(const S_Notice&) const = default;
};

OSStatus Note(void* pNotices, AudioUnitRenderActionFlags* pdwFlags, const AudioTimeStamp* pStamp,
              UInt32, UInt32 dwFrames, AudioBufferList*) {
  static_cast<std::vector<S_Notice>*>(pNotices)->push_back(
      {*pdwFlags, pStamp->mSampleTime, pStamp->mFlags, dwFrames});
  return noErr;
}

class AudioGraphTest : public testing::Test {
 protected:
  AudioFileID File(std::size_t nFrames, int nRate = 44100, int nChannels = 2) {
    m_samples =
        SweepWithNoise(nFrames, static_cast<unsigned>(nRate), static_cast<unsigned>(nChannels));
    WriteSoundFile(m_folder.Path("a.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, nRate, nChannels,
                   m_samples);
    return OpenSoundFile(m_folder.Path("a.wav"));
  }
  [[nodiscard]] std::vector<float> Floats() const {
    std::vector<float> result;
    for (const std::int16_t nSample : m_samples) {
      result.push_back(static_cast<float>(nSample) / 32768.0F);
    }
    return result;
  }
  C_FakeDevices m_devices;
  C_TempFolder m_folder;
  std::vector<std::int16_t> m_samples;
};

TEST_F(AudioGraphTest, AGraphThatIsNeverStarted_OpensNoDevice) {
  {
    const C_PlayerGraph graph(File(1000));
    graph.Schedule(1000);
    EXPECT_EQ(noErr, AUGraphStop(graph.Graph()));
  }
  EXPECT_EQ(0, m_devices.Log().nOpened);
}

TEST_F(AudioGraphTest, TheFirstStart_OpensOneDevice_ForStereoFloatAtTheGraphsRate) {
  {
    const C_PlayerGraph graph(File(1000));
    graph.Start();
    EXPECT_EQ(1, m_devices.Log().nOpened);
    EXPECT_EQ(44100U, m_devices.Log().format.dwRate);
    EXPECT_EQ(2U, m_devices.Log().format.dwChannels);
    EXPECT_TRUE(m_devices.Log().format.bFloat);
    EXPECT_FALSE(m_devices.Log().format.bLongPeriods) << "positions would move in jumps";
    graph.Stop();
    graph.Start();
    EXPECT_EQ(1, m_devices.Log().nOpened);
    EXPECT_EQ(2, m_devices.Log().nStarted);
  }
  EXPECT_EQ(2, m_devices.Log().nStopped);
  EXPECT_EQ(1, m_devices.Log().nClosed);
}

TEST_F(AudioGraphTest, WhatTheDeviceGets_IsTheFileInterleaved_ThenSilence) {
  const C_PlayerGraph graph(File(3000));
  graph.Schedule(3000);
  graph.Start();
  const auto heard = m_devices.Ask<float>(4000);
  const auto want = Floats();
  EXPECT_TRUE(std::equal(want.begin(), want.end(), heard.begin()));
  EXPECT_TRUE(std::all_of(heard.begin() + 6000, heard.end(), [](float f) { return f == 0.0F; }));
}

TEST_F(AudioGraphTest, ALargeRequest_IsRenderedInCyclesOf512_EachNotedBeforeAndAfter) {
  const C_PlayerGraph graph(File(3000));
  std::vector<S_Notice> notices;
  EXPECT_EQ(noErr, AUGraphAddRenderNotify(graph.Graph(), &Note, &notices));
  graph.Start();
  m_devices.Ask<float>(1200);
  m_devices.Ask<float>(10);
  const std::vector<S_Notice> want = {{4, 0, 1, 512},   {8, 0, 1, 512},    {4, 512, 1, 512},
                                      {8, 512, 1, 512}, {4, 1024, 1, 176}, {8, 1024, 1, 176},
                                      {4, 1200, 1, 10}, {8, 1200, 1, 10}};
  EXPECT_TRUE(notices == want);
  EXPECT_EQ(noErr, AUGraphRemoveRenderNotify(graph.Graph(), &Note, &notices));
  m_devices.Ask<float>(10);
  EXPECT_EQ(want.size(), notices.size());
  EXPECT_EQ(kAudio_ParamError, AUGraphRemoveRenderNotify(graph.Graph(), &Note, &notices));
}

TEST_F(AudioGraphTest, ANotification_MayReadTheStartTime_WhichIsKnownAfterTheFirstCycle) {
  struct S_Seen {
    const C_PlayerGraph* pGraph;
    std::vector<double> starts;
  };
  const auto read = [](void* pSeen, AudioUnitRenderActionFlags*, const AudioTimeStamp*, UInt32,
                       UInt32, AudioBufferList*) -> OSStatus {
    auto& seen = *static_cast<S_Seen*>(pSeen);
    AudioTimeStamp start{};
    UInt32 cbStart = sizeof start;
    EXPECT_EQ(noErr,
              seen.pGraph->Player().GetProperty(kAudioUnitProperty_ScheduleStartTimeStamp,
                                                kAudioUnitScope_Global, 0, &start, &cbStart));
    seen.starts.push_back(start.mSampleTime);
    return noErr;
  };
  const C_PlayerGraph graph(File(3000));
  graph.Schedule(3000);
  S_Seen seen{&graph, {}};
  EXPECT_EQ(noErr, AUGraphAddRenderNotify(graph.Graph(), read, &seen));
  graph.Start();
  m_devices.Ask<float>(600);
  EXPECT_EQ((std::vector<double>{-1.0, 0.0, 0.0, 0.0}), seen.starts);
}

TEST_F(AudioGraphTest, StartingAgain_GoesOnWhereRenderingStopped) {
  const C_PlayerGraph graph(File(3000));
  graph.Schedule(3000);
  graph.Start();
  auto heard = m_devices.Ask<float>(1000);
  graph.Stop();
  graph.Start();
  const auto rest = m_devices.Ask<float>(2000);
  heard.insert(heard.end(), rest.begin(), rest.end());
  EXPECT_EQ(Floats(), heard);
  EXPECT_EQ(2536.0, graph.Position());
}

TEST_F(AudioGraphTest, IsRunning_FollowsStartAndStop) {
  const C_PlayerGraph graph(File(10));
  Boolean bRunning = 9;
  const auto isRunning = [&] {
    EXPECT_EQ(noErr, AUGraphIsRunning(graph.Graph(), &bRunning));
    return bRunning == 1;
  };
  EXPECT_FALSE(isRunning());
  graph.Start();
  EXPECT_TRUE(isRunning());
  graph.Start();
  EXPECT_EQ(1, m_devices.Log().nStarted);
  graph.Stop();
  EXPECT_FALSE(isRunning());
  graph.Stop();
  EXPECT_EQ(1, m_devices.Log().nStopped);
}

TEST_F(AudioGraphTest, AGraphThatWasOnlyOpened_StopsUninitialisesAndCloses) {
  AUGraph graph = nullptr;
  AUNode node = 0;
  ASSERT_EQ(noErr, NewAUGraph(&graph));
  EXPECT_EQ(noErr, AUGraphAddNode(graph, &kOutput, &node));
  EXPECT_EQ(noErr, AUGraphOpen(graph));
  EXPECT_EQ(kAudioUnitErr_Uninitialized, AUGraphStart(graph));
  EXPECT_EQ(noErr, AUGraphStop(graph));
  EXPECT_EQ(noErr, AUGraphUninitialize(graph));
  EXPECT_EQ(noErr, AudioFileClose(nullptr));
  EXPECT_EQ(noErr, AUGraphClose(graph));
  EXPECT_EQ(noErr, DisposeAUGraph(graph));
}

TEST_F(AudioGraphTest, AnEmptyGraph_StopsUninitialisesAndCloses) {
  AUGraph graph = nullptr;
  ASSERT_EQ(noErr, NewAUGraph(&graph));
  EXPECT_EQ(noErr, AUGraphStop(graph));
  EXPECT_EQ(noErr, AUGraphUninitialize(graph));
  EXPECT_EQ(noErr, AUGraphClose(graph));
  EXPECT_EQ(kAUGraphErr_CannotDoInCurrentContext, AUGraphInitialize(graph));
  EXPECT_EQ(noErr, AUGraphOpen(graph));
  EXPECT_EQ(kAUGraphErr_OutputNodeErr, AUGraphInitialize(graph));
  EXPECT_EQ(noErr, DisposeAUGraph(graph));
}

TEST_F(AudioGraphTest, Nodes_GetNumbersFromOne_AndUnitsWhenTheGraphOpens) {
  AUGraph graph = nullptr;
  ASSERT_EQ(noErr, NewAUGraph(&graph));
  AUNode output = 0;
  AUNode player = 0;
  EXPECT_EQ(noErr, AUGraphAddNode(graph, &kOutput, &output));
  EXPECT_EQ(1, output);
  AudioUnit unit = nullptr;
  EXPECT_EQ(noErr, AUGraphNodeInfo(graph, output, nullptr, &unit));
  EXPECT_EQ(nullptr, unit);
  EXPECT_EQ(noErr, AUGraphOpen(graph));
  EXPECT_EQ(noErr, AUGraphAddNode(graph, &kPlayer, &player));
  EXPECT_EQ(2, player);
  AudioComponentDescription description{};
  EXPECT_EQ(noErr, AUGraphNodeInfo(graph, player, &description, &unit));
  EXPECT_NE(nullptr, unit);
  EXPECT_EQ(OSType{kAudioUnitSubType_AudioFilePlayer}, description.componentSubType);
  EXPECT_EQ(kAUGraphErr_NodeNotFound, AUGraphNodeInfo(graph, 3, nullptr, &unit));
  EXPECT_EQ(kAUGraphErr_OutputNodeErr, AUGraphAddNode(graph, &kOutput, &output));
  const AudioComponentDescription unknown = {kAudioUnitType_Output, 0x12345678, 0, 0, 0};
  EXPECT_EQ(kAUGraphErr_InvalidAudioUnit, AUGraphAddNode(graph, &unknown, &output));
  EXPECT_EQ(noErr, AUGraphClose(graph));
  EXPECT_EQ(noErr, AUGraphNodeInfo(graph, player, nullptr, &unit));
  EXPECT_EQ(nullptr, unit);
  EXPECT_EQ(noErr, DisposeAUGraph(graph));
}

TEST_F(AudioGraphTest, OnlyAPlayersOutputIntoTheOutputsInput_CanBeConnected_AndOnlyOnce) {
  AUGraph graph = nullptr;
  ASSERT_EQ(noErr, NewAUGraph(&graph));
  AUNode output = 0;
  AUNode player = 0;
  EXPECT_EQ(noErr, AUGraphAddNode(graph, &kOutput, &output));
  EXPECT_EQ(noErr, AUGraphAddNode(graph, &kPlayer, &player));
  EXPECT_EQ(kAUGraphErr_NodeNotFound, AUGraphConnectNodeInput(graph, 9, 0, output, 0));
  EXPECT_EQ(kAUGraphErr_NodeNotFound, AUGraphConnectNodeInput(graph, player, 0, 9, 0));
  EXPECT_EQ(kAUGraphErr_InvalidConnection, AUGraphConnectNodeInput(graph, output, 0, player, 0));
  EXPECT_EQ(kAUGraphErr_InvalidConnection, AUGraphConnectNodeInput(graph, player, 1, output, 0));
  EXPECT_EQ(kAUGraphErr_InvalidConnection, AUGraphConnectNodeInput(graph, player, 0, output, 1));
  EXPECT_EQ(noErr, AUGraphConnectNodeInput(graph, player, 0, output, 0));
  EXPECT_EQ(kAUGraphErr_InvalidConnection, AUGraphConnectNodeInput(graph, player, 0, output, 0));
  EXPECT_EQ(noErr, DisposeAUGraph(graph));
}

TEST_F(AudioGraphTest, AnOutputWithoutSource_PlaysSilence) {
  AUGraph graph = nullptr;
  AUNode node = 0;
  ASSERT_EQ(noErr, NewAUGraph(&graph));
  EXPECT_EQ(noErr, AUGraphAddNode(graph, &kOutput, &node));
  EXPECT_EQ(noErr, AUGraphOpen(graph));
  EXPECT_EQ(noErr, AUGraphInitialize(graph));
  EXPECT_EQ(noErr, AUGraphStart(graph));
  EXPECT_EQ(std::vector<float>(1400, 0.0F), m_devices.Ask<float>(700));
  EXPECT_EQ(noErr, DisposeAUGraph(graph));
  EXPECT_EQ(1, m_devices.Log().nStopped);
  EXPECT_EQ(1, m_devices.Log().nClosed);
}

TEST_F(AudioGraphTest, ClosingARunningGraph_StopsIt) {
  {
    const C_PlayerGraph graph(File(10));
    graph.Start();
    EXPECT_EQ(noErr, AUGraphClose(graph.Graph()));
    EXPECT_EQ(1, m_devices.Log().nStopped);
    EXPECT_EQ(1, m_devices.Log().nClosed);
  }
}

TEST_F(AudioGraphTest, AfterUninitialising_TheGraphInitialisesAndStartsAnew) {
  const C_PlayerGraph graph(File(100));
  graph.Start();
  EXPECT_EQ(noErr, AUGraphUninitialize(graph.Graph()));
  EXPECT_EQ(1, m_devices.Log().nClosed);
  EXPECT_EQ(kAudioUnitErr_Uninitialized, AUGraphStart(graph.Graph()));
  EXPECT_EQ(noErr, AUGraphInitialize(graph.Graph()));
  graph.Schedule(100);
  graph.Start();
  EXPECT_EQ(2, m_devices.Log().nOpened);
  EXPECT_EQ(Floats(), m_devices.Ask<float>(100));
}

TEST_F(AudioGraphTest, NullAndStaleHandles_AreRefused) {
  AUGraph graph = nullptr;
  ASSERT_EQ(noErr, NewAUGraph(&graph));
  AUNode node = 0;
  Boolean bRunning = 0;
  EXPECT_EQ(kAudio_ParamError, NewAUGraph(nullptr));
  EXPECT_EQ(kAudio_ParamError, AUGraphAddNode(graph, nullptr, &node));
  EXPECT_EQ(kAudio_ParamError, AUGraphAddNode(graph, &kOutput, nullptr));
  EXPECT_EQ(kAudio_ParamError, AUGraphAddRenderNotify(graph, nullptr, nullptr));
  EXPECT_EQ(kAudio_ParamError, AUGraphIsRunning(graph, nullptr));
  EXPECT_EQ(noErr, DisposeAUGraph(graph));
  for (const AUGraph bad : {graph, AUGraph{nullptr}}) {
    EXPECT_EQ(kAudio_ParamError, DisposeAUGraph(bad));
    EXPECT_EQ(kAudio_ParamError, AUGraphOpen(bad));
    EXPECT_EQ(kAudio_ParamError, AUGraphInitialize(bad));
    EXPECT_EQ(kAudio_ParamError, AUGraphStart(bad));
    EXPECT_EQ(kAudio_ParamError, AUGraphStop(bad));
    EXPECT_EQ(kAudio_ParamError, AUGraphIsRunning(bad, &bRunning));
    EXPECT_EQ(kAudio_ParamError, AUGraphUninitialize(bad));
    EXPECT_EQ(kAudio_ParamError, AUGraphClose(bad));
    EXPECT_EQ(kAudio_ParamError, AUGraphNodeInfo(bad, 1, nullptr, nullptr));
  }
}

}  // namespace
