// SPDX-License-Identifier: Apache-2.0
//
// The work on a frame, in several ways: the plain one, which reads like the algorithm, and fast
// ones for the instructions that a processor may have. All give the same results to the bit, for
// any input, so a stream may go from one to the other between two frames.
#pragma once

#include <cstdint>
#include <span>

#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"
#include "kestrel/Transform.h"

namespace kestrel {

struct S_Routines {
  const char* pszName;
  // ForwardTransform and InverseTransform.
  int (*pfnForward)(S_Frame& history, S_Samples samples, S_Frame& coefficients) noexcept;
  void (*pfnInverse)(S_Overlap& overlap, const S_Frame& coefficients, int nShift,
                     std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;
  // EncodeFrame, DecodeFrame and SkipFrame.
  void (*pfnEncode)(S_EncoderState& state, const S_Configuration& configuration, S_Samples samples,
                    std::span<std::uint16_t> words) noexcept;
  bool (*pfnDecode)(S_DecoderState& state, const S_Configuration& configuration,
                    std::span<const std::uint16_t> words,
                    std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;
  bool (*pfnSkip)(S_DecoderState& state, const S_Configuration& configuration,
                  std::span<const std::uint16_t> words) noexcept;
};

// The routines that work on this processor, the fastest first and the plain ones last.
[[nodiscard]] std::span<const S_Routines> AllRoutines() noexcept;

// The fastest with the instructions that may be used (Processor.h).
[[nodiscard]] const S_Routines& FastestRoutines() noexcept;

// Those that the library was built with.
#if defined(__x86_64__)
extern const S_Routines kRoutinesAvx2;
extern const S_Routines kRoutinesSse2;
#elif defined(__aarch64__)
extern const S_Routines kRoutinesNeon;
#endif
extern const S_Routines kRoutinesLoops;  // ordinary code

}  // namespace kestrel
