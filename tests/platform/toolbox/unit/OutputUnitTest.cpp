// SPDX-License-Identifier: Apache-2.0
//
// The default output unit used without a graph, over a device that the test drives.
#include <algorithm>
#include <cmath>

#include "FakeDevice.h"
#include "SoundFiles.h"
#include "TestSounds.h"

namespace {

constexpr AudioStreamBasicDescription kSpeech = {16000, kAudioFormatLinearPCM, 12, 2, 1, 2, 1, 16,
                                                 0};
constexpr AudioComponentDescription kDefaultOutput = {
    kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput, kAudioUnitManufacturer_Apple, 0, 0};

// What a render callback was asked for, and what it answers with.
struct S_Source {
  std::vector<std::int16_t> samples;
  std::size_t nNext = 0;
  std::vector<UInt32> asked;
  std::vector<double> times;
  bool bFirstWasZero = true;
  OSStatus nStatus = noErr;
};

OSStatus Supply(void* pSource, AudioUnitRenderActionFlags*, const AudioTimeStamp* pStamp, UInt32,
                UInt32 dwFrames, AudioBufferList* pData) {
  auto& source = *static_cast<S_Source*>(pSource);
  source.asked.push_back(dwFrames);
  source.times.push_back(pStamp->mSampleTime);
  EXPECT_EQ(1U, pData->mNumberBuffers);
  EXPECT_EQ(1U, pData->mBuffers[0].mNumberChannels);
  EXPECT_EQ(dwFrames * 2, pData->mBuffers[0].mDataByteSize);
  auto* pTo = static_cast<std::int16_t*>(pData->mBuffers[0].mData);
  source.bFirstWasZero = source.bFirstWasZero && *pTo == 0;
  const std::size_t nTake = std::min<std::size_t>(dwFrames, source.samples.size() - source.nNext);
  std::copy_n(source.samples.data() + source.nNext, nTake, pTo);
  source.nNext += nTake;
  return source.nStatus;
}

class OutputUnitTest : public testing::Test {
 protected:
  OutputUnitTest() {
    EXPECT_EQ(noErr,
              AudioComponentInstanceNew(AudioComponentFindNext(nullptr, &kDefaultOutput), &m_unit));
  }
  ~OutputUnitTest() override { EXPECT_EQ(noErr, AudioComponentInstanceDispose(m_unit)); }
  [[nodiscard]] OSStatus SetFormat(const AudioStreamBasicDescription& format) const {
    return AudioUnitSetProperty(m_unit, kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input, 0,
                                &format, sizeof format);
  }
  void Prepare() {
    EXPECT_EQ(noErr, SetFormat(kSpeech));
    const AURenderCallbackStruct callback = {&Supply, &m_source};
    EXPECT_EQ(noErr, AudioUnitSetProperty(m_unit, kAudioUnitProperty_SetRenderCallback,
                                          kAudioUnitScope_Input, 0, &callback, sizeof callback));
    EXPECT_EQ(noErr, AudioUnitInitialize(m_unit));
  }
  C_FakeDevices m_devices;
  AudioUnit m_unit = nullptr;
  S_Source m_source;
};

TEST_F(OutputUnitTest, InitialisingOpensTheDevice_UninitialisingClosesIt) {
  Prepare();
  EXPECT_EQ(1, m_devices.Log().nOpened);
  EXPECT_EQ(16000U, m_devices.Log().format.dwRate);
  EXPECT_EQ(1U, m_devices.Log().format.dwChannels);
  EXPECT_FALSE(m_devices.Log().format.bFloat);
  EXPECT_TRUE(m_devices.Log().format.bLongPeriods);
  EXPECT_EQ(noErr, AudioUnitInitialize(m_unit));
  EXPECT_EQ(1, m_devices.Log().nOpened);
  EXPECT_EQ(noErr, AudioUnitUninitialize(m_unit));
  EXPECT_EQ(1, m_devices.Log().nClosed);
}

TEST_F(OutputUnitTest, TheCallback_GetsZeroedBuffersOfWholeRequests_UpTo4096Frames) {
  Prepare();
  m_source.samples = SweepWithNoise(5000, 16000);
  EXPECT_EQ(noErr, AudioOutputUnitStart(m_unit));
  auto want = m_source.samples;
  want.resize(6200);
  auto got = m_devices.Ask<std::int16_t>(1200);
  const auto rest = m_devices.Ask<std::int16_t>(5000);
  got.insert(got.end(), rest.begin(), rest.end());
  EXPECT_EQ(want, got);
  EXPECT_EQ((std::vector<UInt32>{1200, 4096, 904}), m_source.asked);
  EXPECT_EQ((std::vector<double>{0, 1200, 5296}), m_source.times);
  EXPECT_TRUE(m_source.bFirstWasZero);
}

TEST_F(OutputUnitTest, StartAndStop_CanBeRepeated_AndStoppingTwiceIsNothing) {
  Prepare();
  EXPECT_EQ(noErr, AudioOutputUnitStop(m_unit));
  EXPECT_EQ(0, m_devices.Log().nStopped);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(noErr, AudioOutputUnitStart(m_unit));
    EXPECT_EQ(noErr, AudioOutputUnitStart(m_unit));
    EXPECT_EQ(noErr, AudioOutputUnitStop(m_unit));
    EXPECT_EQ(noErr, AudioOutputUnitStop(m_unit));
  }
  EXPECT_EQ(2, m_devices.Log().nStarted);
  EXPECT_EQ(2, m_devices.Log().nStopped);
}

