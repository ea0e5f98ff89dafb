// SPDX-License-Identifier: Apache-2.0
//
// Kestrel files: recognising and loading.
#include "file/KestrelFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "FileSizeLimit.h"
#include "KestrelFileFixture.h"
#include "RiffFile.h"
#include "SpBytes.h"
#include "TestSound.h"
#include "VTable.h"
#include "WavFileFormat.h"
#include "codec/KestrelCodec.h"
#include "file/SpHeader.h"

namespace {

using testing::Each;

std::vector<unsigned int> g_lengths;
void RecordPiece(void*, unsigned int dwLength) { g_lengths.push_back(dwLength); }

// ---- recognising

TEST_F(KestrelFile, NewObject_IsNotOpenedAndDoesNotForceEncoding) {
  C_KestrelFile file;
  EXPECT_EQ(file.GetContainerKind(), -1);
  EXPECT_FALSE(file.IsForceEncode());
  EXPECT_EQ(file.GetCodingType(), 0u);
  EXPECT_EQ(file.GetFileFormat(), AUDIO_FILE_UNKNOWN);
}

TEST_F(KestrelFile, CheckFormat_WithInfo_SetsFormatAndCodingType) {
  const std::string strPath = WriteKestrel("a", Stream(2));
  C_KestrelFile file;
  ASSERT_TRUE(file.CheckFormat(strPath.c_str(), true));
  EXPECT_EQ(file.GetContainerKind(), 0);
  EXPECT_EQ(file.GetCodingType(), 14u);
  EXPECT_EQ(file.GetFileFormat(), AUDIO_FILE_UNKNOWN);
  I_WavInfo* pIWavInfo = file.GetWavInfo();
  ASSERT_NE(pIWavInfo, nullptr);
  EXPECT_EQ(pIWavInfo->GetSampleRate(), 16000u);
  EXPECT_EQ(pIWavInfo->GetByteLength(), 0u);
  EXPECT_EQ(pIWavInfo->GetChannels(), 1);
  EXPECT_EQ(pIWavInfo->GetBitsPerSample(), 16);
  EXPECT_EQ(pIWavInfo->GetStoreBitsPerSample(), 16);
  EXPECT_TRUE(pIWavInfo->IsValueSigned());
}

TEST_F(KestrelFile, CheckFormat_WithoutInfo_SetsOnlyTheKind) {
  const std::string strPath = WriteKestrel("a", Stream(2));
  C_KestrelFile file;
  ASSERT_TRUE(file.CheckFormat(strPath.c_str(), false));
  EXPECT_EQ(file.GetContainerKind(), 0);
  EXPECT_EQ(file.GetCodingType(), 0u);
  EXPECT_EQ(file.GetWavData(), nullptr);
}

TEST_F(KestrelFile, CheckFormat_OtherIdentifier_IsFalse) {
  for (const std::uint16_t wID :
       {std::uint16_t{0}, std::uint16_t{13}, std::uint16_t{15}, std::uint16_t{32},
        std::uint16_t{36}, std::uint16_t{0x0E00}, std::uint16_t{65535}}) {
    const std::string strPath = Write("a", C_SpBytes().ID(wID).Stream(Stream(2)).Take());
    C_KestrelFile file;
    EXPECT_FALSE(file.CheckFormat(strPath.c_str(), true)) << wID;
    EXPECT_EQ(file.GetContainerKind(), -1) << wID;
    EXPECT_EQ(file.GetCodingType(), 0u) << wID;
  }
}

TEST_F(KestrelFile, CheckFormat_WhatHasNoHeader_IsFalse) {
  C_KestrelFile file;
  EXPECT_FALSE(file.CheckFormat(Write("stream", Stream(2)).c_str(), true));
  EXPECT_FALSE(file.CheckFormat(Write("empty", {}).c_str(), true));
  EXPECT_FALSE(file.CheckFormat(Write("short", C_SpBytes().Take(21)).c_str(), true));
  EXPECT_FALSE(file.CheckFormat(Path("missing").c_str(), true));
  EXPECT_FALSE(file.CheckFormat(Path(".").c_str(), true));
  EXPECT_FALSE(file.CheckFormat(nullptr, true));
  EXPECT_EQ(file.GetContainerKind(), -1);
}

TEST_F(KestrelFile, Factory_DoesNotOpenABareStream) {
  C_WavFileFormat format;
  EXPECT_EQ(format.CreateWavFile(Write("a", Stream(2)).c_str(), true, true, nullptr, nullptr),
            nullptr);
}

TEST_F(KestrelFile, Factory_OpensTheFormatWithoutItsSamples) {
  C_WavFileFormat format;
  I_WavFile* pIFile = format.OpenWavFile(WriteKestrel("a", Stream(2)).c_str());
  ASSERT_NE(pIFile, nullptr);
  EXPECT_EQ(pIFile->GetWavInfo()->GetSampleRate(), 16000u);
  EXPECT_EQ(pIFile->GetWavInfo()->GetByteLength(), 0u);
  EXPECT_EQ(pIFile->GetFileLength(), 48u + 6 + 80);
  EXPECT_EQ(pIFile->GetWavData()->GetEncBufferLen(), 0u);
  pIFile->Release();
}

// ---- loading

TEST_F(KestrelFile, Load_DecodesAndKeepsTheStream) {
  const auto stream = C_KestrelBytes(16000).Voice(50);
  const std::string strPath = WriteKestrel("a", stream.Take());
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  EXPECT_EQ(SamplesOf(file.GetWavData()), kestrel::test::DecodeWords(16000, stream.GetWords()));
  EXPECT_EQ(file.GetWavInfo()->GetByteLength(), 50u * 640);
  EXPECT_EQ(file.GetWavInfo()->GetTimeLength(), 1000u);
  EXPECT_EQ(BytesOfEncBuffer(file.GetWavData()), stream.Take());
  EXPECT_EQ(file.GetWavData()->GetEncBufferLen(), file.GetFileLength() - 48);
  EXPECT_EQ(file.GetWavData()->GetEncType(), AUDIO_FILE_KESTREL);
  EXPECT_EQ(file.GetFileFormat(), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(file.GetCodingType(), 14u);
  EXPECT_EQ(file.GetFileName(), strPath);
  EXPECT_EQ(file.GetWavData()->GetEventTagMgr()->GetSampleRate(), 16000u);
}

TEST_F(KestrelFile, Load_KeepEncodedAndCodecOption_HaveNoInfluence) {
  const std::string strPath = WriteKestrel("a", Stream(5));
  C_KestrelFile kept;
  ASSERT_TRUE(kept.LoadByName(strPath.c_str(), true, nullptr, nullptr));
  C_KestrelFile plain;
  ASSERT_TRUE(plain.LoadByName(strPath.c_str(), false, "32000", nullptr));
  EXPECT_EQ(SamplesOf(plain.GetWavData()), SamplesOf(kept.GetWavData()));
  EXPECT_EQ(BytesOfEncBuffer(plain.GetWavData()), BytesOfEncBuffer(kept.GetWavData()));
}

TEST_F(KestrelFile, Load_Callback_GetsEveryFrame) {
  const std::string strPath = WriteKestrel("a", Stream(50));
  g_lengths.clear();
  C_WavFileFormat format;
  I_WavFile* pIFile = format.CreateWavFile(strPath.c_str(), true, true, nullptr, RecordPiece);
  ASSERT_NE(pIFile, nullptr);
  pIFile->Release();
  EXPECT_EQ(g_lengths.size(), 50u);
  EXPECT_THAT(g_lengths, Each(640u));
}

TEST_F(KestrelFile, Load_OtherSampleRate_IsTakenFromTheHeaderAndChangesNoSample) {
  const auto stream = C_KestrelBytes(16000).Voice(3);
  for (const std::uint32_t dwRate : {8000u, 11025u, 44100u}) {
    Write("a", C_SpBytes().Freq(dwRate).Stream(stream.Take()).Take());
    C_KestrelFile file;
    ASSERT_TRUE(Load(file, "a"));
    EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), dwRate);
    EXPECT_EQ(file.GetWavInfo()->GetSampleSize(), 3u * 320);
    ASSERT_TRUE(
        file.Convert(AUDIO_FILE_WAVE, Path("a.wav").c_str(), true, false, nullptr, false, 0));
    vcm::C_ByteWriter rate;
    rate.U32(dwRate);
    const auto wav = Content("a.wav");
    EXPECT_EQ(Bytes(wav.begin() + 24, wav.begin() + 28), rate.Data());
    EXPECT_EQ(wav.size(), 44u + 3 * 640);
  }
}

