// SPDX-License-Identifier: Apache-2.0
#include "heron/Fourier.h"

#include <algorithm>
#include <utility>

#include "Processor.h"
#include "heron/FourierAvx2.h"
#include "heron/FourierPass.h"

namespace heron {
namespace {

// Factors of 4 first, then 2, then odd primes in rising order.
std::vector<std::size_t> Factors(std::size_t nPoints) {
  std::vector<std::size_t> factors;
  for (std::size_t nFactor = 4; nPoints > 1;) {
    if (nPoints % nFactor == 0) {
      factors.push_back(nFactor);
      nPoints /= nFactor;
    } else {
      nFactor = nFactor == 4 ? 2 : nFactor == 2 ? 3 : nFactor + 2;
    }
  }
  return factors;
}

}  // namespace

C_Fourier::C_Fourier(std::size_t nPoints)
    : m_factors(Factors(nPoints)), m_rotations(nPoints), m_scratch(nPoints) {
  for (std::size_t k = 0; k < nPoints; ++k) {
    m_rotations[k] =
        BackwardRotation(static_cast<std::int64_t>(k), static_cast<std::int64_t>(nPoints));
  }
}

void C_Fourier::Transform(std::span<S_Complex> values) noexcept {
  const bool bAvx2 = vcm::UsableInstructions() == vcm::tagInstructions::kAvx2;
  S_Complex* pIn = values.data();
  S_Complex* pOut = m_scratch.data();
  std::size_t nLeft = values.size();
  std::size_t nDone = 1;
  for (const std::size_t nRadix : m_factors) {
    nLeft /= nRadix;
    const S_FourierPass pass{nRadix, nLeft, nDone, pIn, pOut, m_rotations};
    if (!bAvx2 || !RunFourierPassAvx2(pass)) RunFourierPass(pass);
    nDone *= nRadix;
    std::swap(pIn, pOut);
  }
  if (pIn != values.data()) std::copy_n(pIn, values.size(), values.data());
}

}  // namespace heron
