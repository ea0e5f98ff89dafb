// SPDX-License-Identifier: Apache-2.0
//
// Trellis-coded quantisation: two quantisers, each with a step of two half steps, take turns as
// directed by a machine with four states. Quantiser 0 has the even multiples of the half step;
// quantiser 1 has zero and the odd multiples. The parity of each level moves the machine to its
// next state. By choosing its path, the encoder reaches nearly all points of the half-step grid,
// but pays only for levels of the whole step.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace heron {

inline constexpr std::size_t kStates = 4;

// The state that each part begins with.
inline constexpr std::size_t kFirstState = 0;

// The next state: for each state, first after an even level, then after an odd one.
inline constexpr std::array<std::uint8_t, 2 * kStates> kNextState = {0, 2, 2, 0, 1, 3, 3, 1};

constexpr std::size_t NextState(std::size_t nState, std::uint64_t qwLevel) noexcept {
  return kNextState[2 * nState + (qwLevel & 1)];
}

constexpr std::size_t QuantiserOf(std::size_t nState) noexcept { return nState >> 1; }

// The magnitude that a level (not negative) stands for, in half steps.
constexpr std::int32_t HalfSteps(std::size_t nQuantiser, std::int32_t nLevel) noexcept {
  return nLevel == 0 ? 0 : 2 * nLevel - static_cast<std::int32_t>(nQuantiser);
}

}  // namespace heron
