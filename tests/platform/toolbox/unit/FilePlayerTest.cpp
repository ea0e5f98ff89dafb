// SPDX-License-Identifier: Apache-2.0
//
// The file-player unit, rendered without a device.

#include <algorithm>
#include <array>
#include <cmath>

#include "Converted.h"
#include "OfflinePlayer.h"
#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

class FilePlayerTest : public testing::Test {
 protected:
  void Write(const char* pszName, int nRate, int nChannels,
             const std::vector<std::int16_t>& samples) {
    WriteSoundFile(m_folder.Path(pszName), SF_FORMAT_WAV | SF_FORMAT_PCM_16, nRate, nChannels,
                   samples);
  }
  C_TempFolder m_folder;
  C_OfflinePlayer m_player;
};

std::vector<float> Channel(const std::vector<std::int16_t>& samples, std::size_t nChannel,
                           std::size_t nChannels) {
  std::vector<float> result;
  for (std::size_t i = nChannel; i < samples.size(); i += nChannels) {
    result.push_back(static_cast<float>(samples[i]) / 32768.0F);
  }
  return result;
}

TEST_F(FilePlayerTest, AFileAtTheOutputsRate_PassesUnchanged_AndSilenceFollows) {
  const auto samples = SweepWithNoise(5000, 44100, 2);
  Write("a.wav", 44100, 2, samples);
  m_player.UseFile(m_folder.Path("a.wav"));
  m_player.Play(5000);
  const auto sides = m_player.Render(6000);
  for (std::size_t i = 0; i < 2; ++i) {
    const auto want = Channel(samples, i, 2);
    EXPECT_TRUE(std::equal(want.begin(), want.end(), sides.at(i).begin()));
    EXPECT_TRUE(IsSilent(sides.at(i).begin() + 5000, sides.at(i).end()));
  }
}

TEST_F(FilePlayerTest, AMonoFile_SoundsOnBothSides_ConvertedWithOneFilter) {
  const auto samples = SweepWithNoise(16000, 16000);
  Write("a.wav", 16000, 1, samples);
  m_player.UseFile(m_folder.Path("a.wav"));
  m_player.Play(16000);
  const auto sides = m_player.Render(45000);
  const auto want = Converted(Channel(samples, 0, 1), 16000, 44100);
  ASSERT_EQ(want.size(), 44100U);
  EXPECT_TRUE(std::equal(want.begin(), want.end(), sides[0].begin()));
  EXPECT_EQ(sides[1], sides[0]);
  EXPECT_TRUE(IsSilent(sides[0].begin() + 44100, sides[0].end()));
}

TEST_F(FilePlayerTest, TheConversion_DoesNotDependOnTheSizeOfTheCycles) {
  const auto samples = SweepWithNoise(8000, 8000);
  Write("a.wav", 8000, 1, samples);
  const auto want = Converted(Channel(samples, 0, 1), 8000, 44100);
  for (const UInt32 dwCycle : {1U, 37U, 441U, 512U}) {
    C_OfflinePlayer player;
    player.UseFile(m_folder.Path("a.wav"));
    player.Play(8000);
    const auto sides = player.Render(want.size(), dwCycle);
    EXPECT_TRUE(sides[0] == want) << "cycles of " << dwCycle;
  }
}

