// SPDX-License-Identifier: Apache-2.0
#include "kestrel/BitStream.h"

#include <gtest/gtest.h>

#include <array>

namespace kestrel {
namespace {

TEST(BitWriter, FirstBit_IsTheMostSignificantOfTheFirstWord) {
  std::array<std::uint16_t, 2> words{};
  C_BitWriter writer(words);
  writer.Put(1, 1);
  writer.Put(0, 15);
  writer.Put(1, 1);
  EXPECT_EQ(words[0], 0x8000);
  EXPECT_EQ(words[1], 0x8000);
}

TEST(BitWriter, Fields_FollowWithoutGapsAcrossWords) {
  std::array<std::uint16_t, 3> words{};
  C_BitWriter writer(words);
  writer.Put(0x15, 5);
  writer.Put(0x1FFFFF, 21);
  writer.Put(0, 4);
  writer.Put(0xABC, 12);
  EXPECT_EQ(words[0], 0xAFFF);
  EXPECT_EQ(words[1], 0xFFC2);
  EXPECT_EQ(words[2], 0xAF00);
  EXPECT_EQ(writer.BitsPut(), 42);
}

TEST(BitWriter, Write_TakesOnlyTheLowBitsOfAValue) {
  std::array<std::uint16_t, 1> words{};
  C_BitWriter(words).Put(0xFFFFFFF0u, 4);
  EXPECT_EQ(words[0], 0);
}

TEST(BitWriter, Writer_ClearsWhatTheWordsHeld) {
  std::array<std::uint16_t, 2> words = {0xFFFF, 0xFFFF};
  C_BitWriter(words).Put(0, 1);
  EXPECT_EQ(words[0], 0);
  EXPECT_EQ(words[1], 0);
}

TEST(BitWriter, BitsPastTheEnd_AreDroppedAndCounted) {
  std::array<std::uint16_t, 2> memory = {0, 0x1234};
  C_BitWriter writer{std::span<std::uint16_t>(memory).first(1)};
  writer.Put(0, 12);
  writer.Put(0xFFFFFFFFu, 32);
  writer.PadWithOnes();
  EXPECT_EQ(memory[0], 0x000F);
  EXPECT_EQ(memory[1], 0x1234);
  EXPECT_EQ(writer.BitsPut(), 44);
}

TEST(BitWriter, Padding_IsOnes) {
  std::array<std::uint16_t, 2> words{};
  C_BitWriter writer(words);
  writer.Put(0, 3);
  writer.PadWithOnes();
  EXPECT_EQ(words[0], 0x1FFF);
  EXPECT_EQ(words[1], 0xFFFF);
}

TEST(BitReader, Reader_ReadsBackWhatWasWritten) {
  std::array<std::uint16_t, 3> words{};
  C_BitWriter writer(words);
  for (int nBits = 1; nBits <= 8; ++nBits) writer.Put(0x5Au >> (nBits % 3), nBits);
  C_BitReader reader(words);
  for (int nBits = 1; nBits <= 8; ++nBits) {
    EXPECT_EQ(reader.Bits(nBits), 0x5A >> (nBits % 3) & ((1 << nBits) - 1));
  }
  EXPECT_EQ(reader.BitsLeft(), 48 - 36);
}

TEST(BitReader, BitsPastTheEnd_AreZeroAndCounted) {
  const std::array<std::uint16_t, 2> memory = {0xFFFF, 0xFFFF};
  C_BitReader reader{std::span<const std::uint16_t>(memory).first(1)};
  EXPECT_EQ(reader.Bits(12), 0xFFF);
  EXPECT_EQ(reader.Bits(8), 0xF0);
  EXPECT_EQ(reader.BitsLeft(), -4);
  EXPECT_EQ(reader.Bit(), 0);
  EXPECT_EQ(reader.BitsLeft(), -5);
}

TEST(BitReader, NoBits_AreZeroAndTakeNothing) {
  const std::array<std::uint16_t, 1> words = {0xFFFF};
  C_BitReader reader(words);
  EXPECT_EQ(reader.Bits(0), 0);
  EXPECT_EQ(reader.BitsLeft(), 16);
}

}  // namespace
}  // namespace kestrel
