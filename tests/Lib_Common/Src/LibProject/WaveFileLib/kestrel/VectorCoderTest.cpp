// SPDX-License-Identifier: Apache-2.0
#include "kestrel/VectorCoder.h"

#include <gtest/gtest.h>

#include <random>

#include "VectorFiles.h"
#include "kestrel/TablesEnvelope.h"
#include "kestrel/TablesVectorCodes.h"

namespace kestrel {
namespace {

using test::ToInts;
using S_Coefficients = std::array<std::int16_t, kRegionSize>;
using S_Words = std::array<std::uint16_t, kMaxWordsPerFrame>;

void PutVector(C_BitWriter& writer, std::size_t nCategory, std::size_t nIndex) {
  const S_Code code = kVectorCodes[nCategory][nIndex];
  writer.Put(code.wWord, code.byBits);
}

TEST(RescaleRegion, UpToEntry40_ChangesNothing) {
  S_Coefficients region;
  region.fill(-4097);
  EXPECT_EQ(RescaleRegion(region, 7), 7);
  EXPECT_EQ(RescaleRegion(region, 40), 40);
  EXPECT_EQ(ToInts(region, 20), std::vector(20, -4097));
}

TEST(RescaleRegion, AboveEntry40_ShiftsToEntry39Or40RoundingDown) {
  for (int nEntry = 41; nEntry <= 66; ++nEntry) {
    S_Coefficients region;
    region.fill(-32767);
    const int nShift = (nEntry - 39) / 2;
    EXPECT_EQ(RescaleRegion(region, nEntry), nEntry - 2 * nShift) << nEntry;
    EXPECT_EQ(region[19], -((32767 + (1 << nShift) - 1) >> nShift)) << nEntry;
  }
}

TEST(CodeRegion, NoiseCategory_CostsNothing) {
  S_Coefficients region;
  region.fill(1000);
  const S_CodedRegion coded = CodeRegion(region, 7, 30);
  EXPECT_EQ(coded.nVectors, 0);
  EXPECT_EQ(coded.nBits, 0);
}

TEST(CodeRegion, Zeros_CostOneShortWordPerVector) {
  const S_Coefficients region{};
  for (int nCategory = 0; nCategory < 7; ++nCategory) {
    const auto k = static_cast<std::size_t>(nCategory);
    const S_CodedRegion coded = CodeRegion(region, nCategory, 30);
    EXPECT_EQ(coded.nVectors, kVectorsPerRegion[k]);
    EXPECT_EQ(coded.nBits, kVectorsPerRegion[k] * kVectorCodes[k][0].byBits) << nCategory;
  }
}

TEST(CodeRegion, LargestMagnitudes_StopAtTheLargestBin) {
  S_Coefficients region;
  region.fill(-32768);
  for (int nCategory = 0; nCategory < 7; ++nCategory) {
    const auto k = static_cast<std::size_t>(nCategory);
    const S_CodedRegion coded = CodeRegion(region, nCategory, 7);
    EXPECT_EQ(coded.nBits, kVectorsPerRegion[k] * kVectorCodes[k].back().byBits + kRegionSize);
  }
}

// Every coded category at several powers: the reader reads what the writer wrote.
TEST(CodeRegion, ReadRegion_GivesTheSignsAndAboutTheValuesBack) {
  std::mt19937 random(7);
  for (int nCategory = 0; nCategory < 7; ++nCategory) {
    for (int nEntry = 34; nEntry <= 40; ++nEntry) {
      const int nDeviation = kStandardDeviation[static_cast<std::size_t>(nEntry)];
      S_Coefficients region;
      for (auto& nValue : region) {
        nValue =
            static_cast<std::int16_t>(static_cast<int>(random() % 401 - 200) * nDeviation / 100);
      }
      S_Words words{};
      C_BitWriter writer(words);
      const S_CodedRegion coded = CodeRegion(region, nCategory, nEntry);
      WriteRegion(writer, coded);
      ASSERT_EQ(writer.BitsPut(), coded.nBits);

      S_Coefficients decoded{};
      C_BitReader reader(words);
      ASSERT_TRUE(ReadRegion(reader, nCategory, static_cast<std::int16_t>(nDeviation), decoded));
      EXPECT_EQ(reader.BitsLeft(), 640 - coded.nBits);
      for (std::size_t i = 0; i < region.size(); ++i) {
        EXPECT_GE(region[i] * decoded[i], 0) << nCategory << ' ' << i;
        if (nCategory < 3) {
          EXPECT_NEAR(region[i], decoded[i], 0.6 * nDeviation) << nCategory << ' ' << i;
        }
      }
    }
  }
}

TEST(ReadRegion, ABinThatComesOutAsZero_LeavesItsSignToTheNext) {
  // Deviation 1: bin 1 is 1606 / 4096, which is 0; bin 3 is 4586 / 4096, which is 1.
  S_Words words{};
  C_BitWriter writer(words);
  PutVector(writer, 0, 1 * 14 + 3);
  writer.Put(0b10, 2);
  for (int n = 1; n < 10; ++n) PutVector(writer, 0, 0);
  S_Coefficients region{};
  C_BitReader reader(words);
  ASSERT_TRUE(ReadRegion(reader, 0, 1, region));
  EXPECT_EQ(region[0], 0);
  EXPECT_EQ(region[1], 1);
  EXPECT_EQ(reader.BitsLeft(), 640 - writer.BitsPut());
}

TEST(ReadRegion, DequantisedValues_WrapTo16Bits) {
  // 16384 * 8192 >> 12 is 32768, which wraps to -32768 and, made negative, is limited to 32767.
  S_Words words{};
  C_BitWriter writer(words);
  PutVector(writer, 3, 2 * 125);
  writer.Put(1, 1);
  PutVector(writer, 3, 2 * 125);
  writer.Put(0, 1);
  for (int n = 2; n < 5; ++n) PutVector(writer, 3, 0);
  S_Coefficients region{};
  C_BitReader reader(words);
  ASSERT_TRUE(ReadRegion(reader, 3, 16384, region));
  EXPECT_EQ(region[0], -32768);
  EXPECT_EQ(region[4], 32767);
}

TEST(ReadRegion, BitsThatEndInsideACodeWord_AreAllTaken) {
  const std::array<std::uint16_t, 1> words = {0};
  S_Coefficients region{};
  C_BitReader reader(words);
  EXPECT_FALSE(ReadRegion(reader, 0, 100, region));
  EXPECT_EQ(reader.BitsLeft(), 0);
}

TEST(ReadRegion, SignsThatDoNotFit_StayUnread) {
  // A vector of category 6 with five bins comes at the very end of a frame, where only three bits
  // are left for its five signs.
  const S_Code code = kVectorCodes[6][31];
  std::array<std::uint16_t, 1> words{};
  const int nLead = 16 - code.byBits - 3;
  ASSERT_GE(nLead, 0);
  C_BitWriter writer(words);
  writer.Put(0, nLead);
  writer.Put(code.wWord, code.byBits);
  writer.Put(0b111, 3);
  C_BitReader reader(words);
  reader.Bits(nLead);
  S_Coefficients region{};
  EXPECT_FALSE(ReadRegion(reader, 6, 100, region));
  EXPECT_EQ(reader.BitsLeft(), 3);
  EXPECT_EQ(region, S_Coefficients{});
}

}  // namespace
}  // namespace kestrel
