// SPDX-License-Identifier: Apache-2.0
//
// A file that holds a Kestrel stream (KestrelCodec.h) behind an SP header with identifier 14 or in
// a VEF container: see CodecFileBase.h.
#pragma once

#include <array>

#include "file/CodecFileBase.h"

class C_KestrelFile : public C_CodecFileBase {
 public:
  C_KestrelFile() : C_CodecFileBase({kKestrelTypes, kForeignTypes}) {}
  ~C_KestrelFile() override = default;

  // Writes Kestrel, at the bit rate of the sound's codec parameters: see C_CodecFileBase::WriteAs.
  // dwCodecOption has no effect.
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override;  // 23

 private:
  static constexpr std::array kForeignTypes = {kHeronTypes};

  bool DecodeStream(const unsigned char* pbyStream, unsigned int dwLength,
                    PFN_DecodedData pfnData) override;
  bool Encode(I_WavData* pIMonoData, PFN_CodecProgress pfnProgress, S_Stream* pStream);
  bool MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream) override;
};
