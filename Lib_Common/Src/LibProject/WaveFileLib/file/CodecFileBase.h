// SPDX-License-Identifier: Apache-2.0
//
// What the files of the library's own codecs share. They hold an encoded stream
//
//   behind an SP header (SpHeader.h): the sound gets the sample rate that the header names, or
//   in a VEF container (VefFileBase.h): the sound gets the sample rate of the container,
//
// one channel and 16 bits. A derived class says which types are its own and codes its streams.
#pragma once

#include <memory>
#include <optional>

#include "file/VefFileBase.h"

class C_RiffFile;

class C_CodecFileBase : public C_VefFileBase {
 public:
  // How the file stores its stream.
  enum tagContainerKind : signed char {
    kNotOpened = -1,
    kSpHeader = 0,
    kVefContainer = 1,
  };

  // Files with an SP header need one of the own types, and sounds get the header's. Others must be
  // VEF containers that do not say a foreign type.
  bool CheckFormat(const char* pszFileName, bool bWithInfo) override;  // 21
  // Decodes the stream of the file that was opened by name; the sound keeps a copy of it as its
  // encoded form. Of a container, nothing is handed to pfnData, and with bKeepEncoded the PCM is
  // read as stored instead. pszCodecOption has no effect.
  bool LoadData(bool bKeepEncoded, const char* pszCodecOption,
                PFN_DecodedData pfnData) override;  // 22

  // Adds the stream, made as by WriteFile with its last bForceEncode, to pRiffFile as chunk "vdat".
  bool WriteDataChunk(C_RiffFile* pRiffFile) override;  // 24

  [[nodiscard]] bool IsForceEncode() const { return m_bForceEncode; }
  [[nodiscard]] tagContainerKind GetContainerKind() const { return m_eContainerKind; }

 protected:
  struct S_Family {
    S_AudioFileTypes spTypes;          // own types behind an SP header
    S_AudioFileTypes foreignVefTypes;  // what containers of other codecs say
  };
  // A stream that is borrowed from the sound or, when pbyOwned is set, was encoded for this use.
  struct S_Stream {
    std::unique_ptr<unsigned char[]> pbyOwned;
    const unsigned char* pbyData = nullptr;
    unsigned int dwLength = 0;
  };

  explicit C_CodecFileBase(const S_Family& family) : m_family(family) {}

  // Writes the sound as a bare stream of the type, without an SP header; with bWriteCodecHead
  // behind a codec head (CodecHead.h). When the coding type is that type already and bForceEncode
  // is false, the encoded form that the sound carries is written unchanged. Without bEncode, writes
  // a VEF container that holds the sound and that stream. The target is created when the stream is
  // complete, not before; a failed write may leave a partial file.
  bool WriteAs(tagAudioFileType eType, const char* pszFileName, bool bEncode, bool bWriteCodecHead,
               PFN_CodecProgress pfnProgress, bool bForceEncode);
  // Is the sound's encoded form to be written instead of a new one?
  [[nodiscard]] bool ReusesStream(unsigned int dwType) {
    return !m_bForceEncode && GetCodingType() == dwType;
  }
  // The sound's encoded form; false when there is none.
  bool BorrowStream(S_Stream* pStream);

 private:
  // Decodes a stream, null when empty, into the sound, which is there.
  virtual bool DecodeStream(const unsigned char* pbyStream, unsigned int dwLength,
                            PFN_DecodedData pfnData) = 0;  // 25
  // The stream that is to be written: the sound's encoded form or a new one.
  virtual bool MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream) = 0;  // 26
  // Creates the file, with a codec head of the type when one is given.
  bool WriteStreamFile(const char* pszFileName, const S_Stream& stream,
                       std::optional<tagAudioFileType> eHeadType);
  bool LoadSpStream(PFN_DecodedData pfnData);
  bool LoadVefStream();
  // Gives the sound the stream as its encoded form, and decodes it.
  bool TakeStream(const unsigned char* pbyStream, unsigned int dwLength, PFN_DecodedData pfnData);

  S_Family m_family;
  bool m_bForceEncode = false;
  tagContainerKind m_eContainerKind = kNotOpened;
};
