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

// Returns the coded audio of samples (1..2^32-1) at nSampleRate for nBitDepth bits per sample. With
// the stream's head it takes at most samples * nBitDepth / 8 bytes. It is usually no more than a
// 500th smaller than that, or a 200th where that is hard to meet. Sounds that stay smaller at any
// step size, like silence, take less. Sounds of only a few dozen samples, which are too short for
// the side information of their own frames, take what they need. fnProgress gets frame counts in
// rising order, the last one when everything is done.
std::vector<std::uint8_t> EncodeWithin(std::span<const std::int16_t> samples, int nSampleRate,
                                       int nBitDepth, const C_Encoder::S_Progress& fnProgress);

}  // namespace heron
