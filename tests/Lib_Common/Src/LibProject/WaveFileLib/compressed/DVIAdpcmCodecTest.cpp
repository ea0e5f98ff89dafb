// SPDX-License-Identifier: Apache-2.0
#include "compressed/DVIAdpcmCodec.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "CodecSupport.h"
#include "VTable.h"

namespace {

S_Blocks Four(std::uint16_t wChannels, std::uint16_t wBlockAlign, std::uint16_t wSamplesPerBlock) {
  return {WAVE_TAG_DVI_ADPCM, wChannels, wBlockAlign, wSamplesPerBlock, 4};
}
S_Blocks Three(std::uint16_t wChannels, std::uint16_t wBlockAlign, std::uint16_t wSamplesPerBlock) {
  return {WAVE_TAG_DVI_ADPCM, wChannels, wBlockAlign, wSamplesPerBlock, 3};
}

template <typename Codec>
C_Samples Block(const S_Blocks& blocks, const C_Bytes& block, unsigned int dwCapacity) {
  Codec codec;
  return DecodeBlock(codec, InfoOf(blocks), block, dwCapacity);
}
constexpr auto* Block4 = &Block<C_DVIAdpcmCodec>;
constexpr auto* Block3 = &Block<C_DVIAdpcm3BitCodec>;

// The header of a channel.
C_Bytes Head(int nSample, int nIndex) {
  return Join({U16(static_cast<std::uint16_t>(nSample)), {static_cast<std::uint8_t>(nIndex), 0}});
}

const C_Bytes kMonoBlock = Join({Head(100, 0), {0x70, 0xF8, 0x12, 0x34}});
const C_Samples kMonoSamples = {100, 100, 111, 109, 84, 102, 112, 140, 165};
const C_Bytes kStereoBlock =
    Join({Head(100, 0), Head(-200, 20), {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}});
const C_Samples kStereoSamples = {100,  -200, 101,  -218, 101,  -223, 105,  -258, 108,
                                  -280, 116,  -326, 128,  -382, 151,  -494, 196,  -705};
// Codes 0 to 7, then 24 times code 0.
const C_Bytes kThreeBitBlock = Join({Head(100, 0), {0x88, 0xC6, 0xFA}, C_Bytes(9)});
const C_Samples kThreeBitSamples = {100, 101, 105, 113, 127, 125, 119, 109, 94,  96,  98,
                                    100, 102, 103, 104, 105, 106, 107, 108, 109, 110, 111,
                                    112, 113, 114, 115, 116, 117, 118, 119, 120, 121, 122};

C_Samples FirstOf(const C_Samples& samples, std::size_t nCount) {
  return {samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(nCount)};
}
C_Bytes FirstOf(const C_Bytes& bytes, std::size_t nCount) {
  return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(nCount)};
}
C_Samples UntouchedFrom(C_Samples samples, std::size_t nFrom) {
  std::fill(samples.begin() + static_cast<std::ptrdiff_t>(nFrom), samples.end(), kUntouched);
  return samples;
}

}  // namespace

// --- Sizes

TEST(DVIAdpcmCodec, FourBitSizes_CountSixHeaderBytes) {
  C_DVIAdpcmCodec codec;
  const auto info = InfoOf(Four(1, 256, 505));
  EXPECT_EQ(codec.GetDecodedSize(info, 256), 1010u);
  EXPECT_EQ(codec.GetDecodedSize(info, 264), 1018u);
  EXPECT_EQ(codec.GetDecodedSize(info, 300), 1162u);
  EXPECT_EQ(codec.GetDecodedSize(InfoOf(Four(2, 512, 505)), 512 + 20), 2052u);
  const C_Samples all = Decode(codec, info, C_Bytes(264), 1100);
  const auto nHeld =
      all.size() - static_cast<std::size_t>(std::count(all.begin(), all.end(), kUntouched));
  EXPECT_EQ(nHeld, 1018u / 2 + 5) << "five more than are counted";
}

TEST(DVIAdpcmCodec, ThreeBitSizes_CountEightSamplesInThreeBytes) {
  C_DVIAdpcm3BitCodec codec;
  const auto info = InfoOf(Three(1, 196, 513));
  EXPECT_EQ(codec.GetDecodedSize(info, 196), 1026u);
  EXPECT_EQ(codec.GetDecodedSize(info, 202), 1026u);
  EXPECT_EQ(codec.GetDecodedSize(info, 208), 1058u);
  EXPECT_EQ(codec.GetDecodedSize(info, 203), 1030u) << "8 / 3 is 2";
  EXPECT_EQ(codec.GetDecodedSize(info, 204), 1036u) << "16 / 3 is 5";
}

