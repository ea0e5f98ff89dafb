// SPDX-License-Identifier: Apache-2.0
//
// WAV files that end within their annotations: the sound is whole, so it loads, with as many
// annotations as are whole.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "WavFileLoadFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

C_Bytes WithoutLast(C_Bytes bytes, std::size_t cbCut) {
  bytes.resize(bytes.size() - cbCut);
  return bytes;
}

class WavFileCut : public WavFileLoad {
 protected:
  // Loads the file without its last bytes. Its RIFF size still counts them.
  C_WavObjectPtr LoadCut(const C_RiffBytes& riff, std::size_t cbCut) {
    C_WavObjectPtr file = LoadWav(File(WithoutLast(C_RiffBytes(riff).Take(), cbCut)));
    EXPECT_EQ(PcmOf(*file), RampBytes(64));
    return file;
  }
};

TEST_F(WavFileCut, CuePoints_AreKeptAsFarAsTheyAreWhole) {
  const C_RiffBytes riff =
      MonoWav(64).Chunk("cue ", CueBytes({{1, 10, 10}, {2, 20, 20}, {3, 30, 30}}));
  const std::pair<std::size_t, int> kept[] = {{1, 2}, {24, 2}, {25, 1}, {72, 0}, {73, 0}, {76, 0}};
  for (const auto& [cbCut, nKept] : kept) {
    const C_WavObjectPtr file = LoadCut(riff, cbCut);
    ASSERT_EQ(Cues(*file).GetCuePointCount(), nKept) << cbCut;
    for (int i = 0; i < nKept; ++i) {
      EXPECT_EQ(Cues(*file).GetCuePointByIndex(i)->GetPosition(),
                10u * (static_cast<unsigned int>(i) + 1));
    }
  }
}

TEST_F(WavFileCut, Loops_AreKeptAsFarAsTheyAreWhole) {
  const C_RiffBytes riff = MonoWav(64).Chunk("smpl", SmplBytes(3, 20));
  EXPECT_EQ(Sampler(*LoadCut(riff, 1)).GetSampleLoopNum(), 0u);
  EXPECT_EQ(Sampler(*LoadCut(riff, 1)).GetMIDIUnityNote(), 60u);
  EXPECT_EQ(Sampler(*LoadCut(riff, 24)).GetMIDIUnityNote(), 60u);
  EXPECT_EQ(Sampler(*LoadCut(riff, 25)).GetMIDIUnityNote(), 0u);
  EXPECT_EQ(Sampler(*LoadCut(riff, 60)).GetMIDIUnityNote(), 0u);
}

TEST_F(WavFileCut, Labels_AreKeptAsFarAsTheyAreWhole) {
  const C_RiffBytes riff =
      MonoWav(64)
          .Chunk("cue ", CueBytes({{1, 10, 10}, {2, 20, 20}}))
          .Chunk("LIST",
                 AdtlBytes({LtxtBytes(2, 5), LablBytes(1, "u_3_7"), LablBytes(2, "VX_Silence")}));
  constexpr std::size_t cbLast = 8 + 4 + 12;
  for (const std::size_t cbCut : {std::size_t{1}, std::size_t{12}, cbLast - 8, cbLast}) {
    const C_WavObjectPtr file = LoadCut(riff, cbCut);
    EXPECT_THAT(LabelsOf(*file), ElementsAre(std::pair(1u, "u_3_7"))) << cbCut;
    EXPECT_THAT(EventsOf(*file), ElementsAre(S_EventSeen{3, 7, 10}));
    EXPECT_THAT(SilenceOf(*file), IsEmpty());
  }
  EXPECT_THAT(LabelsOf(*LoadCut(riff, cbLast + 1)), IsEmpty());
}

// Whether the RIFF size counts the missing bytes or not.
TEST_F(WavFileCut, LabelsWithoutTheirCuePoints_MeanNothingAndStay) {
  const C_Bytes labels =
      AdtlBytes({LablBytes(1, "u_3_7"), LablBytes(2, "u_5_6"), LablBytes(3, "Verse")});
  const C_Bytes cues = CueBytes({{1, 10, 10}, {2, 20, 20}});
  for (std::size_t cbCut = 1; cbCut <= 60; ++cbCut) {
    const bool bFirst = cbCut <= 24;
    const C_WavObjectPtr cut =
        LoadCut(MonoWav(64).Chunk("LIST", labels).Chunk("cue ", cues), cbCut);
    EXPECT_EQ(EventsOf(*cut).size(), bFirst ? 1u : 0u) << cbCut;
    EXPECT_EQ(LabelsOf(*cut).size(), 3u);
    if (cbCut > cues.size()) continue;
    const C_WavObjectPtr honest = LoadWav(
        File(MonoWav(64).Chunk("LIST", labels).Chunk("cue ", 52, WithoutLast(cues, cbCut))));
    EXPECT_EQ(EventsOf(*honest).size(), bFirst ? 1u : 0u) << cbCut;
    EXPECT_EQ(LabelsOf(*honest).size(), 3u);
  }
}

TEST_F(WavFileCut, ListsOfOtherTypes_DoNotMatter) {
  const C_RiffBytes riff =
      MonoWav(64).Chunk("LIST", Join({Ascii("INFO"), ChunkBytes("INAM", Ascii("name"))}));
  for (std::size_t cbCut = 1; cbCut <= 24; ++cbCut) LoadCut(riff, cbCut);
}

TEST_F(WavFileCut, MalformedLabelsInAWholeChunk_AreRefused) {
  const C_Bytes malformed = AdtlBytes({ChunkBytes("labl", 3, {1, 2, 3, 4})});
  EXPECT_FALSE(Opens(File(MonoWav(64).Chunk("LIST", malformed))));
  // What follows may be cut.
  EXPECT_FALSE(Opens(File(MonoWav(64).Chunk("LIST", malformed).Chunk("junk", 100, {1}))));
}

TEST_F(WavFileCut, WholeFileWithLongerRiffSize_StillOpens) {
  C_Bytes bytes = OneLabel("u_3_7").Take();
  bytes[7] = 1;  // 16 MiB
  EXPECT_THAT(EventsOf(*LoadWav(File(bytes))), ElementsAre(S_EventSeen{3, 7, 4800}));
  EXPECT_THAT(LabelsOf(*LoadWav(File(bytes))), ElementsAre(std::pair(1u, "u_3_7")));
}

}  // namespace
