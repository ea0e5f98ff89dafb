// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

// A stream description with the few questions and changes that need arithmetic. All zero when
// constructed without a value. Adds no fields, so it can be passed wherever 40 bytes are asked for.
class CAStreamBasicDescription : public AudioStreamBasicDescription {
 public:
  CAStreamBasicDescription() noexcept : AudioStreamBasicDescription{} {}
  explicit CAStreamBasicDescription(const AudioStreamBasicDescription& desc) noexcept
      : AudioStreamBasicDescription(desc) {}

  [[nodiscard]] bool IsPCM() const noexcept { return mFormatID == kAudioFormatLinearPCM; }
  [[nodiscard]] bool IsInterleaved() const noexcept {
    return (mFormatFlags & kAudioFormatFlagIsNonInterleaved) == 0;
  }
  [[nodiscard]] UInt32 NumberChannels() const noexcept { return mChannelsPerFrame; }
  // Bytes that one sample takes; 0 when the description does not say.
  [[nodiscard]] UInt32 SampleWordSize() const noexcept;
  // Keeps the sample format and gives it this many channels; frame and packet sizes follow.
  void ChangeNumberChannels(UInt32 dwChannels, bool bInterleaved) noexcept;
};
static_assert(sizeof(CAStreamBasicDescription) == sizeof(AudioStreamBasicDescription));
