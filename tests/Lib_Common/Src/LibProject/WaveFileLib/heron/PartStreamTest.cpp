// SPDX-License-Identifier: Apache-2.0
//
// Sections that are written symbol by symbol show what the reader takes and what it refuses.
#include <gtest/gtest.h>

#include <cstdlib>
#include <initializer_list>

#include "Codes.h"
#include "Parts.h"
#include "Signals.h"
#include "heron/PartSyntax.h"
#include "heron/Quantiser.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using test::AllZero;
using test::C_Random;
using test::S_Bytes;
using test::S_Coefficients;
using test::S_Read;

constexpr std::size_t kUnit = 20;
constexpr std::size_t kSection = kUnit * kSectionUnits;

// Contexts of the kind of a part: the kind of the part before.
constexpr std::size_t kAfterNear = 0;
constexpr std::size_t kAfterSteady = 1;
constexpr std::size_t kAfterSilent = 2;

class C_Stream {
 public:
  C_Stream& Kind(std::size_t nContext, std::size_t nSize, E_PartKind kind) {
    test::WriteSymbol(m_encoder, kKindFrequencies[nContext][nSize], static_cast<std::size_t>(kind));
    return *this;
  }
  C_Stream& SplitDown(std::size_t nContext, std::size_t nSize) {
    for (std::size_t n = kPartSizes - 1; n > nSize; --n) Kind(nContext, n, E_PartKind::kSplit);
    return *this;
  }
  C_Stream& RawIndex(std::uint32_t nIndex) {
    m_encoder.WriteRaw(nIndex, 7);
    return *this;
  }
  C_Stream& IndexSymbol(std::size_t nSymbol) {
    test::WriteSymbol(m_encoder, kIndexFrequencies, nSymbol);
    return *this;
  }
  // Levels with nothing before the part, by the near model; negative numbers are negative levels.
  C_Stream& Levels(std::initializer_list<std::int32_t> levels, std::size_t nZeros) {
    Begin();
    for (const std::int32_t nLevel : levels) Level(nLevel);
    for (std::size_t n = 0; n < nZeros; ++n) Level(0);
    return *this;
  }
  // The escape of the first level of a part, with so many bits of 0.
  C_Stream& LongEscape(int nZeros) {
    m_encoder.WriteSymbol(kMagnitudeCumulative[test::kNear][ClassOf(8).nTable][0],
                          std::size_t{kEscapeSymbol});
    for (int n = 0; n < nZeros; ++n) m_encoder.WriteRaw(0, 1);
    m_encoder.WriteRaw(1, 1);
    return *this;
  }
  S_Bytes Take() { return m_encoder.Finish(); }

 private:
  void Begin() {
    m_below = {};
    m_nState = kFirstState;
  }
  void Level(std::int32_t nLevel) {
    const std::int32_t nSize = std::abs(nLevel);
    const std::size_t nQuantiser = QuantiserOf(m_nState);
    test::WriteMagnitude(m_encoder, test::kNear, nQuantiser, ClassOf(8 + m_below.Expectation()),
                         nSize, nLevel < 0);
    m_below = m_below.Then(HalfSteps(nQuantiser, nSize));
    m_nState = NextState(m_nState, static_cast<std::uint64_t>(nSize));
  }

  C_EntropyEncoder m_encoder;
  C_NearBelow m_below;
  std::size_t m_nState = kFirstState;
};

S_Read ReadStream(const S_Bytes& bytes, std::size_t nSamples = kSection) {
  return test::ReadParts(bytes, kUnit, nSamples);
}

TEST(HeronPartStream, ANearPart_IsKindIndexLevels) {
  const S_Read read = ReadStream(C_Stream()
                                     .Kind(kAfterNear, 3, E_PartKind::kNear)
                                     .RawIndex(12)
                                     .Levels({3, -2, 0, 1}, kSection - 4)
                                     .Take());
  ASSERT_TRUE(read.bRead);
  ASSERT_EQ(read.parts.size(), 1u);
  EXPECT_EQ(read.parts[0].kind, E_PartKind::kNear);
  EXPECT_EQ(read.parts[0].nSize, 3u);
  EXPECT_EQ(read.parts[0].nIndex, 12);
  // Quantiser 0 has level 3, quantiser 1 has -2 and what follows: 6, -3, 0 and 1 half steps.
  S_Coefficients expected(kSection);
  expected[0] = 6 * 256;
  expected[1] = -3 * 256;
  expected[3] = 2 * 256;
  EXPECT_EQ(S_Coefficients(read.values.begin(), read.values.begin() + 3),
            S_Coefficients(expected.begin(), expected.begin() + 3));
  EXPECT_NE(read.values[3], 0);
  EXPECT_TRUE(AllZero(std::span(read.values).subspan(4)));
}

