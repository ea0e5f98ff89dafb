// SPDX-License-Identifier: Apache-2.0
//
// Loading RIFF sound files: their format, their samples and their informational chunks.
#include <algorithm>
#include <filesystem>

#include "OpenFiles.h"
#include "WavFileLoadFixture.h"
#include "sound/WavData.h"

namespace {

C_RiffBytes WithFmt(const C_Bytes& fmt) {
  C_RiffBytes riff("WAVE");
  return riff.Chunk("fmt ", fmt).Chunk("data", RampBytes(64));
}

// The bytes from index nFrom up to, but not including, nTo.
C_Bytes Slice(const C_Bytes& bytes, std::ptrdiff_t nFrom, std::ptrdiff_t nTo) {
  return {bytes.begin() + nFrom, bytes.begin() + nTo};
}

}  // namespace

TEST_F(WavFileLoad, BothForms_OpenAndReportTheirKind) {
  EXPECT_EQ(Load(MonoWav(8))->GetFileFormat(), AUDIO_FILE_WAVE);
  EXPECT_EQ(Load(MonoWav(8, "VEMD"))->GetFileFormat(), AUDIO_FILE_VEMD);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_WAVE), 0x8001u);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_VEMD), 0x1101u);
}

TEST_F(WavFileLoad, OtherForms_AreRefused) {
  for (const char* pszForm : {"VEFF", "AVI ", "wave", "WAV ", "vemd", "VEM "}) {
    EXPECT_FALSE(Checks(File(MonoWav(8, pszForm)))) << pszForm;
  }
}

TEST_F(WavFileLoad, FilesThatAreNotRiff_AreRefused) {
  C_Bytes rifx = MonoWav(8).Take();
  rifx[3] = 'X';
  EXPECT_FALSE(Checks(File(rifx)));
  EXPECT_FALSE(Checks(File(C_Bytes{})));
  EXPECT_FALSE(Checks(File(Ascii("just a text that was renamed"))));
  EXPECT_FALSE(Checks(m_folder.Path()));
  EXPECT_FALSE(Checks(m_folder.Path("missing.wav")));
  EXPECT_FALSE(MakeWav()->CheckFormat(nullptr, true));
}

TEST_F(WavFileLoad, TagsOfOthers_AreRefused) {
  for (const std::uint16_t wTag :
       std::initializer_list<std::uint16_t>{0x0000, 0x0003, 0x0011, 0x0055, 0xFFFE, 0xFFFF}) {
    EXPECT_FALSE(Checks(File(WithFmt(FmtBytes(wTag, 1, 16000, 16))))) << wTag;
    EXPECT_FALSE(Opens(File(WithFmt(FmtBytes(wTag, 1, 16000, 16))))) << wTag;
  }
}

TEST_F(WavFileLoad, Format_BecomesTheSounds) {
  const C_WavObjectPtr file = LoadWav(File(WithFmt(FmtBytes(1, 2, 44100, 16))));
  I_WavInfo& info = *file->GetWavInfo();
  EXPECT_EQ(info.GetSampleRate(), 44100u);
  EXPECT_EQ(info.GetByteLength(), 64u);
  EXPECT_EQ(info.GetChannels(), 2);
  EXPECT_EQ(info.GetBitsPerSample(), 16);
  EXPECT_EQ(info.GetStoreBitsPerSample(), 16);
  EXPECT_TRUE(info.IsValueSigned());
  EXPECT_EQ(info.GetSampleSize(), 16u);
  EXPECT_EQ(file->GetCodingType(), 0u);
}

TEST_F(WavFileLoad, SamplesOfMoreThanEightBits_AreSigned) {
  for (const std::uint16_t wBits :
       std::initializer_list<std::uint16_t>{1, 4, 8, 9, 12, 16, 24, 32}) {
    const C_WavObjectPtr file = LoadWav(File(WithFmt(FmtBytes(1, 1, 8000, wBits))));
    EXPECT_EQ(file->GetWavInfo()->IsValueSigned(), wBits > 8) << wBits;
    EXPECT_EQ(file->GetWavInfo()->GetBitsPerSample(), wBits);
    EXPECT_EQ(file->GetWavInfo()->GetStoreBitsPerSample(), wBits);
  }
}

