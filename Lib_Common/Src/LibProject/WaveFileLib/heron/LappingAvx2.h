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

// Folds as many samples after a boundary, from it outwards, as four divide, and returns their
// number: pFolded[i] from pBoundary[i] and pBoundary[-1 - i].
std::size_t FoldAfterAvx2(const std::int16_t* pBoundary, std::span<const S_Lap> laps,
                          std::int32_t* pFolded) noexcept;
// The same before a boundary: pFoldedEnd[-1 - i] from pBoundary[-1 - i] and pBoundary[i].
std::size_t FoldBeforeAvx2(const std::int16_t* pBoundary, std::span<const S_Lap> laps,
                           std::int32_t* pFoldedEnd) noexcept;

// Rounds as many values as sixteen divide to samples, and returns their number.
std::size_t ToSamplesAvx2(std::span<const std::int32_t> values, std::int16_t* pSamples) noexcept;

}  // namespace heron
