// SPDX-License-Identifier: Apache-2.0
//
// The entry to the Heron frame coder: a whole sound of 16-bit mono samples to coded audio and back.
// Integers only: the same samples give the same bytes, and the same bytes the same samples, on
// every machine. All state lives in the calls; any number of them may run at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "heron/Configuration.h"

namespace heron {

// Codes the samples at nBitDepth (kMinBitDepth..kMaxBitDepth) bits each: with the kHeadBytes that
// the caller puts in front, *pCoded takes at most samples * nBitDepth / 8 bytes, except for sounds
// of some tens of samples, which take what they need.
//
// The whole sound is coded several times until its size fits. fnFrames (may be empty) hears how
// many frames are done: rising numbers, the last one the count of all.
//
// False, *pCoded unchanged, for no samples, for more than 2^32-1 and for a rate or depth outside
// its range.
bool EncodeSamples(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                   std::vector<std::uint8_t>* pCoded,
                   const std::function<void(unsigned int nFramesDone)>& fnFrames);

// Decodes what EncodeSamples made, at the rate that it was made for; every depth is decoded the
// same way. False, *pSamples unchanged, for bytes that it cannot have made: a level or a step out
// of range, more or fewer bytes than the frames take.
bool DecodeSamples(std::span<const std::uint8_t> coded, int nSampleRate,
                   std::vector<std::int16_t>* pSamples);

}  // namespace heron
