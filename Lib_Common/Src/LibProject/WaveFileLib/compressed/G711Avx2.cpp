// SPDX-License-Identifier: Apache-2.0
//
// The sixteen codes that share their upper half go up, or down, in equal steps. A code is therefore
// the first value of its sixteen, and as many steps as its lower half says, modulo 2^16. Both come
// from tables of sixteen entries, which a shuffle looks up for 32 codes at once.
#include "compressed/G711Avx2.h"

#if defined(__x86_64__)
#include <immintrin.h>

#include <array>

#include "compressed/G711Expansion.h"

namespace g711 {
namespace {

constexpr unsigned int kFlippedBits = 0x55;  // of an A-law code
constexpr std::size_t kAtOnce = 32;

// The first value and the step of each sixteen, low and high bytes apart.
struct S_Sixteens {
  alignas(16) std::array<std::uint8_t, 16> firstLow{}, firstHigh{}, stepLow{}, stepHigh{};
};

template <typename Expand>
constexpr S_Sixteens SixteensOf(Expand expand, unsigned int dwFlipped) {
  S_Sixteens sixteens;
  for (unsigned int i = 0; i < 16; ++i) {
    const auto dwFirst = static_cast<unsigned int>(expand((i << 4U) ^ dwFlipped));
    const unsigned int dwStep =
        static_cast<unsigned int>(expand((i << 4U | 1U) ^ dwFlipped)) - dwFirst;
    sixteens.firstLow[i] = static_cast<std::uint8_t>(dwFirst);
    sixteens.firstHigh[i] = static_cast<std::uint8_t>(dwFirst >> 8U);
    sixteens.stepLow[i] = static_cast<std::uint8_t>(dwStep);
    sixteens.stepHigh[i] = static_cast<std::uint8_t>(dwStep >> 8U);
  }
  return sixteens;
}

// Whether the tables give the value of every code except the two next to zero of mu-law.
template <typename Expand>
constexpr bool Gives(const S_Sixteens& sixteens, Expand expand, unsigned int dwFlipped,
                     bool bMuLaw) {
  for (unsigned int dwCode = 0; dwCode < 256; ++dwCode) {
    const std::size_t i = (dwCode ^ dwFlipped) >> 4U;
    const unsigned int dwFirst = sixteens.firstLow[i] | sixteens.firstHigh[i] * 256U;
    const unsigned int dwStep = sixteens.stepLow[i] | sixteens.stepHigh[i] * 256U;
    const auto wValue = static_cast<std::uint16_t>(dwFirst + dwStep * ((dwCode ^ dwFlipped) & 15U));
    const bool bApart = bMuLaw && dwCode % 128 == 127;
    if (!bApart && wValue != static_cast<std::uint16_t>(expand(dwCode))) return false;
  }
  return true;
}

constexpr S_Sixteens kMuLaw = SixteensOf(ExpandMuLaw, 0);
constexpr S_Sixteens kALaw = SixteensOf(ExpandALaw, kFlippedBits);
static_assert(Gives(kMuLaw, ExpandMuLaw, 0, true));
static_assert(Gives(kALaw, ExpandALaw, kFlippedBits, false));

#define VCM_G711_AVX2 __attribute__((target("avx2")))

VCM_G711_AVX2 inline __m256i InBothParts(const std::array<std::uint8_t, 16>& table) {
  return _mm256_broadcastsi128_si256(
      _mm_load_si128(reinterpret_cast<const __m128i*>(table.data())));
}

template <bool bMuLaw>
VCM_G711_AVX2 inline std::size_t Expand(std::int16_t* pSamples, const std::uint8_t* pbyCodes,
                                        std::size_t nCodes, const S_Sixteens& sixteens) {
  const __m256i firstLow = InBothParts(sixteens.firstLow);
  const __m256i firstHigh = InBothParts(sixteens.firstHigh);
  const __m256i stepLow = InBothParts(sixteens.stepLow);
  const __m256i stepHigh = InBothParts(sixteens.stepHigh);
  const __m256i half = _mm256_set1_epi8(15);
  const __m256i zero = _mm256_setzero_si256();
  std::size_t i = 0;
  for (; i + kAtOnce <= nCodes; i += kAtOnce) {
    const __m256i loaded = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pbyCodes + i));
    // Unpacking works within each part of a register. In this order of their quarters, the codes
    // come out of it in the order of memory.
    const __m256i codes = _mm256_permute4x64_epi64(loaded, 0xD8);
    const __m256i plain =
        bMuLaw ? codes : _mm256_xor_si256(codes, _mm256_set1_epi8(static_cast<char>(kFlippedBits)));
    const __m256i upper = _mm256_and_si256(_mm256_srli_epi16(plain, 4), half);
    const __m256i lower = _mm256_and_si256(plain, half);
    const __m256i first0 = _mm256_shuffle_epi8(firstLow, upper);
    const __m256i first1 = _mm256_shuffle_epi8(firstHigh, upper);
    const __m256i step0 = _mm256_shuffle_epi8(stepLow, upper);
    const __m256i step1 = _mm256_shuffle_epi8(stepHigh, upper);
    __m256i left = _mm256_add_epi16(
        _mm256_unpacklo_epi8(first0, first1),
        _mm256_mullo_epi16(_mm256_unpacklo_epi8(step0, step1), _mm256_unpacklo_epi8(lower, zero)));
    __m256i right = _mm256_add_epi16(
        _mm256_unpackhi_epi8(first0, first1),
        _mm256_mullo_epi16(_mm256_unpackhi_epi8(step0, step1), _mm256_unpackhi_epi8(lower, zero)));
    if constexpr (bMuLaw) {
      // Code 127 is -1, and code 255 is 0.
      const __m256i isMinusOne = _mm256_cmpeq_epi8(codes, _mm256_set1_epi8(127));
      const __m256i isZero = _mm256_cmpeq_epi8(codes, _mm256_set1_epi8(-1));
      left = _mm256_or_si256(_mm256_andnot_si256(_mm256_unpacklo_epi8(isZero, isZero), left),
                             _mm256_unpacklo_epi8(isMinusOne, isMinusOne));
      right = _mm256_or_si256(_mm256_andnot_si256(_mm256_unpackhi_epi8(isZero, isZero), right),
                              _mm256_unpackhi_epi8(isMinusOne, isMinusOne));
    }
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(pSamples + i), left);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(pSamples + i + kAtOnce / 2), right);
  }
  return i;
}

}  // namespace

VCM_G711_AVX2 std::size_t ExpandMuLawAvx2(std::int16_t* pSamples, const std::uint8_t* pbyCodes,
                                          std::size_t nCodes) noexcept {
  return Expand<true>(pSamples, pbyCodes, nCodes, kMuLaw);
}

VCM_G711_AVX2 std::size_t ExpandALawAvx2(std::int16_t* pSamples, const std::uint8_t* pbyCodes,
                                         std::size_t nCodes) noexcept {
  return Expand<false>(pSamples, pbyCodes, nCodes, kALaw);
}

}  // namespace g711
#else
namespace g711 {

std::size_t ExpandMuLawAvx2(std::int16_t* /*pSamples*/, const std::uint8_t* /*pbyCodes*/,
                            std::size_t /*nCodes*/) noexcept {
  return 0;
}

std::size_t ExpandALawAvx2(std::int16_t* /*pSamples*/, const std::uint8_t* /*pbyCodes*/,
                           std::size_t /*nCodes*/) noexcept {
  return 0;
}

}  // namespace g711
#endif
