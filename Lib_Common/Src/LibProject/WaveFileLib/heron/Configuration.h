// SPDX-License-Identifier: Apache-2.0
//
// What a sound must be like to be coded, and how it is divided:
//
//   block     about 4 s, kBlockSections sections; coded by itself, so that it can be decoded by
//             itself. The last block of a sound is as long as the rest of the sound
//   section   about 40 ms, kSectionUnits units
//   part      1, 2, 4 or 8 units of a section, as the encoder chose; transformed as one
//   unit      about 5 ms, an even number of samples
//
// Events and progress count frames of 20 ms. These have nothing to do with the parts.
#pragma once

#include <cstddef>

#include "heron/Tables.h"

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

// A part has 2^0 to 2^(kPartSizes-1) units.
inline constexpr std::size_t kSectionUnits = std::size_t{1} << (kPartSizes - 1);
inline constexpr std::size_t kBlockSections = 100;

// Samples per unit, 20 to 240.
constexpr std::size_t UnitLength(int nSampleRate) noexcept {
  return static_cast<std::size_t>(nSampleRate / 400) * 2;
}
constexpr std::size_t SectionLength(int nSampleRate) noexcept {
  return kSectionUnits * UnitLength(nSampleRate);
}
constexpr std::size_t BlockLength(int nSampleRate) noexcept {
  return kBlockSections * SectionLength(nSampleRate);
}

inline constexpr std::size_t kMaxPartLength = SectionLength(kMaxSampleRate);

}  // namespace heron
