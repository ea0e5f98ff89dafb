// SPDX-License-Identifier: Apache-2.0
//
// The entry to the Heron frame coder: a whole sound of 16-bit mono samples to coded audio and back.
// It uses integers only: the same samples give the same bytes, and the same bytes give the same
// samples, on every machine. All state lives in the calls; any number of calls may run at a time.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "heron/Configuration.h"

namespace heron {

// Codes the samples at nBitDepth (kMinBitDepth..kMaxBitDepth) bits each. With the kHeadBytes that
// the caller puts before it, the coded audio takes at most samples * nBitDepth / 8 bytes, rounded
// down. Only short sounds may take more, 16 bytes and 2 bits per sample, but no more than 128
// bytes: those of up to 511, 125, 61, 41 or 30 samples at 2, 3, 4, 5 or 6 bits.
//
// fnWrite gets the coded audio, piece by piece. fnFrames (may be empty) is called with the number
// of frames done; the numbers rise, and the last one is the count of all frames. The memory that
// this takes does not grow with the sound.
//
// False, and nothing was written, for no samples, for more than 2^32-1 samples, and for a rate or
// depth outside its range. Also false when fnWrite was false.
bool EncodeSamples(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                   const std::function<bool(std::span<const std::uint8_t>)>& fnWrite,
                   const std::function<void(unsigned int nFramesDone)>& fnFrames);
// The same; *pCoded gets the coded audio, and keeps what it had when the result is false.
bool EncodeSamples(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                   std::vector<std::uint8_t>* pCoded,
                   const std::function<void(unsigned int nFramesDone)>& fnFrames);

// Decodes what EncodeSamples made, at the rate that it was made for; every depth is decoded the
// same way. Damage ends with its block, about 4 s of sound: a block that is missing or damaged
// becomes silence, and a sound whose end is missing ends with the last block that is there. False,
// with *pSamples unchanged, when no block can be decoded, and for a rate outside its range. Also
// false when more blocks are missing than are there and the difference is more than 64 MiB of
// samples.
bool DecodeSamples(std::span<const std::uint8_t> coded, int nSampleRate,
                   std::vector<std::int16_t>* pSamples);

}  // namespace heron
