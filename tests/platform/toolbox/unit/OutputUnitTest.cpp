// SPDX-License-Identifier: Apache-2.0
//
// The default output unit without a graph, on a device that the test drives.
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
  EXPECT_EQ(pData->mNumberBuffers, 1U);
  EXPECT_EQ(pData->mBuffers[0].mNumberChannels, 1U);
  EXPECT_EQ(pData->mBuffers[0].mDataByteSize, dwFrames * 2);
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
    EXPECT_EQ(AudioComponentInstanceNew(AudioComponentFindNext(nullptr, &kDefaultOutput), &m_unit),
              noErr);
  }
  ~OutputUnitTest() override { EXPECT_EQ(AudioComponentInstanceDispose(m_unit), noErr); }
  [[nodiscard]] OSStatus SetFormat(const AudioStreamBasicDescription& format) const {
    return AudioUnitSetProperty(m_unit, kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input, 0,
                                &format, sizeof format);
  }
  void Prepare() {
    EXPECT_EQ(SetFormat(kSpeech), noErr);
    const AURenderCallbackStruct callback = {&Supply, &m_source};
    EXPECT_EQ(AudioUnitSetProperty(m_unit, kAudioUnitProperty_SetRenderCallback,
                                   kAudioUnitScope_Input, 0, &callback, sizeof callback),
              noErr);
    EXPECT_EQ(AudioUnitInitialize(m_unit), noErr);
  }
  C_FakeDevices m_devices;
  AudioUnit m_unit = nullptr;
  S_Source m_source;
};

TEST_F(OutputUnitTest, InitialisingOpensTheDevice_UninitialisingClosesIt) {
  Prepare();
  EXPECT_EQ(m_devices.Log().nOpened, 1);
  EXPECT_EQ(m_devices.Log().format.dwRate, 16000U);
  EXPECT_EQ(m_devices.Log().format.dwChannels, 1U);
  EXPECT_FALSE(m_devices.Log().format.bFloat);
  EXPECT_EQ(AudioUnitInitialize(m_unit), noErr);
  EXPECT_EQ(m_devices.Log().nOpened, 1);
  EXPECT_EQ(AudioUnitUninitialize(m_unit), noErr);
  EXPECT_EQ(m_devices.Log().nClosed, 1);
}

TEST_F(OutputUnitTest, TheCallback_GetsZeroedBuffersOfWholeRequests_UpTo4096Frames) {
  Prepare();
  m_source.samples = SweepWithNoise(5000, 16000);
  EXPECT_EQ(AudioOutputUnitStart(m_unit), noErr);
  auto want = m_source.samples;
  want.resize(6200);
  auto got = m_devices.Ask<std::int16_t>(1200);
  const auto rest = m_devices.Ask<std::int16_t>(5000);
  got.insert(got.end(), rest.begin(), rest.end());
  EXPECT_EQ(got, want);
  EXPECT_EQ(m_source.asked, (std::vector<UInt32>{1200, 4096, 904}));
  EXPECT_EQ(m_source.times, (std::vector<double>{0, 1200, 5296}));
  EXPECT_TRUE(m_source.bFirstWasZero);
}

TEST_F(OutputUnitTest, StartAndStop_CanBeRepeated_AndStoppingTwiceIsNothing) {
  Prepare();
  EXPECT_EQ(AudioOutputUnitStop(m_unit), noErr);
  EXPECT_EQ(m_devices.Log().nStopped, 0);
  for (int i = 0; i < 2; ++i) {
    EXPECT_EQ(AudioOutputUnitStart(m_unit), noErr);
    EXPECT_EQ(AudioOutputUnitStart(m_unit), noErr);
    EXPECT_EQ(AudioOutputUnitStop(m_unit), noErr);
    EXPECT_EQ(AudioOutputUnitStop(m_unit), noErr);
  }
  EXPECT_EQ(m_devices.Log().nStarted, 2);
  EXPECT_EQ(m_devices.Log().nStopped, 2);
}

TEST_F(OutputUnitTest, AUnitThatIsNotInitialised_DoesNotStart) {
  EXPECT_EQ(AudioOutputUnitStart(m_unit), kAudioUnitErr_Uninitialized);
  EXPECT_EQ(AudioOutputUnitStop(m_unit), noErr);
  EXPECT_EQ(AudioUnitUninitialize(m_unit), noErr);
}

TEST_F(OutputUnitTest, WithoutCallback_SilenceIsPlayed) {
  EXPECT_EQ(SetFormat(kSpeech), noErr);
  EXPECT_EQ(AudioUnitInitialize(m_unit), noErr);
  EXPECT_EQ(AudioOutputUnitStart(m_unit), noErr);
  EXPECT_EQ(m_devices.Ask<std::int16_t>(600), std::vector<std::int16_t>(600, 0));
}

