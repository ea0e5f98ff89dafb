// SPDX-License-Identifier: Apache-2.0
//
// Codes a whole sound so that it fills the size that it may take. The coded audio is the number of
// samples (SampleCount.h) and the blocks (Block.h), of BlockLength samples each; the last one has
// the rest.
//
// A first look at the whole sound (Forecast.h) tells how coarse its steps have to be. Then its
// blocks are coded one after another. As they turn out larger or smaller than foreseen, the steps
// of the others change a little. The last blocks are coded several times, until they fill what is
// left. Only these are held in memory. So all samples are read twice, from the first to the last.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

namespace heron {

// Gives the samples from nAt on, as many as there is room for. False when they cannot be read; then
// coding ends.
using S_ReadSamples = std::function<bool(std::size_t nAt, std::span<std::int16_t> samples)>;
// Takes the next bytes of the coded audio. False when they cannot be kept; then coding ends.
using S_Write = std::function<bool(std::span<const std::uint8_t>)>;
// Called with the number of samples that are done.
using S_Progress = std::function<void(std::size_t nSamplesDone)>;

// Short sounds may take more than their bits, but no more than this with the head of the stream:
// kShortBytes and kShortBitsOf8 eighths of a bit per sample, kMostShortBytes in all.
inline constexpr std::uint64_t kShortBytes = 16;
inline constexpr std::uint64_t kShortBitsOf8 = 16;
inline constexpr std::uint64_t kMostShortBytes = 128;

// The most bytes that the coded audio of so many samples may take: samples * nBitDepth / 8, rounded
// down, or more for a short sound; less the head in both cases.
std::uint64_t CodedRoom(std::size_t nSamples, int nBitDepth) noexcept;

// Codes samples (1..2^32-1) at a supported rate for a supported number of bits per sample. The
// coded audio takes at most CodedRoom bytes, and is usually no more than a 256th smaller than that,
// or a 100th where that is hard to meet. Sounds that stay smaller at any step size, like silence,
// take less. fnProgress gets numbers of samples in rising order; the last one is that of all
// samples. fnRead gives at most kMostAtOnce samples at a time. False when fnRead or fnWrite was
// false; what one of the functions throws goes to the caller.
inline constexpr std::size_t kMostAtOnce = 4096;
bool EncodeWithin(std::size_t nSamples, const S_ReadSamples& fnRead, int nSampleRate, int nBitDepth,
                  const S_Write& fnWrite, const S_Progress& fnProgress);
// The same for samples in memory.
bool EncodeWithin(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                  const S_Write& fnWrite, const S_Progress& fnProgress);

}  // namespace heron
