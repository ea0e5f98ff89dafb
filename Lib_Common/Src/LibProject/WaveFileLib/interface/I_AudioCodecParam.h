// SPDX-License-Identifier: Apache-2.0
//
// The options of one encoding run. Values are stored as given.
//
// This library reads the sample bits (when a file with PCM is written), the bit rate (Kestrel) and
// the platform (which a VEF container stores). All other options are for codecs that are not part
// of it, and have no effect.
#pragma once

// The platform that encoded data is made for.
enum tagAudioCodecPlatform : unsigned int {
  AUDIO_CODEC_PLATFORM_DEFAULT = 0,
  AUDIO_CODEC_PLATFORM_FALLBACK = 2,  // second attempt at a file that did not load
};

class I_AudioCodecParam {
 public:
  // Resets all options to their defaults.
  virtual void Clear() = 0;  // 1
  virtual void SetSampleBits(unsigned short wBitsPerSample, unsigned short wStoreBitsPerSample,
                             bool bValueSigned) = 0;  // 2
  virtual bool IsSampleBitsSet() = 0;                 // 3
  // Writes all three values, even if they were never set; no pointer may be null.
  virtual void GetSampleBits(unsigned short* pwBitsPerSample, unsigned short* pwStoreBitsPerSample,
                             bool* pbValueSigned) = 0;            // 4
  virtual void SetPlatform(tagAudioCodecPlatform ePlatform) = 0;  // 5
  virtual tagAudioCodecPlatform GetPlatform() = 0;                // 6
  virtual void SetEndingFlag(unsigned int dwEndingFlag) = 0;      // 7
  virtual unsigned int GetEndingFlag() = 0;                       // 8
  virtual void SetBitRate(unsigned int dwBitRate) = 0;            // 9, bits per second
  virtual unsigned int GetBitRate() = 0;                          // 10
  virtual void SetSilenceCondition(unsigned int dwFirst, unsigned int dwSecond) = 0;  // 11
  virtual bool IsSilenceConditionSet() = 0;                                           // 12
  // Writes both values, even if they were never set; no pointer may be null.
  virtual void GetSilenceCondition(unsigned int* pdwFirst, unsigned int* pdwSecond) = 0;  // 13
  virtual void SetCodingQuality(unsigned int dwQuality) = 0;                              // 14
  virtual unsigned int GetCodingQuality() = 0;                                            // 15
  virtual void SetAutoSilence(bool bAutoSilence) = 0;                                     // 16
  virtual bool GetAutoSilence() = 0;                                                      // 17
  virtual void SetClockSource(unsigned int dwClockSource) = 0;                            // 18
  virtual unsigned int GetClockSource() = 0;                                              // 19
  virtual void SetShowConvertProgress(bool bShow) = 0;                                    // 20
  virtual bool GetShowConvertProgress() = 0;                                              // 21
  virtual void SetIsAttackOnly(bool bAttackOnly) = 0;                                     // 22
  virtual bool GetIsAttackOnly() = 0;                                                     // 23
  virtual ~I_AudioCodecParam() = default;                                                 // 24
};
