// SPDX-License-Identifier: Apache-2.0
//
// Sounds take no more than their room, and nearly all of it.
#include "heron/RateControl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "Instructions.h"
#include "Signals.h"
#include "heron/Configuration.h"
#include "heron/Decoder.h"

namespace heron {
namespace {

using S_Bytes = std::vector<std::uint8_t>;
using test::S_Sound;

constexpr std::array kRates = {4000, 8000, 11025, 16000, 48000};

S_Bytes Encode(const S_Sound& sound, int nSampleRate, int nBitDepth) {
  S_Bytes coded;
  const auto fnWrite = [&](std::span<const std::uint8_t> bytes) {
    coded.insert(coded.end(), bytes.begin(), bytes.end());
    return true;
  };
  EXPECT_TRUE(EncodeWithin(sound, nSampleRate, nBitDepth, fnWrite, {}));
  return coded;
}

// Expects that the sound fits its room and comes back in its length.
S_Bytes EncodeWithinItsRoom(const S_Sound& sound, int nSampleRate, int nBitDepth) {
  S_Bytes coded = Encode(sound, nSampleRate, nBitDepth);
  EXPECT_LE(coded.size(), CodedRoom(sound.size(), nBitDepth));
  auto decoder = C_Decoder::Open(coded, nSampleRate);
  EXPECT_TRUE(decoder && decoder->SampleCount() == sound.size());
  if (decoder) {
    S_Sound decoded(decoder->SampleCount());
    EXPECT_TRUE(decoder->DecodeAll(decoded));
  }
  return coded;
}

// ---- the room

TEST(HeronRoom, OfLongSounds_IsTheirBits) {
  for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
    for (const std::size_t nSamples : {512u, 513u, 1000u, 4294967295u}) {
      EXPECT_EQ(CodedRoom(nSamples, nBitDepth),
                nSamples * static_cast<std::size_t>(nBitDepth) / 8 - kHeadBytes)
          << nSamples << ' ' << nBitDepth;
    }
  }
}

TEST(HeronRoom, OfShortSounds_IsALittleMore) {
  for (std::size_t nSamples = 1; nSamples < 512; ++nSamples) {
    for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
      const std::size_t nByDepth = nSamples * static_cast<std::size_t>(nBitDepth) / 8;
      const std::size_t nShort = std::min<std::size_t>(16 + nSamples / 4, 128);
      EXPECT_EQ(CodedRoom(nSamples, nBitDepth) + kHeadBytes, std::max(nByDepth, nShort))
          << nSamples << ' ' << nBitDepth;
    }
  }
}

TEST(HeronRoom, OfMoreSamples_IsNeverLess) {
  for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
    for (std::size_t nSamples = 1; nSamples < 2000; ++nSamples) {
      EXPECT_GE(CodedRoom(nSamples + 1, nBitDepth), CodedRoom(nSamples, nBitDepth));
    }
  }
}

class HeronRoomOfRates : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(Hertz, HeronRoomOfRates, testing::ValuesIn(kRates));

TEST_P(HeronRoomOfRates, ShortSounds_StayWithinIt) {
  // One kind of sound and one depth for each length, so that neighbours have others.
  std::size_t nKind = 0;
  for (std::size_t nSamples = 1; nSamples <= 2000; nSamples += 1 + nSamples / 8) {
    for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; nBitDepth += 2) {
      const auto sounds = test::SoundsOf(nSamples);
      const auto& [strName, sound] = sounds[nKind++ % sounds.size()];
      SCOPED_TRACE(strName + ' ' + std::to_string(nSamples) + ' ' + std::to_string(nBitDepth));
      EncodeWithinItsRoom(sound, GetParam(), nBitDepth);
    }
  }
}

TEST_P(HeronRoomOfRates, SoundsAroundSectionsAndPortions_StayWithinIt) {
  std::size_t nKind = 0;
  const std::size_t nMost = GetParam() == 48000 ? 11 : 41;
  for (const std::size_t nSections : {1u, 2u, 4u, 5u, 10u, 11u, 29u, 30u, 31u, 40u, 41u}) {
    if (nSections > nMost) continue;
    for (const int nOff : {-1, 0, 1}) {
      const std::size_t nSamples =
          nSections * SectionLength(GetParam()) + static_cast<std::size_t>(nOff);
      const auto sounds = test::SoundsOf(nSamples);
      const int nBitDepth = kMinBitDepth + static_cast<int>(nKind % 5);
      const auto& [strName, sound] = sounds[nKind++ % sounds.size()];
      SCOPED_TRACE(strName + ' ' + std::to_string(nSamples) + ' ' + std::to_string(nBitDepth));
      EncodeWithinItsRoom(sound, GetParam(), nBitDepth);
    }
  }
}

