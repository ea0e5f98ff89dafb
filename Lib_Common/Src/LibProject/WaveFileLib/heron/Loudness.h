// SPDX-License-Identifier: Apache-2.0
//
// How loud a part is, as the encoder's bit allocation sees it, and how coarse a step that asks for.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "heron/FixedPoint.h"

namespace heron {

// 256 * log2 of the mean square, from the sum of the squares of nCount samples (at least one). The
// hiss of a quiet room in 16-bit recordings has a root mean square of about 20. Anything softer
// counts as 20, because nobody wants bits spent on it.
constexpr int Loudness(std::uint64_t qwSquares, std::size_t nCount) noexcept {
  constexpr std::uint64_t kLeastMeanSquare = std::uint64_t{20} * 20;
  return Log2Q8(std::max(kLeastMeanSquare, qwSquares / nCount));
}

// The same from the coefficients of a part (Q8).
int LoudnessOf(std::span<const std::int32_t> coefficients) noexcept;

// When the level of a part rises, its step rises by a share of that, both in dB: by 3/8 at 2 bits
// per sample, by 1/2 at 3 bits, and by 17/32 above. Equal steps would give the best overall
// signal-to-noise ratio, but the worst sound in soft passages; steps in a constant ratio to the
// level would waste bits there. The fewer bits there are, the more the loud passages need them.
//
// 6 dB of level are 512 in loudness and 4 steps of 256 in the index. A slope of 16 stands for a
// share of a half.
constexpr int SlopeOf(int nBitDepth) noexcept {
  return nBitDepth == 2 ? 12 : nBitDepth == 3 ? 16 : 17;
}

// The step index that a part of this loudness gets at an offset, Q8. It may lie outside the range
// of step indices.
constexpr int WantedStep(int nLoudness, int nSlope, int nOffset) noexcept {
  return nOffset + nLoudness * nSlope / 16;
}

}  // namespace heron
