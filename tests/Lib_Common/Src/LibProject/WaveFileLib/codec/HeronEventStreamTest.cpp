// SPDX-License-Identifier: Apache-2.0
//
// The event stream byte by byte.
#include "codec/HeronEventStream.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "annotation/EventTagMgr.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using heroneventstream::S_FrameRange;
using heroneventstream::S_HeronEvent;
using Events = std::vector<S_HeronEvent>;

Bytes Stream(const S_FrameRange& range, const Events& events) {
  vcm::C_ByteWriter writer;
  unsigned int dwGroups = 0;
  EXPECT_EQ(heroneventstream::WriteEventStream(range, events, &dwGroups, &writer), range.dwCount);
  return writer.Take();
}
Bytes Stream(unsigned int dwFrames, const Events& events) {
  return Stream(S_FrameRange{0, dwFrames}, events);
}

// Adds nCount events on one frame; their commands count up from 0.
void AddMany(Events& events, unsigned int dwFrame, int nCount) {
  for (int i = 0; i < nCount; ++i) {
    events.push_back({dwFrame, static_cast<std::uint8_t>(i), std::uint8_t{0xEE}});
  }
}

// ---- gaps

struct S_GapCase {
  unsigned int dwFrames;
  Bytes bytes;
};

class HeronGap : public testing::TestWithParam<S_GapCase> {};

TEST_P(HeronGap, RangeWithoutEvents_IsOneGap) {
  EXPECT_EQ(Stream(GetParam().dwFrames, {}), GetParam().bytes);
}

INSTANTIATE_TEST_SUITE_P(
    Lengths, HeronGap,
    testing::Values(S_GapCase{0, {}}, S_GapCase{1, {8, 1}}, S_GapCase{31, {8, 31}},
                    S_GapCase{32, {8, 32}}, S_GapCase{255, {8, 0xFF}}, S_GapCase{256, {0x10, 0, 1}},
                    S_GapCase{300, {0x10, 0x2C, 1}}, S_GapCase{65535, {0x10, 0xFF, 0xFF}},
                    S_GapCase{65536, {0x10, 0xFF, 0xFF, 0x10, 1, 0}},
                    S_GapCase{70000, {0x10, 0xFF, 0xFF, 0x10, 0x71, 0x11}},
                    S_GapCase{131070, {0x10, 0xFF, 0xFF, 0x10, 0xFF, 0xFF}}),
    [](const auto& gap) { return "Of" + std::to_string(gap.param.dwFrames) + "Frames"; });

TEST(HeronEventStream, GapBetweenGroups_TakesSeveralRecordsToo) {
  EXPECT_EQ(Stream(70000, {{70000 - 1, 1, 2}}),
            (Bytes{0x10, 0xFF, 0xFF, 0x10, 0x61, 0x11, 0x20, 4, 1, 2}));
}

TEST(HeronEventStream, LongestRange_EndsWithTheSumOfItsGaps) {
  const Bytes bytes = Stream(0xFFFFFFFF, {});
  ASSERT_EQ(bytes.size(), 65537u * 3);
  EXPECT_EQ(Bytes(bytes.end() - 3, bytes.end()), (Bytes{0x10, 0xFF, 0xFF}));
  EXPECT_EQ(Stream(S_FrameRange{0xFFFFFFFF, 65535}, {}), (Bytes{0x10, 0xFF, 0xFF}));
}

// ---- groups

TEST(HeronEventStream, EventOnTheFirstFrames_HasNoGapBeforeIt) {
  const Events events = {{0, 1, 2}};
  EXPECT_EQ(Stream(300, events), (Bytes{0x20, 4, 1, 2, 0x10, 0x20, 1}));
  EXPECT_EQ(Stream(320, events), (Bytes{0x20, 4, 1, 2, 0x10, 0x40, 1}));
  EXPECT_EQ(Stream(300, {{31, 1, 2}}), Stream(300, events));
}

