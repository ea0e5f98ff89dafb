// SPDX-License-Identifier: Apache-2.0
//
// The audio file service: what it opens, what it says about a file, and what it refuses.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <filesystem>

#include "InChild.h"
#include "SoundFiles.h"
#include "TempFolder.h"
#include "TestSounds.h"

namespace {

struct S_FormatCase {
  const char* pszName;
  int nFormat;
  AudioFormatID dwFormat;
  AudioFormatFlags dwFlags;
  UInt32 dwBits;
};

class AudioFileFormatTest : public testing::TestWithParam<S_FormatCase> {
 protected:
  C_TempFolder m_folder;
};

TEST_P(AudioFileFormatTest, Packets_AreFramesAndTheFormatIsWhatIsStored) {
  const S_FormatCase& want = GetParam();
  WriteSoundFile(m_folder.Path("a"), want.nFormat, 22050, 2, SweepWithNoise(1234, 22050, 2));
  const AudioFileID audioFile = OpenSoundFile(m_folder.Path("a"));
  ASSERT_NE(audioFile, nullptr);
  EXPECT_EQ(PacketCount(audioFile), 1234U);
  const auto got = FormatOf(audioFile);
  EXPECT_EQ(got.mSampleRate, 22050.0);
  EXPECT_EQ(got.mFormatID, want.dwFormat);
  EXPECT_EQ(got.mFormatFlags, want.dwFlags);
  EXPECT_EQ(got.mBitsPerChannel, want.dwBits);
  EXPECT_EQ(got.mChannelsPerFrame, 2U);
  EXPECT_EQ(got.mFramesPerPacket, 1U);
  EXPECT_EQ(got.mBytesPerFrame, want.dwBits / 8 * 2);
  EXPECT_EQ(got.mBytesPerPacket, got.mBytesPerFrame);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
}

constexpr AudioFormatID kPcm = kAudioFormatLinearPCM;
INSTANTIATE_TEST_SUITE_P(
    Formats, AudioFileFormatTest,
    testing::Values(
        S_FormatCase{"WavU8", SF_FORMAT_WAV | SF_FORMAT_PCM_U8, kPcm, 8, 8},
        S_FormatCase{"Wav16", SF_FORMAT_WAV | SF_FORMAT_PCM_16, kPcm, 12, 16},
        S_FormatCase{"Wav24", SF_FORMAT_WAV | SF_FORMAT_PCM_24, kPcm, 12, 24},
        S_FormatCase{"Wav32", SF_FORMAT_WAV | SF_FORMAT_PCM_32, kPcm, 12, 32},
        S_FormatCase{"WavFloat", SF_FORMAT_WAV | SF_FORMAT_FLOAT, kPcm, 9, 32},
        S_FormatCase{"WavDouble", SF_FORMAT_WAV | SF_FORMAT_DOUBLE, kPcm, 9, 64},
        S_FormatCase{"WavExtensible16", SF_FORMAT_WAVEX | SF_FORMAT_PCM_16, kPcm, 12, 16},
        S_FormatCase{"WavULaw", SF_FORMAT_WAV | SF_FORMAT_ULAW, kAudioFormatULaw, 0, 8},
        S_FormatCase{"WavALaw", SF_FORMAT_WAV | SF_FORMAT_ALAW, kAudioFormatALaw, 0, 8},
        S_FormatCase{"Aiff8", SF_FORMAT_AIFF | SF_FORMAT_PCM_S8, kPcm, 12, 8},
        S_FormatCase{"Aiff16IsBigEndian", SF_FORMAT_AIFF | SF_FORMAT_PCM_16, kPcm, 14, 16}),
    [](const auto& tested) { return tested.param.pszName; });

class AudioFileTest : public testing::Test {
 protected:
  AudioFileID OpenPcm(std::size_t nFrames, int nRate = 16000, int nChannels = 1) {
    m_samples =
        SweepWithNoise(nFrames, static_cast<unsigned>(nRate), static_cast<unsigned>(nChannels));
    WriteSoundFile(m_folder.Path("pcm.wav"), SF_FORMAT_WAV | SF_FORMAT_PCM_16, nRate, nChannels,
                   m_samples);
    return OpenSoundFile(m_folder.Path("pcm.wav"));
  }
  C_TempFolder m_folder;
  std::vector<std::int16_t> m_samples;
};

UInt16 Little16(const std::vector<std::uint8_t>& bytes, std::size_t cbAt) {
  return static_cast<UInt16>(bytes[cbAt] | bytes[cbAt + 1] << 8);
}
UInt32 Little32(const std::vector<std::uint8_t>& bytes, std::size_t cbAt) {
  return Little16(bytes, cbAt) | static_cast<UInt32>(Little16(bytes, cbAt + 2)) << 16;
}

// The data bytes divided by the block align, both found in the file's bytes by a plain search.
UInt64 BlocksInWav(const std::vector<std::uint8_t>& bytes) {
  const std::string text(bytes.begin(), bytes.end());
  const std::size_t cbFormat = text.find("fmt ") + 8;
  const std::size_t cbData = text.find("data", cbFormat) + 4;
  return Little32(bytes, cbData) / Little16(bytes, cbFormat + 12);
}

TEST_F(AudioFileTest, AnAdpcmFile_HasItsBlocksAsPackets) {
  for (const int nCodec : {SF_FORMAT_IMA_ADPCM, SF_FORMAT_MS_ADPCM}) {
    WriteSoundFile(m_folder.Path("adpcm.wav"), SF_FORMAT_WAV | nCodec, 16000, 1,
                   SweepWithNoise(32000, 16000));
    const auto bytes = m_folder.Read("adpcm.wav");
    const AudioFileID audioFile = OpenSoundFile(m_folder.Path("adpcm.wav"));
    ASSERT_NE(audioFile, nullptr);
    EXPECT_EQ(PacketCount(audioFile), BlocksInWav(bytes));
    EXPECT_GT(PacketCount(audioFile), 10U);
    const auto format = FormatOf(audioFile);
    EXPECT_EQ(format.mFormatID, nCodec == SF_FORMAT_IMA_ADPCM ? 0x6D730011U : 0x6D730002U);
    EXPECT_EQ(format.mBytesPerPacket, Little16(bytes, 20 + 12));
    EXPECT_EQ(format.mFramesPerPacket, Little16(bytes, 20 + 18));
    EXPECT_EQ(AudioFileClose(audioFile), noErr);
  }
}

TEST_F(AudioFileTest, AnAdpcmFileThatIsCutShort_HasTheWholeBlocksThatAreThere) {
  WriteSoundFile(m_folder.Path("a.wav"), SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, 16000, 1,
                 SweepWithNoise(32000, 16000));
  auto bytes = m_folder.Read("a.wav");
  const std::string text(bytes.begin(), bytes.end());
  const std::size_t cbBlock = Little16(bytes, 20 + 12);
  bytes.resize(text.find("data") + 8 + 5 * cbBlock + cbBlock / 2);
  const AudioFileID audioFile = OpenSoundFile(m_folder.Write("cut.wav", bytes));
  ASSERT_NE(audioFile, nullptr);
  EXPECT_EQ(PacketCount(audioFile), 5U);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
}

TEST_F(AudioFileTest, AWavFileWithoutSamples_OpensWithNoPackets) {
  const AudioFileID audioFile = OpenPcm(0);
  ASSERT_NE(audioFile, nullptr);
  EXPECT_EQ(PacketCount(audioFile), 0U);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
}

TEST_F(AudioFileTest, APcmFileThatIsCutShort_HasTheFramesThatAreThere) {
  OpenPcm(1000);
  auto bytes = m_folder.Read("pcm.wav");
  bytes.resize(44 + 501);
  const AudioFileID audioFile = OpenSoundFile(m_folder.Write("cut.wav", bytes));
  ASSERT_NE(audioFile, nullptr);
  EXPECT_EQ(PacketCount(audioFile), 250U);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
}

TEST_F(AudioFileTest, TheLastPacket_IsReadAsItLiesInTheFile) {
  const AudioFileID audioFile = OpenPcm(500, 16000, 2);
  std::array<std::int16_t, 8> buffer{};
  UInt32 cbData = sizeof buffer;
  UInt32 dwPackets = 1;
  AudioStreamPacketDescription description{};
  EXPECT_EQ(
      AudioFileReadPacketData(audioFile, 0, &cbData, &description, 499, &dwPackets, buffer.data()),
      noErr);
  EXPECT_EQ(dwPackets, 1U);
  EXPECT_EQ(cbData, 4U);
  EXPECT_EQ(buffer[0], m_samples[998]);
  EXPECT_EQ(buffer[1], m_samples[999]);
  EXPECT_EQ(buffer[2], 0);
  EXPECT_EQ(description.mStartOffset, 0);
  EXPECT_EQ(description.mDataByteSize, 4U);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
}

TEST_F(AudioFileTest, ReadingPackets_NeverExceedsTheRoomNorTheFile) {
  const AudioFileID audioFile = OpenPcm(500);
  std::array<std::int16_t, 16> buffer{};
  UInt32 cbData = 7;
  UInt32 dwPackets = 100;
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, &cbData, nullptr, 10, &dwPackets, buffer.data()),
            noErr);
  EXPECT_EQ(dwPackets, 3U);
  EXPECT_EQ(cbData, 6U);
  EXPECT_EQ(buffer[2], m_samples[12]);
  EXPECT_EQ(buffer[3], 0);

  cbData = sizeof buffer;
  dwPackets = 100;
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, &cbData, nullptr, 495, &dwPackets, buffer.data()),
            noErr);
  EXPECT_EQ(dwPackets, 5U);
  EXPECT_EQ(cbData, 10U);

  cbData = sizeof buffer;
  dwPackets = 1;
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, &cbData, nullptr, 500, &dwPackets, buffer.data()),
            kAudioFileEndOfFileError);
  EXPECT_EQ(cbData, 0U);
  EXPECT_EQ(dwPackets, 0U);
  cbData = sizeof buffer;
  dwPackets = 1;
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, &cbData, nullptr, -1, &dwPackets, buffer.data()),
            kAudioFileInvalidPacketOffsetError);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
}

