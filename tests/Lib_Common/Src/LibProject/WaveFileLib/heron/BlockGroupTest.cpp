// SPDX-License-Identifier: Apache-2.0
#include "heron/BlockGroup.h"

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

TEST(HeronBlockGroup, Sections_AreThoseOfAllBlocks) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  C_BlockGroup group(encoder, Blocks(encoder));
  EXPECT_EQ(group.SectionCount(), 6);
  EXPECT_EQ(group.StepsPerOctave(), 6 * 64);
  group.UseWholeIndices();
  EXPECT_EQ(group.StepsPerOctave(), 6 * 4);
}

TEST(HeronBlockGroup, EachStep_MakesOneMoreSectionCoarser) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  const auto blocks = Blocks(encoder);
  for (const bool bWhole : {false, true}) {
    C_BlockGroup group(encoder, blocks);
    if (bWhole) group.UseWholeIndices();
    const int nStep = bWhole ? 256 : 16;
    for (const int nSteps : {-50, -7, -1, 0, 3}) {
      for (int nCoarser = 0; nCoarser < 6; ++nCoarser) {
        const auto coded = group.Encode(6 * nSteps + nCoarser);
        ASSERT_EQ(coded.runs.size(), 3u);
        // The last sections are coarser: counted from the first section of each block.
        const int nFirstCoarser = 6 - nCoarser;
        const int sectionsBefore[] = {0, 3, 4};
        std::size_t nBytes = 0;
        for (std::size_t n = 0; n < 3; ++n) {
          const int nFrom = std::max(nFirstCoarser - sectionsBefore[n], 0);
          S_Bytes run;
          encoder.Encode(blocks[n],
                         {nSteps * nStep, (nSteps + 1) * nStep, static_cast<std::size_t>(nFrom)},
                         run);
          EXPECT_EQ(coded.runs[n], run) << bWhole << ' ' << nSteps << ' ' << nCoarser << ' ' << n;
          nBytes += run.size();
        }
        EXPECT_EQ(coded.nBytes, nBytes);
      }
    }
  }
}

TEST(HeronBlockGroup, CoarsenessOutsideTheRange_CountsAsItsEnds) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  C_BlockGroup group(encoder, Blocks(encoder));
  for (const std::int64_t nMore : {1, 1000, 1000000000}) {
    EXPECT_EQ(group.Encode(group.Finest() - nMore).runs, group.Encode(group.Finest()).runs);
    EXPECT_EQ(group.Encode(group.Coarsest() + nMore).runs, group.Encode(group.Coarsest()).runs);
  }
  EXPECT_GT(group.Encode(group.Finest()).nBytes, group.Encode(group.Coarsest()).nBytes * 10);
}

TEST(HeronBlockGroup, TheFinest_GivesEverySampleBack) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  C_BlockGroup group(encoder, Blocks(encoder));
  const auto coded = group.Encode(group.Finest());
  S_Sound decoded(450);
  ASSERT_TRUE(C_BlockDecoder(kRate).Decode(coded.runs[0], decoded));
  EXPECT_GT(test::SignalToNoise(TestVoice(450), decoded), 80);
}

TEST(HeronBlockGroup, Offsets_BecomeCoarsenessAndBack) {
  C_BlockEncoder encoder(kRate, kBitDepth);
  C_BlockGroup group(encoder, Blocks(encoder));
  for (int nOffset = -12 * 1024; nOffset <= 18 * 1024; nOffset += 16) {
    EXPECT_EQ(group.ToOffset(group.FromOffset(nOffset)), nOffset);
  }
  EXPECT_EQ(group.FromOffset(-12 * 1024), group.Finest());
  EXPECT_EQ(group.FromOffset(18 * 1024), group.Coarsest());
}

}  // namespace
}  // namespace heron
