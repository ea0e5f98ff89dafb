// SPDX-License-Identifier: Apache-2.0
//
// Opens bytes in memory, and reads all samples of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "Failed.h"
#include "reader/Reader.h"
#include "source/ByteSource.h"

namespace api::test {

using C_ReaderPtr = std::unique_ptr<C_Reader>;

inline C_ReaderPtr OpenBytes(std::span<const std::uint8_t> bytes, std::uint32_t dwFlags = 0) {
  return C_Reader::Open(OpenMemorySource(bytes), dwFlags);
}

inline S_Failed FailureOfOpening(std::span<const std::uint8_t> bytes, std::uint32_t dwFlags = 0) {
  return FailureOf([&] { return OpenBytes(bytes, dwFlags); });
}

template <typename Sample>
std::vector<Sample> ReadAll(I_SampleStream& stream) {
  std::vector<Sample> all;
  std::vector<Sample> piece(1000 * stream.ChannelCount());
  while (const std::size_t nFrames = stream.Read(std::span(piece))) {
    all.insert(all.end(), piece.begin(),
               piece.begin() + static_cast<std::ptrdiff_t>(nFrames * stream.ChannelCount()));
  }
  return all;
}

template <typename Sample = std::int16_t>
std::vector<Sample> SamplesOf(C_Reader& reader) {
  return ReadAll<Sample>(reader.Samples());
}

}  // namespace api::test
