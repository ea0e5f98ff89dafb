// SPDX-License-Identifier: Apache-2.0
//
// Heron streams that are damaged or cut, and bytes that were never a stream. Decoding always ends,
// with samples or without, and depends on nothing but the bytes.
#include <gtest/gtest.h>
#include <stdlib.h>  // NOLINT(modernize-deprecated-headers): getenv

#include <random>
#include <string>

#include "HeronBytes.h"

namespace {

using heron::test::Bytes;
using heron::test::Decoded;
using heron::test::kKinds;
using heron::test::S_Kind;

// The number of streams per test and kind. The default fits into a run of all tests;
// VOXPLAY_HERON_STREAMS overrides it.
int CountStreams() {
  const char* pszCount = getenv("VOXPLAY_HERON_STREAMS");
  return pszCount == nullptr ? 2000 : std::stoi(pszCount);
}

class C_Damage {
 public:
  explicit C_Damage(unsigned int dwSeed) : m_engine(dwSeed) {}

  std::size_t Below(std::size_t dwBound) {
    return std::uniform_int_distribution<std::size_t>(0, dwBound - 1)(m_engine);
  }
  std::uint8_t Byte() { return static_cast<std::uint8_t>(Below(256)); }
  Bytes Noise(std::size_t cbNoise) {
    Bytes bytes(cbNoise);
    for (std::uint8_t& byValue : bytes) byValue = Byte();
    return bytes;
  }
  // Changes one to four bytes, and sometimes cuts off a part or adds noise at the end.
  Bytes Of(Bytes stream) {
    for (std::size_t i = Below(4) + 1; i > 0; --i) stream[Below(stream.size())] = Byte();
    if (Below(4) == 0) stream.resize(Below(stream.size()) + 1);
    if (Below(8) == 0) stream.push_back(Byte());
    return stream;
  }

 private:
  std::mt19937 m_engine;
};

// The coded audio of a sound of one block whose run is these bytes. With a wrong check, nothing of
// the run would be looked at.
Bytes WithRightCheck(std::size_t nSamples, const Bytes& run) {
  Bytes coded;
  heron::AppendCount(coded, nSamples);
  heron::AppendOnlyBlock(coded, run);
  return coded;
}

class HeronDamage : public testing::TestWithParam<S_Kind> {
 protected:
  // Decodes a stream of nSamples whose run is these bytes.
  void Try(std::size_t nSamples, const Bytes& run) {
    const auto samples = Decoded(m_stream.Coded(WithRightCheck(nSamples, run)).Take(), 4000);
    if (samples) {
      ASSERT_EQ(samples->size(), nSamples);
    }
    ++(samples ? m_nDecoded : m_nRefused);
  }

  static constexpr std::size_t kSamples = 250;
  const Bytes m_coded = heron::test::Coded(TestVoice(kSamples), 4000, GetParam().nBitDepth);
  C_HeronBytes m_stream{GetParam(), {1}, 4000};
  int m_nDecoded = 0;
  int m_nRefused = 0;
};

TEST_P(HeronDamage, DamagedStreams_EndInSamplesOrARefusal) {
  C_Damage damage(static_cast<unsigned int>(GetParam().nBitDepth));
  const Bytes whole = m_stream.Coded(m_coded).Take();
  for (int i = 0; i < CountStreams(); ++i) {
    const auto samples = Decoded(damage.Of(whole), 4000);
    if (samples) {
      ASSERT_FALSE(samples->empty());
    }
  }
}

TEST_P(HeronDamage, DamagedRunsWithRightChecks_EndInSamplesOrARefusal) {
  C_Damage damage(33u + static_cast<unsigned int>(GetParam().nBitDepth));
  // After the count, which has two bytes here, and the check.
  const Bytes run(m_coded.begin() + 2 + heron::kCheckBytes, m_coded.end());
  for (int i = 0; i < CountStreams(); ++i) {
    ASSERT_NO_FATAL_FAILURE(Try(kSamples, damage.Of(run))) << i;
  }
  EXPECT_GT(m_nDecoded, 0);
  EXPECT_GT(m_nRefused, 0);
}

TEST_P(HeronDamage, NoiseWithARightCheck_EndsInSamplesOrARefusal) {
  C_Damage damage(77u + static_cast<unsigned int>(GetParam().nBitDepth));
  for (int i = 0; i < CountStreams(); ++i) {
    ASSERT_NO_FATAL_FAILURE(Try(1 + damage.Below(600), damage.Noise(damage.Below(120)))) << i;
  }
  EXPECT_GT(m_nDecoded, 0);
  EXPECT_GT(m_nRefused, 0);
}

TEST_P(HeronDamage, RunOfOneRepeatedByte_EndsInSamplesOrARefusal) {
  for (int nByte = 0; nByte < 256; ++nByte) {
    for (const std::size_t cbRun : {1U, 8U, 9U, 200U}) {
      ASSERT_NO_FATAL_FAILURE(Try(kSamples, Bytes(cbRun, static_cast<std::uint8_t>(nByte))))
          << nByte << ", " << cbRun;
    }
  }
}

// What is decoded depends on nothing but the bytes, also when the run is nonsense.
TEST_P(HeronDamage, SameBytes_GiveTheSame) {
  C_Damage damage(11u + static_cast<unsigned int>(GetParam().nBitDepth));
  for (int i = 0; i < CountStreams() / 16; ++i) {
    const Bytes run = damage.Noise(damage.Below(60));
    const Bytes stream = m_stream.Coded(WithRightCheck(kSamples, run)).Take();
    const auto samples = Decoded(stream, 4000);
    static_cast<void>(Decoded(m_stream.Coded(m_coded).Take(), 4000));
    ASSERT_EQ(Decoded(stream, 4000), samples) << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, HeronDamage, testing::ValuesIn(kKinds), heron::test::NameOf);

}  // namespace
