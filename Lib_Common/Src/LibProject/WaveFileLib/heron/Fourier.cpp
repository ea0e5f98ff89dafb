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
constexpr S_Complex Scaled(const S_Complex& a, std::int64_t nFactor) noexcept {
  return {a.nRe * nFactor, a.nIm * nFactor};
}
// Converts from Q24 to integers, rounding down.
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
// Earlier passes have combined the points into groups of nDone. This pass combines nRadix such
// groups into one, which leaves nLeft groups. Butterfly (nLeftIndex, nDoneIndex) reads nRadix
// values that are nLeft * nDone apart and writes its results nDone apart.
struct S_Pass {
  int nRadix;
  int nLeft;
  int nDone;
  const S_Complex* pIn;
  S_Complex* pOut;
  std::span<const S_Rotation> rotations;

  [[nodiscard]] int InStride() const noexcept { return nLeft * nDone; }
};

// Calls butterfly(rotate, pIn, pOut) for each butterfly; rotate(k, value) rotates output k.
// Butterflies with nLeftIndex 0 need no rotation. In the last pass, this means all of them.
template <typename Butterfly>
inline void ForEachButterfly(const S_Pass& pass, int nRadix, Butterfly butterfly) noexcept {
  const S_Rotation* pRotation = pass.rotations.data();
  const S_Complex* pIn = pass.pIn;
  S_Complex* pOut = pass.pOut;
  for (int q = 0; q < pass.nDone; ++q) {
    butterfly([](int, const S_Complex& value) { return value; }, pIn++, pOut++);
  }
  if (pass.nDone == 1) {
    // In the first pass each index has only one butterfly, and a loop for it would cost as much
    // again.
    for (std::ptrdiff_t j = 1; j < pass.nLeft; ++j) {
      const auto turned = [pRotation, j](int k, const S_Complex& value) {
        return Rotate(value, pRotation[k * j]);
      };
      butterfly(turned, pIn++, pass.pOut + nRadix * j);
    }
    return;
  }
  for (std::ptrdiff_t nStep = pass.nDone; nStep < pass.InStride(); nStep += pass.nDone) {
    const auto turned = [pRotation, nStep](int k, const S_Complex& value) {
      return Rotate(value, pRotation[k * nStep]);
    };
    pOut += std::ptrdiff_t{nRadix - 1} * pass.nDone;
    for (int q = 0; q < pass.nDone; ++q) butterfly(turned, pIn++, pOut++);
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

// The transform of kRadix values, where kRadix is odd; kRadix 0 takes the radix from the pass. The
// sums and the differences of values n and radix - n, times cosines and sines, give outputs k and
// radix - k together.
template <int kRadix>
void RunOdd(const S_Pass& pass) noexcept {
  constexpr std::size_t kMostPairs = (kRadix > 0 ? kRadix : kMaxPoints) / 2;
  using S_Pairs = std::array<S_Complex, kMostPairs + 1>;
  const int nRadix = kRadix > 0 ? kRadix : pass.nRadix;
  const std::ptrdiff_t nIn = pass.InStride();
  const std::ptrdiff_t nOut = pass.nDone;
  // exp(-2 pi i k / radix) is at k * nTurn.
  const S_Rotation* pRotation = pass.rotations.data();
  const std::ptrdiff_t nTurn = std::ssize(pass.rotations) / nRadix;
  ForEachButterfly(pass, nRadix, [=](auto rotate, const S_Complex* pIn, S_Complex* pOut) {
    S_Pairs sums;
    S_Pairs differences;
    const int nHalf = nRadix / 2;
    const S_Complex first = pIn[0];
    S_Complex total = first;
    for (int n = 1; n <= nHalf; ++n) {
      const auto at = static_cast<std::size_t>(n);
      const S_Complex low = pIn[n * nIn];
      const S_Complex high = pIn[(nRadix - n) * nIn];
      sums[at] = Sum(low, high);
      differences[at] = TimesMinusI(Difference(low, high));
      total = Sum(total, sums[at]);
    }
    pOut[0] = total;
    for (int k = 1; k <= nHalf; ++k) {
      S_Complex even = Scaled(first, std::int64_t{1} << kRotationQ);
      S_Complex odd{0, 0};
      for (int n = 1; n <= nHalf; ++n) {
        const auto at = static_cast<std::size_t>(n);
        const S_Rotation unit = pRotation[n * k % nRadix * nTurn];
        even = Sum(even, Scaled(sums[at], unit.nCosine));
        odd = Difference(odd, Scaled(differences[at], unit.nSine));
      }
      pOut[k * nOut] = rotate(k, Shift(Sum(even, odd)));
      pOut[(nRadix - k) * nOut] = rotate(nRadix - k, Shift(Difference(even, odd)));
    }
  });
}

// Like RunOdd, but with fewer products, because cos(72) and cos(144) degrees are -1/4 +- sqrt(5)/4.
void RunRadix5(const S_Pass& pass) noexcept {
  constexpr std::int64_t kRoot5Quarter = 9378749;  // Q24
  const std::ptrdiff_t nIn = pass.InStride();
  const std::ptrdiff_t nOut = pass.nDone;
  const std::size_t nTurn = pass.rotations.size() / 5;
  const std::int64_t nSine1 = pass.rotations[nTurn].nSine;
  const std::int64_t nSine2 = pass.rotations[2 * nTurn].nSine;
  ForEachButterfly(pass, 5, [=](auto rotate, const S_Complex* pIn, S_Complex* pOut) {
    const S_Complex sum1 = Sum(pIn[nIn], pIn[4 * nIn]);
    const S_Complex sum2 = Sum(pIn[2 * nIn], pIn[3 * nIn]);
    const S_Complex difference1 = TimesMinusI(Difference(pIn[nIn], pIn[4 * nIn]));
    const S_Complex difference2 = TimesMinusI(Difference(pIn[2 * nIn], pIn[3 * nIn]));
    const S_Complex sum = Sum(sum1, sum2);
    const S_Complex even = Difference(Scaled(pIn[0], std::int64_t{1} << kRotationQ),
                                      Scaled(sum, std::int64_t{1} << (kRotationQ - 2)));
    const S_Complex root = Scaled(Difference(sum1, sum2), kRoot5Quarter);
    const S_Complex odd1 = Sum(Scaled(difference1, nSine1), Scaled(difference2, nSine2));
    const S_Complex odd2 = Difference(Scaled(difference1, nSine2), Scaled(difference2, nSine1));
    const S_Complex even1 = Sum(even, root);
    const S_Complex even2 = Difference(even, root);
    pOut[0] = Sum(pIn[0], sum);
    pOut[nOut] = rotate(1, Shift(Difference(even1, odd1)));
    pOut[2 * nOut] = rotate(2, Shift(Difference(even2, odd2)));
    pOut[3 * nOut] = rotate(3, Shift(Sum(even2, odd2)));
    pOut[4 * nOut] = rotate(4, Shift(Sum(even1, odd1)));
  });
}

void Run(const S_Pass& pass) noexcept {
  switch (pass.nRadix) {
    case 2:
      return RunRadix2(pass);
    case 3:
      return RunOdd<3>(pass);
    case 4:
      return RunRadix4(pass);
    case 5:
      return RunRadix5(pass);
    default:
      return RunOdd<0>(pass);
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
  for (int k = 0; k < nPoints; ++k) {
    m_rotations[static_cast<std::size_t>(k)] = BackwardRotation(k, nPoints);
  }
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