TEST_F(KestrelFile, Load_SampleRate0OrGreatest_IsKept) {
  for (const std::uint32_t dwRate : {0u, 1u, 0xFFFFFFFFu}) {
    Write("a", C_SpBytes().Freq(dwRate).Stream(Stream(3)).Take());
    C_KestrelFile file;
    EXPECT_TRUE(Load(file, "a"));
    EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), dwRate);
    EXPECT_EQ(file.GetWavInfo()->GetTimeLength(), dwRate == 1 ? 960000u : 0u);
  }
}

TEST_F(KestrelFile, Load_OlderSignatureText_Works) {
  Write("a", C_SpBytes().Text("ORBITAL SPEECH").Stream(Stream(3)).Take());
  C_KestrelFile file;
  EXPECT_TRUE(Load(file, "a"));
}

TEST_F(KestrelFile, Load_Version255_ReadsTheStreamTwoBytesEarlyAndFails) {
  const auto bytes = C_SpBytes().Version(255).Gap(0).Stream(Stream(3)).Take();
  Write("a", bytes);
  C_KestrelFile file;
  EXPECT_TRUE(file.OpenByName(Path("a").c_str()));
  EXPECT_FALSE(Load(file, "a"));
  EXPECT_EQ(BytesOfEncBuffer(file.GetWavData()), Bytes(bytes.begin() + 48, bytes.end()));
}

