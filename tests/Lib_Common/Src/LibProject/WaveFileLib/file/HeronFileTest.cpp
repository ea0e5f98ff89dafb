// SPDX-License-Identifier: Apache-2.0
//
// Heron files with an SP header: recognising, loading, saving. HeronVefTest.cpp tests containers.
#include "file/HeronFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <type_traits>

#include "FileSizeLimit.h"
#include "FolderTest.h"
#include "HeronBytes.h"
#include "RiffFile.h"
#include "SpBytes.h"
#include "VTable.h"
#include "WavFileFormat.h"
#include "file/KestrelFile.h"
#include "file/SpHeader.h"

namespace {

using heron::test::Bytes;
using heron::test::Encoded;
using heron::test::kKinds;
using heron::test::S_Kind;
using testing::ElementsAre;
using testing::IsEmpty;

int g_nPieces = 0;
void CountPiece(void*, unsigned int) { ++g_nPieces; }

std::vector<unsigned int> g_values;
void RecordProgress(const S_CodecProgress* pProgress) { g_values.push_back(pProgress->dwValue); }

Bytes Stream(const S_Kind& kind, std::size_t dwSamples = 700, int nSampleRate = 8000) {
  return C_HeronBytes(kind, TestVoice(dwSamples), nSampleRate).Take();
}

Bytes EncodedFormOf(I_WavData* pIWavData) {
  const std::uint8_t* pbyData = pIWavData->GetEncBuffer();
  return {pbyData, pbyData + pIWavData->GetEncBufferLen()};
}

std::unique_ptr<C_HeronFileBase> MakeFile(tagAudioFileType eType) {
  switch (eType) {
    case AUDIO_FILE_HERON_2BIT:
      return std::make_unique<C_Heron2BitFile>();
    case AUDIO_FILE_HERON_3BIT:
      return std::make_unique<C_Heron3BitFile>();
    case AUDIO_FILE_HERON_4BIT:
      return std::make_unique<C_Heron4BitFile>();
    case AUDIO_FILE_HERON_5BIT:
      return std::make_unique<C_Heron5BitFile>();
    default:
      return std::make_unique<C_Heron6BitFile>();
  }
}

class HeronFile : public C_FolderTest {
 protected:
  std::string WriteHeron(std::uint16_t wID, const Bytes& stream, std::uint32_t dwRate = 8000) {
    return Write("in", C_SpBytes().ID(wID).Freq(dwRate).Stream(stream).Take());
  }
  bool Load(C_HeronFileBase& file) {
    return file.LoadByName(Path("in").c_str(), false, nullptr, nullptr);
  }
  bool Save(I_WavFile& file, const std::string& strName, bool bForceEncode) {
    return file.WriteFile(Path(strName).c_str(), true, false, nullptr, bForceEncode, 0);
  }
  bool Convert(I_WavData& sound, tagAudioFileType eType, const std::string& strName,
               bool bWriteCodecHead = false) {
    return sound.Convert(eType, Path(strName).c_str(), true, bWriteCodecHead, nullptr, false, 0);
  }
  C_WavFilePtr Create(bool bKeepEncoded = true) {
    C_WavFileFormat format;
    return C_WavFilePtr(
        format.CreateWavFile(Path("in").c_str(), true, bKeepEncoded, nullptr, nullptr));
  }
};

// Every file class must pass these tests.
class HeronKind : public HeronFile, public testing::WithParamInterface<S_Kind> {
 protected:
  std::unique_ptr<C_HeronFileBase> m_file = MakeFile(GetParam().eType);
};
INSTANTIATE_TEST_SUITE_P(Kinds, HeronKind, testing::ValuesIn(kKinds), heron::test::NameOf);

// ---- recognising

TEST_P(HeronKind, NewObject_IsNotOpenedAndLoadsNothing) {
  EXPECT_EQ(m_file->GetContainerKind(), -1);
  EXPECT_FALSE(m_file->IsForceEncode());
  EXPECT_EQ(m_file->GetCodingType(), 0u);
  EXPECT_EQ(m_file->GetFileFormat(), AUDIO_FILE_UNKNOWN);
  EXPECT_FALSE(m_file->LoadData(true, nullptr, nullptr));
  EXPECT_FALSE(m_file->LoadData(false, nullptr, nullptr));
  const C_SoundPtr sound(new C_WavData);
  m_file->AttachWavData(sound.get());
  EXPECT_FALSE(m_file->LoadData(false, nullptr, nullptr));
}

TEST_P(HeronKind, SpHeaderOfFourFiveOrSixBits_IsAccepted) {
  for (const std::uint16_t wID : {std::uint16_t{32}, std::uint16_t{33}, std::uint16_t{34}}) {
    const std::string strPath = WriteHeron(wID, Stream(GetParam()), 11025);
    ASSERT_TRUE(m_file->CheckFormat(strPath.c_str(), true)) << wID;
    EXPECT_EQ(m_file->GetContainerKind(), 0);
    EXPECT_EQ(m_file->GetCodingType(), wID);
    EXPECT_EQ(m_file->GetWavInfo()->GetSampleRate(), 11025u);
    EXPECT_EQ(m_file->GetWavInfo()->GetByteLength(), 0u);
    EXPECT_EQ(m_file->GetWavInfo()->GetChannels(), 1);
    EXPECT_EQ(m_file->GetWavInfo()->GetBitsPerSample(), 16);
    EXPECT_EQ(m_file->GetWavInfo()->GetStoreBitsPerSample(), 16);
    EXPECT_TRUE(m_file->GetWavInfo()->IsValueSigned());
  }
}

TEST_P(HeronKind, SpHeaderOfTwoOrThreeBits_IsRefused) {
  for (const std::uint16_t wID : {std::uint16_t{35}, std::uint16_t{36}}) {
    const std::string strPath = WriteHeron(wID, Stream(GetParam()));
    EXPECT_FALSE(m_file->CheckFormat(strPath.c_str(), true)) << wID;
    EXPECT_EQ(m_file->GetContainerKind(), -1);
    EXPECT_EQ(m_file->GetCodingType(), 0u);
    EXPECT_EQ(Create(), nullptr) << wID;
  }
}

TEST_P(HeronKind, OtherIdentifiers_AreRefused) {
  for (const std::uint16_t wID :
       std::initializer_list<std::uint16_t>{0, 14, 31, 37, 0x2000, 0x8001, 0xFFFE}) {
    EXPECT_FALSE(m_file->CheckFormat(WriteHeron(wID, Stream(GetParam())).c_str(), true)) << wID;
    EXPECT_EQ(m_file->GetContainerKind(), -1);
  }
}

TEST_P(HeronKind, CheckFormatWithoutInfo_SetsOnlyTheKind) {
  const std::string strPath = WriteHeron(33, Stream(GetParam()));
  ASSERT_TRUE(m_file->CheckFormat(strPath.c_str(), false));
  EXPECT_EQ(m_file->GetContainerKind(), 0);
  EXPECT_EQ(m_file->GetCodingType(), 0u);
  EXPECT_EQ(m_file->GetWavData(), nullptr);
}

TEST_P(HeronKind, WhatHasNoHeader_IsRefused) {
  EXPECT_FALSE(m_file->CheckFormat(Write("in", {}).c_str(), true));
  EXPECT_FALSE(m_file->CheckFormat(Write("in", C_SpBytes().ID(32).Take(21)).c_str(), true));
  EXPECT_FALSE(m_file->CheckFormat(Path("missing").c_str(), true));
  EXPECT_FALSE(m_file->CheckFormat(nullptr, true));
}

TEST_P(HeronKind, BareStream_IsOpenedByNoClass) {
  const C_SoundPtr sound = MonoSound(TestVoice(700), 8000);
  ASSERT_TRUE(Convert(*sound, GetParam().eType, "in"));
  EXPECT_FALSE(m_file->CheckFormat(Path("in").c_str(), true));
  EXPECT_EQ(GetSpFileID(Path("in").c_str()), 65535);
  EXPECT_EQ(Create(), nullptr);
}

// ---- loading

TEST_P(HeronKind, Load_DecodesAnyVariantAndKeepsTheStream) {
  for (const S_Kind& kind : kKinds) {
    const Bytes stream = Stream(kind, 1111, 16000);
    const std::string strPath = WriteHeron(34, stream, 16000);
    ASSERT_TRUE(Load(*m_file)) << kind.nBitDepth;
    EXPECT_EQ(SamplesOf(m_file->GetWavData()), heron::test::Decoded(stream, 16000));
    EXPECT_EQ(m_file->GetWavInfo()->GetSampleSize(), 1111u);
    EXPECT_EQ(EncodedFormOf(m_file->GetWavData()), stream);
    EXPECT_EQ(m_file->GetWavData()->GetEncType(), AUDIO_FILE_HERON_6BIT);
    EXPECT_EQ(m_file->GetCodingType(), 34u);
    EXPECT_EQ(m_file->GetFileName(), strPath);
    EXPECT_EQ(m_file->GetWavData()->GetEventTagMgr()->GetSampleRate(), 16000u);
  }
}

TEST_F(HeronFile, Load_HandsOutNoPieces) {
  WriteHeron(32, Stream(kKinds[0]));
  g_nPieces = 0;
  C_Heron4BitFile file;
  EXPECT_TRUE(file.LoadByName(Path("in").c_str(), true, "option", CountPiece));
  EXPECT_EQ(g_nPieces, 0);
  EXPECT_EQ(file.GetWavInfo()->GetSampleSize(), 700u);
}

TEST_F(HeronFile, Load_RatesThatTheCodecDoesNotTake_AreFalse) {
  for (const std::uint32_t dwRate : {0u, 3999u, 48001u, 0xFFFFFFFFu}) {
    WriteHeron(32, Stream(kKinds[0]), dwRate);
    C_Heron4BitFile file;
    EXPECT_TRUE(file.OpenByName(Path("in").c_str()));
    EXPECT_FALSE(Load(file)) << dwRate;
  }
}

TEST_F(HeronFile, Load_DamagedStreams_AreFalse) {
  C_Heron4BitFile file;
  for (const Bytes& stream : {Bytes{}, Bytes{1}, Bytes{1, 0, 0, 0}, Bytes{9, 0, 0, 0, 1, 2, 3}}) {
    WriteHeron(32, stream);
    EXPECT_TRUE(file.OpenByName(Path("in").c_str()));
    EXPECT_FALSE(Load(file));
  }
}

// A sound of three blocks at 8 kHz.
TEST_F(HeronFile, Load_StreamWithADamagedBlock_HasSilenceThere) {
  constexpr std::size_t kBlock = heron::BlockLength(8000);
  Bytes stream = Stream(kKinds[0], 2 * kBlock + 500);
  auto expected = *heron::test::Decoded(stream, 8000);
  stream[stream.size() * 3 / 4] ^= 0x20;
  std::fill_n(expected.begin() + kBlock, kBlock, short{0});
  WriteHeron(32, stream);
  C_Heron4BitFile file;
  ASSERT_TRUE(Load(file));
  EXPECT_EQ(SamplesOf(file.GetWavData()), expected);
  // The stream itself is kept as it was found.
  ASSERT_TRUE(Save(file, "out", false));
  EXPECT_EQ(Content("out"), stream);
}

TEST_F(HeronFile, Load_CutStream_EndsWithItsLastWholeBlock) {
  constexpr std::size_t kBlock = heron::BlockLength(8000);
  Bytes stream = Stream(kKinds[0], 2 * kBlock + 500);
  auto expected = *heron::test::Decoded(stream, 8000);
  stream.pop_back();
  expected.resize(2 * kBlock);
  WriteHeron(32, stream);
  C_Heron4BitFile file;
  ASSERT_TRUE(Load(file));
  EXPECT_EQ(SamplesOf(file.GetWavData()), expected);
  stream.resize(stream.size() / 4);
  WriteHeron(32, stream);
  EXPECT_TRUE(file.OpenByName(Path("in").c_str()));
  EXPECT_FALSE(Load(file));
}

TEST_F(HeronFile, Load_OlderSignatureText_Works) {
  Write("in",
        C_SpBytes().ID(33).Text("ORBITAL SPEECH").Freq(8000).Stream(Stream(kKinds[1])).Take());
  C_Heron5BitFile file;
  EXPECT_TRUE(Load(file));
}

TEST_F(HeronFile, Load_Version255_ReadsTheStreamTwoBytesEarlyAndFails) {
  Write("in", C_SpBytes().ID(32).Version(255).Gap(0).Freq(8000).Stream(Stream(kKinds[0])).Take());
  C_Heron4BitFile file;
  EXPECT_TRUE(file.OpenByName(Path("in").c_str()));
  EXPECT_FALSE(Load(file));
  EXPECT_EQ(file.GetWavData()->GetEncBufferLen(), Stream(kKinds[0]).size() + 2);
}

TEST_F(HeronFile, Load_FileThatIsGone_IsFalse) {
  C_Heron4BitFile file;
  ASSERT_TRUE(file.OpenByName(WriteHeron(32, Stream(kKinds[0])).c_str()));
  std::filesystem::remove(Path("in"));
  EXPECT_FALSE(file.LoadData(false, nullptr, nullptr));
}

TEST_F(HeronFile, Load_AfterACheckWithoutInfo_IsFalse) {
  C_Heron4BitFile file;
  ASSERT_TRUE(file.CheckFormat(WriteHeron(32, Stream(kKinds[0])).c_str(), false));
  EXPECT_FALSE(file.LoadData(false, nullptr, nullptr));
}

// ---- the factory

TEST_F(HeronFile, Factory_MakesAFourBitFileOfEveryIdentifierThatItTakes) {
  for (const S_Kind& kind : kKinds) {
    if (kind.eType > 34) continue;
    WriteHeron(static_cast<std::uint16_t>(kind.eType), Stream(kind));
    const C_WavFilePtr file = Create();
    ASSERT_NE(dynamic_cast<C_Heron4BitFile*>(file.get()), nullptr) << kind.nBitDepth;
    EXPECT_EQ(file->GetCodingType(), static_cast<unsigned int>(kind.eType));
    EXPECT_EQ(file->GetWavInfo()->GetSampleSize(), 700u);
  }
}

TEST_F(HeronFile, Factory_LeavesKestrelFilesToTheirOwnClass) {
  const C_SoundPtr sound = MonoSound(TestVoice(700));
  ASSERT_TRUE(Convert(*sound, AUDIO_FILE_KESTREL, "in"));
  C_SpHeader header;
  header.SetID(AUDIO_FILE_KESTREL);
  header.SetFreq(16000);
  ASSERT_TRUE(PrependSpHeader(header, Path("in").c_str()));
  const C_WavFilePtr file = Create();
  EXPECT_NE(dynamic_cast<C_KestrelFile*>(file.get()), nullptr);
}

TEST_F(HeronFile, Factory_OpensTheFormatWithoutItsSamples) {
  C_WavFileFormat format;
  const C_WavFilePtr file(format.OpenWavFile(WriteHeron(32, Stream(kKinds[0])).c_str()));
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 0u);
  EXPECT_EQ(file->GetFileLength(), 48u + Stream(kKinds[0]).size());
}

