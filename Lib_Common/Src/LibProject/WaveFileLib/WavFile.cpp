// SPDX-License-Identifier: Apache-2.0
#include "WavFile.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "ByteReader.h"
#include "CompressedWav.h"
#include "I_WavDataInfo.h"
#include "RiffFile.h"
#include "VcmAssert.h"
#include "WavLabels.h"

namespace {

constexpr const char* kSource = "WaveFileLib/WavFile";

struct S_SampleForm {
  unsigned short wBits = 0;
  unsigned short wStoreBits = 0;
  bool bSigned = false;

  friend bool operator==(const S_SampleForm&, const S_SampleForm&) = default;
};

S_SampleForm FormOf(I_WavInfo& info) {
  return {info.GetBitsPerSample(), info.GetStoreBitsPerSample(), info.IsValueSigned()};
}

// 12-bit samples are ours alone: no reader of sound files would scale them right.
S_SampleForm FormToWrite(I_WavData& wavData) {
  I_AudioCodecParam& param = *wavData.GetAudioCodecParam();
  S_SampleForm form = FormOf(*wavData.GetWavInfo());
  if (param.IsSampleBitsSet())
    param.GetSampleBits(&form.wBits, &form.wStoreBits, &form.bSigned);
  else if (form.wBits == 12)
    form = {16, 16, true};
  return form;
}

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

// Keeps the chunks that nobody interprets. Those of the last file go when the first of this one
// comes.
class C_ExtraChunkKeeper {
 public:
  explicit C_ExtraChunkKeeper(I_WavDataExtraChunkInfo* pInfo) : m_pInfo(pInfo) {}

  void Keep(C_RiffChunk& chunk) {
    if (m_pInfo == nullptr) return;
    if (m_bFirst) m_pInfo->RemoveAll();
    m_bFirst = false;
    // What cannot be read is left out: a file that was cut in one of these still has its sound.
    static_cast<void>(m_pInfo->AddRiffChunk(chunk.GetChunkID(), &chunk));
  }

