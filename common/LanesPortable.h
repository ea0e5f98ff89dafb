// SPDX-License-Identifier: Apache-2.0
//
// Lanes.h for any processor, by the vectors that g++ and clang know. Where the processor has no
// instructions for eight numbers at once, the compiler takes them one by one.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

#include "Lanes.h"

namespace vcm {

struct S_LanesPortable {
  using R = std::int16_t __attribute__((vector_size(16)));
  static constexpr int kParts = 1;
  static constexpr int kLanes = 8;

  VCM_LANES_INLINE static R Load(const void* p) {
    R a;
    std::memcpy(&a, p, sizeof a);
    return a;
  }
  VCM_LANES_INLINE static void Store(void* p, R a) { std::memcpy(p, &a, sizeof a); }
  VCM_LANES_INLINE static R LoadParts(const void* pFirst, const void* /*pSecond*/) {
    return Load(pFirst);
  }
  VCM_LANES_INLINE static void StoreParts(void* pFirst, void* /*pSecond*/, R a) {
    Store(pFirst, a);
  }
  VCM_LANES_INLINE static void StoreFirstPart(void* p, R a) { Store(p, a); }
  VCM_LANES_INLINE static R LoadEachPart(const void* p) { return Load(p); }
  VCM_LANES_INLINE static R Fill16(int n) { return R{} + static_cast<std::int16_t>(n); }
  VCM_LANES_INLINE static R Fill32(int n) { return From32(R32{} + n); }
  VCM_LANES_INLINE static R Zero() { return R{}; }

  VCM_LANES_INLINE static R Add16(R a, R b) { return FromUnsigned(Unsigned(a) + Unsigned(b)); }
  VCM_LANES_INLINE static R Sub16(R a, R b) { return FromUnsigned(Unsigned(a) - Unsigned(b)); }
  VCM_LANES_INLINE static R AddLimited16(R a, R b) {
    const R sum = Add16(a, b);
    return Limited(sum, a, (a ^ sum) & (b ^ sum));
  }
  VCM_LANES_INLINE static R SubLimited16(R a, R b) {
    const R difference = Sub16(a, b);
    return Limited(difference, a, (a ^ b) & (a ^ difference));
  }
  VCM_LANES_INLINE static R Max16(R a, R b) { return a > b ? a : b; }
  VCM_LANES_INLINE static R ShiftLeft16(R a, int n) { return FromUnsigned(Unsigned(a) << n); }
  VCM_LANES_INLINE static R ShiftRight16(R a, int n) { return a >> n; }
  template <int n>
  VCM_LANES_INLINE static R ShiftRight16(R a) {
    return a >> n;
  }
  VCM_LANES_INLINE static R And(R a, R b) { return a & b; }
  VCM_LANES_INLINE static R Or(R a, R b) { return a | b; }
  VCM_LANES_INLINE static R Xor(R a, R b) { return a ^ b; }

