// SPDX-License-Identifier: Apache-2.0
//
// Microsoft ADPCM with AVX2. The samples of a channel are a chain in which each one needs the two
// before it, but the blocks of a file do not depend on each other: eight channels are decoded at
// once, each in a lane of its own.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace msadpcm {

// What the next sample of a channel depends on, and where a block begins. 64 bits wide: no product
// of what a file may hold leaves these.
struct S_Channel {
  std::int64_t nFirst = 0;  // the coefficients
  std::int64_t nSecond = 0;
  std::int64_t nDelta = 0;
  std::int64_t nSample1 = 0;  // the last sample
  std::int64_t nSample2 = 0;  // the sample before that
};

// A block of one or two channels after its header.
struct S_Block {
  std::array<S_Channel, 2> channels;
  const std::uint8_t* pbyCodes = nullptr;
  std::int16_t* pSamples = nullptr;
};

constexpr std::size_t kLanes = 8;

// Whether a lane can decode the channel.
constexpr bool FitsLane(const S_Channel& channel) {
  // The only sum of two products of 16 bits that does not fit in 32 bits has four factors of
  // -32768.
  const bool bSumFits = channel.nFirst != -32768 || channel.nSecond != -32768;
  return bSumFits && channel.nDelta >= 0;
}

// Decodes nFrames frames of each block. There are one to kLanes blocks of one channel, or one to
// kLanes / 2 blocks of two; their channels fit lanes, and the blocks have codes and room for that
// many frames. Only for processors that have AVX2 (Processor.h); does nothing on other kinds of
// machines.
void DecodeAvx2(std::span<const S_Block> blocks, std::size_t nChannels,
                std::size_t nFrames) noexcept;

}  // namespace msadpcm
