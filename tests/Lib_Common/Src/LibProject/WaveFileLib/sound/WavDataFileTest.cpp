// SPDX-License-Identifier: Apache-2.0
//
// Sounds that write themselves as real files.
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "SampleValues.h"
#include "TempFolder.h"
#include "sound/WavData.h"

namespace {

using C_File = std::vector<std::uint8_t>;

bool ConvertTo(I_WavData& sound, unsigned int dwType, const std::string& strPath) {
  return sound.Convert(static_cast<tagAudioFileType>(dwType), strPath.c_str(), true, false, nullptr,
                       false, 0);
}

std::string FormOf(const C_File& file) {
  return file.size() < 12 ? "" : std::string(file.begin() + 8, file.begin() + 12);
}

TEST(WavDataFile, RiffKinds_CarryTheirForm) {
  const C_TempFolder folder;
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  EXPECT_TRUE(ConvertTo(sound, 0x8001, folder.Path("a.wav")));
  EXPECT_TRUE(ConvertTo(sound, 0x1101, folder.Path("a.vemd")));
  EXPECT_EQ(FormOf(folder.Read("a.wav")), "WAVE");
  EXPECT_EQ(FormOf(folder.Read("a.vemd")), "VEMD");
  EXPECT_EQ(folder.Read("a.wav").size(), 44u + 6u);
}

TEST(WavDataFile, KindsThatCannotBeWritten_LeaveNoFile) {
  const C_TempFolder folder;
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  for (const unsigned int dwType :
       {0u, 1u, 13u, 15u, 31u, 37u, 99u, 0x1001u, 0x8000u, 0xFFFFu, 0xFFFFFFFFu}) {
    EXPECT_FALSE(ConvertTo(sound, dwType, folder.Path("refused"))) << dwType;
  }
  EXPECT_TRUE(folder.IsEmpty());
}

TEST(WavDataFile, SoundsWithoutSamples_LeaveNoFile) {
  const C_TempFolder folder;
  C_WavData sound;
  SetSound(sound, {});
  EXPECT_FALSE(ConvertTo(sound, 0x8001, folder.Path("refused")));
  EXPECT_FALSE(ConvertTo(sound, 14, folder.Path("refused")));
  EXPECT_TRUE(folder.IsEmpty());
}

TEST(WavDataFile, KestrelBytesThatTheSoundHolds_AreWrittenUnchanged) {
  const C_TempFolder folder;
  C_WavData sound;
  SetSound(sound, C_Values(640, 1000));
  const C_File encoded{9, 8, 7, 6, 5};
  ASSERT_TRUE(sound.SetEncBuffer(encoded.data(), 5));
  sound.SetEncType(AUDIO_FILE_KESTREL);
  EXPECT_TRUE(ConvertTo(sound, 14, folder.Path("a.kst")));
  EXPECT_EQ(folder.Read("a.kst"), encoded);
  // Editing the samples does not change bytes that are already encoded.
  EXPECT_TRUE(sound.ApplyGain(0.0, 0.0));
  EXPECT_TRUE(ConvertTo(sound, 14, folder.Path("b.kst")));
  EXPECT_EQ(folder.Read("b.kst"), encoded);
}

TEST(WavDataFile, BytesOfAnotherKind_AreEncodedAnew) {
  const C_TempFolder folder;
  C_WavData sound;
  SetSound(sound, C_Values(640, 1000));
  sound.GetAudioCodecParam()->SetBitRate(16000);
  const C_File encoded{9, 8, 7, 6, 5};
  ASSERT_TRUE(sound.SetEncBuffer(encoded.data(), 5));
  sound.SetEncType(AUDIO_FILE_HERON_4BIT);
  EXPECT_TRUE(ConvertTo(sound, 14, folder.Path("a.kst")));
  // Length, rate, two frames of 20 words.
  ASSERT_EQ(folder.Read("a.kst").size(), 6u + 2 * 40u);
  EXPECT_EQ(folder.Read("a.kst")[0], 82);
}

TEST(WavDataFile, WrittenSound_StaysUsable) {
  const C_TempFolder folder;
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  EXPECT_TRUE(ConvertTo(sound, 0x8001, folder.Path("a.wav")));
  EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3}));
  EXPECT_TRUE(ConvertTo(sound, 0x8001, folder.Path("b.wav")));
  EXPECT_EQ(folder.Read("a.wav"), folder.Read("b.wav"));
}

TEST(WavDataFile, FileThatCannotBeMade_IsFalse) {
  const C_TempFolder folder;
  C_WavData sound;
  SetSound(sound, {1, 2, 3});
  EXPECT_FALSE(ConvertTo(sound, 0x8001, folder.Path("missing/a.wav")));
  EXPECT_TRUE(folder.IsEmpty());
}

}  // namespace
