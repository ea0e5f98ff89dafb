// SPDX-License-Identifier: Apache-2.0
//
// Sines and cosines from integers only, so that every machine gets the same values.
#pragma once

#include <cstdint>

namespace heron {

// A point of the unit circle.
struct S_CirclePoint {
  std::int32_t nCosine;  // Q30
  std::int32_t nSine;    // Q30
};

// The point at nPart / nWhole of a turn. nPart 0..2^32, nWhole 1..2^32. Each value is within 8
// units of the true one.
S_CirclePoint CirclePoint(std::int64_t nPart, std::int64_t nWhole) noexcept;

}  // namespace heron
