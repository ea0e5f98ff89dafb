// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>

#include "OpenFiles.h"
#include "TempFolder.h"
#include "WavBytes.h"
#include "WavFileObject.h"
#include "WrittenChunks.h"
#include "sound/WavData.h"

namespace {

class WavFileWrite : public testing::Test {
 protected:
  C_WavObjectPtr Load(const C_RiffBytes& riff) {
    return LoadWav(m_folder.Write("in.wav", riff.Take()));
  }
  // What the object writes. The test fails when writing fails.
  C_Bytes Written(I_WavFile& file) {
    EXPECT_TRUE(Write(file, m_folder.Path("out.wav")));
    return m_folder.Read("out.wav");
  }
  C_WavObjectPtr Reload(I_WavFile& file) {
    EXPECT_TRUE(Write(file, m_folder.Path("out.wav")));
    return LoadWav(m_folder.Path("out.wav"));
  }

  C_TempFolder m_folder;
};

C_WavObjectPtr Mono16(const C_Bytes& pcm) {
  return MakeSound(AUDIO_FILE_WAVE, 16000, 1, 16, 16, true, pcm);
}

void AddEvent(I_WavFile& file, unsigned short wMain, unsigned short wSub, unsigned int dwPos) {
  file.GetWavData()->GetEventTagMgr()->AddEventBySamplePos(wMain, wSub, dwPos, "text", 99);
}

// Two events, one silence segment and one region on 32,000 bytes.
C_WavObjectPtr AnnotatedSound() {
  C_WavObjectPtr file = Mono16(RampBytes(32000));
  AddEvent(*file, 1, 2, 100);
  AddEvent(*file, 3, 4, 4800);
  file->GetWavData()->AddSilenceSegment(200, 299);
  file->GetWavData()->AddUncompressRegion(1000, 1000);
  return file;
}

}  // namespace

TEST_F(WavFileWrite, SmallestFile_IsFormatAndData) {
  const C_Bytes expected = Join({Ascii("RIFF"),
                                 U32(36 + 10),
                                 Ascii("WAVE"),
                                 Ascii("fmt "),
                                 U32(16),
                                 {0x01, 0x00, 0x01, 0x00, 0x80, 0x3E, 0x00, 0x00, 0x00, 0x7D, 0x00,
                                  0x00, 0x02, 0x00, 0x10, 0x00},
                                 Ascii("data"),
                                 U32(10),
                                 RampBytes(10)});
  EXPECT_EQ(Written(*Mono16(RampBytes(10))), expected);
  EXPECT_EQ(expected.size(), 44u + 10);
}

TEST_F(WavFileWrite, OddData_GetsNoPadByte) {
  const C_WavObjectPtr file = MakeSound(AUDIO_FILE_WAVE, 8000, 1, 8, 8, false, RampBytes(3));
  InfoOf<I_WavDataExtraChunkInfo>(*file, WAV_DATA_INFO_EXTRA_CHUNK)
      .AddChunk("junk", RampBytes(5).data(), 5);
  const C_Bytes expected = C_RiffBytes("WAVE")
                               .Chunk("fmt ", FmtBytes(1, 1, 8000, 8))
                               .Chunk("data", RampBytes(3))
                               .Chunk("junk", RampBytes(5))
                               .Take();
  EXPECT_EQ(Written(*file), expected);
  EXPECT_EQ(PcmOf(*LoadWav(m_folder.Path("out.wav"))), RampBytes(3));
}

