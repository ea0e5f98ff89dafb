// SPDX-License-Identifier: Apache-2.0
#include "sound/AudioCodecParam.h"

#include <gtest/gtest.h>

#include <memory>

#include "VTable.h"

namespace {

struct S_SampleBits {
  unsigned short wBits = 77;
  unsigned short wStoreBits = 77;
  bool bSigned = true;
};

S_SampleBits SampleBitsOf(I_AudioCodecParam& param) {
  S_SampleBits bits;
  param.GetSampleBits(&bits.wBits, &bits.wStoreBits, &bits.bSigned);
  return bits;
}

std::pair<unsigned int, unsigned int> SilenceConditionOf(I_AudioCodecParam& param) {
  std::pair<unsigned int, unsigned int> condition{77, 77};
  param.GetSilenceCondition(&condition.first, &condition.second);
  return condition;
}

void ExpectDefaults(I_AudioCodecParam& param) {
  EXPECT_FALSE(param.IsSampleBitsSet());
  const S_SampleBits bits = SampleBitsOf(param);
  EXPECT_EQ(bits.wBits, 0);
  EXPECT_EQ(bits.wStoreBits, 0);
  EXPECT_FALSE(bits.bSigned);
  EXPECT_EQ(param.GetPlatform(), AUDIO_CODEC_PLATFORM_DEFAULT);
  EXPECT_EQ(param.GetEndingFlag(), 0u);
  EXPECT_EQ(param.GetBitRate(), 0u);
  EXPECT_FALSE(param.IsSilenceConditionSet());
  EXPECT_EQ(SilenceConditionOf(param), std::pair(0u, 0u));
  EXPECT_EQ(param.GetCodingQuality(), 0u);
  EXPECT_TRUE(param.GetAutoSilence());
  EXPECT_EQ(param.GetClockSource(), 0u);
  EXPECT_TRUE(param.GetShowConvertProgress());
  EXPECT_FALSE(param.GetIsAttackOnly());
}

void SetEverything(I_AudioCodecParam& param) {
  param.SetSampleBits(12, 16, true);
  param.SetPlatform(AUDIO_CODEC_PLATFORM_FALLBACK);
  param.SetEndingFlag(3);
  param.SetBitRate(1);
  param.SetSilenceCondition(0xFFFFFFFFu, 5);
  param.SetCodingQuality(6);
  param.SetAutoSilence(false);
  param.SetClockSource(7);
  param.SetShowConvertProgress(false);
  param.SetIsAttackOnly(true);
}

}  // namespace

TEST(AudioCodecParam, NewObject_HasTheDefaults) {
  C_AudioCodecParam param;
  ExpectDefaults(param);
}

TEST(AudioCodecParam, Clear_RestoresEveryDefault) {
  C_AudioCodecParam param;
  SetEverything(param);
  param.Clear();
  ExpectDefaults(param);
}

TEST(AudioCodecParam, Options_AreKeptAsGivenEachOnItsOwn) {
  C_AudioCodecParam param;
  SetEverything(param);
  const S_SampleBits bits = SampleBitsOf(param);
  EXPECT_EQ(bits.wBits, 12);
  EXPECT_EQ(bits.wStoreBits, 16);
  EXPECT_TRUE(bits.bSigned);
  EXPECT_EQ(param.GetPlatform(), AUDIO_CODEC_PLATFORM_FALLBACK);
  EXPECT_EQ(param.GetEndingFlag(), 3u);
  EXPECT_EQ(param.GetBitRate(), 1u);
  EXPECT_EQ(SilenceConditionOf(param), std::pair(0xFFFFFFFFu, 5u));
  EXPECT_EQ(param.GetCodingQuality(), 6u);
  EXPECT_FALSE(param.GetAutoSilence());
  EXPECT_EQ(param.GetClockSource(), 7u);
  EXPECT_FALSE(param.GetShowConvertProgress());
  EXPECT_TRUE(param.GetIsAttackOnly());
}

TEST(AudioCodecParam, AnyPlatformNumber_IsKept) {
  C_AudioCodecParam param;
  param.SetPlatform(static_cast<tagAudioCodecPlatform>(0xFFFFFFFFu));
  EXPECT_EQ(static_cast<unsigned int>(param.GetPlatform()), 0xFFFFFFFFu);
}

TEST(AudioCodecParam, SettingSampleBits_EvenToZeros_SetsTheirFlagAndNoOther) {
  C_AudioCodecParam param;
  param.SetSampleBits(0, 0, false);
  EXPECT_TRUE(param.IsSampleBitsSet());
  EXPECT_FALSE(param.IsSilenceConditionSet());
}

TEST(AudioCodecParam, SettingTheSilenceCondition_EvenToZeros_SetsItsFlagAndNoOther) {
  C_AudioCodecParam param;
  param.SetSilenceCondition(0, 0);
  EXPECT_TRUE(param.IsSilenceConditionSet());
  EXPECT_FALSE(param.IsSampleBitsSet());
}

TEST(AudioCodecParam, OtherOptions_SetNoFlag) {
  C_AudioCodecParam param;
  param.SetPlatform(AUDIO_CODEC_PLATFORM_FALLBACK);
  param.SetBitRate(16000);
  param.SetAutoSilence(false);
  param.SetIsAttackOnly(true);
  EXPECT_FALSE(param.IsSampleBitsSet());
  EXPECT_FALSE(param.IsSilenceConditionSet());
}

TEST(AudioCodecParam, Operations_StandInTheirSlots) {
  C_AudioCodecParam param;
  I_AudioCodecParam* pParam = &param;
  CallSlot<void, unsigned short, unsigned short, bool>(pParam, 1, 12, 16, true);
  EXPECT_TRUE(CallSlot<bool>(pParam, 2));
  S_SampleBits bits;
  CallSlot<void>(pParam, 3, &bits.wBits, &bits.wStoreBits, &bits.bSigned);
  EXPECT_EQ(bits.wBits, 12);
  CallSlot<void>(pParam, 4, 2u);
  EXPECT_EQ(CallSlot<unsigned int>(pParam, 5), 2u);
  CallSlot<void>(pParam, 6, 31u);
  EXPECT_EQ(CallSlot<unsigned int>(pParam, 7), 31u);
  CallSlot<void>(pParam, 8, 32u);
  EXPECT_EQ(CallSlot<unsigned int>(pParam, 9), 32u);
  CallSlot<void>(pParam, 10, 33u, 34u);
  EXPECT_TRUE(CallSlot<bool>(pParam, 11));
  unsigned int dwFirst = 0;
  unsigned int dwSecond = 0;
  CallSlot<void>(pParam, 12, &dwFirst, &dwSecond);
  EXPECT_EQ(dwFirst, 33u);
  EXPECT_EQ(dwSecond, 34u);
  CallSlot<void>(pParam, 13, 35u);
  EXPECT_EQ(CallSlot<unsigned int>(pParam, 14), 35u);
  CallSlot<void>(pParam, 15, false);
  EXPECT_FALSE(CallSlot<bool>(pParam, 16));
  CallSlot<void>(pParam, 17, 36u);
  EXPECT_EQ(CallSlot<unsigned int>(pParam, 18), 36u);
  CallSlot<void>(pParam, 19, false);
  EXPECT_FALSE(CallSlot<bool>(pParam, 20));
  CallSlot<void>(pParam, 21, true);
  EXPECT_TRUE(CallSlot<bool>(pParam, 22));
  CallSlot<void>(pParam, 0);
  ExpectDefaults(param);
  CallSlot<void>(static_cast<I_AudioCodecParam*>(new C_AudioCodecParam), 24);
}
