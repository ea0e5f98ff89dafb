// SPDX-License-Identifier: Apache-2.0
//
// The two entry points of the frame coder, with whole sounds.
#include "heron/SoundCoder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <thread>

#include "Signals.h"
#include "heron/RateControl.h"

namespace heron {
namespace {

using S_Bytes = std::vector<std::uint8_t>;
using test::S_Sound;
using test::SignalToNoise;

S_Bytes Encode(const S_Sound& sound, int nSampleRate, int nBitDepth) {
  S_Bytes coded;
  EXPECT_TRUE(EncodeSamples(sound, nSampleRate, nBitDepth, &coded, {}));
  return coded;
}

S_Sound Decode(const S_Bytes& coded, int nSampleRate) {
  S_Sound sound;
  EXPECT_TRUE(DecodeSamples(coded, nSampleRate, &sound));
  return sound;
}

std::size_t MostBytes(std::size_t nSamples, int nBitDepth) {
  return nSamples * static_cast<std::size_t>(nBitDepth) / 8;
}

class HeronDepths : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(TwoToSix, HeronDepths, testing::Range(2, 7));

TEST_P(HeronDepths, Depths_FillButDoNotExceedTheirBitsPerSample) {
  const auto voice = TestVoice(24000);
  const std::size_t nMost = MostBytes(voice.size(), GetParam());
  const std::size_t nSize = Encode(voice, 16000, GetParam()).size() + kHeadBytes;
  EXPECT_LE(nSize, nMost);
  EXPECT_GE(nSize, nMost - nMost / 128);
}

TEST_P(HeronDepths, Depths_ReturnTheSoundInItsPlaceAndLength) {
  // Twelve samples more than a whole number of sections.
  const auto voice = TestVoice(16012);
  const auto decoded = Decode(Encode(voice, 16000, GetParam()), 16000);
  ASSERT_EQ(decoded.size(), voice.size());
  EXPECT_GT(SignalToNoise(voice, decoded), 14 + 6 * GetParam());
}

// ---- lengths

class HeronLengths : public testing::TestWithParam<std::size_t> {};
// Around the ends of parts of 40, 80, 160 and 320 samples, and several sections of 320.
INSTANTIATE_TEST_SUITE_P(Samples, HeronLengths,
                         testing::Values(1, 2, 39, 40, 41, 79, 80, 81, 159, 160, 161, 319, 320, 321,
                                         1000, 5119, 5120, 5121));

TEST_P(HeronLengths, OfAllSounds_AreKeptWithinTheirSize) {
  for (const auto& [strName, samples] : test::SoundsOf(GetParam())) {
    for (const int nBitDepth : {2, 5}) {
      const S_Bytes coded = Encode(samples, 8000, nBitDepth);
      ASSERT_EQ(Decode(coded, 8000).size(), samples.size()) << strName << ' ' << nBitDepth;
      if (samples.size() < 1000) continue;
      EXPECT_LE(coded.size() + kHeadBytes, MostBytes(samples.size(), nBitDepth))
          << strName << ' ' << nBitDepth;
    }
  }
}

TEST_P(HeronLengths, OfOneSteadySoundAtSixBits_AreHeard) {
  // A sound of only a few samples has room for its side information and little else.
  if (GetParam() < 79) return;
  const S_Sound steady = test::Steady(GetParam(), 12345);
  const double dRatio = SignalToNoise(steady, Decode(Encode(steady, 8000, 6), 8000));
  EXPECT_GT(dRatio, GetParam() < 319 ? 5 : 15);
}

TEST(HeronSounds, TheLoudestCoefficientInASilentSound_ComesBack) {
  // Full scale with the signs of one cosine of the longest transform, in a whole section and the
  // halves of its neighbours, makes one coefficient of more than a million. The silence around it
  // leaves room for the finest step.
  constexpr std::size_t kPart = kMaxPartLength;
  constexpr int kCoefficient = 100;
  S_Sound sound(25 * kPart);
  for (std::size_t n = 0; n < 2 * kPart; ++n) {
    const double dTurn =
        (static_cast<double>(n) + 0.5 - kPart / 2.0) * (kCoefficient + 0.5) / kPart;
    const bool bPositive = std::cos(std::numbers::pi * dTurn) > 0;
    sound[5 * kPart - kPart / 2 + n] = bPositive ? -32768 : 32767;
  }
  EXPECT_GT(SignalToNoise(sound, Decode(Encode(sound, 48000, 6), 48000)), 60);
}

// ---- short sounds

class HeronShortNoise : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Hertz, HeronShortNoise, testing::Values(4000, 8000, 16000, 48000));

TEST_P(HeronShortNoise, OfFullScale_IsHeardAtEveryDepth) {
  for (std::size_t nSamples = 1; nSamples <= 400; nSamples += 1 + nSamples / 12) {
    const S_Sound noise = test::Noise(nSamples, nSamples);
    for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
      const S_Bytes coded = Encode(noise, GetParam(), nBitDepth);
      EXPECT_LE(coded.size(), CodedRoom(nSamples, nBitDepth)) << nSamples << ' ' << nBitDepth;
      EXPECT_GT(SignalToNoise(noise, Decode(coded, GetParam())), 6) << nSamples << ' ' << nBitDepth;
    }
  }
}

