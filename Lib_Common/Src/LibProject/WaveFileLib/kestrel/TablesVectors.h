// SPDX-License-Identifier: Apache-2.0
//
// What the vectors of TablesVectorCodes.h mean, ready for use: all that writing or reading a vector
// asks for stands in tables by category and vector index. All are made from the codes when
// TablesVectors.cpp is compiled; the compiler's own interpreter takes a while for them.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "kestrel/Configuration.h"
#include "kestrel/Envelope.h"
#include "kestrel/TablesEnvelope.h"
#include "kestrel/TablesVectorCodes.h"
#include "kestrel/Transform.h"

namespace kestrel {

inline constexpr std::size_t kMostDimensions = 5;
// A set of coefficients of a vector is a number: bit 0 stands for the first one.
inline constexpr std::size_t kSets = 1 << kMostDimensions;

// Where the vectors of a category begin in the tables below.
constexpr auto MakeFirstVectors() {
  std::array<std::size_t, kCategories> first{};
  for (std::size_t k = 0; k < kVectorCodes.size(); ++k) {
    first[k + 1] = first[k] + kVectorCodes[k].size();
  }
  return first;
}
inline constexpr auto kFirstVector = MakeFirstVectors();
inline constexpr std::size_t kVectors = kFirstVector[kNoiseCategory];

// The bins of a vector: the digits of its index, most significant first.
using S_VectorBins = std::array<int, kMostDimensions>;
constexpr S_VectorBins BinsOf(std::size_t nCategory, std::size_t nVector) {
  S_VectorBins bins{};
  const auto nBase = static_cast<std::size_t>(kMaxBin[nCategory]) + 1;
  for (std::size_t i = Index(kVectorDimension[nCategory]); i-- > 0; nVector /= nBase) {
    bins[i] = static_cast<int>(nVector % nBase);
  }
  return bins;
}

// A vector as it is written, in one number: the code word with room for the signs after it, the set
// of nonzero bins, and the bits of both.
class C_WrittenVector {
 public:
  constexpr C_WrittenVector() = default;
  constexpr C_WrittenVector(S_Code code, unsigned int nNonzero) {
    const int nSigns = std::popcount(nNonzero);
    m_dwAll = std::uint32_t{code.wWord} << nSigns | nNonzero << kWordBits |
              static_cast<std::uint32_t>(code.byBits + nSigns) << (kWordBits + kMostDimensions);
  }
  [[nodiscard]] constexpr std::uint32_t Word() const { return m_dwAll & ((1u << kWordBits) - 1); }
  [[nodiscard]] constexpr std::size_t Nonzero() const { return m_dwAll >> kWordBits & (kSets - 1); }
  [[nodiscard]] constexpr int Bits() const {
    return static_cast<int>(m_dwAll >> (kWordBits + kMostDimensions));
  }