TEST_F(AudioFileTest, PacketsOfBlockCodecs_AreNotHandedOut) {
  WriteSoundFile(m_folder.Path("a.wav"), SF_FORMAT_WAV | SF_FORMAT_IMA_ADPCM, 16000, 1,
                 SweepWithNoise(32000, 16000));
  const AudioFileID audioFile = OpenSoundFile(m_folder.Path("a.wav"));
  std::array<std::uint8_t, 64> buffer{};
  UInt32 cbData = sizeof buffer;
  UInt32 dwPackets = 1;
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, &cbData, nullptr, 0, &dwPackets, buffer.data()),
            kAudioFileOperationNotSupportedError);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
}

TEST_F(AudioFileTest, WhatCannotBeOpened_SaysWhy) {
  EXPECT_EQ(StatusOfOpening(m_folder.Path("missing.wav")), kAudioFileFileNotFoundError);
  EXPECT_EQ(StatusOfOpening(m_folder.Path("missing/a.wav")), kAudioFileFileNotFoundError);
  EXPECT_EQ(StatusOfOpening(m_folder.Path()), kAudioFileUnsupportedFileTypeError);
  EXPECT_EQ(StatusOfOpening(m_folder.Write("empty.wav", {})), kAudioFileUnsupportedFileTypeError);
  const std::string strPipe = m_folder.Path("pipe.wav");
  ASSERT_EQ(mkfifo(strPipe.c_str(), 0600), 0);
  EXPECT_EQ(StatusOfOpening(strPipe), kAudioFileUnsupportedFileTypeError);
}

