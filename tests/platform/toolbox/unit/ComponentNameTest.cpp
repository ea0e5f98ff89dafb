// SPDX-License-Identifier: Apache-2.0
//
// The toolbox's strings, and the names that its components have as such strings.
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
  EXPECT_EQ(AudioComponentCopyName(AudioComponentFindNext(nullptr, &description), &name), noErr);
  std::array<char, 64> text{};
  EXPECT_EQ(CFStringGetCString(name, text.data(), text.size(), kCFStringEncodingUTF8), 1);
  if (name != nullptr) CFRelease(name);
  return text.data();
}

TEST(ComponentNameTest, BothComponents_NameTheirMakerAndThemselves) {
  EXPECT_EQ(NameOf(kAudioUnitType_Output), "Voxplay: Default Output");
  EXPECT_EQ(NameOf(kAudioUnitType_Generator), "Voxplay: File Player");
}

TEST(ComponentNameTest, AnythingElse_HasNoName) {
  CFStringRef name = reinterpret_cast<CFStringRef>(&name);
  EXPECT_EQ(AudioComponentCopyName(nullptr, &name), kAudio_ParamError);
  EXPECT_EQ(name, nullptr);
  const AudioComponentDescription any{};
  EXPECT_EQ(AudioComponentCopyName(AudioComponentFindNext(nullptr, &any), nullptr),
            kAudio_ParamError);
  int nInvented = 0;
  EXPECT_EQ(AudioComponentCopyName(reinterpret_cast<AudioComponent>(&nInvented), &name),
            kAudio_ParamError);
  EXPECT_EQ(name, nullptr);
}

TEST(ComponentNameTest, AUnitKnowsItsComponent_WhileItLives) {
  const AudioComponentDescription any{};
  const AudioComponent first = AudioComponentFindNext(nullptr, &any);
  const AudioComponent second = AudioComponentFindNext(first, &any);
  for (const AudioComponent component : {first, second}) {
    AudioUnit unit = nullptr;
    ASSERT_EQ(AudioComponentInstanceNew(component, &unit), noErr);
    EXPECT_EQ(AudioComponentInstanceGetComponent(unit), component);
    EXPECT_EQ(AudioComponentInstanceDispose(unit), noErr);
    EXPECT_EQ(AudioComponentInstanceGetComponent(unit), nullptr);
  }
  EXPECT_EQ(AudioComponentInstanceGetComponent(nullptr), nullptr);
}

TEST(CoreStringTest, Text_NeedsRoomForAllOfIt) {
  const OpaqueCFString text("Echo");
  std::array<char, 6> buffer = {'#', '#', '#', '#', '#', '#'};
  EXPECT_EQ(CFStringGetCString(&text, buffer.data(), 4, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(CFStringGetCString(&text, buffer.data(), 0, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(CFStringGetCString(&text, buffer.data(), -1, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(std::string(buffer.data(), buffer.size()), "######");
  EXPECT_EQ(CFStringGetCString(&text, buffer.data(), 5, kCFStringEncodingUTF8), 1);
  EXPECT_EQ(std::string(buffer.data(), buffer.size()), std::string("Echo\0#", 6));
}

TEST(CoreStringTest, NothingAndOtherEncodings_AreRefused) {
  const OpaqueCFString text("Echo");
  std::array<char, 8> buffer{};
  EXPECT_EQ(CFStringGetCString(nullptr, buffer.data(), 8, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(CFStringGetCString(&text, nullptr, 8, kCFStringEncodingUTF8), 0);
  EXPECT_EQ(CFStringGetCString(&text, buffer.data(), 8, 0), 0);
  EXPECT_EQ(CFStringGetLength(nullptr), 0);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(4, 0), -1);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(-1, kCFStringEncodingUTF8), -1);
}

TEST(CoreStringTest, Lengths_CountUnitsOfUtf16) {
  struct S_Row {
    const char* pszUtf8;
    CFIndex nLength;
  };
  // No character; one character of one, two, three or four bytes; and all of these together.
  for (const S_Row& row :
       {S_Row{"", 0}, S_Row{"a", 1}, S_Row{"\xC3\xBC", 1}, S_Row{"\xE2\x82\xAC", 1},
        S_Row{"\xF0\x9D\x84\x9E", 2}, S_Row{"a\xC3\xBC\xE2\x82\xAC\xF0\x9D\x84\x9E", 5}}) {
    const OpaqueCFString text(row.pszUtf8);
    EXPECT_EQ(CFStringGetLength(&text), row.nLength) << row.pszUtf8;
    // The size reported for that length is large enough.
    EXPECT_LE(static_cast<CFIndex>(text.text.size()),
              CFStringGetMaximumSizeForEncoding(row.nLength, kCFStringEncodingUTF8));
  }
  constexpr CFIndex kMost = std::numeric_limits<CFIndex>::max();
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(4, kCFStringEncodingUTF8), 12);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(kMost / 3, kCFStringEncodingUTF8), kMost / 3 * 3);
  EXPECT_EQ(CFStringGetMaximumSizeForEncoding(kMost / 3 + 1, kCFStringEncodingUTF8), -1);
}

}  // namespace
