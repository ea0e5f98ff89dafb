// SPDX-License-Identifier: Apache-2.0
//
// What a program makes of notes, on its way through whole files: whatever is not read again as it
// was written has a sentence that says so.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "CallerOutput.h"
#include "HeldChunks.h"
#include "Sanitized.h"
#include "notes/NoteEdits.h"
#include "reader/Reader.h"
#include "writer/Writer.h"

namespace api::test {
namespace {

class C_RandomNotes {
 public:
  explicit C_RandomNotes(unsigned int dwSeed) : m_random(dwSeed) {}

  S_Notes Notes() {
    S_Notes notes;
    Fill(notes.events, 4, [this] { return Event(); });
    Fill(notes.silence, 2, [this] { return S_NoteRange{Below(4) * 100, Below(50)}; });
    Fill(notes.regions, 2, [this] { return S_NoteRange{Below(4) * 100, Below(50)}; });
    Fill(notes.cues, 4, [this] { return Cue(); });
    Fill(notes.labels, 4, [this] { return Label(); });
    Fill(notes.texts, 3, [this] { return Text(); });
    Fill(notes.loops, 2, [this] { return S_NoteLoop{Below(9), 0, Below(9), 9, 0, Below(3)}; });
    Fill(notes.chunks, 3, [this] { return Chunk(); });
    // Files have loops within a sampler record only.
    notes.sampler.bPresent = !notes.loops.empty() || Below(2) == 0;
    if (notes.sampler.bPresent) notes.sampler.data = C_Bytes(Below(3), 7);
    PutInOrder(notes);
    return notes;
  }

 private:
  template <typename Note, typename Make>
  void Fill(std::vector<Note>& notes, unsigned int nMost, Make fnMake) {
    for (unsigned int nLeft = Below(nMost + 1); nLeft > 0; --nLeft) notes.push_back(fnMake());
  }
  S_NoteEvent Event() {
    const std::uint32_t dwData = Below(4) == 0 ? Below(3) : 0;
    return {Below(4) * 100, static_cast<std::uint16_t>(Below(2)),
            static_cast<std::uint16_t>(Below(3)), dwData, Below(9) == 0 ? "bell" : ""};
  }
  S_NoteCue Cue() {
    return {Below(6), Below(4) * 100, ID(Below(3) == 0 ? "slnt" : "data"), Below(2), 0, Below(9)};
  }
  S_NoteLabel Label() {
    static const char* const kTexts[] = {"Verse",   "take_1", "take_2",    "u_0_2x",
                                         "umm_1_2", "",       "VX_PCM",    "u_1_2",
                                         "(65538)", "(1,0)",  "Scene 1_2", "cue_1"};
    return {Below(6), ID(Below(4) == 0 ? "note" : "labl"), kTexts[Below(12)]};
  }
  S_NoteRegionText Text() {
    return {Below(6),
            Below(50),
            ID(Below(3) == 0 ? "scrp" : "rgn "),
            static_cast<std::uint16_t>(Below(2)),
            0,
            0,
            0,
            Below(2) == 0 ? "" : "text"};
  }
  S_NoteChunk Chunk() {
    static const char* const kIDs[] = {"priv", "JUNK", "vafm", "vdat", "data",
                                       "fact", "ds64", "fmt ", "vevt", "bext"};
    return {ID(kIDs[Below(10)]), C_Bytes(Below(20), static_cast<std::uint8_t>(Below(2)))};
  }
  unsigned int Below(unsigned int dwEnd) { return static_cast<unsigned int>(m_random() % dwEnd); }

  std::mt19937 m_random;
};

struct S_Rewritten {
  S_Notes notes;
  std::vector<std::string> lost;
};

S_Rewritten ThroughAFile(const S_Notes& notes, const voxplay_format& format) {
  C_CallerOutput output;
  const auto writer = C_Writer::Open(OpenOutputTarget(output.Record()), format);
  writer->SetNotes(notes);
  const std::array<std::int16_t, 5> samples{1, 2, 3, 4, 5};
  writer->Write(std::span<const std::int16_t>(samples));
  writer->Finish();
  const C_Bytes file = output.Content();
  const auto reader = C_Reader::Open(OpenMemorySource(file), 0);
  EXPECT_EQ(reader->Info().frames, 5U);
  return {reader->Notes(), writer->Lost()};
}

class RandomNotes : public testing::TestWithParam<voxplay_format> {};

TEST_P(RandomNotes, WithoutASentence_AreTheSameAfterwards) {
  const unsigned int nFiles = kSanitized ? 1000 : 10'000;
  unsigned int nUnchanged = 0;
  unsigned int nLost = 0;
  for (unsigned int i = 0; i < nFiles; ++i) {
    const S_Notes notes = C_RandomNotes(i).Notes();
    const S_Rewritten written = ThroughAFile(notes, GetParam());
    if (written.lost.empty()) {
      ++nUnchanged;
      ASSERT_EQ(written.notes, notes) << i;
    } else {
      ++nLost;
      ASSERT_NE(written.notes, notes) << i << ": " << written.lost[0];
    }
    // What a file says, the next one says as well.
    const S_Rewritten again = ThroughAFile(written.notes, GetParam());
    ASSERT_TRUE(again.lost.empty()) << i << ": " << again.lost[0];
    ASSERT_EQ(again.notes, written.notes) << i;
  }
  EXPECT_GT(nUnchanged, nFiles / 50);
  EXPECT_GT(nLost, nFiles / 4);
}

constexpr voxplay_format FormatOf(std::uint32_t dwContainer, std::uint32_t dwCodec) {
  voxplay_format format{};
  format.container = dwContainer;
  format.codec = dwCodec;
  format.sample_rate = 16000;
  format.channels = 1;
  format.bits_per_sample = 16;
  return format;
}

INSTANTIATE_TEST_SUITE_P(Files, RandomNotes,
                         testing::Values(FormatOf(VOXPLAY_CONTAINER_WAV, VOXPLAY_CODEC_PCM),
                                         FormatOf(VOXPLAY_CONTAINER_VEF, VOXPLAY_CODEC_PCM)),
                         [](const auto& tested) {
                           return tested.param.container == VOXPLAY_CONTAINER_WAV ? "Wav" : "Vef";
                         });

}  // namespace
}  // namespace api::test