TEST(HeronPartStream, SilentParts_AreOnlyTheirKinds) {
  const S_Read read = ReadStream(C_Stream()
                                     .Kind(kAfterNear, 3, E_PartKind::kSplit)
                                     .Kind(kAfterNear, 2, E_PartKind::kSilent)
                                     .Kind(kAfterSilent, 2, E_PartKind::kSilent)
                                     .Take());
  ASSERT_TRUE(read.bRead);
  ASSERT_EQ(read.parts.size(), 2u);
  EXPECT_EQ(read.parts[1].nUnit, 4u);
  EXPECT_EQ(read.parts[1].kind, E_PartKind::kSilent);
  EXPECT_TRUE(AllZero(read.values));
}

TEST(HeronPartStream, KindsAfterAPart_HaveItsContext) {
  // A near part, a steady one, a near one: each followed by a kind in its context. Nothing but
  // zeros, which every model codes with its own tables, so the kinds would not be found otherwise.
  C_EntropyEncoder encoder;
  const auto kind = [&](std::size_t nContext, std::size_t nSize, E_PartKind what) {
    test::WriteSymbol(encoder, kKindFrequencies[nContext][nSize], static_cast<std::size_t>(what));
  };
  const auto zeros = [&](std::size_t nModel, std::size_t nCount) {
    for (std::size_t n = 0; n < nCount; ++n) {
      test::WriteMagnitude(encoder, nModel, 0, ClassOf(8), 0, false);
    }
  };
  kind(kAfterNear, 3, E_PartKind::kSplit);
  kind(kAfterNear, 2, E_PartKind::kSteady);
  encoder.WriteRaw(30, 7);
  zeros(test::kSteady, kSection / 2);
  kind(kAfterSteady, 2, E_PartKind::kSplit);
  kind(kAfterSteady, 1, E_PartKind::kNear);
  test::WriteSymbol(encoder, kIndexFrequencies, 15 + 7);
  zeros(test::kNear, kSection / 4);
  kind(kAfterNear, 1, E_PartKind::kSplit);
  kind(kAfterNear, 0, E_PartKind::kSilent);
  kind(kAfterSilent, 0, E_PartKind::kPlain);
  test::WriteSymbol(encoder, kIndexFrequencies, 15 - 15);
  zeros(test::kNear, kUnit);
  kind(kAfterNear, 3, E_PartKind::kSilent);  // in the next section, after a plain part
  const S_Read read = ReadStream(encoder.Finish(), 2 * kSection);
  ASSERT_TRUE(read.bRead);
  ASSERT_EQ(read.parts.size(), 5u);
  const std::vector<E_PartKind> kinds = {E_PartKind::kSteady, E_PartKind::kNear,
                                         E_PartKind::kSilent, E_PartKind::kPlain,
                                         E_PartKind::kSilent};
  for (std::size_t n = 0; n < kinds.size(); ++n) EXPECT_EQ(read.parts[n].kind, kinds[n]) << n;
  EXPECT_EQ(read.parts[0].nIndex, 30);
  EXPECT_EQ(read.parts[1].nIndex, 37);
  EXPECT_EQ(read.parts[3].nIndex, 22);
  EXPECT_EQ(read.parts[4].nUnit, 8u);
}

