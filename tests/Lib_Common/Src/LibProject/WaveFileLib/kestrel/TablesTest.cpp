// SPDX-License-Identifier: Apache-2.0
//
// Compares the table entries with the formulas that the comments of the tables give.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <set>
#include <vector>

#include "VectorFiles.h"
#include "kestrel/TablesEnvelope.h"
#include "kestrel/TablesQuantiser.h"
#include "kestrel/TablesTransform.h"
#include "kestrel/TablesVectorCodes.h"

namespace kestrel {
namespace {

using std::numbers::pi;

void ExpectWindow(const S_Frame& window, double scale) {
  for (std::size_t n = 0; n < window.size(); ++n) {
    const double angle = (static_cast<double>(n) + 0.5) * pi / 640;
    EXPECT_NEAR(window[n], 32768 * scale * std::sin(angle), 1.0) << n;
  }
}

TEST(Tables, Windows_AreSines) {
  ExpectWindow(kAnalysisWindow, 0.559);
  ExpectWindow(kSynthesisWindow, 0.55222);
}

void ExpectCore(const std::array<std::array<std::int16_t, 10>, 10>& matrix, double scale) {
  for (std::size_t i = 0; i < 10; ++i) {
    for (std::size_t k = 0; k < 10; ++k) {
      const double angle =
          (static_cast<double>(i) + 0.5) * (static_cast<double>(k) + 0.5) * pi / 10;
      EXPECT_NEAR(matrix[i][k], 32768 * scale * std::cos(angle), 1.0) << i << ' ' << k;
    }
  }
}

TEST(Tables, Kernels_AreCosines) {
  ExpectCore(kAnalysisCore, 0.32);
  ExpectCore(kSynthesisCore, 0.9);
}

template <typename Passes>
void ExpectRotations(const Passes& passes, double scale) {
  std::size_t nHalfBlock = 10;
  for (const auto& pass : passes) {
    ASSERT_EQ(pass.size(), nHalfBlock);
    for (std::size_t i = 0; i < nHalfBlock; ++i) {
      const double angle =
          (2.0 * static_cast<double>(i) + 1) * pi / (8.0 * static_cast<double>(nHalfBlock));
      EXPECT_NEAR(pass[i].nCosine, scale * std::cos(angle), 1.0) << nHalfBlock << ' ' << i;
      EXPECT_NEAR(pass[i].nMinusSine, -scale * std::sin(angle), 1.0) << nHalfBlock << ' ' << i;
    }
    nHalfBlock *= 2;
  }
}

TEST(Tables, Rotations_TurnByTheAngleOfTheirPass) {
  ExpectRotations(kAnalysisRotations, 32768 * 0.91028);
  ExpectRotations(kSynthesisRotations, 16384 * 1.12469);
}

TEST(Tables, StandardDeviation_GrowsBySqrt2PerStep) {
  for (int n = 0; n <= 53; ++n) {
    const double deviation = std::pow(2.0, (n - 24) / 2.0);
    EXPECT_NEAR(kStandardDeviation[static_cast<std::size_t>(n)], deviation, 0.75) << n;
    EXPECT_NEAR(kStandardDeviationInverse[static_cast<std::size_t>(n)],
                std::min(32767.0, 32768 / deviation), 1.0)
        << n;
  }
  for (std::size_t n = 54; n < 64; ++n) EXPECT_EQ(kStandardDeviation[n], 0) << n;
}

TEST(Tables, QuantiserSteps_ShrinkBySqrt2PerCategory) {
  for (int k = 0; k < 7; ++k) {
    EXPECT_NEAR(kStepSizeInverse[static_cast<std::size_t>(k)], 8192 * std::pow(2.0, 1.5 - k / 2.0),
                4)
        << k;
  }
  EXPECT_NEAR(kDeadZone.front() / 8192.0, 0.3, 0.001);
  EXPECT_EQ(kDeadZone.back() / 8192.0, 0.5);
  EXPECT_NEAR(std::pow(2.0, -2.5), kNoiseFillFactor[0] / 32768.0, 0.0001);
  EXPECT_NEAR(std::pow(2.0, -2.0), kNoiseFillFactor[1] / 32768.0, 0.0001);
  EXPECT_NEAR(std::pow(2.0, -0.5), kNoiseFillFactor[2] / 32768.0, 0.0001);
}

TEST(Tables, PerCategoryConstants_AreThoseOfTheFormat) {
  EXPECT_EQ(kExpectedBits, (std::array{52, 47, 43, 37, 29, 22, 16, 0}));
  EXPECT_EQ(kVectorDimension, (std::array{2, 2, 2, 4, 4, 5, 5, 1}));
  EXPECT_EQ(kVectorsPerRegion, (std::array{10, 10, 10, 5, 5, 4, 4, 20}));
  EXPECT_EQ(kMaxBin, (std::array{13, 9, 6, 4, 3, 2, 1, 1}));
}

// The entries of a table in order, nested ones row by row.
void AddTo(std::vector<std::int16_t>& entries, int nEntry) {
  entries.push_back(static_cast<std::int16_t>(nEntry));
}
void AddTo(std::vector<std::int16_t>& entries, const S_Code& code) {
  AddTo(entries, code.byBits);
  AddTo(entries, code.wWord);
}
void AddTo(std::vector<std::int16_t>& entries, const S_Rotation& rotation) {
  AddTo(entries, rotation.nCosine);
  AddTo(entries, rotation.nMinusSine);
}
template <typename Row>
requires requires(const Row& row) { row.begin(); }
void AddTo(std::vector<std::int16_t>& entries, const Row& row) {
  for (const auto& entry : row) AddTo(entries, entry);
}

std::uint32_t CrcOf(const auto& table) {
  std::vector<std::int16_t> entries;
  AddTo(entries, table);
  return test::Crc32(entries);
}

// Speech does not use every entry: these tests also pin the entries that no stream of the tests
// uses.
TEST(Tables, EveryEntryOfTheTransform_IsTheStandards) {
  EXPECT_EQ(CrcOf(kAnalysisWindow), 0x2239E6C5u);
  EXPECT_EQ(CrcOf(kAnalysisBias), 0xFDB7821Fu);
  EXPECT_EQ(CrcOf(kAnalysisCore), 0x22F2670Fu);
  EXPECT_EQ(CrcOf(kAnalysisRotations), 0xE8AEFBBDu);
  EXPECT_EQ(CrcOf(kSynthesisWindow), 0xD863BFD5u);
  EXPECT_EQ(CrcOf(kSynthesisDither), 0xCC289F8Bu);
  EXPECT_EQ(CrcOf(kSynthesisCore), 0x64B687B3u);
  EXPECT_EQ(CrcOf(kSynthesisRotations), 0x0EFD401Du);
  EXPECT_EQ(CrcOf(kSynthesisBias), 0x41994AEFu);
}

TEST(Tables, EveryEntryOfEnvelopeAndQuantiser_IsTheStandards) {
  EXPECT_EQ(CrcOf(kStandardDeviation), 0x905F61ABu);
  EXPECT_EQ(CrcOf(kStandardDeviationInverse), 0x412E4909u);
  EXPECT_EQ(CrcOf(kPowerStepCodes), 0x7BF90A61u);
  EXPECT_EQ(CrcOf(kPowerStepTrees), 0x3A3AA809u);
  EXPECT_EQ(CrcOf(kStepSizeInverse), 0x652B91EEu);
  EXPECT_EQ(CrcOf(kDeadZone), 0x8C83BF11u);
  EXPECT_EQ(CrcOf(kDeadZoneLowBits), 0x355329A8u);
  EXPECT_EQ(CrcOf(kCentroid), 0x70B69064u);
  EXPECT_EQ(CrcOf(kNoiseFillFactor), 0x36640509u);
}

TEST(Tables, EveryVectorCodeAndTree_IsTheStandards) {
  constexpr std::array<std::uint32_t, 7> kCodes = {0xBC8925B4, 0xF5DDF575, 0xF994F3A1, 0xF454E8E5,
                                                   0xF6617860, 0x6E4A93DF, 0x4B139D01};
  constexpr std::array<std::uint32_t, 7> kTrees = {0x44A24C69, 0x610848C1, 0x4FF8CD91, 0xFDEDD49E,
                                                   0x3EE5B6A2, 0xAA161A04, 0x65B4A91F};
  for (std::size_t k = 0; k < kCodes.size(); ++k) {
    EXPECT_EQ(CrcOf(kVectorCodes[k]), kCodes[k]) << k;
    EXPECT_EQ(CrcOf(kVectorTrees[k]), kTrees[k]) << k;
  }
}

// The number of bins in a vector index that are not 0.
int NonZeroBins(int nIndex, int nBase) {
  int nCount = 0;
  for (; nIndex > 0; nIndex /= nBase) nCount += nIndex % nBase != 0 ? 1 : 0;
  return nCount;
}

TEST(Tables, VectorsThatShareACodeWord_HaveTheirZerosInCommon) {
  int nShared = 0;
  for (std::size_t k = 0; k < 7; ++k) {
    for (std::size_t n = 0; n < kVectorCodes[k].size(); ++n) {
      const S_Code code = kVectorCodes[k][n];
      const int nDecoded = DecodeSymbol(kVectorTrees[k], C_CodeWordBits(code));
      if (nDecoded == static_cast<int>(n)) continue;
      ++nShared;
      EXPECT_EQ(NonZeroBins(nDecoded, kMaxBin[k] + 1),
                NonZeroBins(static_cast<int>(n), kMaxBin[k] + 1))
          << k << ' ' << n;
    }
  }
  EXPECT_EQ(nShared, 15 + 6 + 1 + 105 + 47 + 51);
}

TEST(Tables, EveryLeafOfAVectorTree_IsAVectorThatIsCoded) {
  for (std::size_t k = 0; k < 7; ++k) {
    std::set<int> leaves;
    for (const auto& node : kVectorTrees[k]) {
      for (const int nNext : node) {
        if (nNext <= 0) leaves.insert(-nNext);
      }
    }
    EXPECT_EQ(leaves.size(), kVectorTrees[k].size() + 1) << k;
  }
}

}  // namespace
}  // namespace kestrel
