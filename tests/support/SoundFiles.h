// SPDX-License-Identifier: Apache-2.0
//
// Sound files in the formats that the file service reads, written by the file library.
#pragma once

#include <AudioToolbox/AudioToolbox.h>
#include <gtest/gtest.h>
#include <sndfile.h>

#include <cstdint>
#include <string>
#include <vector>

// Writes interleaved samples; `nFormat` is the file library's SF_FORMAT_ type and subtype.
inline void WriteSoundFile(const std::string& strPath, int nFormat, int nRate, int nChannels,
                           const std::vector<std::int16_t>& samples) {
  SF_INFO info{};
  info.format = nFormat;
  info.samplerate = nRate;
  info.channels = nChannels;
  SNDFILE* pSound = sf_open(strPath.c_str(), SFM_WRITE, &info);
  ASSERT_NE(pSound, nullptr) << sf_strerror(nullptr);
  const auto nCount = static_cast<sf_count_t>(samples.size());
  EXPECT_EQ(sf_write_short(pSound, samples.data(), nCount), nCount);
  EXPECT_EQ(sf_close(pSound), 0);
}

// Opens a file as the player does. Null on failure.
inline AudioFileID OpenSoundFile(const std::string& strPath, OSStatus* pnStatus = nullptr) {
  const CFURLRef url = CFURLCreateFromFileSystemRepresentation(
      kCFAllocatorDefault, reinterpret_cast<const UInt8*>(strPath.data()),
      static_cast<CFIndex>(strPath.size()), 0);
  AudioFileID audioFile = nullptr;
  const OSStatus nStatus = AudioFileOpenURL(url, kAudioFileReadPermission, 0, &audioFile);
  if (url != nullptr) CFRelease(url);
  if (pnStatus != nullptr) *pnStatus = nStatus;
  return audioFile;
}

inline UInt64 PacketCount(AudioFileID audioFile) {
  UInt64 qwPackets = ~UInt64{0};
  UInt32 cbPackets = sizeof qwPackets;
  EXPECT_EQ(AudioFileGetProperty(audioFile, kAudioFilePropertyAudioDataPacketCount, &cbPackets,
                                 &qwPackets),
            noErr);
  return qwPackets;
}

inline AudioStreamBasicDescription FormatOf(AudioFileID audioFile) {
  AudioStreamBasicDescription format{};
  UInt32 cbFormat = sizeof format;
  EXPECT_EQ(AudioFileGetProperty(audioFile, kAudioFilePropertyDataFormat, &cbFormat, &format),
            noErr);
  EXPECT_EQ(cbFormat, 40U);
  return format;
}

inline OSStatus StatusOfOpening(const std::string& strPath) {
  OSStatus nStatus = noErr;
  const AudioFileID audioFile = OpenSoundFile(strPath, &nStatus);
  EXPECT_EQ(audioFile != nullptr, nStatus == noErr);
  EXPECT_EQ(AudioFileClose(audioFile), noErr);
  return nStatus;
}
