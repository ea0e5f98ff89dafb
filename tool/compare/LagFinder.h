// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstdint>

#include "compare/SampleSource.h"

namespace tool {

// By how many frames the second sound is later than the first: frame n of the first is frame
// n + lag of the second. Negative when it is earlier, and 0 when no lag explains it clearly better.
//
// The first two million frames that are not silent are looked at, the sum of all channels. Memory
// grows with the greatest lag that is looked for, not with the sounds. Both are read from their
// beginnings.
std::int64_t FindLag(C_SampleSource& first, C_SampleSource& second, std::size_t nMostLag);

// The greatest lag that can be looked for, in frames.
inline constexpr std::size_t kMostLag = std::size_t{1} << 19U;

}  // namespace tool
