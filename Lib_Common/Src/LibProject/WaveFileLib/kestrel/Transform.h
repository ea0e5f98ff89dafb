// SPDX-License-Identifier: Apache-2.0
//
// The modulated lapped transform (MLT). It turns 320 samples and the 320 samples before them into
// 320 coefficients of 25 Hz each, and back. Both directions are a windowed fold and a DCT-IV of 320
// points, done as five butterfly passes (blocks of 320 down to 20), 32 kernels of ten points and
// five rotation passes (blocks of 20 up to 320):
//
//   forward:  window -> magnitude shift -> bias -> DCT-IV
//   inverse:  dither -> DCT-IV -> bias -> scale -> overlap-add
//
// Coefficients are block floating point: their true value is coefficient * 2^-shift, shift -1..9.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kestrel/Frame.h"

namespace kestrel {

inline constexpr int kLowestShift = -1;
inline constexpr int kHighestShift = 9;

using S_Samples = std::span<const std::int16_t, kSamplesPerFrame>;
// The half of the inverse transform's output that waits for the next frame.
using S_Overlap = std::array<std::int16_t, kSamplesPerFrame / 2>;

// The middle of the DCT-IV: a matrix of ten by ten factors, [input][output].
inline constexpr std::size_t kKernel = 10;
using S_CoreMatrix = std::array<std::array<std::int16_t, kKernel>, kKernel>;

// Whole transforms. history holds the previous frame and is replaced by the given one.
// ForwardTransform returns the shift.
int ForwardTransform(S_Frame& history, S_Samples samples, S_Frame& coefficients) noexcept;
void InverseTransform(S_Overlap& overlap, const S_Frame& coefficients, int nShift,
                      std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;

// Steps of the forward transform.
S_Frame ApplyAnalysisWindow(const S_Frame& history, S_Samples samples) noexcept;
// The largest magnitude and the sum of all.
struct S_Loudness {
  std::int32_t nLargest;
  std::int32_t nSum;
};
S_Loudness LoudnessOf(const S_Frame& windowed) noexcept;
// The shift that makes the most of 16 bits without letting the DCT-IV overflow on usual frames.
int MagnitudeShift(const S_Loudness& loudness) noexcept;
int MagnitudeShift(const S_Frame& windowed) noexcept;
void ScaleUp(S_Frame& values, int nShift) noexcept;
S_Frame ForwardButterflies(S_Frame values) noexcept;
S_Frame ForwardKernels(const S_Frame& values) noexcept;
S_Frame ForwardRotations(S_Frame values) noexcept;

// One value of a kernel.
std::int16_t KernelValue(std::span<const std::int16_t, kKernel> block, const S_CoreMatrix& matrix,
                         std::size_t nValue) noexcept;

// Steps of the inverse transform. Loud frames do saturate inside it: every step limits its sums,
// and the resulting samples depend on that.
S_Frame InverseButterflies(const S_Frame& coefficients) noexcept;
S_Frame InverseKernels(const S_Frame& values) noexcept;
S_Frame InverseRotations(S_Frame values) noexcept;
void AddSynthesisBias(S_Frame& values) noexcept;
void ScaleDown(S_Frame& values, int nShift) noexcept;
void OverlapAdd(S_Overlap& overlap, const S_Frame& values,
                std::span<std::int16_t, kSamplesPerFrame> samples) noexcept;

}  // namespace kestrel
