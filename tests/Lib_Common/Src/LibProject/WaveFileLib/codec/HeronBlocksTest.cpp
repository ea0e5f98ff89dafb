// SPDX-License-Identifier: Apache-2.0
//
// Damage to a Heron stream costs only the blocks that it lies in: these become silence, and the
// rest of the sound stays where it was.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "HeronBytes.h"
#include "SampleValues.h"

namespace {

using heron::test::Bytes;
using heron::test::Decoded;
using heron::test::kKinds;
using heron::test::S_Kind;
using heron::test::S_Pieces;
using Samples = std::vector<short>;

constexpr int kRate = 4000;
constexpr std::size_t kBlock = heron::BlockLength(kRate);
constexpr std::size_t kBlocks = 5;
constexpr std::size_t kSamples = (kBlocks - 1) * kBlock + 1500;
static_assert(kBlock == 16000);

// A sound of five blocks, which is encoded once for all tests.
struct S_Example {
  S_Kind kind = kKinds[3];
  Bytes coded = heron::test::Coded(TestVoice(kSamples), kRate, kind.nBitDepth);
  S_Pieces pieces = heron::test::PiecesOf(coded, kRate);
  Samples whole = *Decoded(Stream(coded), kRate);

  [[nodiscard]] Bytes Stream(const Bytes& audio) const {
    return C_HeronBytes(kind, {1}, kRate).Coded(audio).Take();
  }
};
const S_Example& Example() {
  static const S_Example example;
  return example;
}

std::optional<Samples> DecodedAudio(const Bytes& coded) {
  return Decoded(Example().Stream(coded), kRate);
}
std::optional<Samples> DecodedPieces(const S_Pieces& pieces) {
  return DecodedAudio(pieces.Joined());
}

// The whole sound with silence in place of one block.
Samples WithoutBlock(std::size_t nBlock) {
  Samples samples = Example().whole;
  const auto itBegin = samples.begin() + static_cast<std::ptrdiff_t>(nBlock * kBlock);
  std::fill(itBegin, itBegin + std::min<std::ptrdiff_t>(kBlock, samples.end() - itBegin), short{0});
  return samples;
}
Samples FirstBlocks(std::size_t nBlocks) {
  const auto nEnd = static_cast<std::ptrdiff_t>(std::min(nBlocks * kBlock, kSamples));
  return {Example().whole.begin(), Example().whole.begin() + nEnd};
}
// What is heard when a block cannot be found. A sound ends with its last block that is there.
Samples WhenLost(std::size_t nBlock) {
  return nBlock + 1 == kBlocks ? FirstBlocks(nBlock) : WithoutBlock(nBlock);
}

// Bytes that look like nothing, with heads among them that claim blocks.
Bytes Junk(std::size_t cbJunk) {
  Bytes junk(cbJunk);
  std::uint32_t dwSeed = 7;
  for (std::uint8_t& by : junk) {
    dwSeed = dwSeed * 1664525U + 1013904223U;
    by = static_cast<std::uint8_t>(dwSeed >> 24);
  }
  for (std::size_t n = 0; n + 5 <= cbJunk; n += 40) {
    std::ranges::copy(Bytes{heron::kBlockSync, 1, 30, 0, 0},
                      junk.begin() + static_cast<std::ptrdiff_t>(n));
  }
  return junk;
}

TEST(HeronBlocks, Example_HasFiveBlocksWithSoundInEach) {
  EXPECT_EQ(Example().pieces.between.size(), kBlocks);
  EXPECT_EQ(Example().pieces.Joined(), Example().coded);
  EXPECT_EQ(Example().whole.size(), kSamples);
  for (std::size_t n = 0; n < kBlocks; ++n) EXPECT_NE(WithoutBlock(n), Example().whole) << n;
}

// ---- damaged blocks

TEST(HeronBlocks, FlippedBitInAHead_CostsItsBlock) {
  for (std::size_t n = 0; n < kBlocks; ++n) {
    for (std::size_t nBit = 0; nBit < 8 * heron::kBlockHeadBytes; ++nBit) {
      S_Pieces pieces = Example().pieces;
      pieces.between[n][nBit / 8] ^= static_cast<std::uint8_t>(1U << nBit % 8);
      ASSERT_EQ(DecodedPieces(pieces), WhenLost(n)) << n << ", bit " << nBit;
    }
  }
}

TEST(HeronBlocks, FlippedBitInARun_CostsItsBlock) {
  for (std::size_t n = 0; n < kBlocks; ++n) {
    const std::size_t cbBlock = Example().pieces.between[n].size();
    for (std::size_t nByte = heron::kBlockHeadBytes; nByte < cbBlock; nByte += 301) {
      S_Pieces pieces = Example().pieces;
      pieces.between[n][nByte] ^= static_cast<std::uint8_t>(1U << nByte % 8);
      ASSERT_EQ(DecodedPieces(pieces), WhenLost(n)) << n << ", byte " << nByte;
    }
    S_Pieces pieces = Example().pieces;
    pieces.between[n].back() ^= 0x80;
    ASSERT_EQ(DecodedPieces(pieces), WhenLost(n)) << n;
  }
}

// A check can be right by chance, or because the bytes were damaged before they were stored. Then
// the block is there, so the sound keeps its length even when it is the last one.
TEST(HeronBlocks, FalseRunWithARightCheck_CostsItsBlock) {
  for (std::size_t n = 0; n < kBlocks; ++n) {
    const Bytes& block = Example().pieces.between[n];
    for (const std::ptrdiff_t nMore : {-40, 9, 100}) {
      Bytes run(block.begin() + heron::kBlockHeadBytes, block.end());
      run.resize(run.size() + static_cast<std::size_t>(nMore), 0x5A);
      S_Pieces pieces = Example().pieces;
      pieces.between[n].clear();
      heron::AppendBlock(pieces.between[n], n, run);
      ASSERT_EQ(DecodedPieces(pieces), WithoutBlock(n)) << n << ", " << nMore;
    }
  }
}

TEST(HeronBlocks, DamageInSeveralBlocks_CostsEachOfThem) {
  S_Pieces pieces = Example().pieces;
  pieces.between[0][100] ^= 1;
  pieces.between[2][3] ^= 0xFF;
  pieces.between[4].back() ^= 1;
  Samples expected = FirstBlocks(4);
  std::fill_n(expected.begin(), kBlock, short{0});
  std::fill_n(expected.begin() + 2 * kBlock, kBlock, short{0});
  EXPECT_EQ(DecodedPieces(pieces), expected);
}

// ---- missing, doubled and swapped blocks, and what lies between them

TEST(HeronBlocks, MissingBlock_BecomesSilence) {
  for (std::size_t n = 0; n < kBlocks; ++n) {
    S_Pieces pieces = Example().pieces;
    pieces.between.erase(pieces.between.begin() + static_cast<std::ptrdiff_t>(n));
    EXPECT_EQ(DecodedPieces(pieces), WhenLost(n)) << n;
  }
}

TEST(HeronBlocks, OnlyTheLastBlock_StandsAtItsPlace) {
  S_Pieces pieces = Example().pieces;
  pieces.between.erase(pieces.between.begin(), pieces.between.end() - 1);
  Samples expected = Example().whole;
  std::fill_n(expected.begin(), (kBlocks - 1) * kBlock, short{0});
  EXPECT_EQ(DecodedPieces(pieces), expected);
}

TEST(HeronBlocks, DoubledBlock_IsHeardOnce) {
  for (std::size_t n = 0; n < kBlocks; ++n) {
    S_Pieces pieces = Example().pieces;
    const Bytes block = pieces.between[n];
    pieces.between.insert(pieces.between.begin() + static_cast<std::ptrdiff_t>(n), block);
    EXPECT_EQ(DecodedPieces(pieces), Example().whole) << n;
  }
}

TEST(HeronBlocks, SwappedBlocks_CostTheOneThatComesTooLate) {
  for (std::size_t n = 0; n + 1 < kBlocks; ++n) {
    S_Pieces pieces = Example().pieces;
    std::swap(pieces.between[n], pieces.between[n + 1]);
    EXPECT_EQ(DecodedPieces(pieces), WithoutBlock(n)) << n;
  }
}

TEST(HeronBlocks, BlockWithANumberAfterTheEnd_IsPassedOver) {
  const Bytes& block = Example().pieces.between[1];
  const std::span run = std::span(block).subspan(heron::kBlockHeadBytes);
  for (const std::size_t nNumber : {kBlocks, std::size_t{100}, std::size_t{255}}) {
    S_Pieces pieces = Example().pieces;
    pieces.between[1].clear();
    heron::AppendBlock(pieces.between[1], nNumber, run);
    EXPECT_EQ(DecodedPieces(pieces), WithoutBlock(1)) << nNumber;
  }
}

TEST(HeronBlocks, JunkBetweenBlocks_IsPassedOver) {
  for (std::size_t n = 0; n <= kBlocks; ++n) {
    for (const std::size_t cbJunk : {1U, 7U, 100U, 3000U}) {
      S_Pieces pieces = Example().pieces;
      pieces.between.insert(pieces.between.begin() + static_cast<std::ptrdiff_t>(n), Junk(cbJunk));
      EXPECT_EQ(DecodedPieces(pieces), Example().whole) << n << ", " << cbJunk;
    }
  }
}

// The search for blocks gives up where it would take too long.
TEST(HeronBlocks, HeadsThatClaimLongBlocks_EndTheSearchAtLast) {
  S_Pieces pieces = Example().pieces;
  Bytes heads;
  for (int n = 0; n < 1000; ++n) heads.insert(heads.end(), {heron::kBlockSync, 1, 0, 0x10, 0});
  pieces.between.insert(pieces.between.begin() + 1, heads);
  EXPECT_EQ(DecodedPieces(pieces), FirstBlocks(1));
}

TEST(HeronBlocks, BytesAfterTheLastBlock_HaveNoMeaning) {
  S_Pieces pieces = Example().pieces;
  for (const std::size_t n : {0U, 4U}) pieces.between.push_back(Example().pieces.between[n]);
  EXPECT_EQ(DecodedPieces(pieces), Example().whole);
}

// ---- cut ends

TEST(HeronBlocks, CutStream_EndsWithItsLastWholeBlock) {
  std::size_t cbEnd = Example().coded.size();
  for (std::size_t nBlocks = kBlocks; nBlocks > 0; --nBlocks) {
    const std::size_t cbBlock = Example().pieces.between[nBlocks - 1].size();
    const std::optional<Samples> expected =
        nBlocks == 1 ? std::nullopt : std::optional(FirstBlocks(nBlocks - 1));
    for (std::size_t cbCut = 1; cbCut <= cbBlock; cbCut += cbCut < 12 ? 1 : 389) {
      ASSERT_EQ(
          DecodedAudio({Example().coded.begin(),
                        Example().coded.begin() + static_cast<std::ptrdiff_t>(cbEnd - cbCut)}),
          expected)
          << nBlocks << ", " << cbCut;
    }
    cbEnd -= cbBlock;
  }
}

TEST(HeronBlocks, StreamThatBeginsTooLate_KeepsItsLaterBlocks) {
  S_Pieces pieces = Example().pieces;
  pieces.between[0].erase(pieces.between[0].begin(), pieces.between[0].begin() + 50);
  EXPECT_EQ(DecodedPieces(pieces), WithoutBlock(0));
}

// ---- counts

TEST(HeronBlocks, CountAboveTheBlocks_EndsWithThem) {
  for (const std::uint64_t qwCount : {std::uint64_t{kBlocks * kBlock + 1}, std::uint64_t{1} << 31,
                                      (std::uint64_t{1} << 32) - 1}) {
    S_Pieces pieces = Example().pieces;
    pieces.qwCount = qwCount;
    const auto samples = DecodedPieces(pieces);
    ASSERT_TRUE(samples);
    // The last block has fewer samples than the count says, so it does not decode.
    Samples expected = FirstBlocks(kBlocks - 1);
    expected.resize(kBlocks * kBlock);
    EXPECT_EQ(*samples, expected);
  }
}

TEST(HeronBlocks, CountBelowTheBlocks_IsKept) {
  S_Pieces pieces = Example().pieces;
  pieces.qwCount = 3 * kBlock;
  EXPECT_EQ(DecodedPieces(pieces), FirstBlocks(3));
}

TEST(HeronBlocks, ImpossibleCounts_AreRefused) {
  for (const std::uint64_t qwCount : {std::uint64_t{0}, std::uint64_t{1} << 32,
                                      (std::uint64_t{1} << 35) - 1, std::uint64_t{1} << 35}) {
    S_Pieces pieces = Example().pieces;
    pieces.qwCount = qwCount;
    EXPECT_FALSE(DecodedPieces(pieces)) << qwCount;
  }
}

// ---- nothing right

TEST(HeronBlocks, StreamWithoutARightBlock_IsRefusedAndChangesNothing) {
  S_Pieces damaged = Example().pieces;
  for (Bytes& block : damaged.between) block[20] ^= 1;
  S_Pieces falseRuns = Example().pieces;
  for (std::size_t n = 0; n < kBlocks; ++n) {
    falseRuns.between[n].clear();
    heron::AppendBlock(falseRuns.between[n], n, Junk(5));
  }
  for (const S_Pieces& pieces : {damaged, falseRuns}) {
    C_WavData sound;
    SetSound(sound, {1, 2, 3}, {.dwRate = kRate});
    const Bytes stream = Example().Stream(pieces.Joined());
    C_HeronCodec codec;
    EXPECT_FALSE(codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), &sound));
    EXPECT_EQ(ValuesOf(sound), (C_Values{1, 2, 3}));
    EXPECT_EQ(sound.GetWavInfo()->GetByteLength(), 6U);
  }
}

