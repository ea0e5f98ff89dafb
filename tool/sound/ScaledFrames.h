// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <limits>

namespace tool {

// Where a frame is after the rate was changed: qwFrame * dwTo / dwFrom, rounded to the nearest.
// What does not fit in 64 bits becomes the greatest number. The rates are not 0.
[[nodiscard]] inline std::uint64_t ScaledFrames(std::uint64_t qwFrame, std::uint32_t dwFrom,
                                                std::uint32_t dwTo) noexcept {
  if (dwFrom == dwTo) return qwFrame;
  constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
  // In two parts, because the product may not fit.
  std::uint64_t qwWhole = 0;
  if (__builtin_mul_overflow(qwFrame / dwFrom, std::uint64_t{dwTo}, &qwWhole)) return kMost;
  const std::uint64_t qwRest = (qwFrame % dwFrom * dwTo + dwFrom / 2) / dwFrom;
  return qwWhole > kMost - qwRest ? kMost : qwWhole + qwRest;
}

}  // namespace tool
