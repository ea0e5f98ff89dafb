// SPDX-License-Identifier: Apache-2.0
//
// What the frame coder does to the twenty coefficients of a region, eight at a time: a template
// over the lanes of a processor (Lanes.h). RegionLoops.h has the same in ordinary code.
//
// A region is read and written as three registers, so four more values than it has must be
// accessible. What they hold does not matter.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "Lanes.h"
#include "kestrel/RegionDigits.h"
#include "kestrel/TablesQuantiser.h"

namespace kestrel {

template <typename L>
class C_RegionLanes {
 public:
  // The sum of the squares.
  VCM_LANES_INLINE static std::int64_t Energy(const std::int16_t* pRegion) {
    // Two squares make up to 2^31, and their halves are added apart.
    const R low = P::Fill32(0xFFFF);
    R lowHalves = P::Zero();
    R highHalves = P::Zero();
    for (std::size_t i = 0; i < kRegisters; ++i) {
      R values = P::Load(pRegion + 8 * i);
      if (i == 2) values = P::And(values, P::Load(kFirstFour));
      const R squares = P::SumOfProducts(values, values);
      lowHalves = P::Add32(lowHalves, P::And(squares, low));
      highHalves = P::Add32(highHalves, P::template ShiftRightUnsigned32<16>(squares));
    }
    const R pairs = P::Add32(P::InterleaveLow32(lowHalves, highHalves),
                             P::InterleaveHigh32(lowHalves, highHalves));
    const R sums = P::Add32(pairs, P::InterleaveHigh64(pairs, pairs));
    std::uint32_t both[4];
    P::Store(both, sums);
    return (std::int64_t{both[1]} << 16) + both[0];
  }

  // The magnitudes of the values, shifted down.
  VCM_LANES_INLINE static void Magnitudes(const std::int16_t* pRegion, int nDown,
                                          std::int16_t* pMagnitudes) {
    for (std::size_t i = 0; i < kRegisters; ++i) {
      const R values = P::ShiftRight16(P::Load(pRegion + 8 * i), nDown);
      P::Store(pMagnitudes + 8 * i, P::Max16(values, P::SubLimited16(P::Zero(), values)));
    }
  }

  // The indices of a region's vectors.
  template <std::size_t nCategory>
  VCM_LANES_INLINE static void Quantise(const std::int16_t* pMagnitudes,
                                        const std::int16_t* pThresholds, std::uint16_t* pwVectors) {
    S_Values bins = {{P::Zero(), P::Zero(), P::Zero()}};
    const S_Values magnitudes = LoadAll(pMagnitudes);
    for (int n = 0; n < kMaxBin[nCategory]; ++n) {
      const R threshold = P::Fill16(pThresholds[n]);
      for (std::size_t i = 0; i < kRegisters; ++i) {
        bins.values[i] = P::Sub16(bins.values[i], P::IsGreater16(magnitudes.values[i], threshold));
      }
    }
    Join<kVectorDimension[nCategory]>(bins, kBinDigits[nCategory].data(), pwVectors);
  }

  // By vector, the set of the coefficients that are not negative.
  template <int nDimension>
  VCM_LANES_INLINE static void Positives(const std::int16_t* pRegion, std::uint16_t* pwSets) {
    S_Values positive = LoadAll(pRegion);
    for (R& values : positive.values) {
      values = P::Add16(P::template ShiftRight16<15>(values), P::Fill16(1));
    }
    Join<nDimension>(positive, kSetDigits<nDimension>.data(), pwSets);
  }

  // What the bins of a region stand for, with their signs: level * deviation / 4096. Bit i of
  // dwPositive is set where coefficient i is positive.
  VCM_LANES_INLINE static void Dequantise(const std::int16_t* pLevels, std::int16_t nDeviation,
                                          std::uint32_t dwPositive, std::int16_t* pRegion) {
    const auto part = [&]<typename V>(V, std::size_t nAt) VCM_LANES_INLINE_LAMBDA {
      StoreSigned<V>(Values<V>(pLevels + nAt, nDeviation), dwPositive >> nAt, pRegion + nAt);
    };
    ForEachPart(part);
  }
  // The same with nNoise instead of 0.
  VCM_LANES_INLINE static void DequantiseAndFill(const std::int16_t* pLevels,
                                                 std::int16_t nDeviation, std::int16_t nNoise,
                                                 std::uint32_t dwPositive, std::int16_t* pRegion) {
    const auto part = [&]<typename V>(V, std::size_t nAt) VCM_LANES_INLINE_LAMBDA {
      const auto values = Values<V>(pLevels + nAt, nDeviation);
      const auto noise = V::And(V::Fill16(nNoise), V::IsEqual16(values, V::Zero()));
      StoreSigned<V>(V::Or(values, noise), dwPositive >> nAt, pRegion + nAt);
    };
    ForEachPart(part);
  }
  // nNoise everywhere.
  VCM_LANES_INLINE static void Fill(std::int16_t nNoise, std::uint32_t dwPositive,
                                    std::int16_t* pRegion) {
    const auto part = [&]<typename V>(V, std::size_t nAt) VCM_LANES_INLINE_LAMBDA {
      StoreSigned<V>(V::Fill16(nNoise), dwPositive >> nAt, pRegion + nAt);
    };
    ForEachPart(part);
  }

