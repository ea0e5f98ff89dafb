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

struct S_RunCost {
  std::size_t nBytes = 0;
  std::uint64_t qwError = 0;   // squared, of all coefficients, in some fixed unit
  std::size_t nNonZero = 0;  // coefficients that are not 0

  S_RunCost& operator+=(const S_RunCost& other) noexcept {
    nBytes += other.nBytes;
    qwError += other.qwError;
    nNonZero += other.nNonZero;
    return *this;
  }
};

class C_BlockEncoder {
 public:
  C_BlockEncoder(int nSampleRate, int nSlope);

  // Takes the next block: its samples as for C_PartChoice::Choose, and the divisions of its
  // sections.
  void Take(std::span<const std::int16_t> samples, std::size_t nCount,
            std::span<const C_Division> divisions);

  // The run of the block.
  [[nodiscard]] std::vector<std::uint8_t> Run(const S_Coarseness& coarseness) const;
  [[nodiscard]] S_RunCost CostOfRun(const S_Coarseness& coarseness) const;

 private:
  void AddParts(const C_Division& division, std::size_t nNode, std::size_t nUnit,
                std::size_t nSize);
  void Transform(std::span<const std::int16_t> samples);
  // Returns the costs without the size.
  template <typename T_Sink>
  S_RunCost Write(T_Sink& sink, const S_Coarseness& coarseness) const;

  std::size_t m_nUnitLength;
  int m_nSlope;
  C_Transforms m_transforms;
  std::size_t m_nCount = 0;
  std::vector<std::int32_t> m_values;  // coefficients, Q8
  std::vector<S_Part> m_parts;
  // Before each part: the sizes of the nodes that are split there, outermost first.
  std::vector<std::uint8_t> m_splits;
  std::vector<int> m_loudness;  // by part
};

}  // namespace heron
