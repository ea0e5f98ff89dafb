// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "SampleValues.h"
#include "sound/WavData.h"

namespace {

using C_Pcm = std::vector<unsigned char>;

C_SoundPtr Converted(const C_Values& values, const S_Format& from, const S_Format& to,
                     bool bExact = true) {
  C_WavData sound;
  SetSound(sound, values, from);
  return C_SoundPtr(sound.CreateBitsConvertedData(to.wBits, to.wStoreBits, to.bSigned, bExact));
}

C_Values ConvertedValues(const C_Values& values, const S_Format& from, const S_Format& to,
                         bool bExact = true) {
  const C_SoundPtr converted = Converted(values, from, to, bExact);
  return converted == nullptr ? C_Values{} : ValuesOf(*converted);
}

constexpr S_Format kMono8{1, 8, 8, true, 8000};
constexpr S_Format kMono8Unsigned{1, 8, 8, false, 8000};
constexpr S_Format kMono12{1, 12, 16, true, 8000};
constexpr S_Format kMono16{1, 16, 16, true, 8000};
constexpr S_Format kMono32{1, 32, 32, true, 8000};
constexpr S_Format kStereo16{2, 16, 16, true, 8000};

TEST(WavDataWidth, Narrowing_RoundsTowardZero) {
  const C_Values values{-1, -255, -256, -257, 256, 255, 32767, -32768};
  const C_Values expected{0, 0, -1, -1, 1, 0, 127, -128};
  EXPECT_EQ(ConvertedValues(values, kMono16, kMono8), expected);
  EXPECT_EQ(ConvertedValues(values, kMono16, kMono8Unsigned), expected);
}

TEST(WavDataWidth, Widening_Shifts) {
  EXPECT_EQ(ConvertedValues({-128, 127, -1, 1}, kMono8, kMono16),
            (C_Values{-32768, 32512, -256, 256}));
  EXPECT_EQ(ConvertedValues({-2048, 2047, -1}, kMono12, kMono16), (C_Values{-32768, 32752, -16}));
  EXPECT_EQ(ConvertedValues({-32768, 32767, -1}, kMono16, kMono32),
            (C_Values{INT32_MIN, 32767 * 65536, -65536}));
}

TEST(WavDataWidth, MostNegative32BitValue_IsConverted) {
  EXPECT_EQ(ConvertedValues({INT32_MIN, INT32_MAX, -1}, kMono32, kMono16),
            (C_Values{-32768, 32767, 0}));
}

TEST(WavDataWidth, InexactNarrowing_StoresNegativeValuesOneStepLower) {
  const C_SoundPtr converted = Converted({-256, -32768, -1, 512}, kMono16, kMono8, false);
  ASSERT_NE(converted, nullptr);
  EXPECT_EQ(BytesOf(*converted), (C_Pcm{0xFE, 0x7F, 0x00, 0x02}));
  EXPECT_EQ(BytesOf(*Converted({-256, -1}, kMono16, kMono8Unsigned, false)), (C_Pcm{0x7F, 0x80}));
}

TEST(WavDataWidth, Signedness_ChangesByItself) {
  EXPECT_EQ(BytesOf(*Converted({-128, 0, 127}, kMono8Unsigned, kMono8)), (C_Pcm{0x80, 0, 0x7F}));
  EXPECT_EQ(BytesOf(*Converted({-128, 0, 127}, kMono8, kMono8Unsigned)), (C_Pcm{0, 0x80, 0xFF}));
}

TEST(WavDataWidth, Converted_HasItsFormat) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3, 4}, {2, 16, 16, true, 11025});
  const C_SoundPtr converted(sound.CreateBitsConvertedData(24, 32, false, true));
  I_WavInfo* pInfo = converted->GetWavInfo();
  EXPECT_EQ(pInfo->GetSampleRate(), 11025u);
  EXPECT_EQ(pInfo->GetByteLength(), 16u);
  EXPECT_EQ(pInfo->GetChannels(), 2);
  EXPECT_EQ(pInfo->GetBitsPerSample(), 24);
  EXPECT_EQ(pInfo->GetStoreBitsPerSample(), 32);
  EXPECT_FALSE(pInfo->IsValueSigned());
  EXPECT_EQ(converted->GetEventTagMgr()->GetSampleRate(), 11025u);
  // The source is unchanged.
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3, 4}));
}

