// SPDX-License-Identifier: Apache-2.0
//
// Lapping.h with AVX2, the same to the bit. Only for processors that have it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "heron/Lapping.h"

namespace heron {

// Unfolds the laps that come in whole groups of four, from the boundary outwards, and returns their
// number.
std::size_t UnfoldAvx2(std::int32_t* pBoundary, std::span<const S_Lap> laps) noexcept;

}  // namespace heron
