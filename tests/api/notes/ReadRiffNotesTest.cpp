// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "HeldChunks.h"
#include "WavBytes.h"
#include "base/Failure.h"
#include "notes/FourCC.h"

namespace api::test {
namespace {

C_Bytes Points(std::initializer_list<S_CueBytes> points) { return CueBytes(points); }

std::string RefusalOf(const std::vector<S_HeldChunk>& chunks) {
  try {
    Read(chunks);
  } catch (const C_Failure& failure) {
    EXPECT_EQ(failure.Status(), VOXPLAY_DAMAGED);
    return failure.Text();
  }
  return "";
}

TEST(ReadRiffNotes, NoChunks_GiveNoNotes) { EXPECT_EQ(Read({}), S_Notes()); }

TEST(ReadRiffNotes, LibraryLabels_BecomeEventsSilenceAndRegionsAndAreNotListed) {
  const S_Notes notes =
      Read({Held("cue ", Points({{1, 4800, 4800}, {2, 100, 100}, {3, 2000, 2000}, {4, 9, 9}})),
            Held("LIST", AdtlBytes({LtxtBytes(3, 500), LtxtBytes(4, 20), LablBytes(1, "u_3_7"),
                                    LablBytes(2, "e_196615"), LablBytes(3, "VX_Silence"),
                                    LablBytes(4, "VX_PCM")}))});
  ASSERT_EQ(notes.events.size(), 2U);
  EXPECT_EQ(notes.events[0], (S_NoteEvent{100, 3, 7, 0, ""}));
  EXPECT_EQ(notes.events[1], (S_NoteEvent{4800, 3, 7, 0, ""}));
  EXPECT_EQ(notes.silence, (std::vector<S_NoteRange>{{2000, 500}}));
  EXPECT_EQ(notes.regions, (std::vector<S_NoteRange>{{9, 20}}));
  EXPECT_TRUE(notes.cues.empty());
  EXPECT_TRUE(notes.labels.empty());
  EXPECT_TRUE(notes.texts.empty());
  EXPECT_TRUE(notes.chunks.empty());
}

TEST(ReadRiffNotes, ContainerLabels_BecomeEventsWithData) {
  const std::vector<S_HeldChunk> chunks = {
      Held("cue ", Points({{1, 4800, 4800}, {2, 7, 7}, {3, 8, 8}})),
      Held("LIST",
           AdtlBytes({LablBytes(1, "(65538,7)"), LablBytes(2, "(-2147483648,-1)"),
                      LablBytes(3, "u_3_7"), LablBytes(3, "VX_Silence"), LtxtBytes(3, 5)}))};
  const S_Notes notes = Read(chunks, E_RiffForm::Vef);
  ASSERT_EQ(notes.events.size(), 2U);
  EXPECT_EQ(notes.events[0], (S_NoteEvent{7, 0x8000, 0, 0xFFFFFFFFU, ""}));
  EXPECT_EQ(notes.events[1], (S_NoteEvent{4800, 1, 2, 7, ""}));
  // What only WAV files say so is a label of another maker here.
  EXPECT_TRUE(notes.silence.empty());
  ASSERT_EQ(notes.labels.size(), 2U);
  EXPECT_EQ(notes.labels[0].strText, "u_3_7");
  EXPECT_EQ(notes.labels[1].strText, "VX_Silence");
  ASSERT_EQ(notes.cues.size(), 1U);
  EXPECT_EQ(notes.cues[0].dwID, 3U);
  EXPECT_EQ(notes.texts.size(), 1U);
}

TEST(ReadRiffNotes, ContainerLabelInAWavFile_IsALabelOfAnotherMaker) {
  const S_Notes notes = Read(
      {Held("cue ", Points({{1, 5, 5}})), Held("LIST", AdtlBytes({LablBytes(1, "(65538,7)")}))});
  EXPECT_TRUE(notes.events.empty());
  ASSERT_EQ(notes.labels.size(), 1U);
  EXPECT_EQ(notes.labels[0].strText, "(65538,7)");
  EXPECT_EQ(notes.cues.size(), 1U);
}

TEST(ReadRiffNotes, EventsAtOneFrame_StayInTheOrderOfTheirLabels) {
  const S_Notes notes = Read({Held("cue ", Points({{1, 50, 50}, {2, 50, 50}, {3, 10, 10}})),
                              Held("LIST", AdtlBytes({LablBytes(2, "u_2_0"), LablBytes(1, "u_1_0"),
                                                      LablBytes(3, "u_3_0")}))});
  ASSERT_EQ(notes.events.size(), 3U);
  EXPECT_EQ(notes.events[0].wMain, 3);
  EXPECT_EQ(notes.events[1].wMain, 2);
  EXPECT_EQ(notes.events[2].wMain, 1);
}

TEST(ReadRiffNotes, LabelOfAnotherMakerThatReadsAsAnEvent_IsBoth) {
  const S_Notes notes = Read({Held("cue ", Points({{7, 300, 300}})),
                              Held("LIST", AdtlBytes({OthersLabel(7, "take_12")}))});
  EXPECT_EQ(notes.events, (std::vector<S_NoteEvent>{{300, 0, 12, 0, ""}}));
  EXPECT_EQ(notes.labels, (std::vector<S_NoteLabel>{{7, ID("labl"), "take_12"}}));
  ASSERT_EQ(notes.cues.size(), 1U);
  EXPECT_EQ(notes.cues[0].dwID, 7U);
}

TEST(ReadRiffNotes, MeaningAfterTheFirst64Characters_IsNone) {
  const std::string strLong = std::string(60, 'x') + "u_3_7";
  const S_Notes notes =
      Read({Held("cue ", Points({{1, 5, 5}, {2, 6, 6}})),
            Held("LIST", AdtlBytes({OthersLabel(1, strLong), OthersLabel(2, "x" + strLong)}))});
  // Of the first one "u_3_" is seen, of the second one "u_3".
  EXPECT_EQ(notes.events, (std::vector<S_NoteEvent>{{5, 3, 0, 0, ""}}));
  ASSERT_EQ(notes.labels.size(), 2U);
  EXPECT_EQ(notes.labels[0].strText, strLong);
  EXPECT_EQ(notes.labels[1].strText, "x" + strLong);
}

TEST(ReadRiffNotes, AnotherLabelOrTextOfTheSameCuePoint_ListsIt) {
  const S_Notes notes =
      Read({Held("cue ", Points({{1, 10, 10}, {2, 20, 20}, {3, 30, 30}, {4, 40, 40}})),
            Held("LIST",
                 AdtlBytes({LablBytes(1, "u_1_1"), OthersLabel(1, "Verse"), LablBytes(2, "u_2_2"),
                            OthersLabel(2, "quiet", "note"), LablBytes(3, "u_3_3"),
                            OthersText(3, 8, "three"), LablBytes(4, "u_4_4")}))});
  EXPECT_EQ(notes.events.size(), 4U);
  ASSERT_EQ(notes.cues.size(), 3U);
  EXPECT_EQ(notes.cues[2].dwID, 3U);
  EXPECT_EQ(notes.labels,
            (std::vector<S_NoteLabel>{{1, ID("labl"), "Verse"}, {2, ID("note"), "quiet"}}));
  EXPECT_EQ(notes.texts,
            (std::vector<S_NoteRegionText>{{3, 8, ID("rgn "), 49, 9, 1, 1252, "three"}}));
}

TEST(ReadRiffNotes, TextOfARangeThatSaysMore_IsListed) {
  const S_Notes notes =
      Read({Held("cue ", Points({{1, 10, 10}})),
            Held("LIST",
                 AdtlBytes({LablBytes(1, "VX_PCM"), LtxtBytes(1, 4), OthersText(1, 8, "more")}))});
  EXPECT_EQ(notes.regions, (std::vector<S_NoteRange>{{10, 4}}));
  ASSERT_EQ(notes.texts.size(), 1U);
  EXPECT_EQ(notes.texts[0].strText, "more");
  EXPECT_EQ(notes.cues.size(), 1U);
}

TEST(ReadRiffNotes, RangeWithoutItsText_TakesTheLastOne) {
  const S_Notes notes =
      Read({Held("cue ", Points({{1, 10, 10}, {2, 20, 20}})),
            Held("LIST", AdtlBytes({LablBytes(1, "VX_PCM"), LtxtBytes(9, 4), LtxtBytes(8, 6)}))});
  EXPECT_EQ(notes.regions, (std::vector<S_NoteRange>{{10, 6}}));
  EXPECT_EQ(notes.texts.size(), 2U);
}

TEST(ReadRiffNotes, RangeWithoutAnyText_IsEmpty) {
  const S_Notes notes = Read(
      {Held("cue ", Points({{1, 10, 10}})), Held("LIST", AdtlBytes({LablBytes(1, "VX_Silence")}))});
  EXPECT_EQ(notes.silence, (std::vector<S_NoteRange>{{10, 0}}));
}

TEST(ReadRiffNotes, SecondCuePointOfOneIdentifier_IsListed) {
  const S_Notes notes = Read({Held("cue ", Points({{1, 10, 10}, {1, 20, 20}})),
                              Held("LIST", AdtlBytes({LablBytes(1, "u_1_1")}))});
  EXPECT_EQ(notes.events, (std::vector<S_NoteEvent>{{10, 1, 1, 0, ""}}));
  ASSERT_EQ(notes.cues.size(), 1U);
  EXPECT_EQ(notes.cues[0].dwPosition, 20U);
}

TEST(ReadRiffNotes, LibraryLabelWithoutItsCuePoint_IsListedInAWholeFileOnly) {
  const std::vector<S_HeldChunk> chunks = {
      Held("LIST", AdtlBytes({LablBytes(5, "u_1_1"), LablBytes(6, "VX_PCM"), LtxtBytes(6, 3),
                              LablBytes(7, "Verse")}))};
  const S_Notes whole = Read(chunks);
  EXPECT_EQ(whole.labels.size(), 3U);
  EXPECT_EQ(whole.texts.size(), 1U);
  EXPECT_TRUE(whole.events.empty());
  const S_Notes cut = ReadCut(chunks);
  EXPECT_EQ(cut.labels, (std::vector<S_NoteLabel>{{7, ID("labl"), "Verse"}}));
  EXPECT_TRUE(cut.texts.empty());
}

TEST(ReadRiffNotes, AllFieldsOfACuePoint_AreRead) {
  const C_Bytes cue = Join({U32(1), U32(11), U32(22), Ascii("slnt"), U32(33), U32(44), U32(55)});
  EXPECT_EQ(Read({Held("cue ", cue)}).cues,
            (std::vector<S_NoteCue>{{11, 22, ID("slnt"), 33, 44, 55}}));
}

TEST(ReadRiffNotes, MoreCuePointsThanThereAre_AreNotRead) {
  const C_Bytes cue =
      Join({U32(0xFFFFFFFFU), U32(1), U32(2), Ascii("data"), C_Bytes(12), U32(3), U32(4)});
  EXPECT_EQ(Read({Held("cue ", cue)}).cues.size(), 1U);
}

TEST(ReadRiffNotes, Sampler_IsReadWithLoopsAndData) {
  C_Bytes smpl = SmplBytes(10, 20);
  smpl[32] = 3;
  const S_Notes notes = Read({Held("smpl", Join({smpl, {9, 8, 7, 6}}))});
  EXPECT_TRUE(notes.sampler.bPresent);
  EXPECT_EQ(notes.sampler.dwManufacturer, 0x01000020U);
  EXPECT_EQ(notes.sampler.dwMidiUnityNote, 60U);
  EXPECT_EQ(notes.sampler.data, (C_Bytes{9, 8, 7}));
  EXPECT_EQ(notes.loops, (std::vector<S_NoteLoop>{{7, 0, 10, 20, 0, 0}}));
}

TEST(ReadRiffNotes, SamplerThatClaimsMoreThanItHolds_IsReadAsFarAsItGoes) {
  const C_Bytes smpl = Join({C_Bytes(28), U32(0xFFFFFFFFU), U32(0xFFFFFFFFU), C_Bytes(24), {5}});
  const S_Notes notes = Read({Held("smpl", smpl)});
  EXPECT_EQ(notes.loops.size(), 1U);
  EXPECT_EQ(notes.sampler.data, (C_Bytes{5}));
}

TEST(ReadRiffNotes, TooShortMarkChunks_AreKeptAsTheyAre) {
  const S_Notes notes = Read({Held("cue ", {1, 2, 3}), Held("smpl", C_Bytes(35)),
                              Held("LIST", {'a', 'd', 't'}), Held("abcd", {})});
  EXPECT_EQ(NamesOf(notes.chunks), (std::vector<std::string>{"cue ", "smpl", "LIST", "abcd"}));
  EXPECT_FALSE(notes.sampler.bPresent);
}

TEST(ReadRiffNotes, ChunksOfOthers_AreKeptByteForByteUnlessTheyAreCut) {
  const S_Notes notes = Read({Held("bext", {1, 2, 3}), Held("LIST", Ascii("INFOINAM")),
                              Held("priv", {4}), Held("last", {9, 9}, true)});
  ASSERT_EQ(NamesOf(notes.chunks), (std::vector<std::string>{"bext", "LIST", "priv"}));
  EXPECT_EQ(notes.chunks[0].data, (C_Bytes{1, 2, 3}));
  EXPECT_EQ(notes.chunks[1].data, Ascii("INFOINAM"));
}

TEST(ReadRiffNotes, LaterChunkOfAKind_CountsAndTheEarlierOneIsKept) {
  const C_Bytes firstCue = Points({{1, 10, 10}});
  const C_Bytes firstList = AdtlBytes({LablBytes(1, "First")});
  const S_Notes notes =
      Read({Held("priv", {1}), Held("cue ", firstCue), Held("smpl", SmplBytes(1, 2)),
            Held("LIST", firstList), Held("cue ", Points({{2, 20, 20}})),
            Held("LIST", AdtlBytes({LablBytes(2, "Second")})), Held("smpl", SmplBytes(3, 4))});
  ASSERT_EQ(notes.cues.size(), 1U);
  EXPECT_EQ(notes.cues[0].dwID, 2U);
  EXPECT_EQ(notes.labels, (std::vector<S_NoteLabel>{{2, ID("labl"), "Second"}}));
  ASSERT_EQ(notes.loops.size(), 1U);
  EXPECT_EQ(notes.loops[0].dwFirst, 3U);
  ASSERT_EQ(NamesOf(notes.chunks), (std::vector<std::string>{"cue ", "smpl", "LIST", "priv"}));
  EXPECT_EQ(notes.chunks[0].data, firstCue);
  EXPECT_EQ(notes.chunks[1].data, SmplBytes(1, 2));
  EXPECT_EQ(notes.chunks[2].data, firstList);
}

TEST(ReadRiffNotes, UnknownPartsOfLists_AreKeptAsOneListOfTheirOwn) {
  const S_Notes notes =
      Read({Held("LIST", AdtlBytes({PaddedPart("file", {1, 2, 3})})),
            Held("LIST", AdtlBytes({PaddedPart("bmp ", {4, 5}), OthersLabel(1, "Verse"),
                                    PaddedPart("note", {6}), ChunkBytes("last", {})}))});
  ASSERT_EQ(notes.chunks.size(), 1U);
  EXPECT_EQ(notes.chunks[0].id, ID("LIST"));
  EXPECT_EQ(notes.chunks[0].data,
            AdtlBytes({PaddedPart("file", {1, 2, 3}), PaddedPart("bmp ", {4, 5}),
                       PaddedPart("note", {6}), ChunkBytes("last", {})}));
  EXPECT_EQ(notes.labels.size(), 1U);
}

TEST(ReadRiffNotes, TextsWithoutAFinalZeroAndWithoutAPad_EndWithTheirParts) {
  const S_Notes notes =
      Read({Held("LIST", AdtlBytes({ChunkBytes("labl", Join({U32(1), Ascii("abcd")})),
                                    PaddedPart("note", Join({U32(2), Ascii("xyz")})),
                                    ChunkBytes("labl", Join({U32(3), Ascii("odd")}))}))});
  EXPECT_EQ(notes.labels,
            (std::vector<S_NoteLabel>{
                {1, ID("labl"), "abcd"}, {2, ID("note"), "xyz"}, {3, ID("labl"), "odd"}}));
}

TEST(ReadRiffNotes, EmptyLabel_IsRead) {
  const S_Notes notes = Read({Held("LIST", AdtlBytes({ChunkBytes("labl", U32(1))}))});
  EXPECT_EQ(notes.labels, (std::vector<S_NoteLabel>{{1, ID("labl"), ""}}));
}

TEST(ReadRiffNotes, ListsThatContradictTheirSizes_AreRefused) {
  const char* const pszText = "LIST chunk: its labels contradict their own sizes";
  EXPECT_EQ(RefusalOf({Held("LIST", AdtlBytes({ChunkBytes("labl", 9, Join({U32(1), {0}}))}))}),
            pszText);
  EXPECT_EQ(RefusalOf({Held("LIST", AdtlBytes({ChunkBytes("labl", {1, 2, 3})}))}), pszText);
  EXPECT_EQ(RefusalOf({Held("LIST", AdtlBytes({ChunkBytes("ltxt", C_Bytes(19))}))}), pszText);
  EXPECT_EQ(RefusalOf({Held("LIST", AdtlBytes({ChunkBytes("abcd", 0xFFFFFFFFU, {1})}))}), pszText);
  EXPECT_EQ(RefusalOf({Held("LIST", AdtlBytes({ChunkBytes("note", {1, 2, 3})}))}), "");
  EXPECT_EQ(RefusalOf({Held("LIST", AdtlBytes({ChunkBytes("labl", 77, {})}))}), "");
}

TEST(ReadRiffNotes, PayloadsThatAreKept_AreMovedAndNotCopied) {
  std::vector<S_HeldChunk> chunks = {{FourCC("abcd"), std::vector<std::uint8_t>(1000, 1)},
                                     {FourCC("cue "), std::vector<std::uint8_t>(4)},
                                     {FourCC("cue "), std::vector<std::uint8_t>(4)}};
  const std::uint8_t* const pbyData = chunks[0].data.data();
  const std::uint8_t* const pbyEarlier = chunks[1].data.data();
  const S_Notes notes = ReadRiffNotes(std::move(chunks), E_RiffForm::Wave, false);
  ASSERT_EQ(notes.chunks.size(), 2U);
  EXPECT_EQ(notes.chunks[0].data.data(), pbyEarlier);
  EXPECT_EQ(notes.chunks[1].data.data(), pbyData);
}

TEST(ReadRiffNotes, CutChunks_KeepTheirWholeRecords) {
  const C_Bytes cue = Points({{1, 10, 10}, {2, 20, 20}});
  const C_Bytes list = AdtlBytes({LablBytes(1, "u_1_1"), LablBytes(2, "Verse")});
  const S_Notes notes = ReadCut({Held("cue ", C_Bytes(cue.begin(), cue.end() - 1), true),
                                 Held("LIST", C_Bytes(list.begin(), list.end() - 1), true)});
  EXPECT_EQ(notes.events, (std::vector<S_NoteEvent>{{10, 1, 1, 0, ""}}));
  EXPECT_TRUE(notes.labels.empty());
  EXPECT_TRUE(notes.cues.empty());
}

}  // namespace
}  // namespace api::test
