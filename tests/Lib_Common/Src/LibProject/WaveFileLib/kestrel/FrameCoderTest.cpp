// SPDX-License-Identifier: Apache-2.0
//
// The entry points, which share the one encoder and the one decoder of the process.
#include "kestrel/FrameCoder.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "VectorFiles.h"
#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"

namespace {

using kestrel::S_Frame;
using kestrel::test::FrameOf;
using S_Words = std::array<unsigned short, kestrel::kMaxWordsPerFrame>;

constexpr int kFrames = 40;

void InitEncoder(unsigned int dwRate) {
  int nWords = 0;
  int nSamples = 0;
  KestrelEncoderInit(dwRate, &nWords, &nSamples);
}

void InitDecoder(unsigned int dwRate) {
  int nWords = 0;
  int nSamples = 0;
  KestrelDecoderInit(dwRate, &nWords, &nSamples);
}

S_Words EncodeNext(const S_Frame& samples) {
  S_Words words{};
  EXPECT_EQ(KestrelEncodeFrame(samples.data(), words.data()), 0);
  return words;
}

S_Frame DecodeNext(const S_Words& words) {
  S_Frame samples{};
  EXPECT_EQ(KestrelDecodeFrame(words.data(), samples.data()), 0);
  return samples;
}

class FrameCoder : public testing::Test {
 protected:
  std::vector<S_Words> EncodeAll() const {
    std::vector<S_Words> frames;
    for (int n = 0; n < kFrames; ++n) frames.push_back(EncodeNext(FrameOf(m_speech, n)));
    return frames;
  }
  static std::vector<S_Frame> DecodeAll(const std::vector<S_Words>& frames) {
    std::vector<S_Frame> decoded;
    for (const auto& words : frames) decoded.push_back(DecodeNext(words));
    return decoded;
  }

  std::vector<std::int16_t> m_speech = kestrel::test::ReadSamples("speech.pcm");
};

TEST_F(FrameCoder, TwoRunsAfterInit_AreIdentical) {
  InitEncoder(24000);
  const auto first = EncodeAll();
  InitEncoder(24000);
  EXPECT_EQ(EncodeAll(), first);
  InitDecoder(24000);
  const auto decoded = DecodeAll(first);
  InitDecoder(24000);
  EXPECT_EQ(DecodeAll(first), decoded);
}

TEST_F(FrameCoder, InterleavedEncodeAndDecode_EqualSeparateRuns) {
  InitEncoder(16000);
  const auto frames = EncodeAll();
  InitDecoder(16000);
  const auto decoded = DecodeAll(frames);

  InitEncoder(16000);
  InitDecoder(16000);
  for (int n = 0; n < kFrames; ++n) {
    const auto at = static_cast<std::size_t>(n);
    const S_Words words = EncodeNext(FrameOf(m_speech, n));
    ASSERT_EQ(words, frames[at]) << n;
    ASSERT_EQ(DecodeNext(words), decoded[at]) << n;
  }
}

TEST_F(FrameCoder, InitOfOneDirection_LeavesTheOtherAlone) {
  InitEncoder(32000);
  const auto frames = EncodeAll();
  InitDecoder(32000);
  const auto decoded = DecodeAll(frames);

  InitEncoder(32000);
  InitDecoder(32000);
  for (int n = 0; n < kFrames; ++n) {
    const auto at = static_cast<std::size_t>(n);
    if (n == 20) InitEncoder(7200);
    ASSERT_EQ(DecodeNext(frames[at]), decoded[at]) << n;
  }
  InitEncoder(32000);
  for (int n = 0; n < kFrames; ++n) {
    if (n == 20) InitDecoder(7200);
    ASSERT_EQ(EncodeNext(FrameOf(m_speech, n)), frames[static_cast<std::size_t>(n)]) << n;
  }
}

TEST_F(FrameCoder, ProcessWidePair_IsApartFromObjects) {
  InitEncoder(16000);
  const auto frames = EncodeAll();
  InitDecoder(16000);
  const auto decoded = DecodeAll(frames);

  kestrel::C_Encoder encoder;
  kestrel::C_Decoder decoder;
  encoder.Init(9600);
  decoder.Init(9600);
  InitEncoder(16000);
  InitDecoder(16000);
  for (int n = 0; n < kFrames; ++n) {
    S_Words words{};
    S_Frame samples{};
    encoder.Encode(FrameOf(m_speech, kFrames - n), words);
    decoder.Decode(words, samples);
    ASSERT_EQ(EncodeNext(FrameOf(m_speech, n)), frames[static_cast<std::size_t>(n)]) << n;
    ASSERT_EQ(DecodeNext(frames[static_cast<std::size_t>(n)]),
              decoded[static_cast<std::size_t>(n)]);
  }
}

TEST_F(FrameCoder, AnAdjustedRate_IsUsed) {
  InitEncoder(7200);
  const auto exact = EncodeAll();
  InitEncoder(7300);
  EXPECT_EQ(EncodeAll(), exact);
  EXPECT_EQ(exact[31][9], 0);
  InitEncoder(4000);
  const auto fallback = EncodeAll();
  InitEncoder(16000);
  EXPECT_EQ(EncodeAll(), fallback);
  EXPECT_NE(fallback[31][19], 0);
  EXPECT_EQ(fallback[31][20], 0);
}

class PrintTable : public testing::Test {
 protected:
  PrintTable() : m_pFile(std::tmpfile()) {}
  ~PrintTable() override { std::fclose(m_pFile); }

  std::string Printed(std::span<const short> table, int nColumns) {
    KestrelPrintTable(m_pFile, table, nColumns);
    std::rewind(m_pFile);
    std::array<char, 256> text{};
    return {text.data(), std::fread(text.data(), 1, text.size(), m_pFile)};
  }

 private:
  std::FILE* m_pFile;
};

constexpr std::array<short, 5> kPrinted = {0, -1, 32767, -32768, 42};

TEST_F(PrintTable, Values_StandInRowsOfSixCharactersAndAComma) {
  EXPECT_EQ(Printed(kPrinted, 2), "     0,    -1,\n 32767,-32768,\n    42,\n");
}

TEST_F(PrintTable, AFullLastRow_EndsOnce) {
  EXPECT_EQ(Printed(std::span(kPrinted).first(4), 2), "     0,    -1,\n 32767,-32768,\n");
}

TEST_F(PrintTable, NoColumns_GiveASingleRow) {
  EXPECT_EQ(Printed(kPrinted, 0), "     0,    -1, 32767,-32768,    42,\n");
}

TEST_F(PrintTable, AnEmptyTable_PrintsNothing) { EXPECT_EQ(Printed({}, 8), ""); }

}  // namespace
