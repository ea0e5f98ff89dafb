// SPDX-License-Identifier: Apache-2.0
#include "sound/ScaledFrames.h"

#include <gtest/gtest.h>

namespace tool {
namespace {

TEST(ScaledFramesTest, OtherRate_RoundsToTheNearestFrame) {
  EXPECT_EQ(ScaledFrames(44100, 44100, 16000), 16000U);
  EXPECT_EQ(ScaledFrames(2, 3, 4), 3U);  // 2.67
  EXPECT_EQ(ScaledFrames(1, 3, 4), 1U);  // 1.33
  EXPECT_EQ(ScaledFrames(1, 2, 1), 1U);  // 0.5
}

TEST(ScaledFramesTest, GreatestRates_DoNotOverflow) {
  EXPECT_EQ(ScaledFrames(4294967294, 4294967295, 4294967294), 4294967293U);
  EXPECT_EQ(ScaledFrames(UINT64_MAX - 1, 1, 2), UINT64_MAX);
  EXPECT_EQ(ScaledFrames(UINT64_MAX / 2, 1, 2), UINT64_MAX - 1);
  EXPECT_EQ(ScaledFrames(UINT64_MAX, 16000, 16000), UINT64_MAX);
}

}  // namespace
}  // namespace tool
