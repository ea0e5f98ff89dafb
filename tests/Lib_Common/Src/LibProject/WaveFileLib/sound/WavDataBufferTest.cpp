// SPDX-License-Identifier: Apache-2.0
#include "sound/WavDataBuffer.h"

#include <gtest/gtest.h>

#include <array>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <random>
#include <vector>

#include "VTable.h"
#include "WavDataBufferSound.h"
#include "sound/WavInfo.h"

namespace {

TEST(WavDataBuffer, NewBuffer_HoldsNothing) {
  C_WavDataBuffer buffer;
  EXPECT_EQ(buffer.GetBuffer(), nullptr);
  EXPECT_EQ(buffer.GetWavInfo(), nullptr);
  EXPECT_EQ(buffer.GetLength(), 0u);
  EXPECT_FALSE(buffer.IsBufferAttached());
  EXPECT_EQ(buffer.DetachBuffer(), nullptr);
  EXPECT_EQ(buffer.GetHeldSampleSize(), 0u);
  EXPECT_EQ(buffer.GetMaxAbsValue(0, 0, 0, 0), -1);
}

TEST(WavDataBuffer, Unsigned8_HasItsOffset) {
  C_Sound sound({0x80, 0x00, 0xFF}, 1, 8, 8, false);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), 0);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(1, 0), -128);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(2, 0), 127);
  sound.Buffer().SetSampleValueInt(0, -1, 0);
  EXPECT_EQ(sound.Bytes()[0], 0x7F);
  EXPECT_EQ(sound.At(1).GetValue(), -128);
  EXPECT_EQ(sound.At(2).GetValue(), 127);
}

TEST(WavDataBuffer, Signed8_HasNoOffset) {
  C_Sound sound({0x80, 0x00, 0xFF}, 1, 8, 8, true);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), -128);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(1, 0), 0);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(2, 0), -1);
  EXPECT_EQ(sound.At(0).GetValue(), -128);
}

TEST(WavDataBuffer, Signed16_IsTwosComplement) {
  C_Sound sound = Mono16({0x8000, 0x7FFF, -1});
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), -32768);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(1, 0), 32767);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(2, 0), -1);
}

TEST(WavDataBuffer, Unsigned16_HasItsOffset) {
  C_Sound sound(Le16({0x8000, 0, 0xFFFF}), 1, 16, 16, false);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), 0);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(1, 0), -32768);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(2, 0), 32767);
  EXPECT_EQ(sound.At(1).GetValue(), -32768);
}

TEST(WavDataBuffer, TwelveInSixteen_StoresOnlyItsBits) {
  C_Sound sound(Le16({0x0800, 0x07FF, 0}), 1, 12, 16, true);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), -2048);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(1, 0), 2047);
  sound.Buffer().SetSampleValueInt(2, -1, 0);
  EXPECT_EQ(sound.Bytes()[4], 0xFF);
  EXPECT_EQ(sound.Bytes()[5], 0x0F);
}

TEST(WavDataBuffer, ThirtyTwoBits_KeepEveryValue) {
  C_Sound sound(C_Pcm(16), 1, 32, 32, true);
  const std::array values{-1, INT_MIN, INT_MAX, 0x12345678};
  for (unsigned int i = 0; i < 4; ++i) sound.Buffer().SetSampleValueInt(i, values[i], 0);
  for (unsigned int i = 0; i < 4; ++i) {
    EXPECT_EQ(sound.Buffer().GetSampleValueInt(i, 0), values[i]);
    EXPECT_EQ(sound.At(i).GetValue(), values[i]);
  }
  EXPECT_EQ(sound.Bytes()[12], 0x78);
  EXPECT_EQ(sound.Bytes()[15], 0x12);
}

TEST(WavDataBuffer, TwentyFourInThirtyTwo_ExtendTheSign) {
  C_Sound sound({0x00, 0x00, 0x80, 0x00, 0xFF, 0xFF, 0x7F, 0x00}, 1, 24, 32, true);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), -8388608);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(1, 0), 8388607);
}

TEST(WavDataBuffer, SetSampleValueInt_DoesNotClip) {
  C_Sound sound = Mono16({0});
  sound.Buffer().SetSampleValueInt(0, 70000, 0);
  EXPECT_EQ(sound.Bytes(), Le16({0x1170}));
  C_Sound bytes({0}, 1, 8, 8, false);
  bytes.Buffer().SetSampleValueInt(0, 200, 0);
  EXPECT_EQ(bytes.Bytes()[0], 0x48);
}

