// SPDX-License-Identifier: Apache-2.0
#include "heron/StepPath.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "Signals.h"
#include "heron/PartSyntax.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using S_Wishes = std::vector<S_StepWish>;
using S_Indices = std::vector<int>;

// What is lost where an index is not the one that the part would like, in units of 1/256 bit: five
// for each coefficient and squared index.
std::int64_t Loss(const S_StepWish& wish, int nIndex) {
  const std::int64_t nOff = std::int64_t{nIndex} * 256 - wish.nIndex;
  return nOff * nOff / 256 * 5 * static_cast<std::int64_t>(wish.nLength) / 256;
}

constexpr int kNone = -1;  // no index before the first one

std::int64_t CostOf(const S_Wishes& wishes, const S_Indices& indices, int nBefore) {
  std::int64_t nCost = 0;
  for (std::size_t n = 0; n < wishes.size(); ++n) {
    nCost += Loss(wishes[n], indices[n]);
    if (nBefore != kNone) nCost += IndexCost(indices[n] - nBefore);
    nBefore = indices[n];
  }
  return nCost;
}

// The least cost of all paths through indices that are at most nReach away from the wishes.
class C_AllPaths {
 public:
  C_AllPaths(const S_Wishes& wishes, int nReach, int nBefore)
      : m_wishes(wishes), m_nReach(nReach), m_nBefore(nBefore) {
    Try({});
  }
  [[nodiscard]] std::int64_t Least() const { return m_nLeast; }

 private:
  void Try(const S_Indices& path) {
    if (path.size() == m_wishes.size()) {
      m_nLeast = std::min(m_nLeast, CostOf(m_wishes, path, m_nBefore));
      return;
    }
    const int nWanted = (m_wishes[path.size()].nIndex + 128) >> 8;
    const int nFirst = std::clamp(nWanted - m_nReach, 0, kSteps - 1);
    const int nLast = std::clamp(nWanted + m_nReach, 0, kSteps - 1);
    for (int nIndex = nFirst; nIndex <= nLast; ++nIndex) {
      S_Indices longer = path;
      longer.push_back(nIndex);
      Try(longer);
    }
  }

  const S_Wishes& m_wishes;
  int m_nReach;
  int m_nBefore;
  std::int64_t m_nLeast = std::numeric_limits<std::int64_t>::max();
};

S_Wishes RandomWishes(std::uint64_t qwSeed, std::size_t nParts, std::size_t nUnitLength,
                      int nSpread) {
  test::C_Random random(qwSeed);
  const auto nMiddle = random.Between(-1000, kSteps * 256 + 1000);
  S_Wishes wishes;
  for (std::size_t n = 0; n < nParts; ++n) {
    wishes.push_back({static_cast<int>(nMiddle + random.Between(-nSpread, nSpread)),
                      nUnitLength << random.Below(kPartSizes)});
  }
  return wishes;
}

// ---- what a difference takes

TEST(HeronIndexCost, Differences_TakeTheBitsOfTheirSymbol) {
  for (int nDifference = -71; nDifference <= 71; ++nDifference) {
    const bool bEscaped = std::abs(nDifference) > 15;
    const std::size_t nSymbol = bEscaped ? 31 : static_cast<std::size_t>(nDifference) + 15;
    const double dBits = 15 - std::log2(kIndexFrequencies[nSymbol]) + (bEscaped ? 7 : 0);
    EXPECT_NEAR(IndexCost(nDifference), 256 * dBits, 1.01) << nDifference;
  }
}

TEST(HeronIndexCost, NoDifference_TakesLeast) {
  for (int nDifference = -71; nDifference <= 71; ++nDifference) {
    EXPECT_GE(IndexCost(nDifference), IndexCost(0)) << nDifference;
  }
}

// ---- the path

TEST(HeronStepPath, OfShortSequences_IsTheBestOfAllPaths) {
  for (const int nSpread : {0, 100, 1000, 6000}) {
    for (std::uint64_t qwSeed = 1; qwSeed <= 60; ++qwSeed) {
      const S_Wishes wishes = RandomWishes(qwSeed, 1 + qwSeed % 4, 20, nSpread);
      const int nNear = std::clamp(wishes[0].nIndex / 256 + 5, 0, kSteps - 1);
      for (const int nBefore : {kNone, 0, nNear, kSteps - 1}) {
        const S_Indices indices = ChooseSteps(wishes, nBefore);
        ASSERT_EQ(indices.size(), wishes.size());
        EXPECT_EQ(CostOf(wishes, indices, nBefore), C_AllPaths(wishes, 4, nBefore).Least())
            << nSpread << ' ' << qwSeed << ' ' << nBefore;
      }
    }
  }
}

