// SPDX-License-Identifier: Apache-2.0
#include "file/WavFileBase.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "FileReader.h"
#include "RiffFile.h"
#include "VcmAssert.h"
#include "sound/WavData.h"

namespace {

constexpr const char* kSource = "WaveFileLib/WavFile";

}  // namespace

C_WavFileBase::~C_WavFileBase() { SafeDeleteWavData(); }

int C_WavFileBase::AddRef() { return ++m_nRefCount; }

// Kept: the creator's reference is not counted, so the Release that deletes the object returns 0,
// as the Release before it does. Callers pair each AddRef with one Release and add one for the
// creation. Pinned by Release_EndsTheObjectOnlyWhenNoExtraReferenceIsLeft.
int C_WavFileBase::Release() {
  if (m_nRefCount < 1) {
    delete this;
    return 0;
  }
  return --m_nRefCount;
}

I_WavInfo* C_WavFileBase::GetWavInfo() {
  return m_pIWavData == nullptr ? nullptr : m_pIWavData->GetWavInfo();
}

void C_WavFileBase::AttachWavData(I_WavData* pIWavData) {
  SafeDeleteWavData();
  m_pIWavData = pIWavData;
  m_bAttached = pIWavData != nullptr;
  if (m_bAttached) SetEventSampleRate();
}

I_WavData* C_WavFileBase::DetachWavData() {
  if (!m_bAttached) return nullptr;
  m_bAttached = false;
  return std::exchange(m_pIWavData, nullptr);
}

unsigned char* C_WavFileBase::GetWavDataBuffer() {
  return m_pIWavData == nullptr ? nullptr : m_pIWavData->GetBuffer();
}

bool C_WavFileBase::CopyWavData(I_WavData* pSrc) { return PrepareWavData()->CopyWavData(pSrc); }

void C_WavFileBase::SetWavInfo(I_WavInfo* pIWavInfo) { PrepareWavData()->SetWavInfo(pIWavInfo); }

void C_WavFileBase::SetWavInfoData(unsigned int dwSampleRate, unsigned short wChannels,
                                   unsigned short wBitsPerSample,
                                   unsigned short wStoreBitsPerSample, bool bValueSigned) {
  I_WavData* pIWavData = PrepareWavData();
  pIWavData->SetWavInfoData(dwSampleRate, pIWavData->GetBufferLength(), wChannels, wBitsPerSample,
                            wStoreBitsPerSample, bValueSigned);
}

bool C_WavFileBase::SetBuffer(const void* pData, unsigned int dwLength) {
  return PrepareWavData()->SetBuffer(pData, dwLength);
}

I_AudioCodecParam* C_WavFileBase::GetAudioCodecParam() {
  return PrepareWavData()->GetAudioCodecParam();
}

bool C_WavFileBase::Convert(tagAudioFileType eType, const char* pszFileName, bool bEncode,
                            bool bWriteCodecHead, PFN_CodecProgress pfnProgress, bool bForceEncode,
                            unsigned int dwCodecOption) {
  return m_pIWavData != nullptr &&
         m_pIWavData->Convert(eType, pszFileName, bEncode, bWriteCodecHead, pfnProgress,
                              bForceEncode, dwCodecOption);
}

bool C_WavFileBase::GetDataInfo(int nType, void** ppInfo) {
  *ppInfo = nullptr;
  return m_pIWavData != nullptr && m_pIWavData->GetInfo(nType, ppInfo);
}

bool C_WavFileBase::OpenByName(const char* pszFileName) {
  if (pszFileName == nullptr || std::strlen(pszFileName) > kFileNameField) return false;
  m_qwNotedLength.reset();
  return CheckFormat(pszFileName, true) && KeepNameAndLength(pszFileName);
}

bool C_WavFileBase::LoadByName(const char* pszFileName, bool bKeepEncoded,
                               const char* pszCodecOption, PFN_DecodedData pfnData) {
  if (!OpenByName(pszFileName) || !LoadData(bKeepEncoded, pszCodecOption, pfnData)) return false;
  SetEventSampleRate();
  return true;
}

I_WavData* C_WavFileBase::PrepareWavData() {
  if (m_pIWavData == nullptr) m_pIWavData = new C_WavData;
  return m_pIWavData;
}

void C_WavFileBase::SafeDeleteWavData() {
  if (m_pIWavData == nullptr || m_bAttached) return;
  m_pIWavData->Release();
  m_pIWavData = nullptr;
}

bool C_WavFileBase::FindFormatAndData(C_RiffFile& riff) {
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

void C_WavFileBase::SetLinearForm(unsigned int dwByteLength, unsigned short wBits) {
  const S_PcmFormatRecord record = m_codecInfo.GetPCMWAVEFORMAT();
  // The samples of an earlier file may be fewer than the new length says, so they are removed.
  m_pIWavData->AttachBuffer(nullptr, 0);
  m_pIWavData->DetachBuffer();
  m_pIWavData->SetWavInfoData(record.dwSamplesPerSec, dwByteLength, record.wChannels, wBits, wBits,
                              wBits > 8);
}

// Kept: a file that is cut within its samples still loads, at its full length and with zeros for
// the missing samples. Recordings that broke off stay playable. Pinned by
// MissingTailOfTheData_IsZero.
bool C_WavFileBase::LoadStoredPcm(vcm::C_FileReader& file) {
  const unsigned int dwLength = m_pIWavData->GetBufferLength();
  const std::optional<std::uint64_t> qwFileSize = file.Length();
  if (!qwFileSize) return false;
  const std::uint64_t qwHeld = *qwFileSize - std::min<std::uint64_t>(*qwFileSize, m_dwDataStartPos);
  if (dwLength > qwHeld && dwLength - qwHeld > kMaxMissingBytes) return false;
  unsigned char* pbyPcm = m_pIWavData->AllocBuffer(dwLength);
  if (pbyPcm == nullptr) return dwLength == 0;
  const std::span<std::uint8_t> pcm(pbyPcm, dwLength);
  const auto cbRead = file.ReadSome(m_dwDataStartPos, pcm);
  if (!cbRead) {
    // Most of the memory holds nothing yet.
    m_pIWavData->AllocBuffer(0);
    return false;
  }
  const auto missing = pcm.subspan(*cbRead);
  std::fill(missing.begin(), missing.end(), std::uint8_t{0});
  return true;
}

bool C_WavFileBase::TakeFormat(C_RiffChunk& chunk) {
  const unsigned int dwLength = std::min(chunk.GetDataLength(), C_WavFileCodecInfo::kMaxBytes);
  const std::unique_ptr<std::uint8_t[]> pbyPayload = chunk.ReadAll(0);
  if (!pbyPayload || !m_codecInfo.SetFormat({pbyPayload.get(), dwLength})) return false;
  m_dwFormatPos = chunk.GetDataPos();
  m_wStoredBits = m_codecInfo.GetPCMWAVEFORMAT().wBitsPerSample;
  return true;
}

bool C_WavFileBase::KeepNameAndLength(const char* pszFileName) {
  const auto qwLength = m_qwNotedLength
                            ? m_qwNotedLength
                            : vcm::C_FileReader(vcm::OpenFile(pszFileName, "rb")).Length();
  if (!qwLength || *qwLength > std::numeric_limits<unsigned int>::max()) return false;
  m_strFileName = pszFileName;
  m_dwFileLength = static_cast<unsigned int>(*qwLength);
  return true;
}

void C_WavFileBase::SetEventSampleRate() {
  m_pIWavData->GetEventTagMgr()->SetSampleRate(m_pIWavData->GetWavInfo()->GetSampleRate());
}
