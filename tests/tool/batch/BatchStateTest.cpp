// SPDX-License-Identifier: Apache-2.0
#include "batch/BatchState.h"

#include <gtest/gtest.h>

#include "batch/DurationText.h"

namespace tool {
namespace {

S_BatchState State() {
  S_BatchState state;
  state.qwAll = 2000;
  state.qwDone = 1999;
  state.qwFailed = 1;
  state.dSoundSeconds = 3 * 3600 + 12 * 60;
  state.dSeconds = 41;
  return state;
}

TEST(BatchStateTest, Summary_TellsFilesSoundAndTime) {
  S_BatchState state = State();
  EXPECT_EQ(SummaryText(state, "converted"),
            "2000 files: 1999 converted, 1 failed; 3 h 12 min of sound in 41 s");
  state.qwDamaged = 3;
  state.qwSkipped = 4;
  EXPECT_EQ(
      SummaryText(state, "converted"),
      "2000 files: 1999 converted (3 with damaged frames), 4 skipped, 1 failed; 3 h 12 min of "
      "sound in 41 s");
  EXPECT_EQ(StoppedText("interrupted", state, "converted"),
            "interrupted: 1999 of 2000 files converted");
}

TEST(BatchStateTest, Progress_FitsItsColumns) {
  S_BatchState state = State();
  state.qwDone = 998;
  EXPECT_EQ(ProgressText(state, 1.0, 120.0, 100),
            "[==========          ] 999/2000 files (1 failed), 284 x real time, 41 s left");
  EXPECT_EQ(ProgressText(state, 1.0, 120.0, 60),
            "999/2000 files (1 failed), 284 x real time, 41 s left");
  EXPECT_EQ(ProgressText(state, 1.0, 120.0, 50), "999/2000 files (1 failed), 284 x real time");
  EXPECT_EQ(ProgressText(state, 1.0, 120.0, 30), "999/2000 files (1 failed)");
  EXPECT_EQ(ProgressText(state, 1.0, 120.0, 10), "");
  EXPECT_EQ(ProgressText(state, 1.0, 120.0, 0), "");
}

TEST(BatchStateTest, FilesThatAreSkipped_DoNotCountAsQuick) {
  S_BatchState state;
  state.qwAll = 1000;
  state.qwSkipped = 890;
  state.qwDone = 10;
  state.dSeconds = 20.0;
  EXPECT_EQ(ProgressText(state, 0.0, 0.0, 100),
            "[==================  ] 900/1000 files, 0 x real time, 3 min 20 s left");
  state.qwDone = 0;
  EXPECT_EQ(ProgressText(state, 0.0, 0.0, 100), "[=================   ] 890/1000 files");
}

TEST(BatchStateTest, ProgressOfOneFile_IsInPercent) {
  S_BatchState state;
  state.qwAll = 1;
  state.dSeconds = 0.5;
  EXPECT_EQ(ProgressText(state, 0.25, 10.0, 80), "[=====               ] 25 %");
  state.dSeconds = 2.0;
  EXPECT_EQ(ProgressText(state, 0.25, 10.0, 80),
            "[=====               ] 25 %, 5 x real time, 6 s left");
}

TEST(BatchStateTest, Results_AreCounted) {
  S_BatchState state;
  S_FileResult result;
  result.dwRate = 8000;
  result.qwFrames = 16000;
  state.Count(result);
  result.qwDamaged = 1;
  state.Count(result);
  result.eState = tagFileState::FILE_FAILED;
  state.Count(result);
  result.eState = tagFileState::FILE_SKIPPED;
  state.Count(result);
  EXPECT_EQ(state.qwDone, 2U);
  EXPECT_EQ(state.qwDamaged, 1U);
  EXPECT_EQ(state.qwFailed, 1U);
  EXPECT_EQ(state.qwSkipped, 1U);
  EXPECT_EQ(state.dSoundSeconds, 6.0);
}

TEST(BatchStateTest, WhatIsCut_IsToldBesideWhatIsDamaged) {
  S_BatchState state;
  state.qwAll = state.qwDone = 5;
  state.qwCut = 2;
  EXPECT_EQ(SummaryText(state, "converted"), "5 files: 5 converted (2 cut); 0 s of sound in 0 s");
  state.qwDamaged = 1;
  EXPECT_EQ(SummaryText(state, "converted"),
            "5 files: 5 converted (1 with damaged frames, 2 cut); 0 s of sound in 0 s");
}

TEST(DurationTextTest, EveryLength_HasTwoPartsAtMost) {
  EXPECT_EQ(DurationText(0.0), "0 s");
  EXPECT_EQ(DurationText(3.0), "3 s");
  EXPECT_EQ(DurationText(0.254), "0.25 s");
  EXPECT_EQ(DurationText(41.4), "41 s");
  EXPECT_EQ(DurationText(60.0), "1 min");
  EXPECT_EQ(DurationText(185.0), "3 min 5 s");
  EXPECT_EQ(DurationText(7260.0), "2 h 1 min");
  EXPECT_EQ(DurationText(100.0 * 3600), "4 d 4 h");
  EXPECT_EQ(DurationText(-1.0), "0 s");
}

}  // namespace
}  // namespace tool
