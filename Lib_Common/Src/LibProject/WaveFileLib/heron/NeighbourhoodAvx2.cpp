// SPDX-License-Identifier: Apache-2.0
#include "heron/NeighbourhoodAvx2.h"

#if defined(__x86_64__)
#include <algorithm>

#include "LanesAvx2.h"
#include "heron/Neighbourhood.h"
#include "heron/StepSize.h"

VCM_AVX2_BEGIN
namespace heron {
namespace {

using R = __m256i;
constexpr std::size_t kAtOnce = 8;

VCM_LANES_INLINE R Load(const std::int32_t* p) {
  return _mm256_loadu_si256(static_cast<const __m256i*>(static_cast<const void*>(p)));
}
template <std::int32_t nWeight>
VCM_LANES_INLINE R Weighted(R values) {
  return _mm256_mullo_epi32(values, _mm256_set1_epi32(nWeight));
}

}  // namespace

void ExpectNearAvx2(const std::int32_t* pBefore, C_Rescale rescale, std::size_t nLength,
                    std::uint32_t* pExpected) noexcept {
  const R most = _mm256_set1_epi32(static_cast<int>(C_Rescale::kMost));
  const R least = _mm256_set1_epi32(static_cast<int>(kLeastExpectation));
  const R factor = _mm256_set1_epi32(static_cast<int>(rescale.Factor()));
  const __m128i shift = _mm_cvtsi32_si128(rescale.Shift());
  // The last register overlaps the one before it. Parts are never shorter than one.
  for (std::size_t nNext = 0; nNext < nLength; nNext += kAtOnce) {
    const std::size_t k = std::min(nNext, nLength - kAtOnce);
    const std::int32_t* const p = pBefore + k;
    const R near = _mm256_add_epi32(Load(p - 1), Load(p + 1));
    const R far = _mm256_add_epi32(Load(p - 2), Load(p + 2));
    const R sum = _mm256_add_epi32(_mm256_slli_epi32(Load(p), 3),
                                   _mm256_add_epi32(Weighted<kWeightBefore1>(near),
                                                    _mm256_slli_epi32(far, 1)));
    const R scaled =
        _mm256_srl_epi32(_mm256_mullo_epi32(_mm256_min_epu32(sum, most), factor), shift);
    _mm256_storeu_si256(static_cast<R*>(static_cast<void*>(pExpected + k)),
                        _mm256_add_epi32(scaled, least));
  }
}

}  // namespace heron
VCM_AVX2_END
#endif
