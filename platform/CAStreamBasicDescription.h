// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <AudioToolbox/AudioToolbox.h>

#include <cstddef>

// A stream description with the few queries and changes that need arithmetic. It is all zero when
// constructed without a value. It adds no fields, so it can be passed wherever the 40-byte record
// is expected.
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
  // Bytes of one sample; 0 when the description does not say.
  [[nodiscard]] UInt32 SampleWordSize() const noexcept;
  // Keeps the sample format and gives it this many channels; the frame and packet sizes are
  // updated.
  void ChangeNumberChannels(UInt32 dwChannels, bool bInterleaved) noexcept;

  // Writes the description as one line for debugging, without a line end, and returns the buffer:
  //   " 2 ch,  44100 Hz, 'lpcm' (0x00000029) 32-bit little-endian float, deinterleaved"
  // The text is cut to `cbBuffer` - 1 characters. Nothing is written when `cbBuffer` is 0 or the
  // buffer is null. After the format code and its flags come
  //   for PCM     depth ("8.24" in fixed point), byte order, number format, packing, layout
  //   for 'alac'  depth of the source, frames per packet
  //   otherwise   bits per channel, bytes and frames per packet, bytes per frame
  char* AsText(char* pszBuffer, std::size_t cbBuffer) const noexcept;
};
static_assert(sizeof(CAStreamBasicDescription) == sizeof(AudioStreamBasicDescription));
