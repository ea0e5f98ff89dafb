// SPDX-License-Identifier: Apache-2.0
#include "compressed/WavFileCodecInfo.h"

#include <gtest/gtest.h>

#include "WavBytes.h"

namespace {

// A block-codec record: the plain record, extra size, samples per block, and what follows.
C_Bytes BlockFmtBytes(std::uint16_t wTag, std::uint16_t wSamplesPerBlock, const C_Bytes& tail) {
  return Join({FmtBytes(wTag, 2, 22050, 4), U16(32), U16(wSamplesPerBlock), tail});
}
C_Bytes MSAdpcmBytes(std::uint16_t wCount, std::size_t cbPairs) {
  return BlockFmtBytes(2, 500, Join({U16(wCount), RampBytes(cbPairs)}));
}
bool Accepts(const C_Bytes& payload) { return C_WavFileCodecInfo().SetFormat(payload); }

std::size_t RecordBytes(const C_Bytes& payload) {
  C_WavFileCodecInfo info;
  EXPECT_TRUE(info.SetFormat(payload));
  return info.GetRecord().size();
}

C_Bytes WithField(C_Bytes payload, std::size_t nAt, std::uint16_t wValue) {
  payload[nAt] = static_cast<std::uint8_t>(wValue);
  payload[nAt + 1] = static_cast<std::uint8_t>(wValue >> 8);
  return payload;
}

}  // namespace

TEST(WavFileCodecInfo, ExactlyFiveTags_AreAccepted) {
  std::vector<unsigned int> accepted;
  for (unsigned int dwTag = 0; dwTag <= 0xFFFF; ++dwTag) {
    if (C_WavFileCodecInfo::IsAcceptedTag(static_cast<unsigned short>(dwTag))) {
      accepted.push_back(dwTag);
    }
  }
  EXPECT_EQ(accepted, (std::vector<unsigned int>{1, 2, 6, 7, 11}));
}

TEST(WavFileCodecInfo, RecordsOfEveryOtherTag_AreRefused) {
  for (unsigned int dwTag = 0; dwTag <= 0xFFFF; ++dwTag) {
    const auto wTag = static_cast<std::uint16_t>(dwTag);
    const bool bAccepted = Accepts(BlockFmtBytes(wTag, 500, Join({U16(0), C_Bytes(64)})));
    ASSERT_EQ(bAccepted, wTag == 1 || wTag == 2 || wTag == 6 || wTag == 7 || wTag == 11) << wTag;
  }
}

TEST(WavFileCodecInfo, Tag0x0011_IsRefused) {
  EXPECT_FALSE(Accepts(BlockFmtBytes(0x0011, 500, {})));
  EXPECT_TRUE(Accepts(BlockFmtBytes(11, 500, {})));
}

TEST(WavFileCodecInfo, SetFormat_CopiesAsManyBytesAsTheTagsRecordHas) {
  const C_Bytes tail(40);
  EXPECT_EQ(RecordBytes(Join({FmtBytes(1, 1, 8000, 16), tail})), 16u);
  EXPECT_EQ(RecordBytes(Join({FmtBytes(6, 1, 8000, 8), tail})), 16u);
  EXPECT_EQ(RecordBytes(Join({FmtBytes(7, 1, 8000, 8), tail})), 16u);
  EXPECT_EQ(RecordBytes(BlockFmtBytes(11, 505, tail)), 20u);
  EXPECT_EQ(RecordBytes(MSAdpcmBytes(0, 40)), 22u);
  EXPECT_EQ(RecordBytes(MSAdpcmBytes(7, 40)), 50u);
  EXPECT_EQ(RecordBytes(MSAdpcmBytes(0xFFFF, std::size_t{4} * 0xFFFF)),
            std::size_t{C_WavFileCodecInfo::kMaxBytes});
}

