// SPDX-License-Identifier: Apache-2.0
//
// Reading VEF containers.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "FolderTest.h"
#include "LargestAllocation.h"
#include "TestSound.h"
#include "VTable.h"
#include "VefBytes.h"
#include "WavFileObject.h"
#include "WrittenChunks.h"
#include "file/VefFile.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class VefFileLoad : public C_FolderTest {
 protected:
  bool Check(const C_RiffBytes& riff, bool bWithInfo = true) {
    return m_file.CheckFormat(Write("in", riff.Take()).c_str(), bWithInfo);
  }
  bool Load(const C_RiffBytes& riff) {
    return m_file.LoadByName(Write("in", riff.Take()).c_str(), false, nullptr, nullptr);
  }
  // The coding type of a container with these "vafm" payloads.
  unsigned int CodingType(std::initializer_list<C_Bytes> payloads) {
    C_RiffBytes riff = MonoVef(8);
    for (const C_Bytes& payload : payloads) riff.Chunk("vafm", payload);
    EXPECT_TRUE(Check(riff));
    return m_file.GetCodingType();
  }

  C_VefFile m_file;
};

C_RiffBytes VefWithEvents() {
  C_RiffBytes riff = MonoVef(8);
  riff.Chunk("cue ", CueBytes({{1, 100, 100}, {2, 50, 50}, {7, 3, 3}}))
      .Chunk("LIST", AdtlBytes({LablBytes(1, "(65538,7)"), LablBytes(2, "(-2147483648,-1)"),
                                LablBytes(7, "Verse")}));
  return riff;
}

TEST_F(VefFileLoad, NewObject_HasNoKindAndNoSound) {
  EXPECT_EQ(m_file.GetFileFormat(), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(m_file.GetCodingType(), 0u);
  EXPECT_EQ(m_file.GetWavData(), nullptr);
}

TEST_F(VefFileLoad, Samples_AreReadAsStored) {
  ASSERT_TRUE(Load(MonoVef(9)));
  EXPECT_EQ(PcmOf(m_file), RampBytes(9));
  EXPECT_EQ(m_file.GetDataStartPos(), 44u);
  EXPECT_EQ(m_file.GetFileLength(), 53u);
  I_WavInfo* pIWavInfo = m_file.GetWavInfo();
  EXPECT_EQ(pIWavInfo->GetSampleRate(), 16000u);
  EXPECT_EQ(pIWavInfo->GetChannels(), 1);
  EXPECT_EQ(pIWavInfo->GetBitsPerSample(), 16);
  EXPECT_EQ(pIWavInfo->GetStoreBitsPerSample(), 16);
  EXPECT_TRUE(pIWavInfo->IsValueSigned());
  EXPECT_EQ(m_file.GetFileFormat(), AUDIO_FILE_UNKNOWN);
}

TEST_F(VefFileLoad, EightBits_AreUnsigned) {
  ASSERT_TRUE(Check(C_RiffBytes("VEFF").Chunk("fmt ", FmtBytes(1, 2, 8000, 8))));
  EXPECT_EQ(m_file.GetWavInfo()->GetStoreBitsPerSample(), 8);
  EXPECT_FALSE(m_file.GetWavInfo()->IsValueSigned());
}

TEST_F(VefFileLoad, CheckFormat_WithoutInfo_MakesNoSound) {
  EXPECT_TRUE(Check(VefWithEvents().Chunk("vafm", VafmBytes(14)), false));
  EXPECT_EQ(m_file.GetWavData(), nullptr);
  EXPECT_EQ(m_file.GetCodingType(), 0u);
}

TEST_F(VefFileLoad, OtherForms_AreRefused) {
  for (const char* pszForm : {"WAVE", "VEMD", "veff", "VEF "}) {
    EXPECT_FALSE(Check(MonoWav(8, pszForm))) << pszForm;
  }
  EXPECT_FALSE(m_file.CheckFormat(Write("empty", {}).c_str(), true));
  EXPECT_FALSE(m_file.CheckFormat(Path("missing").c_str(), true));
  EXPECT_FALSE(m_file.CheckFormat(nullptr, true));
}

TEST_F(VefFileLoad, WithoutFormat_IsRefused) {
  EXPECT_FALSE(Check(C_RiffBytes("VEFF")));
  EXPECT_FALSE(Check(C_RiffBytes("VEFF").Chunk("data", RampBytes(8)).Chunk("vafm", VafmBytes(14))));
  EXPECT_FALSE(Check(C_RiffBytes("VEFF").Chunk("fmt ", {})));
  EXPECT_FALSE(Check(C_RiffBytes("VEFF").Chunk("fmt ", C_Bytes(15))));
}

TEST_F(VefFileLoad, FormatsOtherThanLinearPcm_AreRefused) {
  for (const std::uint16_t wTag : std::initializer_list<std::uint16_t>{0, 2, 3, 6, 7, 11, 17}) {
    const C_Bytes record = Join({FmtBytes(wTag, 1, 16000, 16), C_Bytes(64, 1)});
    EXPECT_FALSE(Check(C_RiffBytes("VEFF").Chunk("fmt ", record).Chunk("data", {1, 2}))) << wTag;
  }
}

TEST_F(VefFileLoad, LaterFormatAndData_Count) {
  C_RiffBytes riff = MonoVef(8);
  riff.Chunk("fmt ", FmtBytes(1, 2, 8000, 8)).Chunk("data", {5, 6, 7, 8});
  ASSERT_TRUE(Load(riff));
  EXPECT_EQ(m_file.GetWavInfo()->GetSampleRate(), 8000u);
  EXPECT_EQ(PcmOf(m_file), C_Bytes({5, 6, 7, 8}));
}

TEST_F(VefFileLoad, WithoutData_LoadsAnEmptySound) {
  EXPECT_TRUE(Load(C_RiffBytes("VEFF").Chunk("fmt ", FmtBytes(1, 1, 16000, 16))));
  EXPECT_EQ(m_file.GetWavData()->GetBufferLength(), 0u);
}

TEST_F(VefFileLoad, MissingSamples_AreZero) {
  C_RiffBytes riff("VEFF");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 6, {1, 2, 3});
  ASSERT_TRUE(Load(riff));
  EXPECT_EQ(PcmOf(m_file), C_Bytes({1, 2, 3, 0, 0, 0}));
}

