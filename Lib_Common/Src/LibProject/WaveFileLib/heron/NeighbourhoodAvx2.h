// SPDX-License-Identifier: Apache-2.0
//
// The near expectation of Neighbourhood.h with AVX2, the same to the bit.
#pragma once

#include <cstddef>
#include <cstdint>

#include "heron/StepSize.h"

namespace heron {

// Sets nLength expectations, at least 8, from the magnitudes of the previous part, which has two
// more values on either side. Only for processors that have AVX2.
void ExpectNearAvx2(const std::int32_t* pBefore, C_Rescale rescale, std::size_t nLength,
                    std::uint32_t* pExpected) noexcept;

}  // namespace heron
