// SPDX-License-Identifier: Apache-2.0
#include "heron/BlockEncoder.h"

#include <algorithm>

#include "heron/Loudness.h"
#include "heron/StepPath.h"

namespace heron {
namespace {

// Adds the parts of one node. splits has one number more than parts while parts are added: the
// splits before the next part.
void AddParts(const C_Division& division, std::size_t nNode, const S_Part& node, std::size_t nUnits,
              S_DividedBlock& block) {
  if (node.nUnit >= nUnits) return;
  const bool bMarked = division.IsMarked(nNode);
  if (node.nSize == 0 || !bMarked) {
    block.parts.push_back(node);
    if (bMarked) block.parts.back().kind = E_PartKind::kPlain;
    block.splits.push_back(0);
    return;
  }
  ++block.splits.back();
  S_Part half{node.nUnit, node.nSize - 1};
  AddParts(division, 2 * nNode, half, nUnits, block);
  half.nUnit = half.End();
  AddParts(division, 2 * nNode + 1, half, nUnits, block);
}

}  // namespace

C_BlockEncoder::C_BlockEncoder(int nSampleRate, int nBitDepth)
    : m_nUnitLength(UnitLength(nSampleRate)),
      m_nSlope(SlopeOf(nBitDepth)),
      m_transforms(m_nUnitLength),
      m_tools(m_nUnitLength * kSectionUnits) {}

S_DividedBlock C_BlockEncoder::Divide(std::span<const std::int16_t> samples, int nOffset,
                                      const S_SeeSection& fnSee) {
  const std::size_t nLength = m_nUnitLength * kSectionUnits;
  const std::size_t nSections = (samples.size() + nLength - 1) / nLength;
  m_padded.assign(nSections * nLength, 0);
  std::ranges::copy(samples, m_padded.begin());
  const auto divisions =
      ChooseParts({m_padded, samples.size(), m_nSlope, nOffset}, m_transforms, fnSee);
  S_DividedBlock block;
  block.nCount = samples.size();
  const std::size_t nUnits = (samples.size() + m_nUnitLength - 1) / m_nUnitLength;
  block.splits.push_back(0);
  for (std::size_t n = 0; n < nSections; ++n) {
    block.firstParts.push_back(block.parts.size());
    AddParts(divisions[n], 1, {n * kSectionUnits, kPartSizes - 1}, nUnits, block);
  }
  block.splits.pop_back();
  Transform(block);
  return block;
}

void C_BlockEncoder::Transform(S_DividedBlock& block) {
  const auto& parts = block.parts;
  block.values.resize(m_padded.size());
  for (std::size_t n = 0; n < parts.size(); ++n) {
    const S_Part& part = parts[n];
    S_Lapped lapped{part.nUnit * m_nUnitLength, part.Units() * m_nUnitLength, {}, {}};
    if (n > 0) lapped.before = m_transforms.Between(parts[n - 1], part);
    if (n + 1 < parts.size()) lapped.after = m_transforms.Between(part, parts[n + 1]);
    const std::span values(block.values.data() + lapped.nAt, lapped.nLength);
    Fold(m_padded, lapped, values);
    if (part.kind != E_PartKind::kPlain) m_transforms.Dct(part.nSize).Transform(values);
    block.loudness.push_back(LoudnessOf(values));
  }
}

int C_BlockEncoder::StepAtOffset0(const S_DividedBlock& block, std::size_t nPart) const {
  return WantedStep(block.loudness[nPart], m_nSlope, 0);
}

std::vector<int> C_BlockEncoder::Steps(const S_DividedBlock& block, const S_Sections& sections,
                                       int nBefore) const {
  std::vector<S_StepWish> wishes;
  const std::size_t nEnd = block.PartsUpTo(sections.nEnd);
  for (std::size_t n = block.PartsUpTo(sections.nFirst); n < nEnd; ++n) {
    const S_Part& part = block.parts[n];
    const bool bCoarser = part.nUnit / kSectionUnits >= sections.nCoarserFrom;
    const int nOffset = bCoarser ? sections.nCoarser : sections.nOffset;
    wishes.push_back(
        {WantedStep(block.loudness[n], m_nSlope, nOffset), part.Units() * m_nUnitLength});
  }
  return ChooseSteps(wishes, nBefore);
}

void C_BlockEncoder::Write(const S_DividedBlock& block, const S_Sections& sections,
                           C_PartWriter& writer) {
  const std::size_t nEndSection = std::min(sections.nEnd, block.SectionCount());
  S_Sections kept = sections;
  kept.nEnd = std::clamp(sections.nLostFrom, sections.nFirst, nEndSection);
  const std::size_t nFirst = block.PartsUpTo(kept.nFirst);
  const std::size_t nEnd = block.PartsUpTo(kept.nEnd);
  const std::vector<int> steps = Steps(block, kept, writer.StepIndex());
  for (std::size_t n = nFirst; n < nEnd; ++n) {
    S_Part part = block.parts[n];
    part.nIndex = steps[n - nFirst];
    const std::size_t nAt = part.nUnit * m_nUnitLength;
    std::size_t nLength = part.Units() * m_nUnitLength;
    for (std::size_t nSplit = block.splits[n]; nSplit > 0; --nSplit) {
      writer.WriteSplit(part.nSize + nSplit);
    }
    if (part.kind == E_PartKind::kPlain) nLength = std::min(nLength, block.nCount - nAt);
    writer.Write(part, {block.values.data() + nAt, nLength}, m_tools);
  }
  for (std::size_t n = kept.nEnd; n < nEndSection; ++n) writer.WriteSilence(kPartSizes - 1);
}

}  // namespace heron
