// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace tool {

// Where a sound ends.
struct S_SoundEnd {
  std::uint64_t qwFrames = UINT64_MAX;  // UINT64_MAX: nobody knows, or it does not matter
  std::uint32_t dwRate = 0;
};

// Why a mark is more likely a slip than wanted: "0:02.000 is beyond the end of the sound at
// 0:01.000; --anyway adds it nevertheless". Empty when it is within the sound.
std::optional<std::string> BeyondEnd(std::uint64_t qwStart, std::uint64_t qwLength,
                                     const S_SoundEnd& end);

}  // namespace tool
