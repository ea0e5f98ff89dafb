// SPDX-License-Identifier: Apache-2.0
#include "heron/Tail.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "Blocks.h"
#include "Signals.h"

namespace heron {
namespace {

using test::S_Bytes;
using test::S_Sound;

constexpr int kRate = 4000;
constexpr int kBitDepth = 4;

// Three short blocks of 3, 1 and 2 sections.
std::vector<S_DividedBlock> Blocks(C_BlockEncoder& encoder) {
  std::vector<S_DividedBlock> blocks;
  for (const std::size_t nSamples : {450u, 90u, 320u}) {
    blocks.push_back(encoder.Divide(TestVoice(nSamples), -1500));
  }
  return blocks;
}

TEST(HeronTail, Sections_AreThoseOfAllBlocks) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  C_Tail tail(encoder, encoder.NewWriter(), 0, Blocks(encoder));
  EXPECT_EQ(tail.SectionCount(), 6);
  EXPECT_EQ(tail.StepsPerOctave(), 6 * 64);
  tail.UseWholeIndices();
  EXPECT_EQ(tail.StepsPerOctave(), 6 * 4);
}

TEST(HeronTail, EachStep_MakesOneMoreSectionCoarser) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  const auto blocks = Blocks(encoder);
  for (const bool bWhole : {false, true}) {
    C_Tail tail(encoder, encoder.NewWriter(), 0, blocks);
    if (bWhole) tail.UseWholeIndices();
    const int nStep = bWhole ? 256 : 16;
    const int nPhase = tail.ToOffset(0);
    EXPECT_TRUE(bWhole || nPhase == 0);
    for (const int nSteps : {-50, -7, -1, 0, 3}) {
      for (int nCoarser = 0; nCoarser < 6; ++nCoarser) {
        const auto coded = tail.Encode(6 * nSteps + nCoarser);
        ASSERT_EQ(coded.runs.size(), 3u);
        // The last sections are coarser: counted from the first section of each block.
        const int nFirstCoarser = 6 - nCoarser;
        const int sectionsBefore[] = {0, 3, 4};
        std::size_t nBytes = 0;
        for (std::size_t n = 0; n < 3; ++n) {
          const int nFrom = std::max(nFirstCoarser - sectionsBefore[n], 0);
          const S_Bytes run = test::RunOf(encoder, blocks[n],
                                          {nSteps * nStep + nPhase, (nSteps + 1) * nStep + nPhase,
                                           static_cast<std::size_t>(nFrom)});
          EXPECT_EQ(coded.runs[n], run) << bWhole << ' ' << nSteps << ' ' << nCoarser << ' ' << n;
          nBytes += run.size();
        }
        EXPECT_EQ(coded.nBytes, nBytes);
      }
    }
  }
}

TEST(HeronTail, ATailThatBeginsInABlock_GoesOnFromItsWriter) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  const auto blocks = Blocks(encoder);
  for (std::size_t nFirst = 1; nFirst < 3; ++nFirst) {
    C_PartWriter begun = encoder.NewWriter();
    encoder.Write(blocks[0], {0, nFirst, -3000, -3000, 0}, begun);
    C_Tail tail(encoder, begun, nFirst, blocks);
    const auto nSections = static_cast<std::int64_t>(6 - nFirst);
    EXPECT_EQ(tail.SectionCount(), nSections);
    for (std::int64_t nCoarser = 0; nCoarser < nSections; ++nCoarser) {
      const auto coded = tail.Encode(-60 * nSections + nCoarser);
      ASSERT_EQ(coded.runs.size(), 3u);
      const auto nFrom = static_cast<std::size_t>(6 - nCoarser);
      C_PartWriter writer = begun;
      encoder.Write(blocks[0], {nFirst, 3, -960, -944, nFrom}, writer);
      EXPECT_EQ(coded.runs[0], writer.Finish()) << nFirst << ' ' << nCoarser;
      EXPECT_EQ(coded.runs[2], test::RunOf(encoder, blocks[2],
                                           {-960, -944, nFrom - std::min<std::size_t>(nFrom, 4)}))
          << nFirst << ' ' << nCoarser;
    }
  }
}

TEST(HeronTail, CoarsenessOutsideTheRange_CountsAsItsEnds) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  C_Tail tail(encoder, encoder.NewWriter(), 0, Blocks(encoder));
  for (const std::int64_t nMore : {1, 1000, 1000000000}) {
    EXPECT_EQ(tail.Encode(tail.Finest() - nMore).runs, tail.Encode(tail.Finest()).runs);
    EXPECT_EQ(tail.Encode(tail.AllLost() + nMore).runs, tail.Encode(tail.AllLost()).runs);
  }
  EXPECT_GT(tail.Encode(tail.Finest()).nBytes, tail.Encode(tail.Coarsest()).nBytes * 10);
}

