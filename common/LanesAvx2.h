// SPDX-License-Identifier: Apache-2.0
//
// Lanes.h with AVX2. A register is two parts of eight lanes.
//
// The library runs on processors without AVX2, too, so only what stands between VCM_AVX2_BEGIN and
// VCM_AVX2_END is compiled for it. Templates over these lanes must stand there, and nothing that
// other sources share: the linker keeps one of several equal functions, whatever it was compiled
// for.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "Lanes.h"
#include "LanesSse2.h"

#if defined(__clang__)
#define VCM_AVX2_BEGIN \
  _Pragma("clang attribute push(__attribute__((target(\"avx2,bmi,bmi2\"))), apply_to = function)")
#define VCM_AVX2_END _Pragma("clang attribute pop")
#else
#define VCM_AVX2_BEGIN _Pragma("GCC push_options") _Pragma("GCC target(\"avx2,bmi,bmi2\")")
#define VCM_AVX2_END _Pragma("GCC pop_options")
#endif

VCM_AVX2_BEGIN
namespace vcm {

struct S_LanesAvx2 {
  using R = __m256i;
  using S_Part = S_LanesSse2;
  static constexpr int kParts = 2;
  static constexpr int kLanes = 16;

  VCM_LANES_INLINE static R Load(const void* p) {
    return _mm256_loadu_si256(static_cast<const __m256i*>(p));
  }
  VCM_LANES_INLINE static void Store(void* p, R a) {
    _mm256_storeu_si256(static_cast<__m256i*>(p), a);
  }
  VCM_LANES_INLINE static R LoadParts(const void* pFirst, const void* pSecond) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(S_LanesSse2::Load(pFirst)),
                                   S_LanesSse2::Load(pSecond), 1);
  }
  VCM_LANES_INLINE static void StoreParts(void* pFirst, void* pSecond, R a) {
    StoreFirstPart(pFirst, a);
    S_LanesSse2::Store(pSecond, _mm256_extracti128_si256(a, 1));
  }
  VCM_LANES_INLINE static void StoreFirstPart(void* p, R a) {
    S_LanesSse2::Store(p, _mm256_castsi256_si128(a));
  }
  VCM_LANES_INLINE static R LoadEachPart(const void* p) {
    return _mm256_broadcastsi128_si256(S_LanesSse2::Load(p));
  }
  VCM_LANES_INLINE static R Fill16(int n) {
    return _mm256_set1_epi16(static_cast<std::int16_t>(n));
  }
  VCM_LANES_INLINE static R Fill32(int n) { return _mm256_set1_epi32(n); }
  VCM_LANES_INLINE static R Zero() { return _mm256_setzero_si256(); }

  VCM_LANES_INLINE static R Add16(R a, R b) { return _mm256_add_epi16(a, b); }
  VCM_LANES_INLINE static R Sub16(R a, R b) { return _mm256_sub_epi16(a, b); }
  VCM_LANES_INLINE static R AddLimited16(R a, R b) { return _mm256_adds_epi16(a, b); }
  VCM_LANES_INLINE static R SubLimited16(R a, R b) { return _mm256_subs_epi16(a, b); }
  VCM_LANES_INLINE static R Max16(R a, R b) { return _mm256_max_epi16(a, b); }
  VCM_LANES_INLINE static R ShiftLeft16(R a, int n) {
    return _mm256_sll_epi16(a, _mm_cvtsi32_si128(n));
  }
  VCM_LANES_INLINE static R ShiftRight16(R a, int n) {
    return _mm256_sra_epi16(a, _mm_cvtsi32_si128(n));
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRight16(R a) {
    return _mm256_srai_epi16(a, n);
  }
  VCM_LANES_INLINE static R And(R a, R b) { return _mm256_and_si256(a, b); }
  VCM_LANES_INLINE static R Or(R a, R b) { return _mm256_or_si256(a, b); }
  VCM_LANES_INLINE static R Xor(R a, R b) { return _mm256_xor_si256(a, b); }
  VCM_LANES_INLINE static R MultiplyLow16(R a, R b) { return _mm256_mullo_epi16(a, b); }
  VCM_LANES_INLINE static R MultiplyHigh16(R a, R b) { return _mm256_mulhi_epi16(a, b); }
  template <int n>
  VCM_LANES_INLINE static R ShiftLeft16(R a) {
    return _mm256_slli_epi16(a, n);
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRightUnsigned16(R a) {
    return _mm256_srli_epi16(a, n);
  }
  VCM_LANES_INLINE static R IsEqual16(R a, R b) { return _mm256_cmpeq_epi16(a, b); }
  VCM_LANES_INLINE static R IsGreater16(R a, R b) { return _mm256_cmpgt_epi16(a, b); }

  VCM_LANES_INLINE static R SumOfProducts(R a, R b) { return _mm256_madd_epi16(a, b); }
  VCM_LANES_INLINE static R Add32(R a, R b) { return _mm256_add_epi32(a, b); }
  template <int n>
  VCM_LANES_INLINE static R ShiftRight32(R a) {
    return _mm256_srai_epi32(a, n);
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRightUnsigned32(R a) {
    return _mm256_srli_epi32(a, n);
  }
  VCM_LANES_INLINE static R IsGreater32(R a, R b) { return _mm256_cmpgt_epi32(a, b); }
  VCM_LANES_INLINE static R Narrow(R a, R b) { return _mm256_packs_epi32(a, b); }

  VCM_LANES_INLINE static R InterleaveLow16(R a, R b) { return _mm256_unpacklo_epi16(a, b); }
  VCM_LANES_INLINE static R InterleaveHigh16(R a, R b) { return _mm256_unpackhi_epi16(a, b); }
  VCM_LANES_INLINE static R InterleaveLow32(R a, R b) { return _mm256_unpacklo_epi32(a, b); }
  VCM_LANES_INLINE static R InterleaveHigh32(R a, R b) { return _mm256_unpackhi_epi32(a, b); }
  VCM_LANES_INLINE static R InterleaveLow64(R a, R b) { return _mm256_unpacklo_epi64(a, b); }
  VCM_LANES_INLINE static R InterleaveHigh64(R a, R b) { return _mm256_unpackhi_epi64(a, b); }
  VCM_LANES_INLINE static R InterleaveHalves(R a) {
    return _mm256_shuffle_epi8(a, _mm256_broadcastsi128_si256(_mm_setr_epi8(
                                      0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15)));
  }
  // The lanes of both parts, those of the first at even places. Within each part of the result the
  // two middle pairs are swapped.
  VCM_LANES_INLINE static R InterleavePartsAndSwap(R a) {
    return _mm256_shuffle_epi8(_mm256_permute4x64_epi64(a, 0xD8),
                               _mm256_broadcastsi128_si256(_mm_setr_epi8(
                                   0, 1, 8, 9, 4, 5, 12, 13, 2, 3, 10, 11, 6, 7, 14, 15)));
  }
  VCM_LANES_INLINE static R ReverseParts(R a) {
    return _mm256_shuffle_epi8(a, _mm256_broadcastsi128_si256(_mm_setr_epi8(
                                      14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1)));
  }
  VCM_LANES_INLINE static R Reverse(R a) { return _mm256_permute4x64_epi64(ReverseParts(a), 0x4E); }

  VCM_LANES_INLINE static int Total32(R a) {
    return S_LanesSse2::Total32(
        _mm_add_epi32(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1)));
  }
  VCM_LANES_INLINE static int Largest16(R a) {
    return S_LanesSse2::Largest16(
        _mm_max_epi16(_mm256_castsi256_si128(a), _mm256_extracti128_si256(a, 1)));
  }
  VCM_LANES_INLINE static unsigned int Signs32(R a) {
    return static_cast<unsigned int>(_mm256_movemask_ps(_mm256_castsi256_ps(a)));
  }
};

}  // namespace vcm
VCM_AVX2_END
