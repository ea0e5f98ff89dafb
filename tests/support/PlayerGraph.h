// SPDX-License-Identifier: Apache-2.0
//
// A file-player graph as the player builds it, taken apart again at the end.
#pragma once

#include <AudioToolbox/AudioToolbox.h>
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "CAAudioUnit.h"

class C_PlayerGraph {
 public:
  explicit C_PlayerGraph(AudioFileID audioFile) : m_audioFile(audioFile) {
    const AudioComponentDescription output = {
        kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput, kAudioUnitManufacturer_Apple, 0, 0};
    const AudioComponentDescription player = {kAudioUnitType_Generator,
                                              kAudioUnitSubType_AudioFilePlayer,
                                              kAudioUnitManufacturer_Apple, 0, 0};
    EXPECT_EQ(NewAUGraph(&m_graph), noErr);
    EXPECT_EQ(AUGraphAddNode(m_graph, &output, &m_outputNode), noErr);
    EXPECT_EQ(AUGraphAddNode(m_graph, &player, &m_playerNode), noErr);
    EXPECT_EQ(AUGraphOpen(m_graph), noErr);
    AudioUnit unit = nullptr;
    EXPECT_EQ(AUGraphNodeInfo(m_graph, m_playerNode, nullptr, &unit), noErr);
    m_player = CAAudioUnit(m_playerNode, unit);
    EXPECT_EQ(m_player.SetNumberChannels(kAudioUnitScope_Output, 0, 2), noErr);
    EXPECT_EQ(m_player.SetSampleRate(kAudioUnitScope_Output, 0, 44100.0), noErr);
    EXPECT_EQ(SetGlobal(kAudioUnitProperty_ScheduledFileIDs, m_audioFile), noErr);
    EXPECT_EQ(AUGraphConnectNodeInput(m_graph, m_playerNode, 0, m_outputNode, 0), noErr);
    EXPECT_EQ(AUGraphInitialize(m_graph), noErr);
    EXPECT_EQ(AUGraphAddRenderNotify(m_graph, &OnRender, this), noErr);
  }
  ~C_PlayerGraph() {
    EXPECT_EQ(AUGraphStop(m_graph), noErr);
    EXPECT_EQ(AUGraphUninitialize(m_graph), noErr);
    EXPECT_EQ(AudioFileClose(m_audioFile), noErr);
    EXPECT_EQ(AUGraphClose(m_graph), noErr);
    EXPECT_EQ(DisposeAUGraph(m_graph), noErr);
  }
  C_PlayerGraph(const C_PlayerGraph&) = delete;
  C_PlayerGraph& operator=(const C_PlayerGraph&) = delete;

  [[nodiscard]] AUGraph Graph() const { return m_graph; }
  [[nodiscard]] const CAAudioUnit& Player() const { return m_player; }

  template <typename T>
  OSStatus SetGlobal(AudioUnitPropertyID dwID, const T& value) const {
    return m_player.SetProperty(dwID, kAudioUnitScope_Global, 0, &value, sizeof value);
  }
  // Schedules the first dwFrames frames of the file, to start at the next cycle.
  void Schedule(UInt32 dwFrames) const {
    ScheduledAudioFileRegion region{};
    region.mTimeStamp.mFlags = kAudioTimeStampSampleTimeValid;
    region.mAudioFile = m_audioFile;
    region.mFramesToPlay = dwFrames;
    EXPECT_EQ(SetGlobal(kAudioUnitProperty_ScheduledFileRegion, region), noErr);
    EXPECT_EQ(SetGlobal(kAudioUnitProperty_ScheduledFilePrime, UInt32{0}), noErr);
    AudioTimeStamp start{};
    start.mFlags = kAudioTimeStampSampleTimeValid;
    start.mSampleTime = -1.0;
    EXPECT_EQ(SetGlobal(kAudioUnitProperty_ScheduleStartTimeStamp, start), noErr);
  }
  // The sample time of the latest finished cycle.
  [[nodiscard]] double Position() const { return m_dPosition; }
  void Start() const { EXPECT_EQ(AUGraphStart(m_graph), noErr); }
  void Stop() const { EXPECT_EQ(AUGraphStop(m_graph), noErr); }
  // Waits for the position as long as that can reasonably take. False when it is not reached.
  [[nodiscard]] bool WaitFor(double dPosition) const {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (m_dPosition < dPosition) {
      if (std::chrono::steady_clock::now() > limit) return false;
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
  }

 private:
  static OSStatus OnRender(void* pThis, AudioUnitRenderActionFlags* pdwFlags,
                           const AudioTimeStamp* pStamp, UInt32, UInt32, AudioBufferList*) {
    if ((*pdwFlags & kAudioUnitRenderAction_PostRender) != 0) {
      static_cast<C_PlayerGraph*>(pThis)->m_dPosition = pStamp->mSampleTime;
    }
    return noErr;
  }

  AudioFileID m_audioFile;
  AUGraph m_graph = nullptr;
  AUNode m_outputNode = 0;
  AUNode m_playerNode = 0;
  CAAudioUnit m_player;
  std::atomic<double> m_dPosition{0};
};