 private:
  I_WavDataExtraChunkInfo* m_pInfo;
  bool m_bFirst = true;
};

bool AddChunk(C_RiffFile& riff, const char* pszID, const void* pData, unsigned int dwLength) {
  if (dwLength > 0 && pData == nullptr) return false;
  C_RiffChunk* pChunk = riff.AddChunk(pszID, dwLength);
  if (pChunk == nullptr) return false;
  pChunk->SetData(pData);
  return true;
}

bool AddFormat(C_RiffFile& riff, I_WavInfo& info) {
  S_PcmFormatRecord record;
  info.GetWaveFormat(&record);
  vcm::C_ByteWriter writer;
  writer.U16(record.wFormatTag);
  writer.U16(record.wChannels);
  writer.U32(record.dwSamplesPerSec);
  writer.U32(record.dwAvgBytesPerSec);
  writer.U16(record.wBlockAlign);
  writer.U16(record.wBitsPerSample);
  return AddChunk(riff, "fmt ", writer.Data().data(), S_PcmFormatRecord::kBytes);
}

bool AddSound(C_RiffFile& riff, I_WavData& wavData) {
  return AddFormat(riff, *wavData.GetWavInfo()) &&
         AddChunk(riff, "data", wavData.GetBuffer(), wavData.GetBufferLength());
}

template <typename Info>
bool AddInfo(C_RiffFile& riff, const char* pszID, Info& info) {
  C_RiffChunk* pChunk = riff.AddChunk(pszID, info.GetChunkLength());
  return pChunk != nullptr && info.SaveInfo(pChunk);
}

bool AddCues(C_RiffFile& riff, C_WavFileBase& file) {
  auto* pICueInfo = InfoOf<I_WavDataCueInfo>(file, WAV_DATA_INFO_CUE);
  return !pICueInfo->IsValid() || AddInfo(riff, "cue ", *pICueInfo);
}

bool AddSampler(C_RiffFile& riff, C_WavFileBase& file) {
  auto* pISamplerInfo = InfoOf<I_WavDataSamplerInfo>(file, WAV_DATA_INFO_SAMPLER);
  VCM_ASSERT(pISamplerInfo != nullptr, "WriteFile", kSource, __LINE__,
             "bRet && (pISamplerInfo != NULL)");
  return !pISamplerInfo->IsValid() || AddInfo(riff, "smpl", *pISamplerInfo);
}

bool AddLabels(C_RiffFile& riff, C_WavFileBase& file) {
  auto* pIListInfo = InfoOf<I_WavDataListInfo>(file, WAV_DATA_INFO_LIST);
  return pIListInfo->GetLabelCount() == 0 || AddInfo(riff, "LIST", *pIListInfo);
}

bool AddExtraChunks(C_RiffFile& riff, C_WavFileBase& file) {
  auto* pIExtraChunkInfo = InfoOf<I_WavDataExtraChunkInfo>(file, WAV_DATA_INFO_EXTRA_CHUNK);
  VCM_ASSERT(pIExtraChunkInfo != nullptr, "WriteFile", kSource, __LINE__,
             "bRet && (pIExtraChunkInfo != NULL)");
  for (int i = 0; i < pIExtraChunkInfo->GetSize(); ++i) {
    I_WavDataExtraChunk* pIExtraChunk = pIExtraChunkInfo->GetItemByIndex(i);
    VCM_ASSERT(nullptr != pIExtraChunk, "WriteFile", kSource, __LINE__, "NULL != pIExtraChunk");
    unsigned char* pbyData = nullptr;
    const unsigned int dwLength = pIExtraChunk->GetChunkData(&pbyData);
    if (dwLength == 0) continue;
    if (!AddChunk(riff, pIExtraChunk->GetChunkName(), pbyData, dwLength)) return false;
  }
  return true;
}

bool SaveRiff(C_RiffFile& riff, const char* pszFileName, tagAudioFileType eFileFormat) {
  if (eFileFormat == AUDIO_FILE_WAVE) return riff.Save(pszFileName, "WAVE");
  if (eFileFormat == AUDIO_FILE_VEMD) return riff.Save(pszFileName, "VEMD");
  return false;
}

}  // namespace

bool C_WavFile::CheckFormat(const char* pszFileName, bool bWithInfo) {
  C_RiffFile riff;
  if (!OpenRiff(riff, pszFileName)) return false;
  if (bWithInfo) PrepareWavData();
  if (!FindFormatAndData(riff)) return false;
  const std::optional<S_LinearForm> form = DescribeLinearForm();
  if (!form) return false;
  if (!bWithInfo) return true;
  SetLinearForm(*form);
  return LoadInfoChunks(riff);
}

bool C_WavFile::LoadData(bool /*bKeepEncoded*/, const char* /*pszCodecOption*/,
                         PFN_DecodedData /*pfnData*/) {
  if (GetWavData() == nullptr) return false;
  vcm::C_FilePtr file = vcm::OpenFile(GetFileName(), "rb");
  if (!file || !LoadSamples(file.get())) return false;
  file.reset();
  LoadAnnotations();
  return true;
}

bool C_WavFile::WriteFile(const char* pszFileName, bool /*bEncode*/, bool /*bWriteCodecHead*/,
                          PFN_CodecProgress /*pfnProgress*/, bool /*bForceEncode*/,
                          unsigned int /*dwCodecOption*/) {
  I_WavData* pIWavData = GetWavData();
  if (pIWavData == nullptr) return false;
  C_WavDataPtr converted;
  const S_SampleForm form = FormToWrite(*pIWavData);
  if (form != FormOf(*pIWavData->GetWavInfo())) {
    converted.reset(pIWavData->CreateBitsConvertedData(form.wBits, form.wStoreBits, form.bSigned,
                                                       /*bExact=*/true));
    if (!converted) return false;
  }
  RegenerateAnnotations();
  C_RiffFile riff;
  return AddSound(riff, converted ? *converted : *pIWavData) && AddCues(riff, *this) &&
         AddSampler(riff, *this) && AddLabels(riff, *this) && AddExtraChunks(riff, *this) &&
         SaveRiff(riff, pszFileName, GetFileFormat());
}

