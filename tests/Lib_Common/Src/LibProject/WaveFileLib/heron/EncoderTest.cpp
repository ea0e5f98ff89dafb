// SPDX-License-Identifier: Apache-2.0
//
// One pass of the encoder, the search for the offset that fills a size, and decoding frame by
// frame.
#include "heron/Encoder.h"

#include <gtest/gtest.h>

#include "Signals.h"
#include "heron/Configuration.h"
#include "heron/Decoder.h"
#include "heron/RateControl.h"

namespace heron {
namespace {

using S_Bytes = std::vector<std::uint8_t>;
using test::S_Sound;

// All frames of the stream, including what the last frame holds after the end of the sound.
S_Sound Frames(const S_Bytes& coded, int nSampleRate) {
  auto decoder = C_Decoder::Open(coded, nSampleRate);
  EXPECT_TRUE(decoder);
  S_Sound sound;
  S_Sound frame(decoder->Length());
  while (sound.size() < decoder->SampleCount()) {
    EXPECT_TRUE(decoder->DecodeFrame(frame));
    sound.insert(sound.end(), frame.begin(), frame.end());
  }
  return sound;
}

TEST(HeronEncoder, ACoarserOffset_GivesFewerBytesAndMoreNoise) {
  const S_Sound voice = TestVoice(8000);
  const C_Encoder encoder(voice, 16000);
  std::size_t nBefore = 1000000;
  double dBefore = 1000;
  for (int nOffset = -4096; nOffset <= 4096; nOffset += 1024) {
    const S_Bytes coded = encoder.Encode(nOffset, {});
    S_Sound decoded = Frames(coded, 16000);
    decoded.resize(voice.size());
    const double dRatio = test::SignalToNoise(voice, decoded);
    EXPECT_LT(coded.size(), nBefore) << nOffset;
    EXPECT_LT(dRatio, dBefore) << nOffset;
    nBefore = coded.size();
    dBefore = dRatio;
  }
}

TEST(HeronEncoder, OffsetsOutsideTheRange_GiveTheSameAsItsEnds) {
  const S_Sound voice = TestVoice(2000);
  const C_Encoder encoder(voice, 8000);
  EXPECT_EQ(encoder.Encode(C_Encoder::kFinestOffset - 1000, {}),
            encoder.Encode(C_Encoder::kFinestOffset, {}));
  EXPECT_EQ(encoder.Encode(C_Encoder::kCoarsestOffset + 1000, {}),
            encoder.Encode(C_Encoder::kCoarsestOffset, {}));
}

TEST(HeronEncoder, TheFinestOffset_GivesEverySampleBack) {
  const S_Sound voice = TestVoice(4000);
  S_Sound decoded = Frames(C_Encoder(voice, 8000).Encode(C_Encoder::kFinestOffset, {}), 8000);
  decoded.resize(voice.size());
  EXPECT_EQ(decoded, voice);
}

TEST(HeronEncoder, TheCoarsestOffset_GivesSilenceOfAByteAFrameOrMore) {
  const S_Bytes coded =
      C_Encoder(TestVoice(1000 * 80), 4000).Encode(C_Encoder::kCoarsestOffset, {});
  EXPECT_GE(coded.size(), 1000u);
  EXPECT_LT(coded.size(), 6000u);
}

TEST(HeronEncoder, APass_TellsAfter32FramesAndTheLast) {
  std::vector<unsigned int> heard;
  const S_Sound voice = TestVoice(70 * 160 - 1);
  const auto record = [&](unsigned int nFrames) { heard.push_back(nFrames); };
  EXPECT_FALSE(C_Encoder(voice, 8000).Encode(0, record).empty());
  EXPECT_EQ(heard, (std::vector<unsigned int>{32, 64, 70}));
}

TEST(HeronEncoder, SamplesAfterTheEnd_CountAsSilence) {
  S_Sound padded = TestVoice(1000);
  const S_Sound voice = padded;
  padded.resize(1120);  // seven frames
  S_Bytes coded = C_Encoder(voice, 8000).Encode(500, {});
  S_Bytes whole = C_Encoder(padded, 8000).Encode(500, {});
  // Both counts take two bytes.
  coded.erase(coded.begin(), coded.begin() + 2);
  whole.erase(whole.begin(), whole.begin() + 2);
  EXPECT_EQ(coded, whole);
}

TEST(HeronDecoder, Open_TellsSamplesAndTheirFrames) {
  const S_Sound voice = TestVoice(1234);
  const S_Bytes coded = C_Encoder(voice, 11025).Encode(0, {});
  const auto decoder = C_Decoder::Open(coded, 11025);
  ASSERT_TRUE(decoder);
  EXPECT_EQ(decoder->SampleCount(), 1234u);
  EXPECT_EQ(decoder->Length(), 220u);
  EXPECT_FALSE(C_Decoder::Open(coded, 3999));
  EXPECT_FALSE(C_Decoder::Open(coded, 48001));
  EXPECT_FALSE(C_Decoder::Open({}, 11025));
}

TEST(HeronDecoder, FramesAfterTheLast_AreRefusedInTheEnd) {
  const S_Bytes coded = C_Encoder(TestVoice(1600), 8000).Encode(0, {});
  auto decoder = C_Decoder::Open(coded, 8000);
  ASSERT_TRUE(decoder);
  S_Sound frame(decoder->Length());
  int nFrames = 0;
  while (nFrames < 10000 && decoder->DecodeFrame(frame)) ++nFrames;
  EXPECT_GE(nFrames, 10);
  EXPECT_LT(nFrames, 10000);
}

TEST(HeronRateControl, SizesOfManySounds_AreFilledToAThousandth) {
  for (const auto& sound : {TestVoice(30000), test::Noise(30000)}) {
    for (const int nBitDepth : {2, 3, 4, 5, 6}) {
      const std::size_t nMost = sound.size() * static_cast<std::size_t>(nBitDepth) / 8 - kHeadBytes;
      const std::size_t nSize = EncodeWithin(sound, 8000, nBitDepth, {}).size();
      EXPECT_LE(nSize, nMost) << nBitDepth;
      EXPECT_GE(nSize, nMost - nMost / 200) << nBitDepth;
    }
  }
}

TEST(HeronRateControl, ASteadyTone_FillsItsSize) {
  // All frames are equally loud. No offset may make them all change their steps at once.
  S_Sound tone(16000);
  for (std::size_t n = 0; n < tone.size(); ++n) {
    tone[n] =
        static_cast<std::int16_t>(std::lround(9000 * std::sin(0.31 * static_cast<double>(n))));
  }
  const std::size_t nMost = 16000 * 4 / 8 - kHeadBytes;
  const std::size_t nSize = EncodeWithin(tone, 8000, 4, {}).size();
  EXPECT_LE(nSize, nMost);
  EXPECT_GE(nSize, nMost - nMost / 50);
}

}  // namespace
}  // namespace heron
