// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Categories.h"

#include <gtest/gtest.h>

#include "VectorFiles.h"

namespace kestrel {
namespace {

using test::C_Stages;
using test::ToInts;

S_Envelope Flat(int nPower) {
  S_Envelope envelope;
  envelope.fill(nPower);
  return envelope;
}

class CategoriesAtRate : public testing::TestWithParam<std::uint32_t> {};

TEST_P(CategoriesAtRate, FramesOfSpeech_GiveTheirCategoriesAndBalances) {
  const C_Stages stages(GetParam());
  for (const int nFrame : stages.Frames()) {
    const auto result =
        Categorise(stages.Value(nFrame, "available_bits"),
                   stages.As<S_Envelope>(nFrame, "power_index"), stages.Configuration().nRegions);
    const auto& want = stages.Values(nFrame, "categories_high_rate");
    EXPECT_EQ(ToInts(result.categories, want.size()), want) << nFrame;
    EXPECT_EQ(ToInts(result.balances, 15), stages.Values(nFrame, "balances")) << nFrame;
  }
}

INSTANTIATE_TEST_SUITE_P(Rates, CategoriesAtRate, testing::ValuesIn(test::kStageRates));

TEST(Categorise, WithNothingLeftToCoarsen_KeepsCountingOnTheLastRegion) {
  S_Categorisation result = Categorise(-11, Flat(-15), 8);
  EXPECT_EQ(ToInts(result.categories, 8), std::vector(8, 7));
  EXPECT_EQ(ToInts(result.balances, 15), std::vector(15, 0));
  ApplyBalances(result, 15);
  EXPECT_EQ(result.categories[0], 22);
  EXPECT_EQ(RealCategory(result.categories[0]), 7);
}

TEST(Categorise, WithIndicesFarAboveTheTable_FindsNoCandidateToCoarsen) {
  const S_Categorisation result = Categorise(640, Flat(167), 14);
  EXPECT_EQ(ToInts(result.categories, 14), std::vector(14, 0));
  EXPECT_EQ(ToInts(result.balances, 15), std::vector(15, 0));
}

TEST(Categorise, WithIndicesFarBelowTheTable_RefinesTheFirstRegionBelowZero) {
  const S_Categorisation result = Categorise(640, Flat(-163), 14);
  EXPECT_EQ(result.categories[0], -8);
  EXPECT_EQ(RealCategory(result.categories[0]), 0);
  EXPECT_EQ(result.categories[1], 7);
  EXPECT_EQ(ToInts(result.balances, 15), std::vector(15, 0));
}

TEST(Categorise, Ties_RefineTheLowestAndCoarsenTheHighestRegion) {
  // All regions are equal, so every choice is a tie. Refinements come first in the list, beginning
  // with the most recent one.
  const S_Categorisation result = Categorise(100, Flat(0), 8);
  S_Categorisation applied = result;
  ApplyBalances(applied, 15);
  for (std::size_t r = 1; r < 8; ++r) {
    EXPECT_GE(result.categories[r], result.categories[r - 1]) << r;
    EXPECT_GE(applied.categories[r], applied.categories[r - 1]) << r;
  }
  EXPECT_NE(result.categories, applied.categories);
}

TEST(Categorise, BitsAbove320_CountFiveEighths) {
  // 328 and 329 bits both count as 325.
  S_Envelope envelope{};
  for (std::size_t r = 0; r < kMaxRegions; ++r) envelope[r] = static_cast<int>(20 - r);
  const auto at = [&](int nBits) { return Categorise(nBits, envelope, 14); };
  EXPECT_EQ(at(328).categories, at(329).categories);
  EXPECT_EQ(at(328).balances, at(329).balances);
  EXPECT_NE(at(640).categories, at(320).categories);
}

TEST(Categorise, EnvelopesOfAnyHeight_BalanceCodedRegionsOnly) {
  for (int nPower = -163; nPower <= 167; ++nPower) {
    for (const int nRegions : {8, 10, 12, 14}) {
      for (const int nBits : {-40, 0, 96, 320, 640}) {
        for (const int nRegion : Categorise(nBits, Flat(nPower), nRegions).balances) {
          ASSERT_TRUE(nRegion >= 0 && nRegion < nRegions) << nPower << ' ' << nBits;
        }
      }
    }
  }
}

TEST(ApplyBalances, Balances_AreAppliedToTheFirstOnesOnly) {
  S_Categorisation categorisation{};
  categorisation.balances = {3, 3, 5, 1};
  ApplyBalances(categorisation, 3);
  EXPECT_EQ(ToInts(categorisation.categories, 8), (std::vector{0, 0, 0, 2, 0, 1, 0, 0}));
}

TEST(RealCategory, RealCategory_IsTheNearestOfEight) {
  EXPECT_EQ(RealCategory(-3), 0);
  EXPECT_EQ(RealCategory(0), 0);
  EXPECT_EQ(RealCategory(7), 7);
  EXPECT_EQ(RealCategory(8), 7);
}

}  // namespace
}  // namespace kestrel
