// SPDX-License-Identifier: Apache-2.0
//
// Blocks are found wherever they are in the bytes, and each goes where its number says.
#include "heron/Decoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <limits>

#include "Blocks.h"
#include "Signals.h"
#include "heron/Block.h"
#include "heron/Configuration.h"
#include "heron/SampleCount.h"
#include "heron/SoundCoder.h"

namespace heron {
namespace {

using test::C_Random;
using test::S_Bytes;
using test::S_Sound;

constexpr int kRate = 4000;
constexpr std::size_t kLength = BlockLength(kRate);

// A run that tells its number; no decoder reads it.
S_Bytes Marked(std::size_t nNumber) {
  return {static_cast<std::uint8_t>(nNumber), static_cast<std::uint8_t>(nNumber >> 8), 0xB6, 1, 2};
}

// Coded audio, piece by piece.
class C_Coded {
 public:
  explicit C_Coded(std::size_t nCount) { AppendCount(m_bytes, nCount); }
  C_Coded& Block(std::size_t nNumber) { return Block(nNumber, Marked(nNumber)); }
  C_Coded& Block(std::size_t nNumber, const S_Bytes& run) {
    AppendBlock(m_bytes, nNumber, run);
    return *this;
  }
  C_Coded& OnlyBlock(const S_Bytes& run) {
    AppendOnlyBlock(m_bytes, run);
    return *this;
  }
  C_Coded& Raw(const S_Bytes& bytes) {
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
  }
  [[nodiscard]] const S_Bytes& Bytes() const { return m_bytes; }