TEST_F(WavFileWrite, EmptySound_IsWrittenWithEmptyData) {
  const C_WavObjectPtr file = Mono16({});
  EXPECT_EQ(Written(*file),
            C_RiffBytes("WAVE").Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", {}).Take());
}

TEST_F(WavFileWrite, Annotations_BecomeCuePointsAndLabelsByteForByte) {
  const C_Bytes expected =
      C_RiffBytes("WAVE")
          .Chunk("fmt ", FmtBytes(1, 1, 16000, 16))
          .Chunk("data", RampBytes(32000))
          .Chunk("cue ", CueBytes({{1, 100, 100}, {2, 4800, 4800}, {3, 200, 200}, {4, 1000, 1000}}))
          .Chunk("LIST", AdtlBytes({LtxtBytes(3, 100), LtxtBytes(4, 1), LablBytes(1, "u_1_2"),
                                    LablBytes(2, "u_3_4"), LablBytes(3, "VX_Silence"),
                                    LablBytes(4, "VX_PCM")}))
          .Take();
  const C_Bytes written = Written(*AnnotatedSound());
  EXPECT_EQ(written, expected);
  EXPECT_EQ(written.size(), 32300u);
  EXPECT_EQ(ChunkNamed(written, "cue ").size(), 100u);
  EXPECT_EQ(ChunkNamed(written, "LIST").size(), 140u);
  EXPECT_EQ(C_Bytes(written.begin() + 4, written.begin() + 8), U32(32292));
}

TEST_F(WavFileWrite, Identifiers_CountEventsThenSilenceThenRegions) {
  const C_WavObjectPtr file = AnnotatedSound();
  ASSERT_TRUE(Write(*file, m_folder.Path("out.wav")));
  EXPECT_EQ(LabelsOf(*file), (std::vector<std::pair<unsigned int, std::string>>{
                                 {1, "u_1_2"}, {2, "u_3_4"}, {3, "VX_Silence"}, {4, "VX_PCM"}}));
  ASSERT_EQ(List(*file).GetLtxtCount(), 2);
  unsigned int dwID = 0;
  unsigned int dwSamples = 0;
  EXPECT_EQ(std::string(List(*file).GetLtxtByIndex(0, &dwID, &dwSamples), 4), "rgn ");
  EXPECT_EQ(dwID, 3u);
  EXPECT_EQ(dwSamples, 100u);
}

TEST_F(WavFileWrite, Annotations_AreReadBack) {
  const C_WavObjectPtr file = AnnotatedSound();
  const C_WavObjectPtr again = Reload(*file);
  EXPECT_EQ(EventsOf(*again), EventsOf(*file));
  EXPECT_EQ(SilenceOf(*again), (C_RangesSeen{{200, 299}}));
  EXPECT_EQ(RegionsOf(*again), (C_RangesSeen{{1000, 1000}}));
  EXPECT_EQ(PcmOf(*again), RampBytes(32000));
}

TEST_F(WavFileWrite, EventsOfEveryIndex_AreReadBack) {
  const C_WavObjectPtr file = Mono16(RampBytes(32000));
  std::vector<S_EventSeen> expected;
  for (const unsigned int dwValue : {0u, 1u, 255u, 256u, 4095u, 32767u, 32768u, 65535u}) {
    const auto wValue = static_cast<unsigned short>(dwValue);
    AddEvent(*file, wValue, static_cast<unsigned short>(65535 - wValue), dwValue);
    expected.push_back({dwValue, 65535 - dwValue, dwValue});
  }
  EXPECT_EQ(EventsOf(*Reload(*file)), expected);
}

TEST_F(WavFileWrite, TwoWritesOfOneSound_AreTheSame) {
  const C_WavObjectPtr file = AnnotatedSound();
  const C_Bytes first = Written(*file);
  EXPECT_EQ(Written(*file), first);
  EXPECT_EQ(Written(*LoadWav(m_folder.Path("out.wav"))), first);
}

TEST_F(WavFileWrite, DescriptionAndDataOfEvents_DoNotTravel) {
  const C_WavObjectPtr again = Reload(*AnnotatedSound());
  I_EventTag& event = *again->GetWavData()->GetEventTagMgr()->GetEventList()->GetItemByIndex(0);
  EXPECT_STREQ(event.GetDescription(), "");
  EXPECT_EQ(event.GetData(), 0u);
}

TEST_F(WavFileWrite, EventSetAsATime_IsWrittenAtItsSample) {
  const C_WavObjectPtr file = Mono16(RampBytes(32000));
  file->GetWavData()->GetEventTagMgr()->AddEvent(1, 2, 300, "", 0);
  EXPECT_EQ(EventsOf(*Reload(*file)), (std::vector<S_EventSeen>{{1, 2, 4800}}));
}

TEST_F(WavFileWrite, RangeWithItsEndBeforeItsStart_HasLengthZero) {
  const C_WavObjectPtr file = Mono16(RampBytes(100));
  file->GetWavData()->AddSilenceSegment(5, 4);
  EXPECT_EQ(SilenceOf(*Reload(*file)), (C_RangesSeen{{5, 4}}));
}

TEST_F(WavFileWrite, Write_DropsCuePointsAndLabelsOfOthers) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{17, 5, 5}, {18, 6, 6}}))
      .Chunk("LIST", AdtlBytes({LablBytes(17, "hello"), LablBytes(18, "u_1_2"), LtxtBytes(17, 3)}));
  const C_WavObjectPtr file = Load(riff);
  EXPECT_EQ(ChunkNamed(Written(*file), "cue "), CueBytes({{1, 6, 6}}));
  EXPECT_EQ(LabelsOf(*file), (std::vector<std::pair<unsigned int, std::string>>{{1, "u_1_2"}}));
  EXPECT_EQ(List(*file).GetLtxtCount(), 0);
  EXPECT_EQ(Cues(*file).GetCuePointCount(), 1);
}

