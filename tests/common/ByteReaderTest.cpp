// SPDX-License-Identifier: Apache-2.0
#include "ByteReader.h"

#include <gtest/gtest.h>

#include <array>

#include "CheckedSize.h"

using vcm::C_ByteReader;
using vcm::C_ByteWriter;
using vcm::CheckedBytes;

namespace {
using Bytes = std::vector<std::uint8_t>;
}

TEST(ByteReader, Fields_AreLittleEndianInOrder) {
  const Bytes bytes = {0x80, 0x34, 0x12, 0x78, 0x56, 0x34, 0xF2, 0xFE, 0xFF, 'a', 'b'};
  C_ByteReader reader(bytes);
  EXPECT_EQ(reader.U8(), 0x80);
  EXPECT_EQ(reader.U16(), 0x1234);
  EXPECT_EQ(reader.U32(), 0xF2345678u);
  EXPECT_EQ(reader.I16(), -2);
  EXPECT_EQ(reader.Remaining(), 2u);
  const auto text = reader.Bytes(2);
  EXPECT_EQ(text.data(), bytes.data() + 9);
  EXPECT_TRUE(reader.Ok());
  EXPECT_EQ(reader.Remaining(), 0u);
}

TEST(ByteReader, ReadPastTheEnd_GivesZeroAndFailsForGood) {
  const Bytes bytes = {1, 2, 3};
  C_ByteReader reader(bytes);
  EXPECT_EQ(reader.U32(), 0u);
  EXPECT_FALSE(reader.Ok());
  EXPECT_EQ(reader.U8(), 0);
  EXPECT_TRUE(reader.Bytes(1).empty());
  EXPECT_FALSE(reader.Ok());
}

TEST(ByteReader, BytesAndSkip_StayInside) {
  const Bytes bytes = {1, 2, 3};
  C_ByteReader past(bytes);
  past.Skip(4);
  EXPECT_FALSE(past.Ok());
  C_ByteReader huge(bytes);
  EXPECT_TRUE(huge.Bytes(SIZE_MAX).empty());
  EXPECT_FALSE(huge.Ok());
  C_ByteReader exact(bytes);
  exact.Skip(3);
  EXPECT_TRUE(exact.Ok());
  EXPECT_TRUE(exact.Bytes(0).empty());
  EXPECT_TRUE(exact.Ok());
}

TEST(ByteReader, EmptyView_HoldsNothing) {
  C_ByteReader reader({});
  EXPECT_TRUE(reader.Ok());
  EXPECT_EQ(reader.U16(), 0);
  EXPECT_FALSE(reader.Ok());
}

TEST(ByteWriter, Fields_AreAppendedLittleEndian) {
  C_ByteWriter writer;
  writer.U8(0xAB);
  writer.U16(0x1234);
  writer.U32(0xF2345678u);
  writer.Text("abcdef", 4);
  writer.Text("x", 3);
  writer.Zeros(2);
  writer.Bytes(std::array<std::uint8_t, 2>{7, 8});
  const Bytes expected = {0xAB, 0x34, 0x12, 0x78, 0x56, 0x34, 0xF2, 'a', 'b',
                          'c',  'd',  'x',  0,    0,    0,    0,    7,   8};
  EXPECT_EQ(writer.Data(), expected);
  EXPECT_EQ(writer.Take(), expected);
}

TEST(CheckedSize, Products_ThatFit32Bits_AreGiven) {
  EXPECT_EQ(CheckedBytes(2, 24, 4), 52u);
  EXPECT_EQ(CheckedBytes(0, 24, 0), 0u);
  EXPECT_EQ(CheckedBytes(0xFFFFFFFFu, 1), 0xFFFFFFFFu);
  EXPECT_EQ(CheckedBytes(7, 0, 3), 3u);
}

TEST(CheckedSize, Products_ThatDoNotFit_AreRefused) {
  EXPECT_FALSE(CheckedBytes(0xFFFFFFFFu, 1, 1));
  EXPECT_FALSE(CheckedBytes(0x0AAAAAABu, 24, 4));
  EXPECT_FALSE(CheckedBytes(UINT64_MAX, 2));
  EXPECT_FALSE(CheckedBytes(UINT64_MAX / 24, 24, UINT64_MAX));
  EXPECT_FALSE(CheckedBytes(0, 0, std::uint64_t{1} << 32));
}