 private:
  S_Bytes m_bytes;
};

// Expects exactly these blocks of Marked runs; what is between them is missing.
void ExpectBlocks(const S_Bytes& coded, const std::vector<std::size_t>& numbers) {
  const auto decoder = C_Decoder::Open(coded, kRate);
  ASSERT_EQ(decoder.has_value(), !numbers.empty());
  if (numbers.empty()) return;
  EXPECT_EQ(decoder->BlockCount(), numbers.back() + 1);
  std::vector<std::size_t> found;
  for (std::size_t n = 0; n < decoder->BlockCount(); ++n) {
    const auto run = decoder->Run(n);
    if (!run) continue;
    found.push_back(n);
    EXPECT_TRUE(std::ranges::equal(*run, Marked(n))) << n;
  }
  EXPECT_EQ(found, numbers);
}

S_Bytes RandomBytes(C_Random& random, std::size_t nBytes) {
  S_Bytes bytes(nBytes);
  for (std::uint8_t& by : bytes) by = random.Below(4) == 0 ? kBlockSync : random.Byte();
  return bytes;
}

// ---- the count of samples

TEST(HeronDecoder, UpToTheLengthOfABlock_AreOneBlockWithoutAHead) {
  for (const std::size_t nCount : {std::size_t{1}, std::size_t{2}, SectionLength(kRate),
                                   SectionLength(kRate) + 1, kLength - 1, kLength}) {
    const C_Coded coded = C_Coded(nCount).OnlyBlock(Marked(0));
    const auto decoder = C_Decoder::Open(coded.Bytes(), kRate);
    ASSERT_TRUE(decoder) << nCount;
    EXPECT_EQ(decoder->SampleCount(), nCount);
    EXPECT_EQ(decoder->BlockCount(), 1u);
    EXPECT_EQ(decoder->Length(), kLength);
    EXPECT_TRUE(std::ranges::equal(decoder->Run(0).value(), Marked(0)));
    EXPECT_FALSE(C_Decoder::Open(C_Coded(nCount).Block(0).Bytes(), kRate)) << nCount;
  }
}

TEST(HeronDecoder, MoreThanABlock_AreBlocksWithHeads) {
  for (const std::size_t nBlocks : {2u, 3u, 7u}) {
    for (const std::size_t nCount :
         {(nBlocks - 1) * kLength + 1, nBlocks * kLength - 1, nBlocks * kLength}) {
      C_Coded coded(nCount);
      for (std::size_t n = 0; n < nBlocks; ++n) coded.Block(n);
      // No block can have a higher number.
      coded.Block(nBlocks).Block(nBlocks + 1);
      const auto decoder = C_Decoder::Open(coded.Bytes(), kRate);
      ASSERT_TRUE(decoder) << nCount;
      EXPECT_EQ(decoder->BlockCount(), nBlocks) << nCount;
      EXPECT_EQ(decoder->SampleCount(), nCount);
      EXPECT_FALSE(C_Decoder::Open(C_Coded(nCount).OnlyBlock(Marked(0)).Bytes(), kRate)) << nCount;
    }
  }
}

TEST(HeronDecoder, LengthsOfBlocks_FollowTheRate) {
  for (const int nRate : {4000, 8000, 11025, 16000, 48000}) {
    const std::size_t nLength = BlockLength(nRate);
    C_Coded coded(2 * nLength + 5);
    const auto decoder = C_Decoder::Open(coded.Block(0).Block(1).Block(2).Bytes(), nRate);
    ASSERT_TRUE(decoder) << nRate;
    EXPECT_EQ(decoder->Length(), nLength);
    EXPECT_EQ(decoder->BlockCount(), 3u);
    EXPECT_EQ(decoder->SampleCount(), 2 * nLength + 5);
  }
}

TEST(HeronDecoder, CountsThatCannotBe_AreRefused) {
  EXPECT_FALSE(C_Decoder::Open({}, kRate));
  EXPECT_FALSE(C_Decoder::Open(C_Coded(0).OnlyBlock(Marked(0)).Bytes(), kRate));
  EXPECT_FALSE(C_Decoder::Open(S_Bytes{0x80, 0x80}, kRate));
  // The largest count, and the one after it.
  constexpr std::size_t kMost = std::numeric_limits<std::uint32_t>::max();
  const auto decoder = C_Decoder::Open(C_Coded(kMost).Block(0).Bytes(), kRate);
  ASSERT_TRUE(decoder);
  EXPECT_EQ(decoder->SampleCount(), kLength);
  EXPECT_FALSE(C_Decoder::Open(C_Coded(kMost + 1).Block(0).Bytes(), kRate));
  EXPECT_FALSE(C_Decoder::Open(C_Coded((kMost + 1) * 8 - 1).Block(0).Bytes(), kRate));
}

// Sizes have 32 bits on some machines.
TEST(HeronDecoder, AllBlocksOfTheLargestCount_AreCounted) {
  constexpr std::size_t kMost = std::numeric_limits<std::uint32_t>::max();
  constexpr std::size_t kBlocks = (kMost - 1) / kLength + 1;
  C_Coded coded(kMost);
  for (std::size_t n = 127; n < kBlocks; n += 128) coded.Block(n);
  EXPECT_EQ(C_Decoder::Open(coded.Bytes(), kRate).value().SampleCount(),
            kBlocks / 128 * 128 * kLength);
  coded.Block(kBlocks - 1);
  const auto decoder = C_Decoder::Open(coded.Bytes(), kRate);
  ASSERT_TRUE(decoder);
  EXPECT_EQ(decoder->BlockCount(), kBlocks);
  EXPECT_EQ(decoder->SampleCount(), kMost);
}

TEST(HeronDecoder, RatesOutsideTheirRange_AreRefused) {
  const C_Coded coded = C_Coded(5).OnlyBlock(Marked(0));
  for (const int nRate : {-4000, 0, 3999, 48001}) {
    EXPECT_FALSE(C_Decoder::Open(coded.Bytes(), nRate)) << nRate;
  }
  EXPECT_TRUE(C_Decoder::Open(coded.Bytes(), 4000));
  EXPECT_TRUE(C_Decoder::Open(coded.Bytes(), 48000));
}

// ---- finding blocks

TEST(HeronDecoder, BlocksThatAreMissing_LeaveTheOthersInTheirPlaces) {
  constexpr std::size_t kBlocks = 6;
  const std::size_t nCount = (kBlocks - 1) * kLength + 77;
  for (unsigned int nThere = 0; nThere < 1U << kBlocks; ++nThere) {
    C_Coded coded(nCount);
    std::vector<std::size_t> numbers;
    for (std::size_t n = 0; n < kBlocks; ++n) {
      if ((nThere >> n & 1) == 0) continue;
      coded.Block(n);
      numbers.push_back(n);
    }
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded.Bytes(), numbers)) << nThere;
    if (numbers.empty()) continue;
    // Without its last blocks, the sound is shorter.
    EXPECT_EQ(C_Decoder::Open(coded.Bytes(), kRate)->SampleCount(),
              std::min(nCount, (numbers.back() + 1) * kLength));
  }
}

TEST(HeronDecoder, MoreThan64MiBMissingBeyondWhatIsThere_AreTooMuch) {
  const auto isMostlyMissing = [](const C_Coded& coded, int nRate) {
    return C_Decoder::Open(coded.Bytes(), nRate).value().IsMostlyMissing();
  };
  // 64 MiB are 174.8 of these blocks. Two are there, and the others up to the last one are missing.
  constexpr int kHighRate = 48000;
  const std::size_t nCount = 400 * BlockLength(kHighRate);
  EXPECT_FALSE(isMostlyMissing(C_Coded(nCount).Block(100).Block(177), kHighRate));
  EXPECT_TRUE(isMostlyMissing(C_Coded(nCount).Block(100).Block(178), kHighRate));
  EXPECT_FALSE(isMostlyMissing(C_Coded(nCount).Block(100).Block(178), kRate));
}

