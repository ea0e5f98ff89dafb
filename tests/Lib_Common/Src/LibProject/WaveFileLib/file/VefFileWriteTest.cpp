// SPDX-License-Identifier: Apache-2.0
//
// Writing VEF containers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FileSizeLimit.h"
#include "FolderTest.h"
#include "RiffFile.h"
#include "TestSound.h"
#include "VefBytes.h"
#include "WavFileObject.h"
#include "WrittenChunks.h"
#include "file/VefFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class VefFileWrite : public C_FolderTest {
 protected:
  VefFileWrite() { m_file.AttachWavData(m_sound.get()); }

  C_Bytes Written(bool bHeader = false) {
    EXPECT_TRUE(m_file.WriteFile(Path("out").c_str(), false, bHeader, nullptr, false, 0));
    return Content("out");
  }
  void AddEvent(unsigned short wMain, unsigned short wSub, unsigned int dwPos,
                unsigned int dwData = 0) {
    m_sound->GetEventTagMgr()->AddEventBySamplePos(wMain, wSub, dwPos, "text", dwData);
  }
  void AddCue(unsigned int dwID, unsigned int dwPos) {
    Cues(m_file).AddCuePoint(dwID, dwPos, 0x61746164, 0, 0, dwPos);
  }
  std::vector<std::pair<unsigned int, unsigned int>> CuePoints() {
    std::vector<std::pair<unsigned int, unsigned int>> seen;
    for (int i = 0; i < Cues(m_file).GetCuePointCount(); ++i) {
      I_WavDataCuePoint* pCuePoint = Cues(m_file).GetCuePointByIndex(i);
      seen.emplace_back(pCuePoint->GetCuePointID(), pCuePoint->GetPosition());
    }
    return seen;
  }

  C_SoundPtr m_sound = MonoSound({1, 2, 3, 4});
  C_VefFile m_file;
};

TEST_F(VefFileWrite, WithoutAnnotations_OnlyFormatAndDataAreWritten) {
  EXPECT_EQ(Written(), Join({Ascii("RIFF"),
                             U32(44),
                             Ascii("VEFF"),
                             Ascii("fmt "),
                             U32(16),
                             FmtBytes(1, 1, 16000, 16),
                             Ascii("data"),
                             U32(8),
                             {1, 0, 2, 0, 3, 0, 4, 0}}));
}

TEST_F(VefFileWrite, WithTheHeaderFlag_CodecFormatFollowsTheData) {
  m_file.SetCodingType(14);
  const C_Bytes file = Written(true);
  EXPECT_THAT(ChunkNames(file), ElementsAre("fmt ", "data", "vafm"));
  EXPECT_EQ(ChunkNamed(file, "vafm"), C_Bytes({0x00, 0x01, 0x0E, 0x00, 0x80, 0x3E, 0x00, 0x00, 0x00,
                                               0x00, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00}));
}

TEST_F(VefFileWrite, CodecFormat_HoldsTheCodecParametersAndTheChannels) {
  m_sound->GetAudioCodecParam()->SetBitRate(0x01020304);
  m_sound->GetAudioCodecParam()->SetPlatform(AUDIO_CODEC_PLATFORM_FALLBACK);
  m_file.SetWavInfoData(8000, 2, 16, 16, true);
  m_file.SetCodingType(0x12345);
  EXPECT_EQ(ChunkNamed(Written(true), "vafm"),
            C_Bytes({0x00, 0x01, 0x45, 0x23, 0x40, 0x1F, 0x04, 0x03, 0x02, 0x01, 0x02, 0x02, 0x00,
                     0x00, 0x00, 0x00}));
}

TEST_F(VefFileWrite, CodecFormat_KeepsTheLowHalfOfTheRate) {
  m_file.SetWavInfoData(96000, 1, 16, 16, true);
  const C_Bytes vafm = ChunkNamed(Written(true), "vafm");
  EXPECT_EQ(C_Bytes(vafm.begin() + 4, vafm.begin() + 6), U16(30464));
}

