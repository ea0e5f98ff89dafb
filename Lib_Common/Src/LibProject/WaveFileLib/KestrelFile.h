// SPDX-License-Identifier: Apache-2.0
//
// A file that holds a Kestrel stream (KestrelCodec.h) behind an SP header with identifier 14 or in
// a VEF container: see CodecFileBase.h.
#pragma once

#include "CodecFileBase.h"

class C_RiffFile;

class C_KestrelFile : public C_CodecFileBase {
 public:
  C_KestrelFile() : C_CodecFileBase({kKestrelTypes, kHeronTypes}) {}
  ~C_KestrelFile() override = default;

  // Writes the sound as a bare stream, without an SP header, at the bit rate of the sound's codec
  // parameters; with bWriteCodecHead behind a codec head (CodecHead.h). When the coding type is
  // Kestrel's already and bForceEncode is false, the encoded form that the sound carries is written
  // unchanged. Without bEncode, writes a VEF container that holds the sound and that stream. The
  // target is created when the stream is complete, not before.
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override;  // 23
  // Adds the stream, made as by WriteFile with its last bForceEncode, to pRiffFile as chunk "vdat".
  bool WriteDataChunk(C_RiffFile* pRiffFile) override;  // 24

 private:
  bool DecodeStream(const unsigned char* pbyStream, unsigned int dwLength,
                    PFN_DecodedData pfnData) override;
  bool Encode(I_WavData* pIMonoData, PFN_CodecProgress pfnProgress, S_Stream* pStream);
  bool MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream);
};
