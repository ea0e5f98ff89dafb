// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FakeLibrary.h"

class C_WavFileFormat {
 public:
  C_WavFileFormat() = default;
  ~C_WavFileFormat();
  C_WavFileFormat(const C_WavFileFormat&) = delete;
  C_WavFileFormat& operator=(const C_WavFileFormat&) = delete;

  I_WavFile* CreateWavFile(const char* pszFileName, bool bLoadData, bool bKeepEncoded,
                           const char* pszCodecOption, PFN_DecodedData pfnData);
};