TEST(WavDataWidth, SameFormat_IsConvertedAllTheSame) {
  C_WavData sound;
  SetSound(sound, {1, -2, 3});
  const C_SoundPtr converted(sound.CreateBitsConvertedData(16, 16, true, true));
  ASSERT_NE(converted, nullptr);
  EXPECT_NE(converted->GetBuffer(), sound.GetBuffer());
  EXPECT_EQ(ValuesOf(*converted), (C_Values{1, -2, 3}));
  const C_SoundPtr inexact(sound.CreateBitsConvertedData(16, 16, true, false));
  EXPECT_EQ(ValuesOf(*inexact), (C_Values{1, -3, 3}));
}

TEST(WavDataWidth, UnsupportedWidths_AreRefused) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  for (const auto& [wBits, wStore] : std::vector<std::pair<unsigned short, unsigned short>>{
           {24, 24}, {16, 8}, {33, 32}, {12, 12}, {64, 64}, {0, 0}}) {
    EXPECT_EQ(sound.CreateBitsConvertedData(wBits, wStore, true, true), nullptr) << wBits;
    EXPECT_FALSE(sound.ConvertBits(wBits, wStore, true, true)) << wBits;
  }
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3}));
  sound.SetWavInfoData(8000, 6, 1, 24, 24, true);
  EXPECT_EQ(sound.CreateBitsConvertedData(16, 16, true, true), nullptr);
  sound.SetWavInfoData(8000, 6, 1, 12, 12, true);
  EXPECT_EQ(sound.CreateBitsConvertedData(16, 16, true, true), nullptr);
}

TEST(WavDataWidth, ConvertBits_ToTheFormatItHas_CopiesNothing) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  const unsigned char* pbyBuffer = sound.GetBuffer();
  EXPECT_TRUE(sound.ConvertBits(16, 16, true, false));
  EXPECT_EQ(sound.GetBuffer(), pbyBuffer);
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3}));
}

TEST(WavDataWidth, ConvertBits_ToUnsupportedWidthsThatItHas_IsTrue) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  sound.SetWavInfoData(8000, 6, 1, 24, 24, true);
  EXPECT_TRUE(sound.ConvertBits(24, 24, true, true));
}

TEST(WavDataWidth, ConvertBits_ReplacesSamplesAndFormat) {
  C_WavData sound;
  SetSound(sound, {-257, 256, 0x7FFF}, {1, 16, 16, true, 22050});
  EXPECT_TRUE(sound.ConvertBits(8, 8, false, true));
  EXPECT_EQ(BytesOf(sound), (C_Pcm{0x7F, 0x81, 0xFF}));
  EXPECT_EQ(sound.GetBufferLength(), 3u);
  EXPECT_EQ(sound.GetWavInfo()->GetBitsPerSample(), 8);
  EXPECT_EQ(sound.GetWavInfo()->GetSampleRate(), 22050u);
  EXPECT_EQ(sound.GetIWaveDataBuffer()->GetSampleValueInt(0, 0), -1);
}

TEST(WavDataWidth, AttachedSound_HasConvertedCopies) {
  C_Pcm attached = PcmBytes({256, -256}, {});
  C_WavData sound;
  sound.SetWavInfoData(8000, 4, 1, 16, 16, true);
  sound.AttachBuffer(attached.data(), 4);
  const C_SoundPtr converted(sound.CreateBitsConvertedData(8, 8, true, true));
  ASSERT_NE(converted, nullptr);
  EXPECT_EQ(ValuesOf(*converted), (C_Values{1, -1}));
  EXPECT_EQ(attached, PcmBytes({256, -256}, {}));
}

