// SPDX-License-Identifier: Apache-2.0
//
// The format of one sound's linear PCM, with the sizes that follow from it.
#pragma once

#include "interface/I_WavInfo.h"

// This record has always been declared with two-byte packing. The alignment beside it keeps the
// pointer to the virtual table where the processor wants it.
#pragma pack(push, 2)
class alignas(void*) C_WavInfo : public I_WavInfo {
 public:
  // Milliseconds; 0 at rate 0, 0xFFFFFFFF when the duration does not fit.
  unsigned int GetTimeLength() override;
  unsigned int GetByteLength() override { return m_dwByteLength; }
  unsigned int GetEncByteLen() override { return m_dwEncByteLen; }
  unsigned int GetSampleRate() override { return m_dwSampleRate; }
  // 0 while the channels or the stored bits are 0.
  unsigned int GetSampleSize() override;
  unsigned short GetBitsPerSample() override { return m_wBitsPerSample; }
  unsigned short GetStoreBitsPerSample() override { return m_wStoreBitsPerSample; }
  unsigned short GetChannels() override { return m_wChannels; }
  unsigned short GetBytesPerSample() override;
  unsigned short GetBlockAlign() override;
  unsigned int GetAvgBytesPerSec() override;
  bool IsValueSigned() override { return m_bValueSigned; }
  void SetSampleRate(unsigned int dwSampleRate) override { m_dwSampleRate = dwSampleRate; }
  void SetInfo(I_WavInfo* pIWavInfo) override;
  void SetInfoData(unsigned int dwSampleRate, unsigned int dwByteLength, unsigned short wChannels,
                   unsigned short wBitsPerSample, unsigned short wStoreBitsPerSample,
                   bool bValueSigned) override;
  void GetWaveFormat(S_PcmFormatRecord* pRecord) override;

  void SetChannels(unsigned short wChannels) { m_wChannels = wChannels; }
  void SetEncByteLen(unsigned int dwEncByteLen) { m_dwEncByteLen = dwEncByteLen; }

 private:
  bool m_bValueSigned = true;
  unsigned int m_dwSampleRate = 0;
  unsigned int m_dwByteLength = 0;
  unsigned int m_dwEncByteLen = 0;
  unsigned short m_wChannels = 0;
  unsigned short m_wBitsPerSample = 0;
  unsigned short m_wStoreBitsPerSample = 0;
};
#pragma pack(pop)
