// SPDX-License-Identifier: Apache-2.0
//
// Tables of the ADPCM decoders: the adaptation table of MS ADPCM, and the step table and the index
// tables of IMA ADPCM, with the values that Microsoft and the Interactive Multimedia Association
// published.
#pragma once

#include <algorithm>
#include <array>
#include <numeric>

// The factor, in 256ths, by which a code changes the delta; indexed by the code as an unsigned
// number.
inline constexpr std::array<int, 16> kMSAdpcmAdaptation = {230, 230, 230, 230, 307, 409, 512, 614,
                                                           768, 614, 512, 409, 307, 230, 230, 230};
// Except for the smallest code, codes of the same size adapt alike.
static_assert(std::equal(kMSAdpcmAdaptation.begin() + 1, kMSAdpcmAdaptation.begin() + 8,
                         kMSAdpcmAdaptation.rbegin()));
static_assert(std::accumulate(kMSAdpcmAdaptation.begin(), kMSAdpcmAdaptation.end(), 0) == 6062);

// About 7 * 1.1^n.
inline constexpr std::array<int, 89> kImaSteps = {
    7,     8,     9,     10,    11,    12,    13,    14,    16,    17,    19,   21,    23,
    25,    28,    31,    34,    37,    41,    45,    50,    55,    60,    66,   73,    80,
    88,    97,    107,   118,   130,   143,   157,   173,   190,   209,   230,  253,   279,
    307,   337,   371,   408,   449,   494,   544,   598,   658,   724,   796,  876,   963,
    1060,  1166,  1282,  1411,  1552,  1707,  1878,  2066,  2272,  2499,  2749, 3024,  3327,
    3660,  4026,  4428,  4871,  5358,  5894,  6484,  7132,  7845,  8630,  9493, 10442, 11487,
    12635, 13899, 15289, 16818, 18500, 20350, 22385, 24623, 27086, 29794, 32767};
inline constexpr int kImaLastIndex = 88;
static_assert(kImaSteps.size() == kImaLastIndex + 1 &&
              std::is_sorted(kImaSteps.begin(), kImaSteps.end()));
static_assert(std::accumulate(kImaSteps.begin(), kImaSteps.end(), 0) == 360393);

// By how much a code moves the index of the step; indexed by the code without its sign bit.
inline constexpr std::array<int, 8> kIma4BitIndexSteps = {-1, -1, -1, -1, 2, 4, 6, 8};
inline constexpr std::array<int, 4> kIma3BitIndexSteps = {-1, -1, 1, 2};