TEST_F(WavFileLoad, Samples_AreLoadedAsStored) {
  for (const std::uint16_t wBits : std::initializer_list<std::uint16_t>{8, 16, 24, 32}) {
    for (const std::uint16_t wChannels : std::initializer_list<std::uint16_t>{1, 2, 6}) {
      const C_WavObjectPtr file = LoadWav(File(WithFmt(FmtBytes(1, wChannels, 8000, wBits))));
      EXPECT_EQ(PcmOf(*file), RampBytes(64)) << wBits << " bits, " << wChannels << " channels";
    }
  }
}

TEST_F(WavFileLoad, LaterFormatAndData_CountInsteadOfEarlierOnes) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 2, 44100, 16))
      .Chunk("data", C_Bytes(200, 0xEE))
      .Chunk("data", RampBytes(40))
      .Chunk("fmt ", FmtBytes(1, 1, 8000, 8));
  const C_WavObjectPtr file = Load(riff);
  EXPECT_EQ(PcmOf(*file), RampBytes(40));
  EXPECT_EQ(file->GetWavInfo()->GetSampleRate(), 8000u);
  EXPECT_EQ(file->GetWavInfo()->GetChannels(), 1);
  EXPECT_EQ(file->GetWavInfo()->GetBitsPerSample(), 8);
  EXPECT_EQ(file->GetDataStartPos(), 12u + 24 + 208 + 8);
}

TEST_F(WavFileLoad, EarlierFormat_MustStillBeOneOfOurs) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(3, 1, 8000, 32)).Chunk("fmt ", FmtBytes(1, 1, 8000, 16));
  EXPECT_FALSE(Checks(File(riff)));
}

TEST_F(WavFileLoad, FormatAfterTheData_Counts) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("data", RampBytes(40)).Chunk("fmt ", FmtBytes(1, 1, 8000, 16));
  EXPECT_EQ(PcmOf(*Load(riff)), RampBytes(40));
}

TEST_F(WavFileLoad, FileWithoutData_OpensWithLengthZero) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 8000, 16));
  const C_WavObjectPtr file = Load(riff);
  EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 0u);
  EXPECT_EQ(file->GetWavInfo()->GetSampleSize(), 0u);
  EXPECT_EQ(file->GetDataStartPos(), 0u);
}

TEST_F(WavFileLoad, FileWithoutFormat_IsRefused) {
  C_RiffBytes riff("WAVE");
  EXPECT_FALSE(Checks(File(riff)));
  EXPECT_FALSE(Checks(File(riff.Chunk("data", RampBytes(64)))));
  EXPECT_FALSE(Loads(File(riff)));
}

TEST_F(WavFileLoad, EmptyOrCutFormat_IsRefused) {
  EXPECT_FALSE(Checks(File(WithFmt({}))));
  C_RiffBytes cut("WAVE");
  cut.Chunk("fmt ", 16, Slice(FmtBytes(1, 1, 8000, 16), 0, 15));
  EXPECT_FALSE(Checks(File(cut)));
  C_RiffBytes huge("WAVE");
  huge.Chunk("fmt ", 0xFFFFFFF0u, FmtBytes(1, 1, 8000, 16));
  EXPECT_FALSE(Checks(File(huge)));
}

TEST_F(WavFileLoad, FormatShorterThanItsRecord_IsRefused) {
  const C_Bytes fmt = Join({FmtBytes(1, 1, 8000, 16), U16(0), C_Bytes(22)});
  for (std::ptrdiff_t cb = 0; cb < 16; ++cb) {
    EXPECT_FALSE(Checks(File(WithFmt(Slice(fmt, 0, cb))))) << cb;
  }
  for (const std::ptrdiff_t cb : {16, 17, 18, 40}) {
    EXPECT_TRUE(Loads(File(WithFmt(Slice(fmt, 0, cb))))) << cb;
  }
}

