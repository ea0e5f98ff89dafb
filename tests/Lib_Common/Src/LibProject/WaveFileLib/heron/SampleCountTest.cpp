// SPDX-License-Identifier: Apache-2.0
#include "heron/SampleCount.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace heron {
namespace {

using S_Bytes = std::vector<std::uint8_t>;

S_Bytes BytesOf(std::size_t nCount) {
  S_Bytes bytes;
  AppendCount(bytes, nCount);
  return bytes;
}

TEST(HeronSampleCount, Bytes_HaveSevenBitsEach) {
  EXPECT_EQ(BytesOf(1), (S_Bytes{1}));
  EXPECT_EQ(BytesOf(127), (S_Bytes{127}));
  EXPECT_EQ(BytesOf(128), (S_Bytes{0x80, 1}));
  EXPECT_EQ(BytesOf(5000), (S_Bytes{0x88, 39}));
  EXPECT_EQ(BytesOf(0xFFFFFFFF), (S_Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0x0F}));
}

TEST(HeronSampleCount, CountsOfEverySize_ComeBack) {
  for (int nBit = 0; nBit < 32; ++nBit) {
    for (const std::int64_t nOff : {-1, 0, 1}) {
      const auto nCount = static_cast<std::size_t>((std::int64_t{1} << nBit) + nOff);
      S_Bytes bytes = BytesOf(nCount);
      const std::size_t nBytes = bytes.size();
      bytes.insert(bytes.end(), {0x81, 0x12});
      const auto read = ReadCount(bytes);
      ASSERT_TRUE(read) << nCount;
      EXPECT_EQ(read->qwCount, nCount);
      EXPECT_EQ(read->nBytes, nBytes) << nCount;
    }
  }
}

TEST(HeronSampleCount, Append_KeepsWhatIsThere) {
  S_Bytes bytes = {9, 9};
  AppendCount(bytes, 300);
  EXPECT_EQ(bytes, (S_Bytes{9, 9, 0xAC, 2}));
}

TEST(HeronSampleCount, ACountWithoutAnEnd_IsRefused) {
  const S_Bytes bytes = BytesOf(0xFFFFFFFF);
  for (std::size_t nKept = 0; nKept < bytes.size(); ++nKept) {
    EXPECT_FALSE(ReadCount(S_Bytes(bytes.begin(), bytes.begin() + static_cast<int>(nKept))))
        << nKept;
  }
  EXPECT_FALSE(ReadCount(S_Bytes(100, 0x80)));
  EXPECT_FALSE(ReadCount(S_Bytes{0x80, 0x80, 0x80, 0x80, 0x80, 0}));
}

TEST(HeronSampleCount, FiveBytes_HoldUpTo35Bits) {
  const auto read = ReadCount(S_Bytes{0xFF, 0xFF, 0xFF, 0xFF, 0x7F});
  ASSERT_TRUE(read);
  EXPECT_EQ(read->qwCount, (std::uint64_t{1} << 35) - 1);
  EXPECT_EQ(read->nBytes, 5u);
}

}  // namespace
}  // namespace heron