TEST(WavFileCodecInfo, Copy_HoldsTheBytesOfTheFile) {
  const C_Bytes payload = MSAdpcmBytes(2, 9);
  C_WavFileCodecInfo info;
  ASSERT_TRUE(info.SetFormat(payload));
  EXPECT_EQ(C_Bytes(info.GetRecord().begin(), info.GetRecord().end()),
            C_Bytes(payload.begin(), payload.begin() + 30));
}

TEST(WavFileCodecInfo, PayloadShorterThanItsRecord_IsRefused) {
  for (const auto& whole :
       {FmtBytes(1, 1, 8000, 16), FmtBytes(6, 1, 8000, 8), FmtBytes(7, 1, 8000, 8),
        BlockFmtBytes(11, 505, {}), MSAdpcmBytes(7, 28), MSAdpcmBytes(0, 0)}) {
    EXPECT_TRUE(Accepts(whole));
    for (std::size_t cb = 0; cb < whole.size(); ++cb) {
      const auto nLength = static_cast<std::ptrdiff_t>(cb);
      EXPECT_FALSE(Accepts(C_Bytes(whole.begin(), whole.begin() + nLength))) << cb;
    }
  }
}

TEST(WavFileCodecInfo, CoefficientCountBeyondThePayload_IsRefused) {
  EXPECT_FALSE(Accepts(MSAdpcmBytes(8, 28)));
  EXPECT_FALSE(Accepts(MSAdpcmBytes(0xFFFF, 28)));
}

TEST(WavFileCodecInfo, ZerosThatWouldDivide_AreRefused) {
  for (const std::uint16_t wTag : std::initializer_list<std::uint16_t>{1, 6, 7}) {
    EXPECT_FALSE(Accepts(FmtBytes(wTag, 0, 8000, 16))) << wTag;
  }
  EXPECT_FALSE(Accepts(WithField(BlockFmtBytes(11, 505, {}), 2, 0)));
  EXPECT_FALSE(Accepts(WithField(MSAdpcmBytes(7, 28), 2, 0)));
  EXPECT_FALSE(Accepts(WithField(BlockFmtBytes(11, 505, {}), 12, 0)));
  EXPECT_FALSE(Accepts(WithField(MSAdpcmBytes(7, 28), 12, 0)));
  EXPECT_FALSE(Accepts(FmtBytes(1, 1, 8000, 0)));
}

TEST(WavFileCodecInfo, ZerosThatNothingDividesBy_AreAccepted) {
  EXPECT_TRUE(Accepts(FmtBytes(1, 1, 0, 16)));                       // rate
  EXPECT_TRUE(Accepts(WithField(FmtBytes(1, 1, 8000, 16), 12, 0)));  // block align of PCM
  EXPECT_TRUE(Accepts(FmtBytes(6, 1, 8000, 0)));                     // bits of a fixed-width codec
  EXPECT_TRUE(Accepts(BlockFmtBytes(11, 0, {})));                    // samples per block
}

TEST(WavFileCodecInfo, RefusedRecord_LeavesNothingHeld) {
  C_WavFileCodecInfo info;
  ASSERT_TRUE(info.SetFormat(FmtBytes(1, 2, 44100, 16)));
  EXPECT_FALSE(info.SetFormat(FmtBytes(3, 2, 44100, 32)));
  EXPECT_TRUE(info.GetRecord().empty());
  EXPECT_EQ(info.GetFormatTag(), WAVE_TAG_NONE);
  EXPECT_EQ(info.GetPCMWAVEFORMAT().wChannels, 0);
}

TEST(WavFileCodecInfo, PlainRecord_IsHandedOut) {
  C_WavFileCodecInfo info;
  ASSERT_TRUE(info.SetFormat(FmtBytes(1, 2, 44100, 24)));
  const S_PcmFormatRecord pcm = info.GetPCMWAVEFORMAT();
  EXPECT_EQ(info.GetFormatTag(), 1);
  EXPECT_EQ(pcm.wFormatTag, 1);
  EXPECT_EQ(pcm.wChannels, 2);
  EXPECT_EQ(pcm.dwSamplesPerSec, 44100u);
  EXPECT_EQ(pcm.dwAvgBytesPerSec, 264600u);
  EXPECT_EQ(pcm.wBlockAlign, 6);
  EXPECT_EQ(pcm.wBitsPerSample, 24);
}

