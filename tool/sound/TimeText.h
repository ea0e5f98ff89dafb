// SPDX-License-Identifier: Apache-2.0
//
// Places in a sound, as people write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

// "0:05.120"; from an hour on "1:00:05.120". Without decimals there is no point.
std::string TimeText(double dSeconds, int nDecimals = 3);

// The frame of "5.12", "0:05.12", "1:00:05.12" or, in samples, "81920s"; nullopt for any other text.
// A time that no sound reaches is the last frame that there can be.
std::optional<std::uint64_t> FrameOfTime(std::string_view text, std::uint32_t dwRate);

}  // namespace tool
