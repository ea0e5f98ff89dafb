// SPDX-License-Identifier: Apache-2.0
#include "file/WavFileBase.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "TempFolder.h"
#include "VTable.h"
#include "WavBytes.h"
#include "WavFileObject.h"
#include "sound/WavData.h"

namespace {

// A file object that records what happens to it.
class C_TestFile : public C_WavFileBase {
 public:
  explicit C_TestFile(bool* pbDeleted = nullptr) : m_pbDeleted(pbDeleted) {}
  ~C_TestFile() override {
    if (m_pbDeleted != nullptr) *m_pbDeleted = true;
  }
  bool CheckFormat(const char* pszFileName, bool bWithInfo) override {
    m_strLog += std::string("check ") + pszFileName + (bWithInfo ? " with;" : " without;");
    if (bWithInfo) PrepareWavData()->SetWavInfoData(11025, 0, 1, 16, 16, true);
    return m_bFormat;
  }
  bool LoadData(bool bKeepEncoded, const char* pszCodecOption, PFN_DecodedData pfnData) override {
    m_strLog += "load;";
    m_bKeepEncoded = bKeepEncoded;
    m_pszCodecOption = pszCodecOption;
    m_pfnData = pfnData;
    // Like a decoder that learns the rate from the stream.
    PrepareWavData()->GetWavInfo()->SetSampleRate(22050);
    return m_bLoad;
  }
  bool WriteFile(const char*, bool, bool, PFN_CodecProgress, bool, unsigned int) override {
    return false;
  }
  using C_WavFileBase::PrepareWavData;
  using C_WavFileBase::SafeDeleteWavData;

  bool* m_pbDeleted;
  bool m_bFormat = true;
  bool m_bLoad = true;
  std::string m_strLog;
  bool m_bKeepEncoded = false;
  const char* m_pszCodecOption = nullptr;
  PFN_DecodedData m_pfnData = nullptr;
};

class C_CountedData : public C_WavData {
 public:
  explicit C_CountedData(int* pnLiving) : m_pnLiving(pnLiving) { ++*m_pnLiving; }
  ~C_CountedData() override { --*m_pnLiving; }

 private:
  int* m_pnLiving;
};

}  // namespace

TEST(WavFileBase, NewObject_IsOfNoKindAndHoldsNothing) {
  C_TestFile file;
  EXPECT_EQ(file.GetFileFormat(), AUDIO_FILE_UNKNOWN);
  EXPECT_EQ(static_cast<unsigned int>(file.GetFileFormat()), 0xFFFFu);
  EXPECT_EQ(file.GetCodingType(), 0u);
  EXPECT_STREQ(file.GetFileName(), "");
  EXPECT_EQ(file.GetFileLength(), 0u);
  EXPECT_EQ(file.GetDataStartPos(), 0u);
  EXPECT_EQ(file.GetWavInfo(), nullptr);
  EXPECT_EQ(file.GetWavData(), nullptr);
  EXPECT_EQ(file.GetWavDataBuffer(), nullptr);
  EXPECT_EQ(file.DetachWavData(), nullptr);
}

TEST(WavFileBase, Release_EndsTheObjectOnlyWhenNoExtraReferenceIsLeft) {
  bool bDeleted = false;
  auto* pFile = new C_TestFile(&bDeleted);
  EXPECT_EQ(pFile->AddRef(), 1);
  EXPECT_EQ(pFile->AddRef(), 2);
  EXPECT_EQ(pFile->Release(), 1);
  EXPECT_EQ(pFile->Release(), 0);
  EXPECT_FALSE(bDeleted);
  pFile->Release();
  EXPECT_TRUE(bDeleted);
}

TEST(WavFileBase, AttachedData_IsLentAndComesBack) {
  int nLiving = 0;
  auto* pData = new C_CountedData(&nLiving);
  {
    C_TestFile file;
    file.AttachWavData(pData);
    EXPECT_EQ(file.GetWavData(), pData);
    EXPECT_EQ(file.DetachWavData(), pData);
    EXPECT_EQ(file.GetWavData(), nullptr);
    EXPECT_EQ(file.DetachWavData(), nullptr);
    // What the file makes afterwards belongs to the file.
    file.PrepareWavData();
    EXPECT_EQ(file.DetachWavData(), nullptr);
    file.AttachWavData(pData);
  }
  EXPECT_EQ(nLiving, 1);
  pData->Release();
  EXPECT_EQ(nLiving, 0);
}

TEST(WavFileBase, OwnedData_IsNotDetachedAndEndsWithTheFile) {
  C_TestFile file;
  I_WavData* pOwned = file.PrepareWavData();
  EXPECT_EQ(file.PrepareWavData(), pOwned);
  EXPECT_EQ(file.GetWavData(), pOwned);
  EXPECT_EQ(file.DetachWavData(), nullptr);
  EXPECT_EQ(file.GetWavData(), pOwned);
}

