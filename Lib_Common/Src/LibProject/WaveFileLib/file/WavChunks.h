// SPDX-License-Identifier: Apache-2.0
//
// The chunks of RIFF sound files, as all file classes that use them read and write them:
//
//   "fmt "  the plain 16-byte format record (PcmFormatRecord.h)
//   "data"  the samples
//   "cue ", "smpl", "LIST"  what the sound's info objects save (I_WavDataInfo.h)
//   others  the sound's extra chunks, verbatim
//
// The Add functions append to a file that is being assembled in memory. They return false when a
// chunk cannot be added or filled, which ends the writing. Samples and extra chunks are not copied:
// the sound must stay as it is until the file is saved.
#pragma once

#include <memory>
#include <optional>
#include <span>

#include "RiffFile.h"
#include "VcmAssert.h"
#include "file/WavFileBase.h"
#include "interface/I_WavDataInfo.h"

namespace wavchunks {

// What belongs to each interface of info objects: the kind to ask for, and the text of the
// assertion that stops the program when the object is missing.
template <typename Info>
struct S_InfoTraits;
template <>
struct S_InfoTraits<I_WavDataCueInfo> {
  static constexpr tagWavDataInfo kKind = WAV_DATA_INFO_CUE;
  static constexpr const char* kMissing = "bRet && (pICueInfo != NULL)";
};
template <>
struct S_InfoTraits<I_WavDataSamplerInfo> {
  static constexpr tagWavDataInfo kKind = WAV_DATA_INFO_SAMPLER;
  static constexpr const char* kMissing = "bRet && (pISamplerInfo != NULL)";
};
template <>
struct S_InfoTraits<I_WavDataListInfo> {
  static constexpr tagWavDataInfo kKind = WAV_DATA_INFO_LIST;
  static constexpr const char* kMissing = "bRet && (pIListInfo != NULL)";
};
template <>
struct S_InfoTraits<I_WavDataExtraChunkInfo> {
  static constexpr tagWavDataInfo kKind = WAV_DATA_INFO_EXTRA_CHUNK;
  static constexpr const char* kMissing = "bRet && (pIExtraChunkInfo != NULL)";
};

// The file's info object; null when the file has no sound, or the sound has no such object.
template <typename Info>
Info* InfoOf(C_WavFileBase& file) {
  void* pInfo = nullptr;
  return file.GetDataInfo(S_InfoTraits<Info>::kKind, &pInfo) ? static_cast<Info*>(pInfo) : nullptr;
}

// The same, for callers that cannot do without the object: a missing object stops the program.
template <typename Info>
Info& RequiredInfo(C_WavFileBase& file, const vcm::S_AssertSite& site) {
  Info* pInfo = InfoOf<Info>(file);
  VCM_ASSERT(pInfo != nullptr, site.pszFunction, site.pszSource, __LINE__,
             S_InfoTraits<Info>::kMissing);
  return *pInfo;
}

// Loads the chunk into the info object; false when the object cannot load it. Of a chunk that the
// end of the file cuts, the records that are whole are loaded, and the result is true: the sound
// before them must not be lost with them.
template <typename Info>
bool LoadInfo(Info& info, C_RiffChunk& chunk) {
  const std::unique_ptr<C_RiffChunk> heldPart = chunk.CreateHeldPart();
  if (!heldPart) return info.LoadInfo(&chunk);
  static_cast<void>(info.LoadInfo(heldPart.get()));
  return true;
}

// The same for the file's info object; false also when the object is missing.
template <typename Info>
bool LoadInfo(C_WavFileBase& file, C_RiffChunk& chunk) {
  Info* pInfo = InfoOf<Info>(file);
  return pInfo != nullptr && LoadInfo(*pInfo, chunk);
}

// A copy of the sound in the sample widths that its codec parameters set. When they set none,
// 12-bit samples become 16-bit ones. Holds null when the sound already has these widths. Empty when
// the sound cannot be converted, and when its format claims more bytes than its buffer holds.
std::optional<C_WavDataPtr> ConvertForWriting(I_WavData& wavData);

// Adds a chunk with a copy of the data. pData may be null when dwLength is 0.
bool AddChunk(C_RiffFile& riff, const char* pszID, const void* pData, unsigned int dwLength);
// The same without a copy: the data must stay as they are until the file is saved.
bool LendChunk(C_RiffFile& riff, const char* pszID, const void* pData, unsigned int dwLength);
// Adds "fmt " and "data".
bool AddSound(C_RiffFile& riff, I_WavData& wavData);
// The next four succeed without adding anything when there is nothing to save.
bool AddCues(C_RiffFile& riff, C_WavFileBase& file);
bool AddSampler(C_RiffFile& riff, C_WavFileBase& file, const vcm::S_AssertSite& site);
bool AddLabels(C_RiffFile& riff, C_WavFileBase& file);
// Adds all extra chunks except empty ones and those whose name is in omitted.
bool AddExtraChunks(C_RiffFile& riff, C_WavFileBase& file, const vcm::S_AssertSite& site,
                    std::span<const char* const> omitted = {});

}  // namespace wavchunks
