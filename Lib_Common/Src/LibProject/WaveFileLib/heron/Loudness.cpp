// SPDX-License-Identifier: Apache-2.0
#include "heron/Loudness.h"

#include "heron/Coefficients.h"
#include "heron/Dct4.h"

namespace heron {

int LoudnessOf(std::span<const std::int32_t> coefficients) noexcept {
  return Loudness(SumOfSquares(coefficients) >> 2 * kCoefficientQ, coefficients.size());
}

}  // namespace heron
