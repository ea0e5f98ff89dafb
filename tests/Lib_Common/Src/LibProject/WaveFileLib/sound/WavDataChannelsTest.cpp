// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "SampleValues.h"
#include "sound/WavData.h"

namespace {

using C_Pcm = std::vector<unsigned char>;

S_Format Format16(unsigned short wChannels) { return {wChannels, 16, 16, true, 8000}; }
S_Format Format8(unsigned short wChannels) { return {wChannels, 8, 8, false, 8000}; }

// ---- one channel out ----

C_Values ChannelOf(C_WavData& sound, unsigned short wChannel, unsigned int dwStart,
                   unsigned int dwCount) {
  const C_SoundPtr channel(sound.CreateChannelData(wChannel, dwStart, dwCount));
  return channel == nullptr ? C_Values{-99999} : ValuesOf(*channel);
}

TEST(WavDataChannels, CreateChannelData_TakesOneChannelOut) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4, 5, 6, 7, 8, 9}, Format16(3));
  EXPECT_EQ(ChannelOf(sound, 0, 0, 3), (C_Values{1, 4, 7}));
  EXPECT_EQ(ChannelOf(sound, 2, 0, 3), (C_Values{3, 6, 9}));
  EXPECT_EQ(ChannelOf(sound, 1, 1, 2), (C_Values{5, 8}));
  EXPECT_EQ(ChannelOf(sound, 1, 3, 0), C_Values{});
}

TEST(WavDataChannels, CreateChannelData_OfMono_IsAPartOfIt) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4});
  EXPECT_EQ(ChannelOf(sound, 0, 0, 4), (C_Values{1, 2, 3, 4}));
  EXPECT_EQ(ChannelOf(sound, 0, 1, 2), (C_Values{2, 3}));
}

TEST(WavDataChannels, CreateChannelData_HasTheFormatOfTheSound) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4}, {2, 12, 16, false, 22050});
  const C_SoundPtr channel(sound.CreateChannelData(1, 0, 2));
  ASSERT_NE(channel, nullptr);
  I_WavInfo* pInfo = channel->GetWavInfo();
  EXPECT_EQ(pInfo->GetSampleRate(), 22050u);
  EXPECT_EQ(pInfo->GetByteLength(), 4u);
  EXPECT_EQ(pInfo->GetChannels(), 1);
  EXPECT_EQ(pInfo->GetBitsPerSample(), 12);
  EXPECT_EQ(pInfo->GetStoreBitsPerSample(), 16);
  EXPECT_FALSE(pInfo->IsValueSigned());
  EXPECT_EQ(ValuesOf(*channel), (C_Values{2, 4}));
}

TEST(WavDataChannels, CreateChannelData_OfEveryWidth) {
  for (const S_Format& format : {S_Format{2, 8, 8, false, 8000}, S_Format{2, 32, 32, true, 8000},
                                 S_Format{2, 24, 32, true, 8000}}) {
    C_WavData sound;
    SetSound(sound, {1, -2, 3, -4, 5, -6}, format);
    EXPECT_EQ(ChannelOf(sound, 1, 1, 2), (C_Values{-4, -6})) << format.wBits;
  }
}

TEST(WavDataChannels, CreateChannelData_OfAChannelThatDoesNotExist_IsNull) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4}, Format16(2));
  EXPECT_EQ(sound.CreateChannelData(2, 0, 1), nullptr);
  EXPECT_EQ(sound.CreateChannelData(65535, 0, 0), nullptr);
}

TEST(WavDataChannels, CreateChannelData_OutsideTheSound_IsNull) {
  C_WavData sound;
  for (const unsigned short wChannels : std::vector<unsigned short>{1, 2}) {
    SetSound(sound, {1, 2, 3, 4}, Format16(wChannels));
    const unsigned int dwFrames = 4U / wChannels;
    EXPECT_EQ(sound.CreateChannelData(0, 0, dwFrames + 1), nullptr);
    EXPECT_EQ(sound.CreateChannelData(0, dwFrames, 1), nullptr);
    EXPECT_EQ(sound.CreateChannelData(0, 0xFFFFFFFFu, 2), nullptr);
    EXPECT_EQ(sound.CreateChannelData(0, 2, 0xFFFFFFFFu), nullptr);
  }
}