TEST_P(HeronShortNoise, OfAFewSamples_ComesBackAlmostWhole) {
  for (std::size_t nSamples = 1; nSamples <= 3; ++nSamples) {
    for (std::uint64_t qwSeed = 1; qwSeed <= 4; ++qwSeed) {
      const S_Sound noise = test::Noise(nSamples, qwSeed);
      EXPECT_GT(SignalToNoise(noise, Decode(Encode(noise, GetParam(), 2), GetParam())), 50)
          << nSamples << ' ' << qwSeed;
    }
  }
}

// ---- rates

class HeronRates : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Hertz, HeronRates,
                         testing::Values(4000, 4001, 8000, 8117, 11025, 16000, 22050, 44100, 47950,
                                         48000));

TEST_P(HeronRates, Rates_ReturnAVoice) {
  const auto voice = TestVoice(3333);
  for (const int nBitDepth : {2, 4, 6}) {
    const S_Bytes coded = Encode(voice, GetParam(), nBitDepth);
    const S_Sound decoded = Decode(coded, GetParam());
    ASSERT_EQ(decoded.size(), voice.size());
    EXPECT_GT(SignalToNoise(voice, decoded), 4.5 * nBitDepth) << nBitDepth;
    EXPECT_LE(coded.size() + kHeadBytes, MostBytes(voice.size(), nBitDepth));
  }
}

TEST_P(HeronRates, Rates_ReturnAllSoundsWithinTheirSize) {
  for (const auto& [strName, samples] : test::SoundsOf(1500)) {
    const S_Bytes coded = Encode(samples, GetParam(), 3);
    EXPECT_EQ(Decode(coded, GetParam()).size(), samples.size()) << strName;
    EXPECT_LE(coded.size() + kHeadBytes, MostBytes(samples.size(), 3)) << strName;
  }
}

// ---- sounds

TEST(HeronSounds, SixBits_GiveLoudSoundsBack) {
  for (const auto& [strName, samples] : test::SoundsOf(8000)) {
    const S_Sound decoded = Decode(Encode(samples, 16000, 6), 16000);
    EXPECT_GT(SignalToNoise(samples, decoded), 27) << strName;
  }
}

TEST(HeronSounds, LoudNoise_ComesBackAsWellAsItsBitsAllow) {
  // No coder gets more than 6.02 dB per bit out of white noise; this one loses less than a bit.
  const S_Sound noise = test::Noise(16000);
  for (int nBitDepth = 2; nBitDepth <= 6; ++nBitDepth) {
    const double dRatio = SignalToNoise(noise, Decode(Encode(noise, 16000, nBitDepth), 16000));
    EXPECT_GT(dRatio, 6.02 * (nBitDepth - 1)) << nBitDepth;
    EXPECT_LT(dRatio, 6.02 * nBitDepth + 2) << nBitDepth;
  }
}

