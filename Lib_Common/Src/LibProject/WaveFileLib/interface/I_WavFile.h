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
  // Deletes the object and returns 0 when no extra reference is held; otherwise returns the new
  // count. Never call it on an object that was not made with new.
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
  // Uses the caller's sound, which must outlive the attachment. If the file owns a sound, that
  // sound is released first.
  virtual void AttachWavData(I_WavData* pIWavData) = 0;  // 7
  virtual I_WavData* DetachWavData() = 0;                // 8, null unless attached
  virtual I_WavData* GetWavData() = 0;                   // 9, borrowed; null when there is none
  virtual unsigned char* GetWavDataBuffer() = 0;  // 10, I_WavData::GetBuffer; null without a sound
  // The next four are the operations of I_WavData with the same names. They make the sound first
  // when there is none.
  virtual bool CopyWavData(I_WavData* pSrc) = 0;      // 11
  virtual void SetWavInfo(I_WavInfo* pIWavInfo) = 0;  // 12
  virtual void SetWavInfoData(unsigned int dwSampleRate, unsigned short wChannels,
                              unsigned short wBitsPerSample, unsigned short wStoreBitsPerSample,
                              bool bValueSigned) = 0;  // 13, keeps the byte length
  virtual bool SetBuffer(const void* pData, unsigned int dwLength) = 0;  // 14
  // The options for writing; makes the sound first when there is none.
  virtual I_AudioCodecParam* GetAudioCodecParam() = 0;  // 15
  // Writes the sound as a file of another kind: see I_WavData::Convert, also for what becomes of a
  // file that has the name. False without a sound.
  virtual bool Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode,
                       bool bWriteCodecHead, PFN_CodecProgress pfnProgress, bool bForceEncode,
                       unsigned int dwCodecOption) = 0;    // 16
  virtual bool GetDataInfo(int nType, void** ppInfo) = 0;  // 17, as I_WavData::GetInfo
  virtual ~I_WavFile() = default;                          // 18, 19
  virtual unsigned int GetDataStartPos() = 0;              // 20, stream offset of the samples
  // True when this class reads that file. With bWithInfo the sound, which is made first when there
  // is none, gets the format and the informational chunks of the file.
  virtual bool CheckFormat(const char* pszFileName, bool bWithInfo) = 0;  // 21
  // Reads the samples of the file that was checked and whose name was stored; for use by the
  // classes themselves.
  //   bKeepEncoded    matters only for a VEF container that a codec class opened: true reads the
  //                   PCM that it stores, false decodes its stream.
  //   pszCodecOption  no effect; may be null.
  //   pfnData         may be null. It is given each decoded frame of a Kestrel stream after an SP
  //                   header, and is never called for other files.
  virtual bool LoadData(bool bKeepEncoded, const char* pszCodecOption,
                        PFN_DecodedData pfnData) = 0;  // 22
  // Writes the sound as the class's own kind of file; false without a sound. The arguments are
  // those of I_WavData::Convert, and an existing file is kept in the same way.
  virtual bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                         PFN_CodecProgress pfnProgress, bool bForceEncode,
                         unsigned int dwCodecOption) = 0;  // 23
};

// Releases a file object for its owner.
struct S_WavFileReleaser {
  void operator()(I_WavFile* pIWavFile) const { pIWavFile->Release(); }
};
using C_WavFilePtr = std::unique_ptr<I_WavFile, S_WavFileReleaser>;