// A sweep from 200 Hz to 3 kHz, where speech is strongest. Towards 7 kHz the filter falls off by up
// to a hundredth of a decibel. Nobody hears that, but this measurement would show it.
TEST_F(FilePlayerTest, AThereAndBackConversion_KeepsNinetyDecibelsOfTheSound) {
  std::vector<std::int16_t> band(32000);
  for (std::size_t n = 0; n < band.size(); ++n) {
    const double dTime = static_cast<double>(n) / 16000;
    const double dSweep = std::sin(6.283185307 * (200 + 700 * dTime) * dTime);
    band[n] = static_cast<std::int16_t>(std::lround(12000 * dSweep));
  }
  Write("a.wav", 16000, 1, band);
  m_player.UseFile(m_folder.Path("a.wav"));
  m_player.Play(32000);
  const auto there = m_player.Render(88200)[0];
  const auto back = Converted(there, 44100, 16000);
  ASSERT_EQ(back.size(), 32000U);
  double dSignal = 0;
  double dNoise = 0;
  for (std::size_t n = 1000; n < 31000; ++n) {
    const double dWant = band[n] / 32768.0;
    dSignal += dWant * dWant;
    const double dError = static_cast<double>(back[n]) - dWant;
    dNoise += dError * dError;
  }
  const double dDecibels = 10 * std::log10(dSignal / dNoise);
  RecordProperty("decibels", std::to_string(dDecibels));
  EXPECT_GT(dDecibels, 90.0);
}

TEST_F(FilePlayerTest, OfThreeChannels_TheFirstTwoSound) {
  const auto samples = SweepWithNoise(1000, 44100, 3);
  Write("a.wav", 44100, 3, samples);
  m_player.UseFile(m_folder.Path("a.wav"));
  m_player.Play(1000);
  const auto sides = m_player.Render(1000);
  EXPECT_EQ(sides[0], Channel(samples, 0, 3));
  EXPECT_EQ(sides[1], Channel(samples, 1, 3));
}

TEST_F(FilePlayerTest, AnOutputOfOneChannel_GetsTheFirst) {
  const auto samples = SweepWithNoise(1000, 44100, 2);
  Write("a.wav", 44100, 2, samples);
  m_player.UseOneChannel();
  m_player.UseFile(m_folder.Path("a.wav"));
  m_player.Play(1000);
  EXPECT_EQ(m_player.Render(1000)[0], Channel(samples, 0, 2));
}

TEST_F(FilePlayerTest, OnlyTheScheduledFrames_AreHeard) {
  const auto samples = SweepWithNoise(1000, 44100);
  Write("a.wav", 44100, 1, samples);
  m_player.UseFile(m_folder.Path("a.wav"));
  auto region = m_player.Region(78);
  region.mStartFrame = 100;
  EXPECT_EQ(m_player.SetRegion(region), noErr);
  m_player.StartAt(-1.0);
  EXPECT_EQ(AudioUnitInitialize(m_player.Unit()), noErr);
  const auto side = m_player.Render(1000)[0];
  const auto all = Channel(samples, 0, 1);
  EXPECT_TRUE(std::equal(side.begin(), side.begin() + 78, all.begin() + 100));
  EXPECT_TRUE(IsSilent(side.begin() + 78, side.end()));
}

TEST_F(FilePlayerTest, MoreFramesThanTheFileHas_EndWithTheFile) {
  const auto samples = SweepWithNoise(300, 44100);
  Write("a.wav", 44100, 1, samples);
  m_player.UseFile(m_folder.Path("a.wav"));
  m_player.Play(0xFFFFFFFFU);
  const auto side = m_player.Render(1024)[0];
  EXPECT_NE(side[299], 0.0F);
  EXPECT_TRUE(IsSilent(side.begin() + 300, side.end()));
}

TEST_F(FilePlayerTest, AnEmptyFile_IsSilence) {
  Write("a.wav", 16000, 1, {});
  m_player.UseFile(m_folder.Path("a.wav"));
  m_player.Play(0);
  const auto side = m_player.Render(1024)[0];
  EXPECT_TRUE(IsSilent(side.begin(), side.end()));
}

