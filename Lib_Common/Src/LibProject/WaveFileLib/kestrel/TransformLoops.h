// SPDX-License-Identifier: Apache-2.0
//
// The transforms of Transform.h in ordinary code that compilers turn into vectors by themselves.
// The results are the same to the bit.
//
// Plain sums take the place of sums that are limited at each step, and a limit at the end, where
// one is needed at all:
//
//   windows       two factors of a window have at most the length 0.56, so no sum reaches a limit
//   butterflies   the forward ones halve; the inverse ones limit each value of loud frames
//   kernels       no partial sum reaches a limit in a quiet block (TransformBounds.h); other blocks
//                 are done step by step
//   rotations     they lengthen a frame by a known factor at most, so that no value of a shorter
//                 frame can reach a limit; in other frames each value is limited
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kestrel/TablesTransform.h"
#include "kestrel/Transform.h"
#include "kestrel/TransformBounds.h"

namespace kestrel {

class C_TransformLoops {
 public:
  static int Forward(S_Frame& history, S_Samples samples, S_Frame& coefficients) noexcept;
  static void Inverse(S_Overlap& overlap, const S_Frame& coefficients, int nShift,
                      std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;
};

}  // namespace kestrel
