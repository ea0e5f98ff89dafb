// SPDX-License-Identifier: Apache-2.0
//
// The dimensions of a frame, the same at every bit rate: 20 ms at 16 kHz, as many coefficients as
// samples, regions of 20 coefficients (500 Hz).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kestrel {

inline constexpr int kSamplesPerFrame = 320;
inline constexpr int kRegionSize = 20;
inline constexpr int kMaxRegions = 14;  // coefficients 280..319 are never coded

// Samples or coefficients of one frame.
using S_Frame = std::array<std::int16_t, kSamplesPerFrame>;

// Coefficients of one region.
using S_Region = std::span<std::int16_t, kRegionSize>;
using S_ConstRegion = std::span<const std::int16_t, kRegionSize>;

// Regions, categories and symbols are computed as ints. They are never negative where they index.
constexpr std::size_t Index(int nValue) noexcept { return static_cast<std::size_t>(nValue); }

// nRegion: 0..13.
constexpr S_Region RegionOf(S_Frame& frame, std::size_t nRegion) noexcept {
  return S_Region(frame.data() + nRegion * kRegionSize, kRegionSize);
}
constexpr S_ConstRegion RegionOf(const S_Frame& frame, std::size_t nRegion) noexcept {
  return S_ConstRegion(frame.data() + nRegion * kRegionSize, kRegionSize);
}

}  // namespace kestrel
