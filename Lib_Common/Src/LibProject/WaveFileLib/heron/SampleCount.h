// SPDX-License-Identifier: Apache-2.0
//
// The number of samples that coded audio begins with: 7 bits a byte, the lowest first; bit 7 is set
// on all bytes but the last, and there are at most kMostCountBytes. It is 1..2^32-1.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace heron {

inline constexpr std::size_t kMostCountBytes = 5;

void AppendCount(std::vector<std::uint8_t>& bytes, std::size_t nCount);

struct S_Count {
  std::uint64_t qwCount;
  std::size_t nBytes;  // bytes that the count takes
};
// Whether a sound can have so many.
[[nodiscard]] bool IsPossible(const S_Count& count) noexcept;
// Empty when the count does not end within five bytes.
std::optional<S_Count> ReadCount(std::span<const std::uint8_t> coded) noexcept;

}  // namespace heron
