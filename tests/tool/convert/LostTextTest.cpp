// SPDX-License-Identifier: Apache-2.0
#include "convert/LostText.h"

#include <gtest/gtest.h>

namespace tool {
namespace {

TEST(LostTextTest, SentencesOfOneReason_BecomeOne) {
  EXPECT_EQ(LostText({"event 1 at frame 4800: an SP header holds no events",
                      "event 2 at frame 4900: an SP header holds no events",
                      "event 3 at frame 5000: an SP header holds no events",
                      "label 1 of cue point 3: an SP header holds no labels"}),
            "3 events and 1 label are not kept: an SP header holds none");
  EXPECT_EQ(LostText({"chunk 1 \"bext\": a codec head holds no further chunks"}),
            "1 chunk is not kept: a codec head holds none");
}

TEST(LostTextTest, EveryKind_IsNamed) {
  EXPECT_EQ(LostText({"silence 1 at frame 0: a VEF file holds no silence",
                      "region text 1 of cue point 2: a VEF file holds no region texts",
                      "sampler record: a VEF file holds no sampler record"}),
            "1 silence segment, 1 region text and 1 sampler record are not kept: a VEF file holds "
            "none");
}

TEST(LostTextTest, OtherReasons_StandBehindTheFirst) {
  EXPECT_EQ(
      LostText({"label 1 of cue point 3: readers take it for an event",
                "label 2 of cue point 4: readers take it for an event",
                "region 1 at frame 7: a VEF file holds no regions"}),
      "2 labels are not kept as before: readers take it for an event; 1 region is not kept: a VEF "
      "file holds none");
}

TEST(LostTextTest, WhatCannotBeReadBack_IsNotCalledKept) {
  EXPECT_EQ(LostText({"event 1 at frame 48: cannot be read back from a Heron stream",
                      "event 2 at frame 90: cannot be read back from a Heron stream"}),
            "2 events cannot be read back from a Heron stream");
}

TEST(LostTextTest, PartsOfMarks_AreNamedWithThem) {
  EXPECT_EQ(LostText({"event 1 at frame 48: its data is not kept: a WAV file holds none",
                      "event 2 at frame 49: its data is not kept: a WAV file holds none",
                      "event 3 at frame 50: its data and its description are not kept: a WAV file "
                      "holds none"}),
            "the data of 2 events is not kept: a WAV file holds none; the data and the description "
            "of 1 event are not kept: a WAV file holds none");
}

TEST(LostTextTest, NothingLost_IsNothingSaid) { EXPECT_EQ(LostText({}), ""); }

}  // namespace
}  // namespace tool
