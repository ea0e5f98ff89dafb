// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Envelope.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

#include "VectorFiles.h"

namespace kestrel {
namespace {

using test::C_Stages;
using test::ToInts;

std::array<std::int16_t, kRegionSize> Region(std::int16_t nValue) {
  std::array<std::int16_t, kRegionSize> region;
  region.fill(nValue);
  return region;
}

class EnvelopeAtRate : public testing::TestWithParam<std::uint32_t> {
 protected:
  C_Stages m_stages{GetParam()};
  int m_nRegions = m_stages.Configuration().nRegions;
};

TEST_P(EnvelopeAtRate, FramesOfSpeech_GiveTheirIndicesAndBits) {
  for (const int nFrame : m_stages.Frames()) {
    S_Envelope envelope = MeasureEnvelope(m_stages.Frame(nFrame, "mlt"),
                                          m_stages.Value(nFrame, "mag_shift"), m_nRegions);
    ShapeEnvelope(envelope, m_nRegions);
    std::array<std::uint16_t, kMaxWordsPerFrame> words{};
    C_BitWriter writer(words);
    WriteEnvelope(writer, envelope, m_nRegions);
    EXPECT_EQ(writer.BitsPut(), m_stages.Value(nFrame, "envelope_bits")) << nFrame;
    EXPECT_EQ(ToInts(envelope, static_cast<std::size_t>(m_nRegions)),
              m_stages.Values(nFrame, "power_index"))
        << nFrame;
  }
}

TEST_P(EnvelopeAtRate, FrameWords_GiveTheIndicesAndTheScaleBack) {
  for (const int nFrame : m_stages.Frames()) {
    const auto words = m_stages.As<std::array<std::uint16_t, kMaxWordsPerFrame>>(nFrame, "words");
    C_BitReader reader(words);
    const S_Envelope envelope = ReadEnvelope(reader, m_nRegions);
    EXPECT_EQ(ToInts(envelope, static_cast<std::size_t>(m_nRegions)),
              m_stages.Values(nFrame, "power_index"))
        << nFrame;
    EXPECT_EQ(kMaxWordsPerFrame * kBitsPerWord - reader.BitsLeft(),
              m_stages.Value(nFrame, "envelope_bits"));
    EXPECT_TRUE(IsValidEnvelope(envelope, m_nRegions));
    EXPECT_EQ(ScaleOf(envelope, m_nRegions).nShift, m_stages.Value(nFrame, "decoded_mag_shift"));
  }
}

INSTANTIATE_TEST_SUITE_P(Rates, EnvelopeAtRate, testing::ValuesIn(test::kStageRates));

TEST(RegionPower, FlatRegions_GiveTheLogarithmOfTheirValue) {
  EXPECT_EQ(RegionPower(Region(1), 0), 0);
  EXPECT_EQ(RegionPower(Region(-2), 0), 2);
  EXPECT_EQ(RegionPower(Region(3), 0), 3);
  EXPECT_EQ(RegionPower(Region(1024), 0), 20);
  EXPECT_EQ(RegionPower(Region(1024), 9), 2);
  EXPECT_EQ(RegionPower(Region(1024), -1), 22);
}

TEST(RegionPower, Zeros_GiveTheLowestIndex) {
  EXPECT_EQ(RegionPower(Region(0), 0), -5);
  EXPECT_EQ(RegionPower(Region(0), 9), -23);
}

TEST(RegionPower, FullScale_IsLimitedAndDoesNotOverflow) {
  // The sum of 20 squares is limited to 2^31 - 1: mantissa 32767 with 15 shifts, rounded up.
  EXPECT_EQ(RegionPower(Region(-32768), 0), 27);
  EXPECT_EQ(RegionPower(Region(32767), 0), 27);
}

TEST(ShapeEnvelope, ValleysBeforePeaks_AreRaisedToElevenBelow) {
  S_Envelope envelope = {0, -15, 20, 3, 24, -10, -10, 22};
  ShapeEnvelope(envelope, 8);
  EXPECT_EQ(ToInts(envelope, 8), (std::vector{0, 9, 20, 13, 24, 0, 11, 22}));
}

TEST(ShapeEnvelope, Indices_AreLimited) {
  S_Envelope envelope = {-40, -40, -40, -40, -40, -40, -40, -40, 77, 77};
  ShapeEnvelope(envelope, 8);
  EXPECT_EQ(ToInts(envelope, 10), (std::vector{-6, -15, -15, -15, -15, -15, -15, -15, 77, 77}));
  envelope.fill(99);
  ShapeEnvelope(envelope, 14);
  EXPECT_EQ(ToInts(envelope, 14), std::vector(14, 24));
}

TEST(WriteEnvelope, FallsSteeperThanTwelve_AreWrittenAsTwelve) {
  S_Envelope envelope = {24, 24, 0, 0, 0, 0, 0, 0};
  std::array<std::uint16_t, kMaxWordsPerFrame> words{};
  C_BitWriter writer(words);
  WriteEnvelope(writer, envelope, 8);
  EXPECT_EQ(ToInts(envelope, 8), (std::vector{24, 24, 12, 0, 0, 0, 0, 0}));
  EXPECT_EQ(words[0] >> 11, 31);
  C_BitReader reader(words);
  EXPECT_EQ(ReadEnvelope(reader, 8), envelope);
}

TEST(WriteEnvelope, FirstIndex_IsFiveBitsOffsetBySeven) {
  for (int nPower = -6; nPower <= 24; ++nPower) {
    S_Envelope envelope{};
    envelope[0] = nPower;
    std::array<std::uint16_t, 1> words{};
    C_BitWriter writer(words);
    WriteEnvelope(writer, envelope, 1);
    EXPECT_EQ(words[0], (nPower + 7) << 11) << nPower;
    EXPECT_EQ(writer.BitsPut(), 5);
  }
}

TEST(WriteEnvelope, EveryStepOfEveryRegion_ReadsBack) {
  for (std::size_t r = 1; r < kMaxRegions; ++r) {
    for (int nStep = -12; nStep <= 11; ++nStep) {
      S_Envelope envelope{};
      std::fill(envelope.begin() + static_cast<std::ptrdiff_t>(r), envelope.end(), nStep);
      std::array<std::uint16_t, kMaxWordsPerFrame> words{};
      C_BitWriter writer(words);
      WriteEnvelope(writer, envelope, kMaxRegions);
      C_BitReader reader(words);
      EXPECT_EQ(ReadEnvelope(reader, kMaxRegions), envelope) << r << ' ' << nStep;
      EXPECT_EQ(reader.BitsLeft(), 640 - writer.BitsPut());
    }
  }
}

TEST(ReadEnvelope, PastTheEnd_ReadsZerosAndEnds) {
  C_BitReader reader({});
  const S_Envelope envelope = ReadEnvelope(reader, kMaxRegions);
  EXPECT_EQ(envelope[0], -7);
  EXPECT_LT(reader.BitsLeft(), 0);
}

TEST(IsValidEnvelope, Check_LooksAtCodedRegionsOnly) {
  S_Envelope envelope{};
  envelope[3] = -15;
  envelope[7] = 24;
  envelope[8] = 25;
  EXPECT_TRUE(IsValidEnvelope(envelope, 8));
  EXPECT_FALSE(IsValidEnvelope(envelope, 10));
  envelope[3] = -16;
  EXPECT_FALSE(IsValidEnvelope(envelope, 8));
}

TEST(ScaleOf, QuietFrames_TakeTheLargestShift) {
  S_Envelope envelope;
  envelope.fill(-15);
  const S_Scale scale = ScaleOf(envelope, 14);
  EXPECT_EQ(scale.nShift, 9);
  EXPECT_EQ(scale.deviation[0], 3);  // 2^((-15 + 18) / 2)
}

TEST(ScaleOf, LoudFrames_TakeTheLowest) {
  S_Envelope envelope;
  envelope.fill(24);
  const S_Scale scale = ScaleOf(envelope, 14);
  EXPECT_EQ(scale.nShift, -1);
  EXPECT_EQ(scale.deviation[13], 2048);
}

TEST(ScaleOf, UncodedRegions_HaveNoDeviation) {
  const S_Scale scale = ScaleOf(S_Envelope{}, 8);
  EXPECT_GT(scale.deviation[7], 0);
  EXPECT_EQ(scale.deviation[8], 0);
}

TEST(ScaleOf, IndicesOutsideTheTable_HaveNoDeviation) {
  S_Envelope envelope{};
  envelope[0] = -163;
  envelope[1] = 167;
  const S_Scale scale = ScaleOf(envelope, 14);
  EXPECT_EQ(scale.nShift, -1);
  EXPECT_EQ(scale.deviation[0], 0);
  EXPECT_EQ(scale.deviation[1], 0);
}

}  // namespace
}  // namespace kestrel
