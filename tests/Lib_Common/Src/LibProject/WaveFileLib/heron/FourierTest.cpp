// SPDX-License-Identifier: Apache-2.0
#include "heron/Fourier.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>

#include "Signals.h"

namespace heron {
namespace {

using S_Points = std::vector<S_Complex>;

// The definition of the transform, in floating point.
std::vector<std::complex<double>> Direct(const S_Points& in) {
  const std::size_t nPoints = in.size();
  std::vector<std::complex<double>> turns(nPoints);
  for (std::size_t n = 0; n < nPoints; ++n) {
    turns[n] = std::polar(
        1.0, -2 * std::numbers::pi * static_cast<double>(n) / static_cast<double>(nPoints));
  }
  std::vector<std::complex<double>> out(nPoints);
  for (std::size_t k = 0; k < nPoints; ++k) {
    for (std::size_t n = 0; n < nPoints; ++n) {
      const std::complex<double> value(static_cast<double>(in[n].nRe),
                                       static_cast<double>(in[n].nIm));
      out[k] += value * turns[n * k % nPoints];
    }
  }
  return out;
}

// The largest distance of an output from its expected value.
double LargestError(S_Points points) {
  const auto expected = Direct(points);
  C_Fourier(static_cast<int>(points.size())).Transform(points);
  double dLargest = 0;
  for (std::size_t k = 0; k < points.size(); ++k) {
    const std::complex<double> value(static_cast<double>(points[k].nRe),
                                     static_cast<double>(points[k].nIm));
    dLargest = std::max(dLargest, std::abs(value - expected[k]));
  }
  return dLargest;
}

// Random points in a square whose sides are twice the amplitude.
S_Points RandomPoints(int nPoints, std::int64_t nAmplitude) {
  test::C_Random random(static_cast<std::uint64_t>(nPoints));
  S_Points points(static_cast<std::size_t>(nPoints));
  for (S_Complex& point : points) {
    point = {random.Between(-nAmplitude, nAmplitude), random.Between(-nAmplitude, nAmplitude)};
  }
  return points;
}

std::vector<int> Sizes() {
  std::vector<int> sizes = {80, 83, 110, 160, 220, 240, 360, 400, 441, 479, 480};
  for (int n = 1; n <= 50; ++n) sizes.push_back(n);
  return sizes;
}

// Rotations are Q24, so each value may be off by 2^-24 of itself in each pass. Rounding also takes
// less than a unit off each value, and that adds up.
double Bound(int nPoints, double dAmplitude) {
  return 4 + nPoints / 2.0 + nPoints * dAmplitude * std::exp2(-25);
}

TEST(HeronFourier, SmallValues_AreRightToUnits) {
  for (const int nPoints : Sizes()) {
    EXPECT_LE(LargestError(RandomPoints(nPoints, 1000)), Bound(nPoints, 1000)) << nPoints;
  }
}

TEST(HeronFourier, LargeValues_AreRightToTheRotationsPrecision) {
  // 480 values of modulus sqrt(2) * 2^28.5 add up to 2^37.9.
  constexpr double kAmplitude = 379625062;
  for (const int nPoints : Sizes()) {
    EXPECT_LE(LargestError(RandomPoints(nPoints, static_cast<std::int64_t>(kAmplitude))),
              Bound(nPoints, kAmplitude))
        << nPoints;
  }
}

TEST(HeronFourier, OneValue_TurnsThroughAllOutputs) {
  for (const int nPoints : {5, 12, 83, 441, 479, 480}) {
    for (const int nAt : {0, 1, nPoints / 2, nPoints - 1}) {
      S_Points points(static_cast<std::size_t>(nPoints), S_Complex{0, 0});
      points[static_cast<std::size_t>(nAt)] = {1 << 30, -(1 << 29)};
      EXPECT_LE(LargestError(points), 2 + std::exp2(31 - 23)) << nPoints << ' ' << nAt;
    }
  }
}

TEST(HeronFourier, EqualValues_MeetInTheFirstOutputAtTheMostThatFits) {
  for (const int nPoints : Sizes()) {
    // All values add up to 2^38.5, in one output.
    const auto nEach = static_cast<std::int64_t>(std::exp2(38.5) / nPoints);
    S_Points points(static_cast<std::size_t>(nPoints), S_Complex{-nEach, 0});
    C_Fourier(nPoints).Transform(points);
    EXPECT_EQ(points[0].nRe, -nEach * nPoints) << nPoints;
    EXPECT_EQ(points[0].nIm, 0) << nPoints;
    for (std::size_t k = 1; k < points.size(); ++k) {
      ASSERT_LE(std::abs(points[k].nRe), Bound(nPoints, 2 * static_cast<double>(nEach))) << nPoints;
      ASSERT_LE(std::abs(points[k].nIm), Bound(nPoints, 2 * static_cast<double>(nEach))) << nPoints;
    }
  }
}

TEST(HeronFourier, OnePoint_StaysAsItIs) {
  S_Points points = {{123456789, -987654321}};
  C_Fourier fourier(1);
  fourier.Transform(points);
  EXPECT_EQ(fourier.Points(), 1);
  EXPECT_EQ(points[0].nRe, 123456789);
  EXPECT_EQ(points[0].nIm, -987654321);
}

TEST(HeronFourier, OneObject_GivesTheSameEveryTime) {
  C_Fourier fourier(220);
  S_Points first = RandomPoints(220, 1000000);
  S_Points second = first;
  fourier.Transform(first);
  fourier.Transform(second);
  for (std::size_t k = 0; k < first.size(); ++k) {
    ASSERT_EQ(first[k].nRe, second[k].nRe) << k;
    ASSERT_EQ(first[k].nIm, second[k].nIm) << k;
  }
}

TEST(HeronRotation, QuartersOfATurn_AreExact) {
  constexpr std::int64_t kOne = std::int64_t{1} << kRotationQ;
  EXPECT_EQ(BackwardRotation(0, 4).nCosine, kOne);
  EXPECT_EQ(BackwardRotation(1, 4).nSine, -kOne);
  EXPECT_EQ(BackwardRotation(2, 4).nCosine, -kOne);
  EXPECT_EQ(BackwardRotation(3, 4).nSine, kOne);
}

TEST(HeronRotation, Rotate_TurnsBackwardsAndDivides) {
  const S_Complex turned = Rotate({100, 7}, BackwardRotation(1, 4));
  EXPECT_EQ(turned.nRe, 7);
  EXPECT_EQ(turned.nIm, -100);
  const S_Complex divided = Rotate<3>({800, -56}, BackwardRotation(0, 4));
  EXPECT_EQ(divided.nRe, 100);
  EXPECT_EQ(divided.nIm, -7);
}

TEST(HeronRotation, Rotate_TakesAllThatFits) {
  // |value| is 2^38.49; the sum of both products is largest at an eighth of a turn.
  const std::int64_t nPart = static_cast<std::int64_t>(std::exp2(37.99));
  const S_Complex turned = Rotate({nPart, nPart}, BackwardRotation(1, 8));
  EXPECT_NEAR(static_cast<double>(turned.nRe), std::exp2(38.49), std::exp2(38.49 - 22));
  EXPECT_NEAR(static_cast<double>(turned.nIm), 0, std::exp2(38.49 - 22));
}

}  // namespace
}  // namespace heron
