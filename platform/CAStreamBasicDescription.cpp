// SPDX-License-Identifier: Apache-2.0
#include "CAStreamBasicDescription.h"

UInt32 CAStreamBasicDescription::SampleWordSize() const noexcept {
  if (mBytesPerFrame == 0) return 0;
  if (IsPCM() && !IsInterleaved()) return mBytesPerFrame;
  return mChannelsPerFrame != 0 ? mBytesPerFrame / mChannelsPerFrame : 0;
}

void CAStreamBasicDescription::ChangeNumberChannels(UInt32 dwChannels, bool bInterleaved) noexcept {
  UInt32 cbWord = SampleWordSize();
  if (cbWord == 0) cbWord = (mBitsPerChannel + 7) / 8;
  mChannelsPerFrame = dwChannels;
  mFramesPerPacket = 1;
  if (bInterleaved) {
    mFormatFlags &= ~static_cast<AudioFormatFlags>(kAudioFormatFlagIsNonInterleaved);
    mBytesPerFrame = cbWord * dwChannels;
  } else {
    mFormatFlags |= kAudioFormatFlagIsNonInterleaved;
    mBytesPerFrame = cbWord;
  }
  mBytesPerPacket = mBytesPerFrame;
}