TEST(WavFileBase, Attaching_ReleasesOwnedDataOnly) {
  int nLiving = 0;
  auto* pFirst = new C_CountedData(&nLiving);
  auto* pSecond = new C_CountedData(&nLiving);
  C_TestFile file;
  I_WavData* pOwned = file.PrepareWavData();
  pOwned->AddRef();
  file.AttachWavData(pFirst);
  EXPECT_EQ(pOwned->AddRef(), 1);  // the file's reference is gone
  file.AttachWavData(pSecond);
  EXPECT_EQ(nLiving, 2);
  EXPECT_EQ(file.DetachWavData(), pSecond);
  pOwned->Release();
  pOwned->Release();
  pFirst->Release();
  pSecond->Release();
}

TEST(WavFileBase, SafeDelete_ReleasesOwnedDataAndKeepsAttachedData) {
  C_TestFile file;
  file.SafeDeleteWavData();
  file.PrepareWavData();
  file.SafeDeleteWavData();
  EXPECT_EQ(file.GetWavData(), nullptr);
  C_WavData data;
  file.AttachWavData(&data);
  file.SafeDeleteWavData();
  EXPECT_EQ(file.GetWavData(), &data);
  EXPECT_EQ(file.PrepareWavData(), &data);
}

TEST(WavFileBase, Attaching_GivesTheEventsTheSoundsSampleRate) {
  C_WavData data;
  data.SetWavInfoData(8000, 0, 1, 16, 16, true);
  data.GetEventTagMgr()->SetSampleRate(1);
  C_TestFile file;
  file.AttachWavData(&data);
  EXPECT_EQ(data.GetEventTagMgr()->GetSampleRate(), 8000u);
}

TEST(WavFileBase, AttachingNull_LeavesNoSound) {
  C_TestFile file;
  file.PrepareWavData();
  file.AttachWavData(nullptr);
  EXPECT_EQ(file.GetWavData(), nullptr);
  EXPECT_EQ(file.DetachWavData(), nullptr);
  EXPECT_NE(file.GetAudioCodecParam(), nullptr);
}

TEST(WavFileBase, OperationsThatFillTheSound_MakeIt) {
  C_TestFile forParam;
  I_AudioCodecParam* pIParam = forParam.GetAudioCodecParam();
  ASSERT_NE(forParam.GetWavData(), nullptr);
  EXPECT_EQ(pIParam, forParam.GetWavData()->GetAudioCodecParam());
  C_TestFile forBuffer;
  EXPECT_TRUE(forBuffer.SetBuffer("abcd", 4));
  EXPECT_EQ(std::memcmp(forBuffer.GetWavDataBuffer(), "abcd", 4), 0);
  EXPECT_EQ(forBuffer.GetWavDataBuffer(), forBuffer.GetWavData()->GetBuffer());
  C_TestFile forInfo;
  forInfo.SetWavInfo(forBuffer.GetWavInfo());
  EXPECT_EQ(forInfo.GetWavInfo()->GetByteLength(), 4u);
  EXPECT_EQ(forInfo.GetWavInfo(), forInfo.GetWavData()->GetWavInfo());
  C_TestFile forCopy;
  EXPECT_TRUE(forCopy.CopyWavData(forBuffer.GetWavData()));
  EXPECT_EQ(std::memcmp(forCopy.GetWavDataBuffer(), "abcd", 4), 0);
  C_TestFile forNull;
  EXPECT_FALSE(forNull.CopyWavData(nullptr));
  EXPECT_NE(forNull.GetWavData(), nullptr);
}

TEST(WavFileBase, SetWavInfoData_KeepsTheByteLength) {
  C_TestFile file;
  file.SetWavInfoData(8000, 2, 12, 16, true);
  EXPECT_EQ(file.GetWavInfo()->GetByteLength(), 0u);
  file.SetBuffer("abcdefgh", 8);
  file.SetWavInfoData(48000, 2, 16, 16, true);
  EXPECT_EQ(file.GetWavInfo()->GetByteLength(), 8u);
  EXPECT_EQ(file.GetWavInfo()->GetSampleRate(), 48000u);
  EXPECT_EQ(file.GetWavInfo()->GetChannels(), 2);
  EXPECT_EQ(file.GetWavInfo()->GetSampleSize(), 2u);
}

TEST(WavFileBase, WithoutASound_NothingIsConvertedOrHandedOut) {
  C_TestFile file;
  EXPECT_FALSE(file.Convert(AUDIO_FILE_WAVE, "/tmp/never", true, false, nullptr, false, 0));
  void* pInfo = &file;
  EXPECT_FALSE(file.GetDataInfo(WAV_DATA_INFO_CUE, &pInfo));
  EXPECT_EQ(pInfo, nullptr);
  EXPECT_EQ(file.GetWavData(), nullptr);
}

