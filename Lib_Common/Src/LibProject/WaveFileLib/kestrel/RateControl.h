// SPDX-License-Identifier: Apache-2.0
//
// Chooses how many balances of the categorisation apply, by coding the regions and counting.
#pragma once

#include <array>

#include "kestrel/Categories.h"
#include "kestrel/VectorCoder.h"

namespace kestrel {

// The search begins with this control value.
inline constexpr int kFirstControl = 7;

using S_PowerEntries = std::array<int, kMaxRegions>;

// Scales every coded region into the quantiser's range. Returns the entries that CodeRegion needs.
S_PowerEntries RescaleRegions(S_Frame& coefficients, const S_Envelope& envelope, int nShift,
                              int nRegions) noexcept;

struct S_CodedFrame {
  std::array<S_CodedRegion, kMaxRegions> regions{};
  int nBits = 0;     // of all regions; above nAvailableBits only with the last control value
  int nControl = 0;  // 0..15
};

// Spends as many of nAvailableBits (may be negative) as the categorisation allows.
S_CodedFrame CodeRegions(const S_Frame& coefficients, const S_PowerEntries& powerEntries,
                         S_Categorisation categorisation, int nAvailableBits,
                         int nRegions) noexcept;

}  // namespace kestrel