TEST(HeronRoom, SoundsAroundBlocks_StayWithinIt) {
  std::size_t nKind = 0;
  for (const std::size_t nSections : {99u, 100u, 129u, 130u, 131u, 200u, 211u}) {
    for (const int nOff : {-1, 0, 1}) {
      const std::size_t nSamples = nSections * SectionLength(4000) + static_cast<std::size_t>(nOff);
      const auto sounds = test::SoundsOf(nSamples);
      const int nBitDepth = kMinBitDepth + static_cast<int>(nKind % 5);
      const auto& [strName, sound] = sounds[nKind++ % sounds.size()];
      SCOPED_TRACE(strName + ' ' + std::to_string(nSamples) + ' ' + std::to_string(nBitDepth));
      EncodeWithinItsRoom(sound, 4000, nBitDepth);
    }
  }
}

TEST(HeronRoom, SoundsOfRandomPieces_StayWithinIt) {
  // Pieces of 1 sample to 2 s, from silence to full scale, noise, tones and clicks.
  for (std::uint64_t qwSeed = 1; qwSeed <= 60; ++qwSeed) {
    test::C_Random random(qwSeed);
    S_Sound sound;
    for (std::uint32_t nPieces = 1 + random.Below(6); nPieces > 0; --nPieces) {
      const std::size_t nEnd = sound.size() + 1 + random.Below(1 << random.Below(14));
      const std::int64_t nLoudest = (std::int64_t{1} << random.Below(16)) - 1;
      const std::size_t nKind = random.Below(3);
      const std::size_t nHalfPeriod = 1 + random.Below(100);
      while (sound.size() < nEnd) {
        std::int64_t nValue = random.Between(-nLoudest, nLoudest);
        if (nKind == 1) nValue = sound.size() / nHalfPeriod % 2 == 0 ? nLoudest : -nLoudest;
        if (nKind == 2 && random.Below(50) != 0) nValue = 0;
        sound.push_back(static_cast<std::int16_t>(nValue));
      }
    }
    const int nBitDepth = kMinBitDepth + static_cast<int>(qwSeed % 5);
    SCOPED_TRACE(qwSeed);
    EncodeWithinItsRoom(sound, qwSeed % 2 == 0 ? 4000 : 8000, nBitDepth);
  }
}

// ---- sounds that are hard to foresee

std::int16_t Loud(test::C_Random& random, std::int64_t nMost) {
  return static_cast<std::int16_t>(random.Between(-nMost, nMost));
}
// Sound k of ten: noise, clicks, pulses, tones, extremes and silence.
std::int16_t SampleOf(std::size_t nKind, std::size_t n, test::C_Random& random) {
  constexpr int kMost = 32767;
  switch (nKind) {
    case 0:
      return Loud(random, kMost);
    case 1:
      return Loud(random, 100);
    case 2:
      return random.Below(17) == 0 ? Loud(random, kMost) : std::int16_t{0};
    case 3:
      return static_cast<std::int16_t>(10000 * std::sin(0.3 * static_cast<double>(n)));
    case 4:
      return random.Below(2) == 0 ? kMost : -kMost;
    case 5:
      return random.Below(100) == 0 ? kMost : std::int16_t{0};
    case 6:
      return Loud(random, 3000);
    case 7:
      return n % 37 == 0 ? Loud(random, 20000) : std::int16_t{0};
    case 8:
      return n % 80 < 2 ? 20000 : 0;
    default:
      return 0;
  }
}
TEST(HeronRoom, OneKindOfSoundAfterAnother_StaysWithinItAndIsHeard) {
  constexpr int kRate = 4000;
  for (std::size_t nPair = 0; nPair < 100; ++nPair) {
    for (const std::size_t nSections : {45u, 130u}) {
      for (const int nBitDepth : {2, 4}) {
        test::C_Random random(1);
        S_Sound sound(nSections * SectionLength(kRate));
        for (std::size_t n = 0; n < sound.size(); ++n) {
          const std::size_t nKind = n < sound.size() / 2 ? nPair / 10 : nPair % 10;
          sound[n] = SampleOf(nKind, n, random);
        }
        const S_Bytes coded = EncodeWithinItsRoom(sound, kRate, nBitDepth);
        S_Sound decoded(sound.size());
        C_Decoder::Open(coded, kRate)->DecodeAll(decoded);
        EXPECT_GT(test::SignalToNoise(sound, decoded), 5) << nPair << ' ' << nSections;
      }
    }
  }
}

