// SPDX-License-Identifier: Apache-2.0
//
// The processing graph, playing on a device that the test drives.
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
    EXPECT_EQ(AUGraphStop(graph.Graph()), noErr);
  }
  EXPECT_EQ(m_devices.Log().nOpened, 0);
}

TEST_F(AudioGraphTest, TheFirstStart_OpensOneDevice_ForStereoFloatAtTheGraphsRate) {
  {
    const C_PlayerGraph graph(File(1000));
    graph.Start();
    EXPECT_EQ(m_devices.Log().nOpened, 1);
    EXPECT_EQ(m_devices.Log().format.dwRate, 44100U);
    EXPECT_EQ(m_devices.Log().format.dwChannels, 2U);
    EXPECT_TRUE(m_devices.Log().format.bFloat);
    graph.Stop();
    graph.Start();
    EXPECT_EQ(m_devices.Log().nOpened, 1);
    EXPECT_EQ(m_devices.Log().nStarted, 2);
  }
  EXPECT_EQ(m_devices.Log().nStopped, 2);
  EXPECT_EQ(m_devices.Log().nClosed, 1);
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
  EXPECT_EQ(AUGraphAddRenderNotify(graph.Graph(), &Note, &notices), noErr);
  graph.Start();
  m_devices.Ask<float>(1200);
  m_devices.Ask<float>(10);
  const std::vector<S_Notice> want = {{4, 0, 1, 512},   {8, 0, 1, 512},    {4, 512, 1, 512},
                                      {8, 512, 1, 512}, {4, 1024, 1, 176}, {8, 1024, 1, 176},
                                      {4, 1200, 1, 10}, {8, 1200, 1, 10}};
  EXPECT_TRUE(notices == want);
  EXPECT_EQ(AUGraphRemoveRenderNotify(graph.Graph(), &Note, &notices), noErr);
  m_devices.Ask<float>(10);
  EXPECT_EQ(notices.size(), want.size());
  EXPECT_EQ(AUGraphRemoveRenderNotify(graph.Graph(), &Note, &notices), kAudio_ParamError);
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
    EXPECT_EQ(seen.pGraph->Player().GetProperty(kAudioUnitProperty_ScheduleStartTimeStamp,
                                                kAudioUnitScope_Global, 0, &start, &cbStart),
              noErr);
    seen.starts.push_back(start.mSampleTime);
    return noErr;
  };
  const C_PlayerGraph graph(File(3000));
  graph.Schedule(3000);
  S_Seen seen{&graph, {}};
  EXPECT_EQ(AUGraphAddRenderNotify(graph.Graph(), read, &seen), noErr);
  graph.Start();
  m_devices.Ask<float>(600);
  EXPECT_EQ(seen.starts, (std::vector<double>{-1.0, 0.0, 0.0, 0.0}));
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
  EXPECT_EQ(heard, Floats());
  EXPECT_EQ(graph.Position(), 2536.0);
}

TEST_F(AudioGraphTest, IsRunning_FollowsStartAndStop) {
  const C_PlayerGraph graph(File(10));
  Boolean bRunning = 9;
  const auto isRunning = [&] {
    EXPECT_EQ(AUGraphIsRunning(graph.Graph(), &bRunning), noErr);
    return bRunning == 1;
  };
  EXPECT_FALSE(isRunning());
  graph.Start();
  EXPECT_TRUE(isRunning());
  graph.Start();
  EXPECT_EQ(m_devices.Log().nStarted, 1);
  graph.Stop();
  EXPECT_FALSE(isRunning());
  graph.Stop();
  EXPECT_EQ(m_devices.Log().nStopped, 1);
}

TEST_F(AudioGraphTest, AGraphThatWasOnlyOpened_StopsUninitialisesAndCloses) {
  AUGraph graph = nullptr;
  AUNode node = 0;
  ASSERT_EQ(NewAUGraph(&graph), noErr);
  EXPECT_EQ(AUGraphAddNode(graph, &kOutput, &node), noErr);
  EXPECT_EQ(AUGraphOpen(graph), noErr);
  EXPECT_EQ(AUGraphStart(graph), kAudioUnitErr_Uninitialized);
  EXPECT_EQ(AUGraphStop(graph), noErr);
  EXPECT_EQ(AUGraphUninitialize(graph), noErr);
  EXPECT_EQ(AudioFileClose(nullptr), noErr);
  EXPECT_EQ(AUGraphClose(graph), noErr);
  EXPECT_EQ(DisposeAUGraph(graph), noErr);
}

TEST_F(AudioGraphTest, AnEmptyGraph_StopsUninitialisesAndCloses) {
  AUGraph graph = nullptr;
  ASSERT_EQ(NewAUGraph(&graph), noErr);
  EXPECT_EQ(AUGraphStop(graph), noErr);
  EXPECT_EQ(AUGraphUninitialize(graph), noErr);
  EXPECT_EQ(AUGraphClose(graph), noErr);
  EXPECT_EQ(AUGraphInitialize(graph), kAUGraphErr_CannotDoInCurrentContext);
  EXPECT_EQ(AUGraphOpen(graph), noErr);
  EXPECT_EQ(AUGraphInitialize(graph), kAUGraphErr_OutputNodeErr);
  EXPECT_EQ(DisposeAUGraph(graph), noErr);
}