TEST_F(AudioFileTest, AFileThatMayNotBeRead_IsAPermissionError) {
  OpenPcm(10);
  const std::string strPath = m_folder.Path("pcm.wav");
  ASSERT_EQ(chmod(strPath.c_str(), 0600), 0);
  ASSERT_EQ(chmod(m_folder.Path().c_str(), 0755), 0);
  constexpr uid_t kNobody = 65534;
  EXPECT_TRUE(InChildAs(kNobody, [&] {
    OSStatus nStatus = noErr;
    OpenSoundFile(strPath, &nStatus);
    return nStatus == kAudioFilePermissionsError;
  }));
}

TEST_F(AudioFileTest, WmaMidiTextAndZeros_AreUnsupportedFileTypes) {
  const auto padded = [](std::vector<std::uint8_t> bytes) {
    bytes.resize(4096);
    return bytes;
  };
  const std::vector<std::uint8_t> wma = {0x30, 0x26, 0xB2, 0x75, 0x8E, 0x66, 0xCF, 0x11,
                                         0xA6, 0xD9, 0x00, 0xAA, 0x00, 0x62, 0xCE, 0x6C};
  const std::vector<std::uint8_t> midi = {'M', 'T', 'h', 'd', 0,   0, 0, 6, 0, 0, 0,    1,    0,
                                          96,  'M', 'T', 'r', 'k', 0, 0, 0, 4, 0, 0xFF, 0x2F, 0};
  const std::vector<std::uint8_t> text(5000, 'a');
  EXPECT_EQ(StatusOfOpening(m_folder.Write("a.wma", padded(wma))),
            kAudioFileUnsupportedFileTypeError);
  EXPECT_EQ(StatusOfOpening(m_folder.Write("a.mid", midi)), kAudioFileUnsupportedFileTypeError);
  EXPECT_EQ(StatusOfOpening(m_folder.Write("a.vea", text)), kAudioFileUnsupportedFileTypeError);
  EXPECT_EQ(StatusOfOpening(m_folder.Write("a.mp3", padded({}))),
            kAudioFileUnsupportedFileTypeError);
}

