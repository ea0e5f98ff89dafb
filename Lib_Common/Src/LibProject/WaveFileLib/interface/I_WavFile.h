// SPDX-License-Identifier: Apache-2.0
//
// A sound file: what it is, the sound that it holds, and how it is read and written.
#pragma once

#include <memory>

#include "interface/AudioFileType.h"
#include "interface/CodecCallback.h"
#include "interface/I_WavData.h"

class I_WavFileInfo {
 public:
  virtual int AddRef() = 0;  // 0
  // Deletes the object when no extra reference is held; otherwise the new count. Never call it on
  // an object that was not made with new.
  virtual int Release() = 0;                     // 1
  virtual const char* GetFileName() = 0;         // 2
  virtual unsigned int GetFileLength() = 0;      // 3, bytes
  virtual tagAudioFileType GetFileFormat() = 0;  // 4
  virtual unsigned int GetCodingType() = 0;      // 5
  virtual I_WavInfo* GetWavInfo() = 0;           // 6, null without wave data

 protected:
  ~I_WavFileInfo() = default;
};

class I_WavFile : public I_WavFileInfo {
 public:
  // Refers to a sound of the caller's, which must outlive the attachment.
  virtual void AttachWavData(I_WavData* pIWavData) = 0;  // 7
  virtual I_WavData* DetachWavData() = 0;                // 8, null unless attached
  virtual I_WavData* GetWavData() = 0;                   // 9, borrowed; null when there is none
  virtual unsigned char* GetWavDataBuffer() = 0;         // 10, the PCM
  virtual bool CopyWavData(I_WavData* pSrc) = 0;         // 11
  virtual void SetWavInfo(I_WavInfo* pIWavInfo) = 0;     // 12
  virtual void SetWavInfoData(unsigned int dwSampleRate, unsigned short wChannels,
                              unsigned short wBitsPerSample, unsigned short wStoreBitsPerSample,
                              bool bValueSigned) = 0;  // 13, keeps the byte length
  virtual bool SetBuffer(const void* pData, unsigned int dwLength) = 0;  // 14
  virtual I_AudioCodecParam* GetAudioCodecParam() = 0;                   // 15
  virtual bool Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode,
                       bool bWriteCodecHead, PFN_CodecProgress pfnProgress, bool bForceEncode,
                       unsigned int dwCodecOption) = 0;    // 16
  virtual bool GetDataInfo(int nType, void** ppInfo) = 0;  // 17, as I_WavData::GetInfo
  virtual ~I_WavFile() = default;                          // 18, 19
  virtual unsigned int GetDataStartPos() = 0;              // 20, stream offset of the samples
  // Is this the class for that file? With bWithInfo the wave data gets the format and the
  // informational chunks.
  virtual bool CheckFormat(const char* pszFileName, bool bWithInfo) = 0;  // 21
  // Reads the sound of the file that was checked and named. Codec files pass each decoded piece to
  // pfnData when it is given.
  virtual bool LoadData(bool bKeepEncoded, const char* pszCodecOption,
                        PFN_DecodedData pfnData) = 0;  // 22
  // Writes the sound; false without one. The arguments after the name are the codec files': see
  // there.
  virtual bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                         PFN_CodecProgress pfnProgress, bool bForceEncode,
                         unsigned int dwCodecOption) = 0;  // 23
};

// Ends a file object of one's own with the one Release that it needs.
struct S_WavFileReleaser {
  void operator()(I_WavFile* pIWavFile) const { pIWavFile->Release(); }
};
using C_WavFilePtr = std::unique_ptr<I_WavFile, S_WavFileReleaser>;
