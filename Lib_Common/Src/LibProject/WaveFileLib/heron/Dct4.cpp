// SPDX-License-Identifier: Apache-2.0
#include "heron/Dct4.h"

#include <algorithm>
#include <limits>

#include "heron/FixedPoint.h"
#include "heron/Trigonometry.h"

namespace heron {
namespace {

constexpr int kScaledQ = 30;

// sqrt(qwSquare), rounded down.
std::uint64_t SquareRoot(std::uint64_t qwSquare) noexcept {
  std::uint64_t qwRoot = 0;
  for (int nBit = 31; nBit >= 0; --nBit) {
    const std::uint64_t qwTry = qwRoot | (std::uint64_t{1} << nBit);
    if (qwTry * qwTry <= qwSquare) qwRoot = qwTry;
  }
  return qwRoot;
}

std::vector<S_Rotation> Rotations(std::size_t nLength) {
  std::vector<S_Rotation> rotations;
  for (std::size_t n = 0; n < nLength / 2; ++n) {
    rotations.push_back(BackwardRotation(static_cast<std::int64_t>(8 * n + 1),
                                         static_cast<std::int64_t>(16 * nLength)));
  }
  return rotations;
}

// The same times sqrt(2/N), which is at most 1, in Q30.
std::vector<S_Rotation> ScaledRotations(std::size_t nLength) {
  const auto nScale = static_cast<std::int64_t>(SquareRoot((std::uint64_t{1} << 61) / nLength));
  std::vector<S_Rotation> rotations;
  for (std::size_t n = 0; n < nLength / 2; ++n) {
    const S_CirclePoint point = CirclePoint(static_cast<std::int64_t>(8 * n + 1),
                                            static_cast<std::int64_t>(16 * nLength));
    rotations.push_back({RoundShift(point.nCosine * nScale, 30),
                         RoundShift(-std::int64_t{point.nSine} * nScale, 30)});
  }
  return rotations;
}

constexpr std::int32_t Limit32(std::int64_t nValue) noexcept {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(
      nValue, std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
}

}  // namespace

C_Dct4::C_Dct4(std::size_t nLength)
    : m_fourier(static_cast<int>(nLength / 2)),
      m_before(ScaledRotations(nLength)),
      m_after(Rotations(nLength)),
      m_points(nLength / 2) {}

// The sum of the moduli that the Fourier transform allows, 2^38.5, is kept: forward, N/2 complex
// numbers below 2^30.5 times sqrt(2/N) add up to less than 2^35.5; backward, with kUp bits more,
// those of 2^29.5 to less than 2^34.5 * 2^3.
template <int kUp>
void C_Dct4::Transform(std::span<const std::int32_t> values) noexcept {
  constexpr int kShift = kScaledQ - kUp;
  const std::size_t nLast = values.size() - 1;
  for (std::size_t n = 0; n < m_points.size(); ++n) {
    const std::int64_t nRe = values[2 * n];
    const std::int64_t nIm = values[nLast - 2 * n];
    const S_Rotation& rotation = m_before[n];
    m_points[n] = {(nRe * rotation.nCosine - nIm * rotation.nSine) >> kShift,
                   (nRe * rotation.nSine + nIm * rotation.nCosine) >> kShift};
  }
  m_fourier.Transform(m_points);
}

void C_Dct4::Forward(std::span<std::int32_t> values) noexcept {
  Transform<0>(values);
  const std::size_t nLast = values.size() - 1;
  for (std::size_t n = 0; n < m_points.size(); ++n) {
    const S_Complex point = Rotate<kFoldedQ - kCoefficientQ>(m_points[n], m_after[n]);
    values[2 * n] = static_cast<std::int32_t>(point.nRe);
    values[nLast - 2 * n] = static_cast<std::int32_t>(-point.nIm);
  }
}

void C_Dct4::Inverse(std::span<std::int32_t> values) noexcept {
  Transform<kUnfoldedQ - kCoefficientQ>(values);
  const std::size_t nLast = values.size() - 1;
  for (std::size_t n = 0; n < m_points.size(); ++n) {
    const S_Complex point = Rotate(m_points[n], m_after[n]);
    values[2 * n] = Limit32(point.nRe);
    values[nLast - 2 * n] = Limit32(-point.nIm);
  }
}

}  // namespace heron
