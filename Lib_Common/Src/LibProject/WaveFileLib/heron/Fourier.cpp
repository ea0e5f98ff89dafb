// SPDX-License-Identifier: Apache-2.0
#include "heron/Fourier.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "heron/FixedPoint.h"
#include "heron/Trigonometry.h"

namespace heron {
namespace {

constexpr S_Complex Sum(const S_Complex& a, const S_Complex& b) noexcept {
  return {a.nRe + b.nRe, a.nIm + b.nIm};
}
constexpr S_Complex Difference(const S_Complex& a, const S_Complex& b) noexcept {
  return {a.nRe - b.nRe, a.nIm - b.nIm};
}
// From Q24.
constexpr S_Complex Shift(const S_Complex& a) noexcept {
  return {a.nRe >> kRotationQ, a.nIm >> kRotationQ};
}
constexpr S_Complex TimesMinusI(const S_Complex& a) noexcept { return {a.nIm, -a.nRe}; }

// Factors of 4 first, then 2, then odd primes in rising order.
std::vector<int> Factors(int nPoints) {
  std::vector<int> factors;
  for (int nFactor = 4; nPoints > 1;) {
    if (nPoints % nFactor == 0) {
      factors.push_back(nFactor);
      nPoints /= nFactor;
    } else {
      nFactor = nFactor == 4 ? 2 : nFactor == 2 ? 3 : nFactor + 2;
    }
  }
  return factors;
}

// One pass: what it reads and writes, and where its butterflies find their values.
//
// The pass has taken nDone points together already and takes nRadix groups of them together, of
// which nLeft remain: butterfly (nLeftIndex, nDoneIndex) reads nRadix values that are
// nLeft * nDone apart and writes them nDone apart.
struct S_Pass {
  int nRadix;
  int nLeft;
  int nDone;
  const S_Complex* pIn;
  S_Complex* pOut;
  std::span<const S_Rotation> rotations;