TEST(WavDataChannels, CreateChannelData_OfUnsupportedWidths_StaysInside) {
  C_WavData sound;
  const C_Pcm pcm{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  sound.SetBuffer(pcm.data(), 12);
  sound.SetWavInfoData(8000, 12, 1, 12, 12, true);
  // Eight samples of 12 bits. Samples 2 and 3 are the bytes 3 to 5.
  const C_SoundPtr part(sound.CreateChannelData(0, 2, 2));
  EXPECT_EQ(BytesOf(*part), (C_Pcm{4, 5, 6}));
  sound.SetWavInfoData(8000, 12, 2, 24, 24, true);
  const C_SoundPtr second(sound.CreateChannelData(1, 0, 2));
  EXPECT_EQ(BytesOf(*second), (C_Pcm{4, 5, 6, 10, 11, 12}));
}

// ---- one channel in ----

bool SetChannel(C_WavData& sound, const C_Values& values, unsigned short wChannel,
                unsigned int dwStart, const S_Format& format = {}) {
  C_WavData source;
  SetSound(source, values, format);
  return sound.SetChannelData(&source, wChannel, dwStart, 0);
}

TEST(WavDataChannels, SetChannelData_OfMono_IsABlock) {
  C_WavData sound;
  SetSound(sound, {0, 0, 0, 0});
  EXPECT_TRUE(SetChannel(sound, {7, 8}, 0, 1));
  EXPECT_EQ(ValuesOf(sound), (C_Values{0, 7, 8, 0}));
}

TEST(WavDataChannels, SetChannelData_OfStereo_FillsOneSide) {
  for (const S_Format& format : {Format16(2), Format8(2), S_Format{2, 32, 32, true, 8000}}) {
    S_Format mono = format;
    mono.wChannels = 1;
    C_WavData sound;
    SetSound(sound, C_Values(6, 1), format);
    EXPECT_TRUE(SetChannel(sound, {7, 8, 9}, 0, 0, mono));
    EXPECT_EQ(ValuesOf(sound), (C_Values{7, 1, 8, 1, 9, 1})) << format.wBits;
    EXPECT_TRUE(SetChannel(sound, {5, 6}, 1, 1, mono));
    EXPECT_EQ(ValuesOf(sound), (C_Values{7, 1, 8, 5, 9, 6})) << format.wBits;
  }
}

TEST(WavDataChannels, SetChannelData_StrideIsThatOfTwoChannels) {
  C_WavData sound;
  SetSound(sound, C_Values(9, 0), Format16(3));
  EXPECT_TRUE(SetChannel(sound, {7, 8, 9}, 2, 0));
  EXPECT_EQ(ValuesOf(sound), (C_Values{0, 7, 0, 8, 0, 9, 0, 0, 0}));
  EXPECT_TRUE(SetChannel(sound, {1, 2}, 1, 1));
  EXPECT_EQ(ValuesOf(sound), (C_Values{0, 7, 0, 1, 0, 2, 0, 0, 0}));
  EXPECT_TRUE(SetChannel(sound, {3}, 0, 2));
  EXPECT_EQ(ValuesOf(sound), (C_Values{0, 7, 0, 1, 3, 2, 0, 0, 0}));
}

TEST(WavDataChannels, SetChannelData_TakesTheSourcesBytesInTheSoundsOwnWidth) {
  C_WavData sound;
  SetSound(sound, C_Values(4, 0), Format16(2));
  // Four 8-bit samples count as two 16-bit samples.
  EXPECT_TRUE(SetChannel(sound, {-127, -126, -125, -124}, 0, 0, Format8(1)));
  EXPECT_EQ(BytesOf(sound), (C_Pcm{1, 2, 0, 0, 3, 4, 0, 0}));
  // Both channels of a stereo frame count as two samples as well.
  SetSound(sound, C_Values(4, 0), Format16(2));
  EXPECT_TRUE(SetChannel(sound, {5, 6}, 1, 0, Format16(2)));
  EXPECT_EQ(ValuesOf(sound), (C_Values{0, 5, 0, 6}));
}

TEST(WavDataChannels, SetChannelData_OfAChannelThatDoesNotExist_IsRefused) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4}, Format16(2));
  EXPECT_FALSE(SetChannel(sound, {9}, 2, 0));
  EXPECT_FALSE(sound.SetChannelData(nullptr, 0, 0, 0));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3, 4}));
}