TEST_F(WavFileLoad, ChannelsOrBitsOfZero_AreRefused) {
  EXPECT_FALSE(Checks(File(WithFmt(FmtBytes(1, 0, 8000, 16)))));
  EXPECT_FALSE(Checks(File(WithFmt(FmtBytes(1, 1, 8000, 0)))));
  EXPECT_FALSE(Loads(File(WithFmt(FmtBytes(1, 0, 8000, 0)))));
}

TEST_F(WavFileLoad, RateZero_IsAcceptedAndLengthsAreZero) {
  const C_WavObjectPtr file = LoadWav(File(WithFmt(FmtBytes(1, 1, 0, 16))));
  EXPECT_EQ(file->GetWavInfo()->GetSampleRate(), 0u);
  EXPECT_EQ(file->GetWavInfo()->GetTimeLength(), 0u);
  EXPECT_EQ(PcmOf(*file), RampBytes(64));
}

TEST_F(WavFileLoad, RateZero_LeavesEventLabelsOutAndKeepsRanges) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 0, 16))
      .Chunk("data", RampBytes(64))
      .Chunk("cue ", CueBytes({{1, 5, 5}, {2, 9, 9}}))
      .Chunk("LIST", AdtlBytes({LablBytes(1, "u_1_2"), LablBytes(2, "VX_Silence"),
                                LablBytes(1, "e_7"), LtxtBytes(2, 4)}));
  const C_WavObjectPtr file = Load(riff);
  EXPECT_TRUE(EventsOf(*file).empty());
  EXPECT_EQ(SilenceOf(*file), (C_RangesSeen{{9, 12}}));
}

TEST_F(WavFileLoad, UnusualWidthsAndHugeNumbers_AreCarried) {
  for (const std::uint16_t wBits :
       std::initializer_list<std::uint16_t>{2, 7, 33, 40, 64, 255, 256, 0x7FFF, 0x8000, 0xFFFF}) {
    const C_WavObjectPtr file = LoadWav(File(WithFmt(FmtBytes(1, 0xFFFF, 0xFFFFFFFF, wBits))));
    EXPECT_EQ(file->GetWavInfo()->GetBitsPerSample(), wBits);
    EXPECT_EQ(file->GetWavInfo()->GetChannels(), 0xFFFF);
    EXPECT_EQ(file->GetWavInfo()->GetSampleRate(), 0xFFFFFFFFu);
    EXPECT_EQ(PcmOf(*file), RampBytes(64));
    static_cast<void>(file->GetWavInfo()->GetTimeLength());
  }
}

TEST_F(WavFileLoad, DataStartPos_IsTheOffsetOfThePayload) {
  EXPECT_EQ(Load(MonoWav(8))->GetDataStartPos(), 44u);
}

TEST_F(WavFileLoad, CheckFormatWithoutInfo_KeepsNoNameAndFillsNoSound) {
  const std::string strPath = File(MonoWav(8));
  const C_WavObjectPtr file = MakeWav();
  EXPECT_TRUE(file->CheckFormat(strPath.c_str(), false));
  EXPECT_EQ(file->GetWavData(), nullptr);
  EXPECT_EQ(file->GetWavInfo(), nullptr);
  EXPECT_TRUE(file->CheckFormat(strPath.c_str(), true));
  EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 8u);
  EXPECT_STREQ(file->GetFileName(), "");
  EXPECT_EQ(file->GetFileLength(), 0u);
  EXPECT_EQ(file->GetWavDataBuffer(), nullptr);
  EXPECT_FALSE(file->LoadData(true, nullptr, nullptr));
}

