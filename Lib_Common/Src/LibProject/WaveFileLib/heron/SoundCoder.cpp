// SPDX-License-Identifier: Apache-2.0
#include "heron/SoundCoder.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "heron/Decoder.h"
#include "heron/RateControl.h"

namespace heron {

bool EncodeSamples(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                   const std::function<bool(std::span<const std::uint8_t>)>& fnWrite,
                   const std::function<void(unsigned int nFramesDone)>& fnFrames) {
  if (samples.empty() || samples.size() > std::numeric_limits<std::uint32_t>::max()) return false;
  if (!IsSupportedSampleRate(nSampleRate)) return false;
  if (nBitDepth < kMinBitDepth || nBitDepth > kMaxBitDepth) return false;
  const auto nLength = static_cast<std::size_t>(FrameLength(nSampleRate));
  return EncodeWithin(samples, nSampleRate, nBitDepth, fnWrite, [&](std::size_t nDone) {
    if (fnFrames) fnFrames(static_cast<unsigned int>((nDone + nLength - 1) / nLength));
  });
}

bool EncodeSamples(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                   std::vector<std::uint8_t>* pCoded,
                   const std::function<void(unsigned int nFramesDone)>& fnFrames) {
  std::vector<std::uint8_t> coded;
  const auto fnWrite = [&](std::span<const std::uint8_t> bytes) {
    coded.insert(coded.end(), bytes.begin(), bytes.end());
    return true;
  };
  if (!EncodeSamples(samples, nSampleRate, nBitDepth, fnWrite, fnFrames)) return false;
  *pCoded = std::move(coded);
  return true;
}

bool DecodeSamples(std::span<const std::uint8_t> coded, int nSampleRate,
                   std::vector<std::int16_t>* pSamples) {
  auto decoder = C_Decoder::Open(coded, nSampleRate);
  if (!decoder || decoder->IsMostlyMissing()) return false;
  std::vector<std::int16_t> samples;
  std::vector<std::int16_t> block;
  for (std::size_t n = 0; n < decoder->BlockCount(); ++n) {
    const std::size_t nAt = n * decoder->Length();
    block.resize(std::min(decoder->Length(), decoder->SampleCount() - nAt));
    if (!decoder->DecodeBlock(n, block)) continue;
    // Bad blocks get memory only when a good one follows. A few bytes may claim many of them.
    samples.resize(nAt);
    samples.insert(samples.end(), block.begin(), block.end());
  }
  if (samples.empty()) return false;
  samples.resize(decoder->SampleCount());
  *pSamples = std::move(samples);
  return true;
}

}  // namespace heron