// ---- saving

TEST_P(HeronKind, WriteFile_WritesTheStreamOfItsVariant) {
  const C_SoundPtr sound = MonoSound(TestVoice(700), 8000);
  m_file->AttachWavData(sound.get());
  ASSERT_TRUE(Save(*m_file, "out", false));
  EXPECT_EQ(Content("out"), Stream(GetParam()));
  EXPECT_EQ(m_file->GetTargetType(), GetParam().eType);
}

TEST_P(HeronKind, Convert_WritesTheStreamOfItsVariant) {
  const C_SoundPtr sound = ExampleSound({11025, 2, 16, 16}, 700);
  AddAnnotations(*sound);
  ASSERT_TRUE(Convert(*sound, GetParam().eType, "out"));
  EXPECT_EQ(Content("out"), Encoded(*sound, GetParam().eType));
  EXPECT_EQ(Content("out")[0], GetParam().byMode);
}

TEST_P(HeronKind, WriteFile_WithACodecHead_BeginsWithTypeAndRate) {
  const C_SoundPtr sound = MonoSound(TestVoice(700), 8000);
  ASSERT_TRUE(Convert(*sound, GetParam().eType, "out", true));
  const auto byType = static_cast<std::uint8_t>(GetParam().eType);
  Bytes expected = {byType, 0, 0x40, 0x1F, 0, 0};
  const Bytes stream = Stream(GetParam());
  expected.insert(expected.end(), stream.begin(), stream.end());
  EXPECT_EQ(Content("out"), expected);
}