TEST(HeronTail, AboveTheCoarsest_EachStepLosesOneSection) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  const auto blocks = Blocks(encoder);
  for (const std::size_t nFirst : {std::size_t{0}, std::size_t{2}}) {
    C_PartWriter begun = encoder.NewWriter();
    encoder.Write(blocks[0], {0, nFirst, -3000, -3000, 0}, begun);
    C_Tail tail(encoder, begun, nFirst, blocks);
    const auto nCoarsest = static_cast<int>(tail.Coarsest() / tail.SectionCount()) * 16;
    for (std::int64_t nLost = 1; nLost <= tail.SectionCount(); ++nLost) {
      const auto coded = tail.Encode(tail.Coarsest() + nLost);
      const auto nFrom = static_cast<std::size_t>(6 - nLost);
      C_PartWriter writer = begun;
      encoder.Write(blocks[0], {nFirst, 3, nCoarsest, nCoarsest + 16, 6, nFrom}, writer);
      EXPECT_EQ(coded.runs[0], writer.Finish()) << nFirst << ' ' << nLost;
    }
    // A lost section takes less than two bytes, and a block ends with few.
    EXPECT_LE(tail.Encode(tail.AllLost()).nBytes, begun.Bits() / 8 + 3 * 4 + 6 * 2);
  }
}

TEST(HeronTail, LostSections_AreSilentAndTheOthersStay) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  const S_Sound voice = TestVoice(800);
  const S_DividedBlock block = encoder.Divide(voice, -1500);
  const S_Bytes whole = test::RunOf(encoder, block, {-4000, -4000, 0});
  const S_Bytes cut = test::RunOf(encoder, block, {-4000, -4000, 0, 3});
  S_Sound decoded(800);
  S_Sound left(800);
  C_BlockDecoder decoder(kRate);
  ASSERT_TRUE(decoder.Decode(whole, decoded));
  ASSERT_TRUE(decoder.Decode(cut, left));
  // The overlap with the next section, half a section at the most, differs.
  EXPECT_TRUE(std::equal(decoded.begin(), decoded.begin() + 400, left.begin()));
  EXPECT_TRUE(std::all_of(left.begin() + 560, left.end(), [](int n) { return n == 0; }));
  EXPECT_LT(cut.size(), whole.size() * 3 / 4);
}

TEST(HeronTail, WholeIndices_LieAtTheStepsThatAreWanted) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  for (const std::int16_t nAmplitude : std::array<std::int16_t, 5>{100, 1000, 1414, 5000, 32767}) {
    std::vector<S_DividedBlock> blocks;
    S_Sound square = test::Square(1600, 1);
    for (auto& nSample : square) nSample = std::min(nSample, nAmplitude);
    blocks.push_back(encoder.Divide(square, -1500));
    const int nStep = encoder.StepAtOffset0(blocks[0], blocks[0].parts.size() / 2);
    C_Tail tail(encoder, encoder.NewWriter(), 0, std::move(blocks));
    tail.UseWholeIndices();
    const int nRest = (nStep + tail.ToOffset(0) + 128) % 256 - 128;
    EXPECT_NEAR(nRest, 0, 40) << nAmplitude;
  }
}

TEST(HeronTail, TheFinest_GivesEverySampleBack) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  C_Tail tail(encoder, encoder.NewWriter(), 0, Blocks(encoder));
  const auto coded = tail.Encode(tail.Finest());
  S_Sound decoded(450);
  ASSERT_TRUE(C_BlockDecoder(kRate).Decode(coded.runs[0], decoded));
  EXPECT_GT(test::SignalToNoise(TestVoice(450), decoded), 80);
}

TEST(HeronTail, Offsets_BecomeCoarsenessAndBack) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  C_Tail tail(encoder, encoder.NewWriter(), 0, Blocks(encoder));
  for (int nOffset = -12 * 1024; nOffset <= 18 * 1024; nOffset += 16) {
    EXPECT_EQ(tail.ToOffset(tail.FromOffset(nOffset)), nOffset);
  }
  EXPECT_EQ(tail.FromOffset(-12 * 1024), tail.Finest());
  EXPECT_EQ(tail.FromOffset(18 * 1024), tail.Coarsest());
}

}  // namespace
}  // namespace heron
