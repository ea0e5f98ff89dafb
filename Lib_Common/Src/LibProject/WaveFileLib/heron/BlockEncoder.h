// SPDX-License-Identifier: Apache-2.0
//
// Encodes one block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/PartChoice.h"
#include "heron/PartSyntax.h"
#include "heron/Transforms.h"

namespace heron {

// How coarse the steps are: an offset in 256ths of a step index, higher is coarser. The sections from
// nCoarserFrom on have nCoarser.
struct S_Coarseness {
  int nOffset;
  int nCoarser;
  std::size_t nCoarserFrom;
};

// A block that is divided into parts.
struct S_DividedBlock {
  std::size_t nCount = 0;            // of samples
  std::vector<std::int32_t> values;  // coefficients of all parts, Q8
  std::vector<S_Part> parts;
  std::vector<int> loudness;  // by part
  // Before each part: how many nodes are split there.
  std::vector<std::uint8_t> splits;

  [[nodiscard]] std::size_t SectionCount() const noexcept {
    return parts.back().nUnit / kSectionUnits + 1;
  }
};

class C_BlockEncoder {
 public:
  // nSampleRate and nBitDepth must be supported.
  C_BlockEncoder(int nSampleRate, int nBitDepth);

  // Divides a block of 1..BlockLength samples. nOffset is about the one that it will be coded with.
  S_DividedBlock Divide(std::span<const std::int16_t> samples, int nOffset);

  // Sets run to the run of the block.
  void Encode(const S_DividedBlock& block, const S_Coarseness& coarseness,
              std::vector<std::uint8_t>& run);

 private:
  void Transform(S_DividedBlock& block);

  std::size_t m_nUnitLength;
  int m_nSlope;
  C_Transforms m_transforms;
  std::vector<std::int16_t> m_padded;  // the block, with silence up to the end of its last section
};

}  // namespace heron