TEST_P(HeronKind, SaveThenPrependThenLoad_GivesTheSoundBack) {
  const auto voice = TestVoice(8000);
  ASSERT_TRUE(Convert(*MonoSound(voice, 16000), GetParam().eType, "in"));
  C_SpHeader header;
  header.SetID(32);
  header.SetFreq(16000);
  ASSERT_TRUE(PrependSpHeader(header, Path("in").c_str()));
  ASSERT_TRUE(Load(*m_file));
  EXPECT_GT(Likeness(voice, SamplesOf(m_file->GetWavData()), 0), 0.95);
}

TEST_F(HeronFile, ExistingStream_IsWrittenEvenWhenThePcmWasChanged) {
  WriteHeron(33, Stream(kKinds[1]));
  C_Heron5BitFile file;
  ASSERT_TRUE(Load(file));
  file.GetWavData()->ApplyGain(0.0, 0.0);
  g_values.clear();
  ASSERT_TRUE(file.WriteFile(Path("out").c_str(), true, false, RecordProgress, false, 0));
  EXPECT_EQ(Content("out"), Stream(kKinds[1]));
  EXPECT_THAT(g_values, IsEmpty());
  ASSERT_TRUE(Convert(*file.GetWavData(), AUDIO_FILE_HERON_5BIT, "other"));
  EXPECT_EQ(Content("other"), Stream(kKinds[1]));
}

