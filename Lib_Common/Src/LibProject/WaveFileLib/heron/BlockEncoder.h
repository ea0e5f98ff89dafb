// SPDX-License-Identifier: Apache-2.0
//
// Divides blocks into parts and encodes them, section by section.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "heron/PartChoice.h"
#include "heron/PartSyntax.h"
#include "heron/Transforms.h"

namespace heron {

// Some sections of a block, and how coarse their steps are: an offset in 256ths of a step index,
// higher is coarser. The sections from nCoarserFrom on have nCoarser.
struct S_Sections {
  std::size_t nFirst;
  std::size_t nEnd;
  int nOffset;
  int nCoarser;
  std::size_t nCoarserFrom;
  // The sections from here on are lost: they become silent, whatever they hold.
  std::size_t nLostFrom = std::numeric_limits<std::size_t>::max();
};

// A block that is divided into parts.
struct S_DividedBlock {
  std::size_t nCount = 0;            // of samples
  std::vector<std::int32_t> values;  // coefficients of all parts, Q8
  std::vector<S_Part> parts;
  std::vector<int> loudness;  // by part
  // Before each part: how many nodes are split there.
  std::vector<std::uint8_t> splits;
  std::vector<std::size_t> firstParts;  // by section

  [[nodiscard]] std::size_t SectionCount() const noexcept { return firstParts.size(); }
  // The number of parts before section nEnd.
  [[nodiscard]] std::size_t PartsUpTo(std::size_t nEnd) const noexcept {
    return nEnd < SectionCount() ? firstParts[nEnd] : parts.size();
  }
};

class C_BlockEncoder {
 public:
  // nSampleRate and nBitDepth must be supported.
  C_BlockEncoder(int nSampleRate, int nBitDepth);

  // Divides a block of 1..BlockLength samples. nOffset is about the one that it will be coded with.
  // fnSee, which may be empty, sees the sections of the block (PartChoice.h).
  S_DividedBlock Divide(std::span<const std::int16_t> samples, int nOffset,
                        const S_SeeSection& fnSee = {});

  // A writer for a block of which nothing is written yet.
  [[nodiscard]] C_PartWriter NewWriter() const { return C_PartWriter(m_nUnitLength); }
  // The step index, Q8, that a part gets at offset 0.
  [[nodiscard]] int StepAtOffset0(const S_DividedBlock& block, std::size_t nPart) const;
  // The step indices of the parts of some sections. nBefore is the index that the first one is
  // coded relative to, -1 for none.
  [[nodiscard]] std::vector<int> Steps(const S_DividedBlock& block, const S_Sections& sections,
                                       int nBefore) const;
  // Writes the next sections of a block.
  void Write(const S_DividedBlock& block, const S_Sections& sections, C_PartWriter& writer);

 private:
  void Transform(S_DividedBlock& block);

  std::size_t m_nUnitLength;
  int m_nSlope;
  C_Transforms m_transforms;
  S_WriterTools m_tools;
  std::vector<std::int16_t> m_padded;  // the block, with silence up to the end of its last section
};

}  // namespace heron
