// SPDX-License-Identifier: Apache-2.0
//
// The transforms of Transform.h, several blocks at once: a template over the lanes of a processor
// (Lanes.h). The results are the same to the bit.
//
// The butterflies of the DCT-IV split 320 values into 32 blocks of ten values. The kernels work on
// each block, and the rotations put the blocks together again. All blocks take the same steps, so a
// lane stands for a block from the beginning to the end:
//
//   butterflies   32 neighbouring values become one value of each block, in four registers of eight
//                 lanes. Pass p (1..5) sets bit t_p of a block's number: 0 for a sum, 1 for a
//                 difference. Differences are stored in reverse order. Here they stay where they
//                 are. Instead, the operands of later differences change places, and the kernels
//                 take their inputs from the last to the first, for blocks whose number has an odd
//                 number of ones.
//   kernels       two values of four blocks in a register are multiplied by two factors each
//   rotations     pass p (1..5) puts blocks together that differ in t_(6-p), and its value n goes
//                 to place n or, counted from the end of the new block, to place n. Bit u_p says
//                 which. Each of the ten values of a kernel takes this way on its own.
//
// Why the results are the same: sums of two products fit into 32 bits, and limiting the rounded sum
// once gives the same as limiting each step. Sums of ten products are limited at each step, which
// changes nothing where no partial sum can reach a limit. Blocks for which that is not certain are
// done again, step by step.
//
// With two parts in a register (AVX2), the first part holds the lower value of a kernel and the
// second the one five places above.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

#include "Lanes.h"
#include "kestrel/TablesTransformLanes.h"
#include "kestrel/Transform.h"
#include "kestrel/TransformBounds.h"

namespace kestrel {

template <typename L>
class C_TransformLanes {
 public:
  static int Forward(S_Frame& history, S_Samples samples, S_Frame& coefficients) noexcept {
    alignas(32) std::int16_t windowed[kSamplesPerFrame];
    const S_Loudness loudness = Window(history.data(), samples.data(), windowed);
    const int nShift = MagnitudeShift(loudness);
    S_Inputs inputs;
    Butterflies(inputs, [&](std::size_t n) { return ForwardGroup(windowed, nShift, n); });
    S_Outputs outputs;
    Kernels(inputs, kAnalysisCoreLanes, outputs);
    if (!IsQuiet(loudness, nShift)) {
      RedoLoudBlocks(inputs, kAnalysisCore, kMostAnalysisSquares, outputs);
    }
    S_Rows rows;
    Rotations<15>(outputs, kAnalysisTurns, rows);
    Transpose(rows,
              [&](R values, const S_Place& place) { place.Store(coefficients.data(), values); });
    return nShift;
  }

  static void Inverse(S_Overlap& overlap, const S_Frame& coefficients, int nShift,
                      std::span<std::int16_t, kSamplesPerFrame> samples) noexcept {
    S_Inputs inputs;
    Butterflies(inputs, [&](std::size_t n) { return InverseGroup(coefficients.data(), n); });
    S_Outputs outputs;
    Kernels(inputs, kSynthesisCoreLanes, outputs);
    RedoLoudBlocks(inputs, kSynthesisCore, kMostSynthesisSquares, outputs);
    S_Rows rows;
    Rotations<14>(outputs, kSynthesisTurns, rows);
    alignas(32) std::int16_t scaled[kSamplesPerFrame];
    Transpose(rows, [&](R values, const S_Place& place) {
      values = L::AddLimited16(values, place.Load(kSynthesisBias.data()));
      values = nShift < 0 ? L::AddLimited16(values, values) : L::ShiftRight16(values, nShift);
      place.Store(scaled, values);
    });
    Overlap(overlap.data(), scaled, samples.data());
  }

 private:
  using R = typename L::R;
  static constexpr std::size_t kLanes = L::kLanes;
  static constexpr std::size_t kParts = L::kParts;
  static constexpr std::size_t kHalf = kSamplesPerFrame / 2;
  static constexpr std::size_t kValuesOf40 = 40;