TEST_F(VefFileLoad, DataBeyondReason_IsRefusedWithoutMemory) {
  C_RiffBytes riff("VEFF");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 0xFFFFFFF0U, {1, 2, 3});
  ResetLargestAllocation();
  EXPECT_FALSE(Load(riff));
  EXPECT_LT(LargestAllocation(), 1U << 20);
}

TEST_F(VefFileLoad, LoadData_BeforeAnything_IsFalse) {
  EXPECT_FALSE(m_file.LoadData(true, nullptr, nullptr));
}

TEST_F(VefFileLoad, CodingType_IsThatOfTheCodecFormat) {
  EXPECT_EQ(CodingType({VafmBytes(14)}), 14u);
  EXPECT_EQ(CodingType({VafmBytes(32)}), 32u);
  EXPECT_EQ(CodingType({VafmBytes(0xFFFF)}), 0xFFFFu);
  EXPECT_EQ(CodingType({Join({VafmBytes(14), {9, 9, 9}})}), 14u) << "longer than it needs to be";
}

TEST_F(VefFileLoad, CodecFormatThatDoesNotCount_LeavesLinear) {
  EXPECT_EQ(CodingType({}), 0u);
  C_Bytes shorter = VafmBytes(14);
  shorter.pop_back();
  EXPECT_EQ(CodingType({shorter}), 0u);
  EXPECT_EQ(CodingType({{}}), 0u);
  for (const std::uint16_t wVersion : std::initializer_list<std::uint16_t>{0, 1, 255, 257, 512}) {
    EXPECT_EQ(CodingType({VafmBytes(14, wVersion)}), 0u) << wVersion;
  }
}

TEST_F(VefFileLoad, FirstCodecFormatThatCounts_Counts) {
  EXPECT_EQ(CodingType({VafmBytes(14), VafmBytes(32)}), 14u);
  EXPECT_EQ(CodingType({VafmBytes(14, 1), VafmBytes(32), VafmBytes(14)}), 32u);
}

TEST_F(VefFileLoad, CodingType_OfAnEarlierFile_IsForgotten) {
  EXPECT_EQ(CodingType({VafmBytes(14)}), 14u);
  EXPECT_EQ(CodingType({}), 0u);
}

