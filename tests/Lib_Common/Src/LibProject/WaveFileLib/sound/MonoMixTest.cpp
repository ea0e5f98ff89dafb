// SPDX-License-Identifier: Apache-2.0
//
// Sounds of every format, mixed to 16-bit mono samples.
#include "sound/MonoMix.h"

#include <gtest/gtest.h>

#include "SampleValues.h"

namespace {

using Samples = std::vector<short>;

std::optional<Samples> Mix(const C_Values& values, const S_Format& format) {
  C_WavData sound;
  SetSound(sound, values, format);
  return monomix::SamplesOf(sound);
}

TEST(MonoMix, SixteenBitMono_IsTakenAsItIs) {
  EXPECT_EQ(Mix({0, 1, -1, 32767, -32768}, {}), (Samples{0, 1, -1, 32767, -32768}));
}

TEST(MonoMix, OtherWidths_AreScaledTowardZero) {
  EXPECT_EQ(Mix({0, 1, -1, 127, -128}, {.wBits = 8, .wStoreBits = 8, .bSigned = false}),
            (Samples{0, 256, -256, 32512, -32768}));
  EXPECT_EQ(Mix({1, -1, 2047, -2048}, {.wBits = 12}), (Samples{16, -16, 32752, -32768}));
  EXPECT_EQ(Mix({255, 256, -511, 8388607, -8388608}, {.wBits = 24, .wStoreBits = 32}),
            (Samples{0, 1, -1, 32767, -32768}));
  EXPECT_EQ(Mix({65535, 65536, -65536, 2147483647}, {.wBits = 32, .wStoreBits = 32}),
            (Samples{0, 1, -1, 32767}));
}

TEST(MonoMix, UnsignedSixteenBits_AreCentred) {
  EXPECT_EQ(Mix({0, 1, -32768}, {.bSigned = false}), (Samples{0, 1, -32768}));
}

TEST(MonoMix, Stereo_IsAveragedTowardZero) {
  EXPECT_EQ(Mix({10, 21, -10, -21, 1, -2, 32767, 32767, -32768, -32768, -1, -2}, {.wChannels = 2}),
            (Samples{15, -15, 0, 32767, -32768, -1}));
}

TEST(MonoMix, AnyNumberOfChannels_IsAveragedFrameByFrame) {
  EXPECT_EQ(Mix({1, 2, 3, 10, 20, 30}, {.wChannels = 3}), (Samples{2, 20}));
  EXPECT_EQ(Mix({1, 2, 3, 4, 5, 6, -1, -2, -3, -4, -5, -6}, {.wChannels = 6}), (Samples{3, -3}));
  EXPECT_EQ(Mix({127, 127, 127, 127, 127, -128, -128, -128, -128, -128},
                {.wChannels = 5, .wBits = 8, .wStoreBits = 8, .bSigned = false}),
            (Samples{32512, -32768}));
}

TEST(MonoMix, NarrowStereo_IsScaledBeforeItIsAveraged) {
  EXPECT_EQ(Mix({0, 1}, {.wChannels = 2, .wBits = 8, .wStoreBits = 8, .bSigned = false}),
            (Samples{128}));
}

TEST(MonoMix, MostChannels_DoNotOverflow) {
  EXPECT_EQ(Mix(C_Values(65535, -32768), {.wChannels = 65535}), Samples{-32768});
  EXPECT_EQ(Mix(C_Values(65535, 32767), {.wChannels = 65535}), Samples{32767});
}

TEST(MonoMix, LongSounds_AreMixedToTheirLastFrame) {
  C_Values values;
  for (int i = 0; i < 2 * 65536 + 3; ++i) {
    values.push_back(i % 1000);
    values.push_back(i % 1000 + 2);
  }
  const auto mix = Mix(values, {.wChannels = 2});
  ASSERT_TRUE(mix);
  ASSERT_EQ(mix->size(), 131075u);
  for (std::size_t i = 0; i < mix->size(); ++i) ASSERT_EQ((*mix)[i], i % 1000 + 1) << i;
}

TEST(MonoMix, PartOfAFrameAtTheEnd_IsLeftOut) {
  EXPECT_EQ(Mix({10, 20, 30}, {.wChannels = 2}), Samples{15});
}

TEST(MonoMix, SoundWithoutSamples_IsEmptyAndWithoutABuffer_IsRefused) {
  EXPECT_EQ(Mix({}, {}), Samples{});
  C_WavData nothing;
  EXPECT_FALSE(monomix::SamplesOf(nothing));
}

TEST(MonoMix, FormatsThatCannotBeConverted_AreRefused) {
  EXPECT_FALSE(Mix({1, 2, 3}, {.wBits = 24, .wStoreBits = 24}));
  EXPECT_FALSE(Mix({1, 2, 3}, {.wChannels = 1, .wBits = 17, .wStoreBits = 16}));
}

TEST(MonoMix, SoundShorterThanItsFormatSays_IsRefused) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  sound.SetWavInfoData(16000, 8, 1, 16, 16, true);
  EXPECT_FALSE(monomix::SamplesOf(sound));
  sound.SetWavInfoData(16000, 0xFFFFFFFE, 1, 16, 16, true);
  EXPECT_FALSE(monomix::SamplesOf(sound));
  sound.SetWavInfoData(16000, 0xFFFFFFFF, 1, 8, 8, false);
  EXPECT_FALSE(monomix::SamplesOf(sound));
}

TEST(MonoMix, FormatWithoutChannelsOrWidth_IsRefused) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  sound.SetWavInfoData(16000, 6, 0, 16, 16, true);
  EXPECT_FALSE(monomix::SamplesOf(sound));
  sound.SetWavInfoData(16000, 6, 1, 16, 0, true);
  EXPECT_FALSE(monomix::SamplesOf(sound));
}

TEST(MonoMix, TheSoundItself_StaysAsItWas) {
  C_WavData sound;
  SetSound(sound, {10, 21}, {.wChannels = 2});
  const auto before = BytesOf(sound);
  ASSERT_TRUE(monomix::SamplesOf(sound));
  EXPECT_EQ(BytesOf(sound), before);
  EXPECT_EQ(sound.GetWavInfo()->GetChannels(), 2);
}

}  // namespace
