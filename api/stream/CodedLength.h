// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>
#include <limits>

namespace api {

// Coded sounds have at most so many samples: the class library has them in memory, with a length in
// bytes of 32 bits. None is written that could not be read.
inline constexpr std::uint64_t kMostCodedSamples =
    std::numeric_limits<std::uint32_t>::max() / sizeof(std::int16_t);

}  // namespace api