TEST_F(FilePlayerTest, TheStartTime_ReadsAsMinusOneUntilTheFirstCycleGivesItItsOwn) {
  Write("a.wav", 44100, 1, SweepWithNoise(1000, 44100));
  m_player.UseFile(m_folder.Path("a.wav"));
  EXPECT_EQ(m_player.StartTime().mFlags, 0U);
  EXPECT_EQ(AudioUnitInitialize(m_player.Unit()), noErr);
  EXPECT_EQ(m_player.Cycle(512), noErr);
  EXPECT_EQ(m_player.SetRegion(m_player.Region(1000)), noErr);
  m_player.StartAt(-1.0);
  EXPECT_EQ(m_player.StartTime().mSampleTime, -1.0);
  EXPECT_EQ(m_player.StartTime().mFlags, 1U);
  EXPECT_EQ(m_player.Cycle(512), noErr);
  EXPECT_EQ(m_player.StartTime().mSampleTime, 512.0);
  EXPECT_EQ(m_player.Cycle(512), noErr);
  EXPECT_EQ(m_player.StartTime().mSampleTime, 512.0);
}

TEST_F(FilePlayerTest, ALaterStartAndARegionsOwnTime_AreWaitedForToTheFrame) {
  const auto samples = SweepWithNoise(1000, 44100);
  Write("a.wav", 44100, 1, samples);
  m_player.UseFile(m_folder.Path("a.wav"));
  auto region = m_player.Region(1000);
  region.mTimeStamp.mSampleTime = 300;
  EXPECT_EQ(m_player.SetRegion(region), noErr);
  m_player.StartAt(700);
  EXPECT_EQ(AudioUnitInitialize(m_player.Unit()), noErr);
  const auto side = m_player.Render(2048)[0];
  const auto want = Channel(samples, 0, 1);
  EXPECT_TRUE(IsSilent(side.begin(), side.begin() + 1000));
  EXPECT_TRUE(std::equal(want.begin(), want.end(), side.begin() + 1000));
}

TEST_F(FilePlayerTest, AClosedFile_StaysAudibleForItsRegion) {
  const auto samples = SweepWithNoise(1000, 44100);
  Write("a.wav", 44100, 1, samples);
  const AudioFileID audioFile = OpenSoundFile(m_folder.Path("a.wav"));
  EXPECT_EQ(m_player.Set(kAudioUnitProperty_ScheduledFileIDs, audioFile), noErr);
  auto region = m_player.Region(1000);
  region.mAudioFile = audioFile;
  EXPECT_EQ(m_player.SetRegion(region), noErr);
  m_player.StartAt(-1.0);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
  EXPECT_EQ(AudioUnitInitialize(m_player.Unit()), noErr);
  EXPECT_EQ(m_player.Render(1000)[0], Channel(samples, 0, 1));
}

TEST_F(FilePlayerTest, ReadingPacketsMeanwhile_DoesNotDisturbTheSound) {
  const auto samples = SweepWithNoise(3000, 44100);
  Write("a.wav", 44100, 1, samples);
  m_player.UseFile(m_folder.Path("a.wav"));
  m_player.Play(3000);
  auto side = m_player.Render(512)[0];
  std::int16_t nLast = 0;
  UInt32 cbData = sizeof nLast;
  UInt32 dwPackets = 1;
  EXPECT_EQ(AudioFileReadPacketData(m_player.File(), 0, &cbData, nullptr, 2999, &dwPackets, &nLast),
            noErr);
  EXPECT_EQ(nLast, samples[2999]);
  const auto rest = m_player.Render(2488)[0];
  side.insert(side.end(), rest.begin(), rest.end());
  EXPECT_EQ(side, Channel(samples, 0, 1));
}

TEST_F(FilePlayerTest, Uninitialise_ForgetsTheRegion) {
  Write("a.wav", 44100, 1, SweepWithNoise(1000, 44100));
  m_player.UseFile(m_folder.Path("a.wav"));
  m_player.Play(1000);
  EXPECT_EQ(AudioUnitUninitialize(m_player.Unit()), noErr);
  EXPECT_EQ(m_player.Cycle(512), kAudioUnitErr_Uninitialized);
  EXPECT_EQ(AudioUnitInitialize(m_player.Unit()), noErr);
  const auto side = m_player.Render(512)[0];
  EXPECT_TRUE(IsSilent(side.begin(), side.end()));
  EXPECT_EQ(m_player.StartTime().mFlags, 0U);
}

