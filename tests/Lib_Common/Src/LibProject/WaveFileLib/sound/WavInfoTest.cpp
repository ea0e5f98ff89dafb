// SPDX-License-Identifier: Apache-2.0
#include "sound/WavInfo.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <type_traits>

#include "VTable.h"

namespace {

C_WavInfo Info(unsigned int dwRate, unsigned int dwBytes, unsigned short wChannels,
               unsigned short wBits, unsigned short wStoreBits, bool bSigned = true) {
  C_WavInfo info;
  info.SetInfoData(dwRate, dwBytes, wChannels, wBits, wStoreBits, bSigned);
  return info;
}

C_WavInfo Mono16(unsigned int dwRate, unsigned int dwSamples) {
  return Info(dwRate, dwSamples * 2, 1, 16, 16);
}

TEST(WavInfo, NewInfo_IsEmpty) {
  C_WavInfo info;
  EXPECT_EQ(info.GetSampleRate(), 0u);
  EXPECT_EQ(info.GetByteLength(), 0u);
  EXPECT_EQ(info.GetEncByteLen(), 0u);
  EXPECT_EQ(info.GetChannels(), 0);
  EXPECT_EQ(info.GetBitsPerSample(), 0);
  EXPECT_EQ(info.GetStoreBitsPerSample(), 0);
}

TEST(WavInfo, TimeLength_DividesBeforeItMultiplies) {
  EXPECT_EQ(Mono16(16000, 16016).GetTimeLength(), 1000u);
  EXPECT_EQ(Mono16(8000, 8008).GetTimeLength(), 1000u);
  EXPECT_EQ(Mono16(48000, 48048).GetTimeLength(), 1000u);
  EXPECT_EQ(Mono16(44100, 88641).GetTimeLength(), 2009u);
}

TEST(WavInfo, TimeLength_IsInMillisecondsTruncated) {
  EXPECT_EQ(Info(11025, 44100, 2, 16, 16).GetTimeLength(), 1000u);
  EXPECT_EQ(Mono16(3, 1).GetTimeLength(), 333u);
  EXPECT_EQ(Mono16(16000, 0).GetTimeLength(), 0u);
}

TEST(WavInfo, TimeLength_AtRateZero_IsZero) {
  EXPECT_EQ(Mono16(0, 16000).GetTimeLength(), 0u);
  EXPECT_EQ(Mono16(0, 0).GetTimeLength(), 0u);
}

TEST(WavInfo, TimeLength_ThatDoesNotFit_IsTheLargestOne) {
  EXPECT_EQ(Info(1, 0x1FFFFFFF, 1, 8, 8).GetTimeLength(), 0xFFFFFFFFu);
  EXPECT_EQ(Info(1, 4294967, 1, 8, 8).GetTimeLength(), 4294967000u);
  EXPECT_EQ(Info(1, 4294968, 1, 8, 8).GetTimeLength(), 0xFFFFFFFFu);
}

TEST(WavInfo, SampleSize_CountsWholeFrames) {
  EXPECT_EQ(Info(44100, 44100, 2, 16, 16).GetSampleSize(), 11025u);
  EXPECT_EQ(Info(44100, 44101, 2, 16, 16).GetSampleSize(), 11025u);
  EXPECT_EQ(Info(44100, 44103, 2, 16, 16).GetSampleSize(), 11025u);
  EXPECT_EQ(Info(44100, 44104, 2, 16, 16).GetSampleSize(), 11026u);
  EXPECT_EQ(Info(8000, 12, 1, 24, 32).GetSampleSize(), 3u);
}

TEST(WavInfo, SampleSize_WrapsFromHalfAGibibyteOn) {
  EXPECT_EQ(Info(44100, 0x1FFFFFFE, 1, 16, 16).GetSampleSize(), 0x0FFFFFFFu);
  EXPECT_EQ(Info(44100, 0x20000000, 1, 16, 16).GetSampleSize(), 0u);
  EXPECT_EQ(Info(44100, 0x20000002, 1, 16, 16).GetSampleSize(), 1u);
}

TEST(WavInfo, SampleSize_WithoutChannelsOrStoredBits_IsZero) {
  EXPECT_EQ(Info(8000, 100, 0, 16, 16).GetSampleSize(), 0u);
  EXPECT_EQ(Info(8000, 100, 1, 0, 0).GetSampleSize(), 0u);
  EXPECT_EQ(Info(8000, 100, 0, 16, 16).GetTimeLength(), 0u);
}

TEST(WavInfo, BytesPerSample_RoundsUp) {
  EXPECT_EQ(Info(1, 0, 1, 8, 8).GetBytesPerSample(), 1);
  EXPECT_EQ(Info(1, 0, 1, 12, 12).GetBytesPerSample(), 2);
  EXPECT_EQ(Info(1, 0, 1, 24, 24).GetBytesPerSample(), 3);
  EXPECT_EQ(Info(1, 0, 1, 25, 25).GetBytesPerSample(), 4);
  EXPECT_EQ(Info(1, 0, 1, 1, 65535).GetBytesPerSample(), 8192);
}

TEST(WavInfo, BlockAlignAndByteRate_FollowFromChannelsAndStoredBits) {
  C_WavInfo info = Info(44100, 0, 2, 16, 16);
  EXPECT_EQ(info.GetBlockAlign(), 4);
  EXPECT_EQ(info.GetAvgBytesPerSec(), 176400u);
  EXPECT_EQ(Info(8000, 0, 6, 24, 32).GetBlockAlign(), 24);
  EXPECT_EQ(Info(8000, 0, 6, 24, 32).GetAvgBytesPerSec(), 192000u);
}

TEST(WavInfo, BlockAlign_IsCutTo16Bits) {
  EXPECT_EQ(Info(1, 0, 0x8001, 16, 16).GetBlockAlign(), 2);
  EXPECT_EQ(Info(1, 0, 65535, 32, 32).GetBlockAlign(), 65532);
}

TEST(WavInfo, SetInfo_CopiesEverythingButTheEncodedLength) {
  C_WavInfo source = Info(22050, 1234, 3, 12, 16, false);
  source.SetEncByteLen(99);
  C_WavInfo info;
  info.SetEncByteLen(7);
  info.SetInfo(&source);
  EXPECT_EQ(info.GetSampleRate(), 22050u);
  EXPECT_EQ(info.GetByteLength(), 1234u);
  EXPECT_EQ(info.GetChannels(), 3);
  EXPECT_EQ(info.GetBitsPerSample(), 12);
  EXPECT_EQ(info.GetStoreBitsPerSample(), 16);
  EXPECT_FALSE(info.IsValueSigned());
  EXPECT_EQ(info.GetEncByteLen(), 7u);
  EXPECT_EQ(source.GetEncByteLen(), 99u);
}

// A format object that is not one of ours.
class C_ForeignInfo : public I_WavInfo {
 public:
  unsigned int GetTimeLength() override { return 1; }
  unsigned int GetByteLength() override { return 2; }
  unsigned int GetEncByteLen() override { return 3; }
  unsigned int GetSampleRate() override { return 4; }
  unsigned int GetSampleSize() override { return 5; }
  unsigned short GetBitsPerSample() override { return 6; }
  unsigned short GetStoreBitsPerSample() override { return 8; }
  unsigned short GetChannels() override { return 9; }
  unsigned short GetBytesPerSample() override { return 10; }
  unsigned short GetBlockAlign() override { return 11; }
  unsigned int GetAvgBytesPerSec() override { return 12; }
  bool IsValueSigned() override { return false; }
  void SetSampleRate(unsigned int) override {}
  void SetInfo(I_WavInfo*) override {}
  void SetInfoData(unsigned int, unsigned int, unsigned short, unsigned short, unsigned short,
                   bool) override {}
  void GetWaveFormat(S_PcmFormatRecord*) override {}
};

TEST(WavInfo, SetInfo_ReadsAnyFormatThroughItsInterface) {
  C_ForeignInfo foreign;
  C_WavInfo info;
  info.SetInfo(&foreign);
  EXPECT_EQ(info.GetSampleRate(), 4u);
  EXPECT_EQ(info.GetByteLength(), 2u);
  EXPECT_EQ(info.GetChannels(), 9);
  EXPECT_EQ(info.GetBitsPerSample(), 6);
  EXPECT_EQ(info.GetStoreBitsPerSample(), 8);
  EXPECT_FALSE(info.IsValueSigned());
  EXPECT_EQ(info.GetEncByteLen(), 0u);
}

TEST(WavInfo, SetInfo_GoesThroughSetInfoData) {
  class C_Counting : public C_WavInfo {
   public:
    void SetInfoData(unsigned int dwRate, unsigned int dwBytes, unsigned short wChannels,
                     unsigned short wBits, unsigned short wStoreBits, bool bSigned) override {
      ++nCalls;
      C_WavInfo::SetInfoData(dwRate, dwBytes, wChannels, wBits, wStoreBits, bSigned);
    }
    int nCalls = 0;
  } info;
  C_WavInfo source = Mono16(8000, 4);
  info.SetInfo(&source);
  EXPECT_EQ(info.nCalls, 1);
  EXPECT_EQ(info.GetSampleSize(), 4u);
}

TEST(WavInfo, SetInfo_OfNothing_ChangesNothing) {
  C_WavInfo info = Mono16(8000, 4);
  info.SetInfo(nullptr);
  EXPECT_EQ(info.GetSampleRate(), 8000u);
  EXPECT_EQ(info.GetByteLength(), 8u);
}

TEST(WavInfo, SetInfoData_LeavesTheEncodedLength) {
  C_WavInfo info;
  info.SetEncByteLen(31);
  info.SetInfoData(8000, 10, 1, 8, 8, false);
  EXPECT_EQ(info.GetEncByteLen(), 31u);
}

TEST(WavInfo, SetSampleRateAndSetChannels_ChangeNothingElse) {
  C_WavInfo info = Info(8000, 12, 2, 12, 16, false);
  info.SetSampleRate(11025);
  info.SetChannels(3);
  EXPECT_EQ(info.GetSampleRate(), 11025u);
  EXPECT_EQ(info.GetChannels(), 3);
  EXPECT_EQ(info.GetByteLength(), 12u);
  EXPECT_EQ(info.GetBitsPerSample(), 12);
  EXPECT_EQ(info.GetStoreBitsPerSample(), 16);
  EXPECT_FALSE(info.IsValueSigned());
}

TEST(WavInfo, WaveFormat_NamesTheSignificantBits) {
  S_PcmFormatRecord record{};
  record.wFormatTag = 99;
  Info(16000, 640, 1, 12, 16).GetWaveFormat(&record);
  EXPECT_EQ(record.wFormatTag, 1);
  EXPECT_EQ(record.wChannels, 1);
  EXPECT_EQ(record.dwSamplesPerSec, 16000u);
  EXPECT_EQ(record.dwAvgBytesPerSec, 32000u);
  EXPECT_EQ(record.wBlockAlign, 2);
  EXPECT_EQ(record.wBitsPerSample, 12);
}

TEST(WavInfo, SupportedWidths_Are8And16And32StoredBits) {
  EXPECT_TRUE(IsSupportBitsPerSample(24, 32));
  EXPECT_TRUE(IsSupportBitsPerSample(4, 8));
  EXPECT_TRUE(IsSupportBitsPerSample(0, 8));
  EXPECT_TRUE(IsSupportBitsPerSample(8, 8));
  EXPECT_TRUE(IsSupportBitsPerSample(16, 16));
  EXPECT_TRUE(IsSupportBitsPerSample(32, 32));
  EXPECT_FALSE(IsSupportBitsPerSample(24, 24));
  EXPECT_FALSE(IsSupportBitsPerSample(16, 8));
  EXPECT_FALSE(IsSupportBitsPerSample(33, 32));
  EXPECT_FALSE(IsSupportBitsPerSample(8, 0));
  EXPECT_FALSE(IsSupportBitsPerSample(0, 0));
  EXPECT_FALSE(IsSupportBitsPerSample(64, 64));
}

TEST(WavInfo, SupportedWidths_EveryStoredWidthSwept) {
  for (unsigned int dwStore = 0; dwStore <= 65535; ++dwStore) {
    const auto wStore = static_cast<unsigned short>(dwStore);
    const bool bWhole = dwStore == 8 || dwStore == 16 || dwStore == 32;
    ASSERT_EQ(IsSupportBitsPerSample(1, wStore), bWhole) << dwStore;
    ASSERT_EQ(IsSupportBitsPerSample(wStore, wStore), bWhole) << dwStore;
  }
}

TEST(WavInfo, Layout_IsPackedByTwoAndAlignedForItsTable) {
  EXPECT_EQ(alignof(C_WavInfo), alignof(void*));
  EXPECT_EQ(sizeof(C_WavInfo) % alignof(void*), 0u);
  C_WavInfo info = Info(0x01020304, 0x11121314, 0x2122, 0x3132, 0x4142);
  info.SetEncByteLen(0x51525354);
  // The flag and one pad byte follow the pointer to the table. Then come the fields without gaps.
  std::array<unsigned char, 18> fields{};
  ASSERT_GE(sizeof info, sizeof(void*) + 2 + fields.size());
  std::memcpy(fields.data(), reinterpret_cast<const unsigned char*>(&info) + sizeof(void*) + 2,
              fields.size());
  EXPECT_EQ(fields,
            (std::array<unsigned char, 18>{4, 3, 2, 1, 0x14, 0x13, 0x12, 0x11, 0x54, 0x53, 0x52,
                                           0x51, 0x22, 0x21, 0x32, 0x31, 0x42, 0x41}));
}

TEST(WavInfo, Interface_HasItsSlotsInOrder) {
  C_WavInfo info = Info(11025, 44100, 2, 12, 16, false);
  info.SetEncByteLen(77);
  I_WavInfo* pInfo = &info;
  EXPECT_EQ((CallSlot<unsigned int>(pInfo, 0)), 1000u);
  EXPECT_EQ((CallSlot<unsigned int>(pInfo, 1)), 44100u);
  EXPECT_EQ((CallSlot<unsigned int>(pInfo, 2)), 77u);
  EXPECT_EQ((CallSlot<unsigned int>(pInfo, 3)), 11025u);
  EXPECT_EQ((CallSlot<unsigned int>(pInfo, 4)), 11025u);
  EXPECT_EQ((CallSlot<unsigned short>(pInfo, 5)), 12);
  EXPECT_EQ((CallSlot<unsigned short>(pInfo, 6)), 16);
  EXPECT_EQ((CallSlot<unsigned short>(pInfo, 7)), 2);
  EXPECT_EQ((CallSlot<unsigned short>(pInfo, 8)), 2);
  EXPECT_EQ((CallSlot<unsigned short>(pInfo, 9)), 4);
  EXPECT_EQ((CallSlot<unsigned int>(pInfo, 10)), 44100u);
  EXPECT_FALSE((CallSlot<bool>(pInfo, 11)));
  CallSlot<void, unsigned int>(pInfo, 12, 5);
  EXPECT_EQ(info.GetSampleRate(), 5u);
  C_WavInfo other = Mono16(9, 1);
  CallSlot<void, I_WavInfo*>(pInfo, 13, &other);
  EXPECT_EQ(info.GetSampleRate(), 9u);
  CallSlot<void, unsigned int, unsigned int, unsigned short, unsigned short, unsigned short, bool>(
      pInfo, 14, 1, 2, 3, 4, 8, true);
  EXPECT_EQ(info.GetBitsPerSample(), 4);
  S_PcmFormatRecord record{};
  CallSlot<void, S_PcmFormatRecord*>(pInfo, 15, &record);
  EXPECT_EQ(record.wChannels, 3);
}

TEST(WavInfo, Interface_DestructorStandsInTheLastSlot) {
  bool bDied = false;
  class C_Mortal : public C_WavInfo {
   public:
    explicit C_Mortal(bool& bFlag) : m_bFlag(bFlag) {}
    ~C_Mortal() override { m_bFlag = true; }

   private:
    bool& m_bFlag;
  };
  I_WavInfo* pInfo = new C_Mortal(bDied);
  CallSlot<void>(pInfo, 17);
  EXPECT_TRUE(bDied);
}

static_assert(std::has_virtual_destructor_v<I_WavInfo>);

}  // namespace