TEST_F(HeronFile, ForcedEncoding_MakesANewStream) {
  WriteHeron(33, Stream(kKinds[1]));
  C_Heron5BitFile file;
  ASSERT_TRUE(Load(file));
  file.GetWavData()->ApplyGain(0.0, 0.0);
  ASSERT_TRUE(Save(file, "out", true));
  EXPECT_EQ(Content("out"), Encoded(*file.GetWavData(), 33));
  EXPECT_NE(Content("out"), Stream(kKinds[1]));
}

TEST_F(HeronFile, StreamOfAnotherVariant_IsNotReused) {
  WriteHeron(33, Stream(kKinds[1]));
  C_Heron5BitFile file;
  ASSERT_TRUE(Load(file));
  ASSERT_TRUE(Convert(*file.GetWavData(), AUDIO_FILE_HERON_6BIT, "out"));
  EXPECT_EQ(Content("out"), Encoded(*file.GetWavData(), 34));
}

TEST_F(HeronFile, CodingTypeWithoutItsStream_IsFalseAndCreatesNothing) {
  const C_SoundPtr sound = MonoSound(TestVoice(700), 8000);
  C_Heron4BitFile file;
  file.AttachWavData(sound.get());
  file.SetCodingType(32);
  EXPECT_FALSE(Save(file, "out", false));
  EXPECT_THAT(Entries(), IsEmpty());
  EXPECT_TRUE(Save(file, "out", true));
}

