// SPDX-License-Identifier: Apache-2.0
//
// The quantiser's grid. Coefficients of a frame are multiples of its half step, whose size is
//
//   half step = 2^(index / 4 - 3), index 0..71: an eighth to 2^14.75, 1.5 dB apart
//
// (in the unit of samples: the transform is orthonormal).
#pragma once

#include <cstdint>

#include "heron/FixedPoint.h"
#include "heron/Transform.h"

namespace heron {

inline constexpr int kSteps = 72;
inline constexpr int kStepsPerOctave = 4;
// Coefficients in half steps, as the quantiser compares them.
inline constexpr int kScaledQ = 8;

// Half step in Q24.
constexpr std::int64_t HalfStepQ24(int nIndex) noexcept {
  return kQuarterOctave[nIndex & 3] << (nIndex / 4 + 5);
}

// The coefficient nHalfSteps * half step in Q8. |nHalfSteps| at most LargestMultiple.
constexpr std::int32_t Dequantise(std::int32_t nHalfSteps, std::int64_t nHalfStepQ24) noexcept {
  return static_cast<std::int32_t>(RoundShift(nHalfSteps * nHalfStepQ24, 24 - kCoefficientQ));
}

// The most half steps that do not exceed kMaxCoefficient.
constexpr std::int32_t LargestMultiple(int nIndex) noexcept {
  return static_cast<std::int32_t>((kMaxCoefficient << (24 - kCoefficientQ)) / HalfStepQ24(nIndex));
}

// nCoefficient (Q8, not negative) in half steps, Q8.
constexpr std::int32_t ScaleToHalfSteps(std::int32_t nCoefficient, int nIndex) noexcept {
  const std::int64_t nInverse =  // 2^(-(index mod 4) / 4) in Q16
      nIndex & 3 ? kQuarterOctave[4 - (nIndex & 3)] / 2 : kQuarterOctave[0];
  return static_cast<std::int32_t>((nCoefficient * nInverse) >> (13 + nIndex / 4));
}

// Counts half steps of one index in half steps of another.
class C_Rescale {
 public:
  constexpr C_Rescale(int nFrom, int nTo) noexcept
      : m_nFactor(kQuarterOctave[(nFrom - nTo + kSteps) & 3] << kSpare),
        m_nShift(16 + kSpare + kSteps / 4 - (nFrom - nTo + kSteps) / 4) {}

  // nHalfSteps 0..2^29; the result is limited to 2^28.
  [[nodiscard]] constexpr std::int32_t operator()(std::int32_t nHalfSteps) const noexcept {
    constexpr std::int64_t kMost = std::int64_t{1} << 28;
    const std::int64_t nScaled = nHalfSteps * m_nFactor >> m_nShift;
    return static_cast<std::int32_t>(nScaled < kMost ? nScaled : kMost);
  }

 private:
  // Makes every shift one to the right: indices differ by less than 18 octaves.
  static constexpr int kSpare = 2;
  static_assert(kSteps % 4 == 0 && 16 + kSpare - (kSteps - 1) / 4 > 0);

  std::int64_t m_nFactor;
  int m_nShift;
};

}  // namespace heron