TEST_F(VefFileWrite, AllChunks_StandInTheirOrder) {
  AddEvent(1, 2, 3);
  Sampler(m_file).AddSampleLoop(5, LOOP_FORWARD, 0, 1, 0, 0);
  Extra(m_file).AddChunk("vevt", "abc", 3);
  Extra(m_file).AddChunk("empt", nullptr, 0);
  Extra(m_file).AddChunk("note", "x", 1);
  const C_Bytes file = Written(true);
  EXPECT_THAT(ChunkNames(file),
              ElementsAre("fmt ", "data", "cue ", "smpl", "LIST", "vafm", "vevt", "note"));
  EXPECT_EQ(ChunkNamed(file, "vevt"), Ascii("abc"));
}

TEST_F(VefFileWrite, OddChunks_GetNoPadByte) {
  m_sound = nullptr;
  C_SoundPtr sound(new C_WavData);
  sound->SetWavInfoData(8000, 0, 1, 8, 8, false);
  sound->SetBuffer("abc", 3);
  m_file.AttachWavData(sound.get());
  Extra(m_file).AddChunk("note", "x", 1);
  EXPECT_EQ(Written(), Join({Ascii("RIFF"), U32(48), Ascii("VEFF"), Ascii("fmt "), U32(16),
                             FmtBytes(1, 1, 8000, 8), Ascii("data"), U32(3), Ascii("abc"),
                             Ascii("note"), U32(1), Ascii("x")}));
}

TEST_F(VefFileWrite, OwnChunksOfAnotherFile_AreNotPassedOn) {
  Extra(m_file).AddChunk("vafm", "0123456789abcdef", 16);
  Extra(m_file).AddChunk("vdat", "stream", 6);
  EXPECT_THAT(ChunkNames(Written()), ElementsAre("fmt ", "data"));
}

TEST_F(VefFileWrite, Events_BecomeCuePointsAndLabels) {
  AddEvent(1, 2, 3, 7);
  AddEvent(0x8000, 0, 1, 0xFFFFFFFF);
  const C_Bytes file = Written();
  EXPECT_EQ(ChunkNamed(file, "cue "), CueBytes({{1, 1, 1}, {2, 3, 3}}));
  EXPECT_EQ(ChunkNamed(file, "LIST"),
            AdtlBytes({LablBytes(1, "(-2147483648,-1)"), LablBytes(2, "(65538,7)")}));
}

TEST_F(VefFileWrite, SilenceSegmentsAndRegions_AreNotWritten) {
  m_sound->AddSilenceSegment(0, 1);
  m_sound->AddUncompressRegion(2, 3);
  EXPECT_THAT(ChunkNames(Written()), ElementsAre("fmt ", "data"));
}

TEST_F(VefFileWrite, WrittenTwice_IsTheSameFile) {
  AddEvent(1, 2, 3, 7);
  AddCue(1, 2);
  List(m_file).AddLabel(1, "Verse");
  List(m_file).AddLtxt(1, 2, "rgn ");
  const C_Bytes first = Written(true);
  EXPECT_EQ(Written(true), first);
  EXPECT_EQ(Written(true), first);
}

TEST_F(VefFileWrite, LibraryLabels_GoWithTheirCuePointsAndTexts) {
  const char* const texts[] = {"(65538,7)", "u_1_2", "VX_Silence", "VX_PCM"};
  for (unsigned int i = 0; i < 4; ++i) {
    AddCue(10 + i, i);
    List(m_file).AddLabel(10 + i, texts[i]);
    List(m_file).AddLtxt(10 + i, 1, "rgn ");
  }
  EXPECT_THAT(ChunkNames(Written()), ElementsAre("fmt ", "data"));
  EXPECT_EQ(Cues(m_file).GetCuePointCount(), 0);
  EXPECT_EQ(List(m_file).GetLtxtCount(), 0);
}

TEST_F(VefFileWrite, CuePointsOfTheUser_Stay) {
  AddCue(4, 2);
  AddCue(9, 3);
  List(m_file).AddLabel(4, "e_196615");
  List(m_file).AddLtxt(9, 1, "beat");
  AddEvent(1, 2, 0, 7);
  Written();
  EXPECT_THAT(CuePoints(), ElementsAre(Pair(4, 2), Pair(9, 3), Pair(1, 0)));
  EXPECT_THAT(LabelsOf(m_file), ElementsAre(Pair(4, "e_196615"), Pair(1, "(65538,7)")));
  EXPECT_EQ(List(m_file).GetLtxtCount(), 1);
}

