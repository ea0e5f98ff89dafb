// SPDX-License-Identifier: Apache-2.0
#include "heron/Neighbourhood.h"

#include <algorithm>
#include <array>
#include <bit>

#include "heron/Configuration.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

// Zeros on either side of the magnitudes, so that the sums need no special case at the ends.
constexpr std::size_t kEdge = 2;

// The share of a part in the averages of its bands, Q8, by its size: they halve in 80 ms.
constexpr std::array<std::int64_t, kPartSizes> kShares = {11, 21, 41, 75};

}  // namespace

C_PartsBefore::C_PartsBefore(std::size_t nUnitLength)
    : m_magnitudes(nUnitLength * kSectionUnits + 2 * kEdge),
      m_stretched(nUnitLength * kSectionUnits + 2 * kEdge),
      m_bands(nUnitLength),
      m_expected(nUnitLength * kSectionUnits) {}

void C_PartsBefore::BeginNear(int nIndex, std::size_t nLength) noexcept {
  const std::span expected(m_expected.data(), nLength);
  if (m_nLength == 0) {
    std::ranges::fill(expected, kLeastExpectation);
    return;
  }
  if (m_nLength != nLength) Stretch(nLength);
  const auto& before = m_nLength == nLength ? m_magnitudes : m_stretched;
  const C_Rescale rescale(m_nIndex, nIndex);
  const std::int32_t* p = before.data() + kEdge;
  for (std::size_t k = 0; k < nLength; ++k, ++p) {
    const auto nSum =
        static_cast<std::uint32_t>(kWeightBefore0 * p[0] + kWeightBefore1 * (p[-1] + p[1]) +
                                   kWeightBefore2 * (p[-2] + p[2]));
    expected[k] = kLeastExpectation + rescale(std::min(nSum, C_Rescale::kMost));
  }
}

void C_PartsBefore::BeginSteady(int nIndex, std::size_t nSize) noexcept {
  constexpr std::uint64_t kMost = std::uint64_t{1} << 31;
  const auto nHalfStep = static_cast<std::uint64_t>(HalfStep(nIndex));
  std::uint32_t* pTo = m_expected.data();
  for (const std::int32_t nBand : m_bands) {
    const std::uint64_t qwExpected = static_cast<std::uint64_t>(nBand) * kWeightBand / nHalfStep;
    pTo = std::fill_n(pTo, std::size_t{1} << nSize,
                      static_cast<std::uint32_t>(std::min(qwExpected + kLeastExpectation, kMost)));
  }
}

void C_PartsBefore::End(int nIndex, std::size_t nSize,
                        std::span<const std::int32_t> magnitudes) noexcept {
  m_nIndex = nIndex;
  m_nLength = magnitudes.size();
  const auto end = std::ranges::copy(magnitudes, m_magnitudes.begin() + kEdge).out;
  std::fill_n(end, kEdge, 0);
  UpdateBands(nIndex, nSize, magnitudes);
}

void C_PartsBefore::UpdateBands(int nIndex, std::size_t nSize,
                                std::span<const std::int32_t> magnitudes) noexcept {
  const std::int64_t nHalfStep = HalfStep(nIndex);
  const std::int32_t* pFrom = magnitudes.data();
  for (std::int32_t& nBand : m_bands) {
    std::int64_t nSum = 0;
    for (std::size_t n = 0; n < std::size_t{1} << nSize; ++n) nSum += *pFrom++;
    const std::int64_t nNew = nSum * nHalfStep >> nSize;
    const std::int64_t nChange = m_bBandsKnown ? (nNew - nBand) * kShares[nSize] >> 8 : nNew;
    nBand += static_cast<std::int32_t>(nChange);
  }
  m_bBandsKnown = true;
}

void C_PartsBefore::Stretch(std::size_t nLength) noexcept {
  const std::int32_t* pFrom = m_magnitudes.data() + kEdge;
  std::int32_t* pTo = m_stretched.data() + kEdge;
  if (m_nLength > nLength) {
    const std::size_t nRatio = m_nLength / nLength;
    const int nShift = std::countr_zero(nRatio);
    for (std::size_t k = 0; k < nLength; ++k) {
      std::int32_t nSum = 0;
      for (std::size_t n = 0; n < nRatio; ++n) nSum += *pFrom++;
      *pTo++ = nSum >> nShift;
    }
  } else {
    const std::size_t nRatio = nLength / m_nLength;
    for (std::size_t k = 0; k < m_nLength; ++k) pTo = std::fill_n(pTo, nRatio, *pFrom++);
  }
  std::fill_n(pTo, kEdge, 0);
}

}  // namespace heron