bool C_WavFile::OpenRiff(C_RiffFile& riff, const char* pszFileName) {
  if (riff.Open(pszFileName, "WAVE"))
    SetFileFormat(AUDIO_FILE_WAVE);
  else if (riff.Open(pszFileName, "VEMD"))
    SetFileFormat(AUDIO_FILE_VEMD);
  else
    return false;
  return true;
}

bool C_WavFile::FindFormatAndData(C_RiffFile& riff) {
  m_codecInfo.Clear();
  m_dwDataLength = 0;
  m_dwDataStartPos = 0;
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk* pChunk = riff.GetChunkAt(i);
    VCM_ASSERT(pChunk != nullptr, "CheckFormat", kSource, __LINE__, "pChunk != NULL");
    if (pChunk->HasChunkID("fmt ")) {
      if (!TakeFormat(*pChunk)) return false;
    } else if (pChunk->HasChunkID("data")) {
      m_dwDataStartPos = pChunk->GetDataPos();
      m_dwDataLength = pChunk->GetDataLength();
    }
  }
  return true;
}

bool C_WavFile::TakeFormat(C_RiffChunk& chunk) {
  const unsigned int dwLength = std::min(chunk.GetDataLength(), C_WavFileCodecInfo::kMaxBytes);
  std::vector<std::uint8_t> payload(dwLength);
  if (!chunk.GetData(payload.data(), dwLength, 0) || !m_codecInfo.SetFormat(payload)) return false;
  m_dwFormatPos = chunk.GetDataPos();
  m_wStoredBits = m_codecInfo.GetPCMWAVEFORMAT().wBitsPerSample;
  return true;
}

std::optional<C_WavFile::S_LinearForm> C_WavFile::DescribeLinearForm() {
  switch (m_codecInfo.GetFormatTag()) {
    case WAVE_TAG_PCM:
      SetCodingType(kCodingLinear);
      return S_LinearForm{m_dwDataLength, m_wStoredBits};
    case WAVE_TAG_MS_ADPCM:
      SetCodingType(kCodingMSAdpcm);
      return DescribeDecodedForm();
    case WAVE_TAG_DVI_ADPCM:
      SetCodingType(kCodingDviAdpcm);
      return DescribeDecodedForm();
    case WAVE_TAG_ALAW:
    case WAVE_TAG_MULAW:
      // Kept: these two have no number of their own and leave the coding type as it was, 0 in a new
      // object; who reads it asks for the blocks of ADPCM. Pinned by G711LeavesTheCodingTypeAlone.
      return DescribeDecodedForm();
    default:
      return std::nullopt;
  }
}

// Kept: DVI ADPCM of other than 3 or 4 bits opens, at the length of its data, though it does not
// load; its format and its chunks can be looked at. Pinned by DviOfOtherWidthsOpensAndDoesNotLoad.
std::optional<C_WavFile::S_LinearForm> C_WavFile::DescribeDecodedForm() const {
  constexpr unsigned short kDecodedBits = 16;
  const auto decoder = compressedwav::MakeDecoder(m_codecInfo);
  if (!decoder) return S_LinearForm{m_dwDataLength, kDecodedBits};
  const auto dwLength = decoder->GetDecodedSize(m_codecInfo, m_dwDataLength);
  if (!dwLength) return std::nullopt;
  return S_LinearForm{*dwLength, kDecodedBits};
}

