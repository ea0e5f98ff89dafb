// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <vector>

#include "measure/Columns.h"
#include "measure/RealTransform.h"
#include "measure/SpectrumMeter.h"
#include "measure/WaveMeter.h"

namespace {

using tool::C_Columns;
using tool::C_SpectrumMeter;
using tool::C_WaveMeter;

std::vector<float> Sine(std::size_t nFrames, double dHz, double dRate, double dAmplitude = 1.0) {
  std::vector<float> samples(nFrames);
  for (std::size_t n = 0; n < nFrames; ++n) {
    const double dAngle = 2 * std::numbers::pi * dHz * static_cast<double>(n) / dRate;
    samples[n] = static_cast<float>(dAmplitude * std::sin(dAngle));
  }
  return samples;
}

std::uint8_t LevelAt(const C_SpectrumMeter& meter, int nColumns, int nRow, int nColumn) {
  const auto nStart = static_cast<std::size_t>(nRow) * static_cast<std::size_t>(nColumns);
  return meter.Levels()[nStart + static_cast<std::size_t>(nColumn)];
}

int LoudestRow(const C_SpectrumMeter& meter, int nColumns, int nRows, int nColumn) {
  int nBest = 0;
  for (int nRow = 0; nRow < nRows; ++nRow) {
    if (LevelAt(meter, nColumns, nRow, nColumn) > LevelAt(meter, nColumns, nBest, nColumn)) {
      nBest = nRow;
    }
  }
  return nBest;
}

TEST(Columns, MoreFramesThanColumns_AreSharedOutEvenly) {
  const C_Columns columns(10, 4);
  EXPECT_EQ(columns.Begin(0), 0u);
  EXPECT_EQ(columns.Begin(1), 2u);
  EXPECT_EQ(columns.Begin(2), 5u);
  EXPECT_EQ(columns.Begin(4), 10u);
  EXPECT_EQ(columns.ColumnOf(9), 3);
}

TEST(Columns, AsManyFramesAsThereCanBe_DoNotOverflow) {
  const C_Columns columns(UINT64_MAX, 8192);
  EXPECT_EQ(columns.Begin(8192), UINT64_MAX);
  EXPECT_EQ(columns.ColumnOf(UINT64_MAX - 1), 8191);
}

TEST(WaveMeter, Columns_KeepTheirExtremesAndTheirPower) {
  C_WaveMeter meter(C_Columns(6, 2), 16);
  meter.Add(std::vector<float>{0.5F, -0.25F});
  meter.Add(std::vector<float>{0.25F, 0.125F, 0.125F, 0.125F});
  EXPECT_EQ(meter.Waves()[0].fGreatest, 0.5F);
  EXPECT_EQ(meter.Waves()[0].fLeast, -0.25F);
  EXPECT_DOUBLE_EQ(meter.Waves()[0].dSquares, 0.375);
  EXPECT_EQ(meter.Waves()[1].fLeast, 0.125F);
  EXPECT_EQ(meter.Clippings(), 0u);
  EXPECT_TRUE(meter.Samples().empty());
}

TEST(WaveMeter, FewSamples_AreKept) {
  C_WaveMeter meter(C_Columns(3, 4), 16);
  meter.Add(std::vector<float>{0.5F, 0.25F, 0.0F});
  EXPECT_EQ(meter.Samples(), (std::vector<float>{0.5F, 0.25F, 0.0F}));
}

TEST(WaveMeter, ThreeSamplesAtFullScale_AreClipping) {
  const float fMost = 32767.0F / 32768.0F;
  C_WaveMeter meter(C_Columns(10, 2), 16);
  meter.Add(std::vector<float>{fMost, fMost, 0.0F, fMost, fMost});
  EXPECT_EQ(meter.Clippings(), 0u);
  meter.Add(std::vector<float>{0.0F, -1.0F, -fMost});
  meter.Add(std::vector<float>{-1.0F, -1.0F});
  EXPECT_EQ(meter.Clippings(), 1u);
  EXPECT_FALSE(meter.Waves()[0].bClipped);
  EXPECT_TRUE(meter.Waves()[1].bClipped);
}

TEST(WaveMeter, SamplesOfFewBits_AreAlwaysAtFullScaleAndNotClipped) {
  for (const std::uint32_t dwBits : {1U, 4U}) {
    C_WaveMeter meter(C_Columns(9, 1), dwBits);
    meter.Add(std::vector<float>{0.0F, 0.0F, 0.0F, -1.0F, -1.0F, -1.0F, 0.875F, 0.875F, 0.875F});
    EXPECT_EQ(meter.Clippings(), 0u) << dwBits;
  }
}

TEST(WaveMeter, BothSidesInTurn_AreNoClipping) {
  C_WaveMeter meter(C_Columns(6, 2), 0);
  meter.Add(std::vector<float>{1.0F, -1.0F, 1.0F, -1.0F, 1.0F, -1.0F});
  EXPECT_EQ(meter.Clippings(), 0u);
}

TEST(WaveMeter, LargestSampleOf24Bits_IsMoreThanThatOf16) {
  C_WaveMeter meter(C_Columns(3, 1), 24);
  meter.Add(std::vector<float>(3, 32767.0F / 32768.0F));
  EXPECT_EQ(meter.Clippings(), 0u);
}

TEST(RealTransform, ThereAndBack_IsTheLengthTimesTheSignal) {
  tool::C_RealTransform transform(64);
  const auto samples = Sine(64, 5.0, 64.0);
  std::vector<std::complex<float>> bins(transform.Bins());
  transform.Forward(samples, bins);
  EXPECT_NEAR(std::abs(bins[5]), 32.0, 1e-4);
  EXPECT_NEAR(std::abs(bins[6]), 0.0, 1e-4);
  std::vector<float> back(64);
  transform.Backward(bins, back);
  for (std::size_t n = 0; n < 64; ++n) EXPECT_NEAR(back[n], 64 * samples[n], 1e-3);
}

TEST(SpectrumMeter, SineOfFullScale_IsAtZeroDecibelsInTheRowOfItsFrequency) {
  // 100 rows of 80 Hz each; 1 kHz is in row 12 from the bottom.
  C_SpectrumMeter meter(C_Columns(16000, 20), 100, 16000);
  meter.Add(Sine(16000, 1000.0, 16000.0));
  meter.Finish();
  for (int nColumn = 1; nColumn < 19; ++nColumn) {
    EXPECT_EQ(LoudestRow(meter, 20, 100, nColumn), 99 - 12) << nColumn;
    EXPECT_EQ(LevelAt(meter, 20, 87, nColumn), 255) << nColumn;
  }
  // Far from the tone there is nothing.
  EXPECT_LT(LevelAt(meter, 20, 20, 10), 26);
}

TEST(SpectrumMeter, HalfOfFullScale_IsSixDecibelsLess) {
  C_SpectrumMeter meter(C_Columns(16000, 20), 100, 16000);
  meter.Add(Sine(16000, 1000.0, 16000.0, 0.5));
  meter.Finish();
  EXPECT_EQ(LevelAt(meter, 20, 87, 10), std::lround((100 - 6.02) * 2.55));
}

TEST(SpectrumMeter, HalfOfTheRate_IsInTheTopRow) {
  C_SpectrumMeter meter(C_Columns(8000, 8), 50, 8000);
  std::vector<float> samples(8000);
  for (std::size_t n = 0; n < samples.size(); ++n) samples[n] = n % 2 == 0 ? 1.0F : -1.0F;
  meter.Add(samples);
  meter.Finish();
  EXPECT_EQ(LoudestRow(meter, 8, 50, 4), 0);
  EXPECT_GE(LevelAt(meter, 8, 0, 4), 250);
}

TEST(SpectrumMeter, ToneInTheMiddle_IsInItsColumnsOnly) {
  C_SpectrumMeter meter(C_Columns(16000, 16), 64, 16000);
  auto samples = Sine(16000, 2000.0, 16000.0);
  std::fill(samples.begin(), samples.begin() + 8000, 0.0F);
  std::fill(samples.begin() + 12000, samples.end(), 0.0F);
  meter.Add(samples);
  meter.Finish();
  // Columns are 62.5 ms long: the tone is in 8 to 11.
  for (int nColumn = 0; nColumn < 16; ++nColumn) {
    const bool bLoud = nColumn >= 8 && nColumn <= 11;
    EXPECT_EQ(LevelAt(meter, 16, 47, nColumn) > 240, bLoud) << nColumn;
  }
}

TEST(SpectrumMeter, PiecesOfAnySize_GiveTheSameLevels) {
  const auto samples = Sine(5000, 700.0, 8000.0, 0.3);
  C_SpectrumMeter whole(C_Columns(5000, 33), 40, 8000);
  whole.Add(samples);
  whole.Finish();
  C_SpectrumMeter pieces(C_Columns(5000, 33), 40, 8000);
  for (std::size_t n = 0; n < samples.size(); n += 7) {
    pieces.Add(std::span(samples).subspan(n, std::min<std::size_t>(7, samples.size() - n)));
  }
  pieces.Finish();
  EXPECT_EQ(pieces.Levels(), whole.Levels());
}

TEST(SpectrumMeter, OneSample_FillsAllColumns) {
  C_SpectrumMeter meter(C_Columns(1, 10), 20, 16000);
  meter.Add(std::vector<float>{1.0F});
  meter.Finish();
  EXPECT_GT(LevelAt(meter, 10, 10, 0), 100);
  EXPECT_EQ(LevelAt(meter, 10, 10, 9), LevelAt(meter, 10, 10, 0));
}

}  // namespace
