// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Transform.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "kestrel/BasicOperators.h"
#include "kestrel/TablesTransform.h"

namespace kestrel {
namespace {

constexpr std::size_t kLength = kSamplesPerFrame;
constexpr std::size_t kHalf = kLength / 2;
constexpr std::size_t kLastBlock = 2 * kKernel;  // the butterflies end where the kernels begin

std::int16_t HalfOf(std::int32_t nSum) { return static_cast<std::int16_t>(nSum >> 1); }

// One butterfly pass: sums of neighbours go to the front of each block, and differences to its back
// in reverse order.
template <typename Sum, typename Difference>
S_Frame ButterflyPass(const S_Frame& in, std::size_t nBlock, Sum sum, Difference difference) {
  S_Frame out;
  for (std::size_t nStart = 0; nStart < kLength; nStart += nBlock) {
    for (std::size_t i = 0; i < nBlock / 2; ++i) {
      const std::int16_t nA = in[nStart + 2 * i];
      const std::int16_t nB = in[nStart + 2 * i + 1];
      out[nStart + i] = sum(nA, nB);
      out[nStart + nBlock - 1 - i] = difference(nA, nB);
    }
  }
  return out;
}

S_Frame Kernels(const S_Frame& in, const S_CoreMatrix& matrix) {
  S_Frame out;
  for (std::size_t nStart = 0; nStart < kLength; nStart += kKernel) {
    const std::span<const std::int16_t, kKernel> block(&in[nStart], kKernel);
    for (std::size_t k = 0; k < kKernel; ++k) out[nStart + k] = KernelValue(block, matrix, k);
  }
  return out;
}

// One rotation pass over blocks of twice the table's length. nHeadroom is the number of bits that
// the table's Q format lacks to be Q15.
S_Frame RotationPass(const S_Frame& in, std::span<const S_Rotation> rotations, int nHeadroom) {
  const std::size_t nHalfBlock = rotations.size();
  const std::size_t nBlock = 2 * nHalfBlock;
  const auto rounded = [=](std::int32_t nSum) { return Round(LShl(nSum, nHeadroom)); };
  S_Frame out;
  for (std::size_t nStart = 0; nStart < kLength; nStart += nBlock) {
    for (std::size_t i = 0; i < nHalfBlock; ++i) {
      const auto [nCosine, nMinusSine] = rotations[i];
      const std::int16_t nA = in[nStart + i];
      const std::int16_t nD = in[nStart + nHalfBlock + i];
      // The values in the second half of a block have alternating signs.
      const bool bOdd = i % 2 != 0;
      out[nStart + i] = rounded(LMac(LMul(nCosine, nA), bOdd ? nMinusSine : Neg(nMinusSine), nD));
      out[nStart + nBlock - 1 - i] =
          rounded(LMac(LMul(nMinusSine, nA), bOdd ? Neg(nCosine) : nCosine, nD));
    }
  }
  return out;
}

template <typename Passes>
S_Frame Rotations(S_Frame values, const Passes& passes, int nHeadroom) {
  for (const auto& rotations : passes) values = RotationPass(values, rotations, nHeadroom);
  return values;
}

// The first inverse pass halves its values and is dithered, so that the rounding has no bias.
S_Frame DitheredButterflies(const S_Frame& in) {
  S_Frame out;
  for (std::size_t i = 0; i < kHalf; ++i) {
    const std::int16_t nA = in[2 * i];
    const std::int16_t nB = in[2 * i + 1];
    out[i] = HalfOf(Add(nA, kSynthesisDither[2 * i]) + nB);
    out[kLength - 1 - i] = HalfOf(Add(nA, kSynthesisDither[2 * i + 1]) - nB);
  }
  return out;
}

void AddBias(S_Frame& values, const S_Frame& bias) {
  std::transform(values.begin(), values.end(), bias.begin(), values.begin(), Add);
}

}  // namespace

int ForwardTransform(S_Frame& history, S_Samples samples, S_Frame& coefficients) noexcept {
  S_Frame values = ApplyAnalysisWindow(history, samples);
  std::copy(samples.begin(), samples.end(), history.begin());
  const int nShift = MagnitudeShift(values);
  ScaleUp(values, nShift);
  coefficients = ForwardRotations(ForwardKernels(ForwardButterflies(values)));
  return nShift;
}

void InverseTransform(S_Overlap& overlap, const S_Frame& coefficients, int nShift,
                      std::span<std::int16_t, kSamplesPerFrame> samples) noexcept {
  S_Frame values = InverseRotations(InverseKernels(InverseButterflies(coefficients)));
  AddSynthesisBias(values);
  ScaleDown(values, nShift);
  OverlapAdd(overlap, values, samples);
}

S_Frame ApplyAnalysisWindow(const S_Frame& history, S_Samples samples) noexcept {
  const auto& window = kAnalysisWindow;
  S_Frame out;
  for (std::size_t n = 0; n < kHalf; ++n) {
    const std::size_t nBefore = kHalf - 1 - n;
    const std::size_t nAfter = kHalf + n;
    const std::size_t nBack = kLength - 1 - n;
    out[n] = Round(LMac(LMul(window[nBefore], history[nBefore]), window[nAfter], history[nAfter]));
    out[nAfter] = Round(LMac(LMul(window[nBack], samples[n]), Neg(window[n]), samples[nBack]));
  }
  return out;
}

S_Loudness LoudnessOf(const S_Frame& windowed) noexcept {
  S_Loudness loudness{};
  for (const std::int16_t nValue : windowed) {
    loudness.nLargest = std::max<std::int32_t>(loudness.nLargest, Mag(nValue));
    loudness.nSum += Mag(nValue);
  }
  return loudness;
}

int MagnitudeShift(const S_Loudness& loudness) noexcept {
  const auto [nLargest, nSum] = loudness;
  int nShift = 0;
  if (nLargest < 14000) {
    // 9587 / 2^19 brings the largest magnitude to 0..255. Below 438, adding one makes up for
    // rounding down.
    const std::int32_t nBiased = nLargest < 438 ? nLargest + 1 : nLargest;
    const int nNorm = Norm(static_cast<std::int16_t>(2 * nBiased * 9587 >> 20));
    nShift = nNorm == 0 ? kHighestShift : nNorm - 6;
  }
  // Frames that are loud throughout get one more bit of headroom than frames with single peaks.
  return nLargest < nSum >> 7 ? nShift - 1 : nShift;
}

int MagnitudeShift(const S_Frame& windowed) noexcept {
  return MagnitudeShift(LoudnessOf(windowed));
}

void ScaleUp(S_Frame& values, int nShift) noexcept {
  if (nShift > 0) {
    for (auto& nValue : values) nValue = Shl(nValue, nShift);
  } else if (nShift < 0) {
    for (auto& nValue : values) nValue = HalfOf(nValue);
  }
}

S_Frame ForwardButterflies(S_Frame values) noexcept {
  AddBias(values, kAnalysisBias);
  const auto sum = [](std::int32_t nA, std::int32_t nB) { return HalfOf(nA + nB); };
  const auto difference = [](std::int32_t nA, std::int32_t nB) { return HalfOf(nA - nB); };
  for (std::size_t nBlock = kLength; nBlock >= kLastBlock; nBlock /= 2) {
    values = ButterflyPass(values, nBlock, sum, difference);
  }
  return values;
}

std::int16_t KernelValue(std::span<const std::int16_t, kKernel> block, const S_CoreMatrix& matrix,
                         std::size_t nValue) noexcept {
  std::int32_t nSum = 0;
  for (std::size_t i = 0; i < kKernel; ++i) nSum = LMac(nSum, block[i], matrix[i][nValue]);
  return Round(nSum);
}

S_Frame ForwardKernels(const S_Frame& values) noexcept { return Kernels(values, kAnalysisCore); }

S_Frame ForwardRotations(S_Frame values) noexcept {
  return Rotations(values, kAnalysisRotations, 0);
}

S_Frame InverseButterflies(const S_Frame& coefficients) noexcept {
  S_Frame values = DitheredButterflies(coefficients);
  // Not Sub: for nB = -32768, Sub gives one more than adding the limited negative.
  const auto difference = [](std::int16_t nA, std::int16_t nB) { return Add(nA, Neg(nB)); };
  for (std::size_t nBlock = kHalf; nBlock >= kLastBlock; nBlock /= 2) {
    values = ButterflyPass(values, nBlock, Add, difference);
  }
  return values;
}

S_Frame InverseKernels(const S_Frame& values) noexcept { return Kernels(values, kSynthesisCore); }

S_Frame InverseRotations(S_Frame values) noexcept {
  return Rotations(values, kSynthesisRotations, 1);
}

void AddSynthesisBias(S_Frame& values) noexcept { AddBias(values, kSynthesisBias); }

void ScaleDown(S_Frame& values, int nShift) noexcept {
  if (nShift < 0) {
    for (auto& nValue : values) nValue = Shl(nValue, -nShift);
  } else {
    for (auto& nValue : values) nValue = static_cast<std::int16_t>(nValue >> nShift);
  }
}

void OverlapAdd(S_Overlap& overlap, const S_Frame& values,
                std::span<std::int16_t, kSamplesPerFrame> samples) noexcept {
  const auto& window = kSynthesisWindow;
  for (std::size_t n = 0; n < kHalf; ++n) {
    const std::size_t nMirror = kHalf - 1 - n;
    const std::int32_t nFirst =
        LMac(LMul(window[n], values[nMirror]), window[kLength - 1 - n], overlap[n]);
    const std::int32_t nSecond =
        LMac(LMul(window[kHalf + n], values[n]), Neg(window[nMirror]), overlap[nMirror]);
    samples[n] = Round(LShl(nFirst, 2));
    samples[kHalf + n] = Round(LShl(nSecond, 2));
  }
  std::copy(values.begin() + kHalf, values.end(), overlap.begin());
}

}  // namespace kestrel