TEST(WavDataChannels, SetChannelData_ThatDoesNotFit_WritesNothing) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4});
  EXPECT_FALSE(SetChannel(sound, {9, 9, 9, 9, 9}, 0, 0));
  EXPECT_FALSE(SetChannel(sound, {9, 9}, 0, 3));
  EXPECT_FALSE(SetChannel(sound, {9}, 0, 0xFFFFFFFFu));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3, 4}));
  SetSound(sound, {1, 2, 3, 4}, Format16(2));
  EXPECT_FALSE(SetChannel(sound, {9, 9, 9}, 0, 0));
  EXPECT_FALSE(SetChannel(sound, {9}, 1, 2));
  EXPECT_FALSE(SetChannel(sound, {9}, 0, 0x80000000u));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3, 4}));
}

TEST(WavDataChannels, SetChannelData_OfNoSamples_IsTrue) {
  C_WavData sound;
  SetSound(sound, {1, 2}, Format16(2));
  EXPECT_TRUE(SetChannel(sound, {}, 0, 0));
  EXPECT_TRUE(SetChannel(sound, {}, 1, 0xFFFFFFFFu));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2}));
}

TEST(WavDataChannels, SetChannelData_OfASourceThatClaimsWithoutHolding_IsRefused) {
  C_WavData sound;
  SetSound(sound, {1, 2});
  C_WavData source;
  source.SetWavInfoData(8000, 2, 1, 16, 16, true);
  EXPECT_FALSE(sound.SetChannelData(&source, 0, 0, 0));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2}));
}

TEST(WavDataChannels, SetChannelData_OfItself_IsDefined) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  EXPECT_TRUE(sound.SetChannelData(&sound, 0, 0, 0));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3}));
}

TEST(WavDataChannels, SetChannelData_OfUnsupportedWidths_WritesNothing) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4, 5, 6}, Format16(2));
  sound.SetWavInfoData(8000, 12, 2, 24, 24, true);
  EXPECT_FALSE(SetChannel(sound, {9, 9, 9}, 0, 0));
  EXPECT_EQ(BytesOf(sound), PcmBytes({1, 2, 3, 4, 5, 6}, {}));
}

TEST(WavDataChannels, SetChannelData_PutsBackWhatWasTakenOut) {
  C_WavData sound;
  C_Values values{1, -2, 3, -4, 5, -6};
  SetSound(sound, values, Format16(2));
  C_WavData rebuilt;
  SetSound(rebuilt, C_Values(6, 0), Format16(2));
  for (const unsigned short wChannel : std::vector<unsigned short>{0, 1}) {
    const C_SoundPtr channel(sound.CreateChannelData(wChannel, 0, 3));
    EXPECT_TRUE(rebuilt.SetChannelData(channel.get(), wChannel, 0, 12345));
  }
  EXPECT_EQ(ValuesOf(rebuilt), values);
}

// ---- to mono ----

C_Values Mixed(const C_Values& values, const S_Format& format) {
  C_WavData sound;
  SetSound(sound, values, format);
  sound.ConvertToMono();
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 1);
  return ValuesOf(sound);
}

TEST(WavDataChannels, ConvertToMono_AveragesStereoTowardZero) {
  EXPECT_EQ(Mixed({1000, 1000, 1000, 0, -1000, 1000, 1000, -1000, 0, 1}, Format16(2)),
            (C_Values{1000, 500, 0, 0, 0}));
  EXPECT_EQ(Mixed({-1, 0, -1, -2}, Format16(2)), (C_Values{0, -1}));
  EXPECT_EQ(Mixed({32767, 32767, -32768, -32768}, Format16(2)), (C_Values{32767, -32768}));
}

