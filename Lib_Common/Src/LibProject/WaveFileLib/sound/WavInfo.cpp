// SPDX-License-Identifier: Apache-2.0
#include "sound/WavInfo.h"

#include <limits>

bool IsSupportBitsPerSample(unsigned short wBitsPerSample, unsigned short wStoreBitsPerSample) {
  const bool bStorable =
      wStoreBitsPerSample == 8 || wStoreBitsPerSample == 16 || wStoreBitsPerSample == 32;
  return bStorable && wBitsPerSample <= wStoreBitsPerSample;
}

unsigned int C_WavInfo::GetTimeLength() {
  if (m_dwSampleRate == 0) return 0;
  // Kept: seconds first, then thousandths, so that 1.001 s comes out as 1000 ms. Displays and cue
  // sheets made with the library rely on these values. Pinned by
  // TimeLength_DividesBeforeItMultiplies.
  const double dMilliseconds = static_cast<double>(GetSampleSize()) / m_dwSampleRate * 1000.0;
  constexpr unsigned int dwMax = std::numeric_limits<unsigned int>::max();
  return dMilliseconds < dwMax ? static_cast<unsigned int>(dMilliseconds) : dwMax;
}

unsigned int C_WavInfo::GetSampleSize() {
  if (m_wChannels == 0 || m_wStoreBitsPerSample == 0) return 0;
  // Kept: the count of bits wraps at 32 bits, so sounds of 512 MiB and more count too few samples.
  // Every size derived from this count has always agreed with it. Pinned by
  // SampleSize_WrapsFromHalfAGibibyteOn.
  return m_dwByteLength * 8U / m_wStoreBitsPerSample / m_wChannels;
}

unsigned short C_WavInfo::GetBytesPerSample() {
  return static_cast<unsigned short>((m_wStoreBitsPerSample + 7U) >> 3);
}

unsigned short C_WavInfo::GetBlockAlign() {
  return static_cast<unsigned short>(m_wChannels * unsigned{GetBytesPerSample()});
}

unsigned int C_WavInfo::GetAvgBytesPerSec() {
  return m_dwSampleRate * GetBytesPerSample() * m_wChannels;
}

void C_WavInfo::SetInfo(I_WavInfo* pIWavInfo) {
  if (pIWavInfo == nullptr) return;
  SetInfoData(pIWavInfo->GetSampleRate(), pIWavInfo->GetByteLength(), pIWavInfo->GetChannels(),
              pIWavInfo->GetBitsPerSample(), pIWavInfo->GetStoreBitsPerSample(),
              pIWavInfo->IsValueSigned());
}

void C_WavInfo::SetInfoData(unsigned int dwSampleRate, unsigned int dwByteLength,
                            unsigned short wChannels, unsigned short wBitsPerSample,
                            unsigned short wStoreBitsPerSample, bool bValueSigned) {
  m_dwSampleRate = dwSampleRate;
  m_dwByteLength = dwByteLength;
  m_wChannels = wChannels;
  m_wBitsPerSample = wBitsPerSample;
  m_wStoreBitsPerSample = wStoreBitsPerSample;
  m_bValueSigned = bValueSigned;
}

void C_WavInfo::GetWaveFormat(S_PcmFormatRecord* pRecord) {
  pRecord->wFormatTag = 1;
  pRecord->wChannels = m_wChannels;
  pRecord->dwSamplesPerSec = m_dwSampleRate;
  pRecord->dwAvgBytesPerSec = GetAvgBytesPerSec();
  pRecord->wBlockAlign = GetBlockAlign();
  pRecord->wBitsPerSample = m_wBitsPerSample;
}
