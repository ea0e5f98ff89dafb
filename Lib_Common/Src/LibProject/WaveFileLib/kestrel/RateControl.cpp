// SPDX-License-Identifier: Apache-2.0
#include "kestrel/RateControl.h"

#include <cstddef>

#include "kestrel/TablesEnvelope.h"

namespace kestrel {
namespace {

class C_RateControl {
 public:
  C_RateControl(const S_Frame& coefficients, const S_PowerEntries& powerEntries,
                const S_Categorisation& categorisation)
      : m_coefficients(coefficients),
        m_powerEntries(powerEntries),
        m_categorisation(categorisation) {
    ApplyBalances(m_categorisation, kFirstControl);
    m_coded.nControl = kFirstControl;
  }

  S_CodedFrame Run(int nAvailableBits, int nRegions) {
    for (int r = 0; r < nRegions; ++r) Code(r);
    while (m_coded.nBits < nAvailableBits && m_coded.nControl > 0) {
      Step(m_categorisation.balances[Index(--m_coded.nControl)], -1);
    }
    while (m_coded.nBits > nAvailableBits && m_coded.nControl < kControlValues - 1) {
      Step(m_categorisation.balances[Index(m_coded.nControl++)], 1);
    }
    return m_coded;
  }

 private:
  void Step(int nRegion, int nSteps) {
    m_categorisation.categories[Index(nRegion)] += nSteps;
    Code(nRegion);
  }

  void Code(int nRegion) {
    const std::size_t r = Index(nRegion);
    m_coded.nBits -= m_coded.regions[r].nBits;
    m_coded.regions[r] =
        CodeRegion(RegionOf(m_coefficients, r), RealCategory(m_categorisation.categories[r]),
                   m_powerEntries[r]);
    m_coded.nBits += m_coded.regions[r].nBits;
  }

  const S_Frame& m_coefficients;
  const S_PowerEntries& m_powerEntries;
  S_Categorisation m_categorisation;
  S_CodedFrame m_coded;
};

}  // namespace

S_PowerEntries RescaleRegions(S_Frame& coefficients, const S_Envelope& envelope, int nShift,
                              int nRegions) noexcept {
  S_PowerEntries entries{};
  for (std::size_t r = 0; r < Index(nRegions); ++r) {
    entries[r] =
        RescaleRegion(RegionOf(coefficients, r), envelope[r] + 2 * nShift + kPowerIndexZero);
  }
  return entries;
}

S_CodedFrame CodeRegions(const S_Frame& coefficients, const S_PowerEntries& powerEntries,
                         S_Categorisation categorisation, int nAvailableBits,
                         int nRegions) noexcept {
  return C_RateControl(coefficients, powerEntries, categorisation).Run(nAvailableBits, nRegions);
}

}  // namespace kestrel
