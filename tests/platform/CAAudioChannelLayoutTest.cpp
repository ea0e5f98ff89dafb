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

// The bytes of a layout as the toolbox hands them out; what is claimed may differ from what
// follows.
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
  EXPECT_EQ(kNone, Printed([](std::FILE* p) { PrintChannelLayout(nullptr, p); }));
  EXPECT_EQ(kNone, TextOf(CAAudioChannelLayout()));
  EXPECT_EQ(kNone, TextOf(CAAudioChannelLayout(nullptr)));
  EXPECT_FALSE(CAAudioChannelLayout().IsValid());
  EXPECT_EQ(nullptr, CAAudioChannelLayout().Layout());
  EXPECT_EQ(0U, CAAudioChannelLayout().SizeInBytes());
}

TEST(CAAudioChannelLayoutTest, ALayoutByBitmap_PrintsTheBitmap) {
  EXPECT_EQ("\tTag=0x10000, Using Bitmap:0x3\n", TextOf(CAAudioChannelLayout::FromBitmap(3)));
  EXPECT_EQ("\tTag=0x10000, Using Bitmap:0xFFFFFFFF\n",
            TextOf(CAAudioChannelLayout::FromBitmap(0xFFFFFFFF)));
  EXPECT_EQ("\tTag=0x10000, Using Bitmap:0x0\n", TextOf(CAAudioChannelLayout::FromTag(0x10000)));
  // Descriptions of a layout by bitmap mean nothing.
  EXPECT_EQ("\tTag=0x10000, Using Bitmap:0x3F\n",
            TextOf(FromBytes(LayoutBytes(0x10000, 0x3F, 1, {kLeft}))));
}

TEST(CAAudioChannelLayoutTest, ALayoutByTag_PrintsTheTagAndNoDescription) {
  EXPECT_EQ("\tTag=0x650002, Num Chan Descs=0\n",
            TextOf(CAAudioChannelLayout::FromTag(kAudioChannelLayoutTag_Stereo)));
  EXPECT_EQ("\tTag=0xFFFFFFFF, Num Chan Descs=0\n",
            TextOf(CAAudioChannelLayout::FromTag(0xFFFFFFFF)));
  EXPECT_EQ("\tTag=0x10001, Num Chan Descs=0\n", TextOf(CAAudioChannelLayout::FromTag(0x10001)));
}

TEST(CAAudioChannelLayoutTest, DescribedChannels_PrintALineEach) {
  EXPECT_EQ(std::string("\tTag=0x0, Num Chan Descs=1\n") + kLeftText,
            TextOf(FromBytes(LayoutBytes(0, 0, 1, {kLeft}))));
  EXPECT_EQ(std::string("\tTag=0x0, Num Chan Descs=3\n") + kLeftText + kPlacedText + kLeftText,
            TextOf(FromBytes(LayoutBytes(0, 3, 3, {kLeft, kPlaced, kLeft}))));
  EXPECT_EQ("\tTag=0x0, Num Chan Descs=0\n", TextOf(FromBytes(LayoutBytes(0, 0, 0))));
  // Whatever the tag, descriptions that are there are printed.
  EXPECT_EQ(std::string("\tTag=0x640001, Num Chan Descs=1\n") + kLeftText,
            TextOf(FromBytes(LayoutBytes(0x640001, 0, 1, {kLeft}))));
}

TEST(CAAudioChannelLayoutTest, ALabelOfAllOnes_PrintsAsMinusOne) {
  EXPECT_EQ(
      "\tTag=0x0, Num Chan Descs=1\n"
      "\t\tLabel=-1, Flags=0xFFFFFFFF, [az=0.000000,el=0.000000,dist=0.000000]\n",
      TextOf(FromBytes(LayoutBytes(0, 0, 1, {{0xFFFFFFFF, 0xFFFFFFFF, {0, 0, 0}}}))));
}

TEST(CAAudioChannelLayoutTest, TheToolboxsOwnRecord_PrintsAsItIs) {
  const AudioChannelLayout layout = {0, 0, 1, {kPlaced}};
  EXPECT_EQ(std::string("\tTag=0x0, Num Chan Descs=1\n") + kPlacedText,
            Printed([&](std::FILE* p) { PrintChannelLayout(&layout, p); }));
}

TEST(CAAudioChannelLayoutTest, ACopy_HoldsAllThatIsCountedAndOutlivesItsSource) {
  CAAudioChannelLayout copy;
  {
    const CAAudioChannelLayout source = FromBytes(LayoutBytes(0, 0, 2, {kPlaced, kLeft}));
    copy = CAAudioChannelLayout(source.Layout());
    EXPECT_NE(source.Layout(), copy.Layout());
  }
  EXPECT_EQ(52U, copy.SizeInBytes());
  EXPECT_EQ(std::string("\tTag=0x0, Num Chan Descs=2\n") + kPlacedText + kLeftText, TextOf(copy));
  EXPECT_EQ(12U, CAAudioChannelLayout::FromBitmap(3).SizeInBytes());

  CAAudioChannelLayout moved = std::move(copy);
  EXPECT_EQ(52U, moved.SizeInBytes());
  moved = CAAudioChannelLayout();
  EXPECT_EQ(kNone, TextOf(moved));
}

TEST(CAAudioChannelLayoutTest, BytesThatEndBeforeWhatTheyCount_AreNoLayout) {
  const C_LayoutBytes whole = LayoutBytes(0, 0, 2, {kLeft, kPlaced});
  ASSERT_EQ(52U, whole.size());
  for (std::size_t cbBytes = 0; cbBytes < whole.size(); ++cbBytes) {
    // Memory of exactly that size: a byte more would not be ours to read.
    const C_LayoutBytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cbBytes));
    EXPECT_FALSE(FromBytes(cut).IsValid()) << cbBytes;
  }
  EXPECT_FALSE(CAAudioChannelLayout::FromBytes(nullptr, 0).IsValid());
  EXPECT_FALSE(CAAudioChannelLayout::FromBytes(nullptr, 52).IsValid());
  // Counts whose bytes do not fit 32 bits, among them one that would wrap round to what is there.
  for (const UInt32 dwClaimed :
       {3U, 0x0CCCCCCDU, 0x33333334U, 0x40000000U, 0x7FFFFFFFU, 0xFFFFFFFFU})
    EXPECT_FALSE(FromBytes(LayoutBytes(0, 0, dwClaimed, {kLeft, kPlaced})).IsValid()) << dwClaimed;
}

TEST(CAAudioChannelLayoutTest, BytesBehindWhatIsCounted_AreLeftOut) {
  C_LayoutBytes bytes = LayoutBytes(0, 0, 1, {kLeft, kPlaced});
  bytes.resize(bytes.size() + 3, 0xFF);
  const CAAudioChannelLayout layout = FromBytes(bytes);
  EXPECT_EQ(32U, layout.SizeInBytes());
  EXPECT_EQ(std::string("\tTag=0x0, Num Chan Descs=1\n") + kLeftText, TextOf(layout));
}

TEST(CAAudioChannelLayoutTest, BytesMayLieAnywhere) {
  C_LayoutBytes bytes = LayoutBytes(0, 0, 1, {kPlaced});
  bytes.insert(bytes.begin(), 0xFF);
  EXPECT_EQ(std::string("\tTag=0x0, Num Chan Descs=1\n") + kPlacedText,
            TextOf(CAAudioChannelLayout::FromBytes(bytes.data() + 1, bytes.size() - 1)));
}

}  // namespace
