// SPDX-License-Identifier: Apache-2.0
#include "heron/BlockGroup.h"

#include <algorithm>
#include <utility>

namespace heron {

C_BlockGroup::C_BlockGroup(C_BlockEncoder& encoder, std::vector<S_DividedBlock> blocks)
    : m_encoder(encoder), m_blocks(std::move(blocks)) {
  for (const auto& block : m_blocks) {
    m_nSections += static_cast<std::int64_t>(block.SectionCount());
  }
}

S_GroupRuns C_BlockGroup::Encode(std::int64_t nCoarseness) {
  const std::int64_t nClamped = std::clamp(nCoarseness, Finest(), Coarsest());
  // Rounded down, also below 0.
  const std::int64_t nWhole = (nClamped - Finest()) / m_nSections + Finest() / m_nSections;
  const int nOffset = static_cast<int>(nWhole) * m_nOffsetStep;
  std::int64_t nFiner = m_nSections - (nClamped - nWhole * m_nSections);
  S_GroupRuns group;
  for (const auto& block : m_blocks) {
    const S_Coarseness coarseness{nOffset, nOffset + m_nOffsetStep,
                                  static_cast<std::size_t>(std::max<std::int64_t>(nFiner, 0))};
    auto& run = group.runs.emplace_back();
    m_encoder.Encode(block, coarseness, run);
    group.nBytes += run.size();
    nFiner -= static_cast<std::int64_t>(block.SectionCount());
  }
  return group;
}

}  // namespace heron
