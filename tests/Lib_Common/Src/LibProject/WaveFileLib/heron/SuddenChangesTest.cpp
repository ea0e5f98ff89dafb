// SPDX-License-Identifier: Apache-2.0
//
// Sounds that change from one moment to the next: what was planned for the sound as a whole must
// not spoil what comes after the change.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "Signals.h"
#include "heron/Configuration.h"
#include "heron/RateControl.h"
#include "heron/SoundCoder.h"

namespace heron {
namespace {

using test::C_Random;
using test::S_Sound;

struct S_Coded {
  std::size_t nBytes;
  S_Sound decoded;
};

S_Coded ThereAndBack(const S_Sound& sound, int nSampleRate, int nBitDepth) {
  std::vector<std::uint8_t> coded;
  EXPECT_TRUE(EncodeSamples(sound, nSampleRate, nBitDepth, &coded, {}));
  EXPECT_LE(coded.size(), CodedRoom(sound.size(), nBitDepth));
  S_Coded both{coded.size(), {}};
  EXPECT_TRUE(DecodeSamples(coded, nSampleRate, &both.decoded));
  EXPECT_EQ(both.decoded.size(), sound.size());
  both.decoded.resize(sound.size());
  return both;
}

S_Sound operator+(S_Sound first, const S_Sound& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

S_Sound NoiseOf(std::size_t nSamples, int nLoudest, std::uint64_t qwSeed = 1) {
  C_Random random(qwSeed);
  S_Sound sound(nSamples);
  for (std::int16_t& nSample : sound) {
    nSample = static_cast<std::int16_t>(random.Between(-nLoudest, nLoudest));
  }
  return sound;
}

// In dB, of some of the samples.
double RatioOf(const S_Sound& sound, const S_Sound& decoded, std::size_t nAt, std::size_t nCount) {
  const auto at = static_cast<std::ptrdiff_t>(nAt);
  const auto end = static_cast<std::ptrdiff_t>(nAt + nCount);
  return test::SignalToNoise({sound.begin() + at, sound.begin() + end},
                             {decoded.begin() + at, decoded.begin() + end});
}

double FillOf(const S_Coded& coded, int nBitDepth) {
  return static_cast<double>(coded.nBytes) /
         static_cast<double>(CodedRoom(coded.decoded.size(), nBitDepth));
}

// By depth, from 2 bits on.
double OfDepth(const std::array<double, 5>& values, int nBitDepth) {
  return values[static_cast<std::size_t>(nBitDepth - kMinBitDepth)];
}

constexpr int kRate = 4000;
constexpr std::size_t kSilence = 10 * kRate;
constexpr std::size_t kSound = 4 * kRate;

class HeronChanges : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Depths, HeronChanges, testing::Range(kMinBitDepth, kMaxBitDepth + 1));

// ---- silence

TEST_P(HeronChanges, NoiseAfterSilence_GetsTheBitsOfBoth) {
  const S_Sound sound = S_Sound(kSilence) + NoiseOf(kSound, 20000);
  const S_Coded coded = ThereAndBack(sound, kRate, GetParam());
  EXPECT_GT(RatioOf(sound, coded.decoded, kSilence, kSound),
            OfDepth({37, 58, 78, 90, 90}, GetParam()));
  // At 6 bits, the noise is whole before the room is full.
  EXPECT_GT(FillOf(coded, GetParam()), GetParam() == 6 ? 0.8 : 0.99);
  EXPECT_TRUE(std::all_of(coded.decoded.begin(), coded.decoded.begin() + kSilence - 160,
                          [](std::int16_t nSample) { return nSample == 0; }));
}

TEST_P(HeronChanges, NoiseBeforeSilence_GetsTheBitsOfBoth) {
  const S_Sound sound = NoiseOf(kSound, 20000) + S_Sound(kSilence);
  const S_Coded coded = ThereAndBack(sound, kRate, GetParam());
  EXPECT_GT(RatioOf(sound, coded.decoded, 0, kSound), OfDepth({30, 52, 73, 90, 90}, GetParam()));
  // The silence cannot use what the noise has left.
  EXPECT_GT(FillOf(coded, GetParam()), GetParam() == 6 ? 0.8 : 0.96);
  EXPECT_TRUE(std::all_of(coded.decoded.begin() + kSound + 160, coded.decoded.end(),
                          [](std::int16_t nSample) { return nSample == 0; }));
}

TEST_P(HeronChanges, AVoiceBesideSilence_GetsTheBitsOfBoth) {
  const S_Sound voice = TestVoice(kSound);
  const S_Sound after = S_Sound(kSilence) + voice;
  const S_Sound before = voice + S_Sound(kSilence);
  const double dAfter = test::SignalToNoise(after, ThereAndBack(after, kRate, GetParam()).decoded);
  const double dBefore =
      test::SignalToNoise(before, ThereAndBack(before, kRate, GetParam()).decoded);
  EXPECT_GT(dAfter, OfDepth({60, 84, 90, 90, 90}, GetParam()));
  EXPECT_GT(dBefore, OfDepth({52, 72, 90, 90, 90}, GetParam()));
}

TEST_P(HeronChanges, AClickInLongSilence_IsKeptExactly) {
  // Sounds of one block and of several, with the click in each of their parts.
  for (const std::size_t nSamples : {12000u, 40000u, 60000u}) {
    for (const std::size_t nAt : {std::size_t{0}, nSamples / 3, nSamples / 2, nSamples / 2 + 77,
                                  std::size_t{8000}, nSamples - 1}) {
      const S_Sound sound = test::Impulse(nSamples, nAt, -31000);
      EXPECT_TRUE(ThereAndBack(sound, kRate, GetParam()).decoded == sound)
          << nSamples << ' ' << nAt;
    }
  }
}

TEST_P(HeronChanges, ManyClicksInLongSilence_ComeBack) {
  C_Random random(3);
  S_Sound sound(50000);
  for (int n = 0; n < 300; ++n) {
    sound[random.Below(50000)] = static_cast<std::int16_t>(random.Between(-1000, 1000));
  }
  EXPECT_GT(test::SignalToNoise(sound, ThereAndBack(sound, kRate, GetParam()).decoded),
            OfDepth({33, 40, 53, 60, 70}, GetParam()));
}

// ---- loud and soft

TEST_P(HeronChanges, LoudAndSoftBlocksInTurn_BothComeBack) {
  const std::size_t nBlock = BlockLength(kRate);
  for (const std::size_t nFirst : {std::size_t{0}, std::size_t{1}}) {
    S_Sound sound;
    for (std::size_t n = nFirst; n < nFirst + 4; ++n) {
      sound = sound + NoiseOf(nBlock, n % 2 == 0 ? 25000 : 250, n + 1);
    }
    const S_Coded coded = ThereAndBack(sound, kRate, GetParam());
    for (std::size_t n = 0; n < 4; ++n) {
      const double dRatio = RatioOf(sound, coded.decoded, n * nBlock, nBlock);
      const bool bLoud = (n + nFirst) % 2 == 0;
      // At 2 bits, the soft noise is 40 dB below the loud one and gets next to nothing.
      EXPECT_GT(dRatio, bLoud ? OfDepth({16, 23, 29, 35, 41}, GetParam())
                              : OfDepth({-1, 3, 10, 16, 22}, GetParam()))
          << nFirst << ' ' << n;
    }
    EXPECT_GT(FillOf(coded, GetParam()), 0.99);
  }
}

TEST_P(HeronChanges, AVoiceThatBecomesLoud_IsGoodBeforeAndAfter) {
  S_Sound sound = TestVoice(50000);
  for (std::size_t n = 0; n < 25000; ++n) sound[n] = static_cast<std::int16_t>(sound[n] / 32);
  const S_Coded coded = ThereAndBack(sound, kRate, GetParam());
  EXPECT_GT(RatioOf(sound, coded.decoded, 0, 24800), OfDepth({23, 30, 36, 41, 48}, GetParam()));
  EXPECT_GT(RatioOf(sound, coded.decoded, 25200, 24800), OfDepth({37, 43, 49, 55, 61}, GetParam()));
  EXPECT_GT(FillOf(coded, GetParam()), 0.99);
}

TEST_P(HeronChanges, AToneThatBecomesNoise_LeavesRoomForTheNoise) {
  S_Sound tone(30000);
  for (std::size_t n = 0; n < tone.size(); ++n) {
    tone[n] =
        static_cast<std::int16_t>(std::lround(15000 * std::sin(0.3 * static_cast<double>(n))));
  }
  const S_Sound sound = tone + NoiseOf(30000, 20000);
  const S_Coded coded = ThereAndBack(sound, kRate, GetParam());
  EXPECT_GT(RatioOf(sound, coded.decoded, 0, 29800), OfDepth({27, 40, 50, 60, 68}, GetParam()));
  EXPECT_GT(RatioOf(sound, coded.decoded, 30000, 30000), OfDepth({16, 27, 36, 43, 48}, GetParam()));
  EXPECT_GT(FillOf(coded, GetParam()), 0.99);
}

}  // namespace
}  // namespace heron
