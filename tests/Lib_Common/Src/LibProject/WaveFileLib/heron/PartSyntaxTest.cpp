// SPDX-License-Identifier: Apache-2.0
//
// Sections that the writer wrote come back from the reader.
#include "heron/PartSyntax.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "Codes.h"
#include "Parts.h"
#include "Signals.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using test::AllZero;
using test::C_Random;
using test::ReadParts;
using test::S_Bytes;
using test::S_Coefficients;
using test::S_Read;

// What a writer writes: a node that is split, or a part with its coefficients.
struct S_Step {
  bool bSplit;
  S_Part part;
  S_Coefficients coefficients;
};

struct S_Block {
  std::size_t nUnitLength;
  std::size_t nSamples;
  std::vector<S_Step> steps;
};

// Coefficients of one of several kinds: zeros, small ones, a falling spectrum, the largest of all.
S_Coefficients RandomCoefficients(C_Random& random, std::size_t nLength, int nIndex) {
  const std::uint32_t nKind = random.Below(6);
  const double dLoudest = std::exp2(random.Below(2000) / 100.0);
  // No coefficient of a sound is larger.
  const auto nLargest = static_cast<std::int64_t>(32768 * std::sqrt(3840.0) * 256);
  S_Coefficients coefficients(nLength);
  for (std::size_t k = 0; k < nLength; ++k) {
    std::int64_t nMost = 0;
    if (nKind == 1) nMost = HalfStep(nIndex) / 2;
    if (nKind == 2) nMost = 3 * std::int64_t{HalfStep(nIndex)};
    if (nKind == 3 || nKind == 4) {
      nMost = std::llround(dLoudest * HalfStep(nIndex) / (1.0 + static_cast<double>(k)));
    }
    if (nKind == 5) nMost = nLargest;
    nMost = std::min(nMost, nLargest);
    coefficients[k] = static_cast<std::int32_t>(random.Between(-nMost, nMost));
  }
  return coefficients;
}

// Divides a node in a random way.
void AddSteps(C_Random& random, S_Block& block, S_Part node, int* pIndex) {
  const std::size_t nAt = node.nUnit * block.nUnitLength;
  if (nAt >= block.nSamples) return;
  if (node.nSize > 0 && random.Below(2) == 0) {
    block.steps.push_back({true, node, {}});
    const std::size_t nHalf = node.Units() / 2;
    AddSteps(random, block, {node.nUnit, node.nSize - 1}, pIndex);
    AddSteps(random, block, {node.nUnit + nHalf, node.nSize - 1}, pIndex);
    return;
  }
  // Step indices stay alike, move a little, or jump.
  const std::uint32_t nMove = random.Below(4);
  if (nMove == 2) {
    *pIndex = std::clamp(*pIndex + static_cast<int>(random.Below(31)) - 15, 0, kSteps - 1);
  }
  if (nMove == 3) *pIndex = static_cast<int>(random.Below(kSteps));
  node.nIndex = *pIndex;
  std::size_t nLength = node.Units() * block.nUnitLength;
  if (node.nSize == 0 && random.Below(3) == 0) {
    node.kind = E_PartKind::kPlain;
    nLength = std::min(nLength, block.nSamples - nAt);
  }
  block.steps.push_back({false, node, RandomCoefficients(random, nLength, node.nIndex)});
}

S_Block RandomBlock(std::uint64_t qwSeed, std::size_t nUnitLength, std::size_t nSamples) {
  C_Random random(qwSeed);
  S_Block block{nUnitLength, nSamples, {}};
  int nIndex = static_cast<int>(random.Below(kSteps));
  for (std::size_t nUnit = 0; nUnit * nUnitLength < nSamples; nUnit += kSectionUnits) {
    AddSteps(random, block, {nUnit, kPartSizes - 1}, &nIndex);
  }
  return block;
}

void WriteStep(C_PartWriter& writer, const S_Step& step, S_WriterTools& tools) {
  if (step.bSplit) writer.WriteSplit(step.part.nSize);
  if (!step.bSplit) writer.Write(step.part, step.coefficients, tools);
}

S_Bytes RunOf(const S_Block& block) {
  S_WriterTools tools(block.nUnitLength * kSectionUnits);
  C_PartWriter writer(block.nUnitLength);
  for (const S_Step& step : block.steps) WriteStep(writer, step, tools);
  return writer.Finish();
}

