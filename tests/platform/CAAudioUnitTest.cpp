// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "CAAudioUnit.h"
#include "Printed.h"

namespace {

TEST(CAAudioUnitTest, ChannelsAndRate_AreSetInTheUnitsFormat) {
  const CAComponent component(kAudioUnitType_Generator, kAudioUnitSubType_AudioFilePlayer,
                              kAudioUnitManufacturer_Apple);
  AudioUnit unit = nullptr;
  ASSERT_EQ(AudioComponentInstanceNew(component.Comp(), &unit), noErr);
  const CAAudioUnit wrapper(7, unit);
  EXPECT_TRUE(wrapper.IsValid());
  EXPECT_EQ(wrapper.GetAUNode(), 7);
  EXPECT_EQ(wrapper.SetNumberChannels(kAudioUnitScope_Output, 0, 1), noErr);
  EXPECT_EQ(wrapper.SetSampleRate(kAudioUnitScope_Output, 0, 16000), noErr);
  CAStreamBasicDescription format;
  EXPECT_EQ(wrapper.GetFormat(kAudioUnitScope_Output, 0, format), noErr);
  EXPECT_EQ(format.mSampleRate, 16000.0);
  EXPECT_EQ(format.mChannelsPerFrame, 1U);
  EXPECT_EQ(format.mFormatFlags, 41U);
  EXPECT_EQ(wrapper.SetNumberChannels(kAudioUnitScope_Output, 0, 99),
            kAudioUnitErr_FormatNotSupported);
  EXPECT_EQ(wrapper.SetSampleRate(kAudioUnitScope_Input, 0, 16000), kAudioUnitErr_InvalidScope);
  EXPECT_EQ(AudioComponentInstanceDispose(unit), noErr);
}

TEST(CAAudioUnitTest, AnEmptyWrapper_IsRefusedByTheToolbox) {
  const CAAudioUnit empty;
  EXPECT_FALSE(empty.IsValid());
  EXPECT_EQ(empty.AU(), nullptr);
  EXPECT_NE(empty.SetNumberChannels(kAudioUnitScope_Output, 0, 2), noErr);
  EXPECT_NE(empty.SetSampleRate(kAudioUnitScope_Output, 0, 44100), noErr);
}

TEST(CAAudioUnitTest, Print_WritesTheUnitItsNodeAndTheUnitsComponent) {
  const CAComponent component(kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput,
                              kAudioUnitManufacturer_Apple);
  AudioUnit unit = nullptr;
  ASSERT_EQ(AudioComponentInstanceNew(component.Comp(), &unit), noErr);
  const std::string strComponent =
      "CAComponent: " + Address(component.Comp()) +
      ", Manu:Voxplay, Name:Default Output"
      ", AudioComponentDescription: 'auou' - 'def ' - 'appl', 0x0, 0x0\n";
  EXPECT_EQ(Printed([&](std::FILE* p) { CAAudioUnit(7, unit).Print(p); }),
            "AudioUnit:" + Address(unit) + "\n\tnode=7\t" + strComponent);
  EXPECT_EQ(Printed([&](std::FILE* p) { CAAudioUnit(-2147483647 - 1, unit).Print(p); }),
            "AudioUnit:" + Address(unit) + "\n\tnode=-2147483648\t" + strComponent);
  EXPECT_EQ(CAAudioUnit(7, unit).Comp().Comp(), component.Comp());
  EXPECT_EQ(AudioComponentInstanceDispose(unit), noErr);
  EXPECT_FALSE(CAAudioUnit(7, unit).Comp().IsValid());
  // A wrapper that outlives its unit still prints, without a component.
  EXPECT_EQ(Printed([&](std::FILE* p) { CAAudioUnit(7, unit).Print(p); }),
            "AudioUnit:" + Address(unit) + "\n\tnode=7\tCAComponent: " + Address(nullptr) +
                ", AudioComponentDescription: 0x00000000 - 0x00000000 - 0x00000000, 0x0, 0x0\n");
}

TEST(CAAudioUnitTest, AnEmptyWrapper_PrintsItsFirstLineOnly) {
#ifdef __GLIBC__
  EXPECT_EQ(Printed([](std::FILE* p) { CAAudioUnit().Print(p); }), "AudioUnit:(nil)\n");
#endif
  EXPECT_EQ(Printed([](std::FILE* p) { CAAudioUnit().Print(p); }),
            "AudioUnit:" + Address(nullptr) + "\n");
  EXPECT_EQ(Printed([](std::FILE* p) { CAAudioUnit(7, nullptr).Print(p); }),
            "AudioUnit:" + Address(nullptr) + "\n");
  EXPECT_FALSE(CAAudioUnit().Comp().IsValid());
}

}  // namespace
