// SPDX-License-Identifier: Apache-2.0
//
// The tables of TablesTransform.h once more, in the order in which TransformLanes.h multiplies by
// them. All are made from those when this is compiled.
//
// Lanes stand for blocks, and tables differ between blocks only where a block's values are in
// reverse order; see TransformLanes.h for the bits t and u, which number blocks and values.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kestrel/TablesTransform.h"
#include "kestrel/Transform.h"

namespace kestrel {

// A multiplier for each lane of two parts.
struct alignas(32) S_Lanes16 {
  std::int16_t lanes[16];
};

// ---- windows: two factors for each sample of a half frame, side by side ----

struct S_WindowLanes {
  alignas(32) std::int16_t first[kSamplesPerFrame];   // for the samples 0..159
  alignas(32) std::int16_t second[kSamplesPerFrame];  // for the samples 160..319
};

// The sample whose factors stand at place i. Interleaving two registers of sixteen lanes puts the
// samples of four quarters in the order 0 2 1 3.
constexpr std::size_t SampleAt(std::size_t nPlace, int nLanes) {
  constexpr std::size_t kQuarters[] = {0, 8, 4, 12};
  if (nLanes == 8) return nPlace;
  return nPlace / 16 * 16 + kQuarters[nPlace % 16 / 4] + nPlace % 4;
}

template <int nLanes>
constexpr S_WindowLanes MakeAnalysisWindow() {
  S_WindowLanes window{};
  for (std::size_t i = 0; i < 160; ++i) {
    const std::size_t n = SampleAt(i, nLanes);
    window.first[2 * i] = kAnalysisWindow[159 - n];
    window.first[2 * i + 1] = kAnalysisWindow[160 + n];
    window.second[2 * i] = kAnalysisWindow[319 - n];
    window.second[2 * i + 1] = static_cast<std::int16_t>(-kAnalysisWindow[n]);
  }
  return window;
}
template <int nLanes>
constexpr S_WindowLanes MakeSynthesisWindow() {
  S_WindowLanes window{};
  for (std::size_t i = 0; i < 160; ++i) {
    const std::size_t n = SampleAt(i, nLanes);
    window.first[2 * i] = kSynthesisWindow[n];
    window.first[2 * i + 1] = kSynthesisWindow[319 - n];
    window.second[2 * i] = kSynthesisWindow[160 + n];
    window.second[2 * i + 1] = static_cast<std::int16_t>(-kSynthesisWindow[159 - n]);
  }
  return window;
}
template <int nLanes>
inline constexpr S_WindowLanes kAnalysisWindowLanes = MakeAnalysisWindow<nLanes>();
template <int nLanes>
inline constexpr S_WindowLanes kSynthesisWindowLanes = MakeSynthesisWindow<nLanes>();

// ---- butterflies ----

// For one butterfly pass between neighbouring lanes.
struct S_ButterflyLanes {
  S_Lanes16 difference;  // 1 and -1, or -1 and 1 where the two are in reverse order
  S_Lanes16 limit;       // the lowest value; what is subtracted is limited to -32767
};
// bReverseOf: whether the pair of lanes in place 0..3 is in reverse order.
constexpr S_ButterflyLanes MakeButterfly(const std::array<bool, 4>& reversed) {
  S_ButterflyLanes butterfly{};
  for (std::size_t i = 0; i < 16; ++i) {
    const bool bSubtracted = (i % 2 != 0) != reversed[i % 8 / 2];
    butterfly.difference.lanes[i] = bSubtracted ? -1 : 1;
    butterfly.limit.lanes[i] = bSubtracted ? -32767 : -32768;
  }
  return butterfly;
}
// The first, second and third pass. Lanes of a difference are in reverse order in later passes.
inline constexpr std::array<S_ButterflyLanes, 3> kButterflies = {
    MakeButterfly({false, false, false, false}), MakeButterfly({false, false, true, true}),
    MakeButterfly({false, true, true, false})};

constexpr bool IsOdd(std::size_t nBits) {
  return ((nBits ^ nBits >> 1 ^ nBits >> 2 ^ nBits >> 3 ^ nBits >> 4) & 1) != 0;
}
// All bits set in the lanes whose number has an odd (even) number of ones.
constexpr S_Lanes16 MakeParityMask(bool bOdd) {
  S_Lanes16 mask{};
  for (std::size_t i = 0; i < 16; ++i) mask.lanes[i] = IsOdd(i % 8) == bOdd ? -1 : 0;
  return mask;
}
inline constexpr S_Lanes16 kOddLanes = MakeParityMask(true);
inline constexpr S_Lanes16 kEvenLanes = MakeParityMask(false);

struct S_DitherLanes {
  alignas(32) std::int16_t sums[kSamplesPerFrame];  // 0 for the second of each pair
  alignas(32) std::int16_t differences[kSamplesPerFrame];
};
constexpr S_DitherLanes MakeDither() {
  S_DitherLanes dither{};
  for (std::size_t i = 0; i < kSamplesPerFrame; i += 2) {
    dither.sums[i] = kSynthesisDither[i];
    dither.differences[i] = kSynthesisDither[i + 1];
  }
  return dither;
}
inline constexpr S_DitherLanes kDitherLanes = MakeDither();

// ---- kernels ----

inline constexpr std::size_t kHalfKernel = kKernel / 2;

// [blocks in reverse order][output n and n + 5][inputs n and n + 5]: for four blocks, two inputs
// each. The first part is for output n, the second for n + 5.
struct S_CoreLanes {
  S_Lanes16 factors[2][kHalfKernel][kHalfKernel];
};
constexpr S_CoreLanes MakeCore(const S_CoreMatrix& matrix) {
  S_CoreLanes core{};
  for (std::size_t nReverse = 0; nReverse < 2; ++nReverse) {
    for (std::size_t nOut = 0; nOut < kHalfKernel; ++nOut) {
      for (std::size_t nIn = 0; nIn < kHalfKernel; ++nIn) {
        for (std::size_t i = 0; i < 8; ++i) {
          const bool bReverse = IsOdd(nReverse << 2 | i % 4);
          const std::size_t nFirst = bReverse ? kKernel - 1 - nIn : nIn;
          const std::size_t nSecond = bReverse ? kHalfKernel - 1 - nIn : nIn + kHalfKernel;
          const std::size_t nOutput = nOut + i / 4 * kHalfKernel;
          auto& factors = core.factors[nReverse][nOut][nIn].lanes;
          factors[2 * i] = matrix[nFirst][nOutput];
          factors[2 * i + 1] = matrix[nSecond][nOutput];
        }
      }
    }
  }
  return core;
}
inline constexpr S_CoreLanes kAnalysisCoreLanes = MakeCore(kAnalysisCore);
inline constexpr S_CoreLanes kSynthesisCoreLanes = MakeCore(kSynthesisCore);

// ---- rotations ----

// The value of a block of 40 that value k of a kernel leads to after two passes; nTurns has the
// bits u5 (first pass) and u4.
constexpr std::size_t ValueOf(std::size_t k, std::size_t nTurns) {
  const std::size_t nOf20 = nTurns / 2 == 0 ? k : 19 - k;
  return nTurns % 2 == 0 ? nOf20 : 39 - nOf20;
}

// [values k and k + 5][bits u5 u4][front, back]: for four pairs of lanes, two factors each. The
// first part is for k, the second for k + 5.
struct S_TurnLanes {
  S_Lanes16 factors[kHalfKernel][4][2];
};

// The pass over blocks of 20, 40, 80, 160 or 320 (nPass 0..4). In the last two, pairs of lanes
// differ by the values that the passes before have led to: u3 for nPass 3, u2 and u3 for nPass 4.
constexpr S_TurnLanes MakeTurns(std::span<const S_Rotation> rotations, std::size_t nPass) {
  S_TurnLanes turns{};
  for (std::size_t k = 0; k < kKernel; ++k) {
    for (std::size_t nTurns = 0; nTurns < 4; ++nTurns) {
      const std::size_t nValue = nPass == 0   ? k
                                 : nPass == 1 ? ValueOf(k, nTurns & 2)
                                              : ValueOf(k, nTurns);
      if (nPass == 1 && nTurns % 2 != 0) continue;
      for (std::size_t nPair = 0; nPair < 4; ++nPair) {
        const std::size_t nOf80 = nPair % 2 == 0 ? nValue : 79 - nValue;
        const std::size_t nLast = nPair / 2 == 0 ? nOf80 : 159 - nOf80;
        const std::size_t nOf160 = nPair / 2 == 0 ? nValue : 79 - nValue;
        const std::size_t n = nPass == 4 ? nLast : nPass == 3 ? nOf160 : nValue;
        const auto [nCosine, nMinusSine] = rotations[n];
        const bool bOdd = n % 2 != 0;
        const std::size_t nAt = k / kHalfKernel * 8 + 2 * nPair;
        auto& front = turns.factors[k % kHalfKernel][nTurns][0].lanes;
        front[nAt] = nCosine;
        front[nAt + 1] = bOdd ? nMinusSine : static_cast<std::int16_t>(-nMinusSine);
        auto& back = turns.factors[k % kHalfKernel][nTurns][1].lanes;
        back[nAt] = nMinusSine;
        back[nAt + 1] = bOdd ? static_cast<std::int16_t>(-nCosine) : nCosine;
      }
    }
  }
  return turns;
}
using S_AllTurns = std::array<S_TurnLanes, 5>;
constexpr S_AllTurns MakeAllTurns(const std::array<std::span<const S_Rotation>, 5>& passes) {
  S_AllTurns turns{};
  for (std::size_t nPass = 0; nPass < 5; ++nPass) turns[nPass] = MakeTurns(passes[nPass], nPass);
  return turns;
}
inline constexpr S_AllTurns kAnalysisTurns = MakeAllTurns(kAnalysisRotations);
inline constexpr S_AllTurns kSynthesisTurns = MakeAllTurns(kSynthesisRotations);

}  // namespace kestrel
