// SPDX-License-Identifier: Apache-2.0
//
// The file-player unit without a device. Returns the frames that it would send to a device.
#pragma once

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "SoundFiles.h"

// A player unit of its own and two planes to render into.
class C_OfflinePlayer {
 public:
  C_OfflinePlayer() {
    const AudioComponentDescription description = {kAudioUnitType_Generator,
                                                   kAudioUnitSubType_AudioFilePlayer,
                                                   kAudioUnitManufacturer_Apple, 0, 0};
    EXPECT_EQ(AudioComponentInstanceNew(AudioComponentFindNext(nullptr, &description), &m_unit),
              noErr);
  }
  ~C_OfflinePlayer() {
    EXPECT_EQ(AudioComponentInstanceDispose(m_unit), noErr);
    EXPECT_EQ(AudioFileClose(m_audioFile), noErr);
  }
  C_OfflinePlayer(const C_OfflinePlayer&) = delete;
  C_OfflinePlayer& operator=(const C_OfflinePlayer&) = delete;

  [[nodiscard]] AudioUnit Unit() const { return m_unit; }
  [[nodiscard]] AudioFileID File() const { return m_audioFile; }
  template <typename T>
  OSStatus Set(AudioUnitPropertyID dwID, const T& value,
               AudioUnitScope dwScope = kAudioUnitScope_Global) const {
    return AudioUnitSetProperty(m_unit, dwID, dwScope, 0, &value, sizeof value);
  }
  void UseFile(const std::string& strPath) {
    m_audioFile = OpenSoundFile(strPath);
    ASSERT_NE(m_audioFile, nullptr);
    EXPECT_EQ(Set(kAudioUnitProperty_ScheduledFileIDs, m_audioFile), noErr);
  }
  [[nodiscard]] ScheduledAudioFileRegion Region(UInt32 dwFrames) const {
    ScheduledAudioFileRegion region{};
    region.mTimeStamp.mFlags = kAudioTimeStampSampleTimeValid;
    region.mAudioFile = m_audioFile;
    region.mFramesToPlay = dwFrames;
    return region;
  }
  [[nodiscard]] OSStatus SetRegion(const ScheduledAudioFileRegion& region) const {
    return Set(kAudioUnitProperty_ScheduledFileRegion, region);
  }
  void StartAt(double dSampleTime) const {
    AudioTimeStamp start{};
    start.mFlags = kAudioTimeStampSampleTimeValid;
    start.mSampleTime = dSampleTime;
    EXPECT_EQ(Set(kAudioUnitProperty_ScheduleStartTimeStamp, start), noErr);
  }
  [[nodiscard]] AudioTimeStamp StartTime() const {
    AudioTimeStamp start{};
    UInt32 cbStart = sizeof start;
    EXPECT_EQ(AudioUnitGetProperty(m_unit, kAudioUnitProperty_ScheduleStartTimeStamp,
                                   kAudioUnitScope_Global, 0, &start, &cbStart),
              noErr);
    EXPECT_EQ(cbStart, 64U);
    return start;
  }
  void Play(UInt32 dwFrames) {
    EXPECT_EQ(SetRegion(Region(dwFrames)), noErr);
    EXPECT_EQ(Set(kAudioUnitProperty_ScheduledFilePrime, UInt32{0}), noErr);
    StartAt(-1.0);
    EXPECT_EQ(AudioUnitInitialize(m_unit), noErr);
  }
  // Renders one cycle. The planes are filled beforehand with a value that must not stay.
  OSStatus Cycle(UInt32 dwFrames) {
    for (auto& plane : m_planes) plane.fill(77.0F);
    struct {
      AudioBufferList list;
      AudioBuffer second;
    } buffers{};
    buffers.list.mNumberBuffers = m_nPlanes;
    buffers.list.mBuffers[0] = {1, dwFrames * 4, m_planes[0].data()};
    buffers.second = {1, dwFrames * 4, m_planes[1].data()};
    AudioTimeStamp stamp{};
    stamp.mFlags = kAudioTimeStampSampleTimeValid;
    stamp.mSampleTime = m_dSampleTime;
    AudioUnitRenderActionFlags dwFlags = 0;
    const OSStatus nStatus = AudioUnitRender(m_unit, &dwFlags, &stamp, 0, dwFrames, &buffers.list);
    if (nStatus == noErr) m_dSampleTime += dwFrames;
    return nStatus;
  }
  // What both planes hold after rendering nFrames frames in cycles of `dwCycle`.
  std::array<std::vector<float>, 2> Render(std::size_t nFrames, UInt32 dwCycle = 512) {
    std::array<std::vector<float>, 2> sides;
    while (sides[0].size() < nFrames) {
      EXPECT_EQ(Cycle(dwCycle), noErr);
      for (std::size_t i = 0; i < 2; ++i) {
        sides.at(i).insert(sides.at(i).end(), m_planes.at(i).begin(),
                           m_planes.at(i).begin() + dwCycle);
      }
    }
    for (auto& side : sides) side.resize(nFrames);
    return sides;
  }
  void UseOneChannel() {
    AudioStreamBasicDescription format{};
    UInt32 cbFormat = sizeof format;
    EXPECT_EQ(AudioUnitGetProperty(m_unit, kAudioUnitProperty_StreamFormat, kAudioUnitScope_Output,
                                   0, &format, &cbFormat),
              noErr);
    format.mChannelsPerFrame = 1;
    EXPECT_EQ(Set(kAudioUnitProperty_StreamFormat, format, kAudioUnitScope_Output), noErr);
    m_nPlanes = 1;
  }
  void UsePlanes(UInt32 dwPlanes) { m_nPlanes = dwPlanes; }

 private:
  AudioUnit m_unit = nullptr;
  AudioFileID m_audioFile = nullptr;
  UInt32 m_nPlanes = 2;
  double m_dSampleTime = 0;
  std::array<std::array<float, 4096>, 2> m_planes{};
};

inline bool IsSilent(std::vector<float>::const_iterator itFrom,
                     std::vector<float>::const_iterator itTo) {
  return std::all_of(itFrom, itTo, [](float fSample) { return fSample == 0.0F; });
}
