// SPDX-License-Identifier: Apache-2.0
//
// The spectral envelope: one power index per coded region. A step of one is a factor of sqrt(2) in
// the region's standard deviation, and index 0 means a deviation of 1. In the frame:
//
//   5 bits             index of region 0, + 7
//   code word          per further region: difference from the previous region, coded per region
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "kestrel/BitStream.h"
#include "kestrel/Configuration.h"

namespace kestrel {

// Range of a power index in a valid frame. In the frames that we write, region 0 has at least -6.
inline constexpr int kLowestPower = -15;
inline constexpr int kHighestPower = 24;

// How the index of region 0 is written.
inline constexpr int kFirstPowerBits = 5;
inline constexpr int kFirstPowerOffset = 7;
// The next index begins at this mantissa of an energy: sqrt(2) / 1.6, Q15.
inline constexpr std::int32_t kRoundPowerUpFrom = 28963;

// Power index per region; entries from the number of coded regions on are 0 and unused. A damaged
// frame can hold any index from -163 to 167.
using S_Envelope = std::array<int, kMaxRegions>;

// Encoder steps, in this order.

// Index of one region whose coefficients are scaled by 2^nShift.
int RegionPower(S_ConstRegion region, int nShift) noexcept;
S_Envelope MeasureEnvelope(const S_Frame& coefficients, int nShift, int nRegions) noexcept;
// Raises a valley before a peak where the code could not climb to the peak, and limits the indices.
void ShapeEnvelope(S_Envelope& envelope, int nRegions) noexcept;
// Writes the envelope and changes its indices to those that the decoder will see.
void WriteEnvelope(C_BitWriter& writer, S_Envelope& envelope, int nRegions) noexcept;

// Decoder steps.

S_Envelope ReadEnvelope(C_BitReader& reader, int nRegions) noexcept;
[[nodiscard]] bool IsValidEnvelope(const S_Envelope& envelope, int nRegions) noexcept;

// The scale that the decoder works in.
struct S_Scale {
  int nShift;                                       // -1..9, as in the transform
  std::array<std::int16_t, kMaxRegions> deviation;  // standard deviation * 2^nShift per region
};
S_Scale ScaleOf(const S_Envelope& envelope, int nRegions) noexcept;

}  // namespace kestrel
