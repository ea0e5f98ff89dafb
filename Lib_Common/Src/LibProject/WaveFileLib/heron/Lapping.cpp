// SPDX-License-Identifier: Apache-2.0
#include "heron/Lapping.h"

#include <algorithm>
#include <limits>

#include "Processor.h"
#include "heron/Complex.h"
#include "heron/Dct4.h"
#include "heron/FixedPoint.h"
#include "heron/LappingAvx2.h"
#include "heron/Trigonometry.h"

namespace heron {
namespace {

// w[n] of an overlap of nLength samples, in Q30.
std::int32_t PowerSine(std::int64_t n, std::int64_t nLength) noexcept {
  // sin^2(a) = (1 - cos(2a)) / 2. The difference in Q30 is sin^2(a) in Q31, and halving it gives
  // Q30.
  constexpr std::int64_t kOne = std::int64_t{1} << 30;
  const std::int64_t nSquare = (kOne - CirclePoint(2 * n + 1, 4 * nLength).nCosine) / 2;
  return CirclePoint(nSquare, 4 * kOne).nSine;
}

}  // namespace

std::vector<S_Lap> MakeLaps(std::size_t nHalf) {
  const auto nLength = static_cast<std::int64_t>(2 * nHalf);
  const auto window = [&](std::size_t n) {
    return PowerSine(static_cast<std::int64_t>(n), nLength);
  };
  std::vector<S_Lap> laps;
  for (std::size_t i = 0; i < nHalf; ++i) {
    laps.push_back({window(nHalf + i), window(nHalf - 1 - i)});
  }
  return laps;
}

void Fold(std::span<const std::int16_t> samples, const S_Lapped& part,
          std::span<std::int32_t> folded) noexcept {
  constexpr int kDown = kWindowQ - kCoefficientQ;
  const std::int16_t* const pBegin = samples.data() + part.nAt;
  const std::int16_t* const pEnd = pBegin + part.nLength;
  std::size_t nFirst = 0;
  std::size_t nLast = 0;
#if defined(__x86_64__)
  if (vcm::UsableInstructions() == vcm::tagInstructions::kAvx2) {
    nFirst = FoldAfterAvx2(pBegin, part.before, folded.data());
    nLast = FoldBeforeAvx2(pEnd, part.after, folded.data() + part.nLength);
  }
#endif
  for (std::size_t i = nFirst; i < part.before.size(); ++i) {
    const auto [nNear, nFar] = part.before[i];
    const std::int64_t nSum = Product(pBegin[i], nNear) + Product(*(pBegin - 1 - i), nFar);
    folded[i] = static_cast<std::int32_t>(RoundShift(nSum, kDown));
  }
  for (std::size_t i = part.before.size(); i < part.nLength - part.after.size(); ++i) {
    folded[i] = std::int32_t{pBegin[i]} * (1 << kCoefficientQ);
  }
  for (std::size_t i = nLast; i < part.after.size(); ++i) {
    const auto [nNear, nFar] = part.after[i];
    const std::int64_t nDifference = Product(*(pEnd - 1 - i), nNear) - Product(pEnd[i], nFar);
    folded[part.nLength - 1 - i] = static_cast<std::int32_t>(RoundShift(nDifference, kDown));
  }
}

void Unfold(std::span<std::int32_t> values, std::size_t nAt, std::span<const S_Lap> laps) noexcept {
  std::size_t nDone = 0;
#if defined(__x86_64__)
  if (vcm::UsableInstructions() == vcm::tagInstructions::kAvx2) {
    nDone = UnfoldAvx2(values.data() + nAt, laps);
  }
#endif
  std::int32_t* pAfter = values.data() + nAt + nDone;
  std::int32_t* pBefore = values.data() + nAt - nDone;
  for (const auto [nNear, nFar] : laps.subspan(nDone)) {
    const std::int32_t nAfter = *pAfter;
    const std::int32_t nBefore = *--pBefore;
    *pAfter++ = FromProduct(Product(nAfter, nNear) - Product(nBefore, nFar));
    *pBefore = FromProduct(Product(nBefore, nNear) + Product(nAfter, nFar));
  }
}

void ToSamples(std::span<const std::int32_t> values, std::span<std::int16_t> samples) noexcept {
  constexpr std::int32_t kMost = std::numeric_limits<std::int16_t>::max();
  constexpr std::int32_t kLeast = std::numeric_limits<std::int16_t>::min();
  std::size_t n = 0;
#if defined(__x86_64__)
  if (vcm::UsableInstructions() == vcm::tagInstructions::kAvx2) {
    n = ToSamplesAvx2(values.first(samples.size()), samples.data());
  }
#endif
  for (; n < samples.size(); ++n) {
    // Rounds in two steps, because adding a half first could leave 32 bits.
    const std::int32_t nSample = ((values[n] >> (kCoefficientQ - 1)) + 1) >> 1;
    samples[n] = static_cast<std::int16_t>(std::clamp(nSample, kLeast, kMost));
  }
}

}  // namespace heron
