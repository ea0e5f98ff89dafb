// SPDX-License-Identifier: Apache-2.0
#include "compressed/G711Codec.h"

#include <gtest/gtest.h>

#include <numeric>
#include <utility>

#include "CodecSupport.h"
#include "VTable.h"

namespace {

const C_WavFileCodecInfo& MuLawInfo() {
  static const C_WavFileCodecInfo info = InfoOf(S_Blocks{WAVE_TAG_MULAW, 1, 1, 0, 8});
  return info;
}

C_Bytes AllCodes() {
  C_Bytes codes(256);
  std::iota(codes.begin(), codes.end(), static_cast<std::uint8_t>(0));
  return codes;
}
template <typename Codec>
C_Samples AllValues() {
  Codec codec;
  return Decode(codec, MuLawInfo(), AllCodes(), 512);
}
using C_CodeValues = std::vector<std::pair<std::size_t, int>>;
template <typename Codec>
void ExpectValues(const C_CodeValues& expected, int nSum) {
  const C_Samples values = AllValues<Codec>();
  for (const auto& [nCode, nValue] : expected) EXPECT_EQ(values[nCode], nValue) << nCode;
  EXPECT_EQ(std::accumulate(values.begin(), values.end(), 0), nSum);
}

}  // namespace

TEST(G711Codec, MuLaw_ExpandsToTheLibrarysOwnValues) {
  ExpectValues<C_MuLawCodec>(
      {{0x00, -32735}, {0x01, -31711}, {0x0F, -17375}, {0x10, -16351}, {0x20, -8159}, {0x30, -4063},
       {0x40, -2015},  {0x50, -991},   {0x60, -479},   {0x70, -223},   {0x7D, -119},  {0x7E, -111},
       {0x7F, -1},     {0x80, 32734},  {0x90, 16350},  {0xA0, 8158},   {0xB0, 4062},  {0xC0, 2014},
       {0xD0, 990},    {0xE0, 478},    {0xF0, 222},    {0xFD, 118},    {0xFE, 110},   {0xFF, 0}},
      -128);
}

TEST(G711Codec, MuLaw_FallsInEqualStepsWithinASegment) {
  const C_Samples values = AllValues<C_MuLawCodec>();
  for (std::size_t nCode = 1; nCode < 127; ++nCode) {
    const int nStep = 1024 >> (nCode - 1) / 16;
    EXPECT_EQ(values[nCode] - values[nCode - 1], nStep) << nCode;
    EXPECT_EQ(values[nCode + 128], -values[nCode] - 1) << nCode;
  }
}

TEST(G711Codec, ALaw_ExpandsToSignAndMagnitude) {
  ExpectValues<C_ALawCodec>({{0xD5, 0},
                             {0x55, -32768},
                             {0xD4, 16},
                             {0x54, -32752},
                             {0x80, 5376},
                             {0x00, -27392},
                             {0xC5, 256},
                             {0xF5, 512},
                             {0xE5, 1024},
                             {0x95, 2048},
                             {0x85, 4096},
                             {0xB5, 8196},
                             {0xBA, 15876},
                             {0xA5, 16384},
                             {0xAA, 31744},
                             {0x2A, -1024},
                             {0x25, -16384},
                             {0x35, -24572}},
                            -2662272);
}

TEST(G711Codec, ALaw_SignIsOnlyTheTopBit) {
  const C_Samples values = AllValues<C_ALawCodec>();
  for (std::size_t nCode = 0; nCode < 128; ++nCode) {
    EXPECT_GE(values[nCode + 128], 0) << nCode;
    EXPECT_EQ(values[nCode], values[nCode + 128] - 32768) << nCode;
  }
}

TEST(G711Codec, ALaw_Segment6BeginsAt8196) {
  const C_Samples values = AllValues<C_ALawCodec>();
  for (std::size_t nMantissa = 0; nMantissa < 16; ++nMantissa) {
    EXPECT_EQ(values[(0xE0 | nMantissa) ^ 0x55], 8196 + 512 * static_cast<int>(nMantissa));
  }
}

TEST(G711Codec, Values_AreTheSameAtEveryCall) {
  EXPECT_EQ(AllValues<C_MuLawCodec>(), AllValues<C_MuLawCodec>());
  C_MuLawCodec codec;
  const C_Samples first = Decode(codec, MuLawInfo(), AllCodes(), 512);
  EXPECT_EQ(Decode(codec, MuLawInfo(), AllCodes(), 512), first);
  EXPECT_EQ(sizeof(C_MuLawCodec), sizeof(void*)) << "decoders hold no state";
}

