// SPDX-License-Identifier: Apache-2.0
#include "sound/AudioCodecParam.h"

void C_AudioCodecParam::SetSampleBits(unsigned short wBitsPerSample,
                                      unsigned short wStoreBitsPerSample, bool bValueSigned) {
  m_options.wBitsPerSample = wBitsPerSample;
  m_options.wStoreBitsPerSample = wStoreBitsPerSample;
  m_options.bValueSigned = bValueSigned;
  m_options.bSampleBitsSet = true;
}

void C_AudioCodecParam::GetSampleBits(unsigned short* pwBitsPerSample,
                                      unsigned short* pwStoreBitsPerSample, bool* pbValueSigned) {
  *pwBitsPerSample = m_options.wBitsPerSample;
  *pwStoreBitsPerSample = m_options.wStoreBitsPerSample;
  *pbValueSigned = m_options.bValueSigned;
}

void C_AudioCodecParam::SetSilenceCondition(unsigned int dwFirst, unsigned int dwSecond) {
  m_options.dwSilenceFirst = dwFirst;
  m_options.dwSilenceSecond = dwSecond;
  m_options.bSilenceConditionSet = true;
}

void C_AudioCodecParam::GetSilenceCondition(unsigned int* pdwFirst, unsigned int* pdwSecond) {
  *pdwFirst = m_options.dwSilenceFirst;
  *pdwSecond = m_options.dwSilenceSecond;
}
