// SPDX-License-Identifier: Apache-2.0
//
// The one entry through which a sound file of any kind is opened. Knows all file classes and tries
// them in a fixed order: RIFF sound files, then Kestrel files.
#pragma once

#include <memory>

#include "interface/I_WavFileFormat.h"

class C_WavFileFormat : public I_WavFileFormat {
 public:
  C_WavFileFormat() = default;
  ~C_WavFileFormat() override = default;
  C_WavFileFormat(const C_WavFileFormat&) = delete;
  C_WavFileFormat& operator=(const C_WavFileFormat&) = delete;

  void Release() override;
  // The identifier of the file's SP header when it has one, otherwise AUDIO_FILE_WAVE for both RIFF
  // forms, otherwise AUDIO_FILE_UNKNOWN.
  tagAudioFileType GetFileFormat(const char* pszFileName) override;
  // False for every kind but AUDIO_FILE_WAVE.
  bool IsFileFormat(const char* pszFileName, tagAudioFileType eType) override;
  I_WavFile* CreateWavFile(const char* pszFileName, bool bLoadData, bool bKeepEncoded,
                           const char* pszCodecOption, PFN_DecodedData pfnData) override;
  I_WavFile* OpenWavFile(const char* pszFileName) override;
  // Looks at the first format tag of a RIFF file of form "WAVE", and at nothing else.
  bool IsSupportedFormat(const char* pszFileName) override;
  bool IsCodecAvailable() override { return true; }

  // RIFF sound files of both forms.
  bool IsWavFile(const char* pszFileName);

  // Opens the file as class T. On failure pOut is null and the object is gone.
  //
  // Kept: a load that fails is tried once more, with the codec parameters' platform set to
  // AUDIO_CODEC_PLATFORM_FALLBACK, although pieces that were handed to pfnData are then handed over
  // twice; some streams load only so. Pinned by AStreamThatFailsAtItsEndIsHeardTwice.
  //
  // T: default constructor, LoadByName, OpenByName, GetAudioCodecParam.
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
