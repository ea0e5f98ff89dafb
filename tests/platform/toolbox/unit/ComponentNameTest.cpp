// SPDX-License-Identifier: Apache-2.0
//
// The toolbox's strings, and the names that it gives its components with them.
#include <AudioToolbox/AudioToolbox.h>
#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>

#include "object/CoreString.h"

namespace {

std::string NameOf(OSType dwType) {
  const AudioComponentDescription description = {dwType, 0, 0, 0, 0};
  CFStringRef name = nullptr;
  EXPECT_EQ(noErr, AudioComponentCopyName(AudioComponentFindNext(nullptr, &description), &name));
  std::array<char, 64> text{};
  EXPECT_EQ(1, CFStringGetCString(name, text.data(), text.size(), kCFStringEncodingUTF8));
  if (name != nullptr) CFRelease(name);
  return text.data();
}

TEST(ComponentNameTest, BothComponentsNameTheirMakerAndThemselves) {
  EXPECT_EQ("Voxplay: Default Output", NameOf(kAudioUnitType_Output));
  EXPECT_EQ("Voxplay: File Player", NameOf(kAudioUnitType_Generator));
}

TEST(ComponentNameTest, WhatIsNoComponent_HasNoName) {
  CFStringRef name = reinterpret_cast<CFStringRef>(&name);
  EXPECT_EQ(kAudio_ParamError, AudioComponentCopyName(nullptr, &name));
  EXPECT_EQ(nullptr, name);
  const AudioComponentDescription any{};
  EXPECT_EQ(kAudio_ParamError,
            AudioComponentCopyName(AudioComponentFindNext(nullptr, &any), nullptr));
  int nInvented = 0;
  EXPECT_EQ(kAudio_ParamError,
            AudioComponentCopyName(reinterpret_cast<AudioComponent>(&nInvented), &name));
  EXPECT_EQ(nullptr, name);
}

TEST(ComponentNameTest, AUnitKnowsItsComponent_WhileItLives) {
  const AudioComponentDescription any{};
  const AudioComponent first = AudioComponentFindNext(nullptr, &any);
  const AudioComponent second = AudioComponentFindNext(first, &any);
  for (const AudioComponent component : {first, second}) {
    AudioUnit unit = nullptr;
    ASSERT_EQ(noErr, AudioComponentInstanceNew(component, &unit));
    EXPECT_EQ(component, AudioComponentInstanceGetComponent(unit));
    EXPECT_EQ(noErr, AudioComponentInstanceDispose(unit));
    EXPECT_EQ(nullptr, AudioComponentInstanceGetComponent(unit));
  }
  EXPECT_EQ(nullptr, AudioComponentInstanceGetComponent(nullptr));
}

TEST(CoreStringTest, TheTextNeedsRoomForAllOfIt) {
  const OpaqueCFString text("Echo");
  std::array<char, 6> buffer = {'#', '#', '#', '#', '#', '#'};
  EXPECT_EQ(0, CFStringGetCString(&text, buffer.data(), 4, kCFStringEncodingUTF8));
  EXPECT_EQ(0, CFStringGetCString(&text, buffer.data(), 0, kCFStringEncodingUTF8));
  EXPECT_EQ(0, CFStringGetCString(&text, buffer.data(), -1, kCFStringEncodingUTF8));
  EXPECT_EQ("######", std::string(buffer.data(), buffer.size()));
  EXPECT_EQ(1, CFStringGetCString(&text, buffer.data(), 5, kCFStringEncodingUTF8));
  EXPECT_EQ(std::string("Echo\0#", 6), std::string(buffer.data(), buffer.size()));
}

TEST(CoreStringTest, NothingAndOtherEncodings_AreRefused) {
  const OpaqueCFString text("Echo");
  std::array<char, 8> buffer{};
  EXPECT_EQ(0, CFStringGetCString(nullptr, buffer.data(), 8, kCFStringEncodingUTF8));
  EXPECT_EQ(0, CFStringGetCString(&text, nullptr, 8, kCFStringEncodingUTF8));
  EXPECT_EQ(0, CFStringGetCString(&text, buffer.data(), 8, 0));
  EXPECT_EQ(0, CFStringGetLength(nullptr));
  EXPECT_EQ(-1, CFStringGetMaximumSizeForEncoding(4, 0));
  EXPECT_EQ(-1, CFStringGetMaximumSizeForEncoding(-1, kCFStringEncodingUTF8));
}

TEST(CoreStringTest, Lengths_CountUnitsOfUtf16) {
  struct S_Row {
    const char* pszUtf8;
    CFIndex nLength;
  };
  // One character each of one, two, three and four bytes, and all of them.
  for (const S_Row& row :
       {S_Row{"", 0}, S_Row{"a", 1}, S_Row{"\xC3\xBC", 1}, S_Row{"\xE2\x82\xAC", 1},
        S_Row{"\xF0\x9D\x84\x9E", 2}, S_Row{"a\xC3\xBC\xE2\x82\xAC\xF0\x9D\x84\x9E", 5}}) {
    const OpaqueCFString text(row.pszUtf8);
    EXPECT_EQ(row.nLength, CFStringGetLength(&text)) << row.pszUtf8;
    // The room that is told for that length is enough.
    EXPECT_LE(static_cast<CFIndex>(text.text.size()),
              CFStringGetMaximumSizeForEncoding(row.nLength, kCFStringEncodingUTF8));
  }
  constexpr CFIndex kMost = std::numeric_limits<CFIndex>::max();
  EXPECT_EQ(12, CFStringGetMaximumSizeForEncoding(4, kCFStringEncodingUTF8));
  EXPECT_EQ(kMost / 3 * 3, CFStringGetMaximumSizeForEncoding(kMost / 3, kCFStringEncodingUTF8));
  EXPECT_EQ(-1, CFStringGetMaximumSizeForEncoding(kMost / 3 + 1, kCFStringEncodingUTF8));
}

}  // namespace
