// SPDX-License-Identifier: Apache-2.0
#include "heron/Loudness.h"

#include "heron/Dct4.h"

namespace heron {

int LoudnessOf(std::span<const std::int32_t> coefficients) noexcept {
  std::uint64_t qwSquares = 0;
  for (const std::int64_t nCoefficient : coefficients) {
    qwSquares += static_cast<std::uint64_t>(nCoefficient * nCoefficient);
  }
  return Loudness(qwSquares >> 2 * kCoefficientQ, coefficients.size());
}

}  // namespace heron
