// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>

#include "source/ByteSource.h"

namespace {

constexpr std::array<std::uint8_t, 5> kBytes = {1, 2, 3, 4, 5};

}  // namespace

TEST(MemorySource, ReadAcrossTheEnd_GivesWhatIsThere) {
  const auto source = api::OpenMemorySource(kBytes);
  std::array<std::uint8_t, 4> read{};
  EXPECT_EQ(source->ReadSome(3, read), 2u);
  EXPECT_EQ(read[0], 4);
  EXPECT_EQ(read[1], 5);
  EXPECT_EQ(source->ReadSome(5, read), 0u);
  EXPECT_EQ(source->ReadSome(std::numeric_limits<std::uint64_t>::max(), read), 0u);
}

TEST(MemorySource, Bytes_AreLentAndKnowTheirLength) {
  const auto source = api::OpenMemorySource(kBytes);
  EXPECT_EQ(source->Length(), 5u);
  EXPECT_TRUE(source->CanGoBack());
  EXPECT_EQ(source->InMemory().data(), kBytes.data());
  EXPECT_EQ(source->InMemory().size(), 5u);
}

TEST(MemorySource, ExactRead_NeedsAllBytes) {
  const auto source = api::OpenMemorySource(kBytes);
  std::array<std::uint8_t, 2> read{};
  EXPECT_TRUE(api::ReadExact(*source, 3, read));
  EXPECT_FALSE(api::ReadExact(*source, 4, read));
}

TEST(MemorySource, NoBytes_AreAnEmptySource) {
  const auto source = api::OpenMemorySource({});
  std::array<std::uint8_t, 2> read{};
  EXPECT_EQ(source->Length(), 0u);
  EXPECT_EQ(source->ReadSome(0, read), 0u);
}