// ---- sounds of one block

TEST(HeronBlocks, DamagedSoundOfOneBlock_IsRefused) {
  for (const S_Kind& kind : kKinds) {
    const C_HeronBytes stream(kind, TestVoice(300), kRate);
    constexpr std::size_t kRunAt = heron::kHeadBytes + 2;  // after the two bytes of the count
    const Bytes whole = stream.Take();
    ASSERT_TRUE(Decoded(whole, kRate));
    for (std::size_t nBit = 8 * kRunAt; nBit < 8 * whole.size(); ++nBit) {
      Bytes damaged = whole;
      damaged[nBit / 8] ^= static_cast<std::uint8_t>(1U << nBit % 8);
      ASSERT_FALSE(Decoded(damaged, kRate)) << nBit;
    }
    for (std::size_t cbSize = 0; cbSize < whole.size(); ++cbSize) {
      ASSERT_FALSE(Decoded(stream.Take(cbSize), kRate)) << cbSize;
    }
  }
}

TEST(HeronBlocks, SoundOfExactlyOneBlock_HasNoHeadOfABlock) {
  const auto voice = TestVoice(kBlock);
  const Bytes coded = heron::test::Coded(voice, kRate, 2);
  EXPECT_EQ(DecodedAudio(coded)->size(), kBlock);
  const std::span run = std::span(coded).subspan(2 + heron::kCheckBytes);
  S_Pieces pieces;
  pieces.qwCount = kBlock;
  heron::AppendOnlyBlock(pieces.between.emplace_back(), run);
  EXPECT_EQ(pieces.Joined(), coded);
}