TEST(HeronSounds, All16BitExtremes_ComeBackWithinTheirSize) {
  // Full scale up and down in random turns, with the longest runs of either.
  test::C_Random random(2);
  S_Sound sound;
  while (sound.size() < 9000) {
    const std::int16_t nValue = random.Below(2) == 0 ? -32768 : 32767;
    sound.resize(sound.size() + 1 + random.Below(1 << random.Below(9)), nValue);
  }
  for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
    const S_Bytes coded = Encode(sound, 8000, nBitDepth);
    EXPECT_LE(coded.size() + kHeadBytes, MostBytes(sound.size(), nBitDepth));
    EXPECT_GT(SignalToNoise(sound, Decode(coded, 8000)), 12 + 8 * nBitDepth) << nBitDepth;
  }
}

TEST(HeronSounds, OneExtremeForAllTime_ComesBack) {
  for (const std::int16_t nValue : {std::int16_t{-32768}, std::int16_t{32767}}) {
    for (const int nSampleRate : {4000, 48000}) {
      const S_Sound steady = test::Steady(30000, nValue);
      const S_Sound decoded = Decode(Encode(steady, nSampleRate, 6), nSampleRate);
      EXPECT_GT(SignalToNoise(steady, decoded), 120) << nValue << ' ' << nSampleRate;
    }
  }
}

TEST(HeronSounds, DigitalSilence_TakesFewBytesAndStaysSilent) {
  for (const int nSampleRate : {4000, 8000, 16000, 48000}) {
    for (const std::size_t nSamples : {1u, 100u, 5000u, 100000u, 240000u}) {
      const S_Sound silence(nSamples);
      const S_Bytes coded = Encode(silence, nSampleRate, 6);
      // Two bytes or so for ten sections, and a head for each block.
      const std::size_t nBlocks = nSamples / BlockLength(nSampleRate) + 1;
      EXPECT_LE(coded.size(), 6 + 30 * nBlocks) << nSampleRate << ' ' << nSamples;
      EXPECT_EQ(Decode(coded, nSampleRate), silence) << nSampleRate << ' ' << nSamples;
    }
  }
}

TEST(HeronSounds, SoftSoundsAtSixBits_ComeBackExactly) {
  test::C_Random random(1);
  S_Sound soft(16000);
  for (std::int16_t& nSample : soft) nSample = static_cast<std::int16_t>(random.Between(-1, 1));
  EXPECT_EQ(Decode(Encode(soft, 16000, 6), 16000), soft);
}

TEST(HeronSounds, SilenceBeforeALoudSound_StaysSilentUntilTheOverlap) {
  S_Sound sound(9600);
  const S_Sound noise = test::Noise(3200);
  std::copy(noise.begin(), noise.end(), sound.begin() + 6400);
  const S_Sound decoded = Decode(Encode(sound, 16000, 4), 16000);
  // The overlap reaches back by half a section at most, which is 320 samples.
  EXPECT_TRUE(std::all_of(decoded.begin(), decoded.begin() + 6400 - 320,
                          [](std::int16_t nSample) { return std::abs(nSample) <= 1; }));
}

TEST(HeronSounds, MoreBits_NeverSoundWorse) {
  const auto voice = TestVoice(12000);
  double dBefore = 0;
  for (int nBitDepth = 2; nBitDepth <= 6; ++nBitDepth) {
    const double dRatio = SignalToNoise(voice, Decode(Encode(voice, 22050, nBitDepth), 22050));
    EXPECT_GT(dRatio, dBefore + 4) << nBitDepth;
    dBefore = dRatio;
  }
}

// ---- progress