TEST(HeronPartStream, PlainAndSilentParts_HideWhatIsBeforeThem) {
  for (const E_PartKind hiding : {E_PartKind::kPlain, E_PartKind::kSilent}) {
    C_Stream stream;
    stream.SplitDown(kAfterNear, 0).Kind(kAfterNear, 0, E_PartKind::kNear).RawIndex(20);
    stream.Levels({900, 800, 700, 900, 800, 700}, kUnit - 6);
    stream.Kind(kAfterNear, 0, hiding);
    if (hiding == E_PartKind::kPlain) stream.IndexSymbol(15).Levels({70, 80, -90}, kUnit - 3);
    const std::size_t nContext = hiding == E_PartKind::kPlain ? kAfterNear : kAfterSilent;
    stream.Kind(nContext, 1, E_PartKind::kNear).IndexSymbol(15).Levels({2, 2}, 2 * kUnit - 2);
    stream.Kind(kAfterNear, 2, E_PartKind::kSilent);
    const S_Read read = ReadStream(stream.Take());
    ASSERT_TRUE(read.bRead);
    ASSERT_EQ(read.parts.size(), 4u);
    EXPECT_EQ(read.values[2 * kUnit], 4 * HalfStep(20));
    EXPECT_EQ(read.values[2 * kUnit + 1], 4 * HalfStep(20));
    EXPECT_TRUE(AllZero(std::span(read.values).subspan(2 * kUnit + 2)));
    EXPECT_GT(read.nUnread, 0);
  }
}

TEST(HeronPartStream, WhatBeginsAfterTheLastSample_IsLeftOut) {
  // 25 samples: the second unit is begun, the third is not there.
  const S_Read read = ReadStream(C_Stream()
                                     .SplitDown(kAfterNear, 0)
                                     .Kind(kAfterNear, 0, E_PartKind::kSilent)
                                     .Kind(kAfterSilent, 0, E_PartKind::kPlain)
                                     .RawIndex(12)
                                     .Levels({1, 2, 2, 2, 3}, 0)
                                     .Take(),
                                 25);
  ASSERT_TRUE(read.bRead);
  ASSERT_EQ(read.parts.size(), 2u);
  EXPECT_EQ(read.parts[1].nUnit, 1u);
  EXPECT_NE(read.values[24], 0);
  EXPECT_TRUE(AllZero(std::span(read.values).subspan(25)));
}

// ---- refusals

TEST(HeronPartStream, FirstIndicesFrom72On_AreRefused) {
  for (std::uint32_t nIndex = 0; nIndex < 128; ++nIndex) {
    const S_Bytes bytes = C_Stream()
                              .Kind(kAfterNear, 3, E_PartKind::kNear)
                              .RawIndex(nIndex)
                              .Levels({1}, kSection - 1)
                              .Take();
    EXPECT_EQ(ReadStream(bytes).bRead, nIndex < kSteps) << nIndex;
  }
}

// Two halves: the first with this index, the second with this symbol and more.
C_Stream TwoHalves(std::uint32_t nFirst, std::size_t nSymbol) {
  C_Stream stream;
  stream.Kind(kAfterNear, 3, E_PartKind::kSplit).Kind(kAfterNear, 2, E_PartKind::kNear);
  stream.RawIndex(nFirst).Levels({}, kSection / 2);
  stream.Kind(kAfterNear, 2, E_PartKind::kNear).IndexSymbol(nSymbol);
  return stream;
}

TEST(HeronPartStream, DifferencesThatLeaveTheRange_AreRefused) {
  for (const std::uint32_t nFirst : {0u, 1u, 14u, 15u, 40u, 56u, 57u, 70u, 71u}) {
    for (int nDifference = -15; nDifference <= 15; ++nDifference) {
      C_Stream stream = TwoHalves(nFirst, static_cast<std::size_t>(nDifference) + 15);
      const S_Read read = ReadStream(stream.Levels({}, kSection / 2).Take());
      const int nIndex = static_cast<int>(nFirst) + nDifference;
      EXPECT_EQ(read.bRead, nIndex >= 0 && nIndex < kSteps) << nFirst << ' ' << nDifference;
      if (!read.bRead) continue;
      EXPECT_EQ(read.parts[1].nIndex, nIndex);
    }
  }
}

TEST(HeronPartStream, EscapedIndicesFrom72On_AreRefused) {
  for (std::uint32_t nIndex = 0; nIndex < 128; ++nIndex) {
    C_Stream stream = TwoHalves(30, 31);
    const S_Read read = ReadStream(stream.RawIndex(nIndex).Levels({}, kSection / 2).Take());
    EXPECT_EQ(read.bRead, nIndex < kSteps) << nIndex;
    if (!read.bRead) continue;
    EXPECT_EQ(read.parts[1].nIndex, static_cast<int>(nIndex));
  }
}