// Damages each of the first 90 bytes in turn, and cuts the file to each length below 90. Whatever
// the file library makes of that, nothing crashes, and what opens answers its properties and can be
// read.
TEST_F(AudioFileTest, DamagedHeadersAndEveryCut_NeverCrash) {
  for (const int nCodec : {SF_FORMAT_PCM_16, SF_FORMAT_IMA_ADPCM, SF_FORMAT_MS_ADPCM}) {
    WriteSoundFile(m_folder.Path("good.wav"), SF_FORMAT_WAV | nCodec, 16000, 1,
                   SweepWithNoise(600, 16000));
    const auto good = m_folder.Read("good.wav");
    const auto tryOne = [&](const std::vector<std::uint8_t>& bytes) {
      const AudioFileID audioFile = OpenSoundFile(m_folder.Write("bad.wav", bytes));
      if (audioFile == nullptr) return;
      EXPECT_NE(PacketCount(audioFile), ~UInt64{0});
      FormatOf(audioFile);
      std::array<std::uint8_t, 256> buffer{};
      UInt32 cbData = sizeof buffer;
      UInt32 dwPackets = 2;
      AudioFileReadPacketData(audioFile, 0, &cbData, nullptr, 0, &dwPackets, buffer.data());
      EXPECT_LE(cbData, sizeof buffer);
      EXPECT_EQ(AudioFileClose(audioFile), noErr);
    };
    for (std::size_t i = 0; i < 90 && i < good.size(); ++i) {
      for (const int nValue : {0x00, 0x01, 0x7F, 0x80, 0xFF}) {
        auto bad = good;
        bad[i] = static_cast<std::uint8_t>(nValue);
        tryOne(bad);
      }
      tryOne({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(i)});
    }
  }
}

TEST_F(AudioFileTest, Layout_ExistsOnlyForFilesThatCarryOne) {
  const AudioFileID plain = OpenPcm(10, 16000, 2);
  UInt32 cbLayout = 99;
  UInt32 dwWritable = 99;
  EXPECT_EQ(
      AudioFileGetPropertyInfo(plain, kAudioFilePropertyChannelLayout, &cbLayout, &dwWritable),
      noErr);
  EXPECT_EQ(cbLayout, 0U);
  EXPECT_EQ(dwWritable, 0U);
  std::array<UInt8, 256> layout{};
  UInt32 cbRoom = sizeof layout;
  EXPECT_EQ(AudioFileGetProperty(plain, kAudioFilePropertyChannelLayout, &cbRoom, layout.data()),
            kAudioFileUnsupportedPropertyError);
  EXPECT_EQ(AudioFileClose(plain), noErr);
}

