// SPDX-License-Identifier: Apache-2.0
#include "file/VefFileBase.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <utility>

#include "ByteReader.h"
#include "FileReader.h"
#include "RiffFile.h"
#include "VcmAssert.h"
#include "file/VefLabels.h"
#include "file/WavChunks.h"
#include "interface/I_WavDataInfo.h"

namespace {

using wavchunks::RequiredInfo;

constexpr const char* kSource = "WaveFileLib/VefFile";
constexpr vcm::S_AssertSite kWriteSite{"WriteVef", kSource};
constexpr vcm::S_AssertSite kCheckSite{"CheckFormat", kSource};
constexpr const char* kFormType = "VEFF";
constexpr const char* kCodecFormat = "vafm";
constexpr const char* kStream = "vdat";
constexpr const char* kEvents = "vevt";
// The container writes these chunks itself; extra chunks of these names are left out.
constexpr std::array<const char*, 2> kOwnChunks = {kCodecFormat, kStream};
constexpr unsigned int kCodecFormatBytes = 16;
constexpr unsigned short kCodecFormatVersion = 256;

bool AddCodecFormat(C_RiffFile& riff, I_WavData& wavData, I_AudioCodecParam& param,
                    tagAudioFileType eType) {
  I_WavInfo& info = *wavData.GetWavInfo();
  vcm::C_ByteWriter writer;
  writer.U16(kCodecFormatVersion);
  writer.U16(static_cast<std::uint16_t>(eType));
  // Kept: rates from 65536 Hz on lose their upper bits. The field never grew, and readers take the
  // rate from the format chunk. Pinned by CodecFormat_KeepsTheLowHalfOfTheRate.
  writer.U16(static_cast<std::uint16_t>(info.GetSampleRate()));
  writer.U32(param.GetBitRate());
  writer.U8(static_cast<std::uint8_t>(info.GetChannels()));
  writer.U8(static_cast<std::uint8_t>(param.GetPlatform()));
  writer.U32(0);
  return wavchunks::AddChunk(riff, kCodecFormat, writer.Data().data(), kCodecFormatBytes);
}

// The type code in a "vafm" chunk; empty when the chunk is too short or has another version.
std::optional<unsigned int> TypeOf(C_RiffChunk& chunk) {
  std::array<std::uint8_t, kCodecFormatBytes> record{};
  if (!chunk.GetData(record.data(), kCodecFormatBytes, 0)) return std::nullopt;
  vcm::C_ByteReader reader(record);
  if (reader.U16() != kCodecFormatVersion) return std::nullopt;
  return reader.U16();
}

// The coding type that the container names; linear when it names none.
unsigned int CodingTypeOf(C_RiffFile& riff) {
  std::optional<unsigned int> dwType;
  for (int i = 0; i < riff.GetChunkCount() && !dwType; ++i) {
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    if (chunk.HasChunkID(kCodecFormat)) dwType = TypeOf(chunk);
  }
  return dwType.value_or(C_WavFileBase::kCodingLinear);
}

}  // namespace

bool C_VefFileBase::LoadVDATChunk(const char* pszFileName,
                                  std::unique_ptr<unsigned char[]>* ppbyData,
                                  unsigned int* pdwLength) {
  ppbyData->reset();
  *pdwLength = 0;
  C_RiffFile riff;
  if (!riff.Open(pszFileName, kFormType)) return false;
  I_AudioCodecParam* piParam = GetAudioCodecParam();
  VCM_ASSERT(nullptr != piParam, "LoadVDATChunk", kSource, __LINE__, "NULL != piParam");
  // Kept: the first of several "vdat" chunks counts, but the last of several "fmt " or "data"
  // chunks. Streams that are appended later are for players that know more. Pinned by
  // LoadVDATChunk_GivesTheFirstOfTwo.
  C_RiffChunk* pChunk = riff.FindChunk(kStream, 0);
  if (pChunk == nullptr) return true;
  const unsigned int dwLength = pChunk->GetDataLength();
  const std::size_t cbMore = piParam->GetPlatform() == AUDIO_CODEC_PLATFORM_FALLBACK ? 1 : 0;
  *ppbyData = pChunk->ReadAll(cbMore);
  if (*ppbyData == nullptr) return false;
  *pdwLength = dwLength;
  return true;
}

bool C_VefFileBase::WriteVef(const char* pszFileName, const char* pszFormType, bool bHeader,
                             tagAudioFileType eType) {
  I_WavData* pIWavData = GetWavData();
  if (pIWavData == nullptr) return false;
  const std::optional<C_WavDataPtr> converted = wavchunks::ConvertForWriting(*pIWavData);
  if (!converted) return false;
  I_WavData& written = *converted ? **converted : *pIWavData;
  RegenerateEvents();
  C_RiffFile riff;
  return wavchunks::AddSound(riff, written) && wavchunks::AddCues(riff, *this) &&
         wavchunks::AddSampler(riff, *this, kWriteSite) && wavchunks::AddLabels(riff, *this) &&
         (!bHeader ||
          (AddCodecFormat(riff, written, *GetAudioCodecParam(), eType) && WriteDataChunk(&riff))) &&
         wavchunks::AddExtraChunks(riff, *this, kWriteSite, kOwnChunks) &&
         riff.Save(pszFileName, pszFormType);
}