TEST_F(OutputUnitTest, AUnitThatIsNotInitialised_DoesNotStart) {
  EXPECT_EQ(kAudioUnitErr_Uninitialized, AudioOutputUnitStart(m_unit));
  EXPECT_EQ(noErr, AudioOutputUnitStop(m_unit));
  EXPECT_EQ(noErr, AudioUnitUninitialize(m_unit));
}

TEST_F(OutputUnitTest, WithoutCallback_SilenceIsPlayed) {
  EXPECT_EQ(noErr, SetFormat(kSpeech));
  EXPECT_EQ(noErr, AudioUnitInitialize(m_unit));
  EXPECT_EQ(noErr, AudioOutputUnitStart(m_unit));
  EXPECT_EQ(std::vector<std::int16_t>(600, 0), m_devices.Ask<std::int16_t>(600));
}

TEST_F(OutputUnitTest, TheFormat_ReadsBackAndStaysWhileInitialised) {
  EXPECT_EQ(noErr, SetFormat(kSpeech));
  AudioStreamBasicDescription format{};
  UInt32 cbFormat = sizeof format;
  EXPECT_EQ(noErr, AudioUnitGetProperty(m_unit, kAudioUnitProperty_StreamFormat,
                                        kAudioUnitScope_Input, 0, &format, &cbFormat));
  EXPECT_EQ(16000.0, format.mSampleRate);
  EXPECT_EQ(12U, format.mFormatFlags);
  EXPECT_EQ(noErr, AudioUnitInitialize(m_unit));
  EXPECT_EQ(kAudioUnitErr_Initialized, SetFormat(kSpeech));
}

TEST_F(OutputUnitTest, FormatsThatNoDevicePlays_AreRefused) {
  const auto refused = [this](auto change) {
    auto format = kSpeech;
    change(format);
    return SetFormat(format) == kAudioUnitErr_FormatNotSupported;
  };
  EXPECT_TRUE(refused([](auto& f) { f.mSampleRate = 0; }));
  EXPECT_TRUE(refused([](auto& f) { f.mSampleRate = 1e9; }));
  EXPECT_TRUE(refused([](auto& f) { f.mSampleRate = std::nan(""); }));
  EXPECT_TRUE(refused([](auto& f) { f.mFormatID = kAudioFormatULaw; }));
  EXPECT_TRUE(refused([](auto& f) { f.mFormatFlags = 4; }));
  EXPECT_TRUE(refused([](auto& f) { f.mFormatFlags = 14; }));
  EXPECT_TRUE(refused([](auto& f) { f.mFormatFlags = 44; }));
  EXPECT_TRUE(refused([](auto& f) { f.mBitsPerChannel = 24; }));
  EXPECT_TRUE(refused([](auto& f) { f.mBytesPerFrame = 4; }));
  EXPECT_TRUE(refused([](auto& f) { f.mBytesPerPacket = 4; }));
  EXPECT_TRUE(refused([](auto& f) { f.mFramesPerPacket = 2; }));
  EXPECT_TRUE(refused([](auto& f) { f.mChannelsPerFrame = 0; }));
  EXPECT_TRUE(refused([](auto& f) { f.mChannelsPerFrame = 3; }));
}

