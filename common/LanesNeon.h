// SPDX-License-Identifier: Apache-2.0
//
// Lanes.h with the instructions that every 64-bit ARM processor has.
#pragma once

#include <arm_neon.h>

#include <cstdint>

#include "Lanes.h"

namespace vcm {

struct S_LanesNeon {
  using R = int16x8_t;
  using S_Part = S_LanesNeon;
  static constexpr int kParts = 1;
  static constexpr int kLanes = 8;

  VCM_LANES_INLINE static R Load(const void* p) {
    return vreinterpretq_s16_u8(vld1q_u8(static_cast<const std::uint8_t*>(p)));
  }
  VCM_LANES_INLINE static void Store(void* p, R a) {
    vst1q_u8(static_cast<std::uint8_t*>(p), vreinterpretq_u8_s16(a));
  }
  VCM_LANES_INLINE static R LoadParts(const void* pFirst, const void* /*pSecond*/) {
    return Load(pFirst);
  }
  VCM_LANES_INLINE static void StoreParts(void* pFirst, void* /*pSecond*/, R a) {
    Store(pFirst, a);
  }
  VCM_LANES_INLINE static void StoreFirstPart(void* p, R a) { Store(p, a); }
  VCM_LANES_INLINE static R LoadEachPart(const void* p) { return Load(p); }
  VCM_LANES_INLINE static R Fill16(int n) { return vdupq_n_s16(static_cast<std::int16_t>(n)); }
  VCM_LANES_INLINE static R Fill32(int n) { return From32(vdupq_n_s32(n)); }
  VCM_LANES_INLINE static R Zero() { return vdupq_n_s16(0); }

  VCM_LANES_INLINE static R Add16(R a, R b) { return vaddq_s16(a, b); }
  VCM_LANES_INLINE static R Sub16(R a, R b) { return vsubq_s16(a, b); }
  VCM_LANES_INLINE static R AddLimited16(R a, R b) { return vqaddq_s16(a, b); }
  VCM_LANES_INLINE static R SubLimited16(R a, R b) { return vqsubq_s16(a, b); }
  VCM_LANES_INLINE static R Max16(R a, R b) { return vmaxq_s16(a, b); }
  VCM_LANES_INLINE static R ShiftLeft16(R a, int n) { return vshlq_s16(a, Fill16(n)); }
  VCM_LANES_INLINE static R ShiftRight16(R a, int n) { return vshlq_s16(a, Fill16(-n)); }
  template <int n>
  VCM_LANES_INLINE static R ShiftRight16(R a) {
    return vshrq_n_s16(a, n);
  }
  VCM_LANES_INLINE static R And(R a, R b) { return vandq_s16(a, b); }
  VCM_LANES_INLINE static R Or(R a, R b) { return vorrq_s16(a, b); }
  VCM_LANES_INLINE static R Xor(R a, R b) { return veorq_s16(a, b); }
  VCM_LANES_INLINE static R MultiplyLow16(R a, R b) { return vmulq_s16(a, b); }
  VCM_LANES_INLINE static R MultiplyHigh16(R a, R b) {
    return vuzp2q_s16(vreinterpretq_s16_s32(vmull_s16(vget_low_s16(a), vget_low_s16(b))),
                      vreinterpretq_s16_s32(vmull_high_s16(a, b)));
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftLeft16(R a) {
    return vshlq_n_s16(a, n);
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRightUnsigned16(R a) {
    return vreinterpretq_s16_u16(vshrq_n_u16(vreinterpretq_u16_s16(a), n));
  }
  VCM_LANES_INLINE static R IsEqual16(R a, R b) { return vreinterpretq_s16_u16(vceqq_s16(a, b)); }
  VCM_LANES_INLINE static R IsGreater16(R a, R b) { return vreinterpretq_s16_u16(vcgtq_s16(a, b)); }

  VCM_LANES_INLINE static R SumOfProducts(R a, R b) {
    return From32(vpaddq_s32(vmull_s16(vget_low_s16(a), vget_low_s16(b)), vmull_high_s16(a, b)));
  }
  VCM_LANES_INLINE static R Add32(R a, R b) { return From32(vaddq_s32(To32(a), To32(b))); }
  template <int n>
  VCM_LANES_INLINE static R ShiftRight32(R a) {
    return From32(vshrq_n_s32(To32(a), n));
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRightUnsigned32(R a) {
    return vreinterpretq_s16_u32(vshrq_n_u32(vreinterpretq_u32_s16(a), n));
  }
  VCM_LANES_INLINE static R IsGreater32(R a, R b) {
    return vreinterpretq_s16_u32(vcgtq_s32(To32(a), To32(b)));
  }
  VCM_LANES_INLINE static R Narrow(R a, R b) {
    return vqmovn_high_s32(vqmovn_s32(To32(a)), To32(b));
  }

  VCM_LANES_INLINE static R InterleaveLow16(R a, R b) { return vzip1q_s16(a, b); }
  VCM_LANES_INLINE static R InterleaveHigh16(R a, R b) { return vzip2q_s16(a, b); }
  VCM_LANES_INLINE static R InterleaveLow32(R a, R b) {
    return From32(vzip1q_s32(To32(a), To32(b)));
  }
  VCM_LANES_INLINE static R InterleaveHigh32(R a, R b) {
    return From32(vzip2q_s32(To32(a), To32(b)));
  }
  VCM_LANES_INLINE static R InterleaveLow64(R a, R b) {
    return vcombine_s16(vget_low_s16(a), vget_low_s16(b));
  }
  VCM_LANES_INLINE static R InterleaveHigh64(R a, R b) {
    return vcombine_s16(vget_high_s16(a), vget_high_s16(b));
  }
  VCM_LANES_INLINE static R InterleaveHalves(R a) { return vzip1q_s16(a, vextq_s16(a, a, 4)); }
  VCM_LANES_INLINE static R SwapMiddle32(R a) {
    return InterleaveLow64(From32(vuzp1q_s32(To32(a), To32(a))),
                           From32(vuzp2q_s32(To32(a), To32(a))));
  }
  VCM_LANES_INLINE static R ReverseParts(R a) {
    a = vrev64q_s16(a);
    return vextq_s16(a, a, 4);
  }
  VCM_LANES_INLINE static R Reverse(R a) { return ReverseParts(a); }

  VCM_LANES_INLINE static int Total32(R a) { return vaddvq_s32(To32(a)); }
  VCM_LANES_INLINE static int Largest16(R a) { return vmaxvq_s16(a); }
  VCM_LANES_INLINE static unsigned int Signs32(R a) {
    constexpr std::uint32_t kPlaces[] = {1, 2, 4, 8};
    const uint32x4_t signs = vshrq_n_u32(vreinterpretq_u32_s16(a), 31);
    return vaddvq_u32(vmulq_u32(signs, vld1q_u32(kPlaces)));
  }

 private:
  VCM_LANES_INLINE static int32x4_t To32(R a) { return vreinterpretq_s32_s16(a); }
  VCM_LANES_INLINE static R From32(int32x4_t a) { return vreinterpretq_s16_s32(a); }
};

}  // namespace vcm
