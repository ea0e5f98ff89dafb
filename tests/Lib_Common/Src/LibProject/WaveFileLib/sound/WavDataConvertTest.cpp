// SPDX-License-Identifier: Apache-2.0
//
// How a sound uses the file object that it writes itself with. This file defines the function that
// makes file objects, so that it sees every call.
#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "SampleValues.h"
#include "sound/WavData.h"
#include "sound/WavFileMaker.h"

namespace {

struct S_Log {
  std::vector<std::string> calls;
  tagAudioFileType eType = AUDIO_FILE_UNKNOWN;
  tagAudioFileType eEncodedType = AUDIO_FILE_UNKNOWN;
  I_WavData* pAttached = nullptr;
  std::string strFileName;
  bool bEncode = false;
  bool bWriteCodecHead = false;
  PFN_CodecProgress pfnProgress = nullptr;
  bool bForceEncode = false;
  unsigned int dwCodecOption = 0;
};
S_Log g_log;
bool g_bMakes = true;
bool g_bWrites = true;
bool g_bThrows = false;

class C_FakeFile : public I_WavFile {
 public:
  ~C_FakeFile() override { g_log.calls.emplace_back("destroy"); }
  int AddRef() override { return 0; }
  int Release() override { return 0; }
  const char* GetFileName() override { return ""; }
  unsigned int GetFileLength() override { return 0; }
  tagAudioFileType GetFileFormat() override { return AUDIO_FILE_UNKNOWN; }
  unsigned int GetCodingType() override { return 0; }
  I_WavInfo* GetWavInfo() override { return nullptr; }
  void AttachWavData(I_WavData* pIWavData) override {
    g_log.calls.emplace_back("attach");
    g_log.pAttached = pIWavData;
  }
  I_WavData* DetachWavData() override {
    g_log.calls.emplace_back("detach");
    return g_log.pAttached;
  }
  I_WavData* GetWavData() override { return nullptr; }
  unsigned char* GetWavDataBuffer() override { return nullptr; }
  bool CopyWavData(I_WavData*) override { return false; }
  void SetWavInfo(I_WavInfo*) override {}
  void SetWavInfoData(unsigned int, unsigned short, unsigned short, unsigned short, bool) override {
  }
  bool SetBuffer(const void*, unsigned int) override { return false; }
  I_AudioCodecParam* GetAudioCodecParam() override { return nullptr; }
  bool Convert(tagAudioFileType, const char*, bool, bool, PFN_CodecProgress, bool,
               unsigned int) override {
    return false;
  }
  bool GetDataInfo(int, void**) override { return false; }
  unsigned int GetDataStartPos() override { return 0; }
  bool CheckFormat(const char*, bool) override { return false; }
  bool LoadData(bool, const char*, PFN_DecodedData) override { return false; }
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override {
    g_log.calls.emplace_back("write");
    g_log.strFileName = pszFileName;
    g_log.bEncode = bEncode;
    g_log.bWriteCodecHead = bWriteCodecHead;
    g_log.pfnProgress = pfnProgress;
    g_log.bForceEncode = bForceEncode;
    g_log.dwCodecOption = dwCodecOption;
    if (g_bThrows) throw std::runtime_error("disk");
    return g_bWrites;
  }
};

void Progress(const S_CodecProgress*) {}

class WavDataConvert : public testing::Test {
 protected:
  void SetUp() override {
    g_log = {};
    g_bMakes = g_bWrites = true;
    g_bThrows = false;
    SetSound(m_sound, {1, 2, 3});
  }
  bool Convert(tagAudioFileType eType) {
    return m_sound.Convert(eType, "/some/file", true, false, Progress, true, 77);
  }
  C_WavData m_sound;
};

using C_Calls = std::vector<std::string>;

TEST_F(WavDataConvert, Convert_AttachesWritesDetachesAndEndsTheFile) {
  m_sound.SetEncType(AUDIO_FILE_KESTREL);
  EXPECT_TRUE(Convert(AUDIO_FILE_VEMD));
  EXPECT_EQ(g_log.calls, (C_Calls{"make", "attach", "write", "detach", "destroy"}));
  EXPECT_EQ(g_log.eType, AUDIO_FILE_VEMD);
  EXPECT_EQ(g_log.eEncodedType, AUDIO_FILE_KESTREL);
  EXPECT_EQ(g_log.pAttached, &m_sound);
}

TEST_F(WavDataConvert, Convert_PassesEveryArgumentOn) {
  EXPECT_TRUE(Convert(AUDIO_FILE_WAVE));
  EXPECT_EQ(g_log.strFileName, "/some/file");
  EXPECT_TRUE(g_log.bEncode);
  EXPECT_FALSE(g_log.bWriteCodecHead);
  EXPECT_EQ(g_log.pfnProgress, &Progress);
  EXPECT_TRUE(g_log.bForceEncode);
  EXPECT_EQ(g_log.dwCodecOption, 77u);
  EXPECT_TRUE(m_sound.Convert(AUDIO_FILE_WAVE, "x", false, true, nullptr, false, 0));
  EXPECT_FALSE(g_log.bEncode);
  EXPECT_TRUE(g_log.bWriteCodecHead);
  EXPECT_EQ(g_log.pfnProgress, nullptr);
  EXPECT_FALSE(g_log.bForceEncode);
}

TEST_F(WavDataConvert, Convert_IsFalseWhenTheFileCannotBeWritten) {
  g_bWrites = false;
  EXPECT_FALSE(Convert(AUDIO_FILE_WAVE));
  EXPECT_EQ(g_log.calls, (C_Calls{"make", "attach", "write", "detach", "destroy"}));
}

TEST_F(WavDataConvert, Convert_IsFalseForKindsThatCannotBeWritten) {
  g_bMakes = false;
  EXPECT_FALSE(Convert(AUDIO_FILE_UNKNOWN));
  EXPECT_EQ(g_log.calls, (C_Calls{"make"}));
}

TEST_F(WavDataConvert, IsFalseWithoutSamples_AndMakesNoFile) {
  m_sound.SetBuffer("", 0);
  EXPECT_FALSE(Convert(AUDIO_FILE_WAVE));
  C_WavData formatOnly;
  formatOnly.SetWavInfoData(8000, 1000, 1, 16, 16, true);
  EXPECT_FALSE(formatOnly.Convert(AUDIO_FILE_WAVE, "x", true, false, nullptr, false, 0));
  EXPECT_EQ(g_log.calls, C_Calls{});
}

TEST_F(WavDataConvert, Convert_LeavesTheSoundAndItsReferencesAsTheyWere) {
  auto* pSound = new C_WavData();
  SetSound(*pSound, {1, 2, 3});
  pSound->AddRef();
  EXPECT_TRUE(pSound->Convert(AUDIO_FILE_WAVE, "x", true, false, nullptr, false, 0));
  EXPECT_EQ(ValuesOf(*pSound), (C_Values{1, 2, 3}));
  EXPECT_EQ(pSound->Release(), 0);
  pSound->Release();
}

TEST_F(WavDataConvert, Convert_EndsTheFileWhenWritingThrows) {
  g_bThrows = true;
  EXPECT_THROW(Convert(AUDIO_FILE_WAVE), std::runtime_error);
  EXPECT_EQ(g_log.calls.back(), "destroy");
  EXPECT_EQ(ValuesOf(m_sound), (C_Values{1, 2, 3}));
}

TEST_F(WavDataConvert, Convert_WritesAttachedSamplesToo) {
  std::vector<unsigned char> attached(4);
  m_sound.AttachBuffer(attached.data(), 4);
  EXPECT_TRUE(Convert(AUDIO_FILE_WAVE));
  EXPECT_EQ(m_sound.GetBuffer(), attached.data());
}

}  // namespace

std::unique_ptr<I_WavFile> vcm::MakeWavFile(tagAudioFileType eType, tagAudioFileType eEncodedType) {
  g_log.calls.emplace_back("make");
  g_log.eType = eType;
  g_log.eEncodedType = eEncodedType;
  if (!g_bMakes) return nullptr;
  return std::make_unique<C_FakeFile>();
}
