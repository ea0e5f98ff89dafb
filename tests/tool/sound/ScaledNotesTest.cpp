// SPDX-License-Identifier: Apache-2.0
#include "sound/ScaledNotes.h"

#include <gtest/gtest.h>

#include <string>

#include "VoxtoolSounds.h"

namespace tool {
namespace {

TEST(ScaledNotesTest, HalfTheRate_HalvesAllFramesAndLengths) {
  const voxplay::Notes scaled = ScaledNotes(test::SomeNotes(), 32000, 16000);
  const voxplay::NotesView notes = scaled.view();
  EXPECT_EQ(notes.events()[0].frame, 500U);
  EXPECT_EQ(notes.events()[0].main_command, 3);
  EXPECT_EQ(notes.events()[1].frame, 1000U);
  EXPECT_EQ(notes.silence()[0].first, 50U);
  EXPECT_EQ(notes.silence()[0].count, 30U);
  EXPECT_EQ(notes.regions()[0].first, 1500U);
  EXPECT_EQ(notes.regions()[0].count, 250U);
  EXPECT_EQ(notes.cues()[0].position, 200U);
  EXPECT_EQ(notes.cues()[0].sample_offset, 200U);
  EXPECT_EQ(notes.region_texts()[0].count, 25U);
  EXPECT_STREQ(notes.region_texts()[0].text, "words");
  EXPECT_EQ(notes.loops()[0].first, 200U);
  EXPECT_EQ(notes.loops()[0].last, 399U);
  EXPECT_STREQ(notes.labels()[0].text, "verse");
  EXPECT_EQ(notes.chunks().size(), 1U);
}

// Whatever other programs have left at 0, the place is scaled and both members have it.
TEST(ScaledNotesTest, CuePointsOfOtherPrograms_AreScaledWhereTheyAre) {
  voxplay::Notes notes;
  notes.add(voxplay::Cue{1, 0, {'d', 'a', 't', 'a'}, 0, 0, 400});
  notes.add(voxplay::Cue{2, 600, {'d', 'a', 't', 'a'}, 0, 0, 0});
  notes.add(voxplay::Cue{3, 1000, {'d', 'a', 't', 'a'}, 0, 1600, 200});
  notes.add(voxplay::RegionText{1, 101, {'r', 'g', 'n', ' '}, 0, 0, 0, 0, ""});
  const voxplay::Notes scaled = ScaledNotes(notes, 32000, 16000);
  const std::uint32_t frames[] = {200, 300, 500};
  for (std::size_t n = 0; n < std::size(frames); ++n) {
    EXPECT_EQ(scaled.view().cues()[n].position, frames[n]);
    EXPECT_EQ(scaled.view().cues()[n].sample_offset, frames[n]);
    EXPECT_EQ(scaled.view().cues()[n].block_start, 0U);
  }
  EXPECT_EQ(scaled.view().region_texts()[0].count, 51U);
}

TEST(ScaledNotesTest, SameRate_ChangesNothing) {
  const voxplay::Notes scaled = ScaledNotes(test::SomeNotes(), 44100, 44100);
  EXPECT_EQ(scaled.view().events()[0].frame, 1000U);
  EXPECT_EQ(scaled.view().loops()[0].last, 799U);
}

TEST(ScaledNotesTest, RangesThatTouch_TouchAtEveryRate) {
  voxplay::Notes notes;
  notes.add_silence({0, 1001});
  notes.add_silence({1001, 1001});
  for (const std::uint32_t dwRate : {16000U, 11025U, 8000U, 44099U}) {
    const voxplay::Notes scaled = ScaledNotes(notes, 44100, dwRate);
    const auto ranges = scaled.view().silence();
    EXPECT_EQ(ranges[0].first + ranges[0].count, ranges[1].first) << dwRate;
  }
}

TEST(ScaledNotesTest, Sampler_GetsThePeriodOfTheNewRate) {
  voxplay::Notes notes;
  voxplay::Sampler sampler{};
  sampler.sample_period = 22675;
  sampler.midi_unity_note = 64;
  notes.set_sampler(sampler);
  const voxplay::Notes scaled = ScaledNotes(notes, 44100, 16000);
  EXPECT_EQ(scaled.view().sampler().sample_period, 62500U);
  EXPECT_EQ(scaled.view().sampler().midi_unity_note, 64U);
}

TEST(ScaledNotesTest, FramesBeyondTheirField_StayAtItsEnd) {
  voxplay::Notes notes;
  notes.add(voxplay::Cue{1, 4000000000U, {'d', 'a', 't', 'a'}, 0, 0, 4000000000U});
  notes.add(voxplay::Loop{1, 0, 0, 4294967295U, 0, 0});
  notes.add_silence({UINT64_MAX - 5, UINT64_MAX});
  const voxplay::Notes scaled = ScaledNotes(notes, 8000, 48000);
  EXPECT_EQ(scaled.view().cues()[0].position, 4294967295U);
  EXPECT_EQ(scaled.view().loops()[0].last, 4294967295U);
  EXPECT_EQ(scaled.view().silence()[0].first, UINT64_MAX);
}

}  // namespace
}  // namespace tool
