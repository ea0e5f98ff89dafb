// SPDX-License-Identifier: Apache-2.0
//
// Round trips of frames of coefficients.
#include "heron/FrameSyntax.h"

#include <gtest/gtest.h>

#include <cmath>

#include "Codes.h"
#include "Signals.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using test::C_CodeReader;
using test::C_CodeWriter;
using test::C_Random;
using test::S_Bytes;
using test::Written;

using S_Coefficients = std::vector<std::int32_t>;

struct S_Frame {
  S_Coefficients coefficients;  // Q8
  int nIndex;
};

double HalfStep(int nIndex) { return std::exp2(nIndex / 4.0 - 3); }

// Coefficients that fall towards the high frequencies, up to dMost steps of the index.
S_Frame RandomFrame(C_Random& random, std::size_t nLength, int nIndex, double dMost) {
  const double dLargest = std::min(dMost * 2 * HalfStep(nIndex) * 256, std::exp2(28) - 1);
  S_Frame frame{S_Coefficients(nLength), nIndex};
  for (std::size_t k = 0; k < nLength; ++k) {
    const auto nHere = static_cast<std::int64_t>(dLargest / static_cast<double>(k + 1));
    frame.coefficients[k] = static_cast<std::int32_t>(random.Between(-nHere, nHere));
  }
  return frame;
}

S_Bytes Write(const std::vector<S_Frame>& frames) {
  return Written([&](C_CodeWriter& encoder) {
    C_FrameWriter writer(static_cast<int>(frames[0].coefficients.size()));
    for (const auto& [coefficients, nIndex] : frames) writer.Write(encoder, coefficients, nIndex);
  });
}

// Each coefficient is within one step of what was written, or within two steps if it became zero.
void ExpectAlike(const S_Frame& frame, const S_Coefficients& read) {
  for (std::size_t k = 0; k < read.size(); ++k) {
    // Quarters of an octave have 16 fractional bits.
    const double dStep =
        2 * HalfStep(frame.nIndex) * 256 + std::abs(frame.coefficients[k]) / 65536.0 + 2;
    ASSERT_NEAR(read[k], frame.coefficients[k], read[k] == 0 ? 2 * dStep : dStep)
        << frame.nIndex << ' ' << k;
    ASSERT_FALSE((read[k] < 0 && frame.coefficients[k] > 0) ||
                 (read[k] > 0 && frame.coefficients[k] < 0));
  }
}

void CheckRoundTrip(const std::vector<S_Frame>& frames) {
  const S_Bytes bytes = Write(frames);
  C_CodeReader decoder(bytes);
  C_FrameReader reader(static_cast<int>(frames[0].coefficients.size()));
  S_Coefficients read(frames[0].coefficients.size());
  for (const S_Frame& frame : frames) {
    ASSERT_TRUE(reader.Read(decoder, read)) << frame.nIndex;
    ASSERT_NO_FATAL_FAILURE(ExpectAlike(frame, read));
  }
  EXPECT_GE(decoder.Unread(), 0);
}

TEST(HeronFrameSyntax, EveryStepIndex_ComesBackFromFramesOfItsOwn) {
  C_Random random(1);
  for (int nIndex = 0; nIndex < kSteps; ++nIndex) {
    std::vector<S_Frame> frames;
    for (const double dMost : {0.4, 1.0, 5.0, 50.0, 1e4, 1e8}) {
      frames.push_back(RandomFrame(random, 40, nIndex, dMost));
    }
    ASSERT_NO_FATAL_FAILURE(CheckRoundTrip(frames)) << nIndex;
  }
}

TEST(HeronFrameSyntax, EveryJumpOfTheStepIndex_ComesBack) {
  C_Random random(2);
  std::vector<S_Frame> frames;
  for (int nFrom = 0; nFrom < kSteps; nFrom += 3) {
    for (int nTo = 0; nTo < kSteps; ++nTo) {
      frames.push_back(RandomFrame(random, 8, nFrom, 20));
      frames.push_back(RandomFrame(random, 8, nTo, 20));
    }
  }
  CheckRoundTrip(frames);
}

TEST(HeronFrameSyntax, FramesOfEveryLength_ComeBack) {
  C_Random random(3);
  for (const std::size_t nLength : {2u, 3u, 4u, 5u, 6u, 80u, 82u, 441u, 960u}) {
    std::vector<S_Frame> frames;
    for (int n = 0; n < 5; ++n) frames.push_back(RandomFrame(random, nLength, 20 + 3 * n, 300));
    ASSERT_NO_FATAL_FAILURE(CheckRoundTrip(frames)) << nLength;
  }
}

TEST(HeronFrameSyntax, LoudFramesAtTheFinestStep_ComeBack) {
  for (const std::int32_t nLevel : {1 << 20, 1 << 24, (1 << 28) - 256}) {
    const S_Frame frame{S_Coefficients(80, nLevel), 0};
    const S_Frame negative{S_Coefficients(80, -nLevel), 0};
    ASSERT_NO_FATAL_FAILURE(CheckRoundTrip({frame, negative, frame})) << nLevel;
  }
}

