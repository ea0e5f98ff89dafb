// SPDX-License-Identifier: Apache-2.0
//
// The loops of Neighbourhood.h with AVX2, the same to the bit. Only for processors that have it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "heron/StepSize.h"

namespace heron {

// Sets nLength expectations, at least 8, from the magnitudes of the previous part, which has two
// more values on either side.
void ExpectNearAvx2(const std::int32_t* pBefore, C_Rescale rescale, std::size_t nLength,
                    std::uint32_t* pExpected) noexcept;

// Updates as many bands as four divide, from a part of 2^nSize coefficients per band, and returns
// their number. nShare is Q8.
std::size_t UpdateBandsAvx2(const std::int32_t* pMagnitudes, std::size_t nSize,
                            std::int32_t nHalfStep, std::int32_t nShare,
                            std::span<std::int32_t> bands) noexcept;

}  // namespace heron
