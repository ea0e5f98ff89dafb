// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

#include "PublicSounds.h"
#include "kestrel/FrameCoder.h"
#include "voxplay.hpp"

namespace {

using Words = std::array<std::uint16_t, VOXPLAY_KESTREL_MAX_WORDS>;
using Samples = std::array<std::int16_t, VOXPLAY_KESTREL_FRAME>;

Samples FrameOf(const std::vector<std::int16_t>& samples, std::size_t nFrame) {
  Samples frame;
  const auto first = samples.begin() + static_cast<std::ptrdiff_t>(nFrame * frame.size());
  std::copy(first, first + VOXPLAY_KESTREL_FRAME, frame.begin());
  return frame;
}

TEST(KestrelCallsTest, Words_AreThoseOfTheRate) {
  EXPECT_EQ(voxplay_kestrel_words(4800), 6U);
  EXPECT_EQ(voxplay_kestrel_words(16000), 20U);
  EXPECT_EQ(voxplay_kestrel_words(32000), 40U);
  EXPECT_EQ(voxplay_kestrel_words(7300), 0U);
  EXPECT_EQ(voxplay_kestrel_words(4000), 0U);
  EXPECT_EQ(voxplay_kestrel_words(32800), 0U);
  EXPECT_EQ(voxplay_kestrel_words(0), 0U);
  EXPECT_EQ(voxplay_kestrel_encoder_new(7300), nullptr);
  EXPECT_EQ(voxplay_kestrel_decoder_new(0), nullptr);
}

TEST(KestrelCallsTest, NullPointers_AreBadArguments) {
  Words words{};
  Samples samples{};
  auto* const pEncoder = voxplay_kestrel_encoder_new(16000);
  auto* const pDecoder = voxplay_kestrel_decoder_new(16000);
  EXPECT_EQ(voxplay_kestrel_encode(nullptr, samples.data(), words.data()), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_kestrel_encode(pEncoder, nullptr, words.data()), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_kestrel_encode(pEncoder, samples.data(), nullptr), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_kestrel_decode(nullptr, words.data(), samples.data()), VOXPLAY_BAD_ARGUMENT);
  EXPECT_EQ(voxplay_kestrel_decode(pDecoder, words.data(), nullptr), VOXPLAY_BAD_ARGUMENT);
  voxplay_kestrel_encoder_free(pEncoder);
  voxplay_kestrel_decoder_free(pDecoder);
  voxplay_kestrel_encoder_free(nullptr);
  voxplay_kestrel_decoder_free(nullptr);
  voxplay_kestrel_encoder_reset(nullptr);
  voxplay_kestrel_decoder_reset(nullptr);
}

// Two coders at once give what the entry points of the class library give one after the other.
TEST(KestrelCallsTest, CodersSideBySide_GiveWhatTheEntryPointsGive) {
  const auto samples = PublicSamples(VOXPLAY_KESTREL_FRAME * 20);
  voxplay::kestrel::Encoder low(7200);
  voxplay::kestrel::Encoder high(32000);
  voxplay::kestrel::Decoder lowBack(7200);
  voxplay::kestrel::Decoder highBack(32000);
  std::vector<Words> lowWords(20);
  std::vector<Words> highWords(20);
  std::vector<Samples> lowSamples(20);
  std::vector<Samples> highSamples(20);
  for (std::size_t n = 0; n < 20; ++n) {
    low.encode(FrameOf(samples, n), lowWords[n]);
    high.encode(FrameOf(samples, n), highWords[n]);
    EXPECT_TRUE(lowBack.decode(lowWords[n], lowSamples[n]));
    EXPECT_TRUE(highBack.decode(highWords[n], highSamples[n]));
  }
  const auto fnCompare = [&](unsigned int dwRate, const std::vector<Words>& words,
                             const std::vector<Samples>& decoded) {
    int nWords = 0;
    int nSamples = 0;
    ASSERT_EQ(KestrelEncoderInit(dwRate, &nWords, &nSamples), 0);
    ASSERT_EQ(KestrelDecoderInit(dwRate, &nWords, &nSamples), 0);
    for (std::size_t n = 0; n < 20; ++n) {
      Samples frame = FrameOf(samples, n);
      Words expected{};
      Samples back{};
      ASSERT_EQ(KestrelEncodeFrame(frame.data(), expected.data()), 0);
      ASSERT_EQ(KestrelDecodeFrame(expected.data(), back.data()), 0);
      EXPECT_EQ(words[n], expected);
      EXPECT_EQ(decoded[n], back);
    }
  };
  fnCompare(7200, lowWords, lowSamples);
  fnCompare(32000, highWords, highSamples);
}

int Loudest(const Samples& samples) {
  int nLoudest = 0;
  for (const int nSample : samples) nLoudest = std::max(nLoudest, std::abs(nSample));
  return nLoudest;
}

// A decoder that has just decoded some good frames.
voxplay::kestrel::Decoder DecoderWithinASound(std::uint32_t dwBitRate) {
  const auto samples = PublicSamples(VOXPLAY_KESTREL_FRAME * 10);
  voxplay::kestrel::Encoder encoder(dwBitRate);
  voxplay::kestrel::Decoder decoder(dwBitRate);
  Words words{};
  Samples decoded{};
  for (std::size_t n = 0; n < 10; ++n) {
    encoder.encode(FrameOf(samples, n), words);
    EXPECT_TRUE(decoder.decode(words, decoded));
  }
  return decoder;
}

TEST(KestrelCallsTest, LostFrame_RepeatsTheLastOneOnceAndThenIsSilent) {
  auto decoder = DecoderWithinASound(24000);
  Samples decoded{};
  decoder.decode_lost(decoded);
  EXPECT_GT(Loudest(decoded), 5000);
  decoder.decode_lost(decoded);  // the end of the repeated frame overlaps into this one
  EXPECT_GT(Loudest(decoded), 5000);
  decoder.decode_lost(decoded);
  EXPECT_LT(Loudest(decoded), 50);  // silence, as the transform rounds it
}

TEST(KestrelCallsTest, DamagedFrames_AreToldAndSoundLikeLostOnes) {
  for (const std::uint32_t dwBitRate : {7200U, 16000U, 32000U}) {
    SCOPED_TRACE(dwBitRate);
    auto damaging = DecoderWithinASound(dwBitRate);
    auto losing = DecoderWithinASound(dwBitRate);
    const Words zeros{};  // ones must follow the vectors
    std::array<Samples, 4> decoded{};
    for (Samples& frame : decoded) {
      Samples lost{};
      losing.decode_lost(lost);
      EXPECT_FALSE(damaging.decode(zeros, frame));
      EXPECT_EQ(frame, lost);
    }
    EXPECT_GT(Loudest(decoded[0]), 5000);
    EXPECT_GT(Loudest(decoded[1]), 5000);  // by the overlap
    EXPECT_LT(Loudest(decoded[2]), 50);
    EXPECT_LT(Loudest(decoded[3]), 50);
  }
}

TEST(KestrelCallsTest, DamagedFirstFrame_IsSilent) {
  voxplay::kestrel::Decoder decoder(16000);
  Samples decoded;
  decoded.fill(1234);
  EXPECT_FALSE(decoder.decode(Words{}, decoded));
  EXPECT_LT(Loudest(decoded), 50);
}

TEST(KestrelCallsTest, Reset_ForgetsWhatWasBefore) {
  const auto samples = PublicSamples(VOXPLAY_KESTREL_FRAME * 3);
  voxplay::kestrel::Encoder encoder(16000);
  Words first{};
  Words again{};
  encoder.encode(FrameOf(samples, 1), first);
  encoder.encode(FrameOf(samples, 2), again);
  encoder.reset();
  encoder.encode(FrameOf(samples, 1), again);
  EXPECT_EQ(again, first);
}

}  // namespace
