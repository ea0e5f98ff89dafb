// SPDX-License-Identifier: Apache-2.0
#include "kestrel/TransformLoops.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "kestrel/BasicOperators.h"
#include "kestrel/TablesTransform.h"
#include "kestrel/TransformBounds.h"

namespace kestrel {
namespace {

constexpr std::size_t kLength = kSamplesPerFrame;
constexpr std::size_t kHalf = kLength / 2;
constexpr std::size_t kBlocks = kLength / kKernel;

using S_HalfFrame = std::array<std::int16_t, kHalf>;

std::int16_t Narrow(std::int32_t n) { return static_cast<std::int16_t>(n); }
std::int16_t Limited(std::int32_t n) { return Narrow(std::clamp(n, -32768, 32767)); }

// ---- windows ----

// A window's other half backwards, so that all loops run forwards.
constexpr S_Frame Backwards(const S_Frame& window) {
  S_Frame reversed{};
  std::reverse_copy(window.begin(), window.end(), reversed.begin());
  return reversed;
}
constexpr S_Frame kAnalysisBackwards = Backwards(kAnalysisWindow);
constexpr S_Frame kSynthesisBackwards = Backwards(kSynthesisWindow);

void Window(const S_Frame& history, S_Samples samples, S_Frame& windowed) {
  S_HalfFrame before;
  S_HalfFrame back;
  std::reverse_copy(history.begin(), history.begin() + kHalf, before.begin());
  std::reverse_copy(samples.begin() + kHalf, samples.end(), back.begin());
  for (std::size_t n = 0; n < kHalf; ++n) {
    windowed[n] = Narrow((kAnalysisBackwards[kHalf + n] * before[n] +
                          kAnalysisWindow[kHalf + n] * history[kHalf + n] + 0x4000) >>
                         15);
  }
  for (std::size_t n = 0; n < kHalf; ++n) {
    windowed[kHalf + n] =
        Narrow((kAnalysisBackwards[n] * samples[n] - kAnalysisWindow[n] * back[n] + 0x4000) >> 15);
  }
}

S_Loudness Loudness(const S_Frame& windowed) {
  std::int16_t nLargest = 0;
  std::int32_t nSum = 0;
  for (const std::int16_t nValue : windowed) {
    const std::int16_t nMagnitude = Narrow(nValue < 0 ? -nValue : nValue);
    nLargest = std::max(nLargest, nMagnitude);
    nSum += nMagnitude;
  }
  return {nLargest, nSum};
}

void Overlap(S_Overlap& overlap, const S_Frame& values,
             std::span<std::int16_t, kSamplesPerFrame> samples) {
  S_HalfFrame mirror;
  S_HalfFrame old;
  std::reverse_copy(values.begin(), values.begin() + kHalf, mirror.begin());
  std::reverse_copy(overlap.begin(), overlap.end(), old.begin());
  for (std::size_t n = 0; n < kHalf; ++n) {
    samples[n] = Limited(
        (kSynthesisWindow[n] * mirror[n] + kSynthesisBackwards[n] * overlap[n] + 0x1000) >> 13);
  }
  for (std::size_t n = 0; n < kHalf; ++n) {
    samples[kHalf + n] = Limited((kSynthesisWindow[kHalf + n] * values[n] -
                                  kSynthesisBackwards[kHalf + n] * old[n] + 0x1000) >>
                                 13);
  }
  std::copy(values.begin() + kHalf, values.end(), overlap.begin());
}

// ---- butterflies ----

template <std::size_t nBlock, typename Sum, typename Difference>
void Butterflies(const S_Frame& in, S_Frame& out, Sum sum, Difference difference) {
  for (std::size_t nStart = 0; nStart < kLength; nStart += nBlock) {
    std::array<std::int16_t, nBlock / 2> differences;
    for (std::size_t i = 0; i < nBlock / 2; ++i) {
      const std::int32_t nA = in[nStart + 2 * i];
      const std::int32_t nB = in[nStart + 2 * i + 1];
      out[nStart + i] = sum(nA, nB);
      differences[i] = difference(nA, nB);
    }
    std::reverse_copy(differences.begin(), differences.end(),
                      out.begin() + static_cast<std::ptrdiff_t>(nStart + nBlock / 2));
  }
}

// Whether the sum or the difference of two values always has 16 bits.
bool AreSumsInsideLimits(const S_Frame& values) {
  std::int16_t nLargest = 0;
  for (const std::int16_t nValue : values) {
    // n for n, and for -1 - n.
    nLargest = std::max(nLargest, Narrow(nValue ^ nValue >> 15));
  }
  return nLargest < 16384;
}

template <std::size_t nBlock>
void InverseButterflies(const S_Frame& in, S_Frame& out) {
  if (AreSumsInsideLimits(in)) {
    Butterflies<nBlock>(
        in, out, [](std::int32_t nA, std::int32_t nB) { return Narrow(nA + nB); },
        [](std::int32_t nA, std::int32_t nB) { return Narrow(nA - nB); });
  } else {
    Butterflies<nBlock>(
        in, out, [](std::int32_t nA, std::int32_t nB) { return Limited(nA + nB); },
        [](std::int32_t nA, std::int32_t nB) { return Limited(nA - std::max(nB, -32767)); });
  }
}

// ---- kernels ----

// The values of the blocks side by side: [value][block].
using S_Blocks = std::array<std::array<std::int16_t, kBlocks>, kKernel>;

// Sums of loud blocks may wrap.
void Kernels(const S_Blocks& in, const S_CoreMatrix& matrix, S_Blocks& out) {
  for (std::size_t k = 0; k < kKernel; ++k) {
    std::array<std::uint32_t, kBlocks> sums;
    sums.fill(0x4000);
    for (std::size_t i = 0; i < kKernel; ++i) {
      const std::int16_t nFactor = matrix[i][k];
      for (std::size_t b = 0; b < kBlocks; ++b) {
        sums[b] += static_cast<std::uint32_t>(in[i][b] * nFactor);
      }
    }
    for (std::size_t b = 0; b < kBlocks; ++b) {
      out[k][b] = Narrow(static_cast<std::int32_t>(sums[b]) >> 15);
    }
  }
}

std::array<std::uint32_t, kBlocks> Squares(const S_Blocks& blocks) {
  std::array<std::uint32_t, kBlocks> squares{};
  for (const auto& values : blocks) {
    for (std::size_t b = 0; b < kBlocks; ++b) {
      squares[b] += static_cast<std::uint32_t>(values[b] * values[b]) >> kSquareShift;
    }
  }
  return squares;
}

void RedoLoudBlocks(const S_Blocks& in, const S_CoreMatrix& matrix, int nMostSquares,
                    S_Blocks& out) {
  const auto squares = Squares(in);
  const auto dwMost = static_cast<std::uint32_t>(nMostSquares);
  if (*std::max_element(squares.begin(), squares.end()) <= dwMost) return;
  for (std::size_t b = 0; b < kBlocks; ++b) {
    if (squares[b] <= dwMost) continue;
    std::array<std::int16_t, kKernel> block;
    for (std::size_t i = 0; i < kKernel; ++i) block[i] = in[i][b];
    for (std::size_t k = 0; k < kKernel; ++k) out[k][b] = KernelValue(block, matrix, k);
  }
}

// ---- rotations ----

// The factors of one pass, by place in a block: out = first * a + second * d, and the same with the
// other two for the value at the same place from the end.
template <std::size_t nHalfBlock>
struct S_Turns {
  std::array<std::int16_t, nHalfBlock> frontA;
  std::array<std::int16_t, nHalfBlock> frontD;
  std::array<std::int16_t, nHalfBlock> backA;
  std::array<std::int16_t, nHalfBlock> backD;
};
template <std::size_t nHalfBlock>
constexpr S_Turns<nHalfBlock> MakeTurns(std::span<const S_Rotation> rotations) {
  S_Turns<nHalfBlock> turns{};
  for (std::size_t i = 0; i < nHalfBlock; ++i) {
    const auto [nCosine, nMinusSine] = rotations[i];
    const bool bOdd = i % 2 != 0;
    turns.frontA[i] = nCosine;
    turns.frontD[i] = bOdd ? nMinusSine : Neg(nMinusSine);
    turns.backA[i] = nMinusSine;
    turns.backD[i] = bOdd ? Neg(nCosine) : nCosine;
  }
  return turns;
}
struct S_PassTurns {
  S_Turns<10> of20;
  S_Turns<20> of40;
  S_Turns<40> of80;
  S_Turns<80> of160;
  S_Turns<160> of320;
};
template <typename Passes>
constexpr S_PassTurns MakePassTurns(const Passes& passes) {
  return {MakeTurns<10>(passes[0]), MakeTurns<20>(passes[1]), MakeTurns<40>(passes[2]),
          MakeTurns<80>(passes[3]), MakeTurns<160>(passes[4])};
}
constexpr S_PassTurns kAnalysisPasses = MakePassTurns(kAnalysisRotations);
constexpr S_PassTurns kSynthesisPasses = MakePassTurns(kSynthesisRotations);

template <bool bLimited, int nBits, std::size_t nHalfBlock>
void Rotate(const S_Frame& in, const S_Turns<nHalfBlock>& turns, S_Frame& out) {
  constexpr std::int32_t kRounding = 1 << (nBits - 1);
  const auto rounded = [](std::int32_t n) {
    return bLimited ? Limited((n + kRounding) >> nBits) : Narrow((n + kRounding) >> nBits);
  };
  for (std::size_t nStart = 0; nStart < kLength; nStart += 2 * nHalfBlock) {
    std::array<std::int16_t, nHalfBlock> back;
    const std::int16_t* pA = in.data() + nStart;
    const std::int16_t* pD = pA + nHalfBlock;
    for (std::size_t i = 0; i < nHalfBlock; ++i) {
      out[nStart + i] = rounded(turns.frontA[i] * pA[i] + turns.frontD[i] * pD[i]);
      back[i] = rounded(turns.backA[i] * pA[i] + turns.backD[i] * pD[i]);
    }
    std::reverse_copy(back.begin(), back.end(),
                      out.begin() + static_cast<std::ptrdiff_t>(nStart + nHalfBlock));
  }
}

template <bool bLimited, int nBits>
void Rotations(S_Frame& values, const S_PassTurns& turns, S_Frame& out) {
  Rotate<bLimited, nBits>(values, turns.of20, out);
  Rotate<bLimited, nBits>(out, turns.of40, values);
  Rotate<bLimited, nBits>(values, turns.of80, out);
  Rotate<bLimited, nBits>(out, turns.of160, values);
  Rotate<bLimited, nBits>(values, turns.of320, out);
}

// By how much all rotations of a direction lengthen a frame at most, squared.
template <typename Passes>
constexpr double Lengthening(const Passes& passes, int nBits) {
  double dSquared = 1;
  for (const auto& rotations : passes) {
    std::int64_t nLongest = 0;
    for (const auto [nCosine, nMinusSine] : rotations) {
      nLongest = std::max<std::int64_t>(nLongest, nCosine * nCosine + nMinusSine * nMinusSine);
    }
    dSquared *= static_cast<double>(nLongest) / static_cast<double>(std::int64_t{1} << 2 * nBits);
  }
  return std::max(dSquared, 1.0);
}

// The most squares of a frame with which no value reaches a limit. They are counted in units of
// 128, each rounded down. Rounding lengthens a frame by at most one half for each value and pass,
// which is 9 for a whole frame and less than 100 for five passes.
constexpr std::uint32_t MostSquares(double dLengthening) {
  return static_cast<std::uint32_t>(32667.0 * 32667.0 / dLengthening / 128) -
         static_cast<std::uint32_t>(kLength);
}
constexpr std::uint32_t kMostBeforeAnalysis = MostSquares(Lengthening(kAnalysisRotations, 15));
constexpr std::uint32_t kMostBeforeSynthesis = MostSquares(Lengthening(kSynthesisRotations, 14));

std::uint32_t Squares(const S_Frame& values) {
  std::uint32_t dwSquares = 0;
  for (const std::int16_t nValue : values) {
    dwSquares += static_cast<std::uint32_t>(nValue * nValue) >> 7;
  }
  return dwSquares;
}

template <int nBits>
void AllRotations(S_Frame& values, const S_PassTurns& turns, std::uint32_t dwMostSquares,
                  S_Frame& out) {
  if (Squares(values) <= dwMostSquares) {
    Rotations<false, nBits>(values, turns, out);
  } else {
    Rotations<true, nBits>(values, turns, out);
  }
}

S_Blocks SideBySide(const S_Frame& values) {
  S_Blocks blocks;
  for (std::size_t b = 0; b < kBlocks; ++b) {
    for (std::size_t i = 0; i < kKernel; ++i) blocks[i][b] = values[b * kKernel + i];
  }
  return blocks;
}
void OneAfterTheOther(const S_Blocks& blocks, S_Frame& values) {
  for (std::size_t b = 0; b < kBlocks; ++b) {
    for (std::size_t i = 0; i < kKernel; ++i) values[b * kKernel + i] = blocks[i][b];
  }
}

}  // namespace

int C_TransformLoops::Forward(S_Frame& history, S_Samples samples, S_Frame& coefficients) noexcept {
  S_Frame values;
  Window(history, samples, values);
  std::copy(samples.begin(), samples.end(), history.begin());
  const S_Loudness loudness = Loudness(values);
  const int nShift = MagnitudeShift(loudness);
  if (nShift < 0) {
    for (auto& nValue : values) nValue = Narrow(nValue >> 1);
  } else {
    for (auto& nValue : values) nValue = Narrow(nValue << nShift);
  }
  for (std::size_t n = 0; n < kLength; ++n) values[n] = Limited(values[n] + kAnalysisBias[n]);

  const auto sum = [](std::int32_t nA, std::int32_t nB) { return Narrow((nA + nB) >> 1); };
  const auto difference = [](std::int32_t nA, std::int32_t nB) { return Narrow((nA - nB) >> 1); };
  S_Frame other;
  Butterflies<320>(values, other, sum, difference);
  Butterflies<160>(other, values, sum, difference);
  Butterflies<80>(values, other, sum, difference);
  Butterflies<40>(other, values, sum, difference);
  Butterflies<20>(values, other, sum, difference);

  const S_Blocks in = SideBySide(other);
  S_Blocks out;
  Kernels(in, kAnalysisCore, out);
  if (!IsQuiet(loudness, nShift)) RedoLoudBlocks(in, kAnalysisCore, kMostAnalysisSquares, out);
  OneAfterTheOther(out, values);
  AllRotations<15>(values, kAnalysisPasses, kMostBeforeAnalysis, coefficients);
  return nShift;
}

void C_TransformLoops::Inverse(S_Overlap& overlap, const S_Frame& coefficients, int nShift,
                               std::span<std::int16_t, kSamplesPerFrame> samples) noexcept {
  S_Frame values;
  S_HalfFrame differences;
  for (std::size_t i = 0; i < kHalf; ++i) {
    const std::int32_t nA = coefficients[2 * i];
    const std::int32_t nB = coefficients[2 * i + 1];
    values[i] = Narrow((std::min(nA + kSynthesisDither[2 * i], 32767) + nB) >> 1);
    differences[i] = Narrow((std::min(nA + kSynthesisDither[2 * i + 1], 32767) - nB) >> 1);
  }
  std::reverse_copy(differences.begin(), differences.end(), values.begin() + kHalf);

  S_Frame other;
  InverseButterflies<160>(values, other);
  InverseButterflies<80>(other, values);
  InverseButterflies<40>(values, other);
  InverseButterflies<20>(other, values);

  const S_Blocks in = SideBySide(values);
  S_Blocks out;
  Kernels(in, kSynthesisCore, out);
  RedoLoudBlocks(in, kSynthesisCore, kMostSynthesisSquares, out);
  OneAfterTheOther(out, values);
  AllRotations<14>(values, kSynthesisPasses, kMostBeforeSynthesis, other);

  for (std::size_t n = 0; n < kLength; ++n) values[n] = Limited(other[n] + kSynthesisBias[n]);
  if (nShift < 0) {
    for (auto& nValue : values) nValue = Limited(2 * nValue);
  } else {
    for (auto& nValue : values) nValue = Narrow(nValue >> nShift);
  }
  Overlap(overlap, values, samples);
}

}  // namespace kestrel
