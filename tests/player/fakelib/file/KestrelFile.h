// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "FakeLibrary.h"

class C_KestrelFile : public C_FakeWavFile {
 public:
  C_KestrelFile() : C_FakeWavFile("kestrel") {}

  bool LoadByName(const char* pszFileName, bool bKeepEncoded, const char* pszCodecOption,
                  PFN_DecodedData pfnData);
};