TEST_F(WavFileWrite, OldSingleNumberLabels_AreWrittenInTheNewForm) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 5, 5}})).Chunk("LIST", AdtlBytes({LablBytes(1, "e_196615")}));
  EXPECT_EQ(ChunkNamed(Written(*Load(riff)), "LIST"), AdtlBytes({LablBytes(1, "u_3_7")}));
}

TEST_F(WavFileWrite, SoundWithoutAnnotations_HasNoCueAndNoList) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 5, 5}})).Chunk("LIST", AdtlBytes({LablBytes(1, "hello")}));
  EXPECT_EQ(ChunkNames(Written(*Load(riff))), (std::vector<std::string>{"fmt ", "data"}));
}

TEST_F(WavFileWrite, Chunks_StandInTheirFixedOrder) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fact", U32(32))
      .Chunk("LIST", AdtlBytes({LablBytes(1, "u_1_2")}))
      .Chunk("smpl", SmplBytes(3, 9))
      .Chunk("bext", RampBytes(9))
      .Chunk("cue ", CueBytes({{1, 5, 5}}))
      .Chunk("data", RampBytes(64))
      .Chunk("junk", {})
      .Chunk("fmt ", FmtBytes(1, 1, 16000, 16));
  const C_Bytes written = Written(*Load(riff));
  EXPECT_EQ(ChunkNames(written),
            (std::vector<std::string>{"fmt ", "data", "cue ", "smpl", "LIST", "fact", "bext"}));
  EXPECT_EQ(ChunkNamed(written, "smpl"), SmplBytes(3, 9));
  EXPECT_EQ(ChunkNamed(written, "bext"), RampBytes(9));
}

TEST_F(WavFileWrite, SamplerWithoutLoops_IsNotWritten) {
  C_Bytes smpl = SmplBytes(3, 9);
  smpl[28] = 0;
  smpl.resize(36);
  EXPECT_EQ(ChunkNames(Written(*Load(MonoWav(8).Chunk("smpl", smpl)))),
            (std::vector<std::string>{"fmt ", "data"}));
}

TEST_F(WavFileWrite, InfoLists_AreLost) {
  const C_Bytes info = Join({Ascii("INFO"), ChunkBytes("INAM", Ascii("title"))});
  EXPECT_EQ(ChunkNames(Written(*Load(MonoWav(8).Chunk("LIST", info)))),
            (std::vector<std::string>{"fmt ", "data"}));
}

TEST_F(WavFileWrite, ExtraChunksWithEqualNames_AreAllReadBack) {
  C_RiffBytes riff = MonoWav(8);
  riff.Chunk("junk", RampBytes(2)).Chunk("junk", RampBytes(4)).Chunk("junk", RampBytes(1));
  EXPECT_EQ(Written(*Load(riff)), riff.Take());
}

TEST_F(WavFileWrite, LoadedFiles_AreWrittenBackByteForByte) {
  for (const char* pszForm : {"WAVE", "VEMD"}) {
    for (const std::uint16_t wBits : std::initializer_list<std::uint16_t>{8, 16, 24, 32}) {
      for (const std::uint16_t wChannels : std::initializer_list<std::uint16_t>{1, 2}) {
        C_RiffBytes riff(pszForm);
        riff.Chunk("fmt ", FmtBytes(1, wChannels, 22050, wBits))
            .Chunk("data", RampBytes(48))
            .Chunk("cue ", CueBytes({{1, 1, 1}}))
            .Chunk("smpl", SmplBytes(0, 1))
            .Chunk("LIST", AdtlBytes({LablBytes(1, "u_5_6")}))
            .Chunk("cart", RampBytes(3));
        EXPECT_EQ(Written(*Load(riff)), riff.Take()) << pszForm << wBits << "/" << wChannels;
      }
    }
  }
}

