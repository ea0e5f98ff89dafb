// SPDX-License-Identifier: Apache-2.0
//
// Tables of the A-law expansion, indexed by the segment number of a code (its upper three bits
// below the sign).
#pragma once

#include <array>
#include <numeric>

// The magnitude where each segment begins.
//
// Kept: segment 6 begins at 8196, not at 8192 as its neighbours suggest. Existing sounds were
// compared and cut according to the resulting values. Pinned by ALaw_Segment6BeginsAt8196.
inline constexpr std::array<int, 8> kALawBase = {0, 256, 512, 1024, 2048, 4096, 8196, 16384};
static_assert(std::accumulate(kALawBase.begin(), kALawBase.end(), 0) == 32516);

// How far the four bits of the mantissa are shifted up in each segment.
inline constexpr std::array<int, 8> kALawShift = {4, 4, 5, 6, 7, 8, 9, 10};
static_assert(kALawBase[7] >> kALawShift[7] == 16);
