// SPDX-License-Identifier: Apache-2.0
//
// Recognises sound files and makes file objects for them.
#pragma once

#include "interface/I_WavFile.h"

class I_WavFileFormat {
 public:
  virtual void Release() = 0;  // 1, deletes; never call it on an object that was not made with new
  virtual tagAudioFileType GetFileFormat(const char* pszFileName) = 0;             // 2
  virtual bool IsFileFormat(const char* pszFileName, tagAudioFileType eType) = 0;  // 3
  // Opens a sound file of any kind that the library reads. Returns an object of the first class
  // that opens it, which the caller ends with Release; null when no class does.
  //   bLoadData       true: loads the whole sound into memory. False: loads only its format and
  //                   its informational chunks; the events, silence segments and regions of a WAV
  //                   file are made from those chunks when the samples load. The other arguments
  //                   then have no effect.
  // The last three are those of I_WavFile::LoadData:
  //   bKeepEncoded    matters only for a VEF container: true reads the PCM that it stores, false
  //                   decodes its stream.
  //   pszCodecOption  no effect.
  //   pfnData         may be null; called with each decoded frame of a Kestrel stream that stands
  //                   after an SP header, and for no other file. A load that
  //                   fails is tried once more, and pfnData then gets the first frames again.
  virtual I_WavFile* CreateWavFile(const char* pszFileName, bool bLoadData, bool bKeepEncoded,
                                   const char* pszCodecOption, PFN_DecodedData pfnData) = 0;  // 4
  // The same as CreateWavFile with bLoadData false.
  virtual I_WavFile* OpenWavFile(const char* pszFileName) = 0;  // 5
  virtual bool IsSupportedFormat(const char* pszFileName) = 0;  // 6
  virtual bool IsCodecAvailable() = 0;                          // 7
  virtual ~I_WavFileFormat() = default;                         // 8, 9
};
