// SPDX-License-Identifier: Apache-2.0
#include "file/WavFile.h"

#include <algorithm>
#include <array>
#include <cstddef>

#include "FileReader.h"
#include "RiffFile.h"
#include "VcmAssert.h"
#include "compressed/CompressedWav.h"
#include "compressed/WavTags.h"
#include "file/WavChunks.h"
#include "file/WavLabels.h"
#include "interface/I_WavDataInfo.h"

namespace {

constexpr const char* kSource = "WaveFileLib/WavFile";
constexpr vcm::S_AssertSite kWriteSite{"WriteFile", kSource};
// The forms, and the file format of each.
constexpr auto kFormTypes = std::to_array<const char*>({"WAVE", "VEMD"});
constexpr auto kFileFormats = std::to_array<tagAudioFileType>({AUDIO_FILE_WAVE, AUDIO_FILE_VEMD});

// Keeps the chunks that nothing else reads. The first such chunk of a file removes those of an
// earlier file.
class C_ExtraChunkKeeper {
 public:
  explicit C_ExtraChunkKeeper(I_WavDataExtraChunkInfo* pInfo) : m_pInfo(pInfo) {}

  void Keep(C_RiffChunk& chunk) {
    if (m_pInfo == nullptr) return;
    if (m_bFirst) m_pInfo->RemoveAll();
    m_bFirst = false;
    // A chunk that the end of the file cuts is left out: the file still has its sound.
    static_cast<void>(m_pInfo->AddRiffChunk(chunk.GetChunkID(), &chunk));
  }

 private:
  I_WavDataExtraChunkInfo* m_pInfo;
  bool m_bFirst = true;
};

bool SaveRiff(C_RiffFile& riff, const char* pszFileName, tagAudioFileType eFileFormat) {
  const auto* const pFormat = std::ranges::find(kFileFormats, eFileFormat);
  if (pFormat == kFileFormats.end()) return false;
  return riff.Save(pszFileName,
                   kFormTypes[static_cast<std::size_t>(pFormat - kFileFormats.begin())]);
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
  vcm::C_FileReader file(vcm::OpenFile(GetFileName(), "rb"));
  if (!file.IsOpen() || !LoadSamples(file)) return false;
  file.Close();
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
  const auto nFormType = riff.OpenAny(pszFileName, kFormTypes);
  if (!nFormType) return false;
  SetFileFormat(kFileFormats[*nFormType]);
  NoteFileLength(riff.GetFileLength());
  return true;
}

std::optional<C_WavFile::S_LinearForm> C_WavFile::DescribeLinearForm() {
  const S_WavTag* const pTag = wavtags::Find(m_codecInfo.GetFormatTag());
  if (pTag == nullptr) return std::nullopt;
  if (pTag->eCoding) SetCodingType(*pTag->eCoding);
  if (pTag->eTag == WAVE_TAG_PCM) return S_LinearForm{m_dwDataLength, m_wStoredBits};
  return DescribeDecodedForm();
}

// Kept: DVI ADPCM of a width other than 3 or 4 bits opens, with the length of its data, but does
// not load. Its format and its chunks can still be looked at. Pinned by
// DviOfOtherWidths_OpensAndDoesNotLoad.
std::optional<C_WavFile::S_LinearForm> C_WavFile::DescribeDecodedForm() const {
  constexpr unsigned short kDecodedBits = 16;
  const auto decoder = compressedwav::MakeDecoder(m_codecInfo);
  if (!decoder) return S_LinearForm{m_dwDataLength, kDecodedBits};
  const auto dwLength = decoder->GetDecodedSize(m_codecInfo, m_dwDataLength);
  if (!dwLength) return std::nullopt;
  return S_LinearForm{*dwLength, kDecodedBits};
}

// Kept: a "LIST" chunk of a type other than "adtl" is neither understood nor kept, while chunks of
// other names are kept and written back. Titles in INFO lists are lost by loading and saving, as
// they always were. Pinned by InfoLists_AreLost and OtherChunks_AreKeptVerbatim.
bool C_WavFile::LoadInfoChunks(C_RiffFile& riff) {
  C_ExtraChunkKeeper extra(wavchunks::InfoOf<I_WavDataExtraChunkInfo>(*this));
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    if (chunk.HasChunkID("fmt ") || chunk.HasChunkID("data")) continue;
    bool bLoaded = true;
    if (chunk.HasChunkID("cue ")) {
      bLoaded = wavchunks::LoadInfo<I_WavDataCueInfo>(*this, chunk);
    } else if (chunk.HasChunkID("smpl")) {
      bLoaded = wavchunks::LoadInfo<I_WavDataSamplerInfo>(*this, chunk);
    } else if (chunk.HasChunkID("LIST")) {
      bLoaded = wavchunks::LoadInfo<I_WavDataListInfo>(*this, chunk);
    } else {
      extra.Keep(chunk);
    }
    if (!bLoaded) return false;
  }
  m_bCutShort = riff.IsCutShort();
  return !riff.HasReadError();
}

bool C_WavFile::LoadSamples(vcm::C_FileReader& file) {
  const unsigned short wFormatTag = m_codecInfo.GetFormatTag();
  if (wFormatTag == WAVE_TAG_PCM) return LoadStoredPcm(file);
  // The file may have changed since its format was checked, so its format record is read again.
  const auto codecInfo = compressedwav::ReadFormat(file, m_dwFormatPos, wFormatTag);
  return codecInfo &&
         compressedwav::Load(*codecInfo, file, m_dwDataStartPos, m_dwDataLength, *GetWavData());
}

// Kept: silence segments and regions are replaced, but events are added to those that the sound
// has, so that a sound can collect the events of several files. Pinned by
// AnnotationsOfTheSound_AreReplacedButEventsAreAdded.
void C_WavFile::LoadAnnotations() {
  auto* pIListInfo = wavchunks::InfoOf<I_WavDataListInfo>(*this);
  auto* pICueInfo = wavchunks::InfoOf<I_WavDataCueInfo>(*this);
  if (pIListInfo == nullptr || pICueInfo == nullptr) return;
  wavlabels::LoadAnnotations(*GetWavData(), *pIListInfo, *pICueInfo, m_bCutShort);
  GetWavData()->SetEncType(GetFileFormat());
}

// Kept: cue points and labels of other makers are lost here, because a written file always holds
// exactly the cue points and labels of the annotations. Pinned by
// Write_DropsCuePointsAndLabelsOfOthers.
void C_WavFile::RegenerateAnnotations() {
  auto& cueInfo = wavchunks::RequiredInfo<I_WavDataCueInfo>(*this, kWriteSite);
  auto& listInfo = wavchunks::RequiredInfo<I_WavDataListInfo>(*this, kWriteSite);
  wavlabels::SaveAnnotations(*GetWavData(), listInfo, cueInfo);
}
