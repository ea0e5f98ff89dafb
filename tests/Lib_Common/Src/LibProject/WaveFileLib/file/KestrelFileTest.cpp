// SPDX-License-Identifier: Apache-2.0
//
// Kestrel files: recognising, loading, saving.
#include "file/KestrelFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "FileSizeLimit.h"
#include "FolderTest.h"
#include "KestrelBytes.h"
#include "RiffFile.h"
#include "SpBytes.h"
#include "TestSound.h"
#include "VTable.h"
#include "WavFileFormat.h"
#include "codec/KestrelCodec.h"
#include "file/SpHeader.h"

namespace {

using Bytes = std::vector<std::uint8_t>;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<unsigned int> g_lengths;
void RecordPiece(void*, unsigned int dwLength) { g_lengths.push_back(dwLength); }

std::vector<unsigned int> g_kinds;
void RecordProgress(const S_CodecProgress* pProgress) { g_kinds.push_back(pProgress->dwKind); }

Bytes Stream(std::size_t nFrames) { return C_KestrelBytes(16000).Voice(nFrames).Take(); }

Bytes BytesOfEncBuffer(I_WavData* pIWavData) {
  const std::uint8_t* pbyData = pIWavData->GetEncBuffer();
  return {pbyData, pbyData + pIWavData->GetEncBufferLen()};
}

// What the codec makes of a sound that is already 16-bit mono.
Bytes EncodedBy(I_WavData* pIWavData, unsigned int dwBitRate) {
  C_KestrelCodec codec;
  codec.LoadCodec(dwBitRate);
  unsigned char* pbyStream = nullptr;
  unsigned int dwLength = 0;
  EXPECT_TRUE(codec.Encode(pIWavData, dwBitRate, &pbyStream, &dwLength, nullptr));
  Bytes stream(pbyStream, pbyStream + dwLength);
  delete[] pbyStream;
  return stream;
}

class KestrelFile : public C_FolderTest {
 protected:
  std::string WriteKestrel(const std::string& strName, const Bytes& stream) {
    return Write(strName, C_SpBytes().Stream(stream).Take());
  }
  // Saves a sound with WriteFile, encoded and without a codec head.
  bool Save(C_KestrelFile& file, const std::string& strName, bool bForceEncode) {
    return file.WriteFile(Path(strName).c_str(), true, false, nullptr, bForceEncode, 0);
  }
  bool Load(C_KestrelFile& file, const std::string& strName) {
    return file.LoadByName(Path(strName).c_str(), true, nullptr, nullptr);
  }
};

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

// ---- saving

TEST_F(KestrelFile, WriteFile_WritesTheBareStreamWithoutAHeader) {
  const auto sound = MonoSound(TestVoice(16000));
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  ASSERT_TRUE(Save(file, "a", false));
  const Bytes bytes = Content("a");
  EXPECT_EQ(bytes, EncodedBy(sound.get(), 16000));
  EXPECT_EQ(Bytes(bytes.begin(), bytes.begin() + 6), (Bytes{0xD2, 0x07, 0, 0, 0x80, 0x3E}));
  EXPECT_EQ(GetSpFileID(Path("a").c_str()), 65535);
  file.DetachWavData();
}

TEST_F(KestrelFile, WriteFile_TakesTheBitRateOfTheCodecParameters) {
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(24000);
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, false, 0));
  EXPECT_EQ(Content("a"), EncodedBy(sound.get(), 24000));
  EXPECT_EQ(Content("a")[4], 0xC0);
  EXPECT_EQ(Content("a")[5], 0x5D);
}

TEST_F(KestrelFile, WriteFile_RefusedBitRate_IsFalseAndCreatesNothing) {
  const auto sound = MonoSound(TestVoice(2000));
  for (const unsigned int dwBitRate : {8000u, 4800u, 15000u, 81536u}) {
    sound->GetAudioCodecParam()->SetBitRate(dwBitRate);
    EXPECT_FALSE(
        sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, true, 0));
    EXPECT_THAT(Entries(), IsEmpty());
  }
}

TEST_F(KestrelFile, WriteFile_RefusedBitRate_LeavesAnOlderTargetAsItWas) {
  Write("a", {1, 2, 3});
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(8000);
  EXPECT_FALSE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, true, 0));
  EXPECT_EQ(Content("a"), (Bytes{1, 2, 3}));
}

TEST_F(KestrelFile, WriteFile_StoresForceEncodeWhateverItsResult) {
  C_KestrelFile file;
  EXPECT_FALSE(file.WriteFile(Path("a").c_str(), false, false, nullptr, true, 0));
  EXPECT_TRUE(file.IsForceEncode());
  EXPECT_FALSE(file.WriteFile(Path("a").c_str(), true, false, nullptr, false, 0));
  EXPECT_FALSE(file.IsForceEncode());
}

