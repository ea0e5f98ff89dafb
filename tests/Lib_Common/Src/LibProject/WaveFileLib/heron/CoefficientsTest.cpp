// SPDX-License-Identifier: Apache-2.0
//
// Sums over coefficients, with all kinds of instructions.
#include "heron/Coefficients.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include "Codes.h"
#include "Instructions.h"
#include "Signals.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using test::C_Random;
using S_Values = std::vector<std::int32_t>;

// No coefficient of a sound is larger: full scale in all samples that a part of 1920 sees.
const auto kMost = static_cast<std::int32_t>(32768 * std::sqrt(2 * 1920.0) * 256);
// No multiple of eight, so that some coefficients are left over.
constexpr std::size_t kLengths[] = {0, 1, 7, 8, 9, 20, 44, 163, 1920};

// Coefficients of all sizes; some are zero and some the largest.
S_Values RandomValues(C_Random& random, std::size_t nLength) {
  S_Values values(nLength);
  for (std::int32_t& nValue : values) {
    nValue = static_cast<std::int32_t>(random.Between(-kMost, kMost)) >> random.Below(31);
    if (random.Below(20) == 0) nValue = random.Below(2) == 0 ? kMost : -kMost;
  }
  return values;
}

class HeronCoefficients : public testing::TestWithParam<vcm::tagInstructions> {
 protected:
  HeronCoefficients() { vcm::LimitInstructions(GetParam()); }

 private:
  test::C_InstructionsKept m_kept;
};
INSTANTIATE_TEST_SUITE_P(Kinds, HeronCoefficients, testing::ValuesIn(test::kAllInstructions));

TEST_P(HeronCoefficients, SumsOfSquares_AreExact) {
  C_Random random(1);
  for (const std::size_t nLength : kLengths) {
    // Together they must stay below 2^64: 1920 squares of 2^26.
    S_Values values = RandomValues(random, nLength);
    for (std::int32_t& nValue : values) nValue >>= 3;
    std::uint64_t qwSum = 0;
    for (const std::int64_t nValue : values) qwSum += static_cast<std::uint64_t>(nValue * nValue);
    EXPECT_EQ(SumOfSquares(values), qwSum) << nLength;
  }
  // The energy of a part of full scale is 1920 * 2^46, in whatever coefficients it is.
  EXPECT_EQ(SumOfSquares(S_Values(1920, 1 << 23)), std::uint64_t{1920} << 46);
  EXPECT_EQ(SumOfSquares(S_Values(16, -(1 << 29))), std::uint64_t{1} << 62);
}

TEST_P(HeronCoefficients, SumsOfLogs_AreNearTheSumsOfLogarithms) {
  C_Random random(2);
  for (const int nIndex : {0, 1, 5, 12, 30, 71}) {
    for (const std::size_t nLength : kLengths) {
      S_Values values = RandomValues(random, nLength);
      double dSum = 0;
      for (std::int32_t& nValue : values) {
        // Quotients are limited to 2^20.
        nValue = static_cast<std::int32_t>(std::clamp<std::int64_t>(
            nValue, -(std::int64_t{HalfStep(nIndex)} << 19), std::int64_t{HalfStep(nIndex)} << 19));
        dSum += 256 * std::log2(1 + std::abs(nValue) / static_cast<double>(HalfStep(nIndex)));
      }
      // The straight line is up to 0.086 of an octave below the logarithm. Rounding down to 16ths
      // takes less than 0.09 and to 256ths of a bit less than 0.004 from each.
      const auto dActual = static_cast<double>(SumOfLogs(values, nIndex));
      EXPECT_LE(dActual, dSum + 0.01) << nIndex << ' ' << nLength;
      EXPECT_GE(dActual, dSum - 0.18 * 256 * static_cast<double>(nLength))
          << nIndex << ' ' << nLength;
    }
  }
}

TEST_P(HeronCoefficients, LogsOfPowersOfTwo_AreExact) {
  for (int nOctave = 0; nOctave < 19; ++nOctave) {
    // 1 + |c| / 32 is a power of two.
    const std::int32_t nValue = 32 * ((1 << nOctave) - 1);
    EXPECT_EQ(SumOfLogs(S_Values{nValue}, 0), 256 * nOctave) << nOctave;
    EXPECT_EQ(SumOfLogs(S_Values(24, -nValue), 0), 24 * 256 * nOctave) << nOctave;
  }
  EXPECT_EQ(SumOfLogs(S_Values(100), 40), 0);
}

