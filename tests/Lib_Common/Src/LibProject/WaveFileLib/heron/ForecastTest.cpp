// SPDX-License-Identifier: Apache-2.0
//
// What the forecast tells of a sound, and how near it comes to what the coder takes.
#include "heron/Forecast.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "Blocks.h"
#include "Signals.h"
#include "heron/BlockEncoder.h"
#include "heron/Configuration.h"

namespace heron {
namespace {

using test::S_Sound;

C_Forecast ForecastOf(const S_Sound& sound, int nSampleRate, int nBitDepth) {
  C_Forecast forecast(nSampleRate, nBitDepth);
  forecast.Add(sound);
  return forecast;
}

// What the encoder counts while it divides a block.
C_Forecast::S_Counts CountsOf(const C_Forecast& forecast, const S_Sound& sound, int nSampleRate) {
  C_Forecast::S_Counts counts{};
  C_BlockEncoder encoder(nSampleRate, 4);
  encoder.Divide(sound, -2000, [&](auto samples, auto coefficients) {
    forecast.Count(samples, coefficients, counts);
  });
  return counts;
}

TEST(HeronForecast, OfNothing_IsNoBits) {
  const C_Forecast forecast(8000, 4);
  for (int nOffset = C_Forecast::kLeastOffset; nOffset <= C_Forecast::kMostOffset; nOffset += 512) {
    EXPECT_EQ(forecast.BitsAt(nOffset), 0u) << nOffset;
  }
  EXPECT_EQ(forecast.OffsetFor(0), C_Forecast::kLeastOffset);
  EXPECT_EQ(ForecastOf(S_Sound(8000), 8000, 4).BitsAt(C_Forecast::kLeastOffset), 0u);
}

TEST(HeronForecast, AddedAndRemoved_IsNothingAgain) {
  for (const int nSampleRate : {4000, 8000, 11025, 48000}) {
    for (const auto& [strName, sound] : test::SoundsOf(12 * SectionLength(nSampleRate) - 5)) {
      C_Forecast forecast(nSampleRate, 3);
      forecast.Add(sound);
      EXPECT_EQ(forecast.BitsAt(-3000) > 0, strName != "silence") << strName;
      forecast.Remove(CountsOf(forecast, sound, nSampleRate));
      EXPECT_EQ(forecast.BitsAt(C_Forecast::kLeastOffset), 0u) << strName << ' ' << nSampleRate;
    }
  }
}

TEST(HeronForecast, WhatIsRemoved_LeavesTheRest) {
  const S_Sound voice = TestVoice(2000);
  const S_Sound noise = test::Noise(5000);
  C_Forecast forecast(8000, 4);
  forecast.Add(voice);
  forecast.Add(noise);
  const C_Forecast onlyVoice = ForecastOf(voice, 8000, 4);
  const C_Forecast onlyNoise = ForecastOf(noise, 8000, 4);
  // Each is rounded down.
  EXPECT_NEAR(static_cast<double>(forecast.BitsAt(-2000)),
              static_cast<double>(onlyVoice.BitsAt(-2000) + onlyNoise.BitsAt(-2000)), 1);
  forecast.Remove(CountsOf(forecast, voice, 8000));
  for (int nOffset = -6000; nOffset <= 6000; nOffset += 100) {
    EXPECT_EQ(forecast.BitsAt(nOffset), onlyNoise.BitsAt(nOffset)) << nOffset;
  }
}

TEST(HeronForecast, Bits_FallWithTheOffset) {
  for (const auto& [strName, sound] : test::SoundsOf(3000)) {
    if (strName == "silence") continue;
    for (const int nBitDepth : {2, 3, 6}) {
      const C_Forecast forecast = ForecastOf(sound, 8000, nBitDepth);
      std::uint64_t qwBefore = forecast.BitsAt(C_Forecast::kLeastOffset - 1);
      for (int nOffset = C_Forecast::kLeastOffset; nOffset <= C_Forecast::kMostOffset;
           nOffset += 11) {
        const std::uint64_t qwBits = forecast.BitsAt(nOffset);
        ASSERT_LE(qwBits, qwBefore) << strName << ' ' << nOffset;
        qwBefore = qwBits;
      }
      // What a click takes beside its level is the same at any offset.
      const std::uint64_t qwLeast = strName == "impulse" ? 60 : 0;
      EXPECT_LE(qwBefore, forecast.BitsAt(C_Forecast::kLeastOffset) / 50 + qwLeast) << strName;
    }
  }
}

TEST(HeronForecast, TheOffsetForBits_IsTheLowestThatTakesNoMore) {
  for (const auto& [strName, sound] : test::SoundsOf(3000)) {
    const C_Forecast forecast = ForecastOf(sound, 8000, 4);
    for (std::uint64_t qwBits = 0; qwBits < 60000; qwBits = qwBits * 5 / 4 + 1) {
      const int nOffset = forecast.OffsetFor(qwBits);
      ASSERT_GE(nOffset, C_Forecast::kLeastOffset);
      ASSERT_LE(nOffset, C_Forecast::kMostOffset);
      if (nOffset < C_Forecast::kMostOffset) {
        EXPECT_LE(forecast.BitsAt(nOffset), qwBits) << strName;
      }
      if (nOffset > C_Forecast::kLeastOffset) {
        EXPECT_GT(forecast.BitsAt(nOffset - 1), qwBits) << strName;
      }
    }
  }
}

TEST(HeronForecast, OffsetsForTooManyOrTooFewBits_AreTheEnds) {
  const C_Forecast forecast = ForecastOf(test::Noise(8000), 8000, 4);
  EXPECT_EQ(forecast.OffsetFor(~std::uint64_t{0}), C_Forecast::kLeastOffset);
  EXPECT_EQ(forecast.OffsetFor(forecast.BitsAt(C_Forecast::kLeastOffset)),
            C_Forecast::kLeastOffset);
  EXPECT_GT(forecast.OffsetFor(forecast.BitsAt(C_Forecast::kLeastOffset) - 1),
            C_Forecast::kLeastOffset);
}

TEST(HeronForecast, BytesPerOctave_AreTheSlopeOfTheBits) {
  for (const auto& [strName, sound] : test::SoundsOf(6000)) {
    const C_Forecast forecast = ForecastOf(sound, 16000, 4);
    for (const int nOffset : {-5000, -2000, 0}) {
      const double dOctave =
          static_cast<double>(forecast.BitsAt(nOffset - 512) - forecast.BitsAt(nOffset + 512)) / 8;
      EXPECT_NEAR(static_cast<double>(forecast.BytesPerOctave(nOffset)), dOctave, dOctave / 4 + 4)
          << strName << ' ' << nOffset;
    }
  }
}

TEST(HeronForecast, FullScaleSounds_AreCountedWithinTheTable) {
  // The largest coefficients there are, in a loud and in a soft surrounding, at every depth.
  for (const int nSampleRate : {4000, 48000}) {
    for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
      for (const std::size_t nHalfPeriod : {std::size_t{1}, std::size_t{2}, std::size_t{100000}}) {
        const S_Sound sound = test::Square(2 * SectionLength(nSampleRate), nHalfPeriod);
        C_Forecast forecast = ForecastOf(sound, nSampleRate, nBitDepth);
        EXPECT_GT(forecast.BitsAt(C_Forecast::kLeastOffset), 0u);
        forecast.Remove(CountsOf(forecast, sound, nSampleRate));
        EXPECT_EQ(forecast.BitsAt(C_Forecast::kLeastOffset), 0u);
      }
    }
  }
}

// What the coder takes at the offset that the forecast names for a number of bits per sample, as a
// multiple of these bits.
double TakenOf(const S_Sound& sound, int nSampleRate, int nBitDepth) {
  const auto qwBits = static_cast<std::uint64_t>(nBitDepth) * sound.size();
  const int nOffset = ForecastOf(sound, nSampleRate, nBitDepth).OffsetFor(qwBits);
  C_BlockEncoder encoder(nSampleRate, nBitDepth);
  const test::S_Bytes run =
      test::RunOf(encoder, encoder.Divide(sound, nOffset), test::AllAt(nOffset));
  return 8.0 * static_cast<double>(run.size()) / static_cast<double>(qwBits);
}

TEST(HeronForecast, OfVoicesAndNoise_IsAboutRight) {
  for (const int nSampleRate : {8000, 16000}) {
    for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
      const std::size_t nSamples = 25 * SectionLength(nSampleRate);
      EXPECT_NEAR(TakenOf(TestVoice(nSamples), nSampleRate, nBitDepth), 1, 0.12)
          << nSampleRate << ' ' << nBitDepth;
      // At 2 bits, white noise is unlike any voice: most of its coefficients become zero.
      const double dNear = nBitDepth == 2 ? 0.2 : 0.1;
      EXPECT_NEAR(TakenOf(test::Noise(nSamples), nSampleRate, nBitDepth), 1, dNear)
          << nSampleRate << ' ' << nBitDepth;
    }
  }
}

}  // namespace
}  // namespace heron