TEST(G711Codec, DecodedSize_IsTwoPerByte) {
  C_MuLawCodec muLaw;
  C_ALawCodec aLaw;
  C_G711Codec both;
  for (const unsigned int dwBytes : {0u, 1u, 2u, 255u, 1000001u, 0x7FFFFFFFu}) {
    EXPECT_EQ(muLaw.GetDecodedSize(MuLawInfo(), dwBytes), 2 * dwBytes);
    EXPECT_EQ(aLaw.GetDecodedSize(MuLawInfo(), dwBytes), 2 * dwBytes);
    EXPECT_EQ(both.GetDecodedSize(MuLawInfo(), dwBytes), 2 * dwBytes);
  }
}

TEST(G711Codec, SizesBeyond32Bits_AreNone) {
  C_MuLawCodec codec;
  EXPECT_EQ(codec.GetDecodedSize(MuLawInfo(), 0x80000000u), std::nullopt);
  EXPECT_EQ(codec.GetDecodedSize(MuLawInfo(), 0xFFFFFFFFu), std::nullopt);
}

TEST(G711Codec, BlockAlignAndChannels_DoNotMatter) {
  const C_Samples expected = AllValues<C_MuLawCodec>();
  C_MuLawCodec codec;
  for (const std::uint16_t wChannels : std::initializer_list<std::uint16_t>{1, 2, 7, 65535}) {
    for (const std::uint16_t wAlign : std::initializer_list<std::uint16_t>{0, 1, 300}) {
      const auto info = InfoOf(S_Blocks{WAVE_TAG_MULAW, wChannels, wAlign, 0, 8});
      EXPECT_EQ(Decode(codec, info, AllCodes(), 512), expected) << wChannels << " " << wAlign;
      EXPECT_EQ(codec.GetDecodedSize(info, 256), 512u);
    }
  }
}

TEST(G711Codec, OutputThatIsTooSmall_TakesWhatFits) {
  C_MuLawCodec muLaw;
  C_ALawCodec aLaw;
  const C_Bytes codes = {0x00, 0x80, 0x7F, 0xD5};
  EXPECT_EQ(Decode(muLaw, MuLawInfo(), codes, 4), (C_Samples{-32735, 32734}));
  EXPECT_EQ(Decode(aLaw, MuLawInfo(), codes, 4), (C_Samples{-27392, 5376}));
  EXPECT_EQ(Decode(muLaw, MuLawInfo(), codes, 5), (C_Samples{-32735, 32734}));
  EXPECT_EQ(Decode(aLaw, MuLawInfo(), codes, 1), C_Samples{});
  EXPECT_EQ(Decode(muLaw, MuLawInfo(), codes, 0), C_Samples{});
}

TEST(G711Codec, OutputThatIsTooLarge_IsUntouchedAfterTheInputEnds) {
  C_ALawCodec codec;
  EXPECT_EQ(Decode(codec, MuLawInfo(), {0xD5}, 6), (C_Samples{0, kUntouched, kUntouched}));
  EXPECT_EQ(Decode(codec, MuLawInfo(), {}, 2), C_Samples{kUntouched});
}

// DecodeBlock is that of MS ADPCM, by inheritance.
TEST(G711Codec, Blocks_AreThoseOfTheBase) {
  const auto info = InfoOf(S_Blocks{WAVE_TAG_MS_ADPCM, 1, 9, 6});
  const C_Bytes block = Join({{0}, Shorts({16, 100, 50}), {0x1F, 0x78}});
  const C_Samples expected = {50, 100, 116, 100, 212, -92};
  C_G711Codec both;
  C_MuLawCodec muLaw;
  C_ALawCodec aLaw;
  EXPECT_EQ(DecodeBlock(both, info, block, 12), expected);
  EXPECT_EQ(DecodeBlock(muLaw, info, block, 12), expected);
  EXPECT_EQ(DecodeBlock(aLaw, info, block, 12), expected);
  EXPECT_EQ(Decode(both, info, block, 12), expected) << "the block loop";
}

TEST(G711Codec, Operations_StandInTheirSlots) {
  using Size = std::optional<unsigned int>;
  auto* pCodec = new C_MuLawCodec;
  const C_Bytes codes = {0x80, 0xFF};
  C_Room room(4);
  EXPECT_EQ((CallSlot<Size, const C_WavFileCodecInfo&, unsigned int>(pCodec, 2, MuLawInfo(), 2u)),
            Size(4u));
  EXPECT_TRUE((CallSlot<bool, const C_WavFileCodecInfo&, const unsigned char*, unsigned int, short*,
                        unsigned int>(pCodec, 3, MuLawInfo(), codes.data(), 2u, room.Data(), 4u)));
  EXPECT_EQ(room.Samples(), (C_Samples{32734, 0}));
  CallSlot<void>(pCodec, 1);  // the deleting destructor; leaks are reported
}