TEST(WavDataChannels, ConvertToMono_OfOtherWidths) {
  EXPECT_EQ(Mixed({100, 50, -128, -128}, Format8(2)), (C_Values{75, -128}));
  EXPECT_EQ(Mixed({2047, 1, -2048, -2048}, {2, 12, 16, true, 8000}), (C_Values{1024, -2048}));
  // The sum wraps in 32 bits.
  EXPECT_EQ(Mixed({INT32_MAX, 1, 6, 2}, {2, 32, 32, true, 8000}), (C_Values{-(1 << 30), 4}));
}

TEST(WavDataChannels, ConvertToMono_OfMoreThanTwoChannels_AdvancesByTwoSamples) {
  EXPECT_EQ(Mixed({0, 3, 6, 30, 33, 36, 60, 63, 66, 90, 93, 96}, Format16(3)),
            (C_Values{3, 23, 43, 63}));
  C_Values four;
  for (int i = 0; i < 16; ++i) four.push_back(i * 10);
  EXPECT_EQ(Mixed(four, Format16(4)), (C_Values{15, 35, 55, 75}));
  EXPECT_EQ(Mixed({6, 6, 6, 6, 6, 6, 12, 12, 12, 12, 12, 12}, Format16(6)), (C_Values{6, 8}));
}

TEST(WavDataChannels, ConvertToMono_OfMono_ChangesNothing) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  const unsigned char* pbyBuffer = sound.GetBuffer();
  sound.ConvertToMono();
  EXPECT_EQ(sound.GetBuffer(), pbyBuffer);
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3}));
}

TEST(WavDataChannels, ConvertToMono_LengthIsRoundedUp) {
  C_WavData sound;
  SetSound(sound, {10, 20, 30, 40}, Format16(2));
  sound.SetBuffer(sound.GetBuffer(), 7);
  sound.ConvertToMono();
  // One whole frame becomes one sample. The three bytes after it add two bytes that nothing writes.
  EXPECT_EQ(BytesOf(sound), (C_Pcm{15, 0, 0, 0}));
  EXPECT_EQ(sound.GetBufferLength(), 4u);
}

TEST(WavDataChannels, ConvertToMono_KeepsTheRestOfTheFormat) {
  C_WavData sound;
  SetSound(sound, {1, 3}, {2, 12, 16, false, 22050});
  sound.ConvertToMono();
  EXPECT_EQ(ValuesOf(sound), (C_Values{2}));
  EXPECT_EQ(sound.GetWavInfo()->GetSampleRate(), 22050u);
  EXPECT_EQ(sound.GetWavInfo()->GetBitsPerSample(), 12);
  EXPECT_FALSE(sound.GetWavInfo()->IsValueSigned());
  EXPECT_EQ(sound.GetBufferLength(), 2u);
}

TEST(WavDataChannels, Mixing_OfAttachedMemory_IsRefusedWhole) {
  C_Pcm attached = PcmBytes({1, 2, 3, 4}, {});
  C_WavData sound;
  sound.SetWavInfoData(8000, 8, 2, 16, 16, true);
  sound.AttachBuffer(attached.data(), 8);
  sound.ConvertToMono();
  sound.ConvertToStereoWithSilence(1);
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
  sound.SetWavInfoData(8000, 8, 1, 16, 16, true);
  sound.ConvertToStereo();
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 1);
  EXPECT_EQ(sound.GetBuffer(), attached.data());
  EXPECT_EQ(sound.GetBufferLength(), 8u);
  EXPECT_EQ(attached, PcmBytes({1, 2, 3, 4}, {}));
}

TEST(WavDataChannels, ConvertToMono_OfVeryManyChannels_StaysInside) {
  C_WavData sound;
  SetSound(sound, C_Values(1000, 5), Format16(2));
  sound.SetWavInfoData(8000, 2000, 65535, 16, 16, true);
  sound.ConvertToMono();
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 1);
  EXPECT_EQ(sound.GetBufferLength(), 1u);
}

// ---- to stereo ----

