// SPDX-License-Identifier: Apache-2.0
//
// Shares the bits of a frame out over its regions. From the envelope alone, so that encoder and
// decoder agree without a bit spent, each region gets a category (0 finest .. 7 noise only), and a
// list of 15 balances leads from a choice that costs a little too much to one that costs a little
// too little. The control value (0..15) in the frame says how many of them apply.
#pragma once

#include <array>

#include "kestrel/Envelope.h"

namespace kestrel {

inline constexpr int kControlBits = 4;
inline constexpr int kControlValues = 1 << kControlBits;

// Category per region. It can go past 7 when nothing is left to coarsen (and below 0 in damaged
// frames); such a category counts on, so that taking a step back leads to the one before, and
// stands for its nearest real one.
using S_Categories = std::array<int, kMaxRegions>;

struct S_Categorisation {
  S_Categories categories;                       // with no balance applied
  std::array<int, kControlValues - 1> balances;  // region that the n-th balance coarsens by one
};

// The category that a counted one stands for: 0..7.
int RealCategory(int nCategory) noexcept;

// nAvailableBits: what envelope and control leave of the frame; may be negative.
S_Categorisation Categorise(int nAvailableBits, const S_Envelope& envelope, int nRegions) noexcept;

// Applies the first nControl balances.
void ApplyBalances(S_Categorisation& categorisation, int nControl) noexcept;

}  // namespace kestrel
