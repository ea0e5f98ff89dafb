// SPDX-License-Identifier: Apache-2.0
#include "kestrel/TablesVectors.h"

namespace kestrel {
namespace {

// The set of the bins that are not 0. Each of them has a sign.
constexpr unsigned int NonzeroBins(std::size_t nCategory, std::size_t nVector) {
  const S_VectorBins bins = BinsOf(nCategory, nVector);
  unsigned int nSet = 0;
  for (std::size_t i = 0; i < bins.size(); ++i) nSet |= (bins[i] != 0 ? 1u : 0u) << i;
  return nSet;
}

// make(category, vector) for each vector.
template <typename Make>
constexpr auto MakeForAllVectors(Make make) {
  std::array<decltype(make(0, 0)), kVectors> all{};
  for (std::size_t k = 0; k < kVectorCodes.size(); ++k) {
    for (std::size_t n = 0; n < kVectorCodes[k].size(); ++n) all[kFirstVector[k] + n] = make(k, n);
  }
  return all;
}

}  // namespace

constexpr S_OfAllVectors<C_WrittenVector> kWrittenVectors =
    MakeForAllVectors([](std::size_t k, std::size_t n) {
      return C_WrittenVector(kVectorCodes[k][n], NonzeroBins(k, n));
    });

constexpr S_OfAllVectors<std::uint8_t> kVectorBits = MakeForAllVectors([](std::size_t k,
                                                                          std::size_t n) {
  return static_cast<std::uint8_t>(kVectorCodes[k][n].byBits + std::popcount(NonzeroBins(k, n)));
});

constexpr S_OfAllVectors<S_VectorLevels> kVectorLevels =
    MakeForAllVectors([](std::size_t k, std::size_t n) {
      const S_VectorBins bins = BinsOf(k, n);
      S_VectorLevels levels{};
      for (std::size_t i = 0; i < bins.size(); ++i) levels[i] = kCentroid[k][Index(bins[i])];
      return levels;
    });

// ---- signs ----

namespace {

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

}  // namespace

constexpr S_SignTable kGatheredSigns = MakeGatheredSigns();
constexpr S_SignTable kSpreadSigns = MakeSpreadSigns();
constexpr S_SignTable kSpreadNoise = MakeSpreadNoise();

// ---- reading code words ----

namespace {

// Where some bits lead in a tree: to a symbol, or to a node.
struct S_TreePlace {
  int nSymbol;  // minus the node, if it is one
  int nBits;    // used up
};
// The places of all numbers of so many bits, most significant bit first.
template <int nBits>
constexpr auto PlacesInTree(const auto& tree) {
  S_LookUp<S_TreePlace, nBits> places{};
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

constexpr C_LookedUpVector LookedUp(std::size_t nCategory, std::size_t nVector, int nWordBits) {
  const std::size_t n = kFirstVector[nCategory] + nVector;
  return {n, nWordBits, kWrittenVectors[n].Nonzero()};
}

constexpr auto MakeVectorLookUps() {
  std::array<S_LookUp<C_LookedUpVector, kVectorLookUpBits>, kNoiseCategory> lookUps{};
  for (std::size_t k = 0; k < kNoiseCategory; ++k) {
    const auto places = PlacesInTree<kVectorLookUpBits>(kVectorTrees[k]);
    for (std::size_t n = 0; n < places.size(); ++n) {
      const auto [nSymbol, nBits] = places[n];
      lookUps[k][n] = nSymbol < 0 ? C_LookedUpVector(-nSymbol) : LookedUp(k, Index(nSymbol), nBits);
    }
  }
  return lookUps;
}

constexpr auto MakePowerStepLookUps() {
  std::array<S_LookUp<S_LookedUpStep, kPowerStepLookUpBits>, kPowerStepTrees.size()> lookUps{};
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

}  // namespace

constexpr decltype(kVectorLookUps) kVectorLookUps = MakeVectorLookUps();
constexpr decltype(kPowerStepLookUps) kPowerStepLookUps = MakePowerStepLookUps();

}  // namespace kestrel
