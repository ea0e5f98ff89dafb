// SPDX-License-Identifier: Apache-2.0
#include "file/WavFile.h"

#include "RiffFile.h"
#include "VcmAssert.h"
#include "compressed/CompressedWav.h"
#include "file/WavChunks.h"
#include "file/WavLabels.h"
#include "interface/I_WavDataInfo.h"

namespace {

constexpr const char* kSource = "WaveFileLib/WavFile";
constexpr vcm::S_AssertSite kWriteSite{"WriteFile", kSource};

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
  SetLinearForm(form->dwByteLength, form->wBits);
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
  const std::optional<C_WavDataPtr> converted = wavchunks::ConvertForWriting(*pIWavData);
  if (!converted) return false;
  RegenerateAnnotations();
  C_RiffFile riff;
  return wavchunks::AddSound(riff, *converted ? **converted : *pIWavData) &&
         wavchunks::AddCues(riff, *this) && wavchunks::AddSampler(riff, *this, kWriteSite) &&
         wavchunks::AddLabels(riff, *this) && wavchunks::AddExtraChunks(riff, *this, kWriteSite) &&
         SaveRiff(riff, pszFileName, GetFileFormat());
}

bool C_WavFile::OpenRiff(C_RiffFile& riff, const char* pszFileName) {
  if (riff.Open(pszFileName, "WAVE")) {
    SetFileFormat(AUDIO_FILE_WAVE);
  } else if (riff.Open(pszFileName, "VEMD")) {
    SetFileFormat(AUDIO_FILE_VEMD);
  } else {
    return false;
  }
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

// Kept: a "LIST" of another type than "adtl" is neither understood nor kept, while any other chunk
// is kept and written back; titles in INFO lists are lost by loading and saving, as they always
// were. Pinned by InfoListsAreLost and OtherChunksAreKeptVerbatim.
bool C_WavFile::LoadInfoChunks(C_RiffFile& riff) {
  C_ExtraChunkKeeper extra(
      wavchunks::InfoOf<I_WavDataExtraChunkInfo>(*this, WAV_DATA_INFO_EXTRA_CHUNK));
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    if (chunk.HasChunkID("fmt ") || chunk.HasChunkID("data")) continue;
    bool bLoaded = true;
    if (chunk.HasChunkID("cue ")) {
      bLoaded = wavchunks::LoadInfo<I_WavDataCueInfo>(*this, WAV_DATA_INFO_CUE, chunk);
    } else if (chunk.HasChunkID("smpl")) {
      bLoaded = wavchunks::LoadInfo<I_WavDataSamplerInfo>(*this, WAV_DATA_INFO_SAMPLER, chunk);
    } else if (chunk.HasChunkID("LIST")) {
      bLoaded = wavchunks::LoadInfo<I_WavDataListInfo>(*this, WAV_DATA_INFO_LIST, chunk);
    } else {
      extra.Keep(chunk);
    }
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
  auto* pIListInfo = wavchunks::InfoOf<I_WavDataListInfo>(*this, WAV_DATA_INFO_LIST);
  auto* pICueInfo = wavchunks::InfoOf<I_WavDataCueInfo>(*this, WAV_DATA_INFO_CUE);
  if (pIListInfo == nullptr || pICueInfo == nullptr) return;
  wavlabels::LoadAnnotations(*GetWavData(), *pIListInfo, *pICueInfo);
  GetWavData()->SetEncType(GetFileFormat());
}

// Kept: cue points and labels of other makers are lost here, because identifiers and texts always
// say what the annotations say and nothing else. Pinned by Write_DropsCuePointsAndLabelsOfOthers.
void C_WavFile::RegenerateAnnotations() {
  auto* pICueInfo = wavchunks::InfoOf<I_WavDataCueInfo>(*this, WAV_DATA_INFO_CUE);
  VCM_ASSERT(pICueInfo != nullptr, "WriteFile", kSource, __LINE__, "bRet && (pICueInfo != NULL)");
  auto* pIListInfo = wavchunks::InfoOf<I_WavDataListInfo>(*this, WAV_DATA_INFO_LIST);
  VCM_ASSERT(pIListInfo != nullptr, "WriteFile", kSource, __LINE__, "bRet && (pIListInfo != NULL)");
  wavlabels::SaveAnnotations(*GetWavData(), *pIListInfo, *pICueInfo);
}
