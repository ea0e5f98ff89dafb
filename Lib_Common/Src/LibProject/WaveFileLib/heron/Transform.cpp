// SPDX-License-Identifier: Apache-2.0
#include "heron/Transform.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "heron/FixedPoint.h"
#include "heron/Trigonometry.h"

namespace heron {
namespace {

constexpr int kWindowQ = 28;
// The Q formats of the samples between the fold and the DCT-IV. In the forward direction, the extra
// bits keep the rounding inside the transform below that of the coefficients. In the inverse
// direction, the sum of two products has to fit in 64 bits. Each product is at most N of the
// largest coefficients times the sqrt(2/N) of the window, so the sum is at most 2 * sqrt(2 * 960) *
// 2^21 * 2^6 * 2^28.
constexpr int kFoldedQ = 14;
constexpr int kUnfoldedQ = 6;

// sqrt(qwSquare), rounded down.
std::uint64_t SquareRoot(std::uint64_t qwSquare) noexcept {
  std::uint64_t qwRoot = 0;
  for (int nBit = 31; nBit >= 0; --nBit) {
    const std::uint64_t qwTry = qwRoot | (std::uint64_t{1} << nBit);
    if (qwTry * qwTry <= qwSquare) qwRoot = qwTry;
  }
  return qwRoot;
}

// w[n] in Q30.
std::int64_t PowerSine(int n, int nLength) noexcept {
  // sin^2(a) = (1 - cos(2a)) / 2. The difference in Q30 is sin^2(a) in Q31, and halving it gives
  // Q30.
  const std::int64_t nOne = std::int64_t{1} << 30;
  const std::int64_t nSquare =
      (nOne - CirclePoint(2 * n + 1, std::int64_t{4} * nLength).nCosine) / 2;
  return CirclePoint(nSquare, 4 * nOne).nSine;
}

std::vector<std::int64_t> ScaledWindow(int nLength) {
  // sqrt(2/N) in Q30
  const auto nScale = static_cast<std::int64_t>(
      SquareRoot((std::uint64_t{1} << 61) / static_cast<std::uint64_t>(nLength)));
  std::vector<std::int64_t> window(static_cast<std::size_t>(nLength));
  for (int n = 0; n < nLength; ++n) {
    window[static_cast<std::size_t>(n)] = RoundShift(PowerSine(n, nLength) * nScale, 60 - kWindowQ);
  }
  return window;
}

std::vector<S_Rotation> Dct4Rotations(int nLength) {
  std::vector<S_Rotation> rotations(static_cast<std::size_t>(nLength / 2));
  for (int n = 0; n < nLength / 2; ++n) {
    rotations[static_cast<std::size_t>(n)] =
        BackwardRotation(8 * n + 1, std::int64_t{16} * nLength);
  }
  return rotations;
}

constexpr std::int16_t Limit16(std::int64_t nValue) noexcept {
  const auto nNarrow = static_cast<std::int16_t>(nValue);
  if (nNarrow == nValue) [[likely]] {
    return nNarrow;
  }
  return nValue < 0 ? std::numeric_limits<std::int16_t>::min()
                    : std::numeric_limits<std::int16_t>::max();
}

}  // namespace

C_LappedTransform::C_LappedTransform(int nLength)
    : m_fourier(nLength / 2),
      m_rotations(Dct4Rotations(nLength)),
      m_points(static_cast<std::size_t>(nLength / 2)),
      m_window(ScaledWindow(nLength)) {}

std::span<const S_Complex> C_LappedTransform::Transform(
    std::span<const std::int32_t> values) noexcept {
  const std::size_t nLast = values.size() - 1;
  for (std::size_t n = 0; n < m_points.size(); ++n) {
    m_points[n] = Rotate({values[2 * n], values[nLast - 2 * n]}, m_rotations[n]);
  }
  m_fourier.Transform(m_points);
  return m_points;
}

C_ForwardTransform::C_ForwardTransform(int nLength)
    : m_transform(nLength),
      m_history(static_cast<std::size_t>(nLength)),
      m_folded(static_cast<std::size_t>(nLength)) {}

void C_ForwardTransform::Transform(std::span<const std::int16_t> samples,
                                   std::span<std::int32_t> coefficients) noexcept {
  constexpr int kDown = kWindowQ - kFoldedQ;
  const std::size_t nLength = m_folded.size();
  const std::size_t nHalf = nLength / 2;
  const auto window = m_transform.RisingWindow();
  for (std::size_t n = 0; n < nHalf; ++n) {
    const std::size_t nMirror = nLength - 1 - n;
    // The old samples get the rising half of the window, the new ones the falling half.
    const std::int64_t nOld =
        std::int64_t{m_history[n]} * window[n] - std::int64_t{m_history[nMirror]} * window[nMirror];
    const std::int64_t nNew = std::int64_t{samples[nHalf - 1 - n]} * window[nHalf + n] +
                              std::int64_t{samples[nHalf + n]} * window[nHalf - 1 - n];
    m_folded[nHalf + n] = static_cast<std::int32_t>(RoundShift(nOld, kDown));
    m_folded[n] = static_cast<std::int32_t>(RoundShift(-nNew, kDown));
  }
  const auto points = m_transform.Transform(m_folded);
  for (std::size_t n = 0; n < nHalf; ++n) {
    const S_Complex point = Rotate<kFoldedQ - kCoefficientQ>(points[n], m_transform.Rotation(n));
    coefficients[2 * n] = static_cast<std::int32_t>(point.nRe);
    coefficients[nLength - 1 - 2 * n] = static_cast<std::int32_t>(-point.nIm);
  }
  std::copy(samples.begin(), samples.end(), m_history.begin());
}

C_InverseTransform::C_InverseTransform(int nLength)
    : m_transform(nLength), m_falling(static_cast<std::size_t>(nLength / 2)) {}

// Value v of the first half of the DCT-IV's result fades out in the next frame. It fades out over
// the samples on which value N-1-v of that frame's second half fades in. Values v and N-1-v are the
// two parts of one complex number.
void C_InverseTransform::Transform(std::span<const std::int32_t> coefficients,
                                   std::span<std::int16_t> samples) noexcept {
  constexpr int kDown = kCoefficientQ - kUnfoldedQ;
  constexpr int kSumQ = kUnfoldedQ + kWindowQ;
  const std::size_t nPoints = m_falling.size();
  const auto window = m_transform.RisingWindow();
  const auto points = m_transform.Transform(coefficients);
  // Samples n and N-1-n are one value of the previous frame and one of this frame, rotated.
  const auto lap = [&](std::size_t n, std::int64_t& nFalling, std::int64_t nNew) {
    const std::size_t nMirror = 2 * nPoints - 1 - n;
    samples[n] = Limit16(RoundShift(nFalling * window[nMirror] + nNew * window[n], kSumQ));
    samples[nMirror] = Limit16(RoundShift(nFalling * window[n] - nNew * window[nMirror], kSumQ));
  };
  std::size_t n = 0;
  for (; 2 * n < nPoints; ++n) {
    const S_Complex point = Rotate<kDown>(points[n], m_transform.Rotation(n));
    lap(nPoints - 1 - 2 * n, m_falling[n], -point.nIm);
    m_falling[n] = -point.nRe;
  }
  for (; n < nPoints; ++n) {
    const S_Complex point = Rotate<kDown>(points[n], m_transform.Rotation(n));
    lap(2 * n - nPoints, m_falling[n], point.nRe);
    m_falling[n] = point.nIm;
  }
}

}  // namespace heron
