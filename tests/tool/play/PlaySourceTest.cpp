// SPDX-License-Identifier: Apache-2.0
//
// What stands between a sound and the device: the part, the sides, the rate, and the decoder ahead.
#include "play/PlaySource.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <thread>

#include "MadeSound.h"
#include "play/DecodedAhead.h"

namespace {

using tool::C_DecodedAhead;
using tool::C_PlaySource;
using tool::C_SideMix;
using tool::S_PlaySpan;

std::vector<float> Mixed(std::uint32_t dwChannels, const std::vector<float>& in) {
  const C_SideMix mix(dwChannels);
  std::vector<float> out(in.size() / dwChannels * mix.Sides());
  mix.Mix(in, out);
  return out;
}

TEST(SideMix, OneAndTwoChannels_StayAsTheyAre) {
  EXPECT_EQ(Mixed(1, {0.25F, -0.5F}), (std::vector<float>{0.25F, -0.5F}));
  EXPECT_EQ(Mixed(2, {0.25F, -0.5F}), (std::vector<float>{0.25F, -0.5F}));
}

TEST(SideMix, WhatIsNoNumberOrTooLoud_IsHeldBack) {
  const float fNone = std::numeric_limits<float>::quiet_NaN();
  const float fEndless = std::numeric_limits<float>::infinity();
  EXPECT_EQ(Mixed(1, {fNone, fEndless, -1e30F, 1.5F}),
            (std::vector<float>{0.0F, 1.0F, -1.0F, 1.0F}));
}

TEST(SideMix, OfSixChannels_EachIsHeardWhereItBelongs) {
  const float fSum = 1.0F + 2.0F * 0.70710678F;
  for (std::size_t n = 0; n < 6; ++n) {
    std::vector<float> in(6, 0.0F);
    in[n] = 1.0F;
    const auto out = Mixed(6, in);
    const float fSide = 1.0F / fSum;
    const float fLess = 0.70710678F / fSum;
    const float kLeft[] = {fSide, 0.0F, fLess, 0.0F, fLess, 0.0F};
    const float kRight[] = {0.0F, fSide, fLess, 0.0F, 0.0F, fLess};
    EXPECT_FLOAT_EQ(out[0], kLeft[n]) << n;
    EXPECT_FLOAT_EQ(out[1], kRight[n]) << n;
  }
}

TEST(SideMix, AllChannelsAtFullScale_AreNotTooLoud) {
  for (std::uint32_t dwChannels = 3; dwChannels <= 64; ++dwChannels) {
    const auto out = Mixed(dwChannels, std::vector<float>(dwChannels, 1.0F));
    ASSERT_EQ(out.size(), 2U);
    EXPECT_LE(std::max(out[0], out[1]), 1.0001F) << dwChannels;
    EXPECT_GT(std::min(out[0], out[1]), 0.4F) << dwChannels;
  }
}

std::size_t FramesIn(C_PlaySource& source) {
  std::vector<float> piece(1000 * source.Channels());
  std::size_t nAll = 0;
  while (const std::size_t nFrames = source.Read(piece)) nAll += nFrames;
  return nAll;
}

TEST(PlaySource, APart_BeginsAndEndsExactly) {
  C_MadeSound sound(8000, 1, 50000);
  C_PlaySource source(sound, "made.wav", {12345, 12348});
  std::vector<float> piece(10);
  ASSERT_EQ(source.Read(piece), 3U);
  EXPECT_EQ(piece[0], 12345.0F * C_MadeSound::kUnit);
  EXPECT_EQ(source.Frame(), 12348U);
  EXPECT_EQ(source.Read(piece), 0U);
  source.Seek(0);
  EXPECT_EQ(source.Frame(), 12345U);
}

TEST(PlaySource, BeyondTheEnd_IsTheEnd) {
  C_MadeSound sound(8000, 1, 50000);
  C_PlaySource source(sound, "made.wav", {});
  source.Seek(60000);
  EXPECT_EQ(source.Frame(), 50000U);
  EXPECT_EQ(FramesIn(source), 0U);
}

TEST(PlaySource, RatesThatNoDevicePlays_AreChangedAndKeepTheLength) {
  for (const std::uint32_t dwRate : {100U, 2000U, 384000U, 1000000U}) {
    C_MadeSound sound(dwRate, 2, dwRate * 2);
    C_PlaySource source(sound, "made.wav", {});
    EXPECT_EQ(source.Rate(), 48000U);
    EXPECT_NEAR(static_cast<double>(FramesIn(source)), 96000.0, 1.0) << dwRate;
    EXPECT_EQ(source.Frame(), std::uint64_t{dwRate} * 2);
  }
}

TEST(PlaySource, UsualRates_AreLeftToTheDevice) {
  for (const std::uint32_t dwRate : {4000U, 11025U, 44100U, 192000U}) {
    C_MadeSound sound(dwRate, 1, 10);
    EXPECT_EQ(C_PlaySource(sound, "made.wav", {}).Rate(), dwRate);
  }
}

TEST(PlaySource, AbsurdRates_AreRefused) {
  for (const std::uint32_t dwRate : {1U, 99U, 1000001U, UINT32_MAX}) {
    C_MadeSound sound(dwRate, 1, 10);
    EXPECT_THROW(C_PlaySource(sound, "made.wav", {}), tool::C_Failure) << dwRate;
  }
}

// Takes n frames, and waits for the decoder where it is not ready.
std::vector<float> Taken(C_DecodedAhead& ahead, std::size_t nFrames, std::uint64_t* pqwEnd) {
  std::vector<float> samples(nFrames);
  std::size_t nDone = 0;
  while (nDone < nFrames && !ahead.Drained()) {
    const auto taken = ahead.Take(std::span(samples).subspan(nDone));
    nDone += taken.nFrames;
    if (taken.nFrames > 0) *pqwEnd = taken.qwEnd;
    if (taken.nFrames == 0) std::this_thread::yield();
  }
  samples.resize(nDone);
  return samples;
}

TEST(DecodedAhead, EveryFrame_IsGivenOnceWithItsPlace) {
  C_MadeSound sound(8000, 1, 1000000);
  C_PlaySource source(sound, "made.wav", {});
  C_DecodedAhead ahead(source, 0, false);
  std::uint64_t qwEnd = 0;
  std::uint64_t qwFrame = 0;
  while (true) {
    const auto samples = Taken(ahead, 777, &qwEnd);
    if (samples.empty()) break;
    for (const float fSample : samples) {
      ASSERT_EQ(fSample, static_cast<float>(qwFrame) * C_MadeSound::kUnit);
      ++qwFrame;
    }
    ASSERT_EQ(qwEnd, qwFrame);
  }
  EXPECT_EQ(qwFrame, 1000000U);
  ahead.Join();
  EXPECT_FALSE(ahead.Failure());
}

TEST(DecodedAhead, AfterASeek_NothingOldIsGiven) {
  C_MadeSound sound(8000, 1, 1000000);
  C_PlaySource source(sound, "made.wav", {});
  C_DecodedAhead ahead(source, 0, false);
  std::uint64_t qwEnd = 0;
  for (const std::uint64_t qwTarget : {500000U, 10U, 999000U, 0U, 123456U}) {
    Taken(ahead, 5000, &qwEnd);
    ahead.Seek(qwTarget);
    const auto samples = Taken(ahead, 100, &qwEnd);
    ASSERT_EQ(samples.size(), 100U);
    EXPECT_EQ(samples[0], static_cast<float>(qwTarget) * C_MadeSound::kUnit);
    EXPECT_EQ(qwEnd, qwTarget + 100);
  }
}

TEST(DecodedAhead, WhenItHasEnded_CanGoBack) {
  C_MadeSound sound(8000, 1, 100);
  C_PlaySource source(sound, "made.wav", {});
  C_DecodedAhead ahead(source, 0, false);
  std::uint64_t qwEnd = 0;
  EXPECT_EQ(Taken(ahead, 1000, &qwEnd).size(), 100U);
  EXPECT_TRUE(ahead.Drained());
  ahead.Seek(40);
  EXPECT_FALSE(ahead.Drained());
  EXPECT_EQ(Taken(ahead, 1000, &qwEnd).size(), 60U);
}

TEST(DecodedAhead, AgainAndAgain_IsWithoutAGap) {
  C_MadeSound sound(8000, 1, 1000);
  C_PlaySource source(sound, "made.wav", {200, 500});
  C_DecodedAhead ahead(source, 200, true);
  std::uint64_t qwEnd = 0;
  const auto samples = Taken(ahead, 1000, &qwEnd);
  ASSERT_EQ(samples.size(), 1000U);
  for (std::size_t n = 0; n < samples.size(); ++n) {
    ASSERT_EQ(samples[n], static_cast<float>(200 + n % 300) * C_MadeSound::kUnit) << n;
  }
  EXPECT_EQ(qwEnd, 300U);
}

TEST(DecodedAhead, AVeryShortSoundAgainAndAgain_IsEnoughForADevice) {
  C_MadeSound sound(8000, 1, 10);
  C_PlaySource source(sound, "made.wav", {});
  C_DecodedAhead ahead(source, 0, true);
  ahead.WaitForFirst();
  // What a device asks for at a time.
  std::vector<float> samples(3203);
  const auto taken = ahead.Take(samples);
  ASSERT_EQ(taken.nFrames, 3203U);
  EXPECT_EQ(taken.qwEnd, 3U);
  for (std::size_t n = 0; n < samples.size(); ++n) {
    ASSERT_EQ(samples[n], static_cast<float>(n % 10) * C_MadeSound::kUnit) << n;
  }
}

TEST(DecodedAhead, AgainAndAgainOfNothing_Ends) {
  C_MadeSound sound(8000, 1, 0);
  C_PlaySource source(sound, "made.wav", {});
  C_DecodedAhead ahead(source, 0, true);
  ahead.WaitForFirst();
  EXPECT_TRUE(ahead.Drained());
}

TEST(DecodedAhead, WhatCannotBeRead_EndsTheSoundAndIsTold) {
  C_MadeSound sound(8000, 1, 100000);
  sound.FailAt(8192);
  C_PlaySource source(sound, "made.wav", {});
  C_DecodedAhead ahead(source, 0, false);
  std::uint64_t qwEnd = 0;
  EXPECT_EQ(Taken(ahead, 100000, &qwEnd).size(), 8192U);
  ahead.Seek(0);
  EXPECT_TRUE(ahead.Drained()) << "a decoder that has failed does not come back";
  ahead.Join();
  EXPECT_EQ(ahead.Failure(), "made.wav: cannot be read: a test");
}

}  // namespace
