// SPDX-License-Identifier: Apache-2.0
//
// The orthonormal DCT-IV of N values,
//
//   out[k] = sqrt(2/N) * sum over n of in[n] cos(pi/N (n + 1/2)(k + 1/2))
//
// which is its own inverse, done as a Fourier transform of N/2 complex numbers. Number n has the
// values 2n and N-1-2n as its parts. It is rotated by exp(-i pi (8n + 1) / 8N) before and after the
// transform; the parts of result n are then out[2n] and -out[N-1-2n].
//
// Samples on their way and coefficients are both Q8. Folded samples (Lapping.h) of 16 bits have a
// modulus below 2^15.5 each, so the root of the sum of all squares of a part stays below
// 2^15.5 * sqrt(1920) * 2^8 < 2^29. No value on the way is larger than that root, so it fits 32
// bits. Values that are made up may wrap around (Complex.h).
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/Fourier.h"

namespace heron {

inline constexpr int kCoefficientQ = 8;
// No coefficient of 16-bit samples is larger.
inline constexpr std::int64_t kMaxCoefficient = std::int64_t{1} << (21 + kCoefficientQ);

class C_Dct4 {
 public:
  // nLength: N, even, 2..kMaxPartLength.
  explicit C_Dct4(std::size_t nLength);

  [[nodiscard]] std::size_t Length() const noexcept { return 2 * m_points.size(); }
  // Transforms N values in their place. Two threads must not do this with one object at the same
  // time.
  void Transform(std::span<std::int32_t> values) noexcept;

 private:
  C_Fourier m_fourier;
  std::vector<S_Rotation> m_before;  // with the factor sqrt(2/N)
  std::vector<S_Rotation> m_after;
  std::vector<S_Complex> m_points;
};

}  // namespace heron
