// SPDX-License-Identifier: Apache-2.0
//
// Runs of whole blocks, divided by the encoder or in other ways: what comes back from them, and
// what they cost.
#include "heron/BlockEncoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "Blocks.h"
#include "Signals.h"
#include "heron/Configuration.h"

namespace heron {
namespace {

using test::AllAt;
using test::C_Random;
using test::DividedBy;
using test::RandomDivisions;
using test::S_Bytes;
using test::S_Divisions;
using test::S_Offsets;
using test::S_Sound;
using test::SignalToNoise;

constexpr std::size_t kNoSection = std::numeric_limits<std::size_t>::max();
constexpr int kBitDepth = 3;  // steps follow half of the level

// Every step index is 0.
constexpr S_Offsets kFinest = AllAt(-13 * 1024);

S_Bytes RunOf(const S_DividedBlock& block, int nSampleRate, const S_Offsets& offsets) {
  C_BlockEncoder encoder(nSampleRate, kBitDepth);
  return test::RunOf(encoder, block, offsets);
}

S_Sound ThereAndBack(const S_DividedBlock& block, int nSampleRate, const S_Offsets& offsets) {
  S_Sound decoded(block.nCount);
  EXPECT_TRUE(C_BlockDecoder(nSampleRate).Decode(RunOf(block, nSampleRate, offsets), decoded));
  return decoded;
}

void ExpectNear(const S_Sound& decoded, const S_Sound& sound, int nMost) {
  ASSERT_EQ(decoded.size(), sound.size());
  for (std::size_t n = 0; n < sound.size(); ++n) ASSERT_NEAR(decoded[n], sound[n], nMost) << n;
}

// ---- divisions

TEST(HeronBlockEncoder, DividedBlocks_HaveThePartsThatWereChosen) {
  for (const std::size_t nSamples : {1u, 39u, 41u, 320u, 321u, 1999u, 4000u}) {
    for (const auto& [strName, sound] : test::SoundsOf(nSamples)) {
      SCOPED_TRACE(strName);
      const S_DividedBlock block = C_BlockEncoder(8000, kBitDepth).Divide(sound, -1500);
      C_Transforms transforms(UnitLength(8000));
      const auto divisions =
          ChooseParts({test::Padded(sound, 8000), nSamples, SlopeOf(kBitDepth), -1500}, transforms);
      const S_DividedBlock expected = DividedBy(divisions, sound, 8000);
      EXPECT_EQ(block.nCount, nSamples);
      EXPECT_EQ(block.SectionCount(), test::SectionsOf(nSamples, 8000));
      EXPECT_EQ(block.values, expected.values);
      EXPECT_EQ(block.loudness, expected.loudness);
      EXPECT_EQ(block.splits, expected.splits);
      EXPECT_EQ(block.firstParts, expected.firstParts);
      ASSERT_EQ(block.parts.size(), expected.parts.size());
      for (std::size_t n = 0; n < block.parts.size(); ++n) {
        EXPECT_EQ(block.parts[n].nUnit, expected.parts[n].nUnit) << n;
        EXPECT_EQ(block.parts[n].nSize, expected.parts[n].nSize) << n;
        EXPECT_EQ(block.parts[n].kind, expected.parts[n].kind) << n;
      }
    }
  }
}

TEST(HeronBlockEncoder, Parts_CoverEverySampleOnce) {
  for (std::size_t nSamples = 1; nSamples < 1000; nSamples += 13) {
    const S_DividedBlock block = C_BlockEncoder(4000, kBitDepth).Divide(TestVoice(nSamples), -1000);
    std::size_t nUnit = 0;
    for (const S_Part& part : block.parts) {
      EXPECT_EQ(part.nUnit, nUnit) << nSamples;
      EXPECT_LT(part.nUnit * UnitLength(4000), nSamples);
      nUnit = part.End();
    }
    EXPECT_GE(nUnit * UnitLength(4000), nSamples);
  }
}

// ---- what comes back

TEST(HeronBlockEncoder, SoundsOfEveryLength_ComeBackAtTheFinestSteps) {
  C_BlockEncoder encoder(4000, kBitDepth);
  for (std::size_t nSamples = 1; nSamples <= 500; ++nSamples) {
    const auto sounds = test::SoundsOf(nSamples);
    const auto& [strName, sound] = sounds[nSamples % sounds.size()];
    SCOPED_TRACE(strName);
    const auto divisions = RandomDivisions(nSamples, nSamples, 4000);
    for (const auto& block : {encoder.Divide(sound, -1500), DividedBy(divisions, sound, 4000)}) {
      ASSERT_NO_FATAL_FAILURE(ExpectNear(ThereAndBack(block, 4000, kFinest), sound, 2)) << nSamples;
    }
  }
}

TEST(HeronBlockEncoder, SoundsAtEveryRate_ComeBackAtTheFinestSteps) {
  for (const int nSampleRate : {4000, 4399, 8000, 11025, 16000, 22050, 44100, 48000}) {
    for (const auto& [strName, sound] : test::SoundsOf(5 * SectionLength(nSampleRate) / 2)) {
      for (std::uint64_t qwSeed = 0; qwSeed < 3; ++qwSeed) {
        SCOPED_TRACE(strName);
        const auto divisions = RandomDivisions(qwSeed, sound.size(), nSampleRate);
        const S_DividedBlock block = DividedBy(divisions, sound, nSampleRate);
        ASSERT_NO_FATAL_FAILURE(ExpectNear(ThereAndBack(block, nSampleRate, kFinest), sound, 2))
            << nSampleRate << ' ' << qwSeed;
      }
    }
  }
}

TEST(HeronBlockEncoder, WholeBlocks_ComeBackAtTheFinestSteps) {
  for (const int nSampleRate : {4000, 8000}) {
    const S_Sound sound = TestVoice(BlockLength(nSampleRate));
    const S_DividedBlock block = C_BlockEncoder(nSampleRate, kBitDepth).Divide(sound, -3000);
    EXPECT_EQ(block.SectionCount(), kBlockSections);
    ASSERT_NO_FATAL_FAILURE(ExpectNear(ThereAndBack(block, nSampleRate, kFinest), sound, 1))
        << nSampleRate;
  }
}

TEST(HeronBlockEncoder, APlainUnitThatBecomesZero_LeavesItsNeighboursWhole) {
  // The last unit is plain and silent; the ones before it are loud up to its beginning.
  S_Sound sound = test::Steady(160, 10000);
  std::fill(sound.begin() + 140, sound.end(), std::int16_t{0});
  C_Division division;
  for (const std::size_t nNode : {1u, 3u, 7u, 15u}) division.Mark(nNode);
  const S_DividedBlock block = DividedBy({division}, sound, 4000);
  const S_Sound decoded = ThereAndBack(block, 4000, AllAt(-3000));
  EXPECT_GT(SignalToNoise(sound, decoded), 60);
}

TEST(HeronBlockEncoder, LoudNoise_ComesBackAsItsStepsPromise) {
  C_Random random(6);
  for (std::uint64_t qwSeed = 1; qwSeed <= 60; ++qwSeed) {
    const S_Sound noise = test::Noise(100 + random.Below(2000), qwSeed);
    const int nOffset = -static_cast<int>(random.Below(4500));
    const auto divisions = RandomDivisions(qwSeed, noise.size(), 8000);
    const S_Sound decoded = ThereAndBack(DividedBy(divisions, noise, 8000), 8000, AllAt(nOffset));
    // Full-scale noise has a root mean square of 18918 and a loudness of 7274, which is what it
    // wants as its index, Q8. The noise of steps of two half steps is a half step by the root of 3.
    const double dIndex = (7274 + nOffset) / 256.0;
    const double dRatio = 20 * std::log10(18918 / (std::exp2(dIndex / 4 - 3) / std::sqrt(3.0)));
    EXPECT_NEAR(SignalToNoise(noise, decoded), dRatio, 3) << qwSeed << ' ' << nOffset;
  }
}

// ---- what it costs

TEST(HeronBlockEncoder, CoarserSteps_GiveFewerBytesAndMoreNoise) {
  const S_Sound voice = TestVoice(4000);
  const S_DividedBlock block = C_BlockEncoder(8000, kBitDepth).Divide(voice, -2000);
  std::size_t nBefore = RunOf(block, 8000, AllAt(-5000)).size();
  double dBefore = SignalToNoise(voice, ThereAndBack(block, 8000, {-5000, 0, kNoSection}));
  for (int nOffset = -4000; nOffset <= 2000; nOffset += 1000) {
    const S_Offsets offsets = AllAt(nOffset);
    const std::size_t nBytes = RunOf(block, 8000, offsets).size();
    const double dRatio = SignalToNoise(voice, ThereAndBack(block, 8000, offsets));
    EXPECT_LT(nBytes, nBefore) << nOffset;
    EXPECT_LT(dRatio, dBefore) << nOffset;
    nBefore = nBytes;
    dBefore = dRatio;
  }
}

TEST(HeronBlockEncoder, Offsets_ReachFromTheFinestToTheCoarsestSteps) {
  for (const auto& [strName, sound] : test::SoundsOf(800)) {
    const S_DividedBlock block = C_BlockEncoder(8000, kBitDepth).Divide(sound, 0);
    EXPECT_EQ(RunOf(block, 8000, kFinest), RunOf(block, 8000, {-30000, 0, kNoSection})) << strName;
    EXPECT_EQ(RunOf(block, 8000, {18 * 1024, 0, kNoSection}),
              RunOf(block, 8000, {90000, 0, kNoSection}))
        << strName;
  }
}

TEST(HeronBlockEncoder, SectionsFromOneOn_AreCoarser) {
  const S_Sound voice = TestVoice(3200);  // ten sections
  const S_DividedBlock block = DividedBy(S_Divisions(10), voice, 8000);
  EXPECT_EQ(RunOf(block, 8000, {-2000, 0, 10}), RunOf(block, 8000, {-2000, -2000, 0}));
  EXPECT_EQ(RunOf(block, 8000, {-2000, 0, 0}), RunOf(block, 8000, AllAt(0)));
  const std::size_t nFinest = RunOf(block, 8000, {-2000, 0, 10}).size();
  std::size_t nBefore = nFinest;
  for (std::size_t nFrom = 10; nFrom-- > 0;) {
    const std::size_t nBytes = RunOf(block, 8000, {-2000, 0, nFrom}).size();
    EXPECT_LE(nBytes, nBefore) << nFrom;
    nBefore = nBytes;
  }
  EXPECT_LT(nBefore, nFinest * 4 / 5);
}

TEST(HeronBlockEncoder, SectionsWrittenOneAfterAnother_GiveWholeBlocks) {
  const S_Sound voice = TestVoice(3200);
  C_BlockEncoder encoder(8000, kBitDepth);
  const S_DividedBlock block = encoder.Divide(voice, -2000);
  for (const std::size_t nAtOnce : {1u, 3u, 10u}) {
    C_PartWriter writer = encoder.NewWriter();
    for (std::size_t n = 0; n < 10; n += nAtOnce) {
      const std::size_t nEnd = std::min<std::size_t>(n + nAtOnce, 10);
      encoder.Write(block, {n, nEnd, kFinest.nOffset, kFinest.nOffset, kNoSection}, writer);
    }
    S_Sound decoded(voice.size());
    ASSERT_TRUE(C_BlockDecoder(8000).Decode(writer.Finish(), decoded));
    ASSERT_NO_FATAL_FAILURE(ExpectNear(decoded, voice, 1)) << nAtOnce;
  }
}

TEST(HeronBlockEncoder, APortionWithAnOffsetOfItsOwn_ChangesOnlyItself) {
  const S_Sound noise = test::Noise(1600);
  C_BlockEncoder encoder(8000, kBitDepth);
  const S_DividedBlock block = DividedBy(S_Divisions(5), noise, 8000);
  std::vector<double> errors;
  for (const int nMiddle : {-5000, -2000}) {
    C_PartWriter writer = encoder.NewWriter();
    encoder.Write(block, {0, 2, -5000, -5000, 0}, writer);
    encoder.Write(block, {2, 3, nMiddle, nMiddle, 0}, writer);
    encoder.Write(block, {3, 5, -5000, -5000, 0}, writer);
    S_Sound decoded(noise.size());
    ASSERT_TRUE(C_BlockDecoder(8000).Decode(writer.Finish(), decoded));
    for (const std::size_t nAt : {0u, 720u, 1280u}) {
      double dError = 0;
      for (std::size_t n = nAt; n < nAt + 160; ++n) dError += std::pow(decoded[n] - noise[n], 2);
      errors.push_back(dError);
    }
  }
  EXPECT_LT(errors[3], 1.5 * errors[0]);
  EXPECT_GT(errors[4], 20 * errors[1]);
  EXPECT_LT(errors[5], 1.5 * errors[2]);
}

TEST(HeronBlockEncoder, TheCoarsestSteps_GiveSilenceOfAFewBytes) {
  S_Sound faint = TestVoice(8000);
  for (std::int16_t& nSample : faint) nSample = static_cast<std::int16_t>(nSample / 64);
  const S_DividedBlock block = DividedBy(S_Divisions(25), faint, 8000);
  const S_Offsets coarsest = AllAt(18 * 1024);
  EXPECT_LT(RunOf(block, 8000, coarsest).size(), 30u);
  EXPECT_EQ(ThereAndBack(block, 8000, coarsest), S_Sound(faint.size()));
}

TEST(HeronBlockEncoder, AnEncoderUsedAgain_GivesWhatANewOneGives) {
  const S_Sound second = TestVoice(1700);
  const S_Offsets offsets = AllAt(-2000);
  C_BlockEncoder used(8000, kBitDepth);
  const S_DividedBlock first = used.Divide(test::Noise(3200), 0);
  EXPECT_FALSE(test::RunOf(used, first, offsets).empty());
  const S_DividedBlock block = used.Divide(second, -2000);
  const S_DividedBlock fresh = C_BlockEncoder(8000, kBitDepth).Divide(second, -2000);
  EXPECT_EQ(block.values, fresh.values);
  for (int nRound = 0; nRound < 2; ++nRound) {
    EXPECT_EQ(test::RunOf(used, block, offsets), RunOf(fresh, 8000, offsets)) << nRound;
  }
}

}  // namespace
}  // namespace heron
