// SPDX-License-Identifier: Apache-2.0
//
// A file that holds a Kestrel stream (KestrelCodec.h) behind an SP header (SpHeader.h) with
// identifier 14. The sound gets the sample rate that the header names, one channel and 16 bits.
//
// Streams inside VEF containers are not read or written: whatever would need one is false.
#pragma once

#include <memory>

#include "WavFileBase.h"

class C_KestrelCodec;
class C_RiffFile;

class C_KestrelFile : public C_WavFileBase {
 public:
  // How the file stores its stream.
  enum tagContainerKind : signed char {
    kNotOpened = -1,
    kSpHeader = 0,
    kVefContainer = 1,
  };

  C_KestrelFile() = default;
  ~C_KestrelFile() override = default;

  // A header with another identifier is refused, and so is a stream without a header.
  bool CheckFormat(const char* pszFileName, bool bWithInfo) override;  // 21
  // Decodes the file that was opened by name. The sound keeps a copy of the stream as its encoded
  // form. bKeepEncoded and pszCodecOption have no effect.
  bool LoadData(bool bKeepEncoded, const char* pszCodecOption,
                PFN_DecodedData pfnData) override;  // 22
  // Writes the sound as a bare stream, without an SP header, at the bit rate of the sound's codec
  // parameters. When the coding type is Kestrel's already and bForceEncode is false, the encoded
  // form that the sound carries is written unchanged. The target is created when the stream is
  // complete, not before. False, and nothing created, when bEncode is false or bWriteCodecHead is
  // true: both write parts of a VEF container.
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override;  // 23
  // Adds the stream, made as by WriteFile with its last bForceEncode, to pRiffFile as chunk "vdat".
  virtual bool WriteDataChunk(C_RiffFile* pRiffFile);  // 24

  [[nodiscard]] bool IsForceEncode() const { return m_bForceEncode; }
  [[nodiscard]] tagContainerKind GetContainerKind() const { return m_eContainerKind; }

 private:
  // A stream that is borrowed from the sound or, when pbyOwned is set, was encoded for this use.
  struct S_Stream {
    std::unique_ptr<unsigned char[]> pbyOwned;
    const unsigned char* pbyData = nullptr;
    unsigned int dwLength = 0;
  };

  bool Decode(const char* pszFileName, C_KestrelCodec& codec, PFN_DecodedData pfnData);
  bool Encode(I_WavData* pIMonoData, C_KestrelCodec& codec, PFN_CodecProgress pfnProgress,
              S_Stream* pStream);
  bool MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream);

  bool m_bForceEncode = false;
  tagContainerKind m_eContainerKind = kNotOpened;
};
