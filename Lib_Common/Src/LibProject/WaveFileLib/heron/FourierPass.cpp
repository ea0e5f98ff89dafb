// SPDX-License-Identifier: Apache-2.0
#include "heron/FourierPass.h"

#include <array>
#include <cstdint>

#include "heron/Fourier.h"

namespace heron {
namespace {

// The sum of products as a complex number of 64 bits, Q30. It wraps around as well.
struct S_Products {
  std::uint64_t qwRe = 0;
  std::uint64_t qwIm = 0;

  constexpr void Add(const S_Complex& value, std::int32_t nFactor) noexcept {
    qwRe += static_cast<std::uint64_t>(Product(value.nRe, nFactor));
    qwIm += static_cast<std::uint64_t>(Product(value.nIm, nFactor));
  }
};
constexpr S_Products operator+(const S_Products& a, const S_Products& b) noexcept {
  return {a.qwRe + b.qwRe, a.qwIm + b.qwIm};
}
constexpr S_Products operator-(const S_Products& a, const S_Products& b) noexcept {
  return {a.qwRe - b.qwRe, a.qwIm - b.qwIm};
}
// To the nearest integers, halves upwards.
constexpr S_Complex Rounded(const S_Products& a) noexcept {
  constexpr std::uint64_t kHalf = std::uint64_t{1} << (kRotationQ - 1);
  return {Wrap32((a.qwRe + kHalf) >> kRotationQ), Wrap32((a.qwIm + kHalf) >> kRotationQ)};
}

// Calls butterfly(rotate, pIn, pOut) for each butterfly; rotate(k, value) turns result k.
// Butterflies with j = 0 need no rotation. In the last pass, these are all of them.
template <typename Butterfly>
inline void ForEachButterfly(const S_FourierPass& pass, std::size_t nRadix,
                             Butterfly butterfly) noexcept {
  const S_Rotation* pRotation = pass.rotations.data();
  const S_Complex* pIn = pass.pIn;
  S_Complex* pOut = pass.pOut;
  for (std::size_t q = 0; q < pass.nDone; ++q) {
    butterfly([](std::size_t, const S_Complex& value) { return value; }, pIn++, pOut++);
  }
  if (pass.nDone == 1) {
    // In the first pass each j has only one butterfly, and a loop for it would cost as much again.
    for (std::size_t j = 1; j < pass.nLeft; ++j) {
      const auto turned = [pRotation, j](std::size_t k, const S_Complex& value) {
        return Rotate(value, pRotation[k * j]);
      };
      butterfly(turned, pIn++, pass.pOut + nRadix * j);
    }
    return;
  }
  for (std::size_t nStep = pass.nDone; nStep < pass.InStride(); nStep += pass.nDone) {
    const auto turned = [pRotation, nStep](std::size_t k, const S_Complex& value) {
      return Rotate(value, pRotation[k * nStep]);
    };
    pOut += (nRadix - 1) * pass.nDone;
    for (std::size_t q = 0; q < pass.nDone; ++q) butterfly(turned, pIn++, pOut++);
  }
}

void RunRadix2(const S_FourierPass& pass) noexcept {
  const std::size_t nIn = pass.InStride();
  const std::size_t nOut = pass.nDone;
  ForEachButterfly(pass, 2, [=](auto rotate, const S_Complex* pIn, S_Complex* pOut) {
    pOut[0] = Sum(pIn[0], pIn[nIn]);
    pOut[nOut] = rotate(1, Difference(pIn[0], pIn[nIn]));
  });
}

void RunRadix4(const S_FourierPass& pass) noexcept {
  const std::size_t nIn = pass.InStride();
  const std::size_t nOut = pass.nDone;
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
// sums and the differences of values n and radix - n, times cosines and sines, give results k and
// radix - k together.
template <std::size_t kRadix>
void RunOdd(const S_FourierPass& pass) noexcept {
  constexpr std::size_t kMostPairs = (kRadix > 0 ? kRadix : kMaxPoints) / 2;
  using S_Pairs = std::array<S_Complex, kMostPairs + 1>;
  const std::size_t nRadix = kRadix > 0 ? kRadix : pass.nRadix;
  const std::size_t nIn = pass.InStride();
  const std::size_t nOut = pass.nDone;
  // exp(-2 pi i k / radix) is at k * nTurn.
  const S_Rotation* pRotation = pass.rotations.data();
  const std::size_t nTurn = pass.rotations.size() / nRadix;
  ForEachButterfly(pass, nRadix, [=](auto rotate, const S_Complex* pIn, S_Complex* pOut) {
    S_Pairs sums;
    S_Pairs differences;
    const std::size_t nHalf = nRadix / 2;
    const S_Complex first = pIn[0];
    S_Complex total = first;
    for (std::size_t n = 1; n <= nHalf; ++n) {
      const S_Complex low = pIn[n * nIn];
      const S_Complex high = pIn[(nRadix - n) * nIn];
      sums[n] = Sum(low, high);
      differences[n] = TimesMinusI(Difference(high, low));
      total = Sum(total, sums[n]);
    }
    pOut[0] = total;
    for (std::size_t k = 1; k <= nHalf; ++k) {
      S_Products even;
      even.Add(first, std::int32_t{1} << kRotationQ);
      S_Products odd;
      for (std::size_t n = 1; n <= nHalf; ++n) {
        const S_Rotation unit = pRotation[n * k % nRadix * nTurn];
        even.Add(sums[n], unit.nCosine);
        odd.Add(differences[n], unit.nSine);
      }
      pOut[k * nOut] = rotate(k, Rounded(even + odd));
      pOut[(nRadix - k) * nOut] = rotate(nRadix - k, Rounded(even - odd));
    }
  });
}

}  // namespace

void RunFourierPass(const S_FourierPass& pass) noexcept {
  switch (pass.nRadix) {
    case 2:
      return RunRadix2(pass);
    case 3:
      return RunOdd<3>(pass);
    case 4:
      return RunRadix4(pass);
    case 5:
      return RunOdd<5>(pass);
    default:
      return RunOdd<0>(pass);
  }
}

}  // namespace heron
