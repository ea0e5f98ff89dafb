// SPDX-License-Identifier: Apache-2.0
#include "compressed/WavTags.h"

#include <gtest/gtest.h>

#include <typeinfo>
#include <vector>

#include "compressed/DVIAdpcmCodec.h"
#include "compressed/G711Codec.h"

namespace {

// The decoder that a tag gives for samples of so many bits.
std::unique_ptr<C_MSAdpcmCodec> DecoderOf(unsigned short wTag, unsigned short wBits) {
  const S_WavTag* const pTag = wavtags::Find(wTag);
  if (pTag == nullptr || pTag->pfnMakeDecoder == nullptr) return nullptr;
  return pTag->pfnMakeDecoder(wBits);
}

template <typename Decoder>
bool Is(const std::unique_ptr<C_MSAdpcmCodec>& decoder) {
  if (!decoder) return false;
  const C_MSAdpcmCodec& object = *decoder;
  return typeid(object) == typeid(Decoder);
}

TEST(WavTags, AllOtherTags_AreUnknown) {
  std::vector<unsigned int> known;
  for (unsigned int dwTag = 0; dwTag <= 0xFFFF; ++dwTag) {
    const S_WavTag* const pTag = wavtags::Find(static_cast<unsigned short>(dwTag));
    if (pTag == nullptr) continue;
    EXPECT_EQ(pTag->eTag, dwTag);
    known.push_back(dwTag);
  }
  EXPECT_EQ(known, (std::vector{1u, 2u, 6u, 7u, 11u}));
}

TEST(WavTags, EachTag_HasItsDecoder) {
  EXPECT_EQ(wavtags::Find(1)->pfnMakeDecoder, nullptr);
  EXPECT_TRUE(Is<C_MSAdpcmCodec>(DecoderOf(2, 4)));
  EXPECT_TRUE(Is<C_ALawCodec>(DecoderOf(6, 8)));
  EXPECT_TRUE(Is<C_MuLawCodec>(DecoderOf(7, 8)));
  EXPECT_TRUE(Is<C_DVIAdpcmCodec>(DecoderOf(11, 4)));
  EXPECT_TRUE(Is<C_DVIAdpcm3BitCodec>(DecoderOf(11, 3)));
}

TEST(WavTags, DviOfOtherWidths_HasNoDecoder) {
  for (unsigned int dwBits = 0; dwBits <= 0xFFFF; ++dwBits) {
    if (dwBits == 3 || dwBits == 4) continue;
    EXPECT_EQ(DecoderOf(11, static_cast<unsigned short>(dwBits)), nullptr) << dwBits;
  }
}

TEST(WavTags, OnlyAdpcm_HasBlocks) {
  EXPECT_FALSE(wavtags::Find(1)->bBlocks);
  EXPECT_TRUE(wavtags::Find(2)->bBlocks);
  EXPECT_FALSE(wavtags::Find(6)->bBlocks);
  EXPECT_FALSE(wavtags::Find(7)->bBlocks);
  EXPECT_TRUE(wavtags::Find(11)->bBlocks);
}

TEST(WavTags, CodingTypes_AreThoseOfLinearAndOfAdpcm) {
  EXPECT_EQ(wavtags::Find(1)->eCoding, WAV_CODING_LINEAR);
  EXPECT_EQ(wavtags::Find(2)->eCoding, WAV_CODING_MS_ADPCM);
  EXPECT_EQ(wavtags::Find(6)->eCoding, std::nullopt);
  EXPECT_EQ(wavtags::Find(7)->eCoding, std::nullopt);
  EXPECT_EQ(wavtags::Find(11)->eCoding, WAV_CODING_DVI_ADPCM);
}

TEST(WavTags, RecordBytes_CountTheCoefficientsOfMSAdpcm) {
  const std::vector<std::uint8_t> none(22);
  std::vector<std::uint8_t> seven(22);
  seven[20] = 7;
  std::vector<std::uint8_t> most(22, 0xFF);
  EXPECT_EQ(wavtags::RecordBytes(*wavtags::Find(2), none), 22u);
  EXPECT_EQ(wavtags::RecordBytes(*wavtags::Find(2), seven), 22u + 4 * 7);
  EXPECT_EQ(wavtags::RecordBytes(*wavtags::Find(2), most), 22u + 4 * 0xFFFF);
}

TEST(WavTags, RecordBytesOfACutHead_AreThoseOfTheHead) {
  for (std::size_t cbHead = 0; cbHead < 22; ++cbHead) {
    const std::vector<std::uint8_t> head(cbHead, 0xFF);
    EXPECT_EQ(wavtags::RecordBytes(*wavtags::Find(2), head), 22u) << cbHead;
  }
}

TEST(WavTags, RecordBytesOfOtherTags_AreFixed) {
  const std::vector<std::uint8_t> bytes(64, 0xFF);
  EXPECT_EQ(wavtags::RecordBytes(*wavtags::Find(1), bytes), 16u);
  EXPECT_EQ(wavtags::RecordBytes(*wavtags::Find(6), bytes), 16u);
  EXPECT_EQ(wavtags::RecordBytes(*wavtags::Find(7), bytes), 16u);
  EXPECT_EQ(wavtags::RecordBytes(*wavtags::Find(11), bytes), 20u);
}

}  // namespace
