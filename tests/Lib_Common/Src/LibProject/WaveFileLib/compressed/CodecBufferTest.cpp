// SPDX-License-Identifier: Apache-2.0
#include "compressed/CodecBuffer.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "RiffBytes.h"

namespace {

static_assert(std::has_virtual_destructor_v<C_Buffer>);
static_assert(!std::is_copy_constructible_v<C_Buffer>);

const C_Bytes kBytes = {0x12, 0x34, 0x56, 0x78, 0x9A};

}  // namespace

TEST(CodecBuffer, NewBuffer_IsAlignedAtItsBeginning) {
  const C_Buffer buffer(kBytes.data(), kBytes.size());
  EXPECT_EQ(buffer.GetPos(), 0u);
  EXPECT_TRUE(buffer.IsByteAligned());
  EXPECT_FALSE(buffer.EOB());
}

TEST(CodecBuffer, EOB_IsAtTheSize) {
  C_Buffer buffer(kBytes.data(), kBytes.size());
  for (int i = 0; i < 5; ++i) {
    EXPECT_FALSE(buffer.EOB()) << i;
    buffer.GetByte();
  }
  EXPECT_TRUE(buffer.EOB());
  EXPECT_TRUE(C_Buffer(kBytes.data(), 0).EOB());
  EXPECT_TRUE(C_Buffer(static_cast<const unsigned char*>(nullptr), 7).EOB());
  EXPECT_TRUE(C_Buffer(static_cast<unsigned char*>(nullptr), 7).EOB());
}

TEST(CodecBuffer, Shorts_AreReadLittleEndianAndTakeTwoBytes) {
  const C_Bytes bytes = {0x34, 0x12, 0xFE, 0xFF, 0x00, 0x80};
  C_Buffer buffer(bytes.data(), bytes.size());
  EXPECT_EQ(buffer.GetShort(), 0x1234);
  EXPECT_EQ(buffer.GetPos(), 2u);
  EXPECT_EQ(buffer.GetShort(), -2);
  EXPECT_EQ(buffer.GetShort(), -32768);
  EXPECT_TRUE(buffer.EOB());
}

TEST(CodecBuffer, Shorts_AreWrittenLittleEndian) {
  C_Bytes bytes(6, 0xEE);
  C_Buffer buffer(bytes.data(), bytes.size());
  buffer.SetShort(0x1234);
  EXPECT_EQ(buffer.GetPos(), 2u);
  buffer.SetShort(-2);
  EXPECT_EQ(bytes, (C_Bytes{0x34, 0x12, 0xFE, 0xFF, 0xEE, 0xEE}));
}

TEST(CodecBuffer, ShortThatTheEndCuts_IsNeitherReadNorWrittenInPart) {
  C_Bytes bytes = {1, 2, 3};
  C_Buffer reader(bytes.data(), bytes.size());
  reader.Skip(2);
  EXPECT_EQ(reader.GetShort(), 0);
  EXPECT_TRUE(reader.EOB());
  C_Buffer writer(bytes.data(), bytes.size());
  writer.Skip(2);
  writer.SetShort(-1);
  EXPECT_TRUE(writer.EOB());
  EXPECT_EQ(bytes, (C_Bytes{1, 2, 3}));
}

TEST(CodecBuffer, Bytes_ComeInOrder) {
  C_Buffer buffer(kBytes.data(), kBytes.size());
  EXPECT_EQ(buffer.GetByte(), 0x12);
  EXPECT_EQ(buffer.GetByte(), 0x34);
  EXPECT_EQ(buffer.GetPos(), 2u);
}

TEST(CodecBuffer, HighFirst_TakesTheUpperHalfFirst) {
  C_Buffer buffer(kBytes.data(), kBytes.size());
  EXPECT_EQ(buffer.GetNibbleHighFirst(), 1);
  EXPECT_FALSE(buffer.IsByteAligned());
  EXPECT_EQ(buffer.GetPos(), 0u);
  EXPECT_EQ(buffer.GetNibbleHighFirst(), 2);
  EXPECT_TRUE(buffer.IsByteAligned());
  EXPECT_EQ(buffer.GetPos(), 1u);
  EXPECT_EQ(buffer.GetNibbleHighFirst(), 3);
  EXPECT_EQ(buffer.GetNibbleHighFirst(), 4);
}

