// SPDX-License-Identifier: Apache-2.0
//
// The search of Trellis.h with AVX2, the four states in four lanes. It finds the same levels. Only
// for processors that have it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "heron/Quantiser.h"
#include "heron/StepSize.h"

namespace heron {

// Fills pChoices, which are as in C_Trellis, and returns the last state of the best path.
std::size_t SearchNearAvx2(std::span<const std::int32_t> coefficients, C_ToHalfSteps toHalfSteps,
                           const std::uint32_t* pExpectations,
                           std::array<std::uint32_t, kStates>* pChoices) noexcept;
std::size_t SearchSteadyAvx2(std::span<const std::int32_t> coefficients, C_ToHalfSteps toHalfSteps,
                             const std::uint32_t* pExpectations,
                             std::array<std::uint32_t, kStates>* pChoices) noexcept;

}  // namespace heron
