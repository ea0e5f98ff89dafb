// SPDX-License-Identifier: Apache-2.0
//
// What a bit rate means for the frame, the same for encoder and decoder. Nothing else in the coder
// depends on the rate.
#pragma once

#include <cstdint>

#include "kestrel/Frame.h"

namespace kestrel {

inline constexpr int kBitsPerWord = 16;
inline constexpr int kMaxWordsPerFrame = 40;
inline constexpr std::uint32_t kDefaultBitRate = 16000;
inline constexpr std::uint32_t kFramesPerSecond = 50;
inline constexpr std::uint32_t kRateStep = kFramesPerSecond * kBitsPerWord;  // one word per frame

inline constexpr int kRateAsRequested = 0;
inline constexpr int kRateAdjusted = 8;

struct S_Configuration {
  std::uint32_t dwBitRate;  // 4800..32000 in steps of 800
  int nBitsPerFrame;        // 96..640
  int nWordsPerFrame;       // 6..40
  int nRegions;             // coded regions: 8, 10, 12 or 14
  int nResult;              // kRateAsRequested or kRateAdjusted
};

constexpr std::uint32_t EffectiveRate(std::uint32_t dwRequested) noexcept {
  constexpr std::uint32_t kLowestRate = 4800;
  constexpr std::uint32_t kHighestRate = 32000;
  if (dwRequested < kLowestRate || dwRequested > kHighestRate) return kDefaultBitRate;
  return (dwRequested + kRateStep / 2) / kRateStep * kRateStep;
}

constexpr int CodedRegions(std::uint32_t dwBitRate) noexcept {
  if (dwBitRate >= 16000) return 14;
  if (dwBitRate >= 12000) return 12;
  return dwBitRate >= 9600 ? 10 : 8;
}

// Rounds to the nearest rate, ties upwards; a rate below 4800 or above 32000 gives 16000.
constexpr S_Configuration Configure(std::uint32_t dwRequestedRate) noexcept {
  const std::uint32_t dwBitRate = EffectiveRate(dwRequestedRate);
  return {.dwBitRate = dwBitRate,
          .nBitsPerFrame = static_cast<int>(dwBitRate / kFramesPerSecond),
          .nWordsPerFrame = static_cast<int>(dwBitRate / kRateStep),
          .nRegions = CodedRegions(dwBitRate),
          .nResult = dwBitRate == dwRequestedRate ? kRateAsRequested : kRateAdjusted};
}

}  // namespace kestrel
