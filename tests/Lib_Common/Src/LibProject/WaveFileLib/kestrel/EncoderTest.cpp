// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Encoder.h"

#include <gtest/gtest.h>

#include "VectorFiles.h"

namespace kestrel {
namespace {

using test::C_Stages;
using test::FrameOf;
using test::ReadSamples;
using test::ToInts;
using S_Words = std::array<std::uint16_t, kMaxWordsPerFrame>;

S_Words Encode(C_Encoder& encoder, const S_Frame& samples) {
  S_Words words{};
  encoder.Encode(samples, words);
  return words;
}

class EncoderAtRate : public testing::TestWithParam<std::uint32_t> {};

TEST_P(EncoderAtRate, Coefficients_GiveTheFrameWords) {
  const C_Stages stages(GetParam());
  const auto nWords = static_cast<std::size_t>(stages.Configuration().nWordsPerFrame);
  for (const int nFrame : stages.Frames()) {
    S_Words words{};
    EncodeCoefficients(stages.Frame(nFrame, "mlt"), stages.Value(nFrame, "mag_shift"),
                       stages.Configuration().nRegions, std::span(words).first(nWords));
    EXPECT_EQ(ToInts(words, nWords), stages.Values(nFrame, "words")) << nFrame;
  }
}

INSTANTIATE_TEST_SUITE_P(Rates, EncoderAtRate, testing::ValuesIn(test::kStageRates));

TEST(Encoder, BeforeInit_RunsAt16000) {
  const C_Encoder encoder;
  EXPECT_EQ(encoder.Configuration().dwBitRate, 16000u);
  EXPECT_EQ(encoder.Configuration().nWordsPerFrame, 20);
}

TEST(Encoder, Encode_WritesTheWordsOfAFrameAndNoMore) {
  C_Encoder encoder;
  encoder.Init(7200);
  S_Words words;
  words.fill(0xA5A5);
  encoder.Encode(FrameOf(ReadSamples("speech.pcm"), 31), words);
  for (std::size_t n = 9; n < words.size(); ++n) EXPECT_EQ(words[n], 0xA5A5) << n;
  EXPECT_NE(words[8], 0xA5A5);
}

TEST(Encoder, AFrame_DependsOnTheFrameBefore) {
  const auto speech = ReadSamples("speech.pcm");
  C_Encoder warm;
  Encode(warm, FrameOf(speech, 30));
  C_Encoder cold;
  EXPECT_NE(Encode(warm, FrameOf(speech, 31)), Encode(cold, FrameOf(speech, 31)));
}

TEST(Encoder, Init_ForgetsTheFrameBefore) {
  const auto speech = ReadSamples("speech.pcm");
  C_Encoder used;
  Encode(used, FrameOf(speech, 30));
  used.Init(16000);
  C_Encoder fresh;
  EXPECT_EQ(Encode(used, FrameOf(speech, 31)), Encode(fresh, FrameOf(speech, 31)));
}

TEST(Encoder, Init_AtAnAdjustedRate_IsApplied) {
  C_Encoder adjusted;
  EXPECT_EQ(adjusted.Init(7300).nResult, 8);
  C_Encoder exact;
  EXPECT_EQ(exact.Init(7200).nResult, 0);
  const S_Frame samples = FrameOf(ReadSamples("speech.pcm"), 31);
  EXPECT_EQ(Encode(adjusted, samples), Encode(exact, samples));
}

TEST(Encoder, Silence_EndsInOnes) {
  C_Encoder encoder;
  encoder.Init(32000);
  const S_Words words = Encode(encoder, S_Frame{});
  EXPECT_EQ(words[39], 0xFFFF);
  EXPECT_EQ(words[0] >> 11, 1);
}

}  // namespace
}  // namespace kestrel
