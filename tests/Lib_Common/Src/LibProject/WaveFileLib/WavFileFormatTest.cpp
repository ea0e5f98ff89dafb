// SPDX-License-Identifier: Apache-2.0
#include "WavFileFormat.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "OpenFiles.h"
#include "TempFolder.h"
#include "VTable.h"
#include "WavBytes.h"
#include "WavFileObject.h"
#include "file/HeronFile.h"
#include "file/KestrelFile.h"
#include "file/SpHeader.h"
#include "sound/AudioCodecParam.h"
#include "sound/WavFileMaker.h"

namespace {

class WavFileFormat : public testing::Test {
 protected:
  std::string File(const C_Bytes& bytes) { return m_folder.Write("file", bytes); }
  std::string File(const C_RiffBytes& riff) { return File(riff.Take()); }
  C_WavFilePtr Create(const std::string& strPath) {
    return C_WavFilePtr(m_format.CreateWavFile(strPath.c_str(), true, true, nullptr, nullptr));
  }
  C_WavFilePtr Open(const std::string& strPath) {
    return C_WavFilePtr(m_format.OpenWavFile(strPath.c_str()));
  }
  tagAudioFileType Format(const std::string& strPath) {
    return m_format.GetFileFormat(strPath.c_str());
  }
  bool IsSupported(const C_RiffBytes& riff) {
    return m_format.IsSupportedFormat(File(riff).c_str());
  }

  C_TempFolder m_folder;
  C_WavFileFormat m_format;
};

// An SP header with this identifier, followed by a stream.
C_Bytes SpFile(std::uint16_t wID, const C_Bytes& stream) {
  return Join({U32(0xFF00FF00),
               Ascii("VOXELTRONIC SP"),
               U16(0),
               {254, 2},
               U16(wID),
               U16(16),
               U32(16000),
               U32(0),
               U16(0),
               {0},
               U32(0),
               C_Bytes(7),
               stream});
}

// A Kestrel stream at 16,000 bit/s with nFrames frames of zero words and dwExtra more bytes.
C_Bytes KestrelStream(std::uint32_t nFrames, std::uint32_t dwExtra = 0) {
  const std::uint32_t dwWords = nFrames * 40 + dwExtra;
  return Join({U32(2 + dwWords), U16(16000), C_Bytes(dwWords)});
}

C_RiffBytes WithTag(std::uint16_t wTag) {
  C_RiffBytes riff("WAVE");
  return riff.Chunk("fmt ", FmtBytes(wTag, 1, 8000, 16)).Chunk("data", RampBytes(8));
}

}  // namespace

TEST_F(WavFileFormat, Kinds_HaveTheNumbersThatFilesCarry) {
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_KESTREL), 14u);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_HERON_4BIT), 32u);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_HERON_5BIT), 33u);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_HERON_6BIT), 34u);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_HERON_2BIT), 35u);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_HERON_3BIT), 36u);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_VEMD), 0x1101u);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_WAVE), 0x8001u);
  EXPECT_EQ(static_cast<unsigned int>(AUDIO_FILE_UNKNOWN), 0xFFFFu);
  EXPECT_EQ(sizeof(tagAudioFileType), 4u);
}

TEST_F(WavFileFormat, SpHeadersIdentifier_IsTheKindWhateverItIs) {
  EXPECT_EQ(Format(File(SpFile(14, KestrelStream(1)))), AUDIO_FILE_KESTREL);
  for (const std::uint16_t wID :
       std::initializer_list<std::uint16_t>{0, 7, 32, 36, 0x1101, 0x8001, 0xFFFE, 0xFFFF}) {
    EXPECT_EQ(static_cast<unsigned int>(Format(File(SpFile(wID, {})))), wID);
  }
}

TEST_F(WavFileFormat, RiffSoundFiles_AreWaveFiles) {
  EXPECT_EQ(Format(File(MonoWav(8))), AUDIO_FILE_WAVE);
}

TEST_F(WavFileFormat, VemdFile_IsAWaveFileToDetection) {
  const std::string strPath = File(MonoWav(8, "VEMD"));
  EXPECT_EQ(Format(strPath), AUDIO_FILE_WAVE);
  const C_WavFilePtr file = Create(strPath);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->GetFileFormat(), AUDIO_FILE_VEMD);
}

