// SPDX-License-Identifier: Apache-2.0
//
// A separate program, because nothing in the process may have called an init before.
#include <gtest/gtest.h>

#include "VectorFiles.h"
#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"
#include "kestrel/FrameCoder.h"

namespace kestrel {
namespace {

TEST(FrameCoderWithoutInit, WithoutInit_RunsAt16000) {
  const auto speech = test::ReadSamples("speech.pcm");
  C_Encoder encoder;
  C_Decoder decoder;
  encoder.Init(16000);
  decoder.Init(16000);
  for (int n = 25; n < 40; ++n) {
    const S_Frame samples = test::FrameOf(speech, n);
    std::array<std::uint16_t, kMaxWordsPerFrame> wanted{};
    std::array<std::uint16_t, kMaxWordsPerFrame> words{};
    encoder.Encode(samples, wanted);
    ASSERT_EQ(KestrelEncodeFrame(samples.data(), words.data()), 0);
    ASSERT_EQ(words, wanted) << n;
    S_Frame wantedSamples;
    S_Frame decoded;
    decoder.Decode(words, wantedSamples);
    ASSERT_EQ(KestrelDecodeFrame(words.data(), decoded.data()), 0);
    ASSERT_EQ(decoded, wantedSamples) << n;
  }
}

}  // namespace
}  // namespace kestrel
