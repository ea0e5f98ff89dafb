// SPDX-License-Identifier: Apache-2.0
//
// Chooses how the sections of a block are divided into parts. Long parts resolve the harmonics of
// steady voices, short ones keep the noise of an attack from spreading ahead of it. Every division
// is tried: its price is an estimate of the bits that its coefficients need at a step that depends
// on the loudness around it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "heron/PartSyntax.h"
#include "heron/Transforms.h"

namespace heron {

// The division of one section: a bit for each node of its tree. Nodes are numbered from 1, and the
// halves of node n are 2n and 2n + 1; the units are 8 to 15. Two bytes, because the divisions of a
// whole sound are kept.
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

class C_PartChoice {
 public:
  // nSlope and nOffset: the step index that loudness asks for (Loudness.h), roughly.
  C_PartChoice(int nSampleRate, int nSlope, int nOffset);

  // samples are those of a block; whole sections, with silence after the last of nCount samples.
  // Appends one division for each section to divisions.
  void Choose(std::span<const std::int16_t> samples, std::size_t nCount,
              std::vector<C_Division>& divisions);

 private:
  // The price of one node with all below it. Marks what makes it so low.
  std::int64_t PriceOf(std::size_t nNode, std::size_t nUnit, std::size_t nSize,
                       C_Division& division);
  std::int64_t PriceOfPart(std::size_t nUnit, std::size_t nSize);
  std::int64_t PriceOfPlain(std::size_t nUnit) const;
  [[nodiscard]] int StepAt(std::size_t nUnit, std::size_t nSize) const;

  std::size_t m_nUnitLength;
  int m_nSlope;
  int m_nOffset;
  C_Transforms m_transforms;
  std::span<const std::int16_t> m_samples;
  std::size_t m_nCount = 0;
  std::vector<std::uint64_t> m_energies;  // [n]: of the units before unit n
  std::vector<std::int32_t> m_values;
};

}  // namespace heron
