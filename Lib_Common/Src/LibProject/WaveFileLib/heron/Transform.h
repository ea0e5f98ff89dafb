// SPDX-License-Identifier: Apache-2.0
//
// The lapped transform. Frame by frame it turns N samples and the N samples before them into N
// coefficients, and back. It is the orthonormal MDCT with a power-sine window,
//
//   X[k] = sqrt(2/N) * sum over n = 0..2N-1 of w[n] x[n] cos(pi/N (n + 1/2 + N/2)(k + 1/2))
//   w[n] = sin(pi/2 * sin^2(pi (n + 1/2) / 2N))
//
// done as a windowed fold and a DCT-IV, which uses a complex Fourier transform of N/2 points.
// Coefficients are Q8. Both directions keep the part of a frame that overlaps the next one; in a
// new object that part is silence.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "heron/Fourier.h"

namespace heron {

inline constexpr int kCoefficientQ = 8;
// No coefficient of 16-bit samples is larger: 2^15 * sqrt(2 * 960) < 2^21. The inverse transform
// needs this limit to keep its arithmetic within 64 bits.
inline constexpr std::int64_t kMaxCoefficient = std::int64_t{1} << (21 + kCoefficientQ);

// The part that both directions share: the DCT-IV without its scale,
//
//   out[k] = sum over n of in[n] cos(pi/N (n + 1/2)(k + 1/2))
//
// done as a Fourier transform of complex numbers. Number n has values 2n and N-1-2n as its parts
// and is rotated by Rotation(n) before and after the transform. The parts of result n are then
// out[2n] and -out[N-1-2n].
class C_LappedTransform {
 public:
  // nLength: samples per frame N, even, 2..kMaxFrameLength.
  explicit C_LappedTransform(int nLength);

  // sqrt(2/N) * w[n] in Q28 for the rising half, n = 0..N-1; the falling half mirrors it.
  [[nodiscard]] std::span<const std::int64_t> RisingWindow() const noexcept { return m_window; }
  // exp(-i pi (8n + 1) / 8N), n = 0..N/2-1.
  [[nodiscard]] const S_Rotation& Rotation(std::size_t n) const noexcept { return m_rotations[n]; }
  // The results for N values, before the final rotation. They are valid until the next call.
  std::span<const S_Complex> Transform(std::span<const std::int32_t> values) noexcept;

 private:
  C_Fourier m_fourier;
  std::vector<S_Rotation> m_rotations;
  std::vector<S_Complex> m_points;
  std::vector<std::int64_t> m_window;
};

class C_ForwardTransform {
 public:
  explicit C_ForwardTransform(int nLength);
  // Both spans have N values. The coefficients describe the samples of the previous call and of
  // this one.
  void Transform(std::span<const std::int16_t> samples,
                 std::span<std::int32_t> coefficients) noexcept;

 private:
  C_LappedTransform m_transform;
  std::vector<std::int16_t> m_history;
  std::vector<std::int32_t> m_folded;
};

class C_InverseTransform {
 public:
  explicit C_InverseTransform(int nLength);
  // Both spans have N values; the caller limits the coefficients to +-kMaxCoefficient. The samples
  // are those that the forward transform was given one call earlier.
  void Transform(std::span<const std::int32_t> coefficients,
                 std::span<std::int16_t> samples) noexcept;

 private:
  C_LappedTransform m_transform;
  std::vector<std::int64_t> m_falling;  // the half of the previous frame that overlaps, negated
};

}  // namespace heron
