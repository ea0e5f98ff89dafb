// SPDX-License-Identifier: Apache-2.0
#include "heron/FrameCoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "TestVoice.h"

namespace {

using S_Bytes = std::vector<std::uint8_t>;
using S_Sound = std::vector<std::int16_t>;

S_Bytes Encode(const S_Sound& sound, int nSampleRate, int nBitDepth) {
  S_Bytes coded;
  EXPECT_TRUE(heron::EncodeSamples(sound, nSampleRate, nBitDepth, &coded, {}));
  return coded;
}

S_Sound Decode(const S_Bytes& coded, int nSampleRate) {
  S_Sound sound;
  EXPECT_TRUE(heron::DecodeSamples(coded, nSampleRate, &sound));
  return sound;
}

// dB; 200 for equal sounds.
double SignalToNoise(const S_Sound& sound, const S_Sound& decoded) {
  double dSignal = 0;
  double dNoise = 0;
  for (std::size_t i = 0; i < sound.size(); ++i) {
    dSignal += static_cast<double>(sound[i]) * sound[i];
    dNoise += std::pow(sound[i] - decoded[i], 2);
  }
  return dNoise == 0 ? 200 : 10 * std::log10(dSignal / dNoise);
}

class HeronDepths : public testing::TestWithParam<int> {};
INSTANTIATE_TEST_SUITE_P(TwoToSix, HeronDepths, testing::Range(2, 7));

TEST_P(HeronDepths, FillButDoNotExceedTheirBitsPerSample) {
  const auto voice = TestVoice(48000);
  const std::size_t nMost = voice.size() * static_cast<std::size_t>(GetParam()) / 8;
  const std::size_t nSize = Encode(voice, 16000, GetParam()).size() + heron::kHeadBytes;
  EXPECT_LE(nSize, nMost);
  EXPECT_GE(nSize, nMost - nMost / 128);
}

TEST_P(HeronDepths, GiveTheSoundBackInItsPlaceAndLength) {
  // Twelve samples more than whole frames.
  const auto voice = TestVoice(32012);
  const auto decoded = Decode(Encode(voice, 16000, GetParam()), 16000);
  ASSERT_EQ(decoded.size(), voice.size());
  EXPECT_GT(SignalToNoise(voice, decoded), 14 + 6 * GetParam());
}

}  // namespace