  // What goes into the kernels: [values n and n + 5][2 * t4 + t5][t3]: for the blocks (t1, t2) =
  // 00 01 10 11 the two values side by side.
  struct S_Inputs {
    alignas(32) std::int16_t values[kHalfKernel][4][2][8];
  };
  // What comes out: [value n or n + 5][2 * t4 + t5][part]: lanes (t3, t1, t2).
  struct S_Outputs {
    alignas(32) std::int16_t values[kHalfKernel][4][2][8];
  };
  // What comes out of the rotations: value n of each block of 40 leads to eight values of the
  // frame. Rows of eight values n are transposed, two groups of eight at a time.
  struct S_Rows {
    alignas(32) std::int16_t values[3][8][2][8];
    std::int16_t* Row(std::size_t n) { return values[n / 16][n % 8][n / 8 % 2]; }
  };

  // A place for eight values of the frame, or for sixteen with two parts. They ascend or descend
  // from there; the last group has eight values only.
  struct S_Place {
    std::size_t nAt;
    bool bUp;
    bool bLast;

    VCM_LANES_INLINE void Store(std::int16_t* pFrame, R values) const {
      if (kParts == 2 && bLast) {
        L::StoreFirstPart(pFrame + nAt, values);
      } else if (bUp) {
        L::Store(pFrame + nAt, values);
      } else {
        L::StoreParts(pFrame + nAt, pFrame + nAt - 8, values);
      }
    }
    VCM_LANES_INLINE R Load(const std::int16_t* pFrame) const {
      if (kParts == 2 && bLast) return L::LoadEachPart(pFrame + nAt);
      return bUp ? L::Load(pFrame + nAt) : L::LoadParts(pFrame + nAt, pFrame + nAt - 8);
    }
  };

  // The rounded sums of products of two lanes each, limited to 16 bits.
  template <int nBits>
  VCM_LANES_INLINE static R RoundedSums(R low, const void* pLow, R high, const void* pHigh) {
    const R half = L::Fill32(1 << (nBits - 1));
    low = L::Add32(L::SumOfProducts(low, L::Load(pLow)), half);
    high = L::Add32(L::SumOfProducts(high, L::Load(pHigh)), half);
    return L::Narrow(L::template ShiftRight32<nBits>(low), L::template ShiftRight32<nBits>(high));
  }
  // The same for the lanes of two registers, interleaved.
  template <int nBits>
  VCM_LANES_INLINE static R RoundedSums(R a, R b, const void* pLow, const void* pHigh) {
    return RoundedSums<nBits>(L::InterleaveLow16(a, b), pLow, L::InterleaveHigh16(a, b), pHigh);
  }

  // ---- windows ----

  VCM_LANES_INLINE static S_Loudness Window(std::int16_t* pHistory, const std::int16_t* pSamples,
                                            std::int16_t* pWindowed) {
    const S_WindowLanes& window = kAnalysisWindowLanes<kLanes>;
    R largest = L::Zero();
    R sum = L::Zero();
    const auto put = [&](std::int16_t* pTo, R values) {
      L::Store(pTo, values);
      const R magnitudes = L::Max16(values, L::SubLimited16(L::Zero(), values));
      largest = L::Max16(largest, magnitudes);
      sum = L::Add32(sum, L::SumOfProducts(magnitudes, L::Fill16(1)));
    };
    for (std::size_t n = 0; n < kHalf; n += kLanes) {
      const R before = L::Reverse(L::Load(pHistory + kHalf - n - kLanes));
      const R after = L::Load(pHistory + kHalf + n);
      put(pWindowed + n,
          RoundedSums<15>(before, after, window.first + 2 * n, window.first + 2 * n + kLanes));
    }
    for (std::size_t n = 0; n < kHalf; n += kLanes) {
      const R front = L::Load(pSamples + n);
      const R back = L::Load(pSamples + kSamplesPerFrame - n - kLanes);
      put(pWindowed + kHalf + n, RoundedSums<15>(front, L::Reverse(back), window.second + 2 * n,
                                                 window.second + 2 * n + kLanes));
      L::Store(pHistory + n, front);
      L::Store(pHistory + kSamplesPerFrame - n - kLanes, back);
    }
    return {L::Largest16(largest), L::Total32(sum)};
  }