TEST(WavDataBuffer, OtherStoredWidths_ReadZeroAndWriteNothing) {
  for (const unsigned short wStore : std::array<unsigned short, 7>{0, 4, 12, 24, 40, 64, 65535}) {
    C_Sound sound(C_Pcm(48, 0x5A), 1, 12, wStore, true);
    EXPECT_EQ(sound.Buffer().GetSampleValueInt(1, 0), 0) << wStore;
    sound.Buffer().SetSampleValueInt(1, 77, 0);
    EXPECT_EQ(sound.Bytes(), C_Pcm(48, 0x5A)) << wStore;
  }
}

TEST(WavDataBuffer, AnyNumberOfBits_IsTakenModulo32) {
  for (unsigned int dwBits = 0; dwBits <= 65535; dwBits += 251) {
    C_Sound sound(Le16({1, 2, 3}), 1, static_cast<unsigned short>(dwBits), 16, true);
    sound.Buffer().GetSampleValueInt(0, 0);
    sound.At(0).SetValue(5, true);
    EXPECT_EQ(sound.Bytes().size(), 6u);
  }
  // 33 bits shift like 1.
  C_Sound sound(Le16({1}), 1, 33, 16, true);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), -1);
}

TEST(WavDataBuffer, Accessors_FindEverySampleOfEveryChannel) {
  C_Sound sound(Le16({1, 2, 3, 4, 5, 6}), 3, 16, 16, true);
  int nExpected = 1;
  for (unsigned int dwPos = 0; dwPos < 2; ++dwPos) {
    for (unsigned short wChannel = 0; wChannel < 3; ++wChannel) {
      EXPECT_EQ(sound.Buffer().GetSampleValueInt(dwPos, wChannel), nExpected++);
    }
  }
  sound.Buffer().SetSampleValueInt(1, -9, 1);
  EXPECT_EQ(sound.Bytes(), Le16({1, 2, 3, 4, -9, 6}));
}

TEST(WavDataBuffer, PositionsOutsideTheBuffer_ReadZeroAndWriteNothing) {
  for (const unsigned int dwPos : {3u, 4u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    C_Sound sound = Mono16({7, 8, 9});
    EXPECT_EQ(sound.Buffer().GetSampleValueInt(dwPos, 0), 0) << dwPos;
    sound.Buffer().SetSampleValueInt(dwPos, 5, 0);
    EXPECT_EQ(sound.Bytes(), Le16({7, 8, 9})) << dwPos;
  }
  // The buffer holds only half of the last sample.
  C_Sound cut({1, 0, 2}, 1, 16, 16, true);
  EXPECT_EQ(cut.Buffer().GetSampleValueInt(1, 0), 0);
  cut.Buffer().SetSampleValueInt(1, 5, 0);
  EXPECT_EQ(cut.Bytes(), (C_Pcm{1, 0, 2}));
}

TEST(WavDataBuffer, PositionTimesChannels_DoesNotWrap) {
  // In 32 bits, 0x80000000 * 2 channels would be sample 0 again.
  C_Sound sound = Stereo16({7, 8});
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0x80000000u, 0), 0);
  sound.Buffer().SetSampleValueInt(0x80000000u, 5, 1);
  EXPECT_EQ(sound.Bytes(), Le16({7, 8}));
}

TEST(WavDataBuffer, NoBuffer_ReadsZeroAndWritesNothing) {
  C_WavInfo info;
  info.SetInfoData(8000, 1000, 1, 16, 16, true);
  C_WavDataBuffer buffer;
  buffer.SetWavInfo(&info);
  EXPECT_EQ(buffer.GetSampleValueInt(0, 0), 0);
  buffer.SetSampleValueInt(0, 1, 0);
  EXPECT_EQ(buffer.CreateIterator(0, 0)->GetValue(), 0);
  buffer.CreateIterator(0, 0)->SetValue(4, true);
  EXPECT_EQ(buffer.GetBuffer(), nullptr);
  EXPECT_EQ(buffer.GetHeldSampleSize(), 0u);
}

