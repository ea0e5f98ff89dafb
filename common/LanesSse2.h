// SPDX-License-Identifier: Apache-2.0
//
// Lanes.h with the instructions that every x86-64 processor has.
#pragma once

#include <emmintrin.h>

#include <cstdint>

#include "Lanes.h"

namespace vcm {

struct S_LanesSse2 {
  using R = __m128i;
  using S_Part = S_LanesSse2;
  static constexpr int kParts = 1;
  static constexpr int kLanes = 8;

  VCM_LANES_INLINE static R Load(const void* p) {
    return _mm_loadu_si128(static_cast<const __m128i*>(p));
  }
  VCM_LANES_INLINE static void Store(void* p, R a) {
    _mm_storeu_si128(static_cast<__m128i*>(p), a);
  }
  VCM_LANES_INLINE static R LoadParts(const void* pFirst, const void* /*pSecond*/) {
    return Load(pFirst);
  }
  VCM_LANES_INLINE static void StoreParts(void* pFirst, void* /*pSecond*/, R a) {
    Store(pFirst, a);
  }
  VCM_LANES_INLINE static void StoreFirstPart(void* p, R a) { Store(p, a); }
  VCM_LANES_INLINE static R LoadEachPart(const void* p) { return Load(p); }
  VCM_LANES_INLINE static R Fill16(int n) { return _mm_set1_epi16(static_cast<std::int16_t>(n)); }
  VCM_LANES_INLINE static R Fill32(int n) { return _mm_set1_epi32(n); }
  VCM_LANES_INLINE static R Zero() { return _mm_setzero_si128(); }

  VCM_LANES_INLINE static R Add16(R a, R b) { return _mm_add_epi16(a, b); }
  VCM_LANES_INLINE static R Sub16(R a, R b) { return _mm_sub_epi16(a, b); }
  VCM_LANES_INLINE static R AddLimited16(R a, R b) { return _mm_adds_epi16(a, b); }
  VCM_LANES_INLINE static R SubLimited16(R a, R b) { return _mm_subs_epi16(a, b); }
  VCM_LANES_INLINE static R Max16(R a, R b) { return _mm_max_epi16(a, b); }
  VCM_LANES_INLINE static R ShiftLeft16(R a, int n) {
    return _mm_sll_epi16(a, _mm_cvtsi32_si128(n));
  }
  VCM_LANES_INLINE static R ShiftRight16(R a, int n) {
    return _mm_sra_epi16(a, _mm_cvtsi32_si128(n));
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRight16(R a) {
    return _mm_srai_epi16(a, n);
  }
  VCM_LANES_INLINE static R And(R a, R b) { return _mm_and_si128(a, b); }
  VCM_LANES_INLINE static R Or(R a, R b) { return _mm_or_si128(a, b); }
  VCM_LANES_INLINE static R Xor(R a, R b) { return _mm_xor_si128(a, b); }
  VCM_LANES_INLINE static R MultiplyLow16(R a, R b) { return _mm_mullo_epi16(a, b); }
  VCM_LANES_INLINE static R MultiplyHigh16(R a, R b) { return _mm_mulhi_epi16(a, b); }
  template <int n>
  VCM_LANES_INLINE static R ShiftLeft16(R a) {
    return _mm_slli_epi16(a, n);
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRightUnsigned16(R a) {
    return _mm_srli_epi16(a, n);
  }
  VCM_LANES_INLINE static R IsEqual16(R a, R b) { return _mm_cmpeq_epi16(a, b); }
  VCM_LANES_INLINE static R IsGreater16(R a, R b) { return _mm_cmpgt_epi16(a, b); }

  VCM_LANES_INLINE static R SumOfProducts(R a, R b) { return _mm_madd_epi16(a, b); }
  VCM_LANES_INLINE static R Add32(R a, R b) { return _mm_add_epi32(a, b); }
  template <int n>
  VCM_LANES_INLINE static R ShiftRight32(R a) {
    return _mm_srai_epi32(a, n);
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRightUnsigned32(R a) {
    return _mm_srli_epi32(a, n);
  }
  VCM_LANES_INLINE static R IsGreater32(R a, R b) { return _mm_cmpgt_epi32(a, b); }
  VCM_LANES_INLINE static R Narrow(R a, R b) { return _mm_packs_epi32(a, b); }

  VCM_LANES_INLINE static R InterleaveLow16(R a, R b) { return _mm_unpacklo_epi16(a, b); }
  VCM_LANES_INLINE static R InterleaveHigh16(R a, R b) { return _mm_unpackhi_epi16(a, b); }
  VCM_LANES_INLINE static R InterleaveLow32(R a, R b) { return _mm_unpacklo_epi32(a, b); }
  VCM_LANES_INLINE static R InterleaveHigh32(R a, R b) { return _mm_unpackhi_epi32(a, b); }
  VCM_LANES_INLINE static R InterleaveLow64(R a, R b) { return _mm_unpacklo_epi64(a, b); }
  VCM_LANES_INLINE static R InterleaveHigh64(R a, R b) { return _mm_unpackhi_epi64(a, b); }
  VCM_LANES_INLINE static R InterleaveHalves(R a) {
    return _mm_unpacklo_epi16(a, _mm_unpackhi_epi64(a, a));
  }
  VCM_LANES_INLINE static R SwapMiddle32(R a) { return _mm_shuffle_epi32(a, 0xD8); }
  VCM_LANES_INLINE static R ReverseParts(R a) {
    a = _mm_shufflelo_epi16(a, 0x1B);
    a = _mm_shufflehi_epi16(a, 0x1B);
    return _mm_shuffle_epi32(a, 0x4E);
  }
  VCM_LANES_INLINE static R Reverse(R a) { return ReverseParts(a); }

  VCM_LANES_INLINE static int Total32(R a) {
    a = _mm_add_epi32(a, _mm_shuffle_epi32(a, 0x4E));
    a = _mm_add_epi32(a, _mm_shuffle_epi32(a, 0xB1));
    return _mm_cvtsi128_si32(a);
  }
  VCM_LANES_INLINE static int Largest16(R a) {
    a = _mm_max_epi16(a, _mm_shuffle_epi32(a, 0x4E));
    a = _mm_max_epi16(a, _mm_shuffle_epi32(a, 0xB1));
    a = _mm_max_epi16(a, _mm_shufflelo_epi16(a, 0xB1));
    return static_cast<std::int16_t>(_mm_cvtsi128_si32(a));
  }
  VCM_LANES_INLINE static unsigned int Signs32(R a) {
    return static_cast<unsigned int>(_mm_movemask_ps(_mm_castsi128_ps(a)));
  }
};

}  // namespace vcm