TEST_F(HeronFile, SoundsThatCannotBeEncoded_AreFalseAndLeaveAnOlderFile) {
  Write("out", {1, 2, 3});
  EXPECT_FALSE(Convert(*MonoSound(TestVoice(700), 3999), AUDIO_FILE_HERON_4BIT, "out"));
  EXPECT_FALSE(Convert(*MonoSound({}, 8000), AUDIO_FILE_HERON_4BIT, "out"));
  C_Heron4BitFile file;
  EXPECT_FALSE(Save(file, "out", true));
  EXPECT_EQ(Content("out"), (Bytes{1, 2, 3}));
}

TEST_F(HeronFile, WriteFile_ReportsTheGroups) {
  const C_SoundPtr sound = MonoSound(TestVoice(33 * 160), 8000);
  g_values.clear();
  ASSERT_TRUE(sound->Convert(AUDIO_FILE_HERON_2BIT, Path("out").c_str(), true, false,
                             RecordProgress, false, 0));
  EXPECT_THAT(g_values, ElementsAre(1, 2));
}

TEST_F(HeronFile, WriteFile_StoresForceEncodeWhateverItsResult) {
  C_Heron4BitFile file;
  EXPECT_FALSE(Save(file, "out", true));
  EXPECT_TRUE(file.IsForceEncode());
  EXPECT_FALSE(Save(file, "out", false));
  EXPECT_FALSE(file.IsForceEncode());
}

TEST_F(HeronFile, WriteFile_DiskFullAtEveryByte_IsFalse) {
  WriteHeron(32, Stream(kKinds[0], 100));
  C_Heron4BitFile file;
  ASSERT_TRUE(Load(file));
  const std::size_t cbStream = file.GetWavData()->GetEncBufferLen();
  for (std::size_t cbLimit = 0; cbLimit < cbStream; ++cbLimit) {
    const C_FileSizeLimit limit(cbLimit);
    ASSERT_FALSE(Save(file, "out", false)) << cbLimit;
  }
  EXPECT_FALSE(file.WriteFile("/dev/full", true, false, nullptr, false, 0));
  EXPECT_FALSE(file.WriteFile(Path("no/folder").c_str(), true, false, nullptr, false, 0));
  const C_FileSizeLimit limit(cbStream);
  EXPECT_TRUE(Save(file, "out", false));
}