TEST(HeronDecoder, ABlockThatIsDoubled_CountsOnce) {
  for (std::size_t nDoubled = 0; nDoubled < 5; ++nDoubled) {
    C_Coded coded(5 * kLength);
    for (std::size_t n = 0; n < 5; ++n) {
      coded.Block(n);
      if (n == nDoubled) coded.Block(n);
    }
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded.Bytes(), {0, 1, 2, 3, 4})) << nDoubled;
  }
}

TEST(HeronDecoder, OfBlocksThatAreSwapped_TheLaterStays) {
  const auto swapped = [](std::initializer_list<std::size_t> numbers) {
    C_Coded coded(4 * kLength);
    for (const std::size_t n : numbers) coded.Block(n);
    return coded.Bytes();
  };
  ASSERT_NO_FATAL_FAILURE(ExpectBlocks(swapped({1, 0, 2, 3}), {1, 2, 3}));
  ASSERT_NO_FATAL_FAILURE(ExpectBlocks(swapped({0, 2, 1, 3}), {0, 2, 3}));
  ASSERT_NO_FATAL_FAILURE(ExpectBlocks(swapped({0, 1, 3, 2}), {0, 1, 3}));
  ASSERT_NO_FATAL_FAILURE(ExpectBlocks(swapped({3, 2, 1, 0}), {3}));
}

TEST(HeronDecoder, JunkBetweenBlocks_IsPassedOver) {
  for (std::uint64_t qwSeed = 1; qwSeed <= 300; ++qwSeed) {
    C_Random random(qwSeed);
    C_Coded coded(4 * kLength);
    for (std::size_t n = 0; n < 4; ++n) coded.Raw(RandomBytes(random, random.Below(30))).Block(n);
    coded.Raw(RandomBytes(random, random.Below(30)));
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded.Bytes(), {0, 1, 2, 3})) << qwSeed;
  }
}

TEST(HeronDecoder, EveryBitThatIsFlipped_DamagesOnlyItsBlock) {
  S_Bytes coded = C_Coded(4 * kLength).Block(0).Block(1).Block(2).Block(3).Bytes();
  const std::size_t nBlock = kBlockHeadBytes + Marked(0).size();
  const std::size_t nHead = coded.size() - 4 * nBlock;
  for (std::size_t nBit = 0; nBit < 8 * 4 * nBlock; ++nBit) {
    std::uint8_t& by = coded[nHead + nBit / 8];
    by = static_cast<std::uint8_t>(by ^ 1U << nBit % 8);
    std::vector<std::size_t> numbers = {0, 1, 2, 3};
    numbers.erase(numbers.begin() + static_cast<std::ptrdiff_t>(nBit / 8 / nBlock));
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded, numbers)) << nBit;
    by = static_cast<std::uint8_t>(by ^ 1U << nBit % 8);
  }
}

TEST(HeronDecoder, BytesThatAreCut_KeepTheBlocksBeforeTheCut) {
  const S_Bytes coded = C_Coded(3 * kLength).Block(0).Block(1).Block(2).Bytes();
  const std::size_t nBlock = kBlockHeadBytes + Marked(0).size();
  const std::size_t nHead = coded.size() - 3 * nBlock;
  for (std::size_t nKept = 0; nKept <= coded.size(); ++nKept) {
    const S_Bytes cut(coded.begin(), coded.begin() + static_cast<std::ptrdiff_t>(nKept));
    std::vector<std::size_t> numbers;
    for (std::size_t n = 0; nHead + (n + 1) * nBlock <= nKept; ++n) numbers.push_back(n);
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(cut, numbers)) << nKept;
  }
}

TEST(HeronDecoder, ABeginningThatIsCut_KeepsTheBlocksAfterIt) {
  // The count must be there; what follows may begin anywhere.
  const S_Bytes coded = C_Coded(3 * kLength).Block(0).Block(1).Block(2).Bytes();
  const std::size_t nBlock = kBlockHeadBytes + Marked(0).size();
  const std::size_t nHead = coded.size() - 3 * nBlock;
  for (std::size_t nLost = 0; nLost <= 2 * nBlock; ++nLost) {
    S_Bytes rest = coded;
    const auto at = rest.begin() + static_cast<std::ptrdiff_t>(nHead);
    rest.erase(at, at + static_cast<std::ptrdiff_t>(nLost));
    std::vector<std::size_t> numbers;
    for (std::size_t n = (nLost + nBlock - 1) / nBlock; n < 3; ++n) numbers.push_back(n);
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(rest, numbers)) << nLost;
  }
}

