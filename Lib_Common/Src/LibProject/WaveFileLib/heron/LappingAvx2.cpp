// SPDX-License-Identifier: Apache-2.0
#include "heron/LappingAvx2.h"

#if defined(__x86_64__)
#include "LanesAvx2.h"
#include "heron/Complex.h"
#include "heron/Dct4.h"

VCM_AVX2_BEGIN
namespace heron {
namespace {

using R = __m256i;
constexpr std::size_t kAtOnce = 4;
constexpr int kFoldDown = kWindowQ - kCoefficientQ;

VCM_LANES_INLINE __m128i Load4(const std::int32_t* p) {
  return _mm_loadu_si128(static_cast<const __m128i*>(static_cast<const void*>(p)));
}
VCM_LANES_INLINE __m128i Reversed(__m128i a) { return _mm_shuffle_epi32(a, 0x1B); }
// Four samples.
VCM_LANES_INLINE __m128i LoadSamples(const std::int16_t* p) {
  return _mm_loadl_epi64(static_cast<const __m128i*>(static_cast<const void*>(p)));
}
VCM_LANES_INLINE __m128i ReversedSamples(__m128i a) { return _mm_shufflelo_epi16(a, 0x1B); }
VCM_LANES_INLINE R LoadLaps(const S_Lap* p) {
  return _mm256_loadu_si256(static_cast<const R*>(static_cast<const void*>(p)));
}
VCM_LANES_INLINE R Far(R laps) { return _mm256_srli_epi64(laps, 32); }
VCM_LANES_INLINE void Store4(std::int32_t* p, __m128i a) {
  _mm_storeu_si128(static_cast<__m128i*>(static_cast<void*>(p)), a);
}
// From products to 32 bits each, less their low nDown bits.
template <int nDown = kRotationQ>
VCM_LANES_INLINE __m128i Rounded(R products) {
  const R half = _mm256_set1_epi64x(std::int64_t{1} << (nDown - 1));
  const R even = _mm256_srli_epi64(_mm256_add_epi64(products, half), nDown);
  const R first = _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6);
  return _mm256_castsi256_si128(_mm256_permutevar8x32_epi32(even, first));
}

}  // namespace

std::size_t UnfoldAvx2(std::int32_t* pBoundary, std::span<const S_Lap> laps) noexcept {
  std::size_t n = 0;
  for (; n + kAtOnce <= laps.size(); n += kAtOnce) {
    std::int32_t* const pAfter = pBoundary + n;
    std::int32_t* const pBefore = pBoundary - n - kAtOnce;
    const R lap = LoadLaps(&laps[n]);
    const R far = Far(lap);
    const R after = _mm256_cvtepi32_epi64(Load4(pAfter));
    const R before = _mm256_cvtepi32_epi64(Reversed(Load4(pBefore)));
    const R newAfter =
        _mm256_sub_epi64(_mm256_mul_epi32(after, lap), _mm256_mul_epi32(before, far));
    const R newBefore =
        _mm256_add_epi64(_mm256_mul_epi32(before, lap), _mm256_mul_epi32(after, far));
    Store4(pAfter, Rounded(newAfter));
    Store4(pBefore, Reversed(Rounded(newBefore)));
  }
  return n;
}

std::size_t FoldAfterAvx2(const std::int16_t* pBoundary, std::span<const S_Lap> laps,
                          std::int32_t* pFolded) noexcept {
  std::size_t n = 0;
  for (; n + kAtOnce <= laps.size(); n += kAtOnce) {
    const R lap = LoadLaps(&laps[n]);
    const R after = _mm256_cvtepi16_epi64(LoadSamples(pBoundary + n));
    const R before = _mm256_cvtepi16_epi64(ReversedSamples(LoadSamples(pBoundary - n - kAtOnce)));
    const R folded =
        _mm256_add_epi64(_mm256_mul_epi32(after, lap), _mm256_mul_epi32(before, Far(lap)));
    Store4(pFolded + n, Rounded<kFoldDown>(folded));
  }
  return n;
}

std::size_t FoldBeforeAvx2(const std::int16_t* pBoundary, std::span<const S_Lap> laps,
                           std::int32_t* pFoldedEnd) noexcept {
  std::size_t n = 0;
  for (; n + kAtOnce <= laps.size(); n += kAtOnce) {
    const R lap = LoadLaps(&laps[n]);
    const R after = _mm256_cvtepi16_epi64(LoadSamples(pBoundary + n));
    const R before = _mm256_cvtepi16_epi64(ReversedSamples(LoadSamples(pBoundary - n - kAtOnce)));
    const R folded =
        _mm256_sub_epi64(_mm256_mul_epi32(before, lap), _mm256_mul_epi32(after, Far(lap)));
    Store4(pFoldedEnd - n - kAtOnce, Reversed(Rounded<kFoldDown>(folded)));
  }
  return n;
}

std::size_t ToSamplesAvx2(std::span<const std::int32_t> values, std::int16_t* pSamples) noexcept {
  constexpr std::size_t kSamplesAtOnce = 16;
  const R one = _mm256_set1_epi32(1);
  const auto rounded = [&](const std::int32_t* p) VCM_LANES_INLINE_LAMBDA {
    const R loaded = _mm256_loadu_si256(static_cast<const R*>(static_cast<const void*>(p)));
    return _mm256_srai_epi32(_mm256_add_epi32(_mm256_srai_epi32(loaded, kCoefficientQ - 1), one),
                             1);
  };
  std::size_t n = 0;
  for (; n + kSamplesAtOnce <= values.size(); n += kSamplesAtOnce) {
    const R packed = _mm256_packs_epi32(rounded(&values[n]), rounded(&values[n + 8]));
    _mm256_storeu_si256(static_cast<R*>(static_cast<void*>(pSamples + n)),
                        _mm256_permute4x64_epi64(packed, 0xD8));
  }
  return n;
}

}  // namespace heron
VCM_AVX2_END
#endif
