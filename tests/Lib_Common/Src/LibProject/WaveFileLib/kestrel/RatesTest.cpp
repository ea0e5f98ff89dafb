// SPDX-License-Identifier: Apache-2.0
//
// Every rate that the coder can be set to, 4800 to 32000 bit/s in steps of 800.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "VectorFiles.h"
#include "kestrel/Decoder.h"
#include "kestrel/Encoder.h"

namespace kestrel {
namespace {

using test::FrameOf;
using test::ReadSamples;
using S_Words = std::array<std::uint16_t, kMaxWordsPerFrame>;

constexpr int kFrames = 100;

struct S_RateCase {
  std::uint32_t dwRate;
  std::uint32_t dwWordsCrc;    // of the first 100 frames of speech.pcm, encoded
  std::uint32_t dwSamplesCrc;  // of the same frames, decoded again
};

std::vector<S_RateCase> ReadRates() {
  auto file = test::OpenVectorFile("rates.txt");
  std::vector<S_RateCase> rates;
  for (S_RateCase rate{};
       file >> std::dec >> rate.dwRate >> std::hex >> rate.dwWordsCrc >> rate.dwSamplesCrc;) {
    rates.push_back(rate);
  }
  return rates;
}

void PrintTo(const S_RateCase& rate, std::ostream* pOut) { *pOut << rate.dwRate; }

// Energy of the signal over that of the error, for samples that come out one frame late.
class C_SignalToNoise {
 public:
  void Add(const S_Frame& wanted, const S_Frame& got) {
    for (std::size_t i = 0; i < wanted.size(); ++i) {
      m_signal += static_cast<double>(wanted[i]) * wanted[i];
      m_noise += std::pow(static_cast<double>(wanted[i]) - got[i], 2);
    }
  }
  [[nodiscard]] double Decibels() const { return 10 * std::log10(m_signal / m_noise); }

 private:
  double m_signal = 0;
  double m_noise = 0;
};

class Rate : public testing::TestWithParam<S_RateCase> {
 protected:
  Rate() {
    m_encoder.Init(GetParam().dwRate);
    m_decoder.Init(GetParam().dwRate);
    m_nWords = static_cast<std::size_t>(m_encoder.Configuration().nWordsPerFrame);
  }

  S_Frame Decode(std::uint16_t wEveryWord) {
    S_Words words;
    words.fill(wEveryWord);
    S_Frame samples;
    m_decoder.Decode(words, samples);
    return samples;
  }

  C_Encoder m_encoder;
  C_Decoder m_decoder;
  std::size_t m_nWords;
};

std::string NameOf(const testing::TestParamInfo<S_RateCase>& info) {
  return std::to_string(info.param.dwRate);
}

TEST_P(Rate, Speech_GivesItsWordsAndComesBackOneFrameLate) {
  const auto speech = ReadSamples("speech.pcm");
  test::C_Crc32 wordsCrc;
  test::C_Crc32 samplesCrc;
  C_SignalToNoise ratio;
  for (int n = 0; n < kFrames; ++n) {
    S_Words words{};
    S_Frame samples;
    m_encoder.Encode(FrameOf(speech, n), words);
    m_decoder.Decode(words, samples);
    wordsCrc.Add(std::span<const std::uint16_t>(words).first(m_nWords));
    samplesCrc.Add(std::span<const std::int16_t>(samples));
    ratio.Add(FrameOf(speech, n - 1), samples);
  }
  EXPECT_EQ(wordsCrc.Value(), GetParam().dwWordsCrc);
  EXPECT_EQ(samplesCrc.Value(), GetParam().dwSamplesCrc);
  const std::uint32_t dwRate = GetParam().dwRate;
  EXPECT_GT(ratio.Decibels(), dwRate >= 16000 ? 14.5 : dwRate >= 9600 ? 9.5 : 4.5);
}

TEST_P(Rate, RandomWords_DecodeToSomething) {
  std::mt19937 random(GetParam().dwRate);
  for (int n = 0; n < 300; ++n) {
    S_Words words;
    for (auto& wWord : words) wWord = static_cast<std::uint16_t>(random());
    S_Frame samples;
    m_decoder.Decode(std::span(words).first(m_nWords), samples);
  }
  // Damaged frames leave no trace in the configuration.
  EXPECT_EQ(m_decoder.Configuration().dwBitRate, GetParam().dwRate);
}

TEST_P(Rate, GoodFramesWithFlippedBits_Decode) {
  const auto speech = ReadSamples("speech.pcm");
  std::mt19937 random(GetParam().dwRate);
  for (int n = 0; n < kFrames; ++n) {
    S_Words words{};
    m_encoder.Encode(FrameOf(speech, n), words);
    const std::size_t nBit = random() % (m_nWords * kBitsPerWord);
    words[nBit / kBitsPerWord] ^= static_cast<std::uint16_t>(1u << nBit % kBitsPerWord);
    S_Frame samples;
    m_decoder.Decode(std::span(words).first(m_nWords), samples);
  }
  EXPECT_EQ(m_decoder.Configuration().dwBitRate, GetParam().dwRate);
}

TEST_P(Rate, FramesOfZeros_AreSilent) {
  S_Overlap overlap{};
  for (int n = 0; n < 5; ++n) {
    // Every frame is damaged, so only the bias of the transform is left.
    S_Frame silence;
    InverseTransform(overlap, S_Frame{}, 0, silence);
    EXPECT_EQ(Decode(0), silence) << n;
  }
}

TEST_P(Rate, FramesOfOnes_AreHeardAndAFrameOfZerosAfterThemRepeatsThem) {
  for (int n = 0; n < 5; ++n) Decode(0xFFFF);
  EXPECT_NE(Decode(0), S_Frame{});
  Decode(0);
  Decode(0);
  const S_Frame silence = Decode(0);
  EXPECT_EQ(Decode(0), silence);
  EXPECT_NE(Decode(0xFFFF), silence);
}

TEST_P(Rate, ExtremeSamples_EncodeAndDecode) {
  std::mt19937 random(GetParam().dwRate);
  for (int n = 0; n < 60; ++n) {
    S_Frame samples;
    for (auto& nSample : samples) {
      nSample = random() % 2 == 0 ? std::int16_t{-32768} : std::int16_t{32767};
    }
    if (n % 3 == 0) samples.fill(-32768);
    S_Words words{};
    m_encoder.Encode(samples, words);
    EXPECT_NE(words, S_Words{});
    m_decoder.Decode(words, samples);
  }
}

INSTANTIATE_TEST_SUITE_P(All, Rate, testing::ValuesIn(ReadRates()), NameOf);

TEST(Rates, Rates_AreThirtyFive) {
  const auto rates = ReadRates();
  ASSERT_EQ(rates.size(), 35u);
  for (std::uint32_t n = 0; n < 35; ++n) EXPECT_EQ(rates[n].dwRate, 4800 + 800 * n);
}

}  // namespace
}  // namespace kestrel
