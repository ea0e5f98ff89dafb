// SPDX-License-Identifier: Apache-2.0
//
// Bytes that no encoder wrote are either refused or decoded to some sound; nothing worse happens.
#include <gtest/gtest.h>

#include "Signals.h"
#include "heron/Block.h"
#include "heron/Configuration.h"
#include "heron/SampleCount.h"
#include "heron/SoundCoder.h"

namespace heron {
namespace {

using S_Bytes = std::vector<std::uint8_t>;
using test::C_Random;
using test::S_Sound;

S_Bytes Encode(const S_Sound& sound, int nSampleRate, int nBitDepth) {
  S_Bytes coded;
  EXPECT_TRUE(EncodeSamples(sound, nSampleRate, nBitDepth, &coded, {}));
  return coded;
}

bool IsRefused(const S_Bytes& coded, int nSampleRate = 8000) {
  S_Sound sound = {1, 2, 3};
  if (DecodeSamples(coded, nSampleRate, &sound)) return false;
  EXPECT_EQ(sound, (S_Sound{1, 2, 3}));
  return true;
}

S_Bytes WithZeros(S_Bytes head, std::size_t nZeros) {
  head.resize(head.size() + nZeros);
  return head;
}

// ---- the count of samples

TEST(HeronCount, NoBytesAndNoEnd_AreRefused) {
  EXPECT_TRUE(IsRefused({}));
  EXPECT_TRUE(IsRefused({0x80}));
  EXPECT_TRUE(IsRefused({0xFF}));
  EXPECT_TRUE(IsRefused({0x80, 0x80, 0x80, 0x80}));
  EXPECT_TRUE(IsRefused(WithZeros({0xFF, 0xFF, 0xFF, 0xFF, 0xFF}, 100)));
}

// The coded audio of a sound of one block whose run is these bytes. With a wrong check, nothing of
// the run would be looked at.
S_Bytes WithRightCheck(S_Bytes count, const S_Bytes& run) {
  AppendOnlyBlock(count, run);
  return count;
}

TEST(HeronCount, Zero_IsRefusedInEveryLength) {
  // This run is silence.
  const S_Bytes coded = Encode(S_Sound(1), 8000, 2);
  const S_Bytes run(coded.begin() + 1 + kCheckBytes, coded.end());
  EXPECT_FALSE(IsRefused(WithRightCheck({1}, run)));
  EXPECT_FALSE(IsRefused(WithRightCheck({0x81, 0x80, 0x80, 0x80, 0}, run)));
  EXPECT_TRUE(IsRefused(WithRightCheck({0}, run)));
  EXPECT_TRUE(IsRefused(WithRightCheck({0x80, 0}, run)));
  EXPECT_TRUE(IsRefused(WithRightCheck({0x80, 0x80, 0x80, 0x80, 0}, run)));
}

TEST(HeronCount, CountsWithoutAWholeBlock_AreRefused) {
  // 2^32-1 samples in few bytes and in 100,000 bytes. Then counts without a whole check after them.
  EXPECT_TRUE(IsRefused({0xFF, 0xFF, 0xFF, 0xFF, 0x0F}));
  EXPECT_TRUE(IsRefused(WithZeros({0xFF, 0xFF, 0xFF, 0xFF, 0x0F}, 100000)));
  EXPECT_TRUE(IsRefused({0xA1, 0x03, 0}));
  EXPECT_TRUE(IsRefused({1}));
}

TEST(HeronCount, EverySoundsOwn_IsItsLengthInGroupsOfSevenBits) {
  EXPECT_EQ(Encode(S_Sound(1), 8000, 2).front(), 1);
  EXPECT_EQ(Encode(S_Sound(127), 8000, 2).front(), 127);
  const S_Bytes coded = Encode(S_Sound(5000), 8000, 2);  // 39 * 128 + 8
  EXPECT_EQ(coded[0], 0x88);
  EXPECT_EQ(coded[1], 39);
}

TEST(HeronCount, AnotherThanTheBlockIsFor_IsRefused) {
  S_Bytes coded = Encode(TestVoice(1000), 8000, 4);  // four sections
  coded[0] = 0x80 | 44;
  coded[1] = 3;  // 428: two sections
  EXPECT_TRUE(IsRefused(coded));
  coded[1] = 30;  // 3884: 13 sections
  EXPECT_TRUE(IsRefused(coded));
}

// ---- the blocks

TEST(HeronOnlyBlock, Truncated_IsRefused) {
  const S_Bytes coded = Encode(TestVoice(400), 4000, 4);
  ASSERT_GT(coded.size(), 150u);
  for (std::size_t nKept = 0; nKept < coded.size(); ++nKept) {
    const S_Bytes cut(coded.begin(), coded.begin() + static_cast<std::ptrdiff_t>(nKept));
    EXPECT_TRUE(IsRefused(cut, 4000)) << nKept;
  }
}

// A rate, and how many streams of each kind to try there.
struct S_Trial {
  int nSampleRate;
  int nStreams;
};

class HeronStreams : public testing::TestWithParam<S_Trial> {
 protected:
  // Decodes the stream. The output must have the length that the stream claims.
  void Try(const S_Bytes& coded, std::size_t nCount) {
    S_Sound sound;
    const bool bDecoded = DecodeSamples(coded, GetParam().nSampleRate, &sound);
    ASSERT_EQ(sound.size(), bDecoded ? nCount : 0);
    ++(bDecoded ? m_nDecoded : m_nRefused);
  }
  int m_nDecoded = 0;
  int m_nRefused = 0;
};

INSTANTIATE_TEST_SUITE_P(Rates, HeronStreams,
                         testing::Values(S_Trial{4000, 24000}, S_Trial{4799, 5000},
                                         S_Trial{8000, 6000}, S_Trial{11025, 700},
                                         S_Trial{48000, 300}),
                         [](const auto& trial) {
                           return std::to_string(trial.param.nSampleRate) + "Hz";
                         });

TEST_P(HeronStreams, OfRandomRuns_AreRefusedOrDecoded) {
  C_Random random(1);
  for (int n = 0; n < GetParam().nStreams; ++n) {
    const std::uint32_t nCount = 1 + random.Below(127);
    S_Bytes run(1 + random.Below(60));
    for (std::uint8_t& byByte : run) byByte = random.Byte();
    if (n % 2 == 0) run.resize(run.size() + random.Below(40));
    ASSERT_NO_FATAL_FAILURE(Try(WithRightCheck({static_cast<std::uint8_t>(nCount)}, run), nCount));
  }
  EXPECT_GT(m_nRefused, 0);
  EXPECT_GT(m_nDecoded, 0);
}

// Damages the bytes in one of five ways.
void Damage(C_Random& random, S_Bytes& coded) {
  const auto at = [&] {
    return coded.begin() + 1 + random.Below(static_cast<std::uint32_t>(coded.size() - 1));
  };
  switch (random.Below(5)) {
    case 0:
      *at() ^= static_cast<std::uint8_t>(1u << random.Below(8));
      return;
    case 1:
      *at() = random.Byte();
      return;
    case 2:
      coded.erase(at());
      return;
    case 3:
      coded.insert(at(), random.Byte());
      return;
    default:
      std::fill_n(at(), 1, random.Below(2) == 0 ? std::uint8_t{0} : std::uint8_t{0xFF});
      return;
  }
}

TEST_P(HeronStreams, ThatAreDamaged_AreRefusedOrDecoded) {
  C_Random random(2);
  std::vector<S_Bytes> streams;
  for (const std::size_t nSamples : {20u, 100u, 127u}) {
    for (const auto& [strName, samples] : test::SoundsOf(nSamples)) {
      streams.push_back(Encode(samples, GetParam().nSampleRate, 5));
    }
  }
  for (int n = 0; n < GetParam().nStreams; ++n) {
    S_Bytes coded = streams[random.Below(static_cast<std::uint32_t>(streams.size()))];
    const std::size_t nCount = coded[0];
    for (std::uint32_t nHarms = 1 + random.Below(4); nHarms > 0 && coded.size() > 4; --nHarms) {
      Damage(random, coded);
    }
    ASSERT_NO_FATAL_FAILURE(Try(coded, nCount));
  }
  // The check finds damage but for one time in 65536; some damage leaves the bytes as they were.
  EXPECT_LT(m_nDecoded, m_nRefused / 20);
}

// ---- blocks

TEST(HeronSoundsInBlocks, ThatAreMostlyMissing_AreRefused) {
  constexpr int kRate = 48000;
  S_Bytes coded;
  AppendCount(coded, 400 * BlockLength(kRate));
  AppendBlock(coded, 100, {});
  AppendBlock(coded, 227, {});
  EXPECT_TRUE(IsRefused(coded, kRate));
}

}  // namespace
}  // namespace heron
