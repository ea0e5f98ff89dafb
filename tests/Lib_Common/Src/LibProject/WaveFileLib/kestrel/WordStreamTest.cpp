// SPDX-License-Identifier: Apache-2.0
#include "kestrel/WordStream.h"

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

#include "kestrel/BitStream.h"

namespace kestrel {
namespace {

TEST(WordWriter, AnyFields_GiveTheWordsOfTheBitWriter) {
  std::mt19937 random(1);
  for (int nRound = 0; nRound < 2000; ++nRound) {
    std::vector<std::uint16_t> want(1 + random() % kMaxWordsPerFrame);
    std::vector<std::uint16_t> words(want.size(), 0x5555);
    C_BitWriter plain(want);
    C_WordWriter writer;
    const int nFields = static_cast<int>(random() % 80);
    for (int n = 0; n < nFields; ++n) {
      const int nBits = 1 + static_cast<int>(random() % (nRound % 2 == 0 ? 32 : 21));
      const auto dwValue = static_cast<std::uint32_t>(random() & 0xFFFFFFFFu) >> (32 - nBits);
      plain.Put(dwValue, nBits);
      writer.Put(dwValue, nBits);
      ASSERT_EQ(writer.BitsPut(), plain.BitsPut());
    }
    plain.PadWithOnes();
    writer.Finish(words);
    ASSERT_EQ(words, want) << nRound;
  }
}

TEST(WordWriter, AFrameOfTheMostBits_StaysInside) {
  C_WordWriter writer;
  for (int n = 0; n < C_WordWriter::kMostBits; ++n) writer.Put(1, 1);
  std::array<std::uint16_t, kMaxWordsPerFrame> words{};
  writer.Finish(words);
  for (const std::uint16_t wWord : words) EXPECT_EQ(wWord, 0xFFFF);
}

TEST(WordReader, NextBits_AreThoseOfTheBitReader) {
  std::mt19937 random(2);
  for (std::size_t nWords = 1; nWords <= kMaxWordsPerFrame; ++nWords) {
    std::vector<std::uint16_t> words(nWords);
    for (auto& wWord : words) wWord = static_cast<std::uint16_t>(random());
    C_BitReader plain(words);
    C_WordReader reader(words);
    while (reader.BitsLeft() > -100) {
      const int nBits = 1 + static_cast<int>(random() % 31);
      ASSERT_EQ(static_cast<int>(reader.Next() >> (64 - nBits)), plain.Bits(nBits));
      reader.Skip(nBits);
      ASSERT_EQ(reader.BitsLeft(), plain.BitsLeft());
      ASSERT_EQ(reader.BitsTaken(), static_cast<int>(nWords) * kBitsPerWord - plain.BitsLeft());
    }
  }
}

TEST(BitReader, StartInTheMiddle_ReadsOnFromThere) {
  const std::array<std::uint16_t, 2> words = {0x00FF, 0xA000};
  C_BitReader reader(words, 15);
  EXPECT_EQ(reader.BitsLeft(), 17);
  EXPECT_EQ(reader.Bits(4), 0b1101);
}

}  // namespace
}  // namespace kestrel
