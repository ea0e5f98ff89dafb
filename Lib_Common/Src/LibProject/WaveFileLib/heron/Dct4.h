// SPDX-License-Identifier: Apache-2.0
//
// The orthonormal DCT-IV of N values,
//
//   out[k] = sqrt(2/N) * sum over n of in[n] cos(pi/N (n + 1/2)(k + 1/2))
//
// which is its own inverse, done as a Fourier transform of N/2 complex numbers. Number n has the
// values 2n and N-1-2n as its parts. It is rotated by exp(-i pi (8n + 1) / 8N) before and after the
// transform; the parts of result n are then out[2n] and -out[N-1-2n].
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/Fourier.h"

namespace heron {

// Coefficients are Q8.
inline constexpr int kCoefficientQ = 8;
// No coefficient of 16-bit samples is larger: 2^15 * sqrt(2 * 1920) < 2^21.
inline constexpr std::int64_t kMaxCoefficient = std::int64_t{1} << (21 + kCoefficientQ);
// Folded samples (Lapping.h) on their way to the coefficients and back.
inline constexpr int kFoldedQ = 14;
inline constexpr int kUnfoldedQ = 11;

class C_Dct4 {
 public:
  // nLength: N, even, 2..kMaxPartLength.
  explicit C_Dct4(std::size_t nLength);

  [[nodiscard]] std::size_t Length() const noexcept { return 2 * m_points.size(); }
  // Turns N folded samples (Q14, below 2^30) into coefficients. Neither direction may run in two
  // threads on one object at the same time.
  void Forward(std::span<std::int32_t> values) noexcept;
  // Turns N coefficients of at most kMaxCoefficient into folded samples (Q11). Those that 32 bits
  // cannot hold, which no sound has, are limited to what they can hold.
  void Inverse(std::span<std::int32_t> values) noexcept;

 private:
  template <int kUp>
  void Transform(std::span<const std::int32_t> values) noexcept;

  C_Fourier m_fourier;
  std::vector<S_Rotation> m_before;  // with the factor sqrt(2/N), Q30
  std::vector<S_Rotation> m_after;
  std::vector<S_Complex> m_points;
};

}  // namespace heron
