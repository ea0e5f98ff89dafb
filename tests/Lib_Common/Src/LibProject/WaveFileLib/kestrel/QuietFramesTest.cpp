// SPDX-License-Identifier: Apache-2.0
//
// Frames on which the bound in TransformBounds.h decides: all that they have goes into one value of
// one kernel, and their magnitudes are such that its sum comes close to its limit, or goes beyond.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <functional>
#include <numeric>
#include <span>

#include "kestrel/Routines.h"
#include "kestrel/TablesTransform.h"
#include "kestrel/TransformBounds.h"

namespace kestrel {
namespace {

using S_Weights = std::array<double, kSamplesPerFrame>;
constexpr std::size_t kBlocks = kSamplesPerFrame / kKernel;

// [value after the butterflies][windowed value]
using S_Matrix = std::array<S_Weights, kSamplesPerFrame>;
const S_Matrix& ButterflyMatrix() {
  static const S_Matrix matrix = [] {
    S_Matrix made{};
    for (std::size_t k = 0; k < kSamplesPerFrame; ++k) {
      constexpr std::int16_t kProbe = 16384;
      S_Frame windowed{};
      windowed[k] = kProbe;
      const S_Frame values = ForwardButterflies(windowed);
      for (std::size_t i = 0; i < kSamplesPerFrame; ++i) made[i][k] = values[i] / double{kProbe};
    }
    return made;
  }();
  return matrix;
}

// What each windowed value adds to a value of a kernel.
S_Weights WeightsOf(std::size_t nBlock, std::size_t nValue) {
  S_Weights weights{};
  for (std::size_t i = 0; i < kKernel; ++i) {
    const S_Weights& row = ButterflyMatrix()[nBlock * kKernel + i];
    const double dFactor = kAnalysisCore[i][nValue];
    for (std::size_t k = 0; k < weights.size(); ++k) weights[k] += row[k] * dFactor;
  }
  return weights;
}

struct S_TwoFrames {
  S_Frame history{};
  S_Frame samples{};

  // The two samples that make a windowed value.
  std::array<std::int16_t*, 2> Of(std::size_t nWindowed) {
    constexpr std::size_t kHalf = kSamplesPerFrame / 2;
    if (nWindowed < kHalf) return {&history[kHalf - 1 - nWindowed], &history[kHalf + nWindowed]};
    return {&samples[nWindowed - kHalf], &samples[kSamplesPerFrame - 1 + kHalf - nWindowed]};
  }
};

// Gives a windowed value about this magnitude, with the smallest samples that do.
void SetWindowed(S_TwoFrames& frames, std::size_t nWindowed, double dValue) {
  constexpr std::int16_t kProbe = 16384;
  std::array<double, 2> shares{};
  for (std::size_t i = 0; i < shares.size(); ++i) {
    S_TwoFrames probe;
    *probe.Of(nWindowed)[i] = kProbe;
    shares[i] = ApplyAnalysisWindow(probe.history, probe.samples)[nWindowed] / double{kProbe};
  }
  const double dSquares = shares[0] * shares[0] + shares[1] * shares[1];
  for (std::size_t i = 0; i < shares.size(); ++i) {
    *frames.Of(nWindowed)[i] = static_cast<std::int16_t>(
        std::clamp(std::round(dValue * shares[i] / dSquares), -32768.0, 32767.0));
  }
}

// The windowed values that weigh most get this magnitude, the others 0.
S_TwoFrames FramesFor(const S_Weights& weights, std::size_t nValues, int nMagnitude) {
  std::array<std::size_t, kSamplesPerFrame> order{};
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::sort(order, std::greater{}, [&](std::size_t k) { return std::abs(weights[k]); });
  S_TwoFrames frames;
  for (std::size_t i = 0; i < nValues; ++i) {
    SetWindowed(frames, order[i], weights[order[i]] > 0 ? nMagnitude : -nMagnitude);
  }
  return frames;
}

// Whether a value of a kernel of this frame is not the plain sum.
bool ReachesALimit(const S_Frame& windowed, int nShift) {
  S_Frame values = windowed;
  ScaleUp(values, nShift);
  for (std::size_t k = 0; k < values.size(); ++k) {
    values[k] = static_cast<std::int16_t>(std::clamp(values[k] + kAnalysisBias[k], -32768, 32767));
  }
  values = ForwardButterflies(values);
  for (std::size_t nBlock = 0; nBlock < kBlocks; ++nBlock) {
    const std::span<const std::int16_t, kKernel> block(&values[nBlock * kKernel], kKernel);
    for (std::size_t nValue = 0; nValue < kKernel; ++nValue) {
      std::int64_t nSum = 0;
      for (std::size_t i = 0; i < kKernel; ++i) {
        nSum += std::int64_t{block[i]} * kAnalysisCore[i][nValue];
      }
      if (KernelValue(block, kAnalysisCore, nValue) != (nSum + 0x4000) >> 15) return true;
    }
  }
  return false;
}

TEST(QuietFrames, FramesThatReachALimit_AreNotTakenForQuiet) {
  int nLimited = 0;
  int nQuiet = 0;
  for (std::size_t nBlock = 0; nBlock < kBlocks; ++nBlock) {
    for (std::size_t nValue = 0; nValue < kKernel; ++nValue) {
      const S_Weights weights = WeightsOf(nBlock, nValue);
      for (const int nMagnitude : {3400, 6999, 13999}) {
        S_TwoFrames frames = FramesFor(weights, 126, nMagnitude);
        const S_Frame windowed = ApplyAnalysisWindow(frames.history, frames.samples);
        const S_Loudness loudness = LoudnessOf(windowed);
        const int nShift = MagnitudeShift(loudness);
        const bool bLimited = ReachesALimit(windowed, nShift);
        const bool bQuiet = IsQuiet(loudness, nShift);
        EXPECT_FALSE(bLimited && bQuiet) << nBlock << ' ' << nValue << ' ' << nMagnitude;
        nLimited += bLimited ? 1 : 0;
        nQuiet += bQuiet ? 1 : 0;
        S_Frame history = frames.history;
        S_Frame want;
        AllRoutines().back().pfnForward(history, frames.samples, want);
        for (const S_Routines& routines : AllRoutines()) {
          S_Frame coefficients;
          history = frames.history;
          routines.pfnForward(history, frames.samples, coefficients);
          EXPECT_EQ(coefficients, want) << routines.pszName << ' ' << nBlock << ' ' << nValue;
        }
      }
    }
  }
  EXPECT_GT(nLimited, 50);
  EXPECT_GT(nQuiet, 50);
}

}  // namespace
}  // namespace kestrel
