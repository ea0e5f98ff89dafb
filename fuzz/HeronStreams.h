// SPDX-License-Identifier: Apache-2.0
//
// Makes Heron streams of the inputs of the fuzzer heron_stream. Most bytes would fail at the check
// of a block, so blocks with right checks are made of some.
//
// Input: rate and shape in one byte, then one of these:
//   shape 0   a stream
//   shape 1   mode and sample count of a sound of one block, then its run
//   shape 2   the sample count of a sound of several blocks, then pieces: what, length, bytes
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "FuzzInput.h"
#include "heron/Block.h"
#include "heron/Configuration.h"
#include "heron/SampleCount.h"

namespace heronstreams {

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::array<int, 6> kRates = {4000, 8000, 11025, 16000, 44100, 48000};
inline constexpr std::size_t kMostPieces = 12;

struct S_Stream {
  int nRate;
  Bytes bytes;
};

inline Bytes StreamOf(const Bytes& coded, std::uint8_t byMode) {
  Bytes stream = {byMode, 0, 0, 0};
  stream.insert(stream.end(), coded.begin(), coded.end());
  return stream;
}

inline Bytes OneBlock(C_FuzzInput& input) {
  const auto byMode = static_cast<std::uint8_t>(1 + input.Below(5));
  Bytes coded;
  heron::AppendCount(coded, input.U16() % 4096U);
  heron::AppendOnlyBlock(coded, input.Rest());
  return StreamOf(coded, byMode);
}

// Nearly all pieces are blocks in their order. Others have any number, or a wrong check, or are no
// blocks at all.
inline Bytes SeveralBlocks(C_FuzzInput& input, int nRate) {
  Bytes coded;
  const std::uint32_t dwCount = input.U16();
  const auto nLength = static_cast<std::uint32_t>(heron::BlockLength(nRate));
  heron::AppendCount(coded, dwCount == 0xFFFF ? 0xFFFFFFFF : nLength + dwCount);
  std::size_t nNumber = 0;
  for (std::size_t n = 0; n < kMostPieces && !input.Ended(); ++n) {
    const std::uint8_t byWhat = input.U8();
    if (byWhat % 16 == 0) nNumber = input.U8();
    const auto bytes = input.Bytes(input.U8());
    if (byWhat % 16 == 1) {
      coded.insert(coded.end(), bytes.begin(), bytes.end());
      continue;
    }
    heron::AppendBlock(coded, nNumber++, bytes);
    if (byWhat % 16 == 2) coded.back() ^= 1;
  }
  return StreamOf(coded, 1);
}

inline Bytes Shaped(C_FuzzInput& input, std::size_t nShape, int nRate) {
  if (nShape == 1) return OneBlock(input);
  if (nShape == 2) return SeveralBlocks(input, nRate);
  const auto rest = input.Rest();
  return {rest.begin(), rest.end()};
}

// byChoice is the first byte of the input.
inline S_Stream Take(C_FuzzInput& input, std::uint8_t byChoice) {
  const int nRate = kRates[byChoice % kRates.size()];
  return {nRate, Shaped(input, byChoice / kRates.size() % 3, nRate)};
}

}  // namespace heronstreams