// ---- numbers

TEST(HeronDecoder, NumbersAfter255_BeginAgain) {
  constexpr std::size_t kBlocks = 700;
  C_Coded coded(kBlocks * kLength);
  std::vector<std::size_t> numbers;
  for (std::size_t n = 0; n < kBlocks; ++n) {
    coded.Block(n);
    numbers.push_back(n);
  }
  ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded.Bytes(), numbers));
}

TEST(HeronDecoder, UpTo127BlocksInARow_MayBeMissing) {
  constexpr std::size_t kBlocks = 700;
  for (const std::size_t nMissing : {1u, 2u, 100u, 126u, 127u}) {
    for (const std::size_t nFirst : {0u, 1u, 200u, 255u, 256u, 400u}) {
      C_Coded coded(kBlocks * kLength);
      std::vector<std::size_t> numbers;
      for (std::size_t n = 0; n < kBlocks; ++n) {
        if (n >= nFirst && n - nFirst < nMissing) continue;
        coded.Block(n);
        numbers.push_back(n);
      }
      ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded.Bytes(), numbers)) << nMissing << ' ' << nFirst;
    }
  }
}

TEST(HeronDecoder, ABlockMoreThan127Ahead_IsPassedOver) {
  for (const std::size_t nMissing : {128u, 129u, 200u, 255u}) {
    const C_Coded coded = C_Coded(700 * kLength).Block(0).Block(nMissing + 1).Block(1);
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded.Bytes(), {0, 1})) << nMissing;
  }
}

TEST(HeronDecoder, BlocksThatAreThereTwice_CountOnceInLongSounds) {
  constexpr std::size_t kBlocks = 700;
  for (const std::size_t nTwice : {0u, 5u, 255u, 256u, 600u, 699u}) {
    C_Coded coded(kBlocks * kLength);
    std::vector<std::size_t> numbers;
    for (std::size_t n = 0; n < kBlocks; ++n) {
      coded.Block(n);
      if (n == nTwice) coded.Block(n);
      numbers.push_back(n);
    }
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded.Bytes(), numbers)) << nTwice;
  }
}

// ---- false heads

// Heads of blocks with a wrong check that seem to end with the bytes, then a block.
S_Bytes AfterFalseHeads(std::size_t nHeads, std::size_t nZerosAfter) {
  const S_Bytes block = C_Coded(2 * kLength).Block(0).Bytes();
  const S_Bytes count = C_Coded(2 * kLength).Bytes();
  S_Bytes bytes = count;
  std::size_t nRest = nHeads * kBlockHeadBytes + block.size() - count.size() + nZerosAfter;
  for (std::size_t n = 0; n < nHeads; ++n) {
    nRest -= kBlockHeadBytes;
    const S_Bytes head = {kBlockSync,
                          0,
                          static_cast<std::uint8_t>(nRest),
                          static_cast<std::uint8_t>(nRest >> 8),
                          static_cast<std::uint8_t>(nRest >> 16),
                          0,
                          0};
    bytes.insert(bytes.end(), head.begin(), head.end());
  }
  bytes.insert(bytes.end(), block.begin() + static_cast<std::ptrdiff_t>(count.size()), block.end());
  bytes.resize(bytes.size() + nZerosAfter);
  return bytes;
}

TEST(HeronDecoder, AFewFalseHeads_ArePassedOver) {
  // The search checks 16 times as many bytes as there are.
  for (std::size_t nHeads = 0; nHeads <= 16; ++nHeads) {
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(AfterFalseHeads(nHeads, 100000), {0})) << nHeads;
  }
}

TEST(HeronDecoder, ManyLongFalseHeads_EndTheSearch) {
  for (const std::size_t nHeads : {17u, 18u, 1000u, 20000u}) {
    ASSERT_NO_FATAL_FAILURE(ExpectBlocks(AfterFalseHeads(nHeads, 100000), {})) << nHeads;
  }
}

TEST(HeronDecoder, ManyShortFalseHeads_ArePassedOver) {
  // Each claims ten bytes.
  C_Coded coded(2 * kLength);
  for (int n = 0; n < 20000; ++n) coded.Raw({kBlockSync, 0, 3, 0, 0, 0, 0});
  ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded.Block(0).Block(1).Bytes(), {0, 1}));
}

