// SPDX-License-Identifier: Apache-2.0
#include "heron/Dct4.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <set>

#include "Signals.h"
#include "heron/Configuration.h"

namespace heron {
namespace {

using S_Values = std::vector<std::int32_t>;
using S_Reals = std::vector<double>;

constexpr double kFoldedUnit = 1 << kFoldedQ;
constexpr double kUnfoldedUnit = 1 << kUnfoldedQ;
constexpr double kCoefficientUnit = 1 << kCoefficientQ;
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

S_Reals ToReals(const S_Values& values, double dUnit) {
  S_Reals reals;
  for (const std::int32_t nValue : values) reals.push_back(nValue / dUnit);
  return reals;
}

S_Values ToValues(const S_Reals& reals, double dUnit) {
  S_Values values;
  for (const double dReal : reals) {
    values.push_back(static_cast<std::int32_t>(std::lround(dReal * dUnit)));
  }
  return values;
}

// The largest distance between values and what they should be, in the unit of samples.
double LargestError(const S_Values& values, double dUnit, const S_Reals& expected) {
  double dLargest = 0;
  for (std::size_t n = 0; n < values.size(); ++n) {
    dLargest = std::max(dLargest, std::abs(values[n] / dUnit - expected[n]));
  }
  return dLargest;
}

// How far the results may be off. The arithmetic rounds down by units of dUnit, which may add up in
// one result, and rotations have 24 bits.
constexpr double kLeastBound = 1 / 64.0;
double Bound(const S_Reals& expected, double dUnit) {
  double dLargest = 0;
  for (const double dReal : expected) dLargest = std::max(dLargest, std::abs(dReal));
  return kLeastBound + static_cast<double>(expected.size()) / 4 / dUnit + dLargest * std::exp2(-23);
}

// What 32 bits can hold of unfolded values.
S_Reals Limited(S_Reals reals) {
  const double dMost = std::exp2(31) / kUnfoldedUnit;
  for (double& dReal : reals) dReal = std::clamp(dReal, -dMost, dMost);
  return reals;
}

S_Values Forward(S_Values values) {
  C_Dct4(values.size()).Forward(values);
  return values;
}
S_Values Inverse(S_Values values) {
  C_Dct4(values.size()).Inverse(values);
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

TEST_P(HeronDct4, Forward_GivesTheCoefficientsOfTheDefinition) {
  for (const double dMost : {0.5, 100.0, kMostFolded}) {
    const S_Values values = ToValues(Noise(GetParam(), dMost), kFoldedUnit);
    const S_Reals expected = Direct(ToReals(values, kFoldedUnit));
    EXPECT_LE(LargestError(Forward(values), kCoefficientUnit, expected),
              Bound(expected, kFoldedUnit))
        << dMost;
  }
}

TEST_P(HeronDct4, ForwardOfExtremes_StaysExactAndBelowTheLargestCoefficient) {
  for (const S_Reals& samples : Extremes(GetParam())) {
    const S_Values values = ToValues(samples, kFoldedUnit);
    const S_Reals expected = Direct(ToReals(values, kFoldedUnit));
    const S_Values coefficients = Forward(values);
    EXPECT_LE(LargestError(coefficients, kCoefficientUnit, expected), Bound(expected, kFoldedUnit));
    for (const std::int32_t nValue : coefficients) ASSERT_LT(std::abs(nValue), kMaxCoefficient);
  }
}

TEST_P(HeronDct4, Inverse_GivesTheValuesOfTheDefinition) {
  for (const double dMost : {0.5, 100.0, kMostFolded}) {
    const S_Values coefficients = ToValues(Noise(GetParam(), dMost), kCoefficientUnit);
    const S_Reals expected = Direct(ToReals(coefficients, kCoefficientUnit));
    EXPECT_LE(LargestError(Inverse(coefficients), kUnfoldedUnit, expected),
              Bound(expected, kUnfoldedUnit))
        << dMost;
  }
}

TEST_P(HeronDct4, InverseOfForward_GivesTheValuesBack) {
  for (const S_Reals& samples : Extremes(GetParam())) {
    const S_Values values = ToValues(samples, kFoldedUnit);
    EXPECT_LE(LargestError(Inverse(Forward(values)), kUnfoldedUnit, samples),
              kLeastBound + Bound(samples, kUnfoldedUnit));
  }
}

TEST_P(HeronDct4, InverseOfOneLargestCoefficient_IsItsCosine) {
  for (const std::size_t k : {std::size_t{0}, GetParam() / 2, GetParam() - 1}) {
    for (const std::int32_t nValue : {kMost, -kMost}) {
      S_Values coefficients(GetParam());
      coefficients[k] = nValue;
      const S_Reals expected = Direct(ToReals(coefficients, kCoefficientUnit));
      EXPECT_LE(LargestError(Inverse(coefficients), kUnfoldedUnit, Limited(expected)),
                Bound(expected, kUnfoldedUnit))
          << k;
    }
  }
}

TEST_P(HeronDct4, InverseOfManyLargestCoefficients_IsLimited) {
  std::vector<S_Values> all(4, S_Values(GetParam(), kMost));
  test::C_Random random(1);
  for (std::size_t k = 0; k < GetParam(); ++k) {
    all[1][k] = -kMost;
    if (k % 2 == 0) all[2][k] = -kMost;
    if (random.Below(2) == 0) all[3][k] = -kMost;
  }
  for (const S_Values& coefficients : all) {
    const S_Reals expected = Direct(ToReals(coefficients, kCoefficientUnit));
    EXPECT_LE(LargestError(Inverse(coefficients), kUnfoldedUnit, Limited(expected)),
              Bound(expected, kUnfoldedUnit));
  }
}

TEST_P(HeronDct4, Zeros_StayZeros) {
  EXPECT_EQ(Forward(S_Values(GetParam())), S_Values(GetParam()));
  EXPECT_EQ(Inverse(S_Values(GetParam())), S_Values(GetParam()));
}

TEST_P(HeronDct4, AnObjectUsedAgain_GivesTheSame) {
  C_Dct4 dct(GetParam());
  EXPECT_EQ(dct.Length(), GetParam());
  const S_Values values = ToValues(Noise(GetParam(), kMostFolded), kFoldedUnit);
  S_Values used = values;
  dct.Forward(used);
  dct.Inverse(used);
  used = values;
  dct.Forward(used);
  EXPECT_EQ(used, Forward(values));
}

}  // namespace
}  // namespace heron