TEST_F(WavFileLoad, LoadDataWithoutASound_Fails) {
  EXPECT_FALSE(MakeWav()->LoadData(true, nullptr, nullptr));
}

TEST_F(WavFileLoad, LoadDataOfAFileThatIsGone_Fails) {
  const std::string strPath = File(MonoWav(8));
  const C_WavObjectPtr file = MakeWav();
  ASSERT_TRUE(file->OpenByName(strPath.c_str()));
  std::filesystem::remove(strPath);
  EXPECT_FALSE(file->LoadData(true, nullptr, nullptr));
}

TEST_F(WavFileLoad, FileThatShrinksBeforeLoading_GivesZeros) {
  const std::string strPath = File(MonoWav(100));
  const C_WavObjectPtr file = MakeWav();
  ASSERT_TRUE(file->OpenByName(strPath.c_str()));
  std::filesystem::resize_file(strPath, 20);
  ASSERT_TRUE(file->LoadData(true, nullptr, nullptr));
  EXPECT_EQ(PcmOf(*file), C_Bytes(100));
}

TEST_F(WavFileLoad, MissingTailOfTheData_IsZero) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", 1000, RampBytes(33));
  const C_WavObjectPtr file = Load(riff);
  EXPECT_EQ(file->GetWavData()->GetBufferLength(), 1000u);
  EXPECT_EQ(PcmOf(*file), Join({RampBytes(33), C_Bytes(967)}));
}

TEST_F(WavFileLoad, MissingTail_IsZeroOnASecondLoadToo) {
  const std::string strPath = File(MonoWav(100));
  const C_WavObjectPtr file = LoadWav(strPath);
  std::filesystem::resize_file(strPath, 54);
  ASSERT_TRUE(file->LoadData(true, nullptr, nullptr));
  EXPECT_EQ(PcmOf(*file), Join({RampBytes(10), C_Bytes(90)}));
}

TEST_F(WavFileLoad, FileThatLacks64MiB_StillLoads) {
  constexpr std::uint32_t k64MiB = 64u << 20;
  C_RiffBytes riff("WAVE");
  riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", k64MiB + 3, RampBytes(3));
  const C_WavObjectPtr file = Load(riff);
  ASSERT_EQ(file->GetWavData()->GetBufferLength(), k64MiB + 3);
  const unsigned char* pbyPcm = file->GetWavDataBuffer();
  EXPECT_EQ(pbyPcm[2], 3);
  EXPECT_TRUE(std::all_of(pbyPcm + 3, pbyPcm + k64MiB + 3, [](int n) { return n == 0; }));
}

TEST_F(WavFileLoad, FileThatLacksMore_FailsToLoadAndHoldsNothing) {
  constexpr std::uint32_t k64MiB = 64u << 20;
  for (const std::uint32_t dwClaimed : {k64MiB + 4, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu}) {
    C_RiffBytes riff("WAVE");
    riff.Chunk("fmt ", FmtBytes(1, 1, 16000, 16)).Chunk("data", dwClaimed, RampBytes(3));
    const std::string strPath = File(riff);
    EXPECT_TRUE(Opens(strPath));
    const C_WavObjectPtr file = MakeWav();
    EXPECT_FALSE(file->LoadByName(strPath.c_str(), true, nullptr, nullptr)) << dwClaimed;
    EXPECT_EQ(file->GetWavDataBuffer(), nullptr);
  }
}

TEST_F(WavFileLoad, LoadByName_KeepsNameAndLength) {
  const std::string strPath = File(MonoWav(8));
  const C_WavObjectPtr file = LoadWav(strPath);
  EXPECT_EQ(file->GetFileName(), strPath);
  EXPECT_EQ(file->GetFileLength(), 52u);
  EXPECT_EQ(file->GetWavData()->GetEventTagMgr()->GetSampleRate(), 16000u);
}

