// SPDX-License-Identifier: Apache-2.0
#include "heron/Fourier.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>

#include "Instructions.h"
#include "Signals.h"

namespace heron {
namespace {

using S_Points = std::vector<S_Complex>;

constexpr std::int32_t kLeast32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost32 = std::numeric_limits<std::int32_t>::max();

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
      const std::complex<double> value(in[n].nRe, in[n].nIm);
      out[k] += value * turns[n * k % nPoints];
    }
  }
  return out;
}

// The largest distance of an output from its expected value.
double LargestError(S_Points points) {
  const auto expected = Direct(points);
  C_Fourier(points.size()).Transform(points);
  double dLargest = 0;
  for (std::size_t k = 0; k < points.size(); ++k) {
    const std::complex<double> value(points[k].nRe, points[k].nIm);
    dLargest = std::max(dLargest, std::abs(value - expected[k]));
  }
  return dLargest;
}

// Random points in a square whose sides are twice the amplitude.
S_Points RandomPoints(std::size_t nPoints, std::int64_t nAmplitude) {
  test::C_Random random(nPoints);
  S_Points points(nPoints);
  for (S_Complex& point : points) {
    point.nRe = static_cast<std::int32_t>(random.Between(-nAmplitude, nAmplitude));
    point.nIm = static_cast<std::int32_t>(random.Between(-nAmplitude, nAmplitude));
  }
  return points;
}

std::vector<std::size_t> Sizes() {
  std::vector<std::size_t> sizes = {80,  83,  110, 160, 220, 240, 360, 400,
                                    441, 479, 480, 720, 880, 952, 960};
  for (std::size_t n = 1; n <= 50; ++n) sizes.push_back(n);
  return sizes;
}

// The largest values whose transform fits 32 bits wherever they meet.
std::int64_t MostOf(std::size_t nPoints) {
  return static_cast<std::int64_t>(std::exp2(30) / static_cast<double>(nPoints));
}

// Each pass rounds by half a unit, and the errors add up like noise. Rotations are Q30, so values
// are off by a little of themselves as well.
double Bound(std::size_t nPoints, double dAmplitude) {
  const auto dPoints = static_cast<double>(nPoints);
  return 1 + 4 * std::sqrt(dPoints) + dPoints * dAmplitude * std::exp2(-28);
}

TEST(HeronFourier, SmallValues_AreRightToUnits) {
  for (const std::size_t nPoints : Sizes()) {
    EXPECT_LE(LargestError(RandomPoints(nPoints, 1000)), Bound(nPoints, 1000)) << nPoints;
  }
}

TEST(HeronFourier, LargeValues_AreRightToTheRotationsPrecision) {
  for (const std::size_t nPoints : Sizes()) {
    const std::int64_t nMost = MostOf(nPoints);
    EXPECT_LE(LargestError(RandomPoints(nPoints, nMost)),
              Bound(nPoints, static_cast<double>(nMost)))
        << nPoints;
  }
}

TEST(HeronFourier, OneValue_TurnsThroughAllOutputs) {
  for (const std::size_t nPoints : {5u, 12u, 83u, 441u, 479u, 480u, 960u}) {
    for (const std::size_t nAt : {std::size_t{0}, std::size_t{1}, nPoints / 2, nPoints - 1}) {
      S_Points points(nPoints, S_Complex{0, 0});
      points[nAt] = {1 << 29, -(1 << 28)};
      EXPECT_LE(LargestError(points), 24) << nPoints << ' ' << nAt;
    }
  }
}

TEST(HeronFourier, EqualValues_MeetInTheFirstOutputAtTheMostThatFits) {
  for (const std::size_t nPoints : Sizes()) {
    // All values add up to nearly -2^31, in one output.
    const std::int32_t nEach = kMost32 / static_cast<std::int32_t>(nPoints);
    S_Points points(nPoints, S_Complex{-nEach, 0});
    C_Fourier(nPoints).Transform(points);
    EXPECT_EQ(points[0].nRe, -nEach * static_cast<std::int32_t>(nPoints)) << nPoints;
    EXPECT_EQ(points[0].nIm, 0) << nPoints;
    for (std::size_t k = 1; k < points.size(); ++k) {
      ASSERT_LE(std::abs(points[k].nRe), Bound(nPoints, nEach)) << nPoints;
      ASSERT_LE(std::abs(points[k].nIm), Bound(nPoints, nEach)) << nPoints;
    }
  }
}

