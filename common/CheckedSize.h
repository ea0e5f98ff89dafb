// SPDX-License-Identifier: Apache-2.0
//
// Size arithmetic on values that come from files. It is done in 64 bits, and the result is narrowed
// in one place.
#pragma once

#include <cstdint>
#include <limits>
#include <optional>

namespace vcm {

// Returns qwCount * dwEach + qwExtra, or nothing when the result does not fit in 32 bits (the width
// of every size in RIFF).
constexpr std::optional<std::uint32_t> CheckedBytes(std::uint64_t qwCount, std::uint32_t dwEach,
                                                    std::uint64_t qwExtra = 0) noexcept {
  constexpr std::uint64_t qwMax = std::numeric_limits<std::uint64_t>::max();
  if (dwEach != 0 && qwCount > (qwMax - qwExtra) / dwEach) return std::nullopt;
  const std::uint64_t qwBytes = qwCount * dwEach + qwExtra;
  if (qwBytes > std::numeric_limits<std::uint32_t>::max()) return std::nullopt;
  return static_cast<std::uint32_t>(qwBytes);
}
static_assert(!CheckedBytes(0x0AAAAAABu, 24, 4));  // a cue count whose product wraps in 32 bits
static_assert(CheckedBytes(2, 24, 4) == 52u);

}  // namespace vcm
