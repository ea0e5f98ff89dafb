// SPDX-License-Identifier: Apache-2.0
//
// The one entry through which an application opens a sound file of any kind. It knows all file
// classes and tries them in a fixed order: RIFF sound files (WAVE and VEMD), then Heron files, then
// Kestrel files. Both codecs also open VEF containers: those that name Kestrel go to Kestrel only,
// those that name a Heron kind to Heron only, and all others to Heron first and then to Kestrel.
//
// A null name counts as a file that cannot be opened.
#pragma once

#include <memory>

#include "interface/I_WavFileFormat.h"

class C_WavFileFormat : public I_WavFileFormat {
 public:
  C_WavFileFormat() = default;
  ~C_WavFileFormat() override = default;
  C_WavFileFormat(const C_WavFileFormat&) = delete;
  C_WavFileFormat& operator=(const C_WavFileFormat&) = delete;

  // Deletes the object, which must have been made with new.
  void Release() override;
  // The identifier of the file's SP header when it has one, otherwise AUDIO_FILE_WAVE for a RIFF
  // sound file of either form that the library reads. AUDIO_FILE_UNKNOWN for everything else,
  // including VEF containers.
  tagAudioFileType GetFileFormat(const char* pszFileName) override;
  // True for a RIFF sound file when eType is AUDIO_FILE_WAVE. False for every other kind.
  bool IsFileFormat(const char* pszFileName, tagAudioFileType eType) override;
  // Opens a file as an object of the first class that accepts and loads it; null when no class
  // does. The caller ends the object with one Release.
  //
  //   bLoadData       true: loads the samples. false: the sound gets its format and informational
  //                   chunks only, and the arguments below have no effect
  //   bKeepEncoded    matters only for VEF containers. true: reads the PCM that is stored beside
  //                   the stream; the sound then has no encoded form. false: decodes the stream
  //   pszCodecOption  has no effect anywhere
  //   pfnData         receives the PCM of a Kestrel stream after an SP header, frame by frame, as
  //                   it is decoded; may be null. Never called for any other file
  //
  // A load that fails is tried a second time; see the template below.
  I_WavFile* CreateWavFile(const char* pszFileName, bool bLoadData, bool bKeepEncoded,
                           const char* pszCodecOption, PFN_DecodedData pfnData) override;
  // The same as CreateWavFile with bLoadData false.
  I_WavFile* OpenWavFile(const char* pszFileName) override;
  // Looks only at the first format tag of a RIFF file of form "WAVE"; false for any other file.
  bool IsSupportedFormat(const char* pszFileName) override;
  // Always true, because the codecs are part of the library.
  bool IsCodecAvailable() override { return true; }

  // True for a RIFF sound file of either form that the library reads.
  bool IsWavFile(const char* pszFileName);

  // Opens the file as class T; the arguments are those above. On success pOut is the new object,
  // which the caller ends with Release. On failure pOut is null and no object is left.
  //
  // Kept: a load that fails is tried once more, with the platform of the codec parameters set to
  // AUDIO_CODEC_PLATFORM_FALLBACK, although pfnData then gets the same pieces twice. Some streams
  // load only this way. Pinned by StreamThatFailsAtItsEnd_IsHeardTwice.
  //
  // T needs a default constructor, LoadByName, OpenByName and GetAudioCodecParam.
  template <typename T>
  static bool CreateWavFile(T*& pOut, const char* pszFileName, bool bLoadData, bool bKeepEncoded,
                            const char* pszCodecOption, PFN_DecodedData pfnData) {
    pOut = nullptr;
    auto file = std::make_unique<T>();
    bool bOpened = false;
    if (!bLoadData) {
      bOpened = file->OpenByName(pszFileName);
    } else {
      bOpened = file->LoadByName(pszFileName, bKeepEncoded, pszCodecOption, pfnData);
      if (!bOpened) {
        file->GetAudioCodecParam()->SetPlatform(AUDIO_CODEC_PLATFORM_FALLBACK);
        bOpened = file->LoadByName(pszFileName, bKeepEncoded, pszCodecOption, pfnData);
      }
    }
    if (!bOpened) return false;
    pOut = file.release();
    return true;
  }
};