TEST(WavDataBufferDeathTest, ChannelThatDoesNotExist_StopsTheProgram) {
  C_Sound sound = Stereo16({1, 2});
  EXPECT_DEATH(sound.Buffer().GetSampleValueInt(0, 2),
               "GetSampleValueInt: WaveFileLib/WavDataBuffer:96: assertion failed: "
               "wChannelNo < wChannels");
  EXPECT_DEATH(sound.Buffer().GetSampleValueInt(0, 99), "wChannelNo < wChannels");
  EXPECT_DEATH(sound.Buffer().SetSampleValueInt(0, 1, 2),
               "SetSampleValueInt: WaveFileLib/WavDataBuffer:141: assertion failed: "
               "wChannelNo < wChannels");
}

TEST(WavDataBufferDeathTest, WavInfoOfNull_StopsTheProgram) {
  C_WavDataBuffer buffer;
  EXPECT_DEATH(buffer.SetWavInfo(nullptr),
               "SetWavInfo: WaveFileLib/WavDataBuffer:81: assertion failed: pIWavInfo != NULL");
}

TEST(WavDataBufferDeathTest, SampleOfABufferWithoutFormat_StopsTheProgram) {
  C_WavDataBuffer buffer;
  EXPECT_DEATH(buffer.GetSampleValueInt(0, 0), "wChannelNo < wChannels");
}

TEST(WavDataBuffer, MaxAbsValue_LeavesOutTheEndSample) {
  C_Sound sound = Mono16({1, -5, 3, 9});
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 4, 0, 0), -1);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 3, 0, 0), 5);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(2, 3, 0, 0), 3);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 1, 0, 0), 1);
}

TEST(WavDataBuffer, MaxAbsValue_OfAnEmptyRange_IsZero) {
  C_Sound sound = Mono16({1, -5, 3, 9});
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(2, 2, 0, 0), 0);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(3, 1, 0, 0), 0);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0xFFFFFFFFu, 1, 0, 0), 0);
}

TEST(WavDataBuffer, MaxAbsValue_LooksAtTheChannelsAskedFor) {
  C_Sound sound(Le16({1, 20, 300, 2, 30, 400, 0, 0, 0}), 3, 16, 16, true);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 2, 0, 0), 2);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 2, 0, 1), 30);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 2, 1, 2), 400);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 2, 2, 1), 0);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 2, 0, 3), -1);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 2, 0, 65535), -1);
}

TEST(WavDataBuffer, MaxAbsValue_OfTheMostNegativeValue_IsTheLargestInt) {
  C_Sound sound({0, 0, 0, 0x80, 0, 0, 0, 0}, 1, 32, 32, true);
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 1, 0, 0), INT_MAX);
  C_Sound sixteen = Mono16({0x8000, 0});
  EXPECT_EQ(sixteen.Buffer().GetMaxAbsValue(0, 1, 0, 0), 32768);
}

TEST(WavDataBuffer, MaxAbsValue_OfAFormatThatClaimsMoreThanIsHeld_EndsWithTheBuffer) {
  C_Sound sound = Mono16({1, -5});
  sound.Info().SetInfoData(8000, 0x1FFFFFFE, 1, 16, 16, true);
  sound.Buffer().SetWavInfo(&sound.Info());
  EXPECT_EQ(sound.Buffer().GetMaxAbsValue(0, 0x0FFFFFFE, 0, 0), 5);
  EXPECT_EQ(sound.Buffer().GetHeldSampleSize(), 2u);
}

TEST(WavDataBuffer, CreateIterator_StartsWhereItIsTold) {
  C_Sound sound = Mono16({1, 2, 3});
  EXPECT_EQ(sound.Buffer().CreateIterator(0, 0)->GetValue(), 1);
  EXPECT_EQ(sound.Buffer().CreateIterator(2, 0)->GetValue(), 3);
  C_Sound stereo = Stereo16({1, 2, 3, 4});
  EXPECT_EQ(stereo.Buffer().CreateIterator(1, 1)->GetValue(), 4);
}

TEST(WavDataBuffer, Iterators_MadeDirectly_LeaveTheBuffersOwnAlone) {
  C_Sound sound = Mono16({1, 2, 3});
  C_WavDataBufferIterator* pOwn = sound.Buffer().CreateIterator(1, 0);
  {
    C_WavDataBufferIterator direct = sound.At(2);
    EXPECT_EQ(direct.GetValue(), 3);
  }
  EXPECT_EQ(pOwn->GetValue(), 2);
}

