// SPDX-License-Identifier: Apache-2.0
#include "batch/SoundNames.h"

#include <gtest/gtest.h>

namespace tool {
namespace {

TEST(SoundNamesTest, ExtensionOfASound_IsReplaced) {
  EXPECT_EQ(WithExtension("a/b.wav", ".kst"), "a/b.kst");
  EXPECT_EQ(WithExtension("B.FLAC", ".kst"), "B.kst");
  EXPECT_EQ(WithExtension("a.b.wav", ".hrn"), "a.b.hrn");
}

TEST(SoundNamesTest, OtherExtension_BelongsToTheName) {
  EXPECT_EQ(WithExtension("message.001", ".wav"), "message.001.wav");
  EXPECT_EQ(WithExtension("a.wav/b", ".kst"), "a.wav/b.kst");
  EXPECT_EQ(WithExtension(".wav", ".kst"), ".wav.kst");
  EXPECT_EQ(WithExtension("voice", ".kst"), "voice.kst");
}

TEST(SoundNamesTest, Extension_IsThatOfTheLastPart) {
  EXPECT_EQ(ExtensionOf("a.b/c"), "");
  EXPECT_EQ(ExtensionOf("a.b/c.Wav"), ".Wav");
  EXPECT_EQ(LowerExtensionOf("c.Wav"), ".wav");
  EXPECT_EQ(NameIn("a/b/c.wav"), "c.wav");
}

}  // namespace
}  // namespace tool