C_Values Widened(const C_Values& values, const S_Format& format) {
  C_WavData sound;
  SetSound(sound, values, format);
  sound.ConvertToStereo();
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
  return ValuesOf(sound);
}

C_Values WithSilence(const C_Values& values, const S_Format& format, unsigned short bRight) {
  C_WavData sound;
  SetSound(sound, values, format);
  sound.ConvertToStereoWithSilence(bRight);
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
  return ValuesOf(sound);
}

TEST(WavDataChannels, ConvertToStereo_DoublesMono) {
  for (const S_Format& format : {Format16(1), Format8(1), S_Format{1, 32, 32, true, 8000},
                                 S_Format{1, 12, 16, false, 8000}}) {
    EXPECT_EQ(Widened({1, -2, 3}, format), (C_Values{1, 1, -2, -2, 3, 3})) << format.wBits;
  }
}

TEST(WavDataChannels, ConvertToStereo_OfMoreChannels_TakesTheFirstTwo) {
  for (const S_Format& format : {Format16(3), Format8(3), S_Format{3, 32, 32, true, 8000}}) {
    EXPECT_EQ(Widened({1, 2, 3, 4, 5, 6}, format), (C_Values{1, 2, 4, 5})) << format.wBits;
  }
  EXPECT_EQ(Widened({1, 2, 3, 4, 5, 6, 7, 8}, Format8(4)), (C_Values{1, 2, 5, 6}));
}

TEST(WavDataChannels, ConvertToStereo_OfStereo_ChangesNothing) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4}, Format16(2));
  const unsigned char* pbyBuffer = sound.GetBuffer();
  sound.ConvertToStereo();
  EXPECT_EQ(sound.GetBuffer(), pbyBuffer);
}

TEST(WavDataChannels, ConvertToStereo_LengthIsThatOfRoundedUpFrames) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3}, Format16(1));
  sound.SetBuffer(sound.GetBuffer(), 5);
  sound.ConvertToStereo();
  EXPECT_EQ(BytesOf(sound), (C_Pcm{1, 0, 1, 0, 2, 0, 2, 0, 0, 0}));
  SetSound(sound, {1, 2, 3, 4}, Format8(3));
  sound.ConvertToStereo();
  EXPECT_EQ(sound.GetBufferLength(), 4u);
}

TEST(WavDataChannels, ConvertToStereoWithSilence_ChoosesTheSide) {
  EXPECT_EQ(WithSilence({1, -2}, Format16(1), 0), (C_Values{1, 0, -2, 0}));
  EXPECT_EQ(WithSilence({1, -2}, Format16(1), 1), (C_Values{0, 1, 0, -2}));
  EXPECT_EQ(WithSilence({1, -2}, Format16(1), 65535), (C_Values{0, 1, 0, -2}));
}

TEST(WavDataChannels, ConvertToStereoWithSilence_IsTheMiddleForUnsignedDataOfOddWidths) {
  const auto widened = [](unsigned short wBits, bool bSigned, unsigned short bRight) {
    C_WavData sound;
    const unsigned char abyPcm[] = {1, 2, 3, 4, 5, 6};
    sound.SetBuffer(abyPcm, sizeof(abyPcm));
    sound.SetWavInfoData(8000, sizeof(abyPcm), 1, wBits, 24, bSigned);
    sound.ConvertToStereoWithSilence(bRight);
    return BytesOf(sound);
  };
  EXPECT_EQ(widened(24, false, 0), (C_Pcm{1, 2, 3, 0, 0, 0x80, 4, 5, 6, 0, 0, 0x80}));
  EXPECT_EQ(widened(24, false, 1), (C_Pcm{0, 0, 0x80, 1, 2, 3, 0, 0, 0x80, 4, 5, 6}));
  EXPECT_EQ(widened(20, false, 0), (C_Pcm{1, 2, 3, 0, 0, 0x08, 4, 5, 6, 0, 0, 0x08}));
  EXPECT_EQ(widened(24, true, 0), (C_Pcm{1, 2, 3, 0, 0, 0, 4, 5, 6, 0, 0, 0}));
  EXPECT_EQ(widened(0, false, 0), (C_Pcm{1, 2, 3, 0, 0, 0, 4, 5, 6, 0, 0, 0}));
}

