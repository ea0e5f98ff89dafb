// SPDX-License-Identifier: Apache-2.0
#include "heron/Block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "Signals.h"

namespace heron {
namespace {

using S_Bytes = std::vector<std::uint8_t>;

S_Bytes RandomBytes(std::size_t nBytes, std::uint64_t qwSeed) {
  test::C_Random random(qwSeed);
  S_Bytes bytes(nBytes);
  for (std::uint8_t& by : bytes) by = random.Byte();
  return bytes;
}

S_Bytes BytesOf(std::string_view text) { return {text.begin(), text.end()}; }

S_Bytes BlockOf(const S_Bytes& run, std::size_t nNumber) {
  S_Bytes coded;
  AppendBlock(coded, nNumber, run);
  return coded;
}

S_Bytes OnlyBlockOf(const S_Bytes& run) {
  S_Bytes coded;
  AppendOnlyBlock(coded, run);
  return coded;
}

void FlipBit(S_Bytes& bytes, std::size_t nBit) {
  bytes[nBit / 8] = static_cast<std::uint8_t>(bytes[nBit / 8] ^ 1U << nBit % 8);
}

// ---- the check

TEST(HeronCrc, KnownValues_ComeOut) {
  EXPECT_EQ(Crc16(BytesOf("123456789")), 0x29B1);
  EXPECT_EQ(Crc16({}), 0xFFFF);
  EXPECT_EQ(Crc16(BytesOf("A")), 0xB915);
  EXPECT_EQ(Crc16(S_Bytes{0}), 0xE1F0);
  EXPECT_EQ(Crc16(BytesOf("123456789"), 0), 0x31C3);
}

// The definition: a division of polynomials, bit by bit.
std::uint16_t CrcBitByBit(const S_Bytes& bytes) {
  unsigned int nRest = 0xFFFF;
  for (const std::uint8_t by : bytes) {
    for (int nBit = 7; nBit >= 0; --nBit) {
      const bool bSubtract = (nRest >> 15 & 1) != (by >> nBit & 1U);
      nRest = (nRest << 1 & 0xFFFF) ^ (bSubtract ? 0x1021U : 0U);
    }
  }
  return static_cast<std::uint16_t>(nRest);
}

TEST(HeronCrc, AnyBytes_GiveTheRestOfTheDivision) {
  for (std::size_t nBytes = 0; nBytes < 300; ++nBytes) {
    const S_Bytes bytes = RandomBytes(nBytes, nBytes);
    ASSERT_EQ(Crc16(bytes), CrcBitByBit(bytes)) << nBytes;
  }
}

TEST(HeronCrc, ACheckOfPieces_IsThatOfTheWhole) {
  const S_Bytes bytes = RandomBytes(50, 1);
  for (std::size_t n = 0; n <= bytes.size(); ++n) {
    const std::span all(bytes);
    EXPECT_EQ(Crc16(all.subspan(n), Crc16(all.first(n))), Crc16(bytes)) << n;
  }
}

// ---- the layout

TEST(HeronBlock, Layout_IsSyncNumberSizeCheckRun) {
  const S_Bytes run = RandomBytes(0x010203, 2);
  const S_Bytes coded = BlockOf(run, 0x1A5);
  const S_Bytes covered = {0xA5, 0x03, 0x02, 0x01};
  const unsigned int nCheck = Crc16(run, Crc16(covered));
  const S_Bytes head = {0xB6,
                        0xA5,
                        0x03,
                        0x02,
                        0x01,
                        static_cast<std::uint8_t>(nCheck),
                        static_cast<std::uint8_t>(nCheck >> 8)};
  ASSERT_EQ(coded.size(), kBlockHeadBytes + run.size());
  EXPECT_TRUE(std::equal(head.begin(), head.end(), coded.begin()));
  EXPECT_TRUE(std::equal(run.begin(), run.end(), coded.begin() + 7));
}

TEST(HeronBlock, LayoutOfAnOnlyBlock_IsCheckRun) {
  EXPECT_EQ(OnlyBlockOf(BytesOf("123456789")),
            (S_Bytes{0xB1, 0x29, '1', '2', '3', '4', '5', '6', '7', '8', '9'}));
  EXPECT_EQ(OnlyBlockOf({}), (S_Bytes{0xFF, 0xFF}));
}

struct S_Read {
  std::uint8_t byNumber;
  std::span<const std::uint8_t> run;
  std::size_t nBytes;
};

// Reads only what lies in the bytes, a few of them at a time.
class C_SmallViews final : public C_CodedBytes {
 public:
  explicit C_SmallViews(std::span<const std::uint8_t> bytes) : m_bytes(bytes) {}
  [[nodiscard]] std::uint64_t Size() const noexcept override { return m_bytes.size(); }
  std::span<const std::uint8_t> View(std::uint64_t qwAt, std::size_t nLeast,
                                     std::size_t nMost) override {
    const auto rest = m_bytes.subspan(static_cast<std::size_t>(qwAt));
    return rest.first(std::min({rest.size(), nMost, std::max<std::size_t>(nLeast, 3)}));
  }