  VCM_LANES_INLINE static void Overlap(std::int16_t* pOverlap, const std::int16_t* pValues,
                                       std::int16_t* pSamples) {
    const S_WindowLanes& window = kSynthesisWindowLanes<kLanes>;
    for (std::size_t n = 0; n < kHalf; n += kLanes) {
      const R mirror = L::Reverse(L::Load(pValues + kHalf - n - kLanes));
      L::Store(pSamples + n, RoundedSums<13>(mirror, L::Load(pOverlap + n), window.first + 2 * n,
                                             window.first + 2 * n + kLanes));
      const R old = L::Reverse(L::Load(pOverlap + kHalf - n - kLanes));
      L::Store(pSamples + kHalf + n,
               RoundedSums<13>(L::Load(pValues + n), old, window.second + 2 * n,
                               window.second + 2 * n + kLanes));
    }
    for (std::size_t n = 0; n < kHalf; n += kLanes) {
      L::Store(pOverlap + n, L::Load(pValues + kHalf + n));
    }
  }

  // ---- butterflies ----

  // Four registers with 32 neighbouring values: of one group, or with two parts of two groups.
  struct S_Group {
    R values[4];
  };

  // A pass between neighbouring lanes: in each part, first the sums and then the differences.
  template <bool bInverse>
  VCM_LANES_INLINE static void PassWithin(S_Group& group, const S_ButterflyLanes& butterfly) {
    const R ones = L::Fill16(1);
    const R signs = L::Load(butterfly.difference.lanes);
    for (R& values : group.values) {
      if constexpr (bInverse) {
        const R limited = L::Max16(values, L::Load(butterfly.limit.lanes));
        values = L::Narrow(L::SumOfProducts(values, ones), L::SumOfProducts(limited, signs));
      } else {
        values = Halves(L::SumOfProducts(values, ones), L::SumOfProducts(values, signs));
      }
    }
  }
  VCM_LANES_INLINE static R Halves(R sums, R differences) {
    return L::Narrow(L::template ShiftRight32<1>(sums), L::template ShiftRight32<1>(differences));
  }

  // A pass between registers: sums to a, differences to b. The lanes of the mask are in reverse
  // order.
  template <bool bInverse>
  VCM_LANES_INLINE static void PassBetween(R& a, R& b, R mask) {
    const R different = L::Xor(a, b);
    const R exchanged = L::And(different, mask);
    const R minuend = L::Xor(a, exchanged);
    const R subtrahend = L::Xor(b, exchanged);
    if constexpr (bInverse) {
      a = L::AddLimited16(a, b);
      b = L::SubLimited16(minuend, L::Max16(subtrahend, L::Fill16(-32767)));
    } else {
      // Half of the sum, rounded down, needs no 17th bit, and half of the difference is that less
      // what is subtracted.
      a = L::Add16(L::And(a, b), L::template ShiftRight16<1>(different));
      b = L::Sub16(a, subtrahend);
    }
  }

  // All passes but the first. Then the numbers of the registers are 2 * t5 + t4, and those of the
  // lanes have the bits t3 t2 t1.
  template <bool bInverse>
  VCM_LANES_INLINE static void LastFourPasses(S_Group& group) {
    PassWithin<bInverse>(group, kButterflies[1]);
    PassWithin<bInverse>(group, kButterflies[2]);
    const R odd = L::Load(kOddLanes.lanes);
    auto& values = group.values;
    PassBetween<bInverse>(values[0], values[1], odd);
    PassBetween<bInverse>(values[2], values[3], odd);
    PassBetween<bInverse>(values[0], values[2], odd);
    PassBetween<bInverse>(values[1], values[3], L::Load(kEvenLanes.lanes));
  }

