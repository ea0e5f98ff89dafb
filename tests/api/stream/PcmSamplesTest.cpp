// SPDX-License-Identifier: Apache-2.0
//
// What stored samples become, against numbers and against the class library.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

#include "RiffBytes.h"
#include "SampleValues.h"
#include "Sources.h"
#include "stream/PcmSamples.h"
#include "stream/PcmStream.h"

namespace api::test {
namespace {

using C_Shorts = std::vector<std::int16_t>;
using C_Longs = std::vector<std::int32_t>;
using C_Floats = std::vector<float>;

template <typename Sample>
std::vector<Sample> Converted(const S_PcmFormat& format, const C_Bytes& bytes) {
  std::vector<Sample> samples(bytes.size() / (format.wBits / 8U));
  ConvertPcm(format, bytes.data(), std::span<Sample>(samples));
  return samples;
}

C_Bytes Reals(std::initializer_list<float> values) {
  C_Bytes bytes;
  for (const float fValue : values) {
    bytes = Join({bytes, U32(std::bit_cast<std::uint32_t>(fValue))});
  }
  return bytes;
}
C_Bytes Doubles(std::initializer_list<double> values) {
  C_Bytes bytes;
  for (const double dValue : values) {
    const auto qwBits = std::bit_cast<std::uint64_t>(dValue);
    bytes = Join({bytes, U32(static_cast<std::uint32_t>(qwBits)),
                  U32(static_cast<std::uint32_t>(qwBits >> 32U))});
  }
  return bytes;
}

constexpr S_PcmFormat kFloat = {1, 32, true};
constexpr S_PcmFormat kDouble = {1, 64, true};
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

// The samples of a mono sound as the class library converts them.
C_Values ByClassLibrary(const S_PcmFormat& format, const C_Bytes& bytes, unsigned short wToBits) {
  const C_WavDataPtr sound(new C_WavData);
  sound->SetBuffer(bytes.data(), static_cast<unsigned int>(bytes.size()));
  sound->SetWavInfoData(8000, static_cast<unsigned int>(bytes.size()), 1, format.wBits,
                        format.wBits, format.wBits > 8);
  const C_WavDataPtr converted(sound->CreateBitsConvertedData(wToBits, wToBits, true, true));
  return ValuesOf(*converted);
}

void ExpectSameAsClassLibrary(const S_PcmFormat& format, const C_Bytes& bytes) {
  const C_Shorts shorts = Converted<std::int16_t>(format, bytes);
  EXPECT_EQ(C_Values(shorts.begin(), shorts.end()), ByClassLibrary(format, bytes, 16))
      << format.wBits << " bits";
  const C_Longs longs = Converted<std::int32_t>(format, bytes);
  EXPECT_EQ(C_Values(longs.begin(), longs.end()), ByClassLibrary(format, bytes, 32))
      << format.wBits << " bits";
}

}  // namespace

TEST(PcmSamples, EightBits_AreUnsignedAndUseTheWholeRange) {
  const S_PcmFormat format = {1, 8, false};
  const C_Bytes bytes = {0x00, 0x7F, 0x80, 0x81, 0xFF};
  EXPECT_EQ(Converted<std::int16_t>(format, bytes), (C_Shorts{-32768, -256, 0, 256, 32512}));
  EXPECT_EQ(Converted<std::int32_t>(format, bytes),
            (C_Longs{-2147483647 - 1, -16777216, 0, 16777216, 2130706432}));
  EXPECT_EQ(Converted<float>(format, bytes),
            (C_Floats{-1.0F, -0.0078125F, 0.0F, 0.0078125F, 0.9921875F}));
}

TEST(PcmSamples, SixteenBits_AreScaledByShifts) {
  const S_PcmFormat format = {1, 16, false};
  const C_Bytes bytes = Join({U16(0x8000), U16(0xFFFF), U16(0), U16(1), U16(0x7FFF)});
  EXPECT_EQ(Converted<std::int16_t>(format, bytes), (C_Shorts{-32768, -1, 0, 1, 32767}));
  EXPECT_EQ(Converted<std::int32_t>(format, bytes),
            (C_Longs{-2147483647 - 1, -65536, 0, 65536, 2147418112}));
  EXPECT_EQ(Converted<float>(format, bytes),
            (C_Floats{-1.0F, -0.000030517578125F, 0.0F, 0.000030517578125F, 0.999969482421875F}));
}

TEST(PcmSamples, TwentyFourBits_LoseTheLowEight) {
  const S_PcmFormat format = {1, 24, false};
  const C_Bytes bytes = {0x00, 0x00, 0x80, 0xFF, 0xFF, 0xFF, 0xFF, 0x00,
                         0x00, 0x56, 0x34, 0x12, 0xFF, 0xFF, 0x7F};
  EXPECT_EQ(Converted<std::int16_t>(format, bytes), (C_Shorts{-32768, -1, 0, 0x1234, 32767}));
  EXPECT_EQ(Converted<std::int32_t>(format, bytes),
            (C_Longs{-2147483647 - 1, -256, 0xFF00, 0x12345600, 0x7FFFFF00}));
  EXPECT_EQ(Converted<float>(format, bytes)[3], 0x123456 / 8388608.0F);
}

TEST(PcmSamples, ThirtyTwoBits_LoseTheLowSixteen) {
  const S_PcmFormat format = {1, 32, false};
  const C_Bytes bytes = Join({U32(0x80000000), U32(0xFFFFFFFF), U32(0x12345678), U32(0x7FFFFFFF)});
  EXPECT_EQ(Converted<std::int16_t>(format, bytes), (C_Shorts{-32768, -1, 0x1234, 32767}));
  EXPECT_EQ(Converted<std::int32_t>(format, bytes),
            (C_Longs{-2147483647 - 1, -1, 0x12345678, 2147483647}));
  EXPECT_EQ(Converted<float>(format, bytes), (C_Floats{-1.0F, -0x1p-31F, 0x1.234568p-3F, 1.0F}));
}

TEST(PcmSamples, FloatToShort_IsRoundedToTheEvenOfTwo) {
  const C_Bytes bytes = Reals({0.5F / 32768, 1.5F / 32768, 2.5F / 32768, -0.5F / 32768,
                               -1.5F / 32768, 0.50001F / 32768, 1000.49F / 32768});
  EXPECT_EQ(Converted<std::int16_t>(kFloat, bytes), (C_Shorts{0, 2, 2, 0, -2, 1, 1000}));
}

TEST(PcmSamples, FloatBeyondFullScale_IsLimitedInIntegers) {
  const float fInfinity = std::numeric_limits<float>::infinity();
  const C_Bytes bytes = Reals({1.0F, 0.99999F, -1.0F, -1.1F, 3e38F, -fInfinity, fInfinity});
  EXPECT_EQ(Converted<std::int16_t>(kFloat, bytes),
            (C_Shorts{32767, 32767, -32768, -32768, 32767, -32768, 32767}));
  EXPECT_EQ(Converted<std::int32_t>(kFloat, bytes),
            (C_Longs{2147483647, 2147462144, -2147483647 - 1, -2147483647 - 1, 2147483647,
                     -2147483647 - 1, 2147483647}));
  EXPECT_EQ(Converted<float>(kFloat, bytes),
            (C_Floats{1.0F, 0.99999F, -1.0F, -1.1F, 3e38F, -fInfinity, fInfinity}));
}

TEST(PcmSamples, NotANumber_IsZeroInIntegers) {
  const float fNaN = std::numeric_limits<float>::quiet_NaN();
  EXPECT_EQ(Converted<std::int16_t>(kFloat, Reals({fNaN, -fNaN, 0.5F})), (C_Shorts{0, 0, 16384}));
  EXPECT_EQ(Converted<std::int32_t>(kDouble, Doubles({kNaN, 0.5})), (C_Longs{0, 1 << 30}));
  EXPECT_TRUE(std::isnan(Converted<float>(kFloat, Reals({fNaN})).front()));
}

TEST(PcmSamples, Double_IsRoundedToTheEvenOfTwoAndLimited) {
  const C_Bytes bytes = Doubles({0.5 / 2147483648, 1.5 / 2147483648, -2.5 / 2147483648,
                                 0x1.fffffffcp-1, 1.0, -1.0, 1e300, -kInfinity});
  EXPECT_EQ(
      Converted<std::int32_t>(kDouble, bytes),
      (C_Longs{0, 2, -2, 2147483647, 2147483647, -2147483647 - 1, 2147483647, -2147483647 - 1}));
  EXPECT_EQ(Converted<std::int16_t>(kDouble, Doubles({0.5 / 32768 + 1e-17, 0.5 / 32768, -1.0})),
            (C_Shorts{1, 0, -32768}));
  EXPECT_EQ(Converted<float>(kDouble, Doubles({0.1, 1e300, -2.0})),
            (C_Floats{0.1F, std::numeric_limits<float>::infinity(), -2.0F}));
}

TEST(PcmSamples, RoundingOfAllKinds_IsThatOfTheStandardLibrary) {
  C_Random random(4);
  C_Floats values;
  for (int i = 0; i < 100'000; ++i) {
    values.push_back(static_cast<float>(random() % 5'000'001) / 4'000'000.0F - 0.625F);
  }
  C_Bytes bytes;
  for (const float fValue : values) {
    const C_Bytes stored = U32(std::bit_cast<std::uint32_t>(fValue));
    bytes.insert(bytes.end(), stored.begin(), stored.end());
  }
  const C_Shorts shorts = Converted<std::int16_t>(kFloat, bytes);
  const C_Longs longs = Converted<std::int32_t>(kFloat, bytes);
  for (std::size_t i = 0; i < values.size() && !testing::Test::HasFailure(); ++i) {
    const auto dValue = static_cast<double>(values[i]);
    EXPECT_EQ(shorts[i], std::lrint(dValue * 32768)) << dValue;
    EXPECT_EQ(longs[i], std::llrint(dValue * 2147483648.0)) << dValue;
  }
}

TEST(PcmSamples, EightAndSixteenBits_AreThoseOfTheClassLibrary) {
  const C_Bytes noise = Noise(10'000);
  ExpectSameAsClassLibrary({1, 8, false}, noise);
  ExpectSameAsClassLibrary({1, 16, false}, noise);
}

// The class library rounds 32 bits toward zero; here and everywhere else they lose their low bits.
TEST(PcmSamples, ThirtyTwoBits_DifferFromTheClassLibraryByOneStepBelowZero) {
  const S_PcmFormat format = {1, 32, false};
  const C_Bytes bytes = Join({U32(0xFFFF0001), U32(0xFFFF0000), U32(0x0000FFFF)});
  EXPECT_EQ(Converted<std::int16_t>(format, bytes), (C_Shorts{-1, -1, 0}));
  EXPECT_EQ(ByClassLibrary(format, bytes, 16), (C_Values{0, -1, 0}));
}

TEST(PcmSamples, SamplesInTheSameMemory_AreConverted) {
  C_Longs samples = {0, 0};
  auto* const pbySamples = reinterpret_cast<std::uint8_t*>(samples.data());
  const C_Bytes stored = Join({U32(0x12345678), U32(0xFFFFFFFE)});
  std::copy(stored.begin(), stored.end(), pbySamples);
  ConvertPcm({1, 32, false}, pbySamples, std::span(samples));
  EXPECT_EQ(samples, (C_Longs{0x12345678, -2}));
}

}  // namespace api::test
