// SPDX-License-Identifier: Apache-2.0
//
// The code of one coefficient, and the state machine that chooses between the two quantisers.
#include "heron/MagnitudeCode.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Codes.h"
#include "Signals.h"
#include "heron/Quantiser.h"

namespace heron {
namespace {

using test::C_CodeReader;
using test::C_CodeWriter;
using test::ClassAt;
using test::ReadMagnitude;
using test::S_Bytes;
using test::WriteMagnitude;
using test::Written;

struct S_TableSet {
  std::size_t nModel;
  std::size_t nQuantiser;
};
constexpr S_TableSet kTableSets[] = {
    {test::kNear, 0}, {test::kNear, 1}, {test::kSteady, 0}, {test::kSteady, 1}};

// One expectation of each class up to 2^22.
std::vector<std::int32_t> Expectations() {
  std::vector<std::int32_t> expectations;
  for (int nOctave = 3; nOctave < 22; ++nOctave) {
    for (int nQuarter = 4; nQuarter < 8; ++nQuarter) {
      expectations.push_back(static_cast<std::int32_t>(nQuarter) << (nOctave - 2));
    }
  }
  return expectations;
}

std::vector<std::int32_t> Levels() {
  std::vector<std::int32_t> levels;
  for (std::int32_t n = 0; n <= 100; ++n) levels.push_back(n);
  for (int nBit = 7; nBit < 24; ++nBit) {
    for (const std::int32_t nOff : {-1, 0, 1}) levels.push_back((1 << nBit) + nOff);
  }
  levels.push_back((1 << 24) - 1);
  return levels;
}

// ---- classes

TEST(HeronMagnitudeClass, TheLeastExpectations_HaveTheFirstTables) {
  const std::size_t expected[] = {0, 0, 1, 1, 2, 2, 3, 3};
  for (int n = 0; n < 8; ++n) {
    EXPECT_EQ(ClassAt(8 + n).nTable, expected[n]) << n;
    EXPECT_EQ(ClassAt(8 + n).nShift, 0) << n;
  }
  EXPECT_EQ(ClassAt(16).nTable, 4u);
  EXPECT_EQ(ClassAt(19).nTable, 4u);
  EXPECT_EQ(ClassAt(20).nTable, 5u);
}

TEST(HeronMagnitudeClass, TwiceTheExpectation_IsFourTablesOrOneBitFurther) {
  for (std::int32_t n = 8; n < 1 << 19; ++n) {
    const auto [nTable, nShift] = ClassAt(n);
    const S_MagnitudeClass twice = ClassAt(2 * n);
    ASSERT_LT(nTable, kMagnitudeTables);
    if (twice.nShift == 0) {
      ASSERT_EQ(twice.nTable, nTable + 4) << n;
    } else {
      ASSERT_EQ(twice.nShift, nShift + 1) << n;
      ASSERT_GE(twice.nTable + 4, kMagnitudeTables) << n;
      ASSERT_EQ(twice.nTable % 4, nTable % 4) << n;
    }
  }
}

TEST(HeronMagnitudeClass, TheLargestExpectations_HaveOneToo) {
  for (const std::int32_t n : {1 << 29, 3 << 28, 2147483647}) {
    EXPECT_LT(ClassAt(n).nTable, kMagnitudeTables) << n;
    EXPECT_GE(ClassAt(n).nShift, 15) << n;
  }
  // The previous part and the coefficients below can together reach a value that needs all 32
  // bits.
  EXPECT_EQ(ClassOf(0x80000000u).nTable, 24u);
  EXPECT_EQ(ClassOf(0xFFFFFFFFu).nTable, 27u);
  EXPECT_EQ(ClassOf(0xFFFFFFFFu).nShift, 23);
  static_assert(kMaxRawBits >= 23);
}

TEST(HeronMagnitudeClass, AnyExpectation_HasTheClassOfItsQuarterOctave) {
  test::C_Random random(1);
  for (int n = 0; n < 200000; ++n) {
    const auto nExpectation =
        std::max(8U, static_cast<std::uint32_t>(random.Bits() >> 32) >> random.Below(29));
    int nOctave = 31;
    while (nExpectation >> nOctave == 0) --nOctave;
    // Quarters of an octave are equal parts of it, not equal ratios.
    const std::uint32_t nQuarter = (nExpectation >> (nOctave - 2)) - 4;
    const int nAbove = std::max(nOctave - kHighestOctave, 0);
    const auto [nTable, nShift] = ClassOf(nExpectation);
    ASSERT_EQ(nTable, static_cast<std::size_t>(4 * (nOctave - nAbove - 3)) + nQuarter)
        << nExpectation;
    ASSERT_EQ(nShift, nOctave < kHighestOctave ? 0 : nAbove + 1) << nExpectation;
  }
}

// ---- levels

TEST(HeronLevel, EveryLevelOfEveryClassAndQuantiser_ComesBackWithItsSign) {
  for (const S_TableSet& set : kTableSets) {
    for (const std::int32_t nExpectation : Expectations()) {
      const S_MagnitudeClass magnitudeClass = ClassAt(nExpectation);
      const auto levels = Levels();
      const S_Bytes bytes = Written([&](C_CodeWriter& writer) {
        for (const std::int32_t nLevel : levels) {
          WriteMagnitude(writer, set.nModel, set.nQuantiser, magnitudeClass, nLevel,
                         nLevel % 3 == 1);
        }
      });
      C_CodeReader reader(bytes);
      for (const std::int32_t nLevel : levels) {
        const auto read = ReadMagnitude(reader, set.nModel, set.nQuantiser, magnitudeClass);
        ASSERT_TRUE(read) << nExpectation << ' ' << nLevel;
        ASSERT_EQ(read->first, nLevel) << nExpectation;
        ASSERT_EQ(read->second, nLevel % 3 == 1) << nExpectation << ' ' << nLevel;
      }
      ASSERT_GE(reader.Unread(), 0);
    }
  }
}

// Measures how many bits 1000 copies of this level take.
double BitsOf(const S_TableSet& set, const S_MagnitudeClass& magnitudeClass, std::int32_t nLevel) {
  const S_Bytes bytes = Written([&](C_CodeWriter& writer) {
    for (int n = 0; n < 1000; ++n) {
      WriteMagnitude(writer, set.nModel, set.nQuantiser, magnitudeClass, nLevel, n % 2 == 0);
    }
  });
  return 8 * static_cast<double>(bytes.size());
}

TEST(HeronLevelCost, Cost_IsWhatTheLevelTakes) {
  for (const std::int32_t nExpectation : {8, 15, 30, 100, 255, 511, 512, 5000, 100000}) {
    const S_MagnitudeClass magnitudeClass = ClassAt(nExpectation);
    for (const S_TableSet& set : kTableSets) {
      const auto& costs = test::CostsOf(set.nModel, set.nQuantiser, magnitudeClass.nTable);
      for (const std::int32_t nLevel : {0, 1, 2, 3, 7, 14, 15, 16, 17, 100, 1000, 1 << 20}) {
        const double dCost = LevelCost(costs, magnitudeClass.nShift, nLevel) * 1000 / 256.0;
        // Costs are whole 256ths of a bit; the last bits of a sequence take up to 8 bytes.
        EXPECT_NEAR(BitsOf(set, magnitudeClass, nLevel), dCost, dCost / 100 + 4 + 64)
            << nExpectation << ' ' << set.nModel << ' ' << set.nQuantiser << ' ' << nLevel;
      }
    }
  }
}

TEST(HeronLevel, AnEscapeThatNeverEnds_IsRefused) {
  // Every possible symbol, followed by nothing but zero bits.
  int nRefused = 0;
  for (std::uint32_t nHigh = 0; nHigh < 65536; ++nHigh) {
    S_Bytes bytes = {static_cast<std::uint8_t>(nHigh >> 8), static_cast<std::uint8_t>(nHigh)};
    bytes.resize(20);
    C_CodeReader reader(bytes);
    nRefused += ReadMagnitude(reader, test::kNear, 0, ClassAt(8)) ? 0 : 1;
  }
  // The escape of the least expectation is the least likely symbol.
  EXPECT_GT(nRefused, 0);
  EXPECT_LT(nRefused, 100);
}

// ---- quantisers

TEST(HeronQuantiser, TheMachine_HasEightTransitions) {
  const std::size_t expected[4][2] = {{0, 2}, {2, 0}, {1, 3}, {3, 1}};
  for (std::size_t nState = 0; nState < kStates; ++nState) {
    for (unsigned short wLevel = 0; wLevel < 10; ++wLevel) {
      EXPECT_EQ(NextState(nState, wLevel), expected[nState][wLevel % 2]) << nState << ' ' << wLevel;
    }
  }
  EXPECT_EQ(kFirstState, 0u);
}

TEST(HeronQuantiser, StatesTwoAndThree_TakeTheSecond) {
  EXPECT_TRUE(QuantiserOf(0) == 0);
  EXPECT_TRUE(QuantiserOf(1) == 0);
  EXPECT_TRUE(QuantiserOf(2) == 1);
  EXPECT_TRUE(QuantiserOf(3) == 1);
}

TEST(HeronQuantiser, TheFirstHasEvenMultiples_TheSecondZeroAndOddOnes) {
  const std::int32_t expected[2][5] = {{0, 2, 4, 6, 8}, {0, 1, 3, 5, 7}};
  for (int nLevel = 0; nLevel < 5; ++nLevel) {
    EXPECT_EQ(HalfSteps(0, nLevel), expected[0][nLevel]);
    EXPECT_EQ(HalfSteps(1, nLevel), expected[1][nLevel]);
  }
  EXPECT_EQ(HalfSteps(1, 1 << 24), (1 << 25) - 1);
}

}  // namespace
}  // namespace heron
