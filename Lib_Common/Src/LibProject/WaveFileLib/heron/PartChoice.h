// SPDX-License-Identifier: Apache-2.0
//
// Chooses how the sections of a block are divided into parts. Long parts resolve the harmonics of
// steady voices, short ones keep the noise of an attack from spreading ahead of it. The price of a
// part is an estimate of the bits that its coefficients need at a step that depends on the loudness
// around it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "heron/PartSyntax.h"
#include "heron/Transforms.h"

namespace heron {

// The division of one section: a bit for each node of its tree. Nodes are numbered from 1, and the
// halves of node n are 2n and 2n + 1; the units are 8 to 15.
class C_Division {
 public:
  // Splits a node, or makes a unit plain.
  void Mark(std::size_t nNode) noexcept { m_wMarks |= static_cast<std::uint16_t>(1U << nNode); }
  [[nodiscard]] bool IsMarked(std::size_t nNode) const noexcept {
    return (m_wMarks >> nNode & 1) != 0;
  }

 private:
  std::uint16_t m_wMarks = 0;
};

struct S_BlockToDivide {
  // Whole sections, with silence after the last of nCount samples.
  std::span<const std::int16_t> samples;
  std::size_t nCount;
  int nSlope;   // by how much steps follow the loudness (Loudness.h)
  int nOffset;  // about the one that the block will be coded with
};

// Sees each section of a block: its samples, and its coefficients as if all sections were parts.
using S_SeeSection =
    std::function<void(std::span<const std::int16_t>, std::span<const std::int32_t>)>;

// One division for each section of the block. fnSee, which may be empty, is called for one section
// after another.
std::vector<C_Division> ChooseParts(const S_BlockToDivide& block, C_Transforms& transforms,
                                    const S_SeeSection& fnSee = {});

}  // namespace heron