TEST(WavFileCodecInfo, FieldsThatARecordDoesNotHave_AreZero) {
  C_WavFileCodecInfo info;
  ASSERT_TRUE(info.SetFormat(Join({FmtBytes(1, 2, 44100, 24), RampBytes(24)})));
  EXPECT_EQ(info.GetWAVEFORMATEX().wExtraSize, 0);
  EXPECT_EQ(info.GetSamplesPerBlock(), 0);
  EXPECT_EQ(info.GetMSADPCMInfo().wCoefficientCount, 0);
  EXPECT_EQ(info.GetMSADPCMInfo().coefficients[0].nFirst, 0);
}

TEST(WavFileCodecInfo, BlockFormat_IsHandedOut) {
  C_WavFileCodecInfo info;
  ASSERT_TRUE(info.SetFormat(BlockFmtBytes(11, 505, RampBytes(8))));
  EXPECT_EQ(info.GetSamplesPerBlock(), 505);
  EXPECT_EQ(info.GetDVIADPCMInfo().wSamplesPerBlock, 505);
  EXPECT_EQ(info.GetDVIADPCMInfo().wfx.wExtraSize, 32);
  EXPECT_EQ(info.GetWAVEFORMATEX().wExtraSize, 32);
  EXPECT_EQ(info.GetWAVEFORMATEX().pcm.dwSamplesPerSec, 22050u);
  EXPECT_EQ(info.GetMSADPCMInfo().wCoefficientCount, 0);  // follows a 20-byte record
}

TEST(WavFileCodecInfo, CoefficientPairs_AreHandedOut) {
  C_WavFileCodecInfo info;
  const C_Bytes pairs = Join({U16(256), U16(0), U16(512), U16(0xFF00)});
  ASSERT_TRUE(info.SetFormat(BlockFmtBytes(2, 500, Join({U16(2), pairs}))));
  const S_MSAdpcmInfo ms = info.GetMSADPCMInfo();
  EXPECT_EQ(ms.wCoefficientCount, 2);
  EXPECT_EQ(ms.wSamplesPerBlock, 500);
  EXPECT_EQ(ms.wfx.pcm.wFormatTag, 2);
  EXPECT_EQ(ms.coefficients[0].nFirst, 256);
  EXPECT_EQ(ms.coefficients[0].nSecond, 0);
  EXPECT_EQ(ms.coefficients[1].nFirst, 512);
  EXPECT_EQ(ms.coefficients[1].nSecond, -256);
}

TEST(WavFileCodecInfo, EveryPredictorIndexOfABlock_FindsAPair) {
  C_WavFileCodecInfo info;
  ASSERT_TRUE(info.SetFormat(MSAdpcmBytes(7, 28)));
  EXPECT_EQ(info.GetMSADPCMInfo().coefficients.size(), 256u);
  EXPECT_EQ(info.GetMSADPCMInfo().coefficients[7].nFirst, 0);
  EXPECT_EQ(info.GetMSADPCMInfo().coefficients[255].nSecond, 0);
}

TEST(WavFileCodecInfo, MoreThan256Pairs_AreCountedAndTheFirst256HandedOut) {
  C_WavFileCodecInfo info;
  ASSERT_TRUE(info.SetFormat(MSAdpcmBytes(300, 1200)));
  const S_MSAdpcmInfo ms = info.GetMSADPCMInfo();
  EXPECT_EQ(ms.wCoefficientCount, 300);
  EXPECT_EQ(ms.coefficients[255].nSecond, 0x00FF);  // ramp bytes 1022 and 1023: 0xFF, 0x00
}
