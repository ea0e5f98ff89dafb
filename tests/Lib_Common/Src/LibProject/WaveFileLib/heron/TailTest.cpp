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
          const S_Bytes run =
              test::RunOf(encoder, blocks[n],
                          {nSteps * nStep, (nSteps + 1) * nStep, static_cast<std::size_t>(nFrom)});
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
    EXPECT_EQ(tail.Encode(tail.Coarsest() + nMore).runs, tail.Encode(tail.Coarsest()).runs);
  }
  EXPECT_GT(tail.Encode(tail.Finest()).nBytes, tail.Encode(tail.Coarsest()).nBytes * 10);
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