TEST_F(WavFileLoad, EncodedType_BecomesTheFileFormat) {
  EXPECT_EQ(Load(MonoWav(8))->GetWavData()->GetEncType(), AUDIO_FILE_WAVE);
  EXPECT_EQ(Load(MonoWav(8, "VEMD"))->GetWavData()->GetEncType(), AUDIO_FILE_VEMD);
}

TEST_F(WavFileLoad, OpenByName_LeavesTheSamplesOut) {
  const std::string strPath = File(OneLabel("u_3_7"));
  const C_WavObjectPtr file = MakeWav();
  ASSERT_TRUE(file->OpenByName(strPath.c_str()));
  EXPECT_EQ(file->GetFileName(), strPath);
  EXPECT_EQ(file->GetFileLength(), std::filesystem::file_size(strPath));
  EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 64u);
  EXPECT_EQ(file->GetWavDataBuffer(), nullptr);
  EXPECT_TRUE(EventsOf(*file).empty());
  EXPECT_EQ(Cues(*file).GetCuePointCount(), 1);
  EXPECT_EQ(file->GetWavData()->GetEncType(), AUDIO_FILE_UNKNOWN);
}

// Informational chunks.

TEST_F(WavFileLoad, InformationalChunks_ReachTheirInfos) {
  C_RiffBytes riff = MonoWav(64);
  riff.Chunk("cue ", CueBytes({{7, 11, 12}, {9, 13, 14}}))
      .Chunk("smpl", SmplBytes(3, 20))
      .Chunk("LIST", AdtlBytes({LablBytes(7, "hello"), LtxtBytes(9, 5)}));
  const C_WavObjectPtr file = Load(riff);
  ASSERT_EQ(Cues(*file).GetCuePointCount(), 2);
  EXPECT_EQ(Cues(*file).GetCuePointByIndex(1)->GetPosition(), 13u);
  EXPECT_EQ(Cues(*file).GetCuePointByIndex(1)->GetSampleOffset(), 14u);
  ASSERT_EQ(Sampler(*file).GetSampleLoopNum(), 1u);
  EXPECT_EQ(Sampler(*file).GetSampleLoopByIndex(0)->GetEndSampleOffset(), 20u);
  EXPECT_EQ(List(*file).GetLabelCount(), 1);
  EXPECT_EQ(List(*file).GetLtxtCount(), 1);
  EXPECT_EQ(Extra(*file).GetSize(), 0);
}

TEST_F(WavFileLoad, LoadersFailure_FailsTheCheck) {
  const C_Bytes cutLabel = Join({Ascii("adtl"), ChunkBytes("labl", 100, U32(1))});
  EXPECT_FALSE(Opens(File(MonoWav(8).Chunk("LIST", cutLabel))));
}

TEST_F(WavFileLoad, WithoutInfo_TheInformationalChunksAreNotRead) {
  const C_Bytes cutLabel = Join({Ascii("adtl"), ChunkBytes("labl", 100, U32(1))});
  EXPECT_TRUE(Checks(File(MonoWav(8).Chunk("LIST", cutLabel))));
}

TEST_F(WavFileLoad, ChunksTooShortForTheirFirstField_AreLeftOut) {
  for (std::size_t cb = 0; cb < 4; ++cb) {
    for (const char* pszID : {"cue ", "smpl", "LIST"}) {
      const C_WavObjectPtr file = Load(MonoWav(8).Chunk(pszID, C_Bytes(cb, 0x41)));
      EXPECT_EQ(PcmOf(*file), RampBytes(8)) << pszID << " of " << cb;
      EXPECT_EQ(Extra(*file).GetSize(), 0);
    }
  }
}

TEST_F(WavFileLoad, CountsBeyondThePayload_KeepTheWholeRecords) {
  C_Bytes cue = CueBytes({{1, 2, 3}, {4, 5, 6}});
  std::fill_n(cue.begin(), 4, 0xFF);
  const C_WavObjectPtr file = Load(MonoWav(8).Chunk("cue ", Slice(cue, 0, 51)));
  EXPECT_EQ(Cues(*file).GetCuePointCount(), 1);
}

