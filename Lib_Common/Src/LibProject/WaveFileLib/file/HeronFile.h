// SPDX-License-Identifier: Apache-2.0
//
// Files that hold a Heron stream (HeronCodec.h) after an SP header or in a VEF container: see
// CodecFileBase.h.
//
// All classes open the same files, because the stream itself says which variant it is. The classes
// differ only in the variant that they write.
//
// Kept: after an SP header, the identifiers of 4, 5 and 6 bits (32, 33, 34) are accepted, but those
// of 2 and 3 bits (35, 36) are refused. Players in the field know only the first three, and a
// header that they cannot read must not come into use. Pinned by
// SpHeaderOfTwoOrThreeBits_IsRefused.
#pragma once

#include <array>

#include "file/CodecFileBase.h"

class C_HeronFileBase : public C_CodecFileBase {
 public:
  // Writes a file of the target type: with bEncode the bare stream, otherwise a VEF container that
  // holds the PCM and the stream. C_CodecFileBase::WriteAs says what the arguments mean;
  // dwCodecOption has no effect. The encoder takes any supported width and any channel count, at
  // 4000 to 48000 Hz.
  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override;  // 23

  // The variant that is written.
  [[nodiscard]] tagAudioFileType GetTargetType() const { return m_eTargetType; }

 protected:
  explicit C_HeronFileBase(tagAudioFileType eTargetType)
      : C_CodecFileBase({kHeronSpTypes, kForeignTypes}), m_eTargetType(eTargetType) {}

  void SetTargetType(tagAudioFileType eTargetType) { m_eTargetType = eTargetType; }

 private:
  static constexpr std::array kForeignTypes = {kKestrelTypes};

  // pfnData is never called, because the stream is decoded as a whole.
  bool DecodeStream(const unsigned char* pbyStream, unsigned int dwLength,
                    PFN_DecodedData pfnData) override;
  bool Encode(I_WavData* piWavData, PFN_CodecProgress pfnProgress, S_Stream* pStream);
  bool MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream) override;

  tagAudioFileType m_eTargetType;
};

// The files of one variant.
template <tagAudioFileType eType>
class C_HeronVariantFile : public C_HeronFileBase {
 public:
  C_HeronVariantFile() : C_HeronFileBase(eType) {}
  ~C_HeronVariantFile() override = default;

  bool WriteFile(const char* pszFileName, bool bEncode, bool bWriteCodecHead,
                 PFN_CodecProgress pfnProgress, bool bForceEncode,
                 unsigned int dwCodecOption) override {  // 23
    SetTargetType(eType);
    return C_HeronFileBase::WriteFile(pszFileName, bEncode, bWriteCodecHead, pfnProgress,
                                      bForceEncode, dwCodecOption);
  }
};

class C_Heron2BitFile : public C_HeronVariantFile<AUDIO_FILE_HERON_2BIT> {};
class C_Heron3BitFile : public C_HeronVariantFile<AUDIO_FILE_HERON_3BIT> {};
class C_Heron4BitFile : public C_HeronVariantFile<AUDIO_FILE_HERON_4BIT> {};
class C_Heron5BitFile : public C_HeronVariantFile<AUDIO_FILE_HERON_5BIT> {};
class C_Heron6BitFile : public C_HeronVariantFile<AUDIO_FILE_HERON_6BIT> {};
