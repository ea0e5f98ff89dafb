// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <climits>

#include "VTable.h"
#include "WavDataBufferSound.h"

namespace {

TEST(WavDataBufferIterator, MonoValues_AreExact) {
  C_Sound sound = Mono16({1, -2, 3});
  C_WavDataBufferIterator it = sound.At(0);
  EXPECT_EQ(it.GetValue(), 1);
  it.Next();
  EXPECT_EQ(it.GetValue(), -2);
  it.Next();
  EXPECT_EQ(it.GetValue(), 3);
  it.Prev();
  EXPECT_EQ(it.GetValue(), -2);
  it.SetPos(0);
  EXPECT_EQ(it.GetValue(), 1);
}

TEST(WavDataBufferIterator, Iterator_StereoSeesTheOtherChannelInItsUpperBytes) {
  C_Sound sound = Stereo16({100, 1, 100, -1, -1, 5});
  C_WavDataBufferIterator it = sound.At(0);
  EXPECT_EQ(it.GetValue(), 65636);
  it.Next();
  EXPECT_EQ(it.GetValue(), -65436);
  it.Next();
  EXPECT_EQ(it.GetValue(), -1);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), 100);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(1, 0), 100);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(2, 0), -1);
  EXPECT_EQ(C_Sound({0x80, 0x81}, 2, 8, 8, false).At(0).GetValue(), 33024);
}

TEST(WavDataBufferIterator, SecondChannel_ReadsIntoTheNextFrame) {
  C_Sound sound = Stereo16({1, 2, 3, 4});
  EXPECT_EQ(sound.At(0, 1).GetValue(), 2 + 3 * 65536);
}

TEST(WavDataBufferIterator, WideAccess_NeverLeavesTheBuffer) {
  C_Sound sound = Stereo16({1, 2, 3, 4});
  EXPECT_EQ(sound.At(1, 1).GetValue(), 4);  // the two bytes after the end read as 0
  sound.At(1, 1).SetValue(-7, true);
  EXPECT_EQ(sound.Bytes(), Le16({1, 2, 3, -7}));
  C_Sound quad({1, 2, 3, 4, 5, 6, 7, 8}, 4, 8, 8, true);
  EXPECT_EQ(quad.At(1, 3).GetValue(), 8);
  EXPECT_EQ(quad.At(1, 2).GetValue(), 0x0807);
  quad.At(1, 3).SetValue(9, true);
  EXPECT_EQ(quad.Bytes(), (C_Pcm{1, 2, 3, 4, 5, 6, 7, 9}));
}

TEST(WavDataBufferIterator, PositionsOutsideTheBuffer_ReadZeroBytesAndWriteNothing) {
  C_Sound sound = Mono16({1, 2});
  for (const unsigned int dwPos : {2u, 3u, 0x80000000u, 0xFFFFFFFFu}) {
    C_WavDataBufferIterator it = sound.At(dwPos);
    EXPECT_EQ(it.GetValue(), 0);
    it.SetValue(9, true);
  }
  C_WavDataBufferIterator it = sound.At(0);
  it.Prev();
  EXPECT_EQ(it.GetValue(), 0);
  it.SetValue(9, true);
  it.Next();
  EXPECT_EQ(it.GetValue(), 1);
  EXPECT_EQ(sound.Bytes(), Le16({1, 2}));
  // Bytes beyond the end read as 0, which is the lowest value of unsigned data.
  EXPECT_EQ(C_Sound({0x90}, 1, 8, 8, false).At(1).GetValue(), -128);
}