TEST_F(KestrelFile, Load_FileCutAtEveryByte_PlaysWhatItHoldsOrFails) {
  const Bytes whole = C_SpBytes().Stream(Stream(3)).Take();
  for (std::size_t cbSize = 0; cbSize <= whole.size(); ++cbSize) {
    Write("a", Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(cbSize)));
    C_KestrelFile file;
    // After the header and the length field there must be at least a sixteenth of 122 bytes.
    const bool bExpected = cbSize >= 48 + 4 + 8;
    ASSERT_EQ(Load(file, "a"), bExpected) << cbSize;
    if (!bExpected) continue;
    EXPECT_EQ(file.GetWavInfo()->GetByteLength(), (cbSize - 54 + 39) / 40 * 640) << cbSize;
  }
}

TEST_F(KestrelFile, Load_HeaderCutShort_OpensAndHasNoStream) {
  for (const std::size_t cbSize : {24u, 30u, 47u, 48u}) {
    Write("a", C_SpBytes().Take(cbSize));
    C_KestrelFile file;
    EXPECT_TRUE(file.OpenByName(Path("a").c_str())) << cbSize;
    EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), cbSize < 30 ? 8000u : 16000u);
    EXPECT_FALSE(Load(file, "a")) << cbSize;
    EXPECT_EQ(file.GetWavData()->GetEncBufferLen(), 0u);
  }
}

TEST_F(KestrelFile, Load_StreamThatDoesNotFit32Bits_IsRefusedUnread) {
  WriteKestrel("a", Stream(3));
  std::filesystem::resize_file(Path("a"), 48 + 126 + (std::uintmax_t{1} << 32));
  C_KestrelFile file;
  EXPECT_FALSE(Load(file, "a"));
  EXPECT_EQ(file.GetWavData()->GetEncBufferLen(), 0u);
}

TEST_F(KestrelFile, Load_OnlyTheHeadOfAStream_HasNoSamples) {
  WriteKestrel("a", Stream(0));
  C_KestrelFile file;
  EXPECT_TRUE(Load(file, "a"));
  EXPECT_EQ(file.GetWavInfo()->GetByteLength(), 0u);
  EXPECT_FALSE(
      file.Convert(AUDIO_FILE_WAVE, Path("a.wav").c_str(), true, false, nullptr, false, 0));
}

TEST_F(KestrelFile, Load_TwoHeaders_Fails) {
  WriteKestrel("a", C_SpBytes().Stream(Stream(3)).Take());
  C_KestrelFile file;
  EXPECT_FALSE(Load(file, "a"));
}

TEST_F(KestrelFile, LoadData_BeforeAnyFileWasOpened_IsFalse) {
  C_KestrelFile file;
  EXPECT_FALSE(file.LoadData(true, nullptr, nullptr));
  EXPECT_FALSE(file.LoadData(false, nullptr, RecordPiece));
}

TEST_F(KestrelFile, LoadData_AfterACheckWithoutInfo_IsFalse) {
  C_KestrelFile file;
  ASSERT_TRUE(file.CheckFormat(WriteKestrel("a", Stream(3)).c_str(), false));
  EXPECT_FALSE(file.LoadData(true, nullptr, nullptr));
}

TEST_F(KestrelFile, LoadData_FileThatIsGone_IsFalse) {
  WriteKestrel("a", Stream(3));
  C_KestrelFile file;
  ASSERT_TRUE(file.OpenByName(Path("a").c_str()));
  std::filesystem::remove(Path("a"));
  EXPECT_FALSE(file.LoadData(true, nullptr, nullptr));
}