TEST(WavDataWidth, SoundWithoutSamples_GivesOneWithoutSamples) {
  C_WavData sound;
  SetSound(sound, {});
  const C_SoundPtr converted(sound.CreateBitsConvertedData(8, 8, true, true));
  ASSERT_NE(converted, nullptr);
  EXPECT_EQ(converted->GetBufferLength(), 0u);
  EXPECT_EQ(converted->GetWavInfo()->GetBitsPerSample(), 8);
}

TEST(WavDataWidth, ConvertedLength_IsThatOfWholeSamples) {
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  sound.SetBuffer(sound.GetBuffer(), 5);  // half a sample at the end
  EXPECT_EQ(C_SoundPtr(sound.CreateBitsConvertedData(8, 8, true, true))->GetBufferLength(), 2u);
  EXPECT_EQ(C_SoundPtr(sound.CreateBitsConvertedData(4, 8, true, true))->GetBufferLength(), 2u);
  EXPECT_EQ(C_SoundPtr(sound.CreateBitsConvertedData(17, 32, true, true))->GetBufferLength(), 8u);
}

TEST(WavDataWidth, Stereo_InheritsFrameWideReads) {
  EXPECT_EQ(
      ConvertedValues({1000, 1000, 1000, 0, -1000, 1000, 1000, -1000, 0, 1}, kStereo16, kStereo16),
      (C_Values{32767, 32767, 1000, -32768, -1000, 32767, -32768, -1000, 32767, 1}));
}

TEST(WavDataWidth, FramesThatIteratorsCannotWrite_BecomeZeros) {
  // 32-bit stereo frames are 8 bytes wide: nothing is written, and no old bytes show.
  for (int nRound = 0; nRound < 4; ++nRound) {
    const C_SoundPtr converted =
        Converted(C_Values(2000, 1000), kStereo16, {2, 32, 32, true, 8000});
    ASSERT_NE(converted, nullptr);
    EXPECT_EQ(BytesOf(*converted), C_Pcm(8000, 0));
  }
  EXPECT_EQ(ConvertedValues(C_Values(8, 1000), {4, 16, 16, true, 8000}, {4, 8, 8, false, 8000}),
            C_Values(8, 0));
}

TEST(WavDataWidth, WidenedFrameWideValues_Clip) {
  // 8-bit stereo reads (1, 1) as 257, which does not fit in 16 bits once it is widened.
  EXPECT_EQ(ConvertedValues({1, 1}, {2, 8, 8, true, 8000}, kStereo16), (C_Values{32767, 256}));
}

TEST(WavDataWidth, MonoOfEveryWidth_AgreesWithExactArithmetic) {
  C_Random random(31);
  for (int nRound = 0; nRound < 400; ++nRound) {
    S_Format from;
    S_Format to;
    for (S_Format* pFormat : {&from, &to}) {
      pFormat->wStoreBits = static_cast<unsigned short>(8 << random() % 3);
      pFormat->wBits = static_cast<unsigned short>(1 + random() % pFormat->wStoreBits);
      pFormat->bSigned = random() % 2 == 0;
    }
    C_Values values(1 + random() % 50);
    C_Values expected;
    const long long llHalf = 1LL << (to.wBits - 1);
    for (int& nValue : values) {
      nValue = static_cast<int>(random()) >> (32 - from.wBits);
      const long long llScaled = to.wBits >= from.wBits ? nValue * (1LL << (to.wBits - from.wBits))
                                                        : nValue / (1LL << (from.wBits - to.wBits));
      expected.push_back(static_cast<int>(std::min(std::max(llScaled, -llHalf), llHalf - 1)));
    }
    ASSERT_EQ(ConvertedValues(values, from, to), expected)
        << from.wBits << "/" << from.wStoreBits << " to " << to.wBits << "/" << to.wStoreBits;
  }
}

TEST(WavDataWidth, ThereAndBack_KeepsEvery16BitValue) {
  C_Values values;
  for (int nValue = -32768; nValue <= 32767; ++nValue) values.push_back(nValue);
  C_WavData sound;
  SetSound(sound, values);
  EXPECT_TRUE(sound.ConvertBits(24, 32, false, true));
  EXPECT_TRUE(sound.ConvertBits(16, 16, true, true));
  EXPECT_EQ(ValuesOf(sound), values);
}

}  // namespace