// Each coefficient is within one step of what was written, or within two when it became zero.
void ExpectAlike(const S_Step& step, std::span<const std::int32_t> values) {
  const std::int32_t nHalfStep = HalfStep(step.part.nIndex);
  for (std::size_t k = 0; k < step.coefficients.size(); ++k) {
    const std::int64_t nWritten = step.coefficients[k];
    // The inverse of the half step is cut to 14 bits or more.
    const std::int64_t nNear = std::abs(nWritten) / 8192 + 1;
    ASSERT_LE(std::abs(values[k] - nWritten), (values[k] == 0 ? 4 : 2) * nHalfStep + nNear) << k;
    ASSERT_GE(values[k] * nWritten, 0) << k;
    ASSERT_EQ(values[k] % nHalfStep, 0) << k;
  }
  for (std::size_t k = step.coefficients.size(); k < values.size(); ++k) ASSERT_EQ(values[k], 0);
}

// Expects that the part that was read is the one that was written.
void ExpectPart(const S_Step& step, const S_Part& part, std::span<const std::int32_t> values) {
  ASSERT_EQ(part.nUnit, step.part.nUnit);
  ASSERT_EQ(part.nSize, step.part.nSize);
  ASSERT_EQ(part.kind == E_PartKind::kPlain, step.part.kind == E_PartKind::kPlain);
  ASSERT_NO_FATAL_FAILURE(ExpectAlike(step, values));
  if (part.kind == E_PartKind::kSilent) {
    ASSERT_TRUE(AllZero(values));
    return;
  }
  ASSERT_EQ(part.nIndex, step.part.nIndex);
  if (part.kind != E_PartKind::kPlain) {
    ASSERT_FALSE(AllZero(values));
  }
}

void CheckRoundTrip(const S_Block& block) {
  const S_Bytes bytes = RunOf(block);
  const S_Read read = ReadParts(bytes, block.nUnitLength, block.nSamples);
  ASSERT_TRUE(read.bRead);
  EXPECT_GE(read.nUnread, 0);
  EXPECT_LE(read.nUnread, 8);
  std::size_t nParts = 0;
  std::size_t nEnd = 0;
  for (const S_Step& step : block.steps) {
    if (step.bSplit) continue;
    ASSERT_LT(nParts, read.parts.size());
    const S_Part& part = read.parts[nParts++];
    const auto values =
        std::span(read.values)
            .subspan(part.nUnit * block.nUnitLength, part.Units() * block.nUnitLength);
    ASSERT_NO_FATAL_FAILURE(ExpectPart(step, part, values)) << part.nUnit;
    nEnd = part.End() * block.nUnitLength;
  }
  EXPECT_EQ(nParts, read.parts.size());
  EXPECT_TRUE(AllZero(std::span(read.values).subspan(nEnd)));
}

TEST(HeronPartSyntax, RandomParts_ComeBack) {
  for (std::uint64_t qwSeed = 1; qwSeed <= 150; ++qwSeed) {
    const std::size_t nUnitLength = 20 + 2 * (qwSeed * 7 % 30);
    ASSERT_NO_FATAL_FAILURE(
        CheckRoundTrip(RandomBlock(qwSeed, nUnitLength, 6 * kSectionUnits * nUnitLength)))
        << qwSeed;
  }
}

TEST(HeronPartSyntax, LongUnits_ComeBack) {
  for (std::uint64_t qwSeed = 1; qwSeed <= 6; ++qwSeed) {
    ASSERT_NO_FATAL_FAILURE(CheckRoundTrip(RandomBlock(qwSeed, 240, 12000))) << qwSeed;
  }
}

TEST(HeronPartSyntax, BlocksOfEveryLength_ComeBackUpToTheirEnd) {
  for (std::size_t nSamples = 1; nSamples <= 400; ++nSamples) {
    for (std::uint64_t qwSeed = 1; qwSeed <= 3; ++qwSeed) {
      ASSERT_NO_FATAL_FAILURE(CheckRoundTrip(RandomBlock(1000 * qwSeed + nSamples, 20, nSamples)))
          << nSamples << ' ' << qwSeed;
    }
  }
}

TEST(HeronPartSyntax, EveryJumpOfTheStepIndex_ComesBack) {
  for (int nFrom = 0; nFrom < kSteps; ++nFrom) {
    S_Block block{20, 0, {}};
    for (int nTo = 0; nTo < kSteps; ++nTo) {
      for (const int nIndex : {nFrom, nTo}) {
        const S_Part part{block.nSamples / 20, 3, E_PartKind::kNear, nIndex};
        // One coefficient of ten steps, so that the part is not silent.
        S_Coefficients coefficients(160);
        coefficients[3] = 20 * HalfStep(nIndex);
        block.steps.push_back({false, part, coefficients});
        block.nSamples += 160;
      }
    }
    ASSERT_NO_FATAL_FAILURE(CheckRoundTrip(block)) << nFrom;
  }
}

