// SPDX-License-Identifier: Apache-2.0
//
// The noise that stands in for coefficients that got no bits: plus or minus one level per region.
// The signs come from a random generator that runs on from frame to frame.
#pragma once

#include <array>
#include <cstdint>

#include "kestrel/Frame.h"

namespace kestrel {

// The last four numbers, newest first.
struct S_NoiseGenerator {
  std::array<std::int16_t, 4> seeds = {1, 1, 1, 1};
};

std::int16_t NextNoise(S_NoiseGenerator& generator) noexcept;

// Fills a region of category nCategory (0..7) whose standard deviation is nDeviation: nothing in
// categories 0..4, the zeros in 5 and 6, everything in 7.
void FillWithNoise(S_NoiseGenerator& generator, int nCategory, std::int16_t nDeviation,
                   S_Region region) noexcept;

}  // namespace kestrel