  // load(n): the values from n on, with two parts also those from n + 160 on.
  VCM_LANES_INLINE static S_Group ForwardGroup(const std::int16_t* pWindowed, int nShift,
                                               std::size_t nFirst) {
    S_Group group;
    for (std::size_t i = 0; i < 4; ++i) {
      const std::size_t n = nFirst + 8 * i;
      const std::size_t nUpper = (n + kHalf) % kSamplesPerFrame;
      R values = L::LoadParts(pWindowed + n, pWindowed + nUpper);
      values = nShift < 0 ? L::template ShiftRight16<1>(values) : L::ShiftLeft16(values, nShift);
      group.values[i] = L::AddLimited16(
          values, L::LoadParts(kAnalysisBias.data() + n, kAnalysisBias.data() + nUpper));
    }
    PassWithin<false>(group, kButterflies[0]);
    LastFourPasses<false>(group);
    return group;
  }

  VCM_LANES_INLINE static S_Group InverseGroup(const std::int16_t* pCoefficients,
                                               std::size_t nFirst) {
    const R ones = L::Fill16(1);
    const R signs = L::Load(kButterflies[0].difference.lanes);
    S_Group group;
    for (std::size_t i = 0; i < 4; ++i) {
      const std::size_t n = nFirst + 8 * i;
      const std::size_t nUpper = (n + kHalf) % kSamplesPerFrame;
      const R values = L::LoadParts(pCoefficients + n, pCoefficients + nUpper);
      const R sums =
          L::AddLimited16(values, L::LoadParts(kDitherLanes.sums + n, kDitherLanes.sums + nUpper));
      const R differences = L::AddLimited16(
          values, L::LoadParts(kDitherLanes.differences + n, kDitherLanes.differences + nUpper));
      group.values[i] = Halves(L::SumOfProducts(sums, ones), L::SumOfProducts(differences, signs));
    }
    LastFourPasses<true>(group);
    return group;
  }

  // makeGroup(n): the group of the 32 values from n on, through all passes.
  template <typename MakeGroup>
  VCM_LANES_INLINE static void Butterflies(S_Inputs& inputs, MakeGroup makeGroup) {
    for (std::size_t nGroup = 0; nGroup < kHalfKernel; ++nGroup) {
      const S_Group lower = makeGroup(32 * nGroup);
      if constexpr (kParts == 1) {
        const S_Group upper = makeGroup(32 * nGroup + kHalf);
        for (std::size_t i = 0; i < 4; ++i) {
          auto& pairs = inputs.values[nGroup][Transposed(i)];
          const R low = L::InterleaveLow16(lower.values[i], upper.values[i]);
          const R high = L::InterleaveHigh16(lower.values[i], upper.values[i]);
          L::Store(pairs[0], L::SwapMiddle32(low));
          L::Store(pairs[1], L::SwapMiddle32(high));
        }
      } else {
        for (std::size_t i = 0; i < 4; ++i) {
          L::Store(inputs.values[nGroup][Transposed(i)][0],
                   L::InterleavePartsAndSwap(lower.values[i]));
        }
      }
    }
  }
  // 2 * t5 + t4 to 2 * t4 + t5.
  static constexpr std::size_t Transposed(std::size_t n) { return n % 2 * 2 + n / 2; }

  // ---- kernels ----

