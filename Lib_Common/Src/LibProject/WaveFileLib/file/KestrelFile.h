// SPDX-License-Identifier: Apache-2.0
//
// A file that holds a Kestrel stream (KestrelCodec.h) after an SP header with identifier 14 or in a
// VEF container: see CodecFileBase.h.
#pragma once

#include <array>

#include "file/CodecFileBase.h"

class C_MonoSamples;

class C_KestrelFile : public C_CodecFileBase {
 public:
  C_KestrelFile() : C_CodecFileBase({kKestrelTypes, kForeignTypes}) {}
  ~C_KestrelFile() override = default;

  // Writes a Kestrel file: with bEncode the bare stream, otherwise a VEF container that holds the
  // PCM and the stream. C_CodecFileBase::WriteAs says what the arguments mean; dwCodecOption has no
  // effect. The bit rate is that of the sound's codec parameters
  // (C_KestrelCodec::IsSupportedBitRate, 0 means 16000 bit/s). The sound is converted to 16 bits
  // and to mono first, but it is not resampled: Kestrel is made for 16 kHz.
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override;  // 23

 private:
  static constexpr std::array kForeignTypes = {kHeronTypes};

  bool DecodeStream(const unsigned char* pbyStream, unsigned int dwLength,
                    PFN_DecodedData pfnData) override;
  bool Encode(C_MonoSamples& samples, PFN_CodecProgress pfnProgress, S_Stream* pStream);
  bool MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream) override;
};