TEST_F(KestrelFile, LoadData_FileThatLostItsHeaderMeanwhile_IsReadWhole) {
  WriteKestrel("a", Stream(3));
  C_KestrelFile file;
  ASSERT_TRUE(file.OpenByName(Path("a").c_str()));
  Write("a", Stream(2));
  EXPECT_TRUE(file.LoadData(true, nullptr, nullptr));
  EXPECT_EQ(file.GetWavInfo()->GetByteLength(), 2u * 640);
}

TEST_F(KestrelFile, Load_AnotherFileWithTheSameObject_ReplacesEverything) {
  WriteKestrel("a", Stream(5));
  Write("b", C_SpBytes().Freq(8000).Stream(Stream(2)).Take());
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  ASSERT_TRUE(Load(file, "b"));
  EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), 8000u);
  EXPECT_EQ(file.GetWavInfo()->GetByteLength(), 2u * 640);
  EXPECT_EQ(BytesOfEncBuffer(file.GetWavData()), Stream(2));
}

TEST_F(KestrelFile, Load_IntoAnAttachedSound_FillsIt) {
  WriteKestrel("a", Stream(4));
  const C_SoundPtr sound(new C_WavData);
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  EXPECT_TRUE(Load(file, "a"));
  EXPECT_EQ(file.DetachWavData(), sound.get());
  EXPECT_EQ(sound->GetBufferLength(), 4u * 640);
}

TEST_F(KestrelFile, Sample_DecodesToFiveSecondsOfSpeech) {
  const auto root = std::filesystem::path(VOXPLAY_TEST_DATA).parent_path().parent_path();
  const std::string strSample = (root / "samples" / "Test.kst").string();
  C_KestrelFile file;
  ASSERT_TRUE(file.LoadByName(strSample.c_str(), true, nullptr, nullptr));
  EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), 16000u);
  EXPECT_EQ(file.GetWavInfo()->GetTimeLength(), 5040u);
  const auto samples = SamplesOf(file.GetWavData());
  EXPECT_GT(*std::max_element(samples.begin(), samples.end()), 10000);
  EXPECT_LT(*std::max_element(samples.begin(), samples.begin() + 3000), 200);
}

// ---- interface

TEST_F(KestrelFile, Operations_StandInTheirSlots) {
  const std::string strPath = WriteKestrel("a", Stream(4));
  C_KestrelFile file;
  const char* pszPath = strPath.c_str();
  ASSERT_TRUE(CallSlot<bool>(&file, 21, pszPath, true));
  EXPECT_EQ(file.GetContainerKind(), 0);
  ASSERT_TRUE(Load(file, "a"));
  g_lengths.clear();
  EXPECT_TRUE(CallSlot<bool>(&file, 22, true, static_cast<const char*>(nullptr), &RecordPiece));
  EXPECT_EQ(g_lengths.size(), 4u);
  const std::string strCopy = Path("b");
  EXPECT_TRUE(CallSlot<bool>(&file, 23, strCopy.c_str(), true, false,
                             static_cast<PFN_CodecProgress>(nullptr), false, 0u));
  EXPECT_EQ(Content("b"), Stream(4));
  C_RiffFile riff;
  EXPECT_TRUE(CallSlot<bool>(&file, 24, &riff));
  EXPECT_EQ(riff.GetChunkCount(), 1);
}

class C_SoundWithoutParameters : public C_WavData {
 public:
  I_AudioCodecParam* GetAudioCodecParam() override { return nullptr; }
};

TEST_F(KestrelFile, SoundWithoutCodecParameters_StopsTheProgram) {
  const std::string strPath = WriteKestrel("a", Stream(4));
  const C_SoundPtr sound(new C_SoundWithoutParameters);
  const auto voice = TestVoice(400);
  sound->SetBuffer(voice.data(), 800);
  sound->SetWavInfoData(16000, 800, 1, 16, 16, true);
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  const char* pszLine = "WaveFileLib/KestrelFile:[0-9]+: assertion failed: NULL != piParam";
  EXPECT_DEATH(file.LoadByName(strPath.c_str(), true, nullptr, nullptr), pszLine);
  EXPECT_DEATH(Save(file, "b", true), pszLine);
}

TEST_F(KestrelFile, FileThatGrowsTo4GiB_IsRefused) {
  const std::string strPath = WriteKestrel("a", Stream(2));
  C_KestrelFile file;
  EXPECT_TRUE(file.OpenByName(strPath.c_str()));
  std::filesystem::resize_file(strPath, 48 + 0x100000000ULL);
  EXPECT_FALSE(file.LoadData(true, nullptr, nullptr));
  EXPECT_FALSE(file.OpenByName(strPath.c_str()));
}

}  // namespace
