// SPDX-License-Identifier: Apache-2.0
#include "heron/ModelChoice.h"

#include "heron/Coefficients.h"

namespace heron {
namespace {

// Zeros before the levels, so that the first ones need no special case.
constexpr std::size_t kEdge = 3;

// What the levels below each one say about it by the near model. p is at the first level.
void ExpectNearBelow(const std::int32_t* p, std::span<std::uint32_t> below) noexcept {
  for (std::size_t k = 0; k < below.size(); ++k) {
    const std::int32_t* const pAt = p + k;
    below[k] = static_cast<std::uint32_t>(
        2 * (kWeightBelow1 * pAt[-1] + kWeightBelow2 * pAt[-2] + kWeightBelow3 * pAt[-3]));
  }
}
void ExpectSteadyBelow(std::span<const std::int32_t> levels, std::uint32_t* pBelow) noexcept {
  C_SteadyBelow below;
  for (const std::int32_t nLevel : levels) {
    *pBelow++ = below.Expectation();
    below = below.Then(2 * nLevel);
  }
}

}  // namespace

C_ModelChoice::C_ModelChoice(std::size_t nLength) : m_levels(nLength + kEdge), m_below(nLength) {}

bool C_ModelChoice::Begin(std::span<const std::int32_t> coefficients, int nIndex, std::size_t nSize,
                          C_PartsBefore& before) noexcept {
  const std::span levels(m_levels.data() + kEdge, coefficients.size());
  const std::span below(m_below.data(), coefficients.size());
  RoundToLevels(coefficients, nIndex, levels);
  before.BeginSteady(nIndex, nSize);
  ExpectSteadyBelow(levels, below.data());
  const std::uint64_t qwSteady =
      PriceOfLevels(levels, before.Expectations().data(), below.data(), ModelOf<C_SteadyBelow>());
  before.BeginNear(nIndex, coefficients.size());
  ExpectNearBelow(levels.data(), below);
  if (PriceOfLevels(levels, before.Expectations().data(), below.data(), ModelOf<C_NearBelow>()) <=
      qwSteady) {
    return false;
  }
  before.BeginSteady(nIndex, nSize);
  return true;
}

}  // namespace heron
