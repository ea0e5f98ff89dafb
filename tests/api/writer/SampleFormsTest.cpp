// SPDX-License-Identifier: Apache-2.0
#include "writer/SampleForms.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include "TestSound.h"
#include "sound/MonoMix.h"

namespace {

using api::E_StoredForm;
using Bytes = std::vector<std::uint8_t>;

template <typename Sample>
Bytes Stored(const std::vector<Sample>& samples, E_StoredForm eForm) {
  Bytes stored(samples.size() * api::BytesOf(eForm));
  api::Store(std::span<const Sample>(samples), eForm, stored.data());
  return stored;
}

TEST(Store, Int16_LosesOrGetsLowBits) {
  const std::vector<std::int16_t> samples = {0, -1, 255, -32768, 32767};
  EXPECT_EQ(Stored(samples, E_StoredForm::Int8), (Bytes{128, 127, 128, 0, 255}));
  EXPECT_EQ(Stored(samples, E_StoredForm::Int16),
            (Bytes{0, 0, 0xFF, 0xFF, 0xFF, 0, 0, 0x80, 0xFF, 0x7F}));
  EXPECT_EQ(Stored(samples, E_StoredForm::Int24),
            (Bytes{0, 0, 0, 0, 0xFF, 0xFF, 0, 0xFF, 0, 0, 0, 0x80, 0, 0xFF, 0x7F}));
  EXPECT_EQ(Stored(std::vector<std::int16_t>{-2}, E_StoredForm::Int32), (Bytes{0, 0, 0xFE, 0xFF}));
  EXPECT_EQ(Stored(std::vector<std::int16_t>{-16384}, E_StoredForm::Float32),
            (Bytes{0, 0, 0, 0xBF}));
}

TEST(Store, Int32_LosesLowBits) {
  const std::vector<std::int32_t> samples = {0x12345678, -1};
  EXPECT_EQ(Stored(samples, E_StoredForm::Int8), (Bytes{0x92, 127}));
  EXPECT_EQ(Stored(samples, E_StoredForm::Int16), (Bytes{0x34, 0x12, 0xFF, 0xFF}));
  EXPECT_EQ(Stored(samples, E_StoredForm::Int24), (Bytes{0x56, 0x34, 0x12, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(Stored(samples, E_StoredForm::Int32),
            (Bytes{0x78, 0x56, 0x34, 0x12, 0xFF, 0xFF, 0xFF, 0xFF}));
  EXPECT_EQ(Stored(std::vector<std::int32_t>{std::numeric_limits<std::int32_t>::min()},
                   E_StoredForm::Float32),
            (Bytes{0, 0, 0x80, 0xBF}));
}

TEST(Store, Float_IsRoundedToEvenAndLimited) {
  const float fStep = 1.0F / 128;
  const std::vector<float> samples = {0.0F,          0.5F * fStep, 1.5F * fStep, -0.5F * fStep,
                                      -1.5F * fStep, 1.0F,         -1.0F,        2.0F,
                                      -INFINITY,     INFINITY,     NAN,          0.51F * fStep};
  EXPECT_EQ(Stored(samples, E_StoredForm::Int8),
            (Bytes{128, 128, 130, 128, 126, 255, 0, 255, 0, 255, 128, 129}));
  EXPECT_EQ(Stored(std::vector<float>{1.0F}, E_StoredForm::Int32), (Bytes{0xFF, 0xFF, 0xFF, 0x7F}));
  EXPECT_EQ(Stored(std::vector<float>{-3.0F}, E_StoredForm::Int24), (Bytes{0, 0, 0x80}));
  EXPECT_EQ(Stored(std::vector<float>{2.0F}, E_StoredForm::Float32), (Bytes{0, 0, 0, 0x40}));
}

TEST(Store, Float_AgreesWithTheRoundingOfTheCLibrary) {
  std::vector<float> samples;
  for (int i = -70000; i <= 70000; ++i) samples.push_back(static_cast<float>(i) / 131072.0F);
  std::vector<std::int16_t> converted(samples.size());
  api::To16(std::span<const float>(samples), converted);
  for (std::size_t i = 0; i < samples.size(); ++i) {
    EXPECT_EQ(converted[i], std::nearbyint(static_cast<double>(samples[i]) * 32768)) << samples[i];
  }
}

TEST(To16, Int32_LosesLowBits) {
  std::vector<std::int16_t> converted(3);
  api::To16(std::span<const std::int32_t>(std::vector<std::int32_t>{-1, 0x7FFFFFFF, 0xFFFF}),
            converted);
  EXPECT_EQ(converted, (std::vector<std::int16_t>{-1, 32767, 0}));
}

TEST(MixToMono, EveryNumberOfChannels_AgreesWithTheClassLibrary) {
  for (const unsigned short wChannels : std::to_array<unsigned short>({1, 2, 3, 5, 64})) {
    std::vector<short> frames;
    for (int i = 0; i < 640; ++i) frames.push_back(static_cast<short>(i * 7919 + 32768));
    frames.resize(frames.size() / wChannels * wChannels);
    const auto sound = MonoSound(frames);
    sound->SetWavInfoData(16000, static_cast<unsigned int>(frames.size() * 2), wChannels, 16, 16,
                          true);
    std::vector<std::int16_t> mono(frames.size() / wChannels);
    api::MixToMono(frames, wChannels, mono);
    EXPECT_EQ(mono, monomix::SamplesOf(*sound)) << wChannels;
  }
}

}  // namespace