TEST(HeronEventStream, LastGap_LeavesOutAGroupThatIsNotWhole) {
  const Events events = {{0, 1, 2}};
  EXPECT_EQ(Stream(1, events), (Bytes{0x20, 4, 1, 2}));
  EXPECT_EQ(Stream(31, events), (Bytes{0x20, 4, 1, 2}));
  EXPECT_EQ(Stream(32, events), (Bytes{0x20, 4, 1, 2, 8, 0x20}));
  EXPECT_EQ(Stream(33, events), (Bytes{0x20, 4, 1, 2, 8, 0x20}));
  EXPECT_EQ(Stream(63, events), (Bytes{0x20, 4, 1, 2, 8, 0x20}));
  EXPECT_EQ(Stream(64, events), (Bytes{0x20, 4, 1, 2, 8, 0x40}));
}

TEST(HeronEventStream, GapBeforeAGroup_EndsWhereTheGroupBegins) {
  EXPECT_EQ(Stream(320, {{100, 1, 2}}), (Bytes{8, 0x60, 0x20, 4, 1, 2, 8, 0xE0}));
}

TEST(HeronEventStream, EventsOfSeveralFrames_ShareAGroupOf32) {
  const Events events = {{0, 1, 2}, {40, 3, 4}, {64, 5, 6}, {64, 7, 8}};
  EXPECT_EQ(Stream(96, events), (Bytes{0x20, 4,    1,    2,    8, 0x20, 0x28, 5, 3, 4,
                                       8,    0x20, 0x30, 0x0A, 5, 6,    7,    8, 8, 0x20}));
}

TEST(HeronEventStream, Marker_GoesRoundAfterFourGroups) {
  Events events;
  for (unsigned int i = 0; i < 5; ++i) events.push_back({i * 32, static_cast<std::uint8_t>(i + 1)});
  EXPECT_EQ(Stream(160, events),
            (Bytes{0x20, 4, 1,    0,    8, 0x20, 0x28, 5, 2,    0,    8, 0x20, 0x30, 6, 3,
                   0,    8, 0x20, 0x38, 7, 4,    0,    8, 0x20, 0x20, 4, 5,    0,    8, 0x20}));
}

TEST(HeronEventStream, GroupCounter_GoesOnFromCallToCall) {
  unsigned int dwGroups = 0;
  const Events events = {{0, 1, 2}};
  for (const std::uint8_t byMarker : Bytes{0x20, 0x28, 0x30, 0x38, 0x20}) {
    vcm::C_ByteWriter writer;
    heroneventstream::WriteEventStream({0, 31}, events, &dwGroups, &writer);
    EXPECT_EQ(writer.Data()[0], byMarker);
  }
  EXPECT_EQ(dwGroups, 5u);
}

TEST(HeronEventStream, FullGroup_TakesOneEventOfEachLaterFrame) {
  Events events;
  AddMany(events, 0, 70);
  EXPECT_EQ(Stream(31, events).size(), 2u + 128);
  AddMany(events, 1, 5);
  const Bytes bytes = Stream(31, events);
  ASSERT_EQ(bytes.size(), 2u + 130);
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 2), (Bytes{0x20, 4}));
  EXPECT_EQ(Bytes(bytes.end() - 4, bytes.end()), (Bytes{63, 0xEE, 0, 0xEE}));
  AddMany(events, 2, 1);
  AddMany(events, 31, 2);
  EXPECT_EQ(Stream(31, events).size(), 2u + 134);
}

TEST(HeronEventStream, FullGroup_EndsWithItsFrames) {
  Events events;
  AddMany(events, 0, 70);
  AddMany(events, 32, 2);
  const Bytes bytes = Stream(63, events);
  EXPECT_EQ(Bytes(bytes.begin() + 130, bytes.end()), (Bytes{8, 0x20, 0x28, 9, 0, 0xEE, 1, 0xEE}));
}

TEST(HeronEventStream, CountOf64Events_IsCutTo0) {
  Events events;
  AddMany(events, 0, 63);
  EXPECT_EQ(Stream(31, events)[1], 0xFC);
  AddMany(events, 0, 1);
  EXPECT_EQ(Stream(31, events)[1], 0x00);
  AddMany(events, 1, 1);
  EXPECT_EQ(Stream(31, events)[1], 0x04);
}

// ---- ranges

TEST(HeronEventStream, RangeThatBeginsLater_CountsFromItsFirstFrame) {
  EXPECT_EQ(Stream(S_FrameRange{32, 64}, {{64, 1, 2}}), (Bytes{8, 0x20, 0x20, 4, 1, 2, 8, 0x20}));
  EXPECT_EQ(Stream(S_FrameRange{32, 64}, {{32, 1, 2}}), (Bytes{0x20, 4, 1, 2, 8, 0x40}));
}

