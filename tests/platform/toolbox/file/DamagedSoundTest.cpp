// SPDX-License-Identifier: Apache-2.0
//
// Sound files with damage anywhere. Whatever the decoders make of them, a file that opens can be
// queried, read and played to the end, and nothing is read or written out of bounds.
#include <algorithm>
#include <array>
#include <random>

#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

constexpr int kDamages = 150;
constexpr UInt32 kCycleFrames = 512;

using Bytes = std::vector<std::uint8_t>;

struct S_SoundCase {
  const char* pszName;
  int nFormat;
  int nRate;
  int nChannels;
};

class C_Damage {
 public:
  explicit C_Damage(unsigned nSeed) : m_random(nSeed) {}

  // Replaces one to six bytes or 32-bit words, most of them in the head, and sometimes cuts the
  // file.
  Bytes Do(Bytes bytes) {
    for (int n = Below(6) + 1; n > 0; --n) ReplaceSome(bytes);
    if (Below(4) == 0) bytes.resize(static_cast<std::size_t>(Below(Size(bytes))) + 1);
    return bytes;
  }

 private:
  int Below(int nEnd) { return static_cast<int>(m_random() % static_cast<unsigned>(nEnd)); }
  static int Size(const Bytes& bytes) { return static_cast<int>(bytes.size()); }

  void ReplaceSome(Bytes& bytes) {
    constexpr std::array<std::uint32_t, 9> kWords = {
        0, 1, 3, 0x7FFF, 0xFFFF, 0x7FFFFFFF, 0x80000000, 0xFFFFFFF7, 0xFFFFFFFF};
    const int nEnd = Below(3) != 0 ? std::min(Size(bytes), 120) : Size(bytes);
    const auto cbAt = static_cast<std::size_t>(Below(nEnd));
    if (Below(2) == 0) {
      bytes[cbAt] = static_cast<std::uint8_t>(Below(256));
      return;
    }
    const std::uint32_t dwWord = kWords.at(static_cast<std::size_t>(Below(9)));
    for (std::size_t i = 0; i < 4 && cbAt + i < bytes.size(); ++i) {
      bytes[cbAt + i] = static_cast<std::uint8_t>(dwWord >> (8 * i));
    }
  }

  std::mt19937 m_random;
};

class DamagedSoundTest : public testing::TestWithParam<S_SoundCase> {
 protected:
  DamagedSoundTest() {
    const AudioComponentDescription description = {kAudioUnitType_Generator,
                                                   kAudioUnitSubType_AudioFilePlayer,
                                                   kAudioUnitManufacturer_Apple, 0, 0};
    EXPECT_EQ(AudioComponentInstanceNew(AudioComponentFindNext(nullptr, &description), &m_unit),
              noErr);
  }
  ~DamagedSoundTest() override { EXPECT_EQ(AudioComponentInstanceDispose(m_unit), noErr); }

