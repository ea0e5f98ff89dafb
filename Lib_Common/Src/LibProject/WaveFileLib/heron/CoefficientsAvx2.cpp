// SPDX-License-Identifier: Apache-2.0
#include "heron/CoefficientsAvx2.h"

#if defined(__x86_64__)
#include "LanesAvx2.h"
#include "heron/CoefficientTerms.h"
#include "heron/MagnitudeCode.h"
#include "heron/TrellisCosts.h"

VCM_AVX2_BEGIN
namespace heron {
namespace {

using R = __m256i;

VCM_LANES_INLINE R Load(const void* p) { return _mm256_loadu_si256(static_cast<const R*>(p)); }
VCM_LANES_INLINE R Fill(std::uint32_t n) { return _mm256_set1_epi32(static_cast<int>(n)); }
VCM_LANES_INLINE R Odd(R a) { return _mm256_srli_epi64(a, 32); }
VCM_LANES_INLINE std::uint64_t Total64(R a) {
  const __m128i sum = _mm_add_epi64(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1));
  return static_cast<std::uint64_t>(_mm_cvtsi128_si64(sum)) +
         static_cast<std::uint64_t>(_mm_extract_epi64(sum, 1));
}
// Adds the unsigned lanes.
VCM_LANES_INLINE std::uint64_t Total32(R a) {
  const R low = _mm256_set1_epi64x(0xFFFFFFFF);
  return Total64(_mm256_add_epi64(_mm256_and_si256(a, low), Odd(a)));
}
// The products of the lanes with a factor, less their low nDown bits, 32 bits each.
template <int nDown>
VCM_LANES_INLINE R Scaled(R values, R factor) {
  const R even = _mm256_srli_epi64(_mm256_mul_epu32(values, factor), nDown);
  const R odd = _mm256_mul_epu32(Odd(values), factor);
  const R high = nDown < 32 ? _mm256_slli_epi64(odd, 32 - nDown) : _mm256_slli_epi64(Odd(odd), 32);
  return _mm256_blend_epi32(even, high, 0xAA);
}

}  // namespace

std::uint64_t SumOfSquaresAvx2(std::span<const std::int32_t> coefficients) noexcept {
  R sum = _mm256_setzero_si256();
  for (std::size_t k = 0; k + kCoefficientsAtOnce <= coefficients.size();
       k += kCoefficientsAtOnce) {
    const R even = Load(&coefficients[k]);
    const R odd = Odd(even);
    sum = _mm256_add_epi64(sum, _mm256_mul_epi32(even, even));
    sum = _mm256_add_epi64(sum, _mm256_mul_epi32(odd, odd));
  }
  return Total64(sum);
}

std::int64_t SumOfLogsAvx2(std::span<const std::int32_t> coefficients,
                           std::uint32_t nInverse) noexcept {
  const R inverse = Fill(nInverse);
  R sum = _mm256_setzero_si256();
  for (std::size_t k = 0; k + kCoefficientsAtOnce <= coefficients.size();
       k += kCoefficientsAtOnce) {
    const R scaled = Scaled<kLogDown>(_mm256_abs_epi32(Load(&coefficients[k])), inverse);
    const R term = _mm256_min_epu32(_mm256_add_epi32(scaled, Fill(1U << kLogQ)), Fill(kMostLogged));
    // A float is a logarithm that is straight within each octave.
    const R asFloat = _mm256_castps_si256(_mm256_cvtepi32_ps(term));
    sum = _mm256_add_epi32(sum, _mm256_srli_epi32(asFloat, 23 - 8));
  }
  constexpr std::int64_t kExponent = 127;
  const std::size_t nCount = coefficients.size() / kCoefficientsAtOnce * kCoefficientsAtOnce;
  return static_cast<std::int64_t>(Total32(sum)) -
         static_cast<std::int64_t>(nCount) * (kExponent + kLogQ) * 256;
}

void RoundToLevelsAvx2(std::span<const std::int32_t> coefficients, std::uint32_t nInverse,
                       std::int32_t* pLevels) noexcept {
  const R inverse = Fill(nInverse);
  for (std::size_t k = 0; k + kCoefficientsAtOnce <= coefficients.size();
       k += kCoefficientsAtOnce) {
    const R scaled = Scaled<kScaledDown>(_mm256_abs_epi32(Load(&coefficients[k])), inverse);
    const R limited = _mm256_min_epu32(scaled, Fill(kMostRounded));
    const R level = _mm256_srli_epi32(_mm256_add_epi32(limited, Fill(kRoundUp)), kScaledQ + 1);
    _mm256_storeu_si256(static_cast<R*>(static_cast<void*>(pLevels + k)), level);
  }
}

std::uint64_t PriceOfLevelsAvx2(std::span<const std::int32_t> levels, const std::uint32_t* pBefore,
                                const std::uint32_t* pBelow, std::size_t nModel) noexcept {
  const auto* const pPrices =
      static_cast<const int*>(static_cast<const void*>(&kMagnitudePrices[nModel]));
  const R zero = _mm256_setzero_si256();
  const R last = Fill(kMagnitudeTables - 4);
  R sum = zero;
  for (std::size_t k = 0; k + kCoefficientsAtOnce <= levels.size(); k += kCoefficientsAtOnce) {
    const R expectation = _mm256_min_epu32(_mm256_add_epi32(Load(pBefore + k), Load(pBelow + k)),
                                           Fill(kMostExpected));
    // As a float, an expectation has its octave and the two bits after its first bit on top.
    const R top = _mm256_srli_epi32(_mm256_castps_si256(_mm256_cvtepi32_ps(expectation)), 21);
    const R quarter = _mm256_sub_epi32(top, Fill(4 * (127 + kLowestOctave)));
    const R shift = _mm256_max_epi32(
        _mm256_sub_epi32(_mm256_srli_epi32(quarter, 2), Fill(kHighestOctave - kLowestOctave - 1)),
        zero);
    const R table =
        _mm256_min_epi32(quarter, _mm256_or_si256(_mm256_and_si256(quarter, Fill(3)), last));
    const R level = Load(&levels[k]);
    const R symbol = _mm256_min_epi32(_mm256_srlv_epi32(level, shift), Fill(kEscapeSymbol));
    const R at = _mm256_add_epi32(_mm256_slli_epi32(table, 5), symbol);
    const R bits = _mm256_sub_epi32(shift, _mm256_cmpgt_epi32(level, zero));
    const R price = _mm256_add_epi32(_mm256_i32gather_epi32(pPrices, at, 4),
                                     _mm256_mullo_epi32(bits, Fill(kBitPrice)));
    sum = _mm256_add_epi32(sum, price);
  }
  return Total32(sum);
}

}  // namespace heron
VCM_AVX2_END
#endif
