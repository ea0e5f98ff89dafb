// SPDX-License-Identifier: Apache-2.0
#include "heron/SoundCoder.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <utility>

#include "heron/Decoder.h"
#include "heron/RateControl.h"

namespace heron {
namespace {

// 64 MiB of samples, as much as a claim alone gets anywhere.
constexpr std::size_t kBelievedSamples = std::size_t{32} << 20;

}  // namespace

bool EncodeSamples(std::span<const std::int16_t> samples, int nSampleRate, int nBitDepth,
                   std::vector<std::uint8_t>* pCoded,
                   const std::function<void(unsigned int nFramesDone)>& fnFrames) {
  if (samples.empty() || samples.size() > std::numeric_limits<std::uint32_t>::max()) return false;
  if (!IsSupportedSampleRate(nSampleRate)) return false;
  if (nBitDepth < kMinBitDepth || nBitDepth > kMaxBitDepth) return false;
  *pCoded = EncodeWithin(samples, nSampleRate, nBitDepth, fnFrames);
  return true;
}

bool DecodeSamples(std::span<const std::uint8_t> coded, int nSampleRate,
                   std::vector<std::int16_t>* pSamples) {
  auto decoder = C_Decoder::Open(coded, nSampleRate);
  if (!decoder) return false;
  // Decodes whole frames; the last one is cut at the end of the sound.
  const std::size_t nLength = decoder->Length();
  std::vector<std::int16_t> samples;
  // Silence takes far fewer bits than other sounds, so many more samples than usual may be there.
  // Damaged data can claim even more. The room for those grows only while they are decoded.
  const std::size_t nBelieved = coded.size() * 8 / kMinBitDepth + kBelievedSamples;
  samples.reserve(std::min(decoder->SampleCount(), nBelieved) + nLength);
  for (std::size_t nAt = 0; nAt < decoder->SampleCount(); nAt += nLength) {
    samples.resize(nAt + nLength);
    if (!decoder->DecodeFrame({samples.data() + nAt, nLength})) return false;
  }
  if (!decoder->IsAtTheEnd()) return false;
  samples.resize(decoder->SampleCount());
  *pSamples = std::move(samples);
  return true;
}

}  // namespace heron
