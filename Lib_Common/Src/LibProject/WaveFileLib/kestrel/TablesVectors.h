// SPDX-License-Identifier: Apache-2.0
//
// What the vectors of TablesVectorCodes.h mean, ready for use: all that writing or reading a vector
// asks for stands in tables by category and vector index. All are made from the codes when this is
// compiled.
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

// The set of the bins that are not 0. Each of them has a sign.
constexpr unsigned int NonzeroBins(std::size_t nCategory, std::size_t nVector) {
  const S_VectorBins bins = BinsOf(nCategory, nVector);
  unsigned int nSet = 0;
  for (std::size_t i = 0; i < bins.size(); ++i) nSet |= (bins[i] != 0 ? 1u : 0u) << i;
  return nSet;
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

// make(category, vector) for each vector.
template <typename Make>
constexpr auto MakeForAllVectors(Make make) {
  std::array<decltype(make(0, 0)), kVectors> all{};
  for (std::size_t k = 0; k < kVectorCodes.size(); ++k) {
    for (std::size_t n = 0; n < kVectorCodes[k].size(); ++n) all[kFirstVector[k] + n] = make(k, n);
  }
  return all;
}

inline constexpr auto kWrittenVectors = MakeForAllVectors([](std::size_t k, std::size_t n) {
  return C_WrittenVector(kVectorCodes[k][n], NonzeroBins(k, n));
});

// Code word and signs together.
inline constexpr auto kVectorBits = MakeForAllVectors([](std::size_t k, std::size_t n) {
  return static_cast<std::uint8_t>(kVectorCodes[k][n].byBits + std::popcount(NonzeroBins(k, n)));
});

// The reconstruction levels of a vector, Q12 as in kCentroid; eight values, so that they are copied
// at once.
using S_VectorLevels = std::array<std::int16_t, 8>;
inline constexpr auto kVectorLevels = MakeForAllVectors([](std::size_t k, std::size_t n) {
  const S_VectorBins bins = BinsOf(k, n);
  S_VectorLevels levels{};
  for (std::size_t i = 0; i < bins.size(); ++i) levels[i] = kCentroid[k][Index(bins[i])];
  return levels;
});

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
constexpr S_SignTable MakeGatheredSigns() {
  S_SignTable table{};
  for (std::size_t nSet = 0; nSet < kSets; ++nSet) {
    for (std::size_t nPositive = 0; nPositive < kSets; ++nPositive) {
      unsigned int nSigns = 0;
      for (std::size_t i = 0; i < kMostDimensions; ++i) {
        if ((nSet >> i & 1) != 0) nSigns = nSigns << 1 | (nPositive >> i & 1);
      }
      table[nSet][nPositive] = static_cast<std::uint8_t>(nSigns);
    }
  }
  return table;
}
inline constexpr S_SignTable kGatheredSigns = MakeGatheredSigns();

// The way back: [set of nonzero bins][signs as written]: the set of positive coefficients. Bits
// above the signs make no difference.
constexpr S_SignTable MakeSpreadSigns() {
  S_SignTable table{};
  for (std::size_t nSet = 0; nSet < kSets; ++nSet) {
    for (std::size_t nWritten = 0; nWritten < kSets; ++nWritten) {
      std::size_t nLeft = kCounts[nSet];
      unsigned int nPositive = 0;
      for (std::size_t i = 0; i < kMostDimensions; ++i) {
        if ((nSet >> i & 1) == 0) continue;
        nPositive |= static_cast<unsigned int>(nWritten >> --nLeft & 1) << i;
      }
      table[nSet][nWritten] = static_cast<std::uint8_t>(nPositive);
    }
  }
  return table;
}
inline constexpr S_SignTable kSpreadSigns = MakeSpreadSigns();

// [set of zeros][random bits]: the set of zeros whose noise is positive. The first zero takes the
// lowest bit.
constexpr S_SignTable MakeSpreadNoise() {
  S_SignTable table{};
  for (std::size_t nSet = 0; nSet < kSets; ++nSet) {
    for (std::size_t nNoise = 0; nNoise < kSets; ++nNoise) {
      unsigned int nPositive = 0;
      std::size_t nLeft = nNoise;
      for (std::size_t i = 0; i < kMostDimensions; ++i) {
        if ((nSet >> i & 1) == 0) continue;
        nPositive |= static_cast<unsigned int>(nLeft & 1) << i;
        nLeft >>= 1;
      }
      table[nSet][nNoise] = static_cast<std::uint8_t>(nPositive);
    }
  }
  return table;
}
inline constexpr S_SignTable kSpreadNoise = MakeSpreadNoise();

// ---- reading code words ----

// Where some bits lead in a tree: to a symbol, or to a node.
struct S_TreePlace {
  int nSymbol;  // minus the node, if it is one
  int nBits;    // used up
};
// The places of all numbers of so many bits, most significant bit first.
template <int nBits>
constexpr auto PlacesInTree(const auto& tree) {
  std::array<S_TreePlace, std::size_t{1} << nBits> places{};
  // The places of one bit more, from those of the bits before it. Going down, none is overwritten
  // that is still needed.
  for (std::size_t nNumbers = 2; nNumbers <= places.size(); nNumbers *= 2) {
    for (std::size_t n = nNumbers; n-- > 0;) {
      const S_TreePlace before = places[n / 2];
      const bool bLeaf = before.nBits > 0 && before.nSymbol >= 0;
      places[n] =
          bLeaf ? before : S_TreePlace{-tree[Index(-before.nSymbol)][n % 2], before.nBits + 1};
    }
  }
  return places;
}

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
  // nVector: among all vectors, see kFirstVector.
  constexpr C_LookedUpVector(std::size_t nVector, int nBits, unsigned int nNonzero)
      : m_dwAll(static_cast<std::uint32_t>(nVector) |
                static_cast<std::uint32_t>(nBits) << kNumberBits | nNonzero << kNonzeroAt) {}

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

constexpr C_LookedUpVector LookedUpVector(std::size_t nCategory, std::size_t nVector, int nBits) {
  const std::size_t n = kFirstVector[nCategory] + nVector;
  const auto nNonzero = static_cast<unsigned int>(kWrittenVectors[n].Nonzero());
  return {n, nBits + kCounts[nNonzero], nNonzero};
}

// Long enough for nearly all words, short enough for the first cache.
inline constexpr int kVectorLookUpBits = 9;
inline constexpr int kPowerStepLookUpBits = 8;

constexpr auto MakeVectorLookUps() {
  std::array<std::array<C_LookedUpVector, std::size_t{1} << kVectorLookUpBits>, kNoiseCategory>
      lookUps{};
  for (std::size_t k = 0; k < kNoiseCategory; ++k) {
    const auto places = PlacesInTree<kVectorLookUpBits>(kVectorTrees[k]);
    for (std::size_t n = 0; n < places.size(); ++n) {
      const auto [nSymbol, nBits] = places[n];
      lookUps[k][n] = nSymbol < 0 ? C_LookedUpVector(Index(-nSymbol), 0, 0)
                                  : LookedUpVector(k, Index(nSymbol), nBits);
    }
  }
  return lookUps;
}
inline constexpr auto kVectorLookUps = MakeVectorLookUps();

constexpr auto MakePowerStepLookUps() {
  std::array<std::array<S_LookedUpStep, std::size_t{1} << kPowerStepLookUpBits>,
             kPowerStepTrees.size()>
      lookUps{};
  for (std::size_t r = 0; r < lookUps.size(); ++r) {
    const auto places = PlacesInTree<kPowerStepLookUpBits>(kPowerStepTrees[r]);
    for (std::size_t n = 0; n < places.size(); ++n) {
      const auto [nSymbol, nBits] = places[n];
      lookUps[r][n] = {static_cast<std::uint8_t>(nSymbol < 0 ? -nSymbol : nSymbol),
                       static_cast<std::uint8_t>(nSymbol < 0 ? 0 : nBits)};
    }
  }
  return lookUps;
}
inline constexpr auto kPowerStepLookUps = MakePowerStepLookUps();

}  // namespace kestrel