TEST_F(KestrelFile, WriteFile_WithoutASound_IsFalse) {
  C_KestrelFile file;
  EXPECT_FALSE(Save(file, "a", false));
  file.GetAudioCodecParam();  // makes an empty sound
  EXPECT_FALSE(Save(file, "a", true));
  EXPECT_THAT(Entries(), IsEmpty());
}

TEST_F(KestrelFile, WriteFile_EightBitSound_IsWidenedFirst) {
  const C_SoundPtr sound = ExampleSound({16000, 1, 8, 8}, 2000);
  const C_SoundPtr wide(sound->CreateBitsConvertedData(16, 16, true, true));
  ASSERT_TRUE(wide);
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, false, 0));
  EXPECT_EQ(Content("a"), EncodedBy(wide.get(), 16000));
  EXPECT_EQ(sound->GetWavInfo()->GetBitsPerSample(), 8);
  EXPECT_EQ(sound->GetBufferLength(), 2000u);
}

TEST_F(KestrelFile, WriteFile_StereoSound_IsConvertedToItsWidthBeforeItIsMixedDown) {
  const C_SoundPtr sound = ExampleSound({16000, 2, 16, 16}, 2000);
  const Bytes before(sound->GetBuffer(), sound->GetBuffer() + sound->GetBufferLength());
  const C_SoundPtr mixed(sound->CreateBitsConvertedData(16, 16, true, true));
  ASSERT_TRUE(mixed);
  mixed->ConvertToMono();
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, false, 0));
  EXPECT_EQ(Content("a"), EncodedBy(mixed.get(), 16000));
  EXPECT_EQ(sound->GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(Bytes(sound->GetBuffer(), sound->GetBuffer() + sound->GetBufferLength()), before);
}

TEST_F(KestrelFile, WriteFile_AfterALoad_WritesTheLoadedStreamEvenWhenThePcmWasChanged) {
  WriteKestrel("a", Stream(20));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  file.GetWavData()->ApplyGain(0.0, 0.0);
  file.GetAudioCodecParam()->SetBitRate(32000);
  ASSERT_TRUE(file.Convert(AUDIO_FILE_KESTREL, Path("b").c_str(), true, false, nullptr, false, 0));
  EXPECT_EQ(Content("b"), Stream(20));
  g_kinds.clear();
  ASSERT_TRUE(file.WriteFile(Path("c").c_str(), true, false, RecordProgress, false, 0));
  EXPECT_EQ(Content("c"), Stream(20));
  EXPECT_THAT(g_kinds, IsEmpty());
}

TEST_F(KestrelFile, WriteFile_ForcedAfterALoad_EncodesAgain) {
  WriteKestrel("a", Stream(20));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  file.GetAudioCodecParam()->SetBitRate(32000);
  ASSERT_TRUE(file.Convert(AUDIO_FILE_KESTREL, Path("b").c_str(), true, false, nullptr, true, 0));
  EXPECT_EQ(Content("b"), EncodedBy(file.GetWavData(), 32000));
}

TEST_F(KestrelFile, WriteFile_KestrelSoundWithoutItsStream_IsFalseAndCreatesNothing) {
  const auto sound = MonoSound(TestVoice(2000));
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  file.SetCodingType(AUDIO_FILE_KESTREL);
  EXPECT_FALSE(Save(file, "a", false));
  EXPECT_THAT(Entries(), IsEmpty());
  EXPECT_TRUE(Save(file, "a", true));
}

TEST_F(KestrelFile, WriteFile_ReportsProgress) {
  const auto sound = MonoSound(TestVoice(700));
  g_kinds.clear();
  ASSERT_TRUE(
      sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, RecordProgress, false, 0));
  EXPECT_THAT(g_kinds, ElementsAre(3, 4, 4, 4));
}

TEST_F(KestrelFile, WriteFile_ToAFullDisk_IsFalse) {
  const auto sound = MonoSound(TestVoice(2000));
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  EXPECT_FALSE(file.WriteFile("/dev/full", true, false, nullptr, false, 0));
  EXPECT_FALSE(file.WriteFile(Path("no/folder").c_str(), true, false, nullptr, false, 0));
  EXPECT_FALSE(file.WriteFile(nullptr, true, false, nullptr, false, 0));
}

TEST_F(KestrelFile, WriteFile_DiskFullAtEveryByte_IsFalse) {
  WriteKestrel("a", Stream(3));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  for (std::size_t cbLimit = 0; cbLimit < 126; ++cbLimit) {
    const C_FileSizeLimit limit(cbLimit);
    ASSERT_FALSE(Save(file, "b", false)) << cbLimit;
  }
  const C_FileSizeLimit limit(126);
  EXPECT_TRUE(Save(file, "b", false));
}

