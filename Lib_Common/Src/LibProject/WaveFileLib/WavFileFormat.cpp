// SPDX-License-Identifier: Apache-2.0
#include "WavFileFormat.h"

#include <array>
#include <cstdint>

#include "ByteReader.h"
#include "RiffFile.h"
#include "VcmAssert.h"
#include "file/HeronFile.h"
#include "file/KestrelFile.h"
#include "file/SpHeader.h"
#include "file/WavFile.h"
#include "sound/WavFileMaker.h"

namespace {

constexpr const char* kSource = "WaveFileLib/WavFileFormat";

struct S_FormatCheck {
  tagAudioFileType eType;
  bool (C_WavFileFormat::*pfnCheck)(const char* pszFileName);
};

// Kept: one row, although the check accepts the form "VEMD" too; such a file is reported as a WAVE
// file here and as VEMD by its own object. Pinned by VemdFile_IsAWaveFileToDetection.
constexpr std::array<S_FormatCheck, 1> kFormatChecks = {
    {{AUDIO_FILE_WAVE, &C_WavFileFormat::IsWavFile}}};

// The classes are tried in the order given.
template <typename... Classes, typename... Arguments>
I_WavFile* FirstThatOpens(const Arguments&... arguments) {
  I_WavFile* pIWavFile = nullptr;
  const auto tryClass = [&]<typename T>(T* pFile) {
    if (C_WavFileFormat::CreateWavFile(pFile, arguments...)) pIWavFile = pFile;
    return pIWavFile != nullptr;
  };
  static_cast<void>((tryClass(static_cast<Classes*>(nullptr)) || ...));
  return pIWavFile;
}

template <typename File>
std::unique_ptr<I_WavFile> MakeCodecFile(tagAudioFileType eEncodedType) {
  auto file = std::make_unique<File>();
  file->SetCodingType(eEncodedType);
  return file;
}

bool HasAcceptedTag(C_RiffChunk& chunk) {
  std::array<std::uint8_t, 2> tag{};
  return chunk.GetData(tag.data(), tag.size(), 0) &&
         C_WavFileCodecInfo::IsAcceptedTag(vcm::C_ByteReader(tag).U16());
}

}  // namespace

void C_WavFileFormat::Release() { delete this; }

tagAudioFileType C_WavFileFormat::GetFileFormat(const char* pszFileName) {
  const unsigned short wID = GetSpFileID(pszFileName);
  if (wID != C_SpHeader::kNoID) return static_cast<tagAudioFileType>(wID);
  for (const S_FormatCheck& row : kFormatChecks) {
    if ((this->*row.pfnCheck)(pszFileName)) return row.eType;
  }
  return AUDIO_FILE_UNKNOWN;
}

bool C_WavFileFormat::IsFileFormat(const char* pszFileName, tagAudioFileType eType) {
  for (const S_FormatCheck& row : kFormatChecks) {
    if (row.eType == eType) return (this->*row.pfnCheck)(pszFileName);
  }
  return false;
}

I_WavFile* C_WavFileFormat::CreateWavFile(const char* pszFileName, bool bLoadData,
                                          bool bKeepEncoded, const char* pszCodecOption,
                                          PFN_DecodedData pfnData) {
  return FirstThatOpens<C_WavFile, C_Heron4BitFile, C_Heron5BitFile, C_Heron6BitFile,
                        C_Heron2BitFile, C_Heron3BitFile, C_KestrelFile>(
      pszFileName, bLoadData, bKeepEncoded, pszCodecOption, pfnData);
}

I_WavFile* C_WavFileFormat::OpenWavFile(const char* pszFileName) {
  return CreateWavFile(pszFileName, /*bLoadData=*/false, /*bKeepEncoded=*/true, nullptr, nullptr);
}

bool C_WavFileFormat::IsSupportedFormat(const char* pszFileName) {
  C_RiffFile riff;
  if (!riff.Open(pszFileName, "WAVE")) return false;
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk* pChunk = riff.GetChunkAt(i);
    VCM_ASSERT(pChunk != nullptr, "IsSupportedFormat", kSource, __LINE__, "pChunk != NULL");
    if (pChunk->HasChunkID("fmt ")) return HasAcceptedTag(*pChunk);
  }
  // Kept: a file without a format counts as supported; whoever asks opens it next and learns why it
  // is not. Pinned by FileWithoutFormat_CountsAsSupported.
  return true;
}

bool C_WavFileFormat::IsWavFile(const char* pszFileName) {
  C_WavFile file;
  return file.CheckFormat(pszFileName, false);
}

std::unique_ptr<I_WavFile> MakeWavFile(tagAudioFileType eType, tagAudioFileType eEncodedType) {
  switch (eType) {
    case AUDIO_FILE_WAVE:
    case AUDIO_FILE_VEMD: {
      auto file = std::make_unique<C_WavFile>();
      file->SetFileFormat(eType);
      return file;
    }
    case AUDIO_FILE_KESTREL:
      return MakeCodecFile<C_KestrelFile>(eEncodedType);
    case AUDIO_FILE_HERON_4BIT:
      return MakeCodecFile<C_Heron4BitFile>(eEncodedType);
    case AUDIO_FILE_HERON_5BIT:
      return MakeCodecFile<C_Heron5BitFile>(eEncodedType);
    case AUDIO_FILE_HERON_6BIT:
      return MakeCodecFile<C_Heron6BitFile>(eEncodedType);
    case AUDIO_FILE_HERON_2BIT:
      return MakeCodecFile<C_Heron2BitFile>(eEncodedType);
    case AUDIO_FILE_HERON_3BIT:
      return MakeCodecFile<C_Heron3BitFile>(eEncodedType);
    default:
      return nullptr;
  }
}