// ---- chunk for containers

TEST_P(HeronKind, WriteDataChunk_AddsTheStreamAsVdat) {
  const C_SoundPtr sound = MonoSound(TestVoice(700), 8000);
  m_file->AttachWavData(sound.get());
  C_RiffFile riff;
  ASSERT_TRUE(m_file->WriteDataChunk(&riff));
  C_RiffChunk* pChunk = riff.FindChunk("vdat", 0);
  ASSERT_NE(pChunk, nullptr);
  Bytes stored(pChunk->GetDataLength());
  EXPECT_TRUE(pChunk->GetData(stored.data(), pChunk->GetDataLength(), 0));
  EXPECT_EQ(stored, Stream(GetParam()));
}

TEST_F(HeronFile, WriteDataChunk_WithoutStreamOrContainer_IsFalse) {
  C_Heron4BitFile file;
  C_RiffFile riff;
  EXPECT_FALSE(file.WriteDataChunk(&riff));
  const C_SoundPtr sound = MonoSound(TestVoice(700), 3999);
  file.AttachWavData(sound.get());
  EXPECT_FALSE(file.WriteDataChunk(&riff));
  EXPECT_FALSE(file.WriteDataChunk(nullptr));
  EXPECT_EQ(riff.GetChunkCount(), 0);
}

// ---- interface

TEST_F(HeronFile, Variants_AreOfOneBase) {
  EXPECT_TRUE((std::is_base_of_v<C_HeronFileBase, C_Heron2BitFile>));
  EXPECT_TRUE((std::is_base_of_v<C_HeronFileBase, C_Heron3BitFile>));
  EXPECT_TRUE((std::is_base_of_v<C_HeronFileBase, C_Heron4BitFile>));
  EXPECT_TRUE((std::is_base_of_v<C_HeronFileBase, C_Heron5BitFile>));
  EXPECT_TRUE((std::is_base_of_v<C_HeronFileBase, C_Heron6BitFile>));
  EXPECT_TRUE((std::is_base_of_v<C_WavFileBase, C_HeronFileBase>));
  EXPECT_EQ(sizeof(C_Heron2BitFile), sizeof(C_HeronFileBase));
}

TEST_F(HeronFile, Operations_StandInTheirSlots) {
  const std::string strPath = WriteHeron(32, Stream(kKinds[0]));
  C_Heron4BitFile file;
  const char* pszPath = strPath.c_str();
  ASSERT_TRUE(CallSlot<bool>(&file, 21, pszPath, true));
  EXPECT_EQ(file.GetContainerKind(), 0);
  ASSERT_TRUE(file.OpenByName(pszPath));
  EXPECT_TRUE(CallSlot<bool>(&file, 22, false, static_cast<const char*>(nullptr),
                             static_cast<PFN_DecodedData>(nullptr)));
  EXPECT_EQ(file.GetWavInfo()->GetSampleSize(), 700u);
  const std::string strCopy = Path("out");
  EXPECT_TRUE(CallSlot<bool>(&file, 23, strCopy.c_str(), true, false,
                             static_cast<PFN_CodecProgress>(nullptr), false, 0u));
  EXPECT_EQ(Content("out"), Stream(kKinds[0]));
  C_RiffFile riff;
  EXPECT_TRUE(CallSlot<bool>(&file, 24, &riff));
  EXPECT_EQ(riff.GetChunkCount(), 1);
}

class C_SoundWithoutParameters : public C_WavData {
 public:
  I_AudioCodecParam* GetAudioCodecParam() override { return nullptr; }
};

TEST_F(HeronFile, EncodingWithoutCodecParameters_StopsTheProgram) {
  const C_SoundPtr sound(new C_SoundWithoutParameters);
  const auto voice = TestVoice(400);
  sound->SetBuffer(voice.data(), 800);
  sound->SetWavInfoData(8000, 800, 1, 16, 16, true);
  C_Heron4BitFile file;
  file.AttachWavData(sound.get());
  EXPECT_DEATH(Save(file, "out", true),
               "WaveFileLib/HeronFile:[0-9]+: assertion failed: NULL != piParam");
}

}  // namespace
