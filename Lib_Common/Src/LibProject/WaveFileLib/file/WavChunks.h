// SPDX-License-Identifier: Apache-2.0
//
// The chunks of RIFF sound files, as all file kinds of that build read and write them:
//
//   "fmt "  the plain 16-byte format record (PcmFormatRecord.h)
//   "data"  the samples
//   "cue ", "smpl", "LIST"  what the sound's info objects save (I_WavDataInfo.h)
//   others  the sound's extra chunks, verbatim
//
// The Add functions append to a file that is being assembled in memory. False when a chunk cannot
// be added or filled, which ends the writing.
#pragma once

#include <optional>
#include <span>

#include "RiffFile.h"
#include "VcmAssert.h"
#include "file/WavFileBase.h"
#include "interface/I_WavDataInfo.h"

namespace wavchunks {

// The info object of that kind, null when the file has no sound or the sound no such object. Info
// must be the interface that belongs to eType.
template <typename Info>
Info* InfoOf(C_WavFileBase& file, tagWavDataInfo eType) {
  void* pInfo = nullptr;
  return file.GetDataInfo(eType, &pInfo) ? static_cast<Info*>(pInfo) : nullptr;
}

template <typename Info>
bool LoadInfo(C_WavFileBase& file, tagWavDataInfo eType, C_RiffChunk& chunk) {
  Info* pInfo = InfoOf<Info>(file, eType);
  return pInfo != nullptr && pInfo->LoadInfo(&chunk);
}

// The sound in the sample widths of its codec parameters when these have any, with 12-bit samples
// as 16-bit ones otherwise. Holds null when the sound itself is in that form; empty when it cannot
// be converted.
std::optional<C_WavDataPtr> ConvertForWriting(I_WavData& wavData);

// pData may be null when dwLength is 0.
bool AddChunk(C_RiffFile& riff, const char* pszID, const void* pData, unsigned int dwLength);
// "fmt " and "data".
bool AddSound(C_RiffFile& riff, I_WavData& wavData);
// The next four add nothing, and succeed, when there is nothing to save.
bool AddCues(C_RiffFile& riff, C_WavFileBase& file);
bool AddSampler(C_RiffFile& riff, C_WavFileBase& file, const vcm::S_AssertSite& site);
bool AddLabels(C_RiffFile& riff, C_WavFileBase& file);
// All but empty ones and those whose name is among omitted.
bool AddExtraChunks(C_RiffFile& riff, C_WavFileBase& file, const vcm::S_AssertSite& site,
                    std::span<const char* const> omitted = {});

}  // namespace wavchunks
