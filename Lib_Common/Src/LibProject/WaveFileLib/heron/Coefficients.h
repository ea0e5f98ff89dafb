// SPDX-License-Identifier: Apache-2.0
//
// Sums over the coefficients of a part, and estimates of the bits that they take. Only the encoder
// uses them. The results are the same for all instructions (Processor.h).
#pragma once

#include <cstdint>
#include <span>

#include "heron/Dct4.h"
#include "heron/StepSize.h"

namespace heron {

std::uint64_t SumOfSquares(std::span<const std::int32_t> coefficients) noexcept;

// The sum of log2(1 + |c| / half step) over the coefficients, in units of 1/256 bit. The logarithm
// is taken as straight within each octave, and the quotient is rounded down to 16ths.
std::int64_t SumOfLogs(std::span<const std::int32_t> coefficients, int nIndex) noexcept;

// Rounds |c| to levels of quantiser 0: to the nearest one, or to the lower one when the upper one
// is only a little closer.
void RoundToLevels(std::span<const std::int32_t> coefficients, int nIndex,
                   std::span<std::int32_t> levels) noexcept;

// The price (TrellisCosts.h) of levels with these expectations, by the tables of a model and of
// quantiser 0. It leaves out what escapes take. Each expectation is the sum of one from the parts
// before (pBefore) and one from the levels below (pBelow).
std::uint64_t PriceOfLevels(std::span<const std::int32_t> levels, const std::uint32_t* pBefore,
                            const std::uint32_t* pBelow, std::size_t nModel) noexcept;

}  // namespace heron
