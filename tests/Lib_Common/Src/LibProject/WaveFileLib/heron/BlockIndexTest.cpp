// SPDX-License-Identifier: Apache-2.0
//
// DecoderTest.cpp has the rules of the search.
#include "heron/BlockIndex.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace heron {
namespace {

using S_Bytes = std::vector<std::uint8_t>;
constexpr std::size_t kLength = 100;

// Blocks with these numbers; the run of block n has 10 + n bytes.
S_Bytes Blocks(const std::vector<std::size_t>& numbers) {
  S_Bytes coded;
  for (const std::size_t n : numbers) AppendBlock(coded, n, S_Bytes(10 + n, 0x5A));
  return coded;
}

C_BlockIndex Walked(const S_Bytes& coded, std::size_t nSamples) {
  C_CodedMemory memory(coded);
  C_BlockIndex index(nSamples, kLength);
  index.Walk(memory);
  return index;
}

TEST(HeronBlockIndex, Walk_ListsHeadsInOrderWhateverTheirChecks) {
  S_Bytes coded = Blocks({0, 1, 2, 3});
  coded[40] ^= 1;
  const C_BlockIndex index = Walked(coded, 3 * kLength + 7);
  EXPECT_TRUE(index.IsComplete());
  EXPECT_EQ(index.Count(), 4U);
  EXPECT_EQ(index.SampleCount(), 307U);
  EXPECT_EQ(index.SamplesOf(2), 100U);
  EXPECT_EQ(index.SamplesOf(3), 7U);
  EXPECT_EQ(index.Run(1)->qwAt, 17U + 7);
  EXPECT_EQ(index.Run(1)->qwBytes, 11U);
  C_CodedMemory memory(coded);
  EXPECT_TRUE(index.IsRight(memory, 0));
  EXPECT_TRUE(index.IsRight(memory, 1));
  EXPECT_FALSE(index.IsRight(memory, 2) && index.IsRight(memory, 3));
}

TEST(HeronBlockIndex, Walk_EndsWhereAHeadIsNotTheNext) {
  EXPECT_EQ(Walked(Blocks({0, 1, 3}), 4 * kLength).Count(), 2U);
  EXPECT_EQ(Walked(Blocks({1, 2}), 2 * kLength).Count(), 0U);
  EXPECT_EQ(Walked({}, 2 * kLength).Count(), 0U);
  S_Bytes coded = Blocks({0, 1, 2});
  coded.pop_back();
  const C_BlockIndex cut = Walked(coded, 3 * kLength);
  EXPECT_FALSE(cut.IsComplete());
  EXPECT_EQ(cut.SampleCount(), 200U);
  coded = Blocks({0, 1, 2});
  coded[17] = 0;
  EXPECT_EQ(Walked(coded, 3 * kLength).Count(), 1U);
}

TEST(HeronBlockIndex, ASearchFromABlock_KeepsTheBlocksBefore) {
  S_Bytes coded = Blocks({0, 1, 2, 3});
  coded[17 + 18 + 5] ^= 1;  // the check of block 2
  C_BlockIndex index = Walked(coded, 4 * kLength);
  C_CodedMemory memory(coded);
  index.Search(memory, 2);
  EXPECT_EQ(index.Count(), 4U);
  EXPECT_EQ(index.Run(1)->qwAt, 24U);
  EXPECT_FALSE(index.Run(2));
  EXPECT_EQ(index.Run(3)->qwBytes, 13U);
}

// Bytes of a damaged block often look like heads. Those that claim more than a block can have cost
// the search nothing; it would give up long before the end otherwise.
TEST(HeronBlockIndex, DamagedBlockOfManySyncs_LosesOnlyItself) {
  constexpr std::size_t kSecondsLong = 64000;
  constexpr std::size_t kBlocks = 330;
  S_Bytes run(25000);
  std::uint32_t dwRandom = 1;
  for (auto& by : run) {
    dwRandom = dwRandom * 1664525U + 1013904223U;
    by = static_cast<std::uint8_t>(dwRandom >> 24);
  }
  S_Bytes coded;
  for (std::size_t n = 0; n < kBlocks; ++n) AppendBlock(coded, n, run);
  coded[run.size() + kBlockHeadBytes + 100] ^= 1;
  C_CodedMemory memory(coded);
  C_BlockIndex index(kBlocks * kSecondsLong, kSecondsLong);
  index.Search(memory);
  EXPECT_TRUE(index.IsComplete());
  EXPECT_TRUE(index.Run(0));
  EXPECT_FALSE(index.Run(1));
  EXPECT_TRUE(index.Run(2));
  EXPECT_TRUE(index.Run(kBlocks - 1));
}

}  // namespace
}  // namespace heron
