// SPDX-License-Identifier: Apache-2.0
//
// VEF containers (VefFileBase.h) as such: their PCM and annotations, without their encoded stream.
#pragma once

#include "file/VefFileBase.h"

class C_VefFile : public C_VefFileBase {
 public:
  C_VefFile() = default;
  ~C_VefFile() override = default;

  // Containers of every coding type.
  bool CheckFormat(const char* pszFileName, bool bWithInfo) override;  // 21
  // Reads the samples as stored of the file that was opened by name; the arguments have no effect.
  // Samples that the file lacks are zero, see C_WavFileBase::kMaxMissingBytes.
  bool LoadData(bool bKeepEncoded, const char* pszCodecOption,
                PFN_DecodedData pfnData) override;  // 22
  // Writes a container, with bWriteCodecHead one that says the object's coding type. The other
  // arguments have no effect.
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override;  // 23
  // Adds nothing: there is no stream here. True.
  bool WriteDataChunk(C_RiffFile* pRiffFile) override;  // 24

  using C_VefFileBase::WriteVef;
};
