// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Noise.h"

#include <gtest/gtest.h>

#include "VectorFiles.h"

namespace kestrel {
namespace {

using test::ToInts;
using S_Coefficients = std::array<std::int16_t, kRegionSize>;

TEST(NextNoise, FreshGenerator_GivesItsFirstNumbers) {
  S_NoiseGenerator generator;
  std::vector<int> numbers;
  for (int n = 0; n < 9; ++n) numbers.push_back(NextNoise(generator));
  EXPECT_EQ(numbers, (std::vector{2, 3, 4, 5, 7, 10, 14, 19, 26}));
  EXPECT_EQ(ToInts(generator.seeds, 4), (std::vector{26, 19, 14, 10}));
}

TEST(NextNoise, Overflow_WrapsAndANegativeSumGainsOne) {
  S_NoiseGenerator generator{{32767, 0, 0, 1}};
  EXPECT_EQ(NextNoise(generator), -32767);
  generator.seeds = {-1, 0, 0, 0};
  EXPECT_EQ(NextNoise(generator), 0);
  generator.seeds = {-32768, 0, 0, -1};
  EXPECT_EQ(NextNoise(generator), 32767);
}

TEST(FillWithNoise, CodedCategories_StayAsTheyAreAndUseNoNumber) {
  for (int nCategory = 0; nCategory <= 4; ++nCategory) {
    S_NoiseGenerator generator;
    S_Coefficients region{};
    FillWithNoise(generator, nCategory, 1000, region);
    EXPECT_EQ(region, S_Coefficients{}) << nCategory;
    EXPECT_EQ(ToInts(generator.seeds, 4), (std::vector{1, 1, 1, 1})) << nCategory;
  }
}

TEST(FillWithNoise, NoiseCategory_ReplacesEverythingWithOneNumberPerHalf) {
  S_NoiseGenerator generator;  // 2 = ...0010, then 3 = ...0011
  S_Coefficients region;
  region.fill(77);
  FillWithNoise(generator, 7, 1000, region);
  EXPECT_EQ(ToInts(region, 20),
            (std::vector{-707, 707, -707, -707, -707, -707, -707, -707, -707, -707,  //
                         707,  707, -707, -707, -707, -707, -707, -707, -707, -707}));
  EXPECT_EQ(ToInts(generator.seeds, 4), (std::vector{3, 2, 1, 1}));
}

TEST(FillWithNoise, SparseCategories_FillZerosAndOnlyZerosUseUpASign) {
  S_NoiseGenerator generator;
  S_Coefficients region{};
  region[0] = 5;
  region[10] = -6;
  region[12] = 7;
  FillWithNoise(generator, 5, 1000, region);
  EXPECT_EQ(ToInts(region, 20),
            (std::vector{5,  -176, 176, -176, -176, -176, -176, -176, -176, -176,  //
                         -6, 176,  7,   176,  -176, -176, -176, -176, -176, -176}));
  S_Coefficients other{};
  FillWithNoise(generator, 6, 1000, other);
  EXPECT_EQ(other[2], 250);
  EXPECT_EQ(ToInts(generator.seeds, 4), (std::vector{5, 4, 3, 2}));
}

TEST(FillWithNoise, NoDeviation_FillsWithZerosAndUsesTwoNumbers) {
  S_NoiseGenerator generator;
  S_Coefficients region;
  region.fill(9);
  FillWithNoise(generator, 7, 0, region);
  EXPECT_EQ(region, S_Coefficients{});
  EXPECT_EQ(generator.seeds[0], 3);
}

}  // namespace
}  // namespace kestrel
