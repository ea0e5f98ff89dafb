// SPDX-License-Identifier: Apache-2.0
//
// What the tests of whole blocks share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <vector>

#include "Signals.h"
#include "heron/BlockDecoder.h"
#include "heron/BlockEncoder.h"
#include "heron/Configuration.h"
#include "heron/Lapping.h"
#include "heron/Loudness.h"
#include "heron/PartChoice.h"
#include "heron/Transforms.h"

namespace heron::test {

using S_Bytes = std::vector<std::uint8_t>;
using S_Divisions = std::vector<C_Division>;

inline std::size_t SectionsOf(std::size_t nSamples, int nSampleRate) {
  return (nSamples + SectionLength(nSampleRate) - 1) / SectionLength(nSampleRate);
}

// The sound with silence up to the end of its last section.
inline S_Sound Padded(S_Sound sound, int nSampleRate) {
  sound.resize(SectionsOf(sound.size(), nSampleRate) * SectionLength(nSampleRate));
  return sound;
}

// Splits half of the nodes and makes a third of the units plain.
inline S_Divisions RandomDivisions(std::uint64_t qwSeed, std::size_t nSamples, int nSampleRate) {
  C_Random random(qwSeed);
  S_Divisions divisions(SectionsOf(nSamples, nSampleRate));
  for (C_Division& division : divisions) {
    for (std::size_t nNode = 1; nNode < 2 * kSectionUnits; ++nNode) {
      const bool bReached = nNode == 1 || division.IsMarked(nNode / 2);
      const bool bUnit = nNode >= kSectionUnits;
      if (bReached && random.Below(bUnit ? 3 : 2) == 0) division.Mark(nNode);
    }
  }
  return divisions;
}

// The parts of one node, as the encoder lists them.
inline void AddParts(const C_Division& division, std::size_t nNode, const S_Part& node,
                     std::size_t nUnits, S_DividedBlock& block) {
  if (node.nUnit >= nUnits) return;
  if (node.nSize > 0 && division.IsMarked(nNode)) {
    ++block.splits.back();
    const S_Part first{node.nUnit, node.nSize - 1};
    AddParts(division, 2 * nNode, first, nUnits, block);
    AddParts(division, 2 * nNode + 1, {first.End(), first.nSize}, nUnits, block);
    return;
  }
  block.parts.push_back(node);
  if (division.IsMarked(nNode)) block.parts.back().kind = E_PartKind::kPlain;
  block.splits.push_back(0);
}

// A block with these divisions instead of those that the encoder would choose.
inline S_DividedBlock DividedBy(const S_Divisions& divisions, const S_Sound& sound,
                                int nSampleRate) {
  const std::size_t nUnitLength = UnitLength(nSampleRate);
  const S_Sound padded = Padded(sound, nSampleRate);
  S_DividedBlock block;
  block.nCount = sound.size();
  block.splits.push_back(0);
  for (std::size_t n = 0; n < divisions.size(); ++n) {
    block.firstParts.push_back(block.parts.size());
    AddParts(divisions[n], 1, {n * kSectionUnits, kPartSizes - 1},
             (sound.size() + nUnitLength - 1) / nUnitLength, block);
  }
  block.splits.pop_back();
  C_Transforms transforms(nUnitLength);
  block.values.resize(padded.size());
  for (std::size_t n = 0; n < block.parts.size(); ++n) {
    const S_Part& part = block.parts[n];
    S_Lapped lapped{part.nUnit * nUnitLength, part.Units() * nUnitLength, {}, {}};
    if (n > 0) lapped.before = transforms.Between(block.parts[n - 1], part);
    if (n + 1 < block.parts.size()) lapped.after = transforms.Between(part, block.parts[n + 1]);
    const auto values = std::span(block.values).subspan(lapped.nAt, lapped.nLength);
    Fold(padded, lapped, values);
    if (part.kind != E_PartKind::kPlain) transforms.Dct(part.nSize).Transform(values);
    block.loudness.push_back(LoudnessOf(values));
  }
  return block;
}

// All sections of a block at these offsets; those from section nCoarserFrom on have nCoarser.
struct S_Offsets {
  int nOffset;
  int nCoarser;
  std::size_t nCoarserFrom;
  std::size_t nLostFrom = std::numeric_limits<std::size_t>::max();
};
constexpr S_Offsets AllAt(int nOffset) { return {nOffset, nOffset, 0}; }

inline S_Bytes RunOf(C_BlockEncoder& encoder, const S_DividedBlock& block,
                     const S_Offsets& offsets) {
  C_PartWriter writer = encoder.NewWriter();
  encoder.Write(block,
                {0, block.SectionCount(), offsets.nOffset, offsets.nCoarser, offsets.nCoarserFrom,
                 offsets.nLostFrom},
                writer);
  return writer.Finish();
}

}  // namespace heron::test
