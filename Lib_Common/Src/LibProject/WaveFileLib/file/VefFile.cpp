// SPDX-License-Identifier: Apache-2.0
#include "file/VefFile.h"

bool C_VefFile::CheckFormat(const char* pszFileName, bool bWithInfo) {
  return CheckVefFormat(pszFileName, bWithInfo, {});
}

bool C_VefFile::LoadData(bool /*bKeepEncoded*/, const char* /*pszCodecOption*/,
                         PFN_DecodedData /*pfnData*/) {
  return LoadVefAsStored();
}

bool C_VefFile::WriteFile(const char* pszFileName, bool /*bEncode*/, bool bWriteCodecHead,
                          PFN_CodecProgress /*pfnProgress*/, bool /*bForceEncode*/,
                          unsigned int /*dwCodecOption*/) {
  return WriteVef(pszFileName, "VEFF", bWriteCodecHead,
                  static_cast<tagAudioFileType>(GetCodingType()));
}

bool C_VefFile::WriteDataChunk(C_RiffFile* /*pRiffFile*/) { return true; }
