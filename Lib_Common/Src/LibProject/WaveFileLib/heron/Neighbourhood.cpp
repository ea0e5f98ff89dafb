// SPDX-License-Identifier: Apache-2.0
#include "heron/Neighbourhood.h"

#include <algorithm>
#include <cstddef>

#include "heron/StepSize.h"

namespace heron {

C_PreviousFrame::C_PreviousFrame(int nLength)
    : m_smoothed(static_cast<std::size_t>(nLength)),
      m_expected(static_cast<std::size_t>(nLength), kLeastExpectation) {}

void C_PreviousFrame::Begin(int nIndex) noexcept {
  const C_Rescale rescale(m_nIndex, nIndex);
  for (std::size_t k = 0; k < m_smoothed.size(); ++k) {
    m_expected[k] = kLeastExpectation + rescale(m_smoothed[k]);
  }
  m_nIndex = nIndex;
}

// Positions beyond either end of the frame count as 0.
void C_PreviousFrame::End(std::span<const std::int32_t> magnitudes) noexcept {
  const std::size_t nLength = magnitudes.size();
  const auto at = [&](std::size_t k) { return k < nLength ? magnitudes[k] : 0; };
  const auto smooth = [&](std::size_t k, auto value) {
    const auto nSum = static_cast<std::uint32_t>(kWeightBefore0 * value(k) +
                                                 kWeightBefore1 * (value(k - 1) + value(k + 1)) +
                                                 kWeightBefore2 * (value(k - 2) + value(k + 2)));
    m_smoothed[k] = nSum < C_Rescale::kMost ? nSum : C_Rescale::kMost;
  };
  const std::size_t nEdge = std::min<std::size_t>(2, nLength);
  for (std::size_t k = 0; k < nEdge; ++k) smooth(k, at);
  for (std::size_t k = nEdge; k + 2 < nLength; ++k) {
    smooth(k, [&](std::size_t n) { return magnitudes[n]; });
  }
  for (std::size_t k = std::max(nEdge, nLength - nEdge); k < nLength; ++k) smooth(k, at);
}

}  // namespace heron