TEST(WavDataBuffer, SafeDelete_FreesOwnedMemoryAndForgetsAttachedMemory) {
  C_WavDataBuffer buffer;
  buffer.AllocBuffer(100);
  buffer.SafeDeleteBuffer();
  EXPECT_EQ(buffer.GetBuffer(), nullptr);
  C_Pcm bytes(4, 9);
  buffer.AttachBuffer(bytes.data(), 4);
  EXPECT_TRUE(buffer.IsBufferAttached());
  buffer.SafeDeleteBuffer();
  EXPECT_EQ(buffer.GetBuffer(), nullptr);
  EXPECT_FALSE(buffer.IsBufferAttached());
  EXPECT_EQ(bytes, C_Pcm(4, 9));
}

TEST(WavDataBuffer, SafeDelete_WithoutABuffer_ChangesNothing) {
  C_WavDataBuffer buffer;
  buffer.SafeDeleteBuffer();
  EXPECT_FALSE(buffer.IsBufferAttached());
  buffer.AttachBuffer(nullptr, 4);
  EXPECT_EQ(buffer.GetLength(), 0u);
  buffer.SafeDeleteBuffer();
  EXPECT_TRUE(buffer.IsBufferAttached());
  EXPECT_EQ(buffer.DetachBuffer(), nullptr);
  EXPECT_FALSE(buffer.IsBufferAttached());
}

TEST(WavDataBuffer, Detach_ReturnsOnlyAttachedMemory) {
  C_WavDataBuffer buffer;
  unsigned char* pbyOwned = buffer.AllocBuffer(4);
  EXPECT_EQ(buffer.DetachBuffer(), nullptr);
  EXPECT_EQ(buffer.GetBuffer(), pbyOwned);
  EXPECT_EQ(buffer.GetLength(), 4u);
  C_Pcm bytes(4);
  buffer.AttachBuffer(bytes.data(), 4);
  EXPECT_EQ(buffer.DetachBuffer(), bytes.data());
  EXPECT_EQ(buffer.GetBuffer(), nullptr);
  EXPECT_FALSE(buffer.IsBufferAttached());
  EXPECT_EQ(buffer.DetachBuffer(), nullptr);
}

TEST(WavDataBuffer, Copy_MayTakeTheBufferItself) {
  C_WavDataBuffer buffer;
  const C_Pcm bytes{1, 2, 3, 4, 5};
  buffer.CopyBuffer(bytes.data(), 5);
  EXPECT_NE(buffer.GetBuffer(), bytes.data());
  EXPECT_FALSE(buffer.IsBufferAttached());
  buffer.CopyBuffer(buffer.GetBuffer(), 5);
  EXPECT_EQ(C_Pcm(buffer.GetBuffer(), buffer.GetBuffer() + 5), bytes);
  buffer.CopyBuffer(buffer.GetBuffer() + 3, 2);
  EXPECT_EQ(C_Pcm(buffer.GetBuffer(), buffer.GetBuffer() + 2), (C_Pcm{4, 5}));
  EXPECT_EQ(buffer.GetLength(), 2u);
}

TEST(WavDataBuffer, Copy_ReplacesAttachedMemoryByOwned) {
  C_Pcm attached(4, 7);
  C_WavDataBuffer buffer;
  buffer.AttachBuffer(attached.data(), 4);
  buffer.CopyBuffer(buffer.GetBuffer(), 4);
  EXPECT_FALSE(buffer.IsBufferAttached());
  buffer.GetBuffer()[0] = 1;
  EXPECT_EQ(attached, C_Pcm(4, 7));
}

TEST(WavDataBuffer, LengthZero_IsHeldAsWell) {
  C_WavDataBuffer buffer;
  EXPECT_NE(buffer.AllocBuffer(0), nullptr);
  EXPECT_NE(buffer.GetBuffer(), nullptr);
  buffer.CopyBuffer(nullptr, 0);
  EXPECT_NE(buffer.GetBuffer(), nullptr);
  buffer.CopyBuffer(nullptr, 100);
  EXPECT_EQ(buffer.GetLength(), 0u);
}