std::vector<unsigned int> ProgressOf(std::size_t nSamples, int nSampleRate) {
  std::vector<unsigned int> heard;
  S_Bytes coded;
  EXPECT_TRUE(EncodeSamples(TestVoice(nSamples), nSampleRate, 3, &coded,
                            [&](unsigned int nFrames) { heard.push_back(nFrames); }));
  return heard;
}

TEST(HeronProgress, OfAllFrames_RisesToTheirCount) {
  for (const std::size_t nSamples : {1u, 160u, 161u, 32u * 160u, 32u * 160u + 1u, 40000u, 70000u}) {
    const std::size_t nFrames = (nSamples + 159) / 160;
    const auto heard = ProgressOf(nSamples, 8000);
    ASSERT_FALSE(heard.empty()) << nSamples;
    EXPECT_EQ(heard.back(), nFrames) << nSamples;
    unsigned int nBefore = 0;
    for (const unsigned int nFrame : heard) {
      EXPECT_GE(nFrame, nBefore) << nSamples;
      EXPECT_LE(nFrame, nFrames) << nSamples;
      nBefore = nFrame;
    }
  }
}

// ---- sameness

TEST(HeronSameness, EncodingTwice_GivesTheSameBytes) {
  const auto voice = TestVoice(8000);
  const S_Bytes coded = Encode(voice, 11025, 3);
  EXPECT_EQ(Encode(voice, 11025, 3), coded);
  EXPECT_EQ(Decode(coded, 11025), Decode(coded, 11025));
}

TEST(HeronSameness, ConcurrentThreads_GiveWhatEachGivesByItself) {
  const S_Sound sounds[] = {TestVoice(8000), test::Noise(8000)};
  const S_Bytes alone[] = {Encode(sounds[0], 16000, 4), Encode(sounds[1], 8000, 2)};
  const S_Sound heard[] = {Decode(alone[0], 16000), Decode(alone[1], 8000)};
  for (int nRound = 0; nRound < 2; ++nRound) {
    S_Bytes together[2];
    S_Sound decoded[2];
    std::thread other([&] {
      together[1] = Encode(sounds[1], 8000, 2);
      decoded[1] = Decode(alone[1], 8000);
    });
    together[0] = Encode(sounds[0], 16000, 4);
    decoded[0] = Decode(alone[0], 16000);
    other.join();
    EXPECT_TRUE(std::equal(std::begin(alone), std::end(alone), std::begin(together)));
    EXPECT_TRUE(std::equal(std::begin(heard), std::end(heard), std::begin(decoded)));
  }
}

// ---- refusals

TEST(HeronRefusals, NoSamples_AreNotEncoded) {
  S_Bytes coded = {1, 2, 3};
  EXPECT_FALSE(EncodeSamples({}, 16000, 4, &coded, {}));
  EXPECT_EQ(coded, (S_Bytes{1, 2, 3}));
}

TEST(HeronRefusals, RatesAndDepthsOutsideTheirRange_AreNotEncoded) {
  const S_Sound sound = TestVoice(1000);
  S_Bytes coded = {1, 2, 3};
  for (const int nSampleRate : {-1, 0, 3999, 48001, 96000}) {
    EXPECT_FALSE(EncodeSamples(sound, nSampleRate, 4, &coded, {})) << nSampleRate;
  }
  for (const int nBitDepth : {-2, 0, 1, 7, 16}) {
    EXPECT_FALSE(EncodeSamples(sound, 8000, nBitDepth, &coded, {})) << nBitDepth;
  }
  EXPECT_EQ(coded, (S_Bytes{1, 2, 3}));
}

TEST(HeronRefusals, RatesOutsideTheirRange_AreNotDecoded) {
  const S_Bytes coded = Encode(TestVoice(1000), 8000, 4);
  S_Sound sound = {7};
  for (const int nSampleRate : {-1, 0, 3999, 48001}) {
    EXPECT_FALSE(DecodeSamples(coded, nSampleRate, &sound)) << nSampleRate;
  }
  EXPECT_EQ(sound, S_Sound{7});
}

}  // namespace
}  // namespace heron
