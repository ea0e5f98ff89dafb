// SPDX-License-Identifier: Apache-2.0
//
// Notes on their way from file to file.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "PublicSounds.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

// What a studio leaves in a WAV file.
voxplay::Notes StudioNotes() {
  voxplay::Notes notes;
  for (std::uint32_t n = 1; n <= 5; ++n) {
    notes.add(voxplay::Cue{n * 10, n * 100, {'d', 'a', 't', 'a'}, 0, 0, n * 100});
    const std::string strText = "Scene " + std::to_string(n) + std::string(n * 30, '.');
    notes.add(voxplay::Label{n * 10, {'l', 'a', 'b', 'l'}, strText.c_str()});
  }
  notes.add(voxplay::Label{20, {'n', 'o', 't', 'e'}, "a comment"});
  notes.add(voxplay::RegionText{30, 55, {'r', 'g', 'n', ' '}, 1, 9, 1, 1252, "spoken"});
  notes.add(voxplay::RegionText{40, 66, {'s', 'c', 'r', 'p'}, 49, 7, 1, 1252, ""});
  notes.set_sampler({1, 2, 62500, 60, 0, 0, 0, "xyz", 3});
  notes.add(voxplay::Loop{7, 0, 10, 200, 0, 3});
  notes.add(voxplay::Chunk{{'L', 'I', 'S', 'T'}, "INFOINAM\6\0\0\0Title\0", 18});
  notes.add(voxplay::Chunk{{'p', 'r', 'v', '1'}, "odd", 3});
  notes.add(voxplay::Chunk{{'p', 'r', 'v', '2'}, "\0even\0", 6});
  return notes;
}

auto AsTuple(const voxplay::Cue& cue) {
  return std::tuple(cue.id, cue.position, std::string(cue.chunk, 4), cue.chunk_start,
                    cue.block_start, cue.sample_offset);
}
auto AsTuple(const voxplay::Label& label) {
  return std::tuple(label.cue_id, std::string(label.type, 4), std::string(label.text));
}
auto AsTuple(const voxplay::RegionText& text) {
  return std::tuple(text.cue_id, text.count, std::string(text.purpose, 4), text.country,
                    text.language, text.dialect, text.code_page, std::string(text.text));
}
auto AsTuple(const voxplay::Loop& loop) {
  return std::tuple(loop.id, loop.type, loop.first, loop.last, loop.fraction, loop.play_count);
}
auto AsTuple(const voxplay::Chunk& chunk) {
  return std::tuple(std::string(chunk.id, 4),
                    std::string(static_cast<const char*>(chunk.data), chunk.size));
}
auto AsTuple(const voxplay::Event& event) {
  return std::tuple(event.frame, event.main_command, event.sub_command, event.data,
                    std::string(event.description));
}
auto AsTuple(const voxplay::Range& range) { return std::tuple(range.first, range.count); }
auto AsTuple(const voxplay::Sampler& sampler) {
  return std::tuple(sampler.manufacturer, sampler.product, sampler.sample_period,
                    sampler.midi_unity_note,
                    std::string(static_cast<const char*>(sampler.data), sampler.data_size));
}

template <typename Record>
auto All(const voxplay::Records<Record>& records) {
  std::vector<decltype(AsTuple(std::declval<Record>()))> all;
  for (const Record record : records) all.push_back(AsTuple(record));
  return all;
}

void ExpectStudioNotes(const voxplay::NotesView& notes) {
  const voxplay::Notes expected = StudioNotes();
  EXPECT_EQ(All(notes.cues()), All(expected.view().cues()));
  EXPECT_EQ(All(notes.labels()), All(expected.view().labels()));
  EXPECT_EQ(All(notes.region_texts()), All(expected.view().region_texts()));
  EXPECT_EQ(All(notes.loops()), All(expected.view().loops()));
  EXPECT_EQ(All(notes.chunks()), All(expected.view().chunks()));
  EXPECT_EQ(AsTuple(notes.sampler()), AsTuple(expected.view().sampler()));
}