TEST_F(AudioGraphTest, Nodes_GetNumbersFromOne_AndUnitsWhenTheGraphOpens) {
  AUGraph graph = nullptr;
  ASSERT_EQ(NewAUGraph(&graph), noErr);
  AUNode output = 0;
  AUNode player = 0;
  EXPECT_EQ(AUGraphAddNode(graph, &kOutput, &output), noErr);
  EXPECT_EQ(output, 1);
  AudioUnit unit = nullptr;
  EXPECT_EQ(AUGraphNodeInfo(graph, output, nullptr, &unit), noErr);
  EXPECT_EQ(unit, nullptr);
  EXPECT_EQ(AUGraphOpen(graph), noErr);
  EXPECT_EQ(AUGraphAddNode(graph, &kPlayer, &player), noErr);
  EXPECT_EQ(player, 2);
  AudioComponentDescription description{};
  EXPECT_EQ(AUGraphNodeInfo(graph, player, &description, &unit), noErr);
  EXPECT_NE(unit, nullptr);
  EXPECT_EQ(description.componentSubType, OSType{kAudioUnitSubType_AudioFilePlayer});
  EXPECT_EQ(AUGraphNodeInfo(graph, 3, nullptr, &unit), kAUGraphErr_NodeNotFound);
  EXPECT_EQ(AUGraphAddNode(graph, &kOutput, &output), kAUGraphErr_OutputNodeErr);
  const AudioComponentDescription unknown = {kAudioUnitType_Output, 0x12345678, 0, 0, 0};
  EXPECT_EQ(AUGraphAddNode(graph, &unknown, &output), kAUGraphErr_InvalidAudioUnit);
  EXPECT_EQ(AUGraphClose(graph), noErr);
  EXPECT_EQ(AUGraphNodeInfo(graph, player, nullptr, &unit), noErr);
  EXPECT_EQ(unit, nullptr);
  EXPECT_EQ(DisposeAUGraph(graph), noErr);
}

TEST_F(AudioGraphTest, OnlyAPlayersOutputIntoTheOutputsInput_CanBeConnected_AndOnlyOnce) {
  AUGraph graph = nullptr;
  ASSERT_EQ(NewAUGraph(&graph), noErr);
  AUNode output = 0;
  AUNode player = 0;
  EXPECT_EQ(AUGraphAddNode(graph, &kOutput, &output), noErr);
  EXPECT_EQ(AUGraphAddNode(graph, &kPlayer, &player), noErr);
  EXPECT_EQ(AUGraphConnectNodeInput(graph, 9, 0, output, 0), kAUGraphErr_NodeNotFound);
  EXPECT_EQ(AUGraphConnectNodeInput(graph, player, 0, 9, 0), kAUGraphErr_NodeNotFound);
  EXPECT_EQ(AUGraphConnectNodeInput(graph, output, 0, player, 0), kAUGraphErr_InvalidConnection);
  EXPECT_EQ(AUGraphConnectNodeInput(graph, player, 1, output, 0), kAUGraphErr_InvalidConnection);
  EXPECT_EQ(AUGraphConnectNodeInput(graph, player, 0, output, 1), kAUGraphErr_InvalidConnection);
  EXPECT_EQ(AUGraphConnectNodeInput(graph, player, 0, output, 0), noErr);
  EXPECT_EQ(AUGraphConnectNodeInput(graph, player, 0, output, 0), kAUGraphErr_InvalidConnection);
  EXPECT_EQ(DisposeAUGraph(graph), noErr);
}

TEST_F(AudioGraphTest, AnOutputWithoutSource_PlaysSilence) {
  AUGraph graph = nullptr;
  AUNode node = 0;
  ASSERT_EQ(NewAUGraph(&graph), noErr);
  EXPECT_EQ(AUGraphAddNode(graph, &kOutput, &node), noErr);
  EXPECT_EQ(AUGraphOpen(graph), noErr);
  EXPECT_EQ(AUGraphInitialize(graph), noErr);
  EXPECT_EQ(AUGraphStart(graph), noErr);
  EXPECT_EQ(m_devices.Ask<float>(700), std::vector<float>(1400, 0.0F));
  EXPECT_EQ(DisposeAUGraph(graph), noErr);
  EXPECT_EQ(m_devices.Log().nStopped, 1);
  EXPECT_EQ(m_devices.Log().nClosed, 1);
}

TEST_F(AudioGraphTest, ClosingARunningGraph_StopsIt) {
  {
    const C_PlayerGraph graph(File(10));
    graph.Start();
    EXPECT_EQ(AUGraphClose(graph.Graph()), noErr);
    EXPECT_EQ(m_devices.Log().nStopped, 1);
    EXPECT_EQ(m_devices.Log().nClosed, 1);
  }
}

