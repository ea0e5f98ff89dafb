// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "CAStreamBasicDescription.h"

namespace {

CAStreamBasicDescription Describe(AudioFormatFlags dwFlags, UInt32 cbFrame, UInt32 dwChannels,
                                  UInt32 dwBits) {
  return CAStreamBasicDescription(AudioStreamBasicDescription{
      44100, kAudioFormatLinearPCM, dwFlags, cbFrame, 1, cbFrame, dwChannels, dwBits, 0});
}

TEST(CAStreamBasicDescriptionTest, TheWordSize_IsThatOfOneSample) {
  EXPECT_EQ(Describe(41, 4, 2, 32).SampleWordSize(), 4U);
  EXPECT_EQ(Describe(12, 4, 2, 16).SampleWordSize(), 2U);
  EXPECT_EQ(Describe(12, 4, 0, 16).SampleWordSize(), 0U);
  EXPECT_EQ(Describe(12, 0, 2, 16).SampleWordSize(), 0U);
  EXPECT_EQ(CAStreamBasicDescription().SampleWordSize(), 0U);
  // A sample and a frame are the same only where each channel has its own buffer, and only PCM can
  // have that.
  auto other = Describe(32, 6, 2, 16);
  EXPECT_EQ(other.SampleWordSize(), 6U);
  other.mFormatID = kAudioFormatULaw;
  EXPECT_EQ(other.SampleWordSize(), 3U);
  EXPECT_EQ(Describe(12, 5, 3, 8).SampleWordSize(), 1U);
}

TEST(CAStreamBasicDescriptionTest, ChangingTheChannels_KeepsTheSampleAndTheLayout) {
  auto planar = Describe(41, 4, 2, 32);
  planar.ChangeNumberChannels(1, planar.IsInterleaved());
  EXPECT_EQ(planar.NumberChannels(), 1U);
  EXPECT_EQ(planar.mBytesPerFrame, 4U);
  EXPECT_EQ(planar.mFormatFlags, 41U);
  auto interleaved = Describe(12, 2, 1, 16);
  interleaved.ChangeNumberChannels(3, interleaved.IsInterleaved());
  EXPECT_EQ(interleaved.mBytesPerFrame, 6U);
  EXPECT_EQ(interleaved.mBytesPerPacket, 6U);
  EXPECT_EQ(interleaved.mFormatFlags, 12U);
  interleaved.ChangeNumberChannels(2, false);
  EXPECT_EQ(interleaved.mBytesPerFrame, 2U);
  EXPECT_EQ(interleaved.mFormatFlags, 44U);
  interleaved.ChangeNumberChannels(2, true);
  EXPECT_EQ(interleaved.mBytesPerFrame, 4U);
  EXPECT_EQ(interleaved.mFormatFlags, 12U);
  auto empty = Describe(12, 0, 0, 16);
  empty.ChangeNumberChannels(2, true);
  EXPECT_EQ(empty.mBytesPerFrame, 4U);
}

}  // namespace