TEST_F(WavFileWrite, Form_FollowsTheFileFormat) {
  const C_WavObjectPtr file = MakeSound(AUDIO_FILE_VEMD, 16000, 1, 16, 16, true, RampBytes(4));
  const C_Bytes written = Written(*file);
  EXPECT_EQ(C_Bytes(written.begin() + 8, written.begin() + 12), Ascii("VEMD"));
  EXPECT_EQ(LoadWav(m_folder.Path("out.wav"))->GetFileFormat(), AUDIO_FILE_VEMD);
}

TEST_F(WavFileWrite, OtherFileFormats_AreNotWritten) {
  for (const unsigned int dwType : {0u, 1u, 14u, 32u, 0x1001u, 0x8000u, 0x8002u, 0xFFFFu}) {
    const auto eType = static_cast<tagAudioFileType>(dwType);
    const C_WavObjectPtr file = MakeSound(eType, 16000, 1, 16, 16, true, RampBytes(4));
    EXPECT_FALSE(Write(*file, m_folder.Path("none.wav"))) << dwType;
    EXPECT_FALSE(m_folder.Has("none.wav"));
  }
  EXPECT_EQ(MakeWav()->GetFileFormat(), AUDIO_FILE_UNKNOWN);
}

TEST_F(WavFileWrite, WithoutASound_NothingIsWritten) {
  const C_WavObjectPtr file = MakeWav();
  file->SetFileFormat(AUDIO_FILE_WAVE);
  EXPECT_FALSE(Write(*file, m_folder.Path("none.wav")));
  EXPECT_FALSE(m_folder.Has("none.wav"));
}

TEST_F(WavFileWrite, SoundThatWasOpenedWithoutItsSamples_IsNotWritten) {
  const std::string strPath = m_folder.Write("in.wav", MonoWav(64).Take());
  const C_WavObjectPtr file = MakeWav();
  ASSERT_TRUE(file->OpenByName(strPath.c_str()));
  EXPECT_FALSE(Write(*file, m_folder.Path("none.wav")));
  EXPECT_FALSE(m_folder.Has("none.wav"));
}

TEST_F(WavFileWrite, TargetsThatCannotBeWritten_Fail) {
  const C_WavObjectPtr file = Mono16(RampBytes(4));
  EXPECT_FALSE(Write(*file, m_folder.Path("no/folder.wav")));
  EXPECT_FALSE(Write(*file, m_folder.Path()));
  EXPECT_FALSE(Write(*file, "/dev/full"));
  EXPECT_FALSE(Write(*file, ""));
  EXPECT_FALSE(file->WriteFile(nullptr, true, false, nullptr, false, 0));
}

TEST_F(WavFileWrite, ExistingFile_IsReplacedAsAWhole) {
  m_folder.Write("out.wav", C_Bytes(5000, 0xEE));
  EXPECT_EQ(Written(*Mono16(RampBytes(4))).size(), 48u);
}

TEST_F(WavFileWrite, File_CanBeWrittenOntoItself) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("fact", U32(7));
  const C_WavObjectPtr file = Load(riff);
  EXPECT_TRUE(Write(*file, m_folder.Path("in.wav")));
  EXPECT_EQ(m_folder.Read("in.wav"), riff.Take());
}

TEST_F(WavFileWrite, ArgumentsAfterTheName_HaveNoEffect) {
  const C_WavObjectPtr file = AnnotatedSound();
  const C_Bytes expected = Written(*file);
  ASSERT_TRUE(file->WriteFile(
      m_folder.Path("x.wav").c_str(), false, true, [](const S_CodecProgress*) { FAIL(); }, true,
      77));
  EXPECT_EQ(m_folder.Read("x.wav"), expected);
}

// Sample widths.