TEST_F(VefFileLoad, EventLabels_BecomeEvents) {
  ASSERT_TRUE(Check(VefWithEvents()));
  EXPECT_THAT(VefEventsOf(m_file),
              ElementsAre(S_VefEventSeen{0x8000, 0, 0xFFFFFFFF, 50}, S_VefEventSeen{1, 2, 7, 100}));
  EXPECT_EQ(List(m_file).GetLabelCount(), 3);
  EXPECT_EQ(Cues(m_file).GetCuePointCount(), 3);
}

TEST_F(VefFileLoad, RepeatedLoads_GiveTheEventsOnce) {
  ASSERT_TRUE(Load(VefWithEvents().Chunk("vevt", {1, 2, 3})));
  ASSERT_TRUE(m_file.CheckFormat(m_file.GetFileName(), true));
  ASSERT_TRUE(m_file.LoadByName(Path("in").c_str(), true, nullptr, nullptr));
  EXPECT_EQ(VefEventsOf(m_file).size(), 2u);
  EXPECT_EQ(List(m_file).GetLabelCount(), 3);
  EXPECT_EQ(Extra(m_file).GetSize(), 1);
}

TEST_F(VefFileLoad, AnnotationsOfAnEarlierFile_AreForgotten) {
  ASSERT_TRUE(Check(VefWithEvents().Chunk("smpl", SmplBytes(1, 2)).Chunk("vevt", {1})));
  ASSERT_TRUE(Check(MonoVef(8)));
  EXPECT_THAT(VefEventsOf(m_file), IsEmpty());
  EXPECT_EQ(List(m_file).GetLabelCount(), 0);
  EXPECT_EQ(Cues(m_file).GetCuePointCount(), 0);
  EXPECT_EQ(Sampler(m_file).GetSampleLoopNum(), 0u);
  EXPECT_EQ(Extra(m_file).GetSize(), 0);
}

TEST_F(VefFileLoad, LabelsOfEqualTexts_AreAsManyEvents) {
  ASSERT_TRUE(
      Check(MonoVef(8)
                .Chunk("cue ", CueBytes({{1, 5, 5}}))
                .Chunk("LIST", AdtlBytes({LablBytes(1, "(65538,7)"), LablBytes(1, "(65538,7)")}))));
  EXPECT_EQ(VefEventsOf(m_file).size(), 2u);
}

TEST_F(VefFileLoad, LabelsWithoutACuePoint_AreNoEvents) {
  ASSERT_TRUE(Check(MonoVef(8).Chunk("LIST", AdtlBytes({LablBytes(1, "(65538,7)")}))));
  EXPECT_THAT(VefEventsOf(m_file), IsEmpty());
  EXPECT_THAT(LabelsOf(m_file), ElementsAre(Pair(1, "(65538,7)")));
}

TEST_F(VefFileLoad, LabelsOfWavFiles_AreNoEventsHereAndStopNothing) {
  ASSERT_TRUE(Load(MonoVef(8)
                       .Chunk("cue ", CueBytes({{1, 5, 5}}))
                       .Chunk("LIST", AdtlBytes({LablBytes(1, "u_1_2"), LablBytes(9, "VX_Silence"),
                                                 LablBytes(9, "u_1_2")}))));
  EXPECT_THAT(VefEventsOf(m_file), IsEmpty());
}

TEST_F(VefFileLoad, LabelsBeforeTheCuePoints_AreEventsToo) {
  ASSERT_TRUE(Check(MonoVef(8)
                        .Chunk("LIST", AdtlBytes({LablBytes(1, "(1,1)")}))
                        .Chunk("cue ", CueBytes({{1, 5, 5}}))));
  EXPECT_THAT(VefEventsOf(m_file), ElementsAre(S_VefEventSeen{0, 1, 1, 5}));
}

TEST_F(VefFileLoad, RateZero_LeavesEventsOut) {
  C_RiffBytes riff("VEFF");
  riff.Chunk("fmt ", FmtBytes(1, 1, 0, 16))
      .Chunk("cue ", CueBytes({{1, 5, 5}}))
      .Chunk("LIST", AdtlBytes({LablBytes(1, "(1,1)")}));
  ASSERT_TRUE(Load(riff));
  EXPECT_THAT(VefEventsOf(m_file), IsEmpty());
}