TEST_P(HeronCoefficients, LargestCoefficients_DoNotOverflowTheirSums) {
  for (const int nIndex : {0, 35, 71}) {
    const S_Values one(1, kMost);
    const S_Values many(1920, -kMost);
    EXPECT_EQ(SumOfLogs(many, nIndex), 1920 * SumOfLogs(one, nIndex)) << nIndex;
  }
}

TEST_P(HeronCoefficients, Levels_AreTheNearestOrTheLower) {
  C_Random random(3);
  for (const int nIndex : {0, 3, 12, 40, 71}) {
    for (const std::size_t nLength : kLengths) {
      const S_Values values = RandomValues(random, nLength);
      S_Values levels(nLength + 1, -7);
      RoundToLevels(values, nIndex, std::span(levels).first(nLength));
      EXPECT_EQ(levels.at(nLength), -7);
      for (std::size_t k = 0; k < nLength; ++k) {
        const double dScaled = std::abs(values[k]) / static_cast<double>(HalfStep(nIndex));
        // The inverse of the half step has at least 14 bits, and levels are limited to 2^21.
        const double dLevel = std::min(dScaled, std::exp2(22)) / 2;
        ASSERT_LE(levels[k], dLevel + 0.4375 + 1e-9) << nIndex << ' ' << values[k];
        ASSERT_GT(levels[k], dLevel * (1 - 1 / 8192.0) - 0.5625 - 1 / 256.0)
            << nIndex << ' ' << values[k];
      }
    }
  }
}

TEST_P(HeronCoefficients, Prices_AreThoseOfTheLevelsWithoutEscapes) {
  C_Random random(4);
  for (std::size_t nModel = 0; nModel < kModels; ++nModel) {
    for (const std::size_t nLength : kLengths) {
      S_Values levels(nLength);
      std::vector<std::uint32_t> before(nLength);
      std::vector<std::uint32_t> below(nLength);
      std::uint64_t qwSum = 0;
      for (std::size_t k = 0; k < nLength; ++k) {
        levels[k] = static_cast<std::int32_t>(random.Below(1 << 21) >> random.Below(22));
        before[k] = 8 + (static_cast<std::uint32_t>(random.Bits() >> 33) >> random.Below(31));
        below[k] = static_cast<std::uint32_t>(random.Bits() >> 34) >> random.Below(30);
        // Expectations are limited to 24 bits.
        const auto [nTable, nShift] = ClassOf(std::min(before[k] + below[k], (1U << 24) - 1));
        const std::int32_t nTop = std::min(levels[k] >> nShift, 15);
        const int nBits = nShift + (levels[k] != 0 ? 1 : 0);
        const int nCost = test::CostsOf(nModel, 0, nTable)[static_cast<std::size_t>(nTop)];
        qwSum += 123 * static_cast<std::uint64_t>(nCost + 256 * nBits);
      }
      EXPECT_EQ(PriceOfLevels(levels, before.data(), below.data(), nModel), qwSum)
          << nModel << ' ' << nLength;
    }
  }
}

TEST_P(HeronCoefficients, TheHighestPrices_DoNotOverflowTheirSums) {
  constexpr std::size_t kLength = 1920;
  for (std::size_t nModel = 0; nModel < kModels; ++nModel) {
    for (const std::uint32_t nExpectation : {8U, 1U << 20, 1U << 24, 1U << 31}) {
      const S_Values levels(kLength, (1 << 21) + 1);
      const std::vector<std::uint32_t> before(kLength, nExpectation);
      const std::vector<std::uint32_t> below(kLength);
      const std::uint64_t qwOne =
          PriceOfLevels(std::span(levels).first(1), before.data(), below.data(), nModel);
      EXPECT_GT(qwOne, 0u);
      EXPECT_EQ(PriceOfLevels(levels, before.data(), below.data(), nModel), kLength * qwOne)
          << nModel << ' ' << nExpectation;
    }
  }
}

}  // namespace
}  // namespace heron
