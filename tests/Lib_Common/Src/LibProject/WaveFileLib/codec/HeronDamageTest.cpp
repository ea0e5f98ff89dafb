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
// VOXPLAY_HERON_STREAMS overrides it. 50000 makes 100,000 streams of each kind.
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

class HeronDamage : public testing::TestWithParam<S_Kind> {};

TEST_P(HeronDamage, DamagedStreams_EndInSamplesOrARefusal) {
  C_Damage damage(static_cast<unsigned int>(GetParam().nBitDepth));
  const Bytes whole = C_HeronBytes(GetParam(), TestVoice(250), 4000).Take();
  for (int i = 0; i < CountStreams(); ++i) {
    const Bytes stream = damage.Of(whole);
    const auto samples = Decoded(stream, 4000);
    if (i % 16 == 0) {
      ASSERT_EQ(samples, Decoded(stream, 4000)) << i;
    }
  }
}

TEST_P(HeronDamage, NoiseAfterAHead_EndsInSamplesOrARefusal) {
  C_Damage damage(77u + static_cast<unsigned int>(GetParam().nBitDepth));
  const C_HeronBytes stream(GetParam(), TestVoice(10), 4000);
  for (int i = 0; i < CountStreams(); ++i) {
    const Bytes noise = damage.Noise(damage.Below(120));
    const auto samples = Decoded(C_HeronBytes(stream).Coded(noise).Take(), 4000);
    if (samples) {
      ASSERT_FALSE(samples->empty());
    }
  }
}

TEST_P(HeronDamage, StreamCutAtEachByte_EndsInSamplesOrARefusal) {
  for (const int nRate : {4000, 8000, 11025, 44100, 48000}) {
    const C_HeronBytes stream(GetParam(), TestVoice(1500), nRate);
    const std::size_t cbWhole = stream.Take().size();
    for (std::size_t cbSize = 0; cbSize < cbWhole; cbSize += cbSize < 64 ? 1 : 37) {
      const auto samples = Decoded(stream.Take(cbSize), static_cast<unsigned int>(nRate));
      if (samples) {
        ASSERT_FALSE(samples->empty()) << cbSize;
      }
    }
  }
}

TEST_P(HeronDamage, StreamOfOneRepeatedByte_EndsInSamplesOrARefusal) {
  for (int nByte = 0; nByte < 256; ++nByte) {
    const auto stream = C_HeronBytes(GetParam(), TestVoice(10), 4000)
                            .Coded(Bytes(200, static_cast<std::uint8_t>(nByte)))
                            .Take();
    const auto samples = Decoded(stream, 4000);
    if (samples) {
      ASSERT_FALSE(samples->empty()) << nByte;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Kinds, HeronDamage, testing::ValuesIn(kKinds), heron::test::NameOf);

}  // namespace