bool C_VefFileBase::CheckVefFormat(const char* pszFileName, bool bWithInfo,
                                   std::span<const S_AudioFileTypes> foreign) {
  C_RiffFile riff;
  if (!riff.Open(pszFileName, kFormType)) return false;
  NoteFileLength(riff.GetFileLength());
  if (!FindFormatAndData(riff) || m_codecInfo.GetFormatTag() != WAVE_TAG_PCM) return false;
  const unsigned int dwType = CodingTypeOf(riff);
  if (riff.HasReadError()) return false;
  const auto bHasType = [dwType](const S_AudioFileTypes& types) { return types.Has(dwType); };
  if (std::ranges::any_of(foreign, bHasType)) return false;
  if (!bWithInfo) return true;
  PrepareWavData();
  SetCodingType(dwType);
  SetLinearForm(m_dwDataLength, m_wStoredBits);
  if (!ForgetStream()) return false;
  return LoadVefInfo(riff);
}

bool C_VefFileBase::LoadVefAsStored() {
  if (GetWavData() == nullptr) return false;
  vcm::C_FileReader file(vcm::OpenFile(GetFileName(), "rb"));
  return LoadStoredPcm(file);
}

bool C_VefFileBase::AddDataChunk(C_RiffFile& riff, const unsigned char* pbyData,
                                 unsigned int dwLength, std::shared_ptr<const void> keeper) {
  if (!keeper) return wavchunks::AddChunk(riff, kStream, pbyData, dwLength);
  riff.AddChunk(kStream, dwLength)->LendData(pbyData, std::move(keeper));
  return true;
}

bool C_VefFileBase::AddDataChunk(C_RiffFile& riff, vcm::C_FilePtr file, unsigned int dwLength) {
  riff.AddChunk(kStream, dwLength)->TakeFile(std::move(file));
  return true;
}

bool C_VefFileBase::LoadVefInfo(C_RiffFile& riff) {
  ForgetAnnotations();
  for (int i = 0; i < riff.GetChunkCount(); ++i) {
    C_RiffChunk& chunk = *riff.GetChunkAt(i);
    bool bLoaded = true;
    if (chunk.HasChunkID("cue ")) {
      bLoaded = wavchunks::LoadInfo(RequiredInfo<I_WavDataCueInfo>(*this, kCheckSite), chunk);
    } else if (chunk.HasChunkID("smpl")) {
      bLoaded = wavchunks::LoadInfo(RequiredInfo<I_WavDataSamplerInfo>(*this, kCheckSite), chunk);
    } else if (chunk.HasChunkID("LIST")) {
      bLoaded = wavchunks::LoadInfo(RequiredInfo<I_WavDataListInfo>(*this, kCheckSite), chunk);
    } else if (chunk.HasChunkID(kEvents)) {
      // A chunk that the end of the file cuts is left out: the file still has its sound.
      auto& extraChunkInfo = RequiredInfo<I_WavDataExtraChunkInfo>(*this, kCheckSite);
      static_cast<void>(extraChunkInfo.AddRiffChunk(kEvents, &chunk));
    }
    if (!bLoaded) return false;
  }
  auto& listInfo = RequiredInfo<I_WavDataListInfo>(*this, kCheckSite);
  auto& cueInfo = RequiredInfo<I_WavDataCueInfo>(*this, kCheckSite);
  if (riff.HasReadError()) return false;
  veflabels::LoadEvents(*GetWavData(), listInfo, cueInfo);
  return true;
}

// A container holds all annotations of its sound. They must not be mixed with annotations of an
// earlier file, or of an earlier attempt at this file.
void C_VefFileBase::ForgetAnnotations() {
  RequiredInfo<I_WavDataCueInfo>(*this, kCheckSite).Reset();
  RequiredInfo<I_WavDataSamplerInfo>(*this, kCheckSite).Reset();
  auto& listInfo = RequiredInfo<I_WavDataListInfo>(*this, kCheckSite);
  listInfo.RemoveAllLabels();
  listInfo.RemoveAllLtxts();
  RequiredInfo<I_WavDataExtraChunkInfo>(*this, kCheckSite).RemoveAll();
}

// Removes the stream of an earlier file, which would otherwise be written beside the samples of
// this file.
bool C_VefFileBase::ForgetStream() {
  GetWavData()->SetEncType(AUDIO_FILE_UNKNOWN);
  return GetWavData()->SetEncBuffer(nullptr, 0);
}

void C_VefFileBase::RegenerateEvents() {
  auto& cueInfo = RequiredInfo<I_WavDataCueInfo>(*this, kWriteSite);
  auto& listInfo = RequiredInfo<I_WavDataListInfo>(*this, kWriteSite);
  auto& samplerInfo = RequiredInfo<I_WavDataSamplerInfo>(*this, kWriteSite);
  veflabels::SaveEvents(*GetWavData(), listInfo, cueInfo, samplerInfo);
}