TEST_F(VefFileWrite, IdentifiersOfEvents_AreTakenFromTheUsersAnnotations) {
  AddEvent(1, 1, 0);
  AddEvent(2, 2, 1);
  AddCue(2, 3);
  AddCue(3, 2);
  AddCue(1, 1);
  AddCue(0, 0);
  List(m_file).AddLabel(2, "Verse");
  List(m_file).AddLabel(1, "Intro");
  List(m_file).AddLtxt(2, 77, "rgn ");
  Sampler(m_file).AddSampleLoop(2, LOOP_BACKWARD, 1, 2, 3, 4);
  Sampler(m_file).AddSampleLoop(4, LOOP_FORWARD, 5, 6, 7, 8);
  Written();
  // 3 and 4 are already used, by a cue point and by a loop.
  EXPECT_THAT(CuePoints(),
              ElementsAre(Pair(6, 3), Pair(3, 2), Pair(5, 1), Pair(0, 0), Pair(1, 0), Pair(2, 1)));
  EXPECT_THAT(LabelsOf(m_file), ElementsAre(Pair(6, "Verse"), Pair(5, "Intro"),
                                            Pair(1, "(65537,0)"), Pair(2, "(131074,0)")));
  unsigned int dwID = 0;
  unsigned int dwSamples = 0;
  EXPECT_STREQ(List(m_file).GetLtxtByIndex(0, &dwID, &dwSamples), "rgn ");
  EXPECT_EQ(dwID, 6u);
  EXPECT_EQ(dwSamples, 77u);
  ASSERT_EQ(Sampler(m_file).GetSampleLoopNum(), 2u);
  I_WavDataSampleLoop* pLoop = Sampler(m_file).GetSampleLoopByIndex(0);
  EXPECT_EQ(pLoop->GetCuePointID(), 6u);
  EXPECT_EQ(pLoop->GetType(), LOOP_BACKWARD);
  EXPECT_EQ(pLoop->GetStartSampleOffset(), 1u);
  EXPECT_EQ(pLoop->GetEndSampleOffset(), 2u);
  EXPECT_EQ(pLoop->GetFraction(), 3u);
  EXPECT_EQ(pLoop->GetPlayCount(), 4u);
  EXPECT_EQ(Sampler(m_file).GetSampleLoopByIndex(1)->GetCuePointID(), 4u);
}

TEST_F(VefFileWrite, CuePointWithALabelOfBothKinds_IsTheUsers) {
  AddCue(1, 2);
  List(m_file).AddLabel(1, "(65538,7)");
  List(m_file).AddLabel(1, "Verse");
  Written();
  EXPECT_THAT(CuePoints(), ElementsAre(Pair(1, 2)));
  EXPECT_THAT(LabelsOf(m_file), ElementsAre(Pair(1, "Verse")));
}

TEST_F(VefFileWrite, RenumberedTexts_KeepAllTheirFields) {
  const C_Bytes ltxt =
      ChunkBytes("ltxt", Join({U32(1), U32(5), Ascii("beat"), U16(49), U16(7), U16(3), U16(1252)}));
  C_VefFile file;
  const std::string strPath = Write(
      "in",
      MonoVef(8).Chunk("cue ", CueBytes({{1, 2, 2}})).Chunk("LIST", AdtlBytes({ltxt})).Take());
  ASSERT_TRUE(file.LoadByName(strPath.c_str(), true, nullptr, nullptr));
  file.GetWavData()->GetEventTagMgr()->AddEventBySamplePos(1, 2, 3, "", 0);
  ASSERT_TRUE(file.WriteFile(Path("out").c_str(), false, false, nullptr, false, 0));
  C_Bytes renumbered = ltxt;
  renumbered[8] = 2;
  EXPECT_EQ(ChunkNamed(Content("out"), "LIST"), AdtlBytes({renumbered, LablBytes(1, "(65538,0)")}));
}

TEST_F(VefFileWrite, CuePointsOfOneIdentifier_StayApart) {
  C_VefFile file;
  const std::string strPath =
      Write("in", MonoVef(8).Chunk("cue ", CueBytes({{1, 2, 2}, {1, 3, 3}, {8, 1, 1}})).Take());
  ASSERT_TRUE(file.LoadByName(strPath.c_str(), true, nullptr, nullptr));
  file.GetWavData()->GetEventTagMgr()->AddEventBySamplePos(1, 2, 0, "", 0);
  ASSERT_TRUE(file.WriteFile(Path("out").c_str(), false, false, nullptr, false, 0));
  EXPECT_EQ(ChunkNamed(Content("out"), "cue "),
            CueBytes({{2, 2, 2}, {2, 3, 3}, {8, 1, 1}, {1, 0, 0}}));
}

