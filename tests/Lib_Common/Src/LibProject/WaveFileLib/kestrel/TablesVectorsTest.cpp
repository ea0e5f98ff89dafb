// SPDX-License-Identifier: Apache-2.0
#include "kestrel/TablesVectors.h"

#include <gtest/gtest.h>

#include "kestrel/TablesThresholds.h"
#include "kestrel/VectorCoder.h"

namespace kestrel {
namespace {

TEST(VectorTables, EveryVector_HasItsWordAndItsSigns) {
  EXPECT_EQ(kVectors, 1501u);
  for (std::size_t k = 0; k < kNoiseCategory; ++k) {
    for (std::size_t n = 0; n < kVectorCodes[k].size(); ++n) {
      const C_WrittenVector written = kWrittenVectors[kFirstVector[k] + n];
      const int nSigns = kCounts[written.Nonzero()];
      EXPECT_EQ(written.Word(), std::uint32_t{kVectorCodes[k][n].wWord} << nSigns) << k << ' ' << n;
      EXPECT_EQ(written.Bits(), kVectorCodes[k][n].byBits + nSigns) << k << ' ' << n;
      EXPECT_EQ(kVectorBits[kFirstVector[k] + n], written.Bits()) << k << ' ' << n;
    }
  }
}

TEST(VectorTables, Bins_AreTheDigitsOfAnIndex) {
  EXPECT_EQ(BinsOf(0, 13 * 14 + 5), (S_VectorBins{13, 5, 0, 0, 0}));
  EXPECT_EQ(BinsOf(3, 625 - 1), (S_VectorBins{4, 4, 4, 4, 0}));
  EXPECT_EQ(BinsOf(5, 81 + 2), (S_VectorBins{1, 0, 0, 0, 2}));
  EXPECT_EQ(BinsOf(6, 31), (S_VectorBins{1, 1, 1, 1, 1}));
}

TEST(VectorTables, Levels_AreTheCentroidsOfTheBins) {
  EXPECT_EQ(kVectorLevels[kFirstVector[5] + 81 + 2], (S_VectorLevels{6785, 0, 0, 0, 14300}));
  EXPECT_EQ(kVectorLevels[kFirstVector[0] + 1], (S_VectorLevels{0, 1606}));
}

TEST(SignTables, GatheredAndSpread_AreEachOthersInverse) {
  for (std::size_t nSet = 0; nSet < kSets; ++nSet) {
    for (std::size_t nPositive = 0; nPositive < kSets; ++nPositive) {
      const std::size_t nWritten = kGatheredSigns[nSet][nPositive];
      EXPECT_EQ(kSpreadSigns[nSet][nWritten], nPositive & nSet);
      const std::size_t nOtherBits = 31u << kCounts[nSet] & 31u;
      EXPECT_EQ(kSpreadSigns[nSet][nWritten | nOtherBits], nPositive & nSet);
    }
  }
}

TEST(SignTables, TheFirstSign_IsWrittenHighest) {
  EXPECT_EQ(kGatheredSigns[0b10110][0b00010], 0b100);
  EXPECT_EQ(kGatheredSigns[0b10110][0b10000], 0b001);
  EXPECT_EQ(kSpreadSigns[0b10110][0b100], 0b00010);
}

TEST(SignTables, TheFirstZero_TakesTheLowestBitOfTheNoise) {
  EXPECT_EQ(kSpreadNoise[0b01001][0b01], 0b00001);
  EXPECT_EQ(kSpreadNoise[0b01001][0b10], 0b01000);
  EXPECT_EQ(kSpreadNoise[0b01001][0b11100], 0);
  EXPECT_EQ(kSpreadNoise[0b11111][0b10101], 0b10101);
}

// The next 16 bits, with the first one highest; no code word is longer.
int NextBit(unsigned int& nBits) {
  const int nBit = static_cast<int>(nBits >> 15 & 1);
  nBits <<= 1;
  return nBit;
}

TEST(LookUps, AllWordsOfThePowerSteps_LeadToTheSymbolOfTheTree) {
  for (std::size_t r = 0; r < kPowerStepTrees.size(); ++r) {
    for (unsigned int nWord = 0; nWord < 0x10000; ++nWord) {
      const S_LookedUpStep found = kPowerStepLookUps[r][nWord >> (16 - kPowerStepLookUpBits)];
      unsigned int nLeft = nWord;
      int nTaken = 0;
      const int nSymbol =
          DecodeSymbol(kPowerStepTrees[r], [&] { return ++nTaken, NextBit(nLeft); });
      if (found.byBits == 0) {
        EXPECT_GT(nTaken, kPowerStepLookUpBits);
      } else {
        ASSERT_EQ(found.bySymbolOrNode, nSymbol) << r << ' ' << nWord;
        ASSERT_EQ(found.byBits, nTaken) << r << ' ' << nWord;
      }
    }
  }
}

TEST(LookUps, AllWordsOfTheVectors_LeadToTheVectorOfTheTree) {
  for (std::size_t k = 0; k < kNoiseCategory; ++k) {
    for (unsigned int nWord = 0; nWord < 0x10000; ++nWord) {
      const C_LookedUpVector found = kVectorLookUps[k][nWord >> (16 - kVectorLookUpBits)];
      unsigned int nLeft = nWord;
      int nTaken = 0;
      const int nVector = DecodeSymbol(kVectorTrees[k], [&] { return ++nTaken, NextBit(nLeft); });
      if (found.Bits() == 0) {
        EXPECT_GT(nTaken, kVectorLookUpBits);
        EXPECT_GT(found.VectorOrNode(), 0u);
      } else {
        ASSERT_EQ(found.VectorOrNode(), kFirstVector[k] + Index(nVector)) << k << ' ' << nWord;
        ASSERT_EQ(found.Bits(), nTaken + kCounts[found.Nonzero()]) << k << ' ' << nWord;
        ASSERT_EQ(found.Nonzero(), kWrittenVectors[found.VectorOrNode()].Nonzero());
      }
    }
  }
}

TEST(Deviations, WithinTheirRange_NoBinComesOutAsZeroOrTooLarge) {
  const auto isPositive = [](int nLevel, int nDeviation) {
    const int nValue = nLevel * nDeviation >> 12;
    return nValue >= 1 && nValue <= 32767;
  };
  for (std::size_t k = 0; k < kNoiseCategory; ++k) {
    for (int nDeviation = 0; nDeviation <= 32767; ++nDeviation) {
      const bool bAll = isPositive(kCentroid[k][1], nDeviation) &&
                        isPositive(kCentroid[k][Index(kMaxBin[k])], nDeviation);
      const bool bInRange =
          nDeviation >= kDeviations[k].nLeast && nDeviation <= kDeviations[k].nMost;
      ASSERT_EQ(bInRange, bAll) << k << ' ' << nDeviation;
    }
  }
}

// The bin of a magnitude in the words of the quantiser: two products, each rounded down.
int BinOf(int nMagnitude, std::size_t nCategory, std::size_t nPowerEntry) {
  const int nInverse =
      (kStepSizeInverse[nCategory] * kStandardDeviationInverse[nPowerEntry] + 4096) >> 13;
  const int nLow = (nMagnitude * (nInverse & 3) + kDeadZoneLowBits[nCategory]) >> 2;
  const int nBin = (nMagnitude * (nInverse >> 2) + kDeadZone[nCategory] + nLow) >> 13;
  return std::min(nBin, kMaxBin[nCategory]);
}

TEST(Thresholds, EveryMagnitude_ExceedsAsManyAsItsBin) {
  for (std::size_t nEntry = 0; nEntry < kPowerEntries; ++nEntry) {
    for (std::size_t k = 0; k < kNoiseCategory; ++k) {
      const std::int16_t* pThresholds = kThresholds[nEntry].data() + kFirstThreshold[k];
      int nBin = 0;
      for (int nMagnitude = 0; nMagnitude <= 32767; ++nMagnitude) {
        while (nBin < kMaxBin[k] && nMagnitude > pThresholds[nBin]) ++nBin;
        ASSERT_EQ(nBin, BinOf(nMagnitude, k, nEntry + kLowestPowerEntry)) << nEntry << ' ' << k;
      }
    }
  }
}

}  // namespace
}  // namespace kestrel