TEST(HeronFrameSyntax, Zeros_ComeBackAsZerosInFewBytes) {
  const std::vector<S_Frame> frames(100, S_Frame{S_Coefficients(160), 32});
  CheckRoundTrip(frames);
  EXPECT_LT(Write(frames).size(), 100u * 160u / 32u);
}

TEST(HeronFrameSyntax, CoefficientsBelowAQuarterOfAStep_BecomeZero) {
  const S_Frame frame{S_Coefficients(80, static_cast<std::int32_t>(HalfStep(32) * 256 / 2)), 32};
  const S_Bytes bytes = Write({frame});
  C_CodeReader decoder(bytes);
  C_FrameReader reader(80);
  S_Coefficients read(80, 99);
  ASSERT_TRUE(reader.Read(decoder, read));
  EXPECT_EQ(read, S_Coefficients(80));
}

// ---- step indices that no writer writes

bool ReadsIndex(const S_Bytes& bytes) {
  C_CodeReader decoder(bytes);
  C_FrameReader reader(2);
  S_Coefficients read(2);
  return reader.Read(decoder, read);
}

S_Bytes Escaped(std::uint32_t nIndex) {
  return Written([&](C_CodeWriter& encoder) {
    test::WriteSymbol(encoder, kIndexFrequencies, 31);
    encoder.WriteRaw(nIndex, 7);
  });
}

TEST(HeronFrameSyntax, EscapedIndicesFrom72_AreRefused) {
  for (std::uint32_t nIndex = 0; nIndex < 128; ++nIndex) {
    EXPECT_EQ(ReadsIndex(Escaped(nIndex)), nIndex < 72) << nIndex;
  }
}

TEST(HeronFrameSyntax, DifferencesThatLeaveTheRange_AreRefused) {
  // Starts with a frame of two zeros at each index and applies each difference to it.
  for (const int nFrom : {0, 3, 14, 15, 16, 56, 57, 70, 71}) {
    for (std::size_t nSymbol = 0; nSymbol <= 30; ++nSymbol) {
      const S_Bytes bytes = Written([&](C_CodeWriter& encoder) {
        C_FrameWriter(2).Write(encoder, S_Coefficients(2), nFrom);
        test::WriteSymbol(encoder, kIndexFrequencies, nSymbol);
      });
      C_CodeReader decoder(bytes);
      C_FrameReader reader(2);
      S_Coefficients read(2);
      ASSERT_TRUE(reader.Read(decoder, read));
      const int nTo = nFrom + static_cast<int>(nSymbol) - 15;
      EXPECT_EQ(reader.Read(decoder, read), nTo >= 0 && nTo < kSteps) << nFrom << ' ' << nTo;
    }
  }
}

TEST(HeronFrameSyntax, ACoefficientAboveTheLargest_IsRefused) {
  // The coarsest step: the 77th multiple of its half step is too large. The levels are coded with
  // the first class.
  const auto withLevel = [](std::int32_t nLevel) {
    return Written([&](C_CodeWriter& encoder) {
      test::WriteSymbol(encoder, kIndexFrequencies, 31);
      encoder.WriteRaw(kSteps - 1, 7);
      for (int k = 0; k < 2; ++k) {
        test::WriteMagnitude(encoder, 0, ClassOf(kLeastExpectation), k == 0 ? nLevel : 0, false);
      }
    });
  };
  const std::int32_t nMost = LargestMultiple(kSteps - 1) / 2;
  S_Coefficients read(2);
  C_FrameReader reader(2);
  const S_Bytes bytes = withLevel(nMost + 1);
  C_CodeReader decoder(bytes);
  EXPECT_FALSE(reader.Read(decoder, read));
  const S_Bytes largest = withLevel(nMost);
  C_CodeReader other(largest);
  C_FrameReader(2).Read(other, read);
  EXPECT_NEAR(read[0], nMost * 2 * HalfStep(kSteps - 1) * 256, 65536);
}

TEST(HeronFrameSyntax, AnyBytes_GiveCoefficientsWithinTheirLimit) {
  C_Random random(4);
  int nRead = 0;
  for (int n = 0; n < 20000; ++n) {
    S_Bytes bytes(random.Below(60));
    for (std::uint8_t& byByte : bytes) byByte = random.Byte();
    C_CodeReader decoder(bytes);
    C_FrameReader reader(12);
    S_Coefficients read(12);
    while (decoder.Unread() >= 0 && reader.Read(decoder, read)) {
      ++nRead;
      for (const std::int32_t nValue : read) ASSERT_LE(std::abs(nValue), kMaxCoefficient);
    }
  }
  EXPECT_GT(nRead, 1000);
}

}  // namespace
}  // namespace heron
