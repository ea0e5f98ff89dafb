// SPDX-License-Identifier: Apache-2.0
//
// What play shows and reads: the line on the terminal, keys, marks.
#include <gtest/gtest.h>

#include "base/TerminalText.h"
#include "play/KeyTerminal.h"
#include "play/PassingMarks.h"
#include "play/PlayClock.h"
#include "play/StatusLine.h"

namespace {

using tool::tagKey;

TEST(TerminalText, Columns_AreThoseOfCharacters) {
  EXPECT_EQ(tool::ColumnsOf("abc"), 3U);
  EXPECT_EQ(tool::ColumnsOf("\xc3\xbc"), 1U);
  EXPECT_EQ(tool::ColumnsOf("\xe5\xa3\xb0"), 2U) << "a wide character";
  EXPECT_EQ(tool::ColumnsOf("a\xcc\x88"), 1U) << "a mark on the character before";
}

TEST(TerminalText, WhatDoesNotFit_KeepsItsEnd) {
  EXPECT_EQ(tool::FittedEnd("speech.kst", 10), "speech.kst");
  EXPECT_EQ(tool::FittedEnd("speech.kst", 9), "...ch.kst");
  EXPECT_EQ(tool::FittedEnd("speech.kst", 3), "...");
  EXPECT_EQ(tool::FittedEnd("speech.kst", 1), ".");
  EXPECT_EQ(tool::FittedEnd("\xe5\xa3\xb0\xe5\xa3\xb0.kst", 7), "....kst");
}

tool::S_PlayStatus Status() {
  tool::S_PlayStatus status;
  status.strName = "speech.kst";
  status.dwRate = 8000;
  status.qwFrame = 10000;
  status.qwFrames = 40000;
  return status;
}

TEST(StatusLine, WhereThereIsRoom_HasABar) {
  EXPECT_EQ(StatusLine(Status(), 56), "speech.kst  0:01.250 / 0:05.000  [=====>              ]");
  EXPECT_EQ(StatusLine(Status(), 46), "speech.kst  0:01.250 / 0:05.000  [==>       ]");
  EXPECT_EQ(StatusLine(Status(), 45), "speech.kst  0:01.250 / 0:05.000");
}

TEST(StatusLine, WithLittleRoom_KeepsTheTime) {
  EXPECT_EQ(StatusLine(Status(), 31), "...ch.kst  0:01.250 / 0:05.000");
  EXPECT_EQ(StatusLine(Status(), 29), "0:01.250 / 0:05.000");
  EXPECT_EQ(StatusLine(Status(), 15), "0:01.250");
  EXPECT_EQ(StatusLine(Status(), 1), "");
  EXPECT_EQ(StatusLine(Status(), 0), "");
}

TEST(StatusLine, AtTheEnd_TheBarIsFull) {
  tool::S_PlayStatus status = Status();
  status.qwFrame = 40000;
  EXPECT_EQ(StatusLine(status, 46), "speech.kst  0:05.000 / 0:05.000  [==========]");
}

TEST(StatusLine, OfAPart_TheBarIsThatOfThePart) {
  tool::S_PlayStatus status = Status();
  status.span = {8000, 12000};
  EXPECT_EQ(StatusLine(status, 46), "speech.kst  0:01.250 / 0:05.000  [=====>    ]");
}

TEST(StatusLine, PausedAndOfUnknownLength_SaysSo) {
  tool::S_PlayStatus status = Status();
  status.bPaused = true;
  EXPECT_EQ(StatusLine(status, 45), "speech.kst  0:01.250 / 0:05.000 (paused)");
  status.qwFrames = tool::kFramesUnknown;
  EXPECT_EQ(StatusLine(status, 80), "speech.kst  0:01.250 (paused)");
}

TEST(Keys, ArrowsInBothForms_AreKnown) {
  std::string strSent = " \x1b[C\x1bOA\x1b[D\x1b[Bnpq?";
  const std::deque<tagKey> want = {tagKey::PAUSE,    tagKey::FORWARD,  tagKey::FAR_FORWARD,
                                   tagKey::BACK,     tagKey::FAR_BACK, tagKey::NEXT,
                                   tagKey::PREVIOUS, tagKey::QUIT,     tagKey::HELP};
  EXPECT_EQ(tool::TakeKeys(strSent), want);
  EXPECT_EQ(strSent, "");
}

TEST(Keys, OfWhichTheEndIsMissing_WaitForIt) {
  std::string strSent = "\x1b[";
  EXPECT_TRUE(tool::TakeKeys(strSent).empty());
  EXPECT_EQ(strSent, "\x1b[");
  strSent += "C";
  EXPECT_EQ(tool::TakeKeys(strSent), std::deque<tagKey>{tagKey::FORWARD});
}

TEST(Keys, WithoutAMeaning_AreDropped) {
  std::string strSent = "x\x1b[Z\x1bq";
  EXPECT_EQ(tool::TakeKeys(strSent), std::deque<tagKey>{tagKey::QUIT});
  EXPECT_EQ(strSent, "");
}

TEST(PlayClock, GivenFrames_CountWhenTheyAreHeard) {
  using namespace std::chrono_literals;
  const tool::C_PlayClock::Time begin{100s};
  tool::C_PlayClock clock(8000, 1000);
  EXPECT_EQ(clock.Frame(begin), 1000U);
  // The device takes 0.4 s at once, and more when half of that is over.
  clock.Given(0.4s, 1000 + 3200, begin);
  EXPECT_EQ(clock.Frame(begin), 1000U);
  EXPECT_EQ(clock.Frame(begin + 100ms), 1800U);
  clock.Given(0.2s, 1000 + 4800, begin + 200ms);
  EXPECT_EQ(clock.Frame(begin + 200ms), 2600U);
  EXPECT_EQ(clock.Frame(begin + 600ms), 5800U);
  EXPECT_EQ(clock.Frame(begin + 900ms), 5800U) << "nothing more was given";
  EXPECT_EQ(clock.LastFrame(), 5800U);
}

TEST(PlayClock, AfterAJump_IsThereAtOnce) {
  using namespace std::chrono_literals;
  const tool::C_PlayClock::Time begin{100s};
  tool::C_PlayClock clock(8000, 0);
  clock.Given(0.4s, 3200, begin);
  clock.Jump(80000);
  EXPECT_EQ(clock.Frame(begin), 80000U);
  clock.Given(0.4s, 83200, begin + 300ms);
  EXPECT_EQ(clock.Frame(begin + 300ms), 80000U) << "0.1 s of the old place is still to come";
  EXPECT_EQ(clock.Frame(begin + 600ms), 81600U);
}

TEST(PlayClock, OfASoundThatBeginsAnew_GoesBack) {
  using namespace std::chrono_literals;
  const tool::C_PlayClock::Time begin{100s};
  tool::C_PlayClock clock(8000, 800);
  clock.Given(0.4s, 4000, begin);
  clock.Given(0.1s, 1600, begin + 400ms);
  EXPECT_EQ(clock.Frame(begin + 450ms), 1200U);
}

tool::C_PassingMarks ThreeMarks() {
  voxplay::Notes notes;
  notes.add(voxplay::Event{2000, 3, 7, 48, "two"});
  notes.add(voxplay::Event{4000, 1, 2, 0, nullptr});
  notes.add(voxplay::Cue{9, 3000, {'d', 'a', 't', 'a'}, 0, 0, 3000});
  notes.add(voxplay::Label{9, {'l', 'a', 'b', 'l'}, "three"});
  return tool::C_PassingMarks(notes);
}

std::string TextsOf(const std::vector<tool::C_PassingMarks::S_Mark>& marks) {
  std::string strText;
  for (const auto& mark : marks) {
    strText += std::to_string(mark.qwFrame) + " " + mark.strText + "\n";
  }
  return strText;
}

TEST(PassingMarks, AllOfThem_AreGivenOnceAndInOrder) {
  tool::C_PassingMarks marks = ThreeMarks();
  EXPECT_EQ(TextsOf(marks.Passed(1999)), "");
  EXPECT_EQ(TextsOf(marks.Passed(3500)), "2000 event 3/7, data 48: two\n3000 cue point 9: three\n");
  EXPECT_EQ(TextsOf(marks.Passed(3500)), "");
  EXPECT_EQ(TextsOf(marks.Passed(9999)), "4000 event 1/2\n");
}

TEST(PassingMarks, AfterAJump_AreThoseFromThereOn) {
  tool::C_PassingMarks marks = ThreeMarks();
  marks.Jump(4000);
  EXPECT_EQ(TextsOf(marks.Passed(4000)), "4000 event 1/2\n");
  marks.Jump(2500);
  EXPECT_EQ(TextsOf(marks.Passed(3000)), "3000 cue point 9: three\n");
}

TEST(PassingMarks, OfASoundThatBeginsAnew_PassAgain) {
  tool::C_PassingMarks marks = ThreeMarks();
  EXPECT_EQ(marks.Passed(9000).size(), 3U);
  EXPECT_EQ(TextsOf(marks.Passed(2000)), "2000 event 3/7, data 48: two\n");
}

}  // namespace