TEST_P(HeronRoomOfRates, TheSoftestClick_ComesBack) {
  test::C_Random random(2);
  for (int n = 0; n < 100; ++n) {
    S_Sound sound(100 + random.Below(5000));
    sound[random.Below(static_cast<unsigned int>(sound.size()))] = n % 2 == 0 ? 1 : -1;
    const S_Bytes coded = EncodeWithinItsRoom(sound, GetParam(), 2 + n % 5);
    S_Sound decoded(sound.size());
    C_Decoder::Open(coded, GetParam())->DecodeAll(decoded);
    EXPECT_EQ(decoded, sound) << n;
  }
}

// ---- how full it is

double FillOf(const S_Sound& sound, int nSampleRate, int nBitDepth) {
  const S_Bytes coded = EncodeWithinItsRoom(sound, nSampleRate, nBitDepth);
  return static_cast<double>(coded.size()) /
         static_cast<double>(CodedRoom(sound.size(), nBitDepth));
}

TEST_P(HeronRoomOfRates, VoicesAndNoiseOfASecondAndMore_FillIt) {
  const auto nSecond = static_cast<std::size_t>(GetParam());
  int nBitDepth = kMinBitDepth;
  for (const std::size_t nSamples : {nSecond + 1, nSecond * 6 / 5, nSecond * 3 / 2}) {
    for (int n = 0; n < 2; ++n) {
      EXPECT_GE(FillOf(TestVoice(nSamples), GetParam(), nBitDepth), 0.99)
          << nSamples << ' ' << nBitDepth;
      // Steady noise changes all its step indices at about the same offset.
      EXPECT_GE(FillOf(test::Noise(nSamples), GetParam(), nBitDepth), nBitDepth == 2 ? 0.98 : 0.99)
          << nSamples << ' ' << nBitDepth;
      nBitDepth = nBitDepth == kMaxBitDepth ? kMinBitDepth : nBitDepth + 1;
    }
  }
}

TEST(HeronRoom, VoicesAndNoiseOfSeveralBlocks_FillIt) {
  for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
    const std::size_t nSamples = 35000 + 700 * static_cast<std::size_t>(nBitDepth);
    EXPECT_GE(FillOf(TestVoice(nSamples), 4000, nBitDepth), 0.99) << nBitDepth;
    EXPECT_GE(FillOf(test::Noise(nSamples), 4000, nBitDepth), nBitDepth == 2 ? 0.98 : 0.99)
        << nBitDepth;
  }
}

TEST(HeronRoom, SteadyTones_FillItAndComeBackAlmostWhole) {
  for (const double dTurns : {0.01, 0.0625, 0.11, 0.25, 0.4}) {
    for (const std::size_t nSamples : {5000u, 20000u}) {
      S_Sound tone(nSamples);
      for (std::size_t n = 0; n < nSamples; ++n) {
        const double dAngle = 2 * std::numbers::pi * dTurns * static_cast<double>(n);
        tone[n] = static_cast<std::int16_t>(std::lround(20000 * std::sin(dAngle)));
      }
      for (const int nBitDepth : {2, 4}) {
        const S_Bytes coded = EncodeWithinItsRoom(tone, 4000, nBitDepth);
        const double dFill =
            static_cast<double>(coded.size()) / static_cast<double>(CodedRoom(nSamples, nBitDepth));
        S_Sound decoded(nSamples);
        ASSERT_TRUE(C_Decoder::Open(coded, 4000)->DecodeAll(decoded));
        const double dRatio = test::SignalToNoise(tone, decoded);
        EXPECT_GT(dFill, 0.96) << dTurns << ' ' << nSamples << ' ' << nBitDepth;
        EXPECT_GT(dRatio, nBitDepth == 2 ? 68 : 87)
            << dTurns << ' ' << nSamples << ' ' << nBitDepth;
      }
    }
  }
}

// ---- writing and progress

// What writing with a failure gives.
struct S_Written {
  bool bDone;
  std::size_t nCalls;
  std::vector<std::size_t> progress;
};

S_Written WriteUntil(const S_Sound& sound, std::size_t nFailing) {
  S_Written written{false, 0, {}};
  written.bDone = EncodeWithin(
      sound, 4000, 2,
      [&](std::span<const std::uint8_t> bytes) {
        EXPECT_FALSE(bytes.empty());
        return written.nCalls++ != nFailing;
      },
      [&](std::size_t nDone) { written.progress.push_back(nDone); });
  return written;
}

constexpr std::size_t kNever = 1000000;

