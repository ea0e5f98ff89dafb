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

TEST(CAAudioUnitTest, PrintsItsUnitItsNodeAndTheUnitsComponent) {
  const CAComponent component(kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput,
                              kAudioUnitManufacturer_Apple);
  AudioUnit unit = nullptr;
  ASSERT_EQ(noErr, AudioComponentInstanceNew(component.Comp(), &unit));
  const std::string strComponent =
      "CAComponent: " + Address(component.Comp()) +
      ", Manu:Voxplay, Name:Default Output"
      ", AudioComponentDescription: 'auou' - 'def ' - 'appl', 0x0, 0x0\n";
  EXPECT_EQ("AudioUnit:" + Address(unit) + "\n\tnode=7\t" + strComponent,
            Printed([&](std::FILE* p) { CAAudioUnit(7, unit).Print(p); }));
  EXPECT_EQ("AudioUnit:" + Address(unit) + "\n\tnode=-2147483648\t" + strComponent,
            Printed([&](std::FILE* p) { CAAudioUnit(-2147483647 - 1, unit).Print(p); }));
  EXPECT_EQ(component.Comp(), CAAudioUnit(7, unit).Comp().Comp());
  EXPECT_EQ(noErr, AudioComponentInstanceDispose(unit));
  EXPECT_FALSE(CAAudioUnit(7, unit).Comp().IsValid());
  // A wrapper that outlived its unit still prints, without a component.
  EXPECT_EQ("AudioUnit:" + Address(unit) + "\n\tnode=7\tCAComponent: " + Address(nullptr) +
                ", AudioComponentDescription: 0x00000000 - 0x00000000 - 0x00000000, 0x0, 0x0\n",
            Printed([&](std::FILE* p) { CAAudioUnit(7, unit).Print(p); }));
}

TEST(CAAudioUnitTest, AnEmptyWrapper_PrintsItsFirstLineOnly) {
#ifdef __GLIBC__
  EXPECT_EQ("AudioUnit:(nil)\n", Printed([](std::FILE* p) { CAAudioUnit().Print(p); }));
#endif
  EXPECT_EQ("AudioUnit:" + Address(nullptr) + "\n",
            Printed([](std::FILE* p) { CAAudioUnit().Print(p); }));
  EXPECT_EQ("AudioUnit:" + Address(nullptr) + "\n",
            Printed([](std::FILE* p) { CAAudioUnit(7, nullptr).Print(p); }));
  EXPECT_FALSE(CAAudioUnit().Comp().IsValid());
}

}  // namespace
