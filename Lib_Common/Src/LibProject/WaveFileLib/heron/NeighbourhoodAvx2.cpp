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

VCM_LANES_INLINE __m128i Load4(const std::int32_t* p) {
  return _mm_loadu_si128(static_cast<const __m128i*>(static_cast<const void*>(p)));
}
// The sums of each kCount values: 1, 2, 4 or 8 of them.
template <std::size_t kCount>
VCM_LANES_INLINE __m128i Sums(const std::int32_t* p) {
  if constexpr (kCount == 1) {
    return Load4(p);
  } else if constexpr (kCount == 2) {
    return _mm_hadd_epi32(Load4(p), Load4(p + 4));
  } else if constexpr (kCount == 4) {
    return _mm_hadd_epi32(Sums<2>(p), Sums<2>(p + 8));
  } else {
    const auto pair = [p](std::size_t n) VCM_LANES_INLINE_LAMBDA {
      return _mm_add_epi32(Load4(p + 8 * n), Load4(p + 8 * n + 4));
    };
    return _mm_hadd_epi32(_mm_hadd_epi32(pair(0), pair(1)), _mm_hadd_epi32(pair(2), pair(3)));
  }
}

template <int kSize>
VCM_LANES_INLINE std::size_t UpdateBands(const std::int32_t* pMagnitudes, std::int32_t nHalfStep,
                                         std::int32_t nShare, std::span<std::int32_t> bands) {
  constexpr std::size_t kBandsAtOnce = 4;
  const R halfStep = _mm256_set1_epi64x(nHalfStep);
  const R share = _mm256_set1_epi64x(nShare);
  const R low = _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6);
  std::size_t n = 0;
  for (; n + kBandsAtOnce <= bands.size(); n += kBandsAtOnce) {
    const R sums = _mm256_cvtepi32_epi64(Sums<1 << kSize>(pMagnitudes + (n << kSize)));
    const R now = _mm256_srli_epi64(_mm256_mul_epi32(sums, halfStep), kSize);
    const R before = _mm256_cvtepi32_epi64(Load4(&bands[n]));
    const R change = _mm256_mul_epi32(_mm256_sub_epi64(now, before), share);
    const R after = _mm256_add_epi64(before, _mm256_srli_epi64(change, 8));
    _mm_storeu_si128(static_cast<__m128i*>(static_cast<void*>(&bands[n])),
                     _mm256_castsi256_si128(_mm256_permutevar8x32_epi32(after, low)));
  }
  return n;
}

}  // namespace

std::size_t UpdateBandsAvx2(const std::int32_t* pMagnitudes, std::size_t nSize,
                            std::int32_t nHalfStep, std::int32_t nShare,
                            std::span<std::int32_t> bands) noexcept {
  switch (nSize) {
    case 0:
      return UpdateBands<0>(pMagnitudes, nHalfStep, nShare, bands);
    case 1:
      return UpdateBands<1>(pMagnitudes, nHalfStep, nShare, bands);
    case 2:
      return UpdateBands<2>(pMagnitudes, nHalfStep, nShare, bands);
    default:
      return UpdateBands<3>(pMagnitudes, nHalfStep, nShare, bands);
  }
}

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
    const R sum = _mm256_add_epi32(
        _mm256_slli_epi32(Load(p), 3),
        _mm256_add_epi32(Weighted<kWeightBefore1>(near), _mm256_slli_epi32(far, 1)));
    const R scaled =
        _mm256_srl_epi32(_mm256_mullo_epi32(_mm256_min_epu32(sum, most), factor), shift);
    _mm256_storeu_si256(static_cast<R*>(static_cast<void*>(pExpected + k)),
                        _mm256_add_epi32(scaled, least));
  }
}

}  // namespace heron
VCM_AVX2_END
#endif