TEST(WavDataBuffer, Alloc_TakesTheWholeLength) {
  C_WavDataBuffer buffer;
  unsigned char* pbyBuffer = buffer.AllocBuffer(10);
  for (int i = 0; i < 10; ++i) pbyBuffer[i] = static_cast<unsigned char>(i);
  EXPECT_EQ(buffer.GetBuffer(), pbyBuffer);
  EXPECT_EQ(buffer.GetLength(), 10u);
  EXPECT_FALSE(buffer.IsBufferAttached());
}

TEST(WavDataBuffer, FormatChange_TakesEffectWithTheNextSetWavInfo) {
  C_Sound sound(Le16({0x0800}), 1, 12, 16, true);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), -2048);
  sound.Info().SetInfoData(8000, 2, 1, 16, 16, true);
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), -2048);
  sound.Buffer().SetWavInfo(&sound.Info());
  EXPECT_EQ(sound.Buffer().GetSampleValueInt(0, 0), 2048);
}

TEST(WavDataBuffer, HeldSampleSize_IsTheSmallerOfClaimAndMemory) {
  C_Sound sound = Stereo16({1, 2, 3, 4, 5, 6});
  EXPECT_EQ(sound.Buffer().GetHeldSampleSize(), 3u);
  sound.Info().SetInfoData(8000, 4, 2, 16, 16, true);
  EXPECT_EQ(sound.Buffer().GetHeldSampleSize(), 1u);
  sound.Info().SetInfoData(8000, 400, 2, 16, 16, true);
  EXPECT_EQ(sound.Buffer().GetHeldSampleSize(), 3u);
  sound.Info().SetChannels(0);
  EXPECT_EQ(sound.Buffer().GetHeldSampleSize(), 0u);
}

TEST(WavDataBuffer, HeldSampleSize_WrapsWithTheFormatAndUnwrappedDoesNot) {
  unsigned char byAny = 0;
  C_WavInfo info;
  info.SetInfoData(8000, 0x20000002, 1, 16, 16, true);
  C_WavDataBuffer buffer;
  buffer.AttachBuffer(&byAny, 0x20000002);  // never read
  buffer.SetWavInfo(&info);
  EXPECT_EQ(buffer.GetHeldSampleSize(), 1u);
  EXPECT_EQ(buffer.GetUnwrappedHeldSampleSize(), 0x10000001u);
  info.SetInfoData(8000, 0xFFFFFFFF, 1, 8, 8, true);
  buffer.SetWavInfo(&info);
  EXPECT_EQ(buffer.GetUnwrappedHeldSampleSize(), 0x20000002u);
  info.SetInfoData(8000, 5, 1, 16, 16, true);
  buffer.SetWavInfo(&info);
  EXPECT_EQ(buffer.GetUnwrappedHeldSampleSize(), 2u);
  buffer.DetachBuffer();
  EXPECT_EQ(buffer.GetUnwrappedHeldSampleSize(), 0u);
  // One-bit samples: there are more of them than a count can hold.
  buffer.AttachBuffer(&byAny, 0xFFFFFFFF);
  info.SetInfoData(8000, 0xFFFFFFFF, 1, 1, 1, true);
  buffer.SetWavInfo(&info);
  EXPECT_EQ(buffer.GetUnwrappedHeldSampleSize(), 0xFFFFFFFFu);
}

TEST(WavDataBuffer, Interface_HasItsSlotsInOrder) {
  C_Sound sound = Stereo16({10, -20, 30, 40});
  I_WavDataBuffer* pBuffer = &sound.Buffer();
  EXPECT_EQ((CallSlot<int, unsigned int, unsigned short>(pBuffer, 0, 0, 1)), -20);
  CallSlot<void, unsigned int, int, unsigned short>(pBuffer, 1, 1, 77, 0);
  EXPECT_EQ(sound.Bytes(), Le16({10, -20, 77, 40}));
  EXPECT_EQ((CallSlot<int, unsigned int, unsigned int, unsigned short, unsigned short>(pBuffer, 2,
                                                                                       0, 1, 0, 1)),
            20);
  auto* pIterator =
      CallSlot<C_WavDataBufferIterator*, unsigned int, unsigned short>(pBuffer, 3, 1, 1);
  EXPECT_EQ(pIterator->GetValue(), 40);
}

