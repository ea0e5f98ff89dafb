// SPDX-License-Identifier: Apache-2.0
//
// All routines do the same to the bit: on the vectors, on signals at the limits, on damaged frames.
#include "kestrel/Routines.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "KestrelSignals.h"
#include "Processor.h"
#include "VectorFiles.h"
#include "kestrel/TransformBounds.h"

namespace kestrel {
namespace {

using test::C_Signals;
using test::Damage;
using test::FrameOf;
using test::ReadSamples;
using test::ReadStreams;
using test::ReadWords;
using test::S_Stream;

const S_Routines& Plain() { return AllRoutines().back(); }

std::string NameOf(const testing::TestParamInfo<S_Routines>& info) { return info.param.pszName; }

class RoutinesTest : public testing::TestWithParam<S_Routines> {};

TEST_P(RoutinesTest, Vectors_EncodeWordForWord) {
  for (const S_Stream& stream : ReadStreams()) {
    if (stream.input.empty()) continue;
    const auto samples = ReadSamples(stream.input);
    const auto words = ReadWords(stream.name + ".bits");
    S_EncoderState state;
    std::vector<std::uint16_t> encoded(stream.nWordsPerFrame);
    for (std::size_t n = 0; n < stream.nFrames; ++n) {
      GetParam().pfnEncode(state, Configure(stream.dwRate), FrameOf(samples, static_cast<int>(n)),
                           encoded);
      const auto first = words.begin() + static_cast<std::ptrdiff_t>(n * stream.nWordsPerFrame);
      ASSERT_TRUE(std::equal(encoded.begin(), encoded.end(), first)) << stream.name << ' ' << n;
    }
  }
}

TEST_P(RoutinesTest, Vectors_DecodeSampleForSample) {
  for (const S_Stream& stream : ReadStreams()) {
    const auto words = ReadWords(stream.name + ".bits");
    S_DecoderState state;
    S_Frame samples;
    for (std::size_t n = 0; n < stream.nFrames; ++n) {
      GetParam().pfnDecode(state, Configure(stream.dwRate),
                           std::span(words).subspan(n * stream.nWordsPerFrame), samples);
      ASSERT_EQ(test::Crc32(samples), stream.decodedCrcs[n]) << stream.name << ' ' << n;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(All, RoutinesTest,
                         testing::ValuesIn(AllRoutines().begin(), AllRoutines().end()), NameOf);

// All but the plain ones, beside those.
class FastRoutinesTest : public RoutinesTest {};

TEST_P(FastRoutinesTest, ForwardTransformOfSignalsAtTheLimits_IsThePlainOne) {
  C_Signals signals(1);
  S_Frame plainHistory{};
  S_Frame history{};
  for (int n = 0; n < 4000; ++n) {
    const S_Frame samples = signals.Next();
    S_Frame want;
    S_Frame coefficients;
    const int nShift = Plain().pfnForward(plainHistory, samples, want);
    ASSERT_EQ(GetParam().pfnForward(history, samples, coefficients), nShift) << n;
    ASSERT_EQ(coefficients, want) << n;
    ASSERT_EQ(history, plainHistory) << n;
  }
}

TEST_P(FastRoutinesTest, InverseTransformOfSpectraAtTheLimits_IsThePlainOne) {
  C_Signals signals(2);
  S_Overlap plainOverlap{};
  S_Overlap overlap{};
  for (int n = 0; n < 4000; ++n) {
    const S_Frame coefficients = signals.Next();
    const int nShift = static_cast<int>(signals.Below(11)) + kLowestShift;
    S_Frame want;
    S_Frame samples;
    Plain().pfnInverse(plainOverlap, coefficients, nShift, want);
    GetParam().pfnInverse(overlap, coefficients, nShift, samples);
    ASSERT_EQ(samples, want) << n;
    ASSERT_EQ(overlap, plainOverlap) << n;
  }
}

TEST_P(FastRoutinesTest, StreamsAtEveryRate_AreThePlainOnesAlsoWhenDamaged) {
  C_Signals signals(3);
  for (std::uint32_t dwRate = 4800; dwRate <= 32000; dwRate += kRateStep) {
    const S_Configuration configuration = Configure(dwRate);
    const auto nWords = static_cast<std::size_t>(configuration.nWordsPerFrame);
    S_EncoderState plainEncoder;
    S_EncoderState encoder;
    S_DecoderState plainDecoder;
    S_DecoderState decoder;
    for (int n = 0; n < 120; ++n) {
      const S_Frame samples = signals.Next();
      std::vector<std::uint16_t> want(nWords);
      std::vector<std::uint16_t> words(nWords);
      Plain().pfnEncode(plainEncoder, configuration, samples, want);
      GetParam().pfnEncode(encoder, configuration, samples, words);
      ASSERT_EQ(words, want) << dwRate << ' ' << n;

      Damage(signals, words);
      S_Frame wanted;
      S_Frame decoded;
      Plain().pfnDecode(plainDecoder, configuration, words, wanted);
      GetParam().pfnDecode(decoder, configuration, words, decoded);
      ASSERT_EQ(decoded, wanted) << dwRate << ' ' << n;
      ASSERT_EQ(decoder.noise.seeds, plainDecoder.noise.seeds) << dwRate << ' ' << n;
      ASSERT_EQ(decoder.lastGood.coefficients, plainDecoder.lastGood.coefficients)
          << dwRate << ' ' << n;
    }
  }
}

TEST_P(FastRoutinesTest, FramesOfAnyWords_DecodeLikeThePlainOnes) {
  C_Signals signals(4);
  for (std::uint32_t dwRate = 4800; dwRate <= 32000; dwRate += kRateStep) {
    const S_Configuration configuration = Configure(dwRate);
    std::vector<std::uint16_t> words(static_cast<std::size_t>(configuration.nWordsPerFrame));
    S_DecoderState plain;
    S_DecoderState state;
    for (int n = 0; n < 200; ++n) {
      for (auto& wWord : words) wWord = static_cast<std::uint16_t>(signals.Sample());
      S_Frame want;
      S_Frame samples;
      Plain().pfnDecode(plain, configuration, words, want);
      GetParam().pfnDecode(state, configuration, words, samples);
      ASSERT_EQ(samples, want) << dwRate << ' ' << n;
      ASSERT_EQ(state.noise.seeds, plain.noise.seeds) << dwRate << ' ' << n;
    }
  }
}

// One frame after the last one that was skipped, everything is as if all had been decoded.
TEST_P(RoutinesTest, FramesThatAreSkipped_LeaveTheStateButForTheOverlap) {
  C_Signals signals(6);
  for (const std::uint32_t dwRate : {4800U, 9600U, 12000U, 16000U, 32000U}) {
    const S_Configuration configuration = Configure(dwRate);
    std::vector<std::uint16_t> words(static_cast<std::size_t>(configuration.nWordsPerFrame));
    S_EncoderState encoder;
    S_DecoderState all;
    S_DecoderState some;
    int nDamaged = 0;
    for (int n = 0; n < 200; ++n) {
      Plain().pfnEncode(encoder, configuration, signals.Next(), words);
      Damage(signals, words);
      S_Frame want;
      S_Frame samples;
      const bool bGood = Plain().pfnDecode(all, configuration, words, want);
      nDamaged += bGood ? 0 : 1;
      if (n % 5 < 2) {
        ASSERT_EQ(GetParam().pfnSkip(some, configuration, words), bGood) << dwRate << ' ' << n;
      } else {
        ASSERT_EQ(GetParam().pfnDecode(some, configuration, words, samples), bGood)
            << dwRate << ' ' << n;
      }
      if (n % 5 > 2) {
        ASSERT_EQ(samples, want) << dwRate << ' ' << n;
      }
      ASSERT_EQ(some.noise.seeds, all.noise.seeds) << dwRate << ' ' << n;
      ASSERT_EQ(some.lastGood.coefficients, all.lastGood.coefficients) << dwRate << ' ' << n;
      ASSERT_EQ(some.lastGood.nShift, all.lastGood.nShift) << dwRate << ' ' << n;
    }
    EXPECT_GT(nDamaged, 5) << dwRate;
    EXPECT_LT(nDamaged, 195) << dwRate;
  }
}

TEST_P(FastRoutinesTest, MoreRoomThanAFrameNeeds_IsLeftAlone) {
  S_EncoderState state;
  std::vector<std::uint16_t> words(kMaxWordsPerFrame, 0x1234);
  GetParam().pfnEncode(state, Configure(4800), C_Signals(5).Next(), words);
  EXPECT_EQ(std::count(words.begin() + 6, words.end(), 0x1234), kMaxWordsPerFrame - 6);
}

INSTANTIATE_TEST_SUITE_P(AllButPlain, FastRoutinesTest,
                         testing::ValuesIn(AllRoutines().begin(), AllRoutines().end() - 1), NameOf);

TEST(Routines, Limit_LeavesTheRoutinesOfLesserInstructions) {
  const auto eBefore = vcm::UsableInstructions();
  vcm::LimitInstructions(vcm::tagInstructions::kPlain);
  EXPECT_STREQ(FastestRoutines().pszName, "loops");
  vcm::LimitInstructions(vcm::tagInstructions::kAvx2);
  EXPECT_STREQ(FastestRoutines().pszName, AllRoutines().front().pszName);
  vcm::LimitInstructions(eBefore);
}

// ---- the bounds below which sums need no limits ----

// The sum of a kernel without limits, rounded.
std::int64_t UnlimitedKernelValue(const std::array<std::int16_t, kKernel>& block,
                                  const S_CoreMatrix& matrix, std::size_t nValue) {
  std::int64_t nSum = 0;
  for (std::size_t i = 0; i < kKernel; ++i) nSum += std::int64_t{block[i]} * matrix[i][nValue];
  return (nSum + 0x4000) >> 15;
}

// A block in the direction of a column, which has the largest sum of all blocks of its length.
std::array<std::int16_t, kKernel> Along(const S_CoreMatrix& matrix, std::size_t nValue,
                                        double dFactor) {
  std::array<std::int16_t, kKernel> block{};
  for (std::size_t i = 0; i < kKernel; ++i) {
    block[i] =
        static_cast<std::int16_t>(std::clamp(matrix[i][nValue] * dFactor, -32768.0, 32767.0));
  }
  return block;
}

int SquaresOf(const std::array<std::int16_t, kKernel>& block) {
  int nSquares = 0;
  for (const std::int16_t nValue : block) nSquares += nValue * nValue >> kSquareShift;
  return nSquares;
}

struct S_Core {
  const char* pszName;
  const S_CoreMatrix* pMatrix;
  int nMostSquares;
};
std::string NameOfCore(const testing::TestParamInfo<S_Core>& core) { return core.param.pszName; }

class KernelBoundTest : public testing::TestWithParam<S_Core> {};

TEST_P(KernelBoundTest, LongestBlocksWithinTheBound_ReachNoLimit) {
  const auto& [pszName, pMatrix, nMostSquares] = GetParam();
  for (std::size_t k = 0; k < kKernel; ++k) {
    double dFactor = 20;
    while (SquaresOf(Along(*pMatrix, k, dFactor)) > nMostSquares) dFactor *= 0.9999;
    const auto block = Along(*pMatrix, k, dFactor);
    EXPECT_GT(SquaresOf(block), nMostSquares * 0.99) << k;
    for (std::size_t nValue = 0; nValue < kKernel; ++nValue) {
      EXPECT_EQ(KernelValue(block, *pMatrix, nValue),
                UnlimitedKernelValue(block, *pMatrix, nValue));
    }
  }
}

TEST_P(KernelBoundTest, BlocksBeyondTheBound_DoReachALimit) {
  const auto& [pszName, pMatrix, nMostSquares] = GetParam();
  int nLimited = 0;
  for (std::size_t k = 0; k < kKernel; ++k) {
    const auto block = Along(*pMatrix, k, 20);
    if (KernelValue(block, *pMatrix, k) != UnlimitedKernelValue(block, *pMatrix, k)) ++nLimited;
  }
  EXPECT_GT(nLimited, 0);
}

INSTANTIATE_TEST_SUITE_P(Cores, KernelBoundTest,
                         testing::Values(S_Core{"Analysis", &kAnalysisCore, kMostAnalysisSquares},
                                         S_Core{"Synthesis", &kSynthesisCore,
                                                kMostSynthesisSquares}),
                         NameOfCore);

// The signals above are of use only if some of them are beyond the bounds.
TEST(TransformBounds, SignalsOfTheTests_AreOnBothSides) {
  C_Signals signals(1);
  S_Frame history{};
  int nQuiet = 0;
  for (int n = 0; n < 4000; ++n) {
    const S_Frame samples = signals.Next();
    const S_Loudness loudness = LoudnessOf(ApplyAnalysisWindow(history, samples));
    if (IsQuiet(loudness, MagnitudeShift(loudness))) ++nQuiet;
    history = samples;
  }
  EXPECT_GT(nQuiet, 1000);
  EXPECT_LT(nQuiet, 3995);
}

}  // namespace
}  // namespace kestrel
