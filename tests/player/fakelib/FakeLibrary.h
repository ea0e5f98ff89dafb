// SPDX-License-Identifier: Apache-2.0
//
// The part of the audio-file library that the player calls. It records those calls, and a test
// chooses the answers. This folder comes before the library's own on the include path.
#pragma once

#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "interface/I_WavFile.h"

// A file object on which the player may call Convert and Release. All other operations do nothing.
class C_FakeWavFile : public I_WavFile {
 public:
  explicit C_FakeWavFile(std::string strName) : m_strName(std::move(strName)) {}

  int AddRef() override { return 0; }
  int Release() override;
  const char* GetFileName() override { return ""; }
  unsigned int GetFileLength() override { return 0; }
  tagAudioFileType GetFileFormat() override { return AUDIO_FILE_UNKNOWN; }
  unsigned int GetCodingType() override { return 0; }
  I_WavInfo* GetWavInfo() override { return nullptr; }
  void AttachWavData(I_WavData* /*pIWavData*/) override {}
  I_WavData* DetachWavData() override { return nullptr; }
  I_WavData* GetWavData() override { return nullptr; }
  unsigned char* GetWavDataBuffer() override { return nullptr; }
  bool CopyWavData(I_WavData* /*pSrc*/) override { return false; }
  void SetWavInfo(I_WavInfo* /*pIWavInfo*/) override {}
  void SetWavInfoData(unsigned int /*dwSampleRate*/, unsigned short /*wChannels*/,
                      unsigned short /*wBitsPerSample*/, unsigned short /*wStoreBitsPerSample*/,
                      bool /*bValueSigned*/) override {}
  bool SetBuffer(const void* /*pData*/, unsigned int /*dwLength*/) override { return false; }
  I_AudioCodecParam* GetAudioCodecParam() override { return nullptr; }
  bool Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode, bool bWriteCodecHead,
               PFN_CodecProgress pfnProgress, bool bForceEncode,
               unsigned int dwCodecOption) override;
  bool GetDataInfo(int /*nType*/, void** /*ppInfo*/) override { return false; }
  unsigned int GetDataStartPos() override { return 0; }
  bool CheckFormat(const char* /*pszFileName*/, bool /*bWithInfo*/) override { return false; }
  bool LoadData(bool /*bKeepEncoded*/, const char* /*pszCodecOption*/,
                PFN_DecodedData /*pfnData*/) override {
    return false;
  }
  bool WriteFile(const char* /*pszFileName*/, bool /*bEncode*/, bool /*bWriteCodecHead*/,
                 PFN_CodecProgress /*pfnProgress*/, bool /*bForceEncode*/,
                 unsigned int /*dwCodecOption*/) override {
    return false;
  }

 private:
  std::string m_strName;
};

class C_FakeLibrary {
 public:
  static C_FakeLibrary& Get();
  void Reset();

  // What CreateWavFile, LoadByName and Convert answer, call by call; then the last answer forever.
  std::deque<bool> creates = {true};
  std::deque<bool> loads = {true};
  std::deque<bool> converts = {true};
  // Called inside CreateWavFile, on the calling thread.
  std::function<void(const char* pszPath, PFN_DecodedData pfnData)> onCreate;
  std::function<void(const char* pszPath)> onConvert;
  // Called when a format object ends, on the thread that ends it.
  std::function<void()> onFormatEnd;

  // One line for each call. Paths of temporary files appear as "<temporary>.kst".
  std::vector<std::string> Log();
  void Call(const std::string& strLine);
  void FormatEnds();
  bool Answer(std::deque<bool>& answers);

 private:
  std::mutex m_lock;
  std::vector<std::string> m_log;
};

// A name of the C library's form becomes "<temporary>" and what follows it.
std::string ShortName(const char* pszPath);
