// SPDX-License-Identifier: Apache-2.0
//
// The options of one encoding run. A sound makes them with the defaults below, callers set them,
// and codecs and writers read them. The library itself reads only the sample bits (when a file is
// written), the bit rate (by Kestrel, in bit/s) and the platform; all other options are only kept
// for the caller.
#pragma once

#include "interface/I_AudioCodecParam.h"

class C_AudioCodecParam : public I_AudioCodecParam {
 public:
  void Clear() override { m_options = {}; }
  void SetSampleBits(unsigned short wBitsPerSample, unsigned short wStoreBitsPerSample,
                     bool bValueSigned) override;
  bool IsSampleBitsSet() override { return m_options.bSampleBitsSet; }
  void GetSampleBits(unsigned short* pwBitsPerSample, unsigned short* pwStoreBitsPerSample,
                     bool* pbValueSigned) override;
  void SetPlatform(tagAudioCodecPlatform ePlatform) override { m_options.ePlatform = ePlatform; }
  tagAudioCodecPlatform GetPlatform() override { return m_options.ePlatform; }
  void SetEndingFlag(unsigned int dwEndingFlag) override { m_options.dwEndingFlag = dwEndingFlag; }
  unsigned int GetEndingFlag() override { return m_options.dwEndingFlag; }
  void SetBitRate(unsigned int dwBitRate) override { m_options.dwBitRate = dwBitRate; }
  unsigned int GetBitRate() override { return m_options.dwBitRate; }
  void SetSilenceCondition(unsigned int dwFirst, unsigned int dwSecond) override;
  bool IsSilenceConditionSet() override { return m_options.bSilenceConditionSet; }
  void GetSilenceCondition(unsigned int* pdwFirst, unsigned int* pdwSecond) override;
  void SetCodingQuality(unsigned int dwQuality) override { m_options.dwCodingQuality = dwQuality; }
  unsigned int GetCodingQuality() override { return m_options.dwCodingQuality; }
  void SetAutoSilence(bool bAutoSilence) override { m_options.bAutoSilence = bAutoSilence; }
  bool GetAutoSilence() override { return m_options.bAutoSilence; }
  void SetClockSource(unsigned int dwClockSource) override {
    m_options.dwClockSource = dwClockSource;
  }
  unsigned int GetClockSource() override { return m_options.dwClockSource; }
  void SetShowConvertProgress(bool bShow) override { m_options.bShowConvertProgress = bShow; }
  bool GetShowConvertProgress() override { return m_options.bShowConvertProgress; }
  void SetIsAttackOnly(bool bAttackOnly) override { m_options.bAttackOnly = bAttackOnly; }
  bool GetIsAttackOnly() override { return m_options.bAttackOnly; }

 private:
  struct S_Options {
    unsigned short wBitsPerSample = 0;
    unsigned short wStoreBitsPerSample = 0;
    bool bValueSigned = false;
    bool bAutoSilence = true;
    tagAudioCodecPlatform ePlatform = AUDIO_CODEC_PLATFORM_DEFAULT;
    unsigned int dwEndingFlag = 0;
    unsigned int dwBitRate = 0;
    unsigned int dwSilenceFirst = 0;
    unsigned int dwSilenceSecond = 0;
    unsigned int dwCodingQuality = 0;
    unsigned int dwClockSource = 0;
    bool bShowConvertProgress = true;
    bool bAttackOnly = false;
    bool bSampleBitsSet = false;
    bool bSilenceConditionSet = false;
  };
  S_Options m_options;
};
