// SPDX-License-Identifier: Apache-2.0
//
// Whole streams, exact to the bit in both directions: speech, noise, sweeps and other signals at
// eleven rates. Damaged and hand-made frames are for the decoder only.
#include <gtest/gtest.h>

#include "VectorFiles.h"
#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"

namespace kestrel {
namespace {

using test::FrameOf;
using test::ReadSamples;
using test::ReadStreams;
using test::ReadWords;
using test::S_Stream;

std::vector<S_Stream> Encodable() {
  auto streams = ReadStreams();
  std::erase_if(streams, [](const S_Stream& stream) { return stream.input.empty(); });
  return streams;
}

std::string NameOf(const testing::TestParamInfo<S_Stream>& info) { return info.param.name; }

class EncodedStream : public testing::TestWithParam<S_Stream> {};

TEST_P(EncodedStream, EncodedStream_MatchesWordForWord) {
  const S_Stream& stream = GetParam();
  const auto samples = ReadSamples(stream.input);
  const auto words = ReadWords(stream.name + ".bits");
  ASSERT_EQ(samples.size(), stream.nFrames * kSamplesPerFrame);
  ASSERT_EQ(words.size(), stream.nFrames * stream.nWordsPerFrame);
  C_Encoder encoder;
  ASSERT_EQ(encoder.Init(stream.dwRate).nResult, 0);
  std::vector<std::uint16_t> encoded(stream.nWordsPerFrame);
  for (std::size_t n = 0; n < stream.nFrames; ++n) {
    encoder.Encode(FrameOf(samples, static_cast<int>(n)), encoded);
    const auto first = words.begin() + static_cast<std::ptrdiff_t>(n * stream.nWordsPerFrame);
    ASSERT_TRUE(std::equal(encoded.begin(), encoded.end(), first))
        << stream.name << ": first wrong frame " << n;
  }
}

INSTANTIATE_TEST_SUITE_P(All, EncodedStream, testing::ValuesIn(Encodable()), NameOf);

class DecodedStream : public testing::TestWithParam<S_Stream> {};

TEST_P(DecodedStream, DecodedStream_MatchesSampleForSample) {
  const S_Stream& stream = GetParam();
  const auto words = ReadWords(stream.name + ".bits");
  ASSERT_EQ(words.size(), stream.nFrames * stream.nWordsPerFrame);
  C_Decoder decoder;
  ASSERT_EQ(decoder.Init(stream.dwRate).nResult, 0);
  S_Frame samples;
  for (std::size_t n = 0; n < stream.nFrames; ++n) {
    decoder.Decode(std::span(words).subspan(n * stream.nWordsPerFrame), samples);
    ASSERT_EQ(test::Crc32(samples), stream.decodedCrcs[n])
        << stream.name << ": first wrong frame " << n;
  }
}

INSTANTIATE_TEST_SUITE_P(All, DecodedStream, testing::ValuesIn(ReadStreams()), NameOf);

TEST(Streams, Streams_AreAllThere) {
  EXPECT_EQ(Encodable().size(), 99u);
  EXPECT_EQ(ReadStreams().size(), 121u);
}

TEST(Crc32, OfTheCheckText_IsItsCheckValue) {
  test::C_Crc32 crc;
  const std::array<std::uint16_t, 4> text = {0x3231, 0x3433, 0x3635, 0x3837};  // "12345678"
  crc.Add(std::span<const std::uint16_t>(text));
  EXPECT_EQ(crc.Value(), 0x9AE0DAAFu);
}

}  // namespace
}  // namespace kestrel
