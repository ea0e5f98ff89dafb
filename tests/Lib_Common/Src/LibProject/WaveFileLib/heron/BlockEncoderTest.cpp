// SPDX-License-Identifier: Apache-2.0
//
// Runs of whole blocks: their sizes, and what comes back from them.
#include "heron/BlockEncoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "Blocks.h"
#include "Signals.h"
#include "heron/Configuration.h"

namespace heron {
namespace {

using test::C_Random;
using test::Padded;
using test::RandomDivisions;
using test::S_Bytes;
using test::S_Divisions;
using test::S_Sound;
using test::SignalToNoise;

constexpr std::size_t kAllSections = std::numeric_limits<std::size_t>::max();

// The samples, coded with one division and decoded.
S_Sound ThereAndBack(const S_Sound& sound, int nSampleRate, const S_Divisions& divisions,
                     const S_Coarseness& coarseness) {
  C_BlockEncoder encoder(nSampleRate, 16);
  encoder.Take(Padded(sound, nSampleRate), sound.size(), divisions);
  S_Sound decoded(sound.size());
  EXPECT_TRUE(C_BlockDecoder(nSampleRate).Decode(encoder.Run(coarseness), decoded));
  return decoded;
}

// Every step index is 0.
constexpr S_Coarseness kFinest{-13 * 1024, -13 * 1024, kAllSections};

void ExpectNear(const S_Sound& decoded, const S_Sound& sound, int nMost) {
  ASSERT_EQ(decoded.size(), sound.size());
  for (std::size_t n = 0; n < sound.size(); ++n) ASSERT_NEAR(decoded[n], sound[n], nMost) << n;
}

TEST(HeronBlockEncoder, SoundsOfEveryLength_ComeBackAtTheFinestSteps) {
  for (std::size_t nSamples = 1; nSamples <= 500; ++nSamples) {
    const auto sounds = test::SoundsOf(nSamples);
    const auto& [strName, sound] = sounds[nSamples % sounds.size()];
    SCOPED_TRACE(strName);
    ASSERT_NO_FATAL_FAILURE(ExpectNear(
        ThereAndBack(sound, 4000, RandomDivisions(nSamples, sound.size(), 4000), kFinest), sound,
        2))
        << nSamples;
  }
}

TEST(HeronBlockEncoder, SoundsAtEveryRate_ComeBackAtTheFinestSteps) {
  for (const int nSampleRate : {4000, 4399, 8000, 11025, 16000, 22050, 44100, 48000}) {
    for (const auto& [strName, sound] : test::SoundsOf(5 * SectionLength(nSampleRate) / 2)) {
      for (std::uint64_t qwSeed = 0; qwSeed < 3; ++qwSeed) {
        SCOPED_TRACE(strName);
        const auto divisions = RandomDivisions(qwSeed, sound.size(), nSampleRate);
        ASSERT_NO_FATAL_FAILURE(
            ExpectNear(ThereAndBack(sound, nSampleRate, divisions, kFinest), sound, 2))
            << nSampleRate << ' ' << qwSeed;
      }
    }
  }
}

TEST(HeronBlockEncoder, WholeBlocks_ComeBackAtTheFinestSteps) {
  for (const int nSampleRate : {4000, 8000}) {
    const S_Sound sound = TestVoice(BlockLength(nSampleRate));
    const auto divisions = RandomDivisions(1, sound.size(), nSampleRate);
    ASSERT_NO_FATAL_FAILURE(
        ExpectNear(ThereAndBack(sound, nSampleRate, divisions, kFinest), sound, 1))
        << nSampleRate;
  }
}

TEST(HeronBlockEncoder, APlainUnitThatBecomesZero_LeavesItsNeighboursWhole) {
  // The last unit is plain and silent; the ones before it are loud up to its beginning.
  S_Sound sound = test::Steady(160, 10000);
  std::fill(sound.begin() + 140, sound.end(), std::int16_t{0});
  C_Division division;
  for (const std::size_t nNode : {1u, 3u, 7u, 15u}) division.Mark(nNode);
  const S_Coarseness coarseness{-3000, -3000, kAllSections};
  const S_Sound decoded = ThereAndBack(sound, 4000, {division}, coarseness);
  EXPECT_GT(SignalToNoise(sound, decoded), 60);
}

TEST(HeronBlockEncoder, TheCostOfARun_IsItsSize) {
  for (const auto& [strName, sound] : test::SoundsOf(1800)) {
    for (const int nSampleRate : {4000, 11025}) {
      C_BlockEncoder encoder(nSampleRate, 17);
      encoder.Take(Padded(sound, nSampleRate), sound.size(),
                   RandomDivisions(5, sound.size(), nSampleRate));
      for (const int nOffset : {-20000, -6000, -3000, 0, 2500, 5000, 30000}) {
        for (const std::size_t nCoarserFrom : {std::size_t{0}, std::size_t{3}, kAllSections}) {
          const S_Coarseness coarseness{nOffset, nOffset + 16, nCoarserFrom};
          EXPECT_EQ(encoder.CostOfRun(coarseness).nBytes, encoder.Run(coarseness).size())
              << strName << ' ' << nSampleRate << ' ' << nOffset;
        }
      }
    }
  }
}

TEST(HeronBlockEncoder, CoarserSteps_GiveFewerBytesAndMoreNoise) {
  const S_Sound voice = TestVoice(4000);
  C_BlockEncoder encoder(8000, 16);
  const auto divisions = RandomDivisions(2, voice.size(), 8000);
  encoder.Take(Padded(voice, 8000), voice.size(), divisions);
  S_RunCost before = encoder.CostOfRun({-5000, -5000, kAllSections});
  for (int nOffset = -4000; nOffset <= 2000; nOffset += 1000) {
    const S_RunCost cost = encoder.CostOfRun({nOffset, nOffset, kAllSections});
    EXPECT_LT(cost.nBytes, before.nBytes) << nOffset;
    EXPECT_GT(cost.qwError, before.qwError) << nOffset;
    EXPECT_LE(cost.nNonZero, before.nNonZero) << nOffset;
    before = cost;
  }
}

TEST(HeronBlockEncoder, SectionsFromOne_AreCoarser) {
  const S_Sound voice = TestVoice(3200);  // ten sections
  C_BlockEncoder encoder(8000, 16);
  encoder.Take(voice, voice.size(), S_Divisions(10));
  std::size_t nBefore = encoder.CostOfRun({-2000, 0, 10}).nBytes;
  EXPECT_EQ(encoder.Run({-2000, 0, 10}), encoder.Run({-2000, -2000, 0}));
  EXPECT_EQ(encoder.Run({-2000, 0, 0}), encoder.Run({0, 0, kAllSections}));
  for (std::size_t nFrom = 10; nFrom-- > 0;) {
    const std::size_t nBytes = encoder.CostOfRun({-2000, 0, nFrom}).nBytes;
    EXPECT_LE(nBytes, nBefore) << nFrom;
    nBefore = nBytes;
  }
  EXPECT_LT(nBefore, encoder.CostOfRun({-2000, 0, 10}).nBytes * 4 / 5);
}

TEST(HeronBlockEncoder, TheCoarsestSteps_GiveSilenceOfAFewBytes) {
  const S_Sound soft = TestVoice(8000);
  C_BlockEncoder encoder(8000, 16);
  S_Sound faint = soft;
  for (std::int16_t& nSample : faint) nSample = static_cast<std::int16_t>(nSample / 64);
  encoder.Take(faint, faint.size(), S_Divisions(25));
  const S_Coarseness coarsest{18 * 1024, 18 * 1024, kAllSections};
  EXPECT_LT(encoder.CostOfRun(coarsest).nBytes, 30u);
  EXPECT_EQ(encoder.CostOfRun(coarsest).nNonZero, 0u);
  S_Sound decoded(faint.size(), 7);
  EXPECT_TRUE(C_BlockDecoder(8000).Decode(encoder.Run(coarsest), decoded));
  EXPECT_EQ(decoded, S_Sound(faint.size()));
}

TEST(HeronBlockEncoder, AnEncoderUsedAgain_GivesWhatANewOneGives) {
  const S_Sound first = test::Noise(3200);
  const S_Sound second = TestVoice(1700);
  const S_Coarseness coarseness{-2000, -2000, kAllSections};
  const auto divisions = RandomDivisions(3, second.size(), 8000);
  C_BlockEncoder used(8000, 16);
  used.Take(first, first.size(), RandomDivisions(4, first.size(), 8000));
  static_cast<void>(used.Run(coarseness));
  used.Take(Padded(second, 8000), second.size(), divisions);
  C_BlockEncoder fresh(8000, 16);
  fresh.Take(Padded(second, 8000), second.size(), divisions);
  EXPECT_EQ(used.Run(coarseness), fresh.Run(coarseness));
  EXPECT_EQ(used.Run(coarseness), fresh.Run(coarseness));
}

TEST(HeronBlockEncoder, RandomOffsetsAndDivisions_GiveSoundsThatFollowTheirSteps) {
  C_Random random(6);
  for (std::uint64_t qwSeed = 1; qwSeed <= 60; ++qwSeed) {
    const S_Sound noise = test::Noise(1 + random.Below(2000), qwSeed);
    const int nOffset = -static_cast<int>(random.Below(4500));
    const auto divisions = RandomDivisions(qwSeed, noise.size(), 8000);
    const S_Sound decoded = ThereAndBack(noise, 8000, divisions, {nOffset, nOffset, kAllSections});
    // Full-scale noise has a root mean square of 18918 and a loudness of 7274, which is what it
    // wants as its index, Q8. The noise of steps of two half steps is a half step by the root of 3.
    const double dIndex = (7274 + nOffset) / 256.0;
    const double dRatio = 20 * std::log10(18918 / (std::exp2(dIndex / 4 - 3) / std::sqrt(3.0)));
    if (noise.size() < 100) continue;
    EXPECT_NEAR(SignalToNoise(noise, decoded), dRatio, 3) << qwSeed << ' ' << nOffset;
  }
}

}  // namespace
}  // namespace heron