TEST_F(FilePlayerTest, AFileThatWasClosedAfterItWasListed_HasNoRegion) {
  Write("a.wav", 44100, 1, SweepWithNoise(1000, 44100));
  const AudioFileID audioFile = OpenSoundFile(m_folder.Path("a.wav"));
  EXPECT_EQ(m_player.Set(kAudioUnitProperty_ScheduledFileIDs, audioFile), noErr);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
  auto region = m_player.Region(10);
  region.mAudioFile = audioFile;
  EXPECT_EQ(m_player.SetRegion(region), kAudioUnitErr_InvalidFile);
}

TEST_F(FilePlayerTest, EveryFormatButPlanarFloat_IsRefused) {
  const AudioStreamBasicDescription good = {48000, kAudioFormatLinearPCM, 41, 4, 1, 4, 2, 32, 0};
  const auto set = [this](const AudioStreamBasicDescription& format) {
    return m_player.Set(kAudioUnitProperty_StreamFormat, format, kAudioUnitScope_Output);
  };
  EXPECT_EQ(set(good), noErr);
  for (const double dRate : {0.0, -1.0, 999.0, 192001.0, 44100.5, std::nan("")}) {
    auto bad = good;
    bad.mSampleRate = dRate;
    EXPECT_EQ(set(bad), kAudioUnitErr_FormatNotSupported) << dRate;
  }
  for (const UInt32 dwChannels : {0U, 3U, 0xFFFFFFFFU}) {
    auto bad = good;
    bad.mChannelsPerFrame = dwChannels;
    EXPECT_EQ(set(bad), kAudioUnitErr_FormatNotSupported) << dwChannels;
  }
  auto bad = good;
  bad.mFormatFlags = 9;
  EXPECT_EQ(set(bad), kAudioUnitErr_FormatNotSupported);
  bad = good;
  bad.mBytesPerFrame = 8;
  EXPECT_EQ(set(bad), kAudioUnitErr_FormatNotSupported);
  EXPECT_EQ(AudioUnitInitialize(m_player.Unit()), noErr);
  EXPECT_EQ(set(good), kAudioUnitErr_Initialized);
}

TEST_F(FilePlayerTest, BadPropertiesScopesElementsAndSizes_AreRefused) {
  UInt32 dwValue = 0;
  const AudioUnit unit = m_player.Unit();
  EXPECT_EQ(m_player.Set(9999, dwValue), kAudioUnitErr_InvalidProperty);
  EXPECT_EQ(m_player.Set(kAudioUnitProperty_ScheduledFilePrime, dwValue, kAudioUnitScope_Input),
            kAudioUnitErr_InvalidScope);
  EXPECT_EQ(AudioUnitSetProperty(unit, kAudioUnitProperty_ScheduledFilePrime,
                                 kAudioUnitScope_Global, 1, &dwValue, sizeof dwValue),
            kAudioUnitErr_InvalidElement);
  EXPECT_EQ(AudioUnitSetProperty(unit, kAudioUnitProperty_ScheduledFilePrime,
                                 kAudioUnitScope_Global, 0, &dwValue, 3),
            kAudioUnitErr_InvalidPropertyValue);
  EXPECT_EQ(AudioUnitSetProperty(unit, kAudioUnitProperty_ScheduledFilePrime,
                                 kAudioUnitScope_Global, 0, nullptr, 4),
            kAudio_ParamError);
  EXPECT_EQ(m_player.Set(kAudioUnitProperty_ScheduledFileIDs, dwValue),
            kAudioUnitErr_InvalidPropertyValue);
  EXPECT_EQ(m_player.Set(kAudioUnitProperty_ScheduledFileIDs, AudioFileID{nullptr}),
            kAudioUnitErr_InvalidFile);
  UInt32 cbValue = sizeof dwValue;
  EXPECT_EQ(AudioUnitGetProperty(unit, kAudioUnitProperty_ScheduleStartTimeStamp,
                                 kAudioUnitScope_Global, 0, &dwValue, &cbValue),
            kAudioUnitErr_InvalidPropertyValue);
  EXPECT_EQ(AudioUnitGetProperty(unit, 9999, kAudioUnitScope_Global, 0, &dwValue, &cbValue),
            kAudioUnitErr_InvalidProperty);
  EXPECT_EQ(AudioUnitGetProperty(unit, kAudioUnitProperty_ScheduledFileRegion,
                                 kAudioUnitScope_Global, 0, &dwValue, &cbValue),
            kAudioUnitErr_PropertyNotInUse);
  AudioTimeStamp stamp{};
  EXPECT_EQ(m_player.Set(kAudioUnitProperty_ScheduleStartTimeStamp, stamp),
            kAudioUnitErr_InvalidPropertyValue);
}

