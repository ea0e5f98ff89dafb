// SPDX-License-Identifier: Apache-2.0
//
// Runs that no encoder wrote are refused or decoded to some sound; nothing worse happens.
#include "heron/BlockDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "Blocks.h"
#include "Codes.h"
#include "Parts.h"
#include "Signals.h"
#include "heron/Configuration.h"
#include "heron/Quantiser.h"
#include "heron/StepSize.h"

namespace heron {
namespace {

using test::C_Random;
using test::RandomDivisions;
using test::S_Bytes;
using test::S_Sound;

S_Bytes RunOf(const S_Sound& sound, int nSampleRate, int nOffset, std::uint64_t qwSeed) {
  const auto divisions = RandomDivisions(qwSeed, sound.size(), nSampleRate);
  C_BlockEncoder encoder(nSampleRate, 3);
  return test::RunOf(encoder, test::DividedBy(divisions, sound, nSampleRate), test::AllAt(nOffset));
}

// A span of its own memory, so that a write outside it is found.
bool Decode(C_BlockDecoder& decoder, const S_Bytes& run, std::size_t nSamples) {
  const S_Bytes own(run.begin(), run.end());
  S_Sound samples(nSamples);
  return decoder.Decode(own, samples);
}

TEST(HeronBlockDecoder, ADecoderUsedAgain_GivesTheSame) {
  C_BlockDecoder used(8000);
  const S_Sound first = test::Noise(5000);
  const S_Sound second = TestVoice(777);
  S_Sound decoded(first.size());
  ASSERT_TRUE(used.Decode(RunOf(first, 8000, -3000, 1), decoded));
  // A run that breaks off leaves nothing behind, either.
  S_Bytes cut = RunOf(first, 8000, -3000, 2);
  cut.resize(cut.size() / 2);
  EXPECT_FALSE(used.Decode(cut, decoded));
  const S_Bytes run = RunOf(second, 8000, -2000, 3);
  S_Sound again(second.size());
  S_Sound fresh(second.size());
  ASSERT_TRUE(used.Decode(run, again));
  ASSERT_TRUE(C_BlockDecoder(8000).Decode(run, fresh));
  EXPECT_EQ(again, fresh);
}

TEST(HeronBlockDecoder, RunsThatAreCut_AreRefused) {
  const S_Bytes run = RunOf(TestVoice(1000), 8000, -2000, 1);
  ASSERT_GT(run.size(), 100u);
  C_BlockDecoder decoder(8000);
  EXPECT_TRUE(Decode(decoder, run, 1000));
  int nDecoded = 0;
  for (std::size_t nKept = 0; nKept < run.size(); ++nKept) {
    const S_Bytes cut(run.begin(), run.begin() + static_cast<std::ptrdiff_t>(nKept));
    nDecoded += Decode(decoder, cut, 1000) ? 1 : 0;
  }
  // Without a check, a shorter run may happen to be whole.
  EXPECT_LT(nDecoded, 20);
}

TEST(HeronBlockDecoder, RunsWithMoreThanEightUnusedBytes_AreRefused) {
  // Silence has no raw bits, so that bytes at the end belong to neither sequence.
  const S_Bytes run = RunOf(S_Sound(1000), 8000, 0, 0);
  const std::ptrdiff_t nUnused = test::ReadParts(run, UnitLength(8000), 1000).nUnread;
  EXPECT_GE(nUnused, 0);
  C_BlockDecoder decoder(8000);
  for (std::ptrdiff_t nMore = 0; nMore < 60; ++nMore) {
    S_Bytes longer = run;
    longer.resize(run.size() + static_cast<std::size_t>(nMore));
    EXPECT_EQ(Decode(decoder, longer, 1000), nUnused + nMore <= 8) << nMore;
  }
}

TEST(HeronBlockDecoder, NoBytes_AreNoBlock) {
  // All bits that are not there count as 0, until it shows that more was read than is there.
  C_BlockDecoder decoder(8000);
  EXPECT_FALSE(Decode(decoder, {}, 4000));
  EXPECT_FALSE(Decode(decoder, {}, BlockLength(8000)));
}

TEST(HeronBlockDecoder, DamagedRuns_AreRefusedOrDecoded) {
  C_Random random(1);
  for (const int nSampleRate : {4000, 8000, 11025, 48000}) {
    C_BlockDecoder decoder(nSampleRate);
    std::vector<S_Bytes> runs;
    std::vector<std::size_t> lengths;
    for (const std::size_t nSamples : {1u, 30u, 161u, 700u, 1500u}) {
      for (const auto& [strName, sound] : test::SoundsOf(nSamples)) {
        runs.push_back(RunOf(sound, nSampleRate, -1000, nSamples));
        lengths.push_back(nSamples);
      }
    }
    int nDecoded = 0;
    constexpr int kRounds = 3000;
    for (int nRound = 0; nRound < kRounds; ++nRound) {
      const std::size_t nRun = random.Below(static_cast<std::uint32_t>(runs.size()));
      S_Bytes run = runs[nRun];
      for (std::uint32_t nHarms = 1 + random.Below(4); nHarms > 0; --nHarms) {
        const auto at = run.begin() + random.Below(static_cast<std::uint32_t>(run.size()));
        const std::uint32_t nHow = random.Below(4);
        if (nHow == 0) *at ^= static_cast<std::uint8_t>(1U << random.Below(8));
        if (nHow == 1) *at = random.Byte();
        if (nHow == 2) run.insert(at, random.Byte());
        if (nHow == 3 && run.size() > 1) run.erase(at);
      }
      nDecoded += Decode(decoder, run, lengths[nRun]) ? 1 : 0;
    }
    EXPECT_GT(nDecoded, 0) << nSampleRate;
    EXPECT_LT(nDecoded, kRounds) << nSampleRate;
  }
}

TEST(HeronBlockDecoder, RandomBytes_AreRefusedOrDecoded) {
  C_Random random(2);
  for (const int nSampleRate : {4000, 8000, 11025, 48000}) {
    C_BlockDecoder decoder(nSampleRate);
    int nDecoded = 0;
    constexpr int kRounds = 4000;
    for (int nRound = 0; nRound < kRounds; ++nRound) {
      S_Bytes run(random.Below(nRound % 10 == 0 ? 2000 : 40));
      const std::uint8_t byFill = nRound % 3 == 0 ? std::uint8_t{0} : std::uint8_t{0xFF};
      for (std::uint8_t& by : run) by = random.Below(4) == 0 ? byFill : random.Byte();
      nDecoded += Decode(decoder, run, 1 + random.Below(2000)) ? 1 : 0;
    }
    EXPECT_GT(nDecoded, 0) << nSampleRate;
    EXPECT_LT(nDecoded, kRounds) << nSampleRate;
  }
}

TEST(HeronBlockDecoder, RandomRunsOfWholeBlocks_AreRefusedOrDecoded) {
  C_Random random(3);
  C_BlockDecoder decoder(4000);
  for (int nRound = 0; nRound < 50; ++nRound) {
    S_Bytes run(20000);
    for (std::uint8_t& by : run) by = random.Byte();
    static_cast<void>(Decode(decoder, run, BlockLength(4000)));
    // Zeros are near parts of small levels for a long time.
    std::fill(run.begin() + 1, run.end(), static_cast<std::uint8_t>(nRound % 2 * 0xFF));
    static_cast<void>(Decode(decoder, run, BlockLength(4000)));
  }
  S_Sound samples(BlockLength(4000));
  EXPECT_FALSE(decoder.Decode(S_Bytes(100000, 0x5A), samples));
}

// A run whose parts of one size, or plain units, all have the largest coefficients.
S_Bytes LargestRun(std::size_t nSize, bool bPlain, std::uint64_t qwSeed) {
  C_Random random(qwSeed);
  constexpr std::size_t kUnitLength = 20;
  S_WriterTools tools(kUnitLength * kSectionUnits);
  C_PartWriter writer(kUnitLength);
  for (std::size_t nUnit = 0; nUnit < 16; nUnit += std::size_t{1} << nSize) {
    for (std::size_t nSplit = kPartSizes - 1; nSplit > nSize; --nSplit) {
      if (nUnit % (std::size_t{1} << nSplit) == 0) writer.WriteSplit(nSplit);
    }
    S_Part part{nUnit, nSize, bPlain ? E_PartKind::kPlain : E_PartKind::kNear, 0};
    std::vector<std::int32_t> coefficients(kUnitLength << nSize,
                                           static_cast<std::int32_t>(kMaxCoefficient) - 64);
    for (std::int32_t& nValue : coefficients) {
      if (qwSeed > 0 && random.Below(2) == 0) nValue = -nValue;
    }
    writer.Write(part, coefficients, tools);
  }
  return writer.Finish();
}

TEST(HeronBlockDecoder, LargestCoefficients_AreDecodedToSomeSound) {
  C_BlockDecoder decoder(4000);
  for (std::uint64_t qwSeed = 0; qwSeed < 5; ++qwSeed) {
    for (std::size_t nSize = 0; nSize < kPartSizes; ++nSize) {
      EXPECT_TRUE(Decode(decoder, LargestRun(nSize, false, qwSeed), 320)) << nSize;
    }
  }
}

TEST(HeronBlockDecoder, LargestPlainSamples_AreLimited) {
  C_BlockDecoder decoder(4000);
  S_Sound samples(320);
  ASSERT_TRUE(decoder.Decode(LargestRun(0, true, 0), samples));
  EXPECT_EQ(samples, S_Sound(320, 32767));
  ASSERT_TRUE(decoder.Decode(LargestRun(0, true, 1), samples));
  for (const std::int16_t nSample : samples) {
    EXPECT_TRUE(nSample == 32767 || nSample == -32768) << nSample;
  }
}

}  // namespace
}  // namespace heron
