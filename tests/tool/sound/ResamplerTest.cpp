// SPDX-License-Identifier: Apache-2.0
#include "sound/Resampler.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "VoxtoolSounds.h"
#include "base/Failure.h"

namespace tool {
namespace {

std::vector<float> Resampled(const std::vector<float>& samples, std::uint32_t dwFrom,
                             std::uint32_t dwTo, std::uint32_t dwChannels = 1,
                             std::size_t nPiece = 1000) {
  C_Resampler resampler(dwFrom, dwTo, dwChannels);
  std::vector<float> all;
  const auto append = [&all](std::span<const float> piece) {
    all.insert(all.end(), piece.begin(), piece.end());
  };
  for (std::size_t nAt = 0; nAt < samples.size(); nAt += nPiece * dwChannels) {
    resampler.Put(
        std::span(samples).subspan(nAt).first(std::min(nPiece * dwChannels, samples.size() - nAt)),
        append);
  }
  resampler.End(append);
  return all;
}

TEST(ResamplerTest, AnyLength_BecomesTheRoundedOne) {
  for (const auto& [dwFrom, dwTo] : {std::pair(44100U, 16000U),
                                     {16000U, 44100U},
                                     {8000U, 16000U},
                                     {48000U, 44100U},
                                     {11025U, 16000U},
                                     {16000U, 16001U},
                                     {16U, 16000U},
                                     {16000U, 16U},
                                     {192000U, 4000U}}) {
    for (const std::size_t nFrames : {0U, 1U, 2U, 3U, 100U, 999U, 1000U, 1001U, 44101U}) {
      const std::uint64_t qwWanted = (std::uint64_t{nFrames} * dwTo + dwFrom / 2) / dwFrom;
      if (qwWanted > 1000000) continue;
      EXPECT_EQ(Resampled(std::vector<float>(nFrames, 0.25F), dwFrom, dwTo).size(), qwWanted)
          << nFrames << " from " << dwFrom << " to " << dwTo;
    }
  }
}

TEST(ResamplerTest, Sine_KeepsItsLevelPitchAndPlace) {
  const auto samples = Resampled(test::Sine(44100, 1000.0, 44100.0), 44100, 16000);
  const auto wanted = test::Sine(16000, 1000.0, 16000.0);
  ASSERT_EQ(samples.size(), 16000U);
  double dWorst = 0.0;
  for (std::size_t n = 200; n < 15800; ++n) {
    dWorst = std::max(dWorst, std::abs(static_cast<double>(samples[n] - wanted[n])));
  }
  EXPECT_LT(dWorst, 1e-4);
}

TEST(ResamplerTest, ToneAboveTheNewRange_IsGone) {
  const auto samples = Resampled(test::Sine(44100, 12000.0, 44100.0), 44100, 16000);
  const std::span middle = std::span(samples).subspan(1000, 14000);
  EXPECT_LT(std::ranges::max(middle), 1e-4F);
}

TEST(ResamplerTest, TwoChannels_StayApart) {
  std::vector<float> samples(2 * 8000);
  const auto left = test::Sine(8000, 440.0, 8000.0);
  for (std::size_t n = 0; n < left.size(); ++n) samples[2 * n] = left[n];
  const auto both = Resampled(samples, 8000, 12000, 2);
  ASSERT_EQ(both.size(), 2U * 12000U);
  const auto alone = Resampled(left, 8000, 12000);
  for (std::size_t n = 0; n < alone.size(); ++n) {
    ASSERT_EQ(both[2 * n], alone[n]) << n;
    ASSERT_EQ(both[2 * n + 1], 0.0F) << n;
  }
}

TEST(ResamplerTest, OtherPieces_GiveTheSameSamples) {
  const auto sine = test::Sine(10000, 300.0, 22050.0);
  EXPECT_EQ(Resampled(sine, 22050, 16000, 1, 1), Resampled(sine, 22050, 16000, 1, 10000));
}

TEST(ResamplerTest, RatesTooFarApart_AreRefused) {
  EXPECT_THROW(C_Resampler(1, 4294967295, 1), C_Failure);
  EXPECT_THROW(C_Resampler(4294967295, 16000, 1), C_Failure);
  EXPECT_THROW(C_Resampler(1, 1001, 1), C_Failure);
  EXPECT_THROW(C_Resampler(16001, 16, 1), C_Failure);
}

TEST(ResamplerTest, GreatestRatios_WorkForAllChannelsAndPieces) {
  for (const std::uint32_t dwChannels : {1U, 2U, 64U}) {
    const std::vector<float> few(std::size_t{20} * dwChannels, 0.25F);
    EXPECT_EQ(Resampled(few, 1, 1000, dwChannels, 7).size(), 20000U * dwChannels);
    const std::vector<float> many(std::size_t{20000} * dwChannels, 0.25F);
    EXPECT_EQ(Resampled(many, 4000000, 4000, dwChannels, 999).size(), 20U * dwChannels);
  }
}

}  // namespace
}  // namespace tool
