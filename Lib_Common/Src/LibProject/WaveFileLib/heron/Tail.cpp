// SPDX-License-Identifier: Apache-2.0
#include "heron/Tail.h"

#include <algorithm>
#include <utility>

namespace heron {

C_Tail::C_Tail(C_BlockEncoder& encoder, C_PartWriter writer, std::size_t nFirst,
               std::vector<S_DividedBlock> blocks)
    : m_encoder(encoder),
      m_writer(std::move(writer)),
      m_nFirst(nFirst),
      m_blocks(std::move(blocks)),
      m_nSections(-static_cast<std::int64_t>(nFirst)) {
  for (const auto& block : m_blocks) m_nSections += std::ssize(block.firstParts);
}

void C_Tail::UseWholeIndices() noexcept {
  constexpr int kIndex = 256;
  const S_DividedBlock& block = m_blocks.front();
  std::int64_t nSum = 0;
  const std::size_t nFirstPart = block.firstParts[m_nFirst];
  for (std::size_t n = nFirstPart; n < block.parts.size(); ++n) {
    nSum += m_encoder.StepAtOffset0(block, n);
  }
  const std::int64_t nMean = nSum / static_cast<std::int64_t>(block.parts.size() - nFirstPart);
  m_nOffsetStep = kIndex;
  m_nPhase = -static_cast<int>(nMean % kIndex);
}

S_Sections C_Tail::FirstSections(std::int64_t nCoarseness) const noexcept {
  const std::int64_t nClamped = std::clamp(nCoarseness, Finest(), Coarsest());
  const std::int64_t nLost = std::clamp(nCoarseness - Coarsest(), std::int64_t{0}, m_nSections);
  // Rounded down, also below 0.
  const std::int64_t nWhole = (nClamped - Finest()) / m_nSections + Finest() / m_nSections;
  const int nOffset = static_cast<int>(nWhole) * m_nOffsetStep + m_nPhase;
  // The sections that are not coarser, counted from the first section of the first block.
  const std::int64_t nEnd = static_cast<std::int64_t>(m_nFirst) + m_nSections;
  const std::int64_t nFiner = nEnd - (nClamped - nWhole * m_nSections);
  return {m_nFirst,
          m_blocks.front().SectionCount(),
          nOffset,
          nOffset + m_nOffsetStep,
          static_cast<std::size_t>(nFiner),
          static_cast<std::size_t>(nEnd - nLost)};
}

std::vector<int> C_Tail::FirstSteps(std::int64_t nCoarseness) const {
  return m_encoder.Steps(m_blocks.front(), FirstSections(nCoarseness), m_writer.StepIndex());
}

S_TailRuns C_Tail::Encode(std::int64_t nCoarseness) {
  S_Sections sections = FirstSections(nCoarseness);
  S_TailRuns tail;
  C_PartWriter writer = m_writer;
  for (const auto& block : m_blocks) {
    sections.nEnd = block.SectionCount();
    m_encoder.Write(block, sections, writer);
    tail.runs.push_back(writer.Finish());
    tail.nBytes += tail.runs.back().size();
    writer = m_encoder.NewWriter();
    // The next block counts its sections from its own first one.
    sections.nFirst = 0;
    sections.nCoarserFrom -= std::min(sections.nCoarserFrom, block.SectionCount());
    sections.nLostFrom -= std::min(sections.nLostFrom, block.SectionCount());
  }
  return tail;
}

}  // namespace heron