TEST(HeronEventStream, EventsBeforeTheRange_AreLeftOut) {
  EXPECT_EQ(Stream(S_FrameRange{32, 64}, {{31, 1, 2}}), (Bytes{8, 64}));
  EXPECT_EQ(Stream(S_FrameRange{32, 64}, {{0, 1, 2}, {33, 3, 4}}), (Bytes{0x20, 4, 3, 4, 8, 0x40}));
}

TEST(HeronEventStream, EventsAfterTheRange_CountWhereItsLastGroupReaches) {
  EXPECT_EQ(Stream(33, {{63, 1, 2}}), (Bytes{8, 0x20, 0x20, 4, 1, 2}));
  EXPECT_EQ(Stream(33, {{64, 1, 2}}), (Bytes{8, 33}));
  EXPECT_EQ(Stream(64, {{64, 1, 2}}), (Bytes{8, 64}));
}

TEST(HeronEventStream, EmptyRange_HasNoRecord) {
  EXPECT_EQ(Stream(0, {{0, 1, 2}}), Bytes());
  EXPECT_EQ(Stream(S_FrameRange{64, 0}, {{64, 1, 2}}), Bytes());
}

TEST(HeronEventStream, RangeAtTheEndOfAllFrames_DoesNotWrap) {
  EXPECT_EQ(Stream(S_FrameRange{0xFFFFFFE0, 0x20}, {{0xFFFFFFFF, 1, 2}}),
            (Bytes{0x20, 4, 1, 2, 8, 0x20}));
}

TEST(HeronEventStream, AHundredThousandEvents_TakeLinearTime) {
  Events events;
  for (unsigned int i = 0; i < 100000; ++i) events.push_back({i, 1, 2});
  const Bytes bytes = Stream(100000, events);
  // 3125 groups of a marker, a count and 32 pairs, each followed by its gap.
  EXPECT_EQ(bytes.size(), 3125u * (2 + 64 + 2));
}

// ---- events of a sound

TEST(HeronEventsOf, Positions_BecomeFrames) {
  C_EventTagMgr mgr;
  mgr.SetSampleRate(8000);
  for (const unsigned int dwPos : {0u, 159u, 160u, 0xFFFFFFFFu}) {
    mgr.AddEventBySamplePos(1, 2, dwPos, "", 0);
  }
  EXPECT_EQ(heroneventstream::EventsOf(mgr, 160),
            (Events{{0, 1, 2}, {0, 1, 2}, {1, 1, 2}, {26843545, 1, 2}}));
}

TEST(HeronEventsOf, Commands_LoseTheirHighBytes) {
  C_EventTagMgr mgr;
  mgr.SetSampleRate(8000);
  mgr.AddEventBySamplePos(0x0102, 0xFFFE, 0, "text", 7);
  EXPECT_EQ(heroneventstream::EventsOf(mgr, 160), (Events{{0, 0x02, 0xFE}}));
}

TEST(HeronEventsOf, Times_CountInTheSampleRate) {
  C_EventTagMgr mgr;
  mgr.SetSampleRate(8000);
  mgr.AddEvent(1, 2, 20, "", 0);
  EXPECT_EQ(heroneventstream::EventsOf(mgr, 160), (Events{{1, 1, 2}}));
}

TEST(HeronEventsOf, ListThatARateChangeLeftUnsorted_IsSortedByFrame) {
  C_EventTagMgr mgr;
  mgr.SetSampleRate(8000);
  mgr.AddEvent(1, 0, 1000, "", 0);             // sample 8000, later 48000
  mgr.AddEventBySamplePos(2, 0, 9000, "", 0);  // keeps its sample
  mgr.AddEventBySamplePos(3, 0, 9001, "", 0);  // the same frame, after it
  mgr.SetSampleRate(48000);
  EXPECT_EQ(heroneventstream::EventsOf(mgr, 960), (Events{{9, 2, 0}, {9, 3, 0}, {50, 1, 0}}));
}

TEST(HeronEventsOf, SoundWithoutEvents_HasNone) {
  C_EventTagMgr mgr;
  EXPECT_TRUE(heroneventstream::EventsOf(mgr, 160).empty());
}

}  // namespace
