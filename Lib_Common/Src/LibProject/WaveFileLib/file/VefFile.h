// SPDX-License-Identifier: Apache-2.0
//
// VEF containers (VefFileBase.h) by themselves: their PCM and annotations, without their encoded
// stream. C_WavFileFormat never opens a file with this class; applications make the object
// themselves.
#pragma once

#include "file/VefFileBase.h"

class C_VefFile : public C_VefFileBase {
 public:
  C_VefFile() = default;
  ~C_VefFile() override = default;

  // Accepts containers of every coding type. With bWithInfo, also fills the sound, as C_VefFileBase
  // says.
  bool CheckFormat(const char* pszFileName, bool bWithInfo) override;  // 21
  // Reads the stored samples of the file that OpenByName opened; the arguments have no effect.
  // Samples that the file lacks are zero, see C_WavFileBase::kMaxMissingBytes. False without a
  // sound, and when the file cannot be read or lacks more than that.
  bool LoadData(bool bKeepEncoded, const char* pszCodecOption,
                PFN_DecodedData pfnData) override;  // 22
  // Writes a container with the PCM and the annotations, never with an encoded stream.
  // bWriteCodecHead adds a "vafm" chunk with the object's coding type. The other arguments have no
  // effect. See WriteVef for what makes it fail.
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override;  // 23
  // Adds nothing, because this class has no stream. Always true.
  bool WriteDataChunk(C_RiffFile* pRiffFile) override;  // 24

  using C_VefFileBase::WriteVef;
};
