// SPDX-License-Identifier: Apache-2.0
//
// The quantiser's grid. Coefficients of a frame are multiples of its half step, whose size is
//
//   half step = round(q[index mod 4] * 2^floor(index / 4) / 2^11) in Q8, index 0..71
//
// with q = kQuarterOctave, so about 32 * 2^(index / 4): 1/8 to 2^14.75 in the unit of samples (the
// transform is orthonormal), 1.5 dB apart. The table's rounding shows at the coarse end.
#pragma once

#include <algorithm>
#include <cstdint>

#include "heron/FixedPoint.h"
#include "heron/Transform.h"

namespace heron {

inline constexpr int kSteps = 72;
// Coefficients in half steps, as the quantiser compares them.
inline constexpr int kScaledQ = 8;

// Half step in Q8.
constexpr std::int32_t HalfStep(int nIndex) noexcept {
  return static_cast<std::int32_t>(RoundShift(kQuarterOctave[nIndex & 3] << (nIndex / 4), 11));
}

// The most half steps that do not exceed kMaxCoefficient.
constexpr std::int32_t LargestMultiple(int nIndex) noexcept {
  return static_cast<std::int32_t>(kMaxCoefficient / HalfStep(nIndex));
}

// Counts coefficients in half steps.
class C_ToHalfSteps {
 public:
  explicit constexpr C_ToHalfSteps(int nIndex) noexcept
      : m_nInverse((std::int64_t{1} << kInverseQ) / HalfStep(nIndex)) {}

  // nCoefficient (Q8, not negative) in half steps, Q8: up to 2^32.
  [[nodiscard]] constexpr std::int64_t operator()(std::int32_t nCoefficient) const noexcept {
    return nCoefficient * m_nInverse >> (kInverseQ - kScaledQ);
  }

 private:
  // 2^29 * 2^36 / 32 stays below 2^63.
  static constexpr int kInverseQ = 36;
  std::int64_t m_nInverse;
};

// Counts half steps of one index, or fractions of them, in those of another, about: the ratio has 8
// bits behind the point, and from 2^9 on it is halved until it is below that.
class C_Rescale {
 public:
  static constexpr std::uint32_t kMost = 1u << 22;  // that it takes: times 430 it fits 32 bits

  constexpr C_Rescale(int nFrom, int nTo) noexcept
      : m_nFactor(static_cast<std::uint32_t>(kQuarterOctave[(nFrom - nTo + kSteps) & 3] >> 8)),
        m_nShift(std::max(8 + kSteps / 4 - (nFrom - nTo + kSteps) / 4, 0)) {
    static_assert(kSteps % 4 == 0);
  }

  [[nodiscard]] constexpr std::uint32_t operator()(std::uint32_t nHalfSteps) const noexcept {
    return nHalfSteps * m_nFactor >> m_nShift;
  }

 private:
  std::uint32_t m_nFactor;
  int m_nShift;
};

}  // namespace heron
