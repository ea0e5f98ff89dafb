// SPDX-License-Identifier: Apache-2.0
#include "base/TimeText.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using tool::C_Time;
using tool::ClockText;

constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();

std::uint64_t Frame(std::string_view text, std::uint32_t dwRate = 16000) {
  const auto time = C_Time::Parse(text);
  EXPECT_TRUE(time.has_value()) << text;
  return time ? time->FrameAt(dwRate) : kMost;
}

TEST(TimeText, Clock_HasMinutesSecondsAndThousandths) {
  EXPECT_EQ(ClockText(0, 16000), "0:00.000");
  EXPECT_EQ(ClockText(81920, 16000), "0:05.120");
  EXPECT_EQ(ClockText(61 * 8000 + 4, 8000), "1:01.001");
}

TEST(TimeText, ThousandthsThatRoundUp_AreCarried) {
  EXPECT_EQ(ClockText(59 * 48000 + 47999, 48000), "1:00.000");
  EXPECT_EQ(ClockText(3600ULL * 48000 - 1, 48000), "1:00:00.000");
}

TEST(TimeText, LongSounds_HaveHours) {
  EXPECT_EQ(ClockText(36005ULL * 44100, 44100), "10:00:05.000");
  EXPECT_EQ(ClockText(kMost, 1).substr(0, 16), "5124095576030431");
}

TEST(TimeText, NoRate_GivesNoTime) {
  EXPECT_EQ(ClockText(100, 0), "?");
  EXPECT_EQ(tool::SecondsOf(100, 0), 0.0);
}

TEST(TimeText, Counts_AreGrouped) {
  EXPECT_EQ(tool::CountText(0), "0");
  EXPECT_EQ(tool::CountText(999), "999");
  EXPECT_EQ(tool::CountText(1000), "1,000");
  EXPECT_EQ(tool::CountText(1234567), "1,234,567");
  EXPECT_EQ(tool::CountedText(1, "frame"), "1 frame");
  EXPECT_EQ(tool::CountedText(0, "frame"), "0 frames");
}

TEST(TimeText, Seconds_AreRoundedToTheNearestFrame) {
  EXPECT_EQ(Frame("2.5"), 40000U);
  EXPECT_EQ(Frame("0"), 0U);
  EXPECT_EQ(Frame(".5"), 8000U);
  EXPECT_EQ(Frame("7."), 112000U);
  EXPECT_EQ(Frame("0.00003"), 0U);
  EXPECT_EQ(Frame("0.00004"), 1U);
}

TEST(TimeText, Clocks_AreParsed) {
  EXPECT_EQ(Frame("1:02.500"), 62500U * 16);
  EXPECT_EQ(Frame("90:00"), 5400U * 16000);
  EXPECT_EQ(Frame("1:00:00.5"), 3600U * 16000 + 8000);
}

TEST(TimeText, Samples_AreFramesAtAnyRate) {
  EXPECT_EQ(Frame("32000s", 8000), 32000U);
  EXPECT_EQ(Frame("0s"), 0U);
}

TEST(TimeText, OtherTexts_AreNoTimes) {
  for (const char* const pszText : {"",
                                    "s",
                                    "-1",
                                    "+1",
                                    "1e3",
                                    "abc",
                                    "1:60",
                                    "1:2:60",
                                    "1:60:00",
                                    "1:2:3:4",
                                    "1.5:00",
                                    ":",
                                    "1:",
                                    ":30",
                                    "1..2",
                                    ".",
                                    "1.5s",
                                    "-5s",
                                    "99999999999999999999s",
                                    "1 ",
                                    " 1",
                                    "1,5",
                                    "inf",
                                    "nan",
                                    "0x10"}) {
    EXPECT_FALSE(C_Time::Parse(pszText).has_value()) << pszText;
  }
}

TEST(TimeText, TimesInTheSameUnit_HaveAnOrder) {
  EXPECT_TRUE(*C_Time::Parse("0.5") < *C_Time::Parse("1:00"));
  EXPECT_TRUE(*C_Time::Parse("10s") > *C_Time::Parse("9s"));
  EXPECT_TRUE(*C_Time::Parse("2") <= *C_Time::Parse("0:02"));
  EXPECT_FALSE(*C_Time::Parse("2") < *C_Time::Parse("9s"));
  EXPECT_FALSE(*C_Time::Parse("2") >= *C_Time::Parse("9s"));
}

TEST(TimeText, HugeTimes_AreRefusedOrLimited) {
  EXPECT_FALSE(C_Time::Parse("9007199254740994").has_value());
  EXPECT_EQ(Frame("9007199254740992", 4000000000U), std::uint64_t{1} << 53U);
  EXPECT_FALSE(C_Time::OfSeconds(-0.5).has_value());
  EXPECT_FALSE(C_Time::OfSeconds(std::numeric_limits<double>::quiet_NaN()).has_value());
}

}  // namespace