TEST_F(OutputUnitTest, TheFormat_ReadsBackAndStaysWhileInitialised) {
  EXPECT_EQ(SetFormat(kSpeech), noErr);
  AudioStreamBasicDescription format{};
  UInt32 cbFormat = sizeof format;
  EXPECT_EQ(AudioUnitGetProperty(m_unit, kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input, 0,
                                 &format, &cbFormat),
            noErr);
  EXPECT_EQ(format.mSampleRate, 16000.0);
  EXPECT_EQ(format.mFormatFlags, 12U);
  EXPECT_EQ(AudioUnitInitialize(m_unit), noErr);
  EXPECT_EQ(SetFormat(kSpeech), kAudioUnitErr_Initialized);
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
  EXPECT_EQ(set(9999, kAudioUnitScope_Input, 0, 40), kAudioUnitErr_InvalidProperty);
  EXPECT_EQ(set(8, kAudioUnitScope_Output, 0, 40), kAudioUnitErr_InvalidScope);
  EXPECT_EQ(set(8, kAudioUnitScope_Input, 1, 40), kAudioUnitErr_InvalidElement);
  EXPECT_EQ(set(8, kAudioUnitScope_Input, 0, 39), kAudioUnitErr_InvalidPropertyValue);
  EXPECT_EQ(set(23, kAudioUnitScope_Input, 0, 15), kAudioUnitErr_InvalidPropertyValue);
  EXPECT_EQ(set(19, kAudioUnitScope_Input, 0, 11), kAudioUnitErr_InvalidPropertyValue);
  EXPECT_EQ(set(19, kAudioUnitScope_Input, 0, 32), noErr);
  AudioStreamBasicDescription format{};
  UInt32 cbFormat = 39;
  EXPECT_EQ(AudioUnitGetProperty(m_unit, 8, kAudioUnitScope_Input, 0, &format, &cbFormat),
            kAudioUnitErr_InvalidPropertyValue);
  EXPECT_EQ(AudioUnitGetProperty(m_unit, 8, kAudioUnitScope_Global, 0, &format, &cbFormat),
            kAudioUnitErr_InvalidScope);
  EXPECT_EQ(AudioUnitGetProperty(m_unit, 23, kAudioUnitScope_Input, 0, &format, &cbFormat),
            kAudioUnitErr_InvalidProperty);
  AudioTimeStamp stamp{};
  AudioBufferList buffers{};
  EXPECT_EQ(AudioUnitRender(m_unit, nullptr, &stamp, 0, 1, &buffers), kAudioUnitErr_InvalidElement);
}

TEST_F(OutputUnitTest, NullAndStaleUnits_AreRefused) {
  AudioUnit stale = nullptr;
  ASSERT_EQ(AudioComponentInstanceNew(AudioComponentFindNext(nullptr, &kDefaultOutput), &stale),
            noErr);
  EXPECT_EQ(AudioComponentInstanceDispose(stale), noErr);
  for (const AudioUnit bad : {stale, AudioUnit{nullptr}}) {
    UInt32 dwValue = 0;
    UInt32 cbValue = sizeof dwValue;
    EXPECT_EQ(AudioComponentInstanceDispose(bad), kAudio_ParamError);
    EXPECT_EQ(AudioUnitInitialize(bad), kAudio_ParamError);
    EXPECT_EQ(AudioUnitUninitialize(bad), kAudio_ParamError);
    EXPECT_EQ(AudioUnitSetProperty(bad, 8, 1, 0, &dwValue, 4), kAudio_ParamError);
    EXPECT_EQ(AudioUnitGetProperty(bad, 8, 1, 0, &dwValue, &cbValue), kAudio_ParamError);
    EXPECT_EQ(AudioOutputUnitStart(bad), kAudio_ParamError);
    EXPECT_EQ(AudioOutputUnitStop(bad), kAudio_ParamError);
  }
}

TEST(AudioComponentTest, ComponentsAreFoundByWhatIsAskedFor_InTurn) {
  const AudioComponentDescription any{};
  const AudioComponent first = AudioComponentFindNext(nullptr, &any);
  const AudioComponent second = AudioComponentFindNext(first, &any);
  EXPECT_NE(first, nullptr);
  EXPECT_NE(second, nullptr);
  EXPECT_NE(second, first);
  EXPECT_EQ(AudioComponentFindNext(second, &any), nullptr);
  EXPECT_EQ(AudioComponentFindNext(nullptr, nullptr), nullptr);
  AudioComponentDescription wrong = kDefaultOutput;
  wrong.componentManufacturer = toolbox::FourChars("none");
  EXPECT_EQ(AudioComponentFindNext(nullptr, &wrong), nullptr);
  AudioComponentDescription flags = kDefaultOutput;
  flags.componentFlags = 1;
  EXPECT_NE(AudioComponentFindNext(nullptr, &flags), nullptr);
  flags.componentFlagsMask = 1;
  EXPECT_EQ(AudioComponentFindNext(nullptr, &flags), nullptr);

  AudioComponentDescription description{};
  EXPECT_EQ(
      AudioComponentGetDescription(AudioComponentFindNext(nullptr, &kDefaultOutput), &description),
      noErr);
  EXPECT_EQ(description.componentType, OSType{kAudioUnitType_Output});
  EXPECT_EQ(AudioComponentGetDescription(nullptr, &description), kAudio_ParamError);
  AudioUnit unit = nullptr;
  EXPECT_EQ(AudioComponentInstanceNew(nullptr, &unit), kAudio_ParamError);
  EXPECT_EQ(AudioComponentInstanceNew(first, nullptr), kAudio_ParamError);
}

}  // namespace