TEST(HeronWriting, AFailedWrite_IsTheLast) {
  for (const std::size_t nSamples : {1u, 5000u, 16001u, 37000u}) {
    const S_Sound voice = TestVoice(nSamples);
    const S_Written whole = WriteUntil(voice, kNever);
    EXPECT_TRUE(whole.bDone);
    for (std::size_t nFailing = 0; nFailing < whole.nCalls; ++nFailing) {
      const S_Written written = WriteUntil(voice, nFailing);
      EXPECT_FALSE(written.bDone) << nSamples << ' ' << nFailing;
      EXPECT_EQ(written.nCalls, nFailing + 1) << nSamples;
      EXPECT_LT(written.progress.size(), whole.progress.size()) << nSamples << ' ' << nFailing;
    }
  }
}

TEST(HeronWriting, Progress_RisesToAllSamples) {
  for (const std::size_t nSamples : {1u, 159u, 160u, 4801u, 16000u, 16001u, 33000u, 48000u}) {
    const S_Written written = WriteUntil(TestVoice(nSamples), kNever);
    EXPECT_TRUE(written.bDone);
    ASSERT_FALSE(written.progress.empty()) << nSamples;
    EXPECT_EQ(written.progress.size(), (nSamples + 15999) / 16000);
    EXPECT_EQ(written.progress.back(), nSamples);
    EXPECT_TRUE(std::ranges::is_sorted(written.progress, std::ranges::less_equal{}) ||
                written.progress.size() == 1)
        << nSamples;
  }
}

TEST(HeronWriting, WithoutProgress_GivesTheSame) {
  const S_Sound voice = TestVoice(17000);
  S_Bytes coded;
  EXPECT_TRUE(EncodeWithin(
      voice, 4000, 3,
      [&](std::span<const std::uint8_t> bytes) {
        coded.insert(coded.end(), bytes.begin(), bytes.end());
        return true;
      },
      [](std::size_t) {}));
  EXPECT_EQ(Encode(voice, 4000, 3), coded);
}

// ---- reading

// A section, a block, and a block and a half with a short last one.
TEST(HeronReading, Samples_AreReadTwiceFromFirstToLastInShortPieces) {
  const std::size_t nBlock = BlockLength(8000);
  for (const std::size_t nSamples : {std::size_t{1}, SectionLength(8000), nBlock,
                                     nBlock + nBlock / 2, nBlock + SectionLength(8000)}) {
    const S_Sound sound = TestVoice(nSamples);
    std::size_t nRead = 0;
    S_Bytes coded;
    const auto fnRead = [&](std::size_t nAt, std::span<std::int16_t> samples) {
      EXPECT_EQ(nAt, nRead % nSamples);
      EXPECT_LE(samples.size(), kMostAtOnce);
      std::copy_n(sound.begin() + static_cast<std::ptrdiff_t>(nAt), samples.size(),
                  samples.begin());
      nRead += samples.size();
      return true;
    };
    const auto fnWrite = [&](std::span<const std::uint8_t> bytes) {
      coded.insert(coded.end(), bytes.begin(), bytes.end());
      return true;
    };
    EXPECT_TRUE(EncodeWithin(nSamples, fnRead, 8000, 4, fnWrite, {}));
    EXPECT_EQ(nRead, 2 * nSamples);
    EXPECT_EQ(coded, Encode(sound, 8000, 4));
  }
}

TEST(HeronReading, AFailedRead_IsTheLast) {
  const std::size_t nSamples = 2 * BlockLength(4000) + SectionLength(4000);
  const std::size_t nReads = 2 * 3 * (BlockLength(4000) / kMostAtOnce + 1);
  for (std::size_t nFailing = 1; nFailing <= nReads; ++nFailing) {
    std::size_t nCalls = 0;
    const auto fnRead = [&](std::size_t, std::span<std::int16_t> samples) {
      std::ranges::fill(samples, std::int16_t{1000});
      return ++nCalls != nFailing;
    };
    const bool bCoded = EncodeWithin(nSamples, fnRead, 4000, 2,
                                     [](std::span<const std::uint8_t>) { return true; }, {});
    EXPECT_EQ(bCoded, nCalls < nFailing);
    EXPECT_LE(nCalls, nFailing);
  }
}

// ---- instructions

TEST(HeronRoom, AllInstructions_GiveTheSameBytes) {
  const test::C_InstructionsKept kept;
  for (const auto& [strName, sound] : test::SoundsOf(10000)) {
    for (const int nSampleRate : {4000, 48000}) {
      std::vector<S_Bytes> all;
      for (const vcm::tagInstructions eInstructions : test::kAllInstructions) {
        vcm::LimitInstructions(eInstructions);
        all.push_back(Encode(sound, nSampleRate, 3));
      }
      EXPECT_EQ(all[1], all[0]) << strName << ' ' << nSampleRate;
      EXPECT_EQ(all[2], all[0]) << strName << ' ' << nSampleRate;
    }
  }
}

}  // namespace
}  // namespace heron