TEST_F(KestrelFile, SaveThenPrependThenLoad_GivesTheSoundBack) {
  const auto voice = TestVoice(16000);
  const auto sound = MonoSound(voice);
  sound->GetAudioCodecParam()->SetBitRate(32000);
  ASSERT_TRUE(sound->Convert(AUDIO_FILE_KESTREL, Path("a").c_str(), true, false, nullptr, true, 0));
  C_SpHeader header;
  header.SetID(AUDIO_FILE_KESTREL);
  header.SetFreq(16000);
  ASSERT_TRUE(PrependSpHeader(header, Path("a").c_str()));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  EXPECT_GT(Likeness(voice, SamplesOf(file.GetWavData()), 0), 0.98);
}

// ---- chunk for containers

TEST_F(KestrelFile, WriteDataChunk_AddsTheStreamAsVdat) {
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(7200);
  C_KestrelFile file;
  file.AttachWavData(sound.get());
  C_RiffFile riff;
  ASSERT_TRUE(file.WriteDataChunk(&riff));
  ASSERT_EQ(riff.GetChunkCount(), 1);
  const Bytes stream = EncodedBy(sound.get(), 7200);
  C_RiffChunk* pChunk = riff.FindChunk("vdat", 0);
  ASSERT_NE(pChunk, nullptr);
  ASSERT_EQ(pChunk->GetDataLength(), stream.size());
  Bytes stored(stream.size());
  EXPECT_TRUE(pChunk->GetData(stored.data(), pChunk->GetDataLength(), 0));
  EXPECT_EQ(stored, stream);
}

TEST_F(KestrelFile, WriteDataChunk_AfterALoad_AddsTheLoadedStream) {
  WriteKestrel("a", Stream(20));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  C_RiffFile riff;
  ASSERT_TRUE(file.WriteDataChunk(&riff));
  ASSERT_TRUE(riff.Save(Path("b").c_str(), "VEFF"));
  const Bytes saved = Content("b");
  EXPECT_EQ(Bytes(saved.begin() + 20, saved.end()), Stream(20));
}

TEST_F(KestrelFile, WriteDataChunk_UsesTheForceEncodeOfTheLastWriteFile) {
  WriteKestrel("a", Stream(20));
  C_KestrelFile file;
  ASSERT_TRUE(Load(file, "a"));
  file.GetAudioCodecParam()->SetBitRate(32000);
  ASSERT_TRUE(Save(file, "b", true));
  C_RiffFile riff;
  ASSERT_TRUE(file.WriteDataChunk(&riff));
  EXPECT_EQ(riff.GetChunkAt(0)->GetDataLength(), Content("b").size());
}

TEST_F(KestrelFile, WriteDataChunk_WithoutStreamOrContainer_IsFalse) {
  C_KestrelFile file;
  C_RiffFile riff;
  EXPECT_FALSE(file.WriteDataChunk(&riff));
  const auto sound = MonoSound(TestVoice(2000));
  sound->GetAudioCodecParam()->SetBitRate(8000);
  file.AttachWavData(sound.get());
  EXPECT_FALSE(file.WriteDataChunk(&riff));
  EXPECT_FALSE(file.WriteDataChunk(nullptr));
  EXPECT_EQ(riff.GetChunkCount(), 0);
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

// ---- encoding and decoding together

class KestrelAlignment : public testing::TestWithParam<unsigned int> {
 protected:
  static std::vector<short> RoundTrip(const std::vector<short>& samples) {
    const auto sound = MonoSound(samples);
    const Bytes stream = EncodedBy(sound.get(), GetParam());
    const C_SoundPtr decoded(new C_WavData);
    C_KestrelCodec codec;
    codec.LoadCodec(GetParam());
    EXPECT_TRUE(codec.Decode(stream.data(), static_cast<unsigned int>(stream.size()), decoded.get(),
                             nullptr));
    return SamplesOf(decoded.get());
  }
};

TEST_P(KestrelAlignment, EncodeThenDecode_IsAlignedInTime) {
  for (const std::size_t dwSamples : {16000u, 16123u}) {
    const auto voice = TestVoice(dwSamples);
    const auto decoded = RoundTrip(voice);
    EXPECT_EQ(decoded.size(), (dwSamples + 319) / 320 * 320);
    EXPECT_EQ(BestLag(voice, decoded, 400), 0);
    EXPECT_GT(Likeness(voice, decoded, 0), GetParam() >= 16000 ? 0.97 : 0.9);
  }
}

TEST_P(KestrelAlignment, EncodeThenDecodeOfLessThanAFrame_IsOneFrameLate) {
  const auto voice = TestVoice(319);
  const auto decoded = RoundTrip(voice);
  EXPECT_EQ(decoded.size(), 640u);
  EXPECT_EQ(BestLag(voice, decoded, 400), 320);
}

INSTANTIATE_TEST_SUITE_P(EncodeRates, KestrelAlignment,
                         testing::Values(7200u, 9600u, 12000u, 14400u, 16000u, 20000u, 24000u,
                                         32000u));

}  // namespace
