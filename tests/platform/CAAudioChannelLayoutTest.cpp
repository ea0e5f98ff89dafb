// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "CAAudioChannelLayout.h"
#include "Printed.h"

namespace {

using C_LayoutBytes = std::vector<std::uint8_t>;

// The bytes of a layout as the toolbox hands them out. The claimed number of descriptions may
// differ from the descriptions that follow.
C_LayoutBytes LayoutBytes(UInt32 dwTag, UInt32 dwBitmap, UInt32 dwClaimed,
                          const std::vector<AudioChannelDescription>& descriptions = {}) {
  const std::array<UInt32, 3> head = {dwTag, dwBitmap, dwClaimed};
  C_LayoutBytes bytes(sizeof head + descriptions.size() * sizeof(AudioChannelDescription));
  std::memcpy(bytes.data(), head.data(), sizeof head);
  if (!descriptions.empty()) {
    std::memcpy(bytes.data() + sizeof head, descriptions.data(), bytes.size() - sizeof head);
  }
  return bytes;
}

CAAudioChannelLayout FromBytes(const C_LayoutBytes& bytes) {
  return CAAudioChannelLayout::FromBytes(bytes.data(), bytes.size());
}

std::string TextOf(const CAAudioChannelLayout& layout) {
  return Printed([&](std::FILE* p) { layout.Print(p); });
}

constexpr AudioChannelDescription kLeft = {1, 0, {0, 0, 0}};
constexpr AudioChannelDescription kPlaced = {100, 0xA, {-30, 12.5F, 1.25F}};
const char* const kNone = "\tNULL layout\n";
const char* const kLeftText = "\t\tLabel=1, Flags=0x0, [az=0.000000,el=0.000000,dist=0.000000]\n";
const char* const kPlacedText =
    "\t\tLabel=100, Flags=0xA, [az=-30.000000,el=12.500000,dist=1.250000]\n";

TEST(CAAudioChannelLayoutTest, NoLayout_PrintsThatThereIsNone) {
  EXPECT_EQ(Printed([](std::FILE* p) { PrintChannelLayout(nullptr, p); }), kNone);
  EXPECT_EQ(TextOf(CAAudioChannelLayout()), kNone);
  EXPECT_EQ(TextOf(CAAudioChannelLayout(nullptr)), kNone);
  EXPECT_FALSE(CAAudioChannelLayout().IsValid());
  EXPECT_EQ(CAAudioChannelLayout().Layout(), nullptr);
  EXPECT_EQ(CAAudioChannelLayout().SizeInBytes(), 0U);
}

TEST(CAAudioChannelLayoutTest, ALayoutByBitmap_PrintsTheBitmap) {
  EXPECT_EQ(TextOf(CAAudioChannelLayout::FromBitmap(3)), "\tTag=0x10000, Using Bitmap:0x3\n");
  EXPECT_EQ(TextOf(CAAudioChannelLayout::FromBitmap(0xFFFFFFFF)),
            "\tTag=0x10000, Using Bitmap:0xFFFFFFFF\n");
  EXPECT_EQ(TextOf(CAAudioChannelLayout::FromTag(0x10000)), "\tTag=0x10000, Using Bitmap:0x0\n");
  // In a layout by bitmap, descriptions are ignored.
  EXPECT_EQ(TextOf(FromBytes(LayoutBytes(0x10000, 0x3F, 1, {kLeft}))),
            "\tTag=0x10000, Using Bitmap:0x3F\n");
}

TEST(CAAudioChannelLayoutTest, ALayoutByTag_PrintsTheTagAndNoDescription) {
  EXPECT_EQ(TextOf(CAAudioChannelLayout::FromTag(kAudioChannelLayoutTag_Stereo)),
            "\tTag=0x650002, Num Chan Descs=0\n");
  EXPECT_EQ(TextOf(CAAudioChannelLayout::FromTag(0xFFFFFFFF)),
            "\tTag=0xFFFFFFFF, Num Chan Descs=0\n");
  EXPECT_EQ(TextOf(CAAudioChannelLayout::FromTag(0x10001)), "\tTag=0x10001, Num Chan Descs=0\n");
}

TEST(CAAudioChannelLayoutTest, DescribedChannels_PrintALineEach) {
  EXPECT_EQ(TextOf(FromBytes(LayoutBytes(0, 0, 1, {kLeft}))),
            std::string("\tTag=0x0, Num Chan Descs=1\n") + kLeftText);
  EXPECT_EQ(TextOf(FromBytes(LayoutBytes(0, 3, 3, {kLeft, kPlaced, kLeft}))),
            std::string("\tTag=0x0, Num Chan Descs=3\n") + kLeftText + kPlacedText + kLeftText);
  EXPECT_EQ(TextOf(FromBytes(LayoutBytes(0, 0, 0))), "\tTag=0x0, Num Chan Descs=0\n");
  // Descriptions are printed whatever the tag, except in a layout by bitmap.
  EXPECT_EQ(TextOf(FromBytes(LayoutBytes(0x640001, 0, 1, {kLeft}))),
            std::string("\tTag=0x640001, Num Chan Descs=1\n") + kLeftText);
}

TEST(CAAudioChannelLayoutTest, ALabelOfAllOnes_PrintsAsMinusOne) {
  EXPECT_EQ(TextOf(FromBytes(LayoutBytes(0, 0, 1, {{0xFFFFFFFF, 0xFFFFFFFF, {0, 0, 0}}}))),
            "\tTag=0x0, Num Chan Descs=1\n"
            "\t\tLabel=-1, Flags=0xFFFFFFFF, [az=0.000000,el=0.000000,dist=0.000000]\n");
}

TEST(CAAudioChannelLayoutTest, TheToolboxsOwnRecord_PrintsAsItIs) {
  const AudioChannelLayout layout = {0, 0, 1, {kPlaced}};
  EXPECT_EQ(Printed([&](std::FILE* p) { PrintChannelLayout(&layout, p); }),
            std::string("\tTag=0x0, Num Chan Descs=1\n") + kPlacedText);
}

TEST(CAAudioChannelLayoutTest, ACopy_HoldsAllThatIsCountedAndOutlivesItsSource) {
  CAAudioChannelLayout copy;
  {
    const CAAudioChannelLayout source = FromBytes(LayoutBytes(0, 0, 2, {kPlaced, kLeft}));
    copy = CAAudioChannelLayout(source.Layout());
    EXPECT_NE(copy.Layout(), source.Layout());
  }
  EXPECT_EQ(copy.SizeInBytes(), 52U);
  EXPECT_EQ(TextOf(copy), std::string("\tTag=0x0, Num Chan Descs=2\n") + kPlacedText + kLeftText);
  EXPECT_EQ(CAAudioChannelLayout::FromBitmap(3).SizeInBytes(), 12U);

  CAAudioChannelLayout moved = std::move(copy);
  EXPECT_EQ(moved.SizeInBytes(), 52U);
  moved = CAAudioChannelLayout();
  EXPECT_EQ(TextOf(moved), kNone);
}

TEST(CAAudioChannelLayoutTest, BytesThatEndBeforeWhatTheyCount_AreNoLayout) {
  const C_LayoutBytes whole = LayoutBytes(0, 0, 2, {kLeft, kPlaced});
  ASSERT_EQ(whole.size(), 52U);
  for (std::size_t cbBytes = 0; cbBytes < whole.size(); ++cbBytes) {
    // Memory of exactly this size: one byte more would not be ours to read.
    const C_LayoutBytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cbBytes));
    EXPECT_FALSE(FromBytes(cut).IsValid()) << cbBytes;
  }
  EXPECT_FALSE(CAAudioChannelLayout::FromBytes(nullptr, 0).IsValid());
  EXPECT_FALSE(CAAudioChannelLayout::FromBytes(nullptr, 52).IsValid());
  // Counts that need more bytes than there are. For most of them, the number of bytes does not fit
  // in 32 bits, and for some it would wrap to a number of bytes that the layout does have.
  for (const UInt32 dwClaimed :
       {3U, 0x0CCCCCCDU, 0x33333334U, 0x40000000U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
    EXPECT_FALSE(FromBytes(LayoutBytes(0, 0, dwClaimed, {kLeft, kPlaced})).IsValid()) << dwClaimed;
  }
}

TEST(CAAudioChannelLayoutTest, BytesAfterTheCountedOnes_AreLeftOut) {
  C_LayoutBytes bytes = LayoutBytes(0, 0, 1, {kLeft, kPlaced});
  bytes.resize(bytes.size() + 3, 0xFF);
  const CAAudioChannelLayout layout = FromBytes(bytes);
  EXPECT_EQ(layout.SizeInBytes(), 32U);
  EXPECT_EQ(TextOf(layout), std::string("\tTag=0x0, Num Chan Descs=1\n") + kLeftText);
}

TEST(CAAudioChannelLayoutTest, Bytes_MayLieAnywhere) {
  C_LayoutBytes bytes = LayoutBytes(0, 0, 1, {kPlaced});
  bytes.insert(bytes.begin(), 0xFF);
  EXPECT_EQ(TextOf(CAAudioChannelLayout::FromBytes(bytes.data() + 1, bytes.size() - 1)),
            std::string("\tTag=0x0, Num Chan Descs=1\n") + kPlacedText);
}

}  // namespace