TEST(HeronStepPath, OfLongParts_IsTheBestOfAllIndices) {
  // Parts of 100 coefficients lose more with an index that is 5 away than any difference takes.
  for (std::uint64_t qwSeed = 1; qwSeed <= 6; ++qwSeed) {
    const S_Wishes wishes = RandomWishes(qwSeed, 2, 100, 6000);
    for (const int nBefore : {kNone, 30}) {
      EXPECT_EQ(CostOf(wishes, ChooseSteps(wishes, nBefore), nBefore),
                C_AllPaths(wishes, 200, nBefore).Least())
          << qwSeed << ' ' << nBefore;
    }
  }
}

TEST(HeronStepPath, OfNoParts_IsEmpty) { EXPECT_TRUE(ChooseSteps({}, kNone).empty()); }

TEST(HeronStepPath, OfOnePart_IsItsWishRounded) {
  EXPECT_EQ(ChooseSteps(S_Wishes{{20 * 256, 40}}, kNone), S_Indices{20});
  EXPECT_EQ(ChooseSteps(S_Wishes{{20 * 256 + 127, 40}}, kNone), S_Indices{20});
  EXPECT_EQ(ChooseSteps(S_Wishes{{20 * 256 + 129, 40}}, kNone), S_Indices{21});
  EXPECT_EQ(ChooseSteps(S_Wishes{{20 * 256 - 127, 40}}, kNone), S_Indices{20});
  EXPECT_EQ(ChooseSteps(S_Wishes{{20 * 256 - 129, 40}}, kNone), S_Indices{19});
}

TEST(HeronStepPath, WishesOutsideTheRange_GetItsEnds) {
  for (const int nFar : {0, 1000, 20000, 100000}) {
    EXPECT_EQ(ChooseSteps(S_Wishes{{-nFar, 40}, {-nFar, 80}, {-nFar, 20}}, kNone),
              (S_Indices{0, 0, 0}))
        << nFar;
    const int nAbove = (kSteps - 1) * 256 + nFar;
    EXPECT_EQ(ChooseSteps(S_Wishes{{nAbove, 40}, {nAbove, 80}}, kNone),
              (S_Indices{kSteps - 1, kSteps - 1}))
        << nFar;
  }
}

TEST(HeronStepPath, EqualWishes_GetOneIndex) {
  const S_Wishes wishes(300, S_StepWish{17 * 256 + 30, 160});
  EXPECT_EQ(ChooseSteps(wishes, kNone), S_Indices(300, 17));
}

TEST(HeronStepPath, AShortPartBetweenLongOnes_TakesTheirIndex) {
  const S_Wishes wishes = {{20 * 256, 320}, {21 * 256, 20}, {20 * 256, 320}};
  EXPECT_EQ(ChooseSteps(wishes, kNone), (S_Indices{20, 20, 20}));
}

TEST(HeronStepPath, AShortPartAfterAnIndex_TakesIt) {
  const S_Wishes wishes = {{21 * 256, 20}};
  EXPECT_EQ(ChooseSteps(wishes, kNone), S_Indices{21});
  EXPECT_EQ(ChooseSteps(wishes, 20), S_Indices{20});
  EXPECT_EQ(ChooseSteps(wishes, 22), S_Indices{22});
  // A long part keeps its own.
  EXPECT_EQ(ChooseSteps(S_Wishes{{21 * 256, 1000}}, 20), S_Indices{21});
}

TEST(HeronStepPath, ALongPartThatDiffers_GetsItsOwn) {
  const S_Wishes wishes = {{20 * 256, 320}, {40 * 256, 320}, {20 * 256, 320}};
  EXPECT_EQ(ChooseSteps(wishes, kNone), (S_Indices{20, 40, 20}));
}

TEST(HeronStepPath, OfLongSequences_CostsNoMoreThanTheWishesRounded) {
  for (std::uint64_t qwSeed = 1; qwSeed <= 20; ++qwSeed) {
    const S_Wishes wishes = RandomWishes(qwSeed, 800, 40, 1500);
    S_Indices rounded;
    for (const S_StepWish& wish : wishes) {
      rounded.push_back(std::clamp((wish.nIndex + 128) >> 8, 0, kSteps - 1));
    }
    const S_Indices indices = ChooseSteps(wishes, kNone);
    for (const int nIndex : indices) {
      ASSERT_GE(nIndex, 0);
      ASSERT_LT(nIndex, kSteps);
    }
    EXPECT_LT(CostOf(wishes, indices, kNone), CostOf(wishes, rounded, kNone)) << qwSeed;
  }
}

}  // namespace
}  // namespace heron