TEST_F(OutputUnitTest, BadPropertiesScopesElementsAndSizes_AreRefused) {
  const auto set = [this](AudioUnitPropertyID dwID, AudioUnitScope dwScope,
                          AudioUnitElement dwElement, UInt32 cbData) {
    const AudioStreamBasicDescription data = kSpeech;
    return AudioUnitSetProperty(m_unit, dwID, dwScope, dwElement, &data, cbData);
  };
  EXPECT_EQ(kAudioUnitErr_InvalidProperty, set(9999, kAudioUnitScope_Input, 0, 40));
  EXPECT_EQ(kAudioUnitErr_InvalidScope, set(8, kAudioUnitScope_Output, 0, 40));
  EXPECT_EQ(kAudioUnitErr_InvalidElement, set(8, kAudioUnitScope_Input, 1, 40));
  EXPECT_EQ(kAudioUnitErr_InvalidPropertyValue, set(8, kAudioUnitScope_Input, 0, 39));
  EXPECT_EQ(kAudioUnitErr_InvalidPropertyValue, set(23, kAudioUnitScope_Input, 0, 15));
  EXPECT_EQ(kAudioUnitErr_InvalidPropertyValue, set(19, kAudioUnitScope_Input, 0, 11));
  EXPECT_EQ(noErr, set(19, kAudioUnitScope_Input, 0, 32));
  AudioStreamBasicDescription format{};
  UInt32 cbFormat = 39;
  EXPECT_EQ(kAudioUnitErr_InvalidPropertyValue,
            AudioUnitGetProperty(m_unit, 8, kAudioUnitScope_Input, 0, &format, &cbFormat));
  EXPECT_EQ(kAudioUnitErr_InvalidScope,
            AudioUnitGetProperty(m_unit, 8, kAudioUnitScope_Global, 0, &format, &cbFormat));
  EXPECT_EQ(kAudioUnitErr_InvalidProperty,
            AudioUnitGetProperty(m_unit, 23, kAudioUnitScope_Input, 0, &format, &cbFormat));
  AudioTimeStamp stamp{};
  AudioBufferList buffers{};
  EXPECT_EQ(kAudioUnitErr_InvalidElement, AudioUnitRender(m_unit, nullptr, &stamp, 0, 1, &buffers));
}

TEST_F(OutputUnitTest, NullAndStaleUnits_AreRefused) {
  AudioUnit stale = nullptr;
  ASSERT_EQ(noErr,
            AudioComponentInstanceNew(AudioComponentFindNext(nullptr, &kDefaultOutput), &stale));
  EXPECT_EQ(noErr, AudioComponentInstanceDispose(stale));
  for (const AudioUnit bad : {stale, AudioUnit{nullptr}}) {
    UInt32 dwValue = 0;
    UInt32 cbValue = sizeof dwValue;
    EXPECT_EQ(kAudio_ParamError, AudioComponentInstanceDispose(bad));
    EXPECT_EQ(kAudio_ParamError, AudioUnitInitialize(bad));
    EXPECT_EQ(kAudio_ParamError, AudioUnitUninitialize(bad));
    EXPECT_EQ(kAudio_ParamError, AudioUnitSetProperty(bad, 8, 1, 0, &dwValue, 4));
    EXPECT_EQ(kAudio_ParamError, AudioUnitGetProperty(bad, 8, 1, 0, &dwValue, &cbValue));
    EXPECT_EQ(kAudio_ParamError, AudioOutputUnitStart(bad));
    EXPECT_EQ(kAudio_ParamError, AudioOutputUnitStop(bad));
  }
}

TEST(AudioComponentTest, ComponentsAreFoundByWhatIsAskedFor_InTurn) {
  const AudioComponentDescription any{};
  const AudioComponent first = AudioComponentFindNext(nullptr, &any);
  const AudioComponent second = AudioComponentFindNext(first, &any);
  EXPECT_NE(nullptr, first);
  EXPECT_NE(nullptr, second);
  EXPECT_NE(first, second);
  EXPECT_EQ(nullptr, AudioComponentFindNext(second, &any));
  EXPECT_EQ(nullptr, AudioComponentFindNext(nullptr, nullptr));
  AudioComponentDescription wrong = kDefaultOutput;
  wrong.componentManufacturer = toolbox::FourChars("none");
  EXPECT_EQ(nullptr, AudioComponentFindNext(nullptr, &wrong));
  AudioComponentDescription flags = kDefaultOutput;
  flags.componentFlags = 1;
  EXPECT_NE(nullptr, AudioComponentFindNext(nullptr, &flags));
  flags.componentFlagsMask = 1;
  EXPECT_EQ(nullptr, AudioComponentFindNext(nullptr, &flags));

  AudioComponentDescription description{};
  EXPECT_EQ(noErr, AudioComponentGetDescription(AudioComponentFindNext(nullptr, &kDefaultOutput),
                                                &description));
  EXPECT_EQ(OSType{kAudioUnitType_Output}, description.componentType);
  EXPECT_EQ(kAudio_ParamError, AudioComponentGetDescription(nullptr, &description));
  AudioUnit unit = nullptr;
  EXPECT_EQ(kAudio_ParamError, AudioComponentInstanceNew(nullptr, &unit));
  EXPECT_EQ(kAudio_ParamError, AudioComponentInstanceNew(first, nullptr));
}

}  // namespace