  VCM_LANES_INLINE static void Kernels(const S_Inputs& inputs, const S_CoreLanes& core,
                                       S_Outputs& outputs) {
    const R half = L::Fill32(0x4000);
    for (std::size_t nBlocks = 0; nBlocks < 4; ++nBlocks) {
      const auto& factors = core.factors[IsOdd(nBlocks)];
      const auto& factorsOfDifferences = core.factors[!IsOdd(nBlocks)];
      R sums[kHalfKernel];
      R differences[kHalfKernel];
      for (std::size_t n = 0; n < kHalfKernel; ++n) {
        sums[n] = L::LoadEachPart(inputs.values[n][nBlocks][0]);
        differences[n] = L::LoadEachPart(inputs.values[n][nBlocks][1]);
      }
      for (std::size_t nOut = 0; nOut < kHalfKernel; ++nOut) {
        for (std::size_t nPart = 0; nPart < 2; nPart += kParts) {
          R a = half;
          R b = half;
          for (std::size_t n = 0; n < kHalfKernel; ++n) {
            const R forSums = L::Load(factors[nOut][n].lanes + 8 * nPart);
            const R forDifferences = L::Load(factorsOfDifferences[nOut][n].lanes + 8 * nPart);
            a = L::Add32(a, L::SumOfProducts(sums[n], forSums));
            b = L::Add32(b, L::SumOfProducts(differences[n], forDifferences));
          }
          L::Store(outputs.values[nOut][nBlocks][nPart],
                   L::Narrow(L::template ShiftRight32<15>(a), L::template ShiftRight32<15>(b)));
        }
      }
    }
  }

  // A bit for each block whose values are so large that a sum might have been limited on its way.
  VCM_LANES_INLINE static std::uint32_t LoudBlocks(const S_Inputs& inputs, int nMostSquares) {
    const R most = L::Fill32(nMostSquares);
    constexpr std::size_t kRegisters = 8 / kParts;
    R loud[kRegisters];
    R any = L::Zero();
    for (std::size_t i = 0; i < kRegisters; ++i) {
      const std::size_t nBlocks = i * kParts / 2;
      R squares = L::Zero();
      for (std::size_t n = 0; n < kHalfKernel; ++n) {
        const R values = L::Load(inputs.values[n][nBlocks][i * kParts % 2]);
        squares = L::Add32(squares, L::template ShiftRightUnsigned32<kSquareShift>(
                                        L::SumOfProducts(values, values)));
      }
      loud[i] = L::IsGreater32(squares, most);
      any = L::Or(any, loud[i]);
    }
    if (L::Signs32(any) == 0) return 0;
    std::uint32_t dwBlocks = 0;
    for (std::size_t i = 0; i < kRegisters; ++i) {
      dwBlocks |= L::Signs32(loud[i]) << (4 * kParts * i);
    }
    return dwBlocks;
  }

  VCM_LANES_INLINE static void RedoLoudBlocks(const S_Inputs& inputs, const S_CoreMatrix& matrix,
                                              int nMostSquares, S_Outputs& outputs) {
    std::uint32_t dwBlocks = LoudBlocks(inputs, nMostSquares);
    for (; dwBlocks != 0; dwBlocks &= dwBlocks - 1) {
      const auto nBlock = static_cast<std::size_t>(std::countr_zero(dwBlocks));
      const bool bReverse = IsOdd(nBlock);
      std::array<std::int16_t, kKernel> values;
      for (std::size_t n = 0; n < kKernel; ++n) {
        values[bReverse ? kKernel - 1 - n : n] =
            inputs.values[n % kHalfKernel][nBlock / 8][nBlock / 4 % 2]
                         [nBlock % 4 * 2 + n / kHalfKernel];
      }
      for (std::size_t k = 0; k < kKernel; ++k) {
        outputs.values[k % kHalfKernel][nBlock / 8][k / kHalfKernel][nBlock % 8] =
            KernelValue(values, matrix, k);
      }
    }
  }

  // ---- rotations ----