 private:
  std::span<const std::uint8_t> m_bytes;
};

std::uint64_t ClaimedBytes(std::span<const std::uint8_t> bytes) {
  C_CodedMemory memory(bytes);
  return heron::ClaimedBytes(memory, 0);
}

std::optional<S_Read> ReadBlock(std::span<const std::uint8_t> bytes) {
  C_CodedMemory memory(bytes);
  const auto block = heron::ReadBlock(memory, 0);
  C_SmallViews views(bytes);
  EXPECT_EQ(heron::ReadBlock(views, 0).has_value(), block.has_value());
  if (!block) return std::nullopt;
  const auto nBytes = static_cast<std::size_t>(block->run.End());
  return S_Read{block->byNumber, bytes.first(nBytes).subspan(kBlockHeadBytes), nBytes};
}

std::optional<std::span<const std::uint8_t>> ReadOnlyBlock(std::span<const std::uint8_t> bytes) {
  C_CodedMemory memory(bytes);
  const auto run = heron::ReadOnlyBlock(memory);
  if (!run) return std::nullopt;
  EXPECT_EQ(run->End(), bytes.size());
  return bytes.subspan(static_cast<std::size_t>(run->qwAt));
}

TEST(HeronBlock, Append_KeepsWhatIsThere) {
  S_Bytes coded = {1, 2, 3};
  AppendBlock(coded, 0, BytesOf("ab"));
  AppendOnlyBlock(coded, BytesOf("cd"));
  ASSERT_EQ(coded.size(), 3 + kBlockHeadBytes + 2 + kCheckBytes + 2);
  EXPECT_EQ((S_Bytes{coded.begin(), coded.begin() + 3}), (S_Bytes{1, 2, 3}));
  EXPECT_TRUE(ReadBlock(std::span(coded).subspan(3)));
  EXPECT_TRUE(ReadOnlyBlock(std::span(coded).last(kCheckBytes + 2)));
}

// ---- reading

TEST(HeronBlock, RunsOfAllSizes_ComeBack) {
  for (const std::size_t nSize : {0u, 1u, 2u, 255u, 256u, 257u, 65535u, 65536u, 1000000u}) {
    const S_Bytes run = RandomBytes(nSize, nSize);
    S_Bytes coded = BlockOf(run, nSize + 9);
    coded.insert(coded.end(), {0xB6, 7, 0, 0});  // what follows does not matter
    const auto block = ReadBlock(coded);
    ASSERT_TRUE(block) << nSize;
    EXPECT_EQ(block->byNumber, (nSize + 9) % 256) << nSize;
    EXPECT_EQ(block->nBytes, kBlockHeadBytes + nSize) << nSize;
    EXPECT_EQ(block->run.data(), coded.data() + kBlockHeadBytes) << nSize;
    EXPECT_TRUE(std::ranges::equal(block->run, run)) << nSize;
  }
}

TEST(HeronBlock, TheLargestRun_ComesBack) {
  const S_Bytes run(kMaxRunBytes, 0x5A);
  const S_Bytes coded = BlockOf(run, 255);
  EXPECT_EQ(ClaimedBytes(coded), kBlockHeadBytes + kMaxRunBytes);
  const auto block = ReadBlock(coded);
  ASSERT_TRUE(block);
  EXPECT_EQ(block->byNumber, 255);
  EXPECT_TRUE(std::ranges::equal(block->run, run));
}

TEST(HeronBlock, OnlyBlocksOfAllSizes_ComeBack) {
  for (const std::size_t nSize : {0u, 1u, 2u, 1000u}) {
    const S_Bytes run = RandomBytes(nSize, nSize);
    const S_Bytes coded = OnlyBlockOf(run);
    const auto read = ReadOnlyBlock(coded);
    ASSERT_TRUE(read) << nSize;
    EXPECT_TRUE(std::ranges::equal(*read, run)) << nSize;
  }
}

TEST(HeronBlock, EveryBitThatIsFlipped_IsRefused) {
  for (const std::size_t nSize : {0u, 1u, 30u, 700u}) {
    S_Bytes coded = BlockOf(RandomBytes(nSize, nSize), 3);
    // A size that became larger finds bytes, too.
    const std::size_t nBits = 8 * coded.size();
    const S_Bytes after = RandomBytes(70000, 4);
    coded.insert(coded.end(), after.begin(), after.end());
    for (std::size_t nBit = 0; nBit < nBits; ++nBit) {
      FlipBit(coded, nBit);
      EXPECT_FALSE(ReadBlock(coded)) << nSize << ' ' << nBit;
      FlipBit(coded, nBit);
    }
    EXPECT_TRUE(ReadBlock(coded)) << nSize;
  }
}

TEST(HeronBlock, EveryBitThatIsFlippedInAnOnlyBlock_IsRefused) {
  for (const std::size_t nSize : {0u, 1u, 700u}) {
    S_Bytes coded = OnlyBlockOf(RandomBytes(nSize, nSize));
    for (std::size_t nBit = 0; nBit < 8 * coded.size(); ++nBit) {
      FlipBit(coded, nBit);
      EXPECT_FALSE(ReadOnlyBlock(coded)) << nSize << ' ' << nBit;
      FlipBit(coded, nBit);
    }
  }
}

TEST(HeronBlock, EveryTwoBitsThatAreFlipped_AreRefused) {
  // The check finds all errors of two bits within 4095 bytes.
  S_Bytes coded = OnlyBlockOf(RandomBytes(40, 5));
  for (std::size_t nFirst = 0; nFirst < 8 * coded.size(); ++nFirst) {
    for (std::size_t nSecond = nFirst + 1; nSecond < 8 * coded.size(); ++nSecond) {
      FlipBit(coded, nFirst);
      FlipBit(coded, nSecond);
      EXPECT_FALSE(ReadOnlyBlock(coded)) << nFirst << ' ' << nSecond;
      FlipBit(coded, nFirst);
      FlipBit(coded, nSecond);
    }
  }
}

TEST(HeronBlock, EveryBlockThatIsCut_IsRefused) {
  const S_Bytes coded = BlockOf(RandomBytes(300, 6), 0);
  for (std::size_t nKept = 0; nKept < coded.size(); ++nKept) {
    // A copy of its own, so that a read after its end is found.
    const S_Bytes cut(coded.begin(), coded.begin() + static_cast<std::ptrdiff_t>(nKept));
    EXPECT_FALSE(ReadBlock(cut)) << nKept;
    EXPECT_EQ(ClaimedBytes(cut), 0u) << nKept;
  }
}

TEST(HeronBlock, AnOnlyBlockWithoutAWholeCheck_IsRefused) {
  EXPECT_FALSE(ReadOnlyBlock({}));
  EXPECT_FALSE(ReadOnlyBlock(S_Bytes{0xFF}));
  EXPECT_TRUE(ReadOnlyBlock(S_Bytes{0xFF, 0xFF}));
}

TEST(HeronBlock, AnOnlyBlockWithBytesMoreOrFewer_IsRefused) {
  S_Bytes coded = OnlyBlockOf(RandomBytes(20, 7));
  coded.push_back(0);
  EXPECT_FALSE(ReadOnlyBlock(coded));
  coded.pop_back();
  EXPECT_TRUE(ReadOnlyBlock(coded));
  coded.pop_back();
  EXPECT_FALSE(ReadOnlyBlock(coded));
}

TEST(HeronBlock, ClaimedSizes_AreToldOnlyWithinTheBytes) {
  S_Bytes bytes(kBlockHeadBytes + 5);
  for (const auto& [nClaimed, nTold] : {std::array<std::size_t, 2>{0, kBlockHeadBytes},
                                        {4, kBlockHeadBytes + 4},
                                        {5, kBlockHeadBytes + 5},
                                        {6, 0},
                                        {0x100, 0},
                                        {0x10000, 0},
                                        {kMaxRunBytes, 0}}) {
    for (std::size_t n = 0; n < 3; ++n) bytes[2 + n] = static_cast<std::uint8_t>(nClaimed >> 8 * n);
    EXPECT_EQ(ClaimedBytes(bytes), nTold) << nClaimed;
    EXPECT_FALSE(ReadBlock(bytes)) << nClaimed;
  }
}

TEST(HeronBlock, BlocksInARow_AreReadOneByOne) {
  S_Bytes coded;
  for (std::size_t n = 0; n < 300; ++n) AppendBlock(coded, n, RandomBytes(n % 7, n));
  std::span<const std::uint8_t> rest = coded;
  for (std::size_t n = 0; n < 300; ++n) {
    const auto block = ReadBlock(rest);
    ASSERT_TRUE(block) << n;
    EXPECT_EQ(block->byNumber, n % 256);
    EXPECT_EQ(block->run.size(), n % 7);
    rest = rest.subspan(block->nBytes);
  }
  EXPECT_TRUE(rest.empty());
}

}  // namespace
}  // namespace heron
