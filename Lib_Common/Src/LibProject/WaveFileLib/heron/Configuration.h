// SPDX-License-Identifier: Apache-2.0
//
// What a sound must be like to be coded, and how long its frames are.
#pragma once

namespace heron {

inline constexpr int kMinSampleRate = 4000;  // Hz
inline constexpr int kMaxSampleRate = 48000;
inline constexpr int kMinBitDepth = 2;  // bits per sample
inline constexpr int kMaxBitDepth = 6;
// Bytes of a stream before the coded audio. They count towards the size that a sound may take.
inline constexpr int kHeadBytes = 4;

constexpr bool IsSupportedSampleRate(int nSampleRate) noexcept {
  return nSampleRate >= kMinSampleRate && nSampleRate <= kMaxSampleRate;
}

// Samples per frame: 20 ms, rounded down to an even number.
constexpr int FrameLength(int nSampleRate) noexcept { return nSampleRate / 100 * 2; }

inline constexpr int kMaxFrameLength = FrameLength(kMaxSampleRate);

}  // namespace heron
