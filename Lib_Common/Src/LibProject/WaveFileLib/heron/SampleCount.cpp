// SPDX-License-Identifier: Apache-2.0
#include "heron/SampleCount.h"

#include <limits>

namespace heron {

bool IsPossible(const S_Count& count) noexcept {
  return count.qwCount > 0 && count.qwCount <= std::numeric_limits<std::uint32_t>::max();
}

void AppendCount(std::vector<std::uint8_t>& bytes, std::size_t nCount) {
  for (; nCount >= 0x80; nCount >>= 7) bytes.push_back(static_cast<std::uint8_t>(nCount | 0x80));
  bytes.push_back(static_cast<std::uint8_t>(nCount));
}

std::optional<S_Count> ReadCount(std::span<const std::uint8_t> bytes) noexcept {
  std::uint64_t qwCount = 0;
  for (std::size_t n = 0; n < bytes.size() && n < kMostCountBytes; ++n) {
    qwCount |= std::uint64_t{bytes[n] & 0x7Fu} << (7 * n);
    if (bytes[n] < 0x80) return S_Count{qwCount, n + 1};
  }
  return std::nullopt;
}

}  // namespace heron