TEST(HeronFourier, OnePoint_StaysAsItIs) {
  S_Points points = {{123456789, -987654321}};
  C_Fourier fourier(1);
  fourier.Transform(points);
  EXPECT_EQ(fourier.Points(), 1u);
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

// ---- complex numbers

TEST(HeronComplex, SumsThatDoNotFit_WrapAround) {
  EXPECT_EQ(Add32(kMost32, 1), kLeast32);
  EXPECT_EQ(Subtract32(kLeast32, 1), kMost32);
  EXPECT_EQ(Subtract32(0, kLeast32), kLeast32);
  const S_Complex sum = Sum({kMost32, kLeast32}, {kMost32, kLeast32});
  EXPECT_EQ(sum.nRe, -2);
  EXPECT_EQ(sum.nIm, 0);
  const S_Complex difference = Difference({kLeast32, 5}, {1, 7});
  EXPECT_EQ(difference.nRe, kMost32);
  EXPECT_EQ(difference.nIm, -2);
}

TEST(HeronComplex, TimesMinusI_IsAQuarterOfATurnBackwards) {
  const S_Complex turned = TimesMinusI({100, 7});
  EXPECT_EQ(turned.nRe, 7);
  EXPECT_EQ(turned.nIm, -100);
  EXPECT_EQ(TimesMinusI({kLeast32, 0}).nIm, kLeast32);
}

TEST(HeronComplex, Products_AreRoundedAndHalvesUpwards) {
  constexpr std::int32_t kHalf = 1 << (kRotationQ - 1);
  EXPECT_EQ(FromProduct(Product(3, kHalf)), 2);
  EXPECT_EQ(FromProduct(Product(-3, kHalf)), -1);
  EXPECT_EQ(FromProduct(Product(3, kHalf - 1)), 1);
  EXPECT_EQ(FromProduct(Product(kLeast32, 1 << kRotationQ)), kLeast32);
}

TEST(HeronRotation, QuartersOfATurn_AreExact) {
  constexpr std::int32_t kOne = 1 << kRotationQ;
  EXPECT_EQ(BackwardRotation(0, 4).nCosine, kOne);
  EXPECT_EQ(BackwardRotation(1, 4).nSine, -kOne);
  EXPECT_EQ(BackwardRotation(2, 4).nCosine, -kOne);
  EXPECT_EQ(BackwardRotation(3, 4).nSine, kOne);
}

TEST(HeronRotation, Rotate_TurnsBackwards) {
  const S_Complex turned = Rotate({100, 7}, BackwardRotation(1, 4));
  EXPECT_EQ(turned.nRe, 7);
  EXPECT_EQ(turned.nIm, -100);
}

TEST(HeronRotation, Rotate_TakesAllThatFits) {
  // The sum of both products is largest at an eighth of a turn: 1.5 * 2^30 times the root of 2.
  constexpr std::int32_t kPart = 3 << 29;
  const S_Complex turned = Rotate({kPart, kPart}, BackwardRotation(1, 8));
  EXPECT_NEAR(turned.nIm, 0, 8);
  constexpr std::int32_t kHalfPart = kPart / 2;
  const S_Complex fitting = Rotate({kHalfPart, kHalfPart}, BackwardRotation(1, 8));
  EXPECT_NEAR(fitting.nRe, kHalfPart * std::numbers::sqrt2, 8);
}

// ---- the widths of vectors

TEST(HeronFourierInstructions, OfEveryKind_GiveTheSame) {
  const test::C_InstructionsKept kept;
  for (const std::size_t nPoints : Sizes()) {
    // The last amplitude makes all passes wrap around.
    for (const std::int64_t nAmplitude :
         {std::int64_t{5}, MostOf(nPoints), std::int64_t{kMost32}}) {
      const S_Points points = RandomPoints(nPoints, nAmplitude);
      vcm::LimitInstructions(vcm::tagInstructions::kPlain);
      S_Points plain = points;
      C_Fourier(nPoints).Transform(plain);
      for (const auto eWidest : test::kAllInstructions) {
        vcm::LimitInstructions(eWidest);
        S_Points fast = points;
        C_Fourier(nPoints).Transform(fast);
        for (std::size_t k = 0; k < nPoints; ++k) {
          ASSERT_EQ(fast[k].nRe, plain[k].nRe) << nPoints << ' ' << k;
          ASSERT_EQ(fast[k].nIm, plain[k].nIm) << nPoints << ' ' << k;
        }
      }
    }
  }
}

}  // namespace
}  // namespace heron