  template <int nBits>
  VCM_LANES_INLINE static void Rotations(const S_Outputs& outputs, const S_AllTurns& passes,
                                         S_Rows& rows) {
    for (std::size_t k = 0; k < kHalfKernel; ++k) {
      for (std::size_t nPart = 0; nPart < 2; nPart += kParts) {
        const auto factor = [&](std::size_t nPass, std::size_t nTurns, std::size_t nBack) {
          return passes[nPass].factors[k][nTurns][nBack].lanes + 8 * nPart;
        };
        R of20[2][2];  // [u1][t4]
        for (std::size_t t4 = 0; t4 < 2; ++t4) {
          const R a = L::Load(outputs.values[k][2 * t4][nPart]);
          const R b = L::Load(outputs.values[k][2 * t4 + 1][nPart]);
          for (std::size_t u1 = 0; u1 < 2; ++u1) {
            of20[u1][t4] = RoundedSums<nBits>(a, b, factor(0, 0, u1), factor(0, 0, u1));
          }
        }
        for (std::size_t nTurns = 0; nTurns < 4; ++nTurns) {
          const std::size_t u1 = nTurns / 2;
          const void* const pFactor = factor(1, 2 * u1, nTurns % 2);
          R values = RoundedSums<nBits>(of20[u1][0], of20[u1][1], pFactor, pFactor);
          values = L::InterleaveHalves(values);
          for (std::size_t nPass = 2; nPass < 5; ++nPass) {
            values = RoundedSums<nBits>(values, factor(nPass, nTurns, 0), values,
                                        factor(nPass, nTurns, 1));
          }
          L::StoreParts(rows.Row(ValueOf(k + kHalfKernel * nPart, nTurns)),
                        rows.Row(ValueOf(k + kHalfKernel, nTurns)), values);
        }
      }
    }
  }

  // put(values, place): sixteen values of the frame, or eight.
  template <typename Put>
  VCM_LANES_INLINE static void Transpose(const S_Rows& rows, Put put) {
    for (std::size_t nFirst = 0; nFirst < kValuesOf40; nFirst += 8 * kParts) {
      R columns[8];
      for (std::size_t i = 0; i < 8; ++i) {
        columns[i] = L::Load(rows.values[nFirst / 16][i][nFirst / 8 % 2]);
      }
      Transpose(columns);
      for (std::size_t nLane = 0; nLane < 8; ++nLane) {
        // The places of value 0, for the bits u5 u4 u3.
        constexpr std::size_t kPlaces[] = {0, 79, 159, 80, 319, 240, 160, 239};
        const bool bUp = !IsOdd(nLane);
        const std::size_t nAt = bUp ? kPlaces[nLane] + nFirst : kPlaces[nLane] - nFirst - 7;
        put(bUp ? columns[nLane] : L::ReverseParts(columns[nLane]),
            S_Place{nAt, bUp, nFirst + 8 == kValuesOf40});
      }
    }
  }
  VCM_LANES_INLINE static void Transpose(R (&rows)[8]) {
    R pairs[8];
    for (std::size_t i = 0; i < 8; i += 2) {
      pairs[i] = L::InterleaveLow16(rows[i], rows[i + 1]);
      pairs[i + 1] = L::InterleaveHigh16(rows[i], rows[i + 1]);
    }
    R fours[8];
    for (std::size_t i = 0; i < 8; i += 4) {
      for (std::size_t j = 0; j < 2; ++j) {
        fours[i + 2 * j] = L::InterleaveLow32(pairs[i + j], pairs[i + j + 2]);
        fours[i + 2 * j + 1] = L::InterleaveHigh32(pairs[i + j], pairs[i + j + 2]);
      }
    }
    for (std::size_t i = 0; i < 4; ++i) {
      rows[2 * i] = L::InterleaveLow64(fours[i], fours[i + 4]);
      rows[2 * i + 1] = L::InterleaveHigh64(fours[i], fours[i + 4]);
    }
  }
};

}  // namespace kestrel
