// SPDX-License-Identifier: Apache-2.0
#include "kestrel/BasicOperators.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace kestrel {
namespace {

constexpr std::int16_t kMin16 = -32768;
constexpr std::int16_t kMax16 = 32767;
constexpr std::int32_t kMin32 = -2147483647 - 1;
constexpr std::int32_t kMax32 = 2147483647;

// The same limits, expressed in floating point: every value here is exact in a double.
int Limited16(double value) { return static_cast<int>(std::clamp(value, -32768.0, 32767.0)); }
std::int32_t Limited32(double value) {
  return static_cast<std::int32_t>(std::clamp(value, -2147483648.0, 2147483647.0));
}

template <typename Check>
void ForEach16(Check check) {
  for (int nValue = -32768; nValue <= 32767; ++nValue) check(static_cast<std::int16_t>(nValue));
}

const std::vector<std::int16_t>& Partners() {
  static const std::vector<std::int16_t> partners = {
      -32768, -32767, -32766, -23170, -16385, -16384, -16383, -12345, -257,  -256,  -255, -3,
      -2,     -1,     0,      1,      2,      3,      7,      127,    128,   255,   256,  1000,
      4096,   8191,   8192,   16383,  16384,  16385,  23170,  30000,  32765, 32766, 32767};
  return partners;
}

TEST(BasicOperators, AddAndSub_AtTheCorners_Saturate) {
  EXPECT_EQ(Add(kMax16, 1), kMax16);
  EXPECT_EQ(Add(kMin16, -1), kMin16);
  EXPECT_EQ(Add(kMin16, kMin16), kMin16);
  EXPECT_EQ(Add(kMax16, kMin16), -1);
  EXPECT_EQ(Sub(0, kMin16), kMax16);
  EXPECT_EQ(Sub(-1, kMin16), kMax16);
  EXPECT_EQ(Sub(kMin16, 1), kMin16);
  EXPECT_EQ(Sub(kMin16, kMin16), 0);
}

TEST(BasicOperators, NegAndMag_OfTheLowestValue_GiveTheHighest) {
  EXPECT_EQ(Neg(kMin16), kMax16);
  EXPECT_EQ(Mag(kMin16), kMax16);
  EXPECT_EQ(Neg(kMax16), -32767);
  EXPECT_EQ(Mag(kMax16), kMax16);
  EXPECT_EQ(Neg(0), 0);
  EXPECT_EQ(Neg(-1), 1);
  EXPECT_EQ(Mag(-1), 1);
}

TEST(BasicOperators, MulQ15_RoundsDownAndSaturatesOnlyAtMinusOneSquared) {
  EXPECT_EQ(MulQ15(kMin16, kMin16), kMax16);
  EXPECT_EQ(MulQ15(kMin16, kMax16), -32767);
  EXPECT_EQ(MulQ15(kMax16, kMax16), 32766);
  EXPECT_EQ(MulQ15(-1, 1), -1);
  EXPECT_EQ(MulQ15(1, 1), 0);
  EXPECT_EQ(MulQ15(0, kMin16), 0);
}

TEST(BasicOperators, LMul_DoublesAndSaturatesOnlyAtMinusOneSquared) {
  EXPECT_EQ(LMul(kMin16, kMin16), kMax32);
  EXPECT_EQ(LMul(kMin16, kMax16), -2147418112);
  EXPECT_EQ(LMul(kMax16, kMax16), 2147352578);
  EXPECT_EQ(LMul(-1, kMin16), 65536);
  EXPECT_EQ(LMul(-1, -1), 2);
  EXPECT_EQ(LMul(0, kMin16), 0);
}

TEST(BasicOperators, LMac_SaturatesAtEveryStep) {
  EXPECT_EQ(LMac(kMax32, 1, 1), kMax32);
  EXPECT_EQ(LMac(kMin32, 1, -1), kMin32);
  // If the sum were limited only at its end, it would come back to the highest value.
  EXPECT_EQ(LMac(LMac(kMax32, 1, 1), -1, 1), kMax32 - 2);
  EXPECT_EQ(LMac(-2, kMin16, kMin16), kMax32 - 2);
  EXPECT_EQ(LMac(0, 0, 0), 0);
}

TEST(BasicOperators, Round_RoundsTiesUpwardsAndSaturates) {
  EXPECT_EQ(Round(kMax32), kMax16);
  EXPECT_EQ(Round(kMax32 - 0x8000), kMax16);
  EXPECT_EQ(Round(kMin32), kMin16);
  EXPECT_EQ(Round(0x7FFF), 0);
  EXPECT_EQ(Round(0x8000), 1);
  EXPECT_EQ(Round(-0x8000), 0);
  EXPECT_EQ(Round(-0x8001), -1);
  EXPECT_EQ(Round(-1), 0);
}

TEST(BasicOperators, Shifts_AtTheCorners_Saturate) {
  EXPECT_EQ(Shl(kMax16, 1), kMax16);
  EXPECT_EQ(Shl(kMin16, 1), kMin16);
  EXPECT_EQ(Shl(-1, 15), kMin16);
  EXPECT_EQ(Shl(1, 15), kMax16);
  EXPECT_EQ(Shl(0, 15), 0);
  EXPECT_EQ(Shl(kMin16, 0), kMin16);
  EXPECT_EQ(LShl(kMax32, 1), kMax32);
  EXPECT_EQ(LShl(kMin32, 2), kMin32);
  EXPECT_EQ(LShl(-1, 31), kMin32);
  EXPECT_EQ(LShl(1, 31), kMax32);
  EXPECT_EQ(LShl(kMin32, 31), kMin32);
  EXPECT_EQ(LShl(kMin32, 0), kMin32);
}

TEST(BasicOperators, Norm_AtTheCorners) {
  EXPECT_EQ(Norm(0), 0);
  EXPECT_EQ(Norm(-1), 15);
  EXPECT_EQ(Norm(1), 14);
  EXPECT_EQ(Norm(kMax16), 0);
  EXPECT_EQ(Norm(kMin16), 0);
  EXPECT_EQ(Norm(-16384), 1);
  EXPECT_EQ(Norm(-16385), 0);
  EXPECT_EQ(Norm(16383), 1);
  EXPECT_EQ(Norm(16384), 0);
}

TEST(BasicOperators, Wrap16_KeepsTheLowBits) {
  EXPECT_EQ(Wrap16(32768), kMin16);
  EXPECT_EQ(Wrap16(-32769), kMax16);
  EXPECT_EQ(Wrap16(65536), 0);
  EXPECT_EQ(Wrap16(-1), -1);
  EXPECT_EQ(Wrap16(kMin32), 0);
  EXPECT_EQ(Wrap16(kMax32), -1);
}

TEST(BasicOperators, UnaryOperators_OnAll16BitValues_MatchTheWideForm) {
  ForEach16([](std::int16_t nA) {
    ASSERT_EQ(Neg(nA), Limited16(-1.0 * nA)) << nA;
    ASSERT_EQ(Mag(nA), Limited16(std::fabs(nA))) << nA;
    int nShifts = 0;
    const auto normal = [](int n) { return n >= 16384 || n < -16384; };
    if (nA != 0) {
      while (!normal(nA * (1 << nShifts))) ++nShifts;
    }
    ASSERT_EQ(Norm(nA), nShifts) << nA;
  });
}

TEST(BasicOperators, BinaryOperators_OnAll16BitValues_MatchTheWideForm) {
  for (const std::int16_t nB : Partners()) {
    ForEach16([nB](std::int16_t nA) {
      const double a = nA;
      const double b = nB;
      ASSERT_EQ(Add(nA, nB), Limited16(a + b)) << nA << ' ' << nB;
      ASSERT_EQ(Sub(nA, nB), Limited16(a - b)) << nA << ' ' << nB;
      ASSERT_EQ(Sub(nB, nA), Limited16(b - a)) << nA << ' ' << nB;
      ASSERT_EQ(MulQ15(nA, nB), Limited16(std::floor(a * b / 32768))) << nA << ' ' << nB;
      ASSERT_EQ(LMul(nA, nB), Limited32(2 * a * b)) << nA << ' ' << nB;
    });
  }
}

TEST(BasicOperators, Shl_OnAll16BitValuesAndCounts_MatchesTheWideForm) {
  for (int nBits = 0; nBits <= 15; ++nBits) {
    ForEach16([nBits](std::int16_t nA) {
      ASSERT_EQ(Shl(nA, nBits), Limited16(std::ldexp(nA, nBits))) << nA << ' ' << nBits;
    });
  }
}

TEST(BasicOperators, WideOperators_OnASweepOf32Bits_MatchTheWideForm) {
  std::mt19937 random(1);
  for (int n = 0; n < 1000000; ++n) {
    // Shifted by a random count, so that small and large values are equally frequent.
    const auto nSum = static_cast<std::int32_t>(random()) >> (random() % 32);
    const auto nA = static_cast<std::int16_t>(static_cast<std::int32_t>(random()) >> 16);
    const auto nB = static_cast<std::int16_t>(static_cast<std::int32_t>(random()) >> 16);
    const auto nBits = static_cast<int>(random() % 32);
    ASSERT_EQ(LMac(nSum, nA, nB), Limited32(nSum + 2.0 * nA * nB)) << nSum;
    ASSERT_EQ(LShl(nSum, nBits), Limited32(std::ldexp(nSum, nBits))) << nSum << ' ' << nBits;
    ASSERT_EQ(Round(nSum), Limited16(std::floor((nSum + 32768.0) / 65536))) << nSum;
    const double wrapped = nSum - 65536.0 * std::floor((nSum + 32768.0) / 65536);
    ASSERT_EQ(Wrap16(nSum), static_cast<int>(wrapped)) << nSum;
  }
}

}  // namespace
}  // namespace kestrel