 private:
  static constexpr int kWordBits = 21;
  std::uint32_t m_dwAll = 0;
};

template <typename T>
using S_OfAllVectors = std::array<T, kVectors>;
extern const S_OfAllVectors<C_WrittenVector> kWrittenVectors;

// Code word and signs together.
extern const S_OfAllVectors<std::uint8_t> kVectorBits;

// The reconstruction levels of a vector, Q12 as in kCentroid; eight values, so that they are copied
// at once.
using S_VectorLevels = std::array<std::int16_t, 8>;
extern const S_OfAllVectors<S_VectorLevels> kVectorLevels;

// The deviations of a region with which every bin but 0 comes out as a positive number of 16 bits:
// 1 <= level * deviation / 4096 <= 32767.
struct S_Deviations {
  std::int16_t nLeast;
  std::int16_t nMost;
};
constexpr auto MakeDeviations() {
  std::array<S_Deviations, kNoiseCategory> deviations{};
  for (std::size_t k = 0; k < kNoiseCategory; ++k) {
    const std::int32_t nLowest = kCentroid[k][1];
    const std::int32_t nHighest = kCentroid[k][Index(kMaxBin[k])];
    deviations[k].nLeast = static_cast<std::int16_t>((4096 + nLowest - 1) / nLowest);
    deviations[k].nMost = static_cast<std::int16_t>(
        std::min(((std::int64_t{32768} << 12) - 1) / nHighest, std::int64_t{32767}));
  }
  return deviations;
}
inline constexpr auto kDeviations = MakeDeviations();

// kStandardDeviation with zeros after it, for all entries that a valid envelope leads to at any
// shift.
constexpr auto MakeDeviationsOfPowers() {
  std::array<std::int16_t, Index(kHighestPower + kPowerIndexZero + 2 * kHighestShift) + 1>
      deviations{};
  std::copy(kStandardDeviation.begin(), kStandardDeviation.end(), deviations.begin());
  return deviations;
}
inline constexpr auto kDeviationsOfPowers = MakeDeviationsOfPowers();
static_assert(kLowestPower + kPowerIndexZero + 2 * kLowestShift >= 0);

// ---- signs ----

// The number of coefficients in a set.
constexpr auto MakeCounts() {
  std::array<std::uint8_t, kSets> counts{};
  for (unsigned int n = 0; n < kSets; ++n) counts[n] = static_cast<std::uint8_t>(std::popcount(n));
  return counts;
}
inline constexpr auto kCounts = MakeCounts();

// [set of nonzero bins][set of positive coefficients]: the signs of the nonzero bins as they are
// written, the first one highest.
using S_SignTable = std::array<std::array<std::uint8_t, kSets>, kSets>;
extern const S_SignTable kGatheredSigns;

// The way back: [set of nonzero bins][signs as written]: the set of positive coefficients. Bits
// above the signs make no difference.
extern const S_SignTable kSpreadSigns;

// [set of zeros][random bits]: the set of zeros whose noise is positive. The first zero takes the
// lowest bit.
extern const S_SignTable kSpreadNoise;

// ---- reading code words ----

// What the next bits of a frame lead to. The length is 0 where the code word is longer than the
// look-up, and the other number then is the node of the tree at which to go on.
struct S_LookedUpStep {
  std::uint8_t bySymbolOrNode;
  std::uint8_t byBits;
};
// The same for a vector, in one number. Its length includes the signs.
class C_LookedUpVector {
 public:
  constexpr C_LookedUpVector() = default;
  // nVector: among all vectors, see kFirstVector. nWordBits: without the signs.
  constexpr C_LookedUpVector(std::size_t nVector, int nWordBits, std::size_t nNonzero)
      : m_dwAll(static_cast<std::uint32_t>(
            nVector | (static_cast<std::size_t>(nWordBits) + kCounts[nNonzero]) << kNumberBits |
            nNonzero << kNonzeroAt)) {}
  // The bits of the look-up were too few.
  explicit constexpr C_LookedUpVector(int nNode) : m_dwAll(static_cast<std::uint32_t>(nNode)) {}

  [[nodiscard]] constexpr std::size_t VectorOrNode() const {
    return m_dwAll & ((1u << kNumberBits) - 1);
  }
  [[nodiscard]] constexpr int Bits() const { return static_cast<int>(m_dwAll >> kNumberBits & 31); }
  [[nodiscard]] constexpr std::uint32_t Nonzero() const { return m_dwAll >> kNonzeroAt; }

 private:
  static constexpr int kNumberBits = 11;
  static constexpr int kNonzeroAt = 21;
  std::uint32_t m_dwAll = 0;
};

// Long enough for nearly all words, short enough for the first cache.
inline constexpr int kVectorLookUpBits = 9;
inline constexpr int kPowerStepLookUpBits = 8;

// [category][next bits], [region][next bits]
template <typename T, int nBits>
using S_LookUp = std::array<T, std::size_t{1} << nBits>;
extern const std::array<S_LookUp<C_LookedUpVector, kVectorLookUpBits>, kNoiseCategory>
    kVectorLookUps;
extern const std::array<S_LookUp<S_LookedUpStep, kPowerStepLookUpBits>, kPowerStepTrees.size()>
    kPowerStepLookUps;

}  // namespace kestrel