TEST(WavDataChannels, ConvertToStereoWithSilence_IsTheMiddleForUnsignedData) {
  C_WavData sound;
  SetSound(sound, {0x10}, Format8(1));
  sound.ConvertToStereoWithSilence(0);
  EXPECT_EQ(BytesOf(sound), (C_Pcm{0x90, 0x80}));
  SetSound(sound, {0x10}, Format8(1));
  sound.ConvertToStereoWithSilence(1);
  EXPECT_EQ(BytesOf(sound), (C_Pcm{0x80, 0x90}));
  SetSound(sound, {1}, {1, 12, 16, false, 8000});
  sound.ConvertToStereoWithSilence(0);
  EXPECT_EQ(BytesOf(sound), (C_Pcm{0x01, 0x08, 0x00, 0x08}));
  SetSound(sound, {1}, {1, 32, 32, false, 8000});
  sound.ConvertToStereoWithSilence(1);
  EXPECT_EQ(BytesOf(sound), (C_Pcm{0, 0, 0, 0x80, 1, 0, 0, 0x80}));
}

TEST(WavDataChannels, ConvertToStereoWithSilence_OfSeveralChannels) {
  EXPECT_EQ(WithSilence({5, 6, 7, 8}, Format16(2), 0), (C_Values{5, 0, 7, 0}));
  EXPECT_EQ(WithSilence({5, 6, 7, 8}, Format16(2), 1), (C_Values{0, 6, 0, 8}));
  EXPECT_EQ(WithSilence({5, 6, 7, 8, 9, 10}, Format8(3), 0), (C_Values{5, 0, 8, 0}));
  EXPECT_EQ(WithSilence({5, 6, 7, 8, 9, 10}, Format8(3), 1), (C_Values{0, 6, 0, 9}));
  EXPECT_EQ(WithSilence({5, 6, 7}, {3, 32, 32, true, 8000}, 1), (C_Values{0, 6}));
}

TEST(WavDataChannels, StereoOfAFormatWithoutMemory_IsNotMade) {
  C_WavData sound;
  sound.SetWavInfoData(8000, 0xFFFFFFFFu, 1, 8, 8, false);
  sound.ConvertToStereo();
  EXPECT_EQ(sound.GetBuffer(), nullptr);
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 1);
  unsigned char byOne = 7;
  sound.SetBuffer(&byOne, 1);
  sound.SetWavInfoData(8000, 0x80000000u, 1, 8, 8, false);
  sound.ConvertToStereo();  // twice the length does not fit in 32 bits
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 1);
}

TEST(WavDataChannels, SoundWithoutSamples_ChangesItsChannelsOnly) {
  C_WavData sound;
  SetSound(sound, {}, Format16(2));
  sound.ConvertToMono();
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 1);
  sound.ConvertToStereo();
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(sound.GetBufferLength(), 0u);
}

TEST(WavDataChannels, RandomSounds_MixAsASlowModelSays) {
  C_Random random(41);
  for (int nRound = 0; nRound < 300; ++nRound) {
    const auto wChannels = static_cast<unsigned short>(2 + random() % 6);
    const std::size_t nFrames = 1 + random() % 20;
    C_Values values(nFrames * wChannels);
    for (int& nValue : values) nValue = static_cast<int>(random() % 65536) - 32768;
    C_Values mono;
    C_Values stereo;
    for (std::size_t f = 0; f < nFrames; ++f) {
      int nSum = 0;
      for (std::size_t c = 0; c < wChannels; ++c) nSum += values[c + 2 * f];
      mono.push_back(nSum / wChannels);
      stereo.push_back(values[f * wChannels]);
      stereo.push_back(values[f * wChannels + 1]);
    }
    ASSERT_EQ(Mixed(values, Format16(wChannels)), mono) << wChannels;
    ASSERT_EQ(Widened(values, Format16(wChannels)), stereo) << wChannels;
  }
}

}  // namespace
