// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <cstddef>

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

  // Writes the description as one line for debugging, without a line end, and returns the buffer:
  //   " 2 ch,  44100 Hz, 'lpcm' (0x00000029) 32-bit little-endian float, deinterleaved"
  // What does not fit `cbBuffer` - 1 characters is cut; nothing is written when `cbBuffer` is 0 or
  // the buffer null. Behind the format code and its flags stand
  //   for PCM       depth ("8.24" in fixed point), byte order, number format, packing, layout
  //   for 'alac'    depth of the source, frames in a packet
  //   for the rest  bits of a channel; bytes and frames of a packet; bytes of a frame
  char* AsText(char* pszBuffer, std::size_t cbBuffer) const noexcept;
};
static_assert(sizeof(CAStreamBasicDescription) == sizeof(AudioStreamBasicDescription));
