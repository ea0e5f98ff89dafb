// SPDX-License-Identifier: Apache-2.0
#include "WavFileFormat.h"

#include <algorithm>
#include <array>
#include <cstdint>

#include "ByteReader.h"
#include "RiffFile.h"
#include "VcmAssert.h"
#include "compressed/WavFileCodecInfo.h"
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

// The kinds that detection finds in files without an SP header.
//
// Kept: VEMD has no row, because the check of WAVE accepts that form too. Such a file is reported
// as a WAVE file here, and as VEMD by its own object. Pinned by VemdFile_IsAWaveFileToDetection.
constexpr auto kFormatChecks =
    std::to_array<S_FormatCheck>({{AUDIO_FILE_WAVE, &C_WavFileFormat::IsWavFile}});

template <typename File>
I_WavFile* Open(const char* pszFileName, bool bLoadData, bool bKeepEncoded,
                const char* pszCodecOption, PFN_DecodedData pfnData) {
  File* pFile = nullptr;
  C_WavFileFormat::CreateWavFile(pFile, pszFileName, bLoadData, bKeepEncoded, pszCodecOption,
                                 pfnData);
  return pFile;
}

std::unique_ptr<I_WavFile> MakeRiffFile(tagAudioFileType eType, tagAudioFileType /*eEncodedType*/) {
  auto file = std::make_unique<C_WavFile>();
  file->SetFileFormat(eType);
  return file;
}

template <typename File>
std::unique_ptr<I_WavFile> MakeCodecFile(tagAudioFileType /*eType*/,
                                         tagAudioFileType eEncodedType) {
  auto file = std::make_unique<File>();
  file->SetCodingType(eEncodedType);
  return file;
}

// A kind of file that can be written, and the class that handles it.
struct S_FileClass {
  tagAudioFileType eType;
  // Opens a file with the class; null for a kind whose class has an earlier row.
  decltype(&Open<C_WavFile>) pfnOpen;
  // Makes an object that writes files of the kind.
  decltype(&MakeRiffFile) pfnMake;
};

// The classes are tried from top to bottom, and the order matters: RIFF sound files are opened
// before any codec is asked, and the first Heron class takes every Heron file.
constexpr auto kFileClasses = std::to_array<S_FileClass>({
    {AUDIO_FILE_WAVE, &Open<C_WavFile>, &MakeRiffFile},
    {AUDIO_FILE_VEMD, nullptr, &MakeRiffFile},
    {AUDIO_FILE_HERON_4BIT, &Open<C_Heron4BitFile>, &MakeCodecFile<C_Heron4BitFile>},
    {AUDIO_FILE_HERON_5BIT, &Open<C_Heron5BitFile>, &MakeCodecFile<C_Heron5BitFile>},
    {AUDIO_FILE_HERON_6BIT, &Open<C_Heron6BitFile>, &MakeCodecFile<C_Heron6BitFile>},
    {AUDIO_FILE_HERON_2BIT, &Open<C_Heron2BitFile>, &MakeCodecFile<C_Heron2BitFile>},
    {AUDIO_FILE_HERON_3BIT, &Open<C_Heron3BitFile>, &MakeCodecFile<C_Heron3BitFile>},
    {AUDIO_FILE_KESTREL, &Open<C_KestrelFile>, &MakeCodecFile<C_KestrelFile>},
});

bool HasAcceptedTag(C_RiffChunk& chunk) {
  std::array<std::uint8_t, 2> tag{};
  return chunk.GetData(tag.data(), tag.size(), 0) &&
         C_WavFileCodecInfo::IsAcceptedTag(vcm::C_ByteReader(tag).U16());
}

}  // namespace

void C_WavFileFormat::Release() { delete this; }

tagAudioFileType C_WavFileFormat::GetFileFormat(const char* pszFileName) {
  // No file begins both as RIFF and as an SP header. RIFF comes first, so that a WAVE file is
  // opened once.
  for (const S_FormatCheck& row : kFormatChecks) {
    if ((this->*row.pfnCheck)(pszFileName)) return row.eType;
  }
  const unsigned short wID = GetSpFileID(pszFileName);
  return wID == C_SpHeader::kNoID ? AUDIO_FILE_UNKNOWN : static_cast<tagAudioFileType>(wID);
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
  for (const S_FileClass& row : kFileClasses) {
    if (row.pfnOpen == nullptr) continue;
    I_WavFile* const pIWavFile =
        row.pfnOpen(pszFileName, bLoadData, bKeepEncoded, pszCodecOption, pfnData);
    if (pIWavFile != nullptr) return pIWavFile;
  }
  return nullptr;
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
  // Kept: a file without a format counts as supported. Callers open the file next and find out then
  // that it cannot be opened. Pinned by FileWithoutFormat_CountsAsSupported.
  return true;
}

bool C_WavFileFormat::IsWavFile(const char* pszFileName) {
  C_WavFile file;
  return file.CheckFormat(pszFileName, false);
}

std::unique_ptr<I_WavFile> vcm::MakeWavFile(tagAudioFileType eType, tagAudioFileType eEncodedType) {
  const auto* const pRow = std::ranges::find(kFileClasses, eType, &S_FileClass::eType);
  return pRow == kFileClasses.end() ? nullptr : pRow->pfnMake(eType, eEncodedType);
}
