// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

// A place in a sound as people type it: seconds, "1:02.5", "1:02:03", or "32000s" for a frame.
struct S_PlayTime {
  double dSeconds = 0.0;
  std::optional<std::uint64_t> frame;

  [[nodiscard]] std::uint64_t FrameAt(std::uint32_t dwRate) const;
};

// None for what is no time.
std::optional<S_PlayTime> ParsePlayTime(const std::string& strText);

// "0:01.250", "1:02:03.000".
std::string PlayTimeText(std::uint64_t qwFrame, std::uint32_t dwRate);

}  // namespace tool
