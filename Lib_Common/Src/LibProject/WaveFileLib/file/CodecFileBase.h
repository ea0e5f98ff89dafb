// SPDX-License-Identifier: Apache-2.0
//
// What the files of the library's own codecs share. They hold an encoded stream in one of two
// forms:
//
//   after an SP header (SpHeader.h): the sound gets the sample rate that the header names
//   in a VEF container (VefFileBase.h): the sound gets the sample rate of the container
//
// A decoded sound has one channel and 16 bits. A derived class says which types are its own, and
// encodes and decodes its streams.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "StdioFile.h"
#include "file/VefFileBase.h"

class C_RiffFile;

// One object can load several files, one after another. What a load replaces in the sound depends
// on the form of the file:
//
//   VEF container   as C_VefFileBase says
//   SP header       opening the file replaces the format, with length 0, and the coding type;
//                   LoadData then replaces the PCM, the encoded form and its type. Events, silence
//                   segments, regions, cue points, labels, loops and extra chunks of an earlier
//                   file stay, because a file with an SP header says nothing about them.
class C_CodecFileBase : public C_VefFileBase {
 public:
  // The form in which the file stores its stream.
  enum tagContainerKind : signed char {
    kNotOpened = -1,
    kSpHeader = 0,
    kVefContainer = 1,
  };

  // Accepts a file with an SP header whose identifier is one of the class's own types, and a VEF
  // container that does not name a type of the library's other codec. A file with any other SP
  // header is refused. With bWithInfo, the sound gets the format, and a VEF container also gives it
  // its annotations.
  bool CheckFormat(const char* pszFileName, bool bWithInfo) override;  // 21
  // Reads the sound of the file that OpenByName opened.
  //
  //   bKeepEncoded    matters only for VEF containers. true: reads the PCM that is stored beside
  //                   the stream; the sound then has no encoded form. false: decodes the stream
  //   pszCodecOption  has no effect
  //   pfnData         receives the PCM of a Kestrel stream after an SP header, frame by frame, as
  //                   it is decoded; may be null. Never called for a container or for Heron
  //
  // A sound whose stream is decoded keeps a copy of the stream as its encoded form. Without an
  // encoded form, the sound can be written as the type that it was loaded from only with
  // bForceEncode. False when no file is open, when the file cannot be read, and when it holds no
  // stream or one that cannot be decoded.
  bool LoadData(bool bKeepEncoded, const char* pszCodecOption,
                PFN_DecodedData pfnData) override;  // 22

  // Adds the stream to pRiffFile as chunk "vdat". The stream is made in the same way as in
  // WriteFile, with the bForceEncode of the last WriteFile call (false before the first call).
  // Returns false for null, without a sound, and when there is no stream to add.
  bool WriteDataChunk(C_RiffFile* pRiffFile) override;  // 24

  // bForceEncode of the last WriteFile call, even if that call failed; false before the first call.
  [[nodiscard]] bool IsForceEncode() const { return m_bForceEncode; }
  // The form of the last file that CheckFormat accepted, with or without bWithInfo.
  [[nodiscard]] tagContainerKind GetContainerKind() const { return m_eContainerKind; }

 protected:
  struct S_Family {
    S_AudioFileTypes spTypes;  // the types that the class takes after an SP header
    // The types that containers of other codecs name. The ranges must outlive the object.
    std::span<const S_AudioFileTypes> foreignVefTypes;
  };
  // A stream that is borrowed from the sound, or that was encoded for this use and is in a file.
  struct S_Stream {
    vcm::C_FilePtr file;  // at its beginning
    const unsigned char* pbyData = nullptr;
    std::shared_ptr<const void> keeper;  // of what is borrowed; null when nobody keeps it
    unsigned int dwLength = 0;

    void Own(vcm::C_FilePtr encoded, unsigned int dwEncoded) {
      file = std::move(encoded);
      dwLength = dwEncoded;
    }
  };

  explicit C_CodecFileBase(const S_Family& family) : m_family(family) {}

  // Writes the sound as a file of type eType. An existing file is replaced. The arguments have the
  // same meaning in WriteFile of the derived classes:
  //
  //   bEncode          true: the file is the bare stream, never with an SP header. false: the file
  //                    is a VEF container with the sound as PCM, its annotations and the stream
  //   bWriteCodecHead  with bEncode: true puts the 6-byte codec head (CodecHead.h) before the
  //                    stream. No effect on a container
  //   pfnProgress      gets the reports of the encoder (CodecCallback.h); may be null. Never called
  //                    for a container, nor when the encoded form of the sound is written
  //   bForceEncode     false: when the object's coding type is eType already, the encoded form that
  //                    the sound carries is written unchanged, even if the PCM was edited since.
  //                    true: the PCM is always encoded
  //
  // False without a sound, when the sound cannot be encoded, and when its encoded form is to be
  // written but does not exist. The target is written as vcm::C_TargetFile says: an existing file
  // is replaced only when everything is written, and a new one stays partial when a write fails.
  bool WriteAs(tagAudioFileType eType, const char* pszFileName, bool bEncode, bool bWriteCodecHead,
               PFN_CodecProgress pfnProgress, bool bForceEncode);
  // True when the sound's encoded form is to be written instead of a new stream.
  [[nodiscard]] bool ReusesStream(unsigned int dwType) {
    return !m_bForceEncode && GetCodingType() == dwType;
  }
  // Lends the sound's encoded form; false when the sound has none.
  bool BorrowStream(S_Stream* pStream);

 private:
  struct S_Head {
    tagAudioFileType eType;
    unsigned int dwSampleRate;
  };

  // Decodes the stream into the sound. The sound exists; pbyStream may be null when the stream is
  // empty.
  virtual bool DecodeStream(const unsigned char* pbyStream, unsigned int dwLength,
                            PFN_DecodedData pfnData) = 0;  // 25
  // Makes the stream that is to be written: the sound's encoded form or a new stream.
  virtual bool MakeStream(PFN_CodecProgress pfnProgress, S_Stream* pStream) = 0;  // 26
  // Writes the file: the codec head, when there is one, then the stream.
  static bool WriteStreamFile(const char* pszFileName, S_Stream& stream,
                              std::optional<S_Head> head);
  bool LoadSpStream(PFN_DecodedData pfnData);
  bool LoadVefStream();
  // Gives the sound the stream as its encoded form, and decodes the stream.
  bool TakeStream(std::unique_ptr<unsigned char[]> pbyStream, unsigned int dwLength,
                  PFN_DecodedData pfnData);

  S_Family m_family;
  bool m_bForceEncode = false;
  tagContainerKind m_eContainerKind = kNotOpened;
};
