// SPDX-License-Identifier: Apache-2.0
//
// Decodes the run of one block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/PartSyntax.h"
#include "heron/Transforms.h"

namespace heron {

class C_BlockDecoder {
 public:
  // nSampleRate must be a supported rate.
  explicit C_BlockDecoder(int nSampleRate);

  // Decodes a run into samples: all samples of the block, at least one and at most BlockLength.
  // False for a run that no encoder writes; the samples then mean nothing.
  bool Decode(std::span<const std::uint8_t> run, std::span<std::int16_t> samples);

 private:
  bool ReadSections(std::span<const std::uint8_t> run, std::size_t nSamples);
  void Unlap();

  std::size_t m_nUnitLength;
  C_Transforms m_transforms;
  std::vector<std::int32_t> m_values;  // of whole sections
  std::vector<S_Part> m_parts;
};

}  // namespace heron
