// SPDX-License-Identifier: Apache-2.0
//
// What the tests of whole blocks share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "Signals.h"
#include "heron/BlockDecoder.h"
#include "heron/BlockEncoder.h"
#include "heron/Configuration.h"
#include "heron/PartChoice.h"

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

}  // namespace heron::test
