// SPDX-License-Identifier: Apache-2.0
//
// What RegionLanes.h does, in ordinary code.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "kestrel/BasicOperators.h"
#include "kestrel/Frame.h"
#include "kestrel/TablesQuantiser.h"

namespace kestrel {

class C_RegionLoops {
 public:
  static std::int64_t Energy(const std::int16_t* pRegion) {
    std::int64_t nEnergy = 0;
    for (int i = 0; i < kRegionSize; ++i) nEnergy += std::int64_t{pRegion[i]} * pRegion[i];
    return nEnergy;
  }

  static void Magnitudes(const std::int16_t* pRegion, int nDown, std::int16_t* pMagnitudes) {
    for (int i = 0; i < kRegionSize; ++i) {
      const int nValue = pRegion[i] >> nDown;
      pMagnitudes[i] = static_cast<std::int16_t>(std::min(nValue < 0 ? -nValue : nValue, 32767));
    }
  }

  template <std::size_t nCategory>
  static void Quantise(const std::int16_t* pMagnitudes, const std::int16_t* pThresholds,
                       std::uint16_t* pwVectors) {
    std::array<std::int16_t, kRegionSize> bins{};
    for (int n = 0; n < kMaxBin[nCategory]; ++n) {
      const std::int16_t nThreshold = pThresholds[n];
      for (std::size_t i = 0; i < kRegionSize; ++i) {
        bins[i] = static_cast<std::int16_t>(bins[i] + (pMagnitudes[i] > nThreshold ? 1 : 0));
      }
    }
    constexpr auto kDimension = static_cast<std::size_t>(kVectorDimension[nCategory]);
    for (std::size_t n = 0; n < kRegionSize / kDimension; ++n) {
      int nVector = 0;
      for (std::size_t i = 0; i < kDimension; ++i) {
        nVector = nVector * (kMaxBin[nCategory] + 1) + bins[n * kDimension + i];
      }
      pwVectors[n] = static_cast<std::uint16_t>(nVector);
    }
  }

  template <int nDimension>
  static void Positives(const std::int16_t* pRegion, std::uint16_t* pwSets) {
    for (int n = 0; n < kRegionSize / nDimension; ++n) {
      unsigned int nSet = 0;
      for (int i = 0; i < nDimension; ++i) {
        nSet |= (pRegion[n * nDimension + i] >= 0 ? 1u : 0u) << i;
      }
      pwSets[n] = static_cast<std::uint16_t>(nSet);
    }
  }

  static void Dequantise(const std::int16_t* pLevels, std::int16_t nDeviation,
                         std::uint32_t dwPositive, std::int16_t* pRegion) {
    for (std::size_t i = 0; i < kRegionSize; ++i) {
      pRegion[i] = Signed(pLevels[i] * nDeviation >> 12, dwPositive, i);
    }
  }
  static void DequantiseAndFill(const std::int16_t* pLevels, std::int16_t nDeviation,
                                std::int16_t nNoise, std::uint32_t dwPositive,
                                std::int16_t* pRegion) {
    for (std::size_t i = 0; i < kRegionSize; ++i) {
      const int nValue = pLevels[i] * nDeviation >> 12;
      pRegion[i] = Signed(nValue == 0 ? nNoise : nValue, dwPositive, i);
    }
  }
  static void Fill(std::int16_t nNoise, std::uint32_t dwPositive, std::int16_t* pRegion) {
    for (std::size_t i = 0; i < kRegionSize; ++i) pRegion[i] = Signed(nNoise, dwPositive, i);
  }

 private:
  // One bit for each coefficient: shifts by different numbers are no vector operation everywhere.
  static constexpr auto kBits = [] {
    std::array<std::uint32_t, kRegionSize> bits{};
    for (std::size_t i = 0; i < bits.size(); ++i) bits[i] = 1u << i;
    return bits;
  }();
  static std::int16_t Signed(int nValue, std::uint32_t dwPositive, std::size_t i) {
    return static_cast<std::int16_t>((dwPositive & kBits[i]) != 0 ? nValue : -nValue);
  }
};

}  // namespace kestrel
