// SPDX-License-Identifier: Apache-2.0
//
// The quantiser's grid. The coefficients of a part are multiples of its half step, whose size is
//
//   half step = round(q[index mod 4] * 2^floor(index / 4) / 2^11) in Q8, index 0..71
//
// with q = kQuarterOctave. This is about 32 * 2^(index / 4), or 1/8 to 2^14.75 in the unit of
// samples (the transform is orthonormal), in steps of 1.5 dB. The rounding of the table shows at
// the coarse end.
#pragma once

#include <algorithm>
#include <cstdint>

#include "heron/Dct4.h"
#include "heron/FixedPoint.h"

namespace heron {

inline constexpr int kSteps = 72;
// The Q format of coefficients counted in half steps, as the quantiser compares them.
inline constexpr int kScaledQ = 8;

// Half step in Q8.
constexpr std::int32_t HalfStep(int nIndex) noexcept {
  return static_cast<std::int32_t>(RoundShift(kQuarterOctave[nIndex & 3] << (nIndex / 4), 11));
}

// The largest number of half steps that does not exceed kMaxCoefficient.
constexpr std::int32_t LargestMultiple(int nIndex) noexcept {
  return static_cast<std::int32_t>(kMaxCoefficient / HalfStep(nIndex));
}

// Converts coefficients to half steps.
class C_ToHalfSteps {
 public:
  explicit constexpr C_ToHalfSteps(int nIndex) noexcept
      : m_nInverse((std::int64_t{1} << kInverseQ) / HalfStep(nIndex)) {}

  // nCoefficient (Q8, not negative) in half steps, Q8: up to 2^32.
  [[nodiscard]] constexpr std::int64_t operator()(std::int32_t nCoefficient) const noexcept {
    return nCoefficient * m_nInverse >> (kInverseQ - kScaledQ);
  }
  // 1 / half step; 2^31 at most.
  [[nodiscard]] constexpr std::uint32_t Inverse() const noexcept {
    return static_cast<std::uint32_t>(m_nInverse);
  }
  // 2^29 * 2^36 / 32 stays below 2^63.
  static constexpr int kInverseQ = 36;

 private:
  std::int64_t m_nInverse;
};

// Converts half steps of one index, or fractions of them, to those of another index. The ratio is
// approximate: its mantissa has 8 bits after the point, and a ratio of 2^9 or more is halved until
// it is below 2^9.
class C_Rescale {
 public:
  static constexpr std::uint32_t kMost = 1u << 22;  // largest input: times 430 it fits 32 bits

  constexpr C_Rescale(int nFrom, int nTo) noexcept
      : m_nFactor(static_cast<std::uint32_t>(kQuarterOctave[(nFrom - nTo + kSteps) & 3] >> 8)),
        m_nShift(std::max(8 + kSteps / 4 - (nFrom - nTo + kSteps) / 4, 0)) {
    static_assert(kSteps % 4 == 0);
  }

  [[nodiscard]] constexpr std::uint32_t operator()(std::uint32_t nHalfSteps) const noexcept {
    return nHalfSteps * m_nFactor >> m_nShift;
  }
  [[nodiscard]] constexpr std::uint32_t Factor() const noexcept { return m_nFactor; }
  [[nodiscard]] constexpr int Shift() const noexcept { return m_nShift; }

 private:
  std::uint32_t m_nFactor;
  int m_nShift;
};

}  // namespace heron