TEST(WavDataBuffer, Interface_DestructorStandsInTheLastSlot) {
  auto* pBuffer = new C_WavDataBuffer();
  pBuffer->AllocBuffer(100);
  pBuffer->CreateIterator(0, 0);
  CallSlot<void>(static_cast<I_WavDataBuffer*>(pBuffer), 5);
  // Everything is freed: the leak check of the sanitizer builds would report it otherwise.
}

// A slow model of both ways of access, in 64-bit arithmetic.
class C_Model {
 public:
  C_Model(unsigned int dwBits, unsigned int dwStore, bool bSigned)
      : m_nBits(static_cast<int>(dwBits)),
        m_nBytes(static_cast<int>(dwStore / 8)),
        m_bSigned(bSigned) {}

  long long Decode(long long llUnit) const {
    const long long llHalf = 1LL << (m_nBits - 1);
    if (!m_bSigned) return static_cast<std::int32_t>(llUnit - llHalf);
    if ((llUnit / llHalf) % 2 == 0) return static_cast<std::int32_t>(llUnit);
    // Every bit from the sign bit up is set.
    return llUnit % llHalf - llHalf;
  }
  long long EncodeUnclipped(int nValue) const {
    const long long llHalf = 1LL << (m_nBits - 1);
    const long long llCode = m_bSigned ? Mod(nValue, 2 * llHalf) : nValue + llHalf;
    return Mod(llCode, 1LL << (8 * m_nBytes));
  }
  long long EncodeClipped(int nValue, bool bExact) const {
    const long long llHalf = 1LL << (m_nBits - 1);
    const long long llClipped = std::min(std::max<long long>(nValue, -llHalf), llHalf - 1);
    long long llCode = m_bSigned ? Mod(llClipped, 2 * llHalf) : llClipped + llHalf;
    if (m_bSigned && llClipped < 0 && !bExact) --llCode;
    return Mod(llCode, 1LL << (8 * m_nBytes));
  }

 private:
  static long long Mod(long long a, long long m) { return (a % m + m) % m; }
  int m_nBits;
  int m_nBytes;
  bool m_bSigned;
};

long long Unit(const C_Pcm& bytes, std::size_t nAt, std::size_t nCount) {
  long long llUnit = 0;
  for (std::size_t i = nCount; i > 0; --i) llUnit = llUnit * 256 + bytes[nAt + i - 1];
  return llUnit;
}

TEST(WavDataBuffer, RandomSamples_AgreeWithASlowModel) {
  std::mt19937 random(7);
  for (const unsigned int dwStore : {8u, 16u, 32u}) {
    for (unsigned int dwBits = 1; dwBits <= dwStore; ++dwBits) {
      for (const bool bSigned : {true, false}) {
        const C_Model model(dwBits, dwStore, bSigned);
        C_Pcm bytes(24);
        for (auto& byValue : bytes) byValue = static_cast<unsigned char>(random());
        C_Sound sound(bytes, 1, static_cast<unsigned short>(dwBits),
                      static_cast<unsigned short>(dwStore), bSigned);
        const std::size_t cb = dwStore / 8;
        for (unsigned int i = 0; i < 24 / cb; ++i) {
          const long long llExpected = model.Decode(Unit(bytes, i * cb, cb));
          ASSERT_EQ(sound.Buffer().GetSampleValueInt(i, 0), llExpected) << dwBits << "/" << dwStore;
          ASSERT_EQ(sound.At(i).GetValue(), llExpected) << dwBits << "/" << dwStore;
          const int nValue = static_cast<int>(random()) >> (random() % 31);
          sound.Buffer().SetSampleValueInt(i, nValue, 0);
          ASSERT_EQ(Unit(sound.Bytes(), i * cb, cb), model.EncodeUnclipped(nValue))
              << dwBits << "/" << dwStore << " " << nValue;
          const bool bExact = random() % 2 == 0;
          sound.At(i).SetValue(nValue, bExact);
          ASSERT_EQ(Unit(sound.Bytes(), i * cb, cb), model.EncodeClipped(nValue, bExact))
              << dwBits << "/" << dwStore << " " << nValue << " " << bExact;
        }
      }
    }
  }
}

}  // namespace