TEST(WavDataBufferIterator, OtherFrameWidths_ReadZeroAndWriteNothing) {
  struct S_Case {
    unsigned short wChannels;
    unsigned short wStore;
    bool bSigned;
  };
  for (const S_Case& c :
       {S_Case{4, 16, true}, S_Case{3, 16, true}, S_Case{2, 32, true}, S_Case{3, 8, true},
        S_Case{3, 8, false}, S_Case{5, 8, true}, S_Case{1, 24, true}}) {
    C_Sound sound(C_Pcm(48, 0x5A), c.wChannels, 8, c.wStore, c.bSigned);
    C_WavDataBufferIterator it = sound.At(1);
    EXPECT_EQ(it.GetValue(), 0) << c.wChannels << " x " << c.wStore;
    it.SetValue(3, true);
    EXPECT_EQ(sound.Bytes(), C_Pcm(48, 0x5A)) << c.wChannels << " x " << c.wStore;
  }
}

TEST(WavDataBufferIterator, FrameStep_IsCutTo16Bits) {
  // 4 bytes x 32769 channels = 131076 bytes, which is 4 in 16 bits: the frame is read as one wide
  // unit.
  C_Sound sound({1, 0, 0, 0}, 32769, 32, 32, true);
  EXPECT_EQ(sound.At(0).GetValue(), 1);
}

TEST(WavDataBufferIterator, Writing_LeavesTheOtherChannelsAlone) {
  C_Sound sound = Stereo16({100, 1});
  sound.At(0).SetValue(5, true);
  EXPECT_EQ(sound.Bytes(), Le16({5, 1}));
  C_Sound bytes({0x80, 0x81}, 2, 8, 8, false);
  bytes.At(0).SetValue(-128, true);
  EXPECT_EQ(bytes.Bytes(), (C_Pcm{0x00, 0x81}));
  C_Sound quad({1, 2, 3, 4}, 4, 8, 8, true);
  quad.At(0).SetValue(-1, true);
  EXPECT_EQ(quad.Bytes(), (C_Pcm{0xFF, 2, 3, 4}));
}

int StoredAfter(int nValue, bool bExact, unsigned short wBits = 16, bool bSigned = true) {
  C_Sound sound(Le16({0x1111}), 1, wBits, 16, bSigned);
  sound.At(0).SetValue(nValue, bExact);
  return sound.Bytes()[0] | sound.Bytes()[1] << 8;
}

TEST(WavDataBufferIterator, ExactSetValue_Clips) {
  EXPECT_EQ(StoredAfter(40000, true), 0x7FFF);
  EXPECT_EQ(StoredAfter(-40000, true), 0x8000);
  EXPECT_EQ(StoredAfter(-1, true), 0xFFFF);
  EXPECT_EQ(StoredAfter(INT_MAX, true), 0x7FFF);
  EXPECT_EQ(StoredAfter(INT_MIN, true), 0x8000);
  EXPECT_EQ(StoredAfter(3000, true, 12), 0x07FF);
  EXPECT_EQ(StoredAfter(-3000, true, 12), 0x0800);
  EXPECT_EQ(StoredAfter(-2048, true, 12), 0x0800);
}

TEST(WavDataBufferIterator, InexactSetValue_StoresNegativeValuesOneStepLower) {
  EXPECT_EQ(StoredAfter(-1, false), 0xFFFE);
  EXPECT_EQ(StoredAfter(-32767, false), 0x8000);
  EXPECT_EQ(StoredAfter(-32768, false), 0x7FFF);
  EXPECT_EQ(StoredAfter(-40000, false), 0x7FFF);
  EXPECT_EQ(StoredAfter(-2048, false, 12), 0x07FF);
  EXPECT_EQ(StoredAfter(-1, false, 12), 0x0FFE);
}

TEST(WavDataBufferIterator, InexactSetValue_DoesNotTouchOtherValues) {
  EXPECT_EQ(StoredAfter(0, false), 0);
  EXPECT_EQ(StoredAfter(5, false), 5);
  EXPECT_EQ(StoredAfter(40000, false), 0x7FFF);
  EXPECT_EQ(StoredAfter(-1, false, 16, false), 0x7FFF);
  EXPECT_EQ(StoredAfter(-40000, false, 16, false), 0);
}