TEST_F(FilePlayerTest, EveryProperty_RefusesASizeThatIsNotItsOwn) {
  const std::array<UInt8, 256> value{};
  for (const AudioUnitPropertyID dwID :
       {kAudioUnitProperty_ScheduledFileRegion, kAudioUnitProperty_ScheduledFilePrime,
        kAudioUnitProperty_ScheduleStartTimeStamp, kAudioUnitProperty_ScheduledFileIDs}) {
    EXPECT_EQ(
        AudioUnitSetProperty(m_player.Unit(), dwID, kAudioUnitScope_Global, 0, value.data(), 1),
        kAudioUnitErr_InvalidPropertyValue);
  }
  EXPECT_EQ(AudioUnitSetProperty(m_player.Unit(), kAudioUnitProperty_StreamFormat,
                                 kAudioUnitScope_Output, 0, value.data(), 1),
            kAudioUnitErr_InvalidPropertyValue);
}

TEST_F(FilePlayerTest, Region_ReadsAsItWasSet_AndTheOthersCannotBeRead) {
  Write("a.wav", 44100, 1, SweepWithNoise(1000, 44100));
  m_player.UseFile(m_folder.Path("a.wav"));
  auto region = m_player.Region(10);
  region.mStartFrame = 7;
  EXPECT_EQ(m_player.SetRegion(region), noErr);
  ScheduledAudioFileRegion got{};
  UInt32 cbGot = sizeof got;
  EXPECT_EQ(AudioUnitGetProperty(m_player.Unit(), kAudioUnitProperty_ScheduledFileRegion,
                                 kAudioUnitScope_Global, 0, &got, &cbGot),
            noErr);
  EXPECT_EQ(cbGot, sizeof got);
  EXPECT_EQ(got.mStartFrame, 7);
  EXPECT_EQ(got.mFramesToPlay, 10U);
  for (const AudioUnitPropertyID dwID :
       {kAudioUnitProperty_ScheduledFilePrime, kAudioUnitProperty_ScheduledFileIDs}) {
    EXPECT_EQ(AudioUnitGetProperty(m_player.Unit(), dwID, kAudioUnitScope_Global, 0, &got, &cbGot),
              kAudioUnitErr_PropertyNotInUse);
  }
}

