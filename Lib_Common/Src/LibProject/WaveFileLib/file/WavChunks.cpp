// SPDX-License-Identifier: Apache-2.0
#include "file/WavChunks.h"

#include <algorithm>
#include <cstring>

#include "ByteReader.h"
#include "chunk/PcmFormat.h"
#include "sound/HeldBytes.h"

namespace wavchunks {
namespace {

struct S_SampleForm {
  unsigned short wBits = 0;
  unsigned short wStoreBits = 0;
  bool bSigned = false;

  friend bool operator==(const S_SampleForm&, const S_SampleForm&) = default;
};

S_SampleForm FormOf(I_WavInfo& info) {
  return {info.GetBitsPerSample(), info.GetStoreBitsPerSample(), info.IsValueSigned()};
}

// Only this library knows 12-bit samples: other readers of sound files would not scale them right.
S_SampleForm FormToWrite(I_WavData& wavData) {
  I_AudioCodecParam& param = *wavData.GetAudioCodecParam();
  S_SampleForm form = FormOf(*wavData.GetWavInfo());
  if (param.IsSampleBitsSet()) {
    param.GetSampleBits(&form.wBits, &form.wStoreBits, &form.bSigned);
  } else if (form.wBits == 12) {
    form = {16, 16, true};
  }
  return form;
}

bool AddFormat(C_RiffFile& riff, I_WavInfo& info) {
  S_PcmFormatRecord record;
  info.GetWaveFormat(&record);
  vcm::C_ByteWriter writer;
  pcmformat::Write(record, writer);
  return AddChunk(riff, "fmt ", writer.Data().data(), S_PcmFormatRecord::kBytes);
}

template <typename Info>
bool AddInfo(C_RiffFile& riff, const char* pszID, Info& info) {
  return info.SaveInfo(riff.AddChunk(pszID, info.GetChunkLength()));
}

bool IsAmong(std::span<const char* const> names, const char* pszName) {
  return std::any_of(names.begin(), names.end(), [pszName](const char* pszOmitted) {
    return std::memcmp(pszOmitted, pszName, 4) == 0;
  });
}

}  // namespace

std::optional<C_WavDataPtr> ConvertForWriting(I_WavData& wavData) {
  if (!vcm::HoldsItsBytes(wavData)) return std::nullopt;
  const S_SampleForm form = FormToWrite(wavData);
  C_WavDataPtr converted;
  if (form == FormOf(*wavData.GetWavInfo())) return converted;
  converted.reset(wavData.CreateBitsConvertedData(form.wBits, form.wStoreBits, form.bSigned,
                                                  /*bExact=*/true));
  if (!converted) return std::nullopt;
  return converted;
}

bool AddChunk(C_RiffFile& riff, const char* pszID, const void* pData, unsigned int dwLength) {
  if (dwLength > 0 && pData == nullptr) return false;
  riff.AddChunk(pszID, dwLength)->SetData(pData);
  return true;
}

bool LendChunk(C_RiffFile& riff, const char* pszID, const void* pData, unsigned int dwLength) {
  if (dwLength > 0 && pData == nullptr) return false;
  riff.AddChunk(pszID, dwLength)->LendData(pData);
  return true;
}

bool AddSound(C_RiffFile& riff, I_WavData& wavData) {
  return AddFormat(riff, *wavData.GetWavInfo()) &&
         LendChunk(riff, "data", wavData.GetBuffer(), wavData.GetBufferLength());
}

bool AddCues(C_RiffFile& riff, C_WavFileBase& file) {
  auto* pICueInfo = InfoOf<I_WavDataCueInfo>(file);
  if (pICueInfo == nullptr) return false;
  return !pICueInfo->IsValid() || AddInfo(riff, "cue ", *pICueInfo);
}

bool AddSampler(C_RiffFile& riff, C_WavFileBase& file, const vcm::S_AssertSite& site) {
  auto& samplerInfo = RequiredInfo<I_WavDataSamplerInfo>(file, site);
  return !samplerInfo.IsValid() || AddInfo(riff, "smpl", samplerInfo);
}

bool AddLabels(C_RiffFile& riff, C_WavFileBase& file) {
  auto* pIListInfo = InfoOf<I_WavDataListInfo>(file);
  if (pIListInfo == nullptr) return false;
  const bool bEmpty = pIListInfo->GetLabelCount() == 0 && pIListInfo->GetLtxtCount() == 0;
  return bEmpty || AddInfo(riff, "LIST", *pIListInfo);
}

bool AddExtraChunks(C_RiffFile& riff, C_WavFileBase& file, const vcm::S_AssertSite& site,
                    std::span<const char* const> omitted) {
  auto& extraChunkInfo = RequiredInfo<I_WavDataExtraChunkInfo>(file, site);
  for (int i = 0; i < extraChunkInfo.GetSize(); ++i) {
    I_WavDataExtraChunk* pIExtraChunk = extraChunkInfo.GetItemByIndex(i);
    VCM_ASSERT(nullptr != pIExtraChunk, site.pszFunction, site.pszSource, __LINE__,
               "NULL != pIExtraChunk");
    unsigned char* pbyData = nullptr;
    const unsigned int dwLength = pIExtraChunk->GetChunkData(&pbyData);
    if (dwLength == 0 || IsAmong(omitted, pIExtraChunk->GetChunkName())) continue;
    if (!LendChunk(riff, pIExtraChunk->GetChunkName(), pbyData, dwLength)) return false;
  }
  return true;
}

}  // namespace wavchunks
