// SPDX-License-Identifier: Apache-2.0
//
// Finds the step sizes with which a whole sound fills the size that it may take.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/Encoder.h"

namespace heron {

// Short sounds may take more than their bits, but no more than this with the head of the stream:
// kShortBytes and kShortBitsOf8 eighths of a bit per sample, kMostShortBytes in all.
inline constexpr std::uint64_t kShortBytes = 16;
inline constexpr std::uint64_t kShortBitsOf8 = 16;
inline constexpr std::uint64_t kMostShortBytes = 128;

// The most bytes that the coded audio of so many samples may take: samples * nBitDepth / 8, rounded
// down, or more for a short sound; less the head in both cases.
std::uint64_t CodedRoom(std::size_t nSamples, int nBitDepth) noexcept;

// Returns the coded audio of samples (1..2^32-1) at nSampleRate for nBitDepth bits per sample. It
// takes at most CodedRoom bytes, and is usually no more than a 500th smaller than that, or a 200th
// where that is hard to meet. Sounds that stay smaller at any step size, like silence, take less.
// fnProgress gets numbers of samples in rising order.
std::vector<std::uint8_t> EncodeWithin(std::span<const std::int16_t> samples, int nSampleRate,
                                       int nBitDepth, const C_Encoder::S_Progress& fnProgress);

}  // namespace heron
