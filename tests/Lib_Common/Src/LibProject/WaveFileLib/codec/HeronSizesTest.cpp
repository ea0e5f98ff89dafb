// SPDX-License-Identifier: Apache-2.0
//
// How many bytes Heron streams take, and how true to the sound they are where that is hard: in
// silence, at a click, and for a handful of samples.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "HeronBytes.h"

namespace {

using heron::test::Bytes;
using heron::test::Decoded;
using heron::test::Encoded;
using heron::test::kKinds;
using heron::test::MostBytes;
using heron::test::S_Kind;
using Samples = std::vector<short>;

// Samples over the whole range, each as likely as any other.
Samples Noise(std::size_t nSamples) {
  Samples samples(nSamples);
  std::uint32_t dwSeed = static_cast<std::uint32_t>(nSamples);
  for (short& nSample : samples) {
    dwSeed = dwSeed * 1664525U + 1013904223U;
    nSample = static_cast<short>(static_cast<int>(dwSeed >> 16) - 32768);
  }
  return samples;
}

double Energy(const Samples& samples) {
  double dEnergy = 0.0;
  for (const short nSample : samples) dEnergy += std::pow(nSample, 2.0);
  return dEnergy;
}
double Snr(const Samples& samples, const Samples& decoded) {
  double dNoise = 1e-9;
  for (std::size_t n = 0; n < samples.size(); ++n) dNoise += std::pow(samples[n] - decoded[n], 2.0);
  return 10.0 * std::log10((Energy(samples) + 1e-9) / dNoise);
}

class HeronSizes : public testing::TestWithParam<S_Kind> {
 protected:
  static Bytes StreamOf(const Samples& samples, unsigned int dwRate) {
    const auto stream = Encoded(*MonoSound(samples, dwRate), GetParam().eType);
    EXPECT_TRUE(stream);
    return stream.value_or(Bytes{});
  }
  static std::size_t Most(std::size_t nSamples) {
    return MostBytes(nSamples, GetParam().nBitDepth);
  }
};
INSTANTIATE_TEST_SUITE_P(Kinds, HeronSizes, testing::ValuesIn(kKinds), heron::test::NameOf);

TEST_P(HeronSizes, ShortNoise_IsHeardAboveItsErrorAndTakesLittle) {
  for (const unsigned int dwRate : {4000U, 8000U, 16000U, 48000U}) {
    for (std::size_t nSamples = 1; nSamples <= 400; nSamples += nSamples < 24 ? 1 : 29) {
      const Samples noise = Noise(nSamples);
      const Bytes stream = StreamOf(noise, dwRate);
      ASSERT_LE(stream.size(), Most(nSamples)) << dwRate << ", " << nSamples;
      const auto decoded = Decoded(stream, dwRate);
      ASSERT_TRUE(decoded && decoded->size() == nSamples);
      ASSERT_GT(Snr(noise, *decoded), 6.0) << dwRate << ", " << nSamples;
    }
  }
}

TEST_P(HeronSizes, LongNoise_TakesNoMoreThanItsBits) {
  for (const std::size_t nSamples : {700U, 1000U, 5000U, 32000U, 32001U, 70000U}) {
    const Bytes stream = StreamOf(Noise(nSamples), 4000);
    EXPECT_LE(stream.size(), nSamples * static_cast<std::size_t>(GetParam().nBitDepth) / 8);
  }
}

TEST_P(HeronSizes, Speech_FillsItsBits) {
  for (const unsigned int dwRate : {8000U, 16000U}) {
    for (const unsigned int dwSeconds : {1U, 6U, 11U}) {
      const std::size_t nSamples = std::size_t{dwRate} * dwSeconds;
      const std::size_t cbMost = nSamples * static_cast<std::size_t>(GetParam().nBitDepth) / 8;
      const Bytes stream = StreamOf(TestVoice(nSamples), dwRate);
      EXPECT_LE(stream.size(), cbMost) << dwRate << ", " << dwSeconds;
      EXPECT_GE(stream.size() * 100, cbMost * 98) << dwRate << ", " << dwSeconds;
    }
  }
}

TEST_P(HeronSizes, SilenceOfTenSeconds_TakesLessThanAFiftiethOfABit) {
  for (const unsigned int dwRate : {4000U, 8000U, 48000U}) {
    const Samples silence(std::size_t{10} * dwRate);
    const Bytes stream = StreamOf(silence, dwRate);
    EXPECT_LT(stream.size() * 8 * 50, silence.size()) << dwRate;
    EXPECT_EQ(Decoded(stream, dwRate), silence);
  }
}

TEST_P(HeronSizes, ClickInSilence_KeepsItsPlaceAndItsHeightWithinOne) {
  for (const unsigned int dwRate : {4000U, 8000U, 16000U, 48000U}) {
    for (const short nClick : {short{1}, short{-300}, short{20000}, short{32767}, short{-32768}}) {
      Samples click(std::size_t{dwRate} / 2);
      const std::size_t nPlace = click.size() / 3;
      click[nPlace] = nClick;
      auto decoded = Decoded(StreamOf(click, dwRate), dwRate).value_or(Samples{});
      ASSERT_EQ(decoded.size(), click.size());
      EXPECT_NEAR(decoded[nPlace], nClick, 1) << dwRate;
      decoded[nPlace] = nClick;
      EXPECT_EQ(decoded, click) << dwRate << ", " << nClick;
    }
  }
}

TEST_P(HeronSizes, LoudnessThatJumps_TakesNoMoreThanItsBits) {
  Samples samples = Noise(80000);
  for (std::size_t n = 0; n < samples.size(); ++n) {
    // Silence, noise and faint noise by turns.
    const int nShare = std::array{0, 1, 2000}[n / 7000 % 3];
    samples[n] = nShare == 0 ? short{0} : static_cast<short>(samples[n] / nShare);
  }
  const Bytes stream = StreamOf(samples, 4000);
  EXPECT_LE(stream.size(), samples.size() * static_cast<std::size_t>(GetParam().nBitDepth) / 8);
  EXPECT_GT(Snr(samples, *Decoded(stream, 4000)), 6.0);
}

}  // namespace
