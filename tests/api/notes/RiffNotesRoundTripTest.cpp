// SPDX-License-Identifier: Apache-2.0
//
// What one file says, the next one says as well.
#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "HeldChunks.h"
#include "Sanitized.h"
#include "WavBytes.h"
#include "base/Failure.h"

namespace api::test {
namespace {

std::vector<S_HeldChunk> FileOfAnotherMaker() {
  C_Bytes smpl = SmplBytes(1000, 2000);
  smpl[32] = 2;
  return {Held("bext", RampBytes(602)),
          Held("cue ", CueBytes({{3, 100, 100},
                                 {1, 200, 200},
                                 {7, 300, 300},
                                 {20, 400, 400},
                                 {0xFFFFFFFFU, 500, 499}})),
          Held("LIST", AdtlBytes({OthersLabel(3, "Intro"), OthersLabel(1, "take_2"),
                                  OthersText(7, 50, "Bridge"), OthersLabel(7, "sung", "note"),
                                  PaddedPart("file", {1, 2, 3}),
                                  OthersLabel(20, std::string(99, 'y')), OthersText(20, 60, "")})),
          Held("LIST", Join({Ascii("INFO"), PaddedPart("INAM", Ascii("Title"))})),
          Held("smpl", Join({smpl, {5, 6}})),
          Held("priv", {1, 2, 3}),
          Held("PRI2", {})};
}

TEST(RiffNotesRoundTrip, FileOfAnotherMaker_SurvivesAsWavAndAsContainer) {
  const S_Notes notes = Read(FileOfAnotherMaker());
  EXPECT_EQ(notes.cues.size(), 5U);
  EXPECT_EQ(notes.labels.size(), 4U);
  EXPECT_EQ(notes.texts.size(), 2U);
  EXPECT_EQ(notes.loops.size(), 1U);
  EXPECT_EQ(notes.chunks.size(), 5U);
  EXPECT_TRUE(Written(notes).lost.empty());
  EXPECT_TRUE(Written(notes, E_RiffForm::Vef).lost.empty());
  EXPECT_EQ(Through(notes, E_RiffForm::Wave), notes);
  EXPECT_EQ(Through(notes, E_RiffForm::Vef), notes);
  EXPECT_EQ(Through(Through(notes, E_RiffForm::Vef), E_RiffForm::Wave), notes);
}

TEST(RiffNotesRoundTrip, ChunksOfAnotherMaker_KeepTheirBytes) {
  const S_RiffNotes written = Written(Through(Read(FileOfAnotherMaker()), E_RiffForm::Vef));
  EXPECT_EQ(PayloadOf(written.others, "bext"), RampBytes(602));
  EXPECT_EQ(PayloadOf(written.others, "priv"), (C_Bytes{1, 2, 3}));
  EXPECT_EQ(PayloadOf(written.others, "LIST"),
            Join({Ascii("INFO"), PaddedPart("INAM", Ascii("Title"))}));
  EXPECT_EQ(PayloadOf(written.marks, "cue "), FileOfAnotherMaker()[1].data);
  EXPECT_EQ(PayloadOf(written.marks, "smpl"), FileOfAnotherMaker()[4].data);
}

TEST(RiffNotesRoundTrip, ListInTheOrderThatIsWritten_KeepsItsBytes) {
  const C_Bytes list = AdtlBytes({OthersText(7, 50, "Bridge"), OthersLabel(3, "Intro"),
                                  OthersLabel(7, "sung", "note"), PaddedPart("file", {1, 2, 3})});
  EXPECT_EQ(PayloadOf(Written(Read({Held("LIST", list)})).marks, "LIST"), list);
}

// Chunks from labels, texts and cue points that were chosen at random.
class C_RandomFile {
 public:
  explicit C_RandomFile(unsigned int dwSeed) : m_random(dwSeed) {}

  std::vector<S_HeldChunk> Chunks() {
    std::vector<S_HeldChunk> chunks;
    const unsigned int nChunks = 1 + Below(6);
    for (unsigned int i = 0; i < nChunks; ++i) chunks.push_back(Chunk());
    return chunks;
  }
  unsigned int Below(unsigned int dwEnd) { return static_cast<unsigned int>(m_random() % dwEnd); }

