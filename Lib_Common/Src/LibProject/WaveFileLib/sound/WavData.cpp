// SPDX-License-Identifier: Apache-2.0
//
// The life of a sound, its buffers and its format.
#include "sound/WavData.h"

#include <memory>
#include <typeinfo>
#include <utility>

#include "sound/HeldBytes.h"

C_WavData::C_WavData() : m_cueInfo(&m_wavInfo), m_samplerInfo(&m_wavInfo) {
  m_pcmBuffer.SetWavInfo(&m_wavInfo);
  m_encBuffer.SetWavInfo(&m_wavInfo);
}

int C_WavData::Release() {
  // Kept: the count starts at 0, and Release deletes the object when the count is below 1. Callers
  // therefore end a new sound with one Release and no AddRef. Pinned by
  // Release_OfANewSoundDeletesIt.
  if (m_nRefCount < 1) {
    delete this;
    return 0;
  }
  return --m_nRefCount;
}

void C_WavData::SetWavInfo(I_WavInfo* pIWavInfo) {
  m_wavInfo.SetInfo(pIWavInfo);
  m_pcmBuffer.SetWavInfo(&m_wavInfo);
  m_eventTagMgr.SetSampleRate(m_wavInfo.GetSampleRate());
}

void C_WavData::SetWavInfoData(unsigned int dwSampleRate, unsigned int dwByteLength,
                               unsigned short wChannels, unsigned short wBitsPerSample,
                               unsigned short wStoreBitsPerSample, bool bValueSigned) {
  C_WavInfo info;
  info.SetInfoData(dwSampleRate, dwByteLength, wChannels, wBitsPerSample, wStoreBitsPerSample,
                   bValueSigned);
  SetWavInfo(&info);
}

bool C_WavData::CopyWavData(I_WavData* pSrc) {
  if (pSrc == nullptr || !vcm::HoldsItsBytes(*pSrc)) return false;
  if (!SetBuffer(pSrc->GetBuffer(), pSrc->GetBufferLength())) return false;
  SetWavInfo(pSrc->GetWavInfo());
  return true;
}

unsigned char* C_WavData::AllocBuffer(unsigned int dwLength) {
  m_pcmBuffer.AllocBuffer(dwLength);
  SetByteLength(dwLength);
  return m_pcmBuffer.GetBuffer();
}

bool C_WavData::SetBuffer(const void* pData, unsigned int dwLength) {
  if (m_pcmBuffer.IsBufferAttached() || (pData == nullptr && dwLength > 0)) return false;
  m_pcmBuffer.CopyBuffer(pData, dwLength);
  SetByteLength(dwLength);
  return true;
}

I_WavData* C_WavData::Clone() {
  auto clone = std::make_unique<C_WavData>();
  return clone->CopyWavData(this) ? clone.release() : nullptr;
}

void C_WavData::AttachBuffer(void* pData, unsigned int dwLength) {
  m_pcmBuffer.AttachBuffer(pData, dwLength);
  SetByteLength(dwLength);
}

bool C_WavData::GetInfo(int nType, void** ppInfo) {
  *ppInfo = nullptr;
  switch (nType) {
    case WAV_DATA_INFO_CUE:
      *ppInfo = static_cast<I_WavDataCueInfo*>(&m_cueInfo);
      return true;
    case WAV_DATA_INFO_TEXT:
      *ppInfo = static_cast<I_WavDataTextInfo*>(&m_textInfo);
      return true;
    case WAV_DATA_INFO_SAMPLER:
      *ppInfo = static_cast<I_WavDataSamplerInfo*>(&m_samplerInfo);
      return true;
    case WAV_DATA_INFO_LIST:
      *ppInfo = static_cast<I_WavDataListInfo*>(&m_listInfo);
      return true;
    case WAV_DATA_INFO_EXTRA_CHUNK:
      *ppInfo = static_cast<I_WavDataExtraChunkInfo*>(&m_extraChunks);
      return true;
    default:
      return false;
  }
}

bool C_WavData::Reserved45(unsigned int /*dwFirst*/, unsigned int /*dwSecond*/) { return true; }

bool C_WavData::SetEncBuffer(const void* pData, unsigned int dwLength) {
  if (m_encBuffer.IsBufferAttached() || (pData == nullptr && dwLength > 0)) return false;
  m_encBuffer.CopyBuffer(pData, dwLength);
  m_wavInfo.SetEncByteLen(dwLength);
  m_encBuffer.SetWavInfo(&m_wavInfo);
  return true;
}

void C_WavData::TakeBuffer(std::unique_ptr<unsigned char[]> pbyData, unsigned int dwLength) {
  m_pcmBuffer.TakeBuffer(std::move(pbyData), dwLength);
  SetByteLength(dwLength);
}

bool C_WavData::TakeEncBuffer(std::unique_ptr<unsigned char[]> pbyData, unsigned int dwLength) {
  if (m_encBuffer.IsBufferAttached() || pbyData == nullptr) return false;
  m_encBuffer.TakeBuffer(std::move(pbyData), dwLength);
  m_wavInfo.SetEncByteLen(dwLength);
  m_encBuffer.SetWavInfo(&m_wavInfo);
  return true;
}

C_WavData* AsOurOwn(I_WavData& wavData) {
  return typeid(wavData) == typeid(C_WavData) ? static_cast<C_WavData*>(&wavData) : nullptr;
}

C_WavInfo C_WavData::FormatWith(unsigned short wChannels, unsigned int dwByteLength) {
  C_WavInfo info;
  info.SetInfoData(m_wavInfo.GetSampleRate(), dwByteLength, wChannels, m_wavInfo.GetBitsPerSample(),
                   m_wavInfo.GetStoreBitsPerSample(), m_wavInfo.IsValueSigned());
  return info;
}

void C_WavData::SetByteLength(unsigned int dwLength) {
  C_WavInfo format = FormatWith(m_wavInfo.GetChannels(), dwLength);
  m_wavInfo.SetInfo(&format);
  m_pcmBuffer.SetWavInfo(&m_wavInfo);
}
