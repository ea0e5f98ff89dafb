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
  EXPECT_EQ(4U, Describe(41, 4, 2, 32).SampleWordSize());
  EXPECT_EQ(2U, Describe(12, 4, 2, 16).SampleWordSize());
  EXPECT_EQ(0U, Describe(12, 4, 0, 16).SampleWordSize());
  EXPECT_EQ(0U, Describe(12, 0, 2, 16).SampleWordSize());
  EXPECT_EQ(0U, CAStreamBasicDescription().SampleWordSize());
  // Sample and frame are the same thing only where the channels lie apart, which only PCM can.
  auto other = Describe(32, 6, 2, 16);
  EXPECT_EQ(6U, other.SampleWordSize());
  other.mFormatID = kAudioFormatULaw;
  EXPECT_EQ(3U, other.SampleWordSize());
  EXPECT_EQ(1U, Describe(12, 5, 3, 8).SampleWordSize());
}

TEST(CAStreamBasicDescriptionTest, ChangingTheChannels_KeepsTheSampleAndTheLayout) {
  auto planar = Describe(41, 4, 2, 32);
  planar.ChangeNumberChannels(1, planar.IsInterleaved());
  EXPECT_EQ(1U, planar.NumberChannels());
  EXPECT_EQ(4U, planar.mBytesPerFrame);
  EXPECT_EQ(41U, planar.mFormatFlags);
  auto interleaved = Describe(12, 2, 1, 16);
  interleaved.ChangeNumberChannels(3, interleaved.IsInterleaved());
  EXPECT_EQ(6U, interleaved.mBytesPerFrame);
  EXPECT_EQ(6U, interleaved.mBytesPerPacket);
  EXPECT_EQ(12U, interleaved.mFormatFlags);
  interleaved.ChangeNumberChannels(2, false);
  EXPECT_EQ(2U, interleaved.mBytesPerFrame);
  EXPECT_EQ(44U, interleaved.mFormatFlags);
  interleaved.ChangeNumberChannels(2, true);
  EXPECT_EQ(4U, interleaved.mBytesPerFrame);
  EXPECT_EQ(12U, interleaved.mFormatFlags);
  auto empty = Describe(12, 0, 0, 16);
  empty.ChangeNumberChannels(2, true);
  EXPECT_EQ(4U, empty.mBytesPerFrame);
}

}  // namespace
