// SPDX-License-Identifier: Apache-2.0
//
// Constants of the quantiser by category, those of ITU-T G.722.1. Category 0 is the finest;
// category 7 codes nothing and is filled with noise.
#pragma once

#include <array>
#include <cstdint>

#include "kestrel/TableChecks.h"

namespace kestrel {

inline constexpr int kCategories = 8;
inline constexpr int kNoiseCategory = kCategories - 1;

// Bits that a region is expected to cost, for sharing out the bits of a frame.
inline constexpr std::array<int, kCategories> kExpectedBits = {52, 47, 43, 37, 29, 22, 16, 0};
static_assert(StrictlyFalls(kExpectedBits) && kExpectedBits.back() == 0);

// Coefficients per vector, and vectors per region of 20 coefficients (categories 5, 6: 4 * 5).
inline constexpr std::array<int, kCategories> kVectorDimension = {2, 2, 2, 4, 4, 5, 5, 1};
inline constexpr std::array<int, kCategories> kVectorsPerRegion = {10, 10, 10, 5, 5, 4, 4, 20};
static_assert(AllProductsAre(kVectorDimension, kVectorsPerRegion, 20));

// Largest bin of a coefficient; the bins of a vector are the digits of its index, base max + 1.
inline constexpr std::array<int, kCategories> kMaxBin = {13, 9, 6, 4, 3, 2, 1, 1};
static_assert(NeverRises(kMaxBin));

// Inverse quantiser step relative to the standard deviation, Q13: 2^(1.5 - category / 2) for
// categories 0..6.
inline constexpr std::array<std::int16_t, kCategories> kStepSizeInverse = {
    23167, 16384, 11585, 8192, 5793, 4096, 2896, 2896};
static_assert(NeverRises(kStepSizeInverse));

// Rounding offset of the quantiser (0.5 minus the dead zone), in two parts: Q13, and the two bits
// below it. It is 0.3 for category 0 and rises to 0.5 for category 6.
inline constexpr std::array<std::int16_t, kCategories> kDeadZone = {2457, 2703, 2949, 3195,
                                                                    3440, 3686, 4096, 4096};
inline constexpr std::array<std::int16_t, kCategories> kDeadZoneLowBits = {2, 1, 0, 0, 3, 2, 0, 0};
static_assert(NeverFalls(kDeadZone) && AllWithin(kDeadZoneLowBits, 0, 3));

// Reconstruction level of a bin relative to the standard deviation, Q12. The levels are the
// centroids of measured coefficients, so they have no formula. Bins that a category does not have
// are 0.
inline constexpr std::array<std::array<std::int16_t, 16>, kCategories> kCentroid = {
    {{{0, 1606, 3119, 4586, 6049, 7502, 8941, 10406, 11851, 13292, 14736, 16146, 17566, 19351, 0,
       0}},
     {{0, 2229, 4341, 6401, 8471, 10531, 12583, 14588, 16673, 18924, 0, 0, 0, 0, 0, 0}},
     {{0, 3055, 5998, 8929, 11806, 14680, 17680, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     {{0, 4121, 8192, 12259, 16322, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     {{0, 5413, 11071, 16315, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     {{0, 6785, 14300, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     {{0, 8044, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}},
     {{0, 8019, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}}}};
static_assert(AllCentroidsRise(kCentroid, kMaxBin));

// Level of the noise that stands in for zeros of categories 5 and 6 and for all of category 7,
// relative to the standard deviation, Q15: 2^-2.5, 2^-2, 2^-0.5.
inline constexpr int kFirstNoiseFillCategory = 5;
inline constexpr std::array<std::int16_t, 3> kNoiseFillFactor = {5793, 8192, 23170};
static_assert(StrictlyRises(kNoiseFillFactor));

}  // namespace kestrel