TEST(DVIAdpcmCodec, ShortRests_TakeSamplesAway) {
  EXPECT_EQ(C_DVIAdpcmCodec().GetDecodedSize(InfoOf(Four(1, 256, 505)), 257), 990u);
  // -5 * 8 / 3 is -13, truncated towards zero.
  EXPECT_EQ(C_DVIAdpcm3BitCodec().GetDecodedSize(InfoOf(Three(1, 196, 513)), 197), 1000u);
  EXPECT_EQ(C_DVIAdpcm3BitCodec().GetDecodedSize(InfoOf(Three(1, 196, 513)), 1), 0u);
}

TEST(DVIAdpcmCodec, SizesBeyond32Bits_AreNone) {
  EXPECT_EQ(C_DVIAdpcmCodec().GetDecodedSize(InfoOf(Four(65535, 1, 65535)), ~0u), std::nullopt);
  EXPECT_EQ(C_DVIAdpcm3BitCodec().GetDecodedSize(InfoOf(Three(65535, 1, 65535)), ~0u),
            std::nullopt);
}

// --- Four bits

TEST(DVIAdpcmCodec, FourBits_Mono) {
  EXPECT_EQ(Block4(Four(1, 8, 9), kMonoBlock, 18), kMonoSamples);
}

TEST(DVIAdpcmCodec, FourBits_ChannelsTakeTurnsOfFourBytes) {
  EXPECT_EQ(Block4(Four(2, 16, 9), kStereoBlock, 36), kStereoSamples);
}

TEST(DVIAdpcmCodec, FourBits_LowHalfComesFirst) {
  const C_Bytes block = Join({Head(0, 88), {0x08, 0, 0, 0}});
  EXPECT_EQ(Block4(Four(1, 8, 9), block, 6), (C_Samples{0, -4095, -371}));
}

TEST(DVIAdpcmCodec, FourBits_SamplesAreClamped) {
  C_Samples expected(9, 32767);
  expected[0] = 32000;
  EXPECT_EQ(Block4(Four(1, 8, 9), Join({Head(32000, 88), C_Bytes(4, 0x77)}), 18), expected);
  std::fill(expected.begin() + 1, expected.end(), static_cast<short>(-32768));
  expected[0] = -32000;
  EXPECT_EQ(Block4(Four(1, 8, 9), Join({Head(-32000, 88), C_Bytes(4, 0xFF)}), 18), expected);
}

// Code 0 adds an eighth of the step and lowers the index by one. The step that follows is that of
// the index below.
TEST(DVIAdpcmCodec, Steps_AreThoseOfTheTable) {
  int nIndex = 88;
  for (const int nStep : {32767, 29794, 27086, 24623, 22385, 20350, 18500, 16818, 15289}) {
    const C_Samples samples = Block4(Four(1, 8, 9), Join({Head(0, nIndex), C_Bytes(4)}), 4);
    EXPECT_EQ(samples[1], nStep >> 3) << nIndex;
    --nIndex;
  }
  EXPECT_EQ(Block4(Four(1, 8, 9), Join({Head(0, 0), {0x00}}), 6), (C_Samples{0, 0, 0}));
  EXPECT_EQ(Block4(Four(1, 8, 9), Join({Head(0, 1), {0x00}}), 6), (C_Samples{0, 1, 1}));
}

TEST(DVIAdpcmCodec, StepIndex_IsLimitedTo88) {
  const C_Samples expected = Block4(Four(1, 8, 9), Join({Head(5, 88), {0x21, 0x43, 1, 9}}), 18);
  for (const int nIndex : {89, 90, 128, 184, 255}) {
    EXPECT_EQ(Block4(Four(1, 8, 9), Join({Head(5, nIndex), {0x21, 0x43, 1, 9}}), 18), expected);
    EXPECT_EQ(Block3(Three(1, 16, 33), Join({Head(5, nIndex), C_Bytes(12, 0x55)}), 66),
              Block3(Three(1, 16, 33), Join({Head(5, 88), C_Bytes(12, 0x55)}), 66));
  }
}

TEST(DVIAdpcmCodec, ReservedByte_DoesNotMatter) {
  C_Bytes block = kMonoBlock;
  block[3] = 0xFF;
  EXPECT_EQ(Block4(Four(1, 8, 9), block, 18), kMonoSamples);
}

TEST(DVIAdpcmCodec, FourBits_WholeGroupsOfEightOnly) {
  for (const int nSamples : {9, 10, 15, 16}) {
    EXPECT_EQ(Block4(Four(1, 12, static_cast<std::uint16_t>(nSamples)),
                     Join({kMonoBlock, C_Bytes(4, 0x11)}), 18),
              kMonoSamples)
        << nSamples;
  }
  for (const int nSamples : {1, 2, 8}) {
    EXPECT_EQ(Block4(Four(1, 8, static_cast<std::uint16_t>(nSamples)), kMonoBlock, 18),
              UntouchedFrom(kMonoSamples, 1))
        << nSamples;
  }
}

