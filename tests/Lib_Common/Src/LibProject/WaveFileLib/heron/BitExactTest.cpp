// SPDX-License-Identifier: Apache-2.0
//
// The bytes and samples that every machine and compiler must produce. If these numbers change, the
// format has changed: existing streams would sound different, or not at all.
#include <gtest/gtest.h>

#include <array>
#include <cinttypes>
#include <cstdio>
#include <string>

#include "Signals.h"
#include "heron/SoundCoder.h"

namespace heron {
namespace {

// A 64-bit FNV-1a checksum.
class C_Checksum {
 public:
  void Add(std::uint8_t byByte) { m_qwSum = (m_qwSum ^ byByte) * 0x100000001B3u; }
  template <typename Value>
  void AddAll(const std::vector<Value>& values) {
    for (const Value value : values) {
      for (std::size_t n = 0; n < sizeof(Value); ++n) {
        Add(static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * n)));
      }
    }
  }
  [[nodiscard]] std::uint64_t Sum() const { return m_qwSum; }

 private:
  std::uint64_t m_qwSum = 0xCBF29CE484222325u;
};

// Square waves of three pitches with noise, whose loudness changes in steps. They are made with
// integers only.
test::S_Sound IntegerSound(std::size_t nSamples) {
  test::C_Random random(7);
  test::S_Sound sound(nSamples);
  for (std::size_t n = 0; n < nSamples; ++n) {
    const int nLoudness = 1 << (n / 500 % 12);
    const int nWaves =
        (n / 23 % 2 == 0 ? 2 : -2) + (n / 31 % 2 == 0 ? 3 : -3) + (n / 9 % 2 == 0 ? 1 : -1);
    sound[n] =
        static_cast<std::int16_t>(nWaves * nLoudness + static_cast<int>(random.Below(64)) - 32);
  }
  return sound;
}

struct S_Sums {
  std::uint64_t qwCoded = 0;
  std::uint64_t qwDecoded = 0;
};

S_Sums SumsAt(int nSampleRate) {
  C_Checksum coded;
  C_Checksum decoded;
  for (int nBitDepth = kMinBitDepth; nBitDepth <= kMaxBitDepth; ++nBitDepth) {
    std::vector<std::uint8_t> bytes;
    test::S_Sound samples;
    EXPECT_TRUE(EncodeSamples(IntegerSound(6007), nSampleRate, nBitDepth, &bytes, {}));
    EXPECT_TRUE(DecodeSamples(bytes, nSampleRate, &samples));
    coded.AddAll(bytes);
    decoded.AddAll(samples);
  }
  return {coded.Sum(), decoded.Sum()};
}

// As the pins below are written, so that a failure prints the new ones.
std::string Hex(std::uint64_t qwSum) {
  std::array<char, 19> szText{};
  static_cast<void>(std::snprintf(szText.data(), szText.size(), "0x%016" PRIX64, qwSum));
  return szText.data();
}

TEST(HeronBitExact, Streams_ArePinnedAt8kHz) {
  const S_Sums sums = SumsAt(8000);
  EXPECT_EQ(Hex(sums.qwCoded), "0xF110E33AC77CD496");
  EXPECT_EQ(Hex(sums.qwDecoded), "0x72C7D0355001BF0A");
}

TEST(HeronBitExact, Streams_ArePinnedAt11025Hz) {
  const S_Sums sums = SumsAt(11025);
  EXPECT_EQ(Hex(sums.qwCoded), "0xDDD87A89450B8032");
  EXPECT_EQ(Hex(sums.qwDecoded), "0x9D206C7E81FE160E");
}

TEST(HeronBitExact, Streams_ArePinnedAt48kHz) {
  const S_Sums sums = SumsAt(48000);
  EXPECT_EQ(Hex(sums.qwCoded), "0x014EFC7C296B739A");
  EXPECT_EQ(Hex(sums.qwDecoded), "0x57BCD385AC9E37CF");
}

}  // namespace
}  // namespace heron
