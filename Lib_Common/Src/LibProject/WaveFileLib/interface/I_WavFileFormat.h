// SPDX-License-Identifier: Apache-2.0
//
// Recognises sound files and makes the object for one.
#pragma once

#include "interface/I_WavFile.h"

class I_WavFileFormat {
 public:
  virtual void Release() = 0;  // 1, deletes; never call it on an object that was not made with new
  virtual tagAudioFileType GetFileFormat(const char* pszFileName) = 0;             // 2
  virtual bool IsFileFormat(const char* pszFileName, tagAudioFileType eType) = 0;  // 3
  // The object of the first class that opens the file, null when none does; the caller releases it.
  virtual I_WavFile* CreateWavFile(const char* pszFileName, bool bLoadData, bool bKeepEncoded,
                                   const char* pszCodecOption, PFN_DecodedData pfnData) = 0;  // 4
  virtual I_WavFile* OpenWavFile(const char* pszFileName) = 0;  // 5, without samples
  virtual bool IsSupportedFormat(const char* pszFileName) = 0;  // 6
  virtual bool IsCodecAvailable() = 0;                          // 7
  virtual ~I_WavFileFormat() = default;                         // 8, 9
};