TEST_F(WavFileLoad, OtherChunks_AreKeptVerbatim) {
  C_RiffBytes riff("WAVE");
  riff.Chunk("bext", RampBytes(5))
      .Chunk("fmt ", FmtBytes(1, 1, 8000, 16))
      .Chunk("junk", {})
      .Chunk("data", RampBytes(6))
      .Chunk("bext", RampBytes(7))
      .Chunk("list", RampBytes(3));
  const C_WavObjectPtr file = Load(riff);
  ASSERT_EQ(Extra(*file).GetSize(), 4);
  const char* const names[] = {"bext", "junk", "bext", "list"};
  const unsigned int lengths[] = {5, 0, 7, 3};
  for (int i = 0; i < 4; ++i) {
    unsigned char* pbyData = nullptr;
    I_WavDataExtraChunk& chunk = *Extra(*file).GetItemByIndex(i);
    EXPECT_EQ(std::string(chunk.GetChunkName(), 4), names[i]);
    ASSERT_EQ(chunk.GetChunkData(&pbyData), lengths[i]);
    EXPECT_TRUE(std::equal(pbyData, pbyData + lengths[i], RampBytes(7).begin()));
  }
}

TEST_F(WavFileLoad, ExtraChunkThatTheFileCuts_IsLeftOut) {
  for (const std::uint32_t dwClaimed : {11u, 0x7FFFFFFFu, 0xFFFFFFFFu}) {
    C_RiffBytes riff = MonoWav(8);
    riff.Chunk("fact", U32(4)).Chunk("junk", dwClaimed, RampBytes(10));
    const C_WavObjectPtr file = Load(riff);
    ASSERT_EQ(Extra(*file).GetSize(), 1) << dwClaimed;
    EXPECT_EQ(std::string(Extra(*file).GetItemByIndex(0)->GetChunkName(), 4), "fact");
  }
}

TEST_F(WavFileLoad, ExtraChunksOfTheLastFile_GoWhenTheNextOneHasSome) {
  const C_WavObjectPtr file = MakeWav();
  const auto open = [&](const C_RiffBytes& riff) { return file->OpenByName(File(riff).c_str()); };
  ASSERT_TRUE(open(MonoWav(8).Chunk("aaaa", U32(1)).Chunk("bbbb", U32(2))));
  EXPECT_EQ(Extra(*file).GetSize(), 2);
  ASSERT_TRUE(open(MonoWav(8).Chunk("cccc", U32(3))));
  ASSERT_EQ(Extra(*file).GetSize(), 1);
  EXPECT_EQ(std::string(Extra(*file).GetItemByIndex(0)->GetChunkName(), 4), "cccc");
  ASSERT_TRUE(open(MonoWav(8)));
  EXPECT_EQ(Extra(*file).GetSize(), 1);
}

TEST_F(WavFileLoad, ListsOfOtherTypes_AreNeitherLabelsNorKept) {
  const C_Bytes info = Join({Ascii("INFO"), ChunkBytes("INAM", Ascii("title"))});
  const C_WavObjectPtr file = Load(OneLabel("hello").Chunk("LIST", info));
  EXPECT_EQ(Extra(*file).GetSize(), 0);
  EXPECT_EQ(LabelsOf(*file).size(), 1u);
}

TEST_F(WavFileLoad, SameFile_OpensTheSameWayTwiceOnOneObject) {
  const C_WavObjectPtr file = MakeWav();
  const std::string strPath = File(OneLabel("hello").Chunk("fact", U32(4)));
  for (int i = 0; i < 2; ++i) {
    ASSERT_TRUE(file->OpenByName(strPath.c_str()));
    EXPECT_EQ(Cues(*file).GetCuePointCount(), 1);
    EXPECT_EQ(List(*file).GetLabelCount(), 1);
    EXPECT_EQ(Extra(*file).GetSize(), 1);
  }
}