TEST_F(WavFileWrite, TwelveBits_AreWrittenAsSixteen) {
  const C_WavObjectPtr file = MakeSound(AUDIO_FILE_WAVE, 8000, 1, 12, 16, true,
                                        Join({U16(0x0800), U16(0x07FF), U16(0x0001), U16(0xFFFF)}));
  const C_Bytes written = Written(*file);
  EXPECT_EQ(ChunkNamed(written, "fmt "), FmtBytes(1, 1, 8000, 16));
  EXPECT_EQ(ChunkNamed(written, "data"),
            Join({U16(0x8000), U16(0x7FF0), U16(0x0010), U16(0xFFF0)}));
  EXPECT_EQ(file->GetWavInfo()->GetBitsPerSample(), 12);
  EXPECT_EQ(PcmOf(*file).size(), 8u);
}

TEST_F(WavFileWrite, SampleBitsOfTheCodecParameters_AreWritten) {
  const C_WavObjectPtr file = Mono16(Join({U16(0x1234), U16(0x8000), U16(0x7FFF), U16(0)}));
  AddEvent(*file, 1, 2, 3);
  file->GetAudioCodecParam()->SetSampleBits(8, 8, false);
  const C_Bytes written = Written(*file);
  EXPECT_EQ(ChunkNamed(written, "fmt "), FmtBytes(1, 1, 16000, 8));
  EXPECT_EQ(ChunkNamed(written, "data"), (C_Bytes{0x92, 0x00, 0xFF, 0x80}));
  EXPECT_EQ(ChunkNamed(written, "cue "), CueBytes({{1, 3, 3}}));
  EXPECT_EQ(PcmOf(*file).size(), 8u);
  EXPECT_EQ(file->GetWavInfo()->GetBitsPerSample(), 16);
}

TEST_F(WavFileWrite, SampleBitsOfTheCodecParameters_WinOverTheTwelveBitRule) {
  const C_WavObjectPtr file =
      MakeSound(AUDIO_FILE_WAVE, 8000, 1, 12, 16, true, Join({U16(0x0123), U16(0x0F00)}));
  file->GetAudioCodecParam()->SetSampleBits(12, 16, true);
  EXPECT_EQ(ChunkNamed(Written(*file), "data"), Join({U16(0x0123), U16(0x0F00)}));
}

TEST_F(WavFileWrite, EqualSampleBits_AreWrittenAsTheyAre) {
  const C_WavObjectPtr file = Load([] {
    C_RiffBytes riff("WAVE");
    return riff.Chunk("fmt ", FmtBytes(1, 1, 8000, 24)).Chunk("data", RampBytes(9));
  }());
  file->GetAudioCodecParam()->SetSampleBits(24, 24, true);
  EXPECT_EQ(ChunkNamed(Written(*file), "data"), RampBytes(9));
}

TEST_F(WavFileWrite, WidthsThatCannotBeConverted_Fail) {
  const C_WavObjectPtr file = Load([] {
    C_RiffBytes riff("WAVE");
    return riff.Chunk("fmt ", FmtBytes(1, 1, 8000, 24)).Chunk("data", RampBytes(9));
  }());
  EXPECT_EQ(file->GetWavData()->CreateBitsConvertedData(16, 16, true, true), nullptr);
  file->GetAudioCodecParam()->SetSampleBits(16, 16, true);
  EXPECT_FALSE(Write(*file, m_folder.Path("none.wav")));
  EXPECT_FALSE(m_folder.Has("none.wav"));
}

// The widths are settled before anything in the sound is touched.
TEST_F(WavFileWrite, WidthThatCannotBeConverted_LeavesCuePointsAndLabelsAsTheyWere) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 8000, 24))
      .Chunk("data", RampBytes(9))
      .Chunk("cue ", CueBytes({{17, 5, 5}}))
      .Chunk("LIST", AdtlBytes({LablBytes(17, "hello")}));
  const C_WavObjectPtr file = Load(riff);
  file->GetAudioCodecParam()->SetSampleBits(16, 16, true);
  EXPECT_FALSE(Write(*file, m_folder.Path("none.wav")));
  EXPECT_EQ(Cues(*file).GetCuePointByIndex(0)->GetCuePointID(), 17u);
  EXPECT_EQ(LabelsOf(*file), (std::vector<std::pair<unsigned int, std::string>>{{17, "hello"}}));
}

