// SPDX-License-Identifier: Apache-2.0
#include "heron/Dct4.h"

#include "Processor.h"
#include "heron/FixedPoint.h"
#include "heron/FourierAvx2.h"
#include "heron/Trigonometry.h"

namespace heron {
namespace {

// sqrt(qwSquare), rounded down.
std::uint64_t SquareRoot(std::uint64_t qwSquare) noexcept {
  std::uint64_t qwRoot = 0;
  for (int nBit = 31; nBit >= 0; --nBit) {
    const std::uint64_t qwTry = qwRoot | (std::uint64_t{1} << nBit);
    if (qwTry * qwTry <= qwSquare) qwRoot = qwTry;
  }
  return qwRoot;
}

// The rotation of number n.
S_Rotation RotationOf(std::size_t n, std::size_t nLength) noexcept {
  return BackwardRotation(static_cast<std::int64_t>(8 * n + 1),
                          static_cast<std::int64_t>(16 * nLength));
}

// nScale is Q30.
S_Rotation Scaled(const S_Rotation& rotation, std::int32_t nScale) noexcept {
  return {FromProduct(Product(rotation.nCosine, nScale)),
          FromProduct(Product(rotation.nSine, nScale))};
}

}  // namespace

C_Dct4::C_Dct4(std::size_t nLength) : m_fourier(nLength / 2), m_points(nLength / 2) {
  // sqrt(2/N) in Q30; it is at most 1.
  const auto nScale = static_cast<std::int32_t>(SquareRoot((std::uint64_t{1} << 61) / nLength));
  for (std::size_t n = 0; n < nLength / 2; ++n) {
    m_after.push_back(RotationOf(n, nLength));
    m_before.push_back(Scaled(m_after.back(), nScale));
  }
}

void C_Dct4::Transform(std::span<std::int32_t> values) noexcept {
  const bool bAvx2 = vcm::UsableInstructions() == vcm::tagInstructions::kAvx2;
  const std::size_t nLast = values.size() - 1;
  if (!bAvx2 || !RotateIntoPointsAvx2(values, m_before, m_points)) {
    for (std::size_t n = 0; n < m_points.size(); ++n) {
      m_points[n] = Rotate({values[2 * n], values[nLast - 2 * n]}, m_before[n]);
    }
  }
  m_fourier.Transform(m_points);
  if (bAvx2 && RotateFromPointsAvx2(m_points, m_after, values)) return;
  for (std::size_t n = 0; n < m_points.size(); ++n) {
    const S_Complex point = Rotate(m_points[n], m_after[n]);
    values[2 * n] = point.nRe;
    values[nLast - 2 * n] = Subtract32(0, point.nIm);
  }
}

}  // namespace heron
