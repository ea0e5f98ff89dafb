// SPDX-License-Identifier: Apache-2.0
//
// Streams have the bytes that the codecs of the class library make.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include <algorithm>
#include <array>
#include <string>

#include "WriterSupport.h"
#include "file/SpHeader.h"
#include "interface/I_AudioCodecParam.h"
#include "sound/MonoMix.h"

namespace {

using namespace api::test;
using testing::ElementsAre;

const auto kHeronTypes2To6 =
    std::to_array({AUDIO_FILE_HERON_2BIT, AUDIO_FILE_HERON_3BIT, AUDIO_FILE_HERON_4BIT,
                   AUDIO_FILE_HERON_5BIT, AUDIO_FILE_HERON_6BIT});

Bytes AfterSpHeader(const Bytes& stream, unsigned short wID, unsigned int dwRate) {
  const C_TempFolder folder;
  const auto strPath = folder.Write("stream", stream);
  C_SpHeader header;
  header.SetID(wID);
  header.SetFreq(dwRate);
  EXPECT_TRUE(PrependSpHeader(header, strPath.c_str()));
  return FileBytes(strPath);
}

// A RIFF file with zeros for the payload of a chunk.
Bytes Bare(Bytes file, const std::string& strID) {
  const auto found = std::search(file.begin(), file.end(), strID.begin(), strID.end());
  EXPECT_NE(found, file.end());
  const auto nAt = static_cast<std::size_t>(found - file.begin());
  const std::size_t cbSize = vcm::C_ByteReader{std::span(file).subspan(nAt + 4)}.U32();
  std::fill_n(found + 8, cbSize, std::uint8_t{0});
  return file;
}

TEST(StreamWriter, Kestrel_HasTheBytesOfTheCodecAtEveryLength) {
  for (const std::size_t nSamples :
       std::to_array<std::size_t>({1, 319, 320, 321, 640, 1000, 3200, 16001})) {
    const auto voice = TestVoice(nSamples);
    const auto sound = SoundOf(voice, 16000, 1);
    for (const unsigned int dwBitRate : {7200U, 16000U, 24000U, 32000U}) {
      sound->GetAudioCodecParam()->SetBitRate(dwBitRate);
      const Bytes stream = ByClassLibrary(*sound, AUDIO_FILE_KESTREL, true);
      const auto format = KestrelFormat(VOXPLAY_CONTAINER_BARE, dwBitRate);
      EXPECT_EQ(Written(format, voice), stream) << nSamples << ", " << dwBitRate;
      EXPECT_EQ(WrittenForward(format, voice), stream) << nSamples << ", " << dwBitRate;
    }
  }
}

TEST(StreamWriter, KestrelOfBitRate0_Has16000) {
  const auto voice = TestVoice(1000);
  EXPECT_EQ(Written(KestrelFormat(VOXPLAY_CONTAINER_SP, 0), voice),
            Written(KestrelFormat(VOXPLAY_CONTAINER_SP, 16000), voice));
}

TEST(StreamWriter, KestrelHeaders_AreThoseOfTheClassLibrary) {
  const auto voice = TestVoice(2000);
  const auto sound = SoundOf(voice, 16000, 1);
  sound->GetAudioCodecParam()->SetBitRate(16000);
  const Bytes stream = ByClassLibrary(*sound, AUDIO_FILE_KESTREL, true);
  EXPECT_EQ(Written(KestrelFormat(VOXPLAY_CONTAINER_HEAD), voice),
            ByClassLibrary(*sound, AUDIO_FILE_KESTREL, true, true));
  EXPECT_EQ(Written(KestrelFormat(VOXPLAY_CONTAINER_SP), voice), AfterSpHeader(stream, 14, 16000));
  EXPECT_EQ(WrittenForward(KestrelFormat(VOXPLAY_CONTAINER_SP), voice),
            AfterSpHeader(stream, 14, 16000));
}

TEST(StreamWriter, Heron_HasTheBytesOfTheCodec) {
  for (const std::size_t nSamples : std::to_array<std::size_t>({1, 100, 5000, 150000})) {
    const auto voice = TestVoice(nSamples);
    const auto sound = SoundOf(voice, 16000, 1);
    for (std::uint32_t dwBits = 2; dwBits <= 6; ++dwBits) {
      const auto eType = kHeronTypes2To6[dwBits - 2];
      const auto bare = HeronFormat(VOXPLAY_CONTAINER_BARE, dwBits);
      const Bytes stream = ByClassLibrary(*sound, eType, true);
      EXPECT_EQ(Written(bare, voice), stream) << nSamples << ", " << dwBits;
      EXPECT_EQ(WrittenForward(bare, voice), stream) << nSamples << ", " << dwBits;
      if (nSamples > 5000) break;
      EXPECT_EQ(Written(HeronFormat(VOXPLAY_CONTAINER_HEAD, dwBits), voice),
                ByClassLibrary(*sound, eType, true, true));
      if (dwBits < 4) continue;
      EXPECT_EQ(Written(HeronFormat(VOXPLAY_CONTAINER_SP, dwBits), voice),
                AfterSpHeader(stream, static_cast<unsigned short>(eType), 16000));
    }
  }
}

TEST(StreamWriter, HeronAtOtherRatesAndChannels_HasTheBytesOfTheCodec) {
  const auto frames = Stereo(60000);
  for (const std::uint32_t dwRate : {4000U, 11025U, 48000U}) {
    const auto sound = SoundOf(frames, dwRate, 2);
    auto format = HeronFormat(VOXPLAY_CONTAINER_HEAD, 4, dwRate);
    format.channels = 2;
    EXPECT_EQ(Written(format, frames), ByClassLibrary(*sound, AUDIO_FILE_HERON_4BIT, true, true));
  }
}

// The class library mixes stereo for Kestrel in a way that disturbs loud sounds. Here the mean is
// coded, which it takes for Heron.
TEST(StreamWriter, KestrelOfManyChannels_IsThatOfTheirMean) {
  for (const unsigned short wChannels : std::to_array<unsigned short>({2, 3, 64})) {
    const auto voice = TestVoice(std::size_t{3000} * wChannels);
    const auto mean = monomix::SamplesOf(*SoundOf(voice, 16000, wChannels));
    ASSERT_TRUE(mean.has_value());
    const auto sound = SoundOf(*mean, 16000, 1);
    sound->GetAudioCodecParam()->SetBitRate(24000);
    auto format = KestrelFormat(VOXPLAY_CONTAINER_BARE, 24000);
    format.channels = wChannels;
    EXPECT_EQ(Written(format, voice), ByClassLibrary(*sound, AUDIO_FILE_KESTREL, true));
  }
}

TEST(StreamWriter, OtherSamples_BecomeThoseOf16BitsFirst) {
  const auto frames = Stereo(3000);
  std::vector<std::int32_t> wide;
  std::vector<float> floats;
  for (const std::int16_t nSample : frames) {
    wide.push_back(nSample * 65536 + 65535);
    floats.push_back((static_cast<float>(nSample) + 0.25F) / 32768.0F);
  }
  for (const auto& mono :
       {KestrelFormat(VOXPLAY_CONTAINER_SP), HeronFormat(VOXPLAY_CONTAINER_SP, 4)}) {
    auto format = mono;
    format.channels = 2;
    EXPECT_EQ(Written(format, wide), Written(format, frames));
    EXPECT_EQ(Written(format, floats), Written(format, frames));
  }
}

TEST(StreamWriter, HeronEvents_HaveTheBytesOfTheCodec) {
  const auto voice = TestVoice(40000);
  const auto sound = SoundOf(voice, 16000, 1);
  api::S_Notes notes;
  const auto add = [&](unsigned int dwFrame, unsigned short wMain, unsigned short wSub) {
    sound->GetEventTagMgr()->AddEventBySamplePos(wMain, wSub, dwFrame, "", 0);
    notes.events.push_back({dwFrame, wMain, wSub, 0, ""});
  };
  add(0, 1, 2);
  add(319, 0x1234, 0x5678);
  for (unsigned int i = 0; i < 70; ++i) add(21000 + i, 3, 4);
  add(39999, 5, 6);
  for (const std::uint32_t dwContainer : {VOXPLAY_CONTAINER_BARE, VOXPLAY_CONTAINER_HEAD}) {
    const auto format = HeronFormat(dwContainer, 5);
    const Bytes expected =
        ByClassLibrary(*sound, AUDIO_FILE_HERON_5BIT, true, dwContainer == VOXPLAY_CONTAINER_HEAD);
    EXPECT_EQ(Written(format, voice, notes), expected);
    EXPECT_EQ(WrittenForward(format, voice, notes), expected);
  }
}

TEST(StreamWriter, LostNotes_AreListed) {
  const auto voice = TestVoice(12000);
  api::S_Notes notes;
  notes.events = {{48, 3, 7, 0, ""}, {50000, 1, 2, 0, ""}};
  notes.regions = {{200, 100}};
  std::vector<std::string> lost;
  Written(KestrelFormat(VOXPLAY_CONTAINER_SP), voice, notes, &lost);
  EXPECT_THAT(lost, ElementsAre("event 1 at frame 48: an SP header holds no events",
                                "event 2 at frame 50000: an SP header holds no events",
                                "region 1 at frame 200: an SP header holds no regions"));
  Written(HeronFormat(VOXPLAY_CONTAINER_HEAD, 2), voice, notes, &lost);
  EXPECT_THAT(lost, ElementsAre("event 1 at frame 48: cannot be read back from a Heron stream",
                                "event 2 at frame 50000: it lies after the end of the sound",
                                "region 1 at frame 200: a codec head holds no regions"));
  notes.regions.clear();
  notes.events.assign(64, {100, 1, 1, 0, ""});
  Written(HeronFormat(VOXPLAY_CONTAINER_BARE, 2), voice, notes, &lost);
  ASSERT_EQ(lost.size(), 64u);
  EXPECT_EQ(lost[63],
            "event 64 at frame 100: a Heron stream holds no more than 63 events within 640 ms, and "
            "this one may be lost");
}

// Noise without end at the largest size: 16 MiB of audio have no room for the offset of events.
TEST(StreamWriter, EventsAfterTooMuchAudio_AreLeftOutAndListed) {
  const std::size_t nSamples = 23000000;
  Samples noise(nSamples);
  std::uint32_t dwState = 1;
  for (std::int16_t& nSample : noise) {
    dwState = dwState * 1664525U + 1013904223U;
    nSample = static_cast<std::int16_t>(dwState >> 18);
  }
  api::S_Notes notes;
  notes.events = {{48, 3, 7, 0, ""}};
  std::vector<std::string> lost;
  const Bytes file = Written(HeronFormat(VOXPLAY_CONTAINER_BARE, 6, 48000), noise, notes, &lost);
  EXPECT_GT(file.size(), std::size_t{16} << 20);
  EXPECT_EQ(vcm::C_ByteReader(file).U32(), 3u);
  EXPECT_THAT(lost,
              ElementsAre("event 1 at frame 48: the coded audio is too long for events after it"));
}

TEST(StreamWriter, StreamWithoutSamples_IsRefused) {
  for (const auto& format :
       {KestrelFormat(VOXPLAY_CONTAINER_SP), KestrelFormat(VOXPLAY_CONTAINER_VEF),
        HeronFormat(VOXPLAY_CONTAINER_HEAD, 3), HeronFormat(VOXPLAY_CONTAINER_VEF, 4)}) {
    EXPECT_EQ(FailureOf([&] { Written(format, Samples()); }).eStatus, VOXPLAY_UNSUPPORTED);
  }
}

TEST(StreamWriter, VefWithAStream_IsThatOfTheClassLibrary) {
  for (const unsigned short wChannels : std::to_array<unsigned short>({1, 2})) {
    const auto frames = wChannels == 1 ? TestVoice(5001) : Stereo(5001);
    const auto sound = SoundOf(frames, 16000, wChannels);
    AddAnnotations(*sound);
    sound->GetAudioCodecParam()->SetBitRate(24000);
    auto format = KestrelFormat(VOXPLAY_CONTAINER_VEF, 24000);
    format.channels = wChannels;
    const Bytes kestrel = Written(format, frames, ExampleNotes());
    EXPECT_EQ(WrittenForward(format, frames, ExampleNotes()), kestrel);
    const Bytes expected = ByClassLibrary(*sound, AUDIO_FILE_KESTREL);
    EXPECT_EQ(WithoutPads(kestrel) == expected, wChannels == 1);
    // The stream of a mean is another one, in the same place.
    EXPECT_EQ(Bare(WithoutPads(kestrel), "vdat"), Bare(expected, "vdat"));
    sound->GetAudioCodecParam()->SetBitRate(0);
    format = HeronFormat(VOXPLAY_CONTAINER_VEF, 4);
    format.channels = wChannels;
    const Bytes heron = ByClassLibrary(*sound, AUDIO_FILE_HERON_4BIT);
    EXPECT_EQ(WithoutPads(Written(format, frames, ExampleNotes())), heron);
    EXPECT_EQ(WithoutPads(WrittenForward(format, frames, ExampleNotes())), heron);
  }
}

TEST(StreamWriter, LengthsThatNoStreamHas_AreRefusedBeforeAByteIsWritten) {
  for (const bool bForward : {false, true}) {
    C_CallerOutput output;
    if (bForward) output.OnlyForward();
    for (auto format :
         {KestrelFormat(VOXPLAY_CONTAINER_BARE, 32000), HeronFormat(VOXPLAY_CONTAINER_HEAD, 2),
          KestrelFormat(VOXPLAY_CONTAINER_SP, 7200), HeronFormat(VOXPLAY_CONTAINER_VEF, 4)}) {
      for (const std::uint64_t qwFrames :
           {std::uint64_t{1} << 31, std::uint64_t{1} << 40, UINT64_MAX}) {
        format.frames = qwFrames;
        const auto open = [&] {
          static_cast<void>(api::C_Writer::Open(api::OpenOutputTarget(output.Record()), format));
        };
        EXPECT_EQ(FailureOf(open).eStatus, VOXPLAY_TOO_LARGE);
      }
    }
    EXPECT_EQ(output.Calls(), 0);
  }
}

// Longer ones could be written, but not read again.
TEST(StreamWriter, LongestSoundsThatCanBeRead_AreTheLongestThatAreWritten) {
  struct S_Limit {
    voxplay_format format;
    std::uint64_t qwMost;
    std::string strWhy;
  };
  const std::vector<S_Limit> limits = {
      {KestrelFormat(VOXPLAY_CONTAINER_BARE, 32000), std::uint64_t{6'710'886} * 320,
       "Kestrel: a sound has at most 2,147,483,520 samples"},
      {HeronFormat(VOXPLAY_CONTAINER_HEAD, 2), 2'147'483'647,
       "Heron: a sound has at most 2,147,483,647 samples"}};
  for (const S_Limit& limit : limits) {
    C_CallerOutput output;
    const auto fnOpen = [&](std::uint64_t qwFrames) {
      voxplay_format format = limit.format;
      format.frames = qwFrames;
      static_cast<void>(api::C_Writer::Open(api::OpenOutputTarget(output.Record()), format));
    };
    EXPECT_NO_THROW(fnOpen(limit.qwMost));
    const auto failure = FailureOf([&] { fnOpen(limit.qwMost + 1); });
    EXPECT_EQ(failure.eStatus, VOXPLAY_TOO_LARGE);
    EXPECT_EQ(failure.strText, limit.strWhy);
  }
}

}  // namespace
