// SPDX-License-Identifier: Apache-2.0
#include "heron/Dct4.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <set>

#include "Instructions.h"
#include "Signals.h"
#include "heron/Configuration.h"

namespace heron {
namespace {

using S_Values = std::vector<std::int32_t>;
using S_Reals = std::vector<double>;

constexpr double kUnit = 1 << kCoefficientQ;
// The largest folded sample: full scale times the sum of a sine and a cosine, at an eighth of a
// turn.
constexpr double kMostFolded = 32768 * std::numbers::sqrt2;
constexpr auto kMost = static_cast<std::int32_t>(kMaxCoefficient);

// The definition of the transform.
S_Reals Direct(const S_Reals& in) {
  const std::size_t nLength = in.size();
  // Eighths of a turn divided by the length.
  S_Reals turn(8 * nLength);
  for (std::size_t n = 0; n < turn.size(); ++n) {
    turn[n] =
        std::cos(2 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(turn.size()));
  }
  const double dScale = std::sqrt(2.0 / static_cast<double>(nLength));
  S_Reals out(nLength);
  for (std::size_t k = 0; k < nLength; ++k) {
    double dSum = 0;
    for (std::size_t n = 0; n < nLength; ++n) {
      dSum += in[n] * turn[(2 * n + 1) * (2 * k + 1) % turn.size()];
    }
    out[k] = dScale * dSum;
  }
  return out;
}

S_Reals ToReals(const S_Values& values) {
  S_Reals reals;
  for (const std::int32_t nValue : values) reals.push_back(nValue / kUnit);
  return reals;
}

S_Values ToValues(const S_Reals& reals) {
  S_Values values;
  for (const double dReal : reals) {
    values.push_back(static_cast<std::int32_t>(std::lround(dReal * kUnit)));
  }
  return values;
}

// The largest distance between values and what they should be, in the unit of samples.
double LargestError(const S_Values& values, const S_Reals& expected) {
  double dLargest = 0;
  for (std::size_t n = 0; n < values.size(); ++n) {
    dLargest = std::max(dLargest, std::abs(values[n] / kUnit - expected[n]));
  }
  return dLargest;
}

// How far the results may be off. Each pass rounds by half a unit, about as often up as down, so
// that the errors add up like noise. Rotations have 30 bits.
double Bound(const S_Reals& expected) {
  double dLargest = 0;
  for (const double dReal : expected) dLargest = std::max(dLargest, std::abs(dReal));
  const double dNoise = 4 + 1.5 * std::sqrt(static_cast<double>(expected.size()));
  return dNoise / kUnit + dLargest * std::exp2(-27);
}

S_Values Transformed(S_Values values) {
  C_Dct4(values.size()).Transform(values);
  return values;
}

S_Reals Noise(std::size_t nLength, double dMost) {
  test::C_Random random(nLength);
  S_Reals reals(nLength);
  for (double& dReal : reals) {
    dReal = dMost * static_cast<double>(random.Between(-1000000, 1000000)) / 1e6;
  }
  return reals;
}

// The loudest values whose coefficient k is as large as possible.
S_Reals LoudestFor(std::size_t nLength, std::size_t k) {
  S_Reals reals(nLength);
  for (std::size_t n = 0; n < nLength; ++n) {
    const double dTurn = std::numbers::pi * (static_cast<double>(n) + 0.5) *
                         (static_cast<double>(k) + 0.5) / static_cast<double>(nLength);
    reals[n] = std::cos(dTurn) > 0 ? -kMostFolded : kMostFolded;
  }
  return reals;
}

// What no transform of real samples has to stand more than.
std::vector<S_Reals> Extremes(std::size_t nLength) {
  std::vector<S_Reals> all = {S_Reals(nLength, kMostFolded), S_Reals(nLength, -kMostFolded),
                              Noise(nLength, kMostFolded), S_Reals(nLength), S_Reals(nLength)};
  for (std::size_t n = 0; n < nLength; ++n) all[3][n] = n % 2 == 0 ? kMostFolded : -kMostFolded;
  all[4][nLength / 2] = kMostFolded;
  for (const std::size_t k : {std::size_t{0}, nLength / 3, nLength - 1}) {
    all.push_back(LoudestFor(nLength, k));
  }
  return all;
}

// The lengths of all parts at rates in use, and of units at some rates with large prime factors;
// and the shortest transforms.
std::vector<std::size_t> Lengths() {
  std::set<std::size_t> lengths = {2, 4, 6, 10, 14};
  for (const int nRate : {4000, 8000, 11025, 16000, 22050, 44100, 48000, 4201, 8300, 47990}) {
    for (std::size_t nSize = 0; nSize < kPartSizes; ++nSize) {
      lengths.insert(UnitLength(nRate) << nSize);
    }
  }
  return {lengths.begin(), lengths.end()};
}

class HeronDct4 : public testing::TestWithParam<std::size_t> {};
INSTANTIATE_TEST_SUITE_P(Lengths, HeronDct4, testing::ValuesIn(Lengths()));

TEST_P(HeronDct4, Noise_GetsTheCoefficientsOfTheDefinition) {
  for (const double dMost : {0.5, 100.0, kMostFolded}) {
    const S_Values values = ToValues(Noise(GetParam(), dMost));
    const S_Reals expected = Direct(ToReals(values));
    EXPECT_LE(LargestError(Transformed(values), expected), Bound(expected)) << dMost;
  }
}

TEST_P(HeronDct4, Extremes_StayExactAndBelowTheLargestCoefficient) {
  for (const S_Reals& samples : Extremes(GetParam())) {
    const S_Values values = ToValues(samples);
    const S_Reals expected = Direct(ToReals(values));
    const S_Values coefficients = Transformed(values);
    EXPECT_LE(LargestError(coefficients, expected), Bound(expected));
    for (const std::int32_t nValue : coefficients) ASSERT_LT(std::abs(nValue), kMaxCoefficient);
  }
}

TEST_P(HeronDct4, Twice_GivesTheValuesBack) {
  for (const S_Reals& samples : Extremes(GetParam())) {
    const S_Values values = ToValues(samples);
    // The coefficients of an impulse are alike, so half a unit of each may add up where it was.
    const double dImpulse = static_cast<double>(GetParam()) / 4 / kUnit;
    EXPECT_LE(LargestError(Transformed(Transformed(values)), ToReals(values)),
              2 * Bound(samples) + dImpulse);
  }
}

TEST_P(HeronDct4, OneLargestCoefficient_IsItsCosine) {
  for (const std::size_t k : {std::size_t{0}, GetParam() / 2, GetParam() - 1}) {
    for (const std::int32_t nValue : {kMost, -kMost}) {
      S_Values coefficients(GetParam());
      coefficients[k] = nValue;
      const S_Reals expected = Direct(ToReals(coefficients));
      EXPECT_LE(LargestError(Transformed(coefficients), expected), Bound(expected)) << k;
    }
  }
}

TEST_P(HeronDct4, AnyValues_AreTransformedWithoutAnyHarm) {
  // What such values become means nothing, but it must be the same every time.
  constexpr std::int32_t kLeast32 = std::numeric_limits<std::int32_t>::min();
  constexpr std::int32_t kMost32 = std::numeric_limits<std::int32_t>::max();
  std::vector<S_Values> all(5, S_Values(GetParam(), kMost32));
  test::C_Random random(1);
  for (std::size_t k = 0; k < GetParam(); ++k) {
    all[1][k] = kLeast32;
    if (k % 2 == 0) all[2][k] = kLeast32;
    if (random.Below(2) == 0) all[3][k] = kLeast32;
    all[4][k] = static_cast<std::int32_t>(random.Between(-kMost, kMost));
  }
  for (const S_Values& values : all) EXPECT_EQ(Transformed(values), Transformed(values));
}

TEST_P(HeronDct4, Zeros_StayZeros) {
  EXPECT_EQ(Transformed(S_Values(GetParam())), S_Values(GetParam()));
}

TEST_P(HeronDct4, AnObjectUsedAgain_GivesTheSame) {
  C_Dct4 dct(GetParam());
  EXPECT_EQ(dct.Length(), GetParam());
  const S_Values values = ToValues(Noise(GetParam(), kMostFolded));
  S_Values used = values;
  dct.Transform(used);
  dct.Transform(used);
  used = values;
  dct.Transform(used);
  EXPECT_EQ(used, Transformed(values));
}

// ---- the widths of vectors

TEST(HeronDct4Instructions, OfEveryKind_GiveTheSame) {
  const test::C_InstructionsKept kept;
  for (std::size_t nLength = 2; nLength <= kMaxPartLength; nLength += nLength < 500 ? 2 : 46) {
    std::vector<S_Values> all = {ToValues(Noise(nLength, kMostFolded)),
                                 ToValues(Noise(nLength, 3))};
    // Values that wrap around.
    test::C_Random random(nLength);
    all.emplace_back(nLength);
    for (std::int32_t& nValue : all.back()) nValue = static_cast<std::int32_t>(random.Bits() >> 32);
    all.emplace_back(nLength, std::numeric_limits<std::int32_t>::min());
    for (const S_Values& values : all) {
      vcm::LimitInstructions(vcm::tagInstructions::kPlain);
      const S_Values plain = Transformed(values);
      for (const auto eWidest : test::kAllInstructions) {
        vcm::LimitInstructions(eWidest);
        ASSERT_EQ(Transformed(values), plain) << nLength;
      }
    }
  }
}

}  // namespace
}  // namespace heron