// The form is checked last: by then the infos hold what would have been written.
TEST_F(WavFileWrite, KindThatIsNotWritten_StillRegeneratesTheAnnotations) {
  const C_WavObjectPtr file = AnnotatedSound();
  file->SetFileFormat(AUDIO_FILE_KESTREL);
  EXPECT_FALSE(Write(*file, m_folder.Path("none.wav")));
  EXPECT_FALSE(m_folder.Has("none.wav"));
  EXPECT_EQ(Cues(*file).GetCuePointCount(), 4);
  EXPECT_EQ(LabelsOf(*file).size(), 4u);
}

TEST_F(WavFileWrite, OtherSignedness_MakesAConvertedCopy) {
  const C_WavObjectPtr file =
      MakeSound(AUDIO_FILE_WAVE, 8000, 1, 8, 8, true, {0x80, 0xFF, 0x00, 0x7F});
  file->GetAudioCodecParam()->SetSampleBits(8, 8, false);
  EXPECT_EQ(ChunkNamed(Written(*file), "data"), (C_Bytes{0x00, 0x7F, 0x80, 0xFF}));
}

TEST_F(WavFileWrite, TextInfo_IsNotWritten) {
  const C_WavObjectPtr file = AnnotatedSound();
  void* pInfo = nullptr;
  ASSERT_TRUE(file->GetDataInfo(WAV_DATA_INFO_TEXT, &pInfo));
  EXPECT_EQ(ChunkNames(Written(*file)), (std::vector<std::string>{"fmt ", "data", "cue ", "LIST"}));
}

TEST_F(WavFileWrite, Convert_WritesThroughANewFileObjectOfTheKind) {
  const C_WavObjectPtr file = AnnotatedSound();
  const C_Bytes wave = Written(*file);
  ASSERT_TRUE(file->Convert(AUDIO_FILE_VEMD, m_folder.Path("x.vemd").c_str(), true, false, nullptr,
                            false, 0));
  C_Bytes vemd = m_folder.Read("x.vemd");
  ASSERT_EQ(vemd.size(), wave.size());
  std::copy_n(Ascii("WAVE").begin(), 4, vemd.begin() + 8);
  EXPECT_EQ(vemd, wave);
  EXPECT_EQ(PcmOf(*file), RampBytes(32000));
  EXPECT_EQ(file->GetFileFormat(), AUDIO_FILE_WAVE);
}

TEST_F(WavFileWrite, ConvertToKindsThatCannotBeWritten_Fails) {
  const C_WavObjectPtr file = AnnotatedSound();
  for (const unsigned int dwType : {0u, 1u, 31u, 37u, 0x1001u, 0xFFFFu}) {
    EXPECT_FALSE(file->Convert(static_cast<tagAudioFileType>(dwType), m_folder.Path("none").c_str(),
                               true, false, nullptr, false, 0));
    EXPECT_FALSE(m_folder.Has("none")) << dwType;
  }
}

// Programming errors.

namespace {

// A sound whose parts can be made to go missing.
class C_BrokenData : public C_WavData {
 public:
  bool GetInfo(int nType, void** ppInfo) override {
    *ppInfo = nullptr;
    return nType != m_nMissing && C_WavData::GetInfo(nType, ppInfo);
  }
  I_EventTagMgr* GetEventTagMgr() override { return m_pEventMgr; }
  SilenceList* GetSilenceSegmentList() override { return &m_silence; }
  RegionList* GetUncompressRegionList() override { return &m_regions; }

  int m_nMissing = 0;
  I_EventTagMgr* m_pEventMgr = C_WavData::GetEventTagMgr();
  C_CLArray<I_SilenceSegment*, I_SilenceSegment*, false> m_silence;
  C_CLArray<I_UncompressRegion*, I_UncompressRegion*, false> m_regions;
};

class C_BrokenEventMgr : public C_EventTagMgr {
 public:
  I_CLArray<I_EventTag*>* GetEventList() override { return m_pList; }

  C_CLArray<I_EventTag*, I_EventTag*, false> m_list;
  I_CLArray<I_EventTag*>* m_pList = nullptr;
};

class WavFileDeathTest : public WavFileWrite {
 protected:
  void SetUp() override {
    m_data.SetBuffer("1234", 4);
    m_data.SetWavInfoData(8000, 4, 1, 16, 16, true);
    m_file.SetFileFormat(AUDIO_FILE_WAVE);
    m_file.AttachWavData(&m_data);
  }
  void WriteNow() { static_cast<void>(Write(m_file, m_folder.Path("out.wav"))); }