 private:
  S_HeldChunk Chunk() {
    switch (Below(5)) {
      case 0:
        return Held("smpl", SmplBytes(Below(100), Below(100)));
      case 1:
        return Held(Below(2) == 0 ? "priv" : "cue ", RampBytes(Below(5)));
      case 2:
        return Held("cue ", Cues());
      default:
        return Held("LIST", List());
    }
  }
  C_Bytes Cues() {
    std::vector<S_CueBytes> points(Below(12));
    for (S_CueBytes& point : points) point = {Below(12), Below(5) * 100, Below(3)};
    return CueBytes(points);
  }
  C_Bytes List() {
    C_Bytes list = Ascii("adtl");
    const unsigned int nParts = Below(12);
    for (unsigned int i = 0; i < nParts; ++i) {
      const C_Bytes part = Part();
      list.insert(list.end(), part.begin(), part.end());
    }
    return list;
  }
  C_Bytes Part() {
    static const char* const kTexts[] = {"u_3_7", "e_196615",  "VX_Silence", "VX_PCM", "(65538,7)",
                                         "Verse", "u_70000_1", "take_2",     "",       "u_3_7x"};
    switch (Below(8)) {
      case 0:
        return LtxtBytes(Below(12), Below(50));
      case 1:
        return OthersText(Below(12), Below(50), Below(2) == 0 ? "" : "text");
      case 2:
        return PaddedPart("file", RampBytes(Below(6)));
      case 3:
        return OthersLabel(Below(12), kTexts[Below(10)], "note");
      default:
        return OthersLabel(Below(12), kTexts[Below(10)]);
    }
  }

  std::mt19937 m_random;
};

// Everything but the notes that could not be written.
TEST(RiffNotesRoundTrip, RandomMarks_AreTheSameAfterwards) {
  const unsigned int nFiles = kSanitized ? 1000 : 10'000;
  unsigned int nUnchanged = 0;
  for (unsigned int i = 0; i < nFiles; ++i) {
    const E_RiffForm eForm = i % 2 == 0 ? E_RiffForm::Wave : E_RiffForm::Vef;
    const S_Notes notes = Read(C_RandomFile(i).Chunks(), eForm);
    const S_RiffNotes written = Written(notes, eForm);
    const S_Notes again = Read(HeldOf(written), eForm);
    if (written.lost.empty()) {
      ++nUnchanged;
      ASSERT_EQ(again, notes) << i;
    }
    // What is left after that stays.
    const S_Notes third = Through(again, eForm);
    ASSERT_EQ(third, again) << i;
    ASSERT_TRUE(Written(again, eForm).lost.empty()) << i;
  }
  EXPECT_GT(nUnchanged, nFiles / 4);
}

TEST(RiffNotesRoundTrip, ChangedBytes_AreReadOrRefused) {
  const unsigned int nFiles = kSanitized ? 1000 : 10'000;
  unsigned int nRefused = 0;
  for (unsigned int i = 0; i < nFiles; ++i) {
    C_RandomFile random(i);
    std::vector<S_HeldChunk> chunks = random.Chunks();
    for (S_HeldChunk& chunk : chunks) {
      chunk.bCut = random.Below(8) == 0;
      if (chunk.bCut) {
        chunk.data.resize(random.Below(static_cast<unsigned int>(chunk.data.size()) + 1));
      }
      if (chunk.data.empty()) continue;
      const auto nAt = random.Below(static_cast<unsigned int>(chunk.data.size()));
      chunk.data[nAt] = static_cast<std::uint8_t>(random.Below(256));
    }
    try {
      const S_Notes notes = ReadRiffNotes(chunks, E_RiffForm::Wave, i % 3 == 0);
      ASSERT_NO_THROW(Through(notes, E_RiffForm::Wave)) << i;
      ASSERT_NO_THROW(Through(notes, E_RiffForm::Vef)) << i;
    } catch (const C_Failure& failure) {
      ++nRefused;
      ASSERT_EQ(failure.Status(), VOXPLAY_DAMAGED);
    }
  }
  EXPECT_GT(nRefused, nFiles / 100);
  EXPECT_LT(nRefused, nFiles / 2);
}

}  // namespace
}  // namespace api::test