  [[nodiscard]] int InStride() const noexcept { return nLeft * nDone; }
};

// Calls butterfly(rotate, pIn, pOut) for each butterfly; rotate(k, value) turns output k. Those
// with index 0, in the last pass all, need no turning.
template <typename T_Butterfly>
inline void ForEachButterfly(const S_Pass& pass, int nRadix, T_Butterfly butterfly) noexcept {
  const auto unturned = [](int, const S_Complex& value) { return value; };
  for (int q = 0; q < pass.nDone; ++q) butterfly(unturned, pass.pIn + q, pass.pOut + q);
  for (int j = 1; j < pass.nLeft; ++j) {
    const S_Rotation* pRotation = pass.rotations.data();
    const std::ptrdiff_t nStep = std::ptrdiff_t{j} * pass.nDone;
    const auto turned = [pRotation, nStep](int k, const S_Complex& value) {
      return Rotate(value, pRotation[k * nStep]);
    };
    for (int q = 0; q < pass.nDone; ++q)
      butterfly(turned, pass.pIn + nStep + q, pass.pOut + nRadix * nStep + q);
  }
}

void RunRadix2(const S_Pass& pass) noexcept {
  const std::ptrdiff_t nIn = pass.InStride();
  const std::ptrdiff_t nOut = pass.nDone;
  ForEachButterfly(pass, 2, [=](auto rotate, const S_Complex* pIn, S_Complex* pOut) {
    pOut[0] = Sum(pIn[0], pIn[nIn]);
    pOut[nOut] = rotate(1, Difference(pIn[0], pIn[nIn]));
  });
}

void RunRadix4(const S_Pass& pass) noexcept {
  const std::ptrdiff_t nIn = pass.InStride();
  const std::ptrdiff_t nOut = pass.nDone;
  ForEachButterfly(pass, 4, [=](auto rotate, const S_Complex* pIn, S_Complex* pOut) {
    const S_Complex evenSum = Sum(pIn[0], pIn[2 * nIn]);
    const S_Complex evenDifference = Difference(pIn[0], pIn[2 * nIn]);
    const S_Complex oddSum = Sum(pIn[nIn], pIn[3 * nIn]);
    const S_Complex oddDifference = TimesMinusI(Difference(pIn[nIn], pIn[3 * nIn]));
    pOut[0] = Sum(evenSum, oddSum);
    pOut[nOut] = rotate(1, Sum(evenDifference, oddDifference));
    pOut[2 * nOut] = rotate(2, Difference(evenSum, oddSum));
    pOut[3 * nOut] = rotate(3, Difference(evenDifference, oddDifference));
  });
}

// The transform of nRadix values, nRadix odd. The sums and the differences of values n and nRadix -
// n, times cosines and sines, give outputs k and nRadix - k together.
inline void RunOdd(int nRadix, const S_Pass& pass) noexcept {
  constexpr int kLargestHalf = kMaxPoints / 2;
  const std::ptrdiff_t nIn = pass.InStride();
  const std::ptrdiff_t nOut = pass.nDone;
  // exp(-2 pi i k / nRadix) is at k * nTurn.
  const S_Rotation* pRotation = pass.rotations.data();
  const std::ptrdiff_t nTurn = std::ssize(pass.rotations) / nRadix;
  ForEachButterfly(pass, nRadix, [=](auto rotate, const S_Complex* pIn, S_Complex* pOut) {
    std::array<S_Complex, kLargestHalf + 1> sums;
    std::array<S_Complex, kLargestHalf + 1> differences;
    const int nHalf = nRadix / 2;
    S_Complex total = pIn[0];
    for (int n = 1; n <= nHalf; ++n) {
      const auto at = static_cast<std::size_t>(n);
      sums[at] = Sum(pIn[n * nIn], pIn[(nRadix - n) * nIn]);
      differences[at] = TimesMinusI(Difference(pIn[n * nIn], pIn[(nRadix - n) * nIn]));
      total = Sum(total, sums[at]);
    }
    pOut[0] = total;
    constexpr std::int64_t nOne = std::int64_t{1} << kRotationQ;
    const S_Complex first{pIn[0].nRe * nOne + nOne / 2, pIn[0].nIm * nOne + nOne / 2};
    for (int k = 1; k <= nHalf; ++k) {
      S_Complex even = first;
      S_Complex odd{0, 0};
      for (int n = 1; n <= nHalf; ++n) {
        const auto at = static_cast<std::size_t>(n);
        const S_Rotation unit = pRotation[n * k % nRadix * nTurn];
        even.nRe += sums[at].nRe * unit.nCosine;
        even.nIm += sums[at].nIm * unit.nCosine;
        odd.nRe -= differences[at].nRe * unit.nSine;
        odd.nIm -= differences[at].nIm * unit.nSine;
      }
      pOut[k * nOut] = rotate(k, Shift(Sum(even, odd)));
      pOut[(nRadix - k) * nOut] = rotate(nRadix - k, Shift(Difference(even, odd)));
    }
  });
}

// The common odd radices are given as constants, for loops that the compiler can unroll.
void Run(const S_Pass& pass) noexcept {
  switch (pass.nRadix) {
    case 2:
      return RunRadix2(pass);
    case 3:
      return RunOdd(3, pass);
    case 4:
      return RunRadix4(pass);
    case 5:
      return RunOdd(5, pass);
    default:
      return RunOdd(pass.nRadix, pass);
  }
}

}  // namespace

S_Rotation BackwardRotation(std::int64_t nPart, std::int64_t nWhole) noexcept {
  const S_CirclePoint point = CirclePoint(nPart, nWhole);
  constexpr int kExcess = 30 - kRotationQ;
  return {RoundShift(point.nCosine, kExcess), RoundShift(-std::int64_t{point.nSine}, kExcess)};
}

C_Fourier::C_Fourier(int nPoints)
    : m_nPoints(nPoints),
      m_factors(Factors(nPoints)),
      m_rotations(static_cast<std::size_t>(nPoints)),
      m_scratch(static_cast<std::size_t>(nPoints)) {
  for (int k = 0; k < nPoints; ++k)
    m_rotations[static_cast<std::size_t>(k)] = BackwardRotation(k, nPoints);
}

void C_Fourier::Transform(std::span<S_Complex> values) noexcept {
  S_Complex* pIn = values.data();
  S_Complex* pOut = m_scratch.data();
  int nLeft = m_nPoints;
  int nDone = 1;
  for (const int nRadix : m_factors) {
    nLeft /= nRadix;
    Run({nRadix, nLeft, nDone, pIn, pOut, m_rotations});
    nDone *= nRadix;
    std::swap(pIn, pOut);
  }
  if (pIn != values.data()) std::copy_n(pIn, m_nPoints, values.data());
}

}  // namespace heron
