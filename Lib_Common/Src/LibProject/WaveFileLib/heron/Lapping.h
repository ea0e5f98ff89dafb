// SPDX-License-Identifier: Apache-2.0
//
// How neighbouring parts overlap. Around the boundary between two parts, the samples are folded:
// the i-th sample after the boundary, r, and the i-th before it, l, become
//
//   r' = w r + v l      l' = w l - v r
//
// with the rising window w = w[h + i], v = w[h - 1 - i] of 2h samples; h is half the length of the
// shorter part. w^2 + v^2 = 1, so this is a rotation, and unfolding is the rotation back. The
// coefficients of a part are the DCT-IV of its folded samples; together this is the modified
// discrete cosine transform with windows that fit the neighbours.
//
//   w[n] = sin(pi/2 * sin^2(pi (n + 1/2) / 4h)), n = 0..2h-1
//
// At both ends of a block and of a part without a transform, nothing is folded.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace heron {

inline constexpr int kWindowQ = 30;

struct S_Lap {
  std::int32_t nNear;  // w, Q30
  std::int32_t nFar;   // v, Q30
};

// The factors for an overlap of 2 * nHalf samples, from the boundary outwards.
std::vector<S_Lap> MakeLaps(std::size_t nHalf);

// One part of a block: its place, and how far it overlaps the parts before and after it.
struct S_Lapped {
  std::size_t nAt;
  std::size_t nLength;
  std::span<const S_Lap> before;  // empty where nothing is folded
  std::span<const S_Lap> after;
};

// Sets folded (nLength values, Q8) to the folded samples of the part. samples is the whole block.
void Fold(std::span<const std::int16_t> samples, const S_Lapped& part,
          std::span<std::int32_t> folded) noexcept;

// Unfolds the values of a block (Q8) around the boundary before value nAt, which has at least
// laps.size() values on either side.
void Unfold(std::span<std::int32_t> values, std::size_t nAt, std::span<const S_Lap> laps) noexcept;

// Rounds unfolded values (Q8) to samples: to the nearest integer, halves upwards, limited to 16
// bits.
void ToSamples(std::span<const std::int32_t> values, std::span<std::int16_t> samples) noexcept;

}  // namespace heron
