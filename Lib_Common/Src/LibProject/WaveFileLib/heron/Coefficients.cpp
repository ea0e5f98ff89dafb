// SPDX-License-Identifier: Apache-2.0
#include "heron/Coefficients.h"

#include <cstdlib>

#include "Processor.h"
#include "heron/CoefficientTerms.h"
#include "heron/CoefficientsAvx2.h"

namespace heron {
namespace {

constexpr std::uint32_t Magnitude(std::int32_t nCoefficient) noexcept {
  return static_cast<std::uint32_t>(std::abs(nCoefficient));
}

#if defined(__x86_64__)
bool HasAvx2() noexcept { return vcm::UsableInstructions() == vcm::tagInstructions::kAvx2; }

// Those that the functions of CoefficientsAvx2.h leave out.
std::size_t RestAt(std::size_t nCount) noexcept {
  return nCount / kCoefficientsAtOnce * kCoefficientsAtOnce;
}
#endif

}  // namespace

std::uint64_t SumOfSquares(std::span<const std::int32_t> coefficients) noexcept {
  std::uint64_t qwSum = 0;
#if defined(__x86_64__)
  if (HasAvx2()) {
    qwSum = SumOfSquaresAvx2(coefficients);
    coefficients = coefficients.subspan(RestAt(coefficients.size()));
  }
#endif
  for (const std::int64_t nCoefficient : coefficients) {
    qwSum += static_cast<std::uint64_t>(nCoefficient * nCoefficient);
  }
  return qwSum;
}

std::int64_t SumOfLogs(std::span<const std::int32_t> coefficients, int nIndex) noexcept {
  const std::uint32_t nInverse = C_ToHalfSteps(nIndex).Inverse();
  std::int64_t nSum = 0;
#if defined(__x86_64__)
  if (HasAvx2()) {
    nSum = SumOfLogsAvx2(coefficients, nInverse);
    coefficients = coefficients.subspan(RestAt(coefficients.size()));
  }
#endif
  for (const std::int32_t n : coefficients) nSum += LogTerm(Magnitude(n), nInverse);
  return nSum;
}

void RoundToLevels(std::span<const std::int32_t> coefficients, int nIndex,
                   std::span<std::int32_t> levels) noexcept {
  const std::uint32_t nInverse = C_ToHalfSteps(nIndex).Inverse();
  std::size_t k = 0;
#if defined(__x86_64__)
  if (HasAvx2()) {
    RoundToLevelsAvx2(coefficients, nInverse, levels.data());
    k = RestAt(coefficients.size());
  }
#endif
  for (; k < coefficients.size(); ++k) {
    levels[k] = RoundedLevel(Magnitude(coefficients[k]), nInverse);
  }
}

std::uint64_t PriceOfLevels(std::span<const std::int32_t> levels, const std::uint32_t* pBefore,
                            const std::uint32_t* pBelow, std::size_t nModel) noexcept {
  std::uint64_t qwSum = 0;
  std::size_t k = 0;
#if defined(__x86_64__)
  if (HasAvx2()) {
    qwSum = PriceOfLevelsAvx2(levels, pBefore, pBelow, nModel);
    k = RestAt(levels.size());
  }
#endif
  for (; k < levels.size(); ++k) {
    qwSum += LevelPrice(levels[k], pBefore[k] + pBelow[k], kMagnitudePrices[nModel]);
  }
  return qwSum;
}

}  // namespace heron
