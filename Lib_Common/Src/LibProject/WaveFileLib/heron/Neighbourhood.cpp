// SPDX-License-Identifier: Apache-2.0
#include "heron/Neighbourhood.h"

#include <algorithm>
#include <array>
#include <bit>

#include "Processor.h"
#include "heron/Configuration.h"
#include "heron/NeighbourhoodAvx2.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

// Zeros on either side of the magnitudes, so that the sums need no special case at the ends.
constexpr std::size_t kEdge = 2;

// The share of a part in the averages of its bands, Q8, by its size: they halve in 80 ms.
constexpr std::array<std::int32_t, kPartSizes> kShares = {11, 21, 41, 75};
static_assert(kPartSizes == 4);

// The part has 2^kSize coefficients in each band.
template <std::size_t kSize>
void UpdateBandsFrom(const std::int32_t* pMagnitudes, std::int32_t nHalfStep, std::int32_t nShare,
                     std::span<std::int32_t> bands) noexcept {
  for (std::int32_t& nBand : bands) {
    std::int32_t nSum = 0;
    for (std::size_t n = 0; n < std::size_t{1} << kSize; ++n) nSum += *pMagnitudes++;
    const std::int64_t nNew = std::int64_t{nSum} * nHalfStep >> kSize;
    nBand += static_cast<std::int32_t>((nNew - nBand) * nShare >> 8);
  }
}

// The means of 2^kShift values each.
template <int kShift>
void Shrink(std::span<const std::int32_t> from, std::span<std::int32_t> to) noexcept {
  const std::int32_t* pFrom = from.data();
  for (std::int32_t& nMean : to) {
    std::int32_t nSum = 0;
    for (int n = 0; n < 1 << kShift; ++n) nSum += *pFrom++;
    nMean = nSum >> kShift;
  }
}

void ExpectNear(const std::int32_t* p, C_Rescale rescale,
                std::span<std::uint32_t> expected) noexcept {
#if defined(__x86_64__)
  if (vcm::UsableInstructions() == vcm::tagInstructions::kAvx2) {
    return ExpectNearAvx2(p, rescale, expected.size(), expected.data());
  }
#endif
  for (std::size_t k = 0; k < expected.size(); ++k, ++p) {
    const auto nSum = static_cast<std::uint32_t>(
        kWeightBefore0 * p[0] + kWeightBefore1 * (p[-1] + p[1]) + kWeightBefore2 * (p[-2] + p[2]));
    expected[k] = kLeastExpectation + rescale(std::min(nSum, C_Rescale::kMost));
  }
}

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
  ExpectNear(before.data() + kEdge, rescale, expected);
}

void C_PartsBefore::BeginSteady(int nIndex, std::size_t nSize) noexcept {
  // A band is at most 2^29 and a half step at least 2^5, so the expectation stays below 2^31.
  const auto nHalfStep = static_cast<std::uint64_t>(HalfStep(nIndex));
  std::uint32_t* pTo = m_expected.data();
  for (const std::int32_t nBand : m_bands) {
    const std::uint64_t qwExpected = static_cast<std::uint64_t>(nBand) * kWeightBand / nHalfStep;
    pTo = std::fill_n(pTo, std::size_t{1} << nSize,
                      static_cast<std::uint32_t>(qwExpected) + kLeastExpectation);
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
  const std::int32_t nHalfStep = HalfStep(nIndex);
  const std::int32_t nShare = m_bBandsKnown ? kShares[nSize] : 256;
  m_bBandsKnown = true;
  std::span<std::int32_t> bands = m_bands;
  const std::int32_t* pFrom = magnitudes.data();
#if defined(__x86_64__)
  if (vcm::UsableInstructions() == vcm::tagInstructions::kAvx2) {
    const std::size_t nDone = UpdateBandsAvx2(pFrom, nSize, nHalfStep, nShare, bands);
    bands = bands.subspan(nDone);
    pFrom += nDone << nSize;
  }
#endif
  switch (nSize) {
    case 0:
      return UpdateBandsFrom<0>(pFrom, nHalfStep, nShare, bands);
    case 1:
      return UpdateBandsFrom<1>(pFrom, nHalfStep, nShare, bands);
    case 2:
      return UpdateBandsFrom<2>(pFrom, nHalfStep, nShare, bands);
    default:
      return UpdateBandsFrom<3>(pFrom, nHalfStep, nShare, bands);
  }
}

void C_PartsBefore::Stretch(std::size_t nLength) noexcept {
  const std::span from(m_magnitudes.data() + kEdge, m_nLength);
  const std::span to(m_stretched.data() + kEdge, nLength);
  if (m_nLength > nLength) {
    switch (m_nLength / nLength) {
      case 2:
        Shrink<1>(from, to);
        break;
      case 4:
        Shrink<2>(from, to);
        break;
      default:
        Shrink<3>(from, to);
        break;
    }
  } else {
    const std::size_t nRatio = nLength / m_nLength;
    std::int32_t* pTo = to.data();
    for (const std::int32_t nMagnitude : from) pTo = std::fill_n(pTo, nRatio, nMagnitude);
  }
  std::fill_n(to.end(), kEdge, 0);
}

}  // namespace heron