// ---- large numbers of blocks

// Numbers of blocks are kept modulo 256. A silent run stands for most of the blocks here.
TEST(HeronBlocks, MoreThan256Blocks_AreAllFoundAtTheirPlaces) {
  const Bytes silence =
      heron::test::PiecesOf(heron::test::Coded(Samples(2 * kBlock), kRate, 2), kRate).between[0];
  const std::span silent = std::span(silence).subspan(heron::kBlockHeadBytes);
  const std::span loud = std::span(Example().pieces.between[0]).subspan(heron::kBlockHeadBytes);
  constexpr std::size_t kMany = 600;
  S_Pieces pieces;
  pieces.qwCount = kMany * kBlock;
  // Up to 127 blocks may be missing before each that is there.
  for (const std::size_t n : {0U, 1U, 129U, 250U, 256U, 300U, 420U}) pieces.Add(n, silent);
  pieces.Add(540, loud);
  for (std::size_t n = 541; n < kMany; ++n) pieces.Add(n, silent);
  const auto samples = DecodedPieces(pieces);
  ASSERT_TRUE(samples);
  Samples expected(kMany * kBlock);
  std::ranges::copy(FirstBlocks(1), expected.begin() + 540 * kBlock);
  EXPECT_TRUE(*samples == expected);
}

}  // namespace
