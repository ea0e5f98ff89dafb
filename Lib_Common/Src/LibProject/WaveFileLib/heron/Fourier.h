// SPDX-License-Identifier: Apache-2.0
//
// The discrete Fourier transform of a fixed number of points, in integers:
//
//   out[k] = sum over n of in[n] * exp(-2 pi i n k / points)
//
// There is one pass for each factor of the number of points (4, then 2, then odd primes), and every
// pass keeps its values in sorted order. The transform works for any number of points and is fast
// when the factors are small.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "heron/Complex.h"

namespace heron {

inline constexpr std::size_t kMaxPoints = 960;

class C_Fourier {
 public:
  // nPoints 1..kMaxPoints.
  explicit C_Fourier(std::size_t nPoints);

  [[nodiscard]] std::size_t Points() const noexcept { return m_rotations.size(); }

  // Transforms values, which must have as many points as the object. Two threads must not call this
  // on one object at the same time.
  void Transform(std::span<S_Complex> values) noexcept;

 private:
  std::vector<std::size_t> m_factors;
  std::vector<S_Rotation> m_rotations;  // [k]: exp(-2 pi i k / points)
  std::vector<S_Complex> m_scratch;
};

}  // namespace heron