  template <typename T>
  [[nodiscard]] OSStatus Set(AudioUnitPropertyID dwID, const T& value) const {
    return AudioUnitSetProperty(m_unit, dwID, kAudioUnitScope_Global, 0, &value, sizeof value);
  }
  // False when the file's rate cannot be converted.
  [[nodiscard]] bool Schedule(AudioFileID audioFile) const {
    EXPECT_EQ(Set(kAudioUnitProperty_ScheduledFileIDs, audioFile), noErr);
    ScheduledAudioFileRegion region{};
    region.mTimeStamp.mFlags = kAudioTimeStampSampleTimeValid;
    region.mAudioFile = audioFile;
    region.mFramesToPlay = static_cast<UInt32>(PacketCount(audioFile));
    EXPECT_EQ(Set(kAudioUnitProperty_ScheduledFileRegion, region), noErr);
    AudioTimeStamp start{};
    start.mFlags = kAudioTimeStampSampleTimeValid;
    start.mSampleTime = -1.0;
    EXPECT_EQ(Set(kAudioUnitProperty_ScheduleStartTimeStamp, start), noErr);
    return Set(kAudioUnitProperty_ScheduledFilePrime, UInt32{0}) == noErr;
  }
  void Render(int nCycles) const {
    std::array<std::vector<float>, 2> planes = {std::vector<float>(kCycleFrames),
                                                std::vector<float>(kCycleFrames)};
    struct {
      AudioBufferList list;
      AudioBuffer second;
    } buffers{};
    buffers.list = {2, {{1, kCycleFrames * 4, planes[0].data()}}};
    buffers.second = {1, kCycleFrames * 4, planes[1].data()};
    AudioTimeStamp stamp{};
    stamp.mFlags = kAudioTimeStampSampleTimeValid;
    for (int i = 0; i < nCycles; ++i) {
      EXPECT_EQ(AudioUnitRender(m_unit, nullptr, &stamp, 0, kCycleFrames, &buffers.list), noErr);
      stamp.mSampleTime += kCycleFrames;
    }
  }
  void ReadPackets(AudioFileID audioFile) const {
    const auto nLast = static_cast<SInt64>(PacketCount(audioFile)) - 1;
    for (const SInt64 nPacket : {SInt64{0}, nLast}) {
      std::vector<std::uint8_t> buffer(100);
      auto cbData = static_cast<UInt32>(buffer.size());
      UInt32 dwPackets = 3;
      AudioFileReadPacketData(audioFile, 0, &cbData, nullptr, nPacket, &dwPackets, buffer.data());
      EXPECT_LE(cbData, buffer.size());
      EXPECT_LE(dwPackets, 3U);
    }
  }
  // True when the file opened.
  [[nodiscard]] bool PlayFile(const Bytes& bytes) const {
    const AudioFileID audioFile = OpenSoundFile(m_folder.Write("bad", bytes));
    if (audioFile == nullptr) return false;
    EXPECT_EQ(AudioUnitInitialize(m_unit), noErr);
    if (Schedule(audioFile)) {
      Render(10);
      ReadPackets(audioFile);
      Render(10);
    }
    EXPECT_EQ(AudioUnitUninitialize(m_unit), noErr);
    EXPECT_EQ(AudioFileClose(audioFile), noErr);
    return true;
  }

  C_TempFolder m_folder;
  AudioUnit m_unit = nullptr;
};

TEST_P(DamagedSoundTest, DamagedFile_IsRefusedOrPlaysToItsEnd) {
  const S_SoundCase& sound = GetParam();
  WriteSoundFile(m_folder.Path("good"), sound.nFormat, sound.nRate, sound.nChannels,
                 SweepWithNoise(3000, static_cast<unsigned>(sound.nRate),
                                static_cast<unsigned>(sound.nChannels)));
  const Bytes good = m_folder.Read("good");
  ASSERT_TRUE(PlayFile(good));
  C_Damage damage(1);
  int nOpened = 0;
  for (int i = 0; i < kDamages; ++i) nOpened += PlayFile(damage.Do(good)) ? 1 : 0;
  // Some of the damaged files must open, and some must be refused.
  EXPECT_GT(nOpened, 0);
  EXPECT_LT(nOpened, kDamages);
}

constexpr int kMp3 = SF_FORMAT_MPEG | SF_FORMAT_MPEG_LAYER_III;
INSTANTIATE_TEST_SUITE_P(
    Kinds, DamagedSoundTest,
    testing::Values(S_SoundCase{"Wav8", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, 8000, 1},
                    S_SoundCase{"Wav16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, 16000, 2},
                    S_SoundCase{"Wav24", SF_FORMAT_WAVEX | SF_FORMAT_PCM_24, 44100, 3},
                    S_SoundCase{"WavFloat", SF_FORMAT_WAV | SF_FORMAT_FLOAT, 44100, 1},
                    S_SoundCase{"WavULaw", SF_FORMAT_WAV | SF_FORMAT_ULAW, 8000, 1},
                    S_SoundCase{"WavIma", SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, 16000, 2},
                    S_SoundCase{"WavMs", SF_FORMAT_WAV | SF_FORMAT_MS_ADPCM, 16000, 2},
                    S_SoundCase{"WavGsm", SF_FORMAT_WAV | SF_FORMAT_GSM610, 8000, 1},
                    S_SoundCase{"Mp3Mono", kMp3, 16000, 1},
                    S_SoundCase{"Mp3Stereo", kMp3, 44100, 2}),
    [](const auto& tested) { return tested.param.pszName; });

}  // namespace
