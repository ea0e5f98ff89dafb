// SPDX-License-Identifier: Apache-2.0
//
// The head of Heron streams, and what it says.
#include "codec/HeronStream.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;
using heronstream::FindAudio;
using heronstream::MakeHead;
using heronstream::VariantOfType;

TEST(HeronStream, Variants_HaveTheirBitDepthsAndModeCodes) {
  constexpr std::array<std::array<int, 3>, 5> kRows = {
      {{32, 4, 1}, {33, 5, 2}, {34, 6, 3}, {35, 2, 4}, {36, 3, 5}}};
  for (const auto& [nType, nBitDepth, nMode] : kRows) {
    const auto variant = VariantOfType(static_cast<unsigned int>(nType));
    ASSERT_TRUE(variant) << nType;
    EXPECT_EQ(static_cast<int>(variant->eType), nType);
    EXPECT_EQ(variant->nBitDepth, nBitDepth) << nType;
    EXPECT_EQ(variant->byModeCode, nMode) << nType;
  }
}

TEST(HeronStream, OtherTypeCodes_AreNoVariant) {
  for (const unsigned int dwType :
       {0u, 4u, 14u, 31u, 37u, 38u, 0x8001u, 0xFFFFu, 0x10020u, 0xFFFFFFFFu}) {
    EXPECT_FALSE(VariantOfType(dwType)) << dwType;
  }
}

TEST(HeronStream, Head_HoldsModeCodeAndPlaceOfTheEvents) {
  const auto variant = *VariantOfType(33);
  EXPECT_EQ(MakeHead(variant, 300, 1), 0x00012C02u);
  EXPECT_EQ(MakeHead(variant, 4, 70000), 0x00000402u);
}

TEST(HeronStream, HeadWithoutEvents_HasOffset0) {
  const auto variant = *VariantOfType(36);
  EXPECT_EQ(MakeHead(variant, 300, 0), 5u);
  EXPECT_EQ(MakeHead(variant, std::uint64_t{1} << 40, 0), 5u);
}

TEST(HeronStream, EventsFrom16MebibytesOn_HaveNoPlaceInTheHead) {
  const auto variant = *VariantOfType(32);
  EXPECT_EQ(MakeHead(variant, 0xFFFFFF, 1), 0xFFFFFF01u);
  EXPECT_FALSE(MakeHead(variant, 0x1000000, 1));
  EXPECT_FALSE(MakeHead(variant, std::uint64_t{1} << 32 | 4, 1));
}

TEST(HeronStream, AudioWithoutEvents_ReachesToTheEnd) {
  const Bytes stream = {3, 0, 0, 0, 10, 11, 12};
  const auto audio = FindAudio(stream);
  ASSERT_TRUE(audio);
  EXPECT_EQ(audio->variant.nBitDepth, 6);
  EXPECT_EQ(Bytes(audio->coded.begin(), audio->coded.end()), (Bytes{10, 11, 12}));
}

TEST(HeronStream, AudioBeforeEvents_EndsAtTheirOffset) {
  const Bytes stream = {4, 6, 0, 0, 10, 11, 8, 1};
  const auto audio = FindAudio(stream);
  ASSERT_TRUE(audio);
  EXPECT_EQ(audio->variant.nBitDepth, 2);
  EXPECT_EQ(Bytes(audio->coded.begin(), audio->coded.end()), (Bytes{10, 11}));
}

TEST(HeronStream, HeadOnly_HasNoAudio) {
  const auto audio = FindAudio(Bytes{1, 0, 0, 0});
  ASSERT_TRUE(audio);
  EXPECT_TRUE(audio->coded.empty());
}

TEST(HeronStream, StreamShorterThanItsHead_IsRefused) {
  EXPECT_FALSE(FindAudio({}));
  EXPECT_FALSE(FindAudio(Bytes{1}));
  EXPECT_FALSE(FindAudio(Bytes{1, 0, 0}));
}

TEST(HeronStream, UnknownModeCodes_AreRefused) {
  for (unsigned int dwMode = 0; dwMode < 256; ++dwMode) {
    const Bytes stream = {static_cast<unsigned char>(dwMode), 0, 0, 0, 10, 11};
    EXPECT_EQ(FindAudio(stream).has_value(), dwMode >= 1 && dwMode <= 5) << dwMode;
  }
}

// A stream of eight bytes whose events begin at an offset.
Bytes StreamWithEventsAt(unsigned int dwOffset) {
  Bytes stream = {1, 0, 0, 0, 10, 11, 8, 1};
  for (std::size_t n = 0; n < 3; ++n) {
    stream[1 + n] = static_cast<unsigned char>(dwOffset >> (8 * n));
  }
  return stream;
}

TEST(HeronStream, OffsetsAfterTheEnd_LeaveTheAudioThatIsThere) {
  for (const unsigned int dwOffset : {8u, 9u, 255u, 0x1234u, 0xFFFFFFu}) {
    const Bytes stream = StreamWithEventsAt(dwOffset);
    const auto audio = FindAudio(stream);
    ASSERT_TRUE(audio) << dwOffset;
    EXPECT_EQ(Bytes(audio->coded.begin(), audio->coded.end()), (Bytes{10, 11, 8, 1}));
  }
}

TEST(HeronStream, OffsetsInsideTheHead_AreRefused) {
  for (const unsigned int dwOffset : {1u, 2u, 3u}) {
    EXPECT_FALSE(FindAudio(StreamWithEventsAt(dwOffset))) << dwOffset;
  }
  EXPECT_TRUE(FindAudio(StreamWithEventsAt(4)));
  EXPECT_TRUE(FindAudio(StreamWithEventsAt(7)));
}

}  // namespace
