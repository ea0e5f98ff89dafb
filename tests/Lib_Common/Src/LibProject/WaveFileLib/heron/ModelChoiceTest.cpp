// SPDX-License-Identifier: Apache-2.0
#include "heron/ModelChoice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "Codes.h"
#include "Instructions.h"
#include "Signals.h"
#include "heron/Coefficients.h"

namespace heron {
namespace {

using test::C_Random;
using S_Values = std::vector<std::int32_t>;

// The choice by its description: coefficient after coefficient, both models.
template <typename T_Below>
std::uint64_t SlowPrice(const S_Values& levels, const C_PartsBefore& before) {
  T_Below below;
  std::uint64_t qwSum = 0;
  for (std::size_t k = 0; k < levels.size(); ++k) {
    const std::uint32_t nExpectation = before.Expectation(k) + below.Expectation();
    const auto [nTable, nShift] = ClassOf(std::min(nExpectation, (1U << 24) - 1));
    const std::int32_t nTop = std::min(levels[k] >> nShift, 15);
    const int nBits = nShift + (levels[k] != 0 ? 1 : 0);
    const int nCost = test::CostsOf(ModelOf<T_Below>(), 0, nTable)[static_cast<std::size_t>(nTop)];
    qwSum += static_cast<std::uint64_t>(nCost + 256 * nBits);
    below = below.Then(2 * levels[k]);
  }
  return qwSum;
}

class HeronModelChoice : public testing::TestWithParam<vcm::tagInstructions> {
 protected:
  HeronModelChoice() { vcm::LimitInstructions(GetParam()); }

 private:
  test::C_InstructionsKept m_kept;
};
INSTANTIATE_TEST_SUITE_P(Kinds, HeronModelChoice, testing::ValuesIn(test::kAllInstructions));

TEST_P(HeronModelChoice, TheModel_IsTheCheaperOne) {
  C_Random random(5);
  C_PartsBefore before(20);
  C_ModelChoice choice(160);
  int nSteady = 0;
  constexpr int kRounds = 300;
  for (int nRound = 0; nRound < kRounds; ++nRound) {
    const std::size_t nSize = random.Below(kPartSizes);
    const std::size_t nLength = std::size_t{20} << nSize;
    const int nIndex = 20 + static_cast<int>(random.Below(20));
    // Noise, or a falling spectrum.
    const bool bNoise = nRound % 20 < 10;
    S_Values values(nLength);
    for (std::size_t k = 0; k < nLength; ++k) {
      const std::int64_t nLargest = bNoise ? 60000 : 900000 / static_cast<std::int64_t>(k + 1);
      values[k] = static_cast<std::int32_t>(random.Between(-nLargest, nLargest));
    }
    const bool bSteady = choice.Begin(values, nIndex, nSize, before);
    S_Values levels(nLength);
    RoundToLevels(values, nIndex, levels);
    C_PartsBefore near = before;
    near.BeginNear(nIndex, nLength);
    C_PartsBefore steady = before;
    steady.BeginSteady(nIndex, nSize);
    EXPECT_EQ(bSteady,
              SlowPrice<C_SteadyBelow>(levels, steady) < SlowPrice<C_NearBelow>(levels, near))
        << nRound;
    for (std::size_t k = 0; k < nLength; ++k) {
      ASSERT_EQ(before.Expectation(k), (bSteady ? steady : near).Expectation(k)) << nRound;
    }
    nSteady += bSteady ? 1 : 0;
    for (std::int32_t& nLevel : levels) nLevel *= 2;
    before.End(nIndex, nSize, levels);
  }
  EXPECT_GT(nSteady, kRounds / 10);
  EXPECT_LT(nSteady, kRounds * 9 / 10);
}

}  // namespace
}  // namespace heron