TEST_F(AudioFileTest, BadArguments_AreRefused) {
  const AudioFileID audioFile = OpenPcm(10);
  AudioStreamBasicDescription format{};
  UInt32 cbFormat = 39;
  EXPECT_EQ(AudioFileGetProperty(audioFile, kAudioFilePropertyDataFormat, &cbFormat, &format),
            kAudioFileBadPropertySizeError);
  cbFormat = 400;
  EXPECT_EQ(AudioFileGetProperty(audioFile, toolbox::FourChars("none"), &cbFormat, &format),
            kAudioFileUnsupportedPropertyError);
  EXPECT_EQ(AudioFileGetPropertyInfo(audioFile, toolbox::FourChars("none"), nullptr, nullptr),
            kAudioFileUnsupportedPropertyError);
  EXPECT_EQ(AudioFileGetProperty(audioFile, kAudioFilePropertyDataFormat, nullptr, &format),
            kAudio_ParamError);
  EXPECT_EQ(AudioFileGetProperty(audioFile, kAudioFilePropertyDataFormat, &cbFormat, nullptr),
            kAudio_ParamError);
  UInt32 dwPackets = 1;
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, &cbFormat, nullptr, 0, &dwPackets, nullptr),
            kAudio_ParamError);
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, nullptr, nullptr, 0, &dwPackets, &format),
            kAudio_ParamError);
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, &cbFormat, nullptr, 0, nullptr, &format),
            kAudio_ParamError);
  EXPECT_EQ(AudioFileGetPropertyInfo(audioFile, kAudioFilePropertyDataFormat, nullptr, nullptr),
            noErr);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
  EXPECT_EQ(AudioFileReadPacketData(audioFile, 0, &cbFormat, nullptr, 0, &dwPackets, &format),
            kAudioFileNotOpenError);

  AudioFileID opened = audioFile;
  EXPECT_EQ(AudioFileOpenURL(nullptr, kAudioFileReadPermission, 0, &opened), kAudio_ParamError);
  EXPECT_EQ(opened, nullptr);
  const std::string strPath = m_folder.Path("pcm.wav");
  const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
      kCFAllocatorDefault, reinterpret_cast<const UInt8*>(strPath.data()),
      static_cast<CFIndex>(strPath.size()), 0);
  EXPECT_EQ(AudioFileOpenURL(url, kAudioFileReadPermission, 0, nullptr), kAudio_ParamError);
  EXPECT_EQ(AudioFileOpenURL(url, kAudioFileReadWritePermission, 0, &opened),
            kAudioFilePermissionsError);
  CFRelease(url);
}

TEST_F(AudioFileTest, AStaleIdentifier_IsNotOpen_AndANullOneClosesWithSuccess) {
  const AudioFileID audioFile = OpenPcm(10);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
  EXPECT_EQ(AudioFileClose(audioFile), kAudioFileNotOpenError);
  UInt64 qwPackets = 0;
  UInt32 cbPackets = sizeof qwPackets;
  EXPECT_EQ(AudioFileGetProperty(audioFile, kAudioFilePropertyAudioDataPacketCount, &cbPackets,
                                 &qwPackets),
            kAudioFileNotOpenError);
  EXPECT_EQ(AudioFileGetPropertyInfo(nullptr, kAudioFilePropertyDataFormat, nullptr, nullptr),
            kAudioFileNotOpenError);
  EXPECT_EQ(AudioFileClose(nullptr), noErr);
}

TEST_F(AudioFileTest, Url_NeedsAPath) {
  const auto* pbyPath = reinterpret_cast<const UInt8*>("a\0b");
  EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, nullptr, 3, 0), nullptr);
  EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, pbyPath, 0, 0), nullptr);
  EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, pbyPath, -1, 0), nullptr);
  EXPECT_EQ(CFURLCreateFromFileSystemRepresentation(kCFAllocatorDefault, pbyPath, 3, 0), nullptr);
  CFRelease(nullptr);
}

std::size_t OpenDescriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

TEST_F(AudioFileTest, OpeningFailingAndClosing_LeaveNoDescriptorOpen) {
  EXPECT_EQ(AudioFileClose(OpenPcm(10)), noErr);
  const std::vector<std::uint8_t> text(100, 'x');
  m_folder.Write("text.wav", text);
  const std::size_t nBefore = OpenDescriptors();
  for (int i = 0; i < 20; ++i) {
    StatusOfOpening(m_folder.Path("pcm.wav"));
    StatusOfOpening(m_folder.Path("text.wav"));
    StatusOfOpening(m_folder.Path());
  }
  EXPECT_EQ(OpenDescriptors(), nBefore);
}

}  // namespace