// Writes a sound with the notes of another; returns the bytes.
std::vector<std::uint8_t> Rewritten(const std::vector<std::uint8_t>& bytes,
                                    const voxplay_format& format,
                                    std::vector<std::string>* pLost = nullptr) {
  voxplay::Reader reader(AsBytes(bytes));
  const auto samples = ReadRest(reader);
  C_MemoryOutput output;
  voxplay::Writer writer(output.Record(), format);
  writer.set_notes(reader.notes());
  writer.write(std::span(samples));
  writer.finish();
  const auto lost = writer.lost();
  if (pLost != nullptr) *pLost = lost;
  return output.Bytes();
}

const voxplay_format kWav = FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM, 16);
const voxplay_format kVef = FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_PCM, 16);
const voxplay_format kVefKestrel = FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_KESTREL);
const voxplay_format kKestrel = FormatOf(VOXPLAY_CONTAINER_SP, VOXPLAY_CODEC_KESTREL);

TEST(NotesSurviveTest, FromWavToWav_NothingIsLost) {
  const auto first = WrittenBytes(kWav, PublicSamples(1000), StudioNotes());
  std::vector<std::string> lost;
  const auto second = Rewritten(first, kWav, &lost);
  EXPECT_THAT(lost, IsEmpty());
  EXPECT_EQ(second, first);
  voxplay::Reader reader(AsBytes(second));
  ExpectStudioNotes(reader.notes());
}

TEST(NotesSurviveTest, FromWavToVefToWav_NothingIsLost) {
  const auto first = WrittenBytes(kWav, PublicSamples(1000), StudioNotes());
  for (const auto& between : {kVef, kVefKestrel}) {
    std::vector<std::string> lost;
    const auto vef = Rewritten(first, between, &lost);
    EXPECT_THAT(lost, IsEmpty());
    voxplay::Reader reader(AsBytes(vef));
    ExpectStudioNotes(reader.notes());
    EXPECT_EQ(Rewritten(vef, kWav, &lost), first);
    EXPECT_THAT(lost, IsEmpty());
  }
}

TEST(NotesSurviveTest, KestrelBehindAnSpHeader_ListsEachNoteThatItCannotHold) {
  const auto first = WrittenBytes(kWav, PublicSamples(1000), StudioNotes());
  std::vector<std::string> lost;
  static_cast<void>(Rewritten(first, kKestrel, &lost));
  // 5 cue points, 5 labels and a note, 2 texts, the sampler, a loop, 3 chunks.
  EXPECT_THAT(lost, SizeIs(18));
  EXPECT_THAT(lost, Contains(HasSubstr("label 3 of cue point 30")));
  EXPECT_THAT(lost, Contains(HasSubstr("prv1")));
}

TEST(NotesSurviveTest, EventsSilenceAndRegions_TravelAsFarAsEachFormHoldsThem) {
  voxplay::Notes notes = StudioNotes();
  notes.add(voxplay::Event{100, 3, 7, 0, nullptr});
  notes.add(voxplay::Event{50, 1, 2, 12, "spoken by a guest"});
  notes.add_silence({300, 40});
  notes.add_region({400, 50});
  const auto wav = WrittenBytes(kWav, PublicSamples(1000), notes);
  voxplay::Reader reader(AsBytes(wav));
  ExpectStudioNotes(reader.notes());
  ASSERT_EQ(reader.notes().events().size(), 2U);
  EXPECT_EQ(AsTuple(reader.notes().events()[0]), std::tuple(50U, 1, 2, 0U, ""));
  EXPECT_EQ(AsTuple(reader.notes().events()[1]), std::tuple(100U, 3, 7, 0U, ""));
  ASSERT_EQ(reader.notes().silence().size(), 1U);
  EXPECT_EQ(AsTuple(reader.notes().silence()[0]), std::tuple(300U, 40U));
  ASSERT_EQ(reader.notes().regions().size(), 1U);
  EXPECT_EQ(AsTuple(reader.notes().regions()[0]), std::tuple(400U, 50U));

  C_MemoryOutput output;
  voxplay::Writer writer(output.Record(), kVef);
  writer.set_notes(notes);
  const auto samples = PublicSamples(1000);
  writer.write(std::span(samples));
  writer.finish();
  const auto lost = writer.lost();
  EXPECT_THAT(lost, SizeIs(3));  // the silence, the region, a description
  voxplay::Reader vef(AsBytes(output.Bytes()));
  ExpectStudioNotes(vef.notes());
  ASSERT_EQ(vef.notes().events().size(), 2U);
  EXPECT_EQ(vef.notes().events()[0].data, 12U);
}

}  // namespace
