// SPDX-License-Identifier: Apache-2.0
//
// The format of linear PCM.
#pragma once

#include "interface/PcmFormatRecord.h"

class I_WavInfo {
 public:
  // Duration in milliseconds, truncated; 0 when the rate is 0.
  virtual unsigned int GetTimeLength() = 0;  // 1
  // Length of the PCM data in bytes.
  virtual unsigned int GetByteLength() = 0;  // 2
  // Length of the encoded form in bytes; 0 when there is no encoded form.
  virtual unsigned int GetEncByteLen() = 0;  // 3
  // Samples per second per channel.
  virtual unsigned int GetSampleRate() = 0;  // 4
  // Number of sample frames; 0 until channels and stored bits have been set.
  virtual unsigned int GetSampleSize() = 0;  // 5
  // Significant bits of one sample value.
  virtual unsigned short GetBitsPerSample() = 0;  // 6
  // Bits that one sample occupies in memory.
  virtual unsigned short GetStoreBitsPerSample() = 0;  // 7
  virtual unsigned short GetChannels() = 0;            // 8
  // Bytes that one sample occupies, rounded up.
  virtual unsigned short GetBytesPerSample() = 0;  // 9
  // Bytes of one sample frame.
  virtual unsigned short GetBlockAlign() = 0;    // 10
  virtual unsigned int GetAvgBytesPerSec() = 0;  // 11
  // True for two's complement, false for values with an offset of half the range.
  virtual bool IsValueSigned() = 0;                           // 12
  virtual void SetSampleRate(unsigned int dwSampleRate) = 0;  // 13
  // Copies everything but the encoded length.
  virtual void SetInfo(I_WavInfo* pIWavInfo) = 0;  // 14
  // Sets these six values and nothing else.
  virtual void SetInfoData(unsigned int dwSampleRate, unsigned int dwByteLength,
                           unsigned short wChannels, unsigned short wBitsPerSample,
                           unsigned short wStoreBitsPerSample, bool bValueSigned) = 0;  // 15
  virtual void GetWaveFormat(S_PcmFormatRecord* pRecord) = 0;                           // 16
  virtual ~I_WavInfo() = default;                                                       // 17
};

// True when the sample accessors work for these widths: stored bits 8, 16 or 32, and no more
// significant bits than stored ones (24 significant bits are stored in 32).
bool IsSupportBitsPerSample(unsigned short wBitsPerSample, unsigned short wStoreBitsPerSample);
