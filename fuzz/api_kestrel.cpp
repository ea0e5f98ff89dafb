// SPDX-License-Identifier: Apache-2.0
//
// Two decoders at once get any frames, good, damaged and lost ones; the samples must not depend on
// the other, nor on what was before a reset.
//
//   scripts/fuzz.sh 60 api_kestrel
//
// Input: rates, then for each frame what becomes of it and its words or samples.
#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "FuzzInput.h"
#include "Require.h"
#include "voxplay.hpp"

namespace {

using Words = std::array<std::uint16_t, VOXPLAY_KESTREL_MAX_WORDS>;
using Samples = std::array<std::int16_t, VOXPLAY_KESTREL_FRAME>;

Samples TakeSamples(C_FuzzInput& input) {
  Samples samples{};
  std::uint32_t dwSeed = input.U8();
  const int nGain = input.U8();
  for (auto& nSample : samples) {
    dwSeed = dwSeed * 1664525U + 1013904223U;
    nSample = static_cast<std::int16_t>((static_cast<int>(dwSeed >> 24) - 128) * nGain);
  }
  return samples;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* pData, std::size_t cbData) {
  C_FuzzInput input(pData, cbData);
  const std::uint32_t dwRate = 4800 + 800 * input.Below(35);
  voxplay::kestrel::Encoder encoder(dwRate);
  voxplay::kestrel::Decoder one(dwRate);
  voxplay::kestrel::Decoder other(dwRate);
  std::vector<Samples> decoded;
  for (int n = 0; n < 12 && !input.Ended(); ++n) {
    Words words{};
    Samples samples{};
    const unsigned int dwChoice = input.Below(4);
    if (dwChoice == 0) {
      encoder.encode(TakeSamples(input), words);
      one.decode(words, samples);
    } else if (dwChoice == 1) {
      one.decode_lost(samples);
    } else {
      for (auto& wWord : words) wWord = input.U16();
      one.decode(words, samples);
      Samples ignored{};
      other.decode(words, ignored);
    }
    decoded.push_back(samples);
  }
  // The same once more, with a decoder that has forgotten what it was given.
  C_FuzzInput again(pData, cbData);
  static_cast<void>(again.Below(35));
  encoder.reset();
  other.reset();
  for (const Samples& expected : decoded) {
    Words words{};
    Samples samples{};
    const unsigned int dwChoice = again.Below(4);
    if (dwChoice == 0) {
      encoder.encode(TakeSamples(again), words);
      other.decode(words, samples);
    } else if (dwChoice == 1) {
      other.decode_lost(samples);
    } else {
      for (auto& wWord : words) wWord = again.U16();
      other.decode(words, samples);
    }
    Require(samples == expected);
  }
  return 0;
}