TEST_F(FilePlayerTest, RegionsThatCannotBePlayed_AreRefused) {
  Write("a.wav", 44100, 1, SweepWithNoise(1000, 44100));
  EXPECT_EQ(m_player.SetRegion(m_player.Region(10)), kAudioUnitErr_InvalidFile);
  m_player.UseFile(m_folder.Path("a.wav"));
  auto region = m_player.Region(10);
  region.mStartFrame = -1;
  EXPECT_EQ(m_player.SetRegion(region), kAudioUnitErr_InvalidPropertyValue);
  region = m_player.Region(10);
  region.mTimeStamp.mFlags = 0;
  EXPECT_EQ(m_player.SetRegion(region), kAudioUnitErr_InvalidPropertyValue);
  region = m_player.Region(10);
  region.mTimeStamp.mSampleTime = std::nan("");
  EXPECT_EQ(m_player.SetRegion(region), kAudioUnitErr_InvalidPropertyValue);
  region = m_player.Region(10);
  region.mTimeStamp.mSampleTime = -1;
  EXPECT_EQ(m_player.SetRegion(region), kAudioUnitErr_InvalidPropertyValue);
  region = m_player.Region(10);
  region.mLoopCount = 1;
  EXPECT_EQ(m_player.SetRegion(region), kAudio_UnimplementedError);
  region = m_player.Region(10);
  region.mCompletionProc = [](void*, ScheduledAudioFileRegion*, OSStatus) {};
  EXPECT_EQ(m_player.SetRegion(region), kAudio_UnimplementedError);
  EXPECT_EQ(m_player.SetRegion(m_player.Region(10)), noErr);
}

constexpr int kMp3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;

// The samples that another decoder reads from the file, interleaved.
std::vector<float> DecodedElsewhere(const std::string& strPath) {
  SF_INFO info{};
  SNDFILE* pSound = sf_open(strPath.c_str(), SFM_READ, &info);
  EXPECT_NE(pSound, nullptr);
  std::vector<float> samples(static_cast<std::size_t>(info.frames * info.channels));
  EXPECT_EQ(sf_readf_float(pSound, samples.data(), info.frames), info.frames);
  EXPECT_EQ(sf_close(pSound), 0);
  return samples;
}

TEST_F(FilePlayerTest, AnMp3File_IsDecodedToItsLastSampleWithoutPadding) {
  WriteSoundFile(m_folder.Path("a.mp3"), kMp3, 44100, 2, SweepWithNoise(5000, 44100, 2));
  m_player.UseFile(m_folder.Path("a.mp3"));
  m_player.Play(9000);
  const auto sides = m_player.Render(6000);
  const auto want = DecodedElsewhere(m_folder.Path("a.mp3"));
  ASSERT_EQ(want.size(), 10000U);
  for (std::size_t i = 0; i < 2; ++i) {
    for (std::size_t n = 0; n < 5000; ++n) ASSERT_EQ(sides.at(i)[n], want[2 * n + i]) << n;
    EXPECT_TRUE(IsSilent(sides.at(i).begin() + 5000, sides.at(i).end()));
  }
}

TEST_F(FilePlayerTest, AnMp3Region_BeginsWhereItSays) {
  WriteSoundFile(m_folder.Path("a.mp3"), kMp3, 44100, 1, SweepWithNoise(9000, 44100));
  m_player.UseFile(m_folder.Path("a.mp3"));
  auto region = m_player.Region(100);
  region.mStartFrame = 6000;
  EXPECT_EQ(m_player.SetRegion(region), noErr);
  m_player.StartAt(-1.0);
  EXPECT_EQ(AudioUnitInitialize(m_player.Unit()), noErr);
  const auto side = m_player.Render(512)[0];
  const auto all = DecodedElsewhere(m_folder.Path("a.mp3"));
  for (std::size_t n = 0; n < 100; ++n) EXPECT_NEAR(side[n], all[6000 + n], 1e-3) << n;
  EXPECT_TRUE(IsSilent(side.begin() + 100, side.end()));
}

