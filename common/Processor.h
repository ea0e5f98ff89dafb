// SPDX-License-Identifier: Apache-2.0
//
// Which instructions a fast path may use. A fast path gives the same results as its plain one, so
// the choice changes nothing but the time.
#pragma once

namespace vcm {

// From the plainest to the widest.
enum class tagInstructions {
  kPlain,  // what the compiler makes of ordinary code
  kBase,   // the vectors that every processor of the kind has: SSE2 on x86-64, NEON on 64-bit ARM
  kAvx2,   // AVX2 with BMI and BMI2, on x86-64 processors that have them
};

// The widest that this processor has.
[[nodiscard]] tagInstructions ProcessorInstructions() noexcept;

// What a fast path chooses by: the widest that the processor has, or less after LimitInstructions.
[[nodiscard]] tagInstructions UsableInstructions() noexcept;

// For tests and benchmarks: nothing wider is used from now on, in any thread.
// tagInstructions::kAvx2 takes the limit back.
void LimitInstructions(tagInstructions eWidest) noexcept;

}  // namespace vcm
