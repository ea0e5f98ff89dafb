// SPDX-License-Identifier: Apache-2.0
//
// Every allocation of the toolbox fails in turn. No call lets an exception out; each gives a
// status, and nothing is left when everything that was made has been released.
#include <AudioToolbox/AudioToolbox.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "FakeDevice.h"
#include "FaultyNew.h"
#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

constexpr AudioComponentDescription kOutput = {
    kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput, kAudioUnitManufacturer_Apple, 0, 0};
constexpr AudioComponentDescription kFilePlayer = {kAudioUnitType_Generator,
                                                   kAudioUnitSubType_AudioFilePlayer,
                                                   kAudioUnitManufacturer_Apple, 0, 0};
constexpr UInt32 kFrames = 100;

OSStatus OnRender(void*, AudioUnitRenderActionFlags*, const AudioTimeStamp*, UInt32, UInt32,
                  AudioBufferList*) {
  return noErr;
}

// Plays a piece of a file, and stops at the first call that fails. Each step allocates only while
// the faults are armed.
class C_PlayedFile {
 public:
  explicit C_PlayedFile(const std::string& strPath) : m_strPath(strPath) {}
  ~C_PlayedFile() {
    if (m_graph != nullptr) {
      EXPECT_EQ(AUGraphUninitialize(m_graph), noErr);
      EXPECT_EQ(AUGraphClose(m_graph), noErr);
      EXPECT_EQ(DisposeAUGraph(m_graph), noErr);
    }
    EXPECT_EQ(AudioFileClose(m_audioFile), noErr);
    if (m_name != nullptr) CFRelease(m_name);
  }
  C_PlayedFile(const C_PlayedFile&) = delete;
  C_PlayedFile& operator=(const C_PlayedFile&) = delete;

  OSStatus Play(S_DeviceLog& log) {
    OSStatus nStatus = OpenFile();
    if (nStatus == noErr) nStatus = MakeGraph();
    if (nStatus == noErr) nStatus = Schedule();
    if (nStatus == noErr) nStatus = AUGraphStart(m_graph);
    if (nStatus != noErr) return nStatus;
    log.pClient->RenderFrames(m_frames.data(), kFrames);
    return AUGraphStop(m_graph);
  }

 private:
  OSStatus OpenFile() {
    const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
        kCFAllocatorDefault, reinterpret_cast<const UInt8*>(m_strPath.data()),
        static_cast<CFIndex>(m_strPath.size()), 0);
    if (url == nullptr) return kAudio_MemFullError;
    const OSStatus nStatus = AudioFileOpenURL(url, kAudioFileReadPermission, 0, &m_audioFile);
    CFRelease(url);
    return nStatus;
  }
  OSStatus MakeGraph() {
    OSStatus nStatus = AudioComponentCopyName(AudioComponentFindNext(nullptr, &kOutput), &m_name);
    if (nStatus == noErr) nStatus = NewAUGraph(&m_graph);
    if (nStatus == noErr) nStatus = AUGraphAddNode(m_graph, &kOutput, &m_output);
    if (nStatus == noErr) nStatus = AUGraphAddNode(m_graph, &kFilePlayer, &m_player);
    if (nStatus == noErr) nStatus = AUGraphOpen(m_graph);
    if (nStatus == noErr) nStatus = AUGraphNodeInfo(m_graph, m_player, nullptr, &m_unit);
    if (nStatus == noErr) nStatus = Set(kAudioUnitProperty_ScheduledFileIDs, m_audioFile);
    if (nStatus == noErr) nStatus = AUGraphConnectNodeInput(m_graph, m_player, 0, m_output, 0);
    if (nStatus == noErr) nStatus = AUGraphInitialize(m_graph);
    if (nStatus == noErr) nStatus = AUGraphAddRenderNotify(m_graph, &OnRender, nullptr);
    return nStatus;
  }
  OSStatus Schedule() {
    ScheduledAudioFileRegion region{};
    region.mTimeStamp.mFlags = kAudioTimeStampSampleTimeValid;
    region.mAudioFile = m_audioFile;
    region.mFramesToPlay = kFrames;
    OSStatus nStatus = Set(kAudioUnitProperty_ScheduledFileRegion, region);
    if (nStatus == noErr) nStatus = Set(kAudioUnitProperty_ScheduledFilePrime, UInt32{0});
    AudioTimeStamp start{};
    start.mFlags = kAudioTimeStampSampleTimeValid;
    start.mSampleTime = -1.0;
    if (nStatus == noErr) nStatus = Set(kAudioUnitProperty_ScheduleStartTimeStamp, start);
    return nStatus;
  }
  template <typename T>
  OSStatus Set(AudioUnitPropertyID dwID, const T& value) {
    return AudioUnitSetProperty(m_unit, dwID, kAudioUnitScope_Global, 0, &value, sizeof value);
  }

  const std::string& m_strPath;
  AudioFileID m_audioFile = nullptr;
  CFStringRef m_name = nullptr;
  AUGraph m_graph = nullptr;
  AUNode m_output = 0;
  AUNode m_player = 0;
  AudioUnit m_unit = nullptr;
  std::array<float, std::size_t{kFrames} * 2> m_frames{};
};

class ToolboxAllocationFailure : public testing::TestWithParam<bool> {
 protected:
  C_TempFolder m_folder;
};

// Each kind takes another way through the file service.
TEST_P(ToolboxAllocationFailure, EachOne_IsAStatus) {
  constexpr int kMostAllocations = 1000;
  for (const int nFormat :
       {SF_FORMAT_WAV | SF_FORMAT_PCM_16, SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM,
        SF_FORMAT_FLAC | SF_FORMAT_PCM_16, SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III}) {
    const std::string strFile = m_folder.Path("x");
    WriteSoundFile(strFile, nFormat, 16000, 1, SweepWithNoise(16000, 16000));
    C_FakeDevices devices;
    EXPECT_EQ(C_PlayedFile(strFile).Play(devices.Log()), noErr);
    bool bHit = true;
    int nCall = 1;
    for (; bHit && nCall < kMostAllocations; ++nCall) {
      const std::ptrdiff_t nLiving = C_FaultyNew::Living();
      {
        C_PlayedFile played(strFile);
        C_FaultyNew faults(nCall, GetParam());
        const OSStatus nStatus = played.Play(devices.Log());
        faults.Stop();
        bHit = faults.WasHit();
        EXPECT_TRUE(nStatus == kAudio_MemFullError || nStatus == noErr) << nStatus;
      }
      EXPECT_EQ(C_FaultyNew::Living(), nLiving);
      ASSERT_FALSE(HasFailure()) << std::hex << nFormat << std::dec << " at allocation " << nCall;
    }
    EXPECT_GT(nCall, 20);
    EXPECT_LT(nCall, kMostAllocations);
  }
}

INSTANTIATE_TEST_SUITE_P(All, ToolboxAllocationFailure, testing::Bool(), [](const auto& parameter) {
  return parameter.param ? "FromThenOn" : "Once";
});

}  // namespace
