// SPDX-License-Identifier: Apache-2.0
#include "CAAudioUnit.h"

OSStatus CAAudioUnit::GetProperty(AudioUnitPropertyID dwID, AudioUnitScope dwScope,
                                  AudioUnitElement dwElement, void* pData,
                                  UInt32* pdwDataSize) const {
  return AudioUnitGetProperty(m_unit, dwID, dwScope, dwElement, pData, pdwDataSize);
}

OSStatus CAAudioUnit::SetProperty(AudioUnitPropertyID dwID, AudioUnitScope dwScope,
                                  AudioUnitElement dwElement, const void* pData,
                                  UInt32 dwDataSize) const {
  return AudioUnitSetProperty(m_unit, dwID, dwScope, dwElement, pData, dwDataSize);
}

OSStatus CAAudioUnit::GetFormat(AudioUnitScope dwScope, AudioUnitElement dwElement,
                                AudioStreamBasicDescription& format) const {
  UInt32 cbFormat = sizeof format;
  return GetProperty(kAudioUnitProperty_StreamFormat, dwScope, dwElement, &format, &cbFormat);
}

OSStatus CAAudioUnit::SetFormat(AudioUnitScope dwScope, AudioUnitElement dwElement,
                                const AudioStreamBasicDescription& format) const {
  return SetProperty(kAudioUnitProperty_StreamFormat, dwScope, dwElement, &format, sizeof format);
}

OSStatus CAAudioUnit::SetNumberChannels(AudioUnitScope dwScope, AudioUnitElement dwElement,
                                        UInt32 dwChannels) const {
  CAStreamBasicDescription format;
  const OSStatus nStatus = GetFormat(dwScope, dwElement, format);
  if (nStatus != noErr) return nStatus;
  format.ChangeNumberChannels(dwChannels, format.IsInterleaved());
  return SetFormat(dwScope, dwElement, format);
}

OSStatus CAAudioUnit::SetSampleRate(AudioUnitScope dwScope, AudioUnitElement dwElement,
                                    Float64 dRate) const {
  CAStreamBasicDescription format;
  const OSStatus nStatus = GetFormat(dwScope, dwElement, format);
  if (nStatus != noErr) return nStatus;
  format.mSampleRate = dRate;
  return SetFormat(dwScope, dwElement, format);
}