TEST(DVIAdpcmCodec, NoSamplesPerBlock_GivesNoGroups) {
  EXPECT_EQ(Block4(Four(1, 8, 0), kMonoBlock, 18), UntouchedFrom(kMonoSamples, 1));
  EXPECT_EQ(Block3(Three(1, 16, 0), kThreeBitBlock, 66), UntouchedFrom(kThreeBitSamples, 1));
  C_DVIAdpcmCodec codec;
  EXPECT_EQ(Decode(codec, InfoOf(Four(1, 8, 0)), kMonoBlock, 4), C_Samples(2, kUntouched))
      << "and no room";
}

TEST(DVIAdpcmCodec, FourBits_BlockEndsWithItsBytes) {
  for (std::size_t cb = 4; cb <= 8; ++cb) {
    EXPECT_EQ(Block4(Four(1, 8, 9), FirstOf(kMonoBlock, cb), 18),
              UntouchedFrom(kMonoSamples, 1 + 2 * (cb - 4)))
        << cb;
  }
  C_Samples expected = kStereoSamples;
  for (std::size_t i = 3; i < expected.size(); i += 2) expected[i] = kUntouched;
  EXPECT_EQ(Block4(Four(2, 16, 9), FirstOf(kStereoBlock, 12), 36), expected);
}

TEST(DVIAdpcmCodec, FourBits_RoomMayEndAnywhere) {
  for (unsigned int dwRoom = 0; dwRoom <= 36; ++dwRoom) {
    EXPECT_EQ(Block4(Four(2, 16, 9), kStereoBlock, dwRoom), FirstOf(kStereoSamples, dwRoom / 2))
        << dwRoom;
  }
}

TEST(DVIAdpcmCodec, BlockShorterThanItsHeader_GivesNothing) {
  for (std::size_t cb = 0; cb < 8; ++cb) {
    EXPECT_EQ(Block4(Four(2, 16, 9), FirstOf(kStereoBlock, cb), 36), C_Samples(18, kUntouched));
    EXPECT_EQ(Block3(Three(2, 16, 9), FirstOf(kStereoBlock, cb), 36), C_Samples(18, kUntouched));
  }
}

TEST(DVIAdpcmCodec, WithoutChannels_ThereAreNoBlocks) {
  const C_WavFileCodecInfo nothing;
  C_DVIAdpcmCodec four;
  C_DVIAdpcm3BitCodec three;
  EXPECT_EQ(DecodeBlock(four, nothing, kMonoBlock, 4), C_Samples(2, kUntouched));
  EXPECT_EQ(DecodeBlock(three, nothing, kMonoBlock, 4), C_Samples(2, kUntouched));
}

// --- Three bits

TEST(DVIAdpcmCodec, ThreeBits_Mono) {
  EXPECT_EQ(Block3(Three(1, 16, 33), kThreeBitBlock, 66), kThreeBitSamples);
}

TEST(DVIAdpcmCodec, ThreeBits_ChannelsTakeTurnsOfTwelveBytes) {
  const C_Bytes codes(kThreeBitBlock.begin() + 4, kThreeBitBlock.end());
  const C_Bytes block = Join({Head(100, 0), Head(0, 0), codes, C_Bytes(12)});
  const C_Samples samples = Block3(Three(2, 32, 33), block, 132);
  for (std::size_t i = 0; i < 33; ++i) {
    EXPECT_EQ(samples[2 * i], kThreeBitSamples[i]) << i;
    EXPECT_EQ(samples[2 * i + 1], static_cast<short>(i)) << i;
  }
}

TEST(DVIAdpcmCodec, ThreeBits_NextGroupGoesOn32FramesLater) {
  const C_Bytes block = Join({Head(0, 0), Head(0, 1), C_Bytes(48)});
  const C_Samples samples = Block3(Three(2, 56, 65), block, 260);
  for (std::size_t i = 0; i < 65; ++i) {
    EXPECT_EQ(samples[2 * i], static_cast<short>(i)) << i;
    EXPECT_EQ(samples[2 * i + 1], static_cast<short>(i == 0 ? 0 : i + 1)) << i;
  }
}

// P is the number of samples per block. (P - 1) / 8 is 3 up to P = 32, which makes one group, and 4
// from P = 33 on, which makes two groups.
TEST(DVIAdpcmCodec, ThreeBitGroups_AreCountedAsThreeEights) {
  const C_Bytes block = Join({kThreeBitBlock, C_Bytes(24)});
  C_Samples written = Block3(Three(1, 40, 33), block, 200);
  EXPECT_EQ(FirstOf(written, 33), kThreeBitSamples);
  EXPECT_EQ(written[64], kThreeBitSamples[32] + 32) << "the second group is there";
  EXPECT_EQ(written[65], kUntouched) << "and no third one";
  written = Block3(Three(1, 40, 32), block, 200);
  EXPECT_EQ(FirstOf(written, 33), kThreeBitSamples);
  EXPECT_EQ(written[33], kUntouched);
  EXPECT_EQ(Block3(Three(1, 40, 9), block, 66), kThreeBitSamples);
  EXPECT_EQ(Block3(Three(1, 40, 8), block, 66), UntouchedFrom(kThreeBitSamples, 1));
}

