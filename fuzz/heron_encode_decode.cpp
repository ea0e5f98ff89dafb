// SPDX-License-Identifier: Apache-2.0
//
// Encodes any samples at any rate and depth and decodes them again: as many samples must come back,
// the bytes must keep to their budget, and the same samples must make the same bytes again.
// Encoding must end when its bytes are not taken.
//
//   scripts/fuzz.sh 60 heron_encode_decode
//
// Input: rate, depth, how samples are made, then 16-bit samples or the shape of a signal.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "FuzzInput.h"
#include "Processor.h"
#include "Require.h"
#include "heron/Configuration.h"
#include "heron/SoundCoder.h"

namespace {

// A sound of up to four sections is coded some hundreds of times until it fits best, so most sounds
// have one section or two. Those of the most samples can have more than four.
constexpr std::size_t kFewSamples = 160;
constexpr std::size_t kMostSamples = 900;
// More than two blocks at the lowest rate. Encoding them takes long, so they are nearly all
// silence.
constexpr std::size_t kLongSound = 2 * heron::BlockLength(heron::kMinSampleRate) + 100;

// Mostly rates with short frames, which take less time; any other, and some outside.
int TakeRate(C_FuzzInput& input) {
  const std::uint8_t byChoice = input.U8();
  if (byChoice < 0xF0) return 4000 + byChoice * 10;
  if (byChoice < 0xF8) return 4000 + input.U16() % 44001;
  return byChoice % 2 == 0 ? input.U16() % 4000 : 48001 + input.U16();
}

// A few bytes make a long signal: pieces that repeat, with a gain that changes.
std::vector<std::int16_t> TakeSamples(C_FuzzInput& input, bool bLong) {
  std::vector<std::int16_t> samples;
  const std::uint8_t byKind = input.U8();
  if (byKind % 2 == 0) {
    while (!input.Ended() && samples.size() < kFewSamples) {
      samples.push_back(static_cast<std::int16_t>(input.U16()));
    }
    return samples;
  }
  const std::size_t nSamples =
      byKind >= 0xF0 && bLong ? kLongSound
                              : input.U16() % ((byKind >= 0xC0 ? kMostSamples : kFewSamples) + 1);
  std::uint32_t dwSeed = byKind;
  std::size_t nPeriod = 1;
  int nGain = 0;
  while (samples.size() < nSamples) {
    if (samples.size() % 64 == 0) {
      nPeriod = 1U + input.U8();
      nGain = input.Ended() ? 0 : input.U8() * 128;
    }
    dwSeed = dwSeed * 1664525U + 1013904223U;
    const int nWave = samples.size() % nPeriod < nPeriod / 2 ? nGain : -nGain;
    const int nNoise = static_cast<int>(dwSeed >> 24) * (byKind % 4 < 2 ? 0 : nGain) / 512;
    samples.push_back(static_cast<std::int16_t>((nWave + nNoise) % 32768));
  }
  return samples;
}

// With the four bytes of the head.
std::size_t Budget(std::size_t nSamples, int nDepth) {
  const std::size_t cbShort = std::min<std::size_t>(16 + nSamples / 4, 128);
  return std::max(nSamples * static_cast<std::size_t>(nDepth) / 8, cbShort);
}

// Lets the write nRefused (counted from 0) fail: encoding must end with it.
void CheckRefusedWrite(const std::vector<std::int16_t>& samples, int nRate, int nDepth,
                       const std::vector<std::uint8_t>& coded, std::size_t nRefused) {
  std::size_t nWrites = 0;
  std::vector<std::uint8_t> written;
  const auto fnWrite = [&](std::span<const std::uint8_t> bytes) {
    if (nWrites++ == nRefused) return false;
    written.insert(written.end(), bytes.begin(), bytes.end());
    return true;
  };
  const bool bCoded = heron::EncodeSamples(samples, nRate, nDepth, fnWrite, {});
  Require(bCoded == (nWrites <= nRefused));
  Require(bCoded ? written == coded : nWrites == nRefused + 1);
  Require(std::equal(written.begin(), written.end(), coded.begin()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  C_FuzzInput input(pData, cbData);
  const int nRate = TakeRate(input);
  const int nDepth = 1 + static_cast<int>(input.Below(7));
  const auto samples = TakeSamples(input, nRate == heron::kMinSampleRate);
  const bool bTaken =
      nRate >= 4000 && nRate <= 48000 && nDepth >= 2 && nDepth <= 6 && !samples.empty();

  const std::vector<std::uint8_t> untouched = {1, 2, 3};
  std::vector<std::uint8_t> coded = untouched;
  unsigned int dwFrames = 0;
  const bool bCoded =
      heron::EncodeSamples(samples, nRate, nDepth, &coded, [&](unsigned int dwDone) {
        Require(dwDone > dwFrames);
        dwFrames = dwDone;
      });
  Require(bCoded == bTaken);
  if (!bTaken) {
    Require(coded == untouched);
    return 0;
  }
  const std::size_t nFrameLength = static_cast<std::size_t>(nRate) / 100 * 2;
  Require(dwFrames == (samples.size() + nFrameLength - 1) / nFrameLength);
  Require(coded.size() + 4 <= Budget(samples.size(), nDepth));
  std::vector<std::int16_t> decoded;
  Require(heron::DecodeSamples(coded, nRate, &decoded));
  Require(decoded.size() == samples.size());
  if (pData[cbData - 1] % 8 == 0) {
    const vcm::tagInstructions eUsable = vcm::UsableInstructions();
    vcm::LimitInstructions(vcm::tagInstructions::kPlain);
    CheckRefusedWrite(samples, nRate, nDepth, coded, pData[cbData - 1] / 8 % 8);
    vcm::LimitInstructions(eUsable);
  }
  return 0;
}