void C_WavFile::SetLinearForm(const S_LinearForm& form) {
  const S_PcmFormatRecord record = m_codecInfo.GetPCMWAVEFORMAT();
  // Samples of an earlier file would be fewer than the new length says.
  GetWavData()->AttachBuffer(nullptr, 0);
  GetWavData()->DetachBuffer();
  GetWavData()->SetWavInfoData(record.dwSamplesPerSec, form.dwByteLength, record.wChannels,
                               form.wBits, form.wBits, form.wBits > 8);
}

// Kept: a "LIST" of another type than "adtl" is neither understood nor kept, while any other chunk
// is kept and written back; titles in INFO lists are lost by loading and saving, as they always
// were. Pinned by InfoListsAreLost and OtherChunksAreKeptVerbatim.
bool C_WavFile::LoadInfoChunks(C_RiffFile& riff) {
  C_ExtraChunkKeeper extra(InfoOf<I_WavDataExtraChunkInfo>(*this, WAV_DATA_INFO_EXTRA_CHUNK));
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    if (chunk.HasChunkID("fmt ") || chunk.HasChunkID("data")) continue;
    bool bLoaded = true;
    if (chunk.HasChunkID("cue "))
      bLoaded = LoadInfo<I_WavDataCueInfo>(*this, WAV_DATA_INFO_CUE, chunk);
    else if (chunk.HasChunkID("smpl"))
      bLoaded = LoadInfo<I_WavDataSamplerInfo>(*this, WAV_DATA_INFO_SAMPLER, chunk);
    else if (chunk.HasChunkID("LIST"))
      bLoaded = LoadInfo<I_WavDataListInfo>(*this, WAV_DATA_INFO_LIST, chunk);
    else
      extra.Keep(chunk);
    if (!bLoaded) return false;
  }
  return true;
}

bool C_WavFile::LoadSamples(std::FILE* pFile) {
  const unsigned short wFormatTag = m_codecInfo.GetFormatTag();
  if (wFormatTag == WAVE_TAG_PCM) return LoadStoredPcm(pFile);
  // The file may have changed since its format was checked: the record that counts is read again.
  const auto codecInfo = compressedwav::ReadFormat(pFile, m_dwFormatPos, wFormatTag);
  if (!codecInfo) return false;
  const auto encoded = compressedwav::ReadPayload(pFile, m_dwDataStartPos, m_dwDataLength);
  return encoded && compressedwav::Decode(*codecInfo, *encoded, *GetWavData());
}

// Kept: silence segments and regions are replaced, events are added to those that are there, so
// that a sound can collect the events of several files. Pinned by
// AnnotationsOfTheSoundAreReplacedButEventsAreAdded.
void C_WavFile::LoadAnnotations() {
  auto* pIListInfo = InfoOf<I_WavDataListInfo>(*this, WAV_DATA_INFO_LIST);
  auto* pICueInfo = InfoOf<I_WavDataCueInfo>(*this, WAV_DATA_INFO_CUE);
  if (pIListInfo == nullptr || pICueInfo == nullptr) return;
  wavlabels::LoadAnnotations(*GetWavData(), *pIListInfo, *pICueInfo);
  GetWavData()->SetEncType(GetFileFormat());
}

// Kept: cue points and labels of other makers are lost here, because identifiers and texts always
// say what the annotations say and nothing else. Pinned by Write_DropsCuePointsAndLabelsOfOthers.
void C_WavFile::RegenerateAnnotations() {
  auto* pICueInfo = InfoOf<I_WavDataCueInfo>(*this, WAV_DATA_INFO_CUE);
  VCM_ASSERT(pICueInfo != nullptr, "WriteFile", kSource, __LINE__, "bRet && (pICueInfo != NULL)");
  auto* pIListInfo = InfoOf<I_WavDataListInfo>(*this, WAV_DATA_INFO_LIST);
  VCM_ASSERT(pIListInfo != nullptr, "WriteFile", kSource, __LINE__, "bRet && (pIListInfo != NULL)");
  wavlabels::SaveAnnotations(*GetWavData(), *pIListInfo, *pICueInfo);
}