TEST_F(AudioGraphTest, AfterUninitialising_TheGraphInitialisesAndStartsAnew) {
  const C_PlayerGraph graph(File(100));
  graph.Start();
  EXPECT_EQ(AUGraphUninitialize(graph.Graph()), noErr);
  EXPECT_EQ(m_devices.Log().nClosed, 1);
  EXPECT_EQ(AUGraphStart(graph.Graph()), kAudioUnitErr_Uninitialized);
  EXPECT_EQ(AUGraphInitialize(graph.Graph()), noErr);
  graph.Schedule(100);
  graph.Start();
  EXPECT_EQ(m_devices.Log().nOpened, 2);
  EXPECT_EQ(m_devices.Ask<float>(100), Floats());
}

TEST_F(AudioGraphTest, NullAndStaleHandles_AreRefused) {
  AUGraph graph = nullptr;
  ASSERT_EQ(NewAUGraph(&graph), noErr);
  AUNode node = 0;
  Boolean bRunning = 0;
  EXPECT_EQ(NewAUGraph(nullptr), kAudio_ParamError);
  EXPECT_EQ(AUGraphAddNode(graph, nullptr, &node), kAudio_ParamError);
  EXPECT_EQ(AUGraphAddNode(graph, &kOutput, nullptr), kAudio_ParamError);
  EXPECT_EQ(AUGraphAddRenderNotify(graph, nullptr, nullptr), kAudio_ParamError);
  EXPECT_EQ(AUGraphIsRunning(graph, nullptr), kAudio_ParamError);
  EXPECT_EQ(DisposeAUGraph(graph), noErr);
  for (const AUGraph bad : {graph, AUGraph{nullptr}}) {
    EXPECT_EQ(DisposeAUGraph(bad), kAudio_ParamError);
    EXPECT_EQ(AUGraphOpen(bad), kAudio_ParamError);
    EXPECT_EQ(AUGraphInitialize(bad), kAudio_ParamError);
    EXPECT_EQ(AUGraphStart(bad), kAudio_ParamError);
    EXPECT_EQ(AUGraphStop(bad), kAudio_ParamError);
    EXPECT_EQ(AUGraphIsRunning(bad, &bRunning), kAudio_ParamError);
    EXPECT_EQ(AUGraphUninitialize(bad), kAudio_ParamError);
    EXPECT_EQ(AUGraphClose(bad), kAudio_ParamError);
    EXPECT_EQ(AUGraphNodeInfo(bad, 1, nullptr, nullptr), kAudio_ParamError);
  }
}

TEST_F(AudioGraphTest, NotificationsThatComeBeforeTheGraphOpens_AreCalled) {
  std::vector<S_Notice> notices;
  std::vector<S_Notice> removed;
  AUGraph graph = nullptr;
  AUNode output = 0;
  Boolean bRunning = 1;
  EXPECT_EQ(NewAUGraph(&graph), noErr);
  EXPECT_EQ(AUGraphAddRenderNotify(graph, &Note, &notices), noErr);
  EXPECT_EQ(AUGraphAddRenderNotify(graph, &Note, &removed), noErr);
  EXPECT_EQ(AUGraphRemoveRenderNotify(graph, &Note, &removed), noErr);
  EXPECT_EQ(AUGraphIsRunning(graph, &bRunning), noErr);
  EXPECT_EQ(bRunning, 0);
  EXPECT_EQ(AUGraphAddNode(graph, &kOutput, &output), noErr);
  EXPECT_EQ(AUGraphOpen(graph), noErr);
  EXPECT_EQ(AUGraphInitialize(graph), noErr);
  EXPECT_EQ(AUGraphStart(graph), noErr);
  m_devices.Ask<float>(10);
  EXPECT_EQ(notices.size(), 2U);
  EXPECT_TRUE(removed.empty());
  EXPECT_EQ(AUGraphClose(graph), noErr);
  EXPECT_EQ(DisposeAUGraph(graph), noErr);
}

TEST_F(AudioGraphTest, WhatIsDoneTwice_StaysDone) {
  const C_PlayerGraph graph(File(1000));
  EXPECT_EQ(AUGraphOpen(graph.Graph()), noErr);
  EXPECT_EQ(AUGraphInitialize(graph.Graph()), noErr);
  EXPECT_EQ(AUGraphNodeInfo(graph.Graph(), 1, nullptr, nullptr), noErr);
}

// The connection decides about the format, which the output has by then.
TEST_F(AudioGraphTest, AConnectionOfAnInitialisedGraph_IsRefused) {
  AUGraph graph = nullptr;
  AUNode output = 0;
  AUNode player = 0;
  EXPECT_EQ(NewAUGraph(&graph), noErr);
  EXPECT_EQ(AUGraphAddNode(graph, &kOutput, &output), noErr);
  EXPECT_EQ(AUGraphAddNode(graph, &kPlayer, &player), noErr);
  EXPECT_EQ(AUGraphOpen(graph), noErr);
  EXPECT_EQ(AUGraphInitialize(graph), noErr);
  EXPECT_EQ(AUGraphConnectNodeInput(graph, player, 0, output, 0),
            kAUGraphErr_CannotDoInCurrentContext);
  EXPECT_EQ(AUGraphClose(graph), noErr);
  EXPECT_EQ(DisposeAUGraph(graph), noErr);
}

}  // namespace
