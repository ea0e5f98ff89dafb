// SPDX-License-Identifier: Apache-2.0
#include "heron/Lapping.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

#include "Instructions.h"
#include "Signals.h"
#include "heron/Transforms.h"

namespace heron {
namespace {

using std::numbers::pi;
using test::S_Sound;
using S_Values = std::vector<std::int32_t>;

constexpr double kOne = 1 << kWindowQ;
constexpr std::int32_t kLeast32 = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kMost32 = std::numeric_limits<std::int32_t>::max();

// Halves of all overlaps at rates in use, and of some others.
const std::vector<std::size_t> kHalves = {1,   2,   3,   10,  20,  27,  40,  55,  80,  110, 119,
                                          120, 160, 220, 238, 240, 320, 440, 480, 952, 960};

// ---- the window

TEST(HeronLaps, Factors_AreThoseOfTheWindow) {
  for (const std::size_t nHalf : kHalves) {
    const auto laps = MakeLaps(nHalf);
    ASSERT_EQ(laps.size(), nHalf);
    const auto window = [&](std::size_t n) {
      const double dSine =
          std::sin(pi * (static_cast<double>(n) + 0.5) / (4 * static_cast<double>(nHalf)));
      return kOne * std::sin(pi / 2 * dSine * dSine);
    };
    for (std::size_t i = 0; i < nHalf; ++i) {
      // Circle points are right to 8 units of Q30.
      ASSERT_NEAR(laps[i].nNear, window(nHalf + i), 8) << nHalf << ' ' << i;
      ASSERT_NEAR(laps[i].nFar, window(nHalf - 1 - i), 8) << nHalf << ' ' << i;
    }
  }
}

TEST(HeronLaps, SquaresOfBothFactors_AddUpToOne) {
  for (const std::size_t nHalf : kHalves) {
    for (const auto& [nNear, nFar] : MakeLaps(nHalf)) {
      const double dSquares = (std::pow(nNear, 2) + std::pow(nFar, 2)) / (kOne * kOne);
      ASSERT_NEAR(dSquares, 1, 16 / kOne) << nHalf;
    }
  }
}

TEST(HeronLaps, FactorsFromTheBoundaryOutwards_RiseAndFall) {
  for (const std::size_t nHalf : kHalves) {
    std::int32_t nNearBefore = 0;
    std::int32_t nFarBefore = 1 << kWindowQ;
    for (const auto& [nNear, nFar] : MakeLaps(nHalf)) {
      ASSERT_GT(nNear, nFar) << nHalf;
      ASSERT_GE(nNear, nNearBefore) << nHalf;
      ASSERT_LE(nFar, nFarBefore) << nHalf;
      ASSERT_GE(nFar, 0) << nHalf;
      ASSERT_LE(nNear, 1 << kWindowQ) << nHalf;
      nNearBefore = nNear;
      nFarBefore = nFar;
    }
  }
}

// ---- folding

TEST(HeronFold, WithoutOverlaps_ScalesTheSamples) {
  const S_Sound samples = {0, 1, -1, 32767, -32768, 5};
  S_Values folded(4);
  Fold(samples, {1, 4, {}, {}}, folded);
  EXPECT_EQ(folded, (S_Values{1 << kCoefficientQ, -(1 << kCoefficientQ),
                              32767 * (1 << kCoefficientQ), -32768 * (1 << kCoefficientQ)}));
}

TEST(HeronFold, AroundEitherEnd_AddsOrSubtractsTheMirroredSamples) {
  const S_Sound samples = test::Noise(60);
  const auto before = MakeLaps(5);
  const auto after = MakeLaps(10);
  S_Values folded(20);
  Fold(samples, {20, 20, before, after}, folded);
  for (std::size_t n = 0; n < 20; ++n) {
    double dExpected = samples[20 + n];
    if (n < 5) {
      const double dMirrored = samples[19 - n];
      dExpected = (dExpected * before[n].nNear + dMirrored * before[n].nFar) / kOne;
    }
    if (n >= 10) {
      const double dMirrored = samples[59 - n];
      dExpected = (dExpected * after[19 - n].nNear - dMirrored * after[19 - n].nFar) / kOne;
    }
    EXPECT_NEAR(folded[n] / std::exp2(kCoefficientQ), dExpected, std::exp2(-kCoefficientQ)) << n;
  }
}

TEST(HeronFold, Extremes_StayBelowTheBoundOfTheTransform) {
  constexpr std::int32_t kMostFolded = 46341 << kCoefficientQ;  // 2^15.5
  // The sum of both factors is largest at the boundary: nearly the square root of 2.
  for (const std::size_t nHalf : {std::size_t{1}, std::size_t{120}, std::size_t{960}}) {
    const auto laps = MakeLaps(nHalf);
    for (const int nSign : {1, -1}) {
      S_Sound samples(6 * nHalf, static_cast<std::int16_t>(nSign > 0 ? 32767 : -32768));
      S_Values folded(2 * nHalf);
      Fold(samples, {2 * nHalf, 2 * nHalf, laps, laps}, folded);
      for (const std::int32_t nValue : folded) ASSERT_LE(std::abs(nValue), kMostFolded) << nHalf;
      // The samples after the part have the other sign.
      for (std::size_t n = 4 * nHalf; n < samples.size(); ++n) {
        samples[n] = static_cast<std::int16_t>(nSign > 0 ? -32768 : 32767);
      }
      Fold(samples, {2 * nHalf, 2 * nHalf, laps, laps}, folded);
      for (const std::int32_t nValue : folded) ASSERT_LE(std::abs(nValue), kMostFolded) << nHalf;
      EXPECT_GT(std::abs(folded.back()), 38000 << kCoefficientQ) << nHalf;
    }
  }
}

TEST(HeronFold, WithInstructionsOfEveryKind_GivesTheSame) {
  const test::C_InstructionsKept kept;
  for (std::size_t nHalf = 1; nHalf <= 240; nHalf += nHalf < 40 ? 1 : 25) {
    const auto before = MakeLaps(nHalf);
    const auto after = MakeLaps((nHalf + 1) / 2);
    S_Sound samples = test::Noise(4 * nHalf, nHalf);
    for (std::size_t n = 0; n < samples.size(); n += 3) samples[n] = -32768;
    for (const S_Lapped& part :
         {S_Lapped{nHalf, 2 * nHalf, before, after}, S_Lapped{nHalf, 2 * nHalf, {}, before},
          S_Lapped{0, 2 * nHalf, {}, after}, S_Lapped{2 * nHalf, 2 * nHalf, before, {}}}) {
      vcm::LimitInstructions(vcm::tagInstructions::kPlain);
      S_Values plain(2 * nHalf);
      Fold(samples, part, plain);
      for (const auto eWidest : test::kAllInstructions) {
        vcm::LimitInstructions(eWidest);
        // Nothing is written after the part.
        S_Values fast(2 * nHalf + 8, 77);
        Fold(samples, part, std::span(fast).first(2 * nHalf));
        ASSERT_TRUE(std::equal(plain.begin(), plain.end(), fast.begin())) << nHalf;
        ASSERT_EQ(S_Values(fast.end() - 8, fast.end()), S_Values(8, 77)) << nHalf;
      }
    }
  }
}

TEST(HeronUnfold, FoldedSamples_ComeBack) {
  for (const std::size_t nHalf : kHalves) {
    const S_Sound samples = test::Noise(4 * nHalf, nHalf);
    const auto laps = MakeLaps(nHalf);
    S_Values values(4 * nHalf);
    Fold(samples, {0, 2 * nHalf, {}, laps}, std::span(values).first(2 * nHalf));
    Fold(samples, {2 * nHalf, 2 * nHalf, laps, {}}, std::span(values).last(2 * nHalf));
    Unfold(values, 2 * nHalf, laps);
    S_Sound back(samples.size());
    ToSamples(values, back);
    ASSERT_EQ(back, samples) << nHalf;
  }
}

TEST(HeronUnfold, LargestValues_WrapAround) {
  const auto laps = MakeLaps(2);
  // Rounded to the nearest integer, in the lowest 32 bits.
  const auto wrapped = [](std::int64_t nProducts) {
    const std::int64_t nRounded = (nProducts + (std::int64_t{1} << (kWindowQ - 1))) >> kWindowQ;
    return static_cast<std::int32_t>(nRounded & 0xFFFFFFFF);
  };
  for (const auto& [nBefore, nAfter] : {std::pair{kLeast32, kLeast32},
                                        {kLeast32, kMost32},
                                        {kMost32, kLeast32},
                                        {kMost32, kMost32},
                                        {kMost32, 0},
                                        {-5, 3}}) {
    S_Values values = {7, nBefore, nBefore, nAfter, nAfter, 8};
    Unfold(values, 3, laps);
    EXPECT_EQ(values.front(), 7);
    EXPECT_EQ(values.back(), 8);
    for (std::size_t i = 0; i < 2; ++i) {
      const std::int64_t nNear = laps[i].nNear;
      const std::int64_t nFar = laps[i].nFar;
      EXPECT_EQ(values[3 + i], wrapped(nAfter * nNear - nBefore * nFar));
      EXPECT_EQ(values[2 - i], wrapped(nBefore * nNear + nAfter * nFar));
    }
  }
}

TEST(HeronUnfold, WithInstructionsOfEveryKind_GivesTheSame) {
  const test::C_InstructionsKept kept;
  for (std::size_t nHalf = 1; nHalf <= 240; nHalf += nHalf < 40 ? 1 : 25) {
    const auto laps = MakeLaps(nHalf);
    test::C_Random random(nHalf);
    S_Values values(2 * nHalf + 10);
    for (std::int32_t& nValue : values) {
      // Values of all sizes; the largest wrap around.
      nValue = static_cast<std::int32_t>(random.Bits()) >> random.Below(32);
      if (random.Below(10) == 0) nValue = random.Below(2) == 0 ? kLeast32 : kMost32;
    }
    vcm::LimitInstructions(vcm::tagInstructions::kPlain);
    S_Values plain = values;
    Unfold(plain, nHalf + 5, laps);
    EXPECT_TRUE(std::equal(plain.begin(), plain.begin() + 5, values.begin())) << nHalf;
    EXPECT_TRUE(std::equal(plain.end() - 5, plain.end(), values.end() - 5)) << nHalf;
    for (const auto eWidest : test::kAllInstructions) {
      vcm::LimitInstructions(eWidest);
      S_Values fast = values;
      Unfold(fast, nHalf + 5, laps);
      ASSERT_EQ(fast, plain) << nHalf;
    }
  }
}

TEST(HeronUnfold, WithoutLaps_ChangesNothing) {
  S_Values values = {1, 2, 3, 4};
  Unfold(values, 2, {});
  EXPECT_EQ(values, (S_Values{1, 2, 3, 4}));
  Unfold(values, 0, {});
  EXPECT_EQ(values, (S_Values{1, 2, 3, 4}));
}

TEST(HeronToSamples, Values_AreRoundedAndLimitedTo16Bits) {
  constexpr std::int32_t kUnit = 1 << kCoefficientQ;
  const S_Values values = {0,
                           kUnit / 2,
                           kUnit / 2 - 1,
                           -kUnit / 2,
                           -kUnit / 2 - 1,
                           32767 * kUnit,
                           32768 * kUnit - kUnit / 2,
                           kMost32,
                           -32768 * kUnit,
                           -32769 * kUnit,
                           kLeast32};
  S_Sound samples(values.size());
  ToSamples(values, samples);
  EXPECT_EQ(samples, (S_Sound{0, 1, 0, 0, -1, 32767, 32767, 32767, -32768, -32768, -32768}));
}

TEST(HeronToSamples, FewerSamplesThanValues_AreTheFirst) {
  const S_Values values = {1 << kCoefficientQ, 2 << kCoefficientQ, 3 << kCoefficientQ};
  S_Sound samples(2);
  ToSamples(values, samples);
  EXPECT_EQ(samples, (S_Sound{1, 2}));
}

// ---- with the transform

// A block of parts of these sizes, there and back without quantisation.
S_Sound ThereAndBack(const S_Sound& samples, std::size_t nUnitLength,
                     const std::vector<S_Part>& parts) {
  C_Transforms transforms(nUnitLength);
  S_Values values(samples.size());
  const auto part = [&](std::size_t n) {
    return std::span(values).subspan(parts[n].nUnit * nUnitLength, parts[n].Units() * nUnitLength);
  };
  for (std::size_t n = 0; n < parts.size(); ++n) {
    S_Lapped lapped{parts[n].nUnit * nUnitLength, parts[n].Units() * nUnitLength, {}, {}};
    if (n > 0) lapped.before = transforms.Between(parts[n - 1], parts[n]);
    if (n + 1 < parts.size()) lapped.after = transforms.Between(parts[n], parts[n + 1]);
    Fold(samples, lapped, part(n));
    if (parts[n].kind != E_PartKind::kPlain) transforms.Dct(parts[n].nSize).Transform(part(n));
  }
  for (std::size_t n = 0; n < parts.size(); ++n) {
    if (parts[n].kind != E_PartKind::kPlain) transforms.Dct(parts[n].nSize).Transform(part(n));
    if (n == 0) continue;
    Unfold(values, parts[n].nUnit * nUnitLength, transforms.Between(parts[n - 1], parts[n]));
  }
  S_Sound back(samples.size());
  ToSamples(values, back);
  return back;
}

// A loud sound may be off by one where the parts are long, and an impulse by two.
void ExpectAlmost(const S_Sound& back, const S_Sound& samples) {
  ASSERT_EQ(back.size(), samples.size());
  for (std::size_t n = 0; n < samples.size(); ++n) ASSERT_NEAR(back[n], samples[n], 2) << n;
}

TEST(HeronLapping, EveryPairOfSizes_GivesTheSamplesBack) {
  for (const std::size_t nUnitLength : {20u, 40u, 54u, 110u, 240u}) {
    for (std::size_t nFirst = 0; nFirst < kPartSizes; ++nFirst) {
      for (std::size_t nSecond = 0; nSecond < kPartSizes; ++nSecond) {
        const std::vector<S_Part> parts = {{0, nFirst}, {std::size_t{1} << nFirst, nSecond}};
        for (const auto& [strName, samples] : test::SoundsOf(parts.back().End() * nUnitLength)) {
          SCOPED_TRACE(strName);
          ASSERT_NO_FATAL_FAILURE(ExpectAlmost(ThereAndBack(samples, nUnitLength, parts), samples))
              << nUnitLength << ' ' << nFirst << ' ' << nSecond;
        }
      }
    }
  }
}

TEST(HeronLapping, RandomParts_GiveTheSamplesBack) {
  test::C_Random random(1);
  for (int nRound = 0; nRound < 30; ++nRound) {
    const std::size_t nUnitLength = 2 * (10 + random.Below(111));
    std::vector<S_Part> parts;
    for (std::size_t nUnit = 0; parts.size() < 12; nUnit = parts.back().End()) {
      const bool bPlain = random.Below(4) == 0;
      const std::size_t nSize = bPlain ? 0 : random.Below(kPartSizes);
      parts.push_back({nUnit, nSize, bPlain ? E_PartKind::kPlain : E_PartKind::kNear});
    }
    const S_Sound samples = test::Noise(parts.back().End() * nUnitLength, nUnitLength);
    ASSERT_NO_FATAL_FAILURE(ExpectAlmost(ThereAndBack(samples, nUnitLength, parts), samples))
        << nRound;
  }
}

TEST(HeronTransforms, Overlaps_AreHalfTheShorterPartAndNoneBesidePlainOnes) {
  const C_Transforms transforms(20);
  const S_Part plain{0, 0, E_PartKind::kPlain};
  for (std::size_t nFirst = 0; nFirst < kPartSizes; ++nFirst) {
    for (std::size_t nSecond = 0; nSecond < kPartSizes; ++nSecond) {
      for (const E_PartKind kind : {E_PartKind::kNear, E_PartKind::kSteady, E_PartKind::kSilent}) {
        const std::size_t nHalf = std::size_t{10} << std::min(nFirst, nSecond);
        const S_Part first{0, nFirst};
        const S_Part second{8, nSecond, kind};
        EXPECT_EQ(transforms.Between(first, second).size(), nHalf);
        EXPECT_EQ(transforms.Between(second, first).size(), nHalf);
        EXPECT_TRUE(transforms.Between(plain, second).empty());
        EXPECT_TRUE(transforms.Between(second, plain).empty());
      }
    }
  }
}

}  // namespace
}  // namespace heron