TEST(WavFileBase, DataInfos_AreThoseOfTheSound) {
  C_TestFile file;
  I_WavData& data = *file.PrepareWavData();
  for (int nType = 1; nType <= 5; ++nType) {
    void* pInfo = nullptr;
    void* pExpected = nullptr;
    EXPECT_TRUE(file.GetDataInfo(nType, &pInfo));
    EXPECT_TRUE(data.GetInfo(nType, &pExpected));
    EXPECT_EQ(pInfo, pExpected);
    EXPECT_NE(pInfo, nullptr);
  }
  for (const int nType : {-1, 0, 6, 9}) {
    void* pInfo = &file;
    EXPECT_FALSE(file.GetDataInfo(nType, &pInfo));
    EXPECT_EQ(pInfo, nullptr);
  }
}

TEST(WavFileBase, LoadByName_ChecksNamesLoadsAndSetsTheRateOfEvents) {
  C_TempFolder folder;
  const std::string strPath = folder.Write("x.bin", C_Bytes(77));
  C_TestFile file;
  const PFN_DecodedData pfnData = [](void*, unsigned int) {};
  const char szOption[] = "option";
  ASSERT_TRUE(file.LoadByName(strPath.c_str(), true, szOption, pfnData));
  EXPECT_EQ(file.m_strLog, "check " + strPath + " with;load;");
  EXPECT_TRUE(file.m_bKeepEncoded);
  EXPECT_EQ(file.m_pszCodecOption, szOption);
  EXPECT_EQ(file.m_pfnData, pfnData);
  EXPECT_EQ(file.GetFileName(), strPath);
  EXPECT_EQ(file.GetFileLength(), 77u);
  EXPECT_EQ(file.GetWavData()->GetEventTagMgr()->GetSampleRate(), 22050u);
}

TEST(WavFileBase, OpenByName_LoadsNothing) {
  C_TempFolder folder;
  const std::string strPath = folder.Write("x.bin", C_Bytes(77));
  C_TestFile file;
  ASSERT_TRUE(file.OpenByName(strPath.c_str()));
  EXPECT_EQ(file.m_strLog, "check " + strPath + " with;");
  EXPECT_EQ(file.GetFileName(), strPath);
  EXPECT_EQ(file.GetFileLength(), 77u);
}

TEST(WavFileBase, RefusedFormat_IsNeitherNamedNorLoaded) {
  C_TempFolder folder;
  const std::string strPath = folder.Write("x.bin", C_Bytes(77));
  C_TestFile file;
  file.m_bFormat = false;
  EXPECT_FALSE(file.LoadByName(strPath.c_str(), false, nullptr, nullptr));
  EXPECT_EQ(file.m_strLog, "check " + strPath + " with;");
  EXPECT_STREQ(file.GetFileName(), "");
  EXPECT_FALSE(file.OpenByName(strPath.c_str()));
}

TEST(WavFileBase, FailedLoad_FailsTheCall) {
  C_TempFolder folder;
  C_TestFile file;
  file.m_bLoad = false;
  EXPECT_FALSE(file.LoadByName(folder.Write("x", C_Bytes(7)).c_str(), false, nullptr, nullptr));
}

TEST(WavFileBase, MissingFilesAndFilesWithoutALength_AreRefused) {
  C_TempFolder folder;
  C_TestFile file;
  EXPECT_FALSE(file.OpenByName(folder.Path("missing").c_str()));
  EXPECT_FALSE(file.OpenByName(folder.Path().c_str()));
  EXPECT_FALSE(file.OpenByName(nullptr));
  EXPECT_FALSE(file.LoadByName(nullptr, false, nullptr, nullptr));
  EXPECT_STREQ(file.GetFileName(), "");
}

TEST(WavFileBase, FilesOf4GiBAndMore_AreRefused) {
  C_TempFolder folder;
  const std::string strPath = folder.Write("sparse", {});
  C_TestFile file;
  std::filesystem::resize_file(strPath, 0xFFFFFFFFu);
  EXPECT_TRUE(file.OpenByName(strPath.c_str()));
  EXPECT_EQ(file.GetFileLength(), 0xFFFFFFFFu);
  std::filesystem::resize_file(strPath, 0x1'0000'0000u);
  EXPECT_FALSE(file.OpenByName(strPath.c_str()));
}