TEST_F(VefFileLoad, OfOtherChunks_OnlyEventChunksAreKept) {
  C_RiffBytes riff = MonoVef(8);
  riff.Chunk("junk", {1}).Chunk("vevt", {1, 2, 3}).Chunk("vafm", VafmBytes(14));
  riff.Chunk("vdat", {4}).Chunk("fact", {5}).Chunk("vevt", {6});
  ASSERT_TRUE(Check(riff));
  ASSERT_EQ(Extra(m_file).GetSize(), 2);
  for (int i = 0; i < 2; ++i) EXPECT_STREQ(Extra(m_file).GetItemByIndex(i)->GetChunkName(), "vevt");
  unsigned char* pbyData = nullptr;
  ASSERT_EQ(Extra(m_file).GetChunkByName("vevt")->GetChunkData(&pbyData), 3u);
  EXPECT_EQ(C_Bytes(pbyData, pbyData + 3), C_Bytes({1, 2, 3}));
}

TEST_F(VefFileLoad, EventChunkThatTheFileCuts_IsLeftOut) {
  EXPECT_TRUE(Check(MonoVef(8).Chunk("vevt", 9, {1, 2, 3})));
  EXPECT_EQ(Extra(m_file).GetSize(), 0);
}

TEST_F(VefFileLoad, Loops_AreRead) {
  ASSERT_TRUE(Check(MonoVef(8).Chunk("smpl", SmplBytes(1, 3))));
  ASSERT_EQ(Sampler(m_file).GetSampleLoopNum(), 1u);
  EXPECT_EQ(Sampler(m_file).GetSampleLoopByIndex(0)->GetEndSampleOffset(), 3u);
}

TEST_F(VefFileLoad, InfoChunksTooShortForTheirFirstField_AreLeftOut) {
  EXPECT_TRUE(
      Check(MonoVef(8).Chunk("cue ", {1, 2, 3}).Chunk("smpl", C_Bytes(35)).Chunk("LIST", {1})));
}

TEST_F(VefFileLoad, ALoadersFailure_FailsTheCheck) {
  EXPECT_FALSE(Check(MonoVef(8).Chunk("LIST", AdtlBytes({ChunkBytes("labl", 99, U32(1))}))));
}

TEST_F(VefFileLoad, ChunksThatTheFileCuts_KeepTheirWholeRecords) {
  const C_Bytes cues = CueBytes({{1, 3, 3}, {2, 5, 5}});
  ASSERT_TRUE(Check(MonoVef(8).Chunk("cue ", 52, C_Bytes(cues.begin(), cues.end() - 1))));
  ASSERT_EQ(Cues(m_file).GetCuePointCount(), 1);
  EXPECT_EQ(Cues(m_file).GetCuePointByIndex(0)->GetPosition(), 3u);

  ASSERT_TRUE(Check(MonoVef(8).Chunk("smpl", 60, U32(2))));
  EXPECT_EQ(Sampler(m_file).GetSampleLoopNum(), 0u);

  const C_Bytes labels = AdtlBytes({LablBytes(1, "(65538,7)"), LablBytes(1, "cut")});
  ASSERT_TRUE(Check(MonoVef(8)
                        .Chunk("cue ", CueBytes({{1, 3, 3}}))
                        .Chunk("LIST", 46, C_Bytes(labels.begin(), labels.end() - 1))));
  EXPECT_EQ(VefEventsOf(m_file).size(), 1u);
}

TEST_F(VefFileLoad, LabelsWhoseCuePointsAreCutOff_AreLost) {
  ASSERT_TRUE(
      Check(MonoVef(8)
                .Chunk("LIST", AdtlBytes({LablBytes(1, "(65538,7)"), LablBytes(2, "(1,2)")}))
                .Chunk("cue ", 52, CueBytes({{1, 3, 3}}))));
  EXPECT_EQ(VefEventsOf(m_file).size(), 1u);
}

