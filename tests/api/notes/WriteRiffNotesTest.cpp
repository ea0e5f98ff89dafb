// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HeldChunks.h"
#include "WavBytes.h"

namespace api::test {
namespace {

using C_Texts = std::vector<std::string>;

S_NoteCue Cue(std::uint32_t dwID, std::uint32_t dwFrame) {
  return {dwID, dwFrame, ID("data"), 0, 0, dwFrame};
}

TEST(WriteRiffNotes, NoNotes_GiveNoChunks) {
  const S_RiffNotes written = Written({});
  EXPECT_TRUE(written.marks.empty());
  EXPECT_TRUE(written.others.empty());
  EXPECT_TRUE(written.lost.empty());
}

TEST(WriteRiffNotes, EventsSilenceAndRegions_CountFromOneInThisOrder) {
  S_Notes notes;
  notes.events = {{4800, 3, 7, 0, ""}, {5000, 65535, 0, 0, ""}};
  notes.silence = {{100, 50}};
  notes.regions = {{200, 60}};
  const S_RiffNotes written = Written(notes);
  ASSERT_EQ(NamesOf(written.marks), (C_Texts{"cue ", "LIST"}));
  EXPECT_EQ(written.marks[0].data,
            CueBytes({{1, 4800, 4800}, {2, 5000, 5000}, {3, 100, 100}, {4, 200, 200}}));
  EXPECT_EQ(written.marks[1].data, AdtlBytes({LtxtBytes(3, 50), LtxtBytes(4, 60),
                                              LablBytes(1, "u_3_7"), LablBytes(2, "u_65535_0"),
                                              LablBytes(3, "VX_Silence"), LablBytes(4, "VX_PCM")}));
  EXPECT_TRUE(written.lost.empty());
}

TEST(WriteRiffNotes, EventsOfAContainer_KeepTheirData) {
  S_Notes notes;
  notes.events = {{4800, 1, 2, 7, ""}, {9, 0x8000, 0, 0xFFFFFFFFU, ""}};
  const S_RiffNotes written = Written(notes, E_RiffForm::Vef);
  EXPECT_EQ(PayloadOf(written.marks, "LIST"),
            AdtlBytes({LablBytes(1, "(65538,7)"), LablBytes(2, "(-2147483648,-1)")}));
  EXPECT_TRUE(written.lost.empty());
}

TEST(WriteRiffNotes, IdentifiersOfOthers_StayAndTheLowestFreeOnesAreTaken) {
  S_Notes notes;
  notes.cues = {Cue(2, 20), Cue(4, 40)};
  notes.labels = {{2, ID("labl"), "Two"}, {1, ID("note"), "One has no cue point"}};
  notes.texts = {{6, 5, ID("scrp"), 0, 0, 0, 0, ""}};
  notes.events = {{1, 1, 1, 0, ""}, {2, 2, 2, 0, ""}, {3, 3, 3, 0, ""}};
  const S_RiffNotes written = Written(notes);
  EXPECT_EQ(PayloadOf(written.marks, "cue "),
            CueBytes({{2, 20, 20}, {4, 40, 40}, {3, 1, 1}, {5, 2, 2}, {7, 3, 3}}));
}

TEST(WriteRiffNotes, IdentifiersOfLoops_ReserveNone) {
  S_Notes notes;
  notes.loops = {{1, 0, 10, 20, 0, 0}};
  notes.events = {{5, 1, 1, 0, ""}};
  EXPECT_EQ(PayloadOf(Written(notes).marks, "cue "), CueBytes({{1, 5, 5}}));
}

TEST(WriteRiffNotes, LabelsOfOthers_ArePaddedWithoutCountingThePad) {
  S_Notes notes;
  notes.labels = {{1, ID("labl"), "Verse"}, {2, ID("note"), "Ab"}};
  notes.texts = {{3, 9, ID("rgn "), 49, 9, 1, 1252, "four"}, {4, 9, ID("rgn "), 0, 0, 0, 0, ""}};
  EXPECT_EQ(PayloadOf(Written(notes).marks, "LIST"),
            AdtlBytes({OthersText(3, 9, "four"), LtxtBytes(4, 9), OthersLabel(1, "Verse"),
                       OthersLabel(2, "Ab", "note")}));
}

TEST(WriteRiffNotes, LabelOfAnyLength_IsWrittenWhole) {
  S_Notes notes;
  notes.labels = {{1, ID("labl"), std::string(100'000, 'x')}};
  EXPECT_EQ(PayloadOf(Written(notes).marks, "LIST").size(), 4U + 12U + 100'002U);
  EXPECT_EQ(Through(notes, E_RiffForm::Wave).labels, notes.labels);
}

TEST(WriteRiffNotes, EventsBeyondTheSound_AreWritten) {
  S_Notes notes;
  notes.events = {{0xFFFFFFFFU, 1, 2, 0, ""}};
  const S_RiffNotes written = WriteRiffNotes(notes, E_RiffForm::Wave, 10);
  EXPECT_EQ(PayloadOf(written.marks, "cue "), CueBytes({{1, 0xFFFFFFFFU, 0xFFFFFFFFU}}));
  EXPECT_TRUE(written.lost.empty());
}

TEST(WriteRiffNotes, PartsThatAWavFileCannotHold_AreNamed) {
  S_Notes notes;
  notes.events = {{10, 1, 1, 0, ""},
                  {4800, 1, 1, 5, ""},
                  {4801, 1, 1, 0, "bell"},
                  {4802, 1, 1, 5, "bell"},
                  {0x100000000U, 1, 1, 0, ""}};
  notes.silence = {{0x100000000U, 1}};
  notes.regions = {{7, 0x100000000U}};
  EXPECT_EQ(
      Written(notes).lost,
      (C_Texts{"event 2 at frame 4800: its data is not kept: a WAV file holds none",
               "event 3 at frame 4801: its description is not kept: a WAV file holds none",
               "event 4 at frame 4802: its data and its description are not kept: a WAV file holds "
               "none",
               "event 5 at frame 4294967296: cue points hold no frame or length beyond 32 bits",
               "silence 1 at frame 4294967296: cue points hold no frame or length beyond 32 bits",
               "region 1 at frame 7: cue points hold no frame or length beyond 32 bits"}));
}

TEST(WriteRiffNotes, PartsThatAContainerCannotHold_AreNamed) {
  S_Notes notes;
  notes.events = {{4800, 1, 1, 5, ""}, {4801, 1, 1, 5, "bell"}};
  notes.silence = {{100, 1}};
  notes.regions = {{7, 8}};
  const S_RiffNotes written = Written(notes, E_RiffForm::Vef);
  EXPECT_EQ(written.lost,
            (C_Texts{"event 2 at frame 4801: its description is not kept: a VEF file holds none",
                     "silence 1 at frame 100: a VEF file holds no silence",
                     "region 1 at frame 7: a VEF file holds no regions"}));
  EXPECT_EQ(PayloadOf(written.marks, "cue "), CueBytes({{1, 4800, 4800}, {2, 4801, 4801}}));
}

TEST(WriteRiffNotes, LabelThatSaysAnEvent_StandsForIt) {
  S_Notes notes;
  notes.cues = {Cue(7, 300)};
  notes.labels = {{7, ID("labl"), "take_12"}};
  notes.events = {{300, 0, 12, 0, ""}, {300, 0, 12, 0, ""}, {301, 0, 12, 0, ""}};
  const S_RiffNotes written = Written(notes);
  EXPECT_EQ(PayloadOf(written.marks, "cue "),
            CueBytes({{7, 300, 300}, {1, 300, 300}, {2, 301, 301}}));
  EXPECT_EQ(Through(notes, E_RiffForm::Wave), notes);
  EXPECT_EQ(Through(notes, E_RiffForm::Vef), notes);
}

TEST(WriteRiffNotes, LabelThatSaysAnEventThatIsGone_IsNamed) {
  S_Notes notes;
  notes.cues = {Cue(4, 300)};
  notes.labels = {{4, ID("labl"), "take_1"}};
  const S_RiffNotes written = Written(notes);
  EXPECT_EQ(written.lost, (C_Texts{"label 1 of cue point 4: readers take it for an event"}));
  EXPECT_EQ(Read(HeldOf(written)).labels, notes.labels);
  EXPECT_EQ(Read(HeldOf(written)).events, (std::vector<S_NoteEvent>{{300, 0, 1, 0, ""}}));
  EXPECT_TRUE(Written(notes, E_RiffForm::Vef).lost.empty());
  // One event for two labels.
  notes.labels.push_back(notes.labels[0]);
  notes.events = {{300, 0, 1, 0, ""}};
  EXPECT_EQ(Written(notes).lost, (C_Texts{"label 2 of cue point 4: readers take it for an event"}));
}

TEST(WriteRiffNotes, EventsOfOneFrame_KeepTheirOrderAroundALabelThatSaysOne) {
  S_Notes notes;
  notes.cues = {Cue(7, 300)};
  notes.labels = {{7, ID("labl"), "Verse"}, {7, ID("labl"), "take_2"}};
  notes.events = {{300, 0, 1, 0, ""}, {300, 0, 2, 0, ""}, {300, 0, 3, 0, ""}, {300, 0, 2, 0, ""}};
  const S_RiffNotes written = Written(notes);
  EXPECT_TRUE(written.lost.empty());
  EXPECT_EQ(PayloadOf(written.marks, "LIST"),
            AdtlBytes({OthersLabel(7, "Verse"), LablBytes(1, "u_0_1"), OthersLabel(7, "take_2"),
                       LablBytes(2, "u_0_3"), LablBytes(3, "u_0_2")}));
  EXPECT_EQ(Read(HeldOf(written)), notes);
}

TEST(WriteRiffNotes, EventsInAnotherOrderThanTheLabelsThatSayThem_AreNamed) {
  S_Notes notes;
  notes.cues = {Cue(7, 300)};
  notes.labels = {{7, ID("labl"), "take_2"}, {7, ID("labl"), "take_1"}};
  notes.events = {{300, 0, 1, 0, ""}, {300, 0, 2, 0, ""}};
  const S_RiffNotes written = Written(notes);
  EXPECT_EQ(written.lost,
            (C_Texts{"event 1 at frame 300: it comes at another place among those of its frame"}));
  EXPECT_EQ(Read(HeldOf(written)).events,
            (std::vector<S_NoteEvent>{{300, 0, 2, 0, ""}, {300, 0, 1, 0, ""}}));
}

TEST(WriteRiffNotes, Padding_IsNamedAndLeftOut) {
  S_Notes notes;
  notes.chunks = {{ID("JUNK"), C_Bytes(28)}, {ID("JUNK"), {}}, {ID("JUNK"), {0, 1}}};
  const S_RiffNotes written = Written(notes);
  EXPECT_EQ(written.lost, (C_Texts{"chunk 1 \"JUNK\": readers would take it for padding",
                                   "chunk 2 \"JUNK\": readers would take it for padding"}));
  ASSERT_EQ(NamesOf(written.others), (C_Texts{"JUNK"}));
  EXPECT_EQ(written.others[0].data, (C_Bytes{0, 1}));
}

TEST(WriteRiffNotes, LabelThatReadersWouldTakeForAnother_IsNamedAndLeftOut) {
  S_Notes notes;
  notes.cues = {Cue(1, 10)};
  notes.labels = {{1, ID("labl"), "VX_PCM"},
                  {1, ID("note"), "VX_PCM"},
                  {1, ID("labl"), "(5,6)"},
                  {9, ID("labl"), "u_1_2"},
                  {9, ID("labl"), "Verse"}};
  const S_RiffNotes wave = Written(notes);
  EXPECT_EQ(wave.lost,
            (C_Texts{"label 1 of cue point 1: readers would take it for an event or a range",
                     "label 4 of cue point 9: readers would look for its cue point, and there is "
                     "none"}));
  EXPECT_EQ(Read(HeldOf(wave)).labels.size(), 3U);
  const S_RiffNotes vef = Written(notes, E_RiffForm::Vef);
  EXPECT_EQ(vef.lost,
            (C_Texts{"label 3 of cue point 1: readers would take it for an event or a range"}));
  EXPECT_EQ(Read(HeldOf(vef), E_RiffForm::Vef).labels.size(), 4U);
}

TEST(WriteRiffNotes, SamplerWithoutLoops_IsWritten) {
  S_Notes notes;
  notes.sampler.bPresent = true;
  notes.sampler.dwMidiUnityNote = 61;
  notes.sampler.data = {1, 2, 3};
  const S_RiffNotes written = Written(notes);
  EXPECT_EQ(PayloadOf(written.marks, "smpl").size(), 39U);
  EXPECT_EQ(Read(HeldOf(written)), notes);
}

TEST(WriteRiffNotes, LoopsWithoutASampler_GetAnEmptyOne) {
  S_Notes notes;
  notes.loops = {{7, 1, 10, 20, 3, 4}};
  EXPECT_EQ(PayloadOf(Written(notes).marks, "smpl"),
            Join({C_Bytes(28), U32(1), U32(0), U32(7), U32(1), U32(10), U32(20), U32(3), U32(4)}));
}

TEST(WriteRiffNotes, ChunksThatFilesHaveOfTheirOwn_AreNamedAndLeftOut) {
  S_Notes notes;
  notes.chunks = {
      {ID("data"), {1}}, {ID("vdat"), {2}}, {ID("priv"), {3}}, {{0, 'a', 'b', 'c'}, {}}};
  const S_RiffNotes wave = Written(notes);
  EXPECT_EQ(NamesOf(wave.others), (C_Texts{"vdat", "priv"}));
  EXPECT_EQ(wave.lost, (C_Texts{"chunk 1 \"data\": readers would take it for the file's own",
                                "chunk 4 \"?abc\": readers would pass over its identifier"}));
  const S_RiffNotes vef = Written(notes, E_RiffForm::Vef);
  EXPECT_EQ(NamesOf(vef.others), (C_Texts{"priv"}));
  EXPECT_EQ(vef.lost.size(), 3U);
}

TEST(WriteRiffNotes, ListThatReadersRefuse_IsNamedAndLeftOut) {
  S_Notes notes;
  notes.chunks = {{ID("LIST"), AdtlBytes({ChunkBytes("labl", 99, {1, 2, 3})})}};
  const S_RiffNotes written = Written(notes);
  EXPECT_TRUE(written.marks.empty());
  EXPECT_EQ(written.lost, (C_Texts{"chunk 1 \"LIST\": its parts contradict their own sizes"}));
}

TEST(WriteRiffNotes, SupersededChunks_ComeBeforeThoseThatCount) {
  S_Notes notes;
  const C_Bytes oldCue = CueBytes({{9, 9, 9}});
  const C_Bytes oldList = AdtlBytes({LablBytes(9, "Old")});
  notes.chunks = {{ID("cue "), oldCue}, {ID("smpl"), SmplBytes(1, 2)}, {ID("LIST"), oldList}};
  notes.events = {{5, 1, 1, 0, ""}};
  const S_RiffNotes written = Written(notes);
  ASSERT_EQ(NamesOf(written.marks), (C_Texts{"cue ", "cue ", "smpl", "smpl", "LIST", "LIST"}));
  EXPECT_EQ(written.marks[0].data, oldCue);
  EXPECT_EQ(written.marks[1].data, CueBytes({{1, 5, 5}}));
  EXPECT_EQ(written.marks[2].data, SmplBytes(1, 2));
  EXPECT_EQ(written.marks[3].data, C_Bytes(36));
  EXPECT_EQ(written.marks[4].data, oldList);
  EXPECT_TRUE(written.others.empty());
}

TEST(WriteRiffNotes, SupersededChunks_StaySoWhenNoMarksAreLeft) {
  S_Notes notes;
  notes.chunks = {{ID("cue "), CueBytes({{9, 9, 9}})},
                  {ID("LIST"), AdtlBytes({LablBytes(9, "Old")})}};
  EXPECT_EQ(Through(notes, E_RiffForm::Wave), notes);
}

TEST(AllLost, EveryNote_GetsASentence) {
  S_Notes notes;
  notes.events = {{10, 1, 1, 0, ""}, {4800, 1, 1, 0, ""}};
  notes.silence = {{1, 2}};
  notes.regions = {{3, 4}};
  notes.cues = {Cue(7, 300)};
  notes.labels = {{7, ID("labl"), "Verse"}};
  notes.texts = {{7, 9, ID("rgn "), 0, 0, 0, 0, ""}};
  notes.sampler.bPresent = true;
  notes.loops = {{7, 0, 10, 20, 0, 0}};
  notes.chunks = {{ID("bext"), {1}}};
  EXPECT_EQ(AllLost(notes, "an SP header"),
            (C_Texts{"event 1 at frame 10: an SP header holds no events",
                     "event 2 at frame 4800: an SP header holds no events",
                     "silence 1 at frame 1: an SP header holds no silence",
                     "region 1 at frame 3: an SP header holds no regions",
                     "cue point 1 at frame 300: an SP header holds no cue points",
                     "label 1 of cue point 7: an SP header holds no labels",
                     "region text 1 of cue point 7: an SP header holds no region texts",
                     "sampler record: an SP header holds no sampler record",
                     "loop 1 at frame 10: an SP header holds no loops",
                     "chunk 1 \"bext\": an SP header holds no further chunks"}));
  EXPECT_TRUE(AllLost({}, "a head").empty());
}

}  // namespace
}  // namespace api::test