TEST(WavFileBase, NamesThatDoNotFitTheirField_AreRefused) {
  C_TempFolder folder;
  folder.Write("a", MonoWav(4).Take());
  const auto name = [&](std::size_t nLength) {
    std::string strPath = folder.Path() + "/";
    while (strPath.size() + 2 < nLength) strPath += "./";
    while (strPath.size() + 1 < nLength) strPath += "/";
    return strPath + "a";
  };
  ASSERT_EQ(name(1024).size(), 1024u);
  C_TestFile file;
  EXPECT_TRUE(file.OpenByName(name(1024).c_str()));
  EXPECT_EQ(file.GetFileName(), name(1024));
  file.m_strLog.clear();
  for (const std::size_t nLength : {1025u, 1026u, 3000u, 5000u}) {
    EXPECT_FALSE(file.OpenByName(name(nLength).c_str())) << nLength;
    EXPECT_FALSE(file.LoadByName(name(nLength).c_str(), false, nullptr, nullptr)) << nLength;
  }
  EXPECT_EQ(file.m_strLog, "");
  EXPECT_EQ(file.GetFileName(), name(1024));
}

TEST(WavFileBase, KindAndCoding_CanBeSet) {
  C_TestFile file;
  file.SetFileFormat(AUDIO_FILE_VEMD);
  file.SetCodingType(14);
  EXPECT_EQ(file.GetFileFormat(), AUDIO_FILE_VEMD);
  EXPECT_EQ(file.GetCodingType(), 14u);
}

TEST(WavFileBase, Operations_StandInTheirSlots) {
  C_TempFolder folder;
  const std::string strPath = folder.Write("in.wav", MonoWav(8).Take());
  const std::string strOut = folder.Path("out.wav");
  const char* pszPath = strPath.c_str();
  const char* pszOut = strOut.c_str();
  const C_WavObjectPtr owner = MakeWav();
  I_WavFile* pFile = owner.get();
  C_WavData data;

  EXPECT_EQ(CallSlot<int>(pFile, 0), 1);  // AddRef
  EXPECT_EQ(CallSlot<int>(pFile, 1), 0);  // Release
  EXPECT_TRUE((CallSlot<bool>(pFile, 21, pszPath, true)));
  EXPECT_TRUE(owner->OpenByName(pszPath));
  EXPECT_STREQ(CallSlot<const char*>(pFile, 2), pszPath);
  EXPECT_EQ(CallSlot<unsigned int>(pFile, 3), 52u);
  EXPECT_EQ(CallSlot<tagAudioFileType>(pFile, 4), AUDIO_FILE_WAVE);
  owner->SetCodingType(5);
  EXPECT_EQ(CallSlot<unsigned int>(pFile, 5), 5u);
  EXPECT_EQ(CallSlot<I_WavInfo*>(pFile, 6), owner->GetWavInfo());
  EXPECT_EQ(CallSlot<unsigned int>(pFile, 20), 44u);
  EXPECT_TRUE((CallSlot<bool>(pFile, 22, true, static_cast<const char*>(nullptr),
                              PFN_DecodedData{nullptr})));
  EXPECT_TRUE(
      (CallSlot<bool>(pFile, 23, pszOut, true, false, PFN_CodecProgress{nullptr}, false, 0u)));
  EXPECT_EQ(folder.Read("out.wav"), folder.Read("in.wav"));
  CallSlot<void>(pFile, 7, static_cast<I_WavData*>(&data));
  EXPECT_EQ(CallSlot<I_WavData*>(pFile, 9), &data);
  EXPECT_TRUE((CallSlot<bool>(pFile, 14, static_cast<const void*>("abcdef"), 6u)));
  EXPECT_EQ(CallSlot<unsigned char*>(pFile, 10), data.GetBuffer());
  EXPECT_FALSE((CallSlot<bool>(pFile, 11, static_cast<I_WavData*>(nullptr))));
  using C_Word = unsigned short;
  CallSlot<void>(pFile, 13, 8000u, C_Word{3}, C_Word{12}, C_Word{16}, true);
  EXPECT_EQ(data.GetWavInfo()->GetChannels(), 3);
  EXPECT_EQ(data.GetWavInfo()->GetByteLength(), 6u);
  CallSlot<void>(pFile, 12, data.GetWavInfo());
  EXPECT_EQ(CallSlot<I_AudioCodecParam*>(pFile, 15), data.GetAudioCodecParam());
  EXPECT_TRUE((CallSlot<bool>(pFile, 16, AUDIO_FILE_VEMD, pszOut, true, false,
                              PFN_CodecProgress{nullptr}, false, 0u)));
  EXPECT_EQ(LoadWav(strOut)->GetFileFormat(), AUDIO_FILE_VEMD);
  void* pInfo = nullptr;
  EXPECT_TRUE((CallSlot<bool>(pFile, 17, 4, &pInfo)));
  EXPECT_NE(pInfo, nullptr);
  EXPECT_EQ(CallSlot<I_WavData*>(pFile, 8), &data);

  bool bDeleted = false;
  CallSlot<void>(static_cast<I_WavFile*>(new C_TestFile(&bDeleted)), 19);
  EXPECT_TRUE(bDeleted);
}