TEST(WavDataBufferIterator, UnsignedValues_ClipAndGetTheirOffset) {
  EXPECT_EQ(StoredAfter(0, true, 16, false), 0x8000);
  EXPECT_EQ(StoredAfter(40000, true, 16, false), 0xFFFF);
  EXPECT_EQ(StoredAfter(-40000, true, 16, false), 0);
  EXPECT_EQ(StoredAfter(-3000, true, 12, false), 0);
  EXPECT_EQ(StoredAfter(3000, true, 12, false), 0x0FFF);
}

TEST(WavDataBufferIterator, MostNegative32BitValue_IsStored) {
  C_Sound sound(C_Pcm(4), 1, 32, 32, true);
  sound.At(0).SetValue(INT_MIN, true);
  EXPECT_EQ(sound.Bytes(), (C_Pcm{0, 0, 0, 0x80}));
  sound.At(0).SetValue(INT_MIN, false);
  EXPECT_EQ(sound.Bytes(), (C_Pcm{0xFF, 0xFF, 0xFF, 0x7F}));
}

TEST(WavDataBufferIterator, Iterator_KeepsTheFormatThatItWasMadeWith) {
  C_Sound sound = Stereo16({1, 2, 3, 4});
  sound.Info().SetChannels(1);
  C_WavDataBufferIterator mono = sound.At(1);
  sound.Info().SetChannels(2);
  EXPECT_EQ(mono.GetValue(), 2);
  mono.Next();
  EXPECT_EQ(mono.GetValue(), 3);
}

TEST(WavDataBufferIterator, OutlivesItsMemory_WithoutReadingIt) {
  C_WavInfo info;
  info.SetInfoData(8000, 6, 1, 16, 16, true);
  C_WavDataBuffer buffer;
  buffer.SetWavInfo(&info);
  const C_Pcm bytes = Le16({1, 2, 3});
  buffer.CopyBuffer(bytes.data(), 6);
  C_WavDataBufferIterator* pIterator = buffer.CreateIterator(2, 0);
  EXPECT_EQ(pIterator->GetValue(), 3);
  buffer.CopyBuffer(bytes.data(), 2);
  EXPECT_EQ(pIterator->GetValue(), 0);
  pIterator->SetValue(9, true);
  pIterator->SetPos(0);
  EXPECT_EQ(pIterator->GetValue(), 1);
  buffer.SafeDeleteBuffer();
  EXPECT_EQ(pIterator->GetValue(), 0);
}

TEST(WavDataBufferIterator, OfABufferWithoutFormat_ReadsZero) {
  C_WavDataBuffer buffer;
  buffer.AllocBuffer(4);
  C_WavDataBufferIterator it(buffer, 0, 0);
  EXPECT_EQ(it.GetValue(), 0);
  it.SetValue(1, true);
  it.Next();
  EXPECT_EQ(it.GetValue(), 0);
}

TEST(WavDataBufferIterator, Interface_HasItsSlotsInOrder) {
  C_Sound sound = Mono16({1, 2, -3});
  I_WavDataBufferIterator* pIterator = sound.Buffer().CreateIterator(0, 0);
  CallSlot<void, unsigned int>(pIterator, 0, 1);
  EXPECT_EQ((CallSlot<int>(pIterator, 3)), 2);
  CallSlot<void>(pIterator, 1);
  EXPECT_EQ((CallSlot<int>(pIterator, 3)), -3);
  CallSlot<void>(pIterator, 2);
  EXPECT_EQ((CallSlot<int>(pIterator, 3)), 2);
  // Slot 5 writes the exact value, not one step lower.
  CallSlot<void, int>(pIterator, 4, -1);
  EXPECT_EQ(sound.Bytes(), Le16({1, -1, -3}));
}

TEST(WavDataBufferIterator, Interface_DestructorStandsInTheLastSlot) {
  C_Sound sound = Mono16({1});
  I_WavDataBufferIterator* pIterator = new C_WavDataBufferIterator(sound.Buffer(), 0, 0);
  CallSlot<void>(pIterator, 6);
}

}  // namespace
