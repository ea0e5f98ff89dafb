// SPDX-License-Identifier: Apache-2.0
//
// Trellis-coded quantisation: two quantisers of step 2 half steps take turns, as a machine of four
// states says. Quantiser 0 has the even multiples of the half step, quantiser 1 zero and the odd
// ones. The parity of each level moves the machine on, so the encoder reaches nearly all points of
// the half-step grid by choosing its path, and pays for levels of the whole step.
#pragma once

#include <cstddef>
#include <cstdint>

namespace heron {

inline constexpr std::size_t kStates = 4;

// The state that each frame begins with.
inline constexpr std::size_t kFirstState = 0;

// From state 0 to 0 or 2 (level even or odd), from 1 to 2 or 0, from 2 to 1 or 3, from 3 to 3 or 1.
constexpr std::size_t NextState(std::size_t nState, std::int32_t nLevel) noexcept {
  // Two bits for each state and parity, the first pair lowest.
  constexpr std::size_t kNext = 0b01'11'11'01'00'10'10'00;
  return kNext >> (4 * nState + 2 * static_cast<std::size_t>(nLevel & 1)) & 3;
}

constexpr int QuantiserOf(std::size_t nState) noexcept { return nState < 2 ? 0 : 1; }

// The magnitude that a level (not negative) stands for, in half steps.
constexpr std::int32_t HalfSteps(int nQuantiser, std::int32_t nLevel) noexcept {
  return nLevel == 0 ? 0 : 2 * nLevel - nQuantiser;
}

}  // namespace heron