TEST(CodecBuffer, LowFirst_TakesTheLowerHalfFirst) {
  C_Buffer buffer(kBytes.data(), kBytes.size());
  for (const int nExpected : {2, 1, 4, 3, 6, 5, 8, 7, 0xA, 9}) {
    EXPECT_FALSE(buffer.EOB());
    EXPECT_EQ(buffer.GetNibbleLowFirst(), nExpected);
  }
  EXPECT_TRUE(buffer.EOB());
}

TEST(CodecBuffer, End_ComesAfterTheSecondHalf) {
  C_Buffer buffer(kBytes.data(), 1);
  buffer.GetNibbleHighFirst();
  EXPECT_FALSE(buffer.EOB());
  buffer.GetNibbleHighFirst();
  EXPECT_TRUE(buffer.EOB());
}

TEST(CodecBuffer, ByteBetweenTwoHalves_IsMadeOfBoth) {
  C_Buffer buffer(kBytes.data(), kBytes.size());
  EXPECT_EQ(buffer.GetNibbleHighFirst(), 1);
  EXPECT_EQ(buffer.GetByte(), 0x23);
  EXPECT_FALSE(buffer.IsByteAligned());
  EXPECT_EQ(buffer.GetByte(), 0x45);
  EXPECT_EQ(buffer.GetNibbleHighFirst(), 6);
  EXPECT_EQ(buffer.GetByte(), 0x78);
}

TEST(CodecBuffer, ByteOfOneHalfOnly_IsNone) {
  C_Buffer buffer(kBytes.data(), 1);
  buffer.GetNibbleHighFirst();
  EXPECT_EQ(buffer.GetByte(), 0);
  EXPECT_TRUE(buffer.EOB());
}

TEST(CodecBuffer, SettingThePosition_Aligns) {
  C_Buffer buffer(kBytes.data(), kBytes.size());
  buffer.GetNibbleHighFirst();
  buffer.SetPos(3);
  EXPECT_TRUE(buffer.IsByteAligned());
  EXPECT_EQ(buffer.GetPos(), 3u);
  EXPECT_EQ(buffer.GetByte(), 0x78);
  buffer.SetPos(0);
  EXPECT_EQ(buffer.GetNibbleHighFirst(), 1);
}

TEST(CodecBuffer, Skipping_CountsFromTheByteThatIsNext) {
  C_Buffer buffer(kBytes.data(), kBytes.size());
  buffer.Skip(1);
  EXPECT_EQ(buffer.GetPos(), 1u);
  buffer.GetNibbleHighFirst();
  buffer.Skip(2);
  EXPECT_EQ(buffer.GetPos(), 3u);
  EXPECT_TRUE(buffer.IsByteAligned());
  buffer.Skip(0);
  EXPECT_EQ(buffer.GetPos(), 3u);
}

TEST(CodecBuffer, PositionsBeyondTheEnd_AreTheEnd) {
  C_Bytes bytes = {1, 2, 3};
  C_Buffer buffer(bytes.data(), bytes.size());
  buffer.SetPos(static_cast<std::size_t>(-1));
  EXPECT_TRUE(buffer.EOB());
  EXPECT_EQ(buffer.GetPos(), 3u);
  buffer.SetShort(7);
  EXPECT_EQ(buffer.GetByte(), 0);
  EXPECT_EQ(buffer.GetShort(), 0);
  EXPECT_EQ(buffer.GetNibbleHighFirst(), 0);
  EXPECT_EQ(buffer.GetNibbleLowFirst(), 0);
  EXPECT_TRUE(buffer.IsByteAligned());
  buffer.SetPos(1);
  buffer.Skip(static_cast<std::size_t>(-1));
  EXPECT_TRUE(buffer.EOB());
  EXPECT_EQ(bytes, (C_Bytes{1, 2, 3}));
}

TEST(CodecBuffer, WritingToConstantBytes_OnlyMoves) {
  const C_Bytes bytes = {1, 2, 3, 4};
  C_Buffer buffer(bytes.data(), bytes.size());
  buffer.SetShort(-1);
  EXPECT_EQ(buffer.GetPos(), 2u);
  EXPECT_EQ(bytes, (C_Bytes{1, 2, 3, 4}));
}