TEST_F(WavFileFormat, AnyOtherFile_IsUnknown) {
  EXPECT_EQ(Format(File(MonoWav(8, "VEFF"))), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(Format(File(WithTag(0x0011))), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(Format(File(Ascii("some text"))), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(Format(File(C_Bytes{})), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(Format(m_folder.Path()), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(Format(m_folder.Path("missing")), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(m_format.GetFileFormat(nullptr), AUDIO_FILE_UNKNOWN);
}

TEST_F(WavFileFormat, IsFileFormat_KnowsOnlyWave) {
  const std::string strWave = File(MonoWav(8));
  const std::string strKestrel = m_folder.Write("k", SpFile(14, KestrelStream(1)));
  const std::string strVemd = m_folder.Write("v", MonoWav(8, "VEMD").Take());
  EXPECT_TRUE(m_format.IsFileFormat(strWave.c_str(), AUDIO_FILE_WAVE));
  EXPECT_TRUE(m_format.IsFileFormat(strVemd.c_str(), AUDIO_FILE_WAVE));
  EXPECT_FALSE(m_format.IsFileFormat(strKestrel.c_str(), AUDIO_FILE_WAVE));
  for (unsigned int dwType = 0; dwType <= 0x10000; ++dwType) {
    const auto eType = static_cast<tagAudioFileType>(dwType);
    if (eType == AUDIO_FILE_WAVE) continue;
    ASSERT_FALSE(m_format.IsFileFormat(strWave.c_str(), eType)) << dwType;
    ASSERT_FALSE(m_format.IsFileFormat(strVemd.c_str(), eType)) << dwType;
    ASSERT_FALSE(m_format.IsFileFormat(strKestrel.c_str(), eType)) << dwType;
  }
}

TEST_F(WavFileFormat, IsWavFile_TakesBothForms) {
  EXPECT_TRUE(m_format.IsWavFile(File(MonoWav(8)).c_str()));
  EXPECT_TRUE(m_format.IsWavFile(File(MonoWav(8, "VEMD")).c_str()));
  EXPECT_FALSE(m_format.IsWavFile(File(MonoWav(8, "VEFF")).c_str()));
}

TEST_F(WavFileFormat, CreateWavFile_MakesTheObjectOfTheClassThatOpensTheFile) {
  const C_WavFilePtr wave = Create(File(MonoWav(8)));
  EXPECT_NE(dynamic_cast<C_WavFile*>(wave.get()), nullptr);
  EXPECT_EQ(PcmOf(*wave), RampBytes(8));
  const C_WavFilePtr kestrel = Create(File(SpFile(14, KestrelStream(3))));
  EXPECT_NE(dynamic_cast<C_KestrelFile*>(kestrel.get()), nullptr);
  ASSERT_NE(kestrel, nullptr);
  EXPECT_EQ(kestrel->GetWavData()->GetBufferLength(), 3u * 640);
}

TEST_F(WavFileFormat, FileThatNoClassOpens_GivesNothing) {
  EXPECT_EQ(Create(File(Ascii("text"))), nullptr);
  EXPECT_EQ(Create(File(C_Bytes{})), nullptr);
  EXPECT_EQ(Create(File(WithTag(0x0011))), nullptr);
  EXPECT_EQ(Create(File(SpFile(32, KestrelStream(1)))), nullptr);
  EXPECT_EQ(Create(File(KestrelStream(1))), nullptr);
  EXPECT_EQ(Create(m_folder.Path()), nullptr);
  EXPECT_EQ(Create(m_folder.Path("missing")), nullptr);
  EXPECT_EQ(m_format.CreateWavFile(nullptr, true, true, nullptr, nullptr), nullptr);
  EXPECT_EQ(m_format.OpenWavFile(nullptr), nullptr);
  EXPECT_EQ(Open(File(Ascii("text"))), nullptr);
}

TEST_F(WavFileFormat, FailedAttempts_LeaveNoTrace) {
  const std::string strGood = m_folder.Write("good", MonoWav(8).Take());
  const std::string strBad = m_folder.Write("bad", Ascii("RIFF but no"));
  const std::ptrdiff_t nOpen = CountOpenFiles();
  for (int i = 0; i < 3; ++i) {
    EXPECT_NE(Create(strGood), nullptr);
    EXPECT_EQ(Create(strBad), nullptr);
    EXPECT_NE(Open(strGood), nullptr);
  }
  EXPECT_EQ(CountOpenFiles(), nOpen);
}

TEST_F(WavFileFormat, Factory_PrintsNothingWhateverHappens) {
  testing::internal::CaptureStdout();
  testing::internal::CaptureStderr();
  const C_WavFilePtr file = Create(File(MonoWav(8).Chunk("cue ", CueBytes({{1, 2, 3}}))));
  ASSERT_NE(file, nullptr);
  EXPECT_TRUE(Write(*file, m_folder.Path("out.wav")));
  EXPECT_FALSE(Write(*file, m_folder.Path("no/folder.wav")));
  EXPECT_EQ(Create(File(Ascii("RIFF and then nothing of use"))), nullptr);
  EXPECT_EQ(Create(File(SpFile(14, KestrelStream(1, 2)))), nullptr);
  EXPECT_EQ(Create(m_folder.Path("missing")), nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(WavFileFormat, OpenWavFile_GivesFormatAndChunksButNoSamples) {
  C_RiffBytes riff = MonoWav(8);
  riff.Chunk("cue ", CueBytes({{1, 2, 3}})).Chunk("fact", U32(4));
  const std::string strPath = File(riff);
  const C_WavFilePtr file = Open(strPath);
  ASSERT_NE(file, nullptr);
  EXPECT_EQ(file->GetWavDataBuffer(), nullptr);
  EXPECT_EQ(file->GetWavInfo()->GetSampleRate(), 16000u);
  EXPECT_EQ(file->GetWavInfo()->GetByteLength(), 8u);
  EXPECT_EQ(Cues(*file).GetCuePointCount(), 1);
  EXPECT_EQ(Extra(*file).GetSize(), 1);
  EXPECT_EQ(file->GetFileName(), strPath);
  EXPECT_EQ(file->GetFileLength(), std::filesystem::file_size(strPath));
}

TEST_F(WavFileFormat, FirstAttemptThatSucceeds_LeavesThePlatformUnset) {
  EXPECT_EQ(Create(File(MonoWav(8)))->GetAudioCodecParam()->GetPlatform(),
            AUDIO_CODEC_PLATFORM_DEFAULT);
  EXPECT_EQ(Create(File(SpFile(14, KestrelStream(1))))->GetAudioCodecParam()->GetPlatform(),
            AUDIO_CODEC_PLATFORM_DEFAULT);
}

TEST_F(WavFileFormat, StreamThatFailsAtItsEnd_IsHeardTwice) {
  static unsigned int s_dwBytes = 0;
  static unsigned int s_dwCalls = 0;
  const PFN_DecodedData pfnCount = [](void*, unsigned int dwLength) {
    s_dwBytes += dwLength;
    ++s_dwCalls;
  };
  const std::string strCut = File(SpFile(14, KestrelStream(5, 2)));
  EXPECT_EQ(m_format.CreateWavFile(strCut.c_str(), true, true, nullptr, pfnCount), nullptr);
  EXPECT_EQ(s_dwCalls, 10u);
  EXPECT_EQ(s_dwBytes, 10u * 640);
}

// The attempt itself, on a file class that records what it is asked to do.

namespace {

struct S_Log {
  int nLiving = 0;
  int nLoads = 0;
  int nOpens = 0;
  int nSucceedsAt = 1;  // the call that opens or loads; 0: no call
  std::string strArguments;
  tagAudioCodecPlatform ePlatform = AUDIO_CODEC_PLATFORM_DEFAULT;
};
S_Log g_log;

class C_LoggingFile {
 public:
  C_LoggingFile() { ++g_log.nLiving; }
  ~C_LoggingFile() { --g_log.nLiving; }
  bool LoadByName(const char* pszFileName, bool bKeepEncoded, const char* pszCodecOption,
                  PFN_DecodedData pfnData) {
    g_log.strArguments = std::string(pszFileName) + (bKeepEncoded ? " keep " : " drop ") +
                         pszCodecOption + (pfnData != nullptr ? " data" : " none");
    g_log.ePlatform = m_param.GetPlatform();
    return ++g_log.nLoads == g_log.nSucceedsAt;
  }
  bool OpenByName(const char* pszFileName) {
    g_log.strArguments = pszFileName;
    return ++g_log.nOpens == g_log.nSucceedsAt;
  }
  I_AudioCodecParam* GetAudioCodecParam() { return &m_param; }

 private:
  C_AudioCodecParam m_param;
};

// Makes one attempt that succeeds at call nSucceedsAt, and deletes the object if there is one.
bool Attempt(int nSucceedsAt, bool bLoadData, bool bKeepEncoded = true,
             PFN_DecodedData pfnData = nullptr) {
  g_log = {};
  g_log.nSucceedsAt = nSucceedsAt;
  C_LoggingFile* pFile = nullptr;
  const bool bMade =
      C_WavFileFormat::CreateWavFile(pFile, "name", bLoadData, bKeepEncoded, "option", pfnData);
  EXPECT_EQ(pFile != nullptr, bMade);
  EXPECT_EQ(g_log.nLiving, bMade ? 1 : 0);
  delete pFile;
  return bMade;
}

}  // namespace

TEST_F(WavFileFormat, Load_PassesTheArgumentsThrough) {
  EXPECT_TRUE(Attempt(1, true));
  EXPECT_EQ(g_log.strArguments, "name keep option none");
  EXPECT_EQ(g_log.nLoads, 1);
  EXPECT_EQ(g_log.nOpens, 0);
  EXPECT_TRUE(Attempt(1, true, false, [](void*, unsigned int) {}));
  EXPECT_EQ(g_log.strArguments, "name drop option data");
}

TEST_F(WavFileFormat, FailedLoad_IsTriedOnceMoreWithTheFallbackPlatform) {
  EXPECT_TRUE(Attempt(2, true));
  EXPECT_EQ(g_log.nLoads, 2);
  EXPECT_EQ(static_cast<unsigned int>(g_log.ePlatform), 2u);
  EXPECT_FALSE(Attempt(0, true));
  EXPECT_EQ(g_log.nLoads, 2);
}

TEST_F(WavFileFormat, Open_IsTriedOnce) {
  EXPECT_TRUE(Attempt(1, false));
  EXPECT_EQ(g_log.strArguments, "name");
  EXPECT_EQ(g_log.nLoads, 0);
  EXPECT_FALSE(Attempt(2, false));
  EXPECT_EQ(g_log.nOpens, 1);
}

TEST_F(WavFileFormat, ExceptionOutOfALoad_LeavesNoObject) {
  class C_ThrowingFile : public C_LoggingFile {
   public:
    bool LoadByName(const char*, bool, const char*, PFN_DecodedData) { throw 1; }
  };
  g_log = {};
  auto* pFile = reinterpret_cast<C_ThrowingFile*>(0x10);
  EXPECT_THROW(C_WavFileFormat::CreateWavFile(pFile, "n", true, true, nullptr, nullptr), int);
  EXPECT_EQ(pFile, nullptr);
  EXPECT_EQ(g_log.nLiving, 0);
}

TEST_F(WavFileFormat, IsSupportedFormat_AsksTheFirstFormatTagOnly) {
  for (const std::uint16_t wTag : std::initializer_list<std::uint16_t>{1, 2, 6, 7, 11}) {
    EXPECT_TRUE(IsSupported(WithTag(wTag))) << wTag;
  }
  for (const std::uint16_t wTag :
       std::initializer_list<std::uint16_t>{0, 3, 0x0011, 0x0101, 0x0055, 0xFFFE, 0xFFFF}) {
    EXPECT_FALSE(IsSupported(WithTag(wTag))) << wTag;
  }
  C_RiffBytes firstGood("WAVE");
  EXPECT_TRUE(IsSupported(firstGood.Chunk("fmt ", U16(1)).Chunk("fmt ", U16(0x0011))));
  C_RiffBytes firstBad("WAVE");
  EXPECT_FALSE(IsSupported(firstBad.Chunk("fmt ", U16(0x0011)).Chunk("fmt ", U16(1))));
}

TEST_F(WavFileFormat, FileWithoutFormat_CountsAsSupported) {
  C_RiffBytes riff("WAVE");
  EXPECT_TRUE(IsSupported(riff));
  EXPECT_TRUE(IsSupported(riff.Chunk("data", RampBytes(4)).Chunk("fmt", {})));
}

TEST_F(WavFileFormat, FormatThatCannotBeRead_IsNotSupported) {
  C_RiffBytes empty("WAVE");
  EXPECT_FALSE(IsSupported(empty.Chunk("fmt ", {})));
  C_RiffBytes tooShort("WAVE");
  EXPECT_FALSE(IsSupported(tooShort.Chunk("fmt ", {1})));
  C_RiffBytes cut("WAVE");
  EXPECT_FALSE(IsSupported(cut.Chunk("fmt ", 16, U16(1))));
}

TEST_F(WavFileFormat, OtherForms_AreNotSupported) {
  EXPECT_FALSE(IsSupported(MonoWav(8, "VEMD")));
  EXPECT_FALSE(IsSupported(MonoWav(8, "VEFF")));
  EXPECT_FALSE(m_format.IsSupportedFormat(m_folder.Path("missing").c_str()));
  EXPECT_FALSE(m_format.IsSupportedFormat(m_folder.Path().c_str()));
  EXPECT_FALSE(m_format.IsSupportedFormat(nullptr));
  EXPECT_FALSE(m_format.IsSupportedFormat(File(SpFile(14, {})).c_str()));
}

TEST_F(WavFileFormat, Codecs_AreAlwaysAvailable) { EXPECT_TRUE(m_format.IsCodecAvailable()); }

TEST_F(WavFileFormat, Operations_StandInTheirSlots) {
  const std::string strPath = File(MonoWav(8));
  const char* pszPath = strPath.c_str();
  I_WavFileFormat* pFormat = new C_WavFileFormat;
  EXPECT_EQ((CallSlot<tagAudioFileType>(pFormat, 1, pszPath)), AUDIO_FILE_WAVE);
  EXPECT_FALSE((CallSlot<bool>(pFormat, 2, pszPath, AUDIO_FILE_VEMD)));
  EXPECT_TRUE((CallSlot<bool>(pFormat, 2, pszPath, AUDIO_FILE_WAVE)));
  const C_WavFilePtr loaded(CallSlot<I_WavFile*>(pFormat, 3, pszPath, true, true,
                                                 static_cast<const char*>(nullptr),
                                                 PFN_DecodedData{nullptr}));
  ASSERT_NE(loaded, nullptr);
  EXPECT_NE(loaded->GetWavDataBuffer(), nullptr);
  const C_WavFilePtr opened(CallSlot<I_WavFile*>(pFormat, 4, pszPath));
  ASSERT_NE(opened, nullptr);
  EXPECT_EQ(opened->GetWavDataBuffer(), nullptr);
  EXPECT_TRUE((CallSlot<bool>(pFormat, 5, pszPath)));
  EXPECT_FALSE((CallSlot<bool>(pFormat, 5, m_folder.Path().c_str())));
  EXPECT_TRUE(CallSlot<bool>(pFormat, 6));
  CallSlot<void>(pFormat, 0);  // Release: the leak checker sees that it deletes
  CallSlot<void>(static_cast<I_WavFileFormat*>(new C_WavFileFormat), 8);
}

template <typename File>
void ExpectHeron(tagAudioFileType eType) {
  const auto file = vcm::MakeWavFile(eType, AUDIO_FILE_KESTREL);
  EXPECT_NE(dynamic_cast<File*>(file.get()), nullptr) << eType;
  EXPECT_EQ(file->GetCodingType(), 14u);
}

TEST_F(WavFileFormat, FilesToWrite_AreMadeByKind) {
  for (const tagAudioFileType eType : {AUDIO_FILE_WAVE, AUDIO_FILE_VEMD}) {
    const auto file = vcm::MakeWavFile(eType, AUDIO_FILE_KESTREL);
    ASSERT_NE(dynamic_cast<C_WavFile*>(file.get()), nullptr);
    EXPECT_EQ(file->GetFileFormat(), eType);
    EXPECT_EQ(file->GetCodingType(), 0u);
  }
  const auto kestrel = vcm::MakeWavFile(AUDIO_FILE_KESTREL, AUDIO_FILE_HERON_4BIT);
  ASSERT_NE(dynamic_cast<C_KestrelFile*>(kestrel.get()), nullptr);
  EXPECT_EQ(kestrel->GetCodingType(), 32u);
  ExpectHeron<C_Heron4BitFile>(AUDIO_FILE_HERON_4BIT);
  ExpectHeron<C_Heron5BitFile>(AUDIO_FILE_HERON_5BIT);
  ExpectHeron<C_Heron6BitFile>(AUDIO_FILE_HERON_6BIT);
  ExpectHeron<C_Heron2BitFile>(AUDIO_FILE_HERON_2BIT);
  ExpectHeron<C_Heron3BitFile>(AUDIO_FILE_HERON_3BIT);
  for (const unsigned int dwType : {0u, 1u, 13u, 31u, 37u, 0x1001u, 0xFFFFu}) {
    EXPECT_EQ(vcm::MakeWavFile(static_cast<tagAudioFileType>(dwType), AUDIO_FILE_UNKNOWN), nullptr)
        << dwType;
  }
}
