// SPDX-License-Identifier: Apache-2.0
//
// What the processor does to eight or sixteen 16-bit numbers at once, under one name for each kind
// of processor. A fast path is a template over one of these:
//
//   S_LanesSse2 (LanesSse2.h)   8 lanes, any x86-64 processor
//   S_LanesAvx2 (LanesAvx2.h)  16 lanes, processors that have AVX2
//   S_LanesNeon (LanesNeon.h)   8 lanes, any 64-bit ARM processor
//
// A register R is one or two parts (kParts) of eight lanes. Lanes never change from one part to the
// other, unless a function says so, so a template that works on one part works on two.
//
//   Load, Store             a whole register, at any address
//   LoadParts, StoreParts   the parts from or to two places; with one part, the first place only
//   StoreFirstPart          the first part only
//   LoadEachPart            the same eight lanes for each part
//   Fill16, Fill32, Zero    the same number for each lane
//
//   S_Part                  the lanes of one part
//
//   Add16 Sub16             wrap             AddLimited16 SubLimited16    stop at the limits
//   Max16                   signed           ShiftLeft16 ShiftRight16     arithmetic
//
//   MultiplyLow16 (High)    the lower (upper) half of each product
//   ShiftRightUnsigned16    fills with zeros
//   And Or Xor              IsEqual16 IsGreater16 (all bits set where true)
//
//   SumOfProducts           a[0]*b[0] + a[1]*b[1] and so on, as half as many 32-bit lanes; only
//                           four times -32768 wraps
//   Add32 ShiftRight32 ShiftRightUnsigned32 IsGreater32 (all bits set where true)
//   Narrow(a, b)            the 32-bit lanes of both, limited to 16 bits: in each part first
//                           those of a, then those of b
//
//   InterleaveLow16 (High)  in each part a[0] b[0] a[1] b[1] ... of the low (high) half
//   InterleaveHalves        in each part a[0] a[4] a[1] a[5] ...
//   SwapMiddle32            32-bit lanes 1 and 2 of each part change places
//   ReverseParts, Reverse   lanes from last to first, in each part or altogether
//   Total32, Largest16      over all lanes
//   Signs32                 the sign bit of each 32-bit lane, lane 0 lowest
#pragma once

// Without inlining, every operation would be a call.
#define VCM_LANES_INLINE __attribute__((always_inline)) inline
// The same for a lambda, after its parameters.
#define VCM_LANES_INLINE_LAMBDA __attribute__((always_inline))