 private:
  // Eight lanes, for what must know which lanes stand side by side.
  using P = typename L::S_Part;
  using R = typename P::R;
  static constexpr std::size_t kRegisters = 3;
  static constexpr std::int16_t kFirstFour[8] = {-1, -1, -1, -1, 0, 0, 0, 0};
  static constexpr std::int16_t kBits[16] = {1,   2,   4,    8,    16,   32,   64,    128,
                                             256, 512, 1024, 2048, 4096, 8192, 16384, -32768};

  struct S_Values {
    R values[kRegisters];
  };
  VCM_LANES_INLINE static S_Values LoadAll(const std::int16_t* p) {
    return {{P::Load(p), P::Load(p + 8), P::Load(p + 16)}};
  }

  // part(lanes, place): for all places of a region, as many at once as there are lanes.
  template <typename Part>
  VCM_LANES_INLINE static void ForEachPart(Part part) {
    if constexpr (L::kLanes == 16) {
      part(L{}, 0);
    } else {
      part(P{}, 0);
      part(P{}, 8);
    }
    part(P{}, 16);
  }

  template <typename V>
  VCM_LANES_INLINE static typename V::R Values(const std::int16_t* pLevels,
                                               std::int16_t nDeviation) {
    const auto levels = V::Load(pLevels);
    const auto deviation = V::Fill16(nDeviation);
    return V::Or(V::template ShiftRightUnsigned16<12>(V::MultiplyLow16(levels, deviation)),
                 V::template ShiftLeft16<4>(V::MultiplyHigh16(levels, deviation)));
  }
  // Values without a sign; the lowest bits of dwPositive are their signs.
  template <typename V>
  VCM_LANES_INLINE static void StoreSigned(typename V::R values, std::uint32_t dwPositive,
                                           std::int16_t* pTo) {
    const auto set = V::And(V::Fill16(static_cast<int>(dwPositive)), V::Load(kBits));
    const auto negative = V::IsEqual16(set, V::Zero());
    V::Store(pTo, V::Sub16(V::Xor(values, negative), negative));
  }

  // Adds neighbouring 32-bit lanes: first those of a, then those of b.
  VCM_LANES_INLINE static R AddPairs32(R a, R b) {
    const R low = P::InterleaveLow32(a, b);
    const R high = P::InterleaveHigh32(a, b);
    return P::SwapMiddle32(P::Add32(P::InterleaveLow64(low, high), P::InterleaveHigh64(low, high)));
  }

  // The sum of value * digit for each vector of the region.
  template <int nDimension>
  VCM_LANES_INLINE static void Join(const S_Values& all, const std::int16_t* pDigits,
                                    std::uint16_t* pwNumbers) {
    const R digits = P::Load(pDigits);
    const auto& values = all.values;
    if constexpr (nDimension == 5) {
      std::int16_t row[8 * kRegisters];
      for (std::size_t i = 0; i < kRegisters; ++i) P::Store(row + 8 * i, values[i]);
      const auto products = [&](std::size_t n) {
        return P::SumOfProducts(P::Load(row + 5 * n), digits);
      };
      const R sums =
          AddPairs32(AddPairs32(products(0), products(1)), AddPairs32(products(2), products(3)));
      P::Store(pwNumbers, P::Narrow(sums, sums));
    } else {
      const R first = P::SumOfProducts(values[0], digits);
      const R second = P::SumOfProducts(values[1], digits);
      const R third = P::SumOfProducts(values[2], digits);
      if constexpr (nDimension == 2) {
        P::Store(pwNumbers, P::Narrow(first, second));
        P::Store(pwNumbers + 8, P::Narrow(third, third));
      } else {
        P::Store(pwNumbers, P::Narrow(AddPairs32(first, second), AddPairs32(third, third)));
      }
    }
  }
};

}  // namespace kestrel
