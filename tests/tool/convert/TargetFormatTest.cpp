// SPDX-License-Identifier: Apache-2.0
#include "convert/TargetFormat.h"

#include <gtest/gtest.h>

#include <string>

#include "base/Failure.h"

namespace tool {
namespace {

S_SoundInfo Source(std::uint32_t dwRate, std::uint32_t dwBits) {
  S_SoundInfo info;
  info.dwRate = dwRate;
  info.dwBits = dwBits;
  info.dwChannels = 2;
  return info;
}

S_FormatWords To(const std::string& strTo) {
  S_FormatWords words;
  words.strTo = strTo;
  return words;
}

std::string RefusalOf(const S_FormatWords& words) {
  try {
    static_cast<void>(FormatOf(words));
  } catch (const C_UsageFailure& failure) {
    return failure.what();
  }
  return "";
}

TEST(TargetFormatTest, Extension_MeansAFormat) {
  EXPECT_EQ(FormatOfExtension(".kst"), "kestrel");
  EXPECT_EQ(FormatOfExtension(".HRN"), "heron4");
  EXPECT_EQ(FormatOfExtension(".vef"), "vef");
  EXPECT_EQ(FormatOfExtension(".mp3"), "");
  for (const std::string& strName : FormatNames()) {
    EXPECT_NE(FormatOfExtension(ExtensionOfFormat(strName)), "") << strName;
  }
}

TEST(TargetFormatTest, EveryFormat_CanBeWrittenAsItIs) {
  for (const std::string& strName : FormatNames()) EXPECT_EQ(RefusalOf(To(strName)), "") << strName;
  for (const std::string& strName : CodecNames()) {
    S_FormatWords words = To("vef");
    words.strCodec = strName;
    EXPECT_EQ(RefusalOf(words), "") << strName;
  }
}

TEST(TargetFormatTest, Rate_IsThatOfTheSourceAsFarAsTheCodecCan) {
  EXPECT_EQ(FormatFor(FormatOf(To("kestrel")), Source(44100, 16), 1).sample_rate, 16000U);
  EXPECT_EQ(FormatFor(FormatOf(To("heron4")), Source(44100, 16), 1).sample_rate, 44100U);
  EXPECT_EQ(FormatFor(FormatOf(To("heron4")), Source(96000, 16), 1).sample_rate, 48000U);
  EXPECT_EQ(FormatFor(FormatOf(To("heron2")), Source(2000, 16), 1).sample_rate, 4000U);
  EXPECT_EQ(FormatFor(FormatOf(To("wav")), Source(96000, 16), 2).sample_rate, 96000U);
  S_FormatWords words = To("wav");
  words.dwRate = 8000;
  EXPECT_EQ(FormatFor(FormatOf(words), Source(96000, 16), 2).sample_rate, 8000U);
}

TEST(TargetFormatTest, Width_HoldsAllBitsOfTheSource) {
  const voxplay::Format wav = FormatOf(To("wav"));
  EXPECT_EQ(FormatFor(wav, Source(8000, 8), 2).bits_per_sample, 8U);
  EXPECT_EQ(FormatFor(wav, Source(8000, 12), 2).bits_per_sample, 16U);
  EXPECT_EQ(FormatFor(wav, Source(8000, 20), 2).bits_per_sample, 24U);
  EXPECT_EQ(FormatFor(wav, Source(8000, 32), 2).bits_per_sample, 32U);
  EXPECT_EQ(FormatFor(wav, Source(8000, 0), 2).codec, std::uint32_t{VOXPLAY_CODEC_FLOAT});
  EXPECT_EQ(FormatFor(FormatOf(To("vemd")), Source(8000, 0), 2).bits_per_sample, 16U);
}

TEST(TargetFormatTest, WordsThatDoNotGoTogether_AreRefused) {
  S_FormatWords words = To("kestrel");
  words.dwRate = 8000;
  EXPECT_EQ(RefusalOf(words), "--rate: Kestrel has 16000 Hz");
  words = To("wav");
  words.strHeader = "sp";
  EXPECT_EQ(RefusalOf(words), "--header is for files of Kestrel and Heron only");
  words = To("heron3");
  words.strHeader = "sp";
  EXPECT_EQ(RefusalOf(words), "Heron of 2 or 3 bits would not be recognised after an SP header");
  words = To("kestrel");
  words.strBits = "16";
  EXPECT_EQ(RefusalOf(words), "--bits is for samples that are not coded");
  words = To("kestrel");
  words.dwBitRate = 1234;
  EXPECT_NE(RefusalOf(words), "");
  words = To("heron4");
  words.dwBitRate = 16000;
  EXPECT_EQ(RefusalOf(words), "only Kestrel has a bit rate");
  words = To("wav");
  words.strCodec = "kestrel";
  EXPECT_EQ(RefusalOf(words), "--codec is for VEF files only");
  words = To("vemd");
  words.strBits = "float";
  EXPECT_NE(RefusalOf(words), "");
  words = To("heron4");
  words.dwRate = 96000;
  EXPECT_EQ(RefusalOf(words), "Heron takes sample rates of 4000 to 48000 Hz");
}

TEST(TargetFormatTest, Header_ChoosesTheContainer) {
  S_FormatWords words = To("kestrel");
  words.strHeader = "none";
  EXPECT_EQ(FormatOf(words).container, std::uint32_t{VOXPLAY_CONTAINER_BARE});
  words.strHeader = "codec";
  EXPECT_EQ(FormatOf(words).container, std::uint32_t{VOXPLAY_CONTAINER_HEAD});
  words.strHeader = "sp";
  EXPECT_EQ(FormatOf(words).container, std::uint32_t{VOXPLAY_CONTAINER_SP});
}

}  // namespace
}  // namespace tool
