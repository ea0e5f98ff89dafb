// SPDX-License-Identifier: Apache-2.0
//
// The transforms of Transform.h with the widest instructions that this processor has. The results
// are the same to the bit.
#pragma once

#include <span>

#include "kestrel/Transform.h"

namespace kestrel {

// One way to do both transforms; see ForwardTransform and InverseTransform.
struct S_Transforms {
  const char* pszName;
  int (*pfnForward)(S_Frame& history, S_Samples samples, S_Frame& coefficients) noexcept;
  void (*pfnInverse)(S_Overlap& overlap, const S_Frame& coefficients, int nShift,
                     std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;
};

// All ways that work on this processor, the fastest first. The last is that of Transform.h.
[[nodiscard]] std::span<const S_Transforms> AllTransforms() noexcept;

// The ways of the instruction sets that the library was built with.
#if defined(__x86_64__)
extern const S_Transforms kTransformsAvx2;  // only where the processor has AVX2
extern const S_Transforms kTransformsSse2;
#elif defined(__aarch64__)
extern const S_Transforms kTransformsNeon;
#endif
extern const S_Transforms kTransformsPortable;

}  // namespace kestrel