TEST(HeronPartStream, ASplitUnit_IsRefused) {
  EXPECT_FALSE(
      ReadStream(C_Stream().SplitDown(kAfterNear, 0).Kind(kAfterNear, 0, E_PartKind::kSplit).Take())
          .bRead);
}

TEST(HeronPartStream, PlainPartsOfMoreThanAUnit_AreRefused) {
  for (std::size_t nSize = 0; nSize < kPartSizes; ++nSize) {
    // One sample, so that nothing follows.
    const S_Bytes bytes = C_Stream()
                              .SplitDown(kAfterNear, nSize)
                              .Kind(kAfterNear, nSize, E_PartKind::kPlain)
                              .RawIndex(20)
                              .Levels({}, kSection)
                              .Take();
    EXPECT_EQ(ReadStream(bytes, 1).bRead, nSize == 0) << nSize;
  }
}

TEST(HeronPartStream, CoefficientsAboveTheLargest_AreRefused) {
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    const std::int32_t nMost = LargestMultiple(nIndex);
    const auto begun = [&] {
      C_Stream stream;
      stream.Kind(kAfterNear, 3, E_PartKind::kNear).RawIndex(static_cast<std::uint32_t>(nIndex));
      return stream;
    };
    for (const int nSign : {1, -1}) {
      // Quantiser 0 has even multiples; after level 1, quantiser 1 has odd ones.
      const std::int32_t nEven = nMost / 2;
      const std::int32_t nOdd = (nMost + 1) / 2;
      const auto first = ReadStream(begun().Levels({nSign * nEven}, kSection - 1).Take());
      ASSERT_TRUE(first.bRead) << nIndex;
      EXPECT_EQ(first.values[0], nSign * 2 * nEven * HalfStep(nIndex));
      const auto second = ReadStream(begun().Levels({1, nSign * nOdd}, kSection - 2).Take());
      ASSERT_TRUE(second.bRead) << nIndex;
      EXPECT_EQ(second.values[1], nSign * (2 * nOdd - 1) * HalfStep(nIndex));
      EXPECT_FALSE(ReadStream(begun().Levels({nSign * (nEven + 1)}, kSection - 1).Take()).bRead);
      EXPECT_FALSE(ReadStream(begun().Levels({1, nSign * (nOdd + 1)}, kSection - 2).Take()).bRead);
    }
  }
}

TEST(HeronPartStream, EscapesLongerThanAnyLevels_AreRefused) {
  for (const int nZeros : {24, 25, 26, 60, 1000}) {
    C_Stream stream;
    stream.Kind(kAfterNear, 3, E_PartKind::kNear).RawIndex(0).LongEscape(nZeros);
    EXPECT_FALSE(ReadStream(stream.Take()).bRead) << nZeros;
  }
}

TEST(HeronPartStream, RandomBytes_AreReadOrRefusedWithinTheirBounds) {
  C_Random random(3);
  int nRefused = 0;
  for (int nRound = 0; nRound < 20000; ++nRound) {
    S_Bytes bytes(random.Below(60));
    for (std::uint8_t& by : bytes) by = random.Byte();
    const std::size_t nSamples = 1 + random.Below(3 * kSection);
    const S_Read read = ReadStream(bytes, nSamples);
    nRefused += read.bRead ? 0 : 1;
    for (const S_Part& part : read.parts) {
      ASSERT_LT(part.nUnit * kUnit, nSamples);
      ASSERT_EQ(part.nUnit % part.Units(), 0u);
      ASSERT_TRUE(part.nSize == 0 || part.kind != E_PartKind::kPlain);
      ASSERT_NE(part.kind, E_PartKind::kSplit);
      ASSERT_GE(part.nIndex, 0);
      ASSERT_LT(part.nIndex, kSteps);
    }
    if (!read.bRead) continue;
    for (const std::int32_t nValue : read.values) ASSERT_LE(std::abs(nValue), kMaxCoefficient);
  }
  EXPECT_GT(nRefused, 100);
  EXPECT_LT(nRefused, 19900);
}

}  // namespace
}  // namespace heron
