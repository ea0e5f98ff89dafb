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

#include <cstdint>
#include <span>
#include <vector>

namespace heron {

struct S_Complex {
  std::int64_t nRe;
  std::int64_t nIm;
};

// A factor of modulus 1, Q24.
struct S_Rotation {
  std::int64_t nCosine;
  std::int64_t nSine;
};
inline constexpr int kRotationQ = 24;

inline constexpr int kMaxPoints = 960;

// exp(-2 pi i nPart / nWhole).
S_Rotation BackwardRotation(std::int64_t nPart, std::int64_t nWhole) noexcept;

// Rotates the value and divides it by 2^kDown, rounding down. |value| must be below 2^38.5 to keep
// the products within 64 bits.
template <int kDown = 0>
constexpr S_Complex Rotate(const S_Complex& value, const S_Rotation& rotation) noexcept {
  constexpr int kShift = kRotationQ + kDown;
  return {(value.nRe * rotation.nCosine - value.nIm * rotation.nSine) >> kShift,
          (value.nRe * rotation.nSine + value.nIm * rotation.nCosine) >> kShift};
}

class C_Fourier {
 public:
  // nPoints 1..kMaxPoints.
  explicit C_Fourier(int nPoints);

  [[nodiscard]] int Points() const noexcept { return m_nPoints; }

  // Transforms values, which must have as many points as the object. The sum of the moduli of all
  // values must stay below 2^38.5. Two threads must not call this on one object at the same time.
  void Transform(std::span<S_Complex> values) noexcept;

 private:
  int m_nPoints;
  std::vector<int> m_factors;
  std::vector<S_Rotation> m_rotations;  // [k]: exp(-2 pi i k / points)
  std::vector<S_Complex> m_scratch;
};

}  // namespace heron
