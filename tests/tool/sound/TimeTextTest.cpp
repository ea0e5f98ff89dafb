// SPDX-License-Identifier: Apache-2.0
#include "sound/TimeText.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using tool::FrameOfTime;
using tool::TimeText;

TEST(TimeText, Seconds_AreMinutesAndSeconds) {
  EXPECT_EQ(TimeText(5.12), "0:05.120");
  EXPECT_EQ(TimeText(61.5, 1), "1:01.5");
  EXPECT_EQ(TimeText(0.0, 0), "0:00");
}

TEST(TimeText, AnHourAndMore_HasHours) {
  EXPECT_EQ(TimeText(3599.0, 0), "59:59");
  EXPECT_EQ(TimeText(3600.0, 0), "1:00:00");
  EXPECT_EQ(TimeText(36061.25, 2), "10:01:01.25");
}

TEST(TimeText, RoundingUp_CarriesIntoMinutes) {
  EXPECT_EQ(TimeText(59.9999), "1:00.000");
  EXPECT_EQ(TimeText(3599.9999), "1:00:00.000");
}

TEST(FrameOfTime, EveryWayOfWritingATime_IsUnderstood) {
  EXPECT_EQ(FrameOfTime("5.5", 16000), 88000u);
  EXPECT_EQ(FrameOfTime("1:30", 8000), 720000u);
  EXPECT_EQ(FrameOfTime("1:00:00.5", 1000), 3600500u);
  EXPECT_EQ(FrameOfTime("32000s", 16000), 32000u);
  EXPECT_EQ(FrameOfTime("0", 16000), 0u);
}

TEST(FrameOfTime, AnythingElse_IsNone) {
  for (const char* const pszText :
       {"", "s", "-1", "+1", "1e3", "nan", "inf", "1:", ":1", "1:2:3:4", "1.5s", "1:2s", "5 ", "0x5",
        "1..2"}) {
    EXPECT_EQ(FrameOfTime(pszText, 16000), std::nullopt) << pszText;
  }
}

TEST(FrameOfTime, TimeThatNoSoundReaches_IsTheLastFrame) {
  EXPECT_EQ(FrameOfTime(std::string(300, '9'), 48000), std::uint64_t{1} << 62U);
  EXPECT_EQ(FrameOfTime("99999999999999999999s", 1), std::uint64_t{1} << 62U);
}

}  // namespace
