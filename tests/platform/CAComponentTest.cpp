// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "CAComponent.h"
#include "Printed.h"

namespace {

TEST(CAComponentTest, Constructor_FindsWhatExists) {
  const CAComponent player(kAudioUnitType_Generator, kAudioUnitSubType_AudioFilePlayer,
                           kAudioUnitManufacturer_Apple);
  EXPECT_TRUE(player.IsValid());
  EXPECT_EQ(player.Desc().componentType, OSType{kAudioUnitType_Generator});
  const CAComponent none(kAudioUnitType_Generator, kAudioUnitSubType_DefaultOutput, 0);
  EXPECT_FALSE(none.IsValid());
  EXPECT_EQ(none.Comp(), nullptr);
  EXPECT_FALSE(CAComponent().IsValid());
}

TEST(CAComponentTest, Print_WritesItsAddressItsNamesAndItsDescription) {
  const CAComponent output(kAudioUnitType_Output, kAudioUnitSubType_DefaultOutput,
                           kAudioUnitManufacturer_Apple);
  EXPECT_EQ(Printed([&](std::FILE* p) { output.Print(p); }),
            "CAComponent: " + Address(output.Comp()) +
                ", Manu:Voxplay, Name:Default Output"
                ", AudioComponentDescription: 'auou' - 'def ' - 'appl', 0x0, 0x0\n");
  const CAComponent player(kAudioUnitType_Generator, kAudioUnitSubType_AudioFilePlayer,
                           kAudioUnitManufacturer_Apple);
  EXPECT_EQ(Printed([&](std::FILE* p) { player.Print(p); }),
            "CAComponent: " + Address(player.Comp()) +
                ", Manu:Voxplay, Name:File Player"
                ", AudioComponentDescription: 'augn' - 'afpl' - 'appl', 0x0, 0x0\n");
}

TEST(CAComponentTest, WithoutAComponent_PrintsNoNames) {
  EXPECT_EQ(Printed([](std::FILE* p) { CAComponent().Print(p); }),
            "CAComponent: " + Address(nullptr) +
                ", AudioComponentDescription: 0x00000000 - 0x00000000 - 0x00000000, 0x0, 0x0\n");
  const CAComponent none(AudioComponentDescription{0x61626364, 1, 0x5C616263, 0xABCDEF01, 0x10});
  EXPECT_EQ(Printed([&](std::FILE* p) { none.Print(p); }),
            "CAComponent: " + Address(nullptr) +
                ", AudioComponentDescription: 'abcd' - 0x00000001 - 0x5C616263"
                ", 0xABCDEF01, 0x10\n");
}

TEST(CAComponentTest, MadeFromAComponent_HasTheToolboxsDescriptionOfIt) {
  const CAComponent output(kAudioUnitType_Output, 0, 0);
  EXPECT_EQ(output.Desc().componentSubType, 0U);
  const CAComponent same(output.Comp());
  EXPECT_EQ(same.Comp(), output.Comp());
  EXPECT_EQ(same.Desc().componentSubType, OSType{kAudioUnitSubType_DefaultOutput});
  EXPECT_EQ(same.Desc().componentManufacturer, OSType{kAudioUnitManufacturer_Apple});
  const CAComponent none(AudioComponent{nullptr});
  EXPECT_FALSE(none.IsValid());
  EXPECT_EQ(none.Desc().componentType, 0U);
}

TEST(CAComponentTest, ADescription_PrintsItsThreeCodesItsFlagsAndTheirMask) {
  const auto Print = [](const AudioComponentDescription& desc) {
    return Printed([&](std::FILE* p) { PrintComponentDescription(desc, p); });
  };
  EXPECT_EQ(Print({0x61756F75, 0x64656620, 0x6170706C, 0, 0}),
            "AudioComponentDescription: 'auou' - 'def ' - 'appl', 0x0, 0x0\n");
  EXPECT_EQ(
      Print({2, 0x61206220, 0xFFFFFFFF, 0xDEADBEEF, 0xFFFFFFFF}),
      "AudioComponentDescription: 0x00000002 - 'a b ' - 0xFFFFFFFF, 0xDEADBEEF, 0xFFFFFFFF\n");
}

}  // namespace