// The second stream would need buffers twice as large as those of the first.
TEST_F(FilePlayerTest, AnMp3FileThatTurnsStereo_EndsThere) {
  WriteSoundFile(m_folder.Path("a.mp3"), kMp3, 44100, 1, SweepWithNoise(5000, 44100));
  WriteSoundFile(m_folder.Path("b.mp3"), kMp3, 44100, 2, SweepWithNoise(5000, 44100, 2));
  auto bytes = m_folder.Read("a.mp3");
  const auto second = m_folder.Read("b.mp3");
  bytes.insert(bytes.end(), second.begin(), second.end());
  m_player.UseFile(m_folder.Write("ab.mp3", bytes));
  m_player.Play(20000);
  const auto sides = m_player.Render(20000);
  EXPECT_FALSE(IsSilent(sides[0].begin(), sides[0].begin() + 5000));
  EXPECT_TRUE(IsSilent(sides[0].begin() + 8000, sides[0].end()));
  EXPECT_EQ(sides[1], sides[0]);
}

TEST_F(FilePlayerTest, AnEmptyListOfFiles_TakesTheFilesAway) {
  Write("a.wav", 44100, 1, SweepWithNoise(10, 44100));
  m_player.UseFile(m_folder.Path("a.wav"));
  const AudioFileID none = nullptr;
  EXPECT_EQ(AudioUnitSetProperty(m_player.Unit(), kAudioUnitProperty_ScheduledFileIDs,
                                 kAudioUnitScope_Global, 0, &none, 0),
            noErr);
  EXPECT_EQ(m_player.SetRegion(m_player.Region(10)), kAudioUnitErr_InvalidFile);
}

TEST_F(FilePlayerTest, ARateThatNoFilterConverts_IsRefusedWhenPrimed) {
  Write("a.wav", 99, 1, SweepWithNoise(1000, 99));
  m_player.UseFile(m_folder.Path("a.wav"));
  EXPECT_EQ(m_player.SetRegion(m_player.Region(1000)), noErr);
  EXPECT_EQ(m_player.Set(kAudioUnitProperty_ScheduledFilePrime, UInt32{0}),
            kAudioUnitErr_FormatNotSupported);
}

TEST_F(FilePlayerTest, TheOddestRatesThatAreConverted_KeepTheLength) {
  struct S_Case {
    int nRate;
    std::size_t nFrames;
  };
  for (const S_Case& odd : {S_Case{100, 50}, S_Case{1000000, 100000}}) {
    Write("a.wav", odd.nRate, 1, SweepWithNoise(odd.nFrames, static_cast<unsigned>(odd.nRate)));
    C_OfflinePlayer player;
    player.UseFile(m_folder.Path("a.wav"));
    player.Play(static_cast<UInt32>(odd.nFrames));
    const auto side = player.Render(30000)[0];
    const auto nLength = odd.nFrames * 44100 / static_cast<std::size_t>(odd.nRate);
    EXPECT_FALSE(IsSilent(side.begin(), side.begin() + 400));
    EXPECT_TRUE(IsSilent(side.begin() + static_cast<std::ptrdiff_t>(nLength) + 1, side.end()));
  }
}

TEST_F(FilePlayerTest, CyclesThatDoNotFit_AreRefused) {
  EXPECT_EQ(m_player.Cycle(512), kAudioUnitErr_Uninitialized);
  EXPECT_EQ(AudioUnitInitialize(m_player.Unit()), noErr);
  EXPECT_EQ(m_player.Cycle(512), noErr);
  EXPECT_EQ(m_player.Cycle(513), kAudioUnitErr_TooManyFramesToProcess);
  m_player.UsePlanes(1);
  EXPECT_EQ(m_player.Cycle(512), kAudio_ParamError);
  AudioTimeStamp stamp{};
  AudioBufferList none{};
  EXPECT_EQ(AudioUnitRender(m_player.Unit(), nullptr, &stamp, 0, 1, nullptr), kAudio_ParamError);
  EXPECT_EQ(AudioUnitRender(m_player.Unit(), nullptr, &stamp, 0, 1, &none), kAudio_ParamError);
  EXPECT_EQ(AudioUnitRender(m_player.Unit(), nullptr, &stamp, 1, 1, &none),
            kAudioUnitErr_InvalidElement);
}

}  // namespace
