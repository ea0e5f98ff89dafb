// SPDX-License-Identifier: Apache-2.0
//
// Shares out the bits of a frame over its regions. Everything follows from the envelope, so encoder
// and decoder agree without spending a bit. Each region gets a category (0 finest .. 7 noise only).
// A list of 15 balances leads from a choice that costs a little too much to one that costs a little
// too little. The control value (0..15) in the frame says how many of them apply.
#pragma once

#include <array>

#include "kestrel/Envelope.h"

namespace kestrel {

inline constexpr int kControlBits = 4;
inline constexpr int kControlValues = 1 << kControlBits;

// Category per region. It can go past 7 when nothing is left to coarsen (and below 0 in damaged
// frames). Such a category keeps counting, so that a step back returns to the previous one. It
// stands for the nearest real category.
using S_Categories = std::array<int, kMaxRegions>;

struct S_Categorisation {
  S_Categories categories;                       // with no balance applied
  std::array<int, kControlValues - 1> balances;  // region that the n-th balance coarsens by one
};

// How many of the available bits count: beyond 320, only five eighths.
constexpr int CountedBits(int nAvailableBits) noexcept {
  constexpr int kFullValueBits = 320;
  if (nAvailableBits <= kFullValueBits) return nAvailableBits;
  return kFullValueBits + ((nAvailableBits - kFullValueBits) * 5 >> 3);
}
// The first assignment may spend this many bits less.
inline constexpr int kOffsetMargin = 32;

// The real category (0..7) that a counted one stands for.
int RealCategory(int nCategory) noexcept;

// nAvailableBits: the bits of the frame that envelope and control leave over; may be negative.
S_Categorisation Categorise(int nAvailableBits, const S_Envelope& envelope, int nRegions) noexcept;

// Applies the first nControl balances.
void ApplyBalances(S_Categorisation& categorisation, int nControl) noexcept;

}  // namespace kestrel
