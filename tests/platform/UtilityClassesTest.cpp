// SPDX-License-Identifier: Apache-2.0
//
// The audio utility classes over the toolbox.
#include <gtest/gtest.h>

#include <string>

#include "CAAudioUnit.h"
#include "CAComponent.h"
#include "CAStreamBasicDescription.h"
#include "CAXException.h"

namespace {

TEST(CAXExceptionTest, CarriesTheOperationAndTheStatus) {
  const CAXException thrown("AUGraphStart", -10867);
  EXPECT_STREQ("AUGraphStart", thrown.Operation());
  EXPECT_STREQ("AUGraphStart", thrown.what());
  EXPECT_EQ(-10867, thrown.Error());
}

TEST(CAXExceptionTest, KeepsACopyOfTheText_CutAt255Characters) {
  std::string strText(300, 'x');
  const CAXException thrown(strText.c_str(), 1);
  strText.assign(300, 'y');
  EXPECT_EQ(std::string(255, 'x'), thrown.Operation());
  EXPECT_STREQ("", CAXException(nullptr, 1).Operation());
}

TEST(CAXExceptionTest, EveryStatusButZero_Throws) {
  EXPECT_NO_THROW(XThrowIfError(0, "a"));
  EXPECT_THROW(XThrowIfError(1, "a"), CAXException);
  EXPECT_THROW(XThrowIfError(-1, "a"), CAXException);
}

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

TEST(CAComponentTest, FindsWhatExists) {
  const CAComponent player(kAudioUnitType_Generator, kAudioUnitSubType_AudioFilePlayer,
                           kAudioUnitManufacturer_Apple);
  EXPECT_TRUE(player.IsValid());
  EXPECT_EQ(OSType{kAudioUnitType_Generator}, player.Desc().componentType);
  const CAComponent none(kAudioUnitType_Generator, kAudioUnitSubType_DefaultOutput, 0);
  EXPECT_FALSE(none.IsValid());
  EXPECT_EQ(nullptr, none.Comp());
  EXPECT_FALSE(CAComponent().IsValid());
}

TEST(CAAudioUnitTest, ChannelsAndRate_AreSetInTheUnitsFormat) {
  const CAComponent component(kAudioUnitType_Generator, kAudioUnitSubType_AudioFilePlayer,
                              kAudioUnitManufacturer_Apple);
  AudioUnit unit = nullptr;
  ASSERT_EQ(noErr, AudioComponentInstanceNew(component.Comp(), &unit));
  const CAAudioUnit wrapper(7, unit);
  EXPECT_TRUE(wrapper.IsValid());
  EXPECT_EQ(7, wrapper.GetAUNode());
  EXPECT_EQ(noErr, wrapper.SetNumberChannels(kAudioUnitScope_Output, 0, 1));
  EXPECT_EQ(noErr, wrapper.SetSampleRate(kAudioUnitScope_Output, 0, 16000));
  CAStreamBasicDescription format;
  EXPECT_EQ(noErr, wrapper.GetFormat(kAudioUnitScope_Output, 0, format));
  EXPECT_EQ(16000.0, format.mSampleRate);
  EXPECT_EQ(1U, format.mChannelsPerFrame);
  EXPECT_EQ(41U, format.mFormatFlags);
  EXPECT_EQ(kAudioUnitErr_FormatNotSupported,
            wrapper.SetNumberChannels(kAudioUnitScope_Output, 0, 99));
  EXPECT_EQ(kAudioUnitErr_InvalidScope, wrapper.SetSampleRate(kAudioUnitScope_Input, 0, 16000));
  EXPECT_EQ(noErr, AudioComponentInstanceDispose(unit));
}

TEST(CAAudioUnitTest, AnEmptyWrapper_IsRefusedByTheToolbox) {
  const CAAudioUnit empty;
  EXPECT_FALSE(empty.IsValid());
  EXPECT_EQ(nullptr, empty.AU());
  EXPECT_NE(noErr, empty.SetNumberChannels(kAudioUnitScope_Output, 0, 2));
  EXPECT_NE(noErr, empty.SetSampleRate(kAudioUnitScope_Output, 0, 44100));
}

}  // namespace
