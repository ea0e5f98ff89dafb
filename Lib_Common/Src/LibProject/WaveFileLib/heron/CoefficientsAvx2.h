// SPDX-License-Identifier: Apache-2.0
//
// Coefficients.h with AVX2. Each works on the first coefficients only, on as many as eight divide.
// Only for processors that have it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace heron {

inline constexpr std::size_t kCoefficientsAtOnce = 8;

std::uint64_t SumOfSquaresAvx2(std::span<const std::int32_t> coefficients) noexcept;
// nInverse as C_ToHalfSteps::Inverse().
std::int64_t SumOfLogsAvx2(std::span<const std::int32_t> coefficients,
                           std::uint32_t nInverse) noexcept;
std::uint64_t PriceOfLevelsAvx2(std::span<const std::int32_t> levels, const std::uint32_t* pBefore,
                                const std::uint32_t* pBelow, std::size_t nModel) noexcept;
void RoundToLevelsAvx2(std::span<const std::int32_t> coefficients, std::uint32_t nInverse,
                       std::int32_t* pLevels) noexcept;

}  // namespace heron