TEST(DVIAdpcmCodec, ThreeBits_LargeBlockEndsWithItsBytes) {
  const C_Bytes block = Join({Head(0, 0), C_Bytes(192)});
  const C_Samples samples = Block3(Three(1, 196, 513), block, 2000);
  EXPECT_EQ(samples[512], 512);
  EXPECT_EQ(samples[513], kUntouched);
}

// Three bytes hold eight codes: two bytes hold five whole codes, and one byte holds two.
TEST(DVIAdpcmCodec, ThreeBits_CodeThatTheEndCutsIsNotDecoded) {
  const std::size_t wholeCodes[] = {0, 2, 5, 8, 10, 13, 16, 18, 21, 24, 26, 29, 32};
  for (std::size_t cb = 0; cb <= 12; ++cb) {
    EXPECT_EQ(Block3(Three(1, 16, 33), FirstOf(kThreeBitBlock, 4 + cb), 66),
              UntouchedFrom(kThreeBitSamples, 1 + wholeCodes[cb]))
        << cb;
  }
}

TEST(DVIAdpcmCodec, ThreeBits_RoomMayEndAnywhere) {
  for (unsigned int dwRoom = 0; dwRoom <= 66; ++dwRoom) {
    EXPECT_EQ(Block3(Three(1, 16, 33), kThreeBitBlock, dwRoom),
              FirstOf(kThreeBitSamples, dwRoom / 2))
        << dwRoom;
  }
}

// Only half of a group of two channels fits: both channels have their first 16 samples.
TEST(DVIAdpcmCodec, ThreeBits_RoomThatEndsWithinAGroup_HoldsAllChannels) {
  const C_Bytes codes(kThreeBitBlock.begin() + 4, kThreeBitBlock.end());
  const C_Bytes block = Join({Head(100, 0), Head(100, 0), codes, codes});
  const C_Samples samples = Block3(Three(2, 32, 17), block, 68);
  for (std::size_t i = 0; i < 34; ++i) EXPECT_EQ(samples[i], kThreeBitSamples[i / 2]) << i;
}

TEST(DVIAdpcmCodec, ThreeBits_SamplesAreClamped) {
  C_Bytes block = Join({Head(32000, 88), C_Bytes(12, 0xFF)});
  EXPECT_EQ(Block3(Three(1, 16, 33), block, 6), (C_Samples{32000, -25341, -32768}));
  block = Join({Head(-32000, 88), {0x1B, 0, 0}});
  EXPECT_EQ(Block3(Three(1, 16, 33), block, 6), (C_Samples{-32000, 25341, 32767}));
}

TEST(DVIAdpcmCodec, WholeSound_IsDecodedAsBlocksAndARest) {
  C_DVIAdpcmCodec codec;
  const auto info = InfoOf(Four(1, 8, 9));
  const C_Bytes encoded = Join({kMonoBlock, kMonoBlock, FirstOf(kMonoBlock, 7)});
  const auto dwSize = codec.GetDecodedSize(info, 23);
  ASSERT_EQ(dwSize, 40u) << "the rest counts (7 - 6) * 2 samples, not 7";
  C_Samples expected = kMonoSamples;
  expected.insert(expected.end(), kMonoSamples.begin(), kMonoSamples.end());
  expected.insert(expected.end(), kMonoSamples.begin(), kMonoSamples.begin() + 2);
  EXPECT_EQ(Decode(codec, info, encoded, *dwSize), expected);
}

TEST(DVIAdpcmCodec, Operations_StandInTheirSlots) {
  using C_Size = std::optional<unsigned int>;
  auto* pCodec = new C_DVIAdpcm3BitCodec;
  const auto info = InfoOf(Three(1, 16, 33));
  C_Room room(66);
  EXPECT_EQ((CallSlot<C_Size, const C_WavFileCodecInfo&, unsigned int>(pCodec, 2, info, 32u)),
            C_Size(132u));
  EXPECT_TRUE(
      (CallSlot<bool, const C_WavFileCodecInfo&, const unsigned char*, short*, unsigned int,
                unsigned int>(pCodec, 4, info, kThreeBitBlock.data(), room.Data(), 16u, 66u)));
  EXPECT_EQ(room.Samples(), kThreeBitSamples);
  CallSlot<void>(pCodec, 1);  // the deleting destructor; leaks are reported
}
