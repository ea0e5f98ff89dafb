// SPDX-License-Identifier: Apache-2.0
#include "heron/Transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "Signals.h"

namespace heron {
namespace {

using S_Coefficients = std::vector<std::int32_t>;
using std::numbers::pi;
using test::S_Sound;

// cos(pi/N (n + 1/2 + N/2)(k + 1/2)) for any n and k, from a table of one turn.
class C_Cosines {
 public:
  explicit C_Cosines(int nLength)
      : m_nLength(nLength), m_turn(static_cast<std::size_t>(8 * nLength)) {
    for (std::size_t n = 0; n < m_turn.size(); ++n) {
      m_turn[n] = std::cos(2 * pi * static_cast<double>(n) / static_cast<double>(m_turn.size()));
    }
  }
  [[nodiscard]] double At(int n, int k) const {
    const std::int64_t nParts = std::int64_t{2 * n + 1 + m_nLength} * (2 * k + 1);
    return m_turn[static_cast<std::size_t>(nParts % std::ssize(m_turn))];
  }

 private:
  int m_nLength;
  std::vector<double> m_turn;
};

std::vector<double> Window(int nLength) {
  std::vector<double> window(static_cast<std::size_t>(2 * nLength));
  for (std::size_t n = 0; n < window.size(); ++n) {
    const double dSine = std::sin(pi * (static_cast<double>(n) + 0.5) / (2 * nLength));
    window[n] = std::sin(pi / 2 * dSine * dSine);
  }
  return window;
}

// The definition of the transform: the coefficients of 2N samples.
std::vector<double> Direct(const S_Sound& samples) {
  const int nLength = static_cast<int>(samples.size()) / 2;
  const C_Cosines cosines(nLength);
  std::vector<double> windowed = Window(nLength);
  for (std::size_t n = 0; n < windowed.size(); ++n) windowed[n] *= samples[n];
  std::vector<double> out(static_cast<std::size_t>(nLength));
  for (int k = 0; k < nLength; ++k) {
    double dSum = 0;
    for (int n = 0; n < 2 * nLength; ++n) {
      dSum += windowed[static_cast<std::size_t>(n)] * cosines.At(n, k);
    }
    out[static_cast<std::size_t>(k)] = std::sqrt(2.0 / nLength) * dSum;
  }
  return out;
}

S_Coefficients Forward(const S_Sound& samples) {
  const std::size_t nLength = samples.size() / 2;
  C_ForwardTransform transform(static_cast<int>(nLength));
  S_Coefficients coefficients(nLength);
  transform.Transform(std::span(samples).first(nLength), coefficients);
  transform.Transform(std::span(samples).last(nLength), coefficients);
  return coefficients;
}

// The full-scale samples that give coefficient k its largest value.
S_Sound LoudestFor(int nLength, int k) {
  const C_Cosines cosines(nLength);
  S_Sound samples(static_cast<std::size_t>(2 * nLength));
  for (int n = 0; n < 2 * nLength; ++n) {
    samples[static_cast<std::size_t>(n)] =
        cosines.At(n, k) > 0 ? std::int16_t{-32768} : std::int16_t{32767};
  }
  return samples;
}

// Transforms the sound, followed by a frame of silence, and transforms it back. Leaves out the
// first frame that comes back, which is silence.
S_Sound ThereAndBack(const S_Sound& sound, int nLength) {
  const auto nFrame = static_cast<std::size_t>(nLength);
  C_ForwardTransform forward(nLength);
  C_InverseTransform inverse(nLength);
  S_Coefficients coefficients(nFrame);
  S_Sound out;
  for (std::size_t nAt = 0; nAt <= sound.size(); nAt += nFrame) {
    const S_Sound frame = nAt < sound.size()
                              ? S_Sound(sound.begin() + static_cast<int>(nAt),
                                        sound.begin() + static_cast<int>(nAt) + nLength)
                              : S_Sound(nFrame);
    forward.Transform(frame, coefficients);
    S_Sound samples(nFrame);
    inverse.Transform(coefficients, samples);
    if (nAt > 0) out.insert(out.end(), samples.begin(), samples.end());
  }
  return out;
}

class HeronTransform : public testing::TestWithParam<int> {
 protected:
  [[nodiscard]] std::size_t Samples(std::size_t nFrames) const {
    return static_cast<std::size_t>(GetParam()) * nFrames;
  }
};
// Lengths of all kinds: the shortest, those of rates in use, and those with large prime factors
// (166 = 2 * 83, 958 = 2 * 479).
INSTANTIATE_TEST_SUITE_P(Lengths, HeronTransform,
                         testing::Values(2, 4, 6, 80, 160, 166, 220, 320, 440, 882, 958, 960));

TEST_P(HeronTransform, Coefficients_AreThoseOfTheDefinition) {
  for (const auto& [strName, samples] : test::SoundsOf(Samples(2))) {
    const auto expected = Direct(samples);
    const auto coefficients = Forward(samples);
    for (std::size_t k = 0; k < expected.size(); ++k) {
      ASSERT_NEAR(coefficients[k] / 256.0, expected[k], 1 / 16.0) << strName << ' ' << k;
    }
  }
}

TEST_P(HeronTransform, TheLoudestSamples_StayBelowTheLargestCoefficient) {
  for (const int k : {0, GetParam() / 3, GetParam() - 1}) {
    const S_Sound samples = LoudestFor(GetParam(), k);
    const auto nLoudest = static_cast<std::size_t>(k);
    const double dCoefficient = Forward(samples)[nLoudest] / 256.0;
    EXPECT_NEAR(dCoefficient, Direct(samples)[nLoudest], 1 / 8.0) << k;
    EXPECT_LT(std::abs(dCoefficient) * 256, kMaxCoefficient) << k;
  }
}

TEST_P(HeronTransform, ThereAndBack_GivesEverySample) {
  for (const auto& [strName, samples] : test::SoundsOf(Samples(5))) {
    EXPECT_EQ(ThereAndBack(samples, GetParam()), samples) << strName;
  }
}

TEST_P(HeronTransform, LargestCoefficients_GiveSamplesWithinTheirLimits) {
  C_InverseTransform inverse(GetParam());
  S_Sound samples(Samples(1));
  const auto nMost = static_cast<std::int32_t>(kMaxCoefficient);
  for (const int nSigns : {0, 1, 2, 3}) {
    S_Coefficients coefficients(Samples(1));
    for (std::size_t k = 0; k < coefficients.size(); ++k) {
      coefficients[k] = (k & static_cast<unsigned>(nSigns)) != 0 ? -nMost : nMost;
    }
    inverse.Transform(coefficients, samples);
    inverse.Transform(coefficients, samples);
    // Such large coefficients must reach full scale somewhere.
    EXPECT_TRUE(std::find(samples.begin(), samples.end(), 32767) != samples.end() ||
                std::find(samples.begin(), samples.end(), -32768) != samples.end())
        << nSigns;
  }
}

TEST_P(HeronTransform, RisingWindow_IsPowerComplementary) {
  const C_LappedTransform transform(GetParam());
  const auto window = transform.RisingWindow();
  const double dUnit = std::exp2(2 * 28) * 2 / GetParam();
  for (std::size_t n = 0; n < window.size(); ++n) {
    const auto dRising = static_cast<double>(window[n]);
    const auto dFalling = static_cast<double>(window[window.size() - 1 - n]);
    ASSERT_NEAR((dRising * dRising + dFalling * dFalling) / dUnit, 1.0, 1e-6) << n;
  }
}

TEST_P(HeronTransform, RisingWindow_IsTheScaledPowerSine) {
  const C_LappedTransform transform(GetParam());
  ASSERT_EQ(transform.RisingWindow().size(), Samples(1));
  const auto window = Window(GetParam());
  const double dScale = std::sqrt(2.0 / GetParam()) * std::exp2(28);
  for (std::size_t n = 0; n < Samples(1); ++n) {
    ASSERT_NEAR(static_cast<double>(transform.RisingWindow()[n]), window[n] * dScale, 16) << n;
  }
}

TEST(HeronTransformState, ANewObject_HasSilenceBefore) {
  const S_Sound frame = test::Noise(160);
  S_Sound padded(160);
  padded.insert(padded.end(), frame.begin(), frame.end());
  C_ForwardTransform transform(160);
  S_Coefficients coefficients(160);
  transform.Transform(frame, coefficients);
  EXPECT_EQ(coefficients, Forward(padded));
}

TEST(HeronTransformState, Silence_IsSilentInBothDirections) {
  EXPECT_EQ(Forward(S_Sound(640)), S_Coefficients(320));
  C_InverseTransform inverse(320);
  S_Sound samples(320, 99);
  inverse.Transform(S_Coefficients(320), samples);
  EXPECT_EQ(samples, S_Sound(320));
}

TEST(HeronTransformState, TheTransform_KeepsTheEnergy) {
  const S_Sound sound = test::Noise(3200, 7);
  C_ForwardTransform transform(320);
  S_Coefficients coefficients(320);
  double dSamples = 0;
  double dCoefficients = 0;
  for (int nFrame = 0; nFrame <= 10; ++nFrame) {
    const S_Sound frame =
        nFrame < 10 ? S_Sound(sound.begin() + 320 * nFrame, sound.begin() + 320 * (nFrame + 1))
                    : S_Sound(320);
    transform.Transform(frame, coefficients);
    for (const std::int16_t nSample : frame) dSamples += std::pow(nSample, 2);
    for (const std::int32_t nValue : coefficients) dCoefficients += std::pow(nValue / 256.0, 2);
  }
  EXPECT_NEAR(dCoefficients / dSamples, 1, 1e-6);
}

}  // namespace
}  // namespace heron