TEST_F(WavFileLoad, EarlierFile_LeavesNothingInTheFormat) {
  const C_WavObjectPtr file = MakeWav();
  ASSERT_TRUE(file->OpenByName(File(MonoWav(100)).c_str()));
  C_RiffBytes noData("WAVE");
  noData.Chunk("fmt ", FmtBytes(1, 2, 8000, 8));
  ASSERT_TRUE(file->OpenByName(File(noData).c_str()));
  EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 0u);
  EXPECT_EQ(file->GetDataStartPos(), 0u);
  C_RiffBytes noFormat("WAVE");
  noFormat.Chunk("data", RampBytes(4));
  EXPECT_FALSE(file->OpenByName(File(noFormat).c_str()));
}

TEST_F(WavFileLoad, LinearSamples_HaveNoCodingWhateverAnEarlierFileHad) {
  const C_WavObjectPtr file = MakeWav();
  file->SetCodingType(C_WavFile::kCodingDviAdpcm);
  EXPECT_TRUE(file->CheckFormat(File(MonoWav(8)).c_str(), false));
  EXPECT_EQ(file->GetCodingType(), 0u);
}

TEST_F(WavFileLoad, SamplesOfAnEarlierFile_GoWhenTheNextOneOpens) {
  const C_WavObjectPtr file = LoadWav(File(MonoWav(10)));
  const std::string strLonger = m_folder.Write("longer.wav", MonoWav(1000).Take());
  ASSERT_TRUE(file->OpenByName(strLonger.c_str()));
  EXPECT_EQ(file->GetWavDataBuffer(), nullptr);
  EXPECT_FALSE(Write(*file, m_folder.Path("none.wav")));
  EXPECT_FALSE(MakeWav()->CopyWavData(file->GetWavData()));
  ASSERT_TRUE(file->LoadData(true, nullptr, nullptr));
  EXPECT_EQ(PcmOf(*file), RampBytes(1000));
}

TEST_F(WavFileLoad, LoadIntoAnAttachedSound_DoesNotTouchTheCallersMemory) {
  C_Bytes memory = RampBytes(4);
  C_WavData data;
  data.AttachBuffer(memory.data(), 4);
  C_WavFile file;
  file.AttachWavData(&data);
  ASSERT_TRUE(file.LoadByName(File(MonoWav(10)).c_str(), true, nullptr, nullptr));
  EXPECT_EQ(PcmOf(file), RampBytes(10));
  EXPECT_EQ(file.DetachWavData(), &data);
  EXPECT_EQ(data.GetBufferLength(), 10u);
  EXPECT_EQ(memory, RampBytes(4));
}

TEST_F(WavFileLoad, Loading_LeavesNoFileOpen) {
  const std::string strGood = File(OneLabel("u_1_2").Chunk("fact", U32(1)));
  const std::string strBad = m_folder.Write(
      "bad.wav", MonoWav(8).Chunk("LIST", Join({Ascii("adtl"), Ascii("labl")})).Take());
  C_RiffBytes missing("WAVE");
  missing.Chunk("fmt ", FmtBytes(1, 1, 8000, 16)).Chunk("data", 0xF0000000u, {});
  const std::string strMissing = m_folder.Write("missing.wav", missing.Take());
  const std::ptrdiff_t nOpen = CountOpenFiles();
  const C_WavObjectPtr file = LoadWav(strGood);
  EXPECT_TRUE(file->LoadData(true, nullptr, nullptr));
  EXPECT_TRUE(Write(*file, m_folder.Path("out.wav")));
  EXPECT_FALSE(Write(*file, m_folder.Path("no/such/folder.wav")));
  EXPECT_FALSE(Loads(strMissing));
  static_cast<void>(Loads(strBad));
  EXPECT_FALSE(Loads(m_folder.Path()));
  EXPECT_EQ(CountOpenFiles(), nOpen);
}
