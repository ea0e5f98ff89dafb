// SPDX-License-Identifier: Apache-2.0
//
// Decodes coded audio (RateControl.h) in memory, block by block (BlockIndex.h). A block that is
// missing or damaged becomes silence, so that the rest of the sound stays where it was.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "heron/BlockDecoder.h"
#include "heron/BlockIndex.h"

namespace heron {

class C_Decoder {
 public:
  // Reads the count and finds the blocks. Empty for a rate that is not supported, for a count that
  // is missing, 0 or longer than 32 bits, and when no block is there. coded must outlive the
  // object.
  static std::optional<C_Decoder> Open(std::span<const std::uint8_t> coded, int nSampleRate);

  // Samples in all blocks together, 1..2^32-1.
  [[nodiscard]] std::size_t SampleCount() const noexcept { return m_index.SampleCount(); }
  // Samples of each block; the last one has the rest.
  [[nodiscard]] std::size_t Length() const noexcept { return m_nLength; }
  [[nodiscard]] std::size_t BlockCount() const noexcept { return m_index.Count(); }
  // The run of block nBlock; empty when the block is missing.
  [[nodiscard]] std::optional<std::span<const std::uint8_t>> Run(std::size_t nBlock) const;
  [[nodiscard]] bool IsMostlyMissing() const noexcept { return m_index.IsMostlyMissing(); }
  // Decodes block nBlock into samples, which has as many values as the block has samples. False
  // when the block is missing or damaged; the samples are then 0.
  bool DecodeBlock(std::size_t nBlock, std::span<std::int16_t> samples);
  // Decodes all blocks into SampleCount samples. False when none of them can be decoded.
  bool DecodeAll(std::span<std::int16_t> samples);

 private:
  C_Decoder(int nSampleRate, std::size_t nSamples, std::span<const std::uint8_t> bytes);

  std::size_t m_nLength;
  std::span<const std::uint8_t> m_bytes;  // of the blocks
  C_BlockIndex m_index;
  C_BlockDecoder m_decoder;
};

}  // namespace heron