  VCM_LANES_INLINE static R SumOfProducts(R a, R b) {
    const R32 even = (To32(a) << 16 >> 16) * (To32(b) << 16 >> 16);
    const R32 odd = (To32(a) >> 16) * (To32(b) >> 16);
    return Add32(From32(even), From32(odd));
  }
  VCM_LANES_INLINE static R Add32(R a, R b) {
    using U32 = std::uint32_t __attribute__((vector_size(16)));
    return std::bit_cast<R>(std::bit_cast<U32>(a) + std::bit_cast<U32>(b));
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRight32(R a) {
    return From32(To32(a) >> n);
  }
  template <int n>
  VCM_LANES_INLINE static R ShiftRightUnsigned32(R a) {
    using U32 = std::uint32_t __attribute__((vector_size(16)));
    return std::bit_cast<R>(std::bit_cast<U32>(a) >> n);
  }
  VCM_LANES_INLINE static R IsGreater32(R a, R b) { return From32(To32(a) > To32(b)); }
  VCM_LANES_INLINE static R Narrow(R a, R b) {
    const R low = std::bit_cast<R>(Limited32(To32(a)));
    const R high = std::bit_cast<R>(Limited32(To32(b)));
    return __builtin_shufflevector(low, high, 0, 2, 4, 6, 8, 10, 12, 14);
  }

  VCM_LANES_INLINE static R InterleaveLow16(R a, R b) {
    return __builtin_shufflevector(a, b, 0, 8, 1, 9, 2, 10, 3, 11);
  }
  VCM_LANES_INLINE static R InterleaveHigh16(R a, R b) {
    return __builtin_shufflevector(a, b, 4, 12, 5, 13, 6, 14, 7, 15);
  }
  VCM_LANES_INLINE static R InterleaveLow32(R a, R b) {
    return __builtin_shufflevector(a, b, 0, 1, 8, 9, 2, 3, 10, 11);
  }
  VCM_LANES_INLINE static R InterleaveHigh32(R a, R b) {
    return __builtin_shufflevector(a, b, 4, 5, 12, 13, 6, 7, 14, 15);
  }
  VCM_LANES_INLINE static R InterleaveLow64(R a, R b) {
    return __builtin_shufflevector(a, b, 0, 1, 2, 3, 8, 9, 10, 11);
  }
  VCM_LANES_INLINE static R InterleaveHigh64(R a, R b) {
    return __builtin_shufflevector(a, b, 4, 5, 6, 7, 12, 13, 14, 15);
  }
  VCM_LANES_INLINE static R InterleaveHalves(R a) {
    return __builtin_shufflevector(a, a, 0, 4, 1, 5, 2, 6, 3, 7);
  }
  VCM_LANES_INLINE static R SwapMiddle32(R a) {
    return __builtin_shufflevector(a, a, 0, 1, 4, 5, 2, 3, 6, 7);
  }
  VCM_LANES_INLINE static R ReverseParts(R a) {
    return __builtin_shufflevector(a, a, 7, 6, 5, 4, 3, 2, 1, 0);
  }
  VCM_LANES_INLINE static R Reverse(R a) { return ReverseParts(a); }

  VCM_LANES_INLINE static int Total32(R a) {
    const R32 lanes = To32(a);
    return lanes[0] + lanes[1] + lanes[2] + lanes[3];
  }
  VCM_LANES_INLINE static int Largest16(R a) {
    int nLargest = a[0];
    for (int i = 1; i < kLanes; ++i) nLargest = a[i] > nLargest ? a[i] : nLargest;
    return nLargest;
  }
  VCM_LANES_INLINE static unsigned int Signs32(R a) {
    const R32 lanes = To32(a);
    unsigned int dwSigns = 0;
    for (int i = 0; i < kLanes / 2; ++i) dwSigns |= static_cast<unsigned int>(lanes[i] < 0) << i;
    return dwSigns;
  }

 private:
  using R32 = std::int32_t __attribute__((vector_size(16)));
  using RUnsigned = std::uint16_t __attribute__((vector_size(16)));

  VCM_LANES_INLINE static R32 To32(R a) { return std::bit_cast<R32>(a); }
  VCM_LANES_INLINE static R From32(R32 a) { return std::bit_cast<R>(a); }
  VCM_LANES_INLINE static RUnsigned Unsigned(R a) { return std::bit_cast<RUnsigned>(a); }
  VCM_LANES_INLINE static R FromUnsigned(RUnsigned a) { return std::bit_cast<R>(a); }
  // The limit on the side of a where the sign bit of overflow is set.
  VCM_LANES_INLINE static R Limited(R result, R a, R overflow) {
    const R limit = (a >> 15) ^ Fill16(32767);
    const R over = overflow >> 15;
    return (result & ~over) | (limit & over);
  }
  VCM_LANES_INLINE static R32 Limited32(R32 a) {
    const R32 highest = R32{} + 32767;
    const R32 lowest = R32{} - 32768;
    a = a > highest ? highest : a;
    return a < lowest ? lowest : a;
  }
};

}  // namespace vcm