TEST(HeronDecoder, HeadsThatClaimMoreThanTheBytes_CostNothing) {
  C_Coded coded(2 * kLength);
  for (int n = 0; n < 20000; ++n) coded.Raw({kBlockSync, 0, 0xFF, 0xFF, 0xFF});
  ASSERT_NO_FATAL_FAILURE(ExpectBlocks(coded.Block(0).Block(1).Bytes(), {0, 1}));
}

// ---- decoding

// Each block is steady, at a height that tells its number.
std::int16_t HeightOf(std::size_t nBlock) {
  return static_cast<std::int16_t>(3000 + 1000 * nBlock);
}

S_Bytes SteadyRun(std::size_t nBlock, std::size_t nSamples) {
  C_BlockEncoder encoder(kRate, 4);
  const auto block = encoder.Divide(test::Steady(nSamples, HeightOf(nBlock)), -4000);
  return test::RunOf(encoder, block, test::AllAt(-13 * 1024));
}

void ExpectSteady(std::span<const std::int16_t> samples, int nHeight) {
  EXPECT_TRUE(std::ranges::all_of(samples, [&](std::int16_t nSample) {
    return std::abs(nSample - nHeight) <= 2;
  })) << nHeight;
}

TEST(HeronDecoder, MissingAndDamagedBlocks_BecomeSilence) {
  const std::size_t nCount = 3 * kLength + 500;
  // The second block is missing; the third has a right check, but nothing that an encoder writes.
  const C_Coded coded = C_Coded(nCount)
                            .Block(0, SteadyRun(0, kLength))
                            .Block(2, S_Bytes(3, 0xFF))
                            .Block(3, SteadyRun(3, 500));
  auto decoder = C_Decoder::Open(coded.Bytes(), kRate);
  ASSERT_TRUE(decoder);
  ASSERT_EQ(decoder->SampleCount(), nCount);
  ASSERT_EQ(decoder->BlockCount(), 4u);
  S_Sound all(nCount, 77);
  EXPECT_TRUE(decoder->DecodeAll(all));
  const std::span sound(all);
  ExpectSteady(sound.first(kLength), HeightOf(0));
  EXPECT_EQ((S_Sound{all.begin() + kLength, all.begin() + 3 * kLength}), S_Sound(2 * kLength));
  ExpectSteady(sound.last(500), HeightOf(3));
  // The same block by block, in any order.
  for (const std::size_t n : {3u, 0u, 2u, 1u, 0u}) {
    S_Sound block(n < 3 ? kLength : 500, 77);
    EXPECT_EQ(decoder->DecodeBlock(n, block), n == 0 || n == 3) << n;
    EXPECT_TRUE(std::equal(block.begin(), block.end(),
                           all.begin() + static_cast<std::ptrdiff_t>(n * kLength)))
        << n;
  }
}

TEST(HeronDecoder, OneBlockThatCanBeDecoded_IsEnough) {
  for (std::size_t nGood = 0; nGood < 4; ++nGood) {
    C_Coded coded(3 * kLength);
    for (std::size_t n = 0; n < 3; ++n) {
      coded.Block(n, n == nGood ? SteadyRun(n, kLength) : S_Bytes(3, 0xFF));
    }
    auto decoder = C_Decoder::Open(coded.Bytes(), kRate);
    ASSERT_TRUE(decoder);
    S_Sound all(3 * kLength, 77);
    EXPECT_EQ(decoder->DecodeAll(all), nGood < 3);
    S_Sound grown = {1, 2, 3};
    EXPECT_EQ(DecodeSamples(coded.Bytes(), kRate, &grown), nGood < 3);
    EXPECT_EQ(grown, nGood < 3 ? all : (S_Sound{1, 2, 3}));
    for (std::size_t n = 0; n < 3; ++n) {
      ExpectSteady(std::span(all).subspan(n * kLength, kLength), n == nGood ? HeightOf(n) : 0);
    }
  }
}

TEST(HeronDecoder, AnOnlyBlock_IsDecodedToItsLength) {
  for (const std::size_t nCount : {std::size_t{1}, std::size_t{161}, kLength - 1, kLength}) {
    const C_Coded coded = C_Coded(nCount).OnlyBlock(SteadyRun(1, nCount));
    auto decoder = C_Decoder::Open(coded.Bytes(), kRate);
    ASSERT_TRUE(decoder) << nCount;
    S_Sound all(nCount);
    EXPECT_TRUE(decoder->DecodeAll(all)) << nCount;
    ExpectSteady(all, HeightOf(1));
  }
}

}  // namespace
}  // namespace heron
