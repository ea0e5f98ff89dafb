// SPDX-License-Identifier: Apache-2.0
#include "heron/LappingAvx2.h"

#if defined(__x86_64__)
#include "LanesAvx2.h"
#include "heron/Complex.h"

VCM_AVX2_BEGIN
namespace heron {
namespace {

using R = __m256i;
constexpr std::size_t kAtOnce = 4;

VCM_LANES_INLINE __m128i Load4(const std::int32_t* p) {
  return _mm_loadu_si128(static_cast<const __m128i*>(static_cast<const void*>(p)));
}
VCM_LANES_INLINE __m128i Reversed(__m128i a) { return _mm_shuffle_epi32(a, 0x1B); }
// From products to 32 bits each.
VCM_LANES_INLINE __m128i Rounded(R products) {
  const R half = _mm256_set1_epi64x(std::int64_t{1} << (kRotationQ - 1));
  const R even = _mm256_srli_epi64(_mm256_add_epi64(products, half), kRotationQ);
  const R first = _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6);
  return _mm256_castsi256_si128(_mm256_permutevar8x32_epi32(even, first));
}

}  // namespace

std::size_t UnfoldAvx2(std::int32_t* pBoundary, std::span<const S_Lap> laps) noexcept {
  std::size_t n = 0;
  for (; n + kAtOnce <= laps.size(); n += kAtOnce) {
    std::int32_t* const pAfter = pBoundary + n;
    std::int32_t* const pBefore = pBoundary - n - kAtOnce;
    const R lap = _mm256_loadu_si256(static_cast<const R*>(static_cast<const void*>(&laps[n])));
    const R far = _mm256_srli_epi64(lap, 32);
    const R after = _mm256_cvtepi32_epi64(Load4(pAfter));
    const R before = _mm256_cvtepi32_epi64(Reversed(Load4(pBefore)));
    const R newAfter =
        _mm256_sub_epi64(_mm256_mul_epi32(after, lap), _mm256_mul_epi32(before, far));
    const R newBefore =
        _mm256_add_epi64(_mm256_mul_epi32(before, lap), _mm256_mul_epi32(after, far));
    _mm_storeu_si128(static_cast<__m128i*>(static_cast<void*>(pAfter)), Rounded(newAfter));
    _mm_storeu_si128(static_cast<__m128i*>(static_cast<void*>(pBefore)),
                     Reversed(Rounded(newBefore)));
  }
  return n;
}

}  // namespace heron
VCM_AVX2_END
#endif