TEST_F(VefFileLoad, WrittenAndReadBack_GivesEverything) {
  const auto sound = ExampleSound({.dwSampleRate = 8000, .wChannels = 2}, 400);
  AddAnnotations(*sound);
  sound->GetEventTagMgr()->AddEventBySamplePos(0xFFFF, 0x8001, 200, "", 0xCAFEBABE);
  C_VefFile writer;
  writer.AttachWavData(sound.get());
  Extra(writer).AddChunk("vevt", "events", 6);
  writer.SetCodingType(14);
  ASSERT_TRUE(writer.WriteFile(Path("a").c_str(), false, true, nullptr, false, 0));
  ASSERT_TRUE(m_file.LoadByName(Path("a").c_str(), true, nullptr, nullptr));
  EXPECT_EQ(PcmOf(m_file), PcmOf(writer));
  EXPECT_EQ(m_file.GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(m_file.GetCodingType(), 14u);
  EXPECT_EQ(VefEventsOf(m_file), VefEventsOf(writer));
  EXPECT_EQ(VefEventsOf(m_file).size(), 3u);
  EXPECT_EQ(Sampler(m_file).GetSampleLoopNum(), 1u);
  EXPECT_NE(Extra(m_file).GetChunkByName("vevt"), nullptr);
  ASSERT_TRUE(m_file.WriteFile(Path("b").c_str(), false, true, nullptr, false, 0));
  ASSERT_TRUE(m_file.LoadByName(Path("b").c_str(), true, nullptr, nullptr));
  ASSERT_TRUE(m_file.WriteFile(Path("c").c_str(), false, true, nullptr, false, 0));
  EXPECT_EQ(Content("c"), Content("b"));
}

TEST_F(VefFileLoad, AWavFilesEvents_TravelOnceThroughAContainer) {
  C_WavObjectPtr wav = MakeSound(AUDIO_FILE_WAVE, 16000, 1, 16, 16, true, RampBytes(64));
  wav->GetWavData()->GetEventTagMgr()->AddEventBySamplePos(3, 7, 20, "", 5);
  wav->GetWavData()->AddSilenceSegment(2, 9);
  ASSERT_TRUE(::Write(*wav, Path("a.wav")));
  wav = LoadWav(Path("a.wav"));
  C_VefFile writer;
  writer.AttachWavData(wav->GetWavData());
  ASSERT_TRUE(writer.WriteFile(Path("b").c_str(), false, false, nullptr, false, 0));
  EXPECT_EQ(ChunkNamed(Content("b"), "cue "), CueBytes({{1, 20, 20}}));
  EXPECT_EQ(ChunkNamed(Content("b"), "LIST"), AdtlBytes({LablBytes(1, "(196615,0)")}));
}

TEST_F(VefFileLoad, ManyLabels_AreReadInTime) {
#ifdef _GLIBCXX_DEBUG
  // In this mode the standard library looks through a whole table before each search in it.
  constexpr std::uint32_t kLabels = 1000;
#else
  constexpr std::uint32_t kLabels = 100000;
#endif
  vcm::C_ByteWriter cues;
  cues.U32(kLabels);
  vcm::C_ByteWriter labels;
  labels.Text("adtl", 4);
  for (std::uint32_t i = 0; i < kLabels; ++i) {
    for (const std::uint32_t dwField : {kLabels - i, 5U, 0x61746164U, 0U, 0U, 5U}) {
      cues.U32(dwField);
    }
    labels.Bytes(LablBytes(i + 1, "(65538,7)"));
  }
  ASSERT_TRUE(Load(MonoVef(8).Chunk("cue ", cues.Data()).Chunk("LIST", labels.Data())));
  EXPECT_EQ(
      static_cast<unsigned int>(m_file.GetWavData()->GetEventTagMgr()->GetEventList()->GetSize()),
      kLabels);
  EXPECT_TRUE(m_file.WriteFile(Path("out").c_str(), false, true, nullptr, false, 0));
}

// ---- the stream

class VefStream : public C_FolderTest {
 protected:
  bool LoadVdat(const C_RiffBytes& riff) {
    return m_file.LoadVDATChunk(Write("in", riff.Take()).c_str(), &m_pbyData, &m_dwLength);
  }
  [[nodiscard]] C_Bytes Data() const { return {m_pbyData.get(), m_pbyData.get() + m_dwLength}; }

  C_VefFile m_file;
  std::unique_ptr<unsigned char[]> m_pbyData = std::make_unique<unsigned char[]>(1);
  unsigned int m_dwLength = 99;
};

TEST_F(VefStream, LoadVDATChunk_GivesThePayload) {
  ASSERT_TRUE(LoadVdat(MonoVef(8).Chunk("vdat", {1, 2, 3})));
  EXPECT_EQ(Data(), C_Bytes({1, 2, 3}));
}

TEST_F(VefStream, LoadVDATChunk_GivesTheFirstOfTwo) {
  ASSERT_TRUE(LoadVdat(MonoVef(8).Chunk("vdat", {1, 2}).Chunk("vdat", {3, 4, 5})));
  EXPECT_EQ(Data(), C_Bytes({1, 2}));
}

TEST_F(VefStream, ContainerWithoutAStream_IsTrueWithNothing) {
  ASSERT_TRUE(LoadVdat(MonoVef(8)));
  EXPECT_EQ(m_pbyData, nullptr);
  EXPECT_EQ(m_dwLength, 0u);
}

TEST_F(VefStream, NoContainer_IsFalse) {
  EXPECT_FALSE(LoadVdat(MonoWav(8).Chunk("vdat", {1, 2})));
  EXPECT_EQ(m_pbyData, nullptr);
  EXPECT_EQ(m_dwLength, 0u);
  EXPECT_FALSE(m_file.LoadVDATChunk(Path("missing").c_str(), &m_pbyData, &m_dwLength));
}

TEST_F(VefStream, StreamThatTheFileDoesNotHold_IsFalseWithoutMemory) {
  for (const std::uint32_t dwClaim : {4U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU}) {
    m_file.GetAudioCodecParam()->SetPlatform(AUDIO_CODEC_PLATFORM_FALLBACK);
    ResetLargestAllocation();
    EXPECT_FALSE(LoadVdat(MonoVef(8).Chunk("vdat", dwClaim, {1, 2, 3}))) << dwClaim;
    EXPECT_LT(LargestAllocation(), 1U << 20) << dwClaim;
    EXPECT_EQ(m_pbyData, nullptr);
    EXPECT_EQ(m_dwLength, 0u);
  }
}

TEST_F(VefStream, EmptyStream_CannotBeRead) {
  EXPECT_FALSE(LoadVdat(MonoVef(8).Chunk("vdat", {})));
}

TEST_F(VefStream, PlatformTwo_AllocatesOneByteMore) {
  constexpr std::size_t kStream = 100000;
  const C_RiffBytes riff = MonoVef(8).Chunk("vdat", C_Bytes(kStream, 7));
  ResetLargestAllocation();
  ASSERT_TRUE(LoadVdat(riff));
  m_file.GetAudioCodecParam()->SetPlatform(AUDIO_CODEC_PLATFORM_FALLBACK);
  const std::string strPath = Write("in", riff.Take());
  ResetLargestAllocation();
  ASSERT_TRUE(m_file.LoadVDATChunk(strPath.c_str(), &m_pbyData, &m_dwLength));
  EXPECT_EQ(LargestAllocation(), kStream + 1);
  EXPECT_EQ(m_dwLength, kStream);
  EXPECT_EQ(m_pbyData[kStream], 0);
}

TEST_F(VefStream, OtherPlatforms_AllocateOnlyTheStream) {
  constexpr std::size_t kStream = 100000;
  const std::string strPath = Write("in", MonoVef(8).Chunk("vdat", C_Bytes(kStream, 7)).Take());
  for (const unsigned int dwPlatform : {0U, 1U, 3U}) {
    m_file.GetAudioCodecParam()->SetPlatform(static_cast<tagAudioCodecPlatform>(dwPlatform));
    ResetLargestAllocation();
    ASSERT_TRUE(m_file.LoadVDATChunk(strPath.c_str(), &m_pbyData, &m_dwLength));
    EXPECT_EQ(LargestAllocation(), kStream) << dwPlatform;
  }
}

TEST_F(VefStream, Operations_StandInTheirSlots) {
  const std::string strPath = Write("in", MonoVef(8).Take());
  EXPECT_TRUE((CallSlot<bool, const char*, bool>(&m_file, 21, strPath.c_str(), true)));
  EXPECT_TRUE((CallSlot<bool, void*>(&m_file, 24, nullptr)));
}

}  // namespace