  C_BrokenData m_data;
  C_WavFile m_file;
};

}  // namespace

TEST_F(WavFileDeathTest, Write_NeedsCueAndListInfo) {
  ASSERT_TRUE(Write(m_file, m_folder.Path("out.wav")));
  m_data.m_nMissing = WAV_DATA_INFO_CUE;
  EXPECT_DEATH(WriteNow(), R"(WaveFileLib/WavFile.*bRet && \(pICueInfo != NULL\))");
  m_data.m_nMissing = WAV_DATA_INFO_LIST;
  EXPECT_DEATH(WriteNow(), R"(WaveFileLib/WavFile.*bRet && \(pIListInfo != NULL\))");
}

TEST_F(WavFileDeathTest, Write_NeedsSamplerAndExtraChunkInfo) {
  m_data.m_nMissing = WAV_DATA_INFO_SAMPLER;
  EXPECT_DEATH(WriteNow(), R"(WaveFileLib/WavFile.*bRet && \(pISamplerInfo != NULL\))");
  m_data.m_nMissing = WAV_DATA_INFO_EXTRA_CHUNK;
  EXPECT_DEATH(WriteNow(), R"(WaveFileLib/WavFile.*bRet && \(pIExtraChunkInfo != NULL\))");
}

TEST_F(WavFileDeathTest, Write_NeedsTheEventsAndEachOfThem) {
  m_data.m_pEventMgr = nullptr;
  EXPECT_DEATH(WriteNow(), "WriteFile: WaveFileLib/WavFile.*NULL != pIEventMgr");
  C_BrokenEventMgr broken;
  m_data.m_pEventMgr = &broken;
  EXPECT_DEATH(WriteNow(), "WaveFileLib/WavFile.*NULL != pIEventList");
  broken.m_pList = &broken.m_list;
  broken.m_list.Add(nullptr);
  EXPECT_DEATH(WriteNow(), "WaveFileLib/WavFile.*NULL != pIEvent\n");
}

TEST_F(WavFileDeathTest, Write_NeedsEachRange) {
  m_data.m_silence.Add(nullptr);
  EXPECT_DEATH(WriteNow(), "WaveFileLib/WavFile.*NULL != piSilenceSegment");
  m_data.m_silence.RemoveAll();
  m_data.m_regions.Add(nullptr);
  EXPECT_DEATH(WriteNow(), "WaveFileLib/WavFile.*NULL != piUncompressRegion");
}

TEST_F(WavFileDeathTest, Write_NeedsEachExtraChunk) {
  auto& extra = static_cast<C_WavDataExtraChunkInfo&>(Extra(m_file));
  extra.Add(nullptr);
  EXPECT_DEATH(WriteNow(), "WaveFileLib/WavFile.*NULL != pIExtraChunk\n");
}

TEST_F(WavFileDeathTest, Load_NeedsTheEventManager) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 5, 5}})).Chunk("LIST", AdtlBytes({LablBytes(1, "u_1_2")}));
  const std::string strPath = m_folder.Write("in.wav", riff.Take());
  ASSERT_TRUE(m_file.OpenByName(strPath.c_str()));
  m_data.m_pEventMgr = nullptr;
  EXPECT_DEATH(static_cast<void>(m_file.LoadData(true, nullptr, nullptr)),
               "WaveFileLib/WavFile.*NULL != pIEventMgr");
}

TEST_F(WavFileWrite, LoadWithoutListOrCueInfo_ReadsNoAnnotations) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{1, 5, 5}})).Chunk("LIST", AdtlBytes({LablBytes(1, "u_1_2")}));
  const std::string strPath = m_folder.Write("in.wav", riff.Take());
  for (const int nMissing : {WAV_DATA_INFO_CUE, WAV_DATA_INFO_LIST}) {
    C_BrokenData data;
    C_WavFile file;
    file.AttachWavData(&data);
    ASSERT_TRUE(file.OpenByName(strPath.c_str()));
    data.m_nMissing = nMissing;
    EXPECT_TRUE(file.LoadData(true, nullptr, nullptr));
    EXPECT_TRUE(EventsOf(file).empty());
    EXPECT_EQ(data.GetEncType(), AUDIO_FILE_UNKNOWN);
    EXPECT_EQ(PcmOf(file), RampBytes(64));
  }
}
