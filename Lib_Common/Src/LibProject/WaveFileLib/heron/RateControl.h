// SPDX-License-Identifier: Apache-2.0
//
// Finds the step sizes with which a whole sound fills what it may take.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/Encoder.h"

namespace heron {

// The coded audio of samples (1..2^32-1) at nSampleRate for nBitDepth bits per sample: with the
// stream's head it takes at most samples * nBitDepth / 8 bytes, and usually no more than a 500th
// less, 200th where that is hard to meet. Sounds that all steps leave smaller, like silence, take
// less; sounds too short for their own frames' side information (some tens of samples) take
// what they need. fnProgress hears of frames in rising order, the last one when all is done.
std::vector<std::uint8_t> EncodeWithin(std::span<const std::int16_t> samples, int nSampleRate,
                                       int nBitDepth, const C_Encoder::S_Progress& fnProgress);

}  // namespace heron