TEST(HeronPartSyntax, SilentParts_TakeNextToNothing) {
  S_Block block{40, 32000, {}};
  for (std::size_t nUnit = 0; nUnit < 800; nUnit += 8) {
    block.steps.push_back({false, {nUnit, 3, E_PartKind::kNear, 20}, S_Coefficients(320, 5)});
  }
  const S_Bytes bytes = RunOf(block);
  EXPECT_LT(bytes.size(), 40u);
  ASSERT_NO_FATAL_FAILURE(CheckRoundTrip(block));
}

TEST(HeronPartSyntax, APlainPartOfZeros_StaysPlain) {
  // A silent part would overlap its neighbours, which were transformed without an overlap.
  S_Block block{20, 20, {}};
  for (const std::size_t nSize : {3u, 2u, 1u}) block.steps.push_back({true, {0, nSize}, {}});
  block.steps.push_back({false, {0, 0, E_PartKind::kPlain, 20}, S_Coefficients(20, 3)});
  const S_Bytes bytes = RunOf(block);
  const S_Read read = ReadParts(bytes, block.nUnitLength, block.nSamples);
  ASSERT_TRUE(read.bRead);
  ASSERT_EQ(read.parts.size(), 1u);
  EXPECT_EQ(read.parts[0].kind, E_PartKind::kPlain);
  EXPECT_TRUE(AllZero(read.values));
}

TEST(HeronPartSyntax, NoiseAfterNoise_IsSteady) {
  // Many coefficients of alike size: the steady model knows them after a few parts.
  C_Random random(1);
  S_Block block{40, 3200, {}};
  for (std::size_t nUnit = 0; nUnit < 80; nUnit += 8) {
    S_Coefficients coefficients(320);
    for (std::int32_t& nValue : coefficients) {
      nValue = static_cast<std::int32_t>(random.Between(-9000, 9000));
    }
    block.steps.push_back({false, {nUnit, 3, E_PartKind::kNear, 20}, coefficients});
  }
  const S_Bytes bytes = RunOf(block);
  const S_Read read = ReadParts(bytes, block.nUnitLength, block.nSamples);
  ASSERT_TRUE(read.bRead);
  EXPECT_EQ(read.parts.back().kind, E_PartKind::kSteady);
}

// ---- copies

TEST(HeronPartSyntax, ACopyOfAWriter_GoesOnAsTheOriginal) {
  S_WriterTools tools(24 * kSectionUnits);
  for (std::uint64_t qwSeed = 1; qwSeed <= 40; ++qwSeed) {
    const S_Block block = RandomBlock(qwSeed, 24, 4 * kSectionUnits * 24);
    const S_Bytes run = RunOf(block);
    C_PartWriter writer(24);
    for (std::size_t n = 0; n < block.steps.size(); ++n) {
      C_PartWriter copy = writer;
      // Something else is written with another copy and the same tools.
      C_PartWriter other = writer;
      WriteStep(other, {false, {0, 3}, S_Coefficients(24 * kSectionUnits, 70000)}, tools);
      EXPECT_EQ(copy.StepIndex(), writer.StepIndex());
      EXPECT_EQ(copy.Bits(), writer.Bits());
      for (std::size_t m = n; m < block.steps.size(); ++m) WriteStep(copy, block.steps[m], tools);
      ASSERT_EQ(copy.Finish(), run) << qwSeed << ' ' << n;
      WriteStep(writer, block.steps[n], tools);
    }
    EXPECT_EQ(writer.Finish(), run) << qwSeed;
  }
}

TEST(HeronPartSyntax, TheStepIndex_IsThatOfTheLastPartThatIsNotSilent) {
  S_WriterTools tools(20 * kSectionUnits);
  C_PartWriter writer(20);
  EXPECT_EQ(writer.StepIndex(), -1);
  const S_Coefficients loud(160, 90000);
  writer.Write({0, 3, E_PartKind::kNear, 17}, S_Coefficients(160), tools);
  EXPECT_EQ(writer.StepIndex(), -1);
  writer.Write({8, 3, E_PartKind::kNear, 21}, loud, tools);
  EXPECT_EQ(writer.StepIndex(), 21);
  writer.Write({16, 3, E_PartKind::kNear, 30}, S_Coefficients(160), tools);
  EXPECT_EQ(writer.StepIndex(), 21);
  writer.Write({24, 3, E_PartKind::kNear, 9}, loud, tools);
  EXPECT_EQ(writer.StepIndex(), 9);
}

}  // namespace
}  // namespace heron