TEST_F(VefFileWrite, TextsWithoutLabels_AreWritten) {
  List(m_file).AddLtxt(4, 1, "beat");
  EXPECT_THAT(ChunkNames(Written()), ElementsAre("fmt ", "data", "LIST"));
}

TEST_F(VefFileWrite, TwelveBits_AreWrittenAsSixteen) {
  m_file.SetWavInfoData(16000, 1, 12, 16, true);
  const C_Bytes file = Written();
  EXPECT_EQ(ChunkNamed(file, "fmt "), FmtBytes(1, 1, 16000, 16));
  EXPECT_EQ(ChunkNamed(file, "data"), C_Bytes({16, 0, 32, 0, 48, 0, 64, 0}));
  EXPECT_EQ(m_sound->GetWavInfo()->GetBitsPerSample(), 12);
}

TEST_F(VefFileWrite, TargetWidths_AreThoseOfTheCodecParameters) {
  m_sound->GetAudioCodecParam()->SetSampleBits(8, 8, false);
  const std::vector<short> samples = {-32768, -256, 0, 256, 32512};
  m_file.SetBuffer(samples.data(), 10);
  const C_Bytes file = Written();
  EXPECT_EQ(ChunkNamed(file, "fmt "), FmtBytes(1, 1, 16000, 8));
  EXPECT_EQ(ChunkNamed(file, "data"), C_Bytes({0, 127, 128, 129, 255}));
  m_file.SetWavInfoData(16000, 2, 16, 16, true);
  EXPECT_EQ(ChunkNamed(Written(), "fmt "), FmtBytes(1, 2, 16000, 8)) << "channels stay";
}

TEST_F(VefFileWrite, WidthsThatCannotBeMade_CreateNothing) {
  m_sound->GetAudioCodecParam()->SetSampleBits(24, 24, true);
  EXPECT_FALSE(m_file.WriteFile(Path("out").c_str(), false, false, nullptr, false, 0));
  EXPECT_THAT(Entries(), IsEmpty());
}

TEST_F(VefFileWrite, WithoutASound_IsFalse) {
  C_VefFile file;
  EXPECT_FALSE(file.WriteFile(Path("out").c_str(), false, true, nullptr, false, 0));
  EXPECT_FALSE(file.WriteVef(Path("out").c_str(), "VEFF", true, AUDIO_FILE_KESTREL));
  EXPECT_THAT(Entries(), IsEmpty());
}

TEST_F(VefFileWrite, FormType_IsTheArgument) {
  ASSERT_TRUE(m_file.WriteVef(Path("out").c_str(), "VEMD", false, AUDIO_FILE_KESTREL));
  const C_Bytes file = Content("out");
  EXPECT_EQ(C_Bytes(file.begin() + 8, file.begin() + 12), Ascii("VEMD"));
}

TEST_F(VefFileWrite, WriteDataChunk_AddsNothing) {
  C_RiffFile riff;
  EXPECT_TRUE(m_file.WriteDataChunk(&riff));
  EXPECT_EQ(riff.GetChunkCount(), 0);
  EXPECT_TRUE(m_file.WriteDataChunk(nullptr));
}

TEST_F(VefFileWrite, PlaceThatCannotBeWritten_IsFalse) {
  EXPECT_FALSE(m_file.WriteFile(Path("no/out").c_str(), false, true, nullptr, false, 0));
  EXPECT_FALSE(m_file.WriteFile(Path("").c_str(), false, true, nullptr, false, 0));
  EXPECT_FALSE(m_file.WriteFile(nullptr, false, true, nullptr, false, 0));
}

TEST_F(VefFileWrite, DiskFullAtEveryByte_IsFalse) {
  AddEvent(1, 2, 3, 7);
  const std::size_t cbWhole = Written(true).size();
  for (std::size_t cbLimit = 0; cbLimit < cbWhole; ++cbLimit) {
    const C_FileSizeLimit limit(cbLimit);
    ASSERT_FALSE(m_file.WriteFile(Path("out").c_str(), false, true, nullptr, false, 0)) << cbLimit;
  }
  EXPECT_EQ(Written(true).size(), cbWhole);
}

}  // namespace
