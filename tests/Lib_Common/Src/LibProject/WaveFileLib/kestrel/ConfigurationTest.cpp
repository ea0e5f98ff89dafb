// SPDX-License-Identifier: Apache-2.0
#include "kestrel/Configuration.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

#include "VectorFiles.h"
#include "kestrel/FrameCoder.h"

namespace kestrel {
namespace {

TEST(Configuration, EveryListedRate_GivesItsFrame) {
  auto file = test::OpenVectorFile("configuration.txt");
  int nLines = 0;
  std::uint32_t dwRate = 0;
  for (S_Configuration want{};
       file >> dwRate >> want.nBitsPerFrame >> want.nWordsPerFrame >> want.nRegions >> want.nResult;
       ++nLines) {
    const S_Configuration got = Configure(dwRate);
    EXPECT_EQ(got.nBitsPerFrame, want.nBitsPerFrame) << dwRate;
    EXPECT_EQ(got.nWordsPerFrame, want.nWordsPerFrame) << dwRate;
    EXPECT_EQ(got.nRegions, want.nRegions) << dwRate;
    EXPECT_EQ(got.nResult, want.nResult) << dwRate;
  }
  EXPECT_EQ(nLines, 28);
}

TEST(Configuration, Every16BitRate_IsRoundedToTheNearestStep) {
  for (std::uint32_t dwRate = 0; dwRate <= 0xFFFF; ++dwRate) {
    const bool bInRange = dwRate >= 4800 && dwRate <= 32000;
    const auto nSteps = bInRange ? static_cast<int>(std::floor(dwRate / 800.0 + 0.5)) : 20;
    const S_Configuration got = Configure(dwRate);
    ASSERT_EQ(got.nWordsPerFrame, nSteps) << dwRate;
    ASSERT_EQ(got.nBitsPerFrame, 16 * nSteps) << dwRate;
    ASSERT_EQ(got.dwBitRate, static_cast<std::uint32_t>(800 * nSteps)) << dwRate;
    ASSERT_EQ(got.nResult, bInRange && dwRate % 800 == 0 ? 0 : 8) << dwRate;
    ASSERT_EQ(got.nRegions, nSteps >= 20 ? 14 : nSteps >= 15 ? 12 : nSteps >= 12 ? 10 : 8);
  }
}

TEST(Configuration, RegionCount_FollowsTheRoundedRate) {
  EXPECT_EQ(Configure(11599).nRegions, 10);
  EXPECT_EQ(Configure(11600).nRegions, 12);
  EXPECT_EQ(Configure(15599).nRegions, 12);
  EXPECT_EQ(Configure(15600).nRegions, 14);
  EXPECT_EQ(Configure(9199).nRegions, 8);
  EXPECT_EQ(Configure(9200).nRegions, 10);
}

TEST(Configuration, RatesBeyond16Bits_GiveTheDefault) {
  for (const std::uint32_t dwRate : {0x10000u, 0x10000u + 16000u, 0x80000000u, 0xFFFFFFFFu}) {
    EXPECT_EQ(Configure(dwRate).dwBitRate, 16000u) << dwRate;
    EXPECT_EQ(Configure(dwRate).nResult, 8) << dwRate;
  }
}

// Called through the entry points, which set both outputs whatever they return.
struct S_InitCase {
  unsigned int dwRate;
  int nWords;
  int nResult;
};

TEST(FrameCoderInit, BothDirections_ReportWordsSamplesAndResult) {
  for (const S_InitCase& want :
       {S_InitCase{4800, 6, 0}, {7200, 9, 0},   {8000, 10, 0},  {9600, 12, 0},  {11200, 14, 0},
        {12000, 15, 0},         {15200, 19, 0}, {16000, 20, 0}, {24000, 30, 0}, {32000, 40, 0},
        {7300, 9, 8},           {5200, 7, 8},   {5199, 6, 8},   {9599, 12, 8},  {15600, 20, 8},
        {31999, 40, 8},         {4799, 20, 8},  {0, 20, 8},     {32001, 20, 8}, {65535, 20, 8},
        {4000, 20, 8}}) {
    for (const auto init : {KestrelEncoderInit, KestrelDecoderInit}) {
      int nWords = -1;
      int nSamples = -1;
      EXPECT_EQ(init(want.dwRate, &nWords, &nSamples), want.nResult) << want.dwRate;
      EXPECT_EQ(nWords, want.nWords) << want.dwRate;
      EXPECT_EQ(nSamples, 320) << want.dwRate;
    }
  }
}

}  // namespace
}  // namespace kestrel
