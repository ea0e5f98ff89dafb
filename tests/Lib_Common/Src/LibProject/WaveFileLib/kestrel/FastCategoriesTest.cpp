// SPDX-License-Identifier: Apache-2.0
#include "kestrel/FastCategories.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace kestrel {
namespace {

// Envelopes of a spread of 1 to 40 indices, so that there are many equal choices in some.
S_Envelope AnyEnvelope(std::mt19937& random, int nRegions) {
  constexpr int kPowers = kHighestPower - kLowestPower + 1;
  const int nSpread = 1 + static_cast<int>(random() % kPowers);
  const int nLowest = kLowestPower + static_cast<int>(random()) % (kPowers - nSpread + 1);
  S_Envelope envelope{};
  for (int r = 0; r < nRegions; ++r) {
    const int nAbove = static_cast<int>(random() % static_cast<unsigned int>(nSpread));
    envelope[Index(r)] = std::clamp(nLowest + nAbove, kLowestPower, kHighestPower);
  }
  return envelope;
}

void ExpectTheSame(int nAvailableBits, const S_Envelope& envelope, int nRegions) {
  const S_Categorisation want = Categorise(nAvailableBits, envelope, nRegions);
  const S_Categorisation fast = CategoriseValid(nAvailableBits, envelope, nRegions);
  EXPECT_EQ(fast.categories, want.categories) << nAvailableBits;
  EXPECT_EQ(fast.balances, want.balances) << nAvailableBits;
}

class FastCategoriesTest : public testing::TestWithParam<int> {};

TEST_P(FastCategoriesTest, AnyEnvelopeAndAnyBits_GiveWhatTheSearchFinds) {
  std::mt19937 random(static_cast<unsigned int>(GetParam()));
  for (int n = 0; n < 5000 && !HasFailure(); ++n) {
    const int nAvailableBits = static_cast<int>(random() % 800) - 130;
    ExpectTheSame(nAvailableBits, AnyEnvelope(random, GetParam()), GetParam());
  }
}

TEST_P(FastCategoriesTest, FlatEnvelopes_GiveWhatTheSearchFindsForAllBits) {
  for (int nPower = kLowestPower; nPower <= kHighestPower && !HasFailure(); ++nPower) {
    S_Envelope envelope{};
    std::fill_n(envelope.begin(), GetParam(), nPower);
    for (int nBits = -130; nBits <= 640; ++nBits) ExpectTheSame(nBits, envelope, GetParam());
  }
}

TEST_P(FastCategoriesTest, SteepestEnvelopes_GiveWhatTheSearchFindsForAllBits) {
  S_Envelope alternating{};
  S_Envelope single{};
  for (int r = 0; r < GetParam(); ++r) {
    alternating[Index(r)] = r % 2 == 0 ? kLowestPower : kHighestPower;
    single[Index(r)] = r == GetParam() / 2 ? kHighestPower : kLowestPower;
  }
  for (int nBits = -130; nBits <= 640 && !HasFailure(); ++nBits) {
    ExpectTheSame(nBits, alternating, GetParam());
    ExpectTheSame(nBits, single, GetParam());
  }
}

INSTANTIATE_TEST_SUITE_P(Regions, FastCategoriesTest, testing::Values(8, 10, 12, 14));

}  // namespace
}  // namespace kestrel
