// SPDX-License-Identifier: Apache-2.0
//
// For which blocks the sums of a kernel need not be limited at each step, because no part of them
// can reach a limit.
#pragma once

#include <cstddef>
#include <cstdint>

#include "kestrel/TablesTransform.h"
#include "kestrel/Transform.h"

namespace kestrel {

// Twice a sum of products below this, rounded, fits into 32 bits.
inline constexpr std::int64_t kMostSum = (std::int64_t{1} << 30) - (1 << 15);
// Squares are counted in units of 16: the sum of ten of them needs more than 32 bits.
inline constexpr int kSquareShift = 4;
// What windowed and scaled values gain by their bias, and by the rounding of the butterflies.
inline constexpr int kMostBias = 8;

// The largest number among the columns of the matrix.
template <typename Measure>
constexpr std::int64_t LargestColumn(const S_CoreMatrix& matrix, Measure measure) {
  std::int64_t nLargest = 0;
  for (std::size_t k = 0; k < kKernel; ++k) {
    std::int64_t nSum = 0;
    for (std::size_t i = 0; i < kKernel; ++i) nSum += measure(std::int64_t{matrix[i][k]});
    nLargest = nSum > nLargest ? nSum : nLargest;
  }
  return nLargest;
}
// A part of a sum of products is at most the length of a column times the length of a block.
constexpr int MostSquares(const S_CoreMatrix& matrix) {
  const auto nSquares = LargestColumn(matrix, [](std::int64_t n) { return n * n; });
  // Each of the squares, or of the sums of two, was rounded down.
  return static_cast<int>((kMostSum * kMostSum / nSquares >> kSquareShift) - std::int64_t{kKernel} -
                          1);
}
inline constexpr int kMostAnalysisSquares = MostSquares(kAnalysisCore);
inline constexpr int kMostSynthesisSquares = MostSquares(kSynthesisCore);

// For the forward transform, what is known from the window decides nearly always. The butterflies
// halve, so a value of a block is at most the mean of 32 magnitudes: a part of a sum is at most the
// largest magnitude times the magnitudes of a column, and at most 1/32 of all magnitudes times the
// largest factor.
inline constexpr std::int64_t kAnalysisColumn =
    LargestColumn(kAnalysisCore, [](std::int64_t n) { return n < 0 ? -n : n; });
inline constexpr std::int64_t kLargestAnalysisFactor = 10453;
static_assert(LargestColumn(kAnalysisCore, [](std::int64_t n) {
                return n > kLargestAnalysisFactor || n < -kLargestAnalysisFactor ? 1 : 0;
              }) == 0);

constexpr bool IsQuiet(const S_Loudness& loudness, int nShift) {
  // Halving rounds down, which adds up to one half to the magnitude of a negative value.
  const auto scaled = [=](std::int64_t n, std::int64_t nValues) {
    return (nShift < 0 ? (n + nValues) / 2 : n << nShift) + kMostBias * nValues;
  };
  return scaled(loudness.nLargest, 1) * kAnalysisColumn < kMostSum ||
         (scaled(loudness.nSum, kSamplesPerFrame) / 32 + kMostBias) * kLargestAnalysisFactor <
             kMostSum;
}

}  // namespace kestrel
