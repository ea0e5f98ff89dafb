// SPDX-License-Identifier: Apache-2.0
//
// How loud a frame is, as the encoder's bit allocation sees it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "heron/FixedPoint.h"

namespace heron {

// 256 * log2 of the mean square, from the sum of the squares of nCount samples (at least one). The
// hiss of a quiet room in 16-bit recordings has a root mean square of about 20. Anything softer
// counts as 20, because nobody wants bits spent on it.
constexpr int Loudness(std::uint64_t qwSquares, std::size_t nCount) noexcept {
  constexpr std::uint64_t kLeastMeanSquare = std::uint64_t{20} * 20;
  return Log2Q8(std::max(kLeastMeanSquare, qwSquares / nCount));
}

}  // namespace heron
