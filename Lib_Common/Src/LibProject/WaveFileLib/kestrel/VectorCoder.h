// SPDX-License-Identifier: Apache-2.0
//
// Codes the coefficients of a region as vectors of quantised bins: a code word for the magnitudes
// of a vector, then one sign bit (1 = positive) for each bin that is not 0.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "kestrel/BitStream.h"
#include "kestrel/Configuration.h"

namespace kestrel {

// A region ready to be written; empty for the noise category.
struct S_CodedRegion {
  struct S_Vector {
    std::uint32_t dwWord;
    int nBits;  // 1..21
  };
  std::array<S_Vector, kRegionSize / 2> vectors{};
  int nVectors = 0;
  int nBits = 0;
};

// Scales a region down if its power is beyond the quantiser's range. nPowerEntry is the region's
// entry in the table of standard deviations at the shift of its coefficients (7..66). Returns the
// entry after scaling (7..40).
int RescaleRegion(S_Region region, int nPowerEntry) noexcept;

// nCategory 0..7. region and nPowerEntry as RescaleRegion leaves them.
S_CodedRegion CodeRegion(S_ConstRegion region, int nCategory, int nPowerEntry) noexcept;
void WriteRegion(C_BitWriter& writer, const S_CodedRegion& coded) noexcept;

// Reads a region of category 0..6. False when the frame's bits run out. The region then holds the
// vectors read before that; a vector's signs stay unread if the frame does not hold them all.
bool ReadRegion(C_BitReader& reader, int nCategory, std::int16_t nDeviation,
                S_Region region) noexcept;

}  // namespace kestrel
